// What a data packet costs: cutting it into records and values, and importing it into memory.
#include "Kvi2xml.h"

#include <benchmark/benchmark.h>

#include "KvBenchImport.h"
#include "KvBenchOrders.h"
#include "KvFile.h"
#include "KvXmlRows.h"

namespace kv {

namespace {

constexpr std::int64_t Rows = 200000;
constexpr TKvIXMLExtensions AllExtensions{xxTagSyntax,     xxWholeNames, xxReferences,    xxEncoding,
                                          xxMissingIsNull, xxRowState,   xxElementValues, xxFieldTypes};

const bench::TOrdersFile& Orders()
{
    static const bench::TOrdersFile File(bench::olXml, Rows);
    return File;
}

// Extensions: 0 none, 1 all.

void CutRecordsAndValues(benchmark::State& State)
{
    const auto File = ReadFileBytes(Orders().FileName());
    std::size_t Bytes = 0;
    for (auto _ : State) {
        TKvXmlRows Packet(File.View(), State.range(0) != 0 ? AllExtensions : TKvIXMLExtensions(), {}, {});
        for (const auto& Column : bench::OrderColumns)
            Packet.AddColumn(Column.Name);
        while (Packet.Next())
            for (std::size_t Column = 0; Column < bench::OrderColumns.size(); ++Column)
                Bytes += Packet.Value(Column).value_or(std::string_view()).size();
    }
    benchmark::DoNotOptimize(Bytes);
    State.SetBytesProcessed(State.iterations() * Orders().Size());
    State.SetItemsProcessed(State.iterations() * Rows);
}

void ImportIntoMemory(benchmark::State& State)
{
    bench::ImportOrders<TKvImportFromXML>(State, Orders(), Rows, [&State](auto& Import) {
        if (State.range(0) != 0)
            Import.Extensions = AllExtensions;
    });
}

BENCHMARK(CutRecordsAndValues)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);
BENCHMARK(ImportIntoMemory)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

} // namespace

} // namespace kv
