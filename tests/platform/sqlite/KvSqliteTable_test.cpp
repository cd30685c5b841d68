#include "KvSqliteTable.h"

#include <gtest/gtest.h>

#include <string>

#include "KvProperties.h"
#include "KvSqliteDatabase.h"
#include "KvSqliteTestTable.h"

namespace kv {

namespace {

TEST(KvSqliteTable, PublishesWhatIdentifiesIt)
{
    TTestTable Open;
    EXPECT_EQ(GetPropValue(Open.Table, "TableName").ToText(), "orders");
    EXPECT_EQ(GetPropValue(Open.Table, "DatabaseName").ToText(), Open.File.FileName());
    EXPECT_EQ(GetPropValue(Open.Table, "IndexFieldName").ToText(), "id");
    EXPECT_THROW(SetPropValue(Open.Table, "IndexFieldName", "name"), EPropertyError);
    TSQLiteTable Other;
    SetPropValue(Other, "DatabaseName", Open.File.FileName());
    SetPropValue(Other, "TableName", "orders");
    SetPropValue(Other, "CommitEvery", 5);
    Other.Open();
    EXPECT_EQ(Other.FieldCount(), 3);
    EXPECT_EQ(Other.CommitEvery, 5);
}

TEST(KvSqliteTable, TellsItsFieldsAndKeyWhileItIsClosed)
{
    TTestTable Open(
        "CREATE TABLE orders (day DATE NOT NULL DEFAULT '2024-01-01', nr INTEGER, name VARCHAR(20) NOT NULL,"
        " size INT AS (length(name)), PRIMARY KEY (nr, day))");
    const auto Describe = [&] {
        std::string Text = Open.Table.KeyFields() + ":";
        for (const auto& Def : Open.Table.DescribeFields())
            Text += " " + Def.Name + "/" + std::to_string(Def.DataType) + "/" + std::to_string(Def.Size) +
                    (Def.Required ? "r" : "") + (Def.HasDefault ? "d" : "") + (Def.ReadOnly ? "o" : "");
        return Text;
    };
    const auto WhileOpen = Describe();
    EXPECT_EQ(WhileOpen, "nr;day: day/" + std::to_string(ftDate) + "/0rd nr/" + std::to_string(ftLargeint) +
                             "/0 name/" + std::to_string(ftString) + "/20r size/" +
                             std::to_string(ftLargeint) + "/0o");
    Open.Table.Close();
    EXPECT_EQ(Describe(), WhileOpen);
    EXPECT_FALSE(Open.Table.Active());
    EXPECT_EQ(GetPropValue(Open.Table, "IndexFieldName").ToText(), "");
    TSQLiteDatabase Shared;
    Shared.DatabaseName = Open.File.FileName();
    Open.Table.SetDatabase(&Shared);
    EXPECT_EQ(Describe(), WhileOpen);
    Open.Table.TableName = "";
    EXPECT_EQ(Open.MessageOf([&] { Open.Table.KeyFields(); }), "Property TableName wasn't specified.");
}

TEST(KvSqliteTable, NeedsANameOfATable)
{
    TTestFile File;
    TSQLiteTable Table;
    Table.DatabaseName = File.FileName();
    EXPECT_EQ(MessageOf(File.FileName(), [&] { Table.Open(); }), "Property TableName wasn't specified.");
    EXPECT_FALSE(Table.Active());
}

TEST(KvSqliteTable, MessagesNameFileAndTable)
{
    TTestTable Open;
    EXPECT_EQ(Open.MessageOf([&] { Open.Table.FieldByName("nothing"); }),
              "orders: field 'nothing' not found");
}

TEST(KvSqliteTable, MayBeOpenedAgainAndElsewhere)
{
    TTestTable Open;
    TTestFile Other("CREATE TABLE people (name TEXT)");
    AppendRecord(Open.Table, {{"name", "Ada"}});
    Open.Table.Close();
    Open.Table.Close();
    Open.Table.Open();
    EXPECT_EQ(AllOf(Open.Table, "name"), TTexts{"Ada"});
    Open.Table.Close();
    Open.Table.DatabaseName = Other.FileName();
    Open.Table.TableName = "people";
    Open.Table.Open();
    EXPECT_EQ(Open.Table.FieldCount(), 1);
    EXPECT_TRUE(Open.Table.Eof());
}

TEST(KvSqliteTable, OpensAgainAfterAFailure)
{
    TTestTable Open;
    Open.Table.Close();
    Open.Table.TableName = "nothing";
    EXPECT_THROW(Open.Table.Open(), EDatabaseError);
    Open.Table.TableName = "orders";
    Open.Table.Open();
    EXPECT_EQ(Open.Table.RecordCount(), 0);
}

TEST(KvSqliteTable, TransactionsNeedAnOpenTable)
{
    TTestTable Open;
    Open.Table.Close();
    EXPECT_THROW(Open.Table.StartTransaction(), EDatabaseError);
}

TEST(KvSqliteTable, StoredValuesThatDoNotFitReadAsTheyAre)
{
    TTestTable Open("CREATE TABLE orders (id INTEGER PRIMARY KEY, qty INTEGER, day DATE, name TEXT);"
                    "INSERT INTO orders VALUES (1, 'abc', 'tomorrow', x'FF00'), (2, 1.5, 2460000.5, 'x')");
    Open.Table.First();
    EXPECT_EQ(Open.Table.FieldByName("qty").Value(), TVariant("abc"));
    EXPECT_EQ(Open.Table.FieldByName("day").Value(), TVariant("tomorrow"));
    EXPECT_EQ(Open.Table.FieldByName("name").AsString(), std::string("\xFF\0", 2));
    Open.Table.Next();
    EXPECT_EQ(Open.Table.FieldByName("qty").Value(), TVariant(1.5));
    EXPECT_EQ(Open.Table.FieldByName("day").Value(), TVariant(2460000.5));
}

TEST(KvSqliteTable, IsKnownByItsFileHoweverItWasOpened)
{
    TTestTable Open;
    TSQLiteDatabase Shared;
    Shared.DatabaseName = Open.File.FileName();
    Shared.Execute("CREATE TABLE other (id INTEGER PRIMARY KEY)");
    const auto Same = Shared.OpenTable("main.ORDERS"), Other = Shared.OpenTable("other");
    EXPECT_NE(Open.Table.TableIdentity(), "");
    EXPECT_EQ(Same->TableIdentity(), Open.Table.TableIdentity());
    EXPECT_NE(Other->TableIdentity(), Open.Table.TableIdentity());
    Open.Table.Close();
    EXPECT_EQ(Open.Table.TableIdentity(), "");
    TSQLiteDatabase Memory, Memory2;
    Memory.DatabaseName = Memory2.DatabaseName = ":memory:";
    for (auto* const Each : {&Memory, &Memory2})
        Each->Execute(OrdersTable);
    EXPECT_NE(Memory.OpenTable("orders")->TableIdentity(), Memory2.OpenTable("orders")->TableIdentity());
}

} // namespace

} // namespace kv
