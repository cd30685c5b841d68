#include "KvHtmlTables.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <vector>

using testing::ElementsAre;
using testing::IsEmpty;

namespace kv {

namespace {

/// Each table as "rows x columns", or as the reason that it has none.
std::vector<std::string> TablesOf(const std::string& Page, TKvIHTMLExtensions Rules = {xhTagSyntax})
{
    std::vector<std::string> Texts;
    for (const auto& [Rows, Columns, Error] : FindHtmlTables(Page, Rules, {}))
        Texts.push_back(Error.empty() ? std::to_string(Rows) + "x" + std::to_string(Columns) : Error);
    return Texts;
}

std::string Repeated(int Count, const std::string& Text)
{
    std::string Result;
    for (int I = 0; I < Count; ++I)
        Result += Text;
    return Result;
}

} // namespace

TEST(KvHtmlTables, APageWithoutTablesHasNone)
{
    EXPECT_THAT(TablesOf("<p>text</p>"), IsEmpty());
    EXPECT_THAT(TablesOf(""), IsEmpty());
}

TEST(KvHtmlTables, CountsTheRowsAndTheCellsOfTheLongestOne)
{
    EXPECT_THAT(TablesOf("<table><tr><td>1<tr><td>2<td>3</table><table></table>"), ElementsAre("2x2", "0x0"));
}

TEST(KvHtmlTables, CountsATableInsideAnotherOnItsOwn)
{
    const std::string Page = "<table><tr><td>1<table><tr><td>2</td><td>3</td></tr></table></td></tr></table>";
    EXPECT_THAT(TablesOf(Page), ElementsAre("1x1", "1x2"));
}

TEST(KvHtmlTables, CountsByTheRulesThatARunReadsBy)
{
    const std::string Page = "<table><tr><th>1</th><td colspan=3>2</td></tr></table>";
    EXPECT_THAT(TablesOf(Page, {}), ElementsAre("1x1"));
    EXPECT_THAT(TablesOf(Page, {xhTagSyntax, xhHeaderCells, xhSpans}), ElementsAre("1x4"));
}

TEST(KvHtmlTables, ATableThatCannotBeReadSaysWhyAndTheOthersAreCounted)
{
    const std::string Wide = "<table><tr>" + Repeated(1024, "<td>") + "<td rowspan=2></table>";
    const auto Reason = "A cell in column 1025 covers several rows; column 1024 is the last that may";
    const auto Tables = TablesOf(Wide + "<table><tr><td></table>", {xhTagSyntax, xhSpans});
    EXPECT_THAT(Tables, ElementsAre(Reason, "1x1"));
}

TEST(KvHtmlTables, TablesDeepInsideOthersOrWithoutAnEndTakeNoMoreThanSomePasses)
{
    const auto Started = std::chrono::steady_clock::now();
    for (const std::string Each : {"<table><tr><td>", "<table><tr><td></table>"}) {
        const auto Tables = FindHtmlTables(Repeated(20000, Each), {}, {});
        EXPECT_EQ(Tables.size(), 20000U);
        EXPECT_EQ(Tables.front().Rows, 1);
        EXPECT_EQ(Tables.back().Rows, TKvHtmlTable::NotCounted);
    }
    EXPECT_LT(std::chrono::steady_clock::now() - Started, std::chrono::seconds(20));
}

TEST(KvHtmlTables, ACancelledCountEndsTheList)
{
    int Asked = 0;
    const auto Page = Repeated(40000, "<table><tr><td></table>");
    EXPECT_LT(FindHtmlTables(Page, {xhTagSyntax}, [&] { return ++Asked < 2; }).size(), 40000U);
    EXPECT_EQ(Asked, 2);
}

} // namespace kv
