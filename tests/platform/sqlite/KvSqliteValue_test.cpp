#include "KvSqliteValue.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <ostream>
#include <string>
#include <string_view>

#include "KvException.h"
#include "KvSqliteType.h"

namespace kv {

namespace {

TSQLiteColumn ColumnOf(std::string_view Declared)
{
    TSQLiteColumn Column;
    Column.Name = Column.Def.Name = "F";
    Column.SetType(ReadDeclaredType(Declared));
    return Column;
}

/// The storage class as a letter, and the value: "i17", "r0.5", "tabc", "babc", "null".
std::string Show(const TSQLiteValue& Value)
{
    switch (Value.Storage) {
    case ssInteger: return "i" + std::to_string(Value.Integer);
    case ssReal:    return "r" + TVariant(Value.Real).ToText();
    case ssText:    return "t" + std::string(Value.Bytes);
    case ssBlob:    return "b" + std::string(Value.Bytes);
    case ssNull:    break;
    }
    return "null";
}

std::string Encoded(std::string_view Declared, const TVariant& Value)
{
    TSQLiteScratch Scratch;
    return Show(EncodeValue(ColumnOf(Declared), Value, Scratch));
}

struct TEncodeRow
{
    std::string_view Declared;
    TVariant Value;
    std::string_view Stored;
};

std::ostream& operator<<(std::ostream& Out, const TEncodeRow& Row)
{
    return Out << Row.Stored << " in " << Row.Declared;
}

class KvSqliteValueStores : public testing::TestWithParam<TEncodeRow> {};

TEST_P(KvSqliteValueStores, AsSqliteKeepsIt)
{
    EXPECT_EQ(Encoded(GetParam().Declared, GetParam().Value), GetParam().Stored);
}

INSTANTIATE_TEST_SUITE_P(, KvSqliteValueStores, testing::Values(
    TEncodeRow{"INTEGER", TVariant(), "null"},
    TEncodeRow{"INTEGER", Null, "null"},
    TEncodeRow{"INTEGER", std::numeric_limits<std::int64_t>::min(), "i-9223372036854775808"},
    TEncodeRow{"BOOLEAN", true, "i1"},
    TEncodeRow{"REAL", 0.5, "r0.5"},
    TEncodeRow{"MONEY", TCurrency{120000}, "i12"},
    TEncodeRow{"MONEY", TCurrency{-123456}, "r-12.3456"},
    TEncodeRow{"DATE", TDateTime{45351}, "t2024-02-29"},
    TEncodeRow{"TIME", TDateTime{0.75}, "t18:00:00"},
    TEncodeRow{"DATETIME", TDateTime{45351.75}, "t2024-02-29 18:00:00"},
    TEncodeRow{"", TDateTime{45351}, "t2024-02-29 00:00:00"},
    TEncodeRow{"TEXT", "", "t"},
    TEncodeRow{"TEXT", "007", "t007"},
    TEncodeRow{"TEXT", std::string_view("a\0b", 3), std::string_view("ta\0b", 4)},
    TEncodeRow{"TEXT", "caf\xE9", "tcaf\xC3\xA9"},
    TEncodeRow{"TEXT", "caf\xC3\xA9", "tcaf\xC3\xA9"},
    TEncodeRow{"BLOB", "caf\xE9", "bcaf\xE9"},
    TEncodeRow{"BLOB", "", "b"},
    TEncodeRow{"STRING", "abc", "tabc"},
    TEncodeRow{"STRING", "7", "t7"},
    TEncodeRow{"STRING", "1-2", "t1-2"},
    TEncodeRow{"STRING", "2024-02-29", "t2024-02-29"},
    TEncodeRow{"DECIMAL(20,4)", "123456789012.345", "t123456789012.345"}));

struct TRefuseRow
{
    std::string_view Declared;
    TVariant Value;
    std::string_view Message;
};

std::ostream& operator<<(std::ostream& Out, const TRefuseRow& Row)
{
    return Out << Row.Message;
}

class KvSqliteValueRefuses : public testing::TestWithParam<TRefuseRow> {};

TEST_P(KvSqliteValueRefuses, WhatSqliteWouldChange)
{
    try {
        ADD_FAILURE() << Encoded(GetParam().Declared, GetParam().Value);
    }
    catch (const EConvertError& Error) {
        EXPECT_EQ(Error.Message, GetParam().Message);
    }
}

INSTANTIATE_TEST_SUITE_P(, KvSqliteValueRefuses, testing::Values(
    TRefuseRow{"REAL", std::numeric_limits<double>::quiet_NaN(),
               "'NAN' cannot be kept in field 'F': it is not a number"},
    TRefuseRow{"STRING", "007",
               "'007' cannot be kept in field 'F': SQLite turns this text into a number there"},
    TRefuseRow{"GUID", "00000000000000000000000000000012",
               "'00000000000000000000000000000012' cannot be kept in field 'F': "
               "SQLite turns this text into a number there"},
    TRefuseRow{"STRING", "1e5",
               "'1e5' cannot be kept in field 'F': SQLite turns this text into a number there"},
    TRefuseRow{"STRING", " 1.5",
               "' 1.5' cannot be kept in field 'F': SQLite turns this text into a number there"},
    TRefuseRow{"DECIMAL(30,10)", "12345678901234567.8",
               "'12345678901234567.8' cannot be kept in field 'F': it has more digits than SQLite keeps"},
    TRefuseRow{"MONEY", TCurrency{INT64_MAX},
               "'922337203685477.5807' cannot be kept in field 'F': it has more digits than SQLite keeps"},
    TRefuseRow{"TEXT", TVariant::Array(0, 1), "An array cannot be stored in field 'F'"}));

/// The kind of variant as a letter, and its text: "i17", "d0.5", "c12.5", "n" for null.
std::string Show(const TVariant& Value)
{
    static constexpr std::string_view Letters[] = {"e", "n", "i", "d", "c", "t", "b", "s", "a"};
    return std::string(Letters[Value.Kind()]) + Value.ToText();
}

struct TDecodeRow
{
    TFieldType Type;
    TSQLiteValue Stored;
    std::string_view Read;
};

std::ostream& operator<<(std::ostream& Out, const TDecodeRow& Row)
{
    return Out << Show(Row.Stored) << " as type " << Row.Type;
}

class KvSqliteValueReads : public testing::TestWithParam<TDecodeRow> {};

TEST_P(KvSqliteValueReads, InTheKindOfTheFieldOrAsItIs)
{
    EXPECT_EQ(Show(DecodeValue(GetParam().Type, GetParam().Stored)), GetParam().Read);
}

TSQLiteValue Text(std::string_view Value)
{
    return TSQLiteValue::OfText(Value);
}

TSQLiteValue Integer(std::int64_t Value)
{
    return TSQLiteValue::OfInteger(Value);
}

TSQLiteValue Real(double Value)
{
    return TSQLiteValue::OfReal(Value);
}

INSTANTIATE_TEST_SUITE_P(Fitting, KvSqliteValueReads, testing::Values(
    TDecodeRow{ftLargeint, {}, "n"},
    TDecodeRow{ftLargeint, Integer(INT64_MIN), "i-9223372036854775808"},
    TDecodeRow{ftBoolean, Integer(0), "bFalse"},
    TDecodeRow{ftBoolean, Integer(1), "bTrue"},
    TDecodeRow{ftFloat, Integer(3), "d3"},
    TDecodeRow{ftCurrency, Integer(12), "c12"},
    TDecodeRow{ftCurrency, Real(12.5), "c12.5"},
    TDecodeRow{ftBCD, Integer(12), "i12"},
    TDecodeRow{ftDate, Text("2024-02-29"), "t2/29/2024"},
    TDecodeRow{ftDateTime, Text("2024-02-29T18:00"), "t2/29/2024 18:00:00"},
    TDecodeRow{ftDateTime, Text("2024-02-29 18:00:00.500000"), "t2/29/2024 18:00:00.500"},
    TDecodeRow{ftTime, Text("18:00:00"), "t12/30/1899 18:00:00"},
    TDecodeRow{ftString, Text(""), "s"},
    TDecodeRow{ftBlob, TSQLiteValue::OfBlob("\xFF"), "s\xFF"}));

INSTANTIATE_TEST_SUITE_P(NotFitting, KvSqliteValueReads, testing::Values(
    TDecodeRow{ftLargeint, Text("abc"), "sabc"},
    TDecodeRow{ftLargeint, Real(1.5), "d1.5"},
    TDecodeRow{ftBoolean, Integer(2), "i2"},
    TDecodeRow{ftBoolean, Text("yes"), "syes"},
    TDecodeRow{ftFloat, Integer(INT64_MAX), "i9223372036854775807"},
    TDecodeRow{ftCurrency, Real(12.345678), "d12.345678"},
    TDecodeRow{ftCurrency, Integer(INT64_MAX), "i9223372036854775807"},
    TDecodeRow{ftDate, Text("29.02.2024"), "s29.02.2024"},
    TDecodeRow{ftDate, Integer(20240229), "i20240229"},
    TDecodeRow{ftDate, Text("18:00"), "s18:00"},
    TDecodeRow{ftDateTime, Text("2024-02-29T18:00:00Z"), "s2024-02-29T18:00:00Z"},
    TDecodeRow{ftDateTime, Text("2024-02-29 18:00:00.123456"), "s2024-02-29 18:00:00.123456"},
    TDecodeRow{ftTime, Text("2024-02-29 18:00:00"), "s2024-02-29 18:00:00"},
    TDecodeRow{ftString, Integer(7), "s7"},
    TDecodeRow{ftString, TSQLiteValue::OfBlob("\xFF"), "s\xFF"}));

} // namespace

} // namespace kv
