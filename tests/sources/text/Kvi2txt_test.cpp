#include "Kvi2txt.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "KvAllocationCount.h"
#include "KvImpatientUser.h"
#include "KvTextImport.h"
#include "KvUserInterface.h"

using namespace std::string_literals;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

namespace kv {

// Properties.

TEST(Kvi2txt, StartsWithTheDefaultsOfATextImport)
{
    TKvImportFromText Import;
    EXPECT_EQ(Import.SourceFileName, "KvImport.TXT");
    EXPECT_FALSE(Import.Fixed);
    EXPECT_EQ(Import.RowFirst, 1);
    EXPECT_EQ(Import.RowLast, 2147483647);
    EXPECT_EQ(Import.GetFieldDelimiter(), fdTab);
    EXPECT_EQ(Import.GetFieldDelimiterCustom(), '\t');
    EXPECT_EQ(Import.GetTextQualifier(), tqQuot);
    EXPECT_EQ(Import.GetTextQualifierCustom(), '"');
    EXPECT_EQ(Import.GetRecordSeparator(), rsCRLF);
    EXPECT_EQ(Import.GetRecordSeparatorCustom(), "\r\n");
    EXPECT_TRUE(Import.Extensions.IsEmpty());
    EXPECT_EQ(TTextImport("").TableType, teText);
}

TEST(Kvi2txt, PublishesItsPropertiesAfterThoseOfEveryImport)
{
    std::vector<std::string_view> Names;
    for (const auto& Property : TKvImportFromText().PublishedProperties())
        Names.push_back(Property.Name);
    const auto Inherited = TKvImportBaseComponent().PublishedProperties().size();
    Names.erase(Names.begin(), Names.begin() + static_cast<std::ptrdiff_t>(Inherited));
    EXPECT_THAT(Names, ElementsAre("SourceFileName", "RowFirst", "RowLast", "Fixed", "FieldDelimiter",
                                   "FieldDelimiterCustom", "TextQualifier", "TextQualifierCustom",
                                   "RecordSeparator", "RecordSeparatorCustom", "FixedUnit", "Extensions"));
}

TEST(Kvi2txt, PublishedPairsStayInStep)
{
    TKvImportFromText Import;
    SetPropValue(Import, "FieldDelimiterCustom", ";");
    EXPECT_EQ(Import.GetFieldDelimiter(), fdSemicolon);
    SetPropValue(Import, "FieldDelimiter", "fdCustom");
    EXPECT_EQ(Import.GetFieldDelimiterCustom(), ';');
    SetPropValue(Import, "TextQualifier", "tqApos");
    EXPECT_EQ(Import.GetTextQualifierCustom(), '\'');
    SetPropValue(Import, "RecordSeparator", "rsLF");
    EXPECT_EQ(Import.GetRecordSeparatorCustom(), "\n");
    SetPropValue(Import, "RowFirst", 2);
    EXPECT_EQ(Import.RowFirst, 2);
    SetPropValue(Import, "Extensions", 6);
    EXPECT_EQ(Import.Extensions, (TKvITextExtensions{xtLongLines, xtByteOrderMark}));
}

TEST(Kvi2txt, OffersTextFilesAfterAllFiles)
{
    EXPECT_EQ(TKvImportFromText::Extension(), ".TXT");
    EXPECT_EQ(TKvImportFromText::FillFileFilters(),
              "All files (*.*)|*.*|Text file (*.txt)|*.TXT|Comma-delimited file (*.csv)|*.CSV|"
              "Data file (*.dat)|*.DAT|Text file (*.prn)|*.PRN|Tabular file (*.tab)|*.TAB|"
              "ASCII file (*.asc)|*.ASC|");
}

TEST(Kvi2txt, RefusesToRunWithoutADestinationOrAFile)
{
    const auto MessageOf = [](TKvImportFromText& Import) {
        try {
            Import.Execute();
        }
        catch (const Exception& Error) {
            return Error.Message;
        }
        return ""s;
    };
    TTextImport Import("");
    Import.SourceFileName.clear();
    EXPECT_EQ(MessageOf(Import), "Property SourceFileName wasn't specified.");
    Import.SetDataSet(nullptr);
    EXPECT_EQ(MessageOf(Import), "Property DataSet wasn't specified.");
}

// Lines.

struct TRowsCase
{
    const char* Name;
    int RowFirst;
    int RowLast;
    std::vector<std::string> Rows;
};
void PrintTo(const TRowsCase& Case, std::ostream* Out) { *Out << Case.RowFirst << ".." << Case.RowLast; }

class Kvi2txtImports : public testing::TestWithParam<TRowsCase> {};

TEST_P(Kvi2txtImports, TheLinesFromRowFirstToRowLast)
{
    TTextImport Import("1\r\n2\r\n3\r\n4\r\n");
    Import.RowFirst = GetParam().RowFirst;
    Import.RowLast = GetParam().RowLast;
    Import.SetFields({{.Name = "A"}});
    EXPECT_EQ(Import.Run(), GetParam().Rows);
}

INSTANTIATE_TEST_SUITE_P(, Kvi2txtImports, testing::Values(
    TRowsCase{"All", 1, RowLastMax, {"1", "2", "3", "4"}},
    TRowsCase{"AllButTheHeader", 2, RowLastMax, {"2", "3", "4"}},
    TRowsCase{"TheMiddle", 2, 3, {"2", "3"}},
    TRowsCase{"One", 3, 3, {"3"}},
    TRowsCase{"FewerThanAskedFor", 4, 9, {"4"}},
    TRowsCase{"NonePastTheEnd", 5, 9, {}},
    TRowsCase{"NoneWhenTheLastComesFirst", 3, 2, {}},
    TRowsCase{"NoneBeforeTheFirst", 1, 0, {}},
    TRowsCase{"FromTheFirstWhenCountedFromZero", 0, 2, {"1", "2"}},
    TRowsCase{"FromTheFirstWhenNegative", -2147483647, RowLastMax, {"1", "2", "3", "4"}}),
    [](const auto& Info) { return std::string(Info.param.Name); });

TEST(Kvi2txt, CountsTheLinesThatItWillImport)
{
    TTextImport Import("H\r\n1\r\n2\r\n3\r\n");
    Import.RowFirst = 2;
    int Counted = -1;
    Import.OnAfterRecordEvent = [&](TKvImportBaseComponent&, bool&) { Counted = Import.GetTotalCount(); };
    Import.Run();
    EXPECT_EQ(Counted, 3);
}

TEST(Kvi2txt, ImportsTheLastLineWithoutItsEnd)
{
    EXPECT_THAT(TTextImport("1,2,3\r\n4,5,6").Run(), ElementsAre("1|2|3", "4|5|6"));
}

TEST(Kvi2txt, AnEmptyLineIsARecordWithoutValues)
{
    TTextImport Import("1,2,3\r\n\r\n4,5,6\r\n");
    EXPECT_THAT(Import.Run(), ElementsAre("1|2|3", "||", "4|5|6"));
    Import.Destination.First();
    Import.Destination.Next();
    EXPECT_TRUE(Import.Destination.Fields(0).IsNull());
}

TEST(Kvi2txt, AnEmptyFileHasNoRecord)
{
    EXPECT_THAT(TTextImport("").Run(), IsEmpty());
}

TEST(Kvi2txt, AHeaderAloneIsNoRecord)
{
    for (const auto* const Text : {"A,B,C", "A,B,C\r\n"}) {
        TTextImport Import(Text);
        Import.RowFirst = 2;
        EXPECT_THAT(Import.Run(), IsEmpty());
    }
}

TEST(Kvi2txt, AQualifiedValueMaySpanLines)
{
    EXPECT_THAT(TTextImport("1,\"x\r\ny\",3\r\n4,5,6\r\n").Run(), ElementsAre("1|x\r\ny|3", "4|5|6"));
}

TEST(Kvi2txt, EachSeparatorAndQualifierIsTakenAsSet)
{
    TTextImport Import("1;'a;b';3~4;5;6");
    Import.SetFieldDelimiter(fdSemicolon);
    Import.SetTextQualifier(tqApos);
    Import.SetRecordSeparatorCustom("~");
    EXPECT_THAT(Import.Run(), ElementsAre("1|a;b|3", "4|5|6"));
}

TEST(Kvi2txt, WithoutAQualifierAZeroByteHidesLineEnds)
{
    TTextImport Import("\"1,2\"\r\n\0a\r\nb\0\r\n3"s);
    Import.SetTextQualifier(tqNone);
    EXPECT_THAT(Import.Run(), ElementsAre("\"1|2\"|", "\0a\r\nb\0||"s, "3||"));
}

TEST(Kvi2txt, TheEndOfFileCharacterIsPartOfTheLastLine)
{
    EXPECT_THAT(TTextImport("1,2,3\r\n4,5,6\x1A").Run(), ElementsAre("1|2|3", "4|5|6\x1A"));
}

TEST(Kvi2txt, ZeroBytesAndBytesOfOtherEncodingsAreText)
{
    EXPECT_THAT(TTextImport("a\0b,\xE9\xFF,\x80\r\n"s).Run(), ElementsAre("a\0b|\xE9\xFF|\x80"s));
}

TEST(Kvi2txt, AByteOrderMarkIsPartOfTheFirstValue)
{
    EXPECT_THAT(TTextImport("\xEF\xBB\xBF" "1,2,3\r\n").Run(), ElementsAre("\xEF\xBB\xBF" "1|2|3"));
}

TEST(Kvi2txt, AnOpenQualifierTakesTheRestOfTheFileIntoOneRecord)
{
    EXPECT_THAT(TTextImport("1,2,3\r\n4,\"5,6\r\n7,8,9\r\n").Run(),
                ElementsAre("1|2|3", "4|5,6\r\n7,8,9\r\n|"));
}

TEST(Kvi2txt, DoubledQualifiersStayDoubled)
{
    EXPECT_THAT(TTextImport("\"he said \"\"hi\"\"\",2,3\r\n").Run(), ElementsAre("he said \"\"hi\"\"|2|3"));
}

TEST(Kvi2txt, RunsAgainFromTheStart)
{
    TTextImport Import("1,2,3\r\n");
    EXPECT_THAT(Import.Run(), ElementsAre("1|2|3"));
    Import.Mode = imCopy;
    Import.MapTo({"Field3", "Field2", "Field1"});
    EXPECT_THAT(Import.Run(), ElementsAre("3|2|1"));
}

// Values.

struct TSourceCase
{
    const char* Source;
    const char* Value;
};
void PrintTo(const TSourceCase& Case, std::ostream* Out) { *Out << Case.Source; }

/// The value that the one field gets from `Source`.
std::string ImportedValue(TTextImport& Import, const std::string& Source)
{
    Import.SetFields({{.Name = "A"}});
    Import.MapTo({Source});
    const auto Rows = Import.Run();
    return Rows.size() == 1 ? Rows[0] : "not one record";
}

class Kvi2txtDelimitedColumn : public testing::TestWithParam<TSourceCase> {};

TEST_P(Kvi2txtDelimitedColumn, Gives)
{
    TTextImport Import("one,two,three\r\n");
    EXPECT_EQ(ImportedValue(Import, GetParam().Source), GetParam().Value);
}

INSTANTIATE_TEST_SUITE_P(, Kvi2txtDelimitedColumn, testing::Values(
    TSourceCase{"Field1", "one"},
    TSourceCase{"Field3", "three"},
    TSourceCase{"Field03", "three"},
    TSourceCase{"Field4", ""},                      // the line has no such value
    TSourceCase{"Field0", ""},
    TSourceCase{"Field-1", ""},
    TSourceCase{"Field", ""},
    TSourceCase{"FieldX", ""},
    TSourceCase{"Field1X", ""},
    TSourceCase{"Field99999999999999999999", ""},
    TSourceCase{"Fixed", "Fixed"},                  // constants
    TSourceCase{"field9", "field9"},
    TSourceCase{"Fiel2", "Fiel2"},
    TSourceCase{"Text1-3", "Text1-3"},
    TSourceCase{"Hello9", "Hello9"},
    TSourceCase{"Hello2", "two"},                   // any five characters before a number of a value
    TSourceCase{"field2", "two"},
    TSourceCase{"2024,", "2024"},                   // a delimiter at the end goes, also from a constant
    TSourceCase{"2024,,", "2024,"}));

class Kvi2txtFixedColumn : public testing::TestWithParam<TSourceCase> {};

TEST_P(Kvi2txtFixedColumn, Gives)
{
    TTextImport Import("1234567890abcde,\r\n");
    Import.Fixed = true;
    EXPECT_EQ(ImportedValue(Import, GetParam().Source), GetParam().Value);
}

INSTANTIATE_TEST_SUITE_P(, Kvi2txtFixedColumn, testing::Values(
    TSourceCase{"Text1-10", "1234567890"},
    TSourceCase{"Text11-15", "abcde"},
    TSourceCase{"Text3-3", "3"},
    TSourceCase{"Text11-16", "abcde"},              // without the delimiter at its end
    TSourceCase{"Text15-99", "e"},                  // shorter past the end of the line
    TSourceCase{"Text17-20", ""},
    TSourceCase{"Text5-4", ""},
    TSourceCase{"Text5-0", ""},
    TSourceCase{"Text5-", ""},
    TSourceCase{"Text5-x", ""},
    TSourceCase{"Text5-7-9", ""},
    TSourceCase{"Item5-7", "567"},                  // any four characters before the positions
    TSourceCase{"Text0-7", "Text0-7"},              // 0 is no position: constants
    TSourceCase{"Text-5-7", "Text-5-7"},
    TSourceCase{"Textx-7", "Textx-7"},
    TSourceCase{"Text5", "Text5"},
    TSourceCase{"A-5", "A-5"},
    TSourceCase{"2024-02-29", "2024-02-29"},
    TSourceCase{"Constant,", "Constant"},
    TSourceCase{"Field1", ""},
    TSourceCase{"Field1-3", ""}));

TEST(Kvi2txt, FixedLinesHaveNoQualifiedPositions)
{
    TTextImport Import("\"12\"34\r\n5678\r\n");
    Import.Fixed = true;
    Import.MapTo({"Text1-2", "Text3-4"});
    EXPECT_THAT(Import.Run(), ElementsAre("\"1|2\"|", "56|78|"));
}

TEST(Kvi2txt, QualifiersHideLineEndsOfFixedLinesToo)
{
    TTextImport Import("\"1\r\n2\"\r\n5678\r\n");
    Import.Fixed = true;
    Import.MapTo({"Text1-4"});
    EXPECT_THAT(Import.Run(), ElementsAre("\"1\r\n||", "5678||"));
}

TEST(Kvi2txt, AValueLosesTheDelimiterAtItsEndEvenIfQualified)
{
    TTextImport Import("\"a,\",b,\"c,,\"\r\n");
    EXPECT_THAT(Import.Run(), ElementsAre("a|b|c,"));
}

TEST(Kvi2txt, ATrailingDelimiterIsOneMoreEmptyValue)
{
    TTextImport Import("a,b,\r\n");
    EXPECT_THAT(Import.Run(), ElementsAre("a|b|"));
}

TEST(Kvi2txt, AConstantMayBeLongerThanAnyShortText)
{
    const std::string Long(100, 'x');
    TTextImport Import("1,2,3\r\n4,5,6\r\n");
    Import.MapTo({"Field1", Long, "Field3"});
    EXPECT_THAT(Import.Run(), ElementsAre("1|" + Long + "|3", "4|" + Long + "|6"));
}

TEST(Kvi2txt, AConstantOfOneLineIsAValueOfAnother)
{
    TTextImport Import("1,2,3\r\n4\r\n");
    Import.MapTo({"Field1", "Hello2"});
    EXPECT_THAT(Import.Run(), ElementsAre("1|2|", "4|Hello2|"));
}

// What a run costs.

/// Allocations of a run that reads `Count` lines and stores none of them.
std::size_t AllocationsFor(int Count, TKvITextExtensions Extensions)
{
    std::string Text;
    for (int I = 0; I < Count; ++I)
        Text += "12345,\"a longer value, in \"\"qualifiers\"\", that no short text holds\",another\r\n";
    TTextImport Import(Text);
    Import.MapTo({"Field1", "Field2", "A constant that no short text holds"});
    Import.Extensions = Extensions;
    Import.Mode = imUpdate;                         // of an empty table: every key is missing
    Import.DatasetKeys = "A";
    const auto Before = AllocationCount();
    Import.Execute();
    const auto Result = AllocationCount() - Before;
    EXPECT_EQ(Import.Statistic.TotalImported, Count) << Import.ErrorMessage();
    return Result;
}

TEST(Kvi2txt, AllocatesNothingForARecord)
{
    for (const auto Extensions : {TKvITextExtensions(), TKvITextExtensions{xtDoubledQualifiers}})
        EXPECT_LE(AllocationsFor(10000, Extensions),
                  AllocationsFor(10, Extensions) + 20); // the index of lines grows
}

// Messages.

TEST(Kvi2txt, TellsTheLineOfTheCurrentRecord)
{
    TTextImport Import("H\r\n1\r\n2\r\n");
    Import.RowFirst = 2;
    std::vector<std::string> Places;
    Import.OnAfterRecordEvent = [&](TKvImportBaseComponent& Sender, bool&) {
        Places.push_back(Sender.RecordPlace());
    };
    Import.Run();
    EXPECT_THAT(Places, ElementsAre("line 2", "line 3"));
}

TEST(Kvi2txt, CountsLinesWithOtherThanTheHeadersValues)
{
    TTextImport Import("A,B,C\r\n1,2,3\r\n4,5\r\n6,7,8,9\r\n\r\n1,2,3,\r\n1,2,3\r\n");
    Import.RowFirst = 2;
    Import.Run();
    EXPECT_EQ(Import.FieldCounts().FewerLines, 2);
    EXPECT_EQ(Import.FieldCounts().FirstFewer, 3);
    EXPECT_EQ(Import.FieldCounts().MoreLines, 2);
    EXPECT_EQ(Import.FieldCounts().FirstMore, 4);
}

TEST(Kvi2txt, TheLineToCompareWithMayBeAnyOrTheFirstThatIsImported)
{
    for (const int HeaderLine : {2, 0}) {
        TTextImport Import("Orders\r\nA,B,C\r\n1,2,3\r\n4,5\r\n6,7,8,9\r\n");
        Import.HeaderLine = HeaderLine;
        Import.RowFirst = 3;
        Import.Mappings().Add("ID=Field1");
        Import.Run();
        const auto& Counts = Import.FieldCounts();
        EXPECT_EQ(std::tie(Counts.FewerLines, Counts.FirstFewer, Counts.MoreLines, Counts.FirstMore),
                  std::tuple(1, 4, 1, 5));
    }
}

TEST(Kvi2txt, CountsNoValuesWithoutAHeader)
{
    TTextImport Import("A,B,C\r\n1,2\r\n");
    Import.Mode = imCopy;
    Import.Run();
    EXPECT_EQ(Import.FieldCounts().FewerLines, 0);
    Import.RowFirst = 2;
    Import.Fixed = true;
    Import.Run();
    EXPECT_EQ(Import.FieldCounts().FewerLines, 0);
}

TEST(Kvi2txt, CountsAnewInEachRun)
{
    TTextImport Import("A,B,C\r\n1,2\r\n");
    Import.RowFirst = 2;
    Import.Mode = imCopy;
    Import.Run();
    Import.Run();
    EXPECT_EQ(Import.FieldCounts().FewerLines, 1);
}

// What goes wrong.

TEST(Kvi2txt, AMissingFileFailsTheRun)
{
    TTextImport Import("1");
    Import.SourceFileName = "/no/such/file.txt";
    Import.Execute();
    EXPECT_EQ(Import.Statistic.Result, irFailed);
    EXPECT_EQ(Import.ErrorMessage(), "Cannot open file \"/no/such/file.txt\": No such file or directory");
    EXPECT_EQ(Import.Destination.RecordCount(), 0);
}

TEST(Kvi2txt, ADirectoryFailsTheRun)
{
    TTextImport Import("1");
    Import.SourceFileName = "/";
    Import.Execute();
    EXPECT_EQ(Import.Statistic.Result, irFailed);
    EXPECT_EQ(Import.ErrorMessage(), "Cannot open file \"/\": Is a directory");
}

TEST(Kvi2txt, AFileThatCannotBeReadFailsTheRun)
{
    TTextImport Import("1");
    Import.SourceFileName = "/proc/self/mem";       // opens, and has nothing at its start
    Import.Execute();
    EXPECT_EQ(Import.Statistic.Result, irFailed);
    EXPECT_THAT(Import.ErrorMessage(), StartsWith("Cannot read file \"/proc/self/mem\": "));
}

TEST(Kvi2txt, ALineOver9999CharactersEndsTheRun)
{
    const std::string Longest(9999, 'x');
    TTextImport Import("A\r\n" + Longest + "\r\n" + Longest + ",\r\n");
    Import.RowFirst = 2;
    EXPECT_EQ(Import.RunAndFail(), "Line 3 of FILE is longer than 9999 characters");
    EXPECT_EQ(Import.Statistic.TotalAdded, 1);
}

TEST(Kvi2txt, TheLongestLineKeepsItsLastValues)
{
    TTextImport Import("1," + std::string(9994, 'x') + ",3,\r\n");
    Import.MapTo({"Field1", "Field3", "Field4"});
    EXPECT_THAT(Import.Run(), ElementsAre("1|3|"));
}

TEST(Kvi2txt, FixedLinesHaveAnyLength)
{
    TTextImport Import(std::string(20000, 'x') + "y\r\n");
    Import.Fixed = true;
    Import.MapTo({"Text20000-20001"});
    EXPECT_THAT(Import.Run(), ElementsAre("xy||"));
}

TEST(Kvi2txt, RunsAfterAFailure)
{
    TTextImport Import("1,2,3\r\n");
    const auto FileName = std::exchange(Import.SourceFileName, "/no/such/file.txt");
    Import.Execute();
    Import.SourceFileName = FileName;
    EXPECT_THAT(Import.Run(), ElementsAre("1|2|3"));
}

// Cancel.

namespace {

/// So large that reading and cutting both ask several times whether to go on.
std::string LargeText()
{
    std::string Text;
    while (Text.size() < (std::size_t{13} << 20))
        Text += std::string(1000, 'x') + "\r\n";
    return Text;
}

} // namespace

class Kvi2txtCancelled : public testing::TestWithParam<int> {};

TEST_P(Kvi2txtCancelled, WhileLoadingImportsNothing)
{
    TImpatientUser User(GetParam());
    TTextImport Import(LargeText());
    Import.AnimatedStatus = true;
    Import.Execute();
    EXPECT_EQ(Import.Statistic.Result, irCanceled) << Import.ErrorMessage();
    EXPECT_EQ(Import.Destination.RecordCount(), 0);
    EXPECT_EQ(Import.Statistic.TotalImported, 0);
}

// One round opens the window, four follow the pieces that are read, the next ones the pieces cut.
INSTANTIATE_TEST_SUITE_P(, Kvi2txtCancelled, testing::Values(1, 3, 5, 6));

} // namespace kv
