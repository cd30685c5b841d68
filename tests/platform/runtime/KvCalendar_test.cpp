#include "KvCalendar.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <optional>
#include <utility>

#include "KvException.h"
#include "KvIsoDate.h"
#include "KvSettingsGuard.h"

namespace kv {
namespace {

TEST(KvCalendar, CountsDaysFromTheEndOf1899)
{
    const std::pair<TCalendar, double> Rows[] = {
        {{1899, 12, 30}, 0},
        {{1899, 12, 31}, 1},
        {{1899, 12, 29}, -1},
        {{1900, 2, 28}, 60},
        {{1900, 3, 1}, 61},
        {{1970, 1, 1}, 25569},
        {{2000, 2, 29}, 36585},
        {{2024, 2, 29}, 45351},
        {{1, 1, 1}, -693593},
        {{9999, 12, 31}, 2958465},
        {{1582, 10, 15}, -115858},
        {{1582, 10, 14}, -115859},
        {{1899, 12, 30, 6}, 0.25},
        {{1899, 12, 29, 6}, -1.25},
        {{2024, 2, 29, 12}, 45351.5},
        {{9999, 12, 31, 23, 59, 59, 999}, 2958465 + 86399999.0 / 86400000},
    };
    for (const auto& [Point, Days] : Rows) {
        EXPECT_EQ(EncodeDateTime(Point), TDateTime{Days}) << Days;
        EXPECT_EQ(DecodeDateTime({Days}), Point) << DateTimeToIso({Days});
    }
}

TEST(KvCalendar, EncodesNothingThatIsNoPoint)
{
    const TCalendar Rows[] = {
        {0, 1, 1},           {10000, 1, 1},       {2024, 0, 1},        {2024, 13, 1},          {2024, 257, 1},
        {2024, 1, 0},        {2024, 1, 32},       {2023, 2, 29},       {1900, 2, 29},          {2024, 4, 31},
        {2024, 1, 257},      {-1, 1, 1},          {2024, 1, 1, 24},    {2024, 1, 1, -1},
        {2024, 1, 1, 0, 60},
        {2024, 1, 1, 0, -1}, {2024, 1, 1, 0, 0, 60}, {2024, 1, 1, 0, 0, -1}, {2024, 1, 1, 0, 0, 0, 1000},
        {2024, 1, 1, 0, 0, 0, -1},
    };
    for (const auto& Point : Rows)
        EXPECT_EQ(EncodeDateTime(Point), std::nullopt)
            << Point.Year << '-' << Point.Month << '-' << Point.Day;
}

TEST(KvCalendar, DecodingRoundsToTheNearestMillisecond)
{
    const double Ms = 1.0 / 86400000;
    EXPECT_EQ(DateTimeToIso({45351 + 0.4 * Ms}), "2024-02-29 00:00:00");
    EXPECT_EQ(DateTimeToIso({45351 + 0.6 * Ms}), "2024-02-29 00:00:00.001");
    EXPECT_EQ(DateTimeToIso({45352 - 0.4 * Ms}), "2024-03-01 00:00:00");
    EXPECT_EQ(DateTimeToIso({45352 - 0.6 * Ms}), "2024-02-29 23:59:59.999");
    EXPECT_EQ(DateTimeToIso({-1 - (1 - 0.4 * Ms)}), "1899-12-30 00:00:00");
    EXPECT_EQ(DateTimeToIso({-0.25}), "1899-12-30 06:00:00");
}

TEST(KvCalendar, RefusesValuesOutsideTheCalendar)
{
    for (const double Days :
         {-693594.0, 2958466.0, 1e300, -1e300, std::numeric_limits<double>::infinity(), std::nan("")})
        EXPECT_THROW(DecodeDateTime({Days}), EConvertError) << Days;
    EXPECT_EQ(MessageOf<EConvertError>([] { DateTimeToIso({2958466}); }),
              "'2958466' is not a valid date and time");
    EXPECT_THROW(DecodeDateTime({std::nextafter(2958466.0, 0)}), EConvertError)
        << "rounds up into the year 10000";
    EXPECT_EQ(DateToIso({std::nextafter(-693594.0, 0)}), "0001-01-02")
        << "the last instant of the first day rounds up";
}

} // namespace
} // namespace kv
