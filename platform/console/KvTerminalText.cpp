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

bool IsControl(char32_t Code)
{
    return Code < 0x20 || (Code >= 0x7F && Code < 0xA0);
}

/// Characters without a place of their own that turn the reading direction of what follows.
bool TurnsDirection(char32_t Code)
{
    return (Code >= 0x202A && Code <= 0x202E) || (Code >= 0x2066 && Code <= 0x2069);
}

void AppendEscaped(std::string& Result, char32_t Code)
{
    constexpr char Digits[] = "0123456789ABCDEF";
    switch (Code) {
    case '\n': Result += "\\n"; return;
    case '\r': Result += "\\r"; return;
    case '\t': Result += "\\t"; return;
    default:   break;
    }
    Result += Code < 0x100 ? "\\x" : "\\u";
    for (int Shift = Code < 0x100 ? 4 : 12; Shift >= 0; Shift -= 4)
        Result += Digits[Code >> Shift & 0xF];
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
        else if (IsControl(Character.Code) || TurnsDirection(Character.Code))
            AppendEscaped(Result, Character.Code);
        else
            Result += Text.substr(0, Character.Size);
        Text.remove_prefix(Character.Size);
    }
    return Result;
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
