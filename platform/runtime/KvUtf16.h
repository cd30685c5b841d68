// KvUtf16 - UTF-16 as UTF-8.
#pragma once

#include <string>
#include <string_view>

namespace kv {

/// Raises EConvertError for an unpaired surrogate.
std::string Utf16ToUtf8(std::u16string_view Text);

/// Appends UTF-16 as it stands in a file, low byte first; an odd last byte is left out. For documents, which
/// must not fail for one damaged character: an unpaired surrogate is none, it becomes the private use
/// character U+10D800 to U+10DFFF of the same ending.
void AppendUtf16AsUtf8(std::string_view Bytes, std::string& Utf8);

} // namespace kv
