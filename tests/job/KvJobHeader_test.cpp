#include "KvJobHeader.h"

#include <gtest/gtest.h>

#include "KviSource.h"

namespace kv {

namespace {

/// Rows of texts; a "#" in front makes a number of one.
TJobSample Sample(const std::vector<std::vector<std::string>>& Rows)
{
    TKvISourceView View;
    for (const auto& Row : Rows) {
        TKvISourceRow Added;
        for (const auto& Text : Row)
            if (Text.starts_with('#'))
                Added.Values.push_back({.Value = TVariant(std::stod(Text.substr(1)))});
            else
                Added.Values.push_back({.Value = TVariant(Text)});
        View.Rows.push_back(std::move(Added));
    }
    return SampleOf(View);
}

int Found(const std::vector<std::vector<std::string>>& Rows, const std::vector<std::string>& Wanted = {})
{
    return FindHeader(Sample(Rows), Wanted);
}

TEST(KvJobHeader, IsARowOfNamesAboveValues)
{
    EXPECT_EQ(Found({{"ID", "CITY"}, {"1", "Rom"}, {"2", "Oslo"}}), 1);
    EXPECT_EQ(Found({{"CITY", "LAND"}, {"Rom", "Italy"}}), 1);
    EXPECT_EQ(Found({{"CITY", "", "LAND"}, {"Rom", "x", "Italy"}}), 1) << "a column may have no name";
    EXPECT_EQ(Found({{"CITY"}}), 1);
}

TEST(KvJobHeader, HoldsNoFigures)
{
    for (const std::string Figure : {"1", "-1,5", "2024-01-05", "12:30", "1.234,50", "#7"})
        EXPECT_EQ(Found({{"Rom", Figure}, {"Oslo", "x"}}), 0) << Figure;
    EXPECT_EQ(Found({{"Q1", "No. 5"}, {"1", "2"}}), 1) << "a figure in a name is none";
}

TEST(KvJobHeader, NamesNothingThatIsAValueBelow)
{
    EXPECT_EQ(Found({{"Rom", "Italy"}, {"Turin", "Italy"}}), 0);
    EXPECT_EQ(Found({{"CITY", "LAND"}, {"Rom", "Italy"}, {"CITY", "LAND"}}), 1) << "it may stand there twice";
    EXPECT_EQ(Found({{"", "LAND"}, {"", "Italy"}}), 1) << "blank values are none";
}

TEST(KvJobHeader, StandsBelowTheTitleOfAReport)
{
    EXPECT_EQ(Found({{"Orders of May"}, {""}, {"ID", "CITY"}, {"1", "Rom"}}), 3);
    EXPECT_EQ(Found({{"Orders", "", ""}, {"ID", "CITY", "NOTE"}, {"1", "Rom", ""}}), 2);
    EXPECT_EQ(Found({{"Report", "May", "", "", ""}, {"A", "B", "C", "D", "E"}, {"1", "2", "3", "4", "5"}}),
              2);
    EXPECT_EQ(Found({{"A", "B"}, {"C", "D", "E", "F"}, {"1", "2", "3", "4"}}), 1) << "half is enough";
    EXPECT_EQ(Found({{"Orders of May"}, {"1", "Rom"}, {"2", "Oslo"}}), 0) << "a title is no header";
    EXPECT_EQ(Found({{"ID", "", ""}, {"1", "Rom", "x"}, {"2", "Oslo", "y"}}), 1) << "as wide as the rows";
}

TEST(KvJobHeader, IsTheRowThatHasAWantedName)
{
    EXPECT_EQ(Found({{"Name", "2019"}, {"Rom", "5"}}), 0);
    EXPECT_EQ(Found({{"Name", "2019"}, {"Rom", "5"}}, {"2019"}), 1);
    EXPECT_EQ(Found({{"a", "b"}, {"c", " \"Ort\""}, {"1", "2"}}, {"ort"}), 2);
    EXPECT_EQ(Found({{"ID", "CITY"}, {"1", "Rom"}}, {"Ort"}), 1) << "a name that is nowhere tells nothing";
}

TEST(KvJobHeader, OfNothingIsNone)
{
    EXPECT_EQ(Found({}), 0);
    EXPECT_EQ(Found({{""}, {"", ""}}), 0);
    EXPECT_FALSE(MayBeHeader({}, 1));
    EXPECT_FALSE(MayBeHeader(Sample({{"A"}}), 0));
}

TEST(KvJobHeader, RowsOfOneWidthAreThoseOfTheMostFrequentOne)
{
    EXPECT_EQ(RowsOfOneWidth(Sample({{"a"}, {"a", "b"}, {"a", "b"}, {"a", "b", "c"}})), 2u);
    EXPECT_EQ(RowsOfOneWidth(Sample({{"a"}, {"b"}})), 0u) << "nothing is delimited";
}

TEST(KvJobHeader, ATitleIsBareOfBlanksAndQuotes)
{
    EXPECT_EQ(BareTitle(" City "), "City");
    EXPECT_EQ(BareTitle(" \"City \" "), "City");
    EXPECT_EQ(BareTitle("'City'"), "City");
    EXPECT_EQ(BareTitle("\""), "\"");
    EXPECT_EQ(BareTitle("City\""), "City\"");
    EXPECT_EQ(BareTitle("\"City'"), "\"City'");
}

} // namespace

} // namespace kv
