// KvCharacterReferences - characters that a text of tags writes by their name or number.
//
//   reference := "&" name ";"  |  "&#" decimal ";"  |  "&#x" hexadecimal ";"
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace kv {

/// Whose names and numbers count.
enum TKvReferences {
    crHtml,                                         ///< HTML 5; 128 to 159 are windows-1252.
    crXml                                           ///< The five of XML, and Unicode alone.
};

/// Appends to `Out`, in the process's code page, the characters of the reference that `Text` begins with.
/// Answers the length of the reference, or 0 when it is none: an unknown name, in XML a number that is no
/// character, a character that the code page lacks. Such text says what it means only as it stands.
///
/// HTML lets the semicolon go after the names that its second version had (amp, lt, gt, quot and the
/// characters up to 255), whatever follows them, and after numbers; one that is no character is U+FFFD.
std::size_t DecodeReference(std::string_view Text, TKvReferences Kind, std::string& Out);

} // namespace kv
