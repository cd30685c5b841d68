// Access databases on the command line. A script answers in the place of kvaccess: what that makes of real
// databases is compared with other programs in tests/corpus.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "KvAccessScript.h"
#include "KvShop.h"

namespace kv {

namespace {

using namespace std::string_literals;
using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

const auto Beginning = "\0\1\0\0Standard Jet DB\0\1"s;

/// "shop.mdb" with the tables Orders (four records), Empty and those of Access itself.
class KvAccessTables : public testing::Test
{
protected:
    KvAccessTables()
    {
        ::setenv("KV_ACCESS_HELPER", Script.Program().c_str(), 1);
        Mdb = Shop.Folder.Write("shop.mdb", Beginning + std::string(4096, '\0'));
        Script.Table("MSysObjects", {{.Name = "Id", .Type = afLong}}, 0, [](auto&) {}, ttSystem);
        Script.Table("Orders",
                     {{.Name = "Id", .Type = afLong, .Size = 4}, {.Name = "City", .Type = afText, .Size = 20},
                      {.Name = "Ordered", .Type = afDateTime}, {.Name = "Amount", .Type = afCurrency},
                      {.Name = "Paid", .Type = afBoolean}, {.Name = "Note", .Type = afMemo}},
                     4, [](TAccessWriter& Writer) {
                         Order(Writer, 1, "Köln", 37621.5, 123400);
                         Order(Writer, 2, "Rom", -1.25, -50);
                         Order(Writer, 3, "", 0, 0);
                         Order(Writer, 4, "Łódź", 2, 1);
                     });
    }
    ~KvAccessTables() override { ::unsetenv("KV_ACCESS_HELPER"); }

    static void Order(TAccessWriter& Writer, int Id, std::string_view City, double Days, std::int64_t Amount)
    {
        Writer.Integer(Id);
        Writer.Text(City);
        Writer.DateTime(Days);
        Writer.Currency(Amount);
        Writer.Boolean(Id % 2 == 1);
        Writer.Null();
        Writer.EndRecord();
    }

    TProgramResult Import(const TArguments& More = {}) const { return Shop.ImportFile(Mdb, More); }

