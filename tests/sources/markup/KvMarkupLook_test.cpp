// What pages and packets show of themselves.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "KvImpatientUser.h"
#include "KvMarkupRun.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace kv {

namespace {

constexpr TKvIHTMLExtensions AllOfHtml{xhTagSyntax, xhHeaderCells, xhReferences,  xhFoldedSpace,
                                       xhSpans,     xhEncoding,    xhHeaderNames, xhEmptyIsNull};
constexpr TKvIXMLExtensions AllOfXml{xxTagSyntax,     xxWholeNames, xxReferences,    xxEncoding,
                                     xxMissingIsNull, xxRowState,   xxElementValues, xxFieldTypes};

TRows NamesIn(const TKvISourceView& View)
{
    TRows Names;
    for (const auto& Column : View.Columns)
        Names.push_back(Column.Name);
    return Names;
}

TRows TitlesIn(const TKvISourceView& View)
{
    TRows Titles;
    for (const auto& Column : View.Columns)
        Titles.push_back(Column.Title);
    return Titles;
}

std::string TextOf(const TKvISourceValue& Value)
{
    if (!Value.Error.empty())
        return "!" + Value.Error;
    return Value.Value.IsNull() ? "-" : Value.Value.ToText();
}

TRows RowsIn(const TKvISourceView& View)
{
    TRows Rows;
    for (const auto& Row : View.Rows) {
        std::string Line;
        for (const auto& Value : Row.Values)
            Line += (Line.empty() ? "" : "|") + TextOf(Value);
        Rows.push_back(Line);
    }
    return Rows;
}

TRows PlacesIn(const TKvISourceView& View)
{
    TRows Places;
    for (const auto& Row : View.Rows)
        Places.push_back(Row.Position.Text());
    return Places;
}

/// The bytes of the file from each row's offset on, as many as `Size`.
template <class TRun> TRows BeginningsIn(const TRun& Import, const TKvISourceView& View, std::size_t Size)
{
    const auto File = Import.Folder.Read("file");
    TRows Beginnings;
    for (const auto& Row : View.Rows) {
        const auto Offset = Row.Position.Offset;
        Beginnings.push_back(Offset < 0 ? "none" : File.substr(static_cast<std::size_t>(Offset), Size));
    }
    return Beginnings;
}

/// What a run tells of each record.
template <class TRun, class TTell> auto ToldByRun(TRun& Import, TTell Tell)
{
    std::vector<decltype(Tell())> Told;
    Import.OnAfterRecordEvent = [&](TKvImportBaseComponent&, bool&) { Told.push_back(Tell()); };
    Import.Run();
    return Told;
}

template <class TAct> Exception Raised(TAct Act)
{
    try {
        Act();
    }
    catch (const Exception& Error) {
        return Error;
    }
    return Exception("nothing was raised");
}

/// An observer who lets things go on until it has been asked so many times.
struct TPatience : TKvIRunObserver
{
    explicit TPatience(int Times) : Left(Times) {}
    bool KeepsRunning() override { return Left-- > 0; }
    int Left;
};

/// One who never lets anything go on.
struct TNo final : TPatience
{
    TNo() : TPatience(0) {}
};

std::string ThreeRows()
{
    return "<table>" + NumberedHtmlRows(3) + "</table>";
}

} // namespace

// Pages.

TEST(Kvi2htmlLook, NamesColumnsByNumberAndTitlesThemByTheHeaderRow)
{
    THtmlRun Import("<table><tr><th> Name\n of it </th><th>Qty &amp; more</th></tr>"
                    "<tr><td>Ada</td><td>3</td></tr></table>",
                    AllOfHtml);
    Import.RowFirst = 2;
    const auto View = Import.Look({.HeaderRow = 1, .Columns = {}});
    EXPECT_THAT(NamesIn(View), ElementsAre("Field1", "Field2"));
    EXPECT_THAT(TitlesIn(View), ElementsAre("Name of it", "Qty & more"));
    EXPECT_THAT(RowsIn(View), ElementsAre("Ada|3"));
    EXPECT_THAT(PlacesIn(View), ElementsAre("row 2"));
    EXPECT_FALSE(View.HasMore);
}

