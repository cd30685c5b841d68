// Files that are made to take long: the time is that of their size, whatever they hold.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "KvHtmlRows.h"
#include "KvMarkupRun.h"
#include "KvXmlRows.h"

namespace kv {

namespace {

constexpr int Many = 250000;
constexpr TKvIHTMLExtensions AllOfHtml = TKvIHTMLExtensions::FromBits((1u << (xhEmptyIsNull + 1)) - 1);

std::string Repeated(std::string_view Text, int Times)
{
    std::string Result;
    Result.reserve(Text.size() * static_cast<std::size_t>(Times));
    for (int I = 0; I < Times; ++I)
        Result += Text;
    return Result;
}

struct TNasty
{
    const char* Name;
    std::string_view Before, Unit, After;
};
void PrintTo(const TNasty& Nasty, std::ostream* Out) { *Out << Nasty.Before << "..." << Nasty.Unit; }

} // namespace

class KvMarkupTime : public testing::TestWithParam<TNasty> {};

// If each looked at all the others it would take minutes.
TEST_P(KvMarkupTime, IsThatOfTheSize)
{
    const auto& [Name, Before, Unit, After] = GetParam();
    const auto Text = std::string(Before) + Repeated(Unit, Many) + std::string(After);
    for (const auto Extensions : {TKvIHTMLExtensions(), AllOfHtml}) {
        TKvHtmlRows Rows(Text, Extensions, hfHtml);
        for (std::size_t Bytes = 0; Rows.Next();)
            Bytes += Rows.Text(0).size() + Rows.Text(1).size() + Rows.Text(5000).size();
    }
    TKvXmlRows Tokens(Text, {}, "row", "FILE");
    Tokens.AddColumn("a");
    while (Tokens.Next())
        Tokens.Value(0);
    TKvXmlRows Elements(Text, {xxTagSyntax, xxReferences, xxRowState, xxElementValues}, "row", "FILE");
    Elements.AddColumn("a");
    try {
        while (Elements.Next())
            Elements.Value(0);
    }
    catch (const Exception& Error) {
        EXPECT_THAT(Error.Message, testing::HasSubstr(" of FILE is no XML: "));
    }
}

INSTANTIATE_TEST_SUITE_P(, KvMarkupTime, testing::Values(
    TNasty{"LessSigns", "", "<<<<", ""},
    TNasty{"LessSignsInACell", "<table><tr><td>", "<", ""},
    TNasty{"GreaterSigns", "<ROWDATA>", ">", ""},
    TNasty{"CommentStarts", "<table><tr><td>", "<!--", ""},
    TNasty{"CommentsInACell", "<table><tr><td>", "<!-->", ""},
    TNasty{"Tables", "", "<table>", ""},
    TNasty{"TablesInEachOther", "", "<table><tr><td>", ""},
    TNasty{"RowsWithoutCells", "<table>", "<tr></tr>", ""},
    TNasty{"CellsOfARow", "<table><tr>", "<td></td>", ""},
    TNasty{"CellsWithoutEnd", "<table><tr>", "<td>", ""},
    TNasty{"WideCells", "<table><tr>", "<td colspan=1000>", ""},
    TNasty{"OpenQuotes", "<table><tr>", "<td a=\"b>", ""},
    TNasty{"OpenQuotesOfBothKinds", "<table><tr>", "<td a=\"b' c='d>", ""},
    TNasty{"Quotes", "<ROWDATA><row a", "=\"", ">"},
    TNasty{"BlanksBeforeAQuote", "<table><tr><td ", " ", "\">"},
    TNasty{"Scripts", "<table><tr><td>", "<script>", ""},
    TNasty{"References", "<table><tr><td>", "&", "</td></tr>"},
    TNasty{"NumbersWithoutEnd", "<table><tr><td>", "&#", "0</td></tr>"},
    TNasty{"OneLongReference", "<table><tr><td>&", "a", "</td></tr>"},
    TNasty{"LineBreaks", "<ROWDATA><row a=\"", "\r\n", "\">"},
    TNasty{"Elements", "<row>", "<a>", ""},
    TNasty{"EmptyElements", "<row>", "<a a='&'/>", "</row>"},
    TNasty{"Attributes", "<row><b", " a='1'", "/></row>"},
    TNasty{"Brackets", "<!DOCTYPE ", "[", ""},
    TNasty{"Declarations", "<!DOCTYPE a [", "<!ENTITY a 'b'>", "]><row><a a='&a;'/></row>"},
    TNasty{"NamesOfEntities", "<!DOCTYPE a [<!ENTITY a 'b'>]><row><a a='", "&a", "'/></row>"},
    TNasty{"ElementsOfARecord", "<row><r>", "<a>1</a>", "</r></row>"},
    TNasty{"RecordsOfElements", "<row>", "<r><b>1</b><a>1</a></r>", "</row>"},
    TNasty{"HyphensInAComment", "<table><tr><td><!--", "-", ""},
    TNasty{"SelfClosedScripts", "<?xml?><table><tr><td>", "<script/>", ""}), NameOfRow);

// Entities that refer to each other ten times over would be gigabytes.
TEST(KvMarkupLimits, EntitiesExpandToLittleText)
{
    std::string Packet = "<!DOCTYPE p [<!ENTITY e0 \"0123456789\">";
    for (int I = 1; I < 10; ++I)
        Packet += "<!ENTITY e" + std::to_string(I) + " \"" +
                  Repeated("&e" + std::to_string(I - 1) + ";", 10) + "\">";
    Packet += "<!ENTITY loop \"&loop;\">]><ROWDATA><R a=\"&e2;\"/><R a=\"&e9;\"/><R a=\"&loop;\"/>"
              "<R a=\"" + Repeated("&e4;", 2) + "\"/></ROWDATA>";
    TXmlRun Import(Packet, {xxTagSyntax, xxReferences});
    EXPECT_THAT(Import.RunAndRefuse(),
                testing::ElementsAre("The entity \"e0\" expands to too much text",
                                     "The entity \"loop\" expands to too much text",
                                     "The entity \"e0\" expands to too much text"));
    EXPECT_THAT(Import.FirstValues(), testing::ElementsAre(Repeated("0123456789", 100)));
}

TEST(KvMarkupLimits, EntitiesStandSixteenDeepAtMost)
{
    std::string Subset = "<!ENTITY d1 'x'>";
    for (int I = 2; I <= 17; ++I)
        Subset += "<!ENTITY d" + std::to_string(I) + " '&d" + std::to_string(I - 1) + ";'>";
    TXmlRun Import("<!DOCTYPE p [" + Subset + "]><ROWDATA><R a='&d16;'/><R a='&d17;'/></ROWDATA>",
                   {xxTagSyntax, xxReferences});
    EXPECT_THAT(Import.RunAndRefuse(), testing::ElementsAre("The entity \"d1\" expands to too much text"));
    EXPECT_THAT(Import.FirstValues(), testing::ElementsAre("x"));
}

TEST(KvMarkupLimits, APacketOfMoreColumnsThanAnyTableIsRefused)
{
    std::string Fields, Values;
    for (int I = 1; I <= 2049; ++I) {
        Fields += "<FIELD attrname=\"F" + std::to_string(I) + "\"/>";
        Values += " F" + std::to_string(I) + "=\"1\"";
    }
    const auto Shown = [](const std::string& Packet, TKvIXMLExtensions Extensions) {
        try {
            return std::to_string(TXmlRun(Packet, Extensions).Look({}).Columns.size());
        }
        catch (const Exception& Error) {
            return Error.Message;
        }
    };
    const auto Declared = [&](const std::string& All) {
        return "<P><FIELDS>\n" + All + "</FIELDS><ROWDATA/></P>";
    };
    const auto Less = Fields.substr(0, Fields.rfind("<FIELD"));
    EXPECT_EQ(Shown(Declared(Less), {xxTagSyntax}), "2048");
    EXPECT_EQ(Shown(Declared(Less), {}), "2048");
    EXPECT_THAT(Shown(Declared(Fields), {xxTagSyntax}),
                testing::HasSubstr("it declares more than 2048 fields"));
    EXPECT_THAT(Shown(Declared(Fields), {}), testing::HasSubstr(" has more than 2048 columns"));
    EXPECT_THAT(Shown("<ROWDATA><R" + Values + "/></ROWDATA>", {xxTagSyntax}),
                testing::HasSubstr(" has more than 2048 columns"));
}


TEST(KvMarkupLimits, ManyCellsThatReachIntoManyRowsTakeTheirTimeOnly)
{
    const auto Text = "<table><tr>" + Repeated("<td rowspan=65534>1", 1000) + Repeated("<tr>", 20000);
    TKvHtmlRows Rows(Text, AllOfHtml, hfHtml);
    int Count = 0;
    while (Rows.Next()) {
        EXPECT_EQ(Rows.Columns(), 1000u);
        ++Count;
    }
    EXPECT_EQ(Count, 20001);
}

TEST(KvMarkupLimits, ARecordWithManyLinesOfManyAttributesIsReadOnce)
{
    TXmlRun Import("<ROWDATA><R " + Repeated("x=\"1\"\n", 100000) + " a=\"2\"/></ROWDATA>");
    EXPECT_THAT(Import.Run(), testing::ElementsAre("2|b|c"));
}

} // namespace kv
