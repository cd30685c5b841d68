#include "KvMdbValues.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <iterator>
#include <string_view>

#include "KvByteCursor.h"
#include "KvCodePage.h"
#include "KvException.h"
#include "KvMdbCalculated.h"
#include "KvMdbDecimal.h"
#include "KvMdbLongValue.h"
#include "KvMdbText.h"
#include "KvVariant.h"

namespace kv {

namespace {

constexpr int CurrencyPlaces = 4;
constexpr std::size_t GuidSize = 16;

/// The number that fills `Bytes`.
template <class T> T NumberOf(std::string_view Bytes)
{
    if (Bytes.size() != sizeof(T))
        throw EFormatError("its value is damaged: it takes " + std::to_string(Bytes.size()) +
                           " bytes instead of " + std::to_string(sizeof(T)));
    return LoadLittleEndian<T>(Bytes.data());
}

template <class T> T Finite(T Number)
{
    return std::isfinite(Number) ? Number : throw EFormatError("its number is not finite");
}

/// The double that is written as the number is: 0.1, where all digits of the float are 0.10000000149011612.
double AsWritten(float Number)
{
    char Digits[32];
    const auto Last = std::to_chars(std::begin(Digits), std::end(Digits), Number).ptr;
    double Result = 0;
    std::from_chars(Digits, Last, Result);
    return Result;
}

double DaysOf(double Days)
{
    constexpr double FirstDay = -657434, DayAfterLast = 2958466; // years 100 to 9999, as Access has them
    if (Days >= FirstDay && Days < DayAfterLast)
        return Days;
    char Text[32];
    const auto Last = std::to_chars(std::begin(Text), std::end(Text), Days).ptr;
    throw EFormatError("day " + std::string(Text, Last) + " lies outside the years 100 to 9999");
}

/// As people write it: "{00020810-0000-0000-C000-000000000046}".
std::string GuidText(std::string_view Bytes)
{
    if (Bytes.size() != GuidSize)
        throw EFormatError("its value is damaged: it takes " + std::to_string(Bytes.size()) +
                           " bytes instead of 16");
    TKvByteCursor In(Bytes);
    const unsigned First = In.Take<std::uint32_t>();
    const unsigned Second = In.Take<std::uint16_t>(), Third = In.Take<std::uint16_t>();
    char Text[40];
    int Size = std::snprintf(Text, sizeof Text, "{%08X-%04X-%04X-", First, Second, Third);
    for (int I = 0; I < 8; ++I)
        Size += std::snprintf(Text + Size, sizeof Text - static_cast<std::size_t>(Size),
                              I == 1 ? "%02X-" : "%02X", In.Take<std::uint8_t>());
    return std::string(Text, static_cast<std::size_t>(Size)) + '}';
}

// libmdb 1.0 has the two in each other's place. No number has more digits after its point than it has.
int PrecisionOf(const MdbColumn& Column)
{
    return std::max(Column.col_prec, Column.col_scale);
}

int ScaleOf(const MdbColumn& Column)
{
    return std::min(Column.col_prec, Column.col_scale);
}

} // namespace

TAccessField DescribeField(const MdbColumn& Column, bool IsUnicode)
{
    TAccessField Field;
    Field.Name = Column.name;
    Field.Type = static_cast<TAccessFieldType>(Column.col_type);
    Field.Size = static_cast<std::uint32_t>(Column.col_size);
    if (Field.Type == afText && IsUnicode)
        Field.Size /= 2;
    if (Field.Type == afMemo || Field.Type == afOle)
        Field.Size = 0;
    if (Field.Type == afDecimal) {
        Field.Precision = static_cast<std::uint8_t>(PrecisionOf(Column));
        Field.Scale = static_cast<std::uint8_t>(ScaleOf(Column));
    }
    return Field;
}

void TMdbValues::WriteRecord(const TMdbRows& Rows)
{
    for (std::size_t I = 0; I < Rows.FieldCount(); ++I) {
        try {
            if (Rows.IsCalculated(I))
                WriteCalculated(Rows.Column(I), Rows.Value(I));
            else
                WriteValue(Rows.Column(I), Rows.Value(I));
        }
        catch (const Exception& Error) {
            Writer.Refused(Rows.Place() + ", field " + Rows.Column(I).name + ": " + Error.Message);
        }
    }
    Writer.EndRecord();
}

void TMdbValues::WriteValue(const MdbColumn& Column, const TMdbValue& Value)
{
    if (Column.col_type == afBoolean)
        return Writer.Boolean(!Value.IsNull);       // the mark of a null is all that the record has of it
    if (Value.IsNull)
        return Writer.Null();
    switch (const auto Bytes = Value.Bytes; static_cast<TAccessFieldType>(Column.col_type)) {
    case afBoolean:  break;
    case afByte:     return Writer.Integer(NumberOf<std::uint8_t>(Bytes));
    case afInteger:  return Writer.Integer(NumberOf<std::int16_t>(Bytes));
    case afLong:     return Writer.Integer(NumberOf<std::int32_t>(Bytes));
    case afComplex:  throw Exception(UnreadableType(afComplex)); // its number leads to other tables
    case afBigInt:   return Writer.Integer(NumberOf<std::int64_t>(Bytes));
    case afCurrency: return Writer.Currency(NumberOf<std::int64_t>(Bytes));
    case afSingle:   return Writer.Double(AsWritten(Finite(NumberOf<float>(Bytes))));
    case afDouble:   return Writer.Double(Finite(NumberOf<double>(Bytes)));
    case afDateTime: return Writer.DateTime(DaysOf(NumberOf<double>(Bytes)));
    case afBinary:   return Writer.Bytes(Bytes);
    case afText:     return WriteText(Bytes);
    case afMemo:     return WriteText(ReadLongValue(File, Bytes, LongValue));
    case afOle:      return Writer.Bytes(ReadLongValue(File, Bytes, LongValue));
    case afGuid:     return Writer.Text(GuidText(Bytes));
    case afDecimal:  return WriteDecimal(Bytes, ScaleOf(Column));
    }
    throw Exception(UnreadableType(static_cast<TAccessFieldType>(Column.col_type)));
}

void TMdbValues::WriteCalculated(const MdbColumn& Column, const TMdbValue& Value)
{
    if (Value.IsNull)
        return Column.col_type == afBoolean ? Writer.Boolean(false) : Writer.Null();
    if (Column.col_type == afMemo)
        return WriteText(CalculatedValue(ReadLongValue(File, Value.Bytes, LongValue)));
    const auto Bytes = CalculatedValue(Value.Bytes);
    if (Column.col_type == afBoolean)
        Writer.Boolean(NumberOf<std::uint8_t>(Bytes) != 0);
    else
        WriteValue(Column, {.IsNull = false, .Bytes = Bytes});
}

void TMdbValues::WriteText(std::string_view Bytes)
{
    Writer.Text(File.IsUnicode() ? ReadUnicodeText(Bytes, Utf8) : AnsiToUtf8(Bytes, Utf8));
}

void TMdbValues::WriteDecimal(std::string_view Bytes, int Scale)
{
    if (Bytes.size() != TMdbDecimal::Size)
        throw EFormatError("its value is damaged: it takes " + std::to_string(Bytes.size()) +
                           " bytes instead of 17");
    const TMdbDecimal Number(Bytes, Scale);
    if (const auto Whole = Number.Scaled(0))
        Writer.Integer(*Whole);
    else if (const auto Amount = Number.Scaled(CurrencyPlaces))
        Writer.Currency(*Amount);
    else
        Writer.Decimal(Number.ToText());
}

} // namespace kv
