#include "KvSqliteTable.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "KvException.h"
#include "KvSqliteDatabase.h"
#include "KvSqliteTestFile.h"

namespace kv {

namespace {

std::string_view TypeName(TFieldType Type)
{
    switch (Type) {
    case ftString:   return "string";
    case ftLargeint: return "largeint";
    case ftSmallint: return "smallint";
    case ftFloat:    return "float";
    case ftVariant:  return "variant";
    case ftVarBytes: return "bytes";
    default:         return "other";
    }
}

/// "NAME type(size) required read-only default" of each field.
std::vector<std::string> FieldsOf(const TDataSet& DataSet)
{
    std::vector<std::string> Result;
    for (int I = 0; I < DataSet.FieldCount(); ++I) {
        const auto& Field = DataSet.Fields(I);
        auto& Text = Result.emplace_back(Field.FieldName() + " " + std::string(TypeName(Field.DataType())));
        if (Field.Size() > 0)
            Text += "(" + std::to_string(Field.Size()) + ")";
        Text += Field.Required() ? " required" : "";
        Text += Field.ReadOnly() ? " read-only" : "";
        Text += Field.HasDefault() ? " default" : "";
    }
    return Result;
}

struct TOpenTable
{
    explicit TOpenTable(const std::string& Sql, const std::string& TableName = "t") : File(Sql)
    {
        Table.DatabaseName = File.FileName();
        Table.TableName = TableName;
        Table.Open();
    }

