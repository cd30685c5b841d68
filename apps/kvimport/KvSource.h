// KvSource - a source of records as the command line sees it: whatever kind it is, it has columns with
// names, shows its first rows, and has a component that imports it.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kv {

class TKvImportBaseComponent;

/// A column that the source offers.
struct TSourceColumn
{
    std::string Source;                             ///< As mapping lines name it: "Field3".
    std::string Name;                               ///< As the source itself calls it, UTF-8; empty when it does not.
};

/// A column of a source that calls it as mapping lines do.
TSourceColumn ColumnCalled(const std::string& Name);
/// Such columns as they stand above rows: under one name, not two.
std::vector<TSourceColumn> WithoutNames(std::vector<TSourceColumn> Columns);

/// What a mapping takes from the source.
struct TMappedColumn
{
    TSourceColumn Column;
    std::string Remark;                             ///< What is odd about it; empty for a column that is there.
};

/// Rows as they stand in the source, before any conversion. UTF-8.
struct TSourceRows
{
    std::vector<TSourceColumn> Columns;
    std::vector<std::vector<std::string>> Rows;     ///< A row may be longer or shorter than Columns.
    std::vector<std::string> Places;                ///< Of each row: "2" for line 2.
    bool HasMore = false;                           ///< There are rows after these.
    std::vector<std::string> Warnings;              ///< What of them could not be read.
};

/// A sheet of a workbook.
struct TSourceSheet
{
    std::string Name;                               ///< UTF-8.
    int Rows = 0, Columns = 0;                      ///< As far as a run would read.
};

class TSource
{
public:
    virtual ~TSource() = default;

    /// Set up as the options have it; mappings, keys and destination are the caller's.
    virtual TKvImportBaseComponent& Component() = 0;
    /// What messages call the source: the file as the user named it.
    virtual std::string DisplayName() const = 0;
    /// What a row of the source is called where its number follows: "line".
    virtual std::string_view PlaceWord() const = 0;
    /// True when the component finds out by itself, in each run, which column goes into which field.
    virtual bool MapsItself() const { return false; }
    /// True when the source itself names its columns.
    virtual bool HasNames() const = 0;
    virtual std::vector<TSourceColumn> Columns() = 0;
    virtual TSourceRows FirstRows(int Count) = 0;
    /// What a mapping to `Name` takes, UTF-8 and written in any case: one of Columns(), or what else the source
    /// makes of it. Raises Exception when nothing can come of it.
    virtual TMappedColumn ColumnNamed(const std::string& Name);
    /// `Text` of an error, in which the source goes by its display name.
    virtual std::string Explain(std::string Text) const { return Text; }
    /// How the source was read, where the command line left it open: "delimiter: semicolon".
    virtual std::vector<std::string> Findings() const { return {}; }
    /// What the last run met that the user should know, such as lines with too many values.
    virtual std::vector<std::string> Warnings() const { return {}; }
    /// All sheets of a workbook, in order; none for anything else.
    virtual std::vector<TSourceSheet> Sheets() const { return {}; }

protected:
    /// What is to be said of a mapping to `Name`, which Columns() lacks: most sources take it for a constant.
    /// Raises Exception when nothing can come of it.
    virtual std::string RemarkOnStranger(const std::string& Name);
};

} // namespace kv
