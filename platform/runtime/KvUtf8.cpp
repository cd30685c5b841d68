#include "KvUtf8.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace kv {

namespace {

constexpr std::uint64_t HighBits = 0x8080808080808080;

/// The first byte of [First, Last) that is not ASCII, or Last; eight bytes at a step.
const char* SkipAscii(const char* First, const char* Last)
{
    for (; Last - First >= 8; First += 8) {
        std::uint64_t Word;
        std::memcpy(&Word, First, sizeof Word);
        if ((Word & HighBits) != 0)
            break;
    }
    while (First != Last && static_cast<signed char>(*First) >= 0)
        ++First;
    return First;
}

constexpr bool IsContinuation(char Char) { return (static_cast<unsigned char>(Char) & 0xC0) == 0x80; }

/// That of [First, Last), not empty. The second byte decides on overlong forms, surrogates and values past
/// U+10FFFF.
std::size_t SequenceSize(const char* First, const char* Last)
{
    const auto Lead = static_cast<unsigned char>(*First);
    if (Lead < 0x80)
        return 1;
    if (Lead < 0xC2 || Lead > 0xF4)
        return 0;
    const std::size_t Size = Lead < 0xE0 ? 2 : Lead < 0xF0 ? 3 : 4;
    if (static_cast<std::size_t>(Last - First) < Size ||
        !std::all_of(First + 1, First + Size, IsContinuation))
        return 0;
    const auto Second = static_cast<unsigned char>(First[1]);
    switch (Lead) {
    case 0xE0: return Second >= 0xA0 ? Size : 0;
    case 0xED: return Second <= 0x9F ? Size : 0;
    case 0xF0: return Second >= 0x90 ? Size : 0;
    case 0xF4: return Second <= 0x8F ? Size : 0;
    default:   return Size;
    }
}

} // namespace

std::size_t AsciiSize(std::string_view Text)
{
    return static_cast<std::size_t>(SkipAscii(Text.data(), Text.data() + Text.size()) - Text.data());
}

bool IsValidUtf8(std::string_view Text) { return ValidUtf8Size(Text) == Text.size(); }

std::size_t ValidUtf8Size(std::string_view Text)
{
    const char* Place = Text.data();
    const char* const Last = Place + Text.size();
    while ((Place = SkipAscii(Place, Last)) != Last) {
        const auto Size = SequenceSize(Place, Last);
        if (Size == 0)
            break;
        Place += Size;
    }
    return static_cast<std::size_t>(Place - Text.data());
}

std::size_t Utf8SequenceSize(std::string_view Text)
{
    return Text.empty() ? 0 : SequenceSize(Text.data(), Text.data() + Text.size());
}

void AppendLatin1AsUtf8(std::string_view Text, std::string& Utf8)
{
    const char* First = Text.data();
    const char* const Last = First + Text.size();
    while (First != Last) {
        const char* const Stop = SkipAscii(First, Last);
        Utf8.append(First, Stop);
        First = Stop;
        for (; First != Last && static_cast<signed char>(*First) < 0; ++First)
            AppendUtf8(Utf8, static_cast<unsigned char>(*First));
    }
}

} // namespace kv
