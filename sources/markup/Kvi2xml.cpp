#include "Kvi2xml.h"

#include <algorithm>
#include <utility>

#include "KvMarkupEncoding.h"
#include "KvMarkupPreview.h"
#include "KvPublish.h"
#include "KvText.h"
#include "KvXmlRows.h"
#include "KvXmlValues.h"
#include "Kvi2xmlColumns.h"

namespace kv {

namespace {

constexpr std::size_t MaxShownBytes = 40;           // of a value that is no text, in messages
constexpr std::string_view ExtensionNames[] = {"xxTagSyntax",     "xxWholeNames",    "xxReferences",
                                               "xxEncoding",      "xxMissingIsNull", "xxRowState",
                                               "xxElementValues", "xxFieldTypes"};

} // namespace

TKvImportFromXML::TKvImportFromXML(TComponent* Owner) : TKvImportFromMarkup(Owner, teXML, Extension()) {}

TKvImportFromXML::~TKvImportFromXML() = default;

TPublishedProperties TKvImportFromXML::PublishedProperties() const
{
    using T = TKvImportFromXML;
    return PublishAfter(TKvImportFromMarkup::PublishedProperties(),
                        {AsPlace(Publish("TableName", &T::TableName)),
                         Publish("Extensions", &T::Extensions, ExtensionNames)});
}

std::string TKvImportFromXML::FillFileFilters()
{
    return TKvImportFromMarkup::FillFileFilters() + "|XML file (*.xml)|*.XML|";
}

// Loading.

TKvImportFromXML::TEncodingFinder TKvImportFromXML::EncodingFinder() const
{
    return Extensions.Contains(xxEncoding) ? FindXmlFileEncoding : nullptr;
}

void TKvImportFromXML::BeforeImport()
{
    const bool IsSeen = IsKept() && HasCount() && Known; // by a look, which has passed over all records
    if (!IsSeen)
        Known.reset();
    WantedType = ftUnknown;
    FieldNames.clear();
    TKvImportFromMarkup::BeforeImport();
    if (!IsSeen)
        TakeFacts(*Rows);
    for (const auto& Field : IsSeen ? Known->Declared : Rows->Fields())
        FieldNames.push_back(Field.Name);
}

void TKvImportFromXML::TakeFacts(const TKvXmlRows& Packet)
{
    Replaced = Packet.Dropped();
    LeftOut = Packet.LeftOut();
}

std::unique_ptr<TKvXmlRows> TKvImportFromXML::MakeRows(std::string_view Text) const
{
    return std::make_unique<TKvXmlRows>(Text, Extensions, TableName, SourceFileName, TextOffset());
}

void TKvImportFromXML::StartRows(std::string_view Text)
{
    Columns.Clear();
    ShownColumns.clear();
    Rows = MakeRows(Text);
}

bool TKvImportFromXML::NextRow()
{
    return Rows->Next(ruValues);
}

bool TKvImportFromXML::SkipRow()
{
    return Rows->Next(ruCount);
}

const char* TKvImportFromXML::RowBegin() const
{
    return Rows->Begin();
}

std::string TKvImportFromXML::RowSettings() const
{
    return std::to_string(Extensions.Bits()) + " " + TableName;
}

void TKvImportFromXML::AfterImport()
{
    if (Rows)                                       // what only counts is not looked into
        LeftOut = std::max(LeftOut, Rows->LeftOut());
    Rows.reset();
    FieldNames.clear();
    TKvImportFromMarkup::AfterImport();
}

// The values.

TVariant TKvImportFromXML::GetParsedValue(const TVariant& Source, int FieldIndex)
{
    WantedType = FieldIndex >= 0 ? GetDataSet()->Fields(FieldIndex).DataType() : ftUnknown;
    return TKvImportFromMarkup::GetParsedValue(Source, FieldIndex);
}

TVariant TKvImportFromXML::GetFieldValue(const TVariant& Source)
{
    const auto& Column =
        Columns.Find(Source, [this](std::string_view Each) { return ResolveColumn(Each); });
    if (const auto Value = Rows->Value(Column.Index)) {
        CheckValue(*Value);
        return Column.Type == ftUnknown ? TVariant::Borrow(*Value) : TypedValue(*Value, Column.Type);
    }
    if (Extensions.Contains(xxMissingIsNull))
        return Null;
    return TVariant::Borrow(Source.Text());
}

/// With the type of its values where those are written in a way of their own.
TKvImportFromXML::TColumn TKvImportFromXML::ResolveColumn(std::string_view Source) const
{
    const TColumn Untyped{.Index = Rows->AddColumn(Source), .Type = ftUnknown};
    if (!Extensions.Contains(xxFieldTypes) || !TableName.empty())
        return Untyped;
    const auto IsNamed = [Source](const TKvXmlField& Each) { return SameText(Each.Name, Source); };
    const auto Found = std::ranges::find_if(Rows->Fields(), IsNamed);
    if (Found == Rows->Fields().end() || IsTextField(Found->DataType))
        return Untyped;
    return {.Index = Untyped.Index, .Type = Found->DataType};
}

/// A text that is written otherwise than packets have it stays what it is.
TVariant TKvImportFromXML::TypedValue(std::string_view Text, TFieldType Type)
{
    switch (Type) {
    case ftDate:
    case ftTime:
    case ftDateTime:
        if (const auto Point = PacketDateTime(Text, Type))
            return *Point;
        break;
    case ftBoolean:
        if (const auto Truth = PacketBoolean(Text); Truth && !IsTextField(WantedType))
            return *Truth;
        break;
    case ftFloat:
    case ftCurrency:
    case ftBCD:
        if (DataFormats.DecimalSeparator != '.' && (WantedType == ftUnknown || IsNumericField(WantedType))) {
            std::string Number(Text);
            std::ranges::replace(Number, '.', DataFormats.DecimalSeparator);
            return Number;
        }
        break;
    case ftBlob:
        if (IsBinaryField(WantedType)) {
            std::string Bytes;
            if (!PacketBytes(Text, Bytes))
                throw EFormatError("\"" + std::string(Text.substr(0, MaxShownBytes)) + "\" is no base64",
                                   {.FileName = SourceFileName, .Rule = erConversion});
            return Bytes;
        }
        break;
    default: break;
    }
    return TVariant::Borrow(Text);
}

TVariant TKvImportFromXML::SourceRecord()
{
    if (!HasRow())
        return Null;
    const auto& Names = KnownColumns().Columns;
    while (ShownColumns.size() < Names.size())
        ShownColumns.push_back(Rows->AddColumn(Names[ShownColumns.size()].Name));
    auto Values = TVariant::Array(0, static_cast<int>(Names.size()) - 1);
    for (std::size_t I = 0; I < Names.size(); ++I) {
        auto& Value = Values[static_cast<int>(I)] = Null;
        if (const auto Text = Rows->Value(ShownColumns[I]))
            Value.SetText(*Text);
    }
    return Values;
}

// Automatic mapping.

/// With RowFirst above 1 by the names in the FIELDS section: a field whose name is not there gets no mapping.
void TKvImportFromXML::DetectAutoMapping()
{
    const bool WasKept = IsKept();
    BeforeImport();
    MapFields([this](const TField& Field) {
        if (RowFirst <= 1)
            return Field.FieldName();
        const auto NamesField = [&Field](const auto& Each) { return SameText(Each, Field.FieldName()); };
        const auto Found = std::ranges::find_if(FieldNames, NamesField);
        return Found != FieldNames.end() ? *Found : std::string();
    });
    EndDetecting(WasKept);
}

// Routines without a component.

std::string_view FindXmlFileEncoding(std::string_view Text)
{
    const auto Wide = FindWideEncoding(Text);
    return Wide.empty() ? FindXmlEncoding(Text) : Wide;
}

void LoadXMLPreview(TPersistent* Sender, std::string_view FieldNames, const std::string& FileName,
                    std::string_view RowTag, int RowFirst, int RowLast, bool Flag, TStrings& Columns,
                    const TPreviewCallback& Callback, TKvIXMLExtensions Extensions)
{
    TKvImportFromXML Import;
    Import.TableName = RowTag;
    Import.Extensions = Extensions;
    const TKvMarkupPreview Preview{Sender, FieldNames, FileName, RowFirst, RowLast, Flag, Columns, Callback};
    ShowPreview(Import, Preview, Preview.Names());
}

} // namespace kv
