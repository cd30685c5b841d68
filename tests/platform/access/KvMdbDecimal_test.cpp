#include "KvMdbDecimal.h"

#include <gtest/gtest.h>

#include <cstdint>

#include "KvBytes.h"

namespace kv {

namespace {

/// Words from the highest to the lowest.
TMdbDecimal Decimal(bool Negative, std::uint32_t A, std::uint32_t B, std::uint32_t C, std::uint32_t D,
                    int Scale)
{
    return TMdbDecimal(TBytes().U8(Negative ? 0x80 : 0).U32(A).U32(B).U32(C).U32(D).Str(), Scale);
}

TEST(KvMdbDecimal, ANumberWithoutAFractionIsAnInteger)
{
    EXPECT_EQ(Decimal(false, 0, 0, 0, 42, 0).Scaled(0), 42);
    EXPECT_EQ(Decimal(true, 0, 0, 0, 42, 0).Scaled(0), -42);
    EXPECT_EQ(Decimal(false, 0, 0, 0, 0, 6).Scaled(0), 0);
    EXPECT_EQ(Decimal(false, 0, 0, 0, 4200, 2).Scaled(0), 42);
    EXPECT_EQ(Decimal(false, 0, 0, 1, 0, 0).Scaled(0), std::int64_t(1) << 32);
}

TEST(KvMdbDecimal, AShortFractionIsAnAmount)
{
    EXPECT_EQ(Decimal(false, 0, 0, 0, 1250, 2).Scaled(0), std::nullopt);
    EXPECT_EQ(Decimal(false, 0, 0, 0, 1250, 2).Scaled(4), 125000);
    EXPECT_EQ(Decimal(true, 0, 0, 0, 12345, 4).Scaled(4), -12345);
    EXPECT_EQ(Decimal(false, 0, 0, 0, 150000000, 8).Scaled(4), 15000) << "zeros at the end say nothing";
}

TEST(KvMdbDecimal, WhatDoesNotFitKeepsAllItsDigitsAsText)
{
    EXPECT_EQ(Decimal(false, 0, 0, 0, 12345, 5).Scaled(4), std::nullopt);
    EXPECT_EQ(Decimal(false, 0, 0, 0, 12345, 5).ToText(), "0.12345");
    EXPECT_EQ(Decimal(true, 0, 0, 0, 12345, 8).ToText(), "-0.00012345");
    // 9999999999999999999999999999, the greatest number of 28 digits
    const auto Greatest = Decimal(false, 0, 0x204FCE5E, 0x3E250261, 0x0FFFFFFF, 0);
    EXPECT_EQ(Greatest.Scaled(0), std::nullopt);
    EXPECT_EQ(Greatest.Scaled(4), std::nullopt);
    EXPECT_EQ(Greatest.ToText(), "9999999999999999999999999999");
    EXPECT_EQ(Decimal(true, 0, 0x204FCE5E, 0x3E250261, 0x0FFFFFFF, 28).ToText(),
              "-0.9999999999999999999999999999");
}

TEST(KvMdbDecimal, AllBitsAndAnyScaleHaveAText)
{
    EXPECT_EQ(Decimal(false, ~0u, ~0u, ~0u, ~0u, 0).ToText(), "340282366920938463463374607431768211455");
    EXPECT_EQ(Decimal(false, ~0u, ~0u, ~0u, ~0u, 255).Scaled(4), std::nullopt);
    EXPECT_EQ(Decimal(false, ~0u, ~0u, ~0u, ~0u, 255).ToText().size(), 257);
    EXPECT_EQ(Decimal(true, 0, 0, 0, 0, 0).ToText(), "0");
}

} // namespace

} // namespace kv
