#include "KvxlsText.h"

#include <algorithm>
#include <utility>

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

constexpr std::uint16_t Utf16Number = 1200;

/// False when a character had to become "?".
bool AppendAsAnsi(std::string_view Utf8, std::string& Text)
{
    const auto& Page = CodePageNamed(AnsiCodePage());
    std::string Encoded;
    if (Page.Encode(Utf8, Encoded)) {
        Text += Encoded;
        return true;
    }
    while (!Utf8.empty()) {
        const auto Size = std::max<std::size_t>(Utf8SequenceSize(Utf8), 1);
        Encoded.clear();
        if (Page.Encode(Utf8.substr(0, Size), Encoded))
            Text += Encoded;
        else
            Text += '?';
        Utf8.remove_prefix(Size);
    }
    return false;
}

/// Controls and all beyond ASCII, which one byte of two of UTF-16 is where a text is not ASCII throughout.
bool IsNoAsciiText(char Char)
{
    const auto Byte = static_cast<unsigned char>(Char);
    return Byte > 0x7E || (Byte < ' ' && Char != '\t' && Char != '\n' && Char != '\r');
}

} // namespace

bool AppendWide(std::string_view Bytes, std::string& Text)
{
    if (AnsiIsUtf8()) {
        AppendUtf16AsUtf8(Bytes, Text);
        return true;
    }
    std::string Utf8;
    AppendUtf16AsUtf8(Bytes, Utf8);
    return AppendAsAnsi(Utf8, Text);
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
    IsUtf16 = Number == Utf16Number;
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
    Replaced = false;
    if (IsUtf16 && Bytes.size() % 2 == 0 && std::ranges::any_of(Bytes, IsNoAsciiText)) {
        Buffer.clear();
        Replaced = !AppendWide(Bytes, Buffer);
        return Buffer;
    }
    if (!Page || IsAscii(Bytes))
        return Bytes;
    Buffer.clear();
    if (!Page->Decode(Bytes, ubRefuse, Buffer))
        return Bytes;
    if (AnsiIsUtf8())
        return Buffer;
    std::string Text;
    Replaced = !AppendAsAnsi(Buffer, Text);
    Buffer = std::move(Text);
    return Buffer;
}

} // namespace kv
