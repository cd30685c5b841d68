// What the engine, the conversion and the base of the datasets cost a record of eight texts: two integers,
// a date, an amount, a boolean and three texts.
#include "Kvibase.h"

#include <array>
#include <string_view>

#include <benchmark/benchmark.h>

#include "KvMemoryDataSet.h"

namespace kv {

namespace {

std::vector<TFieldDef> OrderFields()
{
    return {{.Name = "ID", .DataType = ftInteger, .Required = true},
            {.Name = "QTY", .DataType = ftInteger},
            {.Name = "DUE", .DataType = ftDate},
            {.Name = "NET", .DataType = ftBCD},
            {.Name = "PAID", .DataType = ftBoolean},
            {.Name = "NAME", .DataType = ftString, .Size = 60},
            {.Name = "CITY", .DataType = ftString, .Size = 60},
            {.Name = "NOTE", .DataType = ftString, .Size = 200}};
}

/// Converts and checks every record and keeps none.
class TNullDataSet final : public TDataSet
{
public:
    ~TNullDataSet() override { Close(); }

protected:
    void InternalOpen() override
    {
        for (auto& Def : OrderFields())
            AddField(std::move(Def));
    }
    void InternalClose() override {}
    void InternalFirst() override {}
    void InternalNext() override {}
    bool InternalEof() override { return true; }
    int InternalRecordCount() override { return 0; }
    TVariant InternalGetValue(const TField&) override { return Null; }
    void InternalInsert(const TRecordBuffer& Written) override
    {
        benchmark::DoNotOptimize(Written.Values.data());
    }
    void InternalUpdate(const TRecordBuffer&) override {}
    void InternalDelete() override {}
    bool InternalLocate(std::span<TField* const>, std::span<const TVariant>, TLocateOptions) override
    {
        return false;
    }
};

/// Lends the same few records over and over. Columns are the digits 0 to 7.
class TLendingImport final : public TKvImportBaseComponent
{
public:
    int Records = 0;

protected:
    void GoFirst() override { Row = 0; }
    bool NeedMore() override { return Row < Records; }
    void GoNext() override { ++Row; }
    TVariant GetFieldValue(const TVariant& Source) override
    {
        static constexpr std::array<std::array<std::string_view, 8>, 4> Rows = {{
            {"100001", "3", "12/31/2002", "1234.50", "True", "Ada Lovelace", "London",
             "deliver to the back door"},
            {"100002", "12", "1/2/2003", "7.95", "False", "Charles Babbage", "Walworth",
             "wants it by steam, and by Monday at the latest"},
            {"100003", "150", "02/28/2003", "19999.99", "True", "George Boole", "Lincoln", ""},
            {"100004", "1", "10/10/2003", "0.10", "False", "Augustus De Morgan", "Madurai", "x"},
        }};
        return TVariant::Borrow(
            Rows[static_cast<std::size_t>(Row % 4)][static_cast<std::size_t>(Source.Text()[0] - '0')]);
    }

private:
    int Row = 0;
};

constexpr int RecordsPerRun = 10000;

void RunInto(benchmark::State& State, TDataSet& Table, const std::function<void()>& Prepare)
{
    TLendingImport Import;
    Import.SetDataSet(&Table);
    Import.SetMappings({"ID=0", "QTY=1", "DUE=2", "NET=3", "PAID=4", "NAME=5", "CITY=6", "NOTE=7"});
    Import.AnimatedStatus = false;
    Import.Records = RecordsPerRun;
    Import.DataFormats.DateSeparator = '/';
    Import.DataFormats.DecimalSeparator = '.';
    Import.DataFormats.ThousandSeparator = ',';
    for (auto _ : State) {
        State.PauseTiming();
        Prepare();
        State.ResumeTiming();
        Import.Execute();
        if (Import.Statistic.TotalAdded != RecordsPerRun || Import.Statistic.TotalErrors != 0)
            State.SkipWithError("records were lost");
    }
    State.SetItemsProcessed(State.iterations() * RecordsPerRun);
    State.counters["ns/record"] = benchmark::Counter(
        static_cast<double>(State.iterations()) * RecordsPerRun / 1e9,
        benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void ConvertRecords(benchmark::State& State)
{
    TNullDataSet Table;
    Table.Open();
    RunInto(State, Table, [] {});
}
BENCHMARK(ConvertRecords);

void StoreRecordsInMemory(benchmark::State& State)
{
    TMemoryDataSet Table;
    RunInto(State, Table, [&] {
        Table.SetFieldDefs(OrderFields());
        Table.Open();
    });
}
BENCHMARK(StoreRecordsInMemory);

} // namespace

} // namespace kv
