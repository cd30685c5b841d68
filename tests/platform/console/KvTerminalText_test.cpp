#include "KvTerminalText.h"

#include <gtest/gtest.h>

#include <string>

namespace kv {

namespace {

using namespace std::string_literals;

TEST(KvTerminalText, CountsColumnsOfTheScreen)
{
    EXPECT_EQ(DisplayWidth(""), 0);
    EXPECT_EQ(DisplayWidth("abc"), 3);
    EXPECT_EQ(DisplayWidth("Łódź"), 4);
    EXPECT_EQ(DisplayWidth("東京"), 4);
    EXPECT_EQ(DisplayWidth("서울"), 4);
    EXPECT_EQ(DisplayWidth("e\u0301"), 1);          // a combining accent
    EXPECT_EQ(DisplayWidth("a\xFF" "b"), 3);
    EXPECT_EQ(DisplayWidth("\xE6\x9D"), 2);         // two bytes of a character of three
}

TEST(KvTerminalText, CutsWhatDoesNotFit)
{
    EXPECT_EQ(FitToWidth("abc", 3), "abc");
    EXPECT_EQ(FitToWidth("abcd", 3), "ab…");
    EXPECT_EQ(FitToWidth("東京", 4), "東京");
    EXPECT_EQ(FitToWidth("東京都", 5), "東京…");
    EXPECT_EQ(FitToWidth("東京都", 4), "東…");
    EXPECT_EQ(FitToWidth("ab", 1), "…");
    EXPECT_EQ(FitToWidth("a", 0), "");
    EXPECT_EQ(FitToWidth("e\u0301e\u0301", 2), "e\u0301e\u0301");
}

TEST(KvTerminalText, PadsByColumnsAndNotByBytes)
{
    EXPECT_EQ(PadToWidth("東京", 6), "東京  ");
    EXPECT_EQ(PadToWidth("Łódź", 6, true), "  Łódź");
    EXPECT_EQ(PadToWidth("abcdef", 3), "abcdef");
}

TEST(KvTerminalText, WritesOutWhatWouldSteerTheTerminal)
{
    EXPECT_EQ(VisibleText("a\tb\r\n"), "a\\tb\\r\\n");
    EXPECT_EQ(VisibleText("\x1B[2J\x7F"), "\\x1B[2J\\x7F");
    EXPECT_EQ(VisibleText("\0"s), "\\x00");
    EXPECT_EQ(VisibleText("\xC2\x9B"), "\\x9B");    // the one-character form of ESC [
    EXPECT_EQ(VisibleText("a\u202Eb"), "a\\u202Eb");
    EXPECT_EQ(VisibleText("Łódź 東京 שמש"), "Łódź 東京 שמש");
}

TEST(KvTerminalText, WritesOutWhatCannotBeSeen)
{
    EXPECT_EQ(VisibleText("a\u200Bb\u200E\uFEFF"), "a\\u200Bb\\u200E\\uFEFF");
    EXPECT_EQ(VisibleText("\u2028\u2066x\u2069\u061C"), "\\u2028\\u2066x\\u2069\\u061C");
    EXPECT_EQ(VisibleText("\u00AD"), "\\xAD");
    EXPECT_EQ(VisibleText("\U000E0041"), "\\U000E0041"); // a letter of a tag
    EXPECT_EQ(VisibleText("e\u0301"), "e\u0301") << "an accent is seen";
}

TEST(KvTerminalText, EscapesTheSameInJson)
{
    EXPECT_EQ(VisibleJson("{\"a\":\"x\u202Ey\u200B\x7F\"}\n"), "{\"a\":\"x\\u202Ey\\u200B\\u007F\"}\n");
    EXPECT_EQ(VisibleJson("\"\xC2\x9B\U000E0041\""), "\"\\u009B\\uDB40\\uDC41\"");
    EXPECT_EQ(VisibleJson("\"Łódź 東京\\n\""), "\"Łódź 東京\\n\"");
}

TEST(KvTerminalText, AMessageHoldsTheBeginningOfALongText)
{
    EXPECT_EQ(BriefText(std::string(300, 'x')), std::string(300, 'x'));
    const auto Brief = BriefText(std::string(1 << 20, 'x'));
    EXPECT_EQ(Brief, std::string(249, 'x') + "…");
    EXPECT_LE(BriefText(std::string(1 << 20, '\x01')).size(), 300u) << "characters without a width count too";
}

TEST(KvTerminalText, ReplacesWhatIsNoUtf8)
{
    EXPECT_EQ(VisibleText("a\xFF" "b"), "a\uFFFDb");
    EXPECT_EQ(VisibleText("\xC0\xAF"), "\uFFFD\uFFFD"); // an overlong "/"
    EXPECT_EQ(VisibleText("\xED\xA0\x80"), "\uFFFD\uFFFD\uFFFD"); // half of a surrogate pair
    EXPECT_EQ(VisibleText("\xF4\x90\x80\x80"), "\uFFFD\uFFFD\uFFFD\uFFFD"); // past the last character
    EXPECT_EQ(VisibleText("\xE6\x9D"), "\uFFFD\uFFFD");
}

TEST(KvTerminalText, GroupsDigits)
{
    EXPECT_EQ(GroupDigits(0), "0");
    EXPECT_EQ(GroupDigits(999), "999");
    EXPECT_EQ(GroupDigits(1000), "1,000");
    EXPECT_EQ(GroupDigits(1234567), "1,234,567");
    EXPECT_EQ(GroupDigits(-123456), "-123,456");
    EXPECT_EQ(GroupDigits(-123), "-123");
}

} // namespace

} // namespace kv
