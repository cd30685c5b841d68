// Workbooks and worksheets on the command line.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "KvBiffBuilder.h"
#include "KvCompoundBuilder.h"
#include "KvFileTest.h"
#include "KvWorksheetBuilder.h"

namespace kv {

namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

constexpr unsigned DateXf = 1;

std::string InDocument(const TWorkbookBuilder& Book)
{
    return TCompoundBuilder().Stream(u"Book", Book.Build()).Build();
}

/// The sheets "Orders", with a header and two records of ID, City, Ordered and Amount, and "Places", which
/// has a title above its header.
std::string Workbook()
{
    TWorkbookBuilder Book(bv5);
    Book.Globals(TBiffBuilder(bv5).Xf(0).Xf(14));
    Book.Sheet("Orders", TBiffBuilder(bv5)
                             .Dimensions(0, 3, 0, 4)
                             .Label(0, 0, "ID").Label(0, 1, "City").Label(0, 2, "Ordered")
                             .Label(0, 3, "Amount")
                             .Number(1, 0, 1).Label(1, 1, "K\xF6ln").Number(1, 2, 37621, DateXf)
                             .Number(1, 3, 1234.5)
                             .Number(2, 0, 2).Label(2, 1, "Rom").Number(2, 2, 37622).Number(2, 3, -0.25));
    Book.Sheet("Places", TBiffBuilder(bv5)
                             .Dimensions(0, 3, 0, 2)
                             .Label(0, 0, "All places")
                             .Label(1, 0, "ID").Label(1, 1, "City")
                             .Number(2, 0, 7).Label(2, 1, "Oslo"));
    return InDocument(Book);
}

/// A workbook of one sheet.
std::string WorkbookOf(const TBiffBuilder& Records)
{
    TWorkbookBuilder Book(bv5);
    Book.Globals(TBiffBuilder(bv5).Xf(0)).Sheet("Orders", Records);
    return InDocument(Book);
}

std::string Worksheet(TWorksheetFormat Format)
{
    return TWorksheetBuilder(Format)
        .Range(1, 2)
        .Label(0, 0, "ID").Label(1, 0, "City")
        .Integer(0, 1, 1).Label(1, 1, "Rom")
        .Integer(0, 2, 2).Label(1, 2, "Bern")
        .End().Build();
}

class KvSpreadSheets : public TFileTest
{
protected:
    KvSpreadSheets()
        : TFileTest("book.xls", "CREATE TABLE orders (ID INTEGER PRIMARY KEY, CITY VARCHAR(20), "
                                "ORDERED DATE, AMOUNT DECIMAL(10,2))")
    {
    }

    std::string Orders() const { return Shop.Ask("SELECT ID, CITY FROM orders"); }
};

} // namespace

// What is imported.

TEST_F(KvSpreadSheets, ARowBecomesARecordByTheNamesInTheFirst)
{
    const auto Result = Import(Workbook());
    EXPECT_EQ(Result.Status, 0) << Result.Err;
    EXPECT_EQ(Shop.Ask("SELECT * FROM orders"), "1|Köln|2002-12-31|1234.5\n2|Rom|2003-01-01|-0.25");
}

TEST_F(KvSpreadSheets, ANumberInADateFieldIsTheSerialNumberOfADate)
{
    Import(Workbook());
    EXPECT_EQ(Shop.Ask("SELECT ORDERED FROM orders WHERE ID = 2"), "2003-01-01"); // no date format
}

TEST_F(KvSpreadSheets, TellsWhichSheetItTakesAndWhatBecomesOfItsColumns)
{
    EXPECT_THAT(Import(Workbook()).Out,
                AllOf(HasSubstr("  (sheet 1 of 2, 'Orders'; --sheet takes another)\n"),
                      HasSubstr("  A  ID       -> ID\n"
                                "  B  City     -> CITY\n"
                                "  C  Ordered  -> ORDERED\n"
                                "  D  Amount   -> AMOUNT\n")));
}

TEST_F(KvSpreadSheets, ASheetIsChosenByNumberOrName)
{
    for (const auto* const Sheet : {"2", "Places", "places"}) {
        const auto Result = Import(Workbook(), {"--sheet", Sheet, "--first-row", "3", "--mode", "copy"});
        EXPECT_EQ(Result.Status, 0) << Result.Err;
        EXPECT_EQ(Orders(), "7|Oslo");
        EXPECT_THAT(Result.Out, HasSubstr("(sheet 2 of 2, 'Places')"));
    }
}

