// Kvi2xml - imports XML data packets: files whose FIELDS section names the columns and whose ROWDATA section
// holds one tag a record, its values in attributes. By default it is no XML parser: see KvXMLExtensions.h
// for what that means and how much of it can be had otherwise.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "KvMarkupImport.h"
#include "KvXMLExtensions.h"
#include "KviSourceColumns.h"

namespace kv {

class TKvXmlRows;
struct TKvXmlField;

/// Imports the records of a packet. Source columns are names of attributes.
///
/// A look shows the columns that the FIELDS section before the first record declares, and behind them all
/// others that records have. By the older rules the others are not shown, nor those that the first 100
/// records lack where no section declares any. The section does not describe records of another tag.
class TKvImportFromXML : public TKvImportFromMarkup
{
public:
    explicit TKvImportFromXML(TComponent* Owner = nullptr);
    ~TKvImportFromXML() override;

    std::string_view ClassName() const override { return "TKvImportFromXML"; }
    TPublishedProperties PublishedProperties() const override;

    /// Another name of the tag that the records stand in, in whatever case; empty: ROWDATA alone.
    std::string TableName;
    TKvIXMLExtensions Extensions;

    /// The values of the columns that a look shows; null where the record has none.
    TVariant SourceRecord() override;
    TKvISourceName ResolveName(const std::string& Wanted,
                               const std::vector<TKvISourceColumn>& Shown) const override;
    /// Cannot be told of an attribute that the records looked at lack where others follow them.
    std::vector<TKvISourceRemark> SourceRemarks() const override;

    static std::string Extension() { return ".XML"; }
    static std::string FillFileFilters();

protected:
    void DetectAutoMapping() override;
    void BeforeImport() override;
    /// Numbers are written as the formats of the run have them, bytes only for fields of bytes decoded.
    TVariant GetParsedValue(const TVariant& Source, int FieldIndex) override;
    TVariant GetFieldValue(const TVariant& Source) override;
    void AfterImport() override;
    void BeforeLook(const TKvISourceLook& What) override;
    std::vector<TKvISourceColumn> SourceColumns(int HeaderRow) override;
    void AfterLook() override;

    TEncodingFinder EncodingFinder() const override;
    void StartRows(std::string_view Text) override;
    bool NextRow() override;
    bool SkipRow() override;
    const char* RowBegin() const override;
    std::string RowSettings() const override;

private:
    struct TKnownColumns;

    struct TColumn
    {
        std::size_t Index;                          // of Rows
        TFieldType Type;                            // as it is declared; ftUnknown: text
    };

    std::unique_ptr<TKvXmlRows> MakeRows(std::string_view Text) const;
    const TKnownColumns& KnownColumns();
    TKnownColumns FindColumns();
    std::vector<TKvXmlField> FirstFields(TKvXmlRows& Packet, bool& AreAll) const;
    std::vector<TKvXmlField> AllFields(TKvXmlRows& Packet, bool& AreAll);
    void TakeFacts(const TKvXmlRows& Packet);
    TColumn ResolveColumn(std::string_view Source) const;
    TVariant TypedValue(std::string_view Text, TFieldType Type);
    bool IsOneOf(const std::vector<TKvISourceColumn>& Shown, std::string_view Attribute) const;

    std::unique_ptr<TKvXmlRows> Rows;               // from BeforeImport to AfterImport, and in a look
    std::vector<std::string> FieldNames;            // of the FIELDS sections, in a run
    TKvSourceColumns<TColumn> Columns;
    TFieldType WantedType = ftUnknown;              // of the field that the next value is for
    std::int64_t Replaced = 0;                      // records, of the last run or look
    std::int64_t LeftOut = 0;                       // elements inside records, the same
    std::vector<std::size_t> ShownColumns;          // the same of SourceRecord
    std::unique_ptr<TKnownColumns> Known;           // of the file, once somebody has asked
};

/// How an XML file says that it is encoded, empty when it does not.
std::string_view FindXmlFileEncoding(std::string_view Text);

/// Calls `Callback` once for each of the records `RowFirst` to `RowLast`, at most to number 20, of a file.
/// `FieldNames`, separated by ";", go to `Columns`; the values are those of the attributes with these names,
/// and the name itself where there is none. Without names nothing happens. Raises EFileError; with
/// `Extensions` also what a run with these raises.
void LoadXMLPreview(TPersistent* Sender, std::string_view FieldNames, const std::string& FileName,
                    std::string_view RowTag, int RowFirst, int RowLast, bool Flag, TStrings& Columns,
                    const TPreviewCallback& Callback, TKvIXMLExtensions Extensions = {});

} // namespace kv
