// What an Excel workbook of 65,000 rows and 12 columns costs: its records alone, and a load into the model.
#include "Kvxls.h"

#include <benchmark/benchmark.h>

#include <filesystem>
#include <fstream>

#include "KvBenchWorkbook.h"
#include "KvStorage.h"

namespace kv {

namespace {

constexpr std::int64_t Rows = 65000;

/// The workbook in a file that is gone with the program.
class TWorkbookFile
{
public:
    TWorkbookFile() : Path(std::filesystem::temp_directory_path() / "kvxls_bench.xls")
    {
        std::ofstream(Path, std::ios::binary) << bench::MakeWorkbook(Rows);
    }
    ~TWorkbookFile() { std::filesystem::remove(Path); }

    const std::filesystem::path Path;
};

const std::filesystem::path& WorkbookFile()
{
    static const TWorkbookFile File;
    return File.Path;
}

void Report(benchmark::State& State)
{
    State.SetItemsProcessed(State.iterations() * Rows);
    State.SetBytesProcessed(State.iterations() *
                            static_cast<std::int64_t>(std::filesystem::file_size(WorkbookFile())));
}

/// Every record decoded, every event raised, nothing kept.
void RaiseCells(benchmark::State& State)
{
    const TKvStorage Storage(WorkbookFile().string());
    const auto Stream = Storage.OpenStream("Workbook");
    std::int64_t Cells = 0;
    TMSExcel Excel;
    Excel.OnCellValue = [&Cells](auto&&...) { ++Cells; };
    for (auto _ : State)
        Excel.ReadWorkbookStream(Stream.ReadAll(), evExcel8);
    benchmark::DoNotOptimize(Cells);
    Report(State);
}

/// Extensions: 0 none, 1 all.
void LoadIntoModel(benchmark::State& State)
{
    for (auto _ : State) {
        TMSExcel Excel;
        if (State.range(0) != 0)
            Excel.Extensions = {seFormulaResults, seCustomDates, seDateMode, seCellExtent, seFileCodePage,
                                seCellRecords};
        Excel.LoadFromFile(WorkbookFile().string());
        if (Excel.Sheets.Count() != 1 || Excel.Sheets[0].Cells.Count() != Rows + 1)
            State.SkipWithError("the workbook was not read");
    }
    Report(State);
}

BENCHMARK(RaiseCells)->Unit(benchmark::kMillisecond);
BENCHMARK(LoadIntoModel)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

} // namespace

} // namespace kv
