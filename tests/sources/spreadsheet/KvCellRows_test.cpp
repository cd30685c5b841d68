#include "KvCellRows.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

using testing::ElementsAre;

namespace kv {

namespace {

/// The numbers of the rows, in the order of the list.
std::vector<int> RowNumbers(const TSpreadSheetCells& Cells)
{
    std::vector<int> Result;
    for (std::size_t I = 0; I < Cells.Count(); ++I)
        Result.push_back(Cells[I].Row);
    return Result;
}

void Set(TSpreadSheetCells& Cells, int Col, int Row, const TVariant& Value)
{
    Cells.SetValue(Col, Row, Value, taLeftJustify);
}

} // namespace

TEST(TSpreadSheetRow, LooksLike256Slots)
{
    TSpreadSheetRow Row(7);
    for (const int Col : {255, 0, 128})
        Row.Set(Col, Col, taCenter);
    EXPECT_EQ(Row.Row, 7);
    for (int Col = 0; Col < 256; ++Col) {
        const bool IsSet = Col == 0 || Col == 128 || Col == 255;
        EXPECT_EQ(Row.Value(Col), IsSet ? TVariant(Col) : TVariant()) << Col;
        EXPECT_EQ(Row.Alignment(Col), IsSet ? taCenter : taLeftJustify) << Col;
    }
}

TEST(TSpreadSheetRow, StoresOnlyWhatIsThere)
{
    TSpreadSheetRow Row(0);
    Row.Set(255, "end", taLeftJustify);
    Row.Set(0, "start", taLeftJustify);
    Row.Set(0, "again", taLeftJustify);
    EXPECT_EQ(Row.CellCount(), 2U);
}

TEST(TSpreadSheetRow, AnyOrderOfColumnsGivesTheSameRow)
{
    TSpreadSheetRow Row(0);
    for (int I = 0; I < 256; ++I)
        Row.Set(I * 37 % 256, I * 37 % 256, taLeftJustify);
    for (int Col = 0; Col < 256; ++Col)
        EXPECT_EQ(Row.Value(Col), TVariant(Col));
}

TEST(TSpreadSheetRow, ColumnsWithoutASlotReadAsEmpty)
{
    TSpreadSheetRow Row(0);
    Row.Set(0, 1, taLeftJustify);
    for (const int Col : {-1, 256, 1 << 30})
        EXPECT_TRUE(Row.Value(Col).IsEmpty()) << Col;
}

TEST(TSpreadSheetCells, IsCreatedEmptyWithItsCountersAtZero)
{
    const TSpreadSheetCells Cells;
    EXPECT_EQ(Cells.Count(), 0U);
    EXPECT_EQ(Cells.LastColumn, 0);
    EXPECT_EQ(Cells.LastRow, 0);
    EXPECT_EQ(Cells.ColCount, 0);
    EXPECT_EQ(Cells.RowCount, 0);
}

TEST(TSpreadSheetCells, AddRowAppendsARowWithoutValuesAndGivesItsPosition)
{
    TSpreadSheetCells Cells;
    EXPECT_EQ(Cells.AddRow(9), 0);
    EXPECT_EQ(Cells.AddRow(4), 1);
    EXPECT_THAT(RowNumbers(Cells), ElementsAre(9, 4));
    EXPECT_TRUE(Cells.GetValue(0, 9).IsEmpty());
    EXPECT_EQ(Cells.RowCount, 0);
}

TEST(TSpreadSheetCells, GetRowFindsTheFirstRowWithTheNumber)
{
    TSpreadSheetCells Cells;
    for (const int Row : {9, 4, 9})
        Cells.AddRow(Row);
    EXPECT_EQ(Cells.GetRow(4, false), 1);
    EXPECT_EQ(Cells.GetRow(9, false), 0);
    EXPECT_EQ(Cells.GetRow(9, true), 0);
}

TEST(TSpreadSheetCells, GetRowCreatesAMissingRowOnlyWhenAsked)
{
    TSpreadSheetCells Cells;
    EXPECT_EQ(Cells.GetRow(5, false), -1);
    EXPECT_EQ(Cells.Count(), 0U);
    EXPECT_EQ(Cells.GetRow(5, true), 0);
    EXPECT_THAT(RowNumbers(Cells), ElementsAre(5));
}

TEST(TSpreadSheetCells, RowsKeepTheOrderInWhichTheyWereFirstWritten)
{
    TSpreadSheetCells Cells;
    Set(Cells, 0, 7, "seven");
    Set(Cells, 0, 3, "three");
    Set(Cells, 1, 7, "more");
    EXPECT_THAT(RowNumbers(Cells), ElementsAre(7, 3));
    EXPECT_EQ(Cells.GetValue(0, 7), TVariant("seven"));
    EXPECT_EQ(Cells.GetValue(1, 7), TVariant("more"));
    EXPECT_EQ(Cells.GetValue(0, 3), TVariant("three"));
}

TEST(TSpreadSheetCells, RowsAreFoundInAnyOrderOfAsking)
{
    TSpreadSheetCells Cells;
    for (const int Row : {2, 4, 6, 8})
        Set(Cells, 0, Row, Row);
    for (const int Row : {6, 2, 8, 4, 2, 6})
        EXPECT_EQ(Cells.GetValue(0, Row), TVariant(Row));
    for (const int Row : {-1, 0, 3, 7, 9})
        EXPECT_EQ(Cells.GetRow(Row, false), -1);
}

TEST(TSpreadSheetCells, ARowThatComesLateIsFoundAndSoAreThoseBeforeAndAfterIt)
{
    TSpreadSheetCells Cells;
    for (const int Row : {2, 4, 6, 3, 9})
        Set(Cells, 0, Row, Row);
    Cells.AddRow(6);
    EXPECT_THAT(RowNumbers(Cells), ElementsAre(2, 4, 6, 3, 9, 6));
    for (const int Row : {9, 3, 2, 6, 4})
        EXPECT_EQ(Cells.GetValue(0, Row), TVariant(Row));
    EXPECT_EQ(Cells.GetRow(5, false), -1);
    Cells.RemoveRow(2);
    EXPECT_EQ(Cells.GetRow(6, false), 4);
    EXPECT_EQ(Cells.GetValue(0, 9), TVariant(9));
}

TEST(TSpreadSheetCells, RemoveRowTakesOneOutAndFindsTheOthers)
{
    TSpreadSheetCells Cells;
    for (const int Row : {1, 2, 3})
        Set(Cells, 0, Row, Row * 10);
    Cells.RemoveRow(1);
    EXPECT_THAT(RowNumbers(Cells), ElementsAre(1, 3));
    EXPECT_TRUE(Cells.GetValue(0, 2).IsNull());
    EXPECT_EQ(Cells.GetValue(0, 1), TVariant(10));
    EXPECT_EQ(Cells.GetValue(0, 3), TVariant(30));
}

TEST(TSpreadSheetCells, ClearRemovesEveryRowAndZeroesTheCounters)
{
    TSpreadSheetCells Cells;
    Set(Cells, 3, 3, 1);
    Set(Cells, 300, 3, 1);
    Cells.LastRow = Cells.LastColumn = 9;
    Cells.Clear();
    EXPECT_EQ(Cells.Count(), 0U);
    EXPECT_EQ(Cells.LastColumn, 0);
    EXPECT_EQ(Cells.LastRow, 0);
    EXPECT_EQ(Cells.ColCount, 0);
    EXPECT_EQ(Cells.RowCount, 0);
    EXPECT_EQ(Cells.CellRows(), 0);
    EXPECT_EQ(Cells.CellColumns(), 0);
    EXPECT_EQ(Cells.CellsBeyond(), 0U);
    EXPECT_TRUE(Cells.GetValue(3, 3).IsNull());
}

TEST(TSpreadSheetCells, AnUnknownRowReadsAsNullAndAnUnsetSlotAsEmpty)
{
    TSpreadSheetCells Cells;
    Set(Cells, 2, 5, "x");
    EXPECT_TRUE(Cells.GetValue(2, 4).IsNull());
    EXPECT_TRUE(Cells.GetValue(1, 5).IsEmpty());
}

TEST(TSpreadSheetCells, AnUnsetColumnOfARowIsLeftJustified)
{
    TSpreadSheetCells Cells;
    Cells.SetValue(2, 5, "x", taRightJustify);
    Cells.SetValue(3, 5, "x", taCenter);
    EXPECT_EQ(Cells.GetAlignment(2, 5), taRightJustify);
    EXPECT_EQ(Cells.GetAlignment(3, 5), taCenter);
    EXPECT_EQ(Cells.GetAlignment(1, 5), taLeftJustify);
    EXPECT_EQ(Cells.GetAlignment(2, 6), taLeftJustify);
}

TEST(TSpreadSheetCells, NoValueCreatesNoRowAndLeavesTheCounters)
{
    TSpreadSheetCells Cells;
    Set(Cells, 4, 4, Null);
    Set(Cells, 4, 4, TVariant());
    EXPECT_EQ(Cells.Count(), 0U);
    EXPECT_EQ(Cells.ColCount, 0);
    EXPECT_EQ(Cells.RowCount, 0);
}

TEST(TSpreadSheetCells, NullOverwritesASlotOfAnExistingRowAndCounts)
{
    TSpreadSheetCells Cells;
    Set(Cells, 0, 4, "x");
    Cells.SetValue(0, 4, Null, taRightJustify);
    EXPECT_TRUE(Cells.GetValue(0, 4).IsNull());
    EXPECT_EQ(Cells.GetAlignment(0, 4), taRightJustify);
    Set(Cells, 9, 4, Null);
    EXPECT_TRUE(Cells.GetValue(9, 4).IsNull());
    EXPECT_EQ(Cells.ColCount, 10);
    EXPECT_EQ(Cells.RowCount, 5);
}

TEST(TSpreadSheetCells, CountsOneMoreThanTheHighestRowAndColumnStored)
{
    TSpreadSheetCells Cells;
    Set(Cells, 3, 8, 1);
    Set(Cells, 5, 2, 1);
    EXPECT_EQ(Cells.ColCount, 6);
    EXPECT_EQ(Cells.RowCount, 9);
}

TEST(TSpreadSheetCells, CountersHave16Bits)
{
    TSpreadSheetCells Cells;
    Set(Cells, 0, 65535, 1);
    EXPECT_EQ(Cells.RowCount, 0);
    Set(Cells, 0, 3, 1);
    EXPECT_EQ(Cells.RowCount, 4);
}

TEST(TSpreadSheetCells, TheExtentOfItsCellsDoesNotWrap)
{
    TSpreadSheetCells Cells;
    Set(Cells, 255, 65535, 1);
    Set(Cells, 0, 3, 1);
    EXPECT_EQ(Cells.CellRows(), 65536);
    EXPECT_EQ(Cells.CellColumns(), 256);
}

TEST(TSpreadSheetCells, TheExtentOfItsCellsLeavesOutWhatHoldsNoValue)
{
    TSpreadSheetCells Cells;
    Set(Cells, 1, 1, 1);
    Set(Cells, 9, 1, Null);
    EXPECT_EQ(Cells.CellColumns(), 2);
    EXPECT_EQ(Cells.CellRows(), 2);
}

TEST(TSpreadSheetCells, AColumnBeyondTheSlotsIsCountedAndNotStored)
{
    TSpreadSheetCells Cells;
    Set(Cells, 255, 0, 1);
    for (const int Col : {256, 65535, -1})
        Set(Cells, Col, 0, 1);
    Set(Cells, 256, 1, 1);
    Set(Cells, 256, 0, Null);
    EXPECT_EQ(Cells.Count(), 1U);
    EXPECT_EQ(Cells.ColCount, 256);
    EXPECT_EQ(Cells.CellsBeyond(), 4U);
}

TEST(TSpreadSheetCells, AValueIsKeptAfterWhatLentItsTextIsGone)
{
    TSpreadSheetCells Cells;
    {
        const std::string Text(100, 'x');
        Set(Cells, 0, 0, TVariant::Borrow(Text));
    }
    EXPECT_EQ(Cells.GetValue(0, 0), TVariant(std::string(100, 'x')));
}

TEST(TSpreadSheetCells, RowsOfAnyNumberAreKept)
{
    TSpreadSheetCells Cells;
    for (const int Row : {0x7FFFFFFF, -1, 0})
        Set(Cells, 0, Row, Row);
    for (const int Row : {0x7FFFFFFF, -1, 0})
        EXPECT_EQ(Cells.GetValue(0, Row), TVariant(Row));
}

TEST(TSpreadSheetCells, RowCountAndColCountGrowIndependently)
{
    TSpreadSheetCells Cells;
    Cells.SetValue(9, 0, 1, taLeftJustify);
    EXPECT_EQ(Cells.ColCount, 10);
    EXPECT_EQ(Cells.RowCount, 1);
    Cells.SetValue(0, 7, 1, taLeftJustify);
    EXPECT_EQ(Cells.ColCount, 10);
    EXPECT_EQ(Cells.RowCount, 8);
    Cells.SetValue(3, 7, 1, taLeftJustify);
    Cells.SetValue(3, 2, 1, taLeftJustify);
    EXPECT_EQ(Cells.ColCount, 10);
    EXPECT_EQ(Cells.RowCount, 8);
}

TEST(TSpreadSheetCells, ATextMayBeSharedByManyCells)
{
    const std::string Text(100, 'x');
    TSpreadSheetCells Cells;
    Cells.SetSharedText(0, 0, Text, taCenter);
    Cells.SetSharedText(1, 0, Text, taLeftJustify);
    EXPECT_EQ(Cells.GetValue(0, 0).Text().data(), Text.data());
    EXPECT_EQ(Cells.GetValue(1, 0).Text().data(), Text.data());
    EXPECT_EQ(Cells.GetAlignment(0, 0), taCenter);
    EXPECT_EQ(Cells.CellColumns(), 2);
}

TEST(TSpreadSheetRow, IsBlankWhenNothingCanBeSeenInIt)
{
    TSpreadSheetRow Row(0);
    EXPECT_TRUE(Row.IsBlank());
    Row.Set(0, "  ", taLeftJustify);
    Row.Set(5, "", taLeftJustify);
    EXPECT_TRUE(Row.IsBlank());
    Row.SetFault(5, cfCodePage);
    EXPECT_FALSE(Row.IsBlank());
    Row.Set(5, 0, taLeftJustify);
    EXPECT_FALSE(Row.IsBlank());
}

} // namespace kv
