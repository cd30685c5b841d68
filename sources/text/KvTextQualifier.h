// KvTextQualifier - values between qualifiers as RFC 4180 writes them: a doubled qualifier inside
// stands for one, and delimiters and line ends are text. Lines and fields are cut by the same rule.
#pragma once

#include <cstddef>
#include <cstring>

namespace kv {

/// The first `Value` in [First, Last), or Last.
inline const char* FindChar(const char* First, const char* Last, char Value)
{
    if (First >= Last)
        return Last;
    const auto* const Found = std::memchr(First, Value, static_cast<std::size_t>(Last - First));
    return Found ? static_cast<const char*>(Found) : Last;
}

/// The qualifier that closes the value which the qualifier at `Open` opens, or Last when none does.
inline const char* FindClosingQualifier(const char* Open, const char* Last)
{
    const char Qualifier = *Open;
    for (const char* Pos = Open + 1;; Pos += 2) {
        Pos = FindChar(Pos, Last, Qualifier);
        if (Last - Pos < 2 || Pos[1] != Qualifier)
            return Pos;
    }
}

} // namespace kv
