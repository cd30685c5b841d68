#include "KvDbaseValues.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <optional>
#include <string>
#include <system_error>

#include "KvByteCursor.h"
#include "KvCalendar.h"
#include "KvException.h"
#include "KvFormatSettings.h"
#include "KvParadoxValues.h"
#include "KvText.h"

namespace kv {

namespace {

constexpr bool IsDigit(char Char) { return Char >= '0' && Char <= '9'; }

[[noreturn]] void RefuseText(std::string_view Text, std::string_view Kind)
{
    throw EFormatError(FormatText("'%s' is no %s", {Text, Kind}), {.Value = std::string(Text)});
}

/// Without what fills a value up at both ends: blanks, and zeros behind.
std::string_view Filled(std::string_view Bytes)
{
    Bytes = DbaseText(Bytes);
    Bytes.remove_prefix(std::min(Bytes.find_first_not_of(' '), Bytes.size()));
    return Bytes;
}

// --- Numbers -----------------------------------------------------------------------------------------

/// A decimal number without an exponent, in parts.
struct TDecimal
{
    std::int64_t Digits = 0;                        // all of them as one number, with its sign
    int Count = 0;                                  // of digits behind leading zeros
    int Decimals = 0;
};

constexpr int MaxInt64Digits = 18;

/// Appends digits to the number; false at anything else and where there are too many.
bool TakeDigits(std::string_view Text, TDecimal& Number)
{
    for (const char Char : Text) {
        Number.Count += Number.Count > 0 || Char != '0';
        if (!IsDigit(Char) || Number.Count > MaxInt64Digits)
            return false;
        Number.Digits = 10 * Number.Digits + (Char - '0');
    }
    return true;
}

std::string_view WithoutSign(std::string_view Text)
{
    return Text.substr(Text.front() == '-' || Text.front() == '+' ? 1 : 0);
}

/// Nothing when `Text` is no such number or has more digits than the parts can hold.
std::optional<TDecimal> ReadDecimal(std::string_view Text)
{
    TDecimal Number;
    const auto Parts = WithoutSign(Text);
    const auto Point = std::min(Parts.find('.'), Parts.size());
    const auto Fraction = Parts.substr(std::min(Point + 1, Parts.size()));
    if (Point + Fraction.size() == 0 || !TakeDigits(Parts.substr(0, Point), Number) ||
        !TakeDigits(Fraction, Number))
        return std::nullopt;
    Number.Decimals = static_cast<int>(Fraction.size());
    if (Text.front() == '-')
        Number.Digits = -Number.Digits;
    return Number;
}

/// Floating point text of the file, which has a point whatever the process's settings are.
std::optional<double> ReadDouble(std::string_view Text)
{
    const auto Parts = WithoutSign(Text);
    if (Parts.find_first_not_of("0123456789.eE+-") != Parts.npos || Parts.starts_with('-')) // "nan", "--1"
        return std::nullopt;
    double Number = 0;
    const auto* const Last = Parts.data() + Parts.size();
    const auto [End, Error] = std::from_chars(Parts.data(), Last, Number);
    if (End != Last || Error != std::errc())
        return std::nullopt;
    return Text.front() == '-' ? -Number : Number;
}

/// Digits that say something; those of an exponent are among them.
int SignificantDigits(std::string_view Text)
{
    if (Text.find('.') != Text.npos && Text.find_first_of("eE") == Text.npos)
        Text = Text.substr(0, Text.find_last_not_of('0') + 1);
    const auto First = std::min(Text.find_first_of("123456789"), Text.size());
    return static_cast<int>(std::ranges::count_if(Text.substr(First), IsDigit));
}

std::string WithSeparator(std::string_view Text)
{
    std::string Result(Text);
    std::ranges::replace(Result, '.', FormatSettings().DecimalSeparator);
    return Result;
}

/// Some programs store the point of a number that was left blank, and one that had no room is all asterisks.
bool IsBlankNumber(std::string_view Text)
{
    return Text.empty() || Text == "." || Text.find_first_not_of('*') == Text.npos;
}

/// A double where it gives the same digits back, else the digits.
TVariant FloatOrDigits(std::string_view Text)
{
    constexpr int MaxDoubleDigits = 15;
    const auto Double = ReadDouble(Text);
    if (!Double)
        RefuseText(Text, "number");
    return SignificantDigits(Text) <= MaxDoubleDigits ? TVariant(*Double) : TVariant(WithSeparator(Text));
}

TVariant NumberValue(std::string_view Bytes)
{
    constexpr int MaxCurrencyDecimals = 4;
    constexpr std::int64_t Scales[] = {TCurrency::Scale, 1000, 100, 10, 1};
    const auto Text = Filled(Bytes);
    if (IsBlankNumber(Text))
        return Null;
    if (const auto Number = ReadDecimal(Text)) {
        if (Number->Decimals == 0)
            return Number->Digits;
        if (Number->Decimals <= MaxCurrencyDecimals &&
            Number->Count + MaxCurrencyDecimals - Number->Decimals <= MaxInt64Digits)
            return TCurrency{Number->Digits * Scales[Number->Decimals]};
    }
    return FloatOrDigits(Text);
}

TVariant FloatValue(std::string_view Bytes)
{
    const auto Text = Filled(Bytes);
    return IsBlankNumber(Text) ? TVariant(Null) : FloatOrDigits(Text);
}

TVariant DoubleValue(std::string_view Bytes)
{
    const auto Number = LoadLittleEndian<double>(Bytes.data());
    if (!std::isfinite(Number))
        throw EFormatError("its number is not finite");
    return Number;
}

TVariant LogicalValue(std::string_view Bytes)
{
    switch (Bytes[0]) {
    case 'T':
    case 't':
    case 'Y':
    case 'y':
    case 'J':                                       // German, ...
    case 'j':
    case 'S':                                       // Spanish
    case 's':
    case '1': return true;
    case 'F':
    case 'f':
    case 'N':
    case 'n':
    case '0': return false;
    case '?':
    case ' ':
    case '\0': return Null;
    default:  RefuseText(Bytes, "logical value");
    }
}

// --- Dates and times ---------------------------------------------------------------------------------

TVariant DayValue(std::string_view Bytes)
{
    const auto Text = Filled(Bytes);
    if (Text.find_first_not_of('0') == Text.npos)   // eight zeros are no date, as eight blanks are
        return Null;
    const auto Number = [Text](std::size_t From, std::size_t Count) {
        int Value = 0;
        for (const char Char : Text.substr(From, Count))
            Value = 10 * Value + (Char - '0');
        return Value;
    };
    const bool IsWhole = Text.size() == Bytes.size() && std::ranges::all_of(Text, IsDigit);
    const auto Day = IsWhole
                         ? EncodeDateTime({.Year = Number(0, 4), .Month = Number(4, 2), .Day = Number(6, 2)})
                         : std::nullopt;
    if (!Day)
        RefuseText(Text, "date");
    return *Day;
}

TVariant MomentValue(std::string_view Bytes)
{
    constexpr std::int32_t DayZero = 2415019;       // 30 December 1899, in Julian days
    constexpr std::int32_t FirstDay = 1721426, LastDay = 5373484; // of the years 1 to 9999
    constexpr std::int32_t MillisecondsPerDay = 86400000;
    constexpr std::int32_t Second = 1000;
    auto Day = LoadLittleEndian<std::int32_t>(Bytes.data());
    auto Time = LoadLittleEndian<std::int32_t>(Bytes.data() + 4);
    if ((Day == 0 && Time == 0) || Filled(Bytes).empty())
        return Null;
    if (Day < FirstDay || Day > LastDay || Time < 0 || Time >= MillisecondsPerDay)
        throw EFormatError(FormatText("Julian day %d with %d milliseconds is no date and time",
                                      {std::to_string(Day), std::to_string(Time)}));
    const bool IsVeryLast = Day == LastDay && Time == MillisecondsPerDay - 1; // no second follows
    // Whole seconds, cut to milliseconds from a floating point number.
    if (Time % Second == Second - 1 && !IsVeryLast) {
        Day += (Time + 1) / MillisecondsPerDay;
        Time = (Time + 1) % MillisecondsPerDay;
    }
    const double Days = Day - DayZero;
    const double Fraction = static_cast<double>(Time) / MillisecondsPerDay;
    return TDateTime{Days < 0 ? Days - Fraction : Days + Fraction};
}

/// As in Paradox tables, but for the sign bit: dBase 7 has it as doubles have it, and no date is negative.
TVariant TimestampValue(std::string_view Bytes)
{
    constexpr auto SignBit = static_cast<char>(0x80);
    if (Bytes.find_first_not_of('\0') == Bytes.npos)
        return Null;
    std::string Ordered(Bytes);
    Ordered[0] = static_cast<char>(Ordered[0] | SignBit);
    return ParadoxValue(ptTimestamp, Ordered);
}

} // namespace

bool IsLostNumber(std::string_view Bytes)
{
    const auto Text = Filled(Bytes);
    return !Text.empty() && Text.find_first_not_of('*') == Text.npos;
}

std::string_view DbaseText(std::string_view Bytes)
{
    constexpr std::uint64_t EightBlanks = 0x2020202020202020;
    const auto* Last = Bytes.data() + Bytes.size();
    while (Last - Bytes.data() >= 8 && LoadLittleEndian<std::uint64_t>(Last - 8) == EightBlanks)
        Last -= 8;                                  // most of a text is blanks
    while (Last != Bytes.data() && (Last[-1] == ' ' || Last[-1] == '\0'))
        --Last;
    return {Bytes.data(), static_cast<std::size_t>(Last - Bytes.data())};
}

TVariant DbaseValue(TKvDbaseStorage Storage, std::string_view Bytes)
{
    switch (Storage) {
    case dvNumber:           return NumberValue(Bytes);
    case dvFloat:            return FloatValue(Bytes);
    case dvLogical:          return LogicalValue(Bytes);
    case dvDay:              return DayValue(Bytes);
    case dvLong:             return LoadLittleEndian<std::int32_t>(Bytes.data());
    case dvDouble:           return DoubleValue(Bytes);
    case dvAmount:           return TCurrency{LoadLittleEndian<std::int64_t>(Bytes.data())};
    case dvMoment:           return MomentValue(Bytes);
    case dvOrderedLong:      return ParadoxValue(ptLong, Bytes);
    case dvOrderedDouble:    return ParadoxValue(ptNumber, Bytes);
    case dvTimestamp:        return TimestampValue(Bytes);
    case dvText: {
        const auto Text = DbaseText(Bytes);
        return Text.empty() ? TVariant(Null) : TVariant::Borrow(Text);
    }
    default: return TVariant::Borrow(Bytes);
    }
}

} // namespace kv