TEST(Kvi2htmlLook, LineBreaksInATitleAreBlanks)
{
    THtmlRun Import("<table><tr><td>a<br>b\nc</td></tr></table>", {xhTagSyntax, xhFoldedSpace});
    EXPECT_THAT(TitlesIn(Import.Look({.HeaderRow = 1, .Columns = {}})), ElementsAre("a b c"));
}

TEST(Kvi2htmlLook, WithoutAHeaderTheFirstRowThatIsImportedSaysHowManyColumnsThereAre)
{
    THtmlRun Import("<table><tr><td>title</td></tr>" + NumberedHtmlRows(2) + "</table>", AllOfHtml);
    Import.RowFirst = 2;
    const auto View = Import.Look({});
    EXPECT_THAT(NamesIn(View), ElementsAre("Field1", "Field2", "Field3"));
    EXPECT_THAT(TitlesIn(View), ElementsAre("", "", ""));
    EXPECT_THAT(RowsIn(View), ElementsAre("1|b|c", "2|b|c"));
}

TEST(Kvi2htmlLook, AWiderRowMakesMoreColumnsAndANarrowerOneHasFewerValues)
{
    for (const auto& Rules : {TKvIHTMLExtensions(), AllOfHtml}) {
        THtmlRun Import("<table><tr><td>1</td></tr><tr><td>2</td><td>3</td></tr><tr><td>4</td></tr></table>",
                        Rules);
        const auto View = Import.Look({});
        EXPECT_THAT(NamesIn(View), ElementsAre("Field1", "Field2"));
        EXPECT_THAT(RowsIn(View), ElementsAre("1", "2|3", "4"));
    }
}

TEST(Kvi2htmlLook, ColumnsAreThoseOfAllRowsThatAreImported)
{
    const auto File =
        "<table><tr><th>A</th></tr>" + NumberedHtmlRows(300) +
        "<tr><td>1</td><td>2</td><td>3</td><td>4</td></tr><tr><td colspan=9>no</td></tr></table>";
    THtmlRun Import(File, AllOfHtml);
    Import.RowFirst = 2;
    Import.RowLast = 302;
    const auto View = Import.Look({.Rows = 1, .HeaderRow = 1, .Columns = {}});
    EXPECT_THAT(NamesIn(View), ElementsAre("Field1", "Field2", "Field3", "Field4"));
    EXPECT_THAT(TitlesIn(View), ElementsAre("A", "", "", ""));
    EXPECT_EQ(View.Offered, 4U);
}

TEST(Kvi2htmlLook, APageThatEndsInsideATableIsWorthARemark)
{
    for (const auto& [File, IsCut] : {std::pair("<table><tr><td>1</td></tr></table>", false),
                                      std::pair("<table><tr><td>1</td></tr>", true),
                                      std::pair("<table><tr><td>1</td></tr><tr><td>67", true),
                                      std::pair("<table><tr><td>1<table></table>", true)}) {
        THtmlRun Import(File, AllOfHtml);
        Import.Look({});
        EXPECT_EQ(Import.SourceRemarks().size(), IsCut ? 1U : 0U) << File;
        Import.MapTo({"Field1"});
        Import.Run();
        ASSERT_EQ(Import.SourceRemarks().size(), IsCut ? 1U : 0U) << File;
        if (IsCut) {
            EXPECT_EQ(Import.SourceRemarks()[0].Kind, srCutOff);
        }
    }
}

TEST(Kvi2htmlLook, ByTheOlderRulesCellsGoToTheColumnsInTheirOrderAndAnEmptyOneIsItsColumnsName)
{
    THtmlRun Import("<table><tr><td>1</td><td></td><td>3</td></tr></table>");
    EXPECT_THAT(RowsIn(Import.Look({})), ElementsAre("1|Field2|3"));
    EXPECT_THAT(RowsIn(Import.Look({.Columns = {"z", "y", "z", "w"}})), ElementsAre("1|y|1|w"));
    const std::string Long = "a name that is too long to be kept without the heap";
    EXPECT_THAT(RowsIn(Import.Look({.Columns = {"z", Long}})), ElementsAre("1|" + Long));
}

