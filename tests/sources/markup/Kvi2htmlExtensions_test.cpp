// The rules of today's pages, each beside the older one that it replaces.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "KvCodePage.h"
#include "KvMarkupRun.h"

using namespace std::string_literals;
using testing::ElementsAre;
using testing::IsEmpty;

namespace kv {

namespace {

using TReadings = TReadingsWith<TKvIHTMLExtensions>;

TRows ImportedFile(const std::string& Text, TKvIHTMLExtensions Extensions)
{
    return THtmlRun(Text, Extensions).Run();
}

TRows Imported(const std::string& Table, TKvIHTMLExtensions Extensions)
{
    return ImportedFile("<table>" + Table + "</table>", Extensions);
}

} // namespace

class Kvi2htmlReads : public testing::TestWithParam<TReadings> {};

TEST_P(Kvi2htmlReads, ClassicThenExtended)
{
    EXPECT_EQ(Imported(GetParam().Text, {}), GetParam().Classic);
    EXPECT_EQ(Imported(GetParam().Text, GetParam().Extensions), GetParam().Extended);
}

INSTANTIATE_TEST_SUITE_P(
    Syntax, Kvi2htmlReads,
    testing::Values(
        TReadings{"NameEndsAtALineBreak", {xhTagSyntax}, "<tr\n><td\tx=1>1</td\n></tr>", {}, {"1|b|c"}},
        TReadings{"NameEndsAtASlash", {xhTagSyntax}, "<tr><td/>1</td><td>2</td></tr>", {"2|b|c"}, {"1|2|c"}},
        TReadings{"QuotedGreaterSign",
                  {xhTagSyntax},
                  "<tr><td t=\"x>y\" u='>'>1</td></tr>",
                  {"y\" u='>'>1|b|c"},
                  {"1|b|c"}},
        TReadings{"QuoteOutsideAValue",
                  {xhTagSyntax},
                  "<tr><td t=it's>1</td><td t=\"\"4\"\">2</td></tr>",
                  {"1|2|c"},
                  {"1|2|c"}},
        TReadings{"QuoteThatNothingCloses",
                  {xhTagSyntax},
                  "<tr><td t=\"x>1</td><td>2</td></tr>",
                  {"1|2|c"},
                  {"1|2|c"}},
        TReadings{"LessSignInText",
                  {xhTagSyntax},
                  "<tr><td>1 < 2</td><td>a<3</td></tr>",
                  {"1 a|b|c"},
                  {"1 < 2|a<3|c"}},
        TReadings{"GreaterSignsInText", {xhTagSyntax}, "<tr><td>>1</td></tr>", {"1|b|c"}, {">1|b|c"}},
        TReadings{
            "CommentInACell", {xhTagSyntax}, "<tr><td>1<!-- <td>x --->2</td></tr>", {"1|b|c"}, {"12|b|c"}},
        TReadings{"DeclarationInACell",
                  {xhTagSyntax},
                  "<tr><td>1<![if x]>2<?y?>3</td></tr>",
                  {"123|b|c"},
                  {"123|b|c"}},
        TReadings{"NoEndTags", {xhTagSyntax}, "<tr><td>1<td>2<tr><td>3", {"123|b|c"}, {"1|2|c", "3|b|c"}},
        TReadings{"NoRowTags",
                  {xhTagSyntax},
                  "<tbody><td>1</td><td>2</td></tbody><td>3</td>",
                  {},
                  {"1|2|c", "3|b|c"}},
        TReadings{"SectionsEndRows",
                  {xhTagSyntax},
                  "<thead><tr><td>1<tbody><tr><td>2<tfoot><tr><td>3",
                  {"123|b|c"},
                  {"1|b|c", "2|b|c", "3|b|c"}},
        TReadings{"TableInACell",
                  {xhTagSyntax},
                  "<tr><td>1<table><tr><td>2</td></tr></table>3</td><td>4</td></tr><tr><td>5</td></tr>",
                  {"12|b|c"},
                  {"123|4|c", "5|b|c"}},
        TReadings{"CommentsEndWithAMark",
                  {xhTagSyntax},
                  "<tr><td>1<!-- a -- b --!>2</td><td><!-->3<!--->4<!---!> --></td></tr>",
                  {"1|b|c"},
                  {"12|34|c"}},
        TReadings{"OtherEndTagsOfCells",
                  {xhTagSyntax, xhHeaderCells},
                  "<tr><td>1</th>2</td><th>3</td>4</th></tr>",
                  {"12|b|c"},
                  {"12|34|c"}},
        TReadings{"EndTagsOfOtherSections",
                  {xhTagSyntax},
                  "<tbody><tr><td>1</thead>2</tfoot>3</tbody><tr><td>4",
                  {"1234|b|c"},
                  {"123|b|c", "4|b|c"}},
        TReadings{"HeadAndFootEndAsTheyBegin",
                  {xhTagSyntax},
                  "<thead><tr><td>1</thead><tr><td>2<tfoot><tr><td>3</tfoot><tr><td>4",
                  {"1234|b|c"},
                  {"1|b|c", "2|b|c", "3|b|c", "4|b|c"}},
        TReadings{"TableOutsideACell",
                  {xhTagSyntax},
                  "<tr><table><tr><td>1</td></tr></table><tr><td>2",
                  {"1|b|c"},
                  {"a|b|c", "1|b|c"}},
        TReadings{"TableOutsideACellOfATableInside",
                  {xhTagSyntax},
                  "<tr><td>1<table><tr><table><tr><td>2</table>3</td><td>4",
                  {"123|4|c"},
                  {"123|4|c"}},
        TReadings{"TablesInEachOther",
                  {xhTagSyntax},
                  "<tr><td>1<table><tr><td>2<table><tr><td>3</table>4</table>5</td><td>6",
                  {"12345|6|c"},
                  {"12345|6|c"}},
        TReadings{
            "TextsWithoutTags",
            {xhTagSyntax},
            "<tr><td>1<textarea>x <td> y</textarea></td><td>2<iframe><td>3</iframe><xmp><b></xmp></td></tr>",
            {"1x y|23|c"},
            {"1x <td> y|2<b>|c"}},
        TReadings{"TitleInACell",
                  {xhTagSyntax},
                  "<tr><td>1<title></td></title>2<noframes><td></noframes></td></tr>",
                  {"1|b|c"},
                  {"12|b|c"}},
        TReadings{"AttributeWithoutABlankBefore",
                  {xhTagSyntax},
                  "<tr><td a='>'b=\">\"c=>1</td></tr>",
                  {"'b=\">\"c=>1|b|c"},
                  {"1|b|c"}},
        TReadings{"ScriptInACell",
                  {xhTagSyntax},
                  "<tr><td>1<script>if (a<b) '</td>';</script>2</td></tr>",
                  {"1if (a';2|b|c"},
                  {"12|b|c"}},
        TReadings{"StyleInACell",
                  {xhTagSyntax},
                  "<tr><td>1<STYLE>td>b{}</style>2</td></tr>",
                  {"1td>b{}2|b|c"},
                  {"12|b|c"}}),
    NameOfRow);

INSTANTIATE_TEST_SUITE_P(HeaderCells, Kvi2htmlReads, testing::Values(
    TReadings{"AreCells", {xhHeaderCells}, "<tr><th>1</th><th scope=row>2</th><td>3</td></tr>", {"3|b|c"},
              {"1|2|3"}},
    TReadings{"SectionIsNone", {xhHeaderCells}, "<thead><tr><TH>1</TH></tr></thead>", {"a|b|c"},
              {"1|b|c"}}), NameOfRow);

INSTANTIATE_TEST_SUITE_P(References, Kvi2htmlReads, testing::Values(
    TReadings{"AreCharacters", {xhReferences},
              "<tr><td>&lt;b&gt; &amp;amp; &eacute;</td><td>&#8364;&#128;</td></tr>",
              {"&lt;b&gt; &amp;amp; &eacute;|&#8364;&#128;|c"}, {"<b> &amp; \u00E9|\u20AC\u20AC|c"}},
    TReadings{"OthersStay", {xhReferences}, "<tr><td>R&D &foo; &#0;</td></tr>", {"R&D &foo; &#0;|b|c"},
              {"R&D &foo; \uFFFD|b|c"}},
    TReadings{"BesideTags", {xhReferences}, "<tr><td>a<b>&lt;</b>c</td></tr>", {"a&lt;c|b|c"}, {"a<c|b|c"}},
    TReadings{"WithoutFoldingKeepSpace", {xhReferences}, "<tr><td>a  &amp;\n b</td></tr>",
              {"a  &amp;\n b|b|c"},
              {"a  &\n b|b|c"}}),
    NameOfRow);

INSTANTIATE_TEST_SUITE_P(
    Space, Kvi2htmlReads,
    testing::Values(
        TReadings{"Folds",
                  {xhFoldedSpace},
                  "<tr><td>\n a \t\r\n b  c </td></tr>",
                  {"a \t\r\n b  c |b|c"},
                  {"a b c|b|c"}},
        TReadings{
            "SingleBlanksStay", {xhFoldedSpace}, "<tr><td>a b c</td></tr>", {"a b c|b|c"}, {"a b c|b|c"}},
        TReadings{"NothingElse", {xhFoldedSpace}, "<tr><td>\t \n</td></tr>", {"-|b|c"}, {"a|b|c"}},
        TReadings{"LineBreak",
                  {xhFoldedSpace},
                  "<tr><td>a <br> b<BR/>c<br><br>d<br></td></tr>",
                  {"a bcd|b|c"},
                  {"a\nb\nc\n\nd|b|c"}},
        TReadings{"Paragraphs",
                  {xhFoldedSpace},
                  "<tr><td><p>a</p> <p>b</p>c<div>d</div></td></tr>",
                  {"abcd|b|c"},
                  {"a\nb\nc\nd|b|c"}},
        TReadings{"TagsWithinALine",
                  {xhFoldedSpace},
                  "<tr><td>a<b>b</b> <i> c</i></td></tr>",
                  {"abc|b|c"},
                  {"ab c|b|c"}},
        TReadings{"CellsOfATableInside",
                  {xhFoldedSpace, xhTagSyntax},
                  "<tr><td>1<table><tr><td>2</td><td>3</td></tr></table>4</td></tr>",
                  {"12|3|c"},
                  {"1\n2\n3\n4|b|c"}},
        TReadings{"NoBreakSpace",
                  {xhFoldedSpace, xhReferences},
                  "<tr><td>1&nbsp;2&nbsp;&nbsp;3</td><td>&nbsp;4&#160;</td></tr>",
                  {"1&nbsp;2&nbsp;&nbsp;3|&nbsp;4&#160;|c"},
                  {"1 2  3|4|c"}},
        TReadings{"NoBreakSpaceInUtf8",
                  {xhFoldedSpace},
                  "<tr><td>1\u00A02 \u00B0</td></tr>",
                  {"1\u00A02 \u00B0|b|c"},
                  {"1 2 \u00B0|b|c"}},
        TReadings{"StaysInPreformattedText",
                  {xhFoldedSpace},
                  "<tr><td> a <pre>\nline1\r\n\r\n  two  three\n</pre> b  c</td></tr>",
                  {"a line1\r\n\r\n  two  three\nb  c|b|c"},
                  {"a\nline1\n\n  two  three\nb c|b|c"}},
        TReadings{"StaysInATextArea",
                  {xhFoldedSpace, xhTagSyntax},
                  "<tr><td><textarea>a  b\n c</textarea></td></tr>",
                  {"a  b\n c|b|c"},
                  {"a  b\n c|b|c"}},
        TReadings{"AllBlocksBreakLines",
                  {xhFoldedSpace},
                  "<tr><td>1<ul><li>2<li>3</ul>4<h3>5</h3>6<hr>7<dl><dt>8<dd>9</dl><blockquote>0</"
                  "blockquote>x</td></tr>",
                  {"1234567890x|b|c"},
                  {"1\n2\n3\n4\n5\n6\n7\n8\n9\n0\nx|b|c"}},
        TReadings{"OtherTagsBreakNone",
                  {xhFoldedSpace},
                  "<tr><td>1<path>2<big>3<brx>4<hrx>5</td></tr>",
                  {"12345|b|c"},
                  {"12345|b|c"}},
        TReadings{"AloneIsNoValue",
                  {xhFoldedSpace, xhReferences, xhEmptyIsNull},
                  "<tr><td>&nbsp;</td></tr>",
                  {"&nbsp;|b|c"},
                  {"-|-|-"}}),
    NameOfRow);

INSTANTIATE_TEST_SUITE_P(
    Spans, Kvi2htmlReads,
    testing::Values(
        TReadings{"FillColumns", {xhSpans}, "<tr><td colspan=2>1</td><td>2</td></tr>", {"1|2|c"}, {"1|1|2"}},
        TReadings{"FillRows",
                  {xhSpans},
                  "<tr><td rowspan=2>1</td><td>2</td></tr><tr><td>3</td></tr><tr><td>4</td></tr>",
                  {"1|2|c", "3|b|c", "4|b|c"},
                  {"1|2|c", "1|3|c", "4|b|c"}},
        TReadings{"EndWithTheirSection",
                  {xhSpans, xhTagSyntax},
                  "<thead><tr><td rowspan=9>1<td>2</thead><tr><td "
                  "rowspan=0>3<tr><td>4<tbody><tr><td>5<tfoot><tr><td>6",
                  {"123456|b|c"},
                  {"1|2|c", "3|b|c", "3|4|c", "5|b|c", "6|b|c"}},
        TReadings{"EndWithTheirTable",
                  {xhSpans},
                  "<tr><td rowspan=9>1</td></tr></table><table><tr><td>2</td></tr>",
                  {"1|b|c", "2|b|c"},
                  {"1|b|c", "2|b|c"}}),
    NameOfRow);

INSTANTIATE_TEST_SUITE_P(EmptyCells, Kvi2htmlReads, testing::Values(
    TReadings{"AreNoValue", {xhEmptyIsNull}, "<tr><td></td><td>2</td></tr>", {"a|2|c"}, {"-|2|-"}}),
    NameOfRow);

// Rows that reach into those below count from the first row of the file.
TEST(Kvi2htmlSpans, ReachFromRowsBeforeRowFirst)
{
    THtmlRun Import(
        "<table><tr><td rowspan=3>1</td><td>2</td></tr><tr><td>3</td></tr><tr><td>4</td></tr></table>",
        {xhSpans});
    Import.RowFirst = 2;
    EXPECT_THAT(Import.Run(), ElementsAre("1|3|c", "1|4|c"));
}

TEST(Kvi2htmlSpans, TooFarARowSpanFailsTheRunBeforeItWrites)
{
    std::string Cells;
    for (int I = 0; I < 1024; ++I)
        Cells += "<td>";
    THtmlRun Import("<table><tr><td>1</td></tr><tr>" + Cells + "<td rowspan=2></tr></table>",
                    {xhSpans, xhTagSyntax});
    EXPECT_EQ(Import.RunAndFail(),
              "A cell in column 1025 covers several rows; column 1024 is the last that may");
    EXPECT_EQ(Import.Destination.RecordCount(), 0);
}

// The encoding.

TEST(Kvi2htmlEncoding, IsThatOfTheMetaTag)
{
    const std::string Page = "<META HTTP-EQUIV=Content-Type CONTENT='text/html; charset=windows-1251'>"
                             "<table><tr><td>\xCF\xF0\xE8</td></tr></table>";
    EXPECT_THAT(ImportedFile(Page, {}), ElementsAre("\xCF\xF0\xE8|b|c"));
    EXPECT_THAT(ImportedFile(Page, {xhEncoding}), ElementsAre("\u041F\u0440\u0438|b|c"));
}

TEST(Kvi2htmlEncoding, IsThatOfAByteOrderMark)
{
    const std::string Page = "\xEF\xBB\xBF<meta charset=windows-1251><table><tr><td>\u00E4</td></tr></table>";
    EXPECT_THAT(ImportedFile(Page, {}), ElementsAre("\u00E4|b|c"));
    EXPECT_THAT(ImportedFile(Page, {xhEncoding}), ElementsAre("\u00E4|b|c"));
}

TEST(Kvi2htmlEncoding, Utf16IsRecognisedWithAMarkOrWithout)
{
    std::string Page;
    for (const char Char : "<table><tr><td>1</td></tr></table>"s)
        Page += {Char, '\0'};
    EXPECT_THAT(ImportedFile(Page, {}), IsEmpty());
    EXPECT_THAT(ImportedFile(Page, {xhEncoding}), ElementsAre("1|b|c"));
    EXPECT_THAT(ImportedFile("\xFF\xFE" + Page, {xhEncoding}), ElementsAre("1|b|c"));
}

TEST(Kvi2htmlEncoding, AZeroByteIsNoText)
{
    THtmlRun Import("<table>\0<tr><td>1</td></tr></table>"s, {xhEncoding});
    EXPECT_EQ(Import.RunAndFail(), "File \"FILE\" has a zero byte at offset 7, as no text of its kind has");
}

/// What a run tells of the encoding of a page: kinds and names.
std::vector<std::pair<TKvISourceRemarkKind, std::string>> Remarks(THtmlRun& Import)
{
    std::vector<std::pair<TKvISourceRemarkKind, std::string>> Result;
    for (const auto& Remark : Import.SourceRemarks())
        Result.emplace_back(Remark.Kind, Remark.Name);
    return Result;
}

TEST(Kvi2htmlEncoding, AnUnknownOneIsToldAndDoesNotCount)
{
    THtmlRun Import("<meta charset=no-such><table><tr><td>\u00E4</td></tr></table>", {xhEncoding});
    EXPECT_THAT(Import.Run(), ElementsAre("\u00E4|b|c"));
    EXPECT_THAT(Remarks(Import), ElementsAre(std::pair(srUnknownEncoding, std::string("no-such"))));
}

TEST(Kvi2htmlEncoding, AWrongOneIsTold)
{
    for (const std::string Meta : {"<meta charset=utf-8>", ""}) {
        THtmlRun Import(Meta + "<table><tr><td>\xE4</td></tr></table>", {xhEncoding});
        EXPECT_THAT(Import.Run(), ElementsAre("\xE4|b|c"));
        EXPECT_THAT(Remarks(Import), ElementsAre(std::pair(srForeignText, std::string("UTF-8"))));
    }
    THtmlRun Right("<meta charset=utf-8><table><tr><td>\u00E4</td></tr></table>", {xhEncoding});
    Right.Run();
    EXPECT_THAT(Remarks(Right), IsEmpty());
    THtmlRun Classic("<table><tr><td>\xE4</td></tr></table>");
    Classic.Run();
    EXPECT_THAT(Remarks(Classic), IsEmpty()) << "bytes pass as they are";
}

TEST(Kvi2htmlEncoding, ABytesWithoutMeaningConcernsItsRecord)
{
    const std::string Page =
        "<meta charset=windows-1252><table><tr><td>\xE4</td></tr><tr><td>\x81 x</td></tr>"
        "<tr><td>3</td><td>\x8D</td></tr></table>";
    THtmlRun Import(Page, {xhEncoding});
    Import.MapTo({"Field1"});
    const auto Errors = Import.RunAndRefuse();
    EXPECT_THAT(Import.FirstValues(), ElementsAre("\u00E4", "3")) << "only columns that are mapped count";
    EXPECT_THAT(Errors, ElementsAre("\"\u0081 x\" has bytes that have no meaning in windows-1252"));
    EXPECT_THAT(Remarks(Import), ElementsAre(std::pair(srUndefinedBytes, std::string("windows-1252"))));
    EXPECT_EQ(Import.Look({}).Rows.at(1).Values.at(0).Error, Errors.at(0));
}

TEST(Kvi2htmlEncoding, AllStandInsForBytesAreSeen)
{
    for (const std::string Bytes : {"\x81", "\x9D", "\xA0", "\xFD", "\xFF"})
    { // none of them begins a character
        THtmlRun Import("<meta charset=shift_jis><table><tr><td>" + Bytes + " </td></tr></table>",
                        {xhEncoding});
        EXPECT_EQ(Import.RunAndRefuse().size(), 1U) << static_cast<int>(static_cast<unsigned char>(Bytes[0]));
    }
}

TEST(Kvi2htmlEncoding, OtherCharactersBesideThemAreText)
{
    THtmlRun Import("<meta charset=windows-1252><table><tr><td>&#xF780;&#xEFFF;&nbsp;\xC2</td></tr>"
                    "<tr><td>\x81</td></tr></table>",
                    {xhEncoding, xhReferences});
    EXPECT_EQ(Import.RunAndRefuse().size(), 1U);
    EXPECT_THAT(Import.FirstValues(), ElementsAre("\uF780\uEFFF\u00A0\u00C2"));
}

TEST(Kvi2htmlEncoding, ACodePageThatIsSaidWinsOverTheFile)
{
    THtmlRun Import("<meta charset=utf-8><table><tr><td>\xCF\xF0\xE8</td></tr></table>", {xhEncoding});
    Import.CodePage = "windows-1251";
    EXPECT_THAT(Import.Run(), ElementsAre("\u041F\u0440\u0438|b|c"));
    EXPECT_THAT(Remarks(Import), IsEmpty());
    Import.Look({});
    Import.CodePage = "windows-1252";
    Import.SetFields({{.Name = "A"}});
    EXPECT_THAT(Import.Run(), ElementsAre("\u00CF\u00F0\u00E8")) << "read anew";
    Import.Extensions = {};
    Import.SetFields({{.Name = "A"}});
    EXPECT_THAT(Import.Run(), ElementsAre("\xCF\xF0\xE8")) << "by the older rules bytes pass as they are";
}

TEST(Kvi2htmlEncoding, BytesOfNoDeclaredEncodingPassAsTheyAre)
{
    EXPECT_THAT(ImportedFile("<table><tr><td>\xE4</td></tr></table>", {xhEncoding}), ElementsAre("\xE4|b|c"));
}

// XHTML.

TEST(Kvi2htmlXhtml, TagsEndTheirElements)
{
    const std::string Page = "<html><head><script src=\"a.js\"/><title/></head><body><table>"
                             "<tr><td>1<textarea/>2<script/>3</td></tr></table></body></html>";
    EXPECT_THAT(ImportedFile("<?xml version=\"1.0\"?>" + Page, {xhTagSyntax}), ElementsAre("123|b|c"));
    EXPECT_THAT(ImportedFile(Page, {xhTagSyntax}), IsEmpty());
}

// Names of columns.

class Kvi2htmlNames : public testing::Test
{
protected:
    THtmlRun Import{"<table><tr><th>Id <br> No</th><th>Name</th><th>A</th></tr>"
                    "<tr><td>1</td><td>Ada</td><td>x</td></tr></table>"};

