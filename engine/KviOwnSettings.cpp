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
#include "KviExtensions.h"

namespace kv {

namespace {

constexpr std::string_view Section = "Extensions";
constexpr std::string_view SourceSet = "Extensions";
constexpr std::string_view Sets[] = {SourceSet, "RunExtensions"};

/// Calls `Take` with each of the sets that there are.
template <class TTake> void ForEachSet(const TPublishedProperties& Properties, TTake Take)
{
    for (const auto Name : Sets)
        if (const auto* const Property = FindProperty(Properties, Name); Property && Property->Kind == pkSet)
            Take(*Property);
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
        if (Contained || File.HasKey(Section, ElementKey(Set.Names[I])))
            File.WriteBool(Section, ElementKey(Set.Names[I]), Contained);
    }
}

void ReadSet(const TIniFile& File, const TPublishedProperty& Set, TPersistent& Component)
{
    std::int64_t Bits = 0;
    for (std::size_t I = 0; I < Set.Names.size(); ++I)
        if (File.ReadBool(Section, ElementKey(Set.Names[I]), false))
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

bool IsKnown(std::string_view Key, const TPublishedProperties& Properties)
{
    const auto IsKey = [Key](std::string_view Element) { return SameText(ElementKey(Element), Key); };
    const auto IsPlace = [Key](const TPublishedProperty& Each) {
        return Each.Place && SameText(Each.Name, Key);
    };
    bool Known = std::ranges::any_of(Properties, IsPlace);
    ForEachSet(Properties, [&](const TPublishedProperty& Set) {
        Known = Known || std::ranges::any_of(Set.Names, IsKey);
    });
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
    for (const auto& Property : Properties)
        if (Property.Place)
            WritePlace(File, Property, Component);
}

void ReadOwnSettings(const TIniFile& File, TPersistent& Component)
{
    if (!File.HasSection(Section))
        return;
    const auto Properties = Component.PublishedProperties();
    if (FindProperty(Properties, SourceSet))
        RefuseUnknown(File, Properties, Component);
    ForEachSet(Properties, [&](const TPublishedProperty& Set) { ReadSet(File, Set, Component); });
    for (const auto& Property : Properties)
        if (Property.Place)
            ReadPlace(File, Property, Component);
}

void EraseOwnSettings(TIniFile& File)
{
    File.EraseSection(Section);
}

} // namespace kv
