// KvBenchImport - importing a file of orders into memory, for every source that reads one.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>
#include <unistd.h>

#include "KvBenchFiles.h"
#include "KvFormatSettings.h"
#include "KvMemoryDataSet.h"

namespace kv::bench {

/// A file of orders, made once and removed at the end.
class TOrdersFile
{
public:
    TOrdersFile(TOrderLines Lines, std::uint64_t Rows)
        : Name(std::filesystem::temp_directory_path() /
               ("kvbench-" + std::to_string(Lines) + "-" + std::to_string(getpid())))
    {
        WriteOrders(Name, Lines, Rows);
    }
    TOrdersFile(const TOrdersFile&) = delete;
    TOrdersFile& operator=(const TOrdersFile&) = delete;
    ~TOrdersFile() { std::filesystem::remove(Name); }

    std::string FileName() const { return Name.string(); }
    std::int64_t Size() const { return static_cast<std::int64_t>(std::filesystem::file_size(Name)); }

private:
    const std::filesystem::path Name;
};

/// The columns of the orders with the types that they have in a table.
inline std::vector<TFieldDef> OrderFields()
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

/// Times imports of `File`, conversion of eight typed values a row included. `Set` prepares the component
/// beyond what all sources need.
template <class TImport, class TSet>
void ImportOrders(benchmark::State& State, const TOrdersFile& File, std::int64_t Rows, TSet Set)
{
    FormatSettings().ShortDateFormat = "yyyy-MM-dd";
    TMemoryDataSet DataSet;
    for (auto _ : State) {
        State.PauseTiming();                        // the rows of the round before are given back here
        DataSet.SetFieldDefs(OrderFields());
        DataSet.Open();
        State.ResumeTiming();
        TImport Import;
        Import.SetDataSet(&DataSet);
        Import.SourceFileName = File.FileName();
        Import.AnimatedStatus = false;
        Import.Options = {};
        Import.DataFormats.DateSeparator = '-';
        Set(Import);
        Import.Execute();
        if (Import.Statistic.TotalAdded != Rows || Import.Statistic.TotalErrors != 0)
            State.SkipWithError("not every row was added");
    }
    State.SetBytesProcessed(State.iterations() * File.Size());
    State.SetItemsProcessed(State.iterations() * Rows);
}

} // namespace kv::bench