TEST_F(KvSpreadSheets, ASheetThatIsNotThereIsRefusedWithTheNamesOfAll)
{
    for (const auto* const Sheet : {"3", "Customers", "0"}) {
        const auto Result = Import(Workbook(), {"--sheet", Sheet});
        EXPECT_EQ(Result.Status, 3);
        EXPECT_THAT(Result.Err, HasSubstr("book.xls has no sheet '" + std::string(Sheet) +
                                          "'; its sheets are 1 'Orders', 2 'Places'\n"));
    }
}

TEST_F(KvSpreadSheets, RowsAreChosenByTheirNumber)
{
    Import(Workbook(), {"--map", "ID=A", "--map", "CITY=B", "--first-row", "3", "--last-row", "3"});
    EXPECT_EQ(Orders(), "2|Rom");
    Import(Workbook(), {"--mode", "copy", "--last-row", "2"});
    EXPECT_EQ(Orders(), "1|Köln");
}

TEST_F(KvSpreadSheets, ColumnsAreMappedByPositionOrByTheirLetters)
{
    Import(Workbook(), {"--by-position", "--first-row", "2"});
    EXPECT_EQ(Orders(), "1|Köln\n2|Rom");
    Import(Workbook(), {"--mode", "copy", "--map", "ID=A", "--map", "CITY=D", "--first-row", "3"});
    EXPECT_EQ(Orders(), "2|-0.25");
}

TEST_F(KvSpreadSheets, AColumnMayBeNamedByASmallLetter)
{
    const auto Out = Import(Workbook(), {"--map", "ID=a", "--map", "CITY=b", "--first-row", "2"}).Out;
    EXPECT_EQ(Orders(), "1|Köln\n2|Rom");
    EXPECT_THAT(Out, HasSubstr("  A  ID       -> ID\n  B  City     -> CITY\n"
                               "  C  Ordered     no --map names it: not imported\n"));
}

TEST_F(KvSpreadSheets, AWorksheetOfLotusAndOfQuattroIsImported)
{
    EXPECT_EQ(Import(Worksheet(wfLotus), {}, "book.wk1").Status, 0);
    EXPECT_EQ(Orders(), "1|Rom\n2|Bern");
    EXPECT_EQ(Import(Worksheet(wfQuattro), {"--mode", "copy"}, "book.wq1").Status, 0);
    EXPECT_EQ(Orders(), "1|Rom\n2|Bern");
}

TEST_F(KvSpreadSheets, AWorkbookComesThroughAPipe)
{
    const auto File = Shop.Folder.Write("book", Workbook());
    const auto Result = RunKvImport(Shop.Folder, {"import", "-", "--from", "xls", "--to", Shop.Database(),
                                                  "--table", "orders"}, File);
    EXPECT_EQ(Result.Status, 0) << Result.Err;
    EXPECT_EQ(Orders(), "1|Köln\n2|Rom");
}

TEST_F(KvSpreadSheets, AMappingToAColumnWithoutValuesIsRemarkedOn)
{
    EXPECT_THAT(Import(Workbook(), {"--map", "ID=A", "--map", "CITY=Z", "--first-row", "2"}).Out,
                HasSubstr("-> CITY  (the column holds no values: the field stays empty)\n"));
}

TEST_F(KvSpreadSheets, AMappingToWhatIsNoColumnIsRefused)
{
    for (const auto* const Column : {"Town", "IW", "@", "Field2"}) {
        const auto Result = Import(Workbook(), {"--map", "ID=A", "--map", std::string("CITY=") + Column});
        EXPECT_EQ(Result.Status, 3);
        EXPECT_THAT(Result.Err,
                    HasSubstr("'" + std::string(Column) + "' is no column; the columns are "));
    }
}

// Columns that fit no field.

