#include "KvName.h"

#include <gtest/gtest.h>

#include "KvCodePage.h"

namespace kv {

namespace {

TEST(KvName, LettersOfAllScriptsHaveAnUpperCase)
{
    EXPECT_EQ(UpperName("City_1"), "CITY_1");
    EXPECT_EQ(UpperName("stra\xC3\x9F" "e gr\xC3\xBC\xC3\x9F"), "STRA\xC3\x9F" "E GR\xC3\x9C\xC3\x9F");
    EXPECT_EQ(UpperName("\xD0\xB3\xD0\xBE\xD1\x80\xD0\xBE\xD0\xB4"),
              "\xD0\x93\xD0\x9E\xD0\xA0\xD0\x9E\xD0\x94");
    EXPECT_EQ(UpperName("\xCF\x80"), "\xCE\xA0");
    EXPECT_EQ(UpperName("\xF0\x90\x90\xA8"), "\xF0\x90\x90\x80"); // past the first 65536
}

TEST(KvName, BytesThatAreNoTextStay)
{
    EXPECT_EQ(UpperName("a\xFF" "b"), "A\xFF" "B");
    EXPECT_TRUE(SameName("a\xFF", "A\xFF"));
}

TEST(KvName, NamesAreTheSameInAnyCase)
{
    EXPECT_TRUE(SameName("ID", "id"));
    EXPECT_TRUE(SameName("Gr\xC3\xB6\xC3\x9F" "e", "GR\xC3\x96\xC3\x9F" "E"));
    EXPECT_FALSE(SameName("\xC3\xB6", "o"));
    EXPECT_FALSE(SameName("a", "b"));
}

TEST(KvName, OtherCodePagesHaveCasesToo)
{
    SetAnsiCodePage("windows-1252");
    EXPECT_EQ(UpperName("\xFC" "ber"), "\xDC" "BER");
    EXPECT_TRUE(SameName("\xFC", "\xDC"));
    SetAnsiCodePage("windows-1251");
    EXPECT_EQ(UpperName("\xE3\xEE"), "\xC3\xCE");
    SetAnsiCodePage("UTF-8");
}

} // namespace

} // namespace kv
