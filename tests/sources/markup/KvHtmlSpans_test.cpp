#include "KvHtmlSpans.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "KvException.h"

using testing::ElementsAre;

namespace kv {

namespace {

/// Places rows of cells that are given by their tags; a cell is called by the order of its tag: "a", "b", ...
class TPlacedRows
{
public:
    std::string Add(std::vector<std::string_view> Tags)
    {
        std::vector<TKvHtmlCell> Cells;
        for (const auto Tag : Tags)
            Cells.push_back({.Tag = Tag, .Content = Names.substr(Next++, 1), .HasTags = false});
        Spans.AddRow(Cells);
        std::string Row;
        for (std::size_t Column = 0; Column < Spans.Columns(); ++Column)
            Row += Spans.CellAt(Column) ? Spans.CellAt(Column)->Content : ".";
        EXPECT_EQ(Spans.CellAt(Spans.Columns()), nullptr);
        return Row;
    }

    TKvHtmlSpans Spans;

private:
    static constexpr std::string_view Names = "abcdefghijklmnopqrstuvwxyz";
    std::size_t Next = 0;
};

std::string OneRow(std::vector<std::string_view> Tags)
{
    return TPlacedRows().Add(std::move(Tags));
}

} // namespace

TEST(KvHtmlSpans, CellsWithoutSpansStandAtTheirNumber)
{
    EXPECT_EQ(OneRow({"<td>", "<td>", "<td>"}), "abc");
    EXPECT_EQ(OneRow({}), "");
}

TEST(KvHtmlSpans, ACellFillsTheColumnsThatItSpans)
{
    EXPECT_EQ(OneRow({"<td>", "<td colspan=3>", "<td>"}), "abbbc");
    EXPECT_EQ(OneRow({"<TD COLSPAN=\"2\">", "<td class=x colspan = '2' id=y>"}), "aabb");
}

TEST(KvHtmlSpans, AWrongSpanIsOne)
{
    for (const std::string_view Tag : {"<td colspan=>", "<td colspan=\"\">", "<td colspan=\"foo\">",
                                       "<td colspan=0>", "<td colspan=-2>", "<td colspan>",
                                       "<td datacolspan=3>"})
        EXPECT_EQ(OneRow({Tag, "<td>"}), "ab") << Tag;
    EXPECT_EQ(OneRow({"<td colspan='3\"'>", "<td>"}), "aaab"); // as far as it is a number
    EXPECT_EQ(OneRow({"<td colspan=' +3.5'>", "<td>"}), "aaab");
}

TEST(KvHtmlSpans, AttributesAreCutAsBrowsersDo)
{
    for (const std::string_view Tag :
         {"<td class=\"a\"colspan=\"2\">", "<td/colspan=2>", "<td x colspan=2>", "<td colspan=2/>",
          "<td title='>' ColSpan=2 colspan=3>", "<td =x colspan=2>"})
        EXPECT_EQ(OneRow({Tag, "<td>"}), "aab") << Tag;
    for (const std::string_view Tag :
         {"<td title=\"see colspan=3 here\">", "<td x=colspan=3>", "<td acolspan=3>", "<td colspan x=3>"})
        EXPECT_EQ(OneRow({Tag, "<td>"}), "ab") << Tag;
}

TEST(KvHtmlSpans, ACellReachesIntoTheRowsThatItSpans)
{
    TPlacedRows Rows;
    EXPECT_EQ(Rows.Add({"<td rowspan=2>", "<td>"}), "ab");
    EXPECT_EQ(Rows.Add({"<td>"}), "ac");
    EXPECT_EQ(Rows.Add({"<td>"}), "d");
}

TEST(KvHtmlSpans, SpansOfColumnsAndRowsPushOthersToTheRight)
{
    TPlacedRows Rows;
    EXPECT_EQ(Rows.Add({"<td>", "<td rowspan=3 colspan=2>", "<td rowspan=2>"}), "abbc");
    EXPECT_EQ(Rows.Add({"<td>", "<td>"}), "dbbce");
    EXPECT_EQ(Rows.Add({"<td>", "<td>"}), "fbbg");
}

TEST(KvHtmlSpans, OfTwoCellsInOneColumnThatCountsWhichReachesFurtherDown)
{
    TPlacedRows Rows;
    EXPECT_EQ(Rows.Add({"<td>", "<td rowspan=4>", "<td rowspan=2>"}), "abc");
    EXPECT_EQ(Rows.Add({"<td colspan=4 rowspan=2>", "<td>"}), "dbdde") << "else the later one";
    EXPECT_EQ(Rows.Add({"<td>"}), "dbddf");
    EXPECT_EQ(Rows.Add({"<td>"}), "gb");
}

TEST(KvHtmlSpans, ARowWithoutCellsHasThoseThatReachIntoIt)
{
    TPlacedRows Rows;
    EXPECT_EQ(Rows.Add({"<td>", "<td rowspan=2>"}), "ab");
    EXPECT_EQ(Rows.Add({}), ".b");
}

TEST(KvHtmlSpans, ZeroRowsMeanAllToTheEndOfTheTable)
{
    TPlacedRows Rows;
    EXPECT_EQ(Rows.Add({"<td rowspan=0>", "<td>"}), "ab");
    EXPECT_EQ(Rows.Add({"<td>"}), "ac");
    EXPECT_EQ(Rows.Add({"<td>"}), "ad");
    Rows.Spans.Clear();
    EXPECT_EQ(Rows.Add({"<td>"}), "e");
}

TEST(KvHtmlSpans, ASpanEndsAtTheLimitOfHtml)
{
    TKvHtmlSpans Spans;
    const std::vector<TKvHtmlCell> Wide(1, {.Tag = "<td colspan=99999999999999999999>", .Content = "a"});
    Spans.AddRow(Wide);
    EXPECT_EQ(Spans.Columns(), 1000u);
}

TEST(KvHtmlSpans, NoSpanReachesPastTheLastColumn)
{
    TKvHtmlSpans Spans;
    const std::vector<TKvHtmlCell> Wide(20, {.Tag = "<td colspan=1000>", .Content = "a"});
    Spans.AddRow(Wide);
    EXPECT_EQ(Spans.Columns(), 4096u + 15);         // the cells themselves always do
}

TEST(KvHtmlSpans, ACellFarToTheRightMayNotSpanRows)
{
    TKvHtmlSpans Spans;
    std::vector<TKvHtmlCell> Cells(1025, {.Tag = "<td>", .Content = "a"});
    Cells.back().Tag = "<td rowspan=2>";
    try {
        Spans.AddRow(Cells);
        FAIL() << "accepted";
    }
    catch (const Exception& Error) {
        EXPECT_EQ(Error.Message,
                  "A cell in column 1025 covers several rows; column 1024 is the last that may");
    }
}

} // namespace kv
