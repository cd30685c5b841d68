#include "Kvi2xml.h"

#include <algorithm>
#include <utility>

#include "KvMarkupEncoding.h"
#include "KvMarkupPreview.h"
#include "KvPublish.h"
#include "KvText.h"
#include "KvXmlRows.h"

namespace kv {

namespace {

constexpr int NamingRecords = 100;                  // that are looked at when no FIELDS section names columns

constexpr std::string_view ExtensionNames[] = {"xxTagSyntax", "xxWholeNames", "xxReferences", "xxEncoding",
                                               "xxMissingIsNull"};

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
    Known.reset();
    FieldNames.clear();
    TKvImportFromMarkup::BeforeImport();
    for (const auto& Field : Rows->Fields())
        FieldNames.push_back(Field.Name);
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

// A look.

void TKvImportFromXML::BeforeLook(const TKvISourceLook& What)
{
    Known.reset();
    TKvImportFromMarkup::BeforeLook(What);
}

const TKvImportFromXML::TKnownColumns& TKvImportFromXML::KnownColumns()
{
    if (Known)
        return *Known;
    std::vector<TKvXmlField> Fields;
    const auto Packet = MakeRows(Text());
    const auto IsDeclared = [&] { return TableName.empty() && !Packet->Fields().empty(); };
    bool HasMore = true;
    for (int I = 0; I < NamingRecords && !IsDeclared() && (HasMore = Packet->Next(ruValues)); ++I)
        for (const auto Attribute : Packet->AttributeNames())
            if (std::ranges::find(Fields, Attribute, &TKvXmlField::Name) == Fields.end())
                Fields.push_back({.Name = std::string(Attribute), .TypeName = {}});
    if (IsDeclared())
        Fields = Packet->Fields();
    TKnownColumns Seen;
    Seen.AreAll = IsDeclared() || !HasMore;
    for (const auto& Field : Fields)
        Seen.Columns.push_back({.Name = Field.Name,
                                .Title = TitleText(Field.Name),
                                .DataType = Field.DataType,
                                .Size = Field.Size,
                                .TypeName = Field.TypeName});
    Known = std::move(Seen);
    return *Known;
}

std::vector<TKvISourceColumn> TKvImportFromXML::SourceColumns(int)
{
    return KnownColumns().Columns;
}

void TKvImportFromXML::AfterLook()
{
    Rows.reset();
    TKvImportFromMarkup::AfterLook();
}

/// By the rule that finds it in a record.
bool TKvImportFromXML::IsOneOf(const std::vector<TKvISourceColumn>& Shown, std::string_view Attribute) const
{
    TKvXmlAttributes Attributes;
    for (const auto& Column : Shown) {
        const auto* const First = Column.Name.data();
        AddAttribute(Attributes, First, First, First + Column.Name.size());
    }
    return TKvXmlColumn(Attribute, Extensions.Contains(xxWholeNames)).FindIn(Attributes) != nullptr;
}

TKvISourceName TKvImportFromXML::ResolveName(const std::string& Wanted,
                                             const std::vector<TKvISourceColumn>& Shown) const
{
    if (auto Found = TKvImportFromMarkup::ResolveName(Wanted, Shown); Found.Kind == snColumn)
        return Found;
    if (IsOneOf(Shown, Wanted))
        return {.Kind = snColumn, .Name = Wanted};
    return {.Kind = Extensions.Contains(xxMissingIsNull) ? snMissing : snConstant, .Name = Wanted};
}

std::optional<bool> TKvImportFromXML::NamesColumn(const std::string& Source)
{
    if (!IsKept())
        return {};
    const auto& [All, AreAll] = KnownColumns();
    if (IsOneOf(All, Source))
        return true;
    return AreAll ? std::optional(false) : std::nullopt;
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
                    const TPreviewCallback& Callback, TKvIXMLExtensions Extensions)
{
    TKvImportFromXML Import;
    Import.TableName = RowTag;
    Import.Extensions = Extensions;
    const TKvMarkupPreview Preview{Sender, FieldNames, FileName, RowFirst, RowLast, Flag, Columns, Callback};
    ShowPreview(Import, Preview, Preview.Names());
}

} // namespace kv
