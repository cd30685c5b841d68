#include "KvTextFields.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "KvRandomText.h"
#include "KvTextLines.h"
#include "KvTextReference.h"

using namespace std::string_literals;
using testing::ElementsAre;
using testing::IsEmpty;

namespace kv {

namespace {

using TRow = std::vector<std::string>;

TRow ValuesOf(TKvTextFields& Fields)
{
    TRow Result;
    for (std::size_t I = 0; I < Fields.Count(); ++I)
        Result.emplace_back(Fields.Value(I));
    return Result;
}

TRow Cut(std::string_view Line, char Delimiter = ',', char Qualifier = '"')
{
    TKvTextFields Fields(Delimiter, Qualifier);
    Fields.Split(Line);
    return ValuesOf(Fields);
}

TRow CutRfc4180(std::string_view Line, char Delimiter = ',', char Qualifier = '"')
{
    TKvTextFields Fields(Delimiter, Qualifier, true);
    Fields.Split(Line);
    return ValuesOf(Fields);
}

} // namespace

TEST(KvTextFields, AnEmptyLineHasNoValue)
{
    EXPECT_THAT(Cut(""), IsEmpty());
}

TEST(KvTextFields, CutsAtDelimiters)
{
    EXPECT_THAT(Cut("one"), ElementsAre("one"));
    EXPECT_THAT(Cut("one,two,three"), ElementsAre("one", "two", "three"));
    EXPECT_THAT(Cut("one\ttwo,x", '\t'), ElementsAre("one", "two,x"));
}

TEST(KvTextFields, EmptyValuesCount)
{
    EXPECT_THAT(Cut("a,,b"), ElementsAre("a", "", "b"));
    EXPECT_THAT(Cut(",a"), ElementsAre("", "a"));
    EXPECT_THAT(Cut(",,b"), ElementsAre("", "", "b"));
}

TEST(KvTextFields, ATrailingDelimiterYieldsOneMoreEmptyValue)
{
    EXPECT_THAT(Cut("a,b,"), ElementsAre("a", "b,", "")); // the value before it keeps the delimiter
    EXPECT_THAT(Cut(","), ElementsAre("", ""));
    EXPECT_THAT(Cut("a,,"), ElementsAre("a", "", ""));
}

TEST(KvTextFields, AQualifiedDelimiterIsText)
{
    EXPECT_THAT(Cut("'x,y',z", ',', '\''), ElementsAre("x,y", "z"));
    EXPECT_THAT(Cut("1,\"a,b\",\"c,d\""), ElementsAre("1", "a,b", "c,d"));
}

TEST(KvTextFields, DoubledQualifiersStayDoubled)
{
    EXPECT_THAT(Cut("'he said ''hi''',1", ',', '\''), ElementsAre("he said ''hi''", "1"));
}

TEST(KvTextFields, OneQualifierIsRemovedAtEachEnd)
{
    EXPECT_THAT(Cut("\"\"a\"\",b"), ElementsAre("\"a\"", "b"));
    EXPECT_THAT(Cut("\"\",\"a"), ElementsAre("", "a"));
    EXPECT_THAT(Cut("a\",\"b"), ElementsAre("a\",\"b"));
    EXPECT_THAT(Cut("\""), ElementsAre(""));
}

TEST(KvTextFields, EveryQualifierSwitchesWhereverItStands)
{
    EXPECT_THAT(Cut("5\" disk,3\" disk,x"), ElementsAre("5\" disk,3\" disk", "x"));
    EXPECT_THAT(Cut("a,\"b,c"), ElementsAre("a", "b,c"));
}

TEST(KvTextFields, AQualifiedDelimiterAtTheEndOfTheLineYieldsAnEmptyValueToo)
{
    EXPECT_THAT(Cut("a,\"b,"), ElementsAre("a", "b,", ""));
}

TEST(KvTextFields, WithoutAQualifierNothingIsQualified)
{
    EXPECT_THAT(Cut("\"a,b\"", ',', '\0'), ElementsAre("\"a", "b\""));
    EXPECT_THAT(Cut("\0a,\0b"s, ',', '\0'), ElementsAre("\0a"s, "\0b"s));
}

TEST(KvTextFields, TheZeroByteIsADelimiterLikeAnyOther)
{
    EXPECT_THAT(Cut("a,b\0c"s, '\0'), ElementsAre("a,b", "c"));
}

TEST(KvTextFields, ASecondLineReplacesTheFirst)
{
    TKvTextFields Fields(',', '"');
    Fields.Split("a,b,c");
    Fields.Split("d");
    EXPECT_THAT(ValuesOf(Fields), ElementsAre("d"));
    Fields.Split("");
    EXPECT_EQ(Fields.Count(), 0u);
}

TEST(KvTextFields, DelimitersAreFoundAtAnyPlaceOfALongLine)
{
    for (std::size_t Size = 1; Size < 40; ++Size) {
        const auto Long = std::string(Size, 'x');
        EXPECT_THAT(Cut(Long + "," + Long + "," + Long), ElementsAre(Long, Long, Long)) << Size;
    }
}

TEST(KvTextFields, AgreeWithTheRulesReadCharacterByCharacter)
{
    TRandomText Random;
    for (int Round = 0; Round < 200000; ++Round) {
        const char Delimiter = ",,,\0\""[Random.Below(5)];
        const char Qualifier = "\"\"'\0,"[Random.Below(5)];
        const auto Line = Random.Text("ab,\"'\0"s, 24);
        TKvTextFields Fields(Delimiter, Qualifier);
        Fields.Split(Line);
        std::vector<reference::TBounds> Bounds;
        for (std::size_t I = 0; I < Fields.Count(); ++I)
            Bounds.emplace_back(Fields[I].Start + 1, Fields[I].Stop);
        ASSERT_EQ(Bounds, reference::Fields(Line, Delimiter, Qualifier))
            << "KV_SEED=" << Random.Seed() << " round " << Round << " line " << testing::PrintToString(Line);
    }
}

TEST(KvTextFieldsRfc4180, CutsAtDelimiters)
{
    EXPECT_THAT(CutRfc4180(""), IsEmpty());
    EXPECT_THAT(CutRfc4180("one,two,,three"), ElementsAre("one", "two", "", "three"));
    EXPECT_THAT(CutRfc4180(","), ElementsAre("", ""));
    EXPECT_THAT(CutRfc4180("a,b,"), ElementsAre("a", "b", ""));
}

TEST(KvTextFieldsRfc4180, AQualifiedDelimiterIsTextAlsoAtTheEnd)
{
    EXPECT_THAT(CutRfc4180("'x,y','z,'", ',', '\''), ElementsAre("x,y", "z,"));
}

TEST(KvTextFieldsRfc4180, ADoubledQualifierStandsForOne)
{
    EXPECT_THAT(CutRfc4180("'he said ''hi''',1", ',', '\''), ElementsAre("he said 'hi'", "1"));
    EXPECT_THAT(CutRfc4180("\"\"\"\",\"\"\"\"\"\""), ElementsAre("\"", "\"\""));
}

TEST(KvTextFieldsRfc4180, AQualifierInsideAnUnqualifiedValueIsText)
{
    EXPECT_THAT(CutRfc4180("5\" disk,3\" disk"), ElementsAre("5\" disk", "3\" disk"));
    EXPECT_THAT(CutRfc4180("a\"\"b, \"c\""), ElementsAre("a\"\"b", " \"c\""));
}

TEST(KvTextFieldsRfc4180, NothingOfWhatFollowsTheClosingQualifierIsLost)
{
    EXPECT_THAT(CutRfc4180("\"abc\"def,1"), ElementsAre("abcdef", "1"));
    EXPECT_THAT(CutRfc4180("\"a\"\"b\"c\"d,1"), ElementsAre("a\"bc\"d", "1"));
    EXPECT_THAT(CutRfc4180("\"abc\" ,1"), ElementsAre("abc ", "1"));
}

TEST(KvTextFieldsRfc4180, AnOpenValueReachesToTheEndOfTheLine)
{
    EXPECT_THAT(CutRfc4180("a,\"b,c"), ElementsAre("a", "b,c"));
    EXPECT_THAT(CutRfc4180("a,\""), ElementsAre("a", ""));
}

TEST(KvTextFieldsRfc4180, SeveralRewrittenValuesStandAtTheSameTime)
{
    TKvTextFields Fields(',', '"', true);
    Fields.Split("\"a\"\"\",\"b\"\"\"");
    const auto First = Fields.Value(0);
    const auto Second = Fields.Value(1);
    EXPECT_EQ(First, "a\"");
    EXPECT_EQ(Second, "b\"");
}

TEST(KvTextFieldsRfc4180, ARewrittenValueStaysWhereItIsWhenItIsAskedForAgain)
{
    TKvTextFields Fields(',', '"', true);
    const auto* const Long = "\"a\"\"\",\"b\"\"b\"\"b\"\"b\"\"b\"\"b\"\"b\"\"b\"\"b\"\"b\"\"b\"\"b\",c";
    for (const auto* const Line : {Long, "\"x\"\"y\",z"}) {
        Fields.Split(Line);
        const auto First = Fields.Value(0);
        const std::string Copy(First);
        for (int Round = 0; Round < 100; ++Round)
            for (std::size_t I = 0; I < Fields.Count(); ++I)
                Fields.Value(I);
        EXPECT_EQ(Fields.Value(0).data(), First.data());
        EXPECT_EQ(First, Copy);
    }
}

TEST(KvTextFieldsRfc4180, AgreeWithTheRfcReadCharacterByCharacter)
{
    TRandomText Random;
    for (int Round = 0; Round < 100000; ++Round) {
        const std::string Separator = Random.Below(2) ? "\r\n" : "\n";
        const char Delimiter = ",,,\0"[Random.Below(4)];
        const char Qualifier = "\"\"'\0"[Random.Below(4)];
        const auto Text = Random.Text("ab,\"\"'\r\n\0"s, 24);
        const auto Expected = reference::Records(Text, Separator, Delimiter, Qualifier);
        SCOPED_TRACE("KV_SEED=" + std::to_string(Random.Seed()) + " text " + testing::PrintToString(Text));

        const std::string QualifierText(Qualifier != '\0' ? 1 : 0, Qualifier);
        TKvTextLines Lines(Text, {.Separator = Separator,
                                  .Qualifier = QualifierText,
                                  .DoubledQualifiers = true,
                                  .Delimiter = Delimiter});
        TKvTextFields Fields(Delimiter, Qualifier, true);
        std::vector<TRow> Rows;
        while (Lines.Next()) {
            Fields.Split(Lines.Line());
            Rows.push_back(ValuesOf(Fields));
        }
        ASSERT_EQ(Rows, Expected.Rows);
        ASSERT_EQ(Lines.Unclosed() ? Lines.Number() : 0, Expected.UnclosedLine);
    }
}

} // namespace kv
