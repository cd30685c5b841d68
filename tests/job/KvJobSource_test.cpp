#include "KvJobSource.h"

#include <gmock/gmock.h>

#include <fstream>
#include <sys/stat.h>
#include <thread>

#include "KvCodePage.h"
#include "KvDbaseBuilder.h"
#include "KvExampleFiles.h"
#include "KvJobTestSource.h"

namespace kv {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string> NamesOf(const TJobSource& Source)
{
    std::vector<std::string> Names;
    for (const auto& Column : Source.Columns())
        Names.push_back(Column.Name);
    return Names;
}

std::vector<std::string> TitlesOf(const TJobSource& Source)
{
    std::vector<std::string> Titles;
    for (const auto& Column : Source.Columns())
        Titles.push_back(Column.Title);
    return Titles;
}

std::vector<std::string> TextsOf(const TKvISourceRow& Row)
{
    std::vector<std::string> Texts;
    for (const auto& Value : Row.Values)
        Texts.push_back(SourceText(Value.Value));
    return Texts;
}

std::string_view ExampleFile(std::string_view Name)
{
    static const auto Books = ExampleBooks(), Tables = ExampleTables();
    for (const auto* const Files : {&Books, &Tables})
        for (const auto& Each : *Files)
            if (Each.Name == Name)
                return Each.Bytes;
    ADD_FAILURE() << "there is no example " << Name;
    return {};
}

// Kinds.

TEST(KvJobSource, ContentTellsMoreThanTheName)
{
    TJobTestSource Book("orders.csv", ExampleFile("orders.xls"));
    EXPECT_EQ(Book.Look().Kind().Name, "xls");
    TJobTestSource Page("orders.txt", "<!DOCTYPE html><table><tr><td>1</table>");
    EXPECT_EQ(Page.Look({.FindTitles = false}).Kind().Name, "html");
    TJobTestSource Text("orders.dat", "ID,CITY\n");
    EXPECT_EQ(Text.Look().Kind().Name, "text");
}

TEST(KvJobSource, AKindThatIsSaidIsTaken)
{
    TJobTestSource File("page.html", "<html>\n");
    File.Settings.Kind = "TEXT";
    EXPECT_EQ(File.Look({.FindTitles = false}).Kind().Name, "text");
    File.Settings.Kind = "punched cards";
    const auto Found = RefusalOf([&] { File.Look(); });
    EXPECT_EQ(Found.Kind, jfNoSuchKind);
    EXPECT_EQ(Found.Value, "punched cards");
}

TEST(KvJobSource, WhatIsNoSourceIsRefused)
{
    TJobTestSource Unknown("file.bin", std::string_view("\x01\0\x02", 3));
    EXPECT_EQ(RefusalOf([&] { Unknown.Look(); }).Kind, jfUnknownFile);
    TJobTestSource Database("orders.csv", std::string_view("SQLite format 3\0", 16));
    EXPECT_EQ(RefusalOf([&] { Database.Look(); }).Kind, jfIsDatabase);
    TJobTestSource Missing("orders.csv", "");
    Missing.Settings.FileName = Missing.Folder / "nowhere.csv";
    EXPECT_THROW(Missing.Look(), EFileError);
}

TEST(KvJobSource, SettingsOfOtherKindsAreRefused)
{
    TJobTestSource File("orders.csv", "ID\n1\n");
    File.Settings.Part = "2";
    File.Settings.PartKind = spSheet;
    auto Found = RefusalOf([&] { File.Look(); });
    EXPECT_EQ(Found.Kind, jfNoSuchSetting);
    EXPECT_EQ(Found.Value, "text");
    EXPECT_EQ(Found.Was, "Part");
    TJobTestSource Packet("orders.xml", "<DATAPACKET/>");
    Packet.Settings.HasLayout = true;
    Found = RefusalOf([&] { Packet.Look(); });
    EXPECT_EQ(Found.Kind, jfNoSuchSetting);
    EXPECT_EQ(Found.Was, "Layout");
}

// Pipes.

struct TPipe
{
    explicit TPipe(const std::string& Bytes) : Name(Folder / "pipe")
    {
        EXPECT_EQ(mkfifo(Name.c_str(), 0600), 0);
        Writer = std::thread([this, Bytes] { std::ofstream(Name, std::ios::binary) << Bytes; });
    }
    ~TPipe() { Writer.join(); }

