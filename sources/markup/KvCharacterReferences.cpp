#include "KvCharacterReferences.h"

#include <algorithm>
#include <cstdint>
#include <iterator>

#include "KvCodePage.h"
#include "KvException.h"
#include "KvHtmlReferences.h"
#include "KvUtf8.h"

namespace kv {

namespace {

constexpr std::uint32_t CodeMax = 0x10FFFF;
constexpr std::uint32_t Replacement = 0xFFFD;

struct TXmlName
{
    std::string_view Name;
    std::uint32_t Code;
};
constexpr TXmlName XmlNames[] = {{"amp", '&'}, {"apos", '\''}, {"gt", '>'}, {"lt", '<'}, {"quot", '"'}};

/// What the numbers 128 to 159 have meant in pages since windows-1252 was the usual encoding; 0 where it
/// has no character.
constexpr std::uint32_t Windows1252[] = {
    0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0,      0x017D, 0,      0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};
constexpr std::uint32_t Windows1252First = 128;

bool IsLetterOrDigit(char Char)
{
    return (Char >= 'a' && Char <= 'z') || (Char >= 'A' && Char <= 'Z') || (Char >= '0' && Char <= '9');
}

/// The value of a digit in either case; 16 for what is none.
unsigned DigitOf(char Char)
{
    if (Char >= '0' && Char <= '9')
        return static_cast<unsigned>(Char - '0');
    const char Letter = static_cast<char>(Char | 0x20);
    return Letter >= 'a' && Letter <= 'f' ? static_cast<unsigned>(Letter - 'a') + 10 : 16;
}

/// A reference as it was understood: its characters, and its length in bytes, 0 when it is none.
struct TReference
{
    std::uint32_t Codes[2] = {};
    std::size_t Count = 0;
    std::size_t Size = 0;
};

TReference OneCharacter(std::uint32_t Code, std::size_t Size)
{
    TReference Result;
    Result.Codes[0] = Code;
    Result.Count = 1;
    Result.Size = Size;
    return Result;
}

TReference Named(const TKvHtmlReference& Found, std::size_t Size)
{
    TReference Result;
    std::ranges::copy(Found.Codes, Result.Codes);
    Result.Count = Found.Count;
    Result.Size = Size;
    return Result;
}

TReference ReadXmlName(std::string_view Name, std::size_t Size)
{
    const auto Found = std::ranges::find(XmlNames, Name, &TXmlName::Name);
    return Found != std::end(XmlNames) ? OneCharacter(Found->Code, Size) : TReference();
}

/// Of a name that is none itself the beginning may be one that needs no semicolon.
TReference ReadHtmlName(std::string_view Name, bool HasSemicolon)
{
    if (HasSemicolon)
        if (const auto* const Found = FindHtmlReference(Name))
            return Named(*Found, Name.size() + 2);
    for (auto Size = std::min(Name.size(), TKvHtmlReference::MaxLegacyName); Size > 1; --Size)
        if (const auto* const Found = FindHtmlReference(Name.substr(0, Size));
            Found && !Found->NeedsSemicolon)
            return Named(*Found, Size + 1);
    return {};
}

TReference ReadName(std::string_view Text, TKvReferences Kind)
{
    std::size_t Last = 1;
    while (Last < Text.size() && IsLetterOrDigit(Text[Last]))
        ++Last;
    const auto Name = Text.substr(1, Last - 1);
    const bool HasSemicolon = Last < Text.size() && Text[Last] == ';';
    if (Kind == crHtml)
        return ReadHtmlName(Name, HasSemicolon);
    return HasSemicolon ? ReadXmlName(Name, Last + 1) : TReference();
}

bool IsCharacter(std::uint32_t Code)
{
    return Code != 0 && Code <= CodeMax && !(Code >= 0xD800 && Code <= 0xDFFF);
}

/// What HTML makes of a number: every one is a character.
std::uint32_t HtmlCharacter(std::uint32_t Code)
{
    // A number below the first wraps far past the last.
    if (const auto Index = Code - Windows1252First; Index < std::size(Windows1252) && Windows1252[Index] != 0)
        return Windows1252[Index];
    return IsCharacter(Code) ? Code : Replacement;
}

TReference ReadNumber(std::string_view Text, TKvReferences Kind)
{
    const bool IsHex = Text.size() > 2 && (Text[2] == 'x' || (Kind == crHtml && Text[2] == 'X'));
    const unsigned Base = IsHex ? 16 : 10;
    const std::size_t First = IsHex ? 3 : 2;
    std::uint32_t Code = 0;
    std::size_t Last = First;
    for (; Last < Text.size() && DigitOf(Text[Last]) < Base; ++Last)
        Code = std::min(Code * Base + DigitOf(Text[Last]), CodeMax + 1);
    const bool HasSemicolon = Last < Text.size() && Text[Last] == ';';
    if (Last == First || (Kind == crXml && (!HasSemicolon || !IsCharacter(Code))))
        return {};
    return OneCharacter(Kind == crHtml ? HtmlCharacter(Code) : Code, Last + (HasSemicolon ? 1 : 0));
}

/// False when the process's code page has no such character.
bool AppendCharacters(const TReference& Reference, std::string& Out)
{
    std::string Utf8;
    for (std::size_t I = 0; I < Reference.Count; ++I)
        AppendUtf8(Utf8, Reference.Codes[I]);
    try {
        Out += AnsiIsUtf8() ? Utf8 : Utf8ToAnsi(Utf8);
        return true;
    }
    catch (const EConvertError&) {
        return false;
    }
}

} // namespace

std::size_t DecodeReference(std::string_view Text, TKvReferences Kind, std::string& Out)
{
    if (Text.size() < 3 || Text[0] != '&')
        return 0;
    const auto Reference = Text[1] == '#' ? ReadNumber(Text, Kind) : ReadName(Text, Kind);
    return Reference.Size > 0 && AppendCharacters(Reference, Out) ? Reference.Size : 0;
}

} // namespace kv
