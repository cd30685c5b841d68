// KvHtmlReferences - the characters that HTML has names for.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace kv {

struct TKvHtmlReference
{
    static constexpr std::size_t MaxLegacyName = 6; ///< Characters of a name that needs no semicolon.

    std::uint32_t Codes[2] = {};
    std::size_t Count = 0;                          ///< Of the codes: one or two characters.
    bool NeedsSemicolon = true;                     ///< False for names that HTML 2 had.
};

/// The characters that "&", `Name` and ";" stand for, or none.
const TKvHtmlReference* FindHtmlReference(std::string_view Name);

} // namespace kv
