#include "Kvi2txt.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "KvMemoryDataSet.h"
#include "KvTempFolder.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace kv {

namespace {

struct TLoaded
{
    std::string FirstLine;
    TStrings Lines;

    std::vector<std::string> All() const { return {Lines.begin(), Lines.end()}; }
};

void Load(TLoaded& Loaded, std::string_view Text, bool IsPreview = false, int RowFirst = 1,
          int RowLast = RowLastMax)
{
    const TTempFolder Folder;
    LoadTextFile(IsPreview, Loaded.FirstLine, Loaded.Lines, Folder.Write("file", Text), "\r\n", "\"",
                 RowFirst, RowLast);
}

std::vector<std::string> LinesOf(std::string_view Text, TKvITextExtensions Extensions, bool IsPreview = false)
{
    const TTempFolder Folder;
    TLoaded Loaded;
    LoadTextFile(IsPreview, Loaded.FirstLine, Loaded.Lines, Folder.Write("file", Text), "\r\n", "\"", 1,
                 RowLastMax, Extensions, ',');
    return Loaded.All();
}

std::string NumberedLines(int Count, std::size_t Size)
{
    std::string Text;
    for (int I = 1; I <= Count; ++I) {
        const auto Number = std::to_string(I);
        Text += Number + std::string(Size - Number.size() - 1, '.') + "\n";
    }
    return Text;
}

std::vector<int> Fill(std::string_view Line, char Delimiter = ',', char TextQualifier = '"')
{
    std::vector<int> Positions{77};
    FillFields(nullptr, false, Delimiter, TextQualifier, Line, Positions);
    return Positions;
}

std::vector<int> FillFixed(std::string_view Line, const std::vector<int>& Widths, char Delimiter = ',')
{
    TMemoryDataSet DataSet;
    std::vector<TFieldDef> Defs;
    for (const int Width : Widths)
        Defs.push_back({.Name = "F" + std::to_string(Defs.size()), .Size = Width});
    DataSet.SetFieldDefs(Defs);
    DataSet.Open();
    std::vector<int> Positions{77};
    FillFields(&DataSet, true, Delimiter, '"', Line, Positions);
    return Positions;
}

} // namespace

TEST(LoadTextFile, GivesAllLinesAndTheFirst)
{
    TLoaded Loaded;
    Load(Loaded, "one\r\n\"two\r\n2\"\r\nthree");
    EXPECT_EQ(Loaded.FirstLine, "one");
    EXPECT_THAT(Loaded.All(), ElementsAre("one", "\"two\r\n2\"", "three"));
}

TEST(LoadTextFile, GivesTheFirstLineWhateverRowsAreAskedFor)
{
    TLoaded Loaded;
    Load(Loaded, "one\r\ntwo\r\nthree\r\nfour\r\n", false, 2, 3);
    EXPECT_EQ(Loaded.FirstLine, "one");
    EXPECT_THAT(Loaded.All(), ElementsAre("two", "three"));
    Load(Loaded, "one\r\ntwo\r\n", false, 5, 3);
    EXPECT_EQ(Loaded.FirstLine, "one");
    EXPECT_THAT(Loaded.All(), IsEmpty());
    Load(Loaded, "one\r\ntwo\r\n", false, 1, 0);
    EXPECT_EQ(Loaded.FirstLine, "one");
    EXPECT_THAT(Loaded.All(), IsEmpty());
}

TEST(LoadTextFile, ReplacesWhatTheListHeld)
{
    TLoaded Loaded;
    Loaded.FirstLine = "old";
    Loaded.Lines.Add("old");
    Load(Loaded, "");
    EXPECT_EQ(Loaded.FirstLine, "");
    EXPECT_THAT(Loaded.All(), IsEmpty());
}

TEST(LoadTextFile, ChangesTheListInOneUpdate)
{
    TLoaded Loaded;
    int Changes = 0;
    Loaded.Lines.OnChange = [&Changes] { ++Changes; };
    Load(Loaded, "one\r\ntwo\r\n");
    EXPECT_EQ(Changes, 1);
}

TEST(LoadTextFile, AMissingFileRaisesAndEndsTheUpdate)
{
    TLoaded Loaded;
    int Changes = 0;
    Loaded.Lines.OnChange = [&Changes] { ++Changes; };
    EXPECT_THROW(
        LoadTextFile(false, Loaded.FirstLine, Loaded.Lines, "/no/such/file", "\r\n", "\"", 1, RowLastMax),
        EFileError);
    Loaded.Lines.Add("one");
    EXPECT_GE(Changes, 1);
}

TEST(LoadTextFile, KeepsTheEndOfFileCharacter)
{
    TLoaded Loaded;
    Load(Loaded, "one\r\ntwo\x1A\x1B");
    EXPECT_THAT(Loaded.All(), ElementsAre("one", "two\x1A\x1B"));
}

TEST(LoadTextFile, APreviewStopsAtLine20)
{
    TLoaded Loaded;
    const auto Text = NumberedLines(30, 10);
    Load(Loaded, Text, true);
    EXPECT_EQ(Loaded.Lines.Count(), 20);
    Load(Loaded, Text, true, 1, 21);
    EXPECT_EQ(Loaded.Lines.Count(), 20);
    Load(Loaded, Text, true, 1, 5);
    EXPECT_EQ(Loaded.Lines.Count(), 5);
    Load(Loaded, Text, true, 15);
    EXPECT_EQ(Loaded.Lines.Count(), 6);
    EXPECT_EQ(Loaded.FirstLine, "1........");
}

