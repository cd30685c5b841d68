// From mapping lines and key names to the fields that a run fetches, converts and writes.
#include "Kvibase.h"

#include <algorithm>

#include "KvFieldConvert.h"
#include "KvName.h"
#include "KvText.h"

namespace kv {

namespace {

constexpr std::size_t ShortNameSize = 10;           // characters

template <class TFields> auto FindByName(TFields& Fields, std::string_view Name)
{
    return std::ranges::find_if(Fields, [Name](const auto& Field) { return Field.Name == Name; });
}

} // namespace

void TKvImportBaseComponent::MapFields(const std::function<std::string(const TField& Field)>& SourceOf)
{
    for (int I = 0; I < FDataSet->FieldCount(); ++I) {
        const auto& Field = FDataSet->Fields(I);
        if (const auto Source = SourceOf(Field); !Source.empty())
            FMappings.Add(Field.FieldName() + "=" + Source);
    }
}

std::pair<std::string_view, std::string_view>
TKvImportBaseComponent::SplitMapping(std::string_view Line, const TDataSet* DataSet)
{
    const auto First = Line.find('=');
    if (First == Line.npos)
        return {};
    auto Equal = First;
    if (DataSet && Line.find('=', First + 1) != Line.npos)
        while (Equal != Line.npos && !DataSet->FindField(Trim(Line.substr(0, Equal))))
            Equal = Line.find('=', Equal + 1);
    if (Equal == Line.npos)
        Equal = First;
    return {Trim(Line.substr(0, Equal)), Trim(Line.substr(Equal + 1))};
}

void TKvImportBaseComponent::BuildFieldMapping()
{
    FillKey4Locate();
    FillKey4Values();
}

void TKvImportBaseComponent::FillKey4Locate()
{
    KeyFields.clear();
    if (!IsKeyMode() || DatasetKeys.empty())
        return;
    const auto Mapped = MappedFields();
    const std::string Keys = UpperName(DatasetKeys);
    for (std::size_t From = 0; From <= Keys.size();) {
        const auto To = std::min(Keys.find(';', From), Keys.size());
        // The piece counts as it stands: blanks around it make it another name.
        if (const auto Found = FindByName(Mapped, Keys.substr(From, To - From)); Found != Mapped.end())
            KeyFields.push_back(*Found);
        From = To + 1;
    }
}

void TKvImportBaseComponent::FillKey4Values()
{
    SourceFields = MappedFields();
}

std::string_view TKvImportBaseComponent::ShortName(std::string_view Column)
{
    while (CharacterCount(Column) > ShortNameSize)
        Column.remove_suffix(1);
    return Column;
}

TKvImportBaseComponent::TMappedFields TKvImportBaseComponent::MappedFields() const
{
    TMappedFields Result;
    for (int Line = 0; Line < FMappings.Count(); ++Line) {
        const auto [Dest, Column] = SplitMapping(FMappings[Line], FDataSet);
        const auto Source = SourceName(Column);
        if (Source.empty())
            continue;
        Result.push_back({.Name = UpperName(Dest), .Source = Source, .Value = Null});
    }
    return Result;
}

void TKvImportBaseComponent::BuildArrayIntersection()
{
    DestFields = SourceFields;
    for (const auto& Key : KeyFields) {             // a key takes the place of the mapping of the same name
        if (const auto Same = FindByName(DestFields, Key.Name); Same != DestFields.end())
            *Same = Key;
        else
            DestFields.push_back(Key);
    }
    for (std::size_t I = 0; I < DestFields.size(); ++I) {
        auto& Dest = DestFields[I];
        const auto* const Field = FDataSet->FindField(Dest.Name);
        Dest.Index = Field ? Field->Index() : -1;
        const auto Position = static_cast<int>(I);
        if (const auto Source = FindByName(SourceFields, Dest.Name); Source != SourceFields.end())
            Source->Index = Position;
        if (const auto Key = FindByName(KeyFields, Dest.Name); Key != KeyFields.end())
            Key->Index = Position;
    }
}

int TKvImportBaseComponent::GetFieldItem(std::string_view Source) const
{
    const auto Found = std::ranges::find_if(
        DestFields, [Source](const auto& Field) { return Field.Source.Text() == Source; });
    return Found != DestFields.end() ? static_cast<int>(Found - DestFields.begin()) : -1;
}

} // namespace kv
