// Whatever a run meets, what it read equals what it added, updated, deleted, refused, failed on or did
// not find, and the destination holds what that says.
#include "KvTestRun.h"

#include <random>

namespace kv {

namespace {

constexpr int NameMax = 10;                         // characters of the field NAME

/// One record of the source, and what is to become of it.
struct TPlannedRecord
{
    int Id;
    std::string Name;
    bool IsNumber;                                  // its ID can be assigned
    bool Refused;                                   // by OnBeforeRecordEvent
    bool Posted;                                    // Post lets it through
};

struct TTally
{
    int Added = 0, Updated = 0, Deleted = 0, Refused = 0, Failed = 0, NotFound = 0;

    int Sum() const { return Added + Updated + Deleted + Refused + Failed + NotFound; }
    auto operator<=>(const TTally&) const = default;
};

std::ostream& operator<<(std::ostream& Out, const TTally& T)
{
    return Out << T.Added << " added, " << T.Updated << " updated, " << T.Deleted << " deleted, " << T.Refused
               << " refused, " << T.Failed << " failed, " << T.NotFound << " not found";
}

/// The rules of the five modes once more, over a plain list.
class TModel
{
public:
    TModel(TImportMode RunMode, std::vector<TPlannedRecord> Stored) : Mode(RunMode), Rows(std::move(Stored))
    {
        if (Mode == imCopy)
            Rows.clear();
    }

    void Take(const TPlannedRecord& Record)
    {
        const bool Fails = !Record.IsNumber || !Record.Posted || Record.Name.size() > NameMax;
        const auto Found = Mode == imAppend || Mode == imCopy || !Record.IsNumber
                               ? Rows.end()
                               : std::ranges::find(Rows, Record.Id, &TPlannedRecord::Id);
        if (Record.Refused)
            ++Tally.Refused;
        else if (Found == Rows.end() && (Mode == imUpdate || Mode == imDelete))
            ++Tally.NotFound;
        else if (Mode == imDelete)
            Delete(Found);
        else if (Fails)
            ++Tally.Failed;
        else if (Found == Rows.end())
            Add(Record);
        else
            Update(Found, Record);
    }

    std::vector<std::string> Texts() const
    {
        std::vector<std::string> Result;
        for (const auto& Row : Rows)
            Result.push_back(std::to_string(Row.Id) + ";" + Row.Name);
        return Result;
    }

    TTally Tally;

private:
    using TRow = std::vector<TPlannedRecord>::iterator;

    void Add(const TPlannedRecord& Record)
    {
        Rows.push_back(Record);
        ++Tally.Added;
    }
    void Update(TRow Row, const TPlannedRecord& Record)
    {
        *Row = Record;
        ++Tally.Updated;
    }
    void Delete(TRow Row)
    {
        Rows.erase(Row);
        ++Tally.Deleted;
    }

    const TImportMode Mode;
    std::vector<TPlannedRecord> Rows;
};

class TPlan
{
public:
    explicit TPlan(unsigned Seed) : Random(Seed) {}

    int Below(int Limit) { return static_cast<int>(Random() % static_cast<unsigned>(Limit)); }
    std::vector<TPlannedRecord> Records(int Count)
    {
        std::vector<TPlannedRecord> Result;
        for (int I = 0; I < Count; ++I)
            Result.push_back({.Id = Below(20),
                              .Name = std::string(1 + static_cast<std::size_t>(Below(NameMax + 2)), 'x'),
                              .IsNumber = Below(10) > 0,
                              .Refused = Below(10) == 0,
                              .Posted = Below(10) > 0});
        return Result;
    }

private:
    std::mt19937 Random;
};

/// A table that refuses to store the records planned so.
class TPickyDataSet final : public TMemoryDataSet
{
public:
    bool Posted = true;

protected:
    void InternalInsert(const TRecordBuffer& Written) override
    {
        Check();
        TMemoryDataSet::InternalInsert(Written);
    }
    void InternalUpdate(const TRecordBuffer& Written) override
    {
        Check();
        TMemoryDataSet::InternalUpdate(Written);
    }

private:
    void Check() const
    {
        if (!Posted)
            throw EDatabaseError("refused");
    }
};

struct KvibaseBalance : testing::TestWithParam<TImportMode>
{
    KvibaseBalance()
    {
        Table.SetFieldDefs({{.Name = "ID", .DataType = ftInteger},
                            {.Name = "NAME", .DataType = ftString, .Size = NameMax}});
        Table.Open();
        Import.SetDataSet(&Table);
        Import.SetMappings({"ID=Field1", "NAME=Field2"});
        Import.DatasetKeys = "ID";
        Import.Mode = GetParam();
        Import.AnimatedStatus = false;
        Import.Options = {};
    }

