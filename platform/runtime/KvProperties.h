// KvProperties - the published properties of an object: name, type, reading and writing by name.
// The engine asks a dataset for "IndexFieldName", a designer shows what a component publishes, the
// command line sets it.
#pragma once

#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "KvVariant.h"

namespace kv {

class TPersistent;

/// How a property's value reads as a variant.
enum TPropertyKind {
    pkInteger,                                      ///< vkInteger of 32 bits
    pkBoolean,                                      ///< vkBoolean
    pkChar,                                         ///< vkString of one character
    pkString,                                       ///< vkString
    pkEnumeration,                                  ///< vkInteger, the ordinal; names in Names
    pkSet,                                          ///< vkInteger, bit n for the element n of Names
    pkStrings,                                      ///< vkString, the whole text of a string list
    pkObject,                                       ///< A reference: see GetObject
    pkEvent                                         ///< Named for completeness; no value
};

/// One published property of a class.
struct TPublishedProperty
{
    std::string_view Name;                          ///< As declared; compared without regard to case.
    TPropertyKind Kind = pkString;
    std::function<TVariant(const TPersistent&)> Get = {}; ///< Empty for pkObject and pkEvent.
    /// Empty when the property is read-only. Takes a value of just this kind: SetPropValue makes it one.
    std::function<void(TPersistent&, const TVariant&)> Set = {};
    /// The object of pkObject, may give none.
    std::function<TPersistent*(const TPersistent&)> GetObject = {};
    /// Refers to another object, or to none. Empty where the object is a part of its owner.
    std::function<void(TPersistent&, TPersistent*)> SetObject = {};
    std::span<const std::string_view> Names = {};   ///< Element names of pkEnumeration and pkSet, in order.
    bool Stored = true;                             ///< False for values that are not saved with the object.
    /// It says which part of a file is meant, a sheet or a table, or how that is read. What was saved before
    /// there was such a property means 0 or an empty text.
    bool Place = false;
    TVariant Default = {};                          ///< What a new object has, see WithDefaults; else empty.
};

using TPublishedProperties = std::vector<TPublishedProperty>;

/// The property `Name` of `Object`, or none.
const TPublishedProperty* FindProperty(const TPublishedProperties& Properties, std::string_view Name);

/// The properties of `Fresh`, an object as it was made, with their values as defaults.
TPublishedProperties WithDefaults(const TPersistent& Fresh);
/// True when `Object` has another value than the default. False where there is no default.
bool IsChanged(const TPublishedProperty& Property, const TPersistent& Object);
/// Gives `Object` the default, where there is one and the property can be set.
void ResetToDefault(const TPublishedProperty& Property, TPersistent& Object);

/// The value of the property `Name`. Raises EPropertyError when `Object` has none of that name.
TVariant GetPropValue(const TPersistent& Object, std::string_view Name);

/// Sets the property `Name` from a value of its kind or a text that reads as one; an enumeration also takes
/// the name of an element.
/// Raises EPropertyError when there is no such property, it is read-only or the value does not suit it.
void SetPropValue(TPersistent& Object, std::string_view Name, const TVariant& Value);

} // namespace kv
