#include "KvxlsNumbers.h"

#include <gtest/gtest.h>

#include <cstdint>

#include "KvBiffBuilder.h"

namespace kv {

TEST(KvxlsNumbers, RkValuesOfSmallIntegers)
{
    EXPECT_EQ(RkNumber(2), 0.0);
    EXPECT_EQ(RkNumber(6), 1.0);
    EXPECT_EQ(RkNumber(7), 0.01);
}

TEST(KvxlsNumbers, AnRkIntegerIsSigned)
{
    EXPECT_EQ(RkNumber(RkOfInteger(-1)), -1.0);
    EXPECT_EQ(RkNumber(0xFFFFFFFE), -1.0);
    EXPECT_EQ(RkNumber(RkOfInteger(-12345, true)), -123.45);
    EXPECT_EQ(RkNumber(0x7FFFFFFE), 536870911.0);
    EXPECT_EQ(RkNumber(0x80000002), -536870912.0);
}

TEST(KvxlsNumbers, AnRkDoubleIsTheHighHalf)
{
    EXPECT_EQ(RkNumber(0), 0.0);
    EXPECT_EQ(RkNumber(0x3FF00000), 1.0);
    EXPECT_EQ(RkNumber(RkOfDouble(-1.5)), -1.5);
    EXPECT_EQ(RkNumber(0x3FF00001), 0.01);
    EXPECT_EQ(RkNumber(RkOfDouble(12350, true)), 123.5);
}

TEST(KvxlsNumbers, TextsOfErrors)
{
    EXPECT_EQ(ExcelErrorText(0x00), "#NULL!");
    EXPECT_EQ(ExcelErrorText(0x07), "#DIV/0!");
    EXPECT_EQ(ExcelErrorText(0x0F), "#VALUE!");
    EXPECT_EQ(ExcelErrorText(0x17), "#REF!");
    EXPECT_EQ(ExcelErrorText(0x1D), "#NAME?");
    EXPECT_EQ(ExcelErrorText(0x24), "#NUM!");
    EXPECT_EQ(ExcelErrorText(0x2A), "#N/A");
    EXPECT_EQ(ExcelErrorText(0x01), "#???");
    EXPECT_EQ(ExcelErrorText(0xFF), "#???");
}

TEST(KvxlsNumbers, TheTwoLowBitsOfTheAttributeAlign)
{
    EXPECT_EQ(AttributeAlignment(0), taLeftJustify);
    EXPECT_EQ(AttributeAlignment(1), taLeftJustify);
    EXPECT_EQ(AttributeAlignment(2), taCenter);
    EXPECT_EQ(AttributeAlignment(3), taRightJustify);
    EXPECT_EQ(AttributeAlignment(0xFC), taLeftJustify);
    EXPECT_EQ(AttributeAlignment(0xFE), taCenter);
    EXPECT_EQ(AttributeAlignment(0xFF), taRightJustify);
}

} // namespace kv
