#include "KvSeparatorCheck.h"

#include <gtest/gtest.h>

namespace kv {

namespace {

TEST(KvSeparatorCheck, AcceptsThousandsAndWhatHasNone)
{
    for (const auto* const Number : {"", "5", "1234567.25", "1,234", "1,234,567.5", "-12,345.00",
                                     " +123,456 ", ".5", "abc", "1e5"})
        EXPECT_TRUE(IsGroupedInThousands(Number, ',', '.')) << Number;
}

TEST(KvSeparatorCheck, RefusesWhatMayBeAFraction)
{
    for (const auto* const Number : {"1,5", "12,34", "1234,567", "1,2345", "1,23,456", "1,234,5", ",5",
                                     "1.5,000", "1,", "12,345,67.8"})
        EXPECT_FALSE(IsGroupedInThousands(Number, ',', '.')) << Number;
}

TEST(KvSeparatorCheck, GoesByTheSeparatorsGiven)
{
    EXPECT_TRUE(IsGroupedInThousands("1.234,5", '.', ','));
    EXPECT_FALSE(IsGroupedInThousands("1,234.5", '.', ','));
}

} // namespace

} // namespace kv
