#include "KvSqliteConnection.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <stdexcept>
#include <string>
#include <thread>

#include <sys/wait.h>
#include <unistd.h>

#include "KvSqliteDatabase.h"
#include "KvSqliteTestTable.h"

namespace kv {

namespace {

std::string CountOf(TTestTable& Open)
{
    return Open.Rows("SELECT count(*) FROM orders").front();
}

TEST(KvSqliteConnection, EveryChangeIsPermanentByItself)
{
    TTestTable Open;
    AppendRecord(Open.Table, {{"name", "Ada"}});
    EXPECT_EQ(CountOf(Open), "1");
    EditRecord(Open.Table, {{"name", "Bob"}});
    EXPECT_EQ(Open.Rows(), TRowTexts{"1|Bob|NULL"});
    Open.Table.Delete();
    EXPECT_EQ(CountOf(Open), "0");
}

TEST(KvSqliteConnection, BatchesAreCommittedWhenFullAndAtTheEnd)
{
    TTestTable Open;
    Open.Table.CommitEvery = 3;
    TTexts Counts;
    for (int I = 0; I < 8; ++I) {
        AppendRecord(Open.Table, {{"qty", I}});
        Counts.push_back(CountOf(Open));
    }
    EXPECT_EQ(Counts, (TTexts{"0", "0", "3", "3", "3", "6", "6", "6"}));
    Open.Table.Commit();
    EXPECT_EQ(CountOf(Open), "8");
    AppendRecord(Open.Table, {{"qty", 9}});
    Open.Table.Close();
    EXPECT_EQ(CountOf(Open), "9");
}

TEST(KvSqliteConnection, PartialBatchSurvivesAnExceptionOfTheProgram)
{
    TTestFile File;
    try {
        TSQLiteTable Table;
        Table.DatabaseName = File.FileName();
        Table.TableName = "orders";
        Table.CommitEvery = 100;
        Table.Open();
        AppendRecord(Table, {{"name", "Ada"}});
        throw std::runtime_error("something else");
    }
    catch (const std::runtime_error&) {
    }
    EXPECT_EQ(File.Rows("SELECT name FROM orders"), TRowTexts{"Ada"});
}

TEST(KvSqliteConnection, TransactionOfTheProgramIsAllOrNothing)
{
    TTestTable Open;
    Open.Table.CommitEvery = 2;                     // has no say inside
    Open.Table.StartTransaction();
    for (int I = 0; I < 5; ++I)
        AppendRecord(Open.Table, {{"qty", I}});
    EXPECT_TRUE(Open.Table.InTransaction());
    EXPECT_EQ(CountOf(Open), "0");
    Open.Table.Rollback();
    EXPECT_EQ(Open.Table.RecordCount(), 0);
    Open.Table.StartTransaction();
    AppendRecord(Open.Table, {{"qty", 1}});
    Open.Table.Commit();
    EXPECT_FALSE(Open.Table.InTransaction());
    EXPECT_EQ(CountOf(Open), "1");
}

TEST(KvSqliteConnection, TransactionThatWasNotCommittedIsRolledBackAtClose)
{
    TTestTable Open;
    Open.Table.StartTransaction();
    AppendRecord(Open.Table, {{"qty", 1}});
    Open.Table.Close();
    EXPECT_EQ(CountOf(Open), "0");
}

TEST(KvSqliteConnection, TransactionsDoNotNest)
{
    TTestTable Open;
    Open.Table.StartTransaction();
    EXPECT_EQ(Open.MessageOf([&] { Open.Table.StartTransaction(); }), "a transaction is already active");
    Open.Table.Rollback();
    Open.Table.Rollback();                          // does nothing
    Open.Table.Commit();                            // neither
}

TEST(KvSqliteConnection, StartingATransactionCommitsTheBatchBeforeIt)
{
    TTestTable Open;
    Open.Table.CommitEvery = 100;
    AppendRecord(Open.Table, {{"qty", 1}});
    Open.Table.StartTransaction();
    AppendRecord(Open.Table, {{"qty", 2}});
    Open.Table.Rollback();
    EXPECT_EQ(Open.Rows("SELECT qty FROM orders"), TRowTexts{"1"});
}

TEST(KvSqliteConnection, TransactionsBySqlAreRespected)
{
    TTestFile File;
    TSQLiteDatabase Database;
    Database.DatabaseName = File.FileName();
    TSQLiteTable Table;
    Table.SetDatabase(&Database);
    Table.TableName = "orders";
    Table.CommitEvery = 2;
    Table.Open();
    Database.StartTransaction();
    AppendRecord(Table, {{"qty", 1}});
    Database.Execute("COMMIT");
    AppendRecord(Table, {{"qty", 2}});
    AppendRecord(Table, {{"qty", 3}});
    EXPECT_EQ(File.Rows("SELECT qty FROM orders"), (TRowTexts{"1", "2", "3"}));
    Database.Execute("BEGIN");
    for (int I = 4; I < 8; ++I)
        AppendRecord(Table, {{"qty", I}});
    EXPECT_EQ(File.Rows("SELECT count(*) FROM orders"), TRowTexts{"3"});
    Database.Execute("ROLLBACK");
    EXPECT_EQ(Table.RecordCount(), 3);
}

// --- Locks of others --------------------------------------------------------------------------------

/// Somebody else in the middle of writing.
class TWriter
{
public:
    explicit TWriter(const std::string& FileName) : Connection(FileName)
    {
        Connection.Run("BEGIN IMMEDIATE");
    }
    void Finish() { Connection.Run("ROLLBACK"); }

private:
    TTestConnection Connection;
};

/// Somebody else in the middle of reading, which keeps a commit waiting.
class TReader
{
public:
    explicit TReader(const std::string& FileName) : Connection(FileName)
    {
        Connection.Run("BEGIN");
        Connection.Rows("SELECT count(*) FROM orders");
    }
    void Finish() { Connection.Run("COMMIT"); }

private:
    TTestConnection Connection;
};

struct TSharedTable
{
    explicit TSharedTable(int BusyTimeout = 20)
    {
        Database.DatabaseName = File.FileName();
        Database.BusyTimeout = BusyTimeout;
        Table.SetDatabase(&Database);
        Table.TableName = "orders";
        Table.Open();
    }
    template <class TAction> std::string MessageOf(TAction Action)
    {
        return kv::MessageOf(File.FileName(), Action);
    }
    TRowTexts Rows() { return File.Rows("SELECT qty FROM orders ORDER BY id"); }

