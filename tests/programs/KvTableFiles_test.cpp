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
using testing::Not;

/// "orders.dbf" with five records, of which one is deleted and one cannot be read, and "orders.db" with one.
class KvTableFiles : public testing::Test
{
protected:
    KvTableFiles()
    {
        Folder().Write("orders.dbf", Orders().Build());
        Folder().Write("orders.db",
                       TParadoxBuilder().Field("Id", 'I').Field("City", 'A', 20).Field("Amount", '#', 2)
                                        .Record({ParadoxLong(9), "Oslo", ParadoxBcd("12.50", 2)}).Build());
    }

    static TDbaseBuilder Orders()
    {
        return TDbaseBuilder().Language(0x65).Field("ID", 'N', 5).Field("CITY", 'C', 20)
                              .Field("ORDERED", 'D', 8)
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
    std::string Stored()
    {
        return Shop.Ask("SELECT ID, CITY, ORDERED, AMOUNT, PAID FROM orders ORDER BY ID");
    }

    TShop Shop;
};

} // namespace

TEST_F(KvTableFiles, ATableOfDbaseIsImportedByTheNamesOfItsFields)
{
    const auto Result = Import("orders.dbf", {"--json"});
    EXPECT_EQ(Stored(),
              "1|Москва|2024-02-29|12.34|1\n3|Rome|NULL|99999999.99|0\n5|Oslo|2002-01-01|NULL|NULL");
    EXPECT_EQ(Result.Status, 1) << "done, with errors";
    EXPECT_EQ(Result.Json()["read"], 4);
    EXPECT_EQ(Result.Json()["added"], 3);
    EXPECT_EQ(Result.Json()["failed"], 1);
    EXPECT_EQ(Result.Json()["refused"], 0);
}

TEST_F(KvTableFiles, ATableOfParadoxIsImportedByTheNamesOfItsFields)
{
    const auto Result = Import("orders.db");
    EXPECT_EQ(Result.Status, 0) << Result.Err;
    EXPECT_EQ(Stored(), "9|Oslo|NULL|12.5|NULL");
}

TEST_F(KvTableFiles, AFieldOfTheTableMayBeNamedInAnyCase)
{
    const auto Out = Import("orders.db", {"--map", "ID=id", "--map", "CITY=CITY"}).Out;
    EXPECT_EQ(Stored(), "9|Oslo|NULL|NULL|NULL");
    EXPECT_THAT(Out, AllOf(HasSubstr("  Id      -> ID\n  City    -> CITY\n"), Not(HasSubstr("constant"))));
}

