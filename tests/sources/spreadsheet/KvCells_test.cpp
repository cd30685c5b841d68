#include "KvCells.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "KvException.h"
#include "KvTempFolder.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace kv {

namespace {

std::vector<std::string> Captions(const TSpreadSheets& Sheets)
{
    std::vector<std::string> Result;
    for (std::size_t I = 0; I < Sheets.Count(); ++I)
        Result.push_back(Sheets[I].Caption);
    return Result;
}

std::string MessageOfLoading(TSpreadSheetFile& File, const std::string& Name)
{
    try {
        File.LoadFromFile(Name);
    } catch (const Exception& Error) {
        return Error.Message;
    }
    return {};
}

/// A workbook that has been loaded from a file without events.
class KvCells : public testing::Test
{
protected:
    void Load() { File.LoadFromFile(Folder.Write("book", "")); }
    void Cell(int Sheet, int Row, int Column, const TVariant& Value)
    {
        File.OnCellValue(File, Sheet, Row, Column, Value, taCenter);
    }

    TTempFolder Folder;
    TSpreadSheetFile File;
};

} // namespace

TEST(TSpreadSheets, AddNamesASheetByItsNumber)
{
    TSpreadSheets Sheets;
    EXPECT_EQ(Sheets.Add(), 0);
    EXPECT_EQ(Sheets.Add(), 1);
    EXPECT_THAT(Captions(Sheets), ElementsAre("Sheet1", "Sheet2"));
}

TEST(TSpreadSheets, ANegativeIndexGivesTheFirstSheet)
{
    TSpreadSheets Sheets;
    Sheets.Add();
    Sheets.Add();
    EXPECT_EQ(&Sheets.Spreadsheet(-3), &Sheets[0]);
    EXPECT_EQ(Sheets.Count(), 2U);
}

TEST(TSpreadSheets, ANegativeIndexOfAnEmptyListCreatesSheet1)
{
    TSpreadSheets Sheets;
    EXPECT_EQ(Sheets.Spreadsheet(-3).Caption, "Sheet1");
    EXPECT_EQ(Sheets.Count(), 1U);
}

TEST(TSpreadSheets, AnIndexPastTheLastAppendsExactlyOneSheet)
{
    TSpreadSheets Sheets;
    Sheets.Add();
    Sheets.Add();
    EXPECT_EQ(Sheets.Spreadsheet(2).Caption, "Sheet3");
    EXPECT_EQ(Sheets.Spreadsheet(50).Caption, "Sheet4");
    EXPECT_EQ(Sheets.Count(), 4U);
}

TEST(TSpreadSheets, RemoveTakesOutTheSheetThatSpreadsheetGives)
{
    TSpreadSheets Sheets;
    for (int I = 0; I < 3; ++I)
        Sheets.Add();
    Sheets.Remove(1);
    EXPECT_THAT(Captions(Sheets), ElementsAre("Sheet1", "Sheet3"));
    Sheets.Remove(-1);
    EXPECT_THAT(Captions(Sheets), ElementsAre("Sheet3"));
    Sheets.Remove(9);
    EXPECT_THAT(Captions(Sheets), ElementsAre("Sheet3"));
}

TEST(TSpreadSheets, ClearRemovesEverySheet)
{
    TSpreadSheets Sheets;
    Sheets.Add();
    Sheets.Clear();
    EXPECT_EQ(Sheets.Count(), 0U);
}

TEST(TSpreadSheets, ASheetStaysInPlaceWhenOthersAreAdded)
{
    TSpreadSheets Sheets;
    auto& First = Sheets.Spreadsheet(0);
    for (int I = 0; I < 100; ++I)
        Sheets.Add();
    EXPECT_EQ(&First, &Sheets[0]);
}

TEST_F(KvCells, RefusesABlankName)
{
    EXPECT_EQ(MessageOfLoading(File, ""), "File is not defined.");
    EXPECT_EQ(MessageOfLoading(File, " \t "), "File is not defined.");
}

TEST_F(KvCells, RefusesAFileThatIsNotThere)
{
    EXPECT_EQ(MessageOfLoading(File, Folder / "nowhere.xls"), "File is not exists.");
}

TEST_F(KvCells, ALoadThatIsRefusedLeavesNoSheets)
{
    Load();
    File.Sheets.Add();
    EXPECT_EQ(MessageOfLoading(File, ""), "File is not defined.");
    EXPECT_THAT(Captions(File.Sheets), IsEmpty());
    EXPECT_EQ(File.FileName, Folder / "book");
}

TEST_F(KvCells, ALoadDoesNotAddToTheOneBefore)
{
    Load();
    Cell(0, 0, 0, 1);
    Load();
    EXPECT_EQ(File.Sheets.Count(), 0U);
}

TEST_F(KvCells, ALoadNotesTheNameOfTheFile)
{
    Load();
    EXPECT_EQ(File.FileName, Folder / "book");
    EXPECT_EQ(GetPropValue(File, "FileName"), TVariant(Folder / "book"));
}

TEST_F(KvCells, ALoadTakesTheEventsOver)
{
    bool Called = false;
    File.OnSheet = [&](auto&&...) { Called = true; };
    File.OnDimensions = [&](auto&&...) { Called = true; };
    File.OnCellValue = [&](auto&&...) { Called = true; };
    Load();
    bool Skip = false;
    File.OnSheet(File, "Orders", 0, Skip);
    File.OnDimensions(File, 0, 0, 1, 0, 1);
    File.OnCellValue(File, 0, 0, 0, 1, taLeftJustify);
    EXPECT_FALSE(Called);
}

