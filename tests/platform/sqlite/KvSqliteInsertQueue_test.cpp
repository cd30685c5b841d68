#include "KvSqliteInsertQueue.h"

#include <gtest/gtest.h>

#include <fstream>
#include <limits>
#include <ostream>
#include <random>
#include <string>

#include <unistd.h>

#include "KvSqliteDatabase.h"
#include "KvSqliteTestTable.h"

namespace kv {

namespace {

constexpr int Enough = 3000;                        // records: some blocks and an unfinished one

void AppendMany(TDataSet& DataSet, int First, int Last)
{
    for (int Id = First; Id <= Last; ++Id)
        AppendRecord(DataSet, {{"id", Id}, {"name", "n" + std::to_string(Id)}, {"qty", Id % 7}});
}

const std::string Figures = "SELECT count(*), sum(id), sum(qty), sum(name = 'n' || id) FROM orders";

std::string FiguresUpTo(int Last)
{
    long long Qty = 0;
    for (int Id = 1; Id <= Last; ++Id)
        Qty += Id % 7;
    return std::to_string(Last) + "|" + std::to_string(Last * (Last + 1) / 2) + "|" + std::to_string(Qty) +
           "|" + std::to_string(Last);
}

/// Memory of this process that is in use.
std::int64_t ResidentBytes()
{
    std::int64_t Pages = 0, Resident = 0;
    std::ifstream("/proc/self/statm") >> Pages >> Resident;
    return Resident * sysconf(_SC_PAGESIZE);
}

TEST(KvSqliteInsertQueue, StoresEveryRecordOfATransactionInOrder)
{
    TTestTable Open;
    Open.Table.StartTransaction();
    AppendMany(Open.Table, 1, Enough);
    EXPECT_EQ(Open.Rows("SELECT count(*) FROM orders"), TRowTexts{"0"}); // not before the commit
    Open.Table.Commit();
    EXPECT_EQ(Open.Rows(Figures), TRowTexts{FiguresUpTo(Enough)});
}

TEST(KvSqliteInsertQueue, RollbackUndoesWhatWasTakenToo)
{
    TTestTable Open;
    Open.Table.StartTransaction();
    AppendMany(Open.Table, 1, Enough);
    Open.Table.Rollback();
    EXPECT_EQ(Open.Rows("SELECT count(*) FROM orders"), TRowTexts{"0"});
    Open.Table.StartTransaction();
    AppendMany(Open.Table, 1, Enough);
    Open.Table.Commit();
    EXPECT_EQ(Open.Rows(Figures), TRowTexts{FiguresUpTo(Enough)});
}

TEST(KvSqliteInsertQueue, BatchesAreCommittedWhole)
{
    TTestTable Open;
    Open.Table.CommitEvery = 1300;
    AppendMany(Open.Table, 1, Enough);
    EXPECT_EQ(Open.Rows("SELECT count(*) FROM orders"), TRowTexts{"2600"});
    Open.Table.Close();
    EXPECT_EQ(Open.Rows(Figures), TRowTexts{FiguresUpTo(Enough)});
}

TEST(KvSqliteInsertQueue, WhoeverReadsSeesAllThatWasPosted)
{
    TTestTable Open;
    Open.Table.StartTransaction();
    AppendMany(Open.Table, 1, Enough);
    EXPECT_EQ(Open.Table.FieldByName("name").AsString(), "n3000");
    AppendMany(Open.Table, Enough + 1, 2 * Enough);
    EXPECT_EQ(Open.Table.RecordCount(), 2 * Enough);
    EXPECT_TRUE(Open.Table.Locate("id", 5999));
    EXPECT_EQ(Open.Table.FieldByName("name").AsString(), "n5999");
    AppendMany(Open.Table, 2 * Enough + 1, 3 * Enough);
    Open.Table.Delete();                            // the last
    Open.Table.First();
    EXPECT_EQ(Open.Table.FieldByName("id").AsString(), "1");
    Open.Table.Commit();
    EXPECT_EQ(Open.Rows(Figures), TRowTexts{FiguresUpTo(3 * Enough - 1)});
}

TEST(KvSqliteInsertQueue, AnotherDatasetOnTheConnectionSeesThemToo)
{
    TTestFile File;
    TSQLiteDatabase Database;
    Database.DatabaseName = File.FileName();
    TSQLiteTable Writer, Reader;
    for (auto* const Table : {&Writer, &Reader}) {
        Table->SetDatabase(&Database);
        Table->TableName = "orders";
        Table->Open();
    }
    Database.StartTransaction();
    AppendMany(Writer, 1, Enough);
    EXPECT_EQ(Reader.RecordCount(), Enough);
    AppendMany(Writer, Enough + 1, 2 * Enough);
    Database.Execute("UPDATE orders SET qty = 0");
    AppendMany(Writer, 2 * Enough + 1, 3 * Enough);
    Reader.Close();                                 // while records wait
    Database.Commit();
    EXPECT_EQ(File.Rows("SELECT count(*), sum(id <= 6000 AND qty <> 0) FROM orders"), TRowTexts{"9000|0"});
}

TEST(KvSqliteInsertQueue, KeysThatTheDatabaseGivesGoOnFromTheHighest)
{
    TTestTable Open(OrdersTable + "INSERT INTO orders VALUES (5000, 'old', 1)");
    Open.Table.StartTransaction();
    for (int I = 0; I < Enough; ++I)
        AppendRecord(Open.Table, {{"name", "new"}});
    EXPECT_EQ(Open.Table.FieldByName("id").AsString(), "8000");
    Open.Table.Commit();
    EXPECT_EQ(Open.Rows("SELECT min(id), max(id), count(DISTINCT id) FROM orders WHERE name = 'new'"),
              TRowTexts{"5001|8000|3000"});
}

TEST(KvSqliteInsertQueue, RecordRefusedIsRefusedAtItsOwnPost)
{
    TTestTable Open;
    Open.Table.StartTransaction();
    AppendMany(Open.Table, 1, Enough);
    Open.Table.Append();
    EXPECT_EQ(Open.MessageOf([&] { PostValues(Open.Table, {{"id", 17}, {"name", "twice"}}); }),
              "orders: UNIQUE constraint failed: orders.id (id = 17)");
    Open.Table.Cancel();
    AppendMany(Open.Table, Enough + 1, 2 * Enough);
    Open.Table.Commit();
    EXPECT_EQ(Open.Rows(Figures), TRowTexts{FiguresUpTo(2 * Enough)});
}

TEST(KvSqliteInsertQueue, RecordsInAnyOrderAndOfAnyColumnsAreStored)
{
    const unsigned Seed = std::random_device{}();
    SCOPED_TRACE("seed " + std::to_string(Seed));
    std::mt19937 Random(Seed);
    TTestTable Open;
    Open.Table.StartTransaction();
    int Highest = 0, Count = 0;
    for (int Run = 0; Run < 20; ++Run) {
        const bool Named = Random() % 2 != 0;
        for (int I = static_cast<int>(Random() % 3000); I > 0; --I, ++Count) {
            Highest += 1 + static_cast<int>(Random() % 3);
            Named ? AppendRecord(Open.Table, {{"id", Highest}, {"name", "x"}})
                  : AppendRecord(Open.Table, {{"id", Highest}});
        }
        if (Run % 5 == 4) {
            AppendRecord(Open.Table, {{"id", -Run}, {"qty", Run}}); // below all others
            ++Count;
        }
    }
    Open.Table.Commit();
    EXPECT_EQ(Open.Rows("SELECT count(*), max(id), min(id) FROM orders"),
              TRowTexts{std::to_string(Count) + "|" + std::to_string(Highest) + "|-19"});
}

TEST(KvSqliteInsertQueue, HighestRowidOfAllIsNoTrap)
{
    TTestTable Open;
    Open.Table.StartTransaction();
    AppendMany(Open.Table, 1, Enough);
    AppendRecord(Open.Table, {{"id", std::numeric_limits<std::int64_t>::max()}, {"name", "last"}});
    for (int I = 0; I < Enough; ++I)
        AppendRecord(Open.Table, {{"name", "elsewhere"}}); // the database looks for free numbers
    Open.Table.Commit();
    EXPECT_EQ(Open.Rows("SELECT count(DISTINCT id) FROM orders"), TRowTexts{"6001"});
}

TEST(KvSqliteInsertQueue, ValuesArriveAsTheyWere)
{
    TTestTable Open(
        "CREATE TABLE orders (id INTEGER PRIMARY KEY, name TEXT, raw BLOB, day DATE, paid BOOLEAN, r REAL)");
    const std::string Long(5000, 'y'), Zero("a\0b", 3), Huge((1 << 20) + 1, 'z');
    Open.Table.StartTransaction();
    for (int I = 0; I < Enough; ++I) {
        AppendRecord(
            Open.Table,
            {{"name", Zero}, {"raw", "\xFF"}, {"day", TDateTime{45351}}, {"paid", true}, {"r", 0.1}});
        AppendRecord(Open.Table,
                     {{"name", Long}, {"raw", Null}, {"day", Null}, {"paid", false}, {"r", Null}});
    }
    AppendRecord(Open.Table, {{"name", Huge}, {"raw", Null}, {"day", Null}, {"paid", false}, {"r", Null}});
    AppendRecord(Open.Table,
                 {{"name", "M\xFCller"}, {"raw", Null}, {"day", Null}, {"paid", false}, {"r", Null}});
    Open.Table.Commit();
    EXPECT_EQ(
        Open.Rows(
            "SELECT count(*), hex(name), hex(raw), day, paid, r FROM orders WHERE id % 2 = 1 AND id < 6000"),
        TRowTexts{"3000|610062|FF|2024-02-29|1|0.1"});
    EXPECT_EQ(Open.Rows("SELECT count(*), min(length(name)), count(raw), count(day), sum(paid), count(r)"
                        " FROM orders WHERE id % 2 = 0 AND id <= 6000"),
              TRowTexts{"3000|5000|0|0|0|0"});
    EXPECT_EQ(Open.Rows("SELECT length(name) FROM orders WHERE id = 6001"), TRowTexts{"1048577"});
    EXPECT_EQ(Open.Rows("SELECT name FROM orders WHERE id = 6002"), TRowTexts{"Müller"});
}

TEST(KvSqliteInsertQueue, FullDiskUndoesTheTransactionAndSaysSo)
{
    TTestFile File(OrdersTable + "INSERT INTO orders VALUES (1, 'old', 1)");
    TSQLiteDatabase Database;
    Database.DatabaseName = File.FileName();
    Database.Execute("PRAGMA max_page_count = 12");
    TSQLiteTable Table;
    Table.SetDatabase(&Database);
    Table.TableName = "orders";
    Table.Open();
    Database.StartTransaction();
    const auto Message = MessageOf(File.FileName(), [&] { AppendMany(Table, 2, 100 * Enough); });
    EXPECT_NE(Message.find("orders: database or disk is full; the transaction was rolled back and its "),
              std::string::npos)
        << Message;
    Table.Cancel();
    EXPECT_NE(MessageOf(File.FileName(), [&] { AppendMany(Table, 2, 2); }), "");
    Table.Cancel();
    EXPECT_NE(MessageOf(File.FileName(), [&] { Database.Commit(); }).find("there is nothing to commit"),
              std::string::npos);
    EXPECT_EQ(File.Rows("SELECT id FROM orders"), TRowTexts{"1"});
}

TEST(KvSqliteInsertQueue, ErrorThatComesLateNamesTheRecordThatItBelongsTo)
{
    TTestFile File;
    TSQLiteDatabase Database;
    Database.DatabaseName = File.FileName();
    Database.Execute("PRAGMA max_page_count = 12");
    const auto Table = Database.OpenTable("orders");
    Database.StartTransaction();
    const auto Facts = FactsOf([&] {
        for (Table->RecordTag = 100001;; ++Table->RecordTag)
            AppendRecord(*Table, {{"id", Table->RecordTag - 100000}, {"name", std::string(20, 'x')}});
    });
    EXPECT_EQ(Facts.Rule, erStorage);
    EXPECT_GT(Facts.Record, 101000);
    EXPECT_LT(Facts.Record, Table->RecordTag - 500);
    // The record is the first one for which there is no room.
    TSQLiteDatabase Again;
    Again.DatabaseName = File.FileName();
    Again.Execute("PRAGMA max_page_count = 12");
    const auto Fits = Again.OpenTable("orders");
    Again.StartTransaction();
    for (std::int64_t Id = 1; Id < Facts.Record - 100000; ++Id)
        AppendRecord(*Fits, {{"id", Id}, {"name", std::string(20, 'x')}});
    Again.Flush();
    EXPECT_EQ(FactsOf([&] {
                  AppendRecord(*Fits, {{"id", Facts.Record - 100000}, {"name", std::string(20, 'x')}});
                  Again.Flush();
              }).Rule,
              erStorage);
    Again.Rollback();
}

TEST(KvSqliteInsertQueue, ClosingKeepsWhatTheProgramThenCommits)
{
    TTestFile File;
    TSQLiteDatabase Database;
    Database.DatabaseName = File.FileName();
    {
        TSQLiteTable Table;
        Table.SetDatabase(&Database);
        Table.TableName = "orders";
        Table.Open();
        Database.StartTransaction();
        AppendMany(Table, 1, Enough);
    }
    Database.Commit();
    EXPECT_EQ(File.Rows(Figures), TRowTexts{FiguresUpTo(Enough)});
}

/// Tables that may refuse a record: each must do so at once, after any number of others.
struct TRefusingTable
{
    const char* Name;
    std::string Sql;
    std::string Message;                            // its beginning
};

void PrintTo(const TRefusingTable& Case, std::ostream* Out)
{
    *Out << Case.Name;
}

class KvSqliteInsertQueueLeaves : public testing::TestWithParam<TRefusingTable>
{
};

TEST_P(KvSqliteInsertQueueLeaves, TheRecordToItsOwnPost)
{
    TTestTable Open(GetParam().Sql);
    Open.Table.StartTransaction();
    AppendMany(Open.Table, 1, Enough);
    Open.Table.Append();
    const auto Message = Open.MessageOf([&] {
        PostValues(Open.Table, {{"id", 5000}, {"name", "n1"}, {"qty", -1}});
    });
    EXPECT_TRUE(Message.starts_with(GetParam().Message)) << Message;
    Open.Table.Cancel();
    AppendMany(Open.Table, Enough + 1, 2 * Enough);
    Open.Table.Commit();
    EXPECT_EQ(Open.Rows(Figures), TRowTexts{FiguresUpTo(2 * Enough)});
}

INSTANTIATE_TEST_SUITE_P(
    , KvSqliteInsertQueueLeaves,
    testing::Values(
        TRefusingTable{"Check",
                       "CREATE TABLE orders (id INTEGER PRIMARY KEY, name TEXT, qty INT CHECK (qty >= 0))",
                       "orders: CHECK constraint failed"},
        TRefusingTable{"Unique", "CREATE TABLE orders (id INTEGER PRIMARY KEY, name TEXT UNIQUE, qty INT)",
                       "orders: UNIQUE constraint failed"},
        TRefusingTable{"UniqueIndex",
                       "CREATE TABLE orders (id INTEGER PRIMARY KEY, name TEXT, qty INT); CREATE UNIQUE "
                       "INDEX i ON orders (name)",
                       "orders: UNIQUE constraint failed"},
        TRefusingTable{"Trigger",
                       "CREATE TABLE orders (id INTEGER PRIMARY KEY, name TEXT, qty INT); CREATE TRIGGER t "
                       "BEFORE INSERT ON "
                       "orders WHEN NEW.qty < 0 BEGIN SELECT RAISE(ABORT, 'no'); END",
                       "orders: no"},
        TRefusingTable{
            "WithoutRowid",
            "CREATE TABLE orders (id INTEGER PRIMARY KEY, name TEXT, qty INT CHECK (qty >= 0)) WITHOUT ROWID",
            "orders: CHECK constraint failed"}),
    [](const auto& Row) { return std::string(Row.param.Name); });

TEST(KvSqliteInsertQueue, RecordsOfLongTextAreHandedOverEarly)
{
    TTestTable Open("CREATE TABLE orders (id INTEGER PRIMARY KEY, name TEXT, qty INTEGER)");
    const std::string Long(1 << 20, 'x');
    Open.Table.StartTransaction();
    const auto Before = ResidentBytes();
    for (int Id = 1; Id <= 120; ++Id)
        AppendRecord(Open.Table, {{"id", Id}, {"name", Long}});
    EXPECT_LT(ResidentBytes() - Before, 40 << 20);  // of 120 MB, some 56 of them in the queue
    Open.Table.Commit();
    EXPECT_EQ(Open.Rows("SELECT count(*), min(length(name)) FROM orders"), TRowTexts{"120|1048576"});
}

} // namespace

} // namespace kv