TEST(Kvi2htmlLook, AColumnThatIsNoneShowsWhyInsteadOfFailing)
{
    THtmlRun Import(ThreeRows(), AllOfHtml);
    EXPECT_THAT(RowsIn(Import.Look({.Rows = 1, .Columns = {"Field2", "other"}})),
                ElementsAre("b|!" + Import.SourceFileName + " has no column \"other\""));
}

TEST(Kvi2htmlLook, APageSaysWhereEachRowBegins)
{
    THtmlRun Import("\xEF\xBB\xBF<table><tr id=1><td>1</td></tr> <td>2</td></table>", AllOfHtml);
    EXPECT_THAT(BeginningsIn(Import, Import.Look({}), 4), ElementsAre("<tr ", "<td>"));
    Import.MapTo({"Field1", "Field2", "Field3"});
    EXPECT_THAT(ToldByRun(Import, [&] { return Import.SourcePosition().Offset; }), ElementsAre(10, 35));
    EXPECT_EQ(Import.SourcePosition().Offset, -1) << "after the run";
}

TEST(Kvi2htmlLook, ATextThatWasConvertedHasNoOffsets)
{
    THtmlRun Import("<meta charset=windows-1252><table><tr><td>\xE4</td></tr></table>", AllOfHtml);
    EXPECT_THAT(BeginningsIn(Import, Import.Look({}), 4), ElementsAre("none"));
}

TEST(Kvi2htmlLook, TheRecordOfASourceIsTheTextsOfItsCells)
{
    THtmlRun Import("<table><tr><td>1</td><td></td></tr><tr><td>2</td><td>3</td><td>4</td></tr></table>",
                    AllOfHtml);
    Import.MapTo({"Field1"});
    const auto Records = ToldByRun(Import, [&] { return Import.SourceRecord(); });
    ASSERT_EQ(Records.size(), 2U);
    EXPECT_EQ(Records[0].HighBound(), 1);
    EXPECT_EQ(Records[0][1].ToText(), "");
    EXPECT_EQ(Records[1].HighBound(), 2);
    EXPECT_EQ(Records[1][2].ToText(), "4");
    EXPECT_TRUE(Import.SourceRecord().IsNull()) << "after the run";
}

TEST(Kvi2htmlLook, ListsTheTablesOfAPageWhichARunTakesByNumber)
{
    THtmlRun Import("<table><tr><td>1</td></tr></table>" + ThreeRows(), AllOfHtml);
    const auto Parts = Import.SourceParts();
    ASSERT_EQ(Parts.size(), 2U);
    EXPECT_EQ(Parts[0].Name, "");
    EXPECT_EQ(Parts[0].Rows, 1);
    EXPECT_EQ(Parts[0].Columns, 1);
    EXPECT_EQ(Parts[1].Rows, 3);
    EXPECT_EQ(Parts[1].Columns, 3);
    Import.SelectPart(1, Parts[1]);
    EXPECT_EQ(Import.TableNumber, 2);
    EXPECT_THAT(RowsIn(Import.Look({})), ElementsAre("1|b|c", "2|b|c", "3|b|c"));
}

TEST(Kvi2htmlLook, ATableNumberPastTheLastIsRefused)
{
    THtmlRun Import(ThreeRows() + ThreeRows());
    Import.TableNumber = 3;
    const auto Error = Raised([&] { Import.Look({}); });
    EXPECT_EQ(Error.Message, Import.SourceFileName + " has no table 3: it has tables 1 to 2");
    EXPECT_EQ(Error.Facts.FileName, Import.SourceFileName);
    EXPECT_EQ(Error.Facts.Place, "table 3");
    EXPECT_EQ(Error.Facts.Value, "3");
    EXPECT_EQ(Error.Facts.Rule, erMissing);
    EXPECT_EQ(Import.SourceParts().size(), 2U);

    THtmlRun Text("no page");
    Text.TableNumber = 1;
    EXPECT_EQ(Raised([&] { Text.Look({}); }).Message, Text.SourceFileName + " has no table");
}

