#include "KvMdbDecimal.h"

#include <algorithm>
#include <limits>

#include "KvByteCursor.h"

namespace kv {

TMdbDecimal::TMdbDecimal(std::string_view Bytes, int TheScale)
    : Negative((static_cast<unsigned char>(Bytes[0]) & 0x80) != 0), Digits(0), Scale(TheScale)
{
    for (int Word = 0; Word < 4; ++Word)
        Digits = Digits << 32 | LoadLittleEndian<std::uint32_t>(Bytes.data() + 1 + 4 * Word);
    for (; Scale > 0 && Digits % 10 == 0; --Scale)
        Digits /= 10;
}

std::optional<std::int64_t> TMdbDecimal::Scaled(int Places) const
{
    constexpr TUInt128 Max = std::numeric_limits<std::int64_t>::max();
    if (Scale > Places)
        return {};
    auto Whole = Digits;
    for (int I = Scale; I < Places && Whole <= Max; ++I)
        Whole *= 10;
    if (Whole > Max)
        return {};
    const auto Value = static_cast<std::int64_t>(Whole);
    return Negative ? -Value : Value;
}

std::string TMdbDecimal::ToText() const
{
    std::string Text;                               // from the last digit to the first
    auto Rest = Digits;
    for (int Place = 0; Rest != 0 || Place <= Scale; ++Place) {
        if (Place == Scale && Scale > 0)
            Text += '.';
        Text += static_cast<char>('0' + static_cast<int>(Rest % 10));
        Rest /= 10;
    }
    if (Negative && Digits != 0)
        Text += '-';
    std::ranges::reverse(Text);
    return Text;
}

} // namespace kv
