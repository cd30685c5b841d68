// KvMdbText - text as Access stores it.
//
//   Jet 3            one or two bytes a character, in the code page of the database
//   Jet 4 and later  UTF-16, low byte first; or "compressed": FF FE, then bytes of Latin-1, in which a zero
//                    byte switches to pairs of UTF-16 and a zero byte in the place of a pair's first one back
#pragma once

#include <string>
#include <string_view>

namespace kv {

/// `Bytes` of Jet 4 text as UTF-8, in `Storage`. Raises EFormatError for half a character.
std::string_view ReadUnicodeText(std::string_view Bytes, std::string& Storage);

} // namespace kv
