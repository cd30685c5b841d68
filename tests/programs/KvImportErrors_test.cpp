#include "KvShop.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sqlite3.h>

#include <memory>

namespace kv {

namespace {

using testing::HasSubstr;

/// A command line after `kvimport`; FILE, SHOP and DIR stand for good paths.
struct TBadRow
{
    const char* Name;
    TArguments Arguments;
    int Status;
    const char* Message;
};

void PrintTo(const TBadRow& Row, std::ostream* Out) { *Out << Row.Name; }

class KvImportExplains : public testing::TestWithParam<TBadRow>
{
protected:
    TArguments Paths(TArguments Arguments) const
    {
        for (auto& Argument : Arguments)
            if (Argument == "FILE")
                Argument = Shop.Folder.Write("orders.csv", "ID,CITY\n1,Rom\n");
            else if (Argument == "SHOP")
                Argument = Shop.Database();
            else if (Argument == "DIR")
                Argument = Shop.Folder.Path.string();
            else if (Argument == "MISSING")
                Argument = Shop.Folder / "missing";
            else if (Argument == "NODATABASE")
                Argument = Shop.Folder.Write("text.db",
                                             "this is no database, but long enough to be looked at as one");
            else if (Argument == "EMPTY")
                Argument = Shop.Folder.Write("empty.db", "");
        return Arguments;
    }