    Kvi2htmlNames()
    {
        Import.Extensions = {xhHeaderNames, xhHeaderCells, xhFoldedSpace};
        Import.RowFirst = 2;
    }
};

TEST_F(Kvi2htmlNames, AreThoseOfTheFirstRow)
{
    Import.MapTo({"NAME", "Id No", "a"});
    EXPECT_THAT(Import.Run(), ElementsAre("Ada|1|x"));
    Import.Extensions = {};
    Import.SetFields({{.Name = "A"}, {.Name = "B"}, {.Name = "C"}});
    EXPECT_THAT(Import.Run(), ElementsAre("1|Ada|x"));
}

TEST_F(Kvi2htmlNames, MayBeNumbers)
{
    Import.MapTo({"Field2", "field3", "Field4"});
    EXPECT_THAT(Import.Run(), ElementsAre("Ada|x|Field4"));
}

TEST_F(Kvi2htmlNames, ThatAreUnknownFailTheRun)
{
    Import.MapTo({"Nmae"});
    EXPECT_EQ(Import.RunAndFail(), "FILE has no column \"Nmae\"");
    EXPECT_EQ(Import.Destination.RecordCount(), 0);
}

TEST_F(Kvi2htmlNames, WithoutAHeaderAreNumbersOnly)
{
    Import.RowFirst = 1;
    Import.MapTo({"Name"});
    EXPECT_EQ(Import.RunAndFail(), "FILE has no column \"Name\"");
    Import.MapTo({"Field1"});
    EXPECT_THAT(Import.Run(), ElementsAre("Id\nNo|-|-", "1|-|-"));
}

TEST_F(Kvi2htmlNames, MapTheFieldsOfTheSameName)
{
    EXPECT_THAT(Import.DetectedMappings(), ElementsAre("A=Field3"));
    Import.RowFirst = 1;
    EXPECT_THAT(Import.DetectedMappings(), ElementsAre("A=Field1", "B=Field2", "C=Field3"));
}

TEST(Kvi2htmlNumbers, CountColumnsWhateverTheHeaderSays)
{
    THtmlRun Import("<table><tr><td>Field2</td><td>B</td></tr><tr><td>1</td><td>2</td></tr></table>",
                    {xhHeaderNames});
    Import.RowFirst = 2;
    Import.MapTo({"Field2", "B"});
    EXPECT_THAT(Import.Run(), ElementsAre("2|2|-"));
}

// Numbers of tables.

TEST(Kvi2htmlTableNumber, ARunTellsHowManyTablesItRead)
{
    THtmlRun Import("<table><tr><td>1<table><tr><td>2</td></tr></table></td></tr></table><table></table>",
                    {xhTagSyntax});
    Import.Run();
    EXPECT_EQ(Import.TablesRead(), 2);
}

TEST(Kvi2htmlTableNumber, CountsTablesInsideOthersToo)
{
    THtmlRun Import("<table><tr><td>1<table><tr><td>2</td></tr><tr><td>3</td></tr></table></td></tr></table>"
                    "<table><tr><td>4</td></tr></table>");
    Import.Extensions = {xhTagSyntax};
    Import.TableNumber = 2;
    EXPECT_THAT(Import.Run(), ElementsAre("2|b|c", "3|b|c"));
    Import.TableNumber = 3;
    Import.SetFields({{.Name = "A"}});
    EXPECT_THAT(Import.Run(), ElementsAre("4"));
}

} // namespace kv
