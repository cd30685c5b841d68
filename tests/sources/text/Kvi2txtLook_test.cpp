// What a text import shows of its file, and how much of the file it reads for that.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <tuple>
#include <vector>

#include "KvException.h"
#include "KvLookText.h"
#include "KvTextImport.h"

using namespace std::string_literals;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace kv {

namespace {

constexpr std::size_t Window = std::size_t{1} << 20; // what a look at the first lines reads

auto PartsOf(const TKvISourceRemark& Remark)
{
    return std::tuple(Remark.Kind, Remark.Count, Remark.First, Remark.Limit, Remark.HasHeader);
}

std::string ErrorOf(TTextImport& Import, const TKvISourceLook& What)
{
    try {
        Import.Look(What);
    }
    catch (const Exception& Error) {
        const auto Place = Error.Message.find(Import.SourceFileName);
        return Place == std::string::npos
                   ? Error.Message
                   : std::string(Error.Message).replace(Place, Import.SourceFileName.size(), "FILE");
    }
    return "none";
}

/// A header, a line, and a hole of so many bytes that nobody reads to its end.
void MakeEndless(const TTextImport& Import)
{
    std::filesystem::resize_file(Import.SourceFileName, std::uintmax_t{1} << 36);
}

} // namespace

// Columns.

TEST(Kvi2txtLook, NamesColumnsByNumberAndTitlesThemFromTheHeader)
{
    TTextImport Import("Orders\r\n\"ID\", City ,\r\n1,Bern,x\r\n");
    Import.RowFirst = 3;
    EXPECT_THAT(ColumnsOf(Import.Look({.HeaderRow = 2})), ElementsAre("Field1=ID", "Field2=City", "Field3="));
    EXPECT_THAT(ColumnsOf(Import.Look({.HeaderRow = 1})), ElementsAre("Field1=Orders", "Field2=", "Field3="));
}

TEST(Kvi2txtLook, WithoutAHeaderTheFirstImportedLineTellsTheColumns)
{
    TTextImport Import("A,B,C\r\n1,2\r\n");
    Import.RowFirst = 2;
    EXPECT_THAT(ColumnsOf(Import.Look({})), ElementsAre("Field1=", "Field2="));
}

TEST(Kvi2txtLook, AHeaderThatIsNotThereHasNoColumns)
{
    TTextImport Import("A,B,C\r\n");
    Import.RowFirst = 9;
    for (const int HeaderRow : {0, 8}) {
        const auto View = Import.Look({.HeaderRow = HeaderRow});
        EXPECT_THAT(View.Columns, IsEmpty());
        EXPECT_THAT(View.Rows, IsEmpty());
    }
}

TEST(Kvi2txtLook, TitlesAreOfTheCharacterSet)
{
    TTextImport Import("Stra\xE1" "e,B\r\n\x84,2\r\n");
    Import.RowFirst = 2;
    Import.CharacterSet = csiASCII_MSDOS;
    const auto View = Import.Look({.HeaderRow = 1});
    EXPECT_THAT(ColumnsOf(View), ElementsAre("Field1=Stra\xC3\x9F" "e", "Field2=B"));
    EXPECT_THAT(RowsOf(View), ElementsAre("2: \xC3\xA4|2"));
}

// Rows.

TEST(Kvi2txtLook, ShowsRowsFromRowFirstToRowLast)
{
    TTextImport Import("H,I\r\n1,a\r\n2,b\r\n3,c\r\n4,d\r\n");
    Import.RowFirst = 2;
    Import.RowLast = 4;
    const auto Two = Import.Look({.Rows = 2});
    EXPECT_THAT(RowsOf(Two), ElementsAre("2: 1|a", "3: 2|b"));
    EXPECT_TRUE(Two.HasMore);
    for (const int Rows : {3, 20, RowLastMax}) {
        const auto All = Import.Look({.Rows = Rows});
        EXPECT_THAT(RowsOf(All), ElementsAre("2: 1|a", "3: 2|b", "4: 3|c"));
        EXPECT_FALSE(All.HasMore);
    }
    const auto None = Import.Look({.Rows = 0, .HeaderRow = 1});
    EXPECT_THAT(None.Rows, IsEmpty());
    EXPECT_TRUE(None.HasMore);
    EXPECT_THAT(ColumnsOf(None), ElementsAre("Field1=H", "Field2=I"));
}

TEST(Kvi2txtLook, ShowsTheValuesThatARunImports)
{
    TTextImport Import("\"Ada,\",\"b\"\"c\",x\r\n\"d\r\ne\",,\r\n");
    for (const auto Extensions : {TKvITextExtensions(), TKvITextExtensions{xtDoubledQualifiers}}) {
        Import.Mode = imCopy;
        Import.Extensions = Extensions;
        const auto Shown = RowsOf(Import.Look({}));
        const auto Imported = Import.Run();
        ASSERT_THAT(Shown, SizeIs(2));
        EXPECT_EQ(Shown[0], "1: " + Imported[0]);
        EXPECT_EQ(Shown[1], "2: " + Imported[1]);
    }
}

TEST(Kvi2txtLook, ShowsLongerAndShorterLinesAsTheyAre)
{
    TTextImport Import("A,B\r\n1,2,3\r\n4\r\n\r\n5,6\r\n");
    Import.RowFirst = 2;
    const auto View = Import.Look({.HeaderRow = 1});
    EXPECT_THAT(ColumnsOf(View), ElementsAre("Field1=A", "Field2=B", "Field3="));
    EXPECT_THAT(RowsOf(View), ElementsAre("2: 1|2|3", "3: 4", "4:", "5: 5|6"));
}

TEST(Kvi2txtLook, ShowsTheColumnsThatAreAskedFor)
{
    TTextImport Import("1,2,3\r\n4\r\n");
    const auto View = Import.Look({.Columns = {"Field3", "Field1", "Constant"}});
    EXPECT_THAT(ColumnsOf(View), ElementsAre("Field3=", "Field1=", "Constant="));
    EXPECT_THAT(RowsOf(View), ElementsAre("1: 3|1|Constant", "2: |4|Constant"));
}

TEST(Kvi2txtLook, AFixedLineIsOneValueUntilColumnsAreNamed)
{
    TTextImport Import("Ada  Bern \r\n\x84  x\r\n");
    Import.Fixed = true;
    Import.SetFieldDelimiter(fdNone);
    Import.CharacterSet = csiASCII_MSDOS;
    const auto Whole = Import.Look({.HeaderRow = 0});
    EXPECT_THAT(Whole.Columns, IsEmpty());
    EXPECT_THAT(RowsOf(Whole), ElementsAre("1: Ada  Bern ", "2: \xC3\xA4  x"));
    const TKvISourceLook Two{.Columns = {"Text1-5", "Text6-10"}};
    EXPECT_THAT(RowsOf(Import.Look(Two)), ElementsAre("1: Ada  |Bern ", "2: \xC3\xA4  x|"));
    Import.Extensions = {xtFixedPadding};
    EXPECT_THAT(RowsOf(Import.Look(Two)), ElementsAre("1: Ada|Bern", "2: \xC3\xA4  x|"));
}

TEST(Kvi2txtLook, ALineThatARunRefusesShowsWhy)
{
    TTextImport Import("1,2\r\n" + std::string(10000, 'x') + "\r\n3,4\r\n");
    const auto View = Import.Look({});
    ASSERT_THAT(View.Rows, SizeIs(3));
    ASSERT_THAT(View.Rows[1].Values, SizeIs(2));
    EXPECT_EQ(View.Rows[1].Values[0].Error,
              "Line 2 of " + Import.SourceFileName + " is longer than 9999 characters");
    EXPECT_EQ(View.Rows[1].Position.Number, 2);
    EXPECT_EQ(RowsOf(View)[2], "3: 3|4");
}

TEST(Kvi2txtLook, TellsWhereARowStandsInTheFile)
{
    const auto OffsetsOf = [](const std::string& Text, TKvITextExtensions Extensions = {}) {
        TTextImport Import(Text);
        Import.RowFirst = 2;
        Import.Extensions = Extensions;
        std::vector<std::int64_t> Result;
        for (const auto& Row : Import.Look({}).Rows) {
            EXPECT_EQ(Row.Position.Unit, "line");
            Result.push_back(Row.Position.Offset);
        }
        return Result;
    };
    EXPECT_THAT(OffsetsOf("H\r\n1\r\n\r\n22\r\n3"), ElementsAre(3, 6, 8, 12));
    EXPECT_THAT(OffsetsOf("\xEF\xBB\xBFH\n1\n2\n"), ElementsAre(5, 7));
    EXPECT_THAT(OffsetsOf("\xEF\xBB\xBFH\n1\n2\n", {xtByteOrderMark}), ElementsAre(5, 7));
    EXPECT_THAT(OffsetsOf("\xFF\xFEH\0\n\0" "1\0"s, {xtByteOrderMark}), ElementsAre(-1));
}

// What is read, and how often.

TEST(Kvi2txtLook, ReadsOnlyTheBeginningOfALargeFile)
{
    TTextImport Import("H\r\n1\r\n2\r\n");
    MakeEndless(Import);
    Import.RowFirst = 2;
    const auto View = Import.Look({.Rows = 1, .HeaderRow = 1});
    EXPECT_THAT(RowsOf(View), ElementsAre("2: 1"));
    EXPECT_TRUE(View.HasMore);
}

TEST(Kvi2txtLook, ReadsOnlyTheBeginningOfALargeUtf16File)
{
    TTextImport Import("\xFF\xFEH\0\n\0" "1\0\n\0"s + "2\0\n\0"s);
    MakeEndless(Import);
    Import.Extensions = {xtByteOrderMark};
    EXPECT_THAT(RowsOf(Import.Look({.Rows = 2})), ElementsAre("1: H", "2: 1"));
}

TEST(Kvi2txtLook, ALineThatGoesOnPastTheBeginningIsShownWhole)
{
    for (const auto Size : {Window - 3, Window - 2, Window - 1, Window, Window + 1, 20 * Window}) {
        TTextImport Import("1," + std::string(Size - 2, 'x') + "\r\n2,y\r\n");
        Import.Extensions = {xtLongLines};
        const auto View = Import.Look({.Rows = 2});
        ASSERT_THAT(View.Rows, SizeIs(2)) << Size;
        ASSERT_THAT(View.Rows[0].Values, SizeIs(2));
        EXPECT_EQ(View.Rows[0].Values[1].Value.Text().size(), Size - 2);
        EXPECT_EQ(RowsOf(View)[1], "2: 2|y");
        EXPECT_FALSE(View.HasMore);
    }
}

TEST(Kvi2txtLook, RowsFarBehindTheBeginningAreFound)
{
    std::string Text;
    for (int I = 1; I <= 300000; ++I)
        Text += std::to_string(I) + ",x\r\n";
    TTextImport Import(Text);
    Import.RowFirst = 299999;
    EXPECT_THAT(RowsOf(Import.Look({.HeaderRow = 1})), ElementsAre("299999: 299999|x", "300000: 300000|x"));
    Import.RowFirst = 2;
    EXPECT_THAT(RowsOf(Import.Look({.Rows = 1})), ElementsAre("2: 2|x"));
}

TEST(Kvi2txtLook, SeveralLooksOpenTheFileOnce)
{
    TTextImport Import("A;B\r\n1;2,3\r\n");
    EXPECT_THAT(RowsOf(Import.Look({})), ElementsAre("1: A;B", "2: 1;2|3"));
    std::filesystem::remove(Import.SourceFileName);
    Import.SetFieldDelimiter(fdSemicolon);
    EXPECT_THAT(RowsOf(Import.Look({})), ElementsAre("1: A|B", "2: 1|2,3"));
    Import.Fixed = true;
    EXPECT_THAT(RowsOf(Import.Look({.Columns = {"Text3-3"}})), ElementsAre("1: B", "2: 2"));
    Import.EndLook();
    EXPECT_THROW(Import.Look({}), EFileError);
}

TEST(Kvi2txtLook, AnotherFileOrReadingOfItIsOpened)
{
    TTextImport Import("\xEF\xBB\xBF" "A\r\n");
    EXPECT_THAT(RowsOf(Import.Look({})), ElementsAre("1: \xEF\xBB\xBF" "A"));
    Import.Extensions = {xtByteOrderMark};
    EXPECT_THAT(RowsOf(Import.Look({})), ElementsAre("1: A"));
    Import.SourceFileName = Import.Folder.Write("other", "B\r\n");
    EXPECT_THAT(RowsOf(Import.Look({})), ElementsAre("1: B"));
}

TEST(Kvi2txtLook, ARunTakesASmallFileAsItWasLookedAt)
{
    TTextImport Import("1,2,3\r\n");
    Import.Look({});
    std::filesystem::remove(Import.SourceFileName);
    EXPECT_THAT(Import.Run(), ElementsAre("1|2|3"));
    EXPECT_EQ(Import.RunAndFail(), "Cannot open file \"FILE\": No such file or directory");
}

TEST(Kvi2txtLook, ARunWithoutMappingsTakesASmallFileAsItWasLookedAt)
{
    TTextImport Import("A,B,C\r\n1,2,3\r\n");
    Import.RowFirst = 2;
    Import.Mappings().Clear();
    Import.Look({});
    std::filesystem::remove(Import.SourceFileName);
    EXPECT_THAT(Import.Run(), ElementsAre("1|2|3"));
}

TEST(Kvi2txtLook, ARunReadsAllOfALargeFile)
{
    std::string Text;
    while (Text.size() < 2 * Window)
        Text += std::string(999, 'x') + "\n";
    TTextImport Import(Text);
    Import.SetFields({{.Name = "A", .Size = 0}});
    Import.Look({});
    EXPECT_THAT(Import.Run(), SizeIs(Text.size() / 1000));
}

TEST(Kvi2txtLook, ARunThatFailedLeavesNothingToTheNext)
{
    TTextImport Import("1,2,3\r\n");
    Import.OnBeforeRecordEvent = [](auto&, const auto&, auto&, bool&) { throw Exception("no more"); };
    EXPECT_EQ(Import.RunAndFail(), "no more");
    Import.OnBeforeRecordEvent = {};
    Import.Folder.Write("file", "4,5,6\r\n");
    EXPECT_THAT(RowsOf(Import.Look({})), ElementsAre("1: 4|5|6"));
}

// What goes wrong.

TEST(Kvi2txtLook, RaisesWhatTheRunWouldEndBy)
{
    TTextImport Import("1,2\r\n3,\"4\r\n5,6\r\n");
    Import.Extensions = {xtDoubledQualifiers};
    EXPECT_EQ(ErrorOf(Import, {}), "Line 2 of FILE begins a value that no text qualifier closes");
    EXPECT_EQ(ErrorOf(Import, {.Rows = 1}), Import.RunAndFail());
    Import.RowLast = 1;
    EXPECT_EQ(ErrorOf(Import, {}), "none");
    Import.SourceFileName = "/no/such/file";
    EXPECT_EQ(ErrorOf(Import, {}), "Cannot open file \"FILE\": No such file or directory");
}

TEST(Kvi2txtLook, ErrorsKnowFileAndLine)
{
    TTextImport Import("1,2\r\n3,\"4\r\n");
    Import.Extensions = {xtDoubledQualifiers};
    Import.RunAndFail();
    EXPECT_EQ(Import.Error().Facts.FileName, Import.SourceFileName);
    EXPECT_EQ(Import.Error().Facts.Place, "line 2");
    EXPECT_EQ(Import.Error().Facts.Rule, erFormat);
    Import.SourceFileName = Import.Folder.Write("long", "1,2\r\n" + std::string(10000, 'x'));
    Import.RunAndFail();
    EXPECT_EQ(Import.Error().Facts.FileName, Import.SourceFileName);
    EXPECT_EQ(Import.Error().Facts.Place, "line 2");
    EXPECT_EQ(Import.Error().Facts.Rule, erLength);
}

TEST(Kvi2txtLook, AValueThatIsClosedFarBehindIsNoError)
{
    TTextImport Import("1,\"" + std::string(2 * Window, 'x') + "\"\r\n");
    Import.Extensions = {xtDoubledQualifiers, xtLongLines};
    const auto View = Import.Look({});
    ASSERT_THAT(View.Rows, SizeIs(1));
    EXPECT_EQ(View.Rows[0].Values[1].Value.Text().size(), 2 * Window);
}

TEST(Kvi2txtLook, WhatWasCancelledIsNotKept)
{
    struct TNo : TKvIRunObserver
    {
        bool KeepsRunning() override { return false; }
    };
    TNo Observer;
    TTextImport Import("1,2,3\r\n");
    Import.SetObserver(&Observer);
    EXPECT_EQ(ErrorOf(Import, {}), "Looking at the source was canceled by user.");
    Import.SetObserver(nullptr);
    EXPECT_THAT(RowsOf(Import.Look({})), ElementsAre("1: 1|2|3"));
}

// The delimiter.

TEST(Kvi2txtFindDelimiter, IsTheFirstThatDelimitsValuesOfTheHeader)
{
    TTextImport Import("Orders, all\r\nID;City\tZIP\r\n1;\"a,b\"\r\n");
    EXPECT_EQ(Import.FindDelimiter(2, ",;\t"), ';');
    EXPECT_EQ(Import.FindDelimiter(2, ",\t;"), '\t');
    EXPECT_EQ(Import.FindDelimiter(1, ",;\t"), ',');
    EXPECT_EQ(Import.FindDelimiter(2, ",|"), std::nullopt);
    EXPECT_EQ(Import.FindDelimiter(2, ""), std::nullopt);
    EXPECT_EQ(Import.FindDelimiter(9, ",;\t"), std::nullopt);
    EXPECT_EQ(Import.GetFieldDelimiterCustom(), ',');
}

TEST(Kvi2txtFindDelimiter, IsNoneWithoutAHeaderOrOfFixedLines)
{
    TTextImport Import("ID;City\r\n");
    EXPECT_EQ(Import.FindDelimiter(0, ";"), std::nullopt);
    Import.Fixed = true;
    EXPECT_EQ(Import.FindDelimiter(1, ";"), std::nullopt);
}

TEST(Kvi2txtFindDelimiter, DoesNotCountInsideQualifiedValues)
{
    TTextImport Import("\"a,b\";c\r\n");
    for (const auto Extensions : {TKvITextExtensions(), TKvITextExtensions{xtDoubledQualifiers}}) {
        Import.Extensions = Extensions;
        EXPECT_EQ(Import.FindDelimiter(1, ",;"), ';');
    }
}

TEST(Kvi2txtFindDelimiter, IsNoneUnderWhichTheHeaderIsNeverClosed)
{
    TTextImport Import("size,\" x;n\r\n1;2\r\n");
    Import.Extensions = {xtDoubledQualifiers};
    EXPECT_EQ(Import.FindDelimiter(1, ",;"), ';');
}

TEST(Kvi2txtFindDelimiter, OpensTheFileOnceTogetherWithTheLooks)
{
    TTextImport Import("a;b\r\n");
    EXPECT_EQ(Import.FindDelimiter(1, ",\t;"), ';');
    std::filesystem::remove(Import.SourceFileName);
    Import.SetFieldDelimiterCustom(';');
    EXPECT_THAT(RowsOf(Import.Look({})), ElementsAre("1: a|b"));
}

TEST(Kvi2txtFindDelimiter, ReadsOnlyTheBeginningOfALargeFile)
{
    TTextImport Import("a;b\r\n");
    MakeEndless(Import);
    EXPECT_EQ(Import.FindDelimiter(1, ",;"), ';');
}

// Names.

TEST(Kvi2txtNames, OfDelimitedLinesCountByWhatStandsBehindFiveCharacters)
{
    TTextImport Import("A,B,C\r\n");
    const auto Resolved = [&Import, Shown = Import.Look({}).Columns](const std::string& Name) {
        const auto Found = Import.ResolveName(Name, Shown);
        return std::pair(Found.Kind, Found.Name);
    };
    EXPECT_EQ(Resolved("Field2"), std::pair(snColumn, std::string("Field2")));
    EXPECT_EQ(Resolved("field03"), std::pair(snColumn, std::string("Field3")));
    EXPECT_EQ(Resolved("Hello1"), std::pair(snColumn, std::string("Field1")));
    EXPECT_EQ(Resolved("Field4"), std::pair(snMissing, std::string("Field4")));
    EXPECT_EQ(Resolved("FieldX"), std::pair(snMissing, std::string("FieldX")));
    EXPECT_EQ(Resolved("Text1-2").first, snConstant);
    EXPECT_EQ(Resolved("A").first, snConstant);
    EXPECT_EQ(Resolved("").first, snConstant);
}

TEST(Kvi2txtNames, OfFixedLinesAreRanges)
{
    TTextImport Import("abcdef\r\n");
    Import.Fixed = true;
    const auto Resolved = [&Import](const std::string& Name) {
        const auto Found = Import.ResolveName(Name, {});
        return std::pair(Found.Kind, Found.Name);
    };
    EXPECT_EQ(Resolved("text1-3"), std::pair(snColumn, std::string("Text1-3")));
    EXPECT_EQ(Resolved("Column9-12").first, snConstant);
    EXPECT_EQ(Resolved("Text0-3").first, snConstant);
    EXPECT_EQ(Resolved("Text3-0").first, snMissing);
    EXPECT_EQ(Resolved("Text3-x").first, snMissing);
    EXPECT_EQ(Resolved("Text3").first, snConstant);
    EXPECT_EQ(Resolved("Field1").first, snMissing);
    EXPECT_EQ(Resolved("Constant").first, snConstant);
}

// The current record of a run, and what the run has met.

TEST(Kvi2txtLook, TheRecordOfARunIsItsLine)
{
    TTextImport Import("H\r\n1,\"2\r\n3\"\r\n\r\n");
    Import.RowFirst = 2;
    EXPECT_EQ(Import.SourcePosition().Number, 0);
    EXPECT_TRUE(Import.SourceRecord().IsNull());
    TRows Seen;
    Import.OnAfterRecordEvent = [&](TKvImportBaseComponent& Sender, bool&) {
        const auto Position = Sender.SourcePosition();
        Seen.push_back(Position.Text() + " at " + std::to_string(Position.Offset) + ": " +
                       Sender.SourceRecord().ToText());
    };
    Import.Run();
    EXPECT_THAT(Seen, ElementsAre("line 2 at 3: 1,\"2\r\n3\"", "line 3 (line 4 of the file) at 13: "));
    EXPECT_EQ(Import.SourcePosition().Number, 0);
    EXPECT_TRUE(Import.SourceRecord().IsNull());
}

TEST(Kvi2txtLook, RemarksOnLinesWithOtherThanTheHeadersValues)
{
    TTextImport Import("A,B,C\r\n1,2,3\r\n4,5\r\n6,7,8,9\r\n\r\n");
    Import.RowFirst = 2;
    EXPECT_THAT(Import.SourceRemarks(), IsEmpty());
    Import.Run();
    Import.Look({});                                // changes nothing of it
    const auto Remarks = Import.SourceRemarks();
    ASSERT_THAT(Remarks, SizeIs(2));
    EXPECT_EQ(PartsOf(Remarks[0]), std::tuple(srMoreValues, 1, 4, 1, true));
    EXPECT_EQ(PartsOf(Remarks[1]), std::tuple(srFewerValues, 2, 3, 1, true));
}

TEST(Kvi2txtLook, RemarksOnLinesWithOtherThanTheFirstLinesValues)
{
    TTextImport Import("Orders\r\n1,2,3\r\n4,5\r\n");
    Import.RowFirst = 2;
    Import.HeaderLine = 0;
    Import.Run();
    const auto Remarks = Import.SourceRemarks();
    ASSERT_THAT(Remarks, SizeIs(1));
    EXPECT_EQ(PartsOf(Remarks[0]), std::tuple(srFewerValues, 1, 3, 2, false));
}

} // namespace kv
