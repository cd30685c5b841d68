#include "KvFieldConvert.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

#include "KvCalendar.h"
#include "KvDataSet.h"
#include "KvDateText.h"
#include "KvException.h"
#include "KvNumberText.h"
#include "KvText.h"

namespace kv {

namespace {

struct TIntegerRange
{
    std::int64_t Low, High;
};

TIntegerRange RangeOf(TFieldType Type)
{
    switch (Type) {
    case ftSmallint:
        return {std::numeric_limits<std::int16_t>::min(), std::numeric_limits<std::int16_t>::max()};
    case ftWord:     return {0, std::numeric_limits<std::uint16_t>::max()};
    case ftLargeint:
        return {std::numeric_limits<std::int64_t>::min(), std::numeric_limits<std::int64_t>::max()};
    default: return {std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::int32_t>::max()};
    }
}

std::optional<std::int64_t> ExactInteger(double Value)
{
    constexpr double Limit = 9223372036854775808.0; // 2^63, the first double past the range
    if (!(Value >= -Limit && Value < Limit) || Value != std::floor(Value))
        return std::nullopt;
    return static_cast<std::int64_t>(Value);
}

std::optional<std::int64_t> AsInteger(const TVariant& Value)
{
    switch (Value.Kind()) {
    case vkInteger:  return Value.Integer();
    case vkString:   return TryTextToInt(Value.Text());
    case vkBoolean:  return Value.Boolean() ? 1 : 0;
    case vkDouble:   return ExactInteger(Value.Double());
    case vkCurrency: {
        const auto Scaled = Value.Currency().Scaled;
        return Scaled % TCurrency::Scale == 0 ? std::optional(Scaled / TCurrency::Scale) : std::nullopt;
    }
    default: return std::nullopt;
    }
}

std::optional<double> AsFloat(const TVariant& Value)
{
    switch (Value.Kind()) {
    case vkDouble:   return Value.Double();
    case vkString:   return TryTextToFloat(Value.Text());
    case vkInteger:  return static_cast<double>(Value.Integer());
    case vkCurrency: return Value.Currency().ToDouble();
    case vkDateTime: return Value.DateTime().Days;
    case vkBoolean:  return Value.Boolean() ? 1.0 : 0.0;
    default:         return std::nullopt;
    }
}

std::optional<bool> AsBoolean(const TVariant& Value)
{
    if (Value.Kind() == vkBoolean)
        return Value.Boolean();
    if (Value.IsString()) {
        const auto Word = Trim(Value.Text());
        if (SameText(Word, "True") || SameText(Word, "T"))
            return true;
        if (SameText(Word, "False") || SameText(Word, "F"))
            return false;
    }
    const auto Number = AsInteger(Value);
    if (Number == 0 || Number == 1)
        return *Number == 1;
    return std::nullopt;
}

/// Text in the process's form, numbers as serial days.
std::optional<TDateTime> AsDateTime(const TVariant& Value)
{
    switch (Value.Kind()) {
    case vkDateTime: return Value.DateTime();
    case vkString:   return TryTextToDateTime(Value.Text());
    case vkInteger:
    case vkDouble:   return TDateTime{*AsFloat(Value)};
    default:         return std::nullopt;
    }
}

/// Years 1 to 9999, the days that a calendar can show.
bool InCalendar(TDateTime Value)
{
    constexpr double FirstDay = -693593, LastDay = 2958465;
    return Value.Days > FirstDay - 1 && Value.Days < LastDay + 1;
}

bool HasTimeOnly(TDateTime Value)
{
    return Value.Days >= 0 && Value.Days < 1;
}

template <class T> bool Give(const std::optional<T>& Value, TVariant& Result)
{
    if (!Value)
        return false;
    Result = TVariant(*Value);
    return true;
}

bool GiveInteger(TFieldType Type, const TVariant& Value, TVariant& Result)
{
    const auto Number = AsInteger(Value);
    const auto Range = RangeOf(Type);
    return Number && *Number >= Range.Low && *Number <= Range.High && Give(Number, Result);
}

/// An exact number stays exact; text of digits that a double would round keeps its digits.
bool GiveDecimal(const TVariant& Value, TVariant& Result)
{
    if (Value.Kind() == vkInteger || Value.Kind() == vkCurrency || Value.Kind() == vkDouble) {
        Result = Value;
        return true;
    }
    return Value.IsString() ? TryTextToDecimal(Value.Text(), Result) : Give(AsFloat(Value), Result);
}

/// As a double where that is exact, which reaches further than amounts do.
bool GiveAmount(std::int64_t Value, TVariant& Result)
{
    constexpr std::int64_t ExactMax = std::int64_t{1} << 53;
    std::int64_t Scaled = 0;
    if (!__builtin_mul_overflow(Value, TCurrency::Scale, &Scaled))
        Result = TCurrency{Scaled};
    else if (Value <= ExactMax && Value >= -ExactMax)
        Result = static_cast<double>(Value);
    else
        return false;
    return true;
}

bool GiveCurrency(const TVariant& Value, TVariant& Result)
{
    if (Value.Kind() == vkCurrency) {
        Result = Value;
        return true;
    }
    if (Value.Kind() == vkInteger)
        return GiveAmount(Value.Integer(), Result);
    if (!Value.IsString())
        return Give(AsFloat(Value), Result);
    if (const auto Amount = TryTextToCurrency(Value.Text()))
        return Give(Amount, Result);
    TVariant Number;
    if (!TryTextToDecimal(Value.Text(), Number) || Number.IsString())
        return false;
    return Number.Kind() == vkInteger ? GiveAmount(Number.Integer(), Result) : Give(AsFloat(Number), Result);
}

/// The day, from which less than a millisecond may be missing or left over; nothing for a time alone.
std::optional<TDateTime> AsDay(const TVariant& Value, TDateTime Point)
{
    if (Value.IsString() && HasTimeOnly(Point) && TryTextToTime(Value.Text()))
        return {};
    if (Point.Days == std::floor(Point.Days))
        return Point;
    const auto [Day, Ms] = SplitDateTime(Point);
    return Ms == 0 ? std::optional(JoinDateTime({Day, 0})) : std::nullopt;
}

bool GiveDateTime(TFieldType Type, const TVariant& Value, TVariant& Result)
{
    const auto Point = AsDateTime(Value);
    if (!Point || !InCalendar(*Point))
        return false;
    if (Type == ftDate)
        return Give(AsDay(Value, *Point), Result);
    if (Type == ftTime && (!HasTimeOnly(*Point) || SplitDateTime(*Point).Day != 0))
        return false;                               // not even one that is shown as the next midnight
    return Give(Point, Result);
}

bool GiveText(const TVariant& Value, TVariant& Result)
{
    if (Value.IsArray())
        return false;
    if (Value.IsString())
        Result.SetText(Value.Text());
    else
        Result.SetText(Value.ToText());
    return true;
}

std::string_view TypeInWords(TFieldType Type)
{
    if (IsIntegerField(Type))
        return "integer";
    switch (Type) {
    case ftBoolean:  return "boolean";
    case ftFloat:
    case ftCurrency:
    case ftBCD:      return "floating point";
    case ftDate:     return "date";
    case ftTime:     return "time";
    case ftDateTime: return "date and time";
    default:         return "text";
    }
}

} // namespace

bool IsIntegerField(TFieldType Type)
{
    return Type == ftSmallint || Type == ftInteger || Type == ftWord || Type == ftAutoInc ||
           Type == ftLargeint;
}

bool ConvertFieldValue(TFieldType Type, const TVariant& Value, TVariant& Result)
{
    if (!Value.HasValue()) {
        Result = Null;
        return true;
    }
    switch (Type) {
    case ftSmallint:
    case ftInteger:
    case ftWord:
    case ftAutoInc:
    case ftLargeint: return GiveInteger(Type, Value, Result);
    case ftBoolean:  return Give(AsBoolean(Value), Result);
    case ftFloat:    return Give(AsFloat(Value), Result);
    case ftCurrency: return GiveCurrency(Value, Result);
    case ftBCD:      return GiveDecimal(Value, Result);
    case ftDate:
    case ftTime:
    case ftDateTime: return GiveDateTime(Type, Value, Result);
    case ftUnknown:
    case ftVariant:  Result = Value; return true;
    default:         return GiveText(Value, Result);
    }
}

void RaiseConversion(const TField& Field, const TVariant& Value)
{
    const auto Type = Field.DataType();
    if (IsIntegerField(Type) && AsInteger(Value)) {
        const auto Range = RangeOf(Type);
        RefuseValue(Field, Value, erRange,
               " is not between " + std::to_string(Range.Low) + " and " + std::to_string(Range.High) +
                   " for field '" + Field.FieldName() + "'");
    }
    RefuseValue(Field, Value, erConversion,
           " is not a valid " + std::string(TypeInWords(Type)) + " value for field '" + Field.FieldName() +
               "'");
}

} // namespace kv