TEST_F(KvSpreadSheets, ColumnsWithoutANameOrWithOneThatIsTakenAreRemarkedOn)
{
    const auto Out = Import(WorkbookOf(TBiffBuilder(bv5)
                                           .Label(0, 0, "ID").Label(0, 2, "City").Label(0, 3, "CITY")
                                           .Number(1, 0, 1).Label(1, 1, "x").Label(1, 2, "Rom")
                                           .Label(1, 3, "Bern"))).Out;
    EXPECT_THAT(Out, HasSubstr("  A  ID    -> ID\n"
                               "  B           has no name: not imported\n"
                               "  C  City  -> CITY\n"
                               "  D  CITY     a column before it has that name: not imported\n"));
    EXPECT_EQ(Orders(), "1|Rom");
}

TEST_F(KvSpreadSheets, ColumnsWithoutNameAndValuesAreNone)
{
    EXPECT_THAT(Import(WorkbookOf(TBiffBuilder(bv5)
                                      .Dimensions(0, 2, 0, 9)
                                      .Label(0, 0, "ID").Number(1, 0, 1))).Out,
                Not(HasSubstr("has no name")));
}

TEST_F(KvSpreadSheets, ARowWithoutNamesIsNoHeader)
{
    const auto Result = Import(WorkbookOf(TBiffBuilder(bv5).Number(3, 0, 1)));
    EXPECT_EQ(Result.Status, 3);
    EXPECT_THAT(Result.Err, HasSubstr("book.xls has no names of columns in row 1; "
                                      "--first-row is the row after the one that has them\n"));
}

TEST_F(KvSpreadSheets, AHeaderMayStandBelowEmptyRows)
{
    EXPECT_THAT(Import(WorkbookOf(TBiffBuilder(bv5).Label(2, 0, "ID").Number(3, 0, 1))).Out,
                HasSubstr("(row 3 names the columns, what stands above it is left out; "));
    EXPECT_EQ(Shop.Ask("SELECT ID FROM orders"), "1");
}

TEST_F(KvSpreadSheets, AnErrorNamesItsRow)
{
    const auto Result =
        Import(WorkbookOf(TBiffBuilder(bv5).Label(0, 0, "ID").Number(1, 0, 1).Label(2, 0, "x")));
    EXPECT_EQ(Result.Status, 1);
    EXPECT_THAT(Result.Err, HasSubstr("book.xls, row 3: 'x' is not a valid integer value for field 'ID'\n"));
}

// What lies outside.

TEST_F(KvSpreadSheets, ClassicReadingWarnsOfRowsThatTheSheetDoesNotDeclare)
{
    const auto Result = Import(Worksheet(wfLotus), {"--classic", "--map", "ID=A", "--map", "CITY=B",
                                                    "--first-row", "2"}, "book.wk1");
    EXPECT_EQ(Orders(), "1|Rom");
    EXPECT_THAT(Result.Err, HasSubstr("Warning: " + Shop.Folder / "book.wk1" +
                                      ", the sheet declares 2 rows and holds values down to row 3: "
                                      "the rest is not read with --classic\n"));
}

TEST_F(KvSpreadSheets, ValuesBeyondTheLastColumnAreWarnedOf)
{
    const auto Book = TWorksheetBuilder(wfLotus).Range(300, 1).Label(0, 0, "ID").Integer(0, 1, 1)
                                                .Integer(300, 1, 5).End().Build();
    const auto Result = Import(Book, {}, "book.wk1");
    EXPECT_EQ(Result.Status, 0);
    EXPECT_THAT(Result.Err, HasSubstr(", 1 value stands beyond column IV, the last that can be read\n"));
    EXPECT_THAT(ImportWithJson(Shop.Folder, {Shop.Folder / "book.wk1", "--to", Shop.Database(), "--table",
                                             "orders", "--mode", "copy"})["warnings"].dump(),
                HasSubstr("beyond column IV"));
}

TEST_F(KvSpreadSheets, NothingIsWarnedOfWhenAllIsRead)
{
    EXPECT_EQ(Import(Workbook()).Err, "");
    EXPECT_EQ(Import(Worksheet(wfLotus), {"--mode", "copy"}, "book.wk1").Err, "");
}

// What kind a file is.

