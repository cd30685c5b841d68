#include "KvTextLines.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "KvRandomText.h"
#include "KvTextReference.h"

using namespace std::string_literals;
using testing::ElementsAre;

namespace kv {

namespace {

using TRow = std::vector<std::string>;

TRow Cut(std::string_view Text, const TKvTextLineRules& Rules)
{
    TRow Result;
    for (TKvTextLines Lines(Text, Rules); Lines.Next();)
        Result.emplace_back(Lines.Line());
    return Result;
}

TRow Cut(std::string_view Text, std::string_view Separator = "\r\n", std::string_view Qualifier = "\"")
{
    return Cut(Text, {.Separator = Separator, .Qualifier = Qualifier});
}

/// By RFC 4180, values separated by commas.
constexpr TKvTextLineRules Rfc4180{
    .Separator = "\r\n", .Qualifier = "\"", .DoubledQualifiers = true, .Delimiter = ','};

} // namespace

TEST(KvTextLines, AnEmptyTextHasNoLine)
{
    TKvTextLines Lines("", {.Separator = "\r\n"});
    EXPECT_FALSE(Lines.Next());
    EXPECT_FALSE(Lines.Next());
    EXPECT_EQ(Lines.Number(), 0u);
}

TEST(KvTextLines, NumbersLinesFromOneAndTellsWhereTheNextBegins)
{
    TKvTextLines Lines("one\r\ntwo\r\n", {.Separator = "\r\n"});
    ASSERT_TRUE(Lines.Next());
    EXPECT_EQ(Lines.Line(), "one");
    EXPECT_EQ(Lines.Number(), 1u);
    EXPECT_EQ(Lines.Offset(), 5u);
    ASSERT_TRUE(Lines.Next());
    EXPECT_EQ(Lines.Line(), "two");
    EXPECT_EQ(Lines.Number(), 2u);
    EXPECT_FALSE(Lines.Next());
}

TEST(KvTextLines, TheLastLineNeedsNoEnd)
{
    EXPECT_THAT(Cut("one\r\ntwo"), ElementsAre("one", "two"));
    EXPECT_THAT(Cut("one\r\ntwo\r\n"), ElementsAre("one", "two"));
    EXPECT_THAT(Cut("one\r\n\r\n"), ElementsAre("one", ""));
}

TEST(KvTextLines, AnyCharacterOfTheSeparatorEndsALine)
{
    EXPECT_THAT(Cut("one\ntwo\rthree\r\nfour"), ElementsAre("one", "two", "three", "four"));
}

TEST(KvTextLines, TheSeparatorIsSkippedOnlyInItsOwnOrder)
{
    EXPECT_THAT(Cut("one\n\rtwo"), ElementsAre("one", "", "two")); // LF ends one line, CR the next
    EXPECT_THAT(Cut("one\r\r\ntwo"), ElementsAre("one", "", "two"));
    EXPECT_THAT(Cut("one\r\n\ntwo"), ElementsAre("one", "", "two"));
    EXPECT_THAT(Cut("one;|two;three|;four", ";|"), ElementsAre("one", "two", "three", "", "four"));
}

TEST(KvTextLines, OtherLineEndsAreText)
{
    EXPECT_THAT(Cut("one\r\ntwo", "\n"), ElementsAre("one\r", "two"));
    EXPECT_THAT(Cut("one\r\ntwo", "\r"), ElementsAre("one", "\ntwo"));
}

TEST(KvTextLines, WithoutASeparatorTheTextIsOneLine)
{
    EXPECT_THAT(Cut("one\r\ntwo", ""), ElementsAre("one\r\ntwo"));
    EXPECT_THAT(Cut("one\r\ntwo", "", ""), ElementsAre("one\r\ntwo"));
}

TEST(KvTextLines, ASeparatorMayHaveManyCharacters)
{
    EXPECT_THAT(Cut("a1b2c3d4e5f6g", "123456"), ElementsAre("a", "b", "c", "d", "e", "f", "g"));
    EXPECT_THAT(Cut("a123456b", "123456"), ElementsAre("a", "b"));
    EXPECT_THAT(Cut("a\"3\"3b", "123456"), ElementsAre("a\"3\"", "b"));
}

TEST(KvTextLines, AQualifiedLineEndIsText)
{
    EXPECT_THAT(Cut("1,\"a\r\nb\",2\r\n3"), ElementsAre("1,\"a\r\nb\",2", "3"));
}

TEST(KvTextLines, AQualifierAtTheStartOfALineCounts)
{
    EXPECT_THAT(Cut("\"a\r\nb\"\r\n\"c\""), ElementsAre("\"a\r\nb\"", "\"c\""));
}

TEST(KvTextLines, EveryQualifierSwitchesWhereverItStands)
{
    EXPECT_THAT(Cut("5\" disk\r\n3\" disk\r\nend"), ElementsAre("5\" disk\r\n3\" disk", "end"));
    EXPECT_THAT(Cut("\"a\"\"\r\nb\"\r\nc"), ElementsAre("\"a\"\"\r\nb\"", "c"));
}

TEST(KvTextLines, AnOpenQualifierHidesTheRestOfTheText)
{
    EXPECT_THAT(Cut("one\r\n\"two\r\nthree\r\n"), ElementsAre("one", "\"two\r\nthree\r\n"));
}

TEST(KvTextLines, EachLineBeginsUnqualified)
{
    EXPECT_THAT(Cut("a\r\n\"b\r\n\"\r\nc"), ElementsAre("a", "\"b\r\n\"", "c"));
}

TEST(KvTextLines, OnlyASingleCharacterIsAQualifier)
{
    EXPECT_THAT(Cut("\"a\r\nb\"", "\r\n", ""), ElementsAre("\"a", "b\""));
    EXPECT_THAT(Cut("\"'a\r\nb'\"", "\r\n", "\"'"), ElementsAre("\"'a", "b'\""));
    EXPECT_THAT(Cut("\0a\r\nb\0\r\nc"s, "\r\n", "\0"s), ElementsAre("\0a\r\nb\0"s, "c"));
}

TEST(KvTextLines, TheEndOfFileCharacterStays)
{
    EXPECT_THAT(Cut("one\r\ntwo\x1A"), ElementsAre("one", "two\x1A"));
    EXPECT_THAT(Cut("one\r\n\x1A"), ElementsAre("one", "\x1A"));
}

TEST(KvTextLines, ZeroBytesAreText)
{
    EXPECT_THAT(Cut("a\0b\r\n\0"s), ElementsAre("a\0b"s, "\0"s));
}

TEST(KvTextLines, AQualifierThatIsALineEndTooEndsALineWhereItCloses)
{
    EXPECT_THAT(Cut("|a\n|b\nc", "\n|", "|"), ElementsAre("|a\n", "b", "c"));
}

TEST(KvTextLines, LineEndsAreFoundAtAnyPlaceOfALongLine)
{
    for (std::size_t Size = 0; Size < 70; ++Size) {
        const auto Long = std::string(Size, 'x');
        EXPECT_THAT(Cut(Long + "\n" + Long + "\r\n" + "y" + Long), ElementsAre(Long, Long, "y" + Long))
            << Size;
    }
}

TEST(KvTextLines, GoOnInTheTextThatFollows)
{
    TKvTextLines Lines({.Separator = "\r\n", .Qualifier = "\""});
    EXPECT_FALSE(Lines.Next());
    Lines.GoOnIn("one\r", false);
    EXPECT_FALSE(Lines.Next()) << "a line feed may follow";
    EXPECT_EQ(Lines.Rest(), "one\r");
    Lines.GoOnIn("one\r\n\"two\r\n", false);
    ASSERT_TRUE(Lines.Next());
    EXPECT_EQ(Lines.Line(), "one");
    EXPECT_FALSE(Lines.Next());
    Lines.GoOnIn("\"two\r\n\"\r\nthree", true);
    ASSERT_TRUE(Lines.Next());
    EXPECT_EQ(Lines.Line(), "\"two\r\n\"");
    EXPECT_EQ(Lines.Number(), 2u);
    ASSERT_TRUE(Lines.Next());
    EXPECT_EQ(Lines.Line(), "three");
    EXPECT_EQ(Lines.PlainNumber(), 4u);
    EXPECT_FALSE(Lines.Next());
}

TEST(KvTextLines, ASeparatorMayHaveToBeWhole)
{
    const TKvTextLineRules Whole{.Separator = "aab", .Qualifier = "\"", .WholeSeparator = true};
    EXPECT_THAT(Cut("1aab2aaab3aa", Whole), ElementsAre("1", "2a", "3aa"));
    EXPECT_THAT(Cut("\"1aab\"aab2", Whole), ElementsAre("\"1aab\"", "2"));
    EXPECT_THAT(Cut("aab", Whole), ElementsAre(""));
    EXPECT_THAT(Cut("1|\"|2", {.Separator = "|\"|", .Qualifier = "\"", .WholeSeparator = true}),
                ElementsAre("1", "2")) << "the qualifier in it hides nothing of it";
}

TEST(KvTextLines, CountTheLineEndsThatAreHidden)
{
    const auto PlainNumbers = [](std::string_view Text, const TKvTextLineRules& Rules) {
        std::vector<std::size_t> Result;
        for (TKvTextLines Lines(Text, Rules); Lines.Next();)
            Result.push_back(Lines.PlainNumber());
        return Result;
    };
    const TKvTextLineRules Classic{.Separator = "\r\n", .Qualifier = "\""};
    for (const auto& Rules : {Classic, Rfc4180}) {
        EXPECT_THAT(PlainNumbers("\"a\r\nb\"\r\nc\r\nd", Rules), ElementsAre(1u, 3u, 4u));
        EXPECT_THAT(PlainNumbers("\"a\rb\n\rc\"\r\nc", Rules), ElementsAre(1u, 5u));
        EXPECT_THAT(PlainNumbers("\"\"\"\n\"\"\"\nc", Rules), ElementsAre(1u, 3u));
    }
    EXPECT_THAT(PlainNumbers("\"a|~b|\"|~c", {.Separator = "|~", .Qualifier = "\"", .WholeSeparator = true}),
                ElementsAre(1u, 3u));
}

TEST(KvTextLinesRfc4180, AQualifiedLineEndIsText)
{
    EXPECT_THAT(Cut("1,\"a\r\nb\",2\r\n3", Rfc4180), ElementsAre("1,\"a\r\nb\",2", "3"));
    EXPECT_THAT(Cut("\"a\r\nb\"\r\n3", Rfc4180), ElementsAre("\"a\r\nb\"", "3"));
}

TEST(KvTextLinesRfc4180, AQualifierInsideAValueIsText)
{
    EXPECT_THAT(Cut("5\" disk\r\n3\" disk\r\nend", Rfc4180), ElementsAre("5\" disk", "3\" disk", "end"));
}

TEST(KvTextLinesRfc4180, ADoubledQualifierDoesNotClose)
{
    EXPECT_THAT(Cut("\"a\"\"\r\n\"\"b\"\r\nc", Rfc4180), ElementsAre("\"a\"\"\r\n\"\"b\"", "c"));
}

TEST(KvTextLinesRfc4180, WhatFollowsTheClosingQualifierIsText)
{
    EXPECT_THAT(Cut("\"a\"b\"\r\nc", Rfc4180), ElementsAre("\"a\"b\"", "c"));
    EXPECT_THAT(Cut("\"a\"b,\"\r\n\"\r\nc", Rfc4180), ElementsAre("\"a\"b,\"\r\n\"", "c"));
}

TEST(KvTextLinesRfc4180, AValueThatIsNeverClosedIsTold)
{
    TKvTextLines Lines("1,2\r\n3,\"4\r\n5,6\r\n", Rfc4180);
    ASSERT_TRUE(Lines.Next());
    EXPECT_FALSE(Lines.Unclosed());
    ASSERT_TRUE(Lines.Next());
    EXPECT_TRUE(Lines.Unclosed());
    EXPECT_EQ(Lines.Number(), 2u);
    EXPECT_FALSE(Lines.Next());
}

TEST(KvTextLinesRfc4180, AnOpenValueIsNoErrorInTheOlderReading)
{
    TKvTextLines Lines("\"a\r\n", {.Separator = "\r\n", .Qualifier = "\""});
    ASSERT_TRUE(Lines.Next());
    EXPECT_FALSE(Lines.Unclosed());
}

TEST(KvTextLines, AgreeWithTheRulesReadCharacterByCharacter)
{
    TRandomText Random;
    const std::vector<std::string> Separators{"\r\n", "\n", "\r", "\n\r\n", "", "\"\n", "\r\"", "abcde\n",
                                              "\n\n"};
    const std::vector<std::string> Qualifiers{"\"", "\"", "'", "", "\0"s, "\"'"};
    for (int Round = 0; Round < 100000; ++Round) {
        const auto& Separator = Separators[Random.Below(Separators.size())];
        const auto& Qualifier = Qualifiers[Random.Below(Qualifiers.size())];
        const auto Text = Random.Text("ab\"'\r\n\0"s, 24);
        ASSERT_EQ(Cut(Text, Separator, Qualifier), reference::Lines(Text, Separator, Qualifier))
            << "KV_SEED=" << Random.Seed() << " round " << Round << " text " << testing::PrintToString(Text);
    }
}

} // namespace kv
