#include "KvTextRecords.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "KvException.h"
#include "KvRandomText.h"
#include "KvTempFolder.h"
#include "KvTextReference.h"
#include "KviTypes.h"

using namespace std::string_literals;
using testing::ElementsAre;
using testing::IsEmpty;

namespace kv {

namespace {

using TRow = std::vector<std::string>;

constexpr TKvTextLayout Commas{.Delimiter = ',', .Qualifier = '"', .Separator = "\r\n"};

TKvTextLayout With(TKvITextExtensions Extensions, TKvTextLayout Layout = Commas)
{
    Layout.Extensions = Extensions;
    return Layout;
}

TKvTextLayout WithoutEmptyRecords(TKvITextExtensions Extensions = {xtDoubledQualifiers})
{
    auto Layout = With(Extensions);
    Layout.NoEmptyRecords = true;
    return Layout;
}

TRow LinesOf(TKvTextRecords& Records)
{
    TRow Result;
    for (Records.GoFirst(); Records.HasRecord(); Records.GoNext()) {
        EXPECT_EQ(Records.Index(), Result.size());
        Result.emplace_back(Records.Line());
    }
    EXPECT_EQ(Result.size(), Records.Count());
    return Result;
}

class KvTextRecords : public testing::Test
{
protected:
    TRow Load(std::string_view Text, const TKvTextLayout& Layout = Commas,
              const TKvWantedLines& Wanted = {.Last = RowLastMax})
    {
        Records.Load(Folder.Write("file", Text), Layout, Wanted, {});
        return LinesOf(Records);
    }

