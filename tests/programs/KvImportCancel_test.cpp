#include "KvShop.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sqlite3.h>
#include <sys/stat.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <thread>

namespace kv {

namespace {

using testing::HasSubstr;
using namespace std::chrono_literals;
using TClock = std::chrono::steady_clock;

// The promise is 200 ms; builds with sanitizers on a busy machine get more.
constexpr auto Patience = 2s;

std::string ManyOrders(int Count)
{
    std::string Text = "ID,CITY,ORDERED,AMOUNT,QTY,PAID,NOTE\n";
    for (int I = 1; I <= Count; ++I)
        Text += std::to_string(I) + ",\"City, the " + std::to_string(I) + "\",2024-02-29,12.50,3,True,note\n";
    return Text;
}

class KvImportCancel : public testing::Test
{
protected:
    TArguments ImportOf(const std::string& File, const TArguments& More = {}) const
    {
        TArguments Arguments{"import", File, "--to", Shop.Database(), "--table", "orders"};
        Arguments.insert(Arguments.end(), More.begin(), More.end());
        return Arguments;
    }

    /// Until the first record is being written, and a little longer.
    void WaitForWriting() const
    {
        const auto End = TClock::now() + 20s;
        while (!std::filesystem::exists(Shop.Database() + "-journal") && TClock::now() < End)
            std::this_thread::sleep_for(1ms);
        std::this_thread::sleep_for(50ms);
    }

    /// Sends the signal and expects the end in time.
    static TProgramResult Cancel(TRunningProgram& Program, int Signal = SIGINT)
    {
        EXPECT_TRUE(Program.IsRunning());
        const auto Begin = TClock::now();
        Program.Signal(Signal);
        auto Result = Program.Wait();
        const auto Took = std::chrono::duration_cast<std::chrono::milliseconds>(TClock::now() - Begin);
        EXPECT_LT(Took, Patience);
        testing::Test::RecordProperty("milliseconds", static_cast<int>(Took.count()));
        EXPECT_EQ(Result.Status, 130);
        return Result;
    }

    const TShop Shop;
};

TEST_F(KvImportCancel, WhileAPipeGivesNothing)
{
    const auto Pipe = Shop.Folder / "pipe";
    ASSERT_EQ(mkfifo(Pipe.c_str(), 0600), 0);
    TRunningProgram Program(Shop.Folder, KV_PROGRAM, ImportOf(Pipe));
    std::this_thread::sleep_for(300ms);
    EXPECT_THAT(Cancel(Program).Err, HasSubstr("Cancelled: nothing was imported (rolled back)."));
    EXPECT_EQ(Shop.Count(), 0);
}

TEST_F(KvImportCancel, WhileAPipeHasNotGivenItsEnd)
{
    const auto Pipe = Shop.Folder / "pipe";
    ASSERT_EQ(mkfifo(Pipe.c_str(), 0600), 0);
    TRunningProgram Program(Shop.Folder, KV_PROGRAM, ImportOf(Pipe, {"--delimiter", "comma"}));
    std::ofstream Writer(Pipe);
    Writer << ManyOrders(10) << std::flush;
    std::this_thread::sleep_for(300ms);
    Cancel(Program);
    EXPECT_EQ(Shop.Count(), 0);
}

TEST_F(KvImportCancel, WhileRecordsAreStored)
{
    const auto File = Shop.Folder.Write("orders.csv", ManyOrders(300000));
    TRunningProgram Program(Shop.Folder, KV_PROGRAM, ImportOf(File));
    WaitForWriting();
    const auto Result = Cancel(Program);
    EXPECT_THAT(Result.Out, HasSubstr("Cancelled: nothing was imported (rolled back)."));
    EXPECT_EQ(Shop.Count(), 0);
    EXPECT_EQ(Shop.Ask("PRAGMA integrity_check"), "ok");
}

TEST_F(KvImportCancel, KeepsWholeBatches)
{
    const auto File = Shop.Folder.Write("orders.csv", ManyOrders(300000));
    TRunningProgram Program(Shop.Folder, KV_PROGRAM, ImportOf(File, {"--batch", "500", "--json"}));
    WaitForWriting();
    const auto Run = Cancel(Program, SIGTERM).Json();
    EXPECT_EQ(Run["result"], "cancelled");
    EXPECT_EQ(Run["exitStatus"], 130);
    EXPECT_EQ(Run["keptRecords"], Shop.Count());
    EXPECT_EQ(Shop.Count() % 500, 0);
}

TEST_F(KvImportCancel, WhileAnotherProgramHoldsTheDatabase)
{
    sqlite3* Other = nullptr;
    ASSERT_EQ(sqlite3_open(Shop.Database().c_str(), &Other), SQLITE_OK);
    ASSERT_EQ(sqlite3_exec(Other, "BEGIN EXCLUSIVE", nullptr, nullptr, nullptr), SQLITE_OK);
    TRunningProgram Program(Shop.Folder, KV_PROGRAM,
                            ImportOf(Shop.Folder.Write("orders.csv", ManyOrders(3)),
                                     {"--busy-timeout", "60000"}));
    std::this_thread::sleep_for(500ms);
    EXPECT_THAT(Cancel(Program).Err, HasSubstr("Cancelled: nothing was imported (rolled back)."));
    sqlite3_close(Other);
    EXPECT_EQ(Shop.Count(), 0);
}

/// A table that takes long to empty, and to index.
void FillTable(const TShop& Shop)
{
    Shop.Ask("INSERT INTO orders (ID, CITY, NOTE) "
             "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 1000000) "
             "SELECT i, 'City ' || i, 'note ' || i FROM n");
}

TEST_F(KvImportCancel, WhileTheTableIsEmptied)
{
    FillTable(Shop);
    const auto File = Shop.Folder.Write("orders.csv", ManyOrders(300000));
    TRunningProgram Program(Shop.Folder, KV_PROGRAM, ImportOf(File, {"--mode", "copy", "--json"}));
    WaitForWriting();
    const auto Run = Cancel(Program).Json();
    EXPECT_EQ(Run["read"], Run["added"]);
    EXPECT_EQ(Run["failed"], 0);
    EXPECT_EQ(Shop.Count(), 1000000);
}

TEST_F(KvImportCancel, WhileAnIndexIsBuilt)
{
    FillTable(Shop);
    const auto File = Shop.Folder.Write("orders.csv", ManyOrders(300000));
    TRunningProgram Program(Shop.Folder, KV_PROGRAM,
                            ImportOf(File, {"--mode", "update", "--keys", "CITY", "--json"}));
    std::this_thread::sleep_for(500ms);
    const auto Run = Cancel(Program).Json();
    EXPECT_EQ(Run["failed"], 0);
    EXPECT_EQ(Run["message"], nullptr);
    EXPECT_EQ(Shop.Ask("SELECT count(*) FROM orders WHERE QTY IS NOT NULL"), "0");
}

TEST_F(KvImportCancel, ASecondSignalEndsTheProgramTheUsualWay)
{
    const auto File = Shop.Folder.Write("orders.csv", ManyOrders(300000));
    TRunningProgram Program(Shop.Folder, KV_PROGRAM, ImportOf(File));
    WaitForWriting();
    // Stopped, it cannot act on the first before the second.
    for (const int Signal : {SIGSTOP, SIGINT, SIGTERM, SIGCONT})
        Program.Signal(Signal);
    EXPECT_EQ(Program.Wait().Status, 128 + SIGTERM);
    EXPECT_EQ(Shop.Count(), 0);
    EXPECT_EQ(Shop.Ask("PRAGMA integrity_check"), "ok");
}

} // namespace

} // namespace kv
