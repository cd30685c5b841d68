// KvxlsText - the text of workbooks as process text.
//
// Excel 8 stores UTF-16, and where all high bytes of a text are zero it leaves them out ("compressed").
// Before that text was 8-bit, in the code page that the record CODEPAGE names.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "KvCodePage.h"
#include "KvUtf8.h"

namespace kv {

class TCodePage;

/// Appends UTF-16, low byte first. Nothing is lost as long as the process's page is UTF-8; else a character
/// that its page lacks becomes "?", and the answer is false.
bool AppendWide(std::string_view Bytes, std::string& Text);

/// Appends compressed UTF-16. Where the process's page is not UTF-8 the bytes pass as its text.
inline void AppendCompressed(std::string_view Bytes, std::string& Text)
{
    if (AnsiIsUtf8())
        AppendLatin1AsUtf8(Bytes, Text);
    else
        Text.append(Bytes);
}

/// The name of the code page with that number in a record CODEPAGE; none for one that is unknown.
std::string CodePageName(std::uint16_t Number);

/// 8-bit text of one workbook.
class TKvxlsByteText
{
public:
    /// From here on text is converted from this page. A number that is unknown changes nothing. 1200, UTF-16,
    /// is none of the old files', but some writers put what is not ASCII into them so.
    void SetCodePage(std::uint16_t Number);

    /// `Bytes` as process text: themselves when no page is set or they are no text of it, else a view of a
    /// buffer that holds until the next call.
    std::string_view Convert(std::string_view Bytes);
    /// The process's page lacks characters of the text last converted, which became "?".
    bool HasReplaced() const { return Replaced; }

private:
    const TCodePage* Page = nullptr;                // none: bytes stay as they are
    bool IsUtf16 = false;
    bool Replaced = false;
    std::string Buffer;
};

} // namespace kv
