#include "KvShop.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kv {

namespace {

using testing::HasSubstr;

/// "Field1 ID>ID", "Field2 Town>: no field of that name: not imported" and so on.
std::string FatesOf(const nlohmann::json& Run)
{
    const auto Text = [](const nlohmann::json& Value) {
        return Value.is_null() ? std::string() : Value.get<std::string>();
    };
    std::string Result;
    for (const auto& Fate : Run["columns"])
        Result += Text(Fate["column"]) + " " + Text(Fate["name"]) + ">" + Text(Fate["field"]) +
                  (Fate["remark"].is_null() ? "" : ": " + Text(Fate["remark"])) + "\n";
    return Result;
}

TEST(KvImportColumns, AreFoundByNameWhateverTheirOrderAndCase)
{
    const TShop Shop;
    const auto Run = Shop.Import("qty, City ,Town,id\n5,Rom,x,1\n");
    EXPECT_EQ(FatesOf(Run), "Field1 qty>QTY\nField2 City>CITY\n"
                            "Field3 Town>: no field of that name: not imported\nField4 id>ID\n");
    EXPECT_EQ(Shop.Ask("SELECT ID, CITY, QTY FROM orders"), "1|Rom|5");
}

TEST(KvImportColumns, EveryFieldThatGetsNoneIsTold)
{
    const TShop Shop("CREATE TABLE orders (ID INTEGER PRIMARY KEY, A TEXT NOT NULL DEFAULT 'x', "
                     "B TEXT NOT NULL, C TEXT, D INTEGER GENERATED ALWAYS AS (ID * 2))");
    const auto Run = Shop.Import("ID,D\n1,2\n");
    EXPECT_EQ(Run["fieldsWithoutColumn"], nlohmann::json::parse(R"([
        {"field": "A", "remark": "default of the database"},
        {"field": "B", "remark": "new records must have a value"},
        {"field": "C", "remark": null},
        {"field": "D", "remark": "computed by the database"}])"));
    EXPECT_EQ(FatesOf(Run), "Field1 ID>ID\nField2 D>: its field is computed by the database: not imported\n");
    EXPECT_EQ(Run["failed"], 1);
}

TEST(KvImportColumns, ANameThatStandsTwiceCountsOnce)
{
    const TShop Shop;
    const auto Run = Shop.Import("ID,CITY,city,\n1,Rom,Bern,x\n");
    EXPECT_EQ(FatesOf(Run),
              "Field1 ID>ID\nField2 CITY>CITY\nField3 city>: a column before it has that name: not imported\n"
              "Field4 >: has no name: not imported\n");
    EXPECT_EQ(Shop.Ask("SELECT CITY FROM orders"), "Rom");
}

TEST(KvImportColumns, OfNamesBeyondAsciiAreFound)
{
    const TShop Shop("CREATE TABLE orders (\"Größe\" INTEGER, \"名前\" TEXT)");
    const auto Run = Shop.Import("名前,Größe\n東京,3\n");
    EXPECT_EQ(Run["exitStatus"], 0);
    EXPECT_EQ(Shop.Ask("SELECT \"Größe\", \"名前\" FROM orders"), "3|東京");
}

TEST(KvImportColumns, OfNamesInAnotherCodePageAreFound)
{
    const TShop Shop("CREATE TABLE orders (\"Größe\" INTEGER, CITY TEXT)");
    const auto Windows = Shop.Import("Gr\xF6\xDF" "e,CITY\n3,K\xF6ln\n", {"--code-page", "windows-1252"});
    EXPECT_EQ(FatesOf(Windows), "Field1 Größe>Größe\nField2 CITY>CITY\n");
    const auto MsDos = Shop.Import("Gr\x94\xE1" "e,CITY\n4,K\x94ln\n", {"--charset", "msdos"});
    EXPECT_EQ(FatesOf(MsDos), "Field1 Größe>Größe\nField2 CITY>CITY\n");
    EXPECT_EQ(Shop.Ask("SELECT * FROM orders"), "3|Köln\n4|Köln");
}

TEST(KvImportColumns, AreFoundInTheLineBeforeTheFirstRow)
{
    const TShop Shop;
    const auto Run = Shop.Import("Orders of May\n\nID;CITY\n1;Rom\n", {"--first-row", "4"});
    EXPECT_EQ(Run["exitStatus"], 0);
    EXPECT_EQ(Run["findings"], nlohmann::json::array({"delimiter semicolon, as line 3 has it"}));
    EXPECT_EQ(Run["warnings"], nlohmann::json::array());
    EXPECT_EQ(Shop.Ask("SELECT ID, CITY FROM orders"), "1|Rom");
}

TEST(KvImportColumns, GoByPositionOnlyWhenAsked)
{
    const TShop Shop;
    const auto Run = Shop.Import("1,Rom,2024-01-02\n", {"--by-position"});
    EXPECT_EQ(FatesOf(Run), "Field1 >ID\nField2 >CITY\nField3 >ORDERED\n");
    EXPECT_EQ(Shop.Ask("SELECT ID, CITY, ORDERED FROM orders"), "1|Rom|2024-01-02");
}

TEST(KvImportColumns, BeyondTheLastFieldAreTold)
{
    const TShop Shop("CREATE TABLE orders (A TEXT)");
    EXPECT_EQ(FatesOf(Shop.Import("1,2\n", {"--by-position"})),
              "Field1 >A\nField2 >: the table has no more fields: not imported\n");
}

TEST(KvImportColumns, AreMappedExactlyAsGiven)
{
    const TShop Shop;
    const auto Run = Shop.Import("Rom,1,x\n",
                                 {"--map", "id = Field2", "--map", "CITY=Field1", "--set", "NOTE=May"});
    EXPECT_EQ(FatesOf(Run), "Field2 >ID\nField1 >CITY\nField3 >: no --map names it: not imported\n"
                            "May >NOTE: no column but a constant: every record gets this text\n");
    EXPECT_EQ(Shop.Ask("SELECT ID, CITY, NOTE FROM orders"), "1|Rom|May");
}

TEST(KvImportColumns, AreMappedByTheirNames)
{
    const TShop Shop;
    const auto Run = Shop.Import("Auftr\xC3\xA4ge\n\nNr,Ort,Rest\n1,Rom,x\n",
                                 {"--map", "ID=nr", "--map", "CITY=Ort"});
    EXPECT_EQ(FatesOf(Run),
              "Field1 Nr>ID\nField2 Ort>CITY\nField3 Rest>: no --map names it: not imported\n");
    EXPECT_EQ(Run["findings"],
              nlohmann::json::array({"line 3 names the columns, what stands above it is left out; "
                                     "--first-row 1 imports all"}));
    EXPECT_EQ(Shop.Ask("SELECT ID, CITY FROM orders"), "1|Rom");
}

TEST(KvImportColumns, ThatAreMissingOrMisspeltAreRefused)
{
    const TShop Shop;
    EXPECT_EQ(Shop.Import("1,Rom\n", {"--map", "ID=Field1", "--map", "CITY=Field99"})["message"],
              "there is no column 'Field99': " + Shop.Folder / "orders.csv" + ", line 1 has 2 columns");
    EXPECT_EQ(Shop.Import("Nr,Ort\n1,Rom\n", {"--map", "ID=Nr", "--map", "CITY=Stadt"})["message"],
              "'Stadt' is no column; the columns are Nr, Ort; --set FIELD=TEXT gives every record a text");
    EXPECT_EQ(Shop.Import("1,Rom\n", {"--map", "ID=Field1", "--map", "CITY=batch2"})["exitStatus"], 3);
    EXPECT_EQ(Shop.Count(), 0);
}

TEST(KvImportColumns, AreNamedInAnyCase)
{
    const TShop Shop;
    const auto Run = Shop.Import("1,Rom\n", {"--map", "ID=field1", "--map", "CITY=FIELD2"});
    EXPECT_EQ(FatesOf(Run), "Field1 >ID\nField2 >CITY\n");
    EXPECT_EQ(Shop.Ask("SELECT ID, CITY FROM orders"), "1|Rom");
}

TEST(KvImportColumns, AHeaderThatWouldBeARecordIsPointedOut)
{
    const TShop Shop;
    const auto Run = Shop.Import("ID,CITY\n1,Rom\n",
                                 {"--first-row", "1", "--map", "ID=Field1", "--map", "CITY=Field2"});
    EXPECT_EQ(Run["findings"], nlohmann::json::array({"line 1 looks like a header; --first-row 2 skips it"}));
    EXPECT_EQ(Run["failed"], 1);
}

TEST(KvImportColumns, OfFixedWidthStandAtBytes)
{
    const TShop Shop;
    const TArguments Layout{"--fixed", "--columns", "ID=1-4,CITY=5-12;QTY=13-15"};
    EXPECT_EQ(Shop.Import("1   Rom      10\n2   Oslo     20   beyond\n3   Bern\n", Layout)["exitStatus"], 0);
    EXPECT_EQ(Shop.Ask("SELECT ID, '[' || CITY || ']', QTY FROM orders"),
              "1|[Rom]|10\n2|[Oslo]|20\n3|[Bern]|NULL");
}

TEST(KvImportColumns, OfFixedWidthKeepTheirBlanksInTheClassicReading)
{
    const TShop Shop;
    EXPECT_EQ(Shop.Import("1   Rom     \n", {"--fixed", "--map", "ID=Text1-4", "--map", "CITY=Text5-12",
                                             "--classic"})["exitStatus"], 0);
    EXPECT_EQ(Shop.Ask("SELECT '[' || CITY || ']' FROM orders"), "[Rom     ]");
}

TEST(KvImportColumns, TheDelimiterOfTheHeaderIsFoundUnlessOneIsNamed)
{
    const TShop Shop;
    EXPECT_EQ(Shop.Import("ID\tCITY\n1\tRom, Italy\n")["exitStatus"], 0);
    EXPECT_EQ(Shop.Ask("SELECT CITY FROM orders"), "Rom, Italy");
    const auto Named = Shop.Run("ID;CITY\n1;Rom\n", {"--delimiter", "comma"});
    EXPECT_EQ(Named.Status, 3);
    EXPECT_THAT(Named.Err, HasSubstr("no column has the name of a field; the columns are ID;CITY; "
                                     "the fields are ID, CITY, ORDERED"));
}

TEST(KvImportColumns, TakeAnyDelimiterAndQualifier)
{
    const TShop Shop;
    EXPECT_EQ(Shop.Import("ID|CITY\x1E" "1|'a|b'\x1E" "2|c\x1E",
                          {"--delimiter", "|", "--qualifier", "apos", "--record-separator",
                           "\\x1E"})["exitStatus"], 0);
    EXPECT_EQ(Shop.Ask("SELECT ID, CITY FROM orders"), "1|a|b\n2|c");
}

} // namespace

} // namespace kv