TEST(Kvi2htmlLook, RowsOfSeveralTablesAreWorthARemark)
{
    THtmlRun Import(ThreeRows() + ThreeRows() + ThreeRows());
    EXPECT_THAT(Import.SourceRemarks(), IsEmpty());
    Import.Run();
    ASSERT_EQ(Import.SourceRemarks().size(), 1U);
    EXPECT_EQ(Import.SourceRemarks()[0].Kind, srSeveralTables);
    EXPECT_EQ(Import.SourceRemarks()[0].Count, 3);
    Import.Look({.Rows = 4, .Columns = {}});
    EXPECT_EQ(Import.SourceRemarks()[0].Count, 3) << "all columns are those of all rows";
    Import.EndLook();
    Import.Look({.Rows = 4, .Columns = {"Field1"}});
    EXPECT_EQ(Import.SourceRemarks()[0].Count, 2) << "as far as it was looked at";
    Import.TableNumber = 2;
    Import.Look({});
    EXPECT_THAT(Import.SourceRemarks(), IsEmpty());
}

TEST(Kvi2htmlLook, SaysWhatANameInAMappingMeans)
{
    const std::vector<TKvISourceColumn> Shown{{.Name = "Field1", .Title = "Name"}};
    THtmlRun Import(ThreeRows(), AllOfHtml);
    const auto Resolved = [&](const std::string& Name) {
        const auto Meant = Import.ResolveName(Name, Shown);
        return std::pair(Meant.Kind, Meant.Name);
    };
    EXPECT_EQ(Resolved("FIELD1"), std::pair(snColumn, std::string("Field1")));
    EXPECT_EQ(Resolved("name"), std::pair(snColumn, std::string("Field1")));
    EXPECT_EQ(Resolved("Field2"), std::pair(snMissing, std::string("Field2")));
    EXPECT_EQ(Resolved("Field0"), std::pair(snNothing, std::string("Field0")));
    EXPECT_EQ(Resolved("Ada"), std::pair(snNothing, std::string("Ada")));
    Import.Extensions = {};
    EXPECT_EQ(Resolved("field1"), std::pair(snColumn, std::string("Field1")));
    EXPECT_EQ(Resolved("Ada"), std::pair(snByOrder, std::string("Ada")));
}

TEST(Kvi2htmlLook, WhatCannotBeReadSaysWhereAsFacts)
{
    std::string Cells;
    for (int I = 0; I < 1024; ++I)
        Cells += "<td>";
    THtmlRun Import("<table><tr>" + Cells + "<td rowspan=2></table>", AllOfHtml);
    const auto Error = Raised([&] { Import.Look({}); });
    EXPECT_EQ(Error.Message, "A cell in column 1025 covers several rows; column 1024 is the last that may");
    EXPECT_EQ(Error.Facts.FileName, Import.SourceFileName);
    EXPECT_EQ(Error.Facts.Rule, erFormat);
    EXPECT_EQ(Error.Facts.Offset, 7);

    Import.Folder.Write("file", std::string("\xEF\xBB\xBF<table>\0", 11));
    Import.EndLook();
    const auto Zero = Raised([&] { Import.Look({}); }).Facts;
    EXPECT_EQ(Zero.FileName, Import.SourceFileName);
    EXPECT_EQ(Zero.Rule, erFormat);
    EXPECT_EQ(Zero.Offset, 10);
}

// Packets.

TEST(Kvi2xmlLook, ShowsTheColumnsThatTheFieldsSectionDeclares)
{
    for (const auto& Rules : {TKvIXMLExtensions(), AllOfXml}) {
        TXmlRun Import("<P><FIELDS><FIELD attrname=\"ID\" fieldtype=\"i4\" SUBTYPE=\"Autoinc\"/>"
                       "<FIELD attrname=\"Name\" fieldtype=\"string\" WIDTH=\"20\"/>"
                       "<FIELD attrname=\"x\"/></FIELDS>"
                       "<ROWDATA><ROW ID=\"1\" Name=\"Ada\" y=\"2\"/></ROWDATA></P>",
                       Rules);
        const auto View = Import.Look({});
        const TRows Names{"ID", "Name", "x", "y"};
        EXPECT_EQ(NamesIn(View), TRows(Names.begin(), Names.end() - (Rules.IsEmpty() ? 1 : 0)));
        EXPECT_EQ(TitlesIn(View), NamesIn(View));
        EXPECT_EQ(View.Columns[0].DataType, ftAutoInc);
        EXPECT_EQ(View.Columns[0].TypeName, "i4");
        EXPECT_EQ(View.Columns[1].DataType, ftString);
        EXPECT_EQ(View.Columns[1].Size, 20);
        EXPECT_EQ(View.Columns[2].DataType, ftUnknown);
        EXPECT_THAT(RowsIn(View), ElementsAre(Rules.IsEmpty() ? "1|Ada|x" : "1|Ada|-|2"));
    }
}

