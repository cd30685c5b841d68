#include "KvSqliteWriter.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <limits>
#include <ostream>
#include <string>
#include <string_view>

#include "KvAllocationCount.h"
#include "KvCodePage.h"
#include "KvSqliteDatabase.h"
#include "KvSqliteTestTable.h"

namespace kv {

namespace {

TEST(KvSqliteWriter, UnassignedColumnsGetTheDatabasesDefault)
{
    TTestTable Open("CREATE TABLE orders (id INTEGER PRIMARY KEY, name TEXT DEFAULT 'nobody', "
                    "qty INT DEFAULT (1 + 1))");
    AppendRecord(Open.Table, {{"name", "Ada"}});
    AppendRecord(Open.Table, {{"qty", Null}});
    AppendRecord(Open.Table, {{"id", 7}});
    Open.Table.Append();
    Open.Table.Post();
    EXPECT_EQ(Open.Rows(), (TRowTexts{"1|Ada|2", "2|nobody|NULL", "7|nobody|2", "8|nobody|2"}));
}

TEST(KvSqliteWriter, NullAndEmptyTextStayApart)
{
    TTestTable Open("CREATE TABLE orders (id INTEGER PRIMARY KEY, name TEXT, raw BLOB)");
    AppendRecord(Open.Table, {{"name", ""}, {"raw", ""}});
    AppendRecord(Open.Table, {{"name", Null}, {"raw", Null}});
    EXPECT_EQ(Open.Rows("SELECT quote(name), quote(raw) FROM orders"), (TRowTexts{"''|X''", "NULL|NULL"}));
    Open.Table.First();
    EXPECT_FALSE(Open.Table.FieldByName("name").IsNull());
    EXPECT_FALSE(Open.Table.FieldByName("raw").IsNull());
    Open.Table.Next();
    EXPECT_TRUE(Open.Table.FieldByName("name").IsNull());
}

TEST(KvSqliteWriter, WholeRangeOfIntegersIsExact)
{
    TTestTable Open;
    constexpr std::int64_t Values[] = {std::numeric_limits<std::int64_t>::min(), -1, 0, 9007199254740993,
                                       std::numeric_limits<std::int64_t>::max()};
    for (const auto Value : Values)
        AppendRecord(Open.Table, {{"qty", Value}});
    EXPECT_EQ(Open.Rows("SELECT qty FROM orders"),
              (TRowTexts{"-9223372036854775808", "-1", "0", "9007199254740993",
                         "9223372036854775807"}));
    Open.Table.First();
    for (const auto Value : Values) {
        EXPECT_EQ(Open.Table.FieldByName("qty").Value().Integer(), Value);
        Open.Table.Next();
    }
}

TEST(KvSqliteWriter, TextAndBytesAreKeptToTheLastByte)
{
    TTestTable Open("CREATE TABLE orders (id INTEGER PRIMARY KEY, name TEXT, raw BLOB)");
    const std::string Zero("a\0b\0", 4), Long(100000, 'x'), Bytes("\xFF\0\xC3\x28", 4);
    AppendRecord(Open.Table, {{"name", Zero}, {"raw", Bytes}});
    AppendRecord(Open.Table, {{"name", Long}, {"raw", Long}});
    EXPECT_EQ(Open.Rows("SELECT hex(name), hex(raw), typeof(raw) FROM orders WHERE id = 1"),
              TRowTexts{"61006200|FF00C328|blob"});
    Open.Table.First();
    EXPECT_EQ(Open.Table.FieldByName("name").AsString(), Zero);
    EXPECT_EQ(Open.Table.FieldByName("raw").AsString(), Bytes);
    Open.Table.Next();
    EXPECT_EQ(Open.Table.FieldByName("name").AsString(), Long);
}

TEST(KvSqliteWriter, EveryKindComesBackAsItWasGiven)
{
    TTestTable Open("CREATE TABLE orders (id INTEGER PRIMARY KEY, b BOOLEAN, r REAL, d DECIMAL(9,2), "
                    "m MONEY, day DATE, at DATETIME, t TIME, g GUID, v)");
    const TDateTime Day{45351}, Noon{45351.5}, Time{0.25};
    AppendRecord(Open.Table, {{"b", true}, {"r", 0.1}, {"d", "12.34"}, {"m", TCurrency{123456}}, {"day", Day},
                              {"at", Noon},
                              {"t", Time}, {"g", "{01234567-89AB-CDEF-0123-456789ABCDEF}"}, {"v", 5}});
    EXPECT_EQ(Open.Rows("SELECT * FROM orders"),
              TRowTexts{"1|1|0.1|12.34|12.3456|2024-02-29|2024-02-29 12:00:00|06:00:00|"
                        "{01234567-89AB-CDEF-0123-456789ABCDEF}|5"});
    Open.Table.First();
    const auto Value = [&Open](const char* Name) { return Open.Table.FieldByName(Name).Value(); };
    EXPECT_EQ(Value("b"), TVariant(true));
    EXPECT_EQ(Value("r"), TVariant(0.1));
    EXPECT_EQ(Value("d"), TVariant(12.34));
    EXPECT_EQ(Value("m"), TVariant(TCurrency{123456}));
    EXPECT_EQ(Value("day"), TVariant(Day));
    EXPECT_EQ(Value("at"), TVariant(Noon));
    EXPECT_EQ(Value("t"), TVariant(Time));
    EXPECT_EQ(Value("v"), TVariant(5));
}

TEST(KvSqliteWriter, DatabasesInUtf16HoldTheSame)
{
    TTestTable Open("PRAGMA encoding = 'UTF-16le'; CREATE TABLE orders (id INTEGER PRIMARY KEY, name TEXT)");
    const std::string Text("Zo\xC3\xAB \xF0\x9F\x98\x80\0.", 11);
    AppendRecord(Open.Table, {{"name", Text}});
    for (int Time = 0; Time < 3; ++Time)
        EXPECT_TRUE(Open.Table.Locate("name", Text));
    EXPECT_EQ(Open.Table.FieldByName("name").AsString(), Text);
}

/// The process's page for the length of a test.
class TAnsiPage
{
public:
    explicit TAnsiPage(const char* Name) { SetAnsiCodePage(Name); }
    TAnsiPage(const TAnsiPage&) = delete;
    TAnsiPage& operator=(const TAnsiPage&) = delete;
    ~TAnsiPage() { SetAnsiCodePage("UTF-8"); }
};

TEST(KvSqliteWriter, TextIsUnicodeInTheDatabaseWhateverTheProcesssPage)
{
    const TAnsiPage Page("windows-1252");
    TTestTable Open(
        "CREATE TABLE orders (id INTEGER PRIMARY KEY, \"gr\xC3\xB6\xC3\x9F\x65\" TEXT, raw BLOB)");
    AppendRecord(Open.Table, {{"gr\xF6\xDF\x65", "caf\xE9"}, {"raw", "caf\xE9"}});
    EXPECT_EQ(Open.Rows("SELECT hex(\"gr\xC3\xB6\xC3\x9F\x65\"), hex(raw) FROM orders"),
              TRowTexts{"636166C3A9|636166E9"});
    for (int Time = 0; Time < 3; ++Time)
        EXPECT_TRUE(Open.Table.Locate("gr\xF6\xDF\x65", "caf\xE9"));
    EXPECT_EQ(Open.Table.FieldByName("gr\xF6\xDF\x65").AsString(), "caf\xE9");
    // Infinity has no place in the page.
    Open.File.Run("UPDATE orders SET \"gr\xC3\xB6\xC3\x9F\x65\" = '\xE2\x88\x9E'");
    Open.Table.First();
    EXPECT_THROW(Open.Table.Fields(1).AsString(), EConvertError);
}

// --- Errors -----------------------------------------------------------------------------------------

struct TRefusedRow
{
    std::string_view Columns, Message;
};

std::ostream& operator<<(std::ostream& Out, const TRefusedRow& Row)
{
    return Out << Row.Columns;
}

class KvSqliteWriterRefuses : public testing::TestWithParam<TRefusedRow> {};

TEST_P(KvSqliteWriterRefuses, NamingConstraintAndValue)
{
    TTestTable Open("CREATE TABLE parent (k PRIMARY KEY); CREATE TABLE orders (" +
                    std::string(GetParam().Columns) +
                    "); INSERT INTO orders(id, name, qty) VALUES (1, 'Ada', NULL)");
    TSQLiteDatabase Database;
    Database.DatabaseName = Open.File.FileName();
    Database.Execute("PRAGMA foreign_keys = ON");
    TSQLiteTable Table;
    Table.SetDatabase(&Database);
    Table.TableName = "orders";
    Table.Open();
    Table.StartTransaction();
    AppendRecord(Table, {{"id", 2}, {"name", "Eve"}, {"qty", Null}});
    Table.Append();
    EXPECT_EQ(Open.MessageOf([&] { PostValues(Table, {{"id", 3}, {"name", "Ada"}, {"qty", -5}}); }),
              "orders: " + std::string(GetParam().Message));
    EXPECT_EQ(Table.State(), dsInsert);
    Table.Cancel();
    ASSERT_TRUE(Table.Locate("id", 2));
    EXPECT_EQ(Open.MessageOf([&] { EditRecord(Table, {{"name", "Ada"}, {"qty", -5}}); }),
              "orders: " + std::string(GetParam().Message));
    Table.Cancel();
    AppendRecord(Table, {{"id", 4}, {"name", "Zoe"}, {"qty", Null}});
    Table.Commit();
    EXPECT_EQ(Open.Rows("SELECT id, name FROM orders ORDER BY id"), (TRowTexts{"1|Ada", "2|Eve", "4|Zoe"}));
}

INSTANTIATE_TEST_SUITE_P(, KvSqliteWriterRefuses, testing::Values(
    TRefusedRow{"id, name UNIQUE, qty", "UNIQUE constraint failed: orders.name (name = 'Ada')"},
    TRefusedRow{"id, name, qty CHECK (qty > 0)", "CHECK constraint failed: qty > 0 (qty = -5)"},
    TRefusedRow{"id, name, qty, CONSTRAINT enough CHECK (qty > 0)", "CHECK constraint failed: enough"},
    TRefusedRow{"id, name, qty REFERENCES parent", "FOREIGN KEY constraint failed (qty = -5)"},
    TRefusedRow{"id, name, qty, UNIQUE (name) ON CONFLICT IGNORE",
                "UNIQUE constraint failed: orders.name (name = 'Ada')"},
    TRefusedRow{"id, name UNIQUE ON CONFLICT REPLACE, qty",
                "UNIQUE constraint failed: orders.name (name = 'Ada')"},
    TRefusedRow{"id, name UNIQUE ON CONFLICT ROLLBACK, qty",
                "UNIQUE constraint failed: orders.name (name = 'Ada')"},
    TRefusedRow{"id, name UNIQUE ON CONFLICT FAIL, qty",
                "UNIQUE constraint failed: orders.name (name = 'Ada')"}));

TEST(KvSqliteWriter, AnyColumnsOfStrictTablesKeepTextThatReadsAsANumber)
{
    TTestTable Open("CREATE TABLE orders (id INTEGER PRIMARY KEY, name ANY, qty INT) STRICT");
    AppendRecord(Open.Table, {{"name", "007"}, {"qty", 5}});
    EXPECT_EQ(Open.Rows("SELECT quote(name), qty FROM orders"), TRowTexts{"'007'|5"});
}

TEST(KvSqliteWriter, RequiredFieldsAreAskedForBeforeTheDatabaseIs)
{
    TTestTable Open("CREATE TABLE orders (id INTEGER PRIMARY KEY, name TEXT NOT NULL, "
                    "qty INT NOT NULL DEFAULT 0)");
    EXPECT_EQ(Open.MessageOf([&] { AppendRecord(Open.Table, {{"qty", 1}}); }),
              "Field 'name' must have a value");
    Open.Table.Cancel();
    AppendRecord(Open.Table, {{"name", "Ada"}});
    EXPECT_EQ(Open.Rows(), TRowTexts{"1|Ada|0"});
}

TEST(KvSqliteWriter, LongValuesAreCutInMessages)
{
    TTestTable Open("CREATE TABLE orders (id INTEGER PRIMARY KEY, name TEXT UNIQUE)");
    const std::string Long = std::string(79, 'x') + "\xC3\xA9" + std::string(50, 'y');
    AppendRecord(Open.Table, {{"name", Long}});
    EXPECT_EQ(Open.MessageOf([&] { AppendRecord(Open.Table, {{"name", Long}}); }),
              "orders: UNIQUE constraint failed: orders.name (name = '" + std::string(79, 'x') + "...')");
}

TEST(KvSqliteWriter, ColumnDroppedMeanwhileIsAnError)
{
    TTestTable Open;
    AppendRecord(Open.Table, {{"name", "Ada"}, {"qty", 1}});
    Open.File.Run("ALTER TABLE orders DROP COLUMN qty");
    EXPECT_EQ(Open.MessageOf([&] { AppendRecord(Open.Table, {{"name", "Bob"}, {"qty", 2}}); }),
              "orders: table main.orders has no column named qty (qty = 2)");
    Open.Table.Cancel();
    AppendRecord(Open.Table, {{"name", "Eve"}});
    EXPECT_EQ(Open.Rows("SELECT * FROM orders"), (TRowTexts{"1|Ada", "2|Eve"}));
}

TEST(KvSqliteWriter, TableDroppedMeanwhileIsAnError)
{
    TTestTable Open;
    Open.File.Run("DROP TABLE orders");
    EXPECT_EQ(Open.MessageOf([&] { AppendRecord(Open.Table, {{"name", "Ada"}}); }),
              "orders: no such table: main.orders");
}

// --- Triggers ---------------------------------------------------------------------------------------

TEST(KvSqliteWriter, TriggersKeepTheirOwnConflictClauses)
{
    TTestTable Open(OrdersTable + "CREATE TABLE names (name PRIMARY KEY);"
                    "CREATE TRIGGER t AFTER INSERT ON orders BEGIN INSERT OR IGNORE INTO names "
                    "VALUES (NEW.name); END");
    AppendRecord(Open.Table, {{"name", "Ada"}});
    AppendRecord(Open.Table, {{"name", "Ada"}});
    EXPECT_EQ(Open.Table.FieldByName("id").AsString(), "2");
    EXPECT_EQ(Open.Rows("SELECT count(*) FROM names"), TRowTexts{"1"});
}

TEST(KvSqliteWriter, RecordThatATriggerIgnoresIsAnError)
{
    TTestTable Open(OrdersTable + "INSERT INTO orders VALUES (1, 'Ada', 1);"
                    "CREATE TRIGGER a BEFORE INSERT ON orders BEGIN SELECT RAISE(IGNORE); END;"
                    "CREATE TRIGGER b BEFORE UPDATE ON orders BEGIN SELECT RAISE(IGNORE); END;"
                    "CREATE TRIGGER c BEFORE DELETE ON orders BEGIN SELECT RAISE(IGNORE); END");
    EXPECT_EQ(Open.MessageOf([&] { AppendRecord(Open.Table, {{"name", "Bob"}}); }),
              "orders: a trigger has ignored the record");
    Open.Table.Cancel();
    EXPECT_EQ(Open.MessageOf([&] { EditRecord(Open.Table, {{"name", "Bob"}}); }),
              "orders: the record has been deleted, or a trigger has ignored the change");
    Open.Table.Cancel();
    EXPECT_EQ(Open.MessageOf([&] { Open.Table.Delete(); }),
              "orders: the record has been deleted already, or a trigger keeps it");
    EXPECT_EQ(Open.Rows(), TRowTexts{"1|Ada|1"});
}

TEST(KvSqliteWriter, FailingTriggerLeavesNoTrace)
{
    for (const bool InTransaction : {false, true}) {
        TTestTable Open(OrdersTable + "CREATE TRIGGER t AFTER INSERT ON orders WHEN NEW.qty < 0"
                                      " BEGIN SELECT RAISE(FAIL, 'too few'); END");
        if (InTransaction)
            Open.Table.StartTransaction();
        AppendRecord(Open.Table, {{"name", "Ada"}, {"qty", 1}});
        EXPECT_EQ(Open.MessageOf([&] { AppendRecord(Open.Table, {{"name", "Bob"}, {"qty", -1}}); }),
                  "orders: too few");
        Open.Table.Cancel();
        AppendRecord(Open.Table, {{"name", "Eve"}, {"qty", 1}});
        Open.Table.Commit();
        EXPECT_EQ(Open.Rows(), (TRowTexts{"1|Ada|1", "2|Eve|1"}));
    }
}

// --- What an update writes --------------------------------------------------------------------------

const std::string Watched =
    OrdersTable + "CREATE TABLE log (what); INSERT INTO orders VALUES (1, 'Ada', 1);"
                  "CREATE TRIGGER i AFTER UPDATE OF id ON orders BEGIN INSERT INTO log VALUES ('id'); END;"
                  "CREATE TRIGGER n AFTER UPDATE OF name ON orders BEGIN INSERT INTO log "
                  "VALUES ('name'); END;"
                  "CREATE TRIGGER q AFTER UPDATE OF qty ON orders BEGIN INSERT INTO log VALUES ('qty'); END";

TEST(KvSqliteWriter, OnlyAssignedColumnsAreWritten)
{
    TTestTable Open(Watched);
    EditRecord(Open.Table, {{"qty", 5}});
    EXPECT_EQ(Open.Rows("SELECT what FROM log"), TRowTexts{"qty"});
}

TEST(KvSqliteWriter, KeysThatWereJustFoundAreNotWrittenAgain)
{
    TTestTable Open(Watched);
    ASSERT_TRUE(Open.Table.Locate("id", 1));
    EditRecord(Open.Table, {{"id", 1}, {"qty", 5}});
    EXPECT_EQ(Open.Rows("SELECT what FROM log"), TRowTexts{"qty"});
    ASSERT_TRUE(Open.Table.Locate("id", 1));
    EditRecord(Open.Table, {{"id", 1}});
    EXPECT_EQ(Open.Rows("SELECT what FROM log"), TRowTexts{"qty"});
    ASSERT_TRUE(Open.Table.Locate("id", 1));
    EXPECT_FALSE(Open.Table.Locate("id", "x"));
    EditRecord(Open.Table, {{"id", 2}});
    EXPECT_EQ(Open.Rows("SELECT id, qty FROM orders"), TRowTexts{"2|5"});
    EditRecord(Open.Table, {{"id", 2}});            // known no longer
    EXPECT_EQ(Open.Rows("SELECT what FROM log"), (TRowTexts{"qty", "id", "id"}));
}

TEST(KvSqliteWriter, KeysAreWrittenWhenSqlHasChangedThemMeanwhile)
{
    TTestFile File(Watched);
    TSQLiteDatabase Database;
    Database.DatabaseName = File.FileName();
    TSQLiteTable Table;
    Table.SetDatabase(&Database);
    Table.TableName = "orders";
    Table.Open();
    for (int Time = 0; Time < 2; ++Time)
        ASSERT_TRUE(Table.Locate("name", "Ada"));
    Database.Execute("UPDATE orders SET name = 'other'");
    EditRecord(Table, {{"name", "Ada"}});
    EXPECT_EQ(File.Rows("SELECT name FROM orders"), TRowTexts{"Ada"});
}

TEST(KvSqliteWriter, SetsOfColumnsMayAlternate)
{
    TTestTable Open;
    for (int I = 0; I < 100; ++I) {
        Open.Table.Append();
        if (I % 2)
            Open.Table.FieldByName("name").SetValue("n" + std::to_string(I));
        if (I % 3)
            Open.Table.FieldByName("qty").SetValue(I);
        Open.Table.Post();
    }
    EXPECT_EQ(Open.Rows("SELECT count(*), count(name), count(qty) FROM orders"), TRowTexts{"100|50|66"});
}

TEST(KvSqliteWriter, AppendingAllocatesNothing)
{
    TTestTable Open;
    auto& Table = Open.Table;
    auto& Name = Table.FieldByName("name");
    Table.StartTransaction();
    std::size_t Before = 0;
    for (int I = 1; I <= 1000; ++I) {
        if (I == 600)                               // whatever was to be prepared has been
            Before = AllocationCount();
        Table.Append();
        Name.SetValue("somebody");
        Table.Post();
    }
    EXPECT_EQ(AllocationCount(), Before);
    Table.Commit();
}

/// The command line tool reads what was written, as any other program would.
TEST(KvSqliteWriter, OtherProgramsReadTheSame)
{
    TTestTable Open;
    AppendRecord(Open.Table, {{"name", "Zo\xC3\xAB"}, {"qty", 42}});
    std::FILE* const Pipe =
        popen(("sqlite3 '" + Open.File.FileName() + "' 'SELECT * FROM orders' 2>&1").c_str(), "r");
    ASSERT_NE(Pipe, nullptr);
    char Line[100] = "";
    const bool HasLine = std::fgets(Line, sizeof Line, Pipe) != nullptr;
    if (pclose(Pipe) != 0 || !HasLine)
        GTEST_SKIP() << "no sqlite3 on this machine";
    EXPECT_STREQ(Line, "1|Zo\xC3\xAB|42\n");
}

} // namespace

} // namespace kv
