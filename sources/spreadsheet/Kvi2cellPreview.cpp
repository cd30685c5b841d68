// The first rows of a sheet without an import.
#include <algorithm>
#include <cstdint>

#include "KvCells.h"
#include "KvColumnLetters.h"
#include "KvException.h"
#include "Kvi2wks.h"
#include "Kvi2wq.h"
#include "Kvi2xls.h"

namespace kv {

namespace {

constexpr char MsgIncorrectType[] = "Incorrect type of spreadsheet";

constexpr int RowsShown = 21;

enum TColumnItem { ciNone, ciName, ciValue, ciLast = ciValue };

std::unique_ptr<TKvImportFromCell> ImportOf(int SpreadSheetType)
{
    switch (SpreadSheetType) {
    case 1:  return std::make_unique<TKvImportFromXLS>();
    case 2:  return std::make_unique<TKvImportFromWKS>();
    case 3:  return std::make_unique<TKvImportFromQuattro>();
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

} // namespace

void LoadSpreadSheetPreview(int SpreadSheetType, TPersistent* Sender, std::string_view ColumnSpec,
                            const std::string& FileName, int SheetIndex, int FirstRow, int LastRow,
                            TStrings& Sheets, bool Flag, TStrings& Columns, const TPreviewCallback& Callback,
                            TSpreadSheetExtensions Extensions)
{
    Sheets.Clear();
    const auto Import = ImportOf(SpreadSheetType);
    Import->SourceFileName = FileName;
    Import->SheetIndex = SheetIndex;
    Import->Extensions = Extensions;
    Import->RowFirst = FirstRow;
    Import->RowLast = LastRow;
    auto& Book = Import->LoadWorkBook().Sheets;
    for (std::size_t I = 0; I < Book.Count(); ++I)
        Sheets.Add(Book[I].Caption);

    Columns.Clear();
    if (ColumnSpec.empty())
        AddFirstColumns(Columns, Book.Spreadsheet(SheetIndex).Cells.ColCount);
    else
        AddNamedColumns(Columns, ColumnSpec);
    auto Items = ArrayOf(Columns);
    const auto View = Import->Look({.Rows = RowsShown, .Columns = {Columns.begin(), Columns.end()}});
    int Number = 0;
    for (const auto& Row : View.Rows) {
        for (int I = 0; I < Columns.Count(); ++I)
            Items[I][ciValue] = Row.Values[static_cast<std::size_t>(I)].Value;
        Callback(Sender, Columns.Count(), ++Number, Flag, Items);
    }
}

} // namespace kv
