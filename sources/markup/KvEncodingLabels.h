// KvEncodingLabels - the encodings that pages and packets name.
#pragma once

#include <string_view>

namespace kv {

/// The code page that a file means which calls its encoding `Label`: a constant, or the label itself where
/// only this system knows it. Empty when nobody does.
std::string_view EncodingOfLabel(std::string_view Label);

} // namespace kv
