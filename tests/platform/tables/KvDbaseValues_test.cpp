#include "KvDbaseValues.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "KvBytes.h"
#include "KvDbaseBuilder.h"
#include "KvException.h"
#include "KvFormatSettings.h"
#include "KvIsoDate.h"

namespace kv {

namespace {

/// The value with its kind in a word.
std::string Shown(const TVariant& Value)
{
    switch (Value.Kind()) {
    case vkNull:     return "null";
    case vkInteger:  return "integer " + Value.ToText();
    case vkDouble:   return "double " + Value.ToText();
    case vkCurrency: return "currency " + Value.ToText();
    case vkBoolean:  return "boolean " + Value.ToText();
    case vkDateTime: return "time " + DateTimeToIso(Value.DateTime());
    case vkString:   return "text " + Value.ToText();
    default:         return "something else";
    }
}

std::string Read(TKvDbaseStorage Storage, std::string_view Bytes)
{
    try {
        return Shown(DbaseValue(Storage, Bytes));
    }
    catch (const EFormatError& Error) {
        return Error.Message;
    }
}

struct TRow
{
    std::string Name;
    TKvDbaseStorage Storage;
    std::string Bytes;
    std::string Expected;
};

std::string NameOfRow(const testing::TestParamInfo<TRow>& Info) { return Info.param.Name; }

std::string BigEndian(std::string Bytes)
{
    return {Bytes.rbegin(), Bytes.rend()};
}

struct KvDbaseValues : testing::TestWithParam<TRow>
{
};

} // namespace

TEST_P(KvDbaseValues, AreReadAs)
{
    EXPECT_EQ(Read(GetParam().Storage, GetParam().Bytes), GetParam().Expected);
}

INSTANTIATE_TEST_SUITE_P(Texts, KvDbaseValues, testing::Values(
    TRow{"LosesBlanksBehind", dvText, "ab  ", "text ab"},
    TRow{"KeepsBlanksBefore", dvText, " ab ", "text  ab"},
    TRow{"LosesZerosBehind", dvText, std::string("ab\0\0", 4), "text ab"},
    TRow{"BlanksAreNull", dvText, "    ", "null"},
    TRow{"ZerosAreNull", dvText, std::string(4, '\0'), "null"}), NameOfRow);

INSTANTIATE_TEST_SUITE_P(Numbers, KvDbaseValues, testing::Values(
    TRow{"Whole", dvNumber, "   42", "integer 42"},
    TRow{"Negative", dvNumber, "  -42", "integer -42"},
    TRow{"WithPlus", dvNumber, "  +42", "integer 42"},
    TRow{"LeftAligned", dvNumber, "42   ", "integer 42"},
    TRow{"LeadingZeros", dvNumber, "00042", "integer 42"},
    TRow{"ZerosBehindAreNoDigits", dvNumber, std::string("42\0\0", 4), "integer 42"},
    TRow{"EighteenDigits", dvNumber, "999999999999999999", "integer 999999999999999999"},
    TRow{"TwoDecimals", dvNumber, "  1234.50", "currency 1234.5"},
    TRow{"FourDecimals", dvNumber, "-0.0001", "currency -0.0001"},
    TRow{"PointFirst", dvNumber, "  .5", "currency 0.5"},
    TRow{"PointLast", dvNumber, " 5. ", "integer 5"},
    TRow{"AmountThatADoubleRounds", dvNumber, "99999999999999.99", "currency 99999999999999.99"},
    TRow{"FiveDecimals", dvNumber, "3.14159", "double 3.14159"},
    TRow{"FifteenDigits", dvNumber, "0.00123456789012345", "double 0.00123456789012345"},
    TRow{"SixteenDigitsStayDigits", dvNumber, "1.234567890123456", "text 1.234567890123456"},
    TRow{"TwentyDigitsStayDigits", dvNumber, "12345678901234567890", "text 12345678901234567890"},
    TRow{"NegativeDigitsStayDigits", dvNumber, "-1.234567890123456", "text -1.234567890123456"},
    TRow{"Exponent", dvNumber, " 1.5E+10", "double 15000000000"},
    TRow{"Blank", dvNumber, "     ", "null"},
    TRow{"ZeroBytes", dvNumber, std::string(5, '\0'), "null"},
    TRow{"Asterisks", dvNumber, "*****", "null"},
    TRow{"AsterisksBehindBlanks", dvNumber, "  ***", "null"},
    TRow{"AsteriskAfterADigit", dvNumber, "1****", "'1****' is no number"},
    TRow{"Letters", dvNumber, " 12a ", "'12a' is no number"},
    TRow{"PointAlone", dvNumber, "  . ", "null"},
    TRow{"TwoPointsAlone", dvNumber, " .. ", "'..' is no number"},
    TRow{"SignAlone", dvNumber, "  - ", "'-' is no number"},
    TRow{"TwoPoints", dvNumber, "1.2.3", "'1.2.3' is no number"},
    TRow{"TwoSigns", dvNumber, " +-1", "'+-1' is no number"},
    TRow{"TwoMinuses", dvNumber, " --1", "'--1' is no number"},
    TRow{"BlankWithin", dvNumber, "1 2", "'1 2' is no number"},
    TRow{"Comma", dvNumber, " 1,5", "'1,5' is no number"},
    TRow{"NotANumber", dvNumber, " nan", "'nan' is no number"},
    TRow{"Float", dvFloat, "1.23456789012346", "double 1.23456789012346"},
    TRow{"FloatOfManyDigitsKeepsThem", dvFloat, "123456789012.3456781", "text 123456789012.3456781"},
    TRow{"FloatWithZerosBehind", dvFloat, "0.100000000000000000", "double 0.1"},
    TRow{"NumberWithZerosBehind", dvNumber, "2.000000000000000", "double 2"},
    TRow{"FloatOfAsterisks", dvFloat, "****", "null"},
    TRow{"FloatWhole", dvFloat, "   7", "double 7"},
    TRow{"FloatBlank", dvFloat, "    ", "null"},
    TRow{"FloatPointAlone", dvFloat, "  . ", "null"},
    TRow{"FloatInfinity", dvFloat, "  inf", "'inf' is no number"},
    TRow{"FloatOutOfRange", dvFloat, "1e999", "'1e999' is no number"}), NameOfRow);

INSTANTIATE_TEST_SUITE_P(Logicals, KvDbaseValues, testing::Values(
    TRow{"T", dvLogical, "T", "boolean True"}, TRow{"t", dvLogical, "t", "boolean True"},
    TRow{"Y", dvLogical, "Y", "boolean True"}, TRow{"y", dvLogical, "y", "boolean True"},
    TRow{"F", dvLogical, "F", "boolean False"}, TRow{"f", dvLogical, "f", "boolean False"},
    TRow{"N", dvLogical, "N", "boolean False"}, TRow{"n", dvLogical, "n", "boolean False"},
    TRow{"QuestionMark", dvLogical, "?", "null"}, TRow{"LogicalBlank", dvLogical, " ", "null"},
    TRow{"LogicalZero", dvLogical, std::string(1, '\0'), "null"},
    TRow{"One", dvLogical, "1", "boolean True"}, TRow{"Zero", dvLogical, "0", "boolean False"},
    TRow{"J", dvLogical, "J", "boolean True"}, TRow{"j", dvLogical, "j", "boolean True"},
    TRow{"S", dvLogical, "S", "boolean True"}, TRow{"s", dvLogical, "s", "boolean True"},
    TRow{"Digit", dvLogical, "2", "'2' is no logical value"}), NameOfRow);

INSTANTIATE_TEST_SUITE_P(
    Dates, KvDbaseValues,
    testing::Values(
        TRow{"LeapDay", dvDay, "20240229", "time 2024-02-29 00:00:00"},
        TRow{"FirstDay", dvDay, "00010101", "time 0001-01-01 00:00:00"},
        TRow{"LastDay", dvDay, "99991231", "time 9999-12-31 00:00:00"},
        TRow{"DateBlank", dvDay, "        ", "null"}, TRow{"DateOfZeros", dvDay, "00000000", "null"},
        TRow{"DateOfZeroBytes", dvDay, std::string(8, '\0'), "null"},
        TRow{"NoLeapDay", dvDay, "20230229", "'20230229' is no date"},
        TRow{"NoMonth", dvDay, "20231301", "'20231301' is no date"},
        TRow{"WithSlashes", dvDay, "12/31/02", "'12/31/02' is no date"},
        TRow{"TooShort", dvDay, "200212  ", "'200212' is no date"},
        TRow{"Moment", dvMoment, DbaseMoment(2450874, 57600000), "time 1998-03-01 16:00:00"},
        TRow{"MomentWithMilliseconds", dvMoment, DbaseMoment(2450874, 1), "time 1998-03-01 00:00:00.001"},
        TRow{"MomentBeforeDayZero", dvMoment, DbaseMoment(2415018, 21600000), "time 1899-12-29 06:00:00"},
        TRow{"MomentFirst", dvMoment, DbaseMoment(1721426, 0), "time 0001-01-01 00:00:00"},
        TRow{"MomentLast", dvMoment, DbaseMoment(5373484, 86399998), "time 9999-12-31 23:59:59.998"},
        TRow{"MomentThatHasNoSecondAfterIt", dvMoment, DbaseMoment(5373484, 86399999),
             "time 9999-12-31 23:59:59.999"},
        TRow{"MomentThatWasCutToMilliseconds", dvMoment, DbaseMoment(2450874, 57599999),
             "time 1998-03-01 16:00:00"},
        TRow{"MomentThatWasCutToMillisecondsAtMidnight", dvMoment, DbaseMoment(2415017, 86399999),
             "time 1899-12-29 00:00:00"},
        TRow{"MomentOfZeros", dvMoment, DbaseMoment(0, 0), "null"},
        TRow{"MomentOfBlanks", dvMoment, "        ", "null"},
        TRow{"MomentTooEarly", dvMoment, DbaseMoment(1721425, 0),
             "Julian day 1721425 with 0 milliseconds is no date and time"},
        TRow{"MomentTooLate", dvMoment, DbaseMoment(5373485, 0),
             "Julian day 5373485 with 0 milliseconds is no date and time"},
        TRow{"MomentWithTimeTooLong", dvMoment, DbaseMoment(2450874, 86400000),
             "Julian day 2450874 with 86400000 milliseconds is no date and time"},
        TRow{"MomentWithTimeNegative", dvMoment, DbaseMoment(2450874, -1),
             "Julian day 2450874 with -1 milliseconds is no date and time"}),
    NameOfRow);

INSTANTIATE_TEST_SUITE_P(Binary, KvDbaseValues, testing::Values(
    TRow{"Long", dvLong, DbaseLong(-7), "integer -7"},
    TRow{"LongZero", dvLong, DbaseLong(0), "integer 0"},
    TRow{"LongLowest", dvLong, DbaseLong(std::numeric_limits<std::int32_t>::min()), "integer -2147483648"},
    TRow{"Double", dvDouble, DbaseDouble(0.1), "double 0.1"},
    TRow{"DoubleWithoutEnd", dvDouble, DbaseDouble(std::numeric_limits<double>::infinity()),
         "its number is not finite"},
    TRow{"DoubleThatIsNoNumber", dvDouble, DbaseDouble(std::numeric_limits<double>::quiet_NaN()),
         "its number is not finite"},
    TRow{"Amount", dvAmount, DbaseAmount(123456), "currency 12.3456"},
    TRow{"AmountThatADoubleCannotHold", dvAmount, DbaseAmount(std::numeric_limits<std::int64_t>::max()),
         "currency 922337203685477.5807"},
    TRow{"OrderedLong", dvOrderedLong, std::string("\x80\x00\x00\x07", 4), "integer 7"},
    TRow{"OrderedLongNegative", dvOrderedLong, "\x7F\xFF\xFF\xF9", "integer -7"},
    TRow{"OrderedLongZeros", dvOrderedLong, std::string(4, '\0'), "null"},
    TRow{"OrderedDouble", dvOrderedDouble, BigEndian(DbaseDouble(-22.22)), "double 22.22"},
    TRow{"Timestamp", dvTimestamp, BigEndian(DbaseDouble(63173520000000.0)), "time 2002-11-21 00:00:00"},
    TRow{"TimestampWithItsSignBitFlipped", dvTimestamp, BigEndian(DbaseDouble(-63173520000000.0)),
         "time 2002-11-21 00:00:00"},
    TRow{"TimestampZeros", dvTimestamp, std::string(8, '\0'), "null"},
    TRow{"TimestampTooEarly", dvTimestamp, BigEndian(DbaseDouble(1.0)),
         "1 milliseconds lie outside the years 1 to 9999"}), NameOfRow);

TEST(KvDbaseNumber, DigitsHaveTheSeparatorOfTheProcess)
{
    const auto Saved = FormatSettings();
    FormatSettings().DecimalSeparator = ',';
    EXPECT_EQ(Read(dvNumber, "1.234567890123456"), "text 1,234567890123456");
    EXPECT_EQ(Read(dvNumber, "1.5"), "currency 1,5");
    FormatSettings() = Saved;
}

} // namespace kv
