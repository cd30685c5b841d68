// Random jobs beside a model of what they should do: the same rows in the same storage classes, the same
// figures. KV_MODEL_SEED repeats a run, or, with KV_MODEL_JOBS=1, a single job of it.
#include <gmock/gmock.h>

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <random>

#include "KvJobRun.h"
#include "KvModelCase.h"
#include "KvSqliteDatabase.h"
#include "KvSqliteQuery.h"
#include "KvTempFolder.h"

namespace kv {

using testing::ElementsAreArray;

namespace {

std::uint64_t NumberFrom(const char* Variable, std::uint64_t Default)
{
    const auto* const Text = std::getenv(Variable);
    return Text ? std::strtoull(Text, nullptr, 10) : Default;
}

/// As a literal of SQL.
std::string LiteralOf(const TModelValue& Value)
{
    if (!Value)
        return "NULL";
    const auto Text = Value->substr(Value->find(':') + 1);
    if (!Value->starts_with("text:"))
        return Text;
    std::string Quoted = "'";
    for (const char Each : Text)
        Quoted += Each == '\'' ? std::string("''") : std::string(1, Each);
    return Quoted + "'";
}

/// Notes the errors, for the message of a test that fails.
struct TNotingObserver : TJobObserver
{
    bool RecordFailed(const TJobError& Error) override
    {
        Errors += Error.Text() + "\n";
        return true;
    }
    std::string Errors;
};

class TModelShop
{
public:
    TModelShop()
    {
        RegisterSqliteDatabases();
        Database.DatabaseName = Folder / "shop.db";
        Database.CreateIfMissing = true;
    }

    /// One job, beside the model.
    void Check(const TModelCase& Case)
    {
        MakeTable(Case.Table);
        auto Expected = Case.Table;
        const auto Figures = RunModel(Expected, Case.Job);
        const bool IsStopped = Case.StopAfter && Figures.Failed > *Case.StopAfter;
        const bool IsNothing = Case.Job.Mode == imCopy && Figures.Added == 0;
        const bool IsKept = !Case.IsDryRun && !IsStopped && !IsNothing;

        const auto Outcome = Import(Case);
        SCOPED_TRACE(Observer.Errors);
        EXPECT_EQ(Outcome.Stopped, IsStopped);
        EXPECT_EQ(Outcome.Complete, IsKept);
        EXPECT_EQ(Outcome.Result, IsStopped || IsNothing ? joFailed
                                  : Figures.Failed > 0   ? joRecordErrors
                                                         : joDone);
        if (!IsStopped)
            CheckFigures(Outcome.Figures, Figures);
        EXPECT_THAT(Rows(Case.Table), ElementsAreArray(TextsOf(IsKept ? Expected : Case.Table)));
    }

private:
    void MakeTable(const TModelTable& Table)
    {
        Database.Execute("DROP TABLE IF EXISTS orders; " + Table.Declaration());
        for (const auto& Row : Table.Rows) {
            std::string Values;
            for (const auto& Value : Row)
                Values += (Values.empty() ? "" : ", ") + LiteralOf(Value);
            Database.Execute("INSERT INTO orders VALUES (" + Values + ")");
        }
        Database.Close();
    }

    TJobOutcome Import(const TModelCase& Case)
    {
        TJobSettings Job;
        Job.Source.FileName = Folder.Write(NameOf(Case.File), Case.FileBytes());
        Job.Destination = {.Url = Folder / "shop.db", .Table = "orders"};
        Job.Plan.Mode = Case.Job.Mode;
        for (const int Key : Case.Table.Keys)
            Job.Plan.Keys.push_back(Case.Table.Columns[static_cast<std::size_t>(Key)].Name);
        Job.Run = {.Batch = Case.Batch, .DryRun = Case.IsDryRun, .StopAfter = Case.StopAfter};
        Observer.Errors.clear();
        TJobRun Run(Job, Observer);
        Run.Prepare();
        return Run.Execute();
    }

    static void CheckFigures(const TJobFigures& Is, const TModelFigures& Expected)
    {
        EXPECT_EQ(Is.Read, Expected.Read);
        EXPECT_EQ(Is.Added, Expected.Added);
        EXPECT_EQ(Is.Updated, Expected.Updated);
        EXPECT_EQ(Is.Deleted, Expected.Deleted);
        EXPECT_EQ(Is.Failed, Expected.Failed);
        EXPECT_EQ(Is.NotFound, Expected.NotFound);
        EXPECT_EQ(Is.Refused, 0);
    }

    std::vector<std::string> Rows(const TModelTable& Table)
    {
        TSQLiteQuery Query;
        Query.DatabaseName = Folder / "shop.db";
        Query.SQL.SetText(Table.Query());
        std::vector<std::string> Texts;
        for (Query.Open(); !Query.Eof(); Query.Next())
            Texts.push_back(Query.Fields(0).AsString());
        std::ranges::sort(Texts);
        return Texts;
    }
    static std::vector<std::string> TextsOf(const TModelTable& Table)
    {
        std::vector<std::string> Texts;
        for (const auto& Row : Table.Rows)
            Texts.push_back(RowText(Row));
        std::ranges::sort(Texts);
        return Texts;
    }

    const TTempFolder Folder;
    TSQLiteDatabase Database;
    TNotingObserver Observer;
};

constexpr std::uint64_t Parts = 10;                 // tests of one run, for those who run tests side by side

class KvImportModel : public testing::TestWithParam<std::uint64_t>
{
};

TEST_P(KvImportModel, AgreesWithRandomJobs)
{
    static const auto Drawn = std::random_device{}();
    const auto Seed = NumberFrom("KV_MODEL_SEED", std::uint64_t{Drawn} * 1000);
    const auto Jobs = NumberFrom("KV_MODEL_JOBS", 1000);
    TModelShop Shop;
    for (auto Job = GetParam(); Job < Jobs && !HasFailure(); Job += Parts) {
        const auto Case = MakeModelCase(Seed + Job);
        SCOPED_TRACE("KV_MODEL_SEED=" + std::to_string(Seed + Job) + " KV_MODEL_JOBS=1\n" + Case.Text());
        Shop.Check(Case);
    }
}

INSTANTIATE_TEST_SUITE_P(All, KvImportModel, testing::Range<std::uint64_t>(0, Parts));

} // namespace

} // namespace kv
