// What a program is asked while a database keeps it waiting, and what becomes of its no.
#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>

#include "KvSqliteDatabase.h"
#include "KvSqliteTestTable.h"

namespace kv {

namespace {

using std::chrono::steady_clock;

/// Counts for ever unless something ends it.
const std::string EndlessInsert = "INSERT INTO orders (qty) WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL "
                                  "SELECT i + 1 FROM n) SELECT i FROM n";

/// A table in a transaction of a database whose program has all the time in the world until it is asked.
struct KvSqliteWait : testing::Test
{
    KvSqliteWait()
    {
        Database.DatabaseName = File.FileName();
        Database.BusyTimeout = 600'000;
        Table = Database.OpenTable("orders");
    }

    /// The program says yes so often, then no.
    void AllowQuestions(int Count)
    {
        Database.OnWait = [this, Count] { return ++Asked <= Count; };
    }
    void Append(int First, int Last)
    {
        for (int Id = First; Id <= Last; ++Id) {
            Table->RecordTag = Id;
            AppendRecord(*Table, {{"id", Id}, {"name", "n" + std::to_string(Id)}});
        }
    }
    template <class TAction> void ExpectCancelled(TAction Action)
    {
        const auto Begin = steady_clock::now();
        EXPECT_EQ(FactsOf(Action).Rule, erCancelled);
        EXPECT_LT(steady_clock::now() - Begin, std::chrono::seconds(100));
    }

    TTestFile File;
    TSQLiteDatabase Database;
    std::unique_ptr<TDataSet> Table;
    int Asked = 0;
};

TEST_F(KvSqliteWait, ProgramIsAskedWhileOthersHoldALock)
{
    TTestConnection Other(File.FileName());
    Other.Run("BEGIN IMMEDIATE");
    AllowQuestions(2);
    ExpectCancelled([&] { Database.StartTransaction(); });
    EXPECT_EQ(Asked, 3);
}

TEST_F(KvSqliteWait, ProgramIsAskedWhileAStatementWorks)
{
    AllowQuestions(5);
    EXPECT_EQ(MessageOf(File.FileName(), [&] { Database.Execute(EndlessInsert); }), "interrupted");
    EXPECT_EQ(Asked, 6);
    ExpectCancelled([&] { Database.Execute(EndlessInsert); });
}

TEST_F(KvSqliteWait, WhatTheProgramRaisesComesThrough)
{
    Database.OnWait = []() -> bool { throw std::runtime_error("stop"); };
    EXPECT_THROW(Database.Execute(EndlessInsert), std::runtime_error);
    Database.OnWait = {};
    Database.StartTransaction();
    Database.OnWait = []() -> bool { throw std::runtime_error("stop"); };
    EXPECT_THROW(Database.Commit(), std::runtime_error);
}

TEST_F(KvSqliteWait, ProgramIsAskedInTheThreadThatCalls)
{
    auto AskedIn = std::this_thread::get_id();
    Database.OnWait = [&] {
        AskedIn = std::this_thread::get_id();
        return false;
    };
    std::thread Worker([&] { ExpectCancelled([&] { Database.Execute(EndlessInsert); }); });
    const auto Wanted = Worker.get_id();
    Worker.join();
    EXPECT_EQ(AskedIn, Wanted);
}

TEST_F(KvSqliteWait, CommitThatIsRefusedLeavesTheTransactionOpen)
{
    Database.StartTransaction();
    Append(1, 3000);
    AllowQuestions(0);
    const auto Facts = FactsOf([&] { Database.Commit(); });
    EXPECT_EQ(Facts.Rule, erCancelled);
    EXPECT_EQ(Facts.FileName, File.FileName());
    EXPECT_TRUE(Database.InTransaction());
    EXPECT_EQ(MessageOf(File.FileName(), [&] { Database.Commit(); }), "interrupted");
    Database.OnWait = {};
    Database.Commit();
    EXPECT_EQ(File.Rows("SELECT count(*) FROM orders"), TRowTexts{"3000"});
}

TEST_F(KvSqliteWait, WithoutATransactionCommitAsksNothing)
{
    AllowQuestions(0);
    Database.Commit();
    EXPECT_EQ(Asked, 0);
}

TEST_F(KvSqliteWait, ClosingKeepsABatchThatTheProgramNoLongerWaitsFor)
{
    TSQLiteTable Batches;
    Batches.SetDatabase(&Database);
    Batches.TableName = "orders";
    Batches.CommitEvery = 100;
    Batches.Open();
    AppendRecord(Batches, {{"qty", 1}});
    AllowQuestions(0);
    Batches.Close();
    EXPECT_EQ(File.Rows("SELECT qty FROM orders"), TRowTexts{"1"});
}

TEST_F(KvSqliteWait, StoringChangesInOrderAsksToo)
{
    File.Run("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 20000) "
             "INSERT INTO orders (id) SELECT i FROM n");
    Database.StartTransaction();
    for (int Id = 20000; Id > 0; --Id) {
        ASSERT_TRUE(Table->Locate("id", Id));
        Table->Delete();
    }
    AllowQuestions(1);                              // that of the commit
    const auto Message = MessageOf(File.FileName(), [&] { Database.Commit(); });
    EXPECT_EQ(Message, "orders: interrupted; the transaction was rolled back and its 20000 changes are lost");
    Database.Rollback();
    EXPECT_EQ(File.Rows("SELECT count(*) FROM orders"), TRowTexts{"20000"});
}

// --- While the thread of appended records waits -----------------------------------------------------

/// Pages have to be written early, and somebody who reads keeps them from it.
struct KvSqliteWaitForThread : KvSqliteWait
{
    KvSqliteWaitForThread() : Reader(File.FileName())
    {
        Database.Execute("PRAGMA cache_size = 5");
        Database.StartTransaction();
        Reader.Run("BEGIN");
        Reader.Rows("SELECT count(*) FROM orders");
    }
    ~KvSqliteWaitForThread() override
    {
        Database.OnWait = {};
        Database.Rollback();
    }