TEST(Kvi2xmlLook, WithoutASectionItShowsTheAttributesOfTheFirstRecords)
{
    TXmlRun Import("<ROWDATA><ROW a=\"1\"/><ROW b=\"2\" a=\"3\"/></ROWDATA>", AllOfXml);
    EXPECT_THAT(NamesIn(Import.Look({.Rows = 1, .Columns = {}})), ElementsAre("a", "b"));
}

TEST(Kvi2xmlLook, OfAHundredRecordsByTheOlderRulesAndElseOfAll)
{
    for (const int Before : {99, 100}) {
        const auto Packet = "<ROWDATA>" + NumberedXmlRows(Before) + "<ROW late=\"1\"/></ROWDATA>";
        EXPECT_EQ(NamesIn(TXmlRun(Packet).Look({.Rows = 1, .Columns = {}})).size(), Before == 99 ? 4U : 3U);
        EXPECT_EQ(NamesIn(TXmlRun(Packet, AllOfXml).Look({.Rows = 1, .Columns = {}})).size(), 4U);
    }
}

TEST(Kvi2xmlLook, ElementsOfRecordsAreColumnsAndRowStateIsNone)
{
    TXmlRun Import("<ROWDATA><ROW RowState=\"4\" a=\"1\"><B>2</B></ROW><ROW><D>3</D><B/></ROW></ROWDATA>",
                   AllOfXml);
    const auto View = Import.Look({});
    EXPECT_THAT(NamesIn(View), ElementsAre("a", "B", "D"));
    EXPECT_THAT(RowsIn(View), ElementsAre("1|2|-", "-||3"));
}

TEST(Kvi2xmlLook, TellsWhatIsLeftOut)
{
    TXmlRun Import("<ROWDATA><R a='1' RowState='1'/><R a='2' RowState='12'/><R RowState='2'/>"
                   "<R><a>1</a><n><x></x><x/></n><a>2</a></R><R a='3'><a>4</a></R></ROWDATA>", AllOfXml);
    const auto Told = [&] {
        std::vector<std::pair<TKvISourceRemarkKind, std::int64_t>> Result;
        for (const auto& Remark : Import.SourceRemarks())
            Result.emplace_back(Remark.Kind, Remark.Count);
        return Result;
    };
    const auto All = ElementsAre(std::pair(srReplacedRecords, 2), std::pair(srElementsLeftOut, 3));
    EXPECT_EQ(Import.Look({.Rows = 1, .Columns = {}}).Rows.size(), 1U);
    EXPECT_THAT(Told(), All);
    const auto Run = [&] {
        Import.SetFields({{.Name = "A"}});
        Import.MapTo({"a"});
        return Import.Run().size();
    };
    EXPECT_EQ(Run(), 3U);
    EXPECT_THAT(Told(), All);
    EXPECT_EQ(Run(), 3U);
    EXPECT_THAT(Told(), All) << "of a run before which nobody has looked";
    Import.Folder.Write("file", "<ROWDATA/>");
    Run();
    EXPECT_THAT(Told(), IsEmpty());
}

TEST(Kvi2xmlLook, ShowsTheRecordsBeforeWhatIsNoXml)
{
    TXmlRun Import("<ROWDATA><R a='1'/><R b='2'/><R", AllOfXml);
    const auto View = Import.Look({.Rows = 1, .Columns = {}});
    EXPECT_THAT(NamesIn(View), ElementsAre("a", "b"));
    EXPECT_THAT(RowsIn(View), ElementsAre("1|-"));
    EXPECT_THAT(Import.RunAndFail(), testing::HasSubstr("the tag \"R\" does not end"));
    EXPECT_EQ(Import.Destination.RecordCount(), 0);
    Import.Folder.Write("file", "<ROWDATA><R c='1'/></ROWDATA>");
    EXPECT_THAT(NamesIn(Import.Look({})), ElementsAre("c")) << "a run that fails keeps nothing";
}

