#include "KvSpecification.h"

#include <cstddef>

#include "KvProperties.h"
#include "KviTableType.h"

namespace kv {

namespace {

constexpr std::size_t PrefixSize = 2;               // of the name of an element

} // namespace

std::string_view TSpecification::Kind() const
{
    return TableTypeName(File.TableType());
}

std::string TSpecification::Text(std::string_view PropertyName) const
{
    const auto Properties = File.Import().PublishedProperties();
    const auto* const Property = FindProperty(Properties, PropertyName);
    if (!Property || !Property->Get)
        return {};
    const auto Value = Property->Get(File.Import());
    if (Property->Kind == pkEnumeration)
        return std::string(Property->Names[static_cast<std::size_t>(Value.Integer())]);
    return Value.ToText();
}

std::vector<std::string> TSpecification::Extensions() const
{
    std::vector<std::string> Result;
    const auto Properties = File.Import().PublishedProperties();
    const auto* const Set = FindProperty(Properties, "Extensions");
    if (!Set || Set->Kind != pkSet)
        return Result;
    const auto Bits = Set->Get(File.Import()).Integer();
    for (std::size_t I = 0; I < Set->Names.size(); ++I)
        if ((Bits >> I & 1) != 0)
            Result.emplace_back(Set->Names[I].substr(PrefixSize));
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
