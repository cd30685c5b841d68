// What reading every value of a table file of 500,000 orders costs, in each format.
#include "KvTableFile.h"

#include <benchmark/benchmark.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>

#include "KvBenchTables.h"
#include "KvDbaseFile.h"
#include "KvParadoxFile.h"

namespace kv {

namespace {

constexpr std::int64_t Rows = 500'000;

/// A table in a file that is gone with the program.
class TBenchFile
{
public:
    TBenchFile(const char* Name, const std::string& Bytes)
        : Path(std::filesystem::temp_directory_path() / Name)
    {
        std::ofstream(Path, std::ios::binary) << Bytes;
    }
    ~TBenchFile() { std::filesystem::remove(Path); }

    const std::filesystem::path Path;
};

template <class TFile> void ReadAllValues(benchmark::State& State, const TBenchFile& Bench)
{
    for (auto _ : State) {
        TFile File(Bench.Path.string());
        TKvTableFile& Table = File;
        const auto Fields = Table.FieldDefs().size();
        for (Table.First(); !Table.Eof(); Table.Next())
            for (std::size_t I = 0; I < Fields; ++I)
                benchmark::DoNotOptimize(Table.Value(I));
        if (Table.RecordCount() != Rows)
            State.SkipWithError("the table was not read");
    }
    State.SetItemsProcessed(State.iterations() * Rows);
    State.SetBytesProcessed(State.iterations() *
                            static_cast<std::int64_t>(std::filesystem::file_size(Bench.Path)));
}

void ReadParadox(benchmark::State& State)
{
    static const TBenchFile Bench("kvtablefile_bench.db", bench::MakeParadoxTable(Rows));
    ReadAllValues<TKvParadoxFile>(State, Bench);
}

void ReadDbase(benchmark::State& State)
{
    static const TBenchFile Bench("kvtablefile_bench.dbf", bench::MakeDbaseTable(Rows));
    ReadAllValues<TKvDbaseFile>(State, Bench);
}

BENCHMARK(ReadParadox)->Unit(benchmark::kMillisecond);
BENCHMARK(ReadDbase)->Unit(benchmark::kMillisecond);

} // namespace

} // namespace kv
