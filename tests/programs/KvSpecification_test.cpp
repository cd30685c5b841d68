// kvimport save, show and run.
#include "KvShop.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "KvBiffBuilder.h"
#include "KvCompoundBuilder.h"
#include "KvFormatSettings.h"
#include "KvSourceFactory.h"
#include "KvSqliteTable.h"

namespace kv {

namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

constexpr std::string_view Csv = "ID;CITY;ORDERED;AMOUNT;PAID\n"
                                 "1;Rom;24.12.2024;1.234,50;ja\n"
                                 "2;\"Oslo \"\"Nord\"\"\";01.02.2025;-3,25;nein\n"
                                 "3;;31.01.2025;;\n";
const TArguments Words = {"--boolean-true", "ja", "--boolean-false", "nein"};
const TArguments GermanOptions = {"--date-order", "dmy", "--date-separator", ".", "--decimal-separator", ","};

class KvSpecification : public testing::Test
{
protected:
    TProgramResult Run(TArguments Arguments, const TArguments& More = {}) const
    {
        Arguments.insert(Arguments.end(), More.begin(), More.end());
        return RunKvImport(Shop.Folder, Arguments);
    }
    /// Saves "orders.csv" with these options; gives what was said.
    TProgramResult Save(const TArguments& More) const
    {
        return Run({"save", File, Shop.Folder.Write("orders.csv", Csv), "--to", Shop.Database(), "--table",
                    "orders"}, More);
    }
    TProgramResult RunFile(const TArguments& More = {}) const
    {
        return Run({"run", File, "--to", Shop.Database(), "--table", "orders"}, More);
    }
    nlohmann::json RunWithJson(TArguments More = {}) const
    {
        More.push_back("--json");
        return RunFile(More).Json();
    }
    nlohmann::json Show() const { return Run({"show", File, "--json"}).Json(); }
    std::string Rows() const
    {
        return Shop.Ask("SELECT ID, CITY, ORDERED, AMOUNT, PAID FROM orders ORDER BY ID");
    }

