#include "KvxlsStrings.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "KvBiffBuilder.h"
#include "KvBiffStrings.h"
#include "KvException.h"

namespace kv {

namespace {

using TTexts = std::vector<std::string>;

/// The strings of a stream that begins with an SST record.
TTexts ReadAll(const std::string& Stream, bool AllStrings = false)
{
    TKvRecords Records(Stream);
    EXPECT_TRUE(Records.Next());
    TKvxlsSharedStrings Strings;
    Strings.Read(Records, AllStrings);
    TTexts Result;
    for (std::size_t I = 0; I < Strings.Count(); ++I)
        Result.emplace_back(Strings[I]);
    return Result;
}

std::string MessageOf(const std::string& Stream)
{
    try {
        ReadAll(Stream);
    } catch (const Exception& Error) {
        return Error.Message;
    }
    return {};
}

std::string Sst(std::string_view Body) { return TBiffBuilder().Record(0x00FC, Body).Str(); }
std::string Continue(std::string_view Body) { return TBiffBuilder().Record(0x003C, Body).Str(); }

/// The front of an SST with one string, up to its characters.
TBytes OneString(unsigned Size, unsigned Options)
{
    return TBytes().U32(1).U32(1).U16(Size).U8(Options);
}

/// Strings of every kind, whose characters fit both widths.
const std::vector<TBiffString> EveryKind = {{.Text = u"plain \u00E9"},
                                            {.Text = u""},
                                            {.Text = u"wide \u00E9", .IsWide = true},
                                            {.Text = u"rich", .Runs = 3},
                                            {.Text = u"wide+rich", .IsWide = true, .Runs = 2},
                                            {.Text = u"", .Runs = 1},
                                            {.Text = u"end"}};
const TTexts TextsOfEveryKind = {"plain \xC3\xA9", "", "wide \xC3\xA9", "rich", "wide+rich", "", "end"};

/// The same, of which the rich ones have no runs.
std::vector<TBiffString> EveryKindWithoutRuns()
{
    auto Strings = EveryKind;
    for (auto& String : Strings)
        String.Runs = std::min(String.Runs, 0);
    return Strings;
}

} // namespace

TEST(KvxlsStrings, NoString)
{
    EXPECT_EQ(ReadAll(BiffSharedStrings({})), TTexts());
}

TEST(KvxlsStrings, EightBitCharacters)
{
    EXPECT_EQ(ReadAll(BiffSharedStrings({{.Text = u"Gr\u00FC\u00DFe"}, {.Text = u"second"}})),
              (TTexts{"Gr\xC3\xBC\xC3\x9F" "e", "second"}));
}

TEST(KvxlsStrings, SixteenBitCharacters)
{
    EXPECT_EQ(ReadAll(BiffSharedStrings({{.Text = u"\u0416\u65E5\U0001F600", .IsWide = true}})),
              TTexts{"\xD0\x96\xE6\x97\xA5\xF0\x9F\x98\x80"});
}

TEST(KvxlsStrings, RunsOfRichTextAreNoText)
{
    EXPECT_EQ(ReadAll(BiffSharedStrings({{.Text = u"rich", .Runs = 2}, {.Text = u"next"}})),
              (TTexts{"rich", "next"}));
}

TEST(KvxlsStrings, AnUnpairedSurrogateIsKeptAsAPrivateUseCharacter)
{
    EXPECT_EQ(ReadAll(BiffSharedStrings({{.Text = u"cut \xD83D", .IsWide = true}, {.Text = u"next"}})),
              (TTexts{"cut \xF4\x8D\xA0\xBD", "next"}));
}

TEST(KvxlsStrings, OneBreakAnywhere)
{
    const auto Strings = EveryKindWithoutRuns();
    for (std::size_t At = 8; At <= SizeOfSharedStrings(Strings); ++At)
        EXPECT_EQ(ReadAll(BiffSharedStrings(Strings, {.At = {At}})), TextsOfEveryKind) << At;
}

TEST(KvxlsStrings, TwoBreaksAnywhere)
{
    const auto Strings = EveryKindWithoutRuns();
    const auto Size = SizeOfSharedStrings(Strings);
    for (std::size_t First = 8; First <= Size; ++First)
        for (auto Second = First + 1; Second <= Size; ++Second)
            ASSERT_EQ(ReadAll(BiffSharedStrings(Strings, {.At = {First, Second}})), TextsOfEveryKind)
                << First << ' ' << Second;
}

TEST(KvxlsStrings, BreaksWithinRunsAreReadUnderTheExtension)
{
    const auto Size = SizeOfSharedStrings(EveryKind);
    for (std::size_t First = 8; First <= Size; ++First)
        for (auto Second = First; Second <= Size; ++Second)
            ASSERT_EQ(ReadAll(BiffSharedStrings(EveryKind, {.At = {First, Second}}), true), TextsOfEveryKind)
                << First << ' ' << Second;
}

TEST(KvxlsStrings, RunsThatDoNotFitStandInTheNextRecord)
{
    const auto Next = Continue(TBytes().Zeros(8).U16(1).U8(0).Text("b"));
    for (std::size_t Rest = 0; Rest < 8; ++Rest) {
        const auto First = TBytes().U32(2).U32(2).U16(1).U8(8).U16(2).Text("a").Zeros(Rest);
        EXPECT_EQ(ReadAll(Sst(First) + Next), (TTexts{"a", "b"})) << Rest;
    }
}

TEST(KvxlsStrings, RunsThatDoNotFitIntoTheNextRecordOverflow)
{
    EXPECT_EQ(MessageOf(Sst(OneString(1, 8).U16(2).Text("a").U32(0)) + Continue(TBytes().U32(0))),
              "SST Buffer owerflow (8)");
}

TEST(KvxlsStrings, CharactersGoOnInTheOtherWidth)
{
    const std::vector<TBiffString> Strings = {{.Text = u"eight"}, {.Text = u"sixteen", .IsWide = true}};
    const TTexts Expected = {"eight", "sixteen"};
    for (const std::size_t At : {11, 12, 15, 19, 21, 31})
        EXPECT_EQ(ReadAll(BiffSharedStrings(Strings, {.At = {At}, .SwitchWidth = true})), Expected) << At;
    EXPECT_EQ(ReadAll(BiffSharedStrings(Strings, {.At = {13, 17, 19}, .SwitchWidth = true})), Expected);
}

TEST(KvxlsStrings, SixteenBitCharactersGoOnAsEightBit)
{
    const auto Stream = Sst(OneString(5, 1).Text(u"\u0416a")) + Continue(TBytes().U8(0).Text("bcd"));
    EXPECT_EQ(ReadAll(Stream), TTexts{"\xD0\x96" "abcd"});
}

TEST(KvxlsStrings, ASurrogatePairMayBeBroken)
{
    const auto Stream = Sst(OneString(3, 1).Text(u"a\xD83D")) + Continue(TBytes().U8(1).Text(u"\xDE00"));
    EXPECT_EQ(ReadAll(Stream), TTexts{"a\xF0\x9F\x98\x80"});
}

TEST(KvxlsStrings, ACharacterMayBeBroken)
{
    const auto Stream = Sst(OneString(2, 1).U16('a').U8(0x16)) + Continue(TBytes().U8(1).U8(0x04));
    EXPECT_EQ(ReadAll(Stream), TTexts{"a\xD0\x96"});
}

TEST(KvxlsStrings, HalfACharacterCannotGoOnAsEightBit)
{
    const auto Stream = Sst(OneString(2, 1).U16('a').U8(0x16)) + Continue(TBytes().U8(0).U8('b'));
    EXPECT_EQ(MessageOf(Stream), "Record 0x003C at offset 18: half a character is missing");
}

TEST(KvxlsStrings, AStringMaySpanManyRecords)
{
    const std::u16string Long(30000, u'\u0416'), Ascii(32767, u'x');
    const auto Texts = ReadAll(BiffSharedStrings({{.Text = Long, .IsWide = true}, {.Text = Ascii}}));
    ASSERT_EQ(Texts.size(), 2u);
    EXPECT_EQ(Texts[0].size(), 60000u);
    EXPECT_EQ(Texts[0].find_first_not_of("\xD0\x96"), std::string::npos);
    EXPECT_EQ(Texts[1], std::string(32767, 'x'));
}

TEST(KvxlsStrings, AHeaderThatDoesNotFitStandsInTheNextRecord)
{
    const auto Next = Continue(TBytes().U16(1).U8(0).Text("b"));
    for (std::size_t Rest = 0; Rest < 3; ++Rest) {
        const auto First = TBytes().U32(2).U32(2).U16(1).U8(0).Text("a").Zeros(Rest);
        EXPECT_EQ(ReadAll(Sst(First) + Next), (TTexts{"a", "b"})) << Rest;
    }
}

TEST(KvxlsStrings, ACountOfRunsThatDoesNotFitStandsInTheNextRecord)
{
    const auto Next = Continue(TBytes().U16(1).Text("ab").U32(0));
    for (std::size_t Rest = 0; Rest < 2; ++Rest)
        EXPECT_EQ(ReadAll(Sst(OneString(2, 8).Zeros(Rest)) + Next), TTexts{"ab"}) << Rest;
}

TEST(KvxlsStrings, ReadingLeavesTheLastRecordThatItNeeded)
{
    const auto Stream = BiffSharedStrings({{.Text = u"ab"}}, {.At = {12}}) + Continue("not needed");
    TKvRecords Records(Stream);
    Records.Next();
    TKvxlsSharedStrings Strings;
    Strings.Read(Records, false);
    EXPECT_EQ(Records.Record().Body, std::string_view("\0b", 2));
}

TEST(KvxlsStrings, EveryOptionButTheKnownOnesIsRefused)
{
    EXPECT_EQ(MessageOf(Sst(OneString(1, 0x04).Text("abcde"))), "Unhandled string in SST [04]");
    EXPECT_EQ(MessageOf(Sst(OneString(1, 0x05).Text("abcde"))), "Unhandled string in SST [05]");
    EXPECT_EQ(MessageOf(Sst(OneString(1, 0x02).Text("abcde"))), "Unhandled string in SST [02]");
    EXPECT_EQ(MessageOf(Sst(OneString(1, 0xF0).Text("abcde"))), "Unhandled string in SST [F0]");
}

TEST(KvxlsStrings, AnyOptionWithRichTextIsRead)
{
    EXPECT_EQ(ReadAll(Sst(OneString(1, 0x0C).U16(0).Text("a"))), TTexts{"a"});
    EXPECT_EQ(ReadAll(Sst(OneString(1, 0xFA).U16(0).Text("a"))), TTexts{"a"});
    EXPECT_EQ(ReadAll(Sst(OneString(1, 0x0D).U16(0).Text(u"a"))), TTexts{"a"});
}

TEST(KvxlsStrings, PhoneticTextIsPassedOverUnderTheExtension)
{
    const std::vector<TBiffString> Strings = {{.Text = u"\u65E5\u672C", .IsWide = true, .Phonetic = 20},
                                              {.Text = u"both", .Runs = 2, .Phonetic = 12},
                                              {.Text = u"none", .Phonetic = 0},
                                              {.Text = u"next"}};
    const TTexts Expected = {"\xE6\x97\xA5\xE6\x9C\xAC", "both", "none", "next"};
    for (std::size_t At = 8; At <= SizeOfSharedStrings(Strings); ++At)
        ASSERT_EQ(ReadAll(BiffSharedStrings(Strings, {.At = {At}}), true), Expected) << At;
}

TEST(KvxlsStrings, AnSstWithoutItsHeaderOverflows)
{
    EXPECT_EQ(MessageOf(Sst("")), "SST Buffer owerflow (8)");
    EXPECT_EQ(MessageOf(Sst("1234567")), "SST Buffer owerflow (8)");
}

TEST(KvxlsStrings, AContinueWithoutAWholeHeaderOverflows)
{
    EXPECT_EQ(MessageOf(Sst(TBytes().U32(1).U32(1)) + Continue("ab")), "SST Buffer owerflow (3)");
    EXPECT_EQ(MessageOf(Sst(OneString(2, 8)) + Continue("a")), "SST Buffer owerflow (2)");
    EXPECT_EQ(MessageOf(Sst(OneString(2, 0).Text("a")) + Continue("")), "SST Buffer owerflow (1)");
}

TEST(KvxlsStrings, AMissingContinueIsTold)
{
    const auto Other = TBiffBuilder().Eof().Str();
    for (const auto& Body : {TBytes().U32(1).U32(1), OneString(2, 0).Text("a"), OneString(2, 1).Text("abc"),
                             OneString(2, 8), OneString(1, 8).U16(1).Text("abcd")}) {
        EXPECT_EQ(MessageOf(Sst(Body)), "CONTINUE record missing");
        EXPECT_EQ(MessageOf(Sst(Body) + Other), "CONTINUE record missing");
    }
}

TEST(KvxlsStrings, AnUnknownOptionOfAContinueIsTold)
{
    const std::vector<TBiffString> Strings = {{.Text = u"abc"}};
    EXPECT_EQ(MessageOf(BiffSharedStrings(Strings, {.At = {12}, .Option = 2})), "Unknown string [02] in SST");
    EXPECT_EQ(MessageOf(BiffSharedStrings(Strings, {.At = {12}, .Option = 0xAB})),
              "Unknown string [AB] in SST");
}

TEST(KvxlsStrings, AHugeCountEndsWithTheBytes)
{
    EXPECT_EQ(MessageOf(Sst(TBytes().U32(0xFFFFFFFF).U32(0xFFFFFFFF).U16(1).U8(0).Text("a"))),
              "CONTINUE record missing");
}

} // namespace kv
