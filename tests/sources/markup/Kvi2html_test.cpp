// The rules as programs have always known them.
#include "Kvi2html.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "KvMarkupRun.h"

using namespace std::string_literals;
using testing::ElementsAre;
using testing::IsEmpty;

namespace kv {

namespace {

/// What the rows of a table hold: what stands between <TABLE> and </TABLE>.
TRows Imported(const std::string& Table)
{
    return THtmlRun("<html><TABLE>" + Table + "</TABLE></html>").Run();
}

TRows Preview(const THtmlRun& Import, const std::string& Names)
{
    return PreviewOf(LoadHTMLPreview, Import.SourceFileName, Names, "unused");
}

} // namespace

// Cells.

TEST(Kvi2html, MappingLinesGetTheCellsInTheirOrder)
{
    EXPECT_THAT(Imported("<TR><TD>1</TD><TD>2</TD><TD>3</TD></TR><TR><TD>4</TD><TD>5</TD><TD>6</TD></TR>"),
                ElementsAre("1|2|3", "4|5|6"));
}

TEST(Kvi2html, ASourceNamedTwiceGetsTheCellOfTheFirst)
{
    THtmlRun Import("<table><tr><td>1</td><td>2</td><td>3</td></tr></table>");
    Import.MapTo({"a", "a", "c"});
    EXPECT_THAT(Import.Run(), ElementsAre("1|1|3"));
}

TEST(Kvi2html, LinesWithoutASourceTakeNoCell)
{
    THtmlRun Import("<table><tr><td>1</td><td>2</td></tr></table>");
    Import.SetMappings(TStrings{"A=", "B=x", "C=y"});
    EXPECT_THAT(Import.Run(), ElementsAre("-|1|2"));
}

TEST(Kvi2html, AnEmptyCellImportsTheSourcesName)
{
    EXPECT_THAT(Imported("<tr><td></td><td>2</td><td>\n </td></tr>"), ElementsAre("a|2|c"));
}

TEST(Kvi2html, ARowWithFewerCellsImportsTheNamesOfTheOthers)
{
    EXPECT_THAT(Imported("<tr><td>1</td></tr><tr></tr>"), ElementsAre("1|b|c", "a|b|c"));
}

TEST(Kvi2html, ACellWithAttributesAndTagsInsideIsItsPlainText)
{
    EXPECT_THAT(Imported("<tr><td align=left width=\"9\"><b>bo</b>ld</td><td>x<br>y</td><td>z</td></tr>"),
                ElementsAre("bold|xy|z"));
}

TEST(Kvi2html, SpansAreIgnored)
{
    EXPECT_THAT(Imported("<tr><td colspan=2>1</td><td>2</td></tr>"), ElementsAre("1|2|c"));
}

TEST(Kvi2html, HeaderCellsAreNoCells)
{
    EXPECT_THAT(Imported("<tr><th>h</th><th>i</th></tr><tr><th>h</th><td>1</td></tr>"),
                ElementsAre("a|b|c", "1|b|c"));
}

TEST(Kvi2html, TextBeforeTheFirstCellIsIgnored)
{
    EXPECT_THAT(Imported("<tr>x<b>y</b><td>1</td>z<td>2</td></tr>"), ElementsAre("1|2|c"));
}

TEST(Kvi2html, ReferencesAreText)
{
    EXPECT_THAT(Imported("<tr><td>&amp;&nbsp;&#65;</td></tr>"), ElementsAre("&amp;&nbsp;&#65;|b|c"));
}

TEST(Kvi2html, OnlyWhiteSpaceBehindATagIsDropped)
{
    EXPECT_THAT(Imported("<tr><td>\r\n  1 \n 2  </td><td><b> 3</b> 4 </td><td>\t5</td></tr>"),
                ElementsAre("1 \n 2  |34 |\t5"));
}

TEST(Kvi2html, GreaterSignsBehindATagAreDropped)
{
    EXPECT_THAT(Imported("<tr><td>>>1>2</td></tr>"), ElementsAre("1>2|b|c"));
}

TEST(Kvi2html, ATagEndsAtItsFirstGreaterSign)
{
    EXPECT_THAT(Imported("<tr><td title=\"x>y\">1</td></tr>"), ElementsAre("y\">1|b|c"));
}

TEST(Kvi2html, ATagsNameEndsAtABlankOnly)
{
    EXPECT_THAT(Imported("<tr><td\nalign=left>1</td><td/>2</td><tdx>3</tdx><td>4</td></tr>"),
                ElementsAre("4|b|c"));
}

TEST(Kvi2html, TagsAreReadInEitherCase)
{
    EXPECT_THAT(THtmlRun("<tAbLe><tR><Td>1</tD></Tr></TaBlE>").Run(), ElementsAre("1|b|c"));
}

TEST(Kvi2html, ALessSignBeginsATagWhateverFollows)
{
    EXPECT_THAT(Imported("<tr><td>1 < 2</td><td>3</td></tr>"), ElementsAre("1 3|b|c"));
}

// What is left out.

TEST(Kvi2html, ACellEndsOnlyAtItsEndTag)
{
    EXPECT_THAT(Imported("<tr><td>1<td>2</tr><tr><td>3</td></tr>"), ElementsAre("123|b|c"));
}

TEST(Kvi2html, ARowEndsOnlyAtItsEndTag)
{
    EXPECT_THAT(Imported("<tr><td>1</td><tr><td>2</td></tr>"), ElementsAre("1|2|c"));
}

TEST(Kvi2html, TheEndOfTheFileEndsACellARowAndATable)
{
    EXPECT_THAT(THtmlRun("<table><tr><td>1</td><td>2").Run(), ElementsAre("1|2|c"));
    EXPECT_THAT(THtmlRun("<table><tr><td>1</td><td").Run(), ElementsAre("1|b|c"));
    EXPECT_THAT(THtmlRun("<table><tr").Run(), ElementsAre("a|b|c"));
}

// Comments.

TEST(Kvi2html, TagsInACommentAreNone)
{
    EXPECT_THAT(Imported("<!-- <tr><td>0</td></tr> --><tr><!--<td>x</td>--><td>1</td></tr>"),
                ElementsAre("1|b|c"));
}

TEST(Kvi2html, ACommentInACellHidesTheTextBehindIt)
{
    EXPECT_THAT(Imported("<tr><td>1<!-- x -->2<b>3</b></td></tr>"), ElementsAre("13|b|c"));
}

TEST(Kvi2html, TheShortestCommentEndsAtOnce)
{
    EXPECT_THAT(Imported("<tr><!--><td>1</td><!-- x --></tr>"), ElementsAre("1|b|c"));
}

TEST(Kvi2html, ACommentThatNothingEndsHidesTheRest)
{
    EXPECT_THAT(Imported("<tr><td>1</td></tr><!-- <tr><td>2</td></tr>"), ElementsAre("1|b|c"));
}

// Tables.

TEST(Kvi2html, TwoTablesAreOneSequenceOfRows)
{
    THtmlRun Import("<table>" + NumberedHtmlRows(2) + "</table>x<tr><td>no</td></tr><table>" +
                    NumberedHtmlRows(1) + "</table>");
    EXPECT_THAT(Import.Run(), ElementsAre("1|b|c", "2|b|c", "1|b|c"));
}

TEST(Kvi2html, ATableInACellIsNotRecognised)
{
    EXPECT_THAT(Imported("<tr><td>1<table><tr><td>2</td><td>3</td></tr><tr><td>4</td></tr></table>5</td>"
                         "<td>6</td></tr><tr><td>7</td></tr>"),
                ElementsAre("12|3|c", "4|b|c"));
}

TEST(Kvi2html, ATableOfAnotherNumberIsLeftOut)
{
    THtmlRun Import("<table>" + NumberedHtmlRows(2) + "</table><table><tr><td>x</td></tr></table><table>" +
                    NumberedHtmlRows(1) + "</table>");
    Import.TableNumber = 2;
    EXPECT_THAT(Import.Run(), ElementsAre("x|b|c"));
    Import.TableNumber = 4;
    Import.SetFields({{.Name = "A"}});
    EXPECT_THAT(Import.Run(), IsEmpty());
}

TEST(Kvi2html, AFileWithoutTablesHasNoRows)
{
    EXPECT_THAT(THtmlRun("<p>text</p><tr><td>1</td></tr>").Run(), IsEmpty());
    EXPECT_THAT(THtmlRun("").Run(), IsEmpty());
}

TEST(Kvi2html, AZeroByteEndsTheFile)
{
    EXPECT_THAT(Imported("<tr><td>1</td></tr>\0<tr><td>2</td></tr>"s), ElementsAre("1|b|c"));
}

// The component.

TEST(Kvi2html, IsOfItsKind)
{
    THtmlRun Import("");
    EXPECT_EQ(Import.TableType, teHTML);
    EXPECT_EQ(TKvImportFromHTML().SourceFileName, "KvImport.HTML");
    EXPECT_EQ(TKvImportFromHTML::Extension(), ".HTML");
    EXPECT_EQ(TKvImportFromHTML::FillFileFilters(),
              "All files (*.*)|*.*|HTML file (*.htm;*.html)|*.HTM;*.HTML|");
    EXPECT_EQ(Import.RowFirst, 1);
    EXPECT_EQ(Import.RowLast, 2147483647);
    EXPECT_TRUE(Import.Extensions.IsEmpty());
    EXPECT_EQ(Import.TableNumber, 0);
}

TEST(Kvi2html, PublishesItsProperties)
{
    TKvImportFromHTML Import;
    const auto Properties = Import.PublishedProperties();
    for (const std::string_view Name : {"SourceFileName", "RowFirst", "RowLast", "TableNumber", "Extensions"})
        EXPECT_NE(FindProperty(Properties, Name), nullptr) << Name;
    const auto* const Set = FindProperty(Properties, "Extensions");
    EXPECT_EQ(Set->Names.size(), std::size_t{xhEmptyIsNull} + 1);
    EXPECT_EQ(Set->Names[xhSpans], "xhSpans");
    EXPECT_EQ(Set->Names[xhEmptyIsNull], "xhEmptyIsNull");
}

TEST(Kvi2html, MapsNothingByItselfBehindAHeader)
{
    THtmlRun Import("<table><tr><td>A</td><td>B</td></tr>" + NumberedHtmlRows(1) + "</table>");
    Import.RowFirst = 2;
    EXPECT_THAT(Import.DetectedMappings(), IsEmpty());
}

TEST(Kvi2html, AnAutomaticMappingTakesTheCellsInTheOrderOfTheFields)
{
    THtmlRun Import("<table>" + NumberedHtmlRows(1) + "</table>");
    Import.Mappings().Clear();
    EXPECT_THAT(Import.Run(), ElementsAre("1|b|c"));
    EXPECT_TRUE(Import.Mappings().IsEmpty());
}

// The preview.

TEST(Kvi2htmlPreview, ShowsTheCellsOfEachRow)
{
    const THtmlRun Import("<table><tr><td>1</td><td></td><td>3</td></tr><tr><td>4</td></tr></table>");
    EXPECT_THAT(Preview(Import, "x;y;z"), ElementsAre("1||3", "4||"));
}

TEST(Kvi2htmlPreview, ANameThatStandsTwiceGetsTheCellOfTheFirst)
{
    const THtmlRun Import("<table><tr><td>1</td><td>2</td><td>3</td></tr></table>");
    EXPECT_THAT(Preview(Import, "x;X;z"), ElementsAre("1|1|3"));
}

} // namespace kv
