#include "Kvi2cell.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "KvAllocationCount.h"
#include "KvCellImport.h"
#include "KvException.h"
#include "KvTestRun.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace kv {

namespace {

/// A workbook of the sheets "One" (two rows) and "Two" (three rows).
void TwoSheets(TSpreadSheetFile& Reader)
{
    AddSheet(Reader, "One", {{"1"}, {"2"}});
    AddSheet(Reader, "Two", {{"a"}, {"b"}, {"c"}});
}

/// Three rows with values, and an extent that says otherwise.
TBookScript Declaring(int Rows, int Columns)
{
    return [=](TSpreadSheetFile& Reader) {
        AddSheet(Reader, "Orders", {{"A", "B"}, {"1", "2"}, {"3", "4"}});
        Reader.OnDimensions(Reader, 0, 0, Rows, 0, Columns);
    };
}

} // namespace

TEST(Kvi2cell, HasTheDefaultsOfANewComponent)
{
    const TKvImportFromCell Import;
    EXPECT_EQ(Import.SheetIndex, 0);
    EXPECT_EQ(Import.RowFirst, 1);
    EXPECT_EQ(Import.RowLast, 2147483647);
    EXPECT_TRUE(Import.Extensions.IsEmpty());
}

TEST(Kvi2cell, PublishesItsSettings)
{
    TKvImportFromCell Import;
    SetPropValue(Import, "SheetIndex", 3);
    SetPropValue(Import, "SourceFileName", "book.xls");
    SetPropValue(Import, "RowFirst", 2);
    SetPropValue(Import, "RowLast", 9);
    SetPropValue(Import, "Extensions", 9);
    EXPECT_EQ(Import.SheetIndex, 3);
    EXPECT_EQ(Import.SourceFileName, "book.xls");
    EXPECT_EQ(Import.RowFirst, 2);
    EXPECT_EQ(Import.RowLast, 9);
    EXPECT_EQ(Import.Extensions, (TSpreadSheetExtensions{seFormulaResults, seCellExtent}));
}

TEST(Kvi2cell, WantsAFileName)
{
    TCellImport Import(TSheetRows{{"1"}});
    Import.SourceFileName.clear();
    EXPECT_THAT([&] { Import.Execute(); },
                testing::Throws<Exception>(testing::Field(&Exception::Message,
                                                          "Property SourceFileName wasn't specified.")));
}

TEST(Kvi2cell, WantsADataSetBeforeAFileName)
{
    TCellImport Import(TSheetRows{{"1"}});
    Import.SourceFileName.clear();
    Import.SetDataSet(nullptr);
    EXPECT_THAT([&] { Import.Execute(); },
                testing::Throws<Exception>(testing::Field(&Exception::Message,
                                                          "Property DataSet wasn't specified.")));
}

TEST(Kvi2cell, ARunWithoutAReaderFails)
{
    TCellImport Import(TSheetRows{{"1"}});
    TKvImportFromCell Bare;
    Bare.SetDataSet(&Import.Destination);
    Bare.SetMappings({"A=A"});
    Bare.AnimatedStatus = false;
    Bare.Options = {};
    Bare.Execute();
    EXPECT_EQ(Bare.Statistic.Result, irFailed);
    EXPECT_EQ(Bare.ErrorMessage(), "TKvImportFromCell has no reader of workbooks");
}

TEST(Kvi2cell, ARunFailsWithTheErrorOfTheReader)
{
    TCellImport Import([](TSpreadSheetFile&) { throw Exception("File is not a Excel file"); });
    EXPECT_EQ(Import.RunAndFail(), "File is not a Excel file");
    Import.SourceFileName = "/no/such/book.xls";
    EXPECT_EQ(Import.RunAndFail(), "File is not exists.");
    Import.SourceFileName = "   ";
    EXPECT_EQ(Import.RunAndFail(), "File is not defined.");
}

TEST(Kvi2cell, ARunAfterAFailedOneReadsTheFileAgain)
{
    bool Fails = true;
    TCellImport Import([&Fails](TSpreadSheetFile& Reader) {
        AddSheet(Reader, "Orders", {{"1"}});
        if (Fails)
            throw Exception("damaged");
    });
    EXPECT_EQ(Import.RunAndFail(), "damaged");
    Fails = false;
    EXPECT_THAT(Import.Run(), ElementsAre("1||"));
}

TEST(Kvi2cell, ImportsTheRowsOfASheet)
{
    TCellImport Import(TSheetRows{{"1", "Rom", "x"}, {"2", "Bern", "y"}});
    EXPECT_THAT(Import.Run(), ElementsAre("1|Rom|x", "2|Bern|y"));
    EXPECT_EQ(Import.Statistic.TotalCount, 2);
}

