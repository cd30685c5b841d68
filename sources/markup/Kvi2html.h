// Kvi2html - imports the tables of HTML files. It is a scanner of tags and no HTML parser: see
// KvHTMLExtensions.h for what that means and how much of it can be had otherwise.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "KvHTMLExtensions.h"
#include "KvMarkupImport.h"
#include "KviSourceColumns.h"

namespace kv {

class TKvHtmlRows;

/// Imports the rows of all tables of a file. By default the first mapping line gets the first cell of a
/// row and so on, a line whose source another one has named before gets the same cell as that, and an
/// empty cell imports the line's source.
///
/// A look names the columns "Field1", "Field2", ..., as many as the widest row that is imported has, and
/// raises Exception, with the rule erMissing, when the page has fewer than TableNumber tables. The parts of a
/// page are all of its tables, which have no names.
class TKvImportFromHTML : public TKvImportFromMarkup
{
public:
    explicit TKvImportFromHTML(TComponent* Owner = nullptr);
    ~TKvImportFromHTML() override;

    std::string_view ClassName() const override { return "TKvImportFromHTML"; }
    TPublishedProperties PublishedProperties() const override;

    TKvIHTMLExtensions Extensions;
    int TableNumber = 0;                            ///< The table to import, from 1; 0: all of them.

    /// How many tables the rows of the last run or look came from, those inside others not counted.
    int TablesRead() const { return PageFacts.Tables; }

    /// The texts of the row's cells.
    TVariant SourceRecord() override;
    TKvISourceName ResolveName(const std::string& Wanted,
                               const std::vector<TKvISourceColumn>& Shown) const override;
    std::vector<TKvISourcePart> SourceParts() override;
    void SelectPart(int Index, const TKvISourcePart& Part) override;
    std::vector<TKvISourceRemark> SourceRemarks() const override;
    /// Cannot be told without xhHeaderNames: then the order of the mappings decides.

    static std::string Extension() { return ".HTML"; }
    static std::string FillFileFilters();

protected:
    void DetectAutoMapping() override;
    void BeforeImport() override;
    TVariant GetFieldValue(const TVariant& Source) override;
    void AfterImport() override;
    void BeforeLook(const TKvISourceLook& What) override;
    std::vector<TKvISourceColumn> SourceColumns(int HeaderRow) override;
    int RecordWidth() const override;
    void AfterLook() override;

    TEncodingFinder EncodingFinder() const override;
    void StartRows(std::string_view Text) override;
    bool NextRow() override;
    const char* RowBegin() const override;
    std::string RowSettings() const override;

    /// What the column `Source` imports where its cell is empty or not there.
    virtual TVariant EmptyCell(const TVariant& Source) const;

private:
    struct TPageFacts
    {
        int Tables = 0;                             // whose rows were read
        bool IsCutOff = false;                      // in one of them
    };

    std::unique_ptr<TKvHtmlRows> MakeRows(std::string_view Text) const;
    void ReadHeader();
    void TakeFacts(const TKvHtmlRows& Page);
    std::vector<std::string>::const_iterator FindHeader(std::string_view Source) const;
    std::size_t ResolveColumn(std::string_view Source) const;
    void CheckTableNumber() const;
    bool MoveOn(TKvHtmlRows& Page) const;
    void AddFacts(Exception& Error, const char* Place) const;
    std::vector<std::string> PassRows(int HeaderRow, std::size_t& Width);

    std::unique_ptr<TKvHtmlRows> Rows;              // from BeforeImport to AfterImport, and in a look
    std::vector<std::string> Header;                // names of columns; none without xhHeaderNames
    TKvSourceColumns<std::size_t> Columns;          // from 0
    TPageFacts PageFacts;                           // of the last run or look
};

/// How an HTML file says that it is encoded, empty when it does not: UTF-16 shows in its first tag, other
/// encodings stand in a META tag or an XML declaration near the start. See EncodingOfLabel.
std::string_view FindHtmlEncoding(std::string_view Text);

/// Calls `Callback` once for each of the rows `RowFirst` to `RowLast`, at most to row 20, of the tables of
/// a file. `FieldNames`, separated by ";", go to `Columns`; the values are the texts of as many cells, a name
/// that stands there twice getting the cell of the first. Without names nothing happens. `Unused` is not
/// looked at. Raises EFileError; with `Extensions` also what a run with these raises.
void LoadHTMLPreview(TPersistent* Sender, std::string_view FieldNames, const std::string& FileName,
                     std::string_view Unused, int RowFirst, int RowLast, bool Flag, TStrings& Columns,
                     const TPreviewCallback& Callback, TKvIHTMLExtensions Extensions = {});

} // namespace kv