    TTestFile File;
    TSQLiteTable Table;
};

using TTexts = std::vector<std::string>;

TEST(KvSqliteSchema, FieldsCarryTypeSizeAndFlags)
{
    TOpenTable Open("CREATE TABLE t (id INTEGER PRIMARY KEY, name VARCHAR(20) NOT NULL, "
                    "qty SMALLINT DEFAULT 1,"
                    " price REAL NOT NULL DEFAULT 0, note, raw VARBINARY(4), \"none\" TEXT DEFAULT NULL)");
    EXPECT_EQ(FieldsOf(Open.Table),
              (TTexts{"id largeint default", "name string(20) required", "qty smallint default",
                      "price float required default", "note variant", "raw bytes(4)", "none string"}));
}

TEST(KvSqliteSchema, GeneratedColumnsAreReadOnly)
{
    TOpenTable Open("CREATE TABLE t (a INTEGER, b INTEGER GENERATED ALWAYS AS (a + 1) STORED, "
                    "c INT NOT NULL AS (a * 2))");
    EXPECT_EQ(FieldsOf(Open.Table), (TTexts{"a largeint", "b largeint read-only", "c largeint read-only"}));
}

TEST(KvSqliteSchema, ColumnsOfViewsAreReadOnlyAndTypedAsTheirTables)
{
    TOpenTable Open("CREATE TABLE base (a INTEGER NOT NULL, n VARCHAR(5));"
                    "CREATE VIEW t AS SELECT a, n, a + 1 AS b FROM base");
    EXPECT_EQ(FieldsOf(Open.Table),
              (TTexts{"a largeint read-only", "n string(5) read-only", "b variant read-only"}));
}

TEST(KvSqliteSchema, AnyOfStrictTablesIsVariant)
{
    TOpenTable Open("CREATE TABLE t (k INT PRIMARY KEY, v ANY) STRICT");
    EXPECT_EQ(FieldsOf(Open.Table), (TTexts{"k largeint required", "v variant"}));
}

TEST(KvSqliteSchema, HiddenColumnsOfVirtualTablesStayHidden)
{
    TOpenTable Open("CREATE VIRTUAL TABLE t USING fts5(title, body)");
    EXPECT_EQ(FieldsOf(Open.Table), (TTexts{"title variant", "body variant"}));
}

struct TKeyRow
{
    std::string_view Columns, PrimaryKey;
};

std::ostream& operator<<(std::ostream& Out, const TKeyRow& Row)
{
    return Out << Row.Columns;
}

class KvSqliteSchemaKnows : public testing::TestWithParam<TKeyRow> {};

TEST_P(KvSqliteSchemaKnows, ThePrimaryKey)
{
    TOpenTable Open("CREATE TABLE t " + std::string(GetParam().Columns));
    EXPECT_EQ(GetPropValue(Open.Table, "IndexFieldName").ToText(), GetParam().PrimaryKey);
}

INSTANTIATE_TEST_SUITE_P(, KvSqliteSchemaKnows, testing::Values(
    TKeyRow{"(id INTEGER PRIMARY KEY, b)", "id"},
    TKeyRow{"(id INTEGER PRIMARY KEY AUTOINCREMENT, b)", "id"},
    TKeyRow{"(id INT PRIMARY KEY, b)", "id"},
    TKeyRow{"(id INTEGER PRIMARY KEY DESC, b)", "id"},
    TKeyRow{"(a, b, c, PRIMARY KEY (c, a))", "c;a"},
    TKeyRow{"(a, b, c, PRIMARY KEY (c, a)) WITHOUT ROWID", "c;a"},
    TKeyRow{"(a, b)", ""}));

TEST(KvSqliteSchema, PrimaryKeyIsEmptyWhileClosed)
{
    TOpenTable Open("CREATE TABLE t (id INTEGER PRIMARY KEY)");
    Open.Table.Close();
    EXPECT_EQ(GetPropValue(Open.Table, "IndexFieldName").ToText(), "");
}

/// Appends, locates, changes and deletes through the key that identifies records.
void ExpectFullService(const std::string& Columns)
{
    TOpenTable Open("CREATE TABLE t " + Columns +
                    "; INSERT INTO t(k, v) VALUES ('a', 1), ('b', 2), ('c', 3)");
    auto& Table = Open.Table;
    Table.Append();
    Table.FieldByName("k").SetValue("d");
    Table.FieldByName("v").SetValue(4);
    Table.Post();
    Table.Edit();
    Table.FieldByName("v").SetValue(5);
    Table.Post();
    ASSERT_TRUE(Table.Locate("k", "b"));
    Table.Delete();
    EXPECT_EQ(Table.FieldByName("k").AsString(), "c");
    Table.Edit();
    Table.FieldByName("v").SetValue(33);
    Table.Post();
    Table.Close();
    EXPECT_EQ(Open.File.Rows("SELECT k, v FROM t ORDER BY k"), (TRowTexts{"a|1", "c|33", "d|5"}));
}

TEST(KvSqliteSchema, RecordsAreIdentifiedByWhateverKeyThereIs)
{
    ExpectFullService("(k TEXT, v INT)");
    ExpectFullService("(id INTEGER PRIMARY KEY, k TEXT, v INT)");
    ExpectFullService("(id INTEGER PRIMARY KEY DESC, k TEXT, v INT)");
    ExpectFullService("(k TEXT PRIMARY KEY, v INT)");
    ExpectFullService("(k TEXT PRIMARY KEY, v INT) WITHOUT ROWID");
    ExpectFullService("(k TEXT, x INT DEFAULT 7, v INT, PRIMARY KEY (k DESC, x)) WITHOUT ROWID");
    ExpectFullService("(k TEXT COLLATE NOCASE, v INT, PRIMARY KEY (k)) WITHOUT ROWID");
    ExpectFullService("(k TEXT PRIMARY KEY, v INT) STRICT");
    ExpectFullService("(rowid TEXT, k TEXT, v INT)");
    ExpectFullService("(RowId INT, oid INT, k TEXT, v INT)");
    ExpectFullService("(rowid INT, oid INT, _rowid_ INTEGER PRIMARY KEY, k TEXT, v INT)");
}

TEST(KvSqliteSchema, WithoutAnyNameForTheRowidRecordsCannotBeChanged)
{
    TOpenTable Open("CREATE TABLE t (rowid INT, oid INT, _rowid_ INT, k TEXT); "
                    "INSERT INTO t(k) VALUES ('a'), ('b')");
    auto& Table = Open.Table;
    ASSERT_TRUE(Table.Locate("k", "b"));
    Table.Edit();
    Table.FieldByName("k").SetValue("c");
    EXPECT_THROW(Table.Post(), EDatabaseError);
    Table.Cancel();
    Table.Append();
    Table.FieldByName("k").SetValue("d");
    Table.Post();
    EXPECT_EQ(Table.RecordCount(), 3);
}

TEST(KvSqliteSchema, TableNamesMayNameTheirSchemaAndBeQuoted)
{
    TTestFile Main("CREATE TABLE \"my.table\" (a); CREATE TABLE \"say \"\"hi\"\"\" (b); "
                   "CREATE TABLE orders (c)");
    TTestFile Other("CREATE TABLE orders (d); CREATE TABLE extra (e)");
    TSQLiteDatabase Database;
    Database.DatabaseName = Main.FileName();
    Database.Execute("ATTACH '" + Other.FileName() + "' AS archive");
    TSQLiteTable Table;
    Table.SetDatabase(&Database);
    const auto FirstField = [&Table](const char* Name) {
        Table.Close();
        Table.TableName = Name;
        Table.Open();
        return Table.Fields(0).FieldName();
    };
    EXPECT_EQ(FirstField("orders"), "c");
    EXPECT_EQ(FirstField("ORDERS"), "c");
    EXPECT_EQ(FirstField("main.orders"), "c");
    EXPECT_EQ(FirstField("archive.orders"), "d");
    EXPECT_EQ(FirstField("\"archive\".[orders]"), "d");
    EXPECT_EQ(FirstField("extra"), "e");
    EXPECT_EQ(FirstField("my.table"), "a");
    EXPECT_EQ(FirstField("main.\"my.table\""), "a");
    EXPECT_EQ(FirstField("say \"hi\""), "b");
    EXPECT_EQ(FirstField("\"say \"\"hi\"\"\""), "b");
    Table.Close();
}

TEST(KvSqliteSchema, MissingTableIsToldWithTheNamesThatExist)
{
    TTestFile File("CREATE TABLE orders (a); CREATE TABLE customers (a); CREATE VIEW latest AS SELECT 1");
    TSQLiteTable Table;
    Table.DatabaseName = File.FileName();
    Table.TableName = "order";
    try {
        Table.Open();
        ADD_FAILURE();
    }
    catch (const EDatabaseError& Error) {
        EXPECT_EQ(Error.Message,
                  File.FileName() + ": no such table: order (there are: customers, latest, orders)");
    }
    EXPECT_FALSE(Table.Active());
}

} // namespace

} // namespace kv
