// Cells that cannot be read, and rows without any.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

#include "KvBiffBuilder.h"
#include "KvCellImport.h"
#include "KvCodePage.h"
#include "KvCompoundBuilder.h"
#include "KvException.h"
#include "KvLookText.h"
#include "KvWorksheetBuilder.h"
#include "Kvi2cell.h"
#include "Kvi2wks.h"
#include "Kvi2wq.h"
#include "Kvi2xls.h"
#include "KviExtensions.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace kv {

namespace {

/// Three rows and a header; the date of the second is in no calendar.
TBookScript DatesOfWhichOneIsNone()
{
    return [](TSpreadSheetFile& Reader) {
        AddSheet(Reader, "Orders", {{"ID", "Day"}, {1, TDateTime{45351}}, {2}, {3, TDateTime{45353}}});
        Reader.CellFault = cfNoDay;
        Reader.OnCellValue(Reader, 0, 2, 1, 1e9, taLeftJustify);
        Reader.CellFault = cfNone;
    };
}

/// What a run tells of records that fail.
struct TFailures : TKvIRunObserver
{
    bool RecordFailed(const Exception& Error) override
    {
        All.push_back(Error);
        return true;
    }

    std::vector<Exception> All;
};

std::vector<std::tuple<TKvISourceRemarkKind, std::int64_t, std::int64_t>> RemarksOf(
    const TKvImportFromCell& Import)
{
    std::vector<std::tuple<TKvISourceRemarkKind, std::int64_t, std::int64_t>> Result;
    for (const auto& Remark : Import.SourceRemarks())
        Result.emplace_back(Remark.Kind, Remark.Count, Remark.First);
    return Result;
}

std::string Workbook(const TBiffBuilder& Globals, const TBiffBuilder& Sheet)
{
    return TCompoundBuilder()
        .Stream(Sheet.Version == bv8 ? u"Workbook" : u"Book",
                TWorkbookBuilder(Sheet.Version).Globals(Globals).Sheet("S", Sheet).Build())
        .Build();
}

template <class TImport> struct TExtended : TFileRun<TImport>
{
    explicit TExtended(std::string_view Bytes) : TFileRun<TImport>(Bytes)
    {
        TurnOnExtensions(*this);
        this->MapTo({"A", "B", "C"});
    }
};

} // namespace

TEST(Kvi2cellFaults, ACellThatCannotBeReadRefusesItsRecord)
{
    TCellImport Import(DatesOfWhichOneIsNone());
    Import.Extensions = {seTellingErrors};
    Import.RowFirst = 2;
    TFailures Failures;
    Import.SetObserver(&Failures);
    Import.Execute();
    EXPECT_EQ(Import.Statistic.Result, irExecuted);
    EXPECT_EQ(Import.Statistic.TotalImported, 3);
    EXPECT_EQ(Import.Statistic.TotalAdded, 2);
    EXPECT_EQ(Import.Statistic.TotalErrors, 1);
    ASSERT_THAT(Failures.All, SizeIs(1));
    const auto& Error = Failures.All[0];
    EXPECT_EQ(Error.Message, "'1000000000' in cell B3 is formatted as a date and is none, for field 'B'");
    EXPECT_EQ(Error.Facts.Place, "");             // whoever reports it knows the row and says it
    EXPECT_EQ(Error.Facts.Field, "B");
    EXPECT_EQ(Error.Facts.Value, "1000000000");
    EXPECT_EQ(Error.Facts.Rule, erRange);
    EXPECT_EQ(Error.Facts.Record, 2);
}

TEST(Kvi2cellFaults, ACellThatIsNotMappedConcernsNobody)
{
    TCellImport Import(DatesOfWhichOneIsNone());
    Import.Extensions = {seTellingErrors};
    Import.RowFirst = 2;
    Import.MapTo({"A"});
    EXPECT_THAT(Import.Run(), ElementsAre("1||", "2||", "3||"));
}

TEST(Kvi2cellFaults, WithoutTheExtensionTheValueArrivesAsItStands)
{
    TCellImport Import(DatesOfWhichOneIsNone());
    Import.RowFirst = 3;
    Import.RowLast = 3;
    EXPECT_THAT(Import.Run(), ElementsAre("2|1000000000|"));
}

