// What an HTML table costs: cutting it into rows and cells, and importing it into memory.
#include "Kvi2html.h"

#include <benchmark/benchmark.h>

#include "KvBenchImport.h"
#include "KvFile.h"
#include "KvHtmlRows.h"

namespace kv {

namespace {

constexpr std::int64_t Rows = 100000;
constexpr TKvIHTMLExtensions AllExtensions{xhTagSyntax, xhHeaderCells, xhReferences,  xhFoldedSpace,
                                           xhSpans,     xhEncoding,    xhHeaderNames, xhEmptyIsNull};

const bench::TOrdersFile& Orders()
{
    static const bench::TOrdersFile File(bench::olHtml, Rows);
    return File;
}

// Extensions: 0 none, 1 all.

void CutRowsAndCells(benchmark::State& State)
{
    const auto File = ReadFileBytes(Orders().FileName());
    std::size_t Bytes = 0;
    for (auto _ : State) {
        TKvHtmlRows Table(File.View(), State.range(0) != 0 ? AllExtensions : TKvIHTMLExtensions(), hfHtml);
        while (Table.Next())
            for (std::size_t Column = 0; Column < Table.Columns(); ++Column)
                Bytes += Table.Text(Column).size();
    }
    benchmark::DoNotOptimize(Bytes);
    State.SetBytesProcessed(State.iterations() * Orders().Size());
    State.SetItemsProcessed(State.iterations() * Rows);
}

/// The row of header cells is no row of data: by the older rules its record has eight constants.
void ImportIntoMemory(benchmark::State& State)
{
    bench::ImportOrders<TKvImportFromHTML>(State, Orders(), Rows, [&State](auto& Import) {
        Import.RowFirst = 2;
        for (const auto& Field : bench::OrderFields())
            Import.Mappings().Add(Field.Name + "=" + Field.Name);
        if (State.range(0) != 0)
            Import.Extensions = AllExtensions;
    });
}

BENCHMARK(CutRowsAndCells)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);
BENCHMARK(ImportIntoMemory)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

} // namespace

} // namespace kv
