#include "KvName.h"

#include <locale.h>
#include <wctype.h>

#include "KvCodePage.h"
#include "KvException.h"
#include "KvText.h"
#include "KvUtf8.h"

namespace kv {

namespace {

/// Of the letters of Unicode, whatever the locale of the process; without it those of ASCII.
char32_t UpperPoint(char32_t Point)
{
    static const locale_t Unicode = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
    return Unicode ? static_cast<char32_t>(towupper_l(static_cast<wint_t>(Point), Unicode)) : Point;
}

/// The character that a well-formed sequence stands for.
char32_t PointOf(std::string_view Sequence)
{
    const auto First = static_cast<unsigned char>(Sequence.front());
    if (Sequence.size() == 1)
        return First;
    char32_t Point = First & (0x7F >> Sequence.size());
    for (const char Byte : Sequence.substr(1))
        Point = Point << 6 | (static_cast<unsigned char>(Byte) & 0x3F);
    return Point;
}

std::string UpperUtf8(std::string_view Text)
{
    std::string Result;
    while (!Text.empty()) {
        const auto Size = Utf8SequenceSize(Text);
        if (Size == 0)
            Result += Text.front();
        else
            AppendUtf8(Result, UpperPoint(PointOf(Text.substr(0, Size))));
        Text.remove_prefix(Size == 0 ? 1 : Size);
    }
    return Result;
}

} // namespace

std::string UpperName(std::string_view Name)
{
    auto Ascii = UpperCase(Name);
    if (IsAscii(Name))
        return Ascii;
    try {
        std::string Buffer;
        return AnsiIsUtf8() ? UpperUtf8(Ascii) : Utf8ToAnsi(UpperUtf8(AnsiToUtf8(Ascii, Buffer)));
    }
    catch (const EConvertError&) {                  // the code page lacks an upper case
        return Ascii;
    }
}

bool SameName(std::string_view A, std::string_view B)
{
    return SameText(A, B) || (!IsAscii(A) && !IsAscii(B) && UpperName(A) == UpperName(B));
}

} // namespace kv