    const TTempFolder Folder;
    TKvTextRecords Records{4};
};

} // namespace

TEST_F(KvTextRecords, AreTheWantedLines)
{
    EXPECT_THAT(Load("a\r\nb\r\nc\r\nd"), ElementsAre("a", "b", "c", "d"));
    EXPECT_THAT(Load("a\r\nb\r\nc\r\nd", Commas, {.First = 2, .Last = 3, .Header = 1}),
                ElementsAre("b", "c"));
    EXPECT_EQ(Records.Header(), "a");
    EXPECT_THAT(
        Load("a\r\nb\r\nc\r\nd", Commas, {.First = 2, .Last = RowLastMax, .Header = 3, .MaxCount = 1}),
        ElementsAre("b", "c"));
    EXPECT_EQ(Records.Header(), "c");
    EXPECT_THAT(Load("a\r\nb", Commas, {.Last = 9, .MaxCount = 1}), ElementsAre("a"));
    EXPECT_THAT(Load("a\r\nb", Commas, {.First = 3, .Last = 9}), IsEmpty());
    EXPECT_THAT(Load("", Commas), IsEmpty());
}

TEST_F(KvTextRecords, AreReadAgainAsOftenAsWanted)
{
    const std::string Long(50, 'x');
    Load("a\r\n" + Long + "\r\nb\r\n");
    for (int Round = 0; Round < 3; ++Round)
        EXPECT_THAT(LinesOf(Records), ElementsAre("a", Long, "b"));
}

TEST_F(KvTextRecords, KnowTheirLineWithAndWithoutQualifiers)
{
    Load("a\r\n\"b\r\nb\rb\nb\"\r\nc\r\n\"d\r\n\",\"\r\n\"\r\ne\r\n", With({xtDoubledQualifiers}));
    TRow Numbers;
    for (Records.GoFirst(); Records.HasRecord(); Records.GoNext())
        Numbers.push_back(std::to_string(Records.Number()) + "/" + std::to_string(Records.PlainNumber()) +
                          " at " + std::to_string(Records.Offset()));
    EXPECT_THAT(Numbers, ElementsAre("1/1 at 0", "2/2 at 3", "3/6 at 15", "4/7 at 18", "5/10 at 30"));
}

TEST_F(KvTextRecords, OfWindowsOfAnySizeAreTheSame)
{
    TRandomText Random;
    for (int Round = 0; Round < 3000; ++Round) {
        const auto* const Separator = Random.Below(2) ? "\r\n" : "\n";
        const auto Text = Random.Text("ab,\"\"\r\n\r\n", 40);
        SCOPED_TRACE("KV_SEED=" + std::to_string(Random.Seed()) + " text " + testing::PrintToString(Text));
        auto Layout = Commas;
        Layout.Separator = Separator;
        TKvTextRecords Small(Random.Below(6) + 1);
        Small.Load(Folder.Write("file", Text), Layout, {.Last = RowLastMax}, {});
        ASSERT_EQ(LinesOf(Small), reference::Lines(Text, Separator, "\""));
        Layout.Extensions = {xtDoubledQualifiers};
        Small.Load(Folder / "file", Layout, {.Last = RowLastMax}, {});
        const auto Expected = reference::Records(Text, Separator, ',', '"');
        ASSERT_EQ(Small.Count(), Expected.Rows.size());
        ASSERT_EQ(Small.IsClosed(), Expected.UnclosedLine == 0);
        auto Fields = Small.FieldCutter();
        std::size_t Row = 0;
        for (Small.GoFirst(); Small.HasRecord(); Small.GoNext(), ++Row) {
            Fields.Split(Small.Line());
            ASSERT_EQ(Fields.Count(), Expected.Rows[Row].size());
            for (std::size_t I = 0; I < Fields.Count(); ++I)
                ASSERT_EQ(Fields.Value(I), Expected.Rows[Row][I]);
        }
    }
}

TEST_F(KvTextRecords, ThatHoldNothingAreLeftOutAndCounted)
{
    const auto* const Text = "\r\na\r\n \t\r\n,,\r\n\"\",\" \"\r\n\x1A\r\n,b\r\n\"\"\"\"\r\n\",\"\r\n,";
    EXPECT_THAT(Load(Text, With({xtDoubledQualifiers})), testing::SizeIs(10));
    EXPECT_EQ(Records.EmptyLines().Count, 0);
    EXPECT_THAT(Load(Text, WithoutEmptyRecords()), ElementsAre("a", ",b", "\"\"\"\"", "\",\""));
    EXPECT_EQ(Records.EmptyLines().Count, 6);
    EXPECT_EQ(Records.EmptyLines().First, 1);
    Records.GoFirst();
    EXPECT_EQ(Records.Number(), 2u);
    EXPECT_THAT(Load(Text, WithoutEmptyRecords(), {.First = 3, .Last = 5}), IsEmpty());
    EXPECT_EQ(Records.EmptyLines().Count, 3);
    EXPECT_EQ(Records.EmptyLines().First, 3);
}

TEST_F(KvTextRecords, ThatHoldNothingAreThoseOfTheClassicReadingToo)
{
    EXPECT_THAT(Load(",\r\n,,\r\n\r\na,\r\n", WithoutEmptyRecords({})), ElementsAre("a,"));
}

TEST_F(KvTextRecords, OfFixedLinesHoldWhatIsNoBlank)
{
    auto Layout = WithoutEmptyRecords();
    Layout.Fixed = true;
    EXPECT_THAT(Load(" \r\n,\r\n\"\r\n  x\r\n\x1A", Layout), ElementsAre(",", "\"", "  x"));
}

TEST_F(KvTextRecords, AFirstLineMayNameTheDelimiter)
{
    for (const auto* const First : {"sep=;\r\n", "SEP=;\n"}) {
        EXPECT_THAT(Load(First + "a;b\r\nc\r\n"s, With({xtDelimiterLine})), ElementsAre("a;b", "c"));
        EXPECT_EQ(Records.Header(), "a;b");
        EXPECT_EQ(Records.Delimiter(), ';');
        EXPECT_TRUE(Records.NamesDelimiter());
        Records.GoFirst();
        EXPECT_EQ(Records.Number(), 1u);
        EXPECT_EQ(Records.PlainNumber(), 2u);
        EXPECT_THAT(Load(First + "a;b\r\n"s), testing::SizeIs(2));
        EXPECT_EQ(Records.Delimiter(), ',');
        EXPECT_FALSE(Records.NamesDelimiter());
    }
    EXPECT_THAT(Load("sep=|", With({xtDelimiterLine})), IsEmpty());
    EXPECT_EQ(Records.Delimiter(), '|');
    EXPECT_THAT(Load("\xEF\xBB\xBFsep=;\na", With({xtDelimiterLine, xtByteOrderMark})), ElementsAre("a"));
}

TEST_F(KvTextRecords, OtherFirstLinesNameNoDelimiter)
{
    for (const auto* const First : {"sep=", "sep=;;", "sap=;", "sep;=", ""}) {
        EXPECT_THAT(Load(First + "\r\na"s, With({xtDelimiterLine})), ElementsAre(First, "a"));
        EXPECT_EQ(Records.Delimiter(), ',');
    }
    EXPECT_THAT(Load("a\r\nsep=;", With({xtDelimiterLine})), ElementsAre("a", "sep=;"));
    auto Fixed = With({xtDelimiterLine});
    Fixed.Fixed = true;
    EXPECT_THAT(Load("sep=;\r\na", Fixed), ElementsAre("sep=;", "a"));
}

TEST_F(KvTextRecords, EndBeforeTheMarkOfTheFilesEnd)
{
    const auto Layout = With({xtEndOfFileMark});
    EXPECT_THAT(Load("a\r\nb\x1A"), ElementsAre("a", "b\x1A"));
    EXPECT_THAT(Load("a\r\nb\x1A", Layout), ElementsAre("a", "b"));
    EXPECT_THAT(Load("a\x1A\r\nb\r\n\x1A\x1A\x1A\x1A\x1A\x1A", Layout), ElementsAre("a\x1A", "b"));
    EXPECT_THAT(Load("\x1A", Layout), IsEmpty());
}

TEST_F(KvTextRecords, ASeparatorOfSeveralCharactersMayBeOne)
{
    auto Layout = With({xtWholeSeparator});
    Layout.Separator = "<EOL>";
    EXPECT_THAT(Load("ID,HELLO<EOL>2,LOW<EO<EOL><EOL>3", Layout),
                ElementsAre("ID,HELLO", "2,LOW<EO", "", "3"));
    Layout.Extensions = {xtWholeSeparator, xtDoubledQualifiers};
    EXPECT_THAT(Load("1,\"a<EOL>b\"<EOL>2<EOL>", Layout), ElementsAre("1,\"a<EOL>b\"", "2"));
    Layout.Extensions = {};
    EXPECT_THAT(Load("ID<EOL>2", Layout), ElementsAre("ID", "2"));
    EXPECT_THAT(Load("HELLO", Layout), ElementsAre("H", "", "", ""));
    Layout.Extensions = {xtWholeSeparator};
    Layout.Separator = "\r\n";                      // each of it is found alone in today's files
    EXPECT_THAT(Load("a\nb\rc\r\nd", Layout), ElementsAre("a", "b", "c", "d"));
    Layout.Separator = "\n\r";
    EXPECT_THAT(Load("a\nb\n\rc", Layout), ElementsAre("a\nb", "c"));
}

TEST_F(KvTextRecords, AFileThatIsCutMeanwhileIsToldOf)
{
    std::string Text;
    for (int I = 0; I < 100; ++I)
        Text += "a\r\n";
    Load(Text);
    Records.GoFirst();
    std::filesystem::resize_file(Folder / "file", 100);
    try {
        while (Records.HasRecord())
            Records.GoNext();
        FAIL() << "no error";
    }
    catch (const EFileError& Error) {
        EXPECT_EQ(Error.Message, "File \"" + Folder / "file" + "\" has changed while it was read");
        EXPECT_EQ(Error.Facts.FileName, Folder / "file");
    }
}

TEST_F(KvTextRecords, CancelledThereIsNone)
{
    int Asked = 0;
    Records.Load(Folder.Write("file", "a\r\nb\r\nc\r\n"), Commas, {.Last = RowLastMax},
                 [&] { return ++Asked < 2; });
    EXPECT_EQ(Records.Count(), 0u);
    EXPECT_EQ(Records.Header(), "");
    EXPECT_EQ(Asked, 2);
    Records.GoFirst();
    EXPECT_FALSE(Records.HasRecord());
    EXPECT_THAT(Load("d"), ElementsAre("d"));
}

TEST_F(KvTextRecords, NobodyIsAskedWhileOneGoesOn)
{
    int Asked = 0;
    Records.Load(Folder.Write("file", "a\r\nb\r\nc\r\n"), Commas, {.Last = RowLastMax},
                 [&] { return ++Asked > 0; });
    const int Loading = Asked;
    EXPECT_THAT(LinesOf(Records), ElementsAre("a", "b", "c"));
    EXPECT_GT(Loading, 0);
    EXPECT_EQ(Asked, Loading);
}

} // namespace kv
