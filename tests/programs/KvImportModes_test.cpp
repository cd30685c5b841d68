#include "KvShop.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kv {

namespace {

constexpr std::string_view Header = "ID,CITY,QTY\n";

/// Two orders stand in the table, 1 and 2; the file holds 2 and 3.
struct TTwoShops : TShop
{
    TTwoShops()
    {
        Ask("INSERT INTO orders (ID, CITY, QTY, NOTE) VALUES (1, 'Rom', 10, 'old'), (2, 'Oslo', 20, 'old')");
    }

    nlohmann::json ImportIn(const std::string& Mode, const TArguments& More = {}) const
    {
        TArguments Arguments{"--mode", Mode};
        Arguments.insert(Arguments.end(), More.begin(), More.end());
        return Import(std::string(Header) + "2,Bern,22\n3,Wien,33\n", Arguments);
    }
    std::string Rows() const { return Ask("SELECT ID, CITY, QTY, NOTE FROM orders ORDER BY ID"); }
};

void ExpectFigures(const nlohmann::json& Run, int Read, int Added, int Updated, int Deleted, int Failed,
                   int NotFound)
{
    EXPECT_EQ(Run["read"], Read);
    EXPECT_EQ(Run["added"], Added);
    EXPECT_EQ(Run["updated"], Updated);
    EXPECT_EQ(Run["deleted"], Deleted);
    EXPECT_EQ(Run["refused"], 0);
    EXPECT_EQ(Run["failed"], Failed);
    EXPECT_EQ(Run["notFound"], NotFound);
}

TEST(KvImportModes, AppendAddsAndKeepsWhatIsThere)
{
    const TTwoShops Shop;
    const auto Run = Shop.ImportIn("append");
    ExpectFigures(Run, 2, 1, 0, 0, 1, 0);
    EXPECT_EQ(Run["exitStatus"], 1);
    EXPECT_EQ(Run["transaction"], "committed");
    EXPECT_EQ(Shop.Rows(), "1|Rom|10|old\n2|Oslo|20|old\n3|Wien|33|NULL");
}

TEST(KvImportModes, UpdateChangesOnlyMappedFieldsOfRecordsThatAreThere)
{
    const TTwoShops Shop;
    ExpectFigures(Shop.ImportIn("update", {"--keys", "ID"}), 2, 0, 1, 0, 0, 1);
    EXPECT_EQ(Shop.Rows(), "1|Rom|10|old\n2|Bern|22|old");
}

TEST(KvImportModes, AppendUpdateDoesBoth)
{
    const TTwoShops Shop;
    ExpectFigures(Shop.ImportIn("append-update", {"--keys", "ID"}), 2, 1, 1, 0, 0, 0);
    EXPECT_EQ(Shop.Rows(), "1|Rom|10|old\n2|Bern|22|old\n3|Wien|33|NULL");
}

TEST(KvImportModes, DeleteRemovesRecordsWithTheKey)
{
    const TTwoShops Shop;
    ExpectFigures(Shop.ImportIn("delete", {"--keys", "ID"}), 2, 0, 0, 1, 0, 1);
    EXPECT_EQ(Shop.Rows(), "1|Rom|10|old");
}

TEST(KvImportModes, CopyReplacesTheTable)
{
    const TTwoShops Shop;
    const auto Run = Shop.ImportIn("copy");
    ExpectFigures(Run, 2, 2, 0, 0, 0, 0);
    EXPECT_EQ(Run["emptied"], 2);
    EXPECT_EQ(Shop.Rows(), "2|Bern|22|NULL\n3|Wien|33|NULL");
}

TEST(KvImportModes, ACopyThatFailsLeavesTheTableAsItWas)
{
    const TTwoShops Shop;
    const auto Run = Shop.Import(std::string(Header) + "5,Bern,1\nx,Wien,2\n",
                                 {"--mode", "copy", "--abort-on-error"});
    EXPECT_EQ(Run["exitStatus"], 3);
    EXPECT_EQ(Run["transaction"], "rolled back");
    EXPECT_EQ(Shop.Rows(), "1|Rom|10|old\n2|Oslo|20|old");
}

TEST(KvImportModes, ThePrimaryKeyIsTheKeyUnlessAnotherIsNamed)
{
    const TTwoShops Shop;
    const auto Run = Shop.ImportIn("update");
    EXPECT_EQ(Run["keys"], nlohmann::json::array({"ID"}));
    ExpectFigures(Run, 2, 0, 1, 0, 0, 1);
}

struct TKeyRow
{
    const char* Name;
    const char* Keys;
};

class KvImportKeys : public testing::TestWithParam<TKeyRow> {};

TEST_P(KvImportKeys, AreReadHoweverTheyAreSeparated)
{
    const TTwoShops Shop;
    const auto Run = Shop.Import(std::string(Header) + "2,oslo,1\n2,Oslo,2\n",
                                 {"--mode", "update", "--keys", GetParam().Keys});
    EXPECT_EQ(Run["keys"], nlohmann::json::array({"ID", "CITY"}));
    ExpectFigures(Run, 2, 0, 1, 0, 0, 1);           // both must be equal, to the letter
    EXPECT_EQ(Shop.Ask("SELECT QTY FROM orders WHERE ID = 2"), "2");
}

INSTANTIATE_TEST_SUITE_P(, KvImportKeys, testing::Values(
    TKeyRow{"Semicolon", "ID;CITY"},
    TKeyRow{"Comma", "ID,CITY"},
    TKeyRow{"Blanks", " id ; City "},
    TKeyRow{"Repeated", "ID;CITY;id;;"}), [](const auto& Info) { return Info.param.Name; });

TEST(KvImportModes, AKeyWithoutAnIndexFindsRecordsToo)
{
    const TTwoShops Shop;
    ExpectFigures(Shop.Import("CITY,QTY\nOslo,7\nBonn,8\n", {"--mode", "update", "--keys", "CITY"}), 2, 0, 1,
                  0, 0, 1);
    EXPECT_EQ(Shop.Rows(), "1|Rom|10|old\n2|Oslo|7|old");
}

TEST(KvImportModes, OnceFailedRecordsDoNotPoisonTheOthers)
{
    const TShop Shop;
    const auto Run = Shop.Import("ID,CITY\n1,Rom\nx,Bern\n2,\n3,Wien\n1,Oslo\n4,Bonn\n");
    ExpectFigures(Run, 6, 3, 0, 0, 3, 0);
    EXPECT_EQ(Shop.Ask("SELECT ID, CITY FROM orders"), "1|Rom\n3|Wien\n4|Bonn");
    ASSERT_EQ(Run["errors"].size(), 3);
    EXPECT_EQ(Run["errors"][0]["place"], "line 3");
    EXPECT_EQ(Run["errors"][0]["message"], "'x' is not a valid integer value for field 'ID'");
    EXPECT_EQ(Run["errors"][1]["message"], "Field 'CITY' must have a value");
    EXPECT_THAT(std::string(Run["errors"][2]["message"]),
                testing::HasSubstr("UNIQUE constraint failed: orders.ID"));
}

TEST(KvImportModes, BatchesKeepWhatStoodBeforeAFailure)
{
    const TShop Shop;
    const auto Run = Shop.Import("ID,CITY\n1,a\n2,b\n3,c\n4,d\n5,e\nx,f\n7,g\n",
                                 {"--batch", "2", "--abort-on-error"});
    EXPECT_EQ(Run["exitStatus"], 3);
    EXPECT_EQ(Run["transaction"], "partly committed");
    EXPECT_EQ(Run["keptRecords"], 4);
    EXPECT_EQ(Run["read"], 6);
    EXPECT_EQ(Run["failed"], 1);
    EXPECT_EQ(Shop.Count(), 4);
}

TEST(KvImportModes, TheLastBatchNeedNotBeFull)
{
    const TShop Shop;
    const auto Run = Shop.Import("ID,CITY\n1,a\n2,b\n3,c\n4,d\n5,e\n", {"--batch", "2"});
    EXPECT_EQ(Run["exitStatus"], 0);
    EXPECT_EQ(Run["transaction"], "committed");
    EXPECT_EQ(Shop.Count(), 5);
}

TEST(KvImportModes, ABrokenConstraintOnDeletionFailsItsRecord)
{
    const TShop Shop("PRAGMA foreign_keys = ON; CREATE TABLE orders (ID INTEGER PRIMARY KEY, CITY TEXT);"
                     "CREATE TRIGGER keep BEFORE DELETE ON orders WHEN old.ID = 2 BEGIN "
                     "SELECT RAISE(ABORT, 'order 2 stays'); END;"
                     "INSERT INTO orders VALUES (1, 'a'), (2, 'b')");
    const auto Run = Shop.Import("ID\n1\n2\n", {"--mode", "delete"});
    EXPECT_EQ(Run["exitStatus"], 1);
    ASSERT_EQ(Run["errors"].size(), 1U);
    EXPECT_THAT(Run["errors"][0].dump(), testing::HasSubstr("order 2 stays"));
    EXPECT_EQ(Run["read"], 2);
    EXPECT_EQ(Run["deleted"], 1);
    EXPECT_EQ(Run["failed"], 1);
    EXPECT_EQ(Shop.Count(), 1);
}

} // namespace

} // namespace kv