TEST_F(KvSpreadSheets, WhatAFileHoldsTellsMoreThanItsName)
{
    for (const auto* const Name : {"book.csv", "book.wk1", "book", "book.dat"}) {
        EXPECT_EQ(Import(Workbook(), {"--mode", "copy"}, Name).Status, 0) << Name;
        EXPECT_EQ(Orders(), "1|Köln\n2|Rom");
    }
    EXPECT_EQ(Import(Worksheet(wfQuattro), {"--mode", "copy"}, "book.xls").Status, 0);
    EXPECT_EQ(Orders(), "1|Rom\n2|Bern");
    EXPECT_EQ(Import(Worksheet(wfLotus), {"--mode", "copy"}, "book.xls").Status, 0);
}

TEST_F(KvSpreadSheets, OptionFromTellsMoreThanBoth)
{
    const auto Result = Import(Workbook(), {"--from", "wks"});
    EXPECT_EQ(Result.Status, 3);
    EXPECT_THAT(Result.Err, AllOf(StartsWith("kvimport: "), HasSubstr("book.xls"),
                                  HasSubstr("File is not a Lotus 1-2-3 file")));
    EXPECT_EQ(Import("ID,City\n5,Bonn\n", {"--from", "text", "--delimiter", "comma"}).Status, 0);
    EXPECT_EQ(Orders(), "5|Bonn");
}

TEST_F(KvSpreadSheets, AFileOfNoKnownFormatIsRefusedWithItsName)
{
    const auto Result = Import("ID,City\n5,Bonn\n");
    EXPECT_EQ(Result.Status, 3);
    EXPECT_THAT(Result.Err, AllOf(HasSubstr("book.xls"), HasSubstr("File is not a Excel file")));
}

TEST_F(KvSpreadSheets, WorksheetsOfLaterVersionsAreRefusedAndNotTakenForText)
{
    const std::string Lotus3("\x00\x00\x1A\x00\x00\x10", 6), Windows("\x00\x00\x02\x00\x01\x10", 6);
    EXPECT_THAT(Import(Lotus3 + std::string(24, '\0'), {}, "book.wk3").Err,
                HasSubstr("File is not a Lotus 1-2-3 file"));
    EXPECT_THAT(Import(Windows, {}, "book.wb1").Err, HasSubstr("File is not a QuattroPro file"));
}

TEST_F(KvSpreadSheets, AFileThatIsNotThereIsRefusedWithItsName)
{
    const auto Result = RunKvImport(Shop.Folder, {"sheets", Shop.Folder / "none.xls"});
    EXPECT_EQ(Result.Status, 3);
    EXPECT_EQ(Result.Err, "kvimport: Cannot open file \"" + Shop.Folder / "none.xls" +
                          "\": No such file or directory\n");
}

TEST_F(KvSpreadSheets, OptionsOfOtherKindsAreRefused)
{
    const auto Text = Import(Workbook(), {"--delimiter", "comma"});
    EXPECT_EQ(Text.Status, 2);
    EXPECT_THAT(Text.Err, StartsWith("kvimport: --delimiter has no meaning for a source of kind xls; "
                                     "it is for text\n"));
    EXPECT_THAT(Import(Worksheet(wfLotus), {"--fixed", "--map", "ID=A"}).Err,
                StartsWith("kvimport: --fixed has no meaning for a source of kind wks; it is for text\n"));
    EXPECT_THAT(Import("ID\n1\n", {"--sheet", "1"}, "orders.csv").Err,
                StartsWith("kvimport: --sheet has no meaning for a source of kind text; "
                           "it is for xls, wks, quattro\n"));
}

TEST_F(KvSpreadSheets, FormatsListsThem)
{
    EXPECT_THAT(RunKvImport(Shop.Folder, {"formats"}).Out,
                AllOf(HasSubstr("xls "), HasSubstr("wks "), HasSubstr("quattro "), HasSubstr(".wk1")));
}

// Looking into a workbook.

TEST_F(KvSpreadSheets, PreviewShowsLettersNamesAndRows)
{
    EXPECT_EQ(Kvimport("preview", Workbook()).Out, "(sheet 1 of 2, 'Orders'; --sheet takes another)\n"
                                                   "row  ID  City     Ordered  Amount\n"
                                                   "      A  B              C       D\n"
                                                   "---  --  ----  ----------  ------\n"
                                                   "  2   1  Köln  2002-12-31  1234.5\n"
                                                   "  3   2  Rom        37622   -0.25\n");
}

