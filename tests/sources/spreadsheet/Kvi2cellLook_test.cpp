// What an import of a workbook shows of it, and how often it loads it for that.
#include "Kvi2cell.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <string>
#include <tuple>
#include <vector>

#include "KvCellImport.h"
#include "KvCompoundBuilder.h"
#include "KvException.h"
#include "KvImpatientUser.h"
#include "KvLookText.h"
#include "KvTestRun.h"
#include "KvWorksheetBuilder.h"
#include "Kvi2wks.h"
#include "Kvi2xls.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

namespace kv {

namespace {

/// "Orders 3x2": sheets, their rows and columns.
TRows PartsOf(TKvImportFromCell& Import)
{
    TRows Result;
    for (const auto& Part : Import.SourceParts())
        Result.push_back(Part.Name + " " + std::to_string(Part.Rows) + "x" + std::to_string(Part.Columns));
    return Result;
}

auto Raises(const char* Message)
{
    return testing::Throws<Exception>(testing::Field(&Exception::Message, Message));
}

/// What the run ends by.
TKvErrorFacts FactsOfFailure(TKvImportFromCell& Import)
{
    TMemoryDataSet Table;
    Table.SetFieldDefs({{.Name = "A"}});
    Table.Open();
    Import.SetDataSet(&Table);
    Import.AnimatedStatus = false;
    Import.Options = {};
    Import.SetMappings({"A=A"});
    Import.Execute();
    Import.SetDataSet(nullptr);
    EXPECT_EQ(Import.Statistic.Result, irFailed);
    return Import.Error().Facts;
}

struct TNeverGoesOn : TKvIRunObserver
{
    bool KeepsRunning() override { return false; }
};

/// So many cells that loading them asks several times whether to go on.
void ManyCells(TSpreadSheetFile& Reader)
{
    AddSheet(Reader, "Orders", TSheetRows(50000, {1, 2, 3, 4}));
}

/// Three rows with values, and an extent that says otherwise.
TBookScript Declaring(int Rows, int Columns)
{
    return [=](TSpreadSheetFile& Reader) {
        AddSheet(Reader, "Orders", {{"ID", "City"}, {1, "Bern"}, {2, "Rom"}});
        Reader.OnDimensions(Reader, 0, 0, Rows, 0, Columns);
    };
}

} // namespace

// Sheets.

TEST(Kvi2cellLook, ListsTheSheetsAsFarAsARunReadsThem)
{
    TCellImport Import([](TSpreadSheetFile& Reader) {
        AddSheet(Reader, "One", {{"1", "2"}, {"3"}});
        AddSheet(Reader, "Empty", {});
        Reader.OnDimensions(Reader, 1, 0, 7, 0, 5);
    });
    EXPECT_THAT(PartsOf(Import), ElementsAre("One 2x2", "Empty 7x5"));
    Import.Extensions = {seCellExtent};
    EXPECT_THAT(PartsOf(Import), ElementsAre("One 2x2", "Empty 0x0"));
}

TEST(Kvi2cellLook, AFileWithoutSheetsHasAnEmptyOne)
{
    TCellImport Import([](TSpreadSheetFile&) {});
    EXPECT_THAT(PartsOf(Import), ElementsAre("Sheet1 0x0"));
}

TEST(Kvi2cellLook, ThePartThatIsSelectedIsTheOneImported)
{
    TCellImport Import([](TSpreadSheetFile& Reader) {
        AddSheet(Reader, "One", {{"1"}});
        AddSheet(Reader, "Two", {{"a"}, {"b"}});
    });
    Import.SelectPart(1, Import.SourceParts()[1]);
    EXPECT_EQ(Import.SheetIndex, 1);
    EXPECT_THAT(RowsOf(Import.Look({})), ElementsAre("1: a", "2: b"));
    EXPECT_THAT(Import.Run(), ElementsAre("a||", "b||"));
}

TEST(Kvi2cellLook, PastTheLastSheetNothingIsShownAndNothingIsAdded)
{
    TCellImport Import(TSheetRows{{"1"}});
    Import.SheetIndex = 7;
    const auto View = Import.Look({.HeaderRow = 1});
    EXPECT_THAT(View.Columns, IsEmpty());
    EXPECT_THAT(View.Rows, IsEmpty());
    EXPECT_THAT(Import.SourceRemarks(), IsEmpty());
    EXPECT_THAT(PartsOf(Import), ElementsAre("Orders 1x1"));
}

// Columns.

TEST(Kvi2cellLook, NamesColumnsByLettersAndTitlesThemFromTheHeader)
{
    TCellImport Import(TSheetRows{{"Orders"}, {" ID ", "City", 2024}, {1, "Bern", 3.5}});
    Import.RowFirst = 3;
    EXPECT_THAT(ColumnsOf(Import.Look({.HeaderRow = 2})), ElementsAre("A=ID", "B=City", "C=2024"));
    EXPECT_THAT(ColumnsOf(Import.Look({.HeaderRow = 1})), ElementsAre("A=Orders", "B=", "C="));
    EXPECT_THAT(ColumnsOf(Import.Look({})), ElementsAre("A=", "B=", "C="));
}

TEST(Kvi2cellLook, AColumnWithNeitherATitleNorValuesIsNone)
{
    TCellImport Import(
        TSheetRows{{"ID", TVariant(), "Note", "  "}, {1, "early", TVariant(), " "}, {2}, {3, "late"}});
    Import.RowFirst = 3;
    Import.RowLast = 3;
    EXPECT_THAT(ColumnsOf(Import.Look({.HeaderRow = 1})), ElementsAre("A=ID", "C=Note"));
    EXPECT_THAT(ColumnsOf(Import.Look({})), ElementsAre("A="));
    Import.RowLast = 4;
    EXPECT_THAT(ColumnsOf(Import.Look({.HeaderRow = 1})), ElementsAre("A=ID", "B=", "C=Note"));
}

TEST(Kvi2cellLook, Column52IsCalledAsSpreadsheetsCallIt)
{
    std::vector<TVariant> Row(52);
    Row[51] = "found";
    TCellImport Import(TSheetRows{Row});
    const auto View = Import.Look({});
    EXPECT_THAT(ColumnsOf(View), ElementsAre("AZ="));
    EXPECT_THAT(RowsOf(View), ElementsAre("1: found"));
}

TEST(Kvi2cellLook, OnlyRowsAndColumnsThatARunReadsAreShown)
{
    TCellImport Import(Declaring(2, 1));
    Import.RowFirst = 2;
    const auto View = Import.Look({.HeaderRow = 1});
    EXPECT_THAT(ColumnsOf(View), ElementsAre("A=ID"));
    EXPECT_THAT(RowsOf(View), ElementsAre("2: 1"));
    Import.Extensions = {seCellExtent};
    EXPECT_THAT(RowsOf(Import.Look({.HeaderRow = 1})), ElementsAre("2: 1|Bern", "3: 2|Rom"));
}

struct TTypeCase
{
    const char* Name;
    std::vector<TVariant> Values;
    TFieldType DataType;
    int Size = 0;
};
void PrintTo(const TTypeCase& Case, std::ostream* Out) { *Out << Case.Name; }

class Kvi2cellProposes : public testing::TestWithParam<TTypeCase> {};

TEST_P(Kvi2cellProposes, TheTypeThatHoldsAllValues)
{
    const TKnownFormats Formats;
    TSheetRows Rows{{"Title"}};
    for (const auto& Value : GetParam().Values)
        Rows.push_back({Value});
    TCellImport Import(Rows);
    Import.RowFirst = 2;
    const auto Columns = Import.Look({.Rows = 0, .HeaderRow = 1}).Columns;
    ASSERT_THAT(Columns, SizeIs(1));
    EXPECT_EQ(Columns[0].DataType, GetParam().DataType);
    EXPECT_EQ(Columns[0].Size, GetParam().Size);
}

INSTANTIATE_TEST_SUITE_P(, Kvi2cellProposes, testing::Values(
    TTypeCase{"NoneWithoutValues", {TVariant(), "", "  "}, ftUnknown},
    TTypeCase{"Integers", {1, TVariant(), 65536}, ftLargeint},
    TTypeCase{"WholeDoubles", {1.0, 2.0, -9007199254740991.0}, ftLargeint},
    TTypeCase{"Reals", {1.0, 2, 2.5}, ftFloat},
    TTypeCase{"DoublesTooLargeToBeWhole", {9007199254740992.0}, ftFloat},
    TTypeCase{"Booleans", {true, false}, ftBoolean},
    TTypeCase{"Dates", {TDateTime{37621.0}, TDateTime{0.0}}, ftDate},
    TTypeCase{"Times", {TDateTime{0.25}, TDateTime{0.0}}, ftTime},
    TTypeCase{"DatesWithTimes", {TDateTime{37621.0}, TDateTime{37621.5}}, ftDateTime},
    TTypeCase{"DatesAndTimes", {TDateTime{37621.0}, TDateTime{0.5}}, ftDateTime},
    TTypeCase{"Texts", {"abc", "Z\xC3\xBCrich", " "}, ftString, 6},
    TTypeCase{"TextsOfTheLegacyPage", {"Z\xFCrich"}, ftString, 6},
    TTypeCase{"NumbersAndTexts", {1, "ab", 1234.5}, ftString, 6},
    TTypeCase{"NumbersAndBooleans", {1, true}, ftString, 4},
    TTypeCase{"DatesAndNumbers", {TDateTime{37621.0}, 1}, ftString, 10}),
    [](const auto& Info) { return std::string(Info.param.Name); });

TEST(Kvi2cellLook, TextsAndTitlesAreOfTheCharacterSet)
{
    TCellImport Import(TSheetRows{{"Stra\xE1" "e"}, {"\x84\x94"}});
    Import.RowFirst = 2;
    Import.CharacterSet = csiASCII_MSDOS;
    const auto View = Import.Look({.HeaderRow = 1});
    EXPECT_THAT(ColumnsOf(View), ElementsAre("A=Stra\xC3\x9F" "e"));
    EXPECT_EQ(View.Columns[0].Size, 2);
    EXPECT_THAT(RowsOf(View), ElementsAre("2: \xC3\xA4\xC3\xB6"));
}

// Rows.

TEST(Kvi2cellLook, ShowsTheValuesOfRowsFromRowFirstToRowLast)
{
    TCellImport Import(TSheetRows{{"H", "I"}, {1, "a"}, {2}, {}, {4, "d"}, {5, "e"}});
    Import.RowFirst = 2;
    Import.RowLast = 5;
    const auto Two = Import.Look({.Rows = 2});
    EXPECT_THAT(RowsOf(Two), ElementsAre("2: 1|a", "3: 2|"));
    EXPECT_TRUE(Two.HasMore);
    const auto All = Import.Look({.HeaderRow = 1});
    EXPECT_THAT(RowsOf(All), ElementsAre("2: 1|a", "3: 2|", "4: |", "5: 4|d"));
    EXPECT_FALSE(All.HasMore);
    EXPECT_EQ(All.Rows[0].Position.Unit, "row");
    EXPECT_EQ(All.Rows[0].Position.Offset, -1);
    EXPECT_EQ(All.Rows[0].Values[0].Value.Kind(), vkInteger);
    EXPECT_TRUE(All.Rows[2].Values[0].Value.IsNull());
}

TEST(Kvi2cellLook, ShowsTheColumnsThatAreAskedFor)
{
    TCellImport Import(TSheetRows{{1, 2, 3}});
    EXPECT_THAT(RowsOf(Import.Look({.Columns = {"c", "A", "AA"}})), ElementsAre("1: 3|1|"));
}

// What is loaded, and how often.

TEST(Kvi2cellLook, TheFileIsLoadedOnceForAllLooksAndTheRun)
{
    TCellImport Import(TSheetRows{{"A", "B", "C"}, {"1", "2", "3"}});
    Import.RowFirst = 2;
    Import.SourceParts();
    Import.Look({.HeaderRow = 1});
    Import.Look({});
    EXPECT_THAT(Import.Run(), ElementsAre("1|2|3"));
    EXPECT_EQ(Import.Loads, 1);
    EXPECT_EQ(Import.Readers, 0);
    Import.Execute();
    EXPECT_EQ(Import.Loads, 2);
}

TEST(Kvi2cellLook, ARunWithoutMappingsTakesWhatWasLookedAt)
{
    TCellImport Import(TSheetRows{{"C", "A"}, {"1", "2"}});
    Import.RowFirst = 2;
    Import.Mappings().Clear();
    Import.Look({});
    EXPECT_THAT(Import.Run(), ElementsAre("2||1"));
    EXPECT_EQ(Import.Loads, 1);
}

TEST(Kvi2cellLook, AnotherFileOrReadingOfItIsLoaded)
{
    TCellImport Import(TSheetRows{{"1"}});
    Import.Look({});
    Import.Extensions = {seDateMode};
    Import.Look({});
    EXPECT_EQ(Import.Loads, 2);
    Import.SourceFileName = Import.Folder.Write("other", "");
    Import.Look({});
    EXPECT_EQ(Import.Loads, 3);
    EXPECT_EQ(Import.Readers, 1);
}

TEST(Kvi2cellLook, EndLookLetsGoOfTheWorkbook)
{
    TCellImport Import(TSheetRows{{"1"}});
    Import.EndLook();
    Import.Look({});
    EXPECT_EQ(Import.Readers, 1);
    Import.EndLook();
    EXPECT_EQ(Import.Readers, 0);
    EXPECT_EQ(Import.SourcePosition().Number, 0);
    EXPECT_TRUE(Import.SourceRecord().IsNull());
    Import.OnAfterRecordEvent = [&](auto&, bool&) { Import.EndLook(); }; // a run is no look
    EXPECT_THAT(Import.Run(), ElementsAre("1||"));
}

TEST(Kvi2cellLook, AfterARunThatFailedTheFileIsLoadedAnew)
{
    TCellImport Import(TSheetRows{{"1"}});
    Import.OnBeforeRecordEvent = [](auto&, const auto&, auto&, bool&) { throw Exception("no more"); };
    Import.RunAndFail();
    Import.Look({});
    EXPECT_EQ(Import.Loads, 2);
}

TEST(Kvi2cellLook, AWorkbookIsOpenedOnce)
{
    const auto FromPipe = [](TKvImportFromCell& Import, const std::string& Bytes) {
        int Ends[2];                                // who opens it a second time finds nothing
        ASSERT_EQ(pipe(Ends), 0);
        ASSERT_EQ(write(Ends[1], Bytes.data(), Bytes.size()), static_cast<ssize_t>(Bytes.size()));
        close(Ends[1]);
        Import.SourceFileName = "/proc/self/fd/" + std::to_string(Ends[0]);
        EXPECT_THAT(Import.SourceParts(), SizeIs(1));
        close(Ends[0]);
    };
    TKvImportFromXLS Plain, Document;
    FromPipe(Plain, std::string("\x09\x00\x04\x00\x02\x00\x10\x00\x0A\x00\x00\x00", 12));
    FromPipe(Document, TCompoundBuilder().Stream(u"Book", "").Build());
    TKvImportFromWKS Worksheet;
    FromPipe(Worksheet, TWorksheetBuilder(wfLotus).End().Build());
}

// Cancel.

TEST(Kvi2cellLook, ARunThatIsCancelledWhileItLoadsImportsNothing)
{
    for (const int Rounds : {0, 1, 2}) {
        TImpatientUser User(Rounds);
        TCellImport Import(ManyCells);
        Import.AnimatedStatus = true;
        Import.Execute();
        EXPECT_EQ(Import.Statistic.Result, irCanceled) << Import.ErrorMessage();
        EXPECT_EQ(Import.Destination.RecordCount(), 0);
        EXPECT_EQ(Import.Readers, 0);
    }
}

TEST(Kvi2cellLook, WhatWasCancelledIsNotKept)
{
    TNeverGoesOn Observer;
    TCellImport Import(ManyCells);
    Import.SetObserver(&Observer);
    for (const bool Lists : {false, true}) {
        try {
            Lists ? static_cast<void>(Import.SourceParts()) : static_cast<void>(Import.Look({}));
            FAIL() << "not cancelled";
        }
        catch (const Exception& Error) {
            EXPECT_EQ(Error.Facts.Rule, erCancelled);
        }
    }
    Import.SetObserver(nullptr);
    EXPECT_THAT(PartsOf(Import), ElementsAre("Orders 50000x4"));
}

TEST(Kvi2cellLook, AFileIsNotReadOnWhenTheUserCancels)
{
    TNeverGoesOn Observer;
    const TTempFolder Folder;
    TKvImportFromXLS Import;
    Import.SourceFileName = Folder.Write("book.xls", TCompoundBuilder().Stream(u"Book", "").Build());
    Import.SetObserver(&Observer);
    EXPECT_THAT([&] { Import.SourceParts(); }, Raises("Reading of the file was canceled by user."));
}

// The current record, and what lies outside.

TEST(Kvi2cellLook, TheRecordOfARunIsItsRow)
{
    TCellImport Import(TSheetRows{{"H", "I", "J"}, {1, TVariant(), "x"}, {}});
    Import.RowFirst = 2;
    Import.SetMappings({"A=A"});
    EXPECT_EQ(Import.SourcePosition().Number, 0);
    TRows Seen;
    Import.OnAfterRecordEvent = [&](TKvImportBaseComponent& Sender, bool&) {
        const auto Record = Sender.SourceRecord();
        EXPECT_EQ(Record.LowBound(), 0);
        auto Text = Sender.RecordPlace() + ":";
        for (int I = 0; I <= Record.HighBound(); ++I)
            Text += " " + (Record[I].HasValue() ? Record[I].ToText() : "-");
        Seen.push_back(Text);
    };
    Import.Run();
    EXPECT_THAT(Seen, ElementsAre("row 2: 1 - x", "row 3: - - -"));
    EXPECT_EQ(Import.SourcePosition().Number, 0);
    EXPECT_TRUE(Import.SourceRecord().IsNull());
}

TEST(Kvi2cellLook, RemarksOnWhatLiesOutside)
{
    const auto RemarksOf = [](const TKvImportFromCell& Import) {
        std::vector<std::tuple<TKvISourceRemarkKind, std::int64_t, std::int64_t>> Result;
        for (const auto& Remark : Import.SourceRemarks())
            Result.emplace_back(Remark.Kind, Remark.Count, Remark.Limit);
        return Result;
    };
    const auto Wide = [](TSpreadSheetFile& Reader) {
        Declaring(2, 1)(Reader);
        Reader.OnCellValue(Reader, 0, 0, 256, "beyond", taLeftJustify);
        Reader.OnCellValue(Reader, 0, 0, 300, "beyond", taLeftJustify);
    };
    TCellImport Import{TBookScript(Wide)};
    Import.Look({});
    const auto Expected =
        ElementsAre(std::tuple(srRowsBeyondExtent, 3, 2), std::tuple(srColumnsBeyondExtent, 2, 1),
                    std::tuple(srCellsBeyondLastColumn, 2, 0));
    EXPECT_THAT(RemarksOf(Import), Expected);
    Import.EndLook();
    Import.Run();
    EXPECT_THAT(RemarksOf(Import), Expected);
    Import.Extensions = {seCellExtent};
    Import.Look({});
    EXPECT_THAT(RemarksOf(Import), ElementsAre(std::tuple(srCellsBeyondLastColumn, 2, 0)));
}

// Names.

TEST(Kvi2cellLook, NamesOfMappingsAreLettersOrNothing)
{
    TCellImport Import(TSheetRows{{"ID", "Empty", TVariant(), "x"}, {1, TVariant(), TVariant(), "y"}});
    Import.RowFirst = 2;
    const auto Resolved = [&Import, Shown = Import.Look({.HeaderRow = 1}).Columns](const std::string& Name) {
        const auto Found = Import.ResolveName(Name, Shown);
        return std::pair(Found.Kind, Found.Name);
    };
    EXPECT_EQ(Resolved("A"), std::pair(snColumn, std::string("A")));
    EXPECT_EQ(Resolved("d"), std::pair(snColumn, std::string("D")));
    EXPECT_EQ(Resolved("B"), std::pair(snColumn, std::string("B"))); // it has a title
    EXPECT_EQ(Resolved("C"), std::pair(snBlank, std::string("C")));
    EXPECT_EQ(Resolved("iv"), std::pair(snBlank, std::string("IV")));
    EXPECT_EQ(Resolved("B@"), std::pair(snBlank, std::string("AZ"))); // as automatic mappings call it
    for (const auto* const Name : {"", "@", "IW", "Field1", "A1", "AAA"})
        EXPECT_EQ(Resolved(Name).first, snNothing) << Name;
}

TEST(Kvi2cellLook, AColumnBeyondTheDeclaredExtentIsOneForAMapping)
{
    TCellImport Import(Declaring(3, 1));
    Import.RowFirst = 2;
    const auto Shown = Import.Look({.HeaderRow = 1}).Columns;
    EXPECT_EQ(Import.ResolveName("B", Shown).Kind, snColumn);
    Import.EndLook();
    EXPECT_EQ(Import.ResolveName("B", Shown).Kind, snBlank) << "nobody can tell";
}

// What goes wrong.

TEST(Kvi2cellLook, RaisesWhatTheRunWouldEndBy)
{
    TCellImport Import([](TSpreadSheetFile&) { throw Exception("File is not a Excel file"); });
    for (int I = 0; I < 2; ++I)
        EXPECT_THAT([&] { Import.Look({}); }, Raises("File is not a Excel file"));
    EXPECT_EQ(Import.Loads, 2);
    EXPECT_THROW(Import.SourceParts(), Exception);
}

TEST(Kvi2cellLook, ErrorsKnowTheFileThatTheirMessagesLack)
{
    TCellImport Import([](TSpreadSheetFile&) { throw EFormatError("Record 0x00FD at offset 17: bad"); });
    EXPECT_EQ(Import.RunAndFail(), "Record 0x00FD at offset 17: bad");
    const auto& Error = Import.Error();
    EXPECT_EQ(Error.FullMessage(), Import.SourceFileName + ": Record 0x00FD at offset 17: bad");
    EXPECT_EQ(Error.Facts.Rule, erFormat);
    Import.SourceFileName = "/no/such/book.xls";
    Import.RunAndFail();
    EXPECT_EQ(Error.FullMessage(), "/no/such/book.xls: File is not exists.");
    EXPECT_EQ(Error.Facts.Rule, erMissing);
    Import.SourceFileName = " ";
    Import.RunAndFail();
    EXPECT_EQ(Error.FullMessage(), "File is not defined.");
}

TEST(Kvi2cellLook, MessagesThatNameTheFileLackNothing)
{
    const TTempFolder Folder;
    TKvImportFromXLS Import;
    Import.SourceFileName = "/";
    EXPECT_EQ(FactsOfFailure(Import).FileName, "/");
    EXPECT_EQ(Import.Error().FullMessage(), "Cannot open file \"/\": Is a directory");
    const auto Document = TCompoundBuilder().Stream(u"Book", std::string(5000, '\0')).Build();
    for (const std::size_t Size : {std::size_t{600}, Document.size() - 512}) {
        Import.SourceFileName = Folder.Write("book.xls", Document.substr(0, Size));
        EXPECT_EQ(FactsOfFailure(Import).FileName, Import.SourceFileName);
        EXPECT_THAT(Import.Error().Message, HasSubstr("ile \"" + Import.SourceFileName + "\""));
        EXPECT_EQ(Import.Error().FullMessage(), Import.Error().Message);
    }
}

} // namespace kv
