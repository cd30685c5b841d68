// What a delimited text file costs: cutting it into lines and values, and importing it into memory.
#include "Kvi2txt.h"

#include <filesystem>

#include <benchmark/benchmark.h>
#include <unistd.h>

#include "KvBenchFiles.h"
#include "KvFile.h"
#include "KvFormatSettings.h"
#include "KvMemoryDataSet.h"
#include "KvTextLines.h"

namespace kv {

namespace {

constexpr std::int64_t Rows = 200000;
constexpr TKvITextExtensions AllExtensions{xtDoubledQualifiers, xtLongLines, xtByteOrderMark};

/// A file of orders, made once and removed at the end.
class TOrdersFile
{
public:
    TOrdersFile() { bench::WriteOrders(Name, bench::olDelimited, Rows); }
    ~TOrdersFile() { std::filesystem::remove(Name); }
    std::string FileName() const { return Name.string(); }

private:
    const std::filesystem::path Name =
        std::filesystem::temp_directory_path() / ("kvi2txt-bench-" + std::to_string(getpid()) + ".csv");
};

const TOrdersFile& Orders()
{
    static const TOrdersFile File;
    return File;
}

std::vector<TFieldDef> OrderFields()
{
    return {{.Name = "ID", .DataType = ftLargeint, .Required = true},
            {.Name = "CUSTOMER", .DataType = ftString, .Size = 60},
            {.Name = "CITY", .DataType = ftString, .Size = 40},
            {.Name = "ORDERED", .DataType = ftDate},
            {.Name = "AMOUNT", .DataType = ftBCD},
            {.Name = "QTY", .DataType = ftLargeint},
            {.Name = "PAID", .DataType = ftBoolean},
            {.Name = "NOTE", .DataType = ftString}};
}

/// Reading the file, cutting it into lines and each line into values. Extensions: 0 classic, 1 RFC 4180.
void SplitLinesAndValues(benchmark::State& State)
{
    const bool Doubled = State.range(0) != 0;
    std::int64_t Bytes = 0, Values = 0;
    for (auto _ : State) {
        const auto File = ReadFileBytes(Orders().FileName());
        TKvTextLines Lines(File.View(),
                           {.Separator = "\r\n", .Qualifier = "\"", .DoubledQualifiers = Doubled, .Delimiter = ','});
        TKvTextFields Fields(',', '"', Doubled);
        while (Lines.Next()) {
            Fields.Split(Lines.Line());
            Values += static_cast<std::int64_t>(Fields.Count());
        }
        Bytes += static_cast<std::int64_t>(File.Size());
    }
    benchmark::DoNotOptimize(Values);
    State.SetBytesProcessed(Bytes);
    State.SetItemsProcessed(State.iterations() * Rows);
}

/// A whole import with conversion of eight typed values a row.
void ImportIntoMemory(benchmark::State& State)
{
    FormatSettings().ShortDateFormat = "yyyy-MM-dd";
    TMemoryDataSet DataSet;
    for (auto _ : State) {
        State.PauseTiming();                        // the rows of the round before are given back here
        DataSet.SetFieldDefs(OrderFields());
        DataSet.Open();
        State.ResumeTiming();
        TKvImportFromText Import;
        Import.SetDataSet(&DataSet);
        Import.SourceFileName = Orders().FileName();
        Import.SetFieldDelimiter(fdComma);
        Import.RowFirst = 2;
        Import.AnimatedStatus = false;
        Import.Options = {};
        Import.DataFormats.DateSeparator = '-';
        if (State.range(0) != 0)
            Import.Extensions = AllExtensions;
        Import.Execute();
        if (Import.Statistic.TotalAdded != Rows)
            State.SkipWithError("not every row was added");
    }
    State.SetItemsProcessed(State.iterations() * Rows);
}

BENCHMARK(SplitLinesAndValues)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);
BENCHMARK(ImportIntoMemory)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

} // namespace

} // namespace kv