    const TShop Shop{"CREATE TABLE orders (ID INTEGER PRIMARY KEY, CITY VARCHAR(20), ORDERED DATETIME, "
                     "AMOUNT DECIMAL(10,4), PAID BOOLEAN, NOTE TEXT)"};
    const TTempFolder Folder;
    TAccessScript Script{Folder};
    std::string Mdb;
};

TEST_F(KvAccessTables, ATableIsImportedByTheNamesOfItsFields)
{
    const auto Result = Import({"--source-table", "orders"});
    EXPECT_EQ(Result.Status, 0) << Result.Err;
    EXPECT_EQ(Shop.Ask("SELECT ID, CITY, ORDERED, AMOUNT, PAID, NOTE FROM orders"),
              "1|Köln|2002-12-31 12:00:00|12.34|1|NULL\n"
              "2|Rom|1899-12-29 06:00:00|-0.005|0|NULL\n"
              "3|NULL|1899-12-30 00:00:00|0|1|NULL\n"
              "4|Łódź|1900-01-01 00:00:00|0.0001|0|NULL");
}

TEST_F(KvAccessTables, AFieldOfTheTableMayBeNamedInAnyCase)
{
    EXPECT_EQ(Import({"--map", "ID=id", "--map", "CITY=CITY"}).Status, 0);
    EXPECT_EQ(Shop.Ask("SELECT ID, CITY FROM orders WHERE ID < 3"), "1|Köln\n2|Rom");
}

TEST_F(KvAccessTables, TheOnlyTableNeedsNoName)
{
    EXPECT_EQ(Import().Status, 0);
    EXPECT_EQ(Shop.Count(), 4);
}

TEST_F(KvAccessTables, SeveralTablesNeedAName)
{
    Script.Table("Empty", {{.Name = "Id", .Type = afLong}}, 0, [](auto&) {});
    const auto Result = Import();
    EXPECT_EQ(Result.Status, 3);
    EXPECT_THAT(Result.Err, HasSubstr("shop.mdb are Orders, Empty\n"));
    EXPECT_EQ(Import({"--source-table", "Empty"}).Status, 0);
    EXPECT_EQ(Shop.Count(), 0);
}

TEST_F(KvAccessTables, AnUnknownTableIsAnError)
{
    const auto Result = Import({"--source-table", "Customers"});
    EXPECT_EQ(Result.Status, 3);
    EXPECT_THAT(Result.Err, HasSubstr("shop.mdb has no table 'Customers'; its tables are Orders"));
}

TEST_F(KvAccessTables, RowsAreNumbersOfRecords)
{
    EXPECT_EQ(Import({"--first-row", "2", "--last-row", "3"}).Status, 0);
    EXPECT_EQ(Shop.Ask("SELECT ID FROM orders"), "2\n3");
}

TEST_F(KvAccessTables, ADatabaseIsKnownByItsBytes)
{
    Mdb = Shop.Folder.Write("shop.old", Beginning + std::string(4096, '\0'));
    EXPECT_EQ(Import().Status, 0);
    EXPECT_EQ(Shop.Count(), 4);
}

TEST_F(KvAccessTables, StandardInputIsRefused)
{
    const auto Result = RunKvImport(Shop.Folder, {"preview", "-", "--from", "access"});
    EXPECT_EQ(Result.Status, 2);
    EXPECT_THAT(Result.Err, HasSubstr("an Access database cannot be read from standard input"));
    EXPECT_EQ(RunKvImport(Shop.Folder, {"tables", "-"}).Err, Result.Err);
}

TEST_F(KvAccessTables, ADatabaseWithoutTablesIsAnError)
{
    Script.Answer("tables", AccessStream([](auto& Writer) { Writer.End(); }));
    const auto Result = Import();
    EXPECT_EQ(Result.Status, 3);
    EXPECT_THAT(Result.Err, HasSubstr("shop.mdb has no tables\n"));
}

TEST_F(KvAccessTables, TextOfAnOemCodePageIsRefused)
{
    const auto Result = Import({"--charset", "msdos"});
    EXPECT_EQ(Result.Status, 2);
    EXPECT_THAT(Result.Err, HasSubstr("--charset msdos has no meaning for a source of kind access, "
                                      "whose text has no code page\n"));
}

TEST_F(KvAccessTables, ClassicReadingSaysThatNoRecordIsSkipped)
{
    const auto Result = Import({"--classic", "--first-row", "3", "--last-row", "3"});
    EXPECT_THAT(Result.Out, HasSubstr("(--classic: records are taken from the first one on; "
                                      "--first-row and --last-row only say how many)"));
    EXPECT_EQ(Shop.Ask("SELECT ID FROM orders"), "1");
}

TEST_F(KvAccessTables, ASavedImportSaysWhichOfItsColumnsAreConstants)
{
    const auto File = Shop.Folder / "orders.kvi";
    RunKvImport(Shop.Folder, {"save", File, Mdb, "--map", "ID=Id", "--set", "NOTE=May"});
    const auto Result = RunKvImport(Shop.Folder, {"run", File, "--to", Shop.Database(), "--table", "orders"});
    EXPECT_THAT(Result.Out, HasSubstr("  Id       -> ID\n  May      -> NOTE  (no column but a constant: "
                                      "every record gets this text)\n"));
    EXPECT_EQ(Shop.Ask("SELECT ID, NOTE FROM orders WHERE ID < 3"), "1|May\n2|May");
}

TEST_F(KvAccessTables, ACrashOfTheReaderLeavesTheDestinationAsItWas)
{
    const auto Answer = Script.AnswerTo("records.Orders");
    Script.Answer("records.Orders", Answer.substr(0, Answer.size() - 5));
    Script.Afterwards("[ \"$1\" = tables ] || kill -SEGV $$");
    const auto Result = Import();
    EXPECT_EQ(Result.Status, 3);
    EXPECT_THAT(Result.Err,
                HasSubstr("shop.mdb: the reader of Access databases stopped: killed by signal 11"));
    EXPECT_EQ(Shop.Count(), 0);
}

TEST_F(KvAccessTables, AMissingReaderIsAnError)
{
    ::setenv("KV_ACCESS_HELPER", "/nowhere/kvaccess", 1);
    const auto Result = Import();
    EXPECT_EQ(Result.Status, 3);
    EXPECT_THAT(Result.Err, HasSubstr("/nowhere/kvaccess, "
                                      "which KV_ACCESS_HELPER names as the reader of Access databases, "
                                      "is not a program"));
}

TEST_F(KvAccessTables, APreviewShowsTheRecords)
{
    const auto Result = RunKvImport(Shop.Folder, {"preview", Mdb, "--rows", "2"});
    EXPECT_EQ(Result.Status, 0) << Result.Err;
    EXPECT_THAT(Result.Out, AllOf(HasSubstr("(table Orders, the only one)\n"), HasSubstr("record  Id  City"),
                                  HasSubstr("     1   1  Köln"), HasSubstr("There are more rows")));
}

TEST_F(KvAccessTables, TablesListsRecordsAndFields)
{
    Script.Table("Elsewhere", {}, 0, [](auto&) {}, ttLinked);
    Script.Answer("records.Elsewhere",
                  AccessStream([](auto& Writer) { Writer.Error("its table Elsewhere is a link"); }));
    const auto Result = RunKvImport(Shop.Folder, {"tables", Mdb});
    EXPECT_EQ(Result.Status, 0) << Result.Err;
    EXPECT_THAT(Result.Out, AllOf(StartsWith("table      records  fields\n---------  -------  ------"),
                                  EndsWith("-\n"
                                           "Orders           4  Id Long Integer, City Text (20), "
                                           "Ordered Date/Time, Amount Currency, Paid Yes/No, Note Memo\n"
                                           "Elsewhere           (" + Mdb +
                                           ": its table Elsewhere is a link)\n")));
}

TEST_F(KvAccessTables, TablesPrintsJson)
{
    const auto Json = RunKvImport(Shop.Folder, {"tables", Mdb, "--json", "--system"}).Json();
    EXPECT_EQ(Json["source"], Mdb);
    ASSERT_EQ(Json["tables"].size(), 2);
    EXPECT_EQ(Json["tables"][0], nlohmann::json::parse(
        R"({"name": "MSysObjects", "records": 0, "fields": [{"name": "Id", "type": "Long Integer"}]})"));
    EXPECT_EQ(Json["tables"][1]["fields"][1]["type"], "Text (20)");
}

TEST_F(KvAccessTables, TablesNeedsADatabase)
{
    Script.Answer("tables", AccessStream([](auto& Writer) { Writer.Error("is not an Access database"); }));
    const auto Result = RunKvImport(Shop.Folder, {"tables", Mdb});
    EXPECT_EQ(Result.Status, 3);
    EXPECT_THAT(Result.Err, HasSubstr("shop.mdb: is not an Access database"));
}

} // namespace

} // namespace kv
