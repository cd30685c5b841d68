#include "KviOwnSettings.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#include "KvComponent.h"
#include "KvException.h"
#include "KvIniFile.h"
#include "KvProperties.h"
#include "KvText.h"

namespace kv {

namespace {

constexpr std::string_view Section = "Extensions";
constexpr std::string_view SourceSet = "Extensions";
constexpr std::string_view Sets[] = {SourceSet, "RunExtensions"};
constexpr std::string_view Places[] = {"SheetIndex", "TableName", "TableNumber", "TableType"}; // which records
constexpr std::size_t PrefixSize = 2;               // of the name of an element

/// Calls `Take` with each of the sets that there are.
template <class TTake> void ForEachSet(const TPublishedProperties& Properties, TTake Take)
{
    for (const auto Name : Sets)
        if (const auto* const Property = FindProperty(Properties, Name); Property && Property->Kind == pkSet)
            Take(*Property);
}

std::string_view KeyOf(std::string_view Element)
{
    return Element.substr(PrefixSize);
}

constexpr std::int64_t BitOf(std::size_t Element)
{
    return std::int64_t{1} << Element;
}

void WriteSet(TIniFile& File, const TPublishedProperty& Set, const TPersistent& Component)
{
    const auto Bits = Set.Get(Component).Integer();
    for (std::size_t I = 0; I < Set.Names.size(); ++I) {
        const bool Contained = (Bits & BitOf(I)) != 0;
        if (Contained || File.HasKey(Section, KeyOf(Set.Names[I])))
            File.WriteBool(Section, KeyOf(Set.Names[I]), Contained);
    }
}

void ReadSet(const TIniFile& File, const TPublishedProperty& Set, TPersistent& Component)
{
    std::int64_t Bits = 0;
    for (std::size_t I = 0; I < Set.Names.size(); ++I)
        if (File.ReadBool(Section, KeyOf(Set.Names[I]), false))
            Bits |= BitOf(I);
    Set.Set(Component, Bits);
}

void WritePlace(TIniFile& File, const TPublishedProperty& Place, const TPersistent& Component)
{
    const auto Value = Place.Get(Component);
    const bool Usual = Value.Kind() == vkInteger ? Value.Integer() == 0 : Value.Text().empty();
    if (!Usual || File.HasKey(Section, Place.Name))
        File.WriteString(Section, Place.Name, Value.ToText());
}

void ReadPlace(const TIniFile& File, const TPublishedProperty& Place, TPersistent& Component)
{
    if (!File.HasKey(Section, Place.Name))
        return;
    if (Place.Kind == pkInteger)
        return Place.Set(Component, File.ReadInteger(Section, Place.Name, 0));
    try {
        SetPropValue(Component, Place.Name, File.ReadString(Section, Place.Name, {}));
    }
    catch (const EPropertyError& Error) {
        File.RefuseValue(Section, Place.Name, Error.Message);
    }
}

/// Calls `Take` with each of the properties in `Places` that there are.
template <class TTake> void ForEachPlace(const TPublishedProperties& Properties, TTake Take)
{
    for (const auto Name : Places)
        if (const auto* const Property = FindProperty(Properties, Name))
            Take(*Property);
}

bool IsKnown(std::string_view Key, const TPublishedProperties& Properties)
{
    const auto IsKey = [Key](std::string_view Element) { return SameText(KeyOf(Element), Key); };
    const auto IsPlace = [Key](std::string_view Name) { return SameText(Name, Key); };
    bool Known = std::ranges::any_of(Places, IsPlace) && FindProperty(Properties, Key);
    ForEachSet(Properties,
               [&](const TPublishedProperty& Set) { Known = Known || std::ranges::any_of(Set.Names, IsKey); });
    return Known;
}

void RefuseUnknown(const TIniFile& File, const TPublishedProperties& Properties, const TPersistent& Component)
{
    for (const auto& Key : File.KeysOf(Section)) {
        const auto Value = File.ReadString(Section, Key, {});
        if (!Value.empty() && Value != "0" && !IsKnown(Key, Properties))
            File.RefuseValue(Section, Key, FormatText("%s has no such setting", {Component.ClassName()}));
    }
}

} // namespace

void WriteOwnSettings(TIniFile& File, const TPersistent& Component)
{
    const auto Properties = Component.PublishedProperties();
    ForEachSet(Properties, [&](const TPublishedProperty& Set) { WriteSet(File, Set, Component); });
    ForEachPlace(Properties, [&](const TPublishedProperty& Place) { WritePlace(File, Place, Component); });
}

void ReadOwnSettings(const TIniFile& File, TPersistent& Component)
{
    if (!File.HasSection(Section))
        return;
    const auto Properties = Component.PublishedProperties();
    if (FindProperty(Properties, SourceSet))
        RefuseUnknown(File, Properties, Component);
    ForEachSet(Properties, [&](const TPublishedProperty& Set) { ReadSet(File, Set, Component); });
    ForEachPlace(Properties, [&](const TPublishedProperty& Place) { ReadPlace(File, Place, Component); });
}

} // namespace kv
