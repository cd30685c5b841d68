#include "KvColumnLetters.h"

#include <gtest/gtest.h>

#include <string>

namespace kv {

TEST(KvColumnLetters, OneLetterIsAColumnFrom0)
{
    EXPECT_EQ(ColumnOfLetters("A"), 0);
    EXPECT_EQ(ColumnOfLetters("Z"), 25);
}

TEST(KvColumnLetters, TwoLettersGoOnAfterZ)
{
    EXPECT_EQ(ColumnOfLetters("AA"), 26);
    EXPECT_EQ(ColumnOfLetters("AZ"), 51);
    EXPECT_EQ(ColumnOfLetters("BA"), 52);
    EXPECT_EQ(ColumnOfLetters("IV"), 255);
}

TEST(KvColumnLetters, CaseDoesNotMatter)
{
    EXPECT_EQ(ColumnOfLetters("b"), 1);
    EXPECT_EQ(ColumnOfLetters("iV"), 255);
}

TEST(KvColumnLetters, NoLettersAreTheFirstColumn)
{
    EXPECT_EQ(ColumnOfLetters(""), 0);
}

TEST(KvColumnLetters, ThreeLettersFollowTheSameRule)
{
    // 1, then 1 + 1 * 26 * 1 = 27, then 1 + 2 * 26 * 27 = 1405
    EXPECT_EQ(ColumnOfLetters("AAA"), 1404);
}

TEST(KvColumnLetters, WhatNamesNoColumnIsFarFromAny)
{
    EXPECT_EQ(ColumnOfLetters("@"), -1);
    EXPECT_GT(ColumnOfLetters("CUSTOMER"), 255);
    EXPECT_GT(ColumnOfLetters(std::string(1000, 'Z')), 255);
    EXPECT_LT(ColumnOfLetters(" A" + std::string(1000, ' ')), 0);
}

TEST(KvColumnLetters, NumbersFrom1HaveLetters)
{
    EXPECT_EQ(LettersOfColumn(1), "A");
    EXPECT_EQ(LettersOfColumn(26), "Z");
    EXPECT_EQ(LettersOfColumn(27), "AA");
    EXPECT_EQ(LettersOfColumn(53), "BA");
    EXPECT_EQ(LettersOfColumn(256), "IV");
}

TEST(KvColumnLetters, NumberZeroIsAnAtSign)
{
    EXPECT_EQ(LettersOfColumn(0), "@");
}

TEST(KvColumnLetters, MultiplesOf26AboveItEndInAnAtSign)
{
    EXPECT_EQ(LettersOfColumn(52), "B@");
    EXPECT_EQ(LettersOfColumn(78), "C@");
    EXPECT_EQ(LettersOfColumn(234), "I@");
}

TEST(KvColumnLetters, SpreadsheetsHaveAzInstead)
{
    EXPECT_EQ(SpreadSheetLetters(1), "A");
    EXPECT_EQ(SpreadSheetLetters(26), "Z");
    EXPECT_EQ(SpreadSheetLetters(52), "AZ");
    EXPECT_EQ(SpreadSheetLetters(78), "BZ");
    EXPECT_EQ(SpreadSheetLetters(702), "ZZ");
    EXPECT_EQ(SpreadSheetLetters(703), "AAA");
}

TEST(KvColumnLetters, EveryColumnIsReadBackFromBothNames)
{
    for (int Number = 1; Number <= 256; ++Number) {
        EXPECT_EQ(ColumnOfLetters(LettersOfColumn(Number)), Number - 1);
        EXPECT_EQ(ColumnOfLetters(SpreadSheetLetters(Number)), Number - 1);
    }
}

} // namespace kv