TEST(LoadTextFile, APreviewReads102400Bytes)
{
    TLoaded Loaded;
    const auto Text = NumberedLines(20, 10000);
    Load(Loaded, Text, true, 9);
    EXPECT_EQ(Loaded.Lines.Count(), 3);             // 9, 10 and the start of 11
    EXPECT_EQ(Loaded.Lines[2].size(), 2400u);
    Load(Loaded, Text, false, 9);
    EXPECT_EQ(Loaded.Lines.Count(), 12);
}

TEST(LoadTextFile, APreviewThatBeginsAtLine10OrLaterReadsTheWholeFile)
{
    TLoaded Loaded;
    Load(Loaded, NumberedLines(20, 10000), true, 10);
    EXPECT_EQ(Loaded.Lines.Count(), 11);
    EXPECT_EQ(Loaded.Lines[10].size(), 9999u);
}

TEST(LoadTextFile, ReadsByTheExtensionsThatItIsGiven)
{
    const auto* const Inches = "5\" x,1\r\n6\" y,2\r\n";
    EXPECT_THAT(LinesOf(Inches, {}), ElementsAre("5\" x,1\r\n6\" y,2"));
    EXPECT_THAT(LinesOf(Inches, {xtDoubledQualifiers}), ElementsAre("5\" x,1", "6\" y,2"));
    EXPECT_THAT(LinesOf("1,\"a\r\nb\"\r\n", {xtDoubledQualifiers}), ElementsAre("1,\"a\r\nb\""));
    EXPECT_THAT(LinesOf("\xEF\xBB\xBF" "1\r\n", {}), ElementsAre("\xEF\xBB\xBF" "1"));
    EXPECT_THAT(LinesOf("\xEF\xBB\xBF" "1\r\n", {xtByteOrderMark}), ElementsAre("1"));
}

TEST(LoadTextFile, RefusesAValueThatIsNeverClosedUnlessItMayBeClosedBehindThePreview)
{
    const auto Open = "1,\"" + std::string(102400, 'x');
    EXPECT_THROW(LinesOf(Open, {xtDoubledQualifiers}), Exception);
    EXPECT_THAT(LinesOf(Open, {xtDoubledQualifiers}, true), testing::SizeIs(1));
}

TEST(FillFields, PacksStartAndStopOfEachValue)
{
    EXPECT_THAT(Fill(""), IsEmpty());
    EXPECT_THAT(Fill("abc"), ElementsAre(1'0003));
    EXPECT_THAT(Fill("a,bc"), ElementsAre(1'0001, 3'0004));
    EXPECT_THAT(Fill("\"a,b\",c"), ElementsAre(2'0004, 7'0007));
}

TEST(FillFields, EmptyValuesStopBeforeTheyStart)
{
    EXPECT_THAT(Fill("a,,b"), ElementsAre(1'0001, 4'0002, 4'0004));
    EXPECT_THAT(Fill(",a"), ElementsAre(2'0000, 2'0002));
    EXPECT_THAT(Fill("\"\",a"), ElementsAre(2'0001, 4'0004));
    EXPECT_THAT(Fill("\""), ElementsAre(2'0000));
}

TEST(FillFields, ATrailingDelimiterYieldsOneMoreEmptyValue)
{
    EXPECT_THAT(Fill("a,b,"), ElementsAre(1'0001, 3'0004, 5'0005));
    EXPECT_THAT(Fill(","), ElementsAre(2'0001, 2'0002));
}

TEST(FillFields, WithoutAQualifierNothingIsQualified)
{
    EXPECT_THAT(Fill("\"a,b\"", ',', '\0'), ElementsAre(1'0002, 4'0005));
}

TEST(FillFields, RefusesLinesThatPositionsCannotTell)
{
    EXPECT_THAT(Fill(std::string(9998, 'x') + ","), ElementsAre(1'9999, 10000'0000 + 10000));
    try {
        Fill(std::string(10000, 'x'));
        FAIL() << "accepted";
    }
    catch (const Exception& Error) {
        EXPECT_EQ(Error.Message, "The line is longer than 9999 characters");
    }
}

TEST(FillFieldsFixed, ProposesNoBreakWithoutADataset)
{
    std::vector<int> Positions{77};
    FillFields(nullptr, true, ',', '"', "abc", Positions);
    EXPECT_THAT(Positions, IsEmpty());
}

TEST(FillFieldsFixed, AColumnIsOneByteWiderThanItsField)
{
    EXPECT_THAT(FillFixed("abcdefghijkl", {2, 3, 1}), ElementsAre(3, 7, 9));
}

TEST(FillFieldsFixed, AColumnStopsBeforeADelimiterOrQualifierAtItsEnd)
{
    EXPECT_THAT(FillFixed("ab,cde\"hijkl", {2, 3, 1}), ElementsAre(2, 6, 9));
    EXPECT_THAT(FillFixed("ab\"cdefghijk", {2, 3}), ElementsAre(2, 7));
}

TEST(FillFieldsFixed, ADelimiterAfterAColumnIsSkipped)
{
    EXPECT_THAT(FillFixed("abc,efghijk", {2, 2, 2}), ElementsAre(3, 7, 10));
}

TEST(FillFieldsFixed, TheLastColumnEndsWithTheLine)
{
    EXPECT_THAT(FillFixed("abcd", {2, 5, 5}), ElementsAre(3)); // one byte is left, no column
    EXPECT_THAT(FillFixed("abcdef", {2, 9, 5}), ElementsAre(3, 6));
    EXPECT_THAT(FillFixed("", {2, 5}), ElementsAre(0));
    EXPECT_THAT(FillFixed("abcdef", {}), IsEmpty());
}

TEST(FillFieldsFixed, LinesHaveAnyLength)
{
    EXPECT_THAT(FillFixed(std::string(20000, 'x'), {14999, 9999}), ElementsAre(15000, 20000));
}

} // namespace kv
