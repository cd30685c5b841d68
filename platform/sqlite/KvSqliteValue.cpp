#include "KvSqliteValue.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <optional>

#include "KvException.h"
#include "KvText.h"

namespace kv {

namespace {

constexpr double CurrencyMax = 9e14;                // within 2^63 ten-thousandths

[[noreturn]] void Refuse(const TSQLiteColumn& Column, const TVariant& Value, TKvErrorRule Rule,
                         std::string_view Reason)
{
    const auto Text = Value.ToText();
    throw EConvertError(FormatText("'%s' cannot be kept in field '%s': %s", {Text, Column.Def.Name, Reason}),
                        {.Field = Column.Def.Name, .Value = Text, .Rule = Rule});
}

TSQLiteValue EncodeDouble(const TSQLiteColumn& Column, const TVariant& Value)
{
    if (std::isnan(Value.Double()))                 // SQLite would store NULL
        Refuse(Column, Value, erConversion, "it is not a number");
    return TSQLiteValue::OfReal(Value.Double());
}

TSQLiteValue EncodeCurrency(const TSQLiteColumn& Column, const TVariant& Value)
{
    const auto Amount = Value.Currency();
    if (Amount.Scaled % TCurrency::Scale == 0)
        return TSQLiteValue::OfInteger(Amount.Scaled / TCurrency::Scale);
    constexpr std::int64_t FifteenDigits = 1'000'000'000'000'000; // which a double keeps
    const double Real = Amount.ToDouble();
    if (Amount.Scaled < FifteenDigits && Amount.Scaled > -FifteenDigits)
        return TSQLiteValue::OfReal(Real);
    if (std::fabs(Real) > CurrencyMax || TCurrency::FromDouble(Real) != Amount)
        Refuse(Column, Value, erRange, "it has more digits than SQLite keeps");
    return TSQLiteValue::OfReal(Real);
}

TSQLiteValue EncodeDateTime(const TSQLiteColumn& Column, TDateTime Value, TSQLiteScratch& Scratch)
{
    switch (Column.Def.DataType) {
    case ftDate: return TSQLiteValue::OfText(WriteIsoDate(Value, Scratch.Iso));
    case ftTime: return TSQLiteValue::OfText(WriteIsoTime(Value, Scratch.Iso));
    default:     return TSQLiteValue::OfText(WriteIsoDateTime(Value, Scratch.Iso));
    }
}

/// True when a column of numeric affinity would store `Text` as a number that reads differently.
bool ChangesAsNumber(std::string_view Text)
{
    const auto Number = Trim(Text);
    if (Number.empty() || Number.find_first_not_of("0123456789+-.eE") != Number.npos)
        return false;
    const char* const Last = Number.data() + Number.size();
    const char* const First = Number.data() + (Number.front() == '+' ? 1 : 0);
    double Real = 0;
    if (std::from_chars(First, Last, Real).ptr != Last)
        return false;
    std::int64_t Integer = 0;
    const bool IsInteger = std::from_chars(First, Last, Integer).ptr == Last;
    return !IsInteger || std::to_string(Integer) != Text;
}

/// SQLite turns decimal digits into a double when 15 of them suffice, and else into the nearest one.
bool HasLostDigits(std::string_view Digits)
{
    constexpr int KeptDigits = 15;
    const auto First = std::min(Digits.find_first_of("123456789"), Digits.size());
    return std::ranges::count_if(Digits.substr(First), [](char C) { return C >= '0' && C <= '9'; }) >
           KeptDigits;
}

TSQLiteValue EncodeText(const TSQLiteColumn& Column, const TVariant& Value, TSQLiteScratch& Scratch)
{
    const auto Type = Column.Def.DataType;
    if (IsBinaryField(Type))
        return TSQLiteValue::OfBlob(Value.Text());
    if (IsNumericAffinity(Column.Affinity)) {
        if (IsTextField(Type) && ChangesAsNumber(Value.Text()))
            Refuse(Column, Value, erConversion, "SQLite turns this text into a number there");
        if (Type == ftBCD && HasLostDigits(Value.Text()))
            Refuse(Column, Value, erRange, "it has more digits than SQLite keeps");
    }
    return TSQLiteValue::OfText(AnsiToUtf8(Value.Text(), Scratch.Utf8));
}

/// True when `Text` says more than a TDateTime holds: digits past the milliseconds.
bool IsFinerThanMilliseconds(std::string_view Text)
{
    const auto Point = Text.find('.');
    return Point != Text.npos && Point + 4 < Text.size() &&
           Trim(Text).substr(Point + 4).find_first_not_of('0') != Text.npos;
}

std::optional<TDateTime> DecodeDateTime(TFieldType Type, std::string_view Text)
{
    const bool HasDate = Text.size() > 4 && Text[4] == '-';
    if (HasDate == (Type == ftTime) || IsFinerThanMilliseconds(Text))
        return std::nullopt;
    return TryIsoToDateTime(Text);
}

TVariant DecodeText(TFieldType Type, std::string_view Text)
{
    if (IsDateTimeField(Type))
        if (const auto Point = DecodeDateTime(Type, Text))
            return *Point;
    if (AnsiIsUtf8() || IsBinaryField(Type))
        return TVariant::Borrow(Text);
    return Utf8ToAnsi(Text);
}

TVariant DecodeInteger(TFieldType Type, std::int64_t Value)
{
    constexpr std::int64_t WholeMax = INT64_MAX / TCurrency::Scale;
    constexpr std::int64_t ExactDouble = std::int64_t{1} << 53;
    if (Type == ftBoolean && (Value == 0 || Value == 1))
        return Value == 1;
    if (Type == ftCurrency && Value <= WholeMax && Value >= -WholeMax)
        return TCurrency{Value * TCurrency::Scale};
    if (Type == ftFloat && Value <= ExactDouble && Value >= -ExactDouble)
        return static_cast<double>(Value);
    if (IsTextField(Type))
        return std::to_string(Value);
    return Value;
}

TVariant DecodeReal(TFieldType Type, double Value)
{
    if (Type == ftCurrency && std::fabs(Value) <= CurrencyMax) {
        const auto Amount = TCurrency::FromDouble(Value);
        if (Amount.ToDouble() == Value)
            return Amount;
    }
    return Value;
}

} // namespace

void TSQLiteColumn::SetType(const TSQLiteType& Type)
{
    Def.DataType = Type.Field;
    Def.Size = Type.Size;
    Def.Precision = Type.Precision;
    Def.Scale = Type.Scale;
    Affinity = Type.Affinity;
    KeepsText = !IsNumericAffinity(Affinity) && !IsBinaryField(Type.Field);
}

TSQLiteValue EncodeOtherValue(const TSQLiteColumn& Column, const TVariant& Value, TSQLiteScratch& Scratch)
{
    switch (Value.Kind()) {
    case vkEmpty:
    case vkNull:     return {};
    case vkInteger:  return TSQLiteValue::OfInteger(Value.Integer());
    case vkBoolean:  return TSQLiteValue::OfInteger(Value.Boolean());
    case vkDouble:   return EncodeDouble(Column, Value);
    case vkCurrency: return EncodeCurrency(Column, Value);
    case vkDateTime: return EncodeDateTime(Column, Value.DateTime(), Scratch);
    case vkString:   return EncodeText(Column, Value, Scratch);
    case vkArray:    break;
    }
    throw EConvertError("An array cannot be stored in field '" + Column.Def.Name + "'",
                        {.Field = Column.Def.Name, .Rule = erConversion});
}

TVariant DecodeValue(TFieldType Type, const TSQLiteValue& Stored)
{
    switch (Stored.Storage) {
    case ssNull:    break;
    case ssInteger: return DecodeInteger(Type, Stored.Integer);
    case ssReal:    return DecodeReal(Type, Stored.Real);
    case ssText:    return DecodeText(Type, Stored.Bytes);
    case ssBlob:    return TVariant::Borrow(Stored.Bytes);
    }
    return Null;
}

} // namespace kv