TEST_F(KvSpreadSheets, PreviewCountsRowsFromTheFirstOfTheSheet)
{
    const auto Json = Kvimport("preview", Workbook(),
                               {"--sheet", "2", "--first-row", "2", "--rows", "1", "--json"}).Json();
    EXPECT_EQ(Json["rows"].dump(), R"([{"row":2,"values":["ID","City"]}])");
    EXPECT_EQ(Json["columns"][0].dump(), R"({"column":"A","name":"All places"})");
    EXPECT_TRUE(Json["hasMore"].get<bool>());
}

TEST_F(KvSpreadSheets, PreviewGoesOnUntilTheLastValue)
{
    const auto Book = TWorksheetBuilder(wfLotus).Range(0, 0).Label(0, 0, "ID").Integer(0, 30, 5).End()
                                                .Build();
    EXPECT_THAT(Kvimport("preview", Book, {"--rows", "99"}).Out, HasSubstr(" 31   5\n"));
    const auto Classic = Kvimport("preview", Book, {"--classic"});
    EXPECT_THAT(Classic.Out, HasSubstr("There are no rows.\n"));
    EXPECT_THAT(Classic.Err, HasSubstr("the sheet declares 0 rows and holds values down to row 31"));
}

TEST_F(KvSpreadSheets, SheetsListsNamesRowsAndColumns)
{
    EXPECT_EQ(Kvimport("sheets", Workbook()).Out, "sheet  name    rows  columns\n"
                                                  "-----  ------  ----  -------\n"
                                                  "    1  Orders     3        4\n"
                                                  "    2  Places     3        2\n");
    EXPECT_EQ(Kvimport("sheets", Workbook(), {"--json"}).Json()["sheets"].dump(),
              R"([{"columns":4,"name":"Orders","rows":3,"sheet":1},)"
              R"({"columns":2,"name":"Places","rows":3,"sheet":2}])");
}

TEST_F(KvSpreadSheets, SheetsTellsWhatTheSheetDeclaresWithClassicReading)
{
    EXPECT_THAT(Kvimport("sheets", Worksheet(wfLotus), {"--classic"}, "book.wk1").Out,
                HasSubstr("    1  Sheet1     2        1\n"));
}

// Imports that are saved and run again.

TEST_F(KvSpreadSheets, ASavedImportTakesTheSheetItWasSavedWith)
{
    const auto Specification = Shop.Folder / "book.kvi";
    const auto Book = Shop.Folder.Write("book.xls", Workbook());
    RunKvImport(Shop.Folder, {"save", Specification, Book, "--sheet", "2", "--first-row", "3", "--map",
                              "ID=A", "--map", "CITY=B"});
    const auto Result = RunKvImport(Shop.Folder,
                                    {"run", Specification, "--to", Shop.Database(), "--table", "orders"});
    EXPECT_EQ(Result.Status, 0) << Result.Err;
    EXPECT_EQ(Orders(), "7|Oslo");
}

TEST_F(KvSpreadSheets, ASavedImportWarnsOfWhatItLeavesOutAndNamesTheFileInErrors)
{
    const auto Specification = Shop.Folder / "book.kvi";
    const auto Book = Shop.Folder.Write("book.wk1", Worksheet(wfLotus));
    RunKvImport(Shop.Folder, {"save", Specification, Book, "--classic", "--map", "ID=A", "--map", "CITY=B",
                              "--first-row", "2"});
    const TArguments Run{"run", Specification, "--to", Shop.Database(), "--table", "orders"};
    EXPECT_THAT(RunKvImport(Shop.Folder, Run).Err,
                HasSubstr("book.wk1, the sheet declares 2 rows and holds values down to row 3: "
                          "the rest is not read with --classic\n"));
    EXPECT_EQ(Orders(), "1|Rom");
    Shop.Folder.Write("book.wk1", std::string("\0\0\2\0\7\7", 6));
    EXPECT_THAT(RunKvImport(Shop.Folder, Run).Err, HasSubstr("book.wk1: File is not a Lotus 1-2-3 file\n"));
}

TEST_F(KvSpreadSheets, ATextFileHasNoSheets)
{
    const auto Result = Kvimport("sheets", "ID\n1\n", {}, "orders.csv");
    EXPECT_EQ(Result.Status, 3);
    EXPECT_THAT(Result.Err, HasSubstr("orders.csv is no workbook: it has no sheets\n"));
}

} // namespace kv