    const TTempFolder Folder;
    const std::string Name;
    std::thread Writer;
};

TEST(KvJobSource, WhatComesThroughAPipeIsSniffedLikeAFile)
{
    const TPipe Pipe{std::string(ExampleFile("orders.xls"))};
    TJobSource Source({.FileName = Pipe.Name}, [] { return true; });
    EXPECT_EQ(Source.Kind().Name, "xls");
    EXPECT_EQ(Source.Parts().size(), 2);
    EXPECT_EQ(Source.Component().SourceFileName, Pipe.Name) << "errors call it as its user does";
}

TEST(KvJobSource, TablesCannotBeReadFromAPipe)
{
    const TPipe Pipe{std::string(ExampleFile("orders.dbf"))};
    const auto Found = RefusalOf([&] { TJobSource({.FileName = Pipe.Name}, [] { return true; }); });
    EXPECT_EQ(Found.Kind, jfNoPipe);
    EXPECT_EQ(Found.Value, "dbase");
}

// Rows and titles.

TEST(KvJobSource, AHeaderNamesTheColumnsAndIsNoRow)
{
    TJobTestSource File("orders.csv", "ID, City ,\n1,Rom,x\n2,Oslo,y\n");
    const auto& Source = File.Look();
    EXPECT_EQ(Source.HeaderRow(), 1);
    EXPECT_TRUE(Source.HasTitles());
    EXPECT_THAT(NamesOf(Source), ElementsAre("Field1", "Field2", "Field3"));
    EXPECT_THAT(TitlesOf(Source), ElementsAre("ID", "City", ""));
    ASSERT_EQ(Source.View().Rows.size(), 2);
    EXPECT_EQ(Source.View().Rows[0].Position.Text(), "line 2");
    EXPECT_THAT(TextsOf(Source.View().Rows[1]), ElementsAre("2", "Oslo", "y"));
}

TEST(KvJobSource, TheHeaderIsTheRowAboveTheFirst)
{
    TJobTestSource File("orders.csv", "Orders of May\n\nID,CITY\n1,Rom\n");
    File.Settings.RowFirst = 4;
    EXPECT_THAT(TitlesOf(File.Look()), ElementsAre("ID", "CITY"));
    File.Settings.RowFirst = 1;
    EXPECT_EQ(RefusalOf([&] { File.Look(); }).Kind, jfNoHeaderLeft);
    EXPECT_EQ(File.Look({.FindTitles = false}).HeaderRow(), 0);
}

TEST(KvJobSource, TextsAloneTellNoHeaderThatNobodyNeeds)
{
    TJobTestSource File("fruits.csv", "apple,red\npear,green\n");
    auto& Source = File.Look({.FindTitles = false});
    EXPECT_EQ(Source.HeaderRow(), 0);
    EXPECT_EQ(Source.View().Rows.size(), 2U);
    TJobTestSource Figures("amounts.csv", "fruit,amount\npear,2\n");
    EXPECT_EQ(Figures.Look({.FindTitles = false}).HeaderRow(), 1);
}

TEST(KvJobSource, AHeaderIsFoundWhetherItIsNeededOrNot)
{
    TJobTestSource File("orders.csv", "Orders of May\n\nID;CITY\n1;Rom\n");
    for (const bool Needed : {true, false}) {
        const auto& Source = File.Look({.FindTitles = Needed});
        EXPECT_EQ(Source.HeaderRow(), 3);
        EXPECT_THAT(TitlesOf(Source), ElementsAre("ID", "CITY"));
        EXPECT_EQ(Source.View().Rows.size(), 1u);
        ASSERT_EQ(Source.Findings().size(), 2u);
        EXPECT_EQ(Source.Findings()[0].Kind, jfDelimiter);
        EXPECT_EQ(Source.Findings()[1].Kind, jfHeader);
        EXPECT_EQ(Source.Findings()[1].Number, 3);
    }
    TJobTestSource Plain("plain.csv", "ID,CITY\n1,Rom\n");
    EXPECT_THAT(Plain.Look().Findings(), IsEmpty()) << "it was to be expected";
    EXPECT_THAT(Plain.Look({.FindTitles = false, .ShowsTitles = true}).Findings(), IsEmpty());
    EXPECT_EQ(Plain.Look({.FindTitles = false}).Findings().at(0).Kind, jfHeader) << "it is left out";
    EXPECT_FALSE(Plain.Source->Findings()[0].Given);
}

TEST(KvJobSource, AFileWithoutAHeaderBeginsWithItsFirstRow)
{
    TJobTestSource File("orders.csv", "1,Rom\n2,Oslo\n");
    EXPECT_EQ(File.Look({.FindTitles = false}).View().Rows.size(), 2u);
    EXPECT_EQ(File.Source->HeaderRow(), 0);
    EXPECT_EQ(File.Look().HeaderRow(), 1) << "where one is needed it is line 1";
}

TEST(KvJobSource, AHeaderMayStandFurtherAboveTheFirstRow)
{
    TJobTestSource File("orders.csv", "ID,CITY\n1,Rom\n2,Oslo\n3,Bern\n");
    File.Settings.RowFirst = 3;
    const auto& Source = File.Look();
    EXPECT_THAT(TitlesOf(Source), ElementsAre("ID", "CITY"));
    EXPECT_THAT(TextsOf(Source.View().Rows.at(0)), ElementsAre("2", "Oslo"));
    EXPECT_EQ(Source.Findings().at(0).Kind, jfHeader);
    EXPECT_TRUE(Source.Findings()[0].Given);
    TJobTestSource None("orders.csv", "1,Rom\n2,Oslo\nID,CITY\n3,Bern\n");
    None.Settings.RowFirst = 2;
    EXPECT_EQ(None.Look({.FindTitles = false}).HeaderRow(), 0) << "what comes later is none";
    EXPECT_EQ(None.Look({.FindTitles = false, .Wanted = {"CITY"}}).HeaderRow(), 0);
}

TEST(KvJobSource, NamesThatAreMappedFindTheHeader)
{
    TJobTestSource File("sales.csv", "City,2023,2024\nRom,5,6\n");
    EXPECT_EQ(File.Look({.FindTitles = false}).HeaderRow(), 0);
    EXPECT_EQ(File.Look({.FindTitles = false, .Wanted = {"2024"}}).HeaderRow(), 1);
    TJobTestSource Book("orders.xls", ExampleFile("orders.xls"));
    Book.Settings.PartKind = spSheet;
    Book.Settings.Part = "2";
    EXPECT_EQ(Book.Look({.FindTitles = false}).HeaderRow(), 1);
    EXPECT_EQ(Book.Look({.FindTitles = false, .Wanted = {"A"}}).HeaderRow(), 1) << "a letter is no title";
}

TEST(KvJobSource, LookingForAHeaderReadsNoRowAfterTheLast)
{
    TJobTestSource File("orders.csv", "CITY\nRom\nCITY,x,y\n");
    File.Settings.RowLast = 2;
    EXPECT_EQ(File.Look({.FindTitles = false, .Wanted = {"y"}}).HeaderRow(), 1);
}

TEST(KvJobSource, PartsAreListedWhenTheyAreAskedFor)
{
    TJobTestSource File("cut.xls", ExampleFile("orders.xls").substr(0, 600));
    TJobSource Source(File.Settings, [] { return true; });
    EXPECT_EQ(Source.Kind().Name, "xls") << "what it is shows even where it is damaged";
    EXPECT_THROW(Source.Parts(), Exception);
}

TEST(KvJobSource, ABarIsADelimiterToo)
{
    TJobTestSource File("orders.txt", "ID|CITY\n1|Rom, Italy\n2|Oslo\n");
    EXPECT_THAT(TitlesOf(File.Look()), ElementsAre("ID", "CITY"));
    EXPECT_EQ(File.Source->Findings().at(0).Character, '|');
}

TEST(KvJobSource, MostLinesTellTheDelimiter)
{
    TJobTestSource File("orders.csv", "Orders, May\nID;AMOUNT;NOTE\n1;1,5;\n2;2;x\n");
    EXPECT_THAT(TitlesOf(File.Look()), ElementsAre("ID", "AMOUNT", "NOTE"));
    EXPECT_EQ(File.Source->HeaderRow(), 2);
}

TEST(KvJobSource, AQuoteWithinALineDoesNotHideTheDelimiter)
{
    TJobTestSource File("orders.csv", "ID;NAME\n1;abc,\"def\n2;x\n");
    EXPECT_THAT(TitlesOf(File.Look()), ElementsAre("ID", "NAME"));
    EXPECT_THAT(TextsOf(File.Source->View().Rows.at(0)), ElementsAre("1", "abc,\"def"));
}

TEST(KvJobSource, ABigEndianTextIsNoTable)
{
    std::string Text("\xFE\xFF", 2);
    for (const char Char : std::string_view("A\tB\tC\tD\tE\tF\tG\tH\tI\tJ\tK\tL\tM\tN\tO\r\n1\tabc\t2\r\n"))
        (Text += '\0') += Char;
    TJobTestSource File("orders.csv", Text);
    EXPECT_EQ(File.Look().Kind().Name, "text");
    EXPECT_EQ(File.Source->Columns().size(), 15u);
}

TEST(KvJobSource, APipeThatGivesTooMuchIsRefused)
{
    const TPipe Pipe{"ID,CITY\n1,Rom\n"};
    EXPECT_THROW(TJobSource({.FileName = Pipe.Name, .MaxSpool = 5}, [] { return true; }), EFileError);
    const TPipe Small{"ID\n1\n"};
    EXPECT_NO_THROW(TJobSource({.FileName = Small.Name, .MaxSpool = 5}, [] { return true; }));
}

struct KvJobSourceText : testing::Test
{
    ~KvJobSourceText() override { SetAnsiCodePage("UTF-8"); }
};

TEST_F(KvJobSourceText, Utf8ThatIsReadAsSomethingElseIsTold)
{
    TJobTestSource File("orders.csv", "ID,CITY\n1,Bern\n2,Köln\n");
    File.Settings.MsDos = true;
    const auto& Source = File.Look();
    ASSERT_EQ(Source.Findings().size(), 1u);
    EXPECT_EQ(Source.Findings()[0].Kind, jfUtf8Text);
    EXPECT_EQ(Source.Findings()[0].Value, OemCodePage());
    EXPECT_EQ(Source.Findings()[0].Place, "line 3");
    File.Settings.MsDos = false;
    EXPECT_THAT(File.Look().Findings(), IsEmpty());
    SetAnsiCodePage("windows-1252");
    EXPECT_EQ(File.Look().Findings().at(0).Value, "windows-1252");
    TJobTestSource Other("orders.csv", "ID,CITY\n1,K\xF6ln\n");
    EXPECT_THAT(Other.Look().Findings(), IsEmpty());
    TJobTestSource Marked("orders.csv", "\xEF\xBB\xBFID,CITY\n1,Köln\n");
    EXPECT_THAT(Marked.Look().Findings(), IsEmpty()) << "the mark tells how it is read";
}

TEST(KvJobSource, RowsAreThoseThatAreImported)
{
    TJobTestSource File("orders.csv", "1\n2\n3\n4\n5\n");
    File.Settings.RowFirst = 2;
    File.Settings.RowLast = 4;
    const auto& Some = File.Look({.FindTitles = false, .Rows = 2});
    EXPECT_EQ(Some.View().Rows.size(), 2);
    EXPECT_TRUE(Some.View().HasMore);
    const auto& All = File.Look({.FindTitles = false, .Rows = 10});
    EXPECT_EQ(All.View().Rows.size(), 3);
    EXPECT_FALSE(All.View().HasMore);
    File.Settings.RowLast = 1;
    const auto Found = RefusalOf([&] { File.Look({.FindTitles = false}); });
    EXPECT_EQ(Found.Kind, jfRowsOutOfOrder);
    EXPECT_EQ(Found.Number, 2);
    EXPECT_EQ(Found.Count, 1);
}

TEST(KvJobSource, ALookShowsWhatAnImportStores)
{
    TJobTestSource File("orders.csv", "ID,CITY\n1,\"Oslo \"\"Nord\"\"\"\nAda,\n");
    EXPECT_THAT(TextsOf(File.Look().View().Rows[0]), ElementsAre("1", "Oslo \"Nord\""));
    File.Settings.Classic = true;
    const auto& Classic = File.Look();
    EXPECT_THAT(TextsOf(Classic.View().Rows[0]), ElementsAre("1", "Oslo \"\"Nord\"\""));
    EXPECT_THAT(TextsOf(Classic.View().Rows[1]), ElementsAre("Ada", ""))
        << "the delimiter at the end is no part of it";
}

TEST(KvJobSource, FixedColumnsAreThoseOfTheLayout)
{
    TJobTestSource File("old.txt", "1  Rom   \n22 Oslo  \n");
    File.Settings.Layout = {.Fixed = true, .Columns = {"ID=Text1-3", "CITY=Text4-9"}};
    const auto& Source = File.Look();
    EXPECT_THAT(TitlesOf(Source), ElementsAre("ID", "CITY"));
    EXPECT_THAT(TextsOf(Source.View().Rows[1]), ElementsAre("22", "Oslo"));
    File.Settings.Layout.Columns.clear();
    auto& Whole = File.Look();
    EXPECT_THAT(TextsOf(Whole.View().Rows[0]), ElementsAre("1  Rom   "));
    Whole.LookAt({"Text4-9"});
    EXPECT_THAT(TextsOf(Whole.View().Rows[0]), ElementsAre("Rom"));
}

// Findings.

TEST(KvJobSource, ADelimiterIsFoundInTheHeader)
{
    TJobTestSource File("orders.csv", "ID;CITY\n1;Rom, Italy\n");
    const auto& Source = File.Look();
    EXPECT_THAT(TitlesOf(Source), ElementsAre("ID", "CITY"));
    ASSERT_EQ(Source.Findings().size(), 1);
    EXPECT_EQ(Source.Findings()[0].Kind, jfDelimiter);
    EXPECT_EQ(Source.Findings()[0].Character, ';');
    EXPECT_EQ(Source.Findings()[0].Number, 1);
    File.Settings.Layout.Delimiter = ',';
    EXPECT_THAT(File.Look().Findings(), IsEmpty());
}

TEST(KvJobSource, SheetsAreFoundByNumberAndName)
{
    TJobTestSource File("orders.xls", ExampleFile("orders.xls"));
    const auto& First = File.Look({.FindTitles = false, .ShowsTitles = true});
    ASSERT_EQ(First.Findings().size(), 1);
    EXPECT_EQ(First.Findings()[0].Kind, jfSheet);
    EXPECT_EQ(First.Findings()[0].Number, 1);
    EXPECT_EQ(First.Findings()[0].Count, 2);
    EXPECT_FALSE(First.Findings()[0].Given);
    File.Settings.PartKind = spSheet;
    for (const std::string Part : {"2", "orders"}) {
        File.Settings.Part = Part;
        const auto& Second = File.Look();
        EXPECT_EQ(Second.PartNumber(), 2);
        EXPECT_TRUE(Second.Findings()[0].Given);
        EXPECT_EQ(TitlesOf(Second).front(), "ID");
    }
    File.Settings.Part = "3";
    const auto Found = RefusalOf([&] { File.Look(); });
    EXPECT_EQ(Found.Kind, jfNoSuchSheet);
    EXPECT_THAT(Found.Names, ElementsAre("Title", "Orders"));
}

TEST(KvJobSource, ATableOfAPageIsFoundByItsNumber)
{
    TJobTestSource File("page.html", "<html><table><tr><td>1</table><table><tr><td>2</table></html>");
    File.Settings.PartKind = spTableNumber;
    File.Settings.Part = "2";
    EXPECT_THAT(TextsOf(File.Look({.FindTitles = false}).View().Rows[0]), ElementsAre("2"));
    File.Settings.Part = "3";
    const auto Found = RefusalOf([&] { File.Look({.FindTitles = false}); });
    EXPECT_EQ(Found.Kind, jfNoSuchTableNumber);
    EXPECT_EQ(Found.Count, 2);
}

TEST(KvJobSource, RecordsOfAPacketMayStandInAnotherTag)
{
    TJobTestSource File("packet.xml",
                        "<?xml version=\"1.0\"?><DATAPACKET><orders><ROW ID=\"7\"/></orders></DATAPACKET>");
    File.Settings.PartKind = spRowTag;
    File.Settings.Part = "orders";
    const auto& Source = File.Look();
    EXPECT_THAT(NamesOf(Source), ElementsAre("ID"));
    EXPECT_THAT(TextsOf(Source.View().Rows[0]), ElementsAre("7"));
}

TEST(KvJobSource, ClassicReadingIsToldWhereItLeavesRowsOrNamesAlone)
{
    TJobTestSource Table("orders.dbf", ExampleFile("orders.dbf"));
    Table.Settings.Classic = true;
    EXPECT_THAT(Table.Look().Findings(), IsEmpty());
    Table.Settings.RowLast = 2;
    EXPECT_EQ(Table.Look().Findings().at(0).Kind, jfClassicRows);
    TJobTestSource Page("page.html", "<html><table><tr><td>1</table></html>");
    Page.Settings.Classic = true;
    EXPECT_EQ(Page.Look({.FindTitles = false}).Findings().at(0).Kind, jfClassicCells);
}

TEST(KvJobSource, TextOfNoCodePageIsTold)
{
    TJobTestSource File("old.dbf", TDbaseBuilder().Field("NAME", 'C', 10).Record({"K\x94ln"}).Build());
    const auto& Source = File.Look();
    ASSERT_EQ(Source.Findings().size(), 1);
    EXPECT_EQ(Source.Findings()[0].Kind, jfForeignText);
    EXPECT_EQ(Source.Findings()[0].Value, LegacyCodePage());
    EXPECT_EQ(Source.Findings()[0].Was, OemCodePage());
    File.Settings.MsDos = true;
    EXPECT_THAT(File.Look().Findings(), IsEmpty());
    EXPECT_THAT(TextsOf(File.Source->View().Rows[0]), ElementsAre("Köln"));
}

TEST(KvJobSource, WhatATableLeavesOutIsToldBeforeTheRunAndOnce)
{
    auto Bytes =
        TDbaseBuilder().Field("NAME", 'C', 10).Field("X", 'X', 4).Record({"a"}).Record({"b"}).Build();
    Bytes[4] = 1;
    TJobTestSource File("old.dbf", Bytes);
    const auto& Source = File.Look();
    ASSERT_EQ(Source.Findings().size(), 2U);
    EXPECT_EQ(Source.Findings()[0].Kind, jfColumnLeftOut);
    EXPECT_EQ(Source.Findings()[0].Value, "X");
    EXPECT_EQ(Source.Findings()[0].Was, "field 2 has the unknown type 'X'");
    EXPECT_EQ(Source.Findings()[1].Kind, jfRowsBeyondCount);
    EXPECT_EQ(Source.Findings()[1].Count, 1);
    EXPECT_EQ(Source.Findings()[1].Limit, 1);
    EXPECT_THAT(Source.Remarks(), IsEmpty());
}

TEST(KvJobSource, TextThatIsNoUtf8IsToldWithItsPlace)
{
    TJobTestSource File("orders.csv", "ID,CITY\n1,Bern\n2,K\xF6ln\n");
    const auto& Source = File.Look();
    ASSERT_EQ(Source.Findings().size(), 1);
    EXPECT_EQ(Source.Findings()[0].Kind, jfLegacyText);
    EXPECT_EQ(Source.Findings()[0].Place, "line 3");
    EXPECT_EQ(Source.Findings()[0].Value, LegacyCodePage());
}

TEST(KvJobSource, ValuesThatCannotBeReadAreCountedAndDoNotEndTheLook)
{
    TJobTestSource File("old.dbf",
                        TDbaseBuilder().Field("NR", 'N', 4).Record({"12x4"}).Record({"   5"}).Build());
    const auto& Source = File.Look();
    ASSERT_EQ(Source.View().Rows.size(), 2);
    EXPECT_NE(Source.View().Rows[0].Values[0].Error, "");
    EXPECT_THAT(TextsOf(Source.View().Rows[1]), ElementsAre("5"));
    ASSERT_EQ(Source.Unreadable().size(), 1);
    EXPECT_EQ(Source.Unreadable()[0].Kind, jfUnreadable);
    EXPECT_EQ(Source.Unreadable()[0].Count, 1);
}

} // namespace

} // namespace kv