TEST(Kvi2cell, SheetIndexCountsFrom0)
{
    TCellImport Import(TwoSheets);
    EXPECT_THAT(Import.Run(), ElementsAre("1||", "2||"));
    Import.Mode = imCopy;
    Import.SheetIndex = 1;
    EXPECT_THAT(Import.Run(), ElementsAre("a||", "b||", "c||"));
    Import.SheetIndex = -1;
    EXPECT_THAT(Import.Run(), ElementsAre("1||", "2||"));
}

TEST(Kvi2cell, PastTheLastSheetThereAreNoRecords)
{
    TCellImport Import(TwoSheets);
    Import.SheetIndex = 7;
    EXPECT_THAT(Import.Run(), IsEmpty());
}

TEST(Kvi2cell, EveryDeclaredRowIsARecord)
{
    TCellImport Import(Declaring(5, 2));
    EXPECT_EQ(Import.Run().size(), 5U);
    EXPECT_EQ(Import.Statistic.TotalCount, 5);
}

TEST(Kvi2cell, RowLastBeyondTheSheetIsItsLastRow)
{
    TCellImport Import(TSheetRows{{"1"}, {"2"}});
    Import.RowLast = 100;
    EXPECT_THAT(Import.Run(), ElementsAre("1||", "2||"));
    Import.BeforeImport();
    EXPECT_EQ(Import.GetTotalCount(), 2);
}

TEST(Kvi2cell, RowFirstAndRowLastCountFrom1)
{
    TCellImport Import(TSheetRows{{"1"}, {"2"}, {"3"}, {"4"}});
    Import.RowFirst = 2;
    Import.RowLast = 3;
    EXPECT_THAT(Import.Run(), ElementsAre("2||", "3||"));
}

TEST(Kvi2cell, RowLastIsReadWhileTheRunGoesOn)
{
    TCellImport Import(TSheetRows{{"1"}, {"2"}, {"3"}});
    Import.OnAfterRecordEvent = [&](auto&, bool&) { Import.RowLast = 2; };
    EXPECT_THAT(Import.Run(), ElementsAre("1||", "2||"));
}

TEST(Kvi2cell, ARowBeyondTheDeclaredExtentIsNoRecord)
{
    TCellImport Import(Declaring(2, 2));
    EXPECT_THAT(Import.Run(), ElementsAre("A|B|", "1|2|"));
}

TEST(Kvi2cell, WithoutADeclaredExtentThereAreNoRecords)
{
    TCellImport Import(Declaring(0, 0));
    EXPECT_THAT(Import.Run(), IsEmpty());
}

TEST(Kvi2cell, WithTheExtensionRowsReachAsFarAsCellsHoldValues)
{
    for (const int Declared : {0, 2, 9, 65536}) {
        TCellImport Import(Declaring(Declared, 1));
        Import.Extensions = {seCellExtent};
        EXPECT_THAT(Import.Run(), ElementsAre("A|B|", "1|2|", "3|4|")) << Declared;
    }
}

TEST(Kvi2cell, WithTheExtensionAllOf65536RowsAreRecords)
{
    TCellImport Import([](TSpreadSheetFile& Reader) {
        for (int Row = 0; Row < 65536; ++Row)
            Reader.OnCellValue(Reader, 0, Row, 0, Row, taLeftJustify);
        Reader.OnDimensions(Reader, 0, 0, 65536, 0, 1);
    });
    EXPECT_THAT(Import.Run(), IsEmpty());
    Import.Extensions = {seCellExtent};
    EXPECT_EQ(Import.Run().size(), 65536U);
    EXPECT_EQ(Import.Statistic.TotalCount, 65536);
}

TEST(Kvi2cell, ARowWithoutValuesIsARecordWhoseFieldsAreNull)
{
    TCellImport Import(TSheetRows{{"1"}, {}, {"3"}});
    EXPECT_THAT(Import.Run(), ElementsAre("1||", "||", "3||"));
    Import.RowFirst = 2;
    Import.BeforeImport();
    Import.GoFirst();
    ASSERT_TRUE(Import.NeedMore());
    Import.LoadRecord();
    EXPECT_TRUE(Import.GetFieldValue("A").IsNull());
}

