// KvTerminalText - text as a terminal shows it: how wide it is, cut to fit, and without characters
// that would move the cursor or change colours. Text is UTF-8; a byte that is none counts as a character.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace kv {

/// Columns of the screen that `Text` takes: none for a combining mark, two for an East Asian character.
int DisplayWidth(std::string_view Text);

/// `Text` when it fits into `Width` columns, else its beginning and "…".
std::string FitToWidth(std::string_view Text, int Width);

/// `Text` and as many blanks as fill `Width` columns; the blanks come first when `AlignRight`.
std::string PadToWidth(std::string_view Text, int Width, bool AlignRight = false);

/// `Text` with every control character written out as "\n", "\t" or "\x1B" and every byte that is no
/// UTF-8 replaced by U+FFFD: what came from a file can then do nothing to the terminal.
std::string VisibleText(std::string_view Text);

/// "1234567" as "1,234,567".
std::string GroupDigits(std::int64_t Number);

} // namespace kv
