// The adapter of a program that was built without SQLite.
#include <gtest/gtest.h>

#include "KvException.h"
#include "KvSqliteDatabase.h"
#include "KvSqliteQuery.h"
#include "KvSqliteTable.h"

namespace kv {

namespace {

const std::string Missing = "this program was built without SQLite (Debian package libsqlite3-dev)";

template <class TAction> std::string MessageOf(TAction Action)
{
    try {
        Action();
    }
    catch (const EDatabaseError& Error) {
        return Error.Message;
    }
    return "";
}

TEST(KvSqliteAbsent, OpeningADatabaseSaysWhatIsMissing)
{
    TSQLiteDatabase Database;
    Database.DatabaseName = "shop.db";
    EXPECT_EQ(MessageOf([&] { Database.Open(); }), "shop.db: " + Missing);
    EXPECT_EQ(MessageOf([&] { Database.StartTransaction(); }), "shop.db: " + Missing);
    EXPECT_EQ(MessageOf([&] { Database.Execute("SELECT 1"); }), "shop.db: " + Missing);
    EXPECT_EQ(MessageOf([&] { Database.TableNames(); }), "shop.db: " + Missing);
    EXPECT_FALSE(Database.Connected());
    EXPECT_FALSE(Database.InTransaction());
}

TEST(KvSqliteAbsent, IsAKindOfDatabaseThatSaysWhatIsMissing)
{
    RegisterSqliteDatabases();
    EXPECT_EQ(MessageOf([&] { OpenDatabase("sqlite:shop.db"); }), "shop.db: " + Missing);
    EXPECT_EQ(MessageOf([&] { OpenDatabase("shop.db"); }), "shop.db: " + Missing);
    const auto Database = MakeDatabase("shop.db");
    EXPECT_EQ(MessageOf([&] { Database->Tables(); }), "shop.db: " + Missing);
    EXPECT_EQ(MessageOf([&] { Database->Describe("orders"); }), "shop.db: " + Missing);
    EXPECT_EQ(MessageOf([&] { Database->OpenTable("orders"); }), "shop.db: " + Missing);
    Database->Flush();                              // there is nothing to store
    EXPECT_FALSE(Database->InTransaction());
}

TEST(KvSqliteAbsent, OpeningATableOrQuerySaysWhatIsMissing)
{
    TSQLiteDatabase Database;
    Database.DatabaseName = "shop.db";
    TSQLiteTable Table;
    Table.SetDatabase(&Database);
    Table.TableName = "orders";
    EXPECT_EQ(MessageOf([&] { Table.Open(); }), "shop.db: " + Missing);
    TSQLiteQuery Query;
    Query.SQL.Add("SELECT 1");
    EXPECT_EQ(MessageOf([&] { Query.Open(); }), Missing);
    EXPECT_FALSE(Table.Active() || Query.Active());
    EXPECT_EQ(MessageOf([&] { Table.DescribeFields(); }), "shop.db: " + Missing);
    EXPECT_EQ(MessageOf([&] { Table.KeyFields(); }), "shop.db: " + Missing);
}

TEST(KvSqliteAbsent, PropertiesAreThereAllTheSame)
{
    TSQLiteTable Table;
    SetPropValue(Table, "TableName", "orders");
    EXPECT_EQ(GetPropValue(Table, "TableName").ToText(), "orders");
    EXPECT_EQ(GetPropValue(Table, "IndexFieldName").ToText(), "");
}

} // namespace

} // namespace kv
