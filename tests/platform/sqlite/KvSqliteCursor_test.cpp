#include "KvSqliteCursor.h"

#include <gtest/gtest.h>

#include <string>

#include "KvSqliteTestTable.h"

namespace kv {

namespace {

constexpr const char* Numbers = "CREATE TABLE orders (id INTEGER PRIMARY KEY, name TEXT);"
                                "INSERT INTO orders VALUES (30, 'c'), (10, 'a'), (20, 'b')";

TEST(KvSqliteCursor, EmptyTableIsAtEof)
{
    TTestTable Open;
    EXPECT_TRUE(Open.Table.Eof());
    EXPECT_TRUE(Open.Table.FieldByName("name").IsNull());
    Open.Table.Next();
    EXPECT_TRUE(Open.Table.Eof());
    EXPECT_EQ(Open.Table.RecordCount(), 0);
}

TEST(KvSqliteCursor, RecordsRunInTheOrderOfTheRowid)
{
    TTestTable Open(Numbers);
    EXPECT_EQ(RestOf(Open.Table, "name"), (TTexts{"a", "b", "c"}));
    EXPECT_TRUE(Open.Table.Eof());
    EXPECT_EQ(AllOf(Open.Table, "id"), (TTexts{"10", "20", "30"}));
}

TEST(KvSqliteCursor, RecordsWithoutRowidRunInTheOrderOfThePrimaryKey)
{
    TTestTable Open(
        "CREATE TABLE orders (a TEXT COLLATE NOCASE, b INT, PRIMARY KEY (a, b DESC)) WITHOUT ROWID;"
        "INSERT INTO orders VALUES ('x', 1), ('B', 2), ('a', 1), ('b', 3), ('X', 9)");
    EXPECT_EQ(AllOf(Open.Table, "b"), (TTexts{"1", "2", "3", "1", "9"}));
}

TEST(KvSqliteCursor, NextGoesOnFromALocatedRecord)
{
    TTestTable Open(Numbers);
    ASSERT_TRUE(Open.Table.Locate("name", "b"));
    EXPECT_EQ(RestOf(Open.Table, "name"), (TTexts{"b", "c"}));
}

TEST(KvSqliteCursor, NextGoesOnFromALocatedRecordOfACompositeKey)
{
    TTestTable Open("CREATE TABLE orders (a INT, b TEXT, PRIMARY KEY (a, b)) WITHOUT ROWID;"
                    "INSERT INTO orders VALUES (1, 'x'), (1, 'y'), (2, 'a'), (2, 'b')");
    ASSERT_TRUE(Open.Table.Locate("b", "y"));
    EXPECT_EQ(RestOf(Open.Table, "b"), (TTexts{"y", "a", "b"}));
}

TEST(KvSqliteCursor, AppendedRecordIsCurrentAndTheLast)
{
    TTestTable Open(Numbers);
    AppendRecord(Open.Table, {{"name", "d"}});
    EXPECT_EQ(Open.Table.FieldByName("id").AsString(), "31");
    Open.Table.Next();
    EXPECT_TRUE(Open.Table.Eof());
}

TEST(KvSqliteCursor, AppendedRecordTakesItsPlaceInTheOrder)
{
    TTestTable Open(Numbers);
    AppendRecord(Open.Table, {{"id", 15}, {"name", "between"}});
    EXPECT_EQ(RestOf(Open.Table, "name"), (TTexts{"between", "b", "c"}));
    EXPECT_EQ(AllOf(Open.Table, "name"), (TTexts{"a", "between", "b", "c"}));
}

TEST(KvSqliteCursor, ChangedRecordStaysCurrent)
{
    TTestTable Open(Numbers);
    Open.Table.Next();
    EditRecord(Open.Table, {{"name", "changed"}});
    EXPECT_EQ(RestOf(Open.Table, "name"), (TTexts{"changed", "c"}));
}

TEST(KvSqliteCursor, RecordWhoseKeyChangesIsFollowed)
{
    TTestTable Open(Numbers);
    EditRecord(Open.Table, {{"id", 25}});
    EXPECT_EQ(RestOf(Open.Table, "name"), (TTexts{"a", "c"}));
}

TEST(KvSqliteCursor, DeletingMovesToTheRecordAfter)
{
    TTestTable Open(Numbers);
    Open.Table.Next();
    Open.Table.Delete();
    EXPECT_EQ(Open.Table.FieldByName("name").AsString(), "c");
    Open.Table.Delete();
    EXPECT_TRUE(Open.Table.Eof());
    EXPECT_EQ(AllOf(Open.Table, "name"), (TTexts{"a"}));
}

TEST(KvSqliteCursor, DeletingUntilEofEmptiesTheTable)
{
    for (const auto* const Key : {"(id INTEGER PRIMARY KEY, name TEXT)",
                                  "(id INT, name TEXT PRIMARY KEY) WITHOUT ROWID"}) {
        TTestTable Open("CREATE TABLE orders " + std::string(Key) +
                        "; WITH RECURSIVE n(i) AS (VALUES(1) UNION ALL SELECT i + 1 FROM n WHERE i < 1000)"
                        " INSERT INTO orders SELECT i, 'n' || i FROM n");
        Open.Table.StartTransaction();
        int Deleted = 0;
        for (Open.Table.First(); !Open.Table.Eof(); ++Deleted)
            Open.Table.Delete();
        EXPECT_EQ(Deleted, 1000);
        EXPECT_EQ(Open.Table.RecordCount(), 0);
        Open.Table.Commit();
    }
}

TEST(KvSqliteCursor, LendsTextUntilItMoves)
{
    TTestTable Open(Numbers);
    const auto Loan = Open.Table.FieldByName("name").PeekValue();
    EXPECT_EQ(Loan.Text(), "a");
    EXPECT_EQ(Open.Table.FieldByName("id").Value(), TVariant(10));
    EXPECT_EQ(Loan.Text(), "a");
}

TEST(KvSqliteCursor, CommitAndRollbackKeepTheCurrentRecord)
{
    TTestTable Open(Numbers);
    Open.Table.Next();
    Open.Table.StartTransaction();
    Open.Table.Commit();
    EXPECT_EQ(Open.Table.FieldByName("name").AsString(), "b");
    Open.Table.StartTransaction();
    Open.Table.Rollback();
    EXPECT_EQ(RestOf(Open.Table, "name"), (TTexts{"b", "c"}));
}

TEST(KvSqliteCursor, OpeningTakesNoLock)
{
    TTestTable Open(Numbers);
    TTestConnection Other(Open.File.FileName());
    Other.Run("INSERT INTO orders VALUES (40, 'd')");
    EXPECT_EQ(AllOf(Open.Table, "name").size(), 4u);
    Other.Run("DELETE FROM orders");                // reading to the end has given its lock back
}

TEST(KvSqliteCursor, RecordDeletedByOthersReadsAsNull)
{
    TTestTable Open(Numbers);
    ASSERT_TRUE(Open.Table.Locate("id", 20));
    Open.File.Run("DELETE FROM orders WHERE id = 20");
    EXPECT_TRUE(Open.Table.FieldByName("name").IsNull());
    EXPECT_EQ(Open.MessageOf([&] { EditRecord(Open.Table, {{"name", "x"}}); }),
              "orders: the record has been deleted, or a trigger has ignored the change");
    Open.Table.Cancel();
    Open.Table.Next();
    EXPECT_EQ(Open.Table.FieldByName("name").AsString(), "c");
}

TEST(KvSqliteCursor, ViewsAreReadForwardAndSearched)
{
    TTestTable Open("CREATE TABLE base (n TEXT); INSERT INTO base VALUES ('c'), ('a'), ('b');"
                    "CREATE VIEW orders AS SELECT n, upper(n) AS u FROM base ORDER BY n");
    EXPECT_EQ(AllOf(Open.Table, "n"), (TTexts{"a", "b", "c"}));
    ASSERT_TRUE(Open.Table.Locate("u", "B"));
    EXPECT_EQ(RestOf(Open.Table, "n"), (TTexts{"b", "c"}));
    Open.Table.First();
    EXPECT_FALSE(Open.Table.Locate("u", "x"));
    EXPECT_EQ(Open.Table.FieldByName("n").AsString(), "a");
    EXPECT_EQ(Open.Table.RecordCount(), 3);
    Open.Table.Append();
    EXPECT_EQ(Open.MessageOf([&] { Open.Table.Post(); }), "orders: records cannot be added to a view");
    Open.Table.Cancel();
    EXPECT_EQ(Open.MessageOf([&] { Open.Table.Delete(); }), "orders: records of a view cannot be deleted");
}

} // namespace

} // namespace kv
