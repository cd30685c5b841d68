// What a text import leaves out or reads otherwise than the file's maker may have meant, and how it tells.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <tuple>
#include <vector>

#include "KvException.h"
#include "KvLookText.h"
#include "KvRandomText.h"
#include "KvTextImport.h"
#include "KviExtensions.h"

using namespace std::string_literals;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace kv {

namespace {

using TRemark = std::tuple<TKvISourceRemarkKind, std::int64_t, std::int64_t>;

std::vector<TRemark> RemarksOf(const TKvImportBaseComponent& Import)
{
    std::vector<TRemark> Result;
    for (const auto& Remark : Import.SourceRemarks())
        Result.emplace_back(Remark.Kind, Remark.Count, Remark.First);
    return Result;
}

std::string Utf16(std::u16string_view Text)
{
    std::string Result = "\xFF\xFE";
    for (const auto Unit : Text)
        Result += {static_cast<char>(Unit & 0xFF), static_cast<char>(Unit >> 8)};
    return Result;
}

/// What a text field has of it: blanks alone are no value.
std::string StoredText(const TKvISourceValue& Value)
{
    return Value.Value.IsBlank() ? std::string() : Value.Value.ToText();
}

/// Names and amounts in columns that are as wide as "Zurich-Oerli".
void MakeFixed(TTextImport& Import)
{
    Import.Fixed = true;
    Import.SetFieldDelimiter(fdNone);
    Import.Extensions = {xtByteOrderMark, xtFixedPadding};
    Import.MapTo({"Text1-6", "Text7-10"});
}

} // namespace

// Records without values.

TEST(Kvi2txtNoEmptyRecords, LeavesThemOutAndTellsTheirNumber)
{
    TTextImport Import("A,B,C\r\n1,2,3\r\n\r\n,,\r\n4,5,6\r\n\x1A");
    Import.RowFirst = 2;
    Import.Extensions = {xtDoubledQualifiers};
    EXPECT_THAT(Import.Run(), ElementsAre("1|2|3", "||", "||", "4|5|6", "||"));
    EXPECT_THAT(RemarksOf(Import), ElementsAre(TRemark(srFewerValues, 2, 3)));
    Import.Mode = imCopy;
    Import.RunExtensions = {rxNoEmptyRecords};
    TRows Places;
    Import.OnAfterRecordEvent = [&](TKvImportBaseComponent& Sender, bool&) {
        Places.push_back(Sender.RecordPlace());
    };
    EXPECT_THAT(Import.Run(), ElementsAre("1|2|3", "4|5|6"));
    EXPECT_EQ(Import.Statistic.TotalImported, 2);
    EXPECT_THAT(Places, ElementsAre("line 2", "line 5"));
    EXPECT_THAT(RemarksOf(Import), ElementsAre(TRemark(srEmptyRows, 3, 3)));
}

TEST(Kvi2txtNoEmptyRecords, CountsAsManyRecordsAsItImports)
{
    TTextImport Import("1\r\n\r\n2\r\n\r\n3\r\n");
    Import.RunExtensions = {rxNoEmptyRecords};
    Import.RowLast = 4;
    int Counted = -1;
    Import.OnAfterRecordEvent = [&](TKvImportBaseComponent&, bool&) { Counted = Import.GetTotalCount(); };
    EXPECT_THAT(Import.Run(), ElementsAre("1||", "2||"));
    EXPECT_EQ(Counted, 2);
    EXPECT_THAT(RemarksOf(Import), ElementsAre(TRemark(srEmptyRows, 2, 2)));
}

TEST(Kvi2txtNoEmptyRecords, ALookShowsAsManyRowsAsItIsAskedFor)
{
    TTextImport Import("\r\n1\r\n\r\n\r\n2\r\n\r\n3\r\n");
    Import.RunExtensions = {rxNoEmptyRecords};
    const auto View = Import.Look({.Rows = 2});
    EXPECT_THAT(RowsOf(View), ElementsAre("2: 1", "5: 2"));
    EXPECT_TRUE(View.HasMore);
    EXPECT_THAT(RemarksOf(Import), ElementsAre(TRemark(srEmptyRows, 4, 1)));
    EXPECT_FALSE(Import.Look({.Rows = 3}).HasMore);
}

// Characters of fixed lines.

TEST(Kvi2txtFixedUnit, OfUtf16IsTheCharacter)
{
    TTextImport Import(Utf16(u"Koeln  12.5\r\nK\u00F6ln   13.5\r\n\u0141\u00F3d\u017A   14.2\r\n"));
    MakeFixed(Import);
    EXPECT_THAT(Import.Run(), ElementsAre("Koeln| 12.|", "K\xC3\xB6ln| 13.|",
                                          "\xC5\x81\xC3\xB3"
                                          "d\xC5\xBA| 14.|"));
    EXPECT_THAT(Import.SourceRemarks(), IsEmpty());
}

TEST(Kvi2txtFixedUnit, OfUtf8IsTheByteUnlessCharactersAreAskedFor)
{
    TTextImport Import("abcdef1234\r\nab\xC3\xB6"
                       "def1234\r\nab\xC3\xB6\xC3\xB6"
                       "ef1234\r\n");
    MakeFixed(Import);
    EXPECT_THAT(Import.Run(), ElementsAre("abcdef|1234|",
                                          "ab\xC3\xB6"
                                          "de|f123|",
                                          "ab\xC3\xB6\xC3\xB6|ef12|"));
    EXPECT_THAT(RemarksOf(Import), ElementsAre(TRemark(srWideCharacters, 2, 2)));
    Import.Mode = imCopy;
    Import.FixedUnit = tuCharacters;
    EXPECT_THAT(Import.Run(), ElementsAre("abcdef|1234|",
                                          "ab\xC3\xB6"
                                          "def|1234|",
                                          "ab\xC3\xB6\xC3\xB6"
                                          "ef|1234|"));
    EXPECT_THAT(Import.SourceRemarks(), IsEmpty());
}

TEST(Kvi2txtFixedUnit, WideCharactersAreToldBeforeTheRunToo)
{
    TTextImport Import("abcdef\r\nab\xC3\xB6"
                       "def\r\n");
    MakeFixed(Import);
    Import.Look({.Columns = {"Text1-6"}});
    EXPECT_THAT(RemarksOf(Import), ElementsAre(TRemark(srWideCharacters, 1, 2)));
}

TEST(Kvi2txtFixedUnit, TextOfOtherCodePagesHasNoWideCharacters)
{
    TTextImport Import("ab\x94"
                       "def\r\nab\xC3\xB6"
                       "def\r\n");
    MakeFixed(Import);
    Import.CharacterSet = csiASCII_MSDOS;
    Import.Run();
    EXPECT_THAT(Import.SourceRemarks(), IsEmpty());
    Import.CharacterSet = csiANSI_WINDOWS;
    Import.Mode = imCopy;
    Import.Run();
    EXPECT_THAT(RemarksOf(Import), ElementsAre(TRemark(srWideCharacters, 1, 2)));
}

TEST(Kvi2txtFixedUnit, IsPartOfASavedImport)
{
    TTextImport Import("");
    const auto File = Import.Folder / "saved.kvi";
    Import.FixedUnit = tuCharacters;
    Import.SaveSpecification("Fixed", File, false);
    TTextImport Again("");
    Again.LoadSpecification(File);
    EXPECT_EQ(Again.FixedUnit, tuCharacters);
}

// A byte order mark says more than the character set.

TEST(Kvi2txtByteOrderMark, IsNotConvertedTwice)
{
    for (const auto& Text :
         {"\xEF\xBB\xBFID,NAME\r\n1,K\xC3\xB6ln\r\n"s, Utf16(u"ID,NAME\r\n1,K\u00F6ln\r\n")}) {
        TTextImport Import(Text);
        Import.RowFirst = 2;
        Import.CharacterSet = csiASCII_MSDOS;
        Import.Extensions = {xtByteOrderMark};
        EXPECT_THAT(Import.Run(), ElementsAre("1|K\xC3\xB6ln|"));
        const auto View = Import.Look({.HeaderRow = 1});
        EXPECT_THAT(ColumnsOf(View), ElementsAre("Field1=ID", "Field2=NAME"));
        EXPECT_THAT(RowsOf(View), ElementsAre("2: 1|K\xC3\xB6ln"));
    }
}

TEST(Kvi2txtByteOrderMark, WithoutOneTheCharacterSetCounts)
{
    TTextImport Import("1,K\x94ln\r\n");
    Import.CharacterSet = csiASCII_MSDOS;
    Import.Extensions = {xtByteOrderMark};
    EXPECT_THAT(Import.Run(), ElementsAre("1|K\xC3\xB6ln|"));
}

// A line that names the delimiter.

TEST(Kvi2txtDelimiterLine, IsUnderstoodAndSkipped)
{
    TTextImport Import("sep=;\r\nA;B;C\r\n1;2,5;3;\r\nx\r\n");
    Import.RowFirst = 2;
    Import.Extensions = {xtDelimiterLine};
    EXPECT_EQ(Import.FindDelimiter(1, ",\t"), ';');
    EXPECT_THAT(Import.DetectedMappings(), ElementsAre("A=Field1", "B=Field2", "C=Field3"));
    const auto View = Import.Look({.HeaderRow = 1});
    EXPECT_THAT(ColumnsOf(View), ElementsAre("Field1=A", "Field2=B", "Field3=C", "Field4="));
    EXPECT_THAT(RowsOf(View), ElementsAre("2: 1|2,5|3|", "3: x"));
    TRows Places;
    Import.OnAfterRecordEvent = [&](TKvImportBaseComponent& Sender, bool&) {
        Places.push_back(Sender.RecordPlace());
    };
    EXPECT_THAT(Import.Run(), ElementsAre("1|2,5|3", "x||"));
    EXPECT_THAT(Places, ElementsAre("line 2 (line 3 of the file)", "line 3 (line 4 of the file)"));
    EXPECT_EQ(Import.GetFieldDelimiterCustom(), ',') << "the setting stays";
}

TEST(Kvi2txtDelimiterLine, IsALineLikeAnyOtherByTheOlderReading)
{
    TTextImport Import("sep=;\r\n1;2\r\n");
    EXPECT_THAT(Import.Run(), ElementsAre("sep=;||", "1;2||"));
    EXPECT_EQ(Import.FindDelimiter(1, ",;"), ';');
}

// Lines and the file.

TEST(Kvi2txt, LoneCarriageReturnsAndLineFeedsEndRecordsToo)
{
    const TRows Expected{"1|a|", "2|b|", "3|c|", "4|d|"};
    EXPECT_EQ(TTextImport("1,a\r2,b\n3,c\r\n4,d\r").Run(), Expected);
    TTextImport Today("1,a\r2,b\n3,c\r\n4,d\r");
    TurnOnExtensions(Today);
    EXPECT_EQ(Today.Run(), Expected);
}

TEST(Kvi2txt, ErrorsGiveTheLineOfTheFileBesideThatOfTheRecord)
{
    TTextImport Import("1,\"a\r\nb\r\nc\"\r\n" + std::string(10000, 'x') + "\r\n");
    EXPECT_EQ(Import.RunAndFail(), "Line 2 (4 in the file) of FILE is longer than 9999 characters");
    EXPECT_EQ(Import.Error().Facts.Place, "line 2 (line 4 of the file)");
    Import.SourceFileName = Import.Folder.Write("open", "1,\"a\r\nb\"\r\n2,\"x\r\n");
    Import.Extensions = {xtDoubledQualifiers};
    EXPECT_EQ(Import.RunAndFail(),
              "Line 2 (3 in the file) of FILE begins a value that no text qualifier closes");
    EXPECT_EQ(Import.Error().Facts.Place, "line 2 (line 3 of the file)");
}

TEST(Kvi2txt, ReadsNoMoreThanTheRowsThatAreWanted)
{
    TTextImport Import("A\r\n1\r\n2\r\n3\r\n");
    std::filesystem::resize_file(Import.SourceFileName, std::uintmax_t{1} << 40); // nobody reads to its end
    Import.RowFirst = 2;
    Import.RowLast = 3;
    EXPECT_THAT(Import.Run(), ElementsAre("1||", "2||"));
}

TEST(Kvi2txt, ReadsAFileOfManyWindows)
{
    std::string Text = "A,B,C\r\n";
    for (int I = 1; I <= 200000; ++I)
        Text += std::to_string(I) + ",\"x\r\n,\",yyyyy\r\n";
    TTextImport Import(Text);
    Import.RowFirst = 2;
    const auto Rows = Import.Run();
    ASSERT_THAT(Rows, SizeIs(200000));
    for (int I = 1; I <= 200000; I += 777)
        EXPECT_EQ(Rows[static_cast<std::size_t>(I - 1)], std::to_string(I) + "|x\r\n|yyyyy");
    EXPECT_EQ(Rows.back(), "200000|x\r\n|yyyyy");
}

TEST(Kvi2txt, WhatIsShownIsWhatIsImportedByBothReadings)
{
    TRandomText Random;
    for (int Round = 0; Round < 500; ++Round) {
        TTextImport Import(Random.Text("aab,,\"\" \r\n\n", 60));
        SCOPED_TRACE("KV_SEED=" + std::to_string(Random.Seed()) + " round " + std::to_string(Round));
        if (Random.Below(2))
            TurnOnExtensions(Import);
        else
            Import.Extensions = {};
        TRows Shown;
        try {
            for (const auto& Row : Import.Look({.Rows = 100, .Columns = {"Field1", "Field2", "Field3"}}).Rows)
                Shown.push_back(StoredText(Row.Values[0]) + "|" + StoredText(Row.Values[1]) + "|" +
                                StoredText(Row.Values[2]));
        }
        catch (const Exception& Error) {            // a value that is never closed
            Import.Execute();
            ASSERT_EQ(Import.ErrorMessage(), Error.Message);
            continue;
        }
        ASSERT_EQ(Import.Run(), Shown);
    }
}

TEST(Kvi2txt, CostsNoMoreThanInProportionToItsColumns)
{
    constexpr int Count = 100000;                   // each with each would take minutes
    std::string Text;
    for (int I = 1; I <= Count; ++I)
        Text += "c" + std::to_string(I) + ",";
    TTextImport Import(Text + "\r\n" + std::string(Count - 1, ',') + "x\r\n");
    Import.RowFirst = 2;
    Import.Extensions = {xtDoubledQualifiers, xtLongLines};
    const auto View = Import.Look({.HeaderRow = 1});
    ASSERT_THAT(View.Columns, SizeIs(Count + 1));
    EXPECT_EQ(View.Columns[Count - 1].Title, "c100000");
    EXPECT_EQ(View.Rows[0].Values[Count - 1].Value.ToText(), "x");
}

} // namespace kv
