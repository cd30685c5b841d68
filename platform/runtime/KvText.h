// KvText - small questions about 8-bit text: blanks, ASCII case, digits of hexadecimal text.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace kv {

/// Without the characters up to 32 at both ends.
inline std::string_view Trim(std::string_view Text)
{
    const auto IsBlank = [](char Char) { return static_cast<unsigned char>(Char) <= ' '; };
    while (!Text.empty() && IsBlank(Text.front()))
        Text.remove_prefix(1);
    while (!Text.empty() && IsBlank(Text.back()))
        Text.remove_suffix(1);
    return Text;
}
/// Nothing but characters up to 32.
inline bool IsBlank(std::string_view Text)
{
    for (const char Char : Text)
        if (static_cast<unsigned char>(Char) > ' ')
            return false;
    return true;
}
/// ASCII letters only, and the same bytes otherwise: text of any code page keeps its other letters.
std::string UpperCase(std::string_view Text);
bool SameText(std::string_view A, std::string_view B);  ///< Equal but for the case of ASCII letters.

/// The pieces of `Text` between `Separator`s, as they stand, without empty ones.
std::vector<std::string> SplitNames(std::string_view Text, char Separator);

/// Each byte as two upper-case hexadecimal digits.
std::string TextToHex(std::string_view Text);
/// The reverse; an odd last digit is ignored.
/// Raises EConvertError "'$%s' is not a valid integer value" for a pair that is not hexadecimal.
std::string HexToText(std::string_view Hex);

/// Text of a message with its "%s" and "%d" replaced in order by `Arguments`. What an argument holds
/// is not looked at again; a place without an argument stays as it is.
std::string FormatText(std::string_view Pattern, std::initializer_list<std::string_view> Arguments);

} // namespace kv