TEST(Kvi2cell, AColumnThatARowLacksReadsAsEmpty)
{
    TCellImport Import(TSheetRows{{"1"}});
    Import.BeforeImport();
    Import.GoFirst();
    Import.LoadRecord();
    EXPECT_TRUE(Import.GetFieldValue("B").IsEmpty());
    EXPECT_TRUE(Import.GetFieldValue("IV").IsEmpty());
    EXPECT_TRUE(Import.GetFieldValue("@").IsEmpty());
    EXPECT_TRUE(Import.GetFieldValue("CUSTOMER").IsEmpty());
}

TEST(Kvi2cell, ColumnsAreNamedByLettersInAnyCase)
{
    std::vector<TVariant> Row;
    for (int Col = 0; Col < 256; ++Col)
        Row.emplace_back(Col);
    TCellImport Import(TSheetRows{Row});
    Import.SetMappings({"A=iv", "B=AA", "C=B@"});
    EXPECT_THAT(Import.Run(), ElementsAre("255|26|51"));
}

TEST(Kvi2cell, ValuesArriveAsTheyAreStored)
{
    const std::vector<TVariant> Row = {1, 2.5, TDateTime{37621.75}, true, std::string(100, 'x'), ""};
    TCellImport Import(TSheetRows{Row});
    Import.BeforeImport();
    Import.GoFirst();
    Import.LoadRecord();
    for (std::size_t Col = 0; Col < Row.size(); ++Col) {
        const auto Value = Import.GetFieldValue(std::string(1, static_cast<char>('A' + Col)));
        EXPECT_EQ(Value.Kind(), Row[Col].Kind());
        EXPECT_EQ(Value, Row[Col]);
    }
}

TEST(Kvi2cell, ADateCellGoesIntoADateFieldWithItsSerialNumber)
{
    TCellImport Import(TSheetRows{{TDateTime{37621.0}}});
    Import.SetFields({{.Name = "A", .DataType = ftDateTime}});
    Import.SetMappings({"A=A"});
    Import.Run();
    Import.Destination.First();
    EXPECT_EQ(Import.Destination.Fields(0).Value(), TVariant(TDateTime{37621.0}));
}

TEST(Kvi2cell, NumbersDoNotPassThroughTheirText)
{
    TCellImport Import(TSheetRows{{1234567.125}});
    Import.SetFields({{.Name = "A", .DataType = ftFloat}});
    Import.SetMappings({"A=A"});
    Import.DataFormats.DecimalSeparator = ',';
    Import.DataFormats.ThousandSeparator = '.';
    Import.Run();
    Import.Destination.First();
    EXPECT_EQ(Import.Destination.Fields(0).Value(), TVariant(1234567.125));
}

TEST(Kvi2cell, AnErrorNamesItsRow)
{
    TCellImport Import(TSheetRows{{"1"}, {"2"}, {"x"}});
    Import.SetFields({{.Name = "A", .DataType = ftInteger}});
    Import.SetMappings({"A=A"});
    Import.RowFirst = 2;
    std::string Place;
    Import.OnErrorEvent = [&](auto&, const Exception&, bool&) { Place = Import.RecordPlace(); };
    Import.Execute();
    EXPECT_EQ(Place, "row 3");
    EXPECT_EQ(Import.Statistic.TotalErrors, 1);
    EXPECT_EQ(Import.Destination.RecordCount(), 1); // that of row 2
}

TEST(Kvi2cell, TheWorkbookLivesAsLongAsTheRun)
{
    TCellImport Import(TSheetRows{{"1"}});
    Import.OnAfterRecordEvent = [&](auto&, bool&) { EXPECT_EQ(Import.Readers, 1); };
    Import.Run();
    EXPECT_EQ(Import.Readers, 0);
    EXPECT_EQ(Import.GetTotalCount(), 0);
    EXPECT_FALSE(Import.NeedMore());
}

TEST(Kvi2cell, EveryRunLoadsTheFile)
{
    TCellImport Import(TSheetRows{{"1"}});
    Import.Execute();
    Import.Execute();
    EXPECT_EQ(Import.Loads, 2);
}

TEST(Kvi2cell, AWorkbookLoadedAheadIsTheOneOfTheNextRun)
{
    TCellImport Import(TSheetRows{{"1"}});
    EXPECT_EQ(Import.LoadWorkBook().Sheets[0].Caption, "Orders");
    EXPECT_THAT(Import.Run(), ElementsAre("1||"));
    EXPECT_EQ(Import.Loads, 1);
    Import.Execute();
    EXPECT_EQ(Import.Loads, 2);
}

TEST(Kvi2cell, TheReaderGetsTheExtensions)
{
    TSpreadSheetExtensions Seen;
    TCellImport Import([&Seen](TSpreadSheetFile& Reader) { Seen = Reader.Extensions; });
    Import.Extensions = {seDateMode, seWideRows};
    Import.Run();
    EXPECT_EQ(Seen, Import.Extensions);
}

