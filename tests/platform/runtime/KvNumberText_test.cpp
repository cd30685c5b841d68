#include "KvNumberText.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <random>
#include <string>

#include "KvException.h"
#include "KvSettingsGuard.h"

namespace kv {
namespace {

class KvNumberText : public testing::Test
{
    TKvSettingsGuard Guard;
};

class KvNumberTextGerman : public testing::Test
{
    TKvSettingsGuard Guard{GermanSettings()};
};

TEST_F(KvNumberText, ReadsIntegers)
{
    const std::pair<const char*, std::int64_t> Rows[] = {
        {"0", 0},
        {"-0", 0},
        {"+5", 5},
        {"-5", -5},
        {" 12\t", 12},
        {"000123", 123},
        {"9223372036854775807", std::numeric_limits<std::int64_t>::max()},
        {"-9223372036854775808", std::numeric_limits<std::int64_t>::min()},
    };
    for (const auto& [Text, Value] : Rows)
        EXPECT_EQ(TryTextToInt(Text), Value) << Text;
}

TEST_F(KvNumberText, RefusesWhatIsNoInteger)
{
    for (const auto* const Text : {"", " ", "+", "-", "+-5", "-+5", "++5", "1 2", "1.0", "1e3", "0x10", "$10",
                                   "12a", "9223372036854775808", "-9223372036854775809", "1,000"})
        EXPECT_EQ(TryTextToInt(Text), std::nullopt) << Text;
    EXPECT_EQ(MessageOf<EConvertError>([] { TextToInt("abc"); }), "'abc' is not a valid integer value");
}

TEST_F(KvNumberText, DecimalsKeepTheirDigits)
{
    const std::pair<const char*, TVariant> Rows[] = {
        {"12345678901234567", std::int64_t{12345678901234567}},
        {" -7 ", -7},
        {"2.000000000000000", 2},
        {"5.", 5},
        {"0.10", TCurrency{1000}},
        {"922337203685477.5807", TCurrency{INT64_MAX}},
        {"0.00001", 0.00001},
        {"1E3", 1000.0},
        {"123456789012.345678", "123456789012.345678"},
        {"-999999999999999999.9999999999", "-999999999999999999.9999999999"},
        {"9223372036854775808", "9223372036854775808"},
        {"1000000000000000000000", "1000000000000000000000"},
    };
    for (const auto& [Text, Expected] : Rows) {
        TVariant Value;
        ASSERT_TRUE(TryTextToDecimal(Text, Value)) << Text;
        EXPECT_EQ(Value.Kind(), Expected.Kind()) << Text;
        EXPECT_EQ(Value, Expected) << Text;
    }
    for (const auto* const Text : {"", "abc", "1,5", "1.2.3", "."}) {
        TVariant Value;
        EXPECT_FALSE(TryTextToDecimal(Text, Value)) << Text;
    }
}

TEST_F(KvNumberText, NumbersAreShownWithFifteenDigits)
{
    const std::pair<double, const char*> Rows[] = {
        {4.35 * 100, "435"},
        {0.1 + 0.2, "0.3"},
        {1.0 / 3, "0.333333333333333"},
        {4000123412341234.0, "4000123412341234"},
        {-9007199254740992.0, "-9007199254740992"},
        {1e20, "100000000000000000000"},
        {1e21, "1E21"},
        {1.5e-7, "1.5E-7"},
        {-0.0, "0"},
    };
    for (const auto& [Value, Text] : Rows)
        EXPECT_EQ(ShownText(Value), Text);
    EXPECT_EQ(ShownNumber(4.35 * 100), 435);
    EXPECT_EQ(ShownNumber(4000123412341234.0), 4000123412341234.0);
    EXPECT_TRUE(std::isnan(ShownNumber(std::nan(""))));
}

TEST_F(KvNumberText, ReadsNumbers)
{
    const std::pair<const char*, double> Rows[] = {
        {"0", 0},
        {"1", 1},
        {"-1.5", -1.5},
        {"+5", 5},
        {"+.5", 0.5},
        {".5", 0.5},
        {"5.", 5},
        {" 1.25 ", 1.25},
        {"1e5", 1e5},
        {"1E+5", 1e5},
        {"1e-5", 1e-5},
        {"5.e1", 50},
        {"1.7976931348623157e308", std::numeric_limits<double>::max()},
        {"5e-324", std::numeric_limits<double>::denorm_min()},
        {"0e999", 0},
        {"123456789012345678901234567890", 123456789012345678901234567890.0},
    };
    for (const auto& [Text, Value] : Rows)
        EXPECT_EQ(TryTextToFloat(Text), Value) << Text;
    EXPECT_TRUE(std::signbit(*TryTextToFloat("-0")));
}

TEST_F(KvNumberText, RefusesWhatIsNoNumber)
{
    for (const auto* const Text :
         {"",    " ",    ".",     "+",   "-",      "-.",    "+-5",      "--5",   "1 2",
          "1,5", "1.5.", "1..5",  "inf", "-inf",   "nan",   "infinity", "0x10",  "1e",
          "1e+", "e5",   "1e5.5", "1f",  "1.5 kg", "1e999", "-1e999",   "1e-999"})
        EXPECT_EQ(TryTextToFloat(Text), std::nullopt) << Text;
    EXPECT_EQ(MessageOf<EConvertError>([] { TextToFloat("abc"); }),
              "'abc' is not a valid floating point value");
}

TEST_F(KvNumberText, ReadsNumbersOfAnyLength)
{
    EXPECT_EQ(TryTextToFloat("1." + std::string(1000, '0')), 1.0);
    EXPECT_EQ(TryTextToFloat("0." + std::string(1000, '0') + "1e1001"), 1.0);
}

TEST_F(KvNumberText, NumbersOfAnyLengthAreTheNearestDoubles)
{
    std::mt19937 Random(1);
    for (int Round = 0; Round < 100000; ++Round) {
        std::string Text(1 + Random() % 20, '0');
        for (auto& Digit : Text)
            Digit = static_cast<char>('0' + Random() % 10);
        Text[Random() % Text.size()] = Random() % 2 ? '.' : '7';
        if (Text == ".")
            continue;
        ASSERT_EQ(TryTextToFloat(Text), std::strtod(Text.c_str(), nullptr)) << Text;
    }
}

TEST_F(KvNumberTextGerman, FractionFollowsTheDecimalSeparator)
{
    EXPECT_EQ(TryTextToFloat("1,5"), 1.5);
    EXPECT_EQ(TryTextToFloat(",5"), 0.5);
    EXPECT_EQ(TryTextToFloat("5,"), 5);
    EXPECT_EQ(TryTextToFloat("1.5"), std::nullopt);
    EXPECT_EQ(TryTextToFloat("1.234,5"), std::nullopt);
    EXPECT_EQ(TryTextToFloat("1,2,3"), std::nullopt);
    EXPECT_EQ(TryTextToFloat("1," + std::string(1000, '0')), 1.0);
    EXPECT_EQ(FloatToText(1.5), "1,5");
    EXPECT_EQ(FloatToText(1.5e300), "1,5E300");
    EXPECT_EQ(TryTextToCurrency("1,5"), TCurrency{15000});
    EXPECT_EQ(TryTextToCurrency("1.5"), std::nullopt);
    EXPECT_EQ(CurrencyToText({15000}), "1,5");
}

TEST_F(KvNumberText, ReadsCurrency)
{
    const std::pair<const char*, std::int64_t> Rows[] = {
        {"0", 0},
        {"1", 10000},
        {"-1.5", -15000},
        {"+1.2345", 12345},
        {".5", 5000},
        {"5.", 50000},
        {" 0.0001 ", 1},
        {"00000000000000000000001", 10000},
        {"922337203685477.5807", std::numeric_limits<std::int64_t>::max()},
        {"-922337203685477.5808", std::numeric_limits<std::int64_t>::min()},
    };
    for (const auto& [Text, Scaled] : Rows)
        EXPECT_EQ(TryTextToCurrency(Text), TCurrency{Scaled}) << Text;
}

TEST_F(KvNumberText, RefusesWhatIsNoExactAmount)
{
    for (const auto* const Text :
         {"", ".", "-", "-.", "1.23456", "1.00000", "1e3", "1,5", "1..5", "1.5.", "abc", "--1",
          "922337203685477.5808", "-922337203685477.5809", "9223372036854775807", "99999999999999999999"})
        EXPECT_EQ(TryTextToCurrency(Text), std::nullopt) << Text;
}

TEST_F(KvNumberText, WritesTheShortestNumber)
{
    const std::pair<double, const char*> Rows[] = {
        {0, "0"},
        {-0.0, "0"},
        {1, "1"},
        {0.1, "0.1"},
        {-2.5, "-2.5"},
        {100000, "100000"},
        {123456.789, "123456.789"},
        {999999999999999, "999999999999999"},
        {1e15, "1E15"},
        {1e300, "1E300"},
        {1.25e-300, "1.25E-300"},
        {0.00001, "0.00001"},
        {0.000001, "1E-6"},
        {1.0 / 3, "0.3333333333333333"},
        {std::numeric_limits<double>::infinity(), "INF"},
    };
    for (const auto& [Value, Text] : Rows)
        EXPECT_EQ(FloatToText(Value), Text);
}

TEST_F(KvNumberText, EveryNumberReadsBack)
{
    std::mt19937_64 Random(1);
    for (int Round = 0; Round < 20000; ++Round) {
        const auto Value = std::bit_cast<double>(Random());
        if (std::isfinite(Value)) {
            ASSERT_EQ(TryTextToFloat(FloatToText(Value)), Value);
        }
        const TCurrency Amount{static_cast<std::int64_t>(Random()) >> (Round % 64)};
        ASSERT_EQ(TryTextToCurrency(CurrencyToText(Amount)), Amount);
    }
}

TEST_F(KvNumberText, WritesCurrencyWithoutTrailingZeros)
{
    const std::pair<std::int64_t, const char*> Rows[] = {
        {0, "0"},
        {10000, "1"},
        {12000, "1.2"},
        {12345, "1.2345"},
        {1, "0.0001"},
        {-1, "-0.0001"},
        {-5000, "-0.5"},
        {-15000, "-1.5"},
        {std::numeric_limits<std::int64_t>::max(), "922337203685477.5807"},
        {std::numeric_limits<std::int64_t>::min(), "-922337203685477.5808"},
    };
    for (const auto& [Scaled, Text] : Rows)
        EXPECT_EQ(CurrencyToText({Scaled}), Text);
}

} // namespace
} // namespace kv
