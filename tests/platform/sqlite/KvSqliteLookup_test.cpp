#include "KvSqliteLookup.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <string>

#include "KvAllocationCount.h"
#include "KvSqliteConnection.h"
#include "KvSqliteDatabase.h"
#include "KvSqliteTestTable.h"

namespace kv {

namespace {

TVariant Pair(TVariant A, TVariant B)
{
    auto Values = TVariant::Array(0, 1);
    Values[0] = std::move(A);
    Values[1] = std::move(B);
    return Values;
}

/// The id of the record found, or "none".
std::string Find(TSQLiteTable& Table, std::string_view Keys, const TVariant& Values,
                 TLocateOptions Options = {})
{
    return Table.Locate(Keys, Values, Options) ? Table.FieldByName("id").AsString() : "none";
}

constexpr const char* People = "CREATE TABLE orders (id INTEGER PRIMARY KEY, name TEXT, "
                               "city TEXT COLLATE NOCASE, qty INT);"
                               "INSERT INTO orders VALUES (1, 'Ada', 'Rome', 1), (2, 'ada', 'rome', 2), "
                               "(3, NULL, '', 3),"
                               " (4, 'Bob', NULL, 1), (5, 'Ada', 'Paris', NULL), (6, '', 'Oslo', 7)";

/// The same questions however the columns are indexed, and asked often enough for a temporary index.
void ExpectSameAnswers(const std::string& Index)
{
    SCOPED_TRACE(Index);
    TTestTable Open(People + std::string("; ") + Index);
    auto& Table = Open.Table;
    for (int Time = 0; Time < 3; ++Time) {
        EXPECT_EQ(Find(Table, "name", "Ada"), "1");
        EXPECT_EQ(Find(Table, "name", "ada"), "2");
        EXPECT_EQ(Find(Table, "name", "ADA"), "none");
        EXPECT_EQ(Find(Table, "name", "Ad"), "none");
        EXPECT_EQ(Find(Table, "name", Null), "3");
        EXPECT_EQ(Find(Table, "name", ""), "6");
        EXPECT_EQ(Find(Table, "city", "rome"), "2");
        EXPECT_EQ(Find(Table, "city", "Rome"), "1");
        EXPECT_EQ(Find(Table, "city", "ROME"), "none");
        EXPECT_EQ(Find(Table, "city", Null), "4");
        EXPECT_EQ(Find(Table, "name;city", Pair("Ada", "Paris")), "5");
        EXPECT_EQ(Find(Table, "city;name", Pair("Paris", "Ada")), "5");
        EXPECT_EQ(Find(Table, "name;city", Pair("Bob", Null)), "4");
        EXPECT_EQ(Find(Table, "name;city", Pair(Null, "")), "3");
        EXPECT_EQ(Find(Table, "name;city", Pair(Null, Null)), "none");
        EXPECT_EQ(Find(Table, "qty", 1), "1");
        EXPECT_EQ(Find(Table, "qty", 1.0), "1");
        EXPECT_EQ(Find(Table, "qty", "3"), "3");
        EXPECT_EQ(Find(Table, "qty", "x"), "none");
        EXPECT_EQ(Find(Table, "qty;name", Pair(Null, "Ada")), "5");
        EXPECT_EQ(Find(Table, "id", 4), "4");
        EXPECT_EQ(Find(Table, "id;name", Pair(4, "Ada")), "none");
        EXPECT_EQ(Find(Table, "id;name", Pair(5, "Ada")), "5");
    }
}

TEST(KvSqliteLookup, IndexesChangeNothingButTheSpeed)
{
    ExpectSameAnswers("");
    ExpectSameAnswers("CREATE INDEX i ON orders (name)");
    ExpectSameAnswers("CREATE INDEX i ON orders (name COLLATE NOCASE, qty); CREATE INDEX j ON orders (city)");
    ExpectSameAnswers("CREATE INDEX i ON orders (name, city); "
                      "CREATE UNIQUE INDEX j ON orders (city COLLATE BINARY)");
    ExpectSameAnswers("CREATE INDEX i ON orders (city DESC, name DESC)");
    ExpectSameAnswers("CREATE INDEX i ON orders (name) WHERE name > 'B'; "
                      "CREATE INDEX j ON orders (upper(name), city)");
    ExpectSameAnswers("CREATE INDEX i ON orders (qty, name, city)");
}

struct TPlanRow
{
    std::string_view Name, Index, Keys, Plan;
};

std::ostream& operator<<(std::ostream& Out, const TPlanRow& Row)
{
    return Out << Row.Name;
}

/// What SQLite says about how it answers the statement that looked up last.
std::string PlanOfLookup(TTestTable& Open, std::string_view Keys)
{
    std::string Statement;
    const auto Note = [](unsigned, void* Result, void* Prepared, void*) {
        const auto* const Sql = sqlite3_sql(static_cast<sqlite3_stmt*>(Prepared));
        if (std::string_view(Sql).find("LIMIT 1") != std::string_view::npos)
            *static_cast<std::string*>(Result) = Sql;
        return 0;
    };
    auto Values = TVariant::Array(0, static_cast<int>(std::ranges::count(Keys, ';')));
    for (int I = 0; I <= Values.HighBound(); ++I)
        Values[I] = 1;
    TSQLiteDatabase Database;
    Database.DatabaseName = Open.File.FileName();
    TSQLiteTable Table;
    Table.SetDatabase(&Database);
    Table.TableName = "orders";
    Table.Open();
    sqlite3_trace_v2(Database.Connection().Handle(), SQLITE_TRACE_STMT, Note, &Statement);
    Table.Locate(Keys, Values.HighBound() == 0 ? Values[0] : Values);
    Table.Close();
    if (Statement.empty())
        return "";
    return Open.Rows("EXPLAIN QUERY PLAN " + Statement).front().substr(4);
}

class KvSqliteLookupUses : public testing::TestWithParam<TPlanRow> {};

TEST_P(KvSqliteLookupUses, TheIndexThatServes)
{
    TTestTable Open("CREATE TABLE orders (id INTEGER PRIMARY KEY, a, b, c TEXT COLLATE NOCASE); " +
                    std::string(GetParam().Index));
    const auto Plan = PlanOfLookup(Open, GetParam().Keys);
    EXPECT_NE(Plan.find(GetParam().Plan), std::string::npos) << Plan;
}

INSTANTIATE_TEST_SUITE_P(, KvSqliteLookupUses, testing::Values(
    TPlanRow{"Rowid", "", "id", "SEARCH main.orders USING INTEGER PRIMARY KEY (rowid=?)"},
    TPlanRow{"RowidAmongOthers", "CREATE INDEX i ON orders (a)", "a;id",
             "USING INTEGER PRIMARY KEY (rowid=?)"},
    TPlanRow{"WholeIndex", "CREATE INDEX i ON orders (a)", "a", "USING COVERING INDEX i (a=?)"},
    TPlanRow{"Prefix", "CREATE INDEX i ON orders (a, b, c)", "b;a", "USING COVERING INDEX i (a=? AND b=?)"},
    TPlanRow{"ShortestOfSeveral", "CREATE INDEX i ON orders (a, b); CREATE INDEX j ON orders (a)", "a",
             "INDEX j (a=?)"},
    TPlanRow{"UniqueOfSeveral", "CREATE INDEX i ON orders (a); CREATE UNIQUE INDEX j ON orders (a)", "a",
             "INDEX j (a=?)"},
    TPlanRow{"UniqueOnAPart", "CREATE UNIQUE INDEX i ON orders (b)", "a;b", "USING INDEX i (b=?)"},
    TPlanRow{"OtherCollation", "CREATE INDEX i ON orders (c)", "c", "USING COVERING INDEX i (c=?)"},
    TPlanRow{"Partial", "CREATE INDEX i ON orders (a) WHERE a > 1", "a", ""},
    TPlanRow{"NotAPrefix", "CREATE INDEX i ON orders (a, b)", "b", ""}));

TEST(KvSqliteLookup, FalseLeavesTheCursor)
{
    TTestTable Open(People);
    ASSERT_EQ(Find(Open.Table, "id", 4), "4");
    EXPECT_EQ(Find(Open.Table, "id", 99), "none");
    EXPECT_EQ(Find(Open.Table, "name", "Zoe"), "none");
    EXPECT_EQ(Find(Open.Table, "name", "Zoe"), "none");
    EXPECT_EQ(Open.Table.FieldByName("id").AsString(), "4");
}

TEST(KvSqliteLookup, OptionsIgnoreCaseAndTakeBeginnings)
{
    TTestTable Open(People);
    EXPECT_EQ(Find(Open.Table, "name", "ADA", {loCaseInsensitive}), "1");
    EXPECT_EQ(Find(Open.Table, "name", "Bo", {loPartialKey}), "4");
    EXPECT_EQ(Find(Open.Table, "name", "bo", {loPartialKey}), "none");
    EXPECT_EQ(Find(Open.Table, "name", "bo", {loPartialKey, loCaseInsensitive}), "4");
    EXPECT_EQ(Find(Open.Table, "city;qty", Pair("r", 2), {loPartialKey}), "2");
    EXPECT_EQ(Find(Open.Table, "name", Null, {loCaseInsensitive}), "3");
}

/// Keys that no index covers, through everything that can change them.
TEST(KvSqliteLookup, TemporaryIndexFollowsEveryChange)
{
    TTestTable Open(People);
    auto& Table = Open.Table;
    ASSERT_EQ(Find(Table, "name", "Bob"), "4");
    ASSERT_EQ(Find(Table, "name", "Bob"), "4");
    AppendRecord(Table, {{"name", "Zoe"}});
    EXPECT_EQ(Find(Table, "name", "Zoe"), "7");
    EditRecord(Table, {{"name", "Zoey"}});
    EXPECT_EQ(Find(Table, "name", "Zoe"), "none");
    EXPECT_EQ(Find(Table, "name", "Zoey"), "7");
    EditRecord(Table, {{"id", 70}});
    EXPECT_EQ(Find(Table, "name", "Zoey"), "70");
    Table.Delete();
    EXPECT_EQ(Find(Table, "name", "Zoey"), "none");
    ASSERT_EQ(Find(Table, "name", "Ada"), "1");
    EditRecord(Table, {{"qty", 5}});
    ASSERT_EQ(Find(Table, "name", "Ada"), "1");
    EditRecord(Table, {{"name", Null}});
    EXPECT_EQ(Find(Table, "name", Null), "1");
    EXPECT_EQ(Find(Table, "name", "Ada"), "5");
}

TEST(KvSqliteLookup, TemporaryIndexFollowsARollback)
{
    TTestTable Open(People);
    auto& Table = Open.Table;
    ASSERT_EQ(Find(Table, "name", "Bob"), "4");
    Table.StartTransaction();
    AppendRecord(Table, {{"name", "Zoe"}});
    ASSERT_EQ(Find(Table, "name", "Zoe"), "7");     // the index is made inside the transaction
    Table.Rollback();
    EXPECT_EQ(Find(Table, "name", "Zoe"), "none");
    EXPECT_EQ(Find(Table, "name", "Bob"), "4");
    Table.StartTransaction();
    AppendRecord(Table, {{"name", "Zoe"}});
    Table.Rollback();
    EXPECT_EQ(Find(Table, "name", "Zoe"), "none");
}

TEST(KvSqliteLookup, TemporaryIndexFollowsTransactionsBySql)
{
    TTestFile File(People);
    TSQLiteDatabase Database;
    Database.DatabaseName = File.FileName();
    TSQLiteTable Table;
    Table.SetDatabase(&Database);
    Table.TableName = "orders";
    Table.Open();
    Database.Execute("BEGIN");
    ASSERT_EQ(Find(Table, "name", "Bob"), "4");
    ASSERT_EQ(Find(Table, "name", "Bob"), "4");
    Database.Execute("DELETE FROM orders WHERE name = 'Bob'; INSERT INTO orders(id, name) VALUES (9, 'Zoe')");
    EXPECT_EQ(Find(Table, "name", "Bob"), "none");
    EXPECT_EQ(Find(Table, "name", "Zoe"), "9");
    Database.Execute("ROLLBACK");
    EXPECT_EQ(Find(Table, "name", "Bob"), "4");
    EXPECT_EQ(Find(Table, "name", "Zoe"), "none");
}

TEST(KvSqliteLookup, TemporaryIndexFollowsOtherConnections)
{
    TTestTable Open(People);
    auto& Table = Open.Table;
    ASSERT_EQ(Find(Table, "name", "Zoe"), "none");
    ASSERT_EQ(Find(Table, "name", "Zoe"), "none");
    Open.File.Run("INSERT INTO orders(name) VALUES ('Zoe'); DELETE FROM orders WHERE name = 'Bob'");
    EXPECT_EQ(Find(Table, "name", "Zoe"), "7");
    EXPECT_EQ(Find(Table, "name", "Bob"), "none");
}

TEST(KvSqliteLookup, TemporaryIndexLeavesNothingInTheDatabase)
{
    TTestTable Open(People);
    const auto Before = Open.Rows("SELECT * FROM sqlite_schema");
    Find(Open.Table, "name", "Bob");
    Find(Open.Table, "name", "Bob");
    AppendRecord(Open.Table, {{"name", "Zoe"}});
    Open.Table.Close();
    EXPECT_EQ(Open.Rows("SELECT * FROM sqlite_schema"), Before);
}

TEST(KvSqliteLookup, WithoutRowidTablesHaveTemporaryIndexesToo)
{
    TTestTable Open("CREATE TABLE orders (a TEXT, b INT, id INT, PRIMARY KEY (a, b)) WITHOUT ROWID;"
                    "INSERT INTO orders VALUES ('x', 1, 10), ('y', 1, 20), ('x', 2, 20)");
    EXPECT_EQ(Find(Open.Table, "id", 20), "20");
    EXPECT_EQ(Open.Table.FieldByName("b").AsString(), "2"); // by the key ('x', 2) comes before ('y', 1)
    EXPECT_EQ(Find(Open.Table, "id", 20), "20");
    EXPECT_EQ(Open.Table.FieldByName("b").AsString(), "2");
    Open.Table.Delete();
    EXPECT_EQ(Find(Open.Table, "id", 20), "20");
    EXPECT_EQ(Open.Table.FieldByName("a").AsString(), "y");
}

TEST(KvSqliteLookup, ReadOnlyDatabasesAreSearchedToo)
{
    TTestFile File(People);
    TSQLiteDatabase Database;
    Database.DatabaseName = File.FileName();
    Database.ReadOnly = true;
    TSQLiteTable Table;
    Table.SetDatabase(&Database);
    Table.TableName = "orders";
    Table.Open();
    for (int Time = 0; Time < 3; ++Time)
        EXPECT_EQ(Find(Table, "name", "Bob"), "4");
}

/// Each stored text is the same point in time in another form of ISO 8601.
TEST(KvSqliteLookup, DatesAreFoundHoweverTheyAreSpelled)
{
    const TVariant Morning = TDateTime{45351 + 9.5 / 24}, Midnight = TDateTime{45351};
    for (const char* const Index : {"", "; CREATE INDEX i ON orders (at)"}) {
        for (const char* const Text : {"2024-02-29 09:30:00", "2024-02-29T09:30:00", "2024-02-29 09:30",
                                       "2024-02-29 09:30:00.000", "2024-02-29 09:30:00.000000",
                                       "2024-02-29T09:30"}) {
            TTestTable Open("CREATE TABLE orders (id INTEGER PRIMARY KEY, at DATETIME);"
                            "INSERT INTO orders VALUES (1, '2024-02-28 09:30:00'), (2, '" +
                            std::string(Text) + "')" + Index);
            for (int Time = 0; Time < 3; ++Time)
                EXPECT_EQ(Find(Open.Table, "at", Morning), "2") << Text << Index;
        }
        for (const char* const Text : {"2024-02-29", "2024-02-29 00:00:00", "2024-02-29T00:00:00"}) {
            for (const char* const Type : {"DATE", "DATETIME"}) {
                TTestTable Open("CREATE TABLE orders (id INTEGER PRIMARY KEY, at " + std::string(Type) +
                                "); INSERT INTO orders VALUES (2, '" + Text + "')" + Index);
                for (int Time = 0; Time < 3; ++Time)
                    EXPECT_EQ(Find(Open.Table, "at", Midnight), "2") << Text << Index;
            }
        }
    }
}

TEST(KvSqliteLookup, KeyedRunsStayLinearWithoutAnIndex)
{
    const auto SecondsFor = [](int Count) {
        TTestTable Open("CREATE TABLE orders (id INTEGER PRIMARY KEY, name TEXT, qty INT)");
        auto& Table = Open.Table;
        const auto Begin = std::chrono::steady_clock::now();
        Table.StartTransaction();
        for (int I = 0; I < Count; ++I) {
            const auto Name = "n" + std::to_string(I * 7919 % Count);
            if (Table.Locate("name", Name))
                Table.Edit();
            else
                Table.Append();
            PostValues(Table, {{"name", Name}, {"qty", I}});
        }
        Table.Commit();
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - Begin).count();
    };
    const double Small = SecondsFor(4000), Large = SecondsFor(32000);
    EXPECT_LT(Large, Small * 8 * 3) << Small;       // a quadratic run would take 64 times as long
}

TEST(KvSqliteLookup, FindingAndChangingAllocatesNothingPerRecord)
{
    TTestTable Open("CREATE TABLE orders (id INTEGER PRIMARY KEY, name TEXT, qty INT);"
                    "WITH RECURSIVE n(i) AS (VALUES(1) UNION ALL SELECT i + 1 FROM n WHERE i < 1000)"
                    " INSERT INTO orders SELECT i, 'n' || i, i FROM n");
    auto& Table = Open.Table;
    auto& Qty = Table.FieldByName("qty");
    Table.StartTransaction();
    std::size_t Before = 0;
    for (int I = 1; I <= 1000; ++I) {
        if (I == 500)
            Before = AllocationCount();
        ASSERT_TRUE(Table.Locate("id", I));
        Table.Edit();
        Qty.SetValue(-I);
        Table.Post();
    }
    EXPECT_LT(AllocationCount() - Before, 10);      // the storage of changes that wait doubles now and then
    Table.Commit();
    EXPECT_EQ(Open.Rows("SELECT sum(qty) FROM orders"), TRowTexts{"-500500"});
}

/// Of three lookups, the first without an index, a later one with a temporary one.
TTexts FoundEachTime(TTestTable& Open, const TVariant& Key)
{
    TTexts Ids;
    for (int I = 0; I < 3; ++I)
        Ids.push_back(Open.Table.Locate("k", Key) ? Open.Table.FieldByName("id").AsString() : "none");
    return Ids;
}

TEST(KvSqliteLookup, FindsTheSameRecordFromTheFirstTimeOn)
{
    for (const char* const Index : {"", "CREATE INDEX by_k ON orders (k)"}) {
        for (const char* const Type : {"TEXT", "BLOB", "NUMERIC", ""}) {
            SCOPED_TRACE(std::string(Type) + Index);
            TTestTable Open("CREATE TABLE orders (id INTEGER PRIMARY KEY, k " + std::string(Type) + ");" +
                            "INSERT INTO orders VALUES (1, x'414243'), (2, 'ABC'), (3, 5), (4, '5');"
                            "INSERT INTO orders VALUES (5, NULL);" +
                            Index);
            const TVariant Keys[] = {"ABC", "5", 5, Null, "x"};
            for (const auto& Key : Keys) {
                const auto Ids = FoundEachTime(Open, Key);
                EXPECT_EQ(Ids, TTexts(3, Ids[0])) << Key.ToText();
            }
        }
    }
}

TEST(KvSqliteLookup, TextAndBytesAreDifferentKeys)
{
    TTestTable Open("CREATE TABLE orders (id INTEGER PRIMARY KEY, k TEXT);"
                    "INSERT INTO orders VALUES (1, x'414243'), (2, 'ABC');");
    EXPECT_EQ(FoundEachTime(Open, "ABC"), TTexts(3, "2"));
}

TEST(KvSqliteLookup, AnUpdateOfKeysAloneIsTheSameForEveryRecord)
{
    TTestTable Open("CREATE TABLE orders (id INTEGER PRIMARY KEY, k TEXT);"
                    "INSERT INTO orders VALUES (1, 'a'), (2, 'b'), (3, 'c');"
                    "CREATE TABLE log (k TEXT);"
                    "CREATE TRIGGER told AFTER UPDATE ON orders BEGIN INSERT INTO log VALUES (NEW.k); END;");
    for (const char* const Key : {"a", "b", "c"}) {
        ASSERT_TRUE(Open.Table.Locate("k", Key));
        EditRecord(Open.Table, {{"k", Key}});
    }
    EXPECT_EQ(Open.Rows("SELECT k FROM log"), TRowTexts());
}

} // namespace

} // namespace kv