TEST(Kvi2cellFaults, ALookShowsWhyAndTakesTheTypeFromTheOthers)
{
    TCellImport Import(DatesOfWhichOneIsNone());
    Import.Extensions = {seTellingErrors, seCellExtent};
    Import.RowFirst = 2;
    const auto View = Import.Look({.HeaderRow = 1});
    ASSERT_THAT(View.Columns, SizeIs(2));
    EXPECT_EQ(View.Columns[1].DataType, ftDate);
    EXPECT_EQ(View.Rows[1].Values[1].Error, "'1000000000' in cell B3 is formatted as a date and is none");
    EXPECT_EQ(View.Rows[2].Values[1].Error, "");
}

TEST(Kvi2cellFaults, ADateOutsideOfTheCalendarNeverKeepsALookFromTheRest)
{
    TCellImport Import(TSheetRows{{TDateTime{1e9}, "x"}, {"text", TDateTime{-1e9}}, {TDateTime{1e9}, "y"}});
    Import.RowFirst = 2;
    const auto View = Import.Look({.HeaderRow = 1});
    ASSERT_THAT(View.Columns, SizeIs(2));
    EXPECT_EQ(View.Columns[0].Title, "1000000000");
    EXPECT_EQ(View.Columns[0].DataType, ftString);
    EXPECT_EQ(View.Columns[0].Size, 10);
    EXPECT_THAT(RowsOf(View),
                ElementsAre("2: text|<'-1000000000' in cell B2 is formatted as a date and is none>",
                            "3: <'1000000000' in cell A3 is formatted as a date and is none>|y"));
    EXPECT_THAT(Import.DetectedMappings(), IsEmpty()); // no field is called 1000000000
}

TEST(Kvi2cellFaults, AWorkbookTellsTheDayThatNeverWas)
{
    const auto Sheet = TBiffBuilder().Number(0, 0, 59, 1).Number(1, 0, 60, 1).Number(2, 0, 61, 1)
                                     .Number(3, 0, 20240229, 1);
    TExtended<TKvImportFromXLS> Import(Workbook(TBiffBuilder().Xf(0).Xf(14), Sheet));
    EXPECT_THAT(RowsOf(Import.Look({})),
                ElementsAre("1: 2/28/1900", "2: <'60' in cell A2 is 29 February 1900, a day that never was>",
                            "3: 3/1/1900",
                            "4: <'20240229' in cell A4 is formatted as a date and is none>"));
}

TEST(Kvi2cellFaults, AWorksheetTellsTheDateThatIsNone)
{
    const auto Sheet = TWorksheetBuilder(wfLotus).Format(0xF2).Number(0, 0, 1e9).Integer(0, 1, -1)
                                                 .Number(0, 2, 1).End();
    TExtended<TKvImportFromWKS> Import(Sheet.Build());
    EXPECT_THAT(RowsOf(Import.Look({})),
                ElementsAre("1: <'1000000000' in cell A1 is formatted as a date and is none>",
                            "2: <'-1' in cell A2 is formatted as a date and is none>", "3: 1/1/1900"));
}

TEST(Kvi2cellFaults, ACharacterThatTheCodePageLacksConcernsItsCell)
{
    const auto Label = TBytes().U16(0).U16(0).U16(0).U16(2).U8(1).Text(u"\u0416!");
    TBiffBuilder Sheet;
    Sheet.Record(0x0204, Label).Number(1, 0, 7);
    TExtended<TKvImportFromXLS> Import(Workbook({}, Sheet));
    SetAnsiCodePage("windows-1252");
    const auto Rows = RowsOf(Import.Look({}));
    SetAnsiCodePage("UTF-8");
    EXPECT_THAT(Rows,
                ElementsAre("1: <'?!' in cell A1 stands for characters that the code page in use lacks>",
                            "2: 7"));
}

// Rows without values.

