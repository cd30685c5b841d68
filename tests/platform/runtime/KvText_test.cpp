#include "KvText.h"

#include <gtest/gtest.h>

#include <string>

#include "KvException.h"
#include "KvSettingsGuard.h"

namespace kv {
namespace {

TEST(KvText, TrimTakesControlCharactersAndBlanksOffBothEnds)
{
    EXPECT_EQ(Trim(""), "");
    EXPECT_EQ(Trim(" \t\r\n"), "");
    EXPECT_EQ(Trim("\x01 a b \x1F"), "a b");
    EXPECT_EQ(Trim("\xA0x\xA0"), "\xA0x\xA0");
    EXPECT_EQ(Trim(std::string_view("\0x\0", 3)), "x");
}

TEST(KvText, UpperCaseLeavesOtherLettersAlone)
{
    EXPECT_EQ(UpperCase("azAZ09{`\xE4"), "AZAZ09{`\xE4");
}

TEST(KvText, SameTextIgnoresTheCaseOfAsciiLetters)
{
    EXPECT_TRUE(SameText("", ""));
    EXPECT_TRUE(SameText("Name1", "nAME1"));
    EXPECT_FALSE(SameText("Name", "Name1"));
    EXPECT_FALSE(SameText("\xE4", "\xC4"));
    EXPECT_FALSE(SameText("[", "{"));
}

TEST(KvText, HexTextIsReversible)
{
    const std::string Bytes{'\0', '\xFF', 'A'};
    EXPECT_EQ(TextToHex(""), "");
    EXPECT_EQ(TextToHex(Bytes), "00FF41");
    EXPECT_EQ(HexToText("00fF41"), Bytes);
}

TEST(KvText, HexToTextIgnoresAnOddLastDigit)
{
    EXPECT_EQ(HexToText("414"), "A");
    EXPECT_EQ(HexToText("4"), "");
}

TEST(KvText, HexToTextRefusesOtherCharacters)
{
    EXPECT_EQ(MessageOf<EConvertError>([] { HexToText("41G1"); }), "'$G1' is not a valid integer value");
    EXPECT_EQ(MessageOf<EConvertError>([] { HexToText("4 "); }), "'$4 ' is not a valid integer value");
}

TEST(KvText, FormatTextReplacesInOrder)
{
    EXPECT_EQ(FormatText("", {}), "");
    EXPECT_EQ(FormatText("plain", {"unused"}), "plain");
    EXPECT_EQ(FormatText("%s: %d of %s", {"a", "1", "b"}), "a: 1 of b");
    EXPECT_EQ(FormatText("%s%s", {"%s", "x"}), "%sx");
    EXPECT_EQ(FormatText("100% %x %", {"a"}), "100% %x %");
    EXPECT_EQ(FormatText("%s %s", {"only"}), "only %s");
}

} // namespace
} // namespace kv
