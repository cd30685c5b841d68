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
        TKvHtmlRows Rows(Text, Extensions);
        for (std::size_t Bytes = 0; Rows.Next();)
            Bytes += Rows.Text(0).size() + Rows.Text(1).size() + Rows.Text(5000).size();
    }
    TKvXmlRows Tokens(Text, {}, "row", "FILE");
    Tokens.AddColumn("a");
    while (Tokens.Next())
        Tokens.Value(0);
    TKvXmlRows Elements(Text, {xxTagSyntax, xxReferences}, "row", "FILE");
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
    TNasty{"Brackets", "<!DOCTYPE ", "[", ""}), NameOfRow);

TEST(KvMarkupLimits, ManyCellsThatReachIntoManyRowsTakeTheirTimeOnly)
{
    const auto Text = "<table><tr>" + Repeated("<td rowspan=65534>1", 1000) + Repeated("<tr>", 20000);
    TKvHtmlRows Rows(Text, AllOfHtml);
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