TEST(Kvi2cellFaults, AnEmptyRowIsARecord)
{
    TCellImport Import(TSheetRows{{"1"}, {}, {"", "  "}, {"4"}, {}});
    EXPECT_THAT(Import.Run(), ElementsAre("1||", "||", "||", "4||", "||"));
    EXPECT_THAT(RemarksOf(Import), IsEmpty());
}

TEST(Kvi2cellFaults, WithTheExtensionAnEmptyRowIsNoRecord)
{
    TCellImport Import(TSheetRows{{}, {"2"}, {}, {"", "  "}, {"5"}, {}});
    Import.RunExtensions = {rxNoEmptyRecords};
    EXPECT_THAT(Import.Run(), ElementsAre("2||", "5||"));
    EXPECT_EQ(Import.Statistic.TotalImported, 2);
    EXPECT_THAT(RemarksOf(Import), ElementsAre(std::tuple(srEmptyRows, 4, 1)));
    Import.Mode = imCopy;
    Import.RowFirst = 3;
    Import.RowLast = 4;
    EXPECT_THAT(Import.Run(), IsEmpty());
    EXPECT_THAT(RemarksOf(Import), ElementsAre(std::tuple(srEmptyRows, 2, 3)));
    Import.RowFirst = -RowLastMax;                  // rows above the sheet are empty too
    EXPECT_THAT(Import.Run(), ElementsAre("2||"));
}

TEST(Kvi2cellFaults, ARowOfAnUnreadableCellIsARecord)
{
    TCellImport Import([](TSpreadSheetFile& Reader) {
        AddSheet(Reader, "Orders", {{"1"}, {""}});
        Reader.CellFault = cfCodePage;
        Reader.OnCellValue(Reader, 0, 1, 0, "", taLeftJustify);
        Reader.CellFault = cfNone;
    });
    Import.Extensions = {seTellingErrors};
    Import.RunExtensions = {rxNoEmptyRecords};
    Import.Execute();
    EXPECT_EQ(Import.Statistic.TotalImported, 2);
    EXPECT_EQ(Import.Statistic.TotalErrors, 1);
}

TEST(Kvi2cellFaults, WithTheExtensionALookShowsRecordsOnly)
{
    TCellImport Import(TSheetRows{{"ID"}, {}, {"1"}, {" "}, {"2"}, {}});
    Import.RunExtensions = {rxNoEmptyRecords};
    Import.RowFirst = 2;
    const auto View = Import.Look({.Rows = 2, .HeaderRow = 1});
    EXPECT_THAT(RowsOf(View), ElementsAre("3: 1", "5: 2"));
    EXPECT_FALSE(View.HasMore);
    EXPECT_THAT(RemarksOf(Import), ElementsAre(std::tuple(srEmptyRows, 3, 2)));
}

TEST(Kvi2cellFaults, FormulasThatGiveNoTextMakeNoRecord)
{
    TBiffBuilder Sheet;
    Sheet.Number(0, 0, 1).Formula(1, 0, EmptyResult()).Formula(1, 1, TextResult()).String("")
         .Formula(2, 0, EmptyResult());
    TExtended<TKvImportFromXLS> Import(Workbook({}, Sheet));
    EXPECT_THAT(Import.Run(), ElementsAre("1||"));
    EXPECT_THAT(RemarksOf(Import), ElementsAre(std::tuple(srEmptyRows, 2, 2)));
}

// Text of unknown code pages.

TEST(Kvi2cellFaults, TextOfDosProgramsIsRemarkedOn)
{
    const auto Sheet = TWorksheetBuilder(wfQuattro).Label(0, 0, "abc").Label(0, 1, "caf\x82")
                                                   .Label(0, 2, "\x94").End();
    TExtended<TKvImportFromQuattro> Import(Sheet.Build());
    Import.Look({});
    EXPECT_THAT(RemarksOf(Import), ElementsAre(std::tuple(srOldText, 2, 2)));
    Import.CharacterSet = csiASCII_MSDOS;
    EXPECT_THAT(RowsOf(Import.Look({})), ElementsAre("1: abc", "2: caf\xC3\xA9", "3: \xC3\xB6"));
    EXPECT_THAT(RemarksOf(Import), IsEmpty());
}

} // namespace kv
