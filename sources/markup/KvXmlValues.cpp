#include "KvXmlValues.h"

#include <algorithm>
#include <cstdint>

#include "KvCalendar.h"
#include "KvText.h"

namespace kv {

namespace {

bool IsDigit(char Char)
{
    return Char >= '0' && Char <= '9';
}

/// Takes `Count` digits off the front of `Text`.
std::optional<int> TakeDigits(std::string_view& Text, std::size_t Count)
{
    if (Text.size() < Count || !std::all_of(Text.begin(), Text.begin() + static_cast<int>(Count), IsDigit))
        return {};
    int Number = 0;
    for (const char Digit : Text.substr(0, Count))
        Number = Number * 10 + (Digit - '0');
    Text.remove_prefix(Count);
    return Number;
}

bool Take(std::string_view& Text, char Char)
{
    const bool IsThere = Text.starts_with(Char);
    Text.remove_prefix(IsThere ? 1 : 0);
    return IsThere;
}

bool TakeDate(std::string_view& Text, TCalendar& Point)
{
    const auto Year = TakeDigits(Text, 4), Month = TakeDigits(Text, 2), Day = TakeDigits(Text, 2);
    if (!Year || !Month || !Day)
        return false;
    Point.Year = *Year;
    Point.Month = *Month;
    Point.Day = *Day;
    return true;
}

bool TakeTime(std::string_view& Text, TCalendar& Point)
{
    const auto Hour = TakeDigits(Text, 2);
    const bool HasMinute = Take(Text, ':');
    const auto Minute = TakeDigits(Text, 2);
    const bool HasSecond = Take(Text, ':');
    const auto Second = TakeDigits(Text, 2);
    if (!Hour || !HasMinute || !Minute || !HasSecond || !Second)
        return false;
    Take(Text, '.');
    Point.Hour = *Hour;
    Point.Minute = *Minute;
    Point.Second = *Second;
    Point.Millisecond = TakeDigits(Text, 3).value_or(0);
    return true;
}

/// The value of a digit of base64; -1 when it is none.
int Base64Digit(char Char)
{
    constexpr std::string_view Digits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    const auto Found = Digits.find(Char);
    return Found == Digits.npos ? -1 : static_cast<int>(Found);
}

} // namespace

std::optional<TDateTime> PacketDateTime(std::string_view Text, TFieldType Type)
{
    TCalendar Point{.Year = 1899, .Month = 12, .Day = 30};
    if (Type != ftTime && !TakeDate(Text, Point))
        return {};
    const bool HasTime = Type == ftTime || (Type == ftDateTime && (Take(Text, 'T') || Take(Text, ' ')));
    if (HasTime && !TakeTime(Text, Point))
        return {};
    return Text.empty() ? EncodeDateTime(Point) : std::nullopt;
}

std::optional<bool> PacketBoolean(std::string_view Text)
{
    if (SameText(Text, "TRUE"))
        return true;
    return SameText(Text, "FALSE") ? std::optional(false) : std::nullopt;
}

/// Blanks between the digits do not count; "=" fills the last four up.
bool PacketBytes(std::string_view Text, std::string& Bytes)
{
    constexpr unsigned DigitBits = 6, ByteBits = 8;
    Bytes.clear();
    std::uint32_t Bits = 0;
    unsigned Count = 0;                             // of the bits that wait
    std::size_t Digits = 0, Fill = 0;
    for (const char Char : Text) {
        if (static_cast<unsigned char>(Char) <= ' ')
            continue;
        const int Digit = Base64Digit(Char);
        Fill += Char == '=' ? 1 : 0;
        if (Char != '=' && (Digit < 0 || Fill > 0))
            return false;
        ++Digits;
        if (Char == '=')
            continue;
        Bits = Bits << DigitBits | static_cast<std::uint32_t>(Digit);
        Count += DigitBits;
        if (Count >= ByteBits) {
            Count -= ByteBits;
            Bytes += static_cast<char>(Bits >> Count & 0xFF);
        }
    }
    return Digits % 4 == 0 && Fill <= 2;
}

} // namespace kv