TEST_F(KvTableFiles, WhatCannotBeReadIsToldWithItsPlace)
{
    const auto Result = Import("orders.dbf");
    EXPECT_EQ(Result.Err,
              "File \"" + Folder() / "orders.dbf" + "\", record 4, field 'ORDERED': '20240230' is no date\n");
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

TEST_F(KvTableFiles, AnEncryptedTableFailsWithItsReason)
{
    Folder().Write("orders.dbf", Orders().Encrypted().Build());
    const auto Result = Import("orders.dbf");
    EXPECT_EQ(Result.Status, 3);
    EXPECT_THAT(Result.Err, HasSubstr("orders.dbf\" is encrypted\n"));
}

TEST_F(KvTableFiles, APreviewSaysWhyAValueCannotBeRead)
{
    Folder().Write("notes.dbf", TDbaseBuilder(0x83).Field("NOTE", 'M', 10).Record({"         1"})
                                                   .Record({"         2"}).Build());
    const auto Result = RunKvImport(Folder(), {"preview", Folder() / "notes.dbf"});
    EXPECT_EQ(Result.Status, 0);
    EXPECT_EQ(Result.Err, "Warning: " + Folder() / "notes.dbf" + ", 2 values cannot be read: File \"" +
                          Folder() / "notes.dbf" +
                              "\", record 1, field 'NOTE': Cannot open file \"" + Folder() / "notes.dbt" +
                              "\": No such file or directory\n");
}

TEST_F(KvTableFiles, TextOfACodePageThatIsNotNamedIsPointedOut)
{
    Folder().Write("orders.dbf", TDbaseBuilder().Field("ID", 'N', 5).Field("CITY", 'C', 20)
                                                .Record({"    1", "K\x94ln"}).Build());
    EXPECT_THAT(Import("orders.dbf").Out,
                HasSubstr("(the table does not name the code page of its text, which is taken for "
                          "windows-1252; --charset msdos takes it for 437)\n"));
    EXPECT_THAT(Import("orders.dbf", {"--charset", "msdos", "--mode", "copy"}).Out,
                Not(HasSubstr("code page")));
    EXPECT_EQ(Shop.Ask("SELECT CITY FROM orders"), "Köln");
    EXPECT_THAT(Import("orders.db", {"--mode", "copy"}).Out, Not(HasSubstr("code page")));
}

TEST_F(KvTableFiles, RowsThatEndBeforeTheyBeginAreRefused)
{
    const auto Result = Import("orders.dbf", {"--first-row", "3", "--last-row", "2"});
    EXPECT_EQ(Result.Status, 2);
    EXPECT_THAT(Result.Err, HasSubstr("--last-row 2 lies before --first-row 3\n"));
}

TEST_F(KvTableFiles, ClassicReadingSaysThatNoRecordIsSkipped)
{
    EXPECT_THAT(Import("orders.dbf", {"--classic", "--first-row", "5"}).Out,
                HasSubstr("(--classic: all records are imported, "
                          "whatever --first-row and --last-row say)\n"));
    EXPECT_EQ(Shop.Count(), 3);
}

TEST_F(KvTableFiles, ATableWithoutFieldsOfTheDestinationIsRefusedWithBothNamed)
{
    Folder().Write("orders.dbf", TDbaseBuilder().Field("NR", 'N', 5).Record({"    1"}).Build());
    const auto Result = Import("orders.dbf");
    EXPECT_EQ(Result.Status, 3);
    EXPECT_THAT(Result.Err, HasSubstr("no column has the name of a field; the columns are NR; "
                                      "the fields are ID, CITY, ORDERED, "
                                      "AMOUNT, QTY, PAID, NOTE; "
                                      "--map or --by-position joins them otherwise\n"));
}

TEST_F(KvTableFiles, ASavedImportIsRefusedWhenTheTableLacksAField)
{
    const auto File = Folder() / "orders.kvi";
    RunKvImport(Folder(),
                {"save", File, Folder() / "orders.dbf", "--to", Shop.Database(), "--table", "orders"});
    const auto Result = RunKvImport(Folder(), {"run", File, "--to", Shop.Database(), "--table", "orders",
                                               "--source", Folder() / "orders.db", "--quiet", "--json"});
    EXPECT_EQ(Result.Status, 3) << "it is a table of Paradox";
    Folder().Write("orders.dbf", TDbaseBuilder().Field("ID", 'N', 5).Field("CITY", 'C', 9)
                                                .Record({"    7", "Rome"}).Build());
    EXPECT_THAT(RunKvImport(Folder(), {"run", File, "--to", Shop.Database(), "--table", "orders"}).Err,
                HasSubstr("orders.dbf has no column 'ORDERED', which was saved for field ORDERED\n"));
    EXPECT_EQ(Shop.Count(), 0);
}

TEST_F(KvTableFiles, TablesListsThoseOfDatabasesOnly)
{
    EXPECT_EQ(RunKvImport(Folder(), {"tables", Folder() / "orders.dbf"}).Err,
              "kvimport: " + Folder() / "orders.dbf" +
              " is no Access database but of kind dbase; kvimport preview shows what it holds\n");
}

TEST_F(KvTableFiles, ADestinationIsNotTakenForATableOfParadox)
{
    EXPECT_EQ(RunKvImport(Folder(), {"preview", Shop.Database()}).Err,
              "kvimport: " + Shop.Database() +
              " is an SQLite database, into which kvimport imports; it reads none\n");
}

TEST_F(KvTableFiles, AFileOfMemosIsNotTakenForText)
{
    const auto Memos = Folder().Write("orders.mb", TParadoxBlobBuilder().Build());
    const auto Result = RunKvImport(Folder(), {"preview", Memos});
    EXPECT_EQ(Result.Status, 3);
    EXPECT_EQ(Result.Err, "kvimport: " + Memos +
                          " is no text and of no other kind that is known; kvimport formats lists the kinds, "
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
