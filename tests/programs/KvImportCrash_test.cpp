#include "KvShop.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <random>
#include <string>
#include <thread>

namespace kv {

namespace {

using TClock = std::chrono::steady_clock;

constexpr int Records = 20000;

/// How often a test ends a program: more in long runs, by the environment.
int Kills()
{
    const char* const Given = std::getenv("KV_KILLS");
    return Given ? std::atoi(Given) : 15;
}

unsigned Seed()
{
    const char* const Given = std::getenv("KV_SEED");
    return Given ? static_cast<unsigned>(std::strtoul(Given, nullptr, 10)) : std::random_device()();
}

/// A shop whose table holds every second order of the file, with an old text.
class KvImportCrash : public testing::Test
{
protected:
    KvImportCrash()
    {
        std::string Text = "ID,CITY,NOTE\n";
        for (int I = 1; I <= Records; ++I)
            Text += std::to_string(I) + ",City " + std::to_string(I) + ",new\n";
        Shop.Folder.Write("orders.csv", Text);
        Fill();
    }

    void Fill() const
    {
        Shop.Ask("DELETE FROM orders; INSERT INTO orders (ID, CITY, NOTE) "
                 "WITH RECURSIVE n(i) AS (SELECT 2 UNION ALL "
                 "SELECT i + 2 FROM n WHERE i < " + std::to_string(Records) +
                 ") SELECT i, 'old', 'old' FROM n");
    }

    TArguments Arguments(const TArguments& More) const
    {
        TArguments All{"import", Shop.Folder / "orders.csv", "--to", Shop.Database(), "--table", "orders",
                       "--mode",
                       "append-update", "--cache-size", "100"}; // a small cache writes before the commit
        All.insert(All.end(), More.begin(), More.end());
        return All;
    }

    /// Lets the program live for a random part of the time that a whole run takes.
    void KillAtRandom(std::mt19937& Random, const TArguments& More)
    {
        if (WholeRun == TClock::duration::zero()) {
            const auto Begin = TClock::now();
            EXPECT_EQ(RunKvImport(Shop.Folder, Arguments(More)).Status, 0);
            WholeRun = TClock::now() - Begin;
            Fill();
        }
        TRunningProgram Program(Shop.Folder, KV_PROGRAM, Arguments(More));
        std::this_thread::sleep_for(WholeRun * std::uniform_real_distribution(0.0, 1.1)(Random));
        Program.Signal(SIGKILL);
        Program.Wait();
    }

    /// Records of the file up to which the table is as after the import; -1 when it is nothing of the kind.
    int ImportedUpTo() const
    {
        const auto New = std::stoi(Shop.Ask("SELECT count(*) FROM orders WHERE NOTE = 'new'"));
        const auto IsWhole = Shop.Ask("SELECT count(*) FROM orders WHERE NOTE = 'new' AND ID <= " +
                                      std::to_string(New)) ==
                             std::to_string(New);
        const auto OldOnes = Shop.Ask("SELECT count(*) FROM orders WHERE NOTE = 'old'") ==
                             std::to_string(Records / 2 - New / 2);
        return IsWhole && OldOnes && Shop.Ask("PRAGMA integrity_check") == "ok" ? New : -1;
    }

    const TShop Shop;
    TClock::duration WholeRun{};
};

TEST_F(KvImportCrash, LeavesAllOrNothing)
{
    const auto First = Seed();
    SCOPED_TRACE("KV_SEED=" + std::to_string(First));
    std::mt19937 Random(First);
    int Nothing = 0, All = 0;
    for (int I = 0; I < Kills(); ++I) {
        KillAtRandom(Random, {});
        const int UpTo = ImportedUpTo();
        ASSERT_TRUE(UpTo == 0 || UpTo == Records) << UpTo;
        ++(UpTo == 0 ? Nothing : All);
        if (UpTo != 0)
            Fill();
    }
    RecordProperty("nothing", Nothing);
    RecordProperty("all", All);
}

TEST_F(KvImportCrash, LeavesWholeBatches)
{
    const auto First = Seed();
    SCOPED_TRACE("KV_SEED=" + std::to_string(First));
    std::mt19937 Random(First);
    for (int I = 0; I < Kills(); ++I) {
        KillAtRandom(Random, {"--batch", "1000"});
        const int UpTo = ImportedUpTo();
        ASSERT_TRUE(UpTo >= 0 && UpTo % 1000 == 0) << UpTo;
        Fill();
    }
}

TEST_F(KvImportCrash, CanBeRunAgain)
{
    std::mt19937 Random(Seed());
    KillAtRandom(Random, {"--batch", "1000"});
    EXPECT_EQ(RunKvImport(Shop.Folder, Arguments({})).Status, 0);
    EXPECT_EQ(ImportedUpTo(), Records);
}

} // namespace

} // namespace kv
