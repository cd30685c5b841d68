#include "KvTextTable.h"

#include <gtest/gtest.h>

#include <sstream>

#include "KvTerminalText.h"

namespace kv {

namespace {

std::string Printed(const TTextTable& Table, int Width = 0)
{
    std::ostringstream Out;
    Table.Print(Out, Width);
    return Out.str();
}

TEST(KvTextTable, SetsColumnsByTheirWidthOnTheScreen)
{
    TTextTable Table;
    Table.AddHeading({"city", "n"});
    Table.AddRow({"東京", "5"});
    Table.AddRow({"Łódź"});
    EXPECT_EQ(Printed(Table), "city  n\n----  -\n東京  5\nŁódź\n");
}

TEST(KvTextTable, SetsNumbersAtTheRight)
{
    TTextTable Table;
    Table.AddHeading({"amount", "text"});
    Table.AddRow({"5.00", "5.00"});
    Table.AddRow({"", "x"});
    Table.AddRow({"-1,234.50", "1"});
    EXPECT_EQ(Printed(Table),
              "   amount  text\n---------  ----\n     5.00  5.00\n           x\n-1,234.50  1\n");
}

TEST(KvTextTable, GivesWayInItsWidestColumn)
{
    TTextTable Table;
    Table.AddHeading({"a", "b"});
    Table.AddRow({"short one", std::string(100, 'x')});
    EXPECT_EQ(Printed(Table, 30),
              "a          b\n---------  -------------------\nshort one  xxxxxxxxxxxxxxxxxx…\n");
}

TEST(KvTextTable, CutsLinesWhenEvenThatIsNotEnough)
{
    TTextTable Table;
    Table.AddRow(std::vector<std::string>(50, "some text"));
    std::istringstream Lines(Printed(Table, 80));
    for (std::string Line; std::getline(Lines, Line);)
        EXPECT_LE(DisplayWidth(Line), 80);
}

} // namespace

} // namespace kv
