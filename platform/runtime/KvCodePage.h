// KvCodePage - the process's code pages and the conversions between them. Names are those that
// iconv knows ("UTF-8", "windows-1252", "437"); a bare number means the IBM or Windows page.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace kv {

/// The page of all 8-bit text in the process. "UTF-8" at start.
const std::string& AnsiCodePage();
/// The page of MS-DOS text. "437" at start.
const std::string& OemCodePage();
/// The page of 8-bit text that is not valid UTF-8 although the process's page is UTF-8.
/// "windows-1252" at start.
const std::string& LegacyCodePage();
// Each raises EConvertError "Unknown code page '%s'".
void SetAnsiCodePage(std::string_view Name);
void SetOemCodePage(std::string_view Name);
void SetLegacyCodePage(std::string_view Name);

/// Text of the OEM page as text of the ANSI page.
/// Raises EConvertError when a character does not exist there; nothing is replaced in silence.
std::string OemToAnsi(std::string_view Text);

/// UTF-16 (low byte first) as text of the ANSI page. Same error; an unpaired surrogate is one too.
std::string Utf16ToAnsi(std::u16string_view Text);

/// True when the process's page is UTF-8, which has every character.
bool AnsiIsUtf8();

/// Process text as UTF-8, for a destination that stores Unicode: from the ANSI page, or, when that is
/// UTF-8 and `Text` is not, from the legacy page. `Text` itself when there is nothing to convert, else
/// a view of `Buffer`, whose storage is used again from call to call. Bytes 80 to 9F that the page
/// leaves undefined become the control character of the same number, those from A0 on the private use
/// characters U+F7A0 to U+F7FF.
std::string_view AnsiToUtf8(std::string_view Text, std::string& Buffer);

/// How many texts of the process were taken for the legacy page so far: what is read between two questions
/// held such text when the answers differ.
std::int64_t LegacyTextCount();

/// UTF-8 as process text. Raises EConvertError when a character does not exist in the ANSI page.
std::string Utf8ToAnsi(std::string_view Text);

/// `Text` from the named page to UTF-8. Raises EConvertError for an unknown page or bytes that are no
/// text of it.
std::string CodePageToUtf8(std::string_view Text, std::string_view CodePage);

} // namespace kv
