// KviExtensions - the rules of today that a component publishes in sets: what their elements are called, and
// how to have them all.
#pragma once

#include <string_view>

namespace kv {

class TKvImportBaseComponent;

/// Turns on every element of the set properties of `Component` whose names end in "Extensions".
void TurnOnExtensions(TKvImportBaseComponent& Component);

/// The name of an element without its prefix, as specifications have it: "LongLines" for xtLongLines.
inline std::string_view ElementKey(std::string_view Element)
{
    constexpr std::size_t PrefixSize = 2;
    return Element.substr(PrefixSize);
}

} // namespace kv
