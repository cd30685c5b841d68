// Taking over the settings of another component, whatever its class.
#include "Kvibase.h"

#include <algorithm>
#include <cstdint>

#include "KviExtensions.h"

namespace kv {

namespace {

/// One of the objects that a setting is taken from or given to, and the property there.
template <class TObject> struct TSetting
{
    const TPublishedProperty& Property;
    TObject& Object;
};
using TGiven = TSetting<const TPersistent>;
using TTaken = TSetting<TPersistent>;

/// Elements that only the taker has stay as they are.
void TakeSet(const TTaken& To, const TGiven& From)
{
    const auto Given = From.Property.Get(From.Object).Integer();
    auto Bits = To.Property.Get(To.Object).Integer();
    for (std::size_t I = 0; I < To.Property.Names.size(); ++I) {
        const auto Same =
            std::ranges::find(From.Property.Names, ElementKey(To.Property.Names[I]), ElementKey);
        if (Same == From.Property.Names.end())
            continue;
        const auto Bit = std::int64_t{1} << I;
        const bool Contained = (Given >> (Same - From.Property.Names.begin()) & 1) != 0;
        Bits = Contained ? Bits | Bit : Bits & ~Bit;
    }
    To.Property.Set(To.Object, Bits);
}

void TakeElement(const TTaken& To, const TGiven& From)
{
    const auto Given = static_cast<std::size_t>(From.Property.Get(From.Object).Integer());
    if (Given >= From.Property.Names.size())
        return;
    const auto Same = std::ranges::find(To.Property.Names, From.Property.Names[Given]);
    if (Same != To.Property.Names.end())
        To.Property.Set(To.Object, static_cast<std::int64_t>(Same - To.Property.Names.begin()));
}

void TakeObject(const TTaken& To, const TGiven& From)
{
    auto* const Given = From.Property.GetObject(From.Object);
    auto* const Own = To.Property.GetObject(To.Object);
    if (To.Property.SetObject)
        To.Property.SetObject(To.Object, Given);
    else if (Own && Given)
        Own->Assign(*Given);
}

void TakeSetting(const TTaken& To, const TGiven& From)
{
    if (To.Property.Kind == pkObject)
        TakeObject(To, From);
    else if (!To.Property.Set)
        return;
    else if (To.Property.Kind == pkSet)
        TakeSet(To, From);
    else if (To.Property.Kind == pkEnumeration)
        TakeElement(To, From);
    else
        To.Property.Set(To.Object, From.Property.Get(From.Object));
}

} // namespace

/// Last to first: a choice such as FieldDelimiter is declared before its characters, and settles both.
void TKvImportBaseComponent::TakeSettings(const TKvImportBaseComponent& Source)
{
    const auto Given = Source.PublishedProperties();
    const auto Published = PublishedProperties();
    for (auto Next = Published.rbegin(); Next != Published.rend(); ++Next) {
        const auto& Own = *Next;
        const auto* const Same = FindProperty(Given, Own.Name);
        const bool IsFigures = Own.GetObject && Own.GetObject(*this) == &Statistic;
        if (Same && Same->Kind == Own.Kind && !IsFigures)
            TakeSetting({Own, *this}, {*Same, Source});
    }
}

} // namespace kv
