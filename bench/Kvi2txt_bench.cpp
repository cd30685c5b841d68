// What a delimited text file costs: cutting it into lines and values, and importing it into memory.
#include "Kvi2txt.h"

#include <benchmark/benchmark.h>

#include "KvBenchImport.h"
#include "KvFile.h"
#include "KvTextFields.h"
#include "KvTextLines.h"

namespace kv {

namespace {

constexpr std::int64_t Rows = 200000;
constexpr TKvITextExtensions AllExtensions{xtDoubledQualifiers, xtLongLines, xtByteOrderMark};

const bench::TOrdersFile& Orders()
{
    static const bench::TOrdersFile File(bench::olDelimited, Rows);
    return File;
}

/// Reading the file, cutting it into lines and each line into values. Extensions: 0 classic, 1 RFC 4180.
void SplitLinesAndValues(benchmark::State& State)
{
    const bool Doubled = State.range(0) != 0;
    std::int64_t Bytes = 0, Values = 0;
    for (auto _ : State) {
        const auto File = ReadFileBytes(Orders().FileName());
        TKvTextLines Lines(
            File.View(),
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

/// Extensions: 0 none, 1 all.
void ImportIntoMemory(benchmark::State& State)
{
    bench::ImportOrders<TKvImportFromText>(State, Orders(), Rows, [&State](auto& Import) {
        Import.SetFieldDelimiter(fdComma);
        Import.RowFirst = 2;
        if (State.range(0) != 0)
            Import.Extensions = AllExtensions;
    });
}

BENCHMARK(SplitLinesAndValues)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);
BENCHMARK(ImportIntoMemory)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

} // namespace

} // namespace kv
