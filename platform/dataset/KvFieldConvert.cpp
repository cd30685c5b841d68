#include "KvFieldConvert.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

#include "KvCodePage.h"
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
    if (!Value.IsString())
        return Give(AsFloat(Value), Result);
    if (const auto Integer = TryTextToInt(Value.Text()))
        return Give(Integer, Result);
    if (const auto Exact = TryTextToCurrency(Value.Text()))
        return Give(Exact, Result);
    return Give(TryTextToFloat(Value.Text()), Result);
}

bool GiveCurrency(const TVariant& Value, TVariant& Result)
{
    if (Value.Kind() == vkCurrency) {
        Result = Value;
        return true;
    }
    return Give(AsFloat(Value), Result);
}

bool GiveDateTime(TFieldType Type, const TVariant& Value, TVariant& Result)
{
    const auto Point = AsDateTime(Value);
    if (!Point || !InCalendar(*Point))
        return false;
    if (Type == ftDate && Point->Days != std::floor(Point->Days))
        return false;
    if (Type == ftTime && !HasTimeOnly(*Point))
        return false;
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

/// How a message quotes a value: whole when short, else its beginning.
std::string Quoted(const TVariant& Value)
{
    constexpr std::size_t Longest = 80;
    if (Value.IsArray())
        return "an array";
    auto Text = Value.ToText();
    if (Text.size() > Longest) {
        auto Cut = Longest;
        while (Cut > 0 && (static_cast<unsigned char>(Text[Cut]) & 0xC0) == 0x80)
            --Cut;                                  // not inside a character
        Text.resize(Cut);
        Text += "...";
    }
    return "'" + Text + "'";
}

/// `Why` follows the value in the message.
[[noreturn]] void Refuse(const TField& Field, const TVariant& Value, TKvErrorRule Rule,
                         const std::string& Why)
{
    throw EConvertError(Quoted(Value) + Why, {.Field = Field.FieldName(),
                                              .Value = Value.IsArray() ? "" : Value.ToText(),
                                              .Rule = Rule,
                                              .Record = Field.DataSet().RecordTag});
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

std::size_t CharacterCount(std::string_view Text)
{
    if (!AnsiIsUtf8())
        return Text.size();
    return static_cast<std::size_t>(std::ranges::count_if(
        Text, [](char Byte) { return (static_cast<unsigned char>(Byte) & 0xC0) != 0x80; }));
}

void CheckFieldSize(const TField& Field, const TVariant& Value)
{
    const auto Limit = static_cast<std::size_t>(Field.Size());
    const auto Text = Value.Text();
    const bool Binary = IsBinaryField(Field.DataType());
    const auto Length = Binary ? Text.size() : CharacterCount(Text);
    if (Length > Limit && (Binary || IsTextField(Field.DataType())))
        Refuse(Field, Value, erLength,
               " is longer than field '" + Field.FieldName() + "': " + std::to_string(Length) +
                   (Binary ? " bytes" : " characters") + ", it holds " + std::to_string(Limit));
}

void RaiseConversion(const TField& Field, const TVariant& Value)
{
    const auto Type = Field.DataType();
    if (IsIntegerField(Type) && AsInteger(Value)) {
        const auto Range = RangeOf(Type);
        Refuse(Field, Value, erRange,
               " is not between " + std::to_string(Range.Low) + " and " + std::to_string(Range.High) +
                   " for field '" + Field.FieldName() + "'");
    }
    Refuse(Field, Value, erConversion,
           " is not a valid " + std::string(TypeInWords(Type)) + " value for field '" + Field.FieldName() +
               "'");
}

} // namespace kv