TEST_F(KvCells, ALoadLeavesWidthsAndHeightsToTheUser)
{
    Load();
    EXPECT_FALSE(File.OnColumnWidth);
    EXPECT_FALSE(File.OnRowHeight);
    int Width = 0;
    File.OnColumnWidth = [&](auto&, int, int, int Value) { Width = Value; };
    Load();
    File.OnColumnWidth(File, 0, 0, 12);
    EXPECT_EQ(Width, 12);
}

TEST_F(KvCells, AnAnnouncedSheetWithoutCellsIsListedWithItsCaption)
{
    Load();
    bool Skip = false;
    File.OnSheet(File, "Orders", 7, Skip);
    File.OnSheet(File, "Empty", 7, Skip);
    EXPECT_FALSE(Skip);
    EXPECT_THAT(Captions(File.Sheets), ElementsAre("Orders", "Empty"));
}

TEST_F(KvCells, DimensionsAreTheLastRowAndColumnOfTheSheet)
{
    Load();
    File.OnDimensions(File, 0, 3, 20, 2, 7);
    EXPECT_EQ(File.Sheets[0].Cells.LastRow, 20);
    EXPECT_EQ(File.Sheets[0].Cells.LastColumn, 7);
}

TEST_F(KvCells, DimensionsAreCutTo16Bits)
{
    Load();
    File.OnDimensions(File, 0, 0, 65536, 0, 65537);
    EXPECT_EQ(File.Sheets[0].Cells.LastRow, 0);
    EXPECT_EQ(File.Sheets[0].Cells.LastColumn, 1);
}

TEST_F(KvCells, DimensionsOfASheetThatWasNotAnnouncedCreateOne)
{
    Load();
    bool Skip = false;
    File.OnSheet(File, "Orders", 0, Skip);
    File.OnDimensions(File, 1, 0, 5, 0, 5);
    EXPECT_THAT(Captions(File.Sheets), ElementsAre("Orders", "Sheet2"));
    EXPECT_EQ(File.Sheets[1].Cells.LastRow, 5);
}

TEST_F(KvCells, CellsAreStoredInTheirSheet)
{
    Load();
    Cell(-1, 4, 2, "first");
    Cell(1, 4, 2, "second");
    EXPECT_EQ(File.Sheets[0].Cells.GetValue(2, 4), TVariant("first"));
    EXPECT_EQ(File.Sheets[1].Cells.GetValue(2, 4), TVariant("second"));
    EXPECT_EQ(File.Sheets[1].Cells.GetAlignment(2, 4), taCenter);
}

TEST_F(KvCells, CellsWithoutAValueAreDropped)
{
    Load();
    Cell(0, 4, 2, "kept");
    Cell(0, 4, 2, Null);
    Cell(0, 4, 2, TVariant());
    Cell(0, 9, 9, Null);
    EXPECT_EQ(File.Sheets[0].Cells.GetValue(2, 4), TVariant("kept"));
    EXPECT_EQ(File.Sheets[0].Cells.ColCount, 3);
    EXPECT_EQ(File.Sheets[0].Cells.Count(), 1U);
}

TEST_F(KvCells, HasNoExtensionsUnlessAsked)
{
    EXPECT_TRUE(File.Extensions.IsEmpty());
}

TEST_F(KvCells, ACellWithoutAValueInASheetThatWasNotAnnouncedCreatesTheSheet)
{
    for (const auto& Value : {TVariant(Null), TVariant()}) {
        Load();
        Cell(0, 4, 5, Value);
        EXPECT_THAT(Captions(File.Sheets), ElementsAre("Sheet1"));
        EXPECT_EQ(File.Sheets[0].Cells.Count(), 0u);
    }
}

TEST_F(KvCells, ASheetKnowsWhetherItIsHidden)
{
    Load();
    bool Skip = false;
    File.SheetHidden = true;
    File.OnSheet(File, "Hidden", 0, Skip);
    File.SheetHidden = false;
    File.OnSheet(File, "Shown", 1, Skip);
    EXPECT_TRUE(File.Sheets[0].Hidden);
    EXPECT_FALSE(File.Sheets[1].Hidden);
}

TEST_F(KvCells, ACellKnowsItsFaultUnderTheExtension)
{
    for (const TSpreadSheetExtensions Extensions : {TSpreadSheetExtensions(), {seTellingErrors}}) {
        Load();
        File.Extensions = Extensions;
        File.CellFault = cfNoDay;
        Cell(0, 4, 5, 1e9);
        Cell(0, 4, 300, 1e9);                       // no slot
        Cell(0, 9, 5, Null);
        File.CellFault = cfNone;
        Cell(0, 4, 6, 7);
        const auto& Row = File.Sheets[0].Cells[0];
        EXPECT_EQ(Row.HasFaults(), !Extensions.IsEmpty());
        EXPECT_EQ(Row.Fault(5), Extensions.IsEmpty() ? cfNone : cfNoDay);
        EXPECT_EQ(Row.Fault(6), cfNone);
        EXPECT_EQ(Row.Fault(7), cfNone);
        Cell(0, 4, 5, 8);                           // written anew
        EXPECT_EQ(Row.Fault(5), cfNone);
    }
}

} // namespace kv
