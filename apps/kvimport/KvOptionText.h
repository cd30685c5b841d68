// KvOptionText - what the words of an option mean: a character, a range of rows, a list of names.
// Each function raises EUsageError for a text without a meaning; the option's name is added by the caller.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kv {

/// Resolves "\t", "\r", "\n", "\0", "\\" and "\x1F".
std::string Unescape(std::string_view Text);

/// A single character, escaped or plain, or one of the words: none, tab, comma, semicolon, space, quot, apos.
/// #0 for none.
char ReadCharacter(std::string_view Text);

/// crlf, cr, lf, or the characters themselves, escaped or plain; at least one.
std::string ReadRecordSeparator(std::string_view Text);

/// Names separated by "," or ";", without blanks around them; empty ones are left out.
std::vector<std::string> ReadNames(std::string_view Text);

/// "ID=1-9, CITY=10-29" as the mapping lines "ID=Text1-9" and "CITY=Text10-29".
std::vector<std::string> ReadFixedColumns(std::string_view Text);

/// A character in words: "tab", "comma", "'|'".
std::string NameOfCharacter(char Value);

/// What ReadRecordSeparator takes for it: "crlf", "\\x1E".
std::string NameOfRecordSeparator(std::string_view Value);

/// "A", "B" and "C" as "A, B, C".
std::string JoinNames(const std::vector<std::string>& Names, std::string_view Between = ", ");

} // namespace kv
