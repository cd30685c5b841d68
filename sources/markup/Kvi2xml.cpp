#include "Kvi2xml.h"

#include <algorithm>

#include "KvMarkupEncoding.h"
#include "KvMarkupPreview.h"
#include "KvPublish.h"
#include "KvText.h"

namespace kv {

namespace {

constexpr std::string_view ExtensionNames[] = {"xxTagSyntax", "xxWholeNames", "xxReferences", "xxEncoding",
                                               "xxMissingIsNull"};

} // namespace

TKvImportFromXML::TKvImportFromXML(TComponent* Owner) : TKvImportFromMarkup(Owner, teXML, Extension()) {}

TPublishedProperties TKvImportFromXML::PublishedProperties() const
{
    using T = TKvImportFromXML;
    return PublishAfter(TKvImportFromMarkup::PublishedProperties(),
                        {Publish("TableName", &T::TableName),
                         Publish("Extensions", &T::Extensions, ExtensionNames)});
}

std::string TKvImportFromXML::FillFileFilters()
{
    return TKvImportFromMarkup::FillFileFilters() + "|XML file (*.xml)|*.XML|";
}

// Loading.

TKvFindEncoding TKvImportFromXML::EncodingFinder() const
{
    return Extensions.Contains(xxEncoding) ? FindXmlFileEncoding : nullptr;
}

void TKvImportFromXML::BeforeImport()
{
    TKvImportFromMarkup::BeforeImport();
    FieldNames = Rows->FieldNames();
}

void TKvImportFromXML::StartRows(std::string_view Text)
{
    Columns.Clear();
    Rows.emplace(Text, Extensions, TableName, SourceFileName);
}

void TKvImportFromXML::AfterImport()
{
    Rows.reset();
    FieldNames.clear();
    TKvImportFromMarkup::AfterImport();
}

// The values.

TVariant TKvImportFromXML::GetFieldValue(const TVariant& Source)
{
    const auto Column = Columns.Find(Source, [this](std::string_view Each) { return Rows->AddColumn(Each); });
    if (const auto Value = Rows->Value(Column))
        return TVariant::Borrow(*Value);
    if (Extensions.Contains(xxMissingIsNull))
        return Null;
    return TVariant::Borrow(Source.Text());
}

// Automatic mapping.

/// With RowFirst above 1 by the names in the FIELDS section: a field whose name is not there gets no mapping.
void TKvImportFromXML::DetectAutoMapping()
{
    BeforeImport();
    MapFields([this](const TField& Field) {
        if (RowFirst <= 1)
            return Field.FieldName();
        const auto NamesField = [&Field](const auto& Each) { return SameText(Each, Field.FieldName()); };
        const auto Found = std::ranges::find_if(FieldNames, NamesField);
        return Found != FieldNames.end() ? *Found : std::string();
    });
    AfterImport();
}

// Routines without a component.

std::string_view FindXmlFileEncoding(std::string_view Text)
{
    const auto Wide = FindWideEncoding(Text);
    return Wide.empty() ? FindXmlEncoding(Text) : Wide;
}

void LoadXMLPreview(TPersistent* Sender, std::string_view FieldNames, const std::string& FileName,
                    std::string_view RowTag, int RowFirst, int RowLast, bool Flag, TStrings& Columns,
                    const TPreviewCallback& Callback)
{
    if (FieldNames.empty())
        return;
    const TKvTextFile File(FileName, bmIsText);
    TKvXmlRows Rows(MarkupText(File, FileName, false), {}, RowTag, FileName);
    SplitFieldNames(FieldNames, Columns);
    for (const auto& Name : Columns)
        Rows.AddColumn(Name);
    OfferRows(TKvMarkupPreview{Sender, RowFirst, RowLast, Flag, Columns, Callback}, Rows, [&](int Column) {
        return Rows.Value(static_cast<std::size_t>(Column)).value_or(std::string_view(Columns[Column]));
    });
}

} // namespace kv
