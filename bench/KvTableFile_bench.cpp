// What reading every value of a table file of 500,000 orders costs, in each format.
#include "KvTableFile.h"

#include <benchmark/benchmark.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>

#include "KvBenchOrders.h"
#include "KvDbaseBuilder.h"
#include "KvDbaseFile.h"
#include "KvIsoDate.h"
#include "KvParadoxBuilder.h"
#include "KvParadoxFile.h"

namespace kv {

namespace {

constexpr std::int64_t Rows = 500'000;

std::string Digits(std::string_view Date)           // 2024-02-29
{
    return std::string(Date.substr(0, 4)).append(Date.substr(5, 2)).append(Date.substr(8, 2));
}

std::int32_t DayNumber(std::string_view Date)       // from the year 1
{
    return static_cast<std::int32_t>(TryIsoToDateTime(Date)->Days) + 693594;
}

std::string MakeParadox()
{
    TParadoxBuilder Builder;
    Builder.Field("ID", 'I').Field("CUSTOMER", 'A', 36).Field("CITY", 'A', 14).Field("ORDERED", 'D');
    Builder.Field("AMOUNT", '$').Field("QTY", 'S').Field("PAID", 'L').Field("NOTE", 'A', 40).CodePage(1252);
    bench::TOrder Order;
    for (std::int64_t Id = 1; Id <= Rows; ++Id) {
        bench::MakeOrder(static_cast<std::uint64_t>(Id), 0, Order);
        Builder.Record({ParadoxLong(static_cast<std::int32_t>(Id)), Order[1], Order[2], ParadoxLong(DayNumber(Order[3])),
                        ParadoxNumber(std::stod(Order[4])), ParadoxShort(std::stoi(Order[5])),
                        Order[6] == "True" ? "\x81" : "\x80", Order[7]});
    }
    return Builder.Build();
}

std::string MakeDbase()
{
    TDbaseBuilder Builder;
    Builder.Field("ID", 'N', 9).Field("CUSTOMER", 'C', 36).Field("CITY", 'C', 14).Field("ORDERED", 'D', 8);
    Builder.Field("AMOUNT", 'N', 8, 2).Field("QTY", 'N', 3).Field("PAID", 'L', 1).Field("NOTE", 'C', 40).Language(0x03);
    bench::TOrder Order;
    for (std::int64_t Id = 1; Id <= Rows; ++Id) {
        bench::MakeOrder(static_cast<std::uint64_t>(Id), 0, Order);
        Builder.Record({Order[0], Order[1], Order[2], Digits(Order[3]), Order[4], Order[5],
                        Order[6] == "True" ? "T" : "F", Order[7]});
    }
    return Builder.Build();
}

/// A table in a file that is gone with the program.
class TBenchFile
{
public:
    TBenchFile(const char* Name, const std::string& Bytes) : Path(std::filesystem::temp_directory_path() / Name)
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
    State.SetBytesProcessed(State.iterations() * static_cast<std::int64_t>(std::filesystem::file_size(Bench.Path)));
}

void ReadParadox(benchmark::State& State)
{
    static const TBenchFile Bench("kvtablefile_bench.db", MakeParadox());
    ReadAllValues<TKvParadoxFile>(State, Bench);
}

void ReadDbase(benchmark::State& State)
{
    static const TBenchFile Bench("kvtablefile_bench.dbf", MakeDbase());
    ReadAllValues<TKvDbaseFile>(State, Bench);
}

BENCHMARK(ReadParadox)->Unit(benchmark::kMillisecond);
BENCHMARK(ReadDbase)->Unit(benchmark::kMillisecond);

} // namespace

} // namespace kv