    const TShop Shop;
};

TEST_P(KvImportExplains, WhatIsWrong)
{
    const auto& Row = GetParam();
    const auto Result = RunKvImport(Shop.Folder, Paths(Row.Arguments));
    EXPECT_EQ(Result.Status, Row.Status);
    EXPECT_THAT(Result.Err, HasSubstr(Row.Message));
    EXPECT_EQ(Result.Out, "");
    EXPECT_EQ(Shop.Count(), 0);
}

INSTANTIATE_TEST_SUITE_P(Usage, KvImportExplains, testing::Values(
    TBadRow{"NoCommand", {}, 2, "kvimport: a command is missing; there are import, preview, sheets, tables, "
                                "formats, save, show, run"},
    TBadRow{"UnknownCommand", {"frobnicate"}, 2, "kvimport: 'frobnicate' is no command; there are import, "
                                                 "preview, sheets, tables, formats, save, show, run"},
    TBadRow{"NoFile", {"import"}, 2, "kvimport: FILE is required"},
    TBadRow{"NoDatabase", {"import", "FILE"}, 2, "kvimport: --to is required"},
    TBadRow{"UnknownOption", {"import", "FILE", "--to", "SHOP", "--frobnicate"}, 2, "--frobnicate"},
    TBadRow{"Mode", {"import", "FILE", "--to", "SHOP", "--mode", "merge"}, 2,
            "--mode: 'merge' is none of append, update, append-update, delete, copy"},
    TBadRow{"KeysWithoutUse", {"import", "FILE", "--to", "SHOP", "--table", "orders", "--keys", "ID"}, 2,
            "--keys has no meaning with --mode append"},
    TBadRow{"Delimiter", {"import", "FILE", "--to", "SHOP", "--delimiter", "ab"}, 2,
            "--delimiter: 'ab' is not a single character"},
    TBadRow{"Escape", {"import", "FILE", "--to", "SHOP", "--record-separator", "\\q"}, 2,
            "--record-separator: '\\q': after a backslash stands"},
    TBadRow{"FirstRow", {"import", "FILE", "--to", "SHOP", "--first-row", "0"}, 2,
            "--first-row: '0' is no whole number from 1 on"},
    TBadRow{"LastBeforeFirst", {"import", "FILE", "--to", "SHOP", "--table", "orders", "--last-row", "1"}, 2,
            "--last-row 1 lies before --first-row 2"},
    TBadRow{"NoHeaderLeft", {"import", "FILE", "--to", "SHOP", "--table", "orders", "--first-row", "1"}, 2,
            "--first-row 1 leaves no header line"},
    TBadRow{"FixedWithoutColumns", {"import", "FILE", "--to", "SHOP", "--fixed"}, 2,
            "--fixed needs --columns"},
    TBadRow{"Columns", {"import", "FILE", "--to", "SHOP", "--fixed", "--columns", "ID=9-1"}, 2,
            "--columns: 'ID=9-1' is no column such as CITY=10-29"},
    TBadRow{"MapAndPosition", {"import", "FILE", "--to", "SHOP", "--map", "ID=Field1", "--by-position"}, 2,
            "--map and --by-position exclude each other"},
    TBadRow{"SameSeparators", {"import", "FILE", "--to", "SHOP", "--decimal-separator", ".",
                               "--thousand-separator", "."}, 2, "are the same"},
    TBadRow{"CodePage", {"import", "FILE", "--to", "SHOP", "--code-page", "klingon"}, 2,
            "--code-page: Unknown code page 'klingon'"},
    TBadRow{"Kind", {"import", "FILE", "--to", "SHOP", "--from", "papyrus"}, 2,
            "--from: 'papyrus' is none of text"},
    TBadRow{"SameFile", {"import", "SHOP", "--to", "SHOP", "--table", "orders"}, 2,
            "the source and --to are the same file"}),
    [](const auto& Info) { return Info.param.Name; });

INSTANTIATE_TEST_SUITE_P(Files, KvImportExplains, testing::Values(
    TBadRow{"MissingFile", {"import", "MISSING", "--to", "SHOP", "--table", "orders"}, 3,
            "missing\": No such file or directory"},
    TBadRow{"Directory", {"import", "DIR", "--to", "SHOP", "--table", "orders"}, 3, "Is a directory"},
    TBadRow{"MissingDatabase", {"import", "FILE", "--to", "MISSING", "--table", "orders"}, 3,
            "Cannot open database"},
    TBadRow{"DatabaseIsDirectory", {"import", "FILE", "--to", "DIR", "--table", "orders"}, 3,
            "it is a directory"},
    TBadRow{"NotADatabase", {"import", "FILE", "--to", "NODATABASE", "--table", "orders"}, 3,
            "file is not a database"},
    TBadRow{"EmptyDatabase", {"import", "FILE", "--to", "EMPTY", "--table", "orders"}, 3,
            "the file is empty, it has no tables"},
    TBadRow{"NoTable", {"import", "FILE", "--to", "SHOP"}, 3, "--table is missing; the tables of"},
    TBadRow{"UnknownTable", {"import", "FILE", "--to", "SHOP", "--table", "ordres"}, 3,
            "no such table: ordres (there are: orders)"},
    TBadRow{"UnknownKey",
            {"import", "FILE", "--to", "SHOP", "--table", "orders", "--mode", "update", "--keys", "NR"}, 3,
            "--keys: there is no field 'NR'; the fields are ID, CITY, ORDERED, AMOUNT, QTY, PAID, NOTE"},
    TBadRow{"KeyWithoutColumn",
            {"import", "FILE", "--to", "SHOP", "--table", "orders", "--mode", "update", "--keys", "QTY"}, 3,
            "--keys: the field 'QTY' gets no column"},
    TBadRow{"UnknownField", {"import", "FILE", "--to", "SHOP", "--table", "orders", "--map", "NR=Field1"}, 3,
            "'NR=Field1': there is no field 'NR'; the fields are ID, CITY"},
    TBadRow{"FieldTwice", {"import", "FILE", "--to", "SHOP", "--table", "orders", "--map", "ID=Field1",
                           "--map", "id=Field2"}, 3,
            "'id=Field2': the field has a column already"},
    TBadRow{"NoPair", {"import", "FILE", "--to", "SHOP", "--table", "orders", "--map", "ID"}, 3,
            "--map: 'ID' is no pair such as ID=Field1"},
    TBadRow{"PreviewOfAMissingFile", {"preview", "MISSING"}, 3, "No such file or directory"}),
    [](const auto& Info) { return Info.param.Name; });

struct TCloseDatabase
{
    void operator()(sqlite3* Handle) const { sqlite3_close(Handle); }
};

/// Another program that keeps the database locked.
std::unique_ptr<sqlite3, TCloseDatabase> Lock(const TShop& Shop, const char* Statement)
{
    sqlite3* Handle = nullptr;
    EXPECT_EQ(sqlite3_open(Shop.Database().c_str(), &Handle), SQLITE_OK);
    EXPECT_EQ(sqlite3_exec(Handle, Statement, nullptr, nullptr, nullptr), SQLITE_OK);
    return std::unique_ptr<sqlite3, TCloseDatabase>(Handle);
}

TEST(KvImportErrors, ALockedDatabaseIsWaitedForAsLongAsAsked)
{
    const TShop Shop;
    const auto Other = Lock(Shop, "BEGIN IMMEDIATE");
    const auto Run = Shop.Run("ID,CITY\n1,Rom\n", {"--busy-timeout", "50"});
    EXPECT_EQ(Run.Status, 3);
    EXPECT_THAT(Run.Err, HasSubstr("shop.db: the database is locked by another connection"));
    EXPECT_THAT(Run.Out, HasSubstr("Failed: nothing was imported (rolled back)."));
}

TEST(KvImportErrors, ADatabaseLockedForReadingToo)
{
    const TShop Shop;
    const auto Other = Lock(Shop, "BEGIN EXCLUSIVE");
    const auto Run = Shop.Run("ID,CITY\n1,Rom\n", {"--busy-timeout", "50"});
    EXPECT_EQ(Run.Status, 3);
    EXPECT_THAT(Run.Err, HasSubstr("shop.db: the database is locked by another connection"));
}

TEST(KvImportErrors, AReadOnlyDatabase)
{
    const TShop Shop;
    // A write version that this SQLite does not know makes the file read-only, for root as well.
    auto Bytes = Shop.Folder.Read("shop.db");
    Bytes[18] = 3;
    Shop.Folder.Write("shop.db", Bytes);
    const auto Run = Shop.Run("ID,CITY\n1,Rom\n");
    EXPECT_EQ(Run.Status, 3);
    EXPECT_THAT(Run.Err, HasSubstr("shop.db: the database is read-only"));
}

TEST(KvImportErrors, ErrorsAreCappedAndCounted)
{
    const TShop Shop;
    std::string Text = "ID,CITY\n";
    for (int I = 0; I < 30; ++I)
        Text += "x,y\n";
    const auto Run = Shop.Run(Text, {"--max-errors", "3"});
    EXPECT_EQ(Run.Status, 1);
    EXPECT_THAT(Run.Err, HasSubstr("orders.csv, line 4: 'x' is not a valid integer value for field 'ID'\n"
                                   "... and 27 more errors\n"));
    EXPECT_THAT(Run.Err, testing::Not(HasSubstr("line 5")));
}

TEST(KvImportErrors, OfNumbersAreToldOnce)
{
    const TShop Shop;
    const auto Run = Shop.Run("ID,CITY,AMOUNT\n1,Rom,abc\n");
    EXPECT_EQ(Run.Status, 1);
    EXPECT_EQ(Run.Err, (Shop.Folder / "orders.csv") +
                       ", line 2: 'abc' is not a valid floating point value for field 'AMOUNT'\n");
}

TEST(KvImportErrors, CannotSteerTheTerminal)
{
    const TShop Shop;
    const auto Run = Shop.Run("ID,CITY\n\x1B[2J,Rom\n");
    EXPECT_THAT(Run.Err, HasSubstr("'\\x1B[2J' is not a valid integer value"));
    EXPECT_EQ(Run.Err.find('\x1B'), std::string::npos);
}

TEST(KvImportErrors, QuietPrintsNothingButErrors)
{
    const TShop Shop;
    const auto Good = Shop.Run("ID,CITY\n1,Rom\n", {"--quiet"});
    EXPECT_EQ(Good.Status, 0);
    EXPECT_EQ(Good.Out + Good.Err, "");
    const auto Bad = Shop.Run("ID,CITY\n1,Rom\n2,Bern\n", {"--quiet"});
    EXPECT_EQ(Bad.Status, 1);
    EXPECT_EQ(Bad.Out, "");
    EXPECT_THAT(Bad.Err, HasSubstr("line 2: "));
}

TEST(KvImportErrors, JsonTellsWhatFailedBeforeTheRun)
{
    const TShop Shop;
    const auto Run = ImportWithJson(Shop.Folder,
                                    {Shop.Folder / "missing", "--to", Shop.Database(), "--table", "orders"});
    EXPECT_EQ(Run["result"], "failed");
    EXPECT_EQ(Run["exitStatus"], 3);
    EXPECT_THAT(std::string(Run["message"]), HasSubstr("No such file or directory"));
    EXPECT_EQ(Run["read"], 0);
}

/// Runs kvimport with `Arguments`, and whatever else a shell is to do, in the folder of `Shop`.
TProgramResult RunInShell(const TShop& Shop, const std::string& Arguments)
{
    const auto Line = "cd '" + Shop.Folder / "" + "' && exec " KV_PROGRAM " " + Arguments;
    return TRunningProgram(Shop.Folder, "/bin/sh", {"-c", Line}).Wait();
}

TEST(KvImportErrors, OutputThatCannotBeWrittenIsAFailure)
{
    const TShop Shop;
    Shop.Folder.Write("orders.csv", "ID,CITY\n1,Rom\n");
    for (const auto* const Command : {"formats", "--help", "--version", "import --help", "preview orders.csv",
                                      "import orders.csv --to shop.db --table orders --json"}) {
        const auto Result = RunInShell(Shop, std::string(Command) + " >/dev/full");
        EXPECT_EQ(Result.Status, 3) << Command;
        EXPECT_THAT(Result.Err, HasSubstr("standard output cannot be written"));
    }
}

TEST(KvImportErrors, ClosedFilesTakeNoPartInTheImport)
{
    const TShop Shop;
    Shop.Folder.Write("orders.csv", "ID,CITY\n1,Rom\n2,Oslo\n");
    const std::string Import = "import - --to shop.db --table orders --delimiter comma <orders.csv";
    EXPECT_EQ(RunInShell(Shop, Import + " >&-").Status, 0);
    EXPECT_EQ(Shop.Ask("SELECT ID, CITY FROM orders"), "1|Rom\n2|Oslo");
    EXPECT_EQ(RunInShell(Shop, Import + " --mode append-update >&- 2>&-").Status, 0);
    EXPECT_EQ(Shop.Count(), 2);
    EXPECT_EQ(RunInShell(Shop, "import - --to shop.db --table orders --by-position <&-").Status, 3);
    EXPECT_EQ(Shop.Count(), 2);
}

TEST(KvImportErrors, APipeThatGivesTooMuchIsRefused)
{
    const TShop Shop;
    EXPECT_THAT(RunInShell(Shop, "import - --to shop.db --table orders --spool-limit 1 </dev/zero").Err,
                HasSubstr("it gives more than 1048576 bytes"));
}

TEST(KvImportErrors, ATextOfAnySizeFillsNoMessage)
{
    const TShop Shop;
    const auto Result =
        Shop.Run(std::string(100000, 'x') + ",\xE2\x80\xAE" + std::string(100000, 'y') + "\n1,2\n");
    EXPECT_EQ(Result.Status, 3);
    EXPECT_LT(Result.Err.size(), 800u);
    EXPECT_THAT(Result.Err, HasSubstr("\\u202Ey"));
    const auto Amount = Shop.Run("ID;CITY;AMOUNT\n1;Rom;1,5" + std::string(1000, '0') + "\n");
    EXPECT_THAT(Amount.Err, HasSubstr("where no thousands end"));
    EXPECT_LT(Amount.Err.size(), 800u);
}

TEST(KvImportErrors, ACopyThatStoresNoneKeepsTheTable)
{
    const TShop Shop;
    Shop.Ask("INSERT INTO orders (ID, CITY) VALUES (1, 'Rom')");
    const auto Failed = Shop.Run("ID,CITY\nx,Bern\n", {"--mode", "copy"});
    EXPECT_EQ(Failed.Status, 3);
    EXPECT_THAT(Failed.Err,
                HasSubstr("none of the records could be stored: the table keeps those that it has"));
    EXPECT_EQ(Shop.Count(), 1);
    const auto Empty = Shop.Run("ID,CITY\n", {"--mode", "copy"});
    EXPECT_EQ(Empty.Status, 0);
    EXPECT_THAT(Empty.Out, HasSubstr("Done: nothing was added; 1 record removed before"));
    EXPECT_EQ(Shop.Count(), 0);
}

} // namespace

} // namespace kv
