#include "KvSqliteChangeQueue.h"

#include <gtest/gtest.h>

#include <limits>
#include <map>
#include <numeric>
#include <optional>
#include <ostream>
#include <random>
#include <string>
#include <vector>

#include "KvSqliteConnection.h"
#include "KvSqliteDatabase.h"
#include "KvSqliteTestTable.h"

namespace kv {

namespace {

constexpr int Enough = 3000;                        // changes: the first ones are never held back

/// A table of `Enough` records, 1 to `Enough`, and its connection in a transaction.
struct TFilledTable
{
    explicit TFilledTable(const std::string& Sql = OrdersTable) : File(Sql)
    {
        File.Run("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 3000) "
                 "INSERT INTO orders (id, name, qty) SELECT i, 'n' || i, 0 FROM n");
        Database.DatabaseName = File.FileName();
        Table.SetDatabase(&Database);
        Table.TableName = "orders";
        Table.Open();
        Database.StartTransaction();
    }

    void DeleteRecord(int Id)
    {
        ASSERT_TRUE(Table.Locate("id", Id));
        Table.Delete();
    }
    void UpdateRecord(int Id, int Qty)
    {
        ASSERT_TRUE(Table.Locate("id", Id));
        EditRecord(Table, {{"id", Id}, {"qty", Qty}});
    }
    void InsertRecord(int Id, int Qty)
    {
        ASSERT_FALSE(Table.Locate("id", Id));
        AppendRecord(Table, {{"id", Id}, {"name", "new"}, {"qty", Qty}});
    }

    int StoredChanges() { return sqlite3_total_changes(Database.Connection().Handle()); }
    template <class TAction> std::string MessageOf(TAction Action)
    {
        return kv::MessageOf(File.FileName(), Action);
    }
    std::string Row(const std::string& What)
    {
        const auto Rows = File.Rows("SELECT " + What + " FROM orders");
        return Rows.empty() ? "" : Rows.front();
    }