    const TShop Shop{"CREATE TABLE orders (ID INTEGER PRIMARY KEY, CITY VARCHAR(20), ORDERED DATE, "
                     "AMOUNT DECIMAL(10,2), PAID BOOLEAN)"};
    const std::string File = Shop.Folder / "orders.kvi";
};

// Saving.

TEST_F(KvSpecification, WhatIsSavedRunsAsImportWould)
{
    ASSERT_EQ(Save(GermanOptions).Status, 0);
    EXPECT_EQ(Shop.Count(), 0);
    EXPECT_EQ(RunWithJson(Words)["added"], 3);
    const auto Saved = Rows();
    EXPECT_EQ(Saved,
              "1|Rom|2024-12-24|1234.5|1\n2|Oslo \"Nord\"|2025-02-01|-3.25|0\n3|NULL|2025-01-31|NULL|NULL");

    TArguments Import{"import", Shop.Folder / "orders.csv", "--to", Shop.Database(), "--table", "orders",
                      "--mode", "copy"};
    Import.insert(Import.end(), Words.begin(), Words.end());
    EXPECT_EQ(Run(Import, GermanOptions).Status, 0);
    EXPECT_EQ(Rows(), Saved);
}

TEST_F(KvSpecification, TheFileHoldsWhatTheOptionsSay)
{
    TArguments Options{"--mode", "append-update", "--keys", "ID", "--last-row", "3", "--charset", "msdos",
                       "--name", "Spring orders"};
    Options.insert(Options.end(), GermanOptions.begin(), GermanOptions.end());
    ASSERT_EQ(Save(Options).Status, 0);
    EXPECT_EQ(Shop.Folder.Read("orders.kvi"),
              "[Common]\r\nApp=kvimport\r\nDescription=KvImport: specification\r\n"
              "Specification=Spring orders\r\nDatasetKeys=ID\r\nMode=2\r\nTableType=Text\r\n"
              "SourceFileName=" + Shop.Folder / "orders.csv" + "\r\nCharacterSet=1\r\n"
              "[Mappings]\r\nCount=5\r\nMap0=ID=Field1\r\nMap1=CITY=Field2\r\nMap2=ORDERED=Field3\r\n"
              "Map3=AMOUNT=Field4\r\nMap4=PAID=Field5\r\n"
              "[Text]\r\nFieldDelimiter=3B\r\nTextQualifier=22\r\nRecordSeparator=0D0A\r\nFixed=0\r\n"
              "RowFirst=2\r\nRowLast=3\r\n"
              "[DataFormat]\r\nDateOrder=1\r\nDateSeparator=2E\r\nTimeSeparator=3A\r\n"
              "ThousandSeparator=2E\r\nDecimalSeparator=2C\r\nFourDigitYear=1\r\nLeadingZerosInDate=1\r\n"
              "[Extensions]\r\nDoubledQualifiers=1\r\nLongLines=1\r\nByteOrderMark=1\r\nFixedPadding=1\r\n"
              "WholeSeparator=1\r\nDelimiterLine=1\r\nEndOfFileMark=1\r\n"
              "RestoresControls=1\r\nTimedProgress=1\r\nNoNumberBoxes=1\r\nExactNumbers=1\r\n"
              "WrittenForms=1\r\nFormatsInForce=1\r\nTimesAlone=1\r\nOemTextOnly=1\r\n"
              "ErrorsByRecord=1\r\nSourceFirst=1\r\nNoEmptyRecords=1\r\n"
              "[Job]\r\nHeaderRow=1\r\nLine0=ID=Field1\r\nTitle0=ID\r\nLine1=CITY=Field2\r\nTitle1=CITY\r\n"
              "Line2=ORDERED=Field3\r\nTitle2=ORDERED\r\nLine3=AMOUNT=Field4\r\nTitle3=AMOUNT\r\n"
              "Line4=PAID=Field5\r\nTitle4=PAID\r\nDestination=" + Shop.Database() + "\r\nTable=orders\r\n");
}

TEST_F(KvSpecification, ClassicReadingHasNoExtensions)
{
    TArguments Options = GermanOptions;
    Options.push_back("--classic");
    ASSERT_EQ(Save(Options).Status, 0);
    EXPECT_THAT(Shop.Folder.Read("orders.kvi"), Not(HasSubstr("[Extensions]")));
    EXPECT_THAT(Show()["extensions"], IsEmpty());
}

TEST_F(KvSpecification, NeedsNoTableWhenMappingsAreGiven)
{
    const auto Csv1 = Shop.Folder.Write("orders.csv", Csv);
    const auto Saved = Run({"save", File, Csv1, "--delimiter", "semicolon", "--first-row", "2", "--map",
                            "ID = Field1", "--map", "CITY=Field2", "--mode", "update", "--keys", "id"});
    EXPECT_EQ(Saved.Status, 0) << Saved.Err;
    EXPECT_EQ(Show()["mappings"].dump(),
              R"([{"column":"Field1","field":"ID"},{"column":"Field2","field":"CITY"}])");
    EXPECT_THAT(Show()["keys"], ElementsAre("id"));
    EXPECT_EQ(RunWithJson({"--mode", "append"})["added"], 3);
    EXPECT_EQ(RunWithJson()["updated"], 3);
}

TEST_F(KvSpecification, LinesAreComparedWithTheHeaderThatNamedTheColumns)
{
    const auto Orders = Shop.Folder.Write("may.csv", "Orders of May\n\nID,CITY\n1,Rom\n2,Bern,x\n");
    Run({"save", File, Orders, "--first-row", "4", "--to", Shop.Database(), "--table", "orders"});
    EXPECT_THAT(RunFile().Err, HasSubstr("may.csv, line 5 has more values than line 3: "
                                         "the extra ones were not imported\n"));
}

TEST_F(KvSpecification, SaysWhatBecomesOfColumnsThatAreNoneOrFindNoField)
{
    const auto Orders = Shop.Folder.Write("more.csv", "ID,COLOUR\n1,red\n");
    EXPECT_THAT(Run({"save", File, Orders, "--to", Shop.Database(), "--table", "orders"}).Out,
                EndsWith("(Field2 COLOUR: no field of that name: not imported)\n"));
    EXPECT_THAT(
        Run({"save", File, Orders, "--first-row", "2", "--map", "ID=Field1", "--set", "CITY=Town"}).Out,
        EndsWith("\n(Town for CITY: no column but a constant: every record gets this text)\n"));
}

TEST_F(KvSpecification, TheFileHoldsWordsForTruthAndCodePagesToo)
{
    TArguments Options = GermanOptions;
    Options.insert(Options.end(), Words.begin(), Words.end());
    Options.insert(Options.end(), {"--code-page", "windows-1252"});
    ASSERT_EQ(Save(Options).Status, 0);
    EXPECT_THAT(Shop.Folder.Read("orders.kvi"),
                HasSubstr("BooleanTrue=ja\r\nBooleanFalse=nein\r\nCodePage=windows-1252\r\n"));
    EXPECT_EQ(RunWithJson()["added"], 3);
    EXPECT_EQ(Shop.Ask("SELECT PAID FROM orders WHERE ID = 1"), "1");
}

TEST_F(KvSpecification, ADestinationThatTheFileNamesNeedsNoOption)
{
    ASSERT_EQ(Save(GermanOptions).Status, 0);
    EXPECT_EQ(Run({"run", File}, Words).Status, 0);
    EXPECT_EQ(Shop.Count(), 3);
}

TEST_F(KvSpecification, AFileThatIsThereIsBroughtUpToDate)
{
    Shop.Folder.Write("orders.kvi", "; mine\n[Common]\nMode=4\nOwner=Ada\n");
    ASSERT_EQ(Save(GermanOptions).Status, 0);
    EXPECT_THAT(Shop.Folder.Read("orders.kvi"),
                StartsWith("; mine\n[Common]\nMode=0\nOwner=Ada\nApp=kvimport\n"));
}

TEST_F(KvSpecification, WhatIsNoSpecificationIsNotMadeOne)
{
    const auto Orders = Shop.Folder.Write("orders.csv", Csv);
    const auto Swapped = Run({"save", Orders, File, "--map", "ID=Field1", "--from", "text"});
    EXPECT_EQ(Swapped.Status, 3);
    EXPECT_EQ(Swapped.Err,
              "kvimport: " + Orders + " is there and is no import specification; it is left as it is\n");
    EXPECT_EQ(Shop.Folder.Read("orders.csv"), Csv);
}

TEST_F(KvSpecification, SavingRefusesWhatCouldNotRun)
{
    const auto Orders = Shop.Folder.Write("orders.csv", Csv);
    EXPECT_THAT(Run({"save", File, "-", "--map", "ID=Field1"}).Err,
                StartsWith("kvimport: a specification names a file that can be read again, "
                           "which - is not\n"));
    EXPECT_THAT(Run({"save", File, Orders}).Err,
                StartsWith("kvimport: --to and --table are missing: they say which fields there are; "
                           "without them --map must say it\n"));
    EXPECT_EQ(Run({"save", File, Orders, "--map", "ID"}).Err,
              "kvimport: --map: 'ID' is no pair such as ID=Field1: a field and a column\n");
    EXPECT_EQ(Run({"save", File, Orders, "--map", "ID=Field1", "--mode", "delete", "--keys", "CITY"}).Err,
              "kvimport: --keys: the field 'CITY' gets no column, so no record can be found by it\n");
    EXPECT_THAT(Run({"save", File, Orders, "--map", "ID=Field1", "--mode", "delete"}).Err,
                StartsWith("kvimport: --keys is missing: --mode delete finds records by keys\n"));
    EXPECT_FALSE(std::filesystem::exists(File));
}

// Showing.

TEST_F(KvSpecification, ShowsTheFileInWords)
{
    TArguments Options{"--mode", "append-update", "--last-row", "3", "--record-separator", "\\x1E"};
    Options.insert(Options.end(), GermanOptions.begin(), GermanOptions.end());
    Shop.Folder.Write("orders.kvi", "");
    Run({"save", File, Shop.Folder.Write("orders.csv", "ID\tCITY\x1E" "1\tRom\x1E"), "--to", Shop.Database(),
         "--table", "orders"}, Options);
    EXPECT_EQ(Run({"show", File}).Out, File + ": orders, saved by kvimport\n"
                                              "  source      " + Shop.Folder / "orders.csv" + " (Text)\n"
                                              "  layout      delimiter tab, qualifier quot, "
                                              "records end in \\x1E\n"
                                              "  rows        2 to 3\n"
                                              "  text        ANSI code page\n"
                                              "  dates       dmy, separator '.'\n"
                                              "  times       separator ':'\n"
                                              "  numbers     decimal separator comma, "
                                              "thousand separator '.'\n"
                                              "  extensions  DoubledQualifiers, LongLines, "
                                              "ByteOrderMark, FixedPadding, WholeSeparator, "
                                              "DelimiterLine, EndOfFileMark\n"
                                              "  records     mode append-update, keys ID\n"
                                              "  into        " + Shop.Database() + ", table orders\n"
                                              "  mappings    ID   <- Field1\n"
                                              "              CITY <- Field2\n");
}

TEST_F(KvSpecification, ShowsTheFileToScripts)
{
    Save(GermanOptions);
    const auto Object = Show();
    EXPECT_EQ(Object["file"], File);
    EXPECT_EQ(Object["name"], "orders");
    EXPECT_EQ(Object["kind"], "Text");
    EXPECT_EQ(Object["source"], Shop.Folder / "orders.csv");
    EXPECT_EQ(Object["sheet"], nullptr);
    EXPECT_EQ(Object["firstRow"], 2);
    EXPECT_EQ(Object["charset"], "ansi");
    EXPECT_EQ(Object["layout"]["delimiter"], ";");
    EXPECT_EQ(Object["layout"]["recordSeparator"], "\r\n");
    EXPECT_EQ(Object["formats"]["dateOrder"], "dmy");
    EXPECT_EQ(Object["formats"]["thousandSeparator"], ".");
    EXPECT_EQ(Object["mode"], "append");
    EXPECT_EQ(Object["mappings"].size(), 5u);
}

// Running.

/// What the library alone makes of the specification.
std::string RowsOfLibrary(const std::string& FileName)
{
    const TShop Shop("CREATE TABLE orders (ID INTEGER PRIMARY KEY, CITY VARCHAR(20), ORDERED DATE, "
                     "AMOUNT DECIMAL(10,2), PAID BOOLEAN)");
    const auto Before = FormatSettings();
    FormatSettings() = {.DateSeparator = '.', .ShortDateFormat = "dd.MM.yyyy"};
    {
        TSQLiteTable Orders;
        Orders.DatabaseName = Shop.Database();
        Orders.TableName = "orders";
        Orders.Open();
        const auto Import = LoadImport(FileName);
        Import->SetDataSet(&Orders);
        Import->AnimatedStatus = false;
        Import->Options = {};
        Import->DataFormats.BooleanTrue = "ja";
        Import->DataFormats.BooleanFalse = "nein";
        Import->Execute();
        EXPECT_EQ(Import->Statistic.Result, irExecuted) << Import->ErrorMessage();
        Orders.Close();
    }
    FormatSettings() = Before;
    return Shop.Ask("SELECT ID, CITY, ORDERED, AMOUNT, PAID FROM orders ORDER BY ID");
}

TEST_F(KvSpecification, GivesTheSameTableHoweverItRuns)
{
    Save(GermanOptions);
    EXPECT_EQ(RunFile(Words).Status, 0);
    const auto First = Rows();
    EXPECT_EQ(First, RowsOfLibrary(File));
    auto Copy = Words;
    Copy.insert(Copy.end(), {"--mode", "copy"});
    const auto Second = RunWithJson(Copy);
    EXPECT_EQ(Second["emptied"], 3);
    EXPECT_EQ(Second["added"], 3);
    EXPECT_EQ(Rows(), First);
}

TEST_F(KvSpecification, RunsClassicFilesAsTheyAre)
{
    Shop.Folder.Write("orders.csv", "1,\"a \"\"b\"\" c\"\n");
    Shop.Folder.Write("orders.kvi", "[Common]\nTableType=Text\nSourceFileName=" + Shop.Folder / "orders.csv" +
                                        "\n[Mappings]\nCount=2\nMap0=ID=Field1\nMap1=CITY=Field2\n[Text]\n"
                                        "FieldDelimiter=2C\n");
    EXPECT_EQ(RunFile().Status, 0);
    EXPECT_EQ(Shop.Ask("SELECT CITY FROM orders"), "a \"\"b\"\" c");
}

TEST_F(KvSpecification, OptionsWinOverTheFile)
{
    TArguments Options{"--mode", "copy"};
    Options.insert(Options.end(), GermanOptions.begin(), GermanOptions.end());
    Save(Options);
    const auto Other = Shop.Folder.Write("march.csv", "ID;CITY;ORDERED;AMOUNT;PAID\n7;Wien;2025-03-01;1,5;\n"
                                                      "8;Graz;2025-03-02;2,5;\n");
    const auto Object = RunWithJson({"--source", Other, "--mode", "append-update", "--keys", "CITY",
                                     "--first-row", "3", "--date-order", "ymd", "--date-separator", "-"});
    EXPECT_EQ(Object["source"], Other);
    EXPECT_EQ(Object["mode"], "append-update");
    EXPECT_EQ(Object["keys"].dump(), R"(["CITY"])");
    EXPECT_EQ(Rows(), "8|Graz|2025-03-02|2.5|NULL");
    EXPECT_THAT(Object["findings"].dump(),
                HasSubstr("as " + File + " has it, which names the source " + Shop.Folder / "orders.csv"));
}

TEST_F(KvSpecification, ASourceOfStandardInputIsTakenForTheOneInTheFile)
{
    Save(GermanOptions);
    const auto Result = RunKvImport(Shop.Folder, {"run", File, "--to", Shop.Database(), "--table", "orders",
                                                  "--source", "-"},
                                    Shop.Folder.Write("input", "ID;CITY;ORDERED;AMOUNT;PAID\n"
                                                               "9;Linz;01.03.2025;1,5;\n"));
    EXPECT_EQ(Result.Status, 0) << Result.Err;
    EXPECT_THAT(Result.Out, StartsWith("standard input -> "));
    EXPECT_EQ(Rows(), "9|Linz|2025-03-01|1.5|NULL");
}

TEST_F(KvSpecification, NamesAreInTheCodePageOfTheText)
{
    Shop.Ask("CREATE TABLE stock (ID INTEGER PRIMARY KEY, \"ST\u00dcCK\" VARCHAR(20))");
    Shop.Folder.Write("stock.csv", "1,\xC4pfel\n");
    Shop.Folder.Write("stock.kvi", "[Common]\nTableType=Text\nSourceFileName=stock.csv\nMode=2\n"
                                   "DatasetKeys=ST\xDC" "CK\n[Mappings]\n"
                                   "Count=2\nMap0=ID=Field1\nMap1=ST\xDC" "CK=Field2\n[Text]\n"
                                                                          "FieldDelimiter=2C\n");
    const auto Result = Run({"run", Shop.Folder / "stock.kvi", "--to", Shop.Database(), "--table", "stock",
                             "--code-page", "windows-1252"});
    EXPECT_EQ(Result.Status, 0) << Result.Err;
    EXPECT_THAT(Result.Out, HasSubstr("mode append-update by ST\u00dcCK\n"));
    EXPECT_EQ(Shop.Ask("SELECT * FROM stock"), "1|\u00c4pfel");
}

TEST_F(KvSpecification, TheSourceIsFoundBesideTheFile)
{
    Shop.Folder.Write("orders.csv", Csv);
    Shop.Folder.Write("orders.kvi", "[Common]\nTableType=Text\nSourceFileName=orders.csv\n[Mappings]\n"
                                    "Count=1\nMap0=ID=Field1\n"
                                    "[Text]\nFieldDelimiter=3B\nRowFirst=2\n");
    const auto Object = RunWithJson();
    EXPECT_EQ(Object["added"], 3);
    EXPECT_EQ(Object["source"], Shop.Folder / "orders.csv");
    EXPECT_EQ(Object["findings"].dump(), "[\"as " + File + " has it, which names the source orders.csv\"]");
}

TEST_F(KvSpecification, ASourceThatIsNotThereIsNamed)
{
    Shop.Folder.Write("orders.kvi", "[Common]\nTableType=Text\nSourceFileName=C:\\data\\orders.csv\n");
    EXPECT_EQ(RunFile().Err, "kvimport: " + File + " names the source C:\\data\\orders.csv, "
                                                   "which is not there; --source FILE names another\n");
    EXPECT_EQ(RunFile().Status, 3);
    Shop.Folder.Write("orders.kvi", "[Common]\nTableType=Text\nSourceFileName=\n");
    EXPECT_THAT(RunFile().Err, StartsWith("kvimport: " + File + " names no source; say --source FILE\n"));
    EXPECT_EQ(RunFile().Status, 2);
}

TEST_F(KvSpecification, WithoutMappingsTheComponentJoinsColumnsAndFields)
{
    Shop.Folder.Write("orders.csv", Csv);
    Shop.Folder.Write("orders.kvi",
                      "[Common]\nTableType=Text\nSourceFileName=orders.csv\nMode=2\nDatasetKeys=ID\n"
                      "[Text]\nFieldDelimiter=3B\nRowFirst=2\n[DataFormat]\nDateOrder=1\nDateSeparator=2E\n"
                      "DecimalSeparator=2C\nThousandSeparator=2E\n");
    EXPECT_EQ(RunWithJson(Words)["added"], 3);
    const auto Again = RunWithJson(Words);
    EXPECT_EQ(Again["updated"], 3);
    EXPECT_THAT(Again["findings"].dump(),
                HasSubstr("it has no mappings: columns and fields are joined by the rules of the component"));
    EXPECT_THAT(Rows(), StartsWith("1|Rom|2024-12-24|1234.5|"));
}

TEST_F(KvSpecification, TellsOfLinesThatAreNotLikeTheHeader)
{
    Save(GermanOptions);
    Shop.Folder.Write("orders.csv", "ID;CITY;ORDERED;AMOUNT;PAID\n1;Rom\n");
    EXPECT_THAT(RunWithJson()["warnings"].dump(), HasSubstr("line 2 has fewer values than line 1"));
}

TEST_F(KvSpecification, RecordErrorsAreToldWithTheirLine)
{
    Save(GermanOptions);
    Shop.Folder.Write("orders.csv", "ID;CITY;ORDERED;AMOUNT;PAID\n1;Rom;32.12.2024;;\n2;Oslo;;;\n");
    const auto Result = RunFile();
    EXPECT_EQ(Result.Status, 1);
    EXPECT_THAT(Result.Err, HasSubstr("orders.csv, line 2: "
                                      "'32.12.2024' is not a valid date value for field 'ORDERED'\n"));
    EXPECT_EQ(Shop.Count(), 1);
}

TEST_F(KvSpecification, TheSheetOfAWorkbookIsKept)
{
    TWorkbookBuilder Book(bv5);
    Book.Globals(TBiffBuilder(bv5).Xf(0));
    Book.Sheet("Other", TBiffBuilder(bv5).Dimensions(0, 2, 0, 2).Label(0, 0, "ID").Label(0, 1, "CITY")
                                         .Number(1, 0, 1).Label(1, 1, "Rom"));
    Book.Sheet("Orders", TBiffBuilder(bv5).Dimensions(0, 2, 0, 2).Label(0, 0, "CITY").Label(0, 1, "ID")
                                          .Label(1, 0, "Oslo").Number(1, 1, 7));
    const auto Workbook = Shop.Folder.Write("orders.xls",
                                            TCompoundBuilder().Stream(u"Book", Book.Build()).Build());
    const auto Saved = Run({"save", File, Workbook, "--to", Shop.Database(), "--table", "orders", "--sheet",
                            "Orders"});
    EXPECT_EQ(Saved.Status, 0) << Saved.Err;
    EXPECT_EQ(Show()["sheet"], 2);
    EXPECT_EQ(Show()["mappings"].dump(), R"([{"column":"A","field":"CITY"},{"column":"B","field":"ID"}])");
    EXPECT_EQ(RunWithJson()["added"], 1);
    EXPECT_EQ(Shop.Ask("SELECT ID, CITY FROM orders"), "7|Oslo");
}

struct TRefusedRow
{
    std::string_view Name, Text, Message;
};

std::ostream& operator<<(std::ostream& Out, const TRefusedRow& Row)
{
    return Out << Row.Name;
}

class KvSpecificationRefuses : public KvSpecification, public testing::WithParamInterface<TRefusedRow> {};

TEST_P(KvSpecificationRefuses, TheFile)
{
    Shop.Folder.Write("orders.csv", Csv);
    Shop.Folder.Write("orders.kvi", GetParam().Text);
    const auto Result = RunFile();
    EXPECT_NE(Result.Status, 0);
    EXPECT_THAT(Result.Err, HasSubstr(std::string(GetParam().Message)));
    EXPECT_EQ(Shop.Count(), 0);
}

INSTANTIATE_TEST_SUITE_P(, KvSpecificationRefuses, testing::Values(
    TRefusedRow{"WithoutAKind", "[Common]\nMode=0\n",
                "[Common] TableType: it does not say what kind of source it is about"},
    TRefusedRow{"OfAnUnknownKind", "[Common]\nTableType=Oracle\n",
                "[Common] TableType: 'Oracle' is no kind of source"},
    TRefusedRow{"WithAModeThatThereIsNot", "[Common]\nTableType=Text\nMode=9\n",
                "[Common] Mode: 9 is none of the values 0 to 4"},
    TRefusedRow{"ThatWasCut",
                "[Common]\nTableType=Text\nSourceFileName=orders.csv\n[Mappings]\nCount=3\nMap0=ID=Field1\n",
                "orders.kvi: Map1 is missing, although there should be 3 mappings"},
    TRefusedRow{"WithAFieldThatThereIsNot",
                "[Common]\nTableType=Text\nSourceFileName=orders.csv\n[Mappings]\nCount=2\nMap0=ID=Field1\n"
                "Map1=COLOUR=Field2\n", "'COLOUR=Field2': there is no field 'COLOUR'; "
                                        "the fields are ID, CITY, ORDERED, AMOUNT, PAID"},
    TRefusedRow{"WithAKeyThatIsNotMapped",
                "[Common]\nTableType=Text\nSourceFileName=orders.csv\nMode=1\nDatasetKeys=CITY\n[Mappings]\n"
                "Count=1\nMap0=ID=Field1\n",
                "--keys: the field 'CITY' gets no column, so no record can be found by it"},
    TRefusedRow{"WithADateOrderThatIsNotRead",
                "[Common]\nTableType=Text\nSourceFileName=orders.csv\n[DataFormat]\nDateOrder=4\n",
                "dates in the order dym cannot be read; say --date-order ymd, mdy or dmy"},
    TRefusedRow{"WithOneSeparatorForBoth",
                "[Common]\nTableType=Text\nSourceFileName=orders.csv\n[DataFormat]\nDecimalSeparator=2C\n"
                "ThousandSeparator=2C\n",
                "--decimal-separator and --thousand-separator are the same; one of them must be another"}),
    [](const auto& Row) { return std::string(Row.param.Name); });

} // namespace

} // namespace kv