TEST(Kvi2cell, AValueIsHandedOnWithoutAnAllocation)
{
    const std::string Long(200, 'x');
    const std::vector<TVariant> Row = {1, 2.5, "short", Long};
    TCellImport Import(TSheetRows(100, Row));
    Import.BeforeImport();
    Import.GoFirst();
    Import.LoadRecord();
    const TVariant Sources[] = {"A", "B", "C", "D"};
    for (const auto& Source : Sources)
        Import.GetFieldValue(Source);
    const auto Before = AllocationCount();
    for (int I = 0; I < 100; ++I)
        for (const auto& Source : Sources)
            Import.GetFieldValue(Source);
    EXPECT_EQ(AllocationCount(), Before);
}

// Automatic mapping.

TEST(Kvi2cell, WithoutAHeaderTheFirstFieldIsMappedToNoColumnAndEachOtherToTheOneBefore)
{
    TCellImport Import(TSheetRows{{"1", "2", "3"}});
    EXPECT_THAT(Import.DetectedMappings(), ElementsAre("A=@", "B=A", "C=B"));
    Import.SetMappings({});
    EXPECT_THAT(Import.Run(), ElementsAre("|1|2"));
}

TEST(Kvi2cell, WithAHeaderFieldsAreMappedByTheNamesInTheFirstRow)
{
    TCellImport Import(TSheetRows{{"c", "a", "Other", "A"}, {"x", "y", "z", "w"}, {"1", "2", "3", "4"}});
    for (const int RowFirst : {2, 3}) {
        Import.RowFirst = RowFirst;
        EXPECT_THAT(Import.DetectedMappings(), ElementsAre("A=B", "C=A"));
    }
}

TEST(Kvi2cell, AHeaderMayHoldNumbers)
{
    TCellImport Import(TSheetRows{{TVariant(), 2002, 2003.5}});
    Import.SetFields({{.Name = "2002"}, {.Name = "2003.5"}});
    const TKnownFormats Formats;
    Import.RowFirst = 2;
    EXPECT_THAT(Import.DetectedMappings(), ElementsAre("2002=B", "2003.5=C"));
}

TEST(Kvi2cell, HeadersBeyondTheDeclaredExtentAreNotLookedAt)
{
    TCellImport Import(Declaring(3, 1));
    Import.RowFirst = 2;
    EXPECT_THAT(Import.DetectedMappings(), ElementsAre("A=A"));
    Import.Extensions = {seCellExtent};
    EXPECT_THAT(Import.DetectedMappings(), ElementsAre("A=A", "B=B"));
}

TEST(Kvi2cell, TheHeadersOfASheetAreItsOwn)
{
    TCellImport Import([](TSpreadSheetFile& Reader) {
        AddSheet(Reader, "One", {{"A"}});
        AddSheet(Reader, "Two", {{"x", "A"}});
    });
    Import.RowFirst = 2;
    Import.SheetIndex = 1;
    EXPECT_THAT(Import.DetectedMappings(), ElementsAre("A=B"));
}

TEST(Kvi2cell, Column52IsMappedUnderItsOddNameAndReadBack)
{
    std::vector<TVariant> Header(52, "x"), Row(52, "-");
    Header[51] = "A";
    Row[51] = "found";
    TCellImport Import(TSheetRows{Header, Row});
    Import.RowFirst = 2;
    EXPECT_THAT(Import.DetectedMappings(), ElementsAre("A=B@"));
    EXPECT_THAT(Import.Run(), ElementsAre("found||"));
}

TEST(Kvi2cell, AutomaticMappingKeepsNoWorkbook)
{
    TCellImport Import(TSheetRows{{"A"}});
    Import.DetectedMappings();
    EXPECT_EQ(Import.Readers, 0);
}

TEST(Kvi2cell, TheRecordsAvailableAreThoseOfTheSheetWhateverRowComesFirst)
{
    TCellImport Import(TSheetRows{{"1"}, {"2"}, {"3"}, {"4"}});
    Import.RowFirst = 3;
    Import.BeforeImport();
    EXPECT_EQ(Import.GetTotalCount(), 4);
    Import.AfterImport();
    EXPECT_EQ(Import.GetTotalCount(), 0);
    EXPECT_THAT(Import.Run(), ElementsAre("3||", "4||"));
    EXPECT_EQ(Import.Statistic.TotalCount, 2);
}

} // namespace kv
