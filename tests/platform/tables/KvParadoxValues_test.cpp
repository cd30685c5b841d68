#include "KvParadoxValues.h"

#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>

#include "KvCalendar.h"
#include "KvException.h"
#include "KvFormatSettings.h"
#include "KvIsoDate.h"
#include "KvParadoxBuilder.h"

namespace kv {

namespace {

using namespace std::string_view_literals;

std::string ErrorOf(TKvParadoxType Type, std::string_view Bytes)
{
    try {
        ParadoxValue(Type, Bytes);
    }
    catch (const EFormatError& Error) {
        return Error.Message;
    }
    return "";
}

/// Kind and value agree.
void ExpectSame(const TVariant& Found, const TVariant& Expected)
{
    EXPECT_EQ(Found.Kind(), Expected.Kind());
    EXPECT_EQ(Found, Expected) << Found.ToText();
}

TDateTime Point(const TCalendar& Calendar) { return *EncodeDateTime(Calendar); }

TVariant Decimal(std::string_view Digits, unsigned Decimals)
{
    return ParadoxValue(ptBcd, ParadoxBcd(Digits, Decimals));
}

} // namespace

TEST(KvParadoxValues, ZerosAreBlankInEveryType)
{
    const std::string Zeros(17, '\0');
    for (const auto& [Type, Size] : std::initializer_list<std::pair<TKvParadoxType, std::size_t>>{
             {ptAlpha, 10}, {ptDate, 4}, {ptShort, 2}, {ptLong, 4}, {ptCurrency, 8}, {ptNumber, 8},
             {ptLogical, 1},
             {ptTime, 4}, {ptTimestamp, 8}, {ptAutoIncrement, 4}, {ptBcd, 17}, {ptBytes, 5}})
        EXPECT_TRUE(ParadoxValue(Type, std::string_view(Zeros).substr(0, Size)).IsNull()) << int{Type};
}

TEST(KvParadoxValues, IntegersOfBothSizesKeepTheirSign)
{
    ExpectSame(ParadoxValue(ptShort, "\x80\x0F"sv), 15);
    for (const int Value : {-32767, -1, 0, 1, 32767})
        ExpectSame(ParadoxValue(ptShort, ParadoxShort(Value)), Value);
    ExpectSame(ParadoxValue(ptLong, "\x80\x00\x00\x03"sv), 3);
    for (const int Value : {-2147483647, -1, 0, 1, 2147483647}) {
        ExpectSame(ParadoxValue(ptLong, ParadoxLong(Value)), Value);
        ExpectSame(ParadoxValue(ptAutoIncrement, ParadoxLong(Value)), Value);
    }
}

TEST(KvParadoxValues, NumbersAreTheDoublesOfTheFile)
{
    ExpectSame(ParadoxValue(ptNumber, "\xC0\x9E\x38\x00\x00\x00\x00\x00"sv), 1934.0);
    for (const double Value : {-1e300, -3709.91, -0.1, 0.0, 0.1, 3709.91,
                               std::numeric_limits<double>::max()}) {
        ExpectSame(ParadoxValue(ptNumber, ParadoxNumber(Value)), Value);
        ExpectSame(ParadoxValue(ptCurrency, ParadoxNumber(Value)), Value);
    }
}

TEST(KvParadoxValues, ANumberThatIsNoneIsAnError)
{
    constexpr auto Infinity = std::numeric_limits<double>::infinity();
    EXPECT_EQ(ErrorOf(ptNumber, ParadoxNumber(Infinity)), "its number is not finite");
    EXPECT_EQ(ErrorOf(ptCurrency, ParadoxNumber(-Infinity)), "its number is not finite");
    EXPECT_EQ(ErrorOf(ptTimestamp, ParadoxNumber(std::numeric_limits<double>::quiet_NaN())),
              "its number is not finite");
}

TEST(KvParadoxValues, LogicalValuesAreTrueFalseOrBlank)
{
    ExpectSame(ParadoxValue(ptLogical, "\x80"sv), false);
    ExpectSame(ParadoxValue(ptLogical, "\x81"sv), true);
    EXPECT_EQ(ErrorOf(ptLogical, "\x01"sv), "byte 0x01 is no logical value");
    EXPECT_EQ(ErrorOf(ptLogical, "\x82"sv), "byte 0x82 is no logical value");
}

TEST(KvParadoxValues, DatesCountFromTheYear1)
{
    ExpectSame(ParadoxValue(ptDate, ParadoxLong(1)), Point({.Year = 1, .Month = 1, .Day = 1}));
    ExpectSame(ParadoxValue(ptDate, ParadoxLong(577736)), Point({.Year = 1582, .Month = 10, .Day = 15}));
    ExpectSame(ParadoxValue(ptDate, ParadoxLong(693594)), TDateTime{0});
    ExpectSame(ParadoxValue(ptDate, "\x80\x0B\x3D\xB7"sv), Point({.Year = 2018, .Month = 1, .Day = 1}));
    ExpectSame(ParadoxValue(ptDate, ParadoxLong(3652059)), Point({.Year = 9999, .Month = 12, .Day = 31}));
}

TEST(KvParadoxValues, ADateOutsideTheCalendarIsAnError)
{
    EXPECT_EQ(ErrorOf(ptDate, ParadoxLong(0)), "day 0 lies outside the years 1 to 9999");
    EXPECT_EQ(ErrorOf(ptDate, ParadoxLong(-7)), "day -7 lies outside the years 1 to 9999");
    EXPECT_EQ(ErrorOf(ptDate, ParadoxLong(3652060)), "day 3652060 lies outside the years 1 to 9999");
}

TEST(KvParadoxValues, TimesCountMilliseconds)
{
    ExpectSame(ParadoxValue(ptTime, ParadoxLong(0)), TDateTime{0});
    ExpectSame(ParadoxValue(ptTime, ParadoxLong(21600000)), TDateTime{0.25});
    EXPECT_EQ(TimeToIso(ParadoxValue(ptTime, "\x80\x36\xF2\x68"sv).DateTime()), "01:00:01");
    EXPECT_EQ(TimeToIso(ParadoxValue(ptTime, ParadoxLong(86399999)).DateTime()), "23:59:59.999");
    EXPECT_EQ(ErrorOf(ptTime, ParadoxLong(-1)), "-1 milliseconds are no time of day");
    EXPECT_EQ(ErrorOf(ptTime, ParadoxLong(86400000)), "86400000 milliseconds are no time of day");
}

TEST(KvParadoxValues, TimestampsCountMillisecondsOfAllDays)
{
    const auto Text = [](std::string_view Bytes) {
        return DateTimeToIso(ParadoxValue(ptTimestamp, Bytes).DateTime());
    };
    EXPECT_EQ(Text("\xC2\xCC\xF9\x8A\xCB\x19\x34\x00"sv), "2020-02-01 01:00:01");
    EXPECT_EQ(Text(ParadoxNumber(86400000.0)), "0001-01-01 00:00:00");
    EXPECT_EQ(Text(ParadoxNumber(693593 * 86400000.0 + 21600001)), "1899-12-29 06:00:00.001"); // before day 0
    EXPECT_EQ(Text(ParadoxNumber(3652059 * 86400000.0 + 86399999)), "9999-12-31 23:59:59.999");
    EXPECT_EQ(ErrorOf(ptTimestamp, ParadoxNumber(86399999)),
              "86399999 milliseconds lie outside the years 1 to 9999");
    EXPECT_EQ(ErrorOf(ptTimestamp, ParadoxNumber(1e300)),
              "1E300 milliseconds lie outside the years 1 to 9999");
}

TEST(KvParadoxValues, DecimalNumbersTakeTheirSimplestExactForm)
{
    ExpectSame(ParadoxValue(ptBcd, "\xC2\0\0\0\0\0\0\0\0\0\0\0\0\0\0\x01\x23"sv), TCurrency{12300});
    ExpectSame(ParadoxValue(ptBcd, "\x42\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFE\xDC"sv),
               TCurrency{-12300});
    ExpectSame(Decimal("0", 2), 0);
    ExpectSame(Decimal("-5.00", 2), -5);
    ExpectSame(Decimal("12.5", 1), TCurrency{125000});
    ExpectSame(Decimal("922337203685477.5807", 4), TCurrency{std::numeric_limits<std::int64_t>::max()});
    ExpectSame(Decimal("9223372036854775807", 0), std::numeric_limits<std::int64_t>::max());
    ExpectSame(Decimal("-9223372036854775808.000", 3), std::numeric_limits<std::int64_t>::min());
}

TEST(KvParadoxValues, DecimalNumbersThatFitNoKindComeAsTheirDigits)
{
    ExpectSame(Decimal("9223372036854775808", 0), "9223372036854775808");
    ExpectSame(Decimal("922337203685477.5808", 4), "922337203685477.5808");
    ExpectSame(Decimal("-0.00001", 5), "-0.00001");
    ExpectSame(Decimal("0.12345678901234567890123456789012", 32), "0.12345678901234567890123456789012");
    ExpectSame(Decimal("99999999999999999999999999999999", 0), "99999999999999999999999999999999");
}

TEST(KvParadoxValues, DigitsHaveTheDecimalSeparatorOfTheProcess)
{
    FormatSettings().DecimalSeparator = ',';
    const auto Value = Decimal("1.00001", 5);
    FormatSettings().DecimalSeparator = '.';
    ExpectSame(Value, "1,00001");
}

TEST(KvParadoxValues, WhatIsNoDecimalNumberIsAnError)
{
    const auto Damaged = [](std::size_t Offset, char Byte) {
        auto Bytes = ParadoxBcd("1.23", 2);
        Bytes[Offset] = Byte;
        return ErrorOf(ptBcd, Bytes);
    };
    EXPECT_EQ(Damaged(16, '\x2A'), "0xC20000000000000000000000000000012A is no decimal number");
    EXPECT_EQ(Damaged(1, '\xB0'), "0xC2B0000000000000000000000000000123 is no decimal number");
    EXPECT_EQ(Damaged(0, '\x82'), "0x8200000000000000000000000000000123 is no decimal number");
    EXPECT_EQ(Damaged(0, '\xE1'), "0xE100000000000000000000000000000123 is no decimal number"); // 33 decimals
}

TEST(KvParadoxValues, TextsEndAtTheirFirstZero)
{
    ExpectSame(ParadoxValue(ptAlpha, "Ada\0\0"sv), "Ada");
    ExpectSame(ParadoxValue(ptAlpha, "Grace"sv), "Grace");
    ExpectSame(ParadoxValue(ptAlpha, " a \0x"sv), " a ");
}

TEST(KvParadoxValues, BytesAreAllThoseOfTheField)
{
    ExpectSame(ParadoxValue(ptBytes, "\0\x01\0\0"sv), "\0\x01\0\0"sv);
}

TEST(KvParadoxValues, TextsAreLoans)
{
    const auto Bytes = "a text that is longer than a variant keeps by itself"sv;
    EXPECT_EQ(ParadoxValue(ptAlpha, Bytes).Text().data(), Bytes.data());
    EXPECT_EQ(ParadoxValue(ptBytes, Bytes).Text().data(), Bytes.data());
}

} // namespace kv
