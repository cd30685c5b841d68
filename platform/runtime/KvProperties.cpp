#include "KvProperties.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <utility>

#include "KvComponent.h"
#include "KvException.h"
#include "KvNumberText.h"
#include "KvText.h"

namespace kv {

namespace {

std::optional<std::int64_t> ToInteger(const TVariant& Value)
{
    if (Value.Kind() == vkInteger)
        return Value.Integer();
    return Value.IsString() ? TryTextToInt(Value.Text()) : std::nullopt;
}

std::optional<std::int64_t> ToInt32(const TVariant& Value)
{
    const auto Number = ToInteger(Value);
    return Number && std::in_range<std::int32_t>(*Number) ? Number : std::nullopt;
}

std::optional<std::int64_t> ToBoolean(const TVariant& Value)
{
    if (Value.IsArray())
        return {};
    const auto Text = Value.ToText();
    if (SameText(Text, "True") || Text == "1")
        return true;
    if (SameText(Text, "False") || Text == "0")
        return false;
    return {};
}

std::optional<std::int64_t> ToOrdinal(const TVariant& Value, std::span<const std::string_view> Names)
{
    const auto Found = std::ranges::find_if(Names, [Text = Value.Text()](auto Name) {
        return SameText(Name, Text);
    });
    const auto Ordinal = Found != Names.end() ? std::optional<std::int64_t>(Found - Names.begin())
                                              : ToInteger(Value);
    return Ordinal && *Ordinal >= 0 && *Ordinal < std::ssize(Names) ? Ordinal : std::nullopt;
}

std::optional<std::int64_t> ToBits(const TVariant& Value, std::span<const std::string_view> Names)
{
    const auto Bits = ToInteger(Value);
    return Bits && *Bits >= 0 && *Bits >> Names.size() == 0 ? Bits : std::nullopt;
}

TVariant OrEmpty(std::optional<std::int64_t> Value) { return Value ? TVariant(*Value) : TVariant(); }

/// The value in the kind that the property has; empty when it does not suit.
TVariant ToPropertyKind(const TPublishedProperty& Property, const TVariant& Value)
{
    switch (Property.Kind) {
    case pkInteger:     return OrEmpty(ToInt32(Value));
    case pkEnumeration: return OrEmpty(ToOrdinal(Value, Property.Names));
    case pkSet:         return OrEmpty(ToBits(Value, Property.Names));
    case pkBoolean:
        if (const auto Boolean = ToBoolean(Value))
            return TVariant(*Boolean != 0);
        break;
    case pkChar:
        if (Value.Text().size() == 1)
            return Value;
        break;
    case pkString:
    case pkStrings:
        if (!Value.IsArray())
            return Value.ToText();
        break;
    case pkObject:
    case pkEvent:
        break;
    }
    return {};
}

TPublishedProperty RequireProperty(const TPersistent& Object, std::string_view Name)
{
    auto Properties = Object.PublishedProperties();
    const auto* const Property = FindProperty(Properties, Name);
    if (!Property)
        throw EPropertyError(FormatText("%s has no property \"%s\"", {Object.ClassName(), Name}));
    return *Property;
}

} // namespace

const TPublishedProperty* FindProperty(const TPublishedProperties& Properties, std::string_view Name)
{
    const auto Found = std::ranges::find_if(Properties, [Name](const auto& Each) {
        return SameText(Each.Name, Name);
    });
    return Found == Properties.end() ? nullptr : &*Found;
}

TPublishedProperties WithDefaults(const TPersistent& Fresh)
{
    auto Properties = Fresh.PublishedProperties();
    for (auto& Property : Properties)
        if (Property.Get)
            Property.Default = Property.Get(Fresh);
    return Properties;
}

bool IsChanged(const TPublishedProperty& Property, const TPersistent& Object)
{
    return !Property.Default.IsEmpty() && Property.Get(Object) != Property.Default;
}

void ResetToDefault(const TPublishedProperty& Property, TPersistent& Object)
{
    if (!Property.Default.IsEmpty() && Property.Set)
        Property.Set(Object, Property.Default);
}

TVariant GetPropValue(const TPersistent& Object, std::string_view Name)
{
    const auto Property = RequireProperty(Object, Name);
    if (!Property.Get)
        throw EPropertyError(FormatText("Property %s.%s has no value", {Object.ClassName(), Property.Name}));
    return Property.Get(Object);
}

void SetPropValue(TPersistent& Object, std::string_view Name, const TVariant& Value)
{
    const auto Property = RequireProperty(Object, Name);
    if (!Property.Set)
        throw EPropertyError(FormatText("Property %s.%s is read-only", {Object.ClassName(), Property.Name}));
    const auto Suited = ToPropertyKind(Property, Value);
    if (!Suited.HasValue()) {
        const auto Text = Value.IsArray() ? "Array" : Value.ToText();
        throw EPropertyError(FormatText("'%s' is not a valid value for property %s.%s",
                                        {Text, Object.ClassName(), Property.Name}));
    }
    Property.Set(Object, Suited);
}

} // namespace kv