    void Store(const std::vector<TPlannedRecord>& Stored)
    {
        for (const auto& Row : Stored) {
            Table.Append();
            Table.Fields(0).SetValue(Row.Id);
            Table.Fields(1).SetValue(Row.Name);
            Table.Post();
        }
    }

    /// Runs over `Given` and counts what the events and the statistic tell.
    TTally RunOver(const std::vector<TPlannedRecord>& Given)
    {
        TTally Told;
        Import.Rows.clear();
        for (const auto& Record : Given)
            Import.Rows.push_back({Record.IsNumber ? TVariant(Record.Id) : TVariant("no number"),
                                   Record.Name});
        const auto Current = [&]() -> const TPlannedRecord& {
            return Given[static_cast<std::size_t>(Import.Statistic.TotalImported - 1)];
        };
        Import.OnBeforeRecordEvent = [&](TKvImportBaseComponent&, const std::string&, TVariant&,
                                         bool& Accept) {
            Accept = !Current().Refused;
            Told.Refused += Current().Refused;
            Table.Posted = Current().Posted;
        };
        Import.OnAfterRecordEvent = [&](TKvImportBaseComponent& Sender, bool&) {
            Told.NotFound += Sender.Statistic.LastAction == iaUnknown && !Current().Refused;
        };
        Import.OnErrorEvent = [](TKvImportBaseComponent&, const Exception&, bool&) {};
        Import.Execute();
        const auto& S = Import.Statistic;
        EXPECT_EQ(S.Result, irExecuted) << Import.ErrorMessage();
        EXPECT_EQ(S.TotalImported, std::ssize(Given));
        Told.Added = S.TotalAdded;
        Told.Updated = S.TotalUpdated;
        Told.Deleted = S.TotalDeleted;
        Told.Failed = S.TotalErrors;
        return Told;
    }

    TCallLog Log;
    TPickyDataSet Table;
    TScriptedImport Import{Log};
};

TEST_P(KvibaseBalance, NothingIsLostInSilence)
{
    const auto FirstSeed = std::random_device{}();
    for (unsigned Seed = FirstSeed; Seed != FirstSeed + 50; ++Seed) {
        SCOPED_TRACE("seed " + std::to_string(Seed));
        TPlan Plan(Seed);
        auto Stored = Plan.Records(Plan.Below(20));
        for (auto& Row : Stored)
            Row.Name.resize(1);
        const auto Given = Plan.Records(Plan.Below(60));
        TModel Model(GetParam(), Stored);
        for (const auto& Record : Given)
            Model.Take(Record);

        for (Table.First(); !Table.Eof();)
            Table.Delete();
        Table.Posted = true;
        Store(Stored);
        const auto Told = RunOver(Given);
        ASSERT_EQ(Told, Model.Tally);
        ASSERT_EQ(Told.Sum(), std::ssize(Given));
        ASSERT_EQ(RecordTexts(Table), Model.Texts());
    }
}

std::string NameOfMode(const testing::TestParamInfo<TImportMode>& Info)
{
    static constexpr const char* Names[] = {"Append", "Update", "AppendUpdate", "Delete", "Copy"};
    return Names[Info.param];
}

INSTANTIATE_TEST_SUITE_P(, KvibaseBalance,
                         testing::Values(imAppend, imUpdate, imAppendUpdate, imDelete, imCopy),
                         NameOfMode);

} // namespace

} // namespace kv
