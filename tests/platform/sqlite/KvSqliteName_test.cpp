#include "KvSqliteName.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string_view>

namespace kv {

namespace {

struct TNameRow
{
    std::string_view Text, Schema, Name;
};

std::ostream& operator<<(std::ostream& Out, const TNameRow& Row)
{
    return Out << Row.Text;
}

class KvSqliteNameReads : public testing::TestWithParam<TNameRow> {};

TEST_P(KvSqliteNameReads, SchemaAndTable)
{
    const auto Read = ParseTableName(GetParam().Text);
    EXPECT_EQ(Read.Schema, GetParam().Schema);
    EXPECT_EQ(Read.Name, GetParam().Name);
}

INSTANTIATE_TEST_SUITE_P(, KvSqliteNameReads, testing::Values(
    TNameRow{"orders", "", "orders"},
    TNameRow{"archive.orders", "archive", "orders"},
    TNameRow{"\"order lines\"", "", "order lines"},
    TNameRow{"\"a.b\".\"c.d\"", "a.b", "c.d"},
    TNameRow{"\"say \"\"hi\"\"\"", "", "say \"hi\""},
    TNameRow{"[my table]", "", "my table"},
    TNameRow{"main.[my.table]", "main", "my.table"},
    TNameRow{"`a``b`", "", "a`b"},
    TNameRow{"'quoted'.x", "quoted", "x"},
    TNameRow{"\"unfinished", "", "unfinished"},
    TNameRow{"", "", ""}));

TEST(KvSqliteName, QuotesDoubleInsideQuotes)
{
    EXPECT_EQ(QuoteName("orders"), "\"orders\"");
    EXPECT_EQ(QuoteName("a\"b.c d"), "\"a\"\"b.c d\"");
}

} // namespace

} // namespace kv
