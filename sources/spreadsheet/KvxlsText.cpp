#include "KvxlsText.h"

#include <algorithm>

#include "KvCodePageCatalog.h"
#include "KvException.h"
#include "KvUtf16.h"

namespace kv {

namespace {

struct TNumberedPage
{
    std::uint16_t Number;
    std::string_view Name;
};

/// Pages whose number is no name of theirs.
constexpr TNumberedPage NamedPages[] = {{367, "ASCII"},
                                        {10000, "MACINTOSH"},
                                        {10007, "MAC-CYRILLIC"},
                                        {10017, "MAC-UK"},
                                        {10029, "MAC-CENTRALEUROPE"},
                                        {10079, "MAC-IS"},
                                        {32768, "MACINTOSH"},       // Excel 2 and 3
                                        {32769, "windows-1252"}};   // the same

/// The pages that are named by their number.
constexpr std::uint16_t NumberedPages[] = {437,  737,  775,  850,  852,  855,  857,  858,  860,  861,  862,
                                           863,  864,  865,  866,  869,  874,  932,  936,  949,  950,  1250,
                                           1251, 1252, 1253, 1254, 1255, 1256, 1257, 1258, 1361};

} // namespace

void AppendWide(std::string_view Bytes, std::string& Text)
{
    if (AnsiIsUtf8()) {
        AppendUtf16AsUtf8(Bytes, Text);
        return;
    }
    std::string Utf8;
    AppendUtf16AsUtf8(Bytes, Utf8);
    Text.append(Utf8ToAnsi(Utf8));
}

std::string CodePageName(std::uint16_t Number)
{
    const auto Named = std::ranges::find(NamedPages, Number, &TNumberedPage::Number);
    if (Named != std::end(NamedPages))
        return std::string(Named->Name);
    return std::ranges::binary_search(NumberedPages, Number) ? std::to_string(Number) : std::string();
}

void TKvxlsByteText::SetCodePage(std::uint16_t Number)
{
    const auto Name = CodePageName(Number);
    if (Name.empty())
        return;
    try {
        Page = &CodePageNamed(Name);
    }
    catch (const EConvertError&) {                  // one that iconv lacks
        Page = nullptr;
    }
}

std::string_view TKvxlsByteText::Convert(std::string_view Bytes)
{
    if (!Page || IsAscii(Bytes))
        return Bytes;
    Buffer.clear();
    if (!Page->Decode(Bytes, ubRefuse, Buffer))
        return Bytes;
    if (AnsiIsUtf8())
        return Buffer;
    try {
        Buffer = Utf8ToAnsi(Buffer);
        return Buffer;
    }
    catch (const EConvertError&) {                  // a character that the process's page lacks
        return Bytes;
    }
}

} // namespace kv
