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

/// `Text` with every character written out, as "\n", "\t", "\x1B" or "\u202E", that moves the cursor, turns
/// the direction of what follows or cannot be seen, and with every byte that is no UTF-8 replaced by U+FFFD:
/// what came from a file can then do nothing to the terminal, and hides nothing.
std::string VisibleText(std::string_view Text);

/// JSON with the same characters of its strings written as its own escapes. It is valid UTF-8, and has the
/// control characters below U+0020 escaped already.
std::string VisibleJson(std::string_view Json);

/// `Text` when it is short, else the beginning of VisibleText(Text) and "…": what a message holds of a text
/// that may be of any size.
std::string BriefText(const std::string& Text);

/// "1234567" as "1,234,567".
std::string GroupDigits(std::int64_t Number);

} // namespace kv