    TTestConnection Reader;
};

TEST_F(KvSqliteWaitForThread, ProgramIsAskedWhenItAppendsOn)
{
    AllowQuestions(2);
    ExpectCancelled([&] { Append(1, 100'000); });
    EXPECT_GT(Asked, 2);
    Table->Cancel();
    Database.Rollback();
    Reader.Run("COMMIT");
    EXPECT_EQ(File.Rows("SELECT count(*) FROM orders"), TRowTexts{"0"});
}

TEST_F(KvSqliteWaitForThread, ProgramIsAskedWhenItFlushes)
{
    Append(1, 2000);
    AllowQuestions(0);
    Asked = 0;
    const auto Begin = steady_clock::now();
    try {
        Database.Flush();                           // may be through before the thread sees the no
    }
    catch (const Exception& Error) {
        EXPECT_EQ(Error.Facts.Rule, erCancelled);
    }
    EXPECT_GT(Asked, 0);
    EXPECT_LT(steady_clock::now() - Begin, std::chrono::seconds(100));
}

TEST_F(KvSqliteWaitForThread, AnswerThatChangesNothingIsNotKept)
{
    Append(1, 2000);
    Database.OnWait = [this]() -> bool {
        if (++Asked == 1)
            Reader.Run("COMMIT");                   // the thread goes on at once
        return true;
    };
    Database.Flush();
    Database.Commit();
    EXPECT_EQ(File.Rows("SELECT count(*) FROM orders"), TRowTexts{"2000"});
}

TEST_F(KvSqliteWaitForThread, RollbackDoesNotWaitForIt)
{
    Append(1, 2000);
    const auto Begin = steady_clock::now();
    Database.Rollback();
    EXPECT_LT(steady_clock::now() - Begin, std::chrono::seconds(100));
    EXPECT_FALSE(Database.InTransaction());
    Reader.Run("COMMIT");
    Database.StartTransaction();
    Append(1, 5000);
    Database.Commit();
    EXPECT_EQ(File.Rows("SELECT count(*) FROM orders"), TRowTexts{"5000"});
}

} // namespace

} // namespace kv
