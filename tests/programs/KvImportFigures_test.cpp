#include "KvShop.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <random>
#include <string>

namespace kv {

namespace {

/// The seed of the environment, else a new one. Tests print it.
unsigned Seed()
{
    const char* const Given = std::getenv("KV_SEED");
    return Given ? static_cast<unsigned>(std::strtoul(Given, nullptr, 10)) : std::random_device()();
}

class TFileMaker
{
public:
    explicit TFileMaker(unsigned Seed) : Random(Seed) {}

    int Below(int Limit) { return std::uniform_int_distribution(0, Limit - 1)(Random); }

    /// A file of orders, some of which cannot be stored, some of which have the same ID.
    std::string Make()
    {
        std::string Text = "ID,CITY,ORDERED,AMOUNT,QTY,PAID,NOTE";
        for (int Line = Below(120); Line > 0; --Line) {
            Text += LineEnd();
            for (int Column = 0; Column < 7; ++Column)
                Text += (Column > 0 ? "," : "") + Value(Column);
        }
        return Text + (Below(2) == 0 ? LineEnd() : "");
    }

private:
    std::string LineEnd() { return Below(4) == 0 ? "\r\n" : "\n"; }

    std::string Value(int Column)
    {
        if (Below(12) == 0)
            return OddValue();
        switch (Column) {
        case 0:  return std::to_string(Below(60));
        case 2:  return "2024-0" + std::to_string(1 + Below(9)) + "-1" + std::to_string(Below(10));
        case 3:  return std::to_string(Below(100000)) + "." + std::to_string(10 + Below(90));
        case 4:  return std::to_string(Below(40000));
        case 5:  return Below(2) == 0 ? "True" : "False";
        default: return "text " + std::to_string(Below(1000));
        }
    }

    std::string OddValue()
    {
        static const std::string Values[] = {"", " ", "\"\"", "\"a\"\"b\"", "\"x,y\"", "\"two\nlines\"", "-1",
                                             "1e5", "2023-02-29", "a very long text that no column takes",
                                             "\xFF\xFE", "\x1A", "99999999999999999999"};
        return Values[static_cast<std::size_t>(Below(std::size(Values)))];
    }

    std::mt19937 Random;
};

struct TModeRow
{
    const char* Name;
    TArguments Arguments;
};

void PrintTo(const TModeRow& Row, std::ostream* Out) { *Out << Row.Name; }

class KvImportFigures : public testing::TestWithParam<TModeRow> {};

TEST_P(KvImportFigures, AddUpAndMatchTheTable)
{
    const auto First = Seed();
    for (unsigned I = 0; I < 8; ++I) {
        SCOPED_TRACE("KV_SEED=" + std::to_string(First + I));
        TFileMaker Maker(First + I);
        const TShop Shop;
        Shop.Ask("INSERT INTO orders (ID, CITY) "
                 "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 2 FROM n WHERE i < 60) "
                 "SELECT i, 'old' FROM n");
        const int Before = static_cast<int>(Shop.Count());
        const auto Run = Shop.Import(Maker.Make(), GetParam().Arguments);
        ASSERT_EQ(Run["result"], "done");
        const int Added = Run["added"], Updated = Run["updated"], Deleted = Run["deleted"];
        const int Refused = Run["refused"], Failed = Run["failed"], NotFound = Run["notFound"];
        EXPECT_EQ(Run["read"], Added + Updated + Deleted + Refused + Failed + NotFound) << Run;
        EXPECT_EQ(Shop.Count(), Before - static_cast<int>(Run["emptied"]) + Added - Deleted) << Run;
        EXPECT_EQ(Run["exitStatus"], Failed > 0 ? 1 : 0);
        EXPECT_EQ(Run["errors"].size(), static_cast<std::size_t>(std::min(Failed, 20)));
    }
}

INSTANTIATE_TEST_SUITE_P(, KvImportFigures, testing::Values(
    TModeRow{"Append", {"--mode", "append"}},
    TModeRow{"Update", {"--mode", "update"}},
    TModeRow{"AppendUpdate", {"--mode", "append-update"}},
    TModeRow{"Delete", {"--mode", "delete"}},
    TModeRow{"Copy", {"--mode", "copy"}},
    TModeRow{"Batches", {"--mode", "append-update", "--batch", "7"}},
    TModeRow{"ByCity", {"--mode", "append-update", "--keys", "CITY"}}),
    [](const auto& Info) { return Info.param.Name; });

} // namespace

} // namespace kv
