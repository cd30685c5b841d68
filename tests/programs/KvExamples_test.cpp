// What the examples promise.
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

#include "KvExampleFiles.h"
#include "KvShop.h"

namespace kv {

namespace {

const std::string Examples = KV_EXAMPLES;

std::string ReadExample(const std::string& Name)
{
    std::ifstream File(Examples + "/" + Name, std::ios::binary);
    return {std::istreambuf_iterator<char>(File), std::istreambuf_iterator<char>()};
}

std::string Schema()
{
    return ReadExample("schema.sql");
}

TEST(KvExamples, OrdersGoIntoTheTableWhole)
{
    const TShop Shop(Schema());
    const auto Run = ImportWithJson(Shop.Folder,
                                    {Examples + "/orders.csv", "--to", Shop.Database(), "--table", "orders",
                                     "--delimiter", "comma", "--first-row", "2", "--mode", "append-update",
                                     "--keys", "ID"});
    EXPECT_EQ(Run["exitStatus"], 0);
    EXPECT_EQ(Run["added"], 16);
    EXPECT_EQ(Shop.Ask("SELECT CUSTOMER, CITY, ORDERED, AMOUNT, QTY, PAID, NOTE FROM orders "
                       "WHERE ID IN (20249, 20258, 20263)"),
              "Müller, Söhne & Co.|Köln|2024-01-05|1871.2|9|1|Deliver to the yard, not to the shop\n"
              "Smith, Jones and Daughters|Leeds|2024-01-17|1614.88|50|NULL|Second address:\n14 Canal Street\n"
              "Murtal Handel|Graz|2024-03-05|NULL|NULL|0|Price on request");
    EXPECT_EQ(Shop.Ask("SELECT sum(AMOUNT) FROM orders"), "17930.36");
}

TEST(KvExamples, OrdersOfFixedWidthGoIntoTheTableWhole)
{
    const TShop Shop(Schema());
    const auto Run = ImportWithJson(
        Shop.Folder, {Examples + "/orders-fixed.txt", "--to", Shop.Database(), "--table", "orders", "--fixed",
                      "--columns", "ID=1-6,CUSTOMER=7-28,CITY=29-42,ORDERED=43-53,AMOUNT=54-62",
                      "--charset", "msdos", "--date-order", "dmy", "--date-separator", ".",
                      "--decimal-separator", ","});
    EXPECT_EQ(Run["exitStatus"], 0);
    EXPECT_EQ(Shop.Ask("SELECT CUSTOMER, CITY, ORDERED, AMOUNT FROM orders WHERE ID >= 10305"),
              "Comidas Peñón|Madrid|2024-09-13|4157\nGrößte Auswahl|München|2024-09-16|498.5");
}

TEST(KvExamples, TheWorkbooksAndTablesAreAsMakeExampleFilesMakesThem)
{
    for (const auto& Files : {ExampleBooks(), ExampleTables()})
        for (const auto& Each : Files)
            EXPECT_TRUE(ReadExample(Each.Name) == Each.Bytes) << Each.Name;
}

TEST(KvExamples, OrdersOfAWorkbookGoIntoTheTableWhole)
{
    const TShop Shop(Schema());
    const auto Run = ImportWithJson(Shop.Folder, {Examples + "/orders.xls", "--sheet", "Orders", "--to",
                                                  Shop.Database(), "--table", "orders"});
    EXPECT_EQ(Run["exitStatus"], 0);
    EXPECT_EQ(Run["added"], 5);
    EXPECT_EQ(
        Shop.Ask("SELECT CUSTOMER, CITY, ORDERED, AMOUNT, QTY, PAID, NOTE FROM orders WHERE ID <= 20403"),
        "Müller, Söhne & Co.|Köln|2024-10-01|1871.2|9|1|Deliver to the yard\n"
        "Żółta Łódź|Łódź|2024-10-02|1444.8|20|1|NULL\n"
        "Ψωμί και Λάδι|Αθήνα|2024-10-04|86.5|5|0|Call first");
}

TEST(KvExamples, OrdersOfWorksheetsGoIntoTheTableWhole)
{
    for (const std::string Name : {"orders.wk1", "orders.wq1"}) {
        const TShop Shop(Schema());
        const auto Run = ImportWithJson(Shop.Folder, {Examples + "/" + Name, "--charset", "msdos", "--to",
                                                      Shop.Database(), "--table", "orders"});
        EXPECT_EQ(Run["exitStatus"], 0);
        EXPECT_EQ(Shop.Ask("SELECT ID, CUSTOMER, CITY, ORDERED, AMOUNT FROM orders"),
                  "10001|Größte Auswahl|München|1990-01-01|498.5\n"
                  "10002|Comidas Peñón|Madrid|1990-01-08|4157\n"
                  "10003|Murtal Handel|Graz|1990-01-22|86.25");
    }
}

TEST(KvExamples, ThePageAndTheDataPacketHoldTheSameOrders)
{
    const TShop FromText(Schema());
    EXPECT_EQ(RunKvImport(FromText.Folder, {"import", Examples + "/orders.csv", "--to", FromText.Database(),
                                            "--table", "orders"}).Status, 0);
    constexpr std::string_view All = "SELECT ID, CUSTOMER, CITY, COUNTRY, ORDERED, AMOUNT, QTY, PAID, "
                                     "NOTE FROM orders";
    for (const std::string Name : {"orders.html", "orders.xml"}) {
        const TShop Shop(Schema());
        const auto Run = RunKvImport(Shop.Folder, {"import", Examples + "/" + Name, "--to", Shop.Database(),
                                                   "--table", "orders"});
        EXPECT_EQ(Run.Status, 0) << Run.Err;
        EXPECT_EQ(Shop.Ask(All), FromText.Ask(All)) << Name;
    }
}

TEST(KvExamples, OrdersOfTablesGoIntoTheTableWhole)
{
    const std::pair<std::string, std::string> Tables[] = {
        {"orders.dbf", "10501|Größte Auswahl|München|DE|"
                       "1999-06-07|1999-06-09|498.5|12|1|Call Frau Voß first:\r\n089 555 0142\n"
                       "10502|Brødrene Sørensen|København|DK|1999-06-08|NULL|"
                       "1204|30|0|Two crates, one pallet\n"
                       "10504|Crémerie Étoile|Liège|BE|1999-06-14|1999-06-18|NULL|5|NULL|NULL"},
        {"orders.db",
         "10601|Müller, Söhne & Co.|Köln|DE|1999-06-21|1999-06-23|1871.2|9|1|Paid in €, invoice in DM\n"
         "10602|Peña Hermanos|Cádiz|ES|1999-06-24|NULL|4157|60|0|Ship with the next load\n"
         "10603|Au Panier Lyonnais|Lyon|FR|1999-06-28|NULL|-120|1|0|NULL"}};
    for (const auto& [Name, Orders] : Tables) {
        const TShop Shop(Schema());
        const auto Run = ImportWithJson(Shop.Folder, {Examples + "/" + Name, "--to", Shop.Database(),
                                                      "--table", "orders"});
        EXPECT_EQ(Run["exitStatus"], 0);
        EXPECT_EQ(Shop.Ask("SELECT ID, CUSTOMER, CITY, COUNTRY, ORDERED, SHIPPED, AMOUNT, QTY, PAID, "
                           "NOTE FROM orders"), Orders);
    }
}

TEST(KvExamples, TheSpecificationsDoTheSame)
{
    const TShop Shop(Schema());
    for (const std::string Name : {"orders", "orders-fixed"}) {
        const auto Run = RunKvImport(Shop.Folder, {"run", Examples + "/" + Name + ".kvi", "--to",
                                                   Shop.Database(), "--table", "orders"});
        EXPECT_EQ(Run.Status, 0) << Run.Err;
    }
    EXPECT_EQ(Shop.Count(), 22);
    EXPECT_EQ(Shop.Ask("SELECT sum(AMOUNT) FROM orders WHERE ID < 20300 AND ID > 20000"), "17930.36");
    EXPECT_EQ(Shop.Ask("SELECT CUSTOMER, CITY, ORDERED, AMOUNT FROM orders WHERE ID = 10305"),
              "Comidas Peñón|Madrid|2024-09-13|4157");
}

TEST(KvExamples, EveryKindOfSourceHasASpecificationThatFillsTheTable)
{
    for (const auto& [Name, Orders] : {std::pair{"xls", 5}, {"wk1", 3}, {"wq1", 3}, {"html", 16}, {"xml", 16},
                                       {"dbf", 3}, {"db", 3}}) {
        const TShop Shop(Schema());
        const TArguments Run{"run", Examples + "/orders-" + Name + ".kvi", "--to", Shop.Database(), "--table",
                             "orders"};
        for (int Time = 0; Time < 2; ++Time) {      // the second time the orders are there already
            const auto Result = RunKvImport(Shop.Folder, Run);
            EXPECT_EQ(Result.Status, 0) << Result.Err;
            EXPECT_EQ(Shop.Count(), Orders) << Name;
        }
    }
}

TEST(KvExamples, FortyLinesImportAnyFileIntoAnyTable)
{
    const TShop Shop(Schema());
    const auto Run = [&Shop](const std::string& File) {
        return TRunningProgram(Shop.Folder, KV_IMPORT_EXAMPLE,
                               {Examples + "/" + File, "sqlite:" + Shop.Database(), "orders"}).Wait();
    };
    const auto Csv = Run("orders.csv");
    EXPECT_EQ(Csv.Status, 0) << Csv.Err;
    EXPECT_NE(Csv.Out.find("Field3 -> CITY\n"), std::string::npos) << Csv.Out;
    EXPECT_NE(Csv.Out.find("16 added, 0 failed\n"), std::string::npos) << Csv.Out;
    EXPECT_NE(Run("orders.dbf").Out.find("3 added, 0 failed\n"), std::string::npos);
    EXPECT_NE(Run("orders.dbf").Out.find("0 added, 3 failed\n"), std::string::npos)
        << "they are there already";
    EXPECT_EQ(Shop.Count(), 19);
}

TEST(KvExamples, TheLibraryDoesTheSame)
{
    const TShop Shop(Schema());
    const auto First = TRunningProgram(Shop.Folder, KV_LIBRARY_EXAMPLE,
                                       {Examples + "/orders.csv", Shop.Database()}).Wait();
    EXPECT_EQ(First.Out + First.Err, "16 added, 0 updated, 0 errors\n");
    const auto Second = TRunningProgram(Shop.Folder, KV_LIBRARY_EXAMPLE,
                                        {Examples + "/orders.csv", Shop.Database()}).Wait();
    EXPECT_EQ(Second.Out + Second.Err, "0 added, 16 updated, 0 errors\n");
    EXPECT_EQ(Shop.Ask("SELECT sum(AMOUNT) FROM orders"), "17930.36");
}

} // namespace

} // namespace kv
