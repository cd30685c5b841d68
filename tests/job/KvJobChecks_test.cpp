#include "KvJobChecks.h"

#include "KvFormatSettings.h"
#include "KvJobTestSource.h"

namespace kv {

namespace {

/// ID and AMOUNT, which loses its thousand separators.
struct TAmounts : TMemoryDataSet
{
    TAmounts()
    {
        SetFieldDefs(
            {{.Name = "ID", .DataType = ftString, .Size = 20}, {.Name = "AMOUNT", .DataType = ftBCD}});
        Open();
    }
};

TEST(KvJobChecks, AcceptThousandsAndWhatHasNone)
{
    for (const auto* const Number :
         {"", "5", "1234567.25", "1,234", "1,234,567.5", "-12,345.00", " +123,456 ", ".5", "abc", "1e5"})
        EXPECT_TRUE(IsGroupedInThousands(Number, ',', '.')) << Number;
}

TEST(KvJobChecks, RefuseWhatMayBeAFraction)
{
    for (const auto* const Number : {"1,5", "12,34", "1234,567", "1,2345", "1,23,456", "1,234,5", ",5",
                                     "0,500", "-0,125", "1.5,000", "1,", "12,345,67.8"})
        EXPECT_FALSE(IsGroupedInThousands(Number, ',', '.')) << Number;
}

TEST(KvJobChecks, GoByTheSeparatorsGiven)
{
    EXPECT_TRUE(IsGroupedInThousands("1.234,5", '.', ','));
    EXPECT_FALSE(IsGroupedInThousands("1,234.5", '.', ','));
}

TEST(KvJobChecks, LookAtNumbersThatAreImported)
{
    TAmounts Table;
    TJobTestSource File("amounts.csv", "ID;AMOUNT;OTHER\n1,5;1,000;1,5\n2,5;1,5;2\n");
    auto& Source = File.Look();
    const auto Plan = MakePlan(Source, Table, {});
    const auto Found = RefusalOf([&] { CheckThousands(Source, Plan, Table); });
    EXPECT_EQ(Found.Kind, jfNotThousands);
    EXPECT_EQ(Found.Place, "line 3") << "texts and columns that are left out keep their commas";
    EXPECT_EQ(Found.Value, "1,5");
    EXPECT_EQ(Found.Character, ',');
    Source.Component().DataFormats.DecimalSeparator = ',';
    Source.Component().DataFormats.ThousandSeparator = '.';
    EXPECT_NO_THROW(CheckThousands(Source, Plan, Table));
}

TEST(KvJobChecks, KnowAHeaderAmongTheRows)
{
    const TAmounts Table;
    TJobTestSource File("amounts.csv", "ID,AMOUNT\n1,5\n");
    File.Settings.RowFirst = 1;
    const auto Found = CheckHeader(File.Look({.FindTitles = false}), Table);
    File.Settings.RowFirst.reset();
    ASSERT_EQ(Found.size(), 1);
    EXPECT_EQ(Found[0].Kind, jfLooksLikeHeader);
    EXPECT_EQ(Found[0].Number, 1);
    EXPECT_TRUE(CheckHeader(File.Look(), Table).empty()) << "a header above the rows is no row";
}

struct KvJobChecksOfDates : testing::Test
{
    KvJobChecksOfDates()
    {
        UseFormats({});
        Table.SetFieldDefs(
            {{.Name = "ID", .DataType = ftString, .Size = 20}, {.Name = "DAY", .DataType = ftDate}});
        Table.Open();
    }
    ~KvJobChecksOfDates() override { FormatSettings() = {}; }

    std::vector<TJobFinding> Check(std::string_view Csv)
    {
        TJobTestSource File("days.csv", Csv);
        auto& Source = File.Look();
        return CheckDates(Source, MakePlan(Source, Table, {}), Table);
    }

    TMemoryDataSet Table;
};

TEST_F(KvJobChecksOfDates, ProposeTheOrderInWhichAllOfAColumnAreDates)
{
    const auto Found = Check("ID,DAY\n03/14/2024,03/04/2024\n,\n1,03/14/2024\n");
    ASSERT_EQ(Found.size(), 1);
    EXPECT_EQ(Found[0].Kind, jfOtherDates);
    EXPECT_EQ(Found[0].Value, "03/04/2024");
    EXPECT_EQ(Found[0].Place, "line 2");
    EXPECT_EQ(Found[0].Was, "mdy");
    EXPECT_EQ(Found[0].Character, '/');
}

TEST_F(KvJobChecksOfDates, SayNothingOfDatesThatAreRead)
{
    EXPECT_TRUE(Check("ID,DAY\n1,2024-03-14\n").empty());
}

TEST_F(KvJobChecksOfDates, ProposeWhatFitsMostAndMoreThanNow)
{
    const auto Found = Check("ID,DAY\n1,03/14/2024\n2,soon\n3,03/15/2024\n");
    ASSERT_EQ(Found.size(), 1);
    EXPECT_EQ(Found[0].Was, "mdy");
    EXPECT_EQ(Found[0].Count, 2);
    EXPECT_EQ(Found[0].Limit, 3);
    EXPECT_TRUE(Check("ID,DAY\n1,03/14/2024\n2,soon\n").empty()) << "half of them are not most";
    EXPECT_TRUE(Check("ID,DAY\n1,2024-03-14\n2,03/14/2024\n3,2024-03-15\n").empty());
}

} // namespace

} // namespace kv
