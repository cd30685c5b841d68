#include "KvSpecification.h"

#include <algorithm>
#include <cstddef>

#include "KvException.h"
#include "KvIniFile.h"
#include "KvSourceFactory.h"
#include "KviTableType.h"

namespace kv {

namespace {

constexpr char Common[] = "Common", Mappings[] = "Mappings";
constexpr std::size_t PrefixSize = 2;               // of the name of an element

void CheckMappings(const TIniFile& File, int Count)
{
    for (int I = 0; I < Count; ++I)
        if (const auto Key = "Map" + std::to_string(I); !File.HasKey(Mappings, Key))
            throw Exception(File.FileName() + ": " + Key + " is missing, although there should be " +
                            std::to_string(Count) + " mappings");
}

} // namespace

TSpecification::TSpecification(const std::string& Given) : FileName(Given), Import(LoadImport(FileName))
{
    const TIniFile File(FileName);
    Name = File.ReadString(Common, "Specification", {});
    Application = File.ReadString(Common, "App", {});
    if (const auto TableType = TableTypeOfName(File.ReadString(Common, "TableType", {})))
        Kind = TableTypeName(*TableType);
    CheckMappings(File, Import->Mappings().Count());
}

TSpecification::~TSpecification() = default;

std::string TSpecification::Text(std::string_view PropertyName) const
{
    const auto Properties = Import->PublishedProperties();
    const auto* const Property = FindProperty(Properties, PropertyName);
    if (!Property || !Property->Get)
        return {};
    const auto Value = Property->Get(*Import);
    if (Property->Kind == pkEnumeration)
        return std::string(Property->Names[static_cast<std::size_t>(Value.Integer())]);
    return Value.ToText();
}

std::vector<std::string> TSpecification::Extensions() const
{
    std::vector<std::string> Result;
    const auto Properties = Import->PublishedProperties();
    const auto* const Set = FindProperty(Properties, "Extensions");
    if (!Set || Set->Kind != pkSet)
        return Result;
    const auto Bits = Set->Get(*Import).Integer();
    for (std::size_t I = 0; I < Set->Names.size(); ++I)
        if ((Bits >> I & 1) != 0)
            Result.emplace_back(Set->Names[I].substr(PrefixSize));
    return Result;
}

std::vector<std::string> TSpecification::Keys() const
{
    std::vector<std::string> Result;
    const auto& List = Import->DatasetKeys;
    for (std::size_t From = 0; From < List.size();) {
        const auto To = std::min(List.find(';', From), List.size());
        if (To > From)
            Result.push_back(List.substr(From, To - From));
        From = To + 1;
    }
    return Result;
}

std::string TSpecification::Sheet() const
{
    const auto Index = Text("SheetIndex");
    return Index.empty() ? Index : std::to_string(std::stoll(Index) + 1);
}

std::string TSpecification::Table() const
{
    const auto Number = Text("TableNumber");
    return Number.empty() || Number == "0" ? Text("TableName") : Number;
}

} // namespace kv