TEST(Kvi2xmlLook, NumbersAreWrittenAsTheFormatsHaveThem)
{
    TXmlRun Import(
        "<P><FIELDS><FIELD attrname='N' fieldtype='r8'/></FIELDS><ROWDATA><R N='1.5'/></ROWDATA></P>",
        AllOfXml);
    Import.DataFormats.DecimalSeparator = ',';
    EXPECT_THAT(RowsIn(Import.Look({})), ElementsAre("1,5"));
    Import.DataFormats.DecimalSeparator = '.';
    EXPECT_THAT(RowsIn(Import.Look({})), ElementsAre("1.5"));
}

TEST(Kvi2xmlLook, TheSectionDoesNotDescribeRecordsOfAnotherTag)
{
    TXmlRun Import("<P><FIELDS><FIELD attrname=\"x\"/></FIELDS><list><r a=\"1\"/></list></P>", AllOfXml);
    Import.TableName = "list";
    EXPECT_THAT(NamesIn(Import.Look({})), ElementsAre("a"));
}

TEST(Kvi2xmlLook, APacketSaysWhereEachRecordBegins)
{
    for (const auto& Rules : {TKvIXMLExtensions(), AllOfXml}) {
        TXmlRun Import("<ROWDATA>\n<ROW a=\"1\"/>\n<ROW a=\"2\"/></ROWDATA>", Rules);
        EXPECT_THAT(BeginningsIn(Import, Import.Look({}), 8), ElementsAre("<ROW a=\"", "<ROW a=\""));
        EXPECT_THAT(ToldByRun(Import, [&] { return Import.SourcePosition().Offset; }), ElementsAre(10, 23));
    }
}

TEST(Kvi2xmlLook, ATextThatWasConvertedHasNoOffsets)
{
    TXmlRun Import("<?xml version=\"1.0\" encoding=\"windows-1252\"?>"
                   "<ROWDATA><ROW a=\"\xE4\"/></ROWDATA>",
                   AllOfXml);
    EXPECT_THAT(BeginningsIn(Import, Import.Look({}), 4), ElementsAre("none"));
}

TEST(Kvi2xmlLook, TheRecordOfASourceIsTheValuesOfItsColumns)
{
    TXmlRun Import("<ROWDATA><ROW a=\"1\"/><ROW b=\"&lt;2\" x=\"3\"/></ROWDATA>");
    const auto Records = ToldByRun(Import, [&] { return Import.SourceRecord(); });
    ASSERT_EQ(Records.size(), 2U);
    ASSERT_EQ(Records[0].HighBound(), 2);
    EXPECT_EQ(Records[0][0].ToText(), "1");
    EXPECT_TRUE(Records[0][1].IsNull()) << "what a run makes of it is another thing";
    EXPECT_EQ(Records[1][1].ToText(), "&lt;2");
    EXPECT_EQ(Records[1][2].ToText(), "3");
    EXPECT_TRUE(Import.SourceRecord().IsNull()) << "after the run";
}

TEST(Kvi2xmlLook, SaysWhatANameInAMappingMeans)
{
    const std::vector<TKvISourceColumn> Shown{{.Name = "USERID", .Title = "USERID"}};
    TXmlRun Import("<ROWDATA/>", AllOfXml);
    EXPECT_EQ(Import.ResolveName("userid", Shown).Kind, snColumn);
    EXPECT_EQ(Import.ResolveName("userid", Shown).Name, "USERID");
    EXPECT_EQ(Import.ResolveName("ID", Shown).Kind, snMissing);
    Import.Extensions = {};
    EXPECT_EQ(Import.ResolveName("ID", Shown).Kind, snColumn);
    EXPECT_EQ(Import.ResolveName("ID", Shown).Name, "ID");
    EXPECT_EQ(Import.ResolveName("other", Shown).Kind, snConstant);
}

