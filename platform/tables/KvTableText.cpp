#include "KvTableText.h"

#include <algorithm>
#include <iterator>

#include "KvCodePage.h"
#include "KvException.h"

namespace kv {

namespace {

/// Pages that need two bytes for a character.
constexpr std::string_view WidePages[] = {"932", "936", "949", "950", "1361"};

constexpr unsigned FirstUpper = 0x80;

bool IsAscii(std::string_view Text)
{
    char Bits = 0;                                  // without a way out of the loop it is done in large steps
    for (const char Char : Text)
        Bits = static_cast<char>(Bits | Char);
    return static_cast<signed char>(Bits) >= 0;
}

/// A page that nobody knows fails for plain letters too.
bool IsKnown(const std::string& Page)
{
    try {
        return CodePageToUtf8("A", Page) == "A";
    }
    catch (const EConvertError&) {
        return false;
    }
}

/// What stands for a byte that a page leaves undefined: the control character of the same number, from A0 on
/// one of the private use characters U+F7A0 to U+F7FF.
std::string StandInFor(unsigned Byte)
{
    if (Byte < 0xA0)
        return {'\xC2', static_cast<char>(Byte)};
    return {'\xEF', static_cast<char>(Byte < 0xC0 ? 0x9E : 0x9F), static_cast<char>(0x80 | (Byte & 0x3F))};
}

std::string CharacterOf(unsigned Byte, const std::string& Page)
{
    const char Char = static_cast<char>(Byte);
    try {
        return CodePageToUtf8({&Char, 1}, Page);
    }
    catch (const EConvertError&) {
        return StandInFor(Byte);
    }
}

} // namespace

TKvTableText::TKvTableText(std::string_view Name) : Page(Name)
{
    if (!Page.empty() && std::ranges::find(WidePages, Name) == std::end(WidePages) && IsKnown(Page))
        FillCharacters();
}

void TKvTableText::FillCharacters()
{
    for (unsigned Byte = FirstUpper; Byte <= 0xFF; ++Byte)
        Characters.push_back(CharacterOf(Byte, Page));
}

std::string_view TKvTableText::Convert(std::string_view Stored)
{
    if (Page.empty() || IsAscii(Stored))
        return Stored;
    if (Characters.empty()) {
        Buffer = CodePageToUtf8(Stored, Page);
    } else {
        Buffer.clear();
        for (const char Char : Stored)
            if (const auto Byte = static_cast<unsigned char>(Char); Byte < FirstUpper)
                Buffer += Char;
            else
                Buffer += Characters[Byte - FirstUpper];
    }
    if (!AnsiIsUtf8())
        Buffer = Utf8ToAnsi(Buffer);
    return Buffer;
}

TVariant TKvTableText::Value(std::string_view Stored)
{
    const auto Text = Convert(Stored);
    return Text.data() == Stored.data() ? TVariant::Borrow(Stored) : TVariant(Text);
}

} // namespace kv
