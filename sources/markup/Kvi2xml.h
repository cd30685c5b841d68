// Kvi2xml - imports XML data packets: files whose FIELDS section names the columns and whose ROWDATA section
// holds one tag a record, its values in attributes. By default it is no XML parser: see KvXMLExtensions.h
// for what that means and how much of it can be had otherwise.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "KvMarkupImport.h"
#include "KvXMLExtensions.h"
#include "KvXmlRows.h"
#include "KviSourceColumns.h"

namespace kv {

/// Imports the records of a packet. Source columns are names of attributes.
class TKvImportFromXML : public TKvImportFromMarkup
{
public:
    explicit TKvImportFromXML(TComponent* Owner = nullptr);

    std::string_view ClassName() const override { return "TKvImportFromXML"; }
    TPublishedProperties PublishedProperties() const override;

    /// Another name of the tag that the records stand in, in whatever case; empty: ROWDATA alone.
    std::string TableName;
    TKvIXMLExtensions Extensions;

    static std::string Extension() { return ".XML"; }
    static std::string FillFileFilters();

protected:
    void DetectAutoMapping() override;
    void BeforeImport() override;
    TVariant GetFieldValue(const TVariant& Source) override;
    void AfterImport() override;

    TKvFindEncoding EncodingFinder() const override;
    void StartRows(std::string_view Text) override;
    bool NextRow() override { return Rows->Next(ruValues); }
    bool SkipRow() override { return Rows->Next(ruCount); }

private:
    // One run, from BeforeImport to AfterImport.
    std::optional<TKvXmlRows> Rows;
    std::vector<std::string> FieldNames;            // of the FIELDS sections
    TKvSourceColumns<std::size_t> Columns;          // of Rows
};

/// How an XML file says that it is encoded, empty when it does not.
std::string_view FindXmlFileEncoding(std::string_view Text);

/// Calls `Callback` once for each of the records `RowFirst` to `RowLast`, at most to number 20, of a file.
/// `FieldNames`, separated by ";", go to `Columns`; the values are those of the attributes with these names, and
/// the name itself where there is none. Without names nothing happens. Raises EFileError.
void LoadXMLPreview(TPersistent* Sender, std::string_view FieldNames, const std::string& FileName,
                    std::string_view RowTag, int RowFirst, int RowLast, bool Flag, TStrings& Columns,
                    const TPreviewCallback& Callback);

} // namespace kv
