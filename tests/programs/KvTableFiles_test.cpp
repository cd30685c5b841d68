// Table files of Paradox and dBase on the command line.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "KvDbaseBuilder.h"
#include "KvParadoxBuilder.h"
#include "KvShop.h"

namespace kv {

namespace {

using testing::AllOf;
using testing::HasSubstr;

/// "orders.dbf" with five records, of which one is deleted and one cannot be read, and "orders.db" with one.
class KvTableFiles : public testing::Test
{
protected:
    KvTableFiles()
    {
        Folder().Write("orders.dbf", Orders().Build());
        Folder().Write("orders.db", TParadoxBuilder().Field("Id", 'I').Field("City", 'A', 20).Field("Amount", '#', 2)
                                        .Record({ParadoxLong(9), "Oslo", ParadoxBcd("12.50", 2)}).Build());
    }

    static TDbaseBuilder Orders()
    {
        return TDbaseBuilder().Language(0x65).Field("ID", 'N', 5).Field("CITY", 'C', 20).Field("ORDERED", 'D', 8)
            .Field("AMOUNT", 'N', 12, 2).Field("PAID", 'L', 1)
            .Record({"    1", "\x8C\xAE\xE1\xAA\xA2\xA0", "20240229", "       12.34", "T"})
            .Deleted({"    2", "Rome", "", "", ""})
            .Record({"    3", "Rome", "", "99999999.99", "F"})
            .Record({"    4", "Bern", "20240230", "", ""})
            .Record({"    5", "Oslo", "20020101", "", "?"});
    }

    const TTempFolder& Folder() const { return Shop.Folder; }
    TProgramResult Import(const std::string& Name, const TArguments& More = {}) const
    {
        return Shop.ImportFile(Folder() / Name, More);
    }
    std::string Stored() { return Shop.Ask("SELECT ID, CITY, ORDERED, AMOUNT, PAID FROM orders ORDER BY ID"); }

    TShop Shop;
};

} // namespace

TEST_F(KvTableFiles, ATableOfDbaseIsImportedByTheNamesOfItsFields)
{
    const auto Result = Import("orders.dbf", {"--json"});
    EXPECT_EQ(Stored(), "1|Москва|2024-02-29|12.34|1\n3|Rome|NULL|99999999.99|0\n5|Oslo|2002-01-01|NULL|NULL");
    EXPECT_EQ(Result.Status, 1) << "done, with errors";
    EXPECT_EQ(Result.Json()["read"], 4);
    EXPECT_EQ(Result.Json()["added"], 3);
    EXPECT_EQ(Result.Json()["failed"], 1);
}

TEST_F(KvTableFiles, ATableOfParadoxIsImportedByTheNamesOfItsFields)
{
    const auto Result = Import("orders.db");
    EXPECT_EQ(Result.Status, 0) << Result.Err;
    EXPECT_EQ(Stored(), "9|Oslo|NULL|12.5|NULL");
}

TEST_F(KvTableFiles, WhatCannotBeReadIsToldWithItsPlace)
{
    const auto Result = Import("orders.dbf");
    EXPECT_THAT(Result.Err, AllOf(HasSubstr("record 4"), HasSubstr("field 'ORDERED': '20240230' is no date")));
}

TEST_F(KvTableFiles, TheFirstBytesTellTheKindWhateverTheName)
{
    Folder().Write("orders.old", Orders().Build());
    Import("orders.old");
    EXPECT_EQ(Shop.Count(), 3);
}

TEST_F(KvTableFiles, RowsAreTheNumbersOfRecords)
{
    Import("orders.dbf", {"--first-row", "2", "--last-row", "3"});
    EXPECT_EQ(Shop.Ask("SELECT ID FROM orders"), "3");
}

TEST_F(KvTableFiles, APreviewShowsRecordsWithTheirNumbers)
{
    const auto Result = RunKvImport(Folder(), {"preview", Folder() / "orders.dbf", "--json"});
    ASSERT_EQ(Result.Status, 0) << Result.Err;
    const auto Rows = Result.Json()["rows"];
    ASSERT_EQ(Rows.size(), 4u);
    EXPECT_EQ(Rows[1]["record"], 3);
    EXPECT_EQ(Rows[0]["values"][1], "Москва");
    EXPECT_EQ(Rows[2]["values"][2], "(unreadable)");
}

TEST_F(KvTableFiles, ADamagedTableFailsWithItsReason)
{
    Folder().Write("orders.dbf", Orders().Build().substr(0, 250));
    const auto Result = Import("orders.dbf");
    EXPECT_EQ(Result.Status, 3);
    EXPECT_THAT(Result.Err, HasSubstr("ends after record"));
    EXPECT_EQ(Shop.Count(), 0);
}

TEST_F(KvTableFiles, AFileOfMemosIsNotTakenForText)
{
    const auto Memos = Folder().Write("orders.mb", TParadoxBlobBuilder().Build());
    const auto Result = RunKvImport(Folder(), {"preview", Memos});
    EXPECT_EQ(Result.Status, 3);
    EXPECT_EQ(Result.Err, "kvimport: " + Memos + " is no text and of no other kind that is known; kvimport formats lists the kinds, "
                          "--from takes the file for one\n");
}

TEST_F(KvTableFiles, StandardInputIsRefused)
{
    const auto Result = RunKvImport(
        Folder(), {"import", "-", "--from", "dbase", "--to", Shop.Database(), "--table", "orders"});
    EXPECT_EQ(Result.Status, 2);
    EXPECT_THAT(Result.Err, HasSubstr("a table file cannot be read from standard input"));
}

} // namespace kv
