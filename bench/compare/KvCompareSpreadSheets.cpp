// The section "spreadsheets" of TComparison.
#include <string>
#include <utility>

#include "KvCompareSections.h"

namespace kv::bench {

namespace {

constexpr std::uint64_t WorkbookRows = 65'000;      // near the most that a sheet holds
constexpr std::uint64_t WorksheetRows = 8'191;
constexpr std::uint64_t MaxWorkbookMemory = 150'000'000;

} // namespace

void TComparison::CompareSpreadSheets()
{
    CompareWorkbookLoad();
    CompareWorkbookImport();
    CompareWorksheetLoad();
}

void TComparison::CompareWorkbookLoad()
{
    const TPair Pair{Workspace.Workbook(WorkbookRows), {}, olDelimited};
    TContest Contest{"load a workbook of " + Grouped(WorkbookRows) + " rows", Workspace.SheetTable(),
                     {Contestant("kvimport sheets", KvImportLoadCommand, wkAppend, Pair)}};
    if (IsThere("xls2csv", "catdoc"))
        Contest.Contestants.push_back(Contestant("xls2csv", Xls2CsvCommand, wkAppend, Pair, 0.25));
    Judge(Contest);
}

void TComparison::CompareWorkbookImport()
{
    const TPair Book{Workspace.Workbook(WorkbookRows), {}, olDelimited};
    const TPair Text{Workspace.SheetOrders(WorkbookRows), {}, olDelimited};
    TContest Contest{"append the " + Grouped(WorkbookRows) + " rows of a workbook", Workspace.SheetTable(),
                     {Contestant("kvimport", KvImportSheetCommand, wkAppend, Book),
                      Contestant("kvimport, the rows as CSV", KvImportSheetCommand, wkAppend, Text, 1.6)}};
    if (IsThere("xls2csv", "catdoc"))
        Contest.Contestants.push_back(
            Contestant("xls2csv, sqlite3 .import", Xls2CsvIntoSqlite3Command, wkAppend, Book, 0.5));
    PrintMemory(Judge(Contest), MaxWorkbookMemory);
}

/// What is left to compare a worksheet of Quattro Pro with reads those of 1-2-3 only.
void TComparison::CompareWorksheetLoad()
{
    const TPair Lotus{Workspace.LotusSheet(WorksheetRows), {}, olDelimited};
    const TPair Quattro{Workspace.QuattroSheet(WorksheetRows), {}, olDelimited};
    const bool HasOther = IsThere("ssconvert", "gnumeric");
    for (const auto& [Name, Pair] : {std::pair{"1-2-3", Lotus}, std::pair{"Quattro Pro", Quattro}}) {
        TContest Contest{"load a worksheet of " + Grouped(WorksheetRows) + " rows of " + Name,
                         Workspace.SheetTable(),
                         {Contestant("kvimport sheets", KvImportLoadCommand, wkAppend, Pair)}};
        if (HasOther)
            Contest.Contestants.push_back(
                Contestant("ssconvert of that of 1-2-3", SsConvertCommand, wkAppend, Lotus, 0.1));
        Judge(Contest);
    }
}

} // namespace kv::bench