    TTestFile File;
    TSQLiteDatabase Database;
    TSQLiteTable Table;
};

constexpr const char* Locked = "the database is locked by another connection";

TEST(KvSqliteConnection, BusyDatabaseIsAnErrorAfterTheTimeout)
{
    TSharedTable Open(100);
    TWriter Other(Open.File.FileName());
    const auto Begin = std::chrono::steady_clock::now();
    EXPECT_EQ(Open.MessageOf([&] {
        AppendRecord(Open.Table, {{"qty", 1}});
    }),
              "orders: " + std::string(Locked));
    EXPECT_GE(std::chrono::steady_clock::now() - Begin, std::chrono::milliseconds(90));
    EXPECT_EQ(Open.MessageOf([&] { Open.Database.StartTransaction(); }), Locked);
    Other.Finish();
    Open.Table.Post();
    EXPECT_EQ(Open.Rows(), TRowTexts{"1"});
}

TEST(KvSqliteConnection, WaitingGoesOnUntilTheOtherIsDone)
{
    TSharedTable Open(10000);
    TWriter Other(Open.File.FileName());
    int Asked = 0;
    Open.Database.OnWait = [&] {
        if (++Asked == 3)
            Other.Finish();
        return true;
    };
    AppendRecord(Open.Table, {{"qty", 1}});
    EXPECT_EQ(Asked, 3);
    EXPECT_EQ(Open.Rows(), TRowTexts{"1"});
}

TEST(KvSqliteConnection, ProgramMayGiveUpWaiting)
{
    TSharedTable Open(60000);
    TWriter Other(Open.File.FileName());
    Open.Database.OnWait = [] { return false; };
    EXPECT_EQ(Open.MessageOf([&] {
        AppendRecord(Open.Table, {{"qty", 1}});
    }),
              "orders: " + std::string(Locked));
}

TEST(KvSqliteConnection, WhatIsRaisedWhileWaitingComesThrough)
{
    TSharedTable Open(60000);
    TWriter Other(Open.File.FileName());
    Open.Database.OnWait = []() -> bool { throw std::runtime_error("stop"); };
    EXPECT_THROW(AppendRecord(Open.Table, {{"qty", 1}}), std::runtime_error);
    Open.Database.OnWait = {};
    Other.Finish();
    Open.Table.Post();
    EXPECT_EQ(Open.Rows(), TRowTexts{"1"});
}

TEST(KvSqliteConnection, CommitThatHadToWaitCanBeTriedAgain)
{
    TSharedTable Open;
    Open.Database.StartTransaction();
    AppendRecord(Open.Table, {{"qty", 1}});
    TReader Other(Open.File.FileName());
    EXPECT_EQ(Open.MessageOf([&] { Open.Database.Commit(); }), Locked);
    EXPECT_TRUE(Open.Database.InTransaction());
    Other.Finish();
    Open.Database.Commit();
    EXPECT_EQ(Open.Rows(), TRowTexts{"1"});
}

TEST(KvSqliteConnection, BatchThatCannotBeCommittedGrowsOn)
{
    TSharedTable Open;
    Open.Table.CommitEvery = 2;
    AppendRecord(Open.Table, {{"qty", 1}});
    TReader Other(Open.File.FileName());
    for (int I = 2; I <= 5; ++I)
        AppendRecord(Open.Table, {{"qty", I}});
    EXPECT_EQ(Open.MessageOf([&] { Open.Table.Close(); }), Locked);
    EXPECT_TRUE(Open.Table.Active());
    Other.Finish();
    Open.Table.Close();
    EXPECT_EQ(Open.Rows(), (TRowTexts{"1", "2", "3", "4", "5"}));
}

TEST(KvSqliteConnection, DestructionRollsBackWhatCannotBeCommitted)
{
    TTestFile File;
    TReader* Other = nullptr;
    {
        TSQLiteDatabase Database;
        Database.DatabaseName = File.FileName();
        Database.BusyTimeout = 10;
        TSQLiteTable Table;
        Table.SetDatabase(&Database);
        Table.TableName = "orders";
        Table.CommitEvery = 100;
        Table.Open();
        AppendRecord(Table, {{"qty", 1}});
        Other = new TReader(File.FileName());
    }
    Other->Finish();
    delete Other;
    EXPECT_EQ(File.Rows("SELECT count(*) FROM orders"), TRowTexts{"0"});
}

// --- Transactions that SQLite ends ------------------------------------------------------------------

TEST(KvSqliteConnection, FullDiskIsToldWithWhatItTookAlong)
{
    TSharedTable Open;
    Open.Database.Execute("PRAGMA max_page_count = 40");
    Open.Database.Execute("PRAGMA cache_size = 5");
    Open.Database.StartTransaction();
    const TVariant Big(std::string(20, 'x'));
    std::string Message;
    int Added = 0;
    for (; Added < 100000 && Message.empty(); ++Added)
        Message = Open.MessageOf([&] { AppendRecord(Open.Table, {{"name", Big}}); });
    Open.Table.Cancel();
    if (Open.Database.InTransaction())
        EXPECT_EQ(Message, "orders: database or disk is full");
    else
        EXPECT_EQ(Message, "orders: database or disk is full; the transaction was rolled back and its " +
                               std::to_string(Added - 1) + " changes are lost");
    Open.Database.Rollback();
    EXPECT_EQ(Open.Table.RecordCount(), 0);
    AppendRecord(Open.Table, {{"qty", 1}});
    EXPECT_EQ(Open.Rows(), TRowTexts{"1"});
}

constexpr const char* Explosive = "CREATE TABLE orders (id INTEGER PRIMARY KEY, name TEXT, qty INTEGER);"
                                  "CREATE TRIGGER t BEFORE INSERT ON orders WHEN NEW.qty < 0"
                                  " BEGIN SELECT RAISE(ROLLBACK, 'out of stock'); END";

TEST(KvSqliteConnection, TransactionEndedByATriggerTakesNothingMoreUntilItIsEnded)
{
    TTestTable Open(Explosive);
    Open.Table.StartTransaction();
    AppendRecord(Open.Table, {{"qty", 1}});
    AppendRecord(Open.Table, {{"qty", 2}});
    EXPECT_EQ(Open.MessageOf([&] { AppendRecord(Open.Table, {{"qty", -1}}); }),
              "orders: out of stock; the transaction was rolled back and its 2 changes are lost");
    Open.Table.Cancel();
    EXPECT_EQ(Open.MessageOf([&] { AppendRecord(Open.Table, {{"qty", 3}}); }),
              "the transaction was rolled back; it must be ended before anything else is written");
    Open.Table.Cancel();
    EXPECT_EQ(Open.MessageOf([&] { Open.Table.Commit(); }),
              "there is nothing to commit: the transaction was rolled back and its 2 changes are lost");
    AppendRecord(Open.Table, {{"qty", 4}});
    EXPECT_EQ(Open.Rows("SELECT qty FROM orders"), TRowTexts{"4"});
}

TEST(KvSqliteConnection, ACheckTellsOfATransactionThatATriggerEnded)
{
    TSharedTable Open;
    Open.Database.Execute("CREATE TRIGGER t BEFORE INSERT ON orders WHEN NEW.qty < 0"
                          " BEGIN SELECT RAISE(ROLLBACK, 'out of stock'); END");
    Open.Database.StartTransaction();
    AppendRecord(Open.Table, {{"qty", 1}});
    EXPECT_EQ(Open.MessageOf([&] { Open.Database.CheckCommit(); }), "");
    EXPECT_NE(Open.MessageOf([&] { AppendRecord(Open.Table, {{"qty", -1}}); }), "");
    Open.Table.Cancel();
    const std::string Lost =
        "there is nothing to commit: the transaction was rolled back and its change is lost";
    EXPECT_EQ(Open.MessageOf([&] { Open.Database.CheckCommit(); }), Lost);
    EXPECT_EQ(Open.MessageOf([&] { Open.Database.Commit(); }), Lost);
}

TEST(KvSqliteConnection, BatchEndedByATriggerIsToldAndTheNextOneBegins)
{
    TTestTable Open(Explosive);
    Open.Table.CommitEvery = 3;
    for (int I = 1; I <= 4; ++I)
        AppendRecord(Open.Table, {{"qty", I}});
    EXPECT_EQ(Open.MessageOf([&] { AppendRecord(Open.Table, {{"qty", -1}}); }),
              "orders: out of stock; the transaction was rolled back and its change is lost");
    Open.Table.Cancel();
    AppendRecord(Open.Table, {{"qty", 5}});
    Open.Table.Close();
    EXPECT_EQ(Open.Rows("SELECT qty FROM orders"), (TRowTexts{"1", "2", "3", "5"}));
}

TEST(KvSqliteConnection, ConstraintsThatWaitForTheCommitLeaveTheTransactionOpen)
{
    TTestFile File("CREATE TABLE parent (k INT PRIMARY KEY);"
                   "CREATE TABLE orders (id INTEGER PRIMARY KEY, qty INT REFERENCES parent DEFERRABLE "
                   "INITIALLY DEFERRED)");
    TSQLiteDatabase Database;
    Database.DatabaseName = File.FileName();
    Database.Execute("PRAGMA foreign_keys = ON");
    TSQLiteTable Table;
    Table.SetDatabase(&Database);
    Table.TableName = "orders";
    Table.Open();
    Database.StartTransaction();
    AppendRecord(Table, {{"qty", 7}});
    EXPECT_EQ(MessageOf(File.FileName(), [&] { Database.CheckCommit(); }), "FOREIGN KEY constraint failed");
    EXPECT_EQ(MessageOf(File.FileName(), [&] { Database.Commit(); }), "FOREIGN KEY constraint failed");
    Database.Execute("INSERT INTO parent VALUES (7)");
    Database.CheckCommit();
    EXPECT_TRUE(Database.InTransaction());
    Database.Commit();
    EXPECT_EQ(File.Rows("SELECT qty FROM orders"), TRowTexts{"7"});
}

TEST(KvSqliteConnection, ErrorOfACommitNamesTheFirstRecordThatItMayConcern)
{
    TTestFile File("CREATE TABLE parent (k INT PRIMARY KEY); INSERT INTO parent VALUES (1);"
                   "CREATE TABLE orders (id INTEGER PRIMARY KEY, qty INT REFERENCES parent DEFERRABLE "
                   "INITIALLY DEFERRED)");
    TSQLiteDatabase Database;
    Database.DatabaseName = File.FileName();
    Database.Execute("PRAGMA foreign_keys = ON");
    const auto Table = Database.OpenTable("orders");
    const auto Append = [&](std::int64_t First, int Qty) {
        for (Table->RecordTag = First; Table->RecordTag < First + 5; ++Table->RecordTag)
            AppendRecord(*Table, {{"qty", Qty}});
    };
    Database.StartTransaction();
    Append(1, 1);
    Database.Commit();
    Database.StartTransaction();
    Append(6, 7);
    const auto Facts = FactsOf([&] { Database.Commit(); });
    EXPECT_EQ(Facts.Rule, erForeignKey);
    EXPECT_EQ(Facts.Record, 6);
    Database.Rollback();
    Append(20, 1);                                  // each in a transaction of its own
    Database.Execute("BEGIN");
    Append(30, 7);
    EXPECT_EQ(FactsOf([&] { Database.Commit(); }).Record, 30);
    Database.Rollback();
}

/// A child process is killed in the middle of writing, at another instant each time.
TEST(KvSqliteConnection, KilledProgramLeavesWhatWasCommitted)
{
    for (const int Milliseconds : {1, 3, 7, 15, 30, 60}) {
        TTestFile File;
        const auto Child = fork();
        if (Child == 0) {
            TSQLiteTable Table;
            Table.DatabaseName = File.FileName();
            Table.TableName = "orders";
            Table.CommitEvery = 10;
            Table.Open();
            for (int I = 1;; ++I)
                AppendRecord(Table, {{"name", "n" + std::to_string(I)}, {"qty", I}});
        }
        usleep(static_cast<useconds_t>(Milliseconds) * 1000);
        kill(Child, SIGKILL);
        waitpid(Child, nullptr, 0);
        EXPECT_EQ(File.Rows("PRAGMA integrity_check"), TRowTexts{"ok"});
        EXPECT_EQ(File.Rows("SELECT count(*) % 10, count(*) = coalesce(max(qty), 0) FROM orders"),
                  TRowTexts{"0|1"});
    }
}

// --- Patience ---------------------------------------------------------------------------------------

/// Fills more pages than `Table` has memory for, until somebody complains; the records that were taken.
int AppendUntilRefused(TDataSet& Table, TKvErrorFacts& Facts)
{
    const std::string Long(1000, 'x');
    for (int Id = 1; Id <= 200'000; ++Id) {
        try {
            AppendRecord(Table, {{"id", Id}, {"name", Long}});
        }
        catch (const EDatabaseError& Error) {
            Facts = Error.Facts;
            return Id - 1;
        }
    }
    return 200'000;
}

TEST(KvSqliteConnection, AReaderIsWaitedForOnceInATransaction)
{
    // One whose records the queue takes, and one that has a ground to refuse them.
    for (const char* const Check : {"", " CHECK (id >= 0)"}) {
        TTestFile File("CREATE TABLE orders (id INTEGER PRIMARY KEY" + std::string(Check) + ", name TEXT);" +
                       "INSERT INTO orders VALUES (0, 'x');");
        TTestConnection Reader(File.FileName());
        TSQLiteDatabase Database;
        Database.DatabaseName = File.FileName();
        Database.BusyTimeout = 300;
        Database.CacheSize = 256;
        const auto Table = Database.OpenTable("orders");
        Database.StartTransaction();
        Reader.Run("BEGIN; SELECT count(*) FROM orders");
        const auto Begin = std::chrono::steady_clock::now();
        TKvErrorFacts Facts;
        EXPECT_LT(AppendUntilRefused(*Table, Facts), 50'000);
        EXPECT_EQ(Facts.Rule, erBusy);
        EXPECT_LT(std::chrono::steady_clock::now() - Begin, std::chrono::seconds(20));
        Table->Cancel();
        Database.Rollback();
        EXPECT_EQ(Reader.Rows("SELECT count(*) FROM orders"), TRowTexts{"1"});
    }
}

TEST(KvSqliteConnection, WhoCancelsIsNotKeptWaitingForAReader)
{
    TTestFile File("CREATE TABLE orders (id INTEGER PRIMARY KEY, name TEXT);"
                   "INSERT INTO orders VALUES (0, 'x');");
    TTestConnection Reader(File.FileName());
    TSQLiteDatabase Database;
    Database.DatabaseName = File.FileName();
    Database.BusyTimeout = 600'000;
    Database.CacheSize = 256;
    const auto Table = Database.OpenTable("orders");
    Database.StartTransaction();
    Reader.Run("BEGIN; SELECT count(*) FROM orders");
    const std::string Long(1000, 'x');
    const auto Begin = std::chrono::steady_clock::now();
    const auto HasTime = [Begin] {
        return std::chrono::steady_clock::now() - Begin < std::chrono::milliseconds(300);
    };
    Database.OnWait = HasTime;
    for (int Id = 1; Id <= 100'000 && HasTime(); ++Id) {
        try {
            AppendRecord(*Table, {{"id", Id}, {"name", Long}});
        }
        catch (const EDatabaseError&) {
            Table->Cancel();
        }
    }
    Database.Rollback();
    EXPECT_LT(std::chrono::steady_clock::now() - Begin, std::chrono::seconds(10));
    EXPECT_EQ(Reader.Rows("SELECT count(*) FROM orders"), TRowTexts{"1"});
}

TEST(KvSqliteConnection, OthersMayWriteBetweenTwoBatches)
{
    TTestTable Open;
    Open.Table.CommitEvery = 2000;
    std::atomic<bool> Written = false;
    std::thread Writer([&] {
        TTestConnection Other(Open.File.FileName());
        sqlite3_busy_timeout(Other.Get(), 20'000);
        Other.Run("INSERT INTO orders (id, name) VALUES (-1, 'other')");
        Written = true;
    });
    const auto Begin = std::chrono::steady_clock::now();
    for (int Id = 1; !Written && std::chrono::steady_clock::now() - Begin < std::chrono::seconds(30); ++Id)
        AppendRecord(Open.Table, {{"id", Id}, {"name", "n"}});
    EXPECT_TRUE(Written);
    Writer.join();
}

} // namespace

} // namespace kv