    TTestFile File;
    TSQLiteDatabase Database;
    TSQLiteTable Table;
};

TEST(KvSqliteRowidSet, ContainsWhatWasAddedUntilItIsCleared)
{
    TSQLiteRowidSet Rowids;
    EXPECT_FALSE(Rowids.Contains(0));
    constexpr auto Lowest = std::numeric_limits<std::int64_t>::min();
    for (const std::int64_t Rowid : {std::int64_t{0}, std::int64_t{-1}, Lowest})
        Rowids.Add(Rowid);
    for (std::int64_t Rowid = 1; Rowid <= Enough; ++Rowid)
        Rowids.Add(Rowid << 20);                    // alike in the lower bits
    EXPECT_TRUE(Rowids.Contains(0) && Rowids.Contains(-1) && Rowids.Contains(Lowest));
    for (std::int64_t Rowid = 1; Rowid <= Enough; ++Rowid) {
        EXPECT_TRUE(Rowids.Contains(Rowid << 20));
        EXPECT_FALSE(Rowids.Contains(Rowid));
    }
    Rowids.Clear();
    EXPECT_FALSE(Rowids.Contains(0));
}

TEST(KvSqliteChangeQueue, HoldsBackChangesOfRecordsThatWereLookedUp)
{
    TFilledTable Open;
    for (int Id = 1; Id <= 1000; ++Id)
        Open.DeleteRecord(Id);
    EXPECT_LT(Open.StoredChanges(), 100);
    for (int Id = 1001; Id <= 2000; ++Id)
        Open.UpdateRecord(Id, 7);
    for (int Id = Enough + 1000; Id > Enough; --Id)
        Open.InsertRecord(Id, 8);
    EXPECT_LT(Open.StoredChanges(), 100);
    Open.Database.Commit();
    EXPECT_EQ(Open.StoredChanges(), 3000);
    EXPECT_EQ(Open.Row("count(*), min(id), max(id), sum(qty = 7), sum(qty = 8)"), "3000|1001|4000|1000|1000");
    EXPECT_EQ(Open.Row("sum(qty = 7 AND name = 'n' || id), sum(qty = 8 AND name = 'new')"), "1000|1000");
}

TEST(KvSqliteChangeQueue, WhoeverReadsSeesAllThatWasPosted)
{
    TFilledTable Open;
    for (int Id = 1; Id <= 1000; ++Id)
        Open.UpdateRecord(Id, Id);
    EXPECT_EQ(Open.Table.FieldByName("qty").AsString(), "1000");
    EXPECT_EQ(Open.Table.FieldByName("name").AsString(), "n1000");
    for (int Id = 1; Id <= 1000; ++Id)
        Open.DeleteRecord(Id);
    EXPECT_EQ(Open.Table.FieldByName("id").AsString(), "1001"); // the record after the one that was deleted
    EXPECT_EQ(Open.Table.RecordCount(), 2000);
    for (int Id = 1001; Id <= 2000; ++Id)
        Open.DeleteRecord(Id);
    EXPECT_EQ(AllOf(Open.Table, "id").front(), "2001");
    for (int Id = 2001; Id <= 3000; ++Id)
        Open.DeleteRecord(Id);
    Open.Database.Execute("INSERT INTO orders SELECT count(*) + 1, 'count', 0 FROM orders");
    Open.Database.Commit();
    EXPECT_EQ(Open.Row("id, name"), "1|count");
}

TEST(KvSqliteChangeQueue, RecordThatWasDeletedIsNotFoundAgain)
{
    TFilledTable Open;
    for (int Id = 1; Id <= 1000; ++Id)
        Open.DeleteRecord(Id);
    EXPECT_FALSE(Open.Table.Locate("id", 1000));
    for (int Id = 1001; Id <= 2000; ++Id)
        Open.DeleteRecord(Id);
    Open.InsertRecord(2000, 5);
    Open.Database.Commit();
    EXPECT_EQ(Open.Row("count(*), min(id), max(qty)"), "1001|2000|5");
}

TEST(KvSqliteChangeQueue, RecordThatWasInsertedIsFoundAgain)
{
    TFilledTable Open;
    for (int Id = 5000; Id > 4000; --Id)
        Open.InsertRecord(Id, 1);
    ASSERT_TRUE(Open.Table.Locate("id", 4500));
    EXPECT_EQ(Open.Table.FieldByName("name").AsString(), "new");
    for (int Id = 5001; Id <= 6000; ++Id)
        Open.InsertRecord(Id, 1);
    Open.UpdateRecord(5500, 2);
    Open.Database.Commit();
    EXPECT_EQ(Open.Row("count(*), sum(qty)"), "5000|2001");
}

TEST(KvSqliteChangeQueue, LookingByAnotherColumnSeesAllThatWasPosted)
{
    TFilledTable Open;
    for (int Id = 1; Id <= 1000; ++Id)
        Open.UpdateRecord(Id, Id);
    ASSERT_TRUE(Open.Table.Locate("qty", 999));
    EXPECT_EQ(Open.Table.FieldByName("id").AsString(), "999");
}

TEST(KvSqliteChangeQueue, AnotherDatasetOnTheConnectionSeesThemToo)
{
    TFilledTable Open;
    TSQLiteTable Reader;
    Reader.SetDatabase(&Open.Database);
    Reader.TableName = "orders";
    Reader.Open();
    for (int Id = 1; Id <= 1000; ++Id)
        Open.DeleteRecord(Id);
    EXPECT_EQ(Reader.RecordCount(), 2000);
    for (int Id = 1001; Id <= 2000; ++Id)
        Open.DeleteRecord(Id);
    ASSERT_TRUE(Reader.Locate("id", 2001));
    Reader.Delete();
    EXPECT_FALSE(Open.Table.Locate("id", 2001));
    Open.Database.Commit();
    EXPECT_EQ(Open.Row("count(*)"), "999");
}

TEST(KvSqliteChangeQueue, AnswerThatIsOutOfDateIsNotTrusted)
{
    TFilledTable Open;
    TSQLiteTable Other;
    Other.SetDatabase(&Open.Database);
    Other.TableName = "orders";
    Other.Open();
    for (int Id = 1; Id <= 1000; ++Id)
        Open.DeleteRecord(Id);
    ASSERT_FALSE(Open.Table.Locate("id", 5000));
    AppendRecord(Other, {{"id", 5000}, {"name", "other"}});
    Open.Table.Append();
    EXPECT_EQ(Open.MessageOf([&] { PostValues(Open.Table, {{"id", 5000}, {"name", "ours"}}); }),
              "orders: UNIQUE constraint failed: orders.id (id = 5000)");
    Open.Table.Cancel();
    Open.Database.Commit();
    EXPECT_EQ(Open.Row("count(*), max(id)"), "2001|5000");
}

TEST(KvSqliteChangeQueue, RollbackUndoesWhatWasTakenToo)
{
    TFilledTable Open;
    for (int Id = 1; Id <= 1000; ++Id)
        Open.DeleteRecord(Id);
    Open.Database.Rollback();
    EXPECT_EQ(Open.Row("count(*)"), "3000");
    EXPECT_TRUE(Open.Table.Locate("id", 1000));
    Open.Database.StartTransaction();
    for (int Id = 1; Id <= 1000; ++Id)
        Open.DeleteRecord(Id);
    Open.Database.Commit();
    EXPECT_EQ(Open.Row("count(*)"), "2000");
}

TEST(KvSqliteChangeQueue, BatchesAreCommittedWhole)
{
    TFilledTable Open;
    Open.Database.Commit();
    Open.Table.CommitEvery = 400;
    for (int Id = 1000; Id > 0; --Id)
        Open.DeleteRecord(Id);
    EXPECT_EQ(Open.Row("count(*), min(id)"), "2200|1");
    Open.Table.Close();
    EXPECT_EQ(Open.Row("count(*), min(id)"), "2000|1001");
}

TEST(KvSqliteChangeQueue, WithoutATransactionEveryChangeIsPermanentAtOnce)
{
    TFilledTable Open;
    Open.Database.Commit();
    for (int Id = 1; Id <= 100; ++Id) {
        Open.DeleteRecord(Id);
        EXPECT_EQ(Open.Row("min(id)"), std::to_string(Id + 1));
    }
}

TEST(KvSqliteChangeQueue, UpdatesOfOtherColumnsAreStoredToo)
{
    TFilledTable Open;
    for (int Id = 1; Id <= 1000; ++Id) {
        ASSERT_TRUE(Open.Table.Locate("id", Id));
        if (Id % 100 == 0)
            EditRecord(Open.Table, {{"name", "odd"}});
        else
            EditRecord(Open.Table, {{"qty", 1}});
    }
    ASSERT_TRUE(Open.Table.Locate("id", 1001));
    EditRecord(Open.Table, {{"id", 9000}, {"qty", 1}}); // moves the record
    Open.Database.Commit();
    EXPECT_EQ(Open.Row("count(*), sum(qty), sum(name = 'odd'), max(id)"), "3000|991|10|9000");
}

TEST(KvSqliteChangeQueue, ValuesArriveAsTheyWere)
{
    const std::string Zero("a\0b", 3), Long(5000, 'y'), Huge((1 << 20) + 1, 'z');
    TFilledTable Open(
        "CREATE TABLE orders (id INTEGER PRIMARY KEY, name TEXT, qty REAL, raw BLOB, day DATE)");
    for (int Id = 1; Id <= 1000; ++Id) {
        ASSERT_TRUE(Open.Table.Locate("id", Id));
        EditRecord(
            Open.Table,
            {{"name", Id % 2 ? Zero : Long}, {"qty", 0.1}, {"raw", "\xFF"}, {"day", TDateTime{45351}}});
    }
    ASSERT_TRUE(Open.Table.Locate("id", 1001));
    EditRecord(Open.Table, {{"name", Huge}, {"qty", Null}, {"raw", Null}, {"day", Null}});
    Open.Database.Commit();
    EXPECT_EQ(
        Open.File.Rows(
            "SELECT count(*), hex(name), qty, hex(raw), day FROM orders WHERE id <= 1000 AND id % 2 = 1"),
        TRowTexts{"500|610062|0.1|FF|2024-02-29"});
    EXPECT_EQ(Open.Row("sum(length(name) = 5000), max(length(name)), sum(qty IS NULL)"), "500|1048577|1");
}

TEST(KvSqliteChangeQueue, FullDiskUndoesTheTransactionAndSaysSo)
{
    TFilledTable Open;
    Open.Database.Rollback();
    Open.Database.Execute("PRAGMA max_page_count = 40");
    Open.Database.StartTransaction();
    const auto Message = Open.MessageOf([&] {
        for (int Id = 4000; Id < 40000; ++Id)
            Open.InsertRecord(Id, 1);
        Open.Database.Commit();
    });
    EXPECT_EQ(
        Message,
        "orders: database or disk is full; the transaction was rolled back and its 36000 changes are lost");
    EXPECT_NE(Open.MessageOf([&] { Open.Database.Commit(); }).find("there is nothing to commit"),
              std::string::npos);
    EXPECT_EQ(Open.Row("count(*), max(id)"), "3000|3000");
}

TEST(KvSqliteChangeQueue, ErrorThatComesLateNamesTheRecordThatItBelongsTo)
{
    TFilledTable Open;
    Open.Database.Rollback();
    Open.Database.Execute("PRAGMA max_page_count = 40");
    Open.Database.StartTransaction();
    const auto Facts = FactsOf([&] {
        for (int Id = 40000; Id > 4000; --Id) {     // stored from 4001 on
            Open.Table.RecordTag = Id;
            Open.InsertRecord(Id, 1);
        }
        Open.Table.RecordTag = -1;
        Open.Database.Commit();
    });
    EXPECT_EQ(Facts.Rule, erStorage);
    EXPECT_GT(Facts.Record, 4001);
    EXPECT_LT(Facts.Record, 20000);
}

TEST(KvSqliteChangeQueue, DeletedAndUpdatedRecordsAreNamedTooWhenTheyFail)
{
    for (const bool Deletes : {true, false}) {
        TFilledTable Open;
        for (int Id = 1000; Id > 0; --Id) {
            Open.Table.RecordTag = 7000 + Id;
            Deletes ? Open.DeleteRecord(Id) : Open.UpdateRecord(Id, 7);
        }
        sqlite3_progress_handler(
            // the first change fails
            Open.Database.Connection().Handle(), 1, [](void*) { return 1; }, nullptr);
        const auto Facts = FactsOf([&] { Open.Database.Flush(); });
        EXPECT_EQ(Facts.Rule, erCancelled);
        EXPECT_EQ(Facts.Record, 7001);
        Open.Database.Rollback();
    }
}

/// Any changes in any order come to the same as in a map.
TEST(KvSqliteChangeQueue, AgreesWithAMapWhateverIsDone)
{
    const unsigned Seed = std::random_device{}();
    SCOPED_TRACE("seed " + std::to_string(Seed));
    std::mt19937 Random(Seed);
    for (const int CommitEvery : {0, 1, 333}) {
        TFilledTable Open;
        std::map<int, int> Model;
        for (int Id = 1; Id <= Enough; ++Id)
            Model[Id] = 0;
        if (CommitEvery > 0) {
            Open.Database.Commit();
            Open.Database.Execute("PRAGMA synchronous = OFF"); // thousands of commits wait for no disk
        }
        Open.Table.CommitEvery = CommitEvery == 0 ? 1 : CommitEvery;
        for (int I = 0; I < 6000; ++I) {
            const int Id = 1 + static_cast<int>(Random() % (I < 3000 ? 100'000 : 4000));
            const int Qty = static_cast<int>(Random() % 1000);
            const bool Exists = Model.contains(Id);
            ASSERT_EQ(Open.Table.Locate("id", Id), Exists);
            if (Exists && Random() % 64 == 0) {
                ASSERT_EQ(Open.Table.FieldByName("qty").AsString(), std::to_string(Model[Id]));
            }
            if (Exists && Random() % 3 == 0) {
                Open.Table.Delete();
                Model.erase(Id);
                continue;
            }
            Exists ? Open.Table.Edit() : Open.Table.Append();
            PostValues(Open.Table, {{"id", Id}, {"qty", Qty}});
            Model[Id] = Qty;
        }
        Open.Table.Close();
        Open.Database.Commit();
        TRowTexts Wanted;
        for (const auto& [Id, Qty] : Model)
            Wanted.push_back(std::to_string(Id) + "|" + std::to_string(Qty));
        EXPECT_EQ(Open.File.Rows("SELECT id, qty FROM orders ORDER BY id"), Wanted);
    }
}

/// Tables in which a change can be refused or does more than change its record.
struct TWatchfulTable
{
    const char* Name;
    std::string Sql;
    std::string Message;                            // of deleting record 2000
};

void PrintTo(const TWatchfulTable& Case, std::ostream* Out)
{
    *Out << Case.Name;
}

class KvSqliteChangeQueueLeaves : public testing::TestWithParam<TWatchfulTable>
{
};

TEST_P(KvSqliteChangeQueueLeaves, TheRecordToItsOwnDelete)
{
    TFilledTable Open(GetParam().Sql);
    Open.Database.Rollback();
    Open.Database.Execute("PRAGMA foreign_keys = ON");
    Open.File.Run("INSERT INTO parts VALUES (1, 2000)");
    Open.Database.StartTransaction();
    for (int Id = 1; Id < 2000; ++Id)
        Open.DeleteRecord(Id);
    ASSERT_TRUE(Open.Table.Locate("id", 2000));
    EXPECT_EQ(Open.MessageOf([&] { Open.Table.Delete(); }), GetParam().Message);
    Open.DeleteRecord(2001);
    Open.Database.Commit();
    EXPECT_EQ(Open.Row("count(*), min(id)"), "1000|2000");
}

INSTANTIATE_TEST_SUITE_P(
    , KvSqliteChangeQueueLeaves,
    testing::Values(
        TWatchfulTable{"ForeignKey",
                       OrdersTable + "CREATE TABLE parts (id INTEGER PRIMARY KEY, ord INT REFERENCES orders)",
                       "orders: FOREIGN KEY constraint failed"},
        TWatchfulTable{
            "Trigger",
            OrdersTable +
                "CREATE TABLE parts (id INTEGER PRIMARY KEY, ord INT); CREATE TRIGGER t BEFORE DELETE ON "
                "orders WHEN OLD.id = 2000 BEGIN SELECT RAISE(ABORT, 'no'); END",
            "orders: no"}),
    [](const auto& Row) { return std::string(Row.param.Name); });

} // namespace

} // namespace kv
