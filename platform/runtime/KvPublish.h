// KvPublish - rows of a published-property table, made from a member or a getter and setter pair.
#pragma once

#include <concepts>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

#include "KvComponent.h"
#include "KvSet.h"
#include "KvStringList.h"

namespace kv {

/// How a C++ type reads as a variant of its kind and back.
template <class T> struct TPropertyType;

template <> struct TPropertyType<int>
{
    static constexpr TPropertyKind Kind = pkInteger;
    static TVariant ToVariant(int Value) { return Value; }
    static int FromVariant(const TVariant& Value) { return static_cast<int>(Value.Integer()); }
};

template <> struct TPropertyType<bool>
{
    static constexpr TPropertyKind Kind = pkBoolean;
    static TVariant ToVariant(bool Value) { return Value; }
    static bool FromVariant(const TVariant& Value) { return Value.Boolean(); }
};

template <> struct TPropertyType<char>
{
    static constexpr TPropertyKind Kind = pkChar;
    static TVariant ToVariant(char Value) { return std::string_view(&Value, 1); }
    static char FromVariant(const TVariant& Value) { return Value.Text().front(); }
};

template <> struct TPropertyType<std::string>
{
    static constexpr TPropertyKind Kind = pkString;
    static TVariant ToVariant(const std::string& Value) { return Value; }
    static std::string FromVariant(const TVariant& Value) { return std::string(Value.Text()); }
};

template <class TEnum>
    requires std::is_enum_v<TEnum>
struct TPropertyType<TEnum>
{
    static constexpr TPropertyKind Kind = pkEnumeration;
    static TVariant ToVariant(TEnum Value) { return static_cast<int>(Value); }
    static TEnum FromVariant(const TVariant& Value) { return static_cast<TEnum>(Value.Integer()); }
};

template <class TEnum> struct TPropertyType<TSet<TEnum>>
{
    static constexpr TPropertyKind Kind = pkSet;
    static TVariant ToVariant(TSet<TEnum> Value) { return Value.Bits(); }
    static TSet<TEnum> FromVariant(const TVariant& Value)
    {
        return TSet<TEnum>::FromBits(static_cast<std::uint32_t>(Value.Integer()));
    }
};

/// A property that is a plain member. Enumerations and sets name their values in `Names`.
template <std::derived_from<TPersistent> TClass, class T>
TPublishedProperty Publish(std::string_view Name, T TClass::*Member,
                           std::span<const std::string_view> Names = {})
{
    using TType = TPropertyType<T>;
    return {.Name = Name,
            .Kind = TType::Kind,
            .Get = [Member](const TPersistent& Object) {
                return TType::ToVariant(dynamic_cast<const TClass&>(Object).*Member);
            },
            .Set = [Member](TPersistent& Object, const TVariant& Value) {
                dynamic_cast<TClass&>(Object).*Member = TType::FromVariant(Value);
            },
            .Names = Names};
}

/// A property with functions `TValue Getter(const TClass&)` and `void Setter(TClass&, TValue)`.
template <std::derived_from<TPersistent> TClass, class TGetter, class TSetter>
TPublishedProperty Publish(std::string_view Name, TGetter Getter, TSetter Setter,
                           std::span<const std::string_view> Names = {})
{
    using TType = TPropertyType<std::remove_cvref_t<std::invoke_result_t<TGetter, const TClass&>>>;
    return {.Name = Name,
            .Kind = TType::Kind,
            .Get = [Getter](const TPersistent& Object) {
                return TType::ToVariant(std::invoke(Getter, dynamic_cast<const TClass&>(Object)));
            },
            .Set = [Setter](TPersistent& Object, const TVariant& Value) {
                std::invoke(Setter, dynamic_cast<TClass&>(Object), TType::FromVariant(Value));
            },
            .Names = Names};
}

/// A property that refers to an object: `TPersistent* Getter(const TClass&)`.
template <std::derived_from<TPersistent> TClass, class TGetter>
TPublishedProperty PublishObject(std::string_view Name, TGetter Getter)
{
    TPublishedProperty Property;
    Property.Name = Name;
    Property.Kind = pkObject;
    Property.GetObject = [Getter](const TPersistent& Object) -> TPersistent* {
        return std::invoke(Getter, dynamic_cast<const TClass&>(Object));
    };
    return Property;
}

/// A property that refers to an object of others, by a getter and a setter.
template <std::derived_from<TPersistent> TClass, std::derived_from<TPersistent> TObject>
TPublishedProperty PublishReference(std::string_view Name, TObject* (TClass::*Getter)() const,
                                    void (TClass::*Setter)(TObject*))
{
    auto Property = PublishObject<TClass>(Name, Getter);
    Property.SetObject = [Setter](TPersistent& Object, TPersistent* Value) {
        (dynamic_cast<TClass&>(Object).*Setter)(dynamic_cast<TObject*>(Value));
    };
    return Property;
}

/// A string list that reads and is set as its whole text.
template <std::derived_from<TPersistent> TClass>
TPublishedProperty PublishStrings(std::string_view Name, TStrings TClass::*Member)
{
    TPublishedProperty Property;
    Property.Name = Name;
    Property.Kind = pkStrings;
    Property.Get = [Member](const TPersistent& Object) {
        return TVariant((dynamic_cast<const TClass&>(Object).*Member).Text());
    };
    Property.Set = [Member](TPersistent& Object, const TVariant& Value) {
        (dynamic_cast<TClass&>(Object).*Member).SetText(Value.Text());
    };
    return Property;
}

inline TPublishedProperty PublishEvent(std::string_view Name)
{
    TPublishedProperty Property;
    Property.Name = Name;
    Property.Kind = pkEvent;
    return Property;
}

/// The properties of the base class, then those that a class adds.
inline TPublishedProperties PublishAfter(TPublishedProperties Inherited,
                                         std::initializer_list<TPublishedProperty> Own)
{
    Inherited.insert(Inherited.end(), Own.begin(), Own.end());
    return Inherited;
}

/// The same property, left out when the object is saved.
inline TPublishedProperty NotStored(TPublishedProperty Property)
{
    Property.Stored = false;
    return Property;
}

/// The same property, as one that says which part of a file is meant.
inline TPublishedProperty AsPlace(TPublishedProperty Property)
{
    Property.Place = true;
    return Property;
}

} // namespace kv
