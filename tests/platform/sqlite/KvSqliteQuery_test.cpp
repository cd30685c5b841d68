#include "KvSqliteQuery.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <string_view>

#include "KvProperties.h"
#include "KvSqliteDatabase.h"
#include "KvSqliteTestTable.h"

namespace kv {

namespace {

constexpr const char* Orders = "CREATE TABLE orders (id INTEGER PRIMARY KEY, name VARCHAR(20), day DATE);"
                               "INSERT INTO orders VALUES (1, 'Ada', '2024-02-29'), (2, 'Bob', NULL), (3, "
                               "'Eve', '2024-03-01')";

struct TTestQuery
{
    explicit TTestQuery(std::string_view Sql) : File(Orders)
    {
        Query.DatabaseName = File.FileName();
        Query.SQL.SetText(Sql);
    }
    template <class TAction> std::string MessageOf(TAction Action)
    {
        return kv::MessageOf(File.FileName(), Action);
    }

    TTestFile File;
    TSQLiteQuery Query;
};

TEST(KvSqliteQuery, ReadsRecordsInTheOrderOfTheStatement)
{
    TTestQuery Open("SELECT name, day FROM orders ORDER BY name DESC");
    Open.Query.Open();
    EXPECT_EQ(RestOf(Open.Query, "name"), (TTexts{"Eve", "Bob", "Ada"}));
    EXPECT_EQ(AllOf(Open.Query, "name"), (TTexts{"Eve", "Bob", "Ada"}));
    EXPECT_EQ(Open.Query.RecordCount(), 3);
}

TEST(KvSqliteQuery, FieldsFollowTheColumnsOfTables)
{
    TTestQuery Open("SELECT o.name, o.day, o.id + 1 AS next, p.name FROM orders AS o, orders AS p");
    Open.Query.Open();
    ASSERT_EQ(Open.Query.FieldCount(), 4);
    EXPECT_EQ(Open.Query.Fields(0).DataType(), ftString);
    EXPECT_EQ(Open.Query.Fields(0).Size(), 20);
    EXPECT_EQ(Open.Query.Fields(1).DataType(), ftDate);
    EXPECT_EQ(Open.Query.Fields(2).DataType(), ftVariant);
    EXPECT_EQ(Open.Query.Fields(3).FieldName(), "name_1");
}

TEST(KvSqliteQuery, FirstRunsTheStatementAnew)
{
    TTestQuery Open("SELECT count(*) AS n FROM orders");
    Open.Query.Open();
    EXPECT_EQ(RestOf(Open.Query, "n"), TTexts{"3"});
    Open.File.Run("DELETE FROM orders WHERE id = 1");
    EXPECT_EQ(AllOf(Open.Query, "n"), TTexts{"2"});
}

TEST(KvSqliteQuery, LocateReadsFromTheFirstRecord)
{
    TTestQuery Open("SELECT * FROM orders ORDER BY name DESC");
    Open.Query.Open();
    ASSERT_TRUE(Open.Query.Locate("name", "Bob"));
    EXPECT_EQ(RestOf(Open.Query, "id"), (TTexts{"2", "1"}));
    EXPECT_FALSE(Open.Query.Locate("name", "bob"));
    EXPECT_TRUE(Open.Query.Locate("name", "bob", {loCaseInsensitive}));
    EXPECT_TRUE(Open.Query.Locate("day", TDateTime{45352}));
    EXPECT_EQ(Open.Query.FieldByName("id").AsString(), "3");
}

TEST(KvSqliteQuery, CommentsAndASemicolonMayEndTheStatement)
{
    TTestQuery Open("SELECT id FROM orders -- all of them\n WHERE id > 1 ; -- the end\n /* really */");
    Open.Query.Open();
    EXPECT_EQ(Open.Query.RecordCount(), 2);
    Open.Query.Close();
    Open.Query.SQL.SetText("SELECT id FROM orders -- all of them");
    Open.Query.Open();
    EXPECT_EQ(Open.Query.RecordCount(), 3);
}

TEST(KvSqliteQuery, CannotBeChanged)
{
    TTestQuery Open("SELECT * FROM orders");
    Open.Query.Open();
    EXPECT_EQ(Open.MessageOf([&] { Open.Query.Delete(); }), "the records of a query cannot be changed");
    Open.Query.Append();
    EXPECT_THROW(Open.Query.FieldByName("id").SetValue(1), EDatabaseError);
    EXPECT_EQ(Open.MessageOf([&] { Open.Query.Post(); }), "the records of a query cannot be changed");
}

TEST(KvSqliteQuery, PublishesItsStatement)
{
    TTestQuery Open("SELECT 1");
    EXPECT_EQ(GetPropValue(Open.Query, "SQL").ToText(), "SELECT 1\r\n");
    EXPECT_THROW(GetPropValue(Open.Query, "TableName"), EPropertyError);
}

TEST(KvSqliteQuery, SharesAConnectionAndItsTransaction)
{
    TTestFile File(Orders);
    TSQLiteDatabase Database;
    Database.DatabaseName = File.FileName();
    Database.StartTransaction();
    Database.Execute("DELETE FROM orders WHERE id > 1");
    TSQLiteQuery Query;
    Query.SetDatabase(&Database);
    Query.SQL.SetText("SELECT name FROM orders");
    Query.Open();
    EXPECT_EQ(RestOf(Query, "name"), TTexts{"Ada"});
    Database.Rollback();
    EXPECT_EQ(AllOf(Query, "name").size(), 3u);
}

struct TBadQueryRow
{
    std::string_view Sql, Message;
};

std::ostream& operator<<(std::ostream& Out, const TBadQueryRow& Row)
{
    return Out << Row.Sql;
}

class KvSqliteQueryRefuses : public testing::TestWithParam<TBadQueryRow> {};

TEST_P(KvSqliteQueryRefuses, TheStatement)
{
    TTestQuery Open(GetParam().Sql);
    EXPECT_EQ(Open.MessageOf([&] { Open.Query.Open(); }), GetParam().Message);
    EXPECT_FALSE(Open.Query.Active());
    EXPECT_EQ(Open.File.Rows("SELECT count(*) FROM orders"), TRowTexts{"3"});
}

INSTANTIATE_TEST_SUITE_P(, KvSqliteQueryRefuses, testing::Values(
    TBadQueryRow{"", "Property SQL wasn't specified."},
    TBadQueryRow{"-- nothing", "a query needs a statement that reads: -- nothing"},
    TBadQueryRow{"DELETE FROM orders", "a query needs a statement that reads: DELETE FROM orders"},
    TBadQueryRow{"DELETE FROM orders RETURNING id",
                 "a query needs a statement that reads: DELETE FROM orders RETURNING id"},
    TBadQueryRow{"SELECT 1; DELETE FROM orders", "a query is one statement, without: DELETE FROM orders"},
    TBadQueryRow{"SELECT * FROM orders WHERE id = :id", "a query has no parameters, but there is :id"},
    TBadQueryRow{"SELECT * FROM orders WHERE id = ?", "a query has no parameters, but there is ?"},
    TBadQueryRow{"SELECT nowhere FROM orders", "no such column: nowhere"}));

} // namespace

} // namespace kv
