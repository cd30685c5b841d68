#include "KvWrittenNumber.h"

#include <gtest/gtest.h>

namespace kv {

namespace {

std::string Plain(std::string_view Text, char Thousand = ',', char Decimal = '.')
{
    std::string Storage;
    return std::string(TryPlainNumber(Text, Thousand, Decimal, Storage).value_or("none"));
}

TEST(KvWrittenNumber, ReadsSignsBeforeAndAfterTheDigits)
{
    EXPECT_EQ(Plain("5.5"), "5.5");
    EXPECT_EQ(Plain("+5"), "5");
    EXPECT_EQ(Plain("-5"), "-5");
    EXPECT_EQ(Plain("5.5-"), "-5.5");
    EXPECT_EQ(Plain("\xE2\x88\x92" "7"), "-7");
    EXPECT_EQ(Plain("7\xE2\x88\x92"), "-7");
    EXPECT_EQ(Plain("1e\xE2\x88\x92" "3"), "1E-3");
    EXPECT_EQ(Plain(".5"), ".5");
    EXPECT_EQ(Plain("5."), "5.");
    EXPECT_EQ(Plain(" 1,000.25E+2\t"), "1000.25E2");
}

TEST(KvWrittenNumber, RemovesSeparatorsThatGroup)
{
    EXPECT_EQ(Plain("1,000"), "1000");
    EXPECT_EQ(Plain("-1,234,567.89"), "-1234567.89");
    EXPECT_EQ(Plain("12,34,567"), "1234567");
    EXPECT_EQ(Plain("1.234,5", '.', ','), "1234,5");
    EXPECT_EQ(Plain("1'000", '\''), "1000");
    for (const char* const Blank : {"\xC2\xA0", "\xE2\x80\xAF", "\xE2\x80\x89", "\xA0"}) {
        EXPECT_EQ(Plain("1" + std::string(Blank) + "234,5", '.', ','), "1234,5");
        EXPECT_EQ(Plain(Blank + std::string("12") + Blank), "12");
    }
}

TEST(KvWrittenNumber, RefusesSeparatorsThatDoNot)
{
    for (const char* const Text : {"1,5", "1,23", "1,2345", "1234,567", ",123", "1,", "1,,000", "1,2,345",
                                   "1,000\xC2\xA0" "000", "1.234,567", "1,234,56", "0,500", "-0,125"})
        EXPECT_EQ(Plain(Text), "none") << Text;
}

TEST(KvWrittenNumber, RefusesWhatIsNoNumber)
{
    for (const char* const Text : {"", "-", "--5", "-5-", "+5-", "5e", "5e+", "abc", "5 kg", "inf", "1 2",
                                   "\xC2\xA0"})
        EXPECT_EQ(Plain(Text), "none") << Text;
}

} // namespace

} // namespace kv
