// The first rows of a sheet without an import.
#include <algorithm>
#include <cstdint>

#include "KvCells.h"
#include "KvColumnLetters.h"
#include "KvException.h"
#include "Kvi2cell.h"
#include "Kvwks.h"
#include "Kvwq.h"
#include "Kvxls.h"

namespace kv {

namespace {

constexpr char MsgIncorrectType[] = "Incorrect type of spreadsheet";

constexpr int RowsAfterFirst = 20;

enum TColumnItem { ciNone, ciName, ciValue, ciLast = ciValue };

std::unique_ptr<TSpreadSheetFile> CreateReader(int SpreadSheetType)
{
    switch (SpreadSheetType) {
    case 1:  return std::make_unique<TMSExcel>();
    case 2:  return std::make_unique<TLotus123>();
    case 3:  return std::make_unique<TQuattroPro>();
    default: throw Exception(MsgIncorrectType);
    }
}

void AddNamedColumns(TStrings& Columns, std::string_view Names)
{
    while (!Names.empty()) {
        const auto Name = Names.substr(0, Names.find(';'));
        Names.remove_prefix(std::min(Name.size() + 1, Names.size()));
        Columns.Add(Name, ColumnOfLetters(Name));
    }
}

void AddFirstColumns(TStrings& Columns, int Count)
{
    for (int Number = 1; Number <= Count; ++Number)
        Columns.Add(LettersOfColumn(Number), Number);
}

TVariant ArrayOf(const TStrings& Columns)
{
    auto Result = TVariant::Array(0, Columns.Count() - 1);
    for (int I = 0; I < Columns.Count(); ++I) {
        auto& Item = Result[I] = TVariant::Array(0, ciLast);
        Item[ciNone] = Null;
        Item[ciName] = Columns[I];
        Item[ciValue] = Columns.Object(I);
    }
    return Result;
}

/// Each value is that of the column that its item names.
void SetValues(TVariant& Row, const TSpreadSheetCells& Cells, int Number)
{
    for (int I = Row.LowBound(); I <= Row.HighBound(); ++I)
        Row[I][ciValue] = Cells.GetValue(ColumnOfLetters(Row[I][ciName].Text()), Number);
}

} // namespace

void LoadSpreadSheetPreview(int SpreadSheetType, TPersistent* Sender, std::string_view ColumnSpec,
                            const std::string& FileName, int SheetIndex, int FirstRow, int LastRow,
                            TStrings& Sheets, bool Flag, TStrings& Columns, const TPreviewCallback& Callback,
                            TSpreadSheetExtensions Extensions)
{
    Sheets.Clear();
    const auto Reader = CreateReader(SpreadSheetType);
    Reader->Extensions = Extensions;
    Reader->LoadFromFile(FileName);
    for (std::size_t I = 0; I < Reader->Sheets.Count(); ++I)
        Sheets.Add(Reader->Sheets[I].Caption);

    const auto& Cells = Reader->Sheets.Spreadsheet(SheetIndex).Cells;
    Columns.Clear();
    if (ColumnSpec.empty())
        AddFirstColumns(Columns, Cells.ColCount);
    else
        AddNamedColumns(Columns, ColumnSpec);
    auto Row = ArrayOf(Columns);
    const auto End = std::min({std::int64_t{FirstRow} + RowsAfterFirst, std::int64_t{LastRow},
                               std::int64_t{RowExtent(Cells, Extensions)}});
    for (std::int64_t Number = std::int64_t{FirstRow} - 1; Number < End; ++Number) {
        SetValues(Row, Cells, static_cast<int>(Number));
        Callback(Sender, Columns.Count(), static_cast<int>(Number - FirstRow + 2), Flag, Row);
    }
}

} // namespace kv