TEST(Kvi2xmlLook, WhatIsNoXmlSaysWhereAsFacts)
{
    TXmlRun Import("\xEF\xBB\xBF<ROWDATA>\n<ROW a=1/></ROWDATA>", AllOfXml);
    const auto Error = Raised([&] { Import.Look({}); });
    EXPECT_EQ(Error.Message, "Line 2 of " + Import.SourceFileName +
                                 " is no XML: the attribute \"a\" has a value without quotes (offset 18)");
    EXPECT_EQ(Error.Facts.FileName, Import.SourceFileName);
    EXPECT_EQ(Error.Facts.Place, "line 2");
    EXPECT_EQ(Error.Facts.Rule, erFormat);
    EXPECT_EQ(Error.Facts.Offset, 18);
}

// Both.

template <class TRun> struct KvMarkupLook : testing::Test
{
    static std::string File(int Rows)
    {
        if constexpr (std::is_same_v<TRun, THtmlRun>)
            return "<table>" + NumberedHtmlRows(Rows) + "</table>";
        else
            return "<ROWDATA>" + NumberedXmlRows(Rows) + "</ROWDATA>";
    }
};
using TRuns = testing::Types<THtmlRun, TXmlRun>;
struct TNameOfRun
{
    template <class TRun> static std::string GetName(int)
    {
        return std::is_same_v<TRun, THtmlRun> ? "Page" : "Packet";
    }
};
TYPED_TEST_SUITE(KvMarkupLook, TRuns, TNameOfRun);

TYPED_TEST(KvMarkupLook, ShowsAsManyRowsAsAreAskedForAndWhetherThereAreMore)
{
    TypeParam Import(this->File(5));
    EXPECT_EQ(Import.Look({.Rows = 5, .Columns = {}}).Rows.size(), 5U);
    EXPECT_FALSE(Import.Look({.Rows = 5, .Columns = {}}).HasMore);
    EXPECT_EQ(Import.Look({.Rows = 4, .Columns = {}}).Rows.size(), 4U);
    EXPECT_TRUE(Import.Look({.Rows = 4, .Columns = {}}).HasMore);
    EXPECT_TRUE(Import.Look({.Rows = 0, .Columns = {}}).HasMore);
}

TYPED_TEST(KvMarkupLook, KeepsToTheRowsThatAreImported)
{
    TypeParam Import(this->File(5));
    Import.RowFirst = 2;
    Import.RowLast = 3;
    const auto View = Import.Look({});
    EXPECT_THAT(RowsIn(View), ElementsAre("2|b|c", "3|b|c"));
    EXPECT_THAT(PlacesIn(View), ElementsAre("row 2", "row 3"));
    EXPECT_FALSE(View.HasMore);
    Import.RowFirst = -5;
    EXPECT_EQ(Import.Look({}).Rows.size(), 3U);
    Import.RowFirst = 6;
    Import.RowLast = RowLastMax;
    EXPECT_THAT(RowsIn(Import.Look({})), IsEmpty());
    Import.RowLast = 2;
    EXPECT_THAT(RowsIn(Import.Look({})), IsEmpty());
}

TYPED_TEST(KvMarkupLook, ReadsTheFileOnceForAllLooks)
{
    TypeParam Import(this->File(2));
    Import.Look({});
    Import.Folder.Write("file", this->File(3));
    EXPECT_EQ(Import.Look({}).Rows.size(), 2U);
    Import.EndLook();
    EXPECT_EQ(Import.Look({}).Rows.size(), 3U);
}

TYPED_TEST(KvMarkupLook, ReadsAnotherFileWhenItIsNamed)
{
    TypeParam Import(this->File(2));
    Import.Look({});
    Import.SourceFileName = Import.Folder.Write("other", this->File(3));
    EXPECT_EQ(Import.Look({}).Rows.size(), 3U);
}

TYPED_TEST(KvMarkupLook, ARunTakesWhatTheLookHasKept)
{
    TypeParam Import(this->File(2));
    Import.Look({});
    Import.Folder.Write("file", this->File(3));
    EXPECT_EQ(Import.Run().size(), 2U);
    Import.SetFields({{.Name = "A"}, {.Name = "B"}, {.Name = "C"}});
    EXPECT_EQ(Import.Run().size(), 3U) << "a run keeps nothing";
    EXPECT_EQ(Import.Look({}).Rows.size(), 3U);
    Import.DetectedMappings();
    Import.Folder.Write("file", this->File(4));
    EXPECT_EQ(Import.Look({}).Rows.size(), 3U) << "mappings that were detected do not lose it";
}

