#include "KvUtf16.h"

#include <cstdint>

#include "KvByteCursor.h"
#include "KvException.h"
#include "KvUtf8.h"

namespace kv {

namespace {

constexpr bool IsLead(char32_t Unit) { return Unit >= 0xD800 && Unit <= 0xDBFF; }
constexpr bool IsTrail(char32_t Unit) { return Unit >= 0xDC00 && Unit <= 0xDFFF; }
constexpr bool IsSurrogate(char32_t Unit) { return IsLead(Unit) || IsTrail(Unit); }
constexpr char32_t PointOf(char32_t Lead, char32_t Trail)
{
    return 0x10000 + ((Lead - 0xD800) << 10) + (Trail - 0xDC00);
}

constexpr char32_t UnpairedStandIns = 0x100000;     // a plane of private use: no letter that nobody wrote

/// Takes one character off the front of UTF-16, which is not empty.
char32_t TakePoint(std::u16string_view& Text)
{
    const char32_t First = Text[0];
    Text.remove_prefix(1);
    if (!IsSurrogate(First))
        return First;
    const char32_t Second = IsLead(First) && !Text.empty() ? Text[0] : 0;
    if (!IsTrail(Second))
        throw EConvertError("Text is not valid in code page 'UTF-16'");
    Text.remove_prefix(1);
    return PointOf(First, Second);
}

} // namespace

std::string Utf16ToUtf8(std::u16string_view Text)
{
    std::string Utf8;
    Utf8.reserve(Text.size());
    while (!Text.empty())
        AppendUtf8(Utf8, TakePoint(Text));
    return Utf8;
}

void AppendUtf16AsUtf8(std::string_view Bytes, std::string& Utf8)
{
    for (std::size_t I = 0; I + 1 < Bytes.size(); I += 2) {
        const char32_t Unit = LoadLittleEndian<std::uint16_t>(Bytes.data() + I);
        if (!IsSurrogate(Unit)) {
            AppendUtf8(Utf8, Unit);
            continue;
        }
        const char32_t Next = I + 3 < Bytes.size() ? LoadLittleEndian<std::uint16_t>(Bytes.data() + I + 2)
                                                   : 0;
        if (IsLead(Unit) && IsTrail(Next)) {
            AppendUtf8(Utf8, PointOf(Unit, Next));
            I += 2;
        } else {
            AppendUtf8(Utf8, UnpairedStandIns + Unit);
        }
    }
}

} // namespace kv
