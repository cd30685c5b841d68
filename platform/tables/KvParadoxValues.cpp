#include "KvParadoxValues.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <optional>
#include <string>

#include "KvByteCursor.h"
#include "KvException.h"
#include "KvFormatSettings.h"
#include "KvNumberText.h"
#include "KvText.h"

namespace kv {

namespace {

constexpr int DayBeforeFirst = -693594;             // day 0, as TDateTime
constexpr int LastDay = 3652059;                    // 31 December 9999
constexpr int MillisecondsPerDay = 86400000;

// --- Numbers -----------------------------------------------------------------------------------------

/// Nothing when blank.
template <class TBits, class TInteger> std::optional<TInteger> StoredInteger(const char* Bytes)
{
    constexpr auto SignBit = static_cast<TBits>(TBits{1} << (8 * sizeof(TBits) - 1));
    const auto Bits = LoadBigEndian<TBits>(Bytes);
    if (Bits == 0)
        return std::nullopt;
    return static_cast<TInteger>(static_cast<TBits>(Bits ^ SignBit));
}

std::optional<std::int16_t> StoredShort(const char* Bytes)
{
    return StoredInteger<std::uint16_t, std::int16_t>(Bytes);
}

std::optional<std::int32_t> StoredLong(const char* Bytes)
{
    return StoredInteger<std::uint32_t, std::int32_t>(Bytes);
}

std::optional<double> StoredNumber(const char* Bytes)
{
    constexpr auto SignBit = std::uint64_t{1} << 63;
    const auto Bits = LoadBigEndian<std::uint64_t>(Bytes);
    if (Bits == 0)
        return std::nullopt;
    const auto Number = std::bit_cast<double>((Bits & SignBit) != 0 ? Bits ^ SignBit : ~Bits);
    if (!std::isfinite(Number))
        throw EFormatError("its number is not finite");
    return Number;
}

template <class T> TVariant NullOr(const std::optional<T>& Value)
{
    return Value ? TVariant(*Value) : TVariant(Null);
}

TVariant LogicalValue(char Byte)
{
    constexpr unsigned char False = 0x80, True = 0x81;
    switch (static_cast<unsigned char>(Byte)) {
    case 0:     return Null;
    case False: return false;
    case True:  return true;
    default:    throw EFormatError(FormatText("byte 0x%s is no logical value", {TextToHex({&Byte, 1})}));
    }
}

// --- Dates and times ---------------------------------------------------------------------------------

TVariant DateValue(const char* Bytes)
{
    const auto Day = StoredLong(Bytes);
    if (!Day)
        return Null;
    if (*Day < 1 || *Day > LastDay)
        throw EFormatError(FormatText("day %d lies outside the years 1 to 9999", {std::to_string(*Day)}));
    return TDateTime{static_cast<double>(*Day + DayBeforeFirst)};
}

TVariant TimeValue(const char* Bytes)
{
    const auto Time = StoredLong(Bytes);
    if (!Time)
        return Null;
    if (*Time < 0 || *Time >= MillisecondsPerDay)
        throw EFormatError(FormatText("%d milliseconds are no time of day", {std::to_string(*Time)}));
    return TDateTime{static_cast<double>(*Time) / MillisecondsPerDay};
}

TVariant TimestampValue(const char* Bytes)
{
    const auto Stored = StoredNumber(Bytes);
    if (!Stored)
        return Null;
    const double Day = std::floor(*Stored / MillisecondsPerDay);
    if (Day < 1 || Day > LastDay)
        throw EFormatError(FormatText("%s milliseconds lie outside the years 1 to 9999",
                                      {FloatToText(*Stored)}));
    const double Fraction = (*Stored - Day * MillisecondsPerDay) / MillisecondsPerDay;
    const double Days = Day + DayBeforeFirst;
    return TDateTime{Days < 0 ? Days - Fraction : Days + Fraction};
}

// --- Decimal numbers ---------------------------------------------------------------------------------

/// A number in digits, without zeros that say nothing.
struct TDecimal
{
    bool IsNegative = false;
    std::string_view Whole, Fraction;               // of the characters that Decode filled
};

constexpr std::size_t MaxDigits = 32;

/// False when the bytes are no decimal number.
bool Decode(std::string_view Bytes, char (&Digits)[MaxDigits], TDecimal& Number)
{
    const auto Head = static_cast<unsigned char>(Bytes[0]);
    const std::size_t Decimals = Head & 0x3F;
    Number.IsNegative = (Head & 0x80) == 0;
    if ((Head & 0x40) == 0 || Decimals > MaxDigits)
        return false;
    const unsigned Complement = Number.IsNegative ? 0xFF : 0;
    for (std::size_t I = 0; I < MaxDigits; ++I) {
        const unsigned Pair = static_cast<unsigned char>(Bytes[1 + I / 2]) ^ Complement;
        const unsigned Digit = I % 2 == 0 ? Pair >> 4 : Pair & 0x0F;
        if (Digit > 9)
            return false;
        Digits[I] = static_cast<char>('0' + Digit);
    }
    const std::string_view All(Digits, MaxDigits);
    Number.Whole = All.substr(0, MaxDigits - Decimals);
    Number.Whole.remove_prefix(std::min(Number.Whole.find_first_not_of('0'), Number.Whole.size()));
    Number.Fraction = All.substr(MaxDigits - Decimals);
    Number.Fraction = Number.Fraction.substr(0, Number.Fraction.find_last_not_of('0') + 1);
    return true;
}

std::optional<std::int64_t> ToInteger(bool IsNegative, std::string_view Whole, std::string_view Behind)
{
    std::string Text(IsNegative ? "-0" : "0");
    Text.append(Whole).append(Behind);
    std::int64_t Value = 0;
    const auto* const Last = Text.data() + Text.size();
    const auto [End, Error] = std::from_chars(Text.data(), Last, Value);
    return End == Last && Error == std::errc() ? std::optional(Value) : std::nullopt;
}

TVariant SimplestForm(const TDecimal& Number)
{
    constexpr std::string_view CurrencyZeros = "0000";
    const auto [IsNegative, Whole, Fraction] = Number;
    if (Fraction.empty())
        if (const auto Integer = ToInteger(IsNegative, Whole, {}))
            return *Integer;
    if (Fraction.size() <= CurrencyZeros.size()) {
        auto Scaled = std::string(Fraction);
        Scaled.append(CurrencyZeros.substr(Fraction.size()));
        if (const auto Amount = ToInteger(IsNegative, Whole, Scaled))
            return TCurrency{*Amount};
    }
    std::string Text(IsNegative ? "-" : "");
    Text.append(Whole.empty() ? "0" : Whole);
    if (!Fraction.empty())
        (Text += FormatSettings().DecimalSeparator).append(Fraction);
    return Text;
}

bool IsZero(char Byte) { return Byte == 0; }

TVariant DecimalValue(std::string_view Bytes)
{
    if (std::ranges::all_of(Bytes, IsZero))
        return Null;
    char Digits[MaxDigits];
    TDecimal Number;
    if (!Decode(Bytes, Digits, Number))
        throw EFormatError(FormatText("0x%s is no decimal number", {TextToHex(Bytes)}));
    return SimplestForm(Number);
}

// --- Texts -------------------------------------------------------------------------------------------

TVariant TextValue(std::string_view Bytes)
{
    const auto Text = Bytes.substr(0, Bytes.find('\0'));
    return Text.empty() ? TVariant(Null) : TVariant::Borrow(Text);
}

TVariant BytesValue(std::string_view Bytes)
{
    return std::ranges::all_of(Bytes, IsZero) ? TVariant(Null) : TVariant::Borrow(Bytes);
}

} // namespace

TVariant ParadoxValue(TKvParadoxType Type, std::string_view Bytes)
{
    switch (Type) {
    case ptShort:         return NullOr(StoredShort(Bytes.data()));
    case ptLong:
    case ptAutoIncrement: return NullOr(StoredLong(Bytes.data()));
    case ptCurrency:
    case ptNumber:        return NullOr(StoredNumber(Bytes.data()));
    case ptLogical:       return LogicalValue(Bytes[0]);
    case ptDate:          return DateValue(Bytes.data());
    case ptTime:          return TimeValue(Bytes.data());
    case ptTimestamp:     return TimestampValue(Bytes.data());
    case ptBcd:           return DecimalValue(Bytes);
    case ptAlpha:         return TextValue(Bytes);
    default:              return BytesValue(Bytes);
    }
}

} // namespace kv