TYPED_TEST(KvMarkupLook, ARunCountsAnewWhenOtherRowsAreImported)
{
    TypeParam Import(this->File(4));
    Import.RowFirst = 2;
    Import.Look({});
    EXPECT_EQ(Import.Run().size(), 3U);
    Import.Look({});
    Import.RowFirst = 1;
    Import.SetFields({{.Name = "A"}, {.Name = "B"}, {.Name = "C"}});
    EXPECT_EQ(Import.Run().size(), 4U);
}

TYPED_TEST(KvMarkupLook, LeavesNothingOfAMissingFile)
{
    TypeParam Import(this->File(2));
    const auto Good = Import.SourceFileName;
    Import.SourceFileName = "/no/such/file";
    EXPECT_THROW(Import.Look({}), EFileError);
    Import.SourceFileName = Good;
    EXPECT_EQ(Import.Look({}).Rows.size(), 2U);
}

TYPED_TEST(KvMarkupLook, ACancelledLookShowsNothingAndIsNotKept)
{
    TypeParam Import(this->File(2));
    TNo No;
    Import.SetObserver(&No);
    EXPECT_EQ(Raised([&] { Import.Look({}); }).Facts.Rule, erCancelled);
    EXPECT_THAT(Import.SourceParts(), IsEmpty());
    Import.SetObserver(nullptr);
    EXPECT_EQ(Import.Look({}).Rows.size(), 2U);
}

TYPED_TEST(KvMarkupLook, CancelIsSeenWhileRowsAreSkipped)
{
    TypeParam Import(this->File(40000));
    Import.RowFirst = 40000;
    EXPECT_EQ(Import.Look({.Columns = {"a"}}).Rows.size(), 1U);
    TPatience Once(1);                              // the file is kept: the rest is about rows
    Import.SetObserver(&Once);
    EXPECT_EQ(Raised([&] { Import.Look({.Columns = {"a"}}); }).Facts.Rule, erCancelled);
    Import.SetObserver(nullptr);
}

TYPED_TEST(KvMarkupLook, ShowsATextOfTheOemPageInTheProcessesOwn)
{
    if constexpr (std::is_same_v<TypeParam, THtmlRun>) {
        TypeParam Import("<table><tr><td>\x84</td></tr><tr><td>\x81</td></tr></table>");
        Import.CharacterSet = csiASCII_MSDOS;
        Import.RowFirst = 2;
        const auto View = Import.Look({.HeaderRow = 1, .Columns = {}});
        EXPECT_THAT(TitlesIn(View), ElementsAre("ä"));
        EXPECT_THAT(RowsIn(View), ElementsAre("ü"));
    }
    else {
        TypeParam Import("<ROWDATA><ROW a=\"\x81\"/></ROWDATA>");
        Import.CharacterSet = csiASCII_MSDOS;
        EXPECT_THAT(RowsIn(Import.Look({})), ElementsAre("ü"));
    }
}

// Previews with extensions.

TEST(Kvi2htmlPreview, ReadsAPageByTheExtensionsThatItIsGiven)
{
    const THtmlRun Import("<table><tr><th>Name</th></tr><tr><td>A &amp; B</td><td></td></tr></table>");
    TPreviewed Seen;
    const auto Load = [&](const std::string& Names) {
        LoadHTMLPreview(nullptr, Names, Import.SourceFileName, {}, 2, 9, false, Seen.Columns, Seen.Callback(),
                        AllOfHtml);
    };
    Load("name;Field2");
    EXPECT_THAT(Seen.Rows, ElementsAre("A & B|"));
    EXPECT_THROW(Load("other"), Exception);
}

TEST(Kvi2xmlPreview, ReadsAPacketByTheExtensionsThatItIsGiven)
{
    const TXmlRun Import("<ROWDATA><ROW USERID='1' a='&lt;'/></ROWDATA>");
    TPreviewed Seen;
    LoadXMLPreview(nullptr, "ID;a", Import.SourceFileName, {}, 1, 9, false, Seen.Columns, Seen.Callback(),
                   AllOfXml);
    EXPECT_THAT(Seen.Rows, ElementsAre("|<"));
}

} // namespace kv
