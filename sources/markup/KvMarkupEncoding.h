// KvMarkupEncoding - finds the encoding that a text of tags declares for itself.
#pragma once

#include <string_view>

namespace kv {

// Each answers a view of `Text` or a constant; empty when nothing is declared.

/// "UTF-16LE" or "UTF-16BE" when `Text` begins with a "<" of two bytes.
std::string_view FindWideEncoding(std::string_view Text);
/// The encoding in the XML declaration that `Text` begins with. None of 16 or 32 bits: the declaration
/// could not have been read then.
std::string_view FindXmlEncoding(std::string_view Text);
/// The encoding that the first META tag near the start names which does, outside of comments; the same.
std::string_view FindMetaCharset(std::string_view Text);

} // namespace kv
