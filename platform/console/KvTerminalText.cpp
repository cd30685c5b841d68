#include "KvTerminalText.h"

#include <algorithm>
#include <cstddef>
#include <clocale>
#include <cwchar>
#include <locale.h>

namespace kv {

namespace {

constexpr char32_t Replacement = 0xFFFD;
constexpr std::string_view ReplacementUtf8 = "\xEF\xBF\xBD";
constexpr std::string_view Ellipsis = "…";

/// The C library knows the width of characters, but only of those of the locale in force.
class TUtf8Locale
{
public:
    TUtf8Locale() : Saved(Utf8() ? uselocale(Utf8()) : locale_t{}) {}
    TUtf8Locale(const TUtf8Locale&) = delete;
    TUtf8Locale& operator=(const TUtf8Locale&) = delete;
    ~TUtf8Locale()
    {
        if (Saved)
            uselocale(Saved);
    }

private:
    static locale_t Utf8()
    {
        static const locale_t Made = newlocale(LC_CTYPE_MASK, "C.UTF-8", locale_t{});
        return Made;
    }

    const locale_t Saved;
};

struct TCharacter
{
    char32_t Code = Replacement;
    std::size_t Size = 1;                           ///< Bytes.
    bool Valid = false;
};

/// Bytes that a character beginning with `Lead` has, 0 when none begins with it.
std::size_t SizeOfCharacter(unsigned char Lead)
{
    if (Lead < 0x80)
        return 1;
    if (Lead < 0xC2)                                // continues a character, or begins an overlong one
        return 0;
    return Lead < 0xE0 ? 2 : Lead < 0xF0 ? 3 : Lead < 0xF5 ? 4 : 0;
}

/// The first character of `Text`, which is not empty.
TCharacter FirstCharacter(std::string_view Text)
{
    const auto Lead = static_cast<unsigned char>(Text.front());
    const auto Size = SizeOfCharacter(Lead);
    if (Size == 0 || Size > Text.size())
        return {};
    char32_t Code = Size == 1 ? Lead : Lead & (0x7Fu >> Size);
    for (std::size_t I = 1; I < Size; ++I) {
        const auto Byte = static_cast<unsigned char>(Text[I]);
        if ((Byte & 0xC0) != 0x80)
            return {};
        Code = Code << 6 | (Byte & 0x3Fu);
    }
    constexpr char32_t Smallest[] = {0, 0, 0x80, 0x800, 0x10000};
    if (Code < Smallest[Size] || Code > 0x10FFFF || (Code >= 0xD800 && Code < 0xE000))
        return {};
    return {.Code = Code, .Size = Size, .Valid = true};
}

/// Under a TUtf8Locale.
int WidthOf(const TCharacter& Character)
{
    return Character.Valid ? std::max(wcwidth(static_cast<wchar_t>(Character.Code)), 0) : 1;
}

struct TCodeRange
{
    char32_t First, Last;
};

/// Characters that move the cursor, turn the reading direction of what follows, or cannot be seen.
constexpr TCodeRange Hidden[] = {
    {0x00, 0x1F},     {0x7F, 0x9F},     {0xAD, 0xAD},     {0x061C, 0x061C},   {0x115F, 0x1160},
    {0x17B4, 0x17B5}, {0x180E, 0x180E}, {0x200B, 0x200F}, {0x2028, 0x202E},   {0x2060, 0x206F},
    {0x3164, 0x3164}, {0xFEFF, 0xFEFF}, {0xFFA0, 0xFFA0}, {0xFFF9, 0xFFFB},   {0xE0000, 0xE007F}};

bool IsHidden(char32_t Code)
{
    const auto HasCode = [Code](TCodeRange Each) { return Each.First <= Code && Code <= Each.Last; };
    return !(' ' <= Code && Code < 0x7F) && std::ranges::any_of(Hidden, HasCode);
}

/// A backslash, `Kind` and the number of the character.
void AppendNumber(std::string& Result, char Kind, int DigitCount, char32_t Code)
{
    constexpr char Digits[] = "0123456789ABCDEF";
    (Result += '\\') += Kind;
    for (int Shift = 4 * (DigitCount - 1); Shift >= 0; Shift -= 4)
        Result += Digits[Code >> Shift & 0xF];
}

void AppendEscaped(std::string& Result, char32_t Code)
{
    switch (Code) {
    case '\n': Result += "\\n"; return;
    case '\r': Result += "\\r"; return;
    case '\t': Result += "\\t"; return;
    default:   break;
    }
    if (Code < 0x100)
        AppendNumber(Result, 'x', 2, Code);
    else
        AppendNumber(Result, Code < 0x10000 ? 'u' : 'U', Code < 0x10000 ? 4 : 8, Code);
}

} // namespace

int DisplayWidth(std::string_view Text)
{
    const TUtf8Locale Locale;
    int Width = 0;
    while (!Text.empty()) {
        const auto Character = FirstCharacter(Text);
        Width += WidthOf(Character);
        Text.remove_prefix(Character.Size);
    }
    return Width;
}

std::string FitToWidth(std::string_view Text, int Width)
{
    if (Width <= 0)
        return {};
    const TUtf8Locale Locale;
    int Taken = 0;
    std::size_t Cut = 0;                            // where the text ends to make room for the ellipsis
    for (std::size_t Pos = 0; Pos < Text.size();) {
        const auto Character = FirstCharacter(Text.substr(Pos));
        Taken += WidthOf(Character);
        Pos += Character.Size;
        if (Taken <= Width - 1)
            Cut = Pos;
        if (Taken > Width)
            return std::string(Text.substr(0, Cut)) += Ellipsis;
    }
    return std::string(Text);
}

std::string PadToWidth(std::string_view Text, int Width, bool AlignRight)
{
    const std::string Blanks(static_cast<std::size_t>(std::max(Width - DisplayWidth(Text), 0)), ' ');
    return AlignRight ? Blanks + std::string(Text) : std::string(Text) + Blanks;
}

std::string VisibleText(std::string_view Text)
{
    std::string Result;
    Result.reserve(Text.size());
    while (!Text.empty()) {
        const auto Character = FirstCharacter(Text);
        if (!Character.Valid)
            Result += ReplacementUtf8;
        else if (IsHidden(Character.Code))
            AppendEscaped(Result, Character.Code);
        else
            Result += Text.substr(0, Character.Size);
        Text.remove_prefix(Character.Size);
    }
    return Result;
}

std::string VisibleJson(std::string_view Json)
{
    constexpr char32_t FirstPair = 0x10000;
    std::string Result;
    Result.reserve(Json.size());
    while (!Json.empty()) {
        const auto [Code, Size, Valid] = FirstCharacter(Json);
        if (Code < 0x20 || !IsHidden(Code))         // a line end between values
            Result += Json.substr(0, Size);
        else if (Code < FirstPair)
            AppendNumber(Result, 'u', 4, Code);
        else {
            AppendNumber(Result, 'u', 4, 0xD800 + ((Code - FirstPair) >> 10));
            AppendNumber(Result, 'u', 4, 0xDC00 + ((Code - FirstPair) & 0x3FF));
        }
        Json.remove_prefix(Size);
    }
    return Result;
}

std::string BriefText(const std::string& Text)
{
    constexpr std::size_t LongestBytes = 300;
    constexpr int LongestColumns = 250;
    return Text.size() <= LongestBytes ? Text : FitToWidth(VisibleText(Text), LongestColumns);
}

std::string GroupDigits(std::int64_t Number)
{
    auto Digits = std::to_string(Number);
    const std::size_t First = Number < 0 ? 1 : 0;
    for (std::size_t Pos = Digits.size(); Pos > First + 3;) {
        Pos -= 3;
        Digits.insert(Pos, 1, ',');
    }
    return Digits;
}

} // namespace kv
