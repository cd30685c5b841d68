// What a data packet shows of itself: its columns, and what of it is left out.
#include <algorithm>
#include <utility>

#include "KvException.h"
#include "KvXmlNames.h"
#include "KvXmlRows.h"
#include "Kvi2xmlColumns.h"

namespace kv {

namespace {

constexpr int NamingRecords = 100;                  // that are looked at when no FIELDS section names columns
constexpr std::size_t MaxColumns = TKvXmlElements::MaxFields;
constexpr std::string_view RowState = "RowState";

void AddField(std::vector<TKvXmlField>& Fields, std::string_view Name)
{
    Fields.push_back({.Name = std::string(Name), .TypeName = {}});
}

bool HasField(const std::vector<TKvXmlField>& Fields, std::string_view Name)
{
    return std::ranges::find(Fields, Name, &TKvXmlField::Name) != Fields.end();
}

} // namespace

void TKvImportFromXML::BeforeLook(const TKvISourceLook& What)
{
    WantedType = ftUnknown;
    if (!IsKept() || !HasCount())
        Known.reset();
    TKvImportFromMarkup::BeforeLook(What);
}

std::vector<TKvISourceRemark> TKvImportFromXML::SourceRemarks() const
{
    auto Remarks = TKvImportFromMarkup::SourceRemarks();
    if (Replaced > 0)
        Remarks.push_back({.Kind = srReplacedRecords, .Count = Replaced});
    if (LeftOut > 0)
        Remarks.push_back({.Kind = srElementsLeftOut, .Count = LeftOut});
    return Remarks;
}

const TKvImportFromXML::TKnownColumns& TKvImportFromXML::KnownColumns()
{
    if (!Known)
        Known = std::make_unique<TKnownColumns>(FindColumns());
    return *Known;
}

TKvImportFromXML::TKnownColumns TKvImportFromXML::FindColumns()
{
    TKnownColumns Seen;
    const auto Packet = MakeRows(Text());
    const auto Fields = Extensions.Contains(xxTagSyntax) ? AllFields(*Packet, Seen.AreAll)
                                                         : FirstFields(*Packet, Seen.AreAll);
    if (Fields.size() > MaxColumns)
        throw Exception(SourceFileName + " has more than " + std::to_string(MaxColumns) + " columns",
                        {.FileName = SourceFileName, .Rule = erFormat});
    Seen.Declared = Packet->Fields();
    for (const auto& Field : Fields) {
        const bool IsBytes = Field.DataType == ftBlob && !Extensions.Contains(xxFieldTypes);
        Seen.Columns.push_back({.Name = Field.Name,
                                .Title = TitleText(Field.Name),
                                .DataType = IsBytes ? ftMemo : Field.DataType,
                                .Size = Field.Size,
                                .TypeName = Field.TypeName});
    }
    return Seen;
}

/// By the older rules: those that are declared, else those of the first records.
std::vector<TKvXmlField> TKvImportFromXML::FirstFields(TKvXmlRows& Packet, bool& AreAll) const
{
    std::vector<TKvXmlField> Fields;
    const auto IsDeclared = [&] { return TableName.empty() && !Packet.Fields().empty(); };
    bool HasMore = true;
    for (int I = 0; I < NamingRecords && !IsDeclared() && (HasMore = Packet.Next(ruValues)); ++I)
        for (const auto Attribute : Packet.AttributeNames())
            if (!HasField(Fields, Attribute))
                AddField(Fields, Attribute);
    AreAll = IsDeclared() || !HasMore;
    return IsDeclared() ? Packet.Fields() : Fields;
}

/// Those that are declared and then all others that records have. What is no XML ends the search: the records
/// before it can be shown, and a run fails by it.
std::vector<TKvXmlField> TKvImportFromXML::AllFields(TKvXmlRows& Packet, bool& AreAll)
{
    TKvXmlNames Names;
    try {
        std::int64_t Number = 0, Count = 0;
        bool GoesOn = true;
        for (; GoesOn && Names.Names().size() <= MaxColumns && Packet.Next(ruValues);
             GoesOn = GoesOnAfter(Number)) {
            Packet.AddNames(Names);
            Count += IsImported(++Number) ? 1 : 0;
        }
        AreAll = GoesOn && Names.Names().size() <= MaxColumns;
        if (AreAll) {
            KeepCount(Count);
            TakeFacts(Packet);
        }
    }
    catch (const Exception&) {
    }
    auto Fields = TableName.empty() ? Packet.Fields() : std::vector<TKvXmlField>();
    for (const auto Attribute : Names.Names())
        if (!HasField(Fields, Attribute) && !(Attribute == RowState && Extensions.Contains(xxRowState)))
            AddField(Fields, Attribute);
    return Fields;
}

std::vector<TKvISourceColumn> TKvImportFromXML::SourceColumns(int)
{
    return KnownColumns().Columns;
}

void TKvImportFromXML::AfterLook()
{
    if (Rows && !HasCount())
        TakeFacts(*Rows);                           // as far as it was looked at
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

} // namespace kv
