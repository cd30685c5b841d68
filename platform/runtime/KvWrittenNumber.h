// KvWrittenNumber - numbers as people write them, in the form in which programs read them.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kv {

/// `Text` as a sign, digits, the separator `Decimal` and digits, and maybe an exponent. A minus, also the
/// character U+2212, may come before the number or after it. `Thousand`, a no-break blank (U+00A0), a narrow
/// one (U+202F) or a thin one (U+2009) may stand in the integer where it groups digits: by three, before the
/// last three also by two, and the first group begins with no 0; one of these in one number. The result
/// views `Text` or `Storage`; nothing when the text is otherwise, so that "1,5" is never 15, nor "0,500" 500.
std::optional<std::string_view> TryPlainNumber(std::string_view Text, char Thousand, char Decimal,
                                               std::string& Storage);

} // namespace kv
