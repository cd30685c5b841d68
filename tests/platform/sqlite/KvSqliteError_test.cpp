#include "KvSqliteError.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <fstream>
#include <ostream>
#include <string>
#include <utility>

#include "KvSqliteDatabase.h"
#include "KvSqliteTestTable.h"

namespace kv {

namespace {

// --- Records that are refused -----------------------------------------------------------------------

/// A table that refuses the record (id 1, name 'n1', qty -1), and the facts of that.
struct TRefusal
{
    const char* Title;
    std::string Sql;
    TKvErrorRule Rule;
    std::string Field;
    std::string Value;
};

void PrintTo(const TRefusal& Row, std::ostream* Out)
{
    *Out << Row.Title;
}

class KvSqliteErrorOf : public testing::TestWithParam<TRefusal>
{
};

TEST_P(KvSqliteErrorOf, ARecordHasRuleFieldValueAndTag)
{
    TTestTable Open(GetParam().Sql);
    Open.Table.RecordTag = 17;
    const auto Facts = FactsOf([&] { AppendRecord(Open.Table, {{"id", 1}, {"name", "n1"}, {"qty", -1}}); });
    EXPECT_EQ(Facts.Rule, GetParam().Rule);
    EXPECT_EQ(Facts.Field, GetParam().Field);
    EXPECT_EQ(Facts.Value, GetParam().Value);
    EXPECT_EQ(Facts.FileName, Open.File.FileName());
    EXPECT_EQ(Facts.Record, 17);
}

INSTANTIATE_TEST_SUITE_P(
    , KvSqliteErrorOf,
    testing::Values(
        TRefusal{"PrimaryKey", OrdersTable + "INSERT INTO orders (id) VALUES (1)", erUnique, "id", "1"},
        TRefusal{"KeyOfSeveral",
                 "CREATE TABLE orders (id INT, name TEXT, qty INT, PRIMARY KEY (name, id)) WITHOUT ROWID;"
                 "INSERT INTO orders VALUES (1, 'n1', 2)",
                 erUnique, "id;name", "1;n1"},
        TRefusal{"UniqueIndex",
                 OrdersTable +
                     "CREATE UNIQUE INDEX i ON orders (name); INSERT INTO orders VALUES (99, 'n1', 1)",
                 erUnique, "name", "n1"},
        TRefusal{"Check", "CREATE TABLE orders (id INTEGER PRIMARY KEY, name TEXT, qty INT CHECK (qty >= 0))",
                 erCheck, "qty", "-1"},
        TRefusal{
            "Trigger",
            OrdersTable +
                "CREATE TRIGGER t BEFORE INSERT ON orders BEGIN SELECT RAISE(ABORT, 'qty must be more'); END",
            erCheck, "qty", "-1"},
        TRefusal{"IgnoredByATrigger",
                 OrdersTable + "CREATE TRIGGER t BEFORE INSERT ON orders BEGIN SELECT RAISE(IGNORE); END",
                 erCheck, "", ""}),
    [](const auto& Row) { return std::string(Row.param.Title); });

TEST(KvSqliteError, MissingParentNamesTheReferringField)
{
    TTestFile File("CREATE TABLE parent (k INT PRIMARY KEY);"
                   "CREATE TABLE orders (id INTEGER PRIMARY KEY, qty INT REFERENCES parent)");
    TSQLiteDatabase Database;
    Database.DatabaseName = File.FileName();
    Database.Execute("PRAGMA foreign_keys = ON");
    const auto Table = Database.OpenTable("orders");
    const auto Facts = FactsOf([&] { AppendRecord(*Table, {{"id", 1}, {"qty", 7}}); });
    EXPECT_EQ(Facts.Rule, erForeignKey);
    EXPECT_EQ(Facts.Field, "qty");
    EXPECT_EQ(Facts.Value, "7");
}

TEST(KvSqliteError, RecordThatOthersReferToIsProtectedByAForeignKeyHoweverItIsDeclared)
{
    for (const std::string Action : {"", " ON DELETE RESTRICT"}) {
        TTestFile File("CREATE TABLE orders (id INTEGER PRIMARY KEY); INSERT INTO orders VALUES (1);"
                       "CREATE TABLE parts (o INT REFERENCES orders" +
                       Action + "); INSERT INTO parts VALUES (1)");
        TSQLiteDatabase Database;
        Database.DatabaseName = File.FileName();
        Database.Execute("PRAGMA foreign_keys = ON");
        const auto Table = Database.OpenTable("orders");
        EXPECT_EQ(FactsOf([&] { Table->Delete(); }).Rule, erForeignKey) << Action;
    }
}

TEST(KvSqliteError, ValueThatSqliteWouldNotKeepIsAFact)
{
    TTestTable Open("CREATE TABLE orders (id INTEGER PRIMARY KEY, code STRING, price MONEY)");
    const TCurrency Huge{INT64_MAX};
    const struct
    {
        const char* Field;
        TVariant Value;
        TKvErrorRule Rule;
    } Rows[] = {{"code", "007", erConversion}, {"price", Huge, erRange}};
    for (const auto& [Field, Value, Rule] : Rows) {
        Open.Table.RecordTag = 3;
        const auto Facts = FactsOf([&] { AppendRecord(Open.Table, {{Field, Value}}); });
        Open.Table.Cancel();
        EXPECT_EQ(Facts.Rule, Rule);
        EXPECT_EQ(Facts.Field, Field);
        EXPECT_EQ(Facts.Value, Value.ToText());
        EXPECT_EQ(Facts.Record, 3);
    }
}

TEST(KvSqliteError, CodesThatAreHardToProvokeHaveTheirRules)
{
    const std::pair<int, TKvErrorRule> Rows[] = {
        {SQLITE_CONSTRAINT_ROWID, erUnique},       {SQLITE_CONSTRAINT_NOTNULL, erRequired},
        {SQLITE_CONSTRAINT_DATATYPE, erConversion}, {SQLITE_MISMATCH, erConversion},
        {SQLITE_TOOBIG, erLength},                  {SQLITE_LOCKED_SHAREDCACHE, erBusy},
        {SQLITE_IOERR_WRITE, erStorage},            {SQLITE_CORRUPT_INDEX, erStorage},
        {SQLITE_CANTOPEN, erStorage},               {SQLITE_ERROR, erNone}};
    for (const auto& [Code, Rule] : Rows)
        EXPECT_EQ(RuleOfCode(Code, ""), Rule) << Code;
}

// --- What concerns no single record -----------------------------------------------------------------

TEST(KvSqliteError, MissingFilesAndTablesAreMissing)
{
    TSQLiteDatabase Database;
    Database.DatabaseName = "/tmp/no/such.db";
    const auto Facts = FactsOf([&] { Database.Open(); });
    EXPECT_EQ(Facts.Rule, erMissing);
    EXPECT_EQ(Facts.FileName, "/tmp/no/such.db");
    TTestFile File;
    Database.DatabaseName = File.FileName();
    EXPECT_EQ(FactsOf([&] { Database.Describe("nothing"); }).Rule, erMissing);
}

TEST(KvSqliteError, OtherFilesHaveTheWrongFormat)
{
    TTestFile File("");
    std::ofstream(File.FileName()) << std::string(1000, 'x');
    TSQLiteDatabase Database;
    Database.DatabaseName = File.FileName();
    EXPECT_EQ(FactsOf([&] { Database.Open(); }).Rule, erFormat);
    std::ofstream{File.FileName()};
    Database.CheckFile = true;
    EXPECT_EQ(FactsOf([&] { Database.Open(); }).Rule, erFormat);
}

TEST(KvSqliteError, LocksOfOthersAreBusyUntilTheProgramGivesUp)
{
    TTestFile File;
    TTestConnection Other(File.FileName());
    Other.Run("BEGIN IMMEDIATE");
    TSQLiteDatabase Database;
    Database.DatabaseName = File.FileName();
    Database.BusyTimeout = 10;
    EXPECT_EQ(FactsOf([&] { Database.StartTransaction(); }).Rule, erBusy);
}

TEST(KvSqliteError, FullDiskAndWhatIsWrittenAfterItIsTheStorage)
{
    TTestFile File;
    TSQLiteDatabase Database;
    Database.DatabaseName = File.FileName();
    Database.Execute("PRAGMA max_page_count = 3");
    const auto Table = Database.OpenTable("orders");
    Database.StartTransaction();
    const auto Fill = [&] {
        for (int I = 0; I < 3000; ++I)
            AppendRecord(*Table, {{"name", std::string(20, 'x')}});
    };
    EXPECT_EQ(FactsOf(Fill).Rule, erStorage);
    Table->Cancel();
    EXPECT_EQ(FactsOf(Fill).Rule, erStorage);
    Table->Cancel();
    EXPECT_EQ(FactsOf([&] { Database.Commit(); }).Rule, erStorage);
}

TEST(KvSqliteError, DatabaseThatCannotBeWrittenIsTheStorage)
{
    TTestFile File;
    TSQLiteDatabase Database;
    Database.DatabaseName = File.FileName();
    Database.ReadOnly = true;
    const auto Table = Database.OpenTable("orders");
    EXPECT_EQ(FactsOf([&] { AppendRecord(*Table, {{"qty", 1}}); }).Rule, erStorage);
}

} // namespace

} // namespace kv
