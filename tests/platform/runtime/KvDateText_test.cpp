#include "KvDateText.h"

#include <gtest/gtest.h>

#include <chrono>
#include <random>
#include <string>

#include "KvCalendar.h"
#include "KvException.h"
#include "KvIsoDate.h"
#include "KvSettingsGuard.h"

namespace kv {
namespace {

class KvDateText : public testing::Test
{
    TKvSettingsGuard Guard;
};

/// The ISO form of what was read, "-" for nothing.
std::string Iso(std::optional<TDateTime> Value) { return Value ? DateTimeToIso(*Value) : "-"; }

/// The settings with that short date format and its separator.
TFormatSettings SettingsFor(std::string ShortDateFormat, char DateSeparator)
{
    TFormatSettings Settings;
    Settings.ShortDateFormat = std::move(ShortDateFormat);
    Settings.DateSeparator = DateSeparator;
    return Settings;
}

std::string TwoDigits(int Year) { return std::to_string(100 + Year % 100).substr(1); }

int CurrentYear()
{
    using namespace std::chrono;
    return static_cast<int>(year_month_day(floor<days>(system_clock::now())).year());
}

TEST_F(KvDateText, EveryMillisecondReadsBack)
{
    std::mt19937 Random(1);
    for (int Round = 0; Round < 20000; ++Round) {
        const int Day = std::uniform_int_distribution(-693593, 2958465)(Random);
        const int Ms = std::uniform_int_distribution(0, 86399999)(Random);
        const double Fraction = Ms / 86400000.0;
        const TDateTime Value{Day < 0 ? Day - Fraction : Day + Fraction};
        ASSERT_EQ(EncodeDateTime(DecodeDateTime(Value)), Value);
        ASSERT_EQ(TryIsoToDateTime(DateTimeToIso(Value)), Value);
        ASSERT_EQ(TryTextToDateTime(DateTimeToText(Value)), Value) << DateTimeToText(Value);
    }
}

TEST_F(KvDateText, ReadsDatesInTheOrderOfTheShortDateFormat)
{
    struct TRow
    {
        const char* Format;
        char Separator;
        const char* Text;
        const char* Date;
    };
    const TRow Rows[] = {
        {"M/d/yyyy", '/', "2/3/2024", "2024-02-03"},
        {"mm/dd/yy", '/', "02/03/2024", "2024-02-03"},
        {"d.M.yyyy", '.', "2.3.2024", "2024-03-02"},
        {"DD-MM-YYYY", '-', "02-03-2024", "2024-03-02"},
        {"yyyy-MM-dd", '-', "2024-02-03", "2024-02-03"},
        {"y M d", ' ', "2024 2 3", "2024-02-03"},
        {"yyyy/dd/MM", '/', "2024/2/3", "2024-03-02"},
        {"dd/yyyy/MM", '/', "2/2024/3", "2024-03-02"},
        {"MM/yyyy/dd", '/', "2/2024/3", "2024-02-03"},
        {"", '/', "2/3/2024", "2024-02-03"},
        {"d/M/yyyy.", '/', "2/3/2024", "2024-03-02"},
    };
    for (const auto& Row : Rows) {
        FormatSettings() = SettingsFor(Row.Format, Row.Separator);
        EXPECT_EQ(Iso(TryTextToDate(Row.Text)), Row.Date + std::string(" 00:00:00")) << Row.Format;
    }
}

TEST_F(KvDateText, DurationsCountHoursPastADay)
{
    const std::pair<double, const char*> Rows[] = {
        {0.5, "12:00:00"}, {0, "00:00:00"}, {1.5, "36:00:00"}, {-1.0 / 24, "-01:00:00"}, {100, "2400:00:00"},
        {0.25 / 86400, "00:00:00.250"}, {-0.1 / 86400000, "00:00:00"},
    };
    for (const auto& [Days, Text] : Rows)
        EXPECT_EQ(DurationToText({Days}), Text);
}

TEST_F(KvDateText, RefusesWhatIsNoDate)
{
    for (const auto* const Text :
         {"",           "1",         "1/2",       "1/2/",     "/1/2",      "1/2/3/4",   "13/1/2024",
          "2/30/2024",  "2/29/2023", "0/1/2024",  "1/0/2024", "1/1/0000",  "1/1/10000", "001/1/2024",
          "1/001/2024", "1.1.2024",  "1/1/2024x", "a/b/c",    "1 /1/2024", "-1/1/2024", "1/1/2024 10:00:00"})
        EXPECT_EQ(TryTextToDate(Text), std::nullopt) << Text;
}

TEST_F(KvDateText, TwoDigitYearsFallIntoTheCenturyWindow)
{
    const int First = CurrentYear() - 50;
    for (int Year = First; Year < First + 100; ++Year) {
        const auto Value = TryTextToDate("7/1/" + TwoDigits(Year));
        ASSERT_TRUE(Value);
        EXPECT_EQ(DecodeDateTime(*Value).Year, Year);
    }
    FormatSettings().TwoDigitYearCenturyWindow = 0;
    EXPECT_EQ(DecodeDateTime(*TryTextToDate("7/1/" + TwoDigits(CurrentYear()))).Year, CurrentYear());
    EXPECT_EQ(DecodeDateTime(*TryTextToDate("7/1/" + TwoDigits(CurrentYear() - 1))).Year, CurrentYear() + 99);
}

TEST_F(KvDateText, OtherYearsStandAsWritten)
{
    EXPECT_EQ(Iso(TryTextToDate("7/1/123")), "0123-07-01 00:00:00");
    EXPECT_EQ(Iso(TryTextToDate("7/1/0024")), "0024-07-01 00:00:00");
}

TEST_F(KvDateText, ReadsTimes)
{
    const std::pair<const char*, const char*> Rows[] = {
        {"0:00", "00:00:00"},
        {"9:05", "09:05:00"},
        {"23:59:59", "23:59:59"},
        {"9:5:7", "09:05:07"},
        {" 10:00:00 ", "10:00:00"},
        {"10:00:00.5", "10:00:00.500"},
        {"10:00:00.05", "10:00:00.050"},
        {"10:00:00.123", "10:00:00.123"},
        {"10:00:00.1236", "10:00:00.124"},
        {"10:00:59.9999", "10:01:00"},
        {"10:00:00.123456789", "10:00:00.123"},
        {"12:00 AM", "00:00:00"},
        {"12:30 PM", "12:30:00"},
        {"1:05 pm", "13:05:00"},
        {"11:59:59PM", "23:59:59"},
        {"1:00:00.250 Am", "01:00:00.250"},
    };
    for (const auto& [Text, Time] : Rows) {
        ASSERT_TRUE(TryTextToTime(Text)) << Text;
        EXPECT_EQ(TimeToIso(*TryTextToTime(Text)), Time) << Text;
    }
}

TEST_F(KvDateText, RefusesWhatIsNoTime)
{
    for (const auto* const Text :
         {"",         "1",        "10",        "10:",     ":10",       "24:00",  "10:60",
          "10:00:60", "10:00:",   "10:00:00.", "10:00.5", "100:00",    "10:000", "10:00:000",
          "0:30 AM",  "13:00 PM", "10:00 XM",  "10:00 A", "10:00 AMx", "10.00",  "10:00:00.1234567890",
          "-1:00"})
        EXPECT_EQ(TryTextToTime(Text), std::nullopt) << Text;
}

TEST_F(KvDateText, ReadsDatesWithTimes)
{
    const std::pair<const char*, const char*> Rows[] = {
        {"2/29/2024", "2024-02-29 00:00:00"},
        {"2/29/2024 13:05", "2024-02-29 13:05:00"},
        {"2/29/2024   1:05 PM", "2024-02-29 13:05:00"},
        {"2/29/2024T13:05:06.789", "2024-02-29 13:05:06.789"},
        {"13:05", "1899-12-30 13:05:00"},
        {"2/29/2024 23:59:59.9999", "2024-03-01 00:00:00"},
        {"12/29/1899 06:00", "1899-12-29 06:00:00"},
        {"12/29/1899 23:59:59.9999", "1899-12-30 00:00:00"},
        {"2/29/2024 ", "2024-02-29 00:00:00"},
        {"2/29/2024T", "-"},
        {"2/29/2024 x", "-"},
        {"2/29/2024x13:05", "-"},
        {"2/29/2024 T13:05", "-"},
        {"2/30/2024 13:05", "-"},
        {"13:05 2/29/2024", "-"},
        {"12/31/9999 23:59:59.9999", "-"},
        {"45351", "-"},
        {"", "-"},
    };
    for (const auto& [Text, Value] : Rows)
        EXPECT_EQ(Iso(TryTextToDateTime(Text)), Value) << Text;
    EXPECT_EQ(TextToDateTime("2/29/2024"), TDateTime{45351});
    EXPECT_EQ(MessageOf<EConvertError>([] { TextToDateTime("2/30/2024"); }),
              "'2/30/2024' is not a valid date and time");
}

TEST_F(KvDateText, TimesFollowTheTimeSeparator)
{
    FormatSettings().TimeSeparator = '.';
    EXPECT_EQ(Iso(TryTextToDateTime("2/29/2024 13.05.06.500")), "2024-02-29 13:05:06.500");
    EXPECT_EQ(TryTextToTime("13:05"), std::nullopt);
    EXPECT_EQ(DateTimeToText({45351.5}), "2/29/2024 12.00.00");
    EXPECT_EQ(DateTimeToIso({45351.5}), "2024-02-29 12:00:00");
}

TEST_F(KvDateText, WritesTheShortDateFormat)
{
    struct TRow
    {
        const char* Format;
        char Separator;
        double Days;
        const char* Text;
    };
    const TRow Rows[] = {
        {"M/d/yyyy", '/', 45351, "2/29/2024"},
        {"M/d/yyyy", '-', 45351, "2-29-2024"},
        {"MM/dd/yy", '/', 36527, "01/02/00"},
        {"dd.MM.yyyy", '.', 36527, "02.01.2000"},
        {"d.m.y", '.', 36527, "2.1.00"},
        {"yyyy-MM-dd", '-', -693593, "0001-01-01"},
        {"dd.MM.yyyy", '.', 36527.75, "02.01.2000 18:00:00"},
        {"dd.MM.yyyy", '.', 36527 + 0.25 / 86400, "02.01.2000 00:00:00.250"},
    };
    for (const auto& Row : Rows) {
        FormatSettings() = SettingsFor(Row.Format, Row.Separator);
        EXPECT_EQ(DateTimeToText({Row.Days}), Row.Text) << Row.Format;
    }
}

} // namespace
} // namespace kv
