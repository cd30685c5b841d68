// What the examples promise.
#include "KvShop.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

namespace kv {

namespace {

const std::string Examples = KV_EXAMPLES;

std::string Schema()
{
    std::ifstream File(Examples + "/schema.sql");
    return {std::istreambuf_iterator<char>(File), std::istreambuf_iterator<char>()};
}

TEST(KvExamples, OrdersGoIntoTheTableWhole)
{
    const TShop Shop(Schema());
    const auto Run = ImportWithJson(Shop.Folder, {Examples + "/orders.csv", "--to", Shop.Database(), "--table", "orders",
                                                  "--delimiter", "comma", "--first-row", "2", "--mode", "append-update", "--keys", "ID"});
    EXPECT_EQ(Run["exitStatus"], 0);
    EXPECT_EQ(Run["added"], 16);
    EXPECT_EQ(Shop.Ask("SELECT CUSTOMER, CITY, ORDERED, AMOUNT, QTY, PAID, NOTE FROM orders WHERE ID IN (20249, 20258, 20263)"),
              "Müller, Söhne & Co.|Köln|2024-01-05|1871.2|9|1|Deliver to the yard, not to the shop\n"
              "Smith, Jones and Daughters|Leeds|2024-01-17|1614.88|50|NULL|Second address:\n14 Canal Street\n"
              "Murtal Handel|Graz|2024-03-05|NULL|NULL|0|Price on request");
    EXPECT_EQ(Shop.Ask("SELECT sum(AMOUNT) FROM orders"), "17930.36");
}

TEST(KvExamples, OrdersOfFixedWidthGoIntoTheTableWhole)
{
    const TShop Shop(Schema());
    const auto Run = ImportWithJson(Shop.Folder, {Examples + "/orders-fixed.txt", "--to", Shop.Database(), "--table", "orders", "--fixed",
                                                  "--columns", "ID=1-6,CUSTOMER=7-28,CITY=29-42,ORDERED=43-53,AMOUNT=54-62", "--charset", "msdos",
                                                  "--date-order", "dmy", "--date-separator", ".", "--decimal-separator", ","});
    EXPECT_EQ(Run["exitStatus"], 0);
    EXPECT_EQ(Shop.Ask("SELECT CUSTOMER, CITY, ORDERED, AMOUNT FROM orders WHERE ID >= 10305"),
              "Comidas Peñón|Madrid|2024-09-13|4157\nGrößte Auswahl|München|2024-09-16|498.5");
}

TEST(KvExamples, TheSpecificationsDoTheSame)
{
    const TShop Shop(Schema());
    for (const std::string Name : {"orders", "orders-fixed"}) {
        const auto Run = RunKvImport(Shop.Folder, {"run", Examples + "/" + Name + ".kvi", "--to", Shop.Database(), "--table", "orders"});
        EXPECT_EQ(Run.Status, 0) << Run.Err;
    }
    EXPECT_EQ(Shop.Count(), 22);
    EXPECT_EQ(Shop.Ask("SELECT sum(AMOUNT) FROM orders WHERE ID < 20300 AND ID > 20000"), "17930.36");
    EXPECT_EQ(Shop.Ask("SELECT CUSTOMER, CITY, ORDERED, AMOUNT FROM orders WHERE ID = 10305"), "Comidas Peñón|Madrid|2024-09-13|4157");
}

TEST(KvExamples, TheLibraryDoesTheSame)
{
    const TShop Shop(Schema());
    const auto First = TRunningProgram(Shop.Folder, KV_LIBRARY_EXAMPLE, {Examples + "/orders.csv", Shop.Database()}).Wait();
    EXPECT_EQ(First.Out + First.Err, "16 added, 0 updated, 0 errors\n");
    const auto Second = TRunningProgram(Shop.Folder, KV_LIBRARY_EXAMPLE, {Examples + "/orders.csv", Shop.Database()}).Wait();
    EXPECT_EQ(Second.Out + Second.Err, "0 added, 16 updated, 0 errors\n");
    EXPECT_EQ(Shop.Ask("SELECT sum(AMOUNT) FROM orders"), "17930.36");
}

} // namespace

} // namespace kv
