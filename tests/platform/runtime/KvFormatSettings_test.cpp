#include "KvFormatSettings.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <optional>
#include <string>

namespace kv {
namespace {

/// An environment variable with another value for the length of a test.
class TVariableGuard
{
public:
    TVariableGuard(const char* VariableName, const char* Value) : Name(VariableName)
    {
        if (const char* const Old = std::getenv(Name))
            Before = Old;
        setenv(Name, Value, 1);
    }
    TVariableGuard(const TVariableGuard&) = delete;
    TVariableGuard& operator=(const TVariableGuard&) = delete;
    ~TVariableGuard() { Before ? setenv(Name, Before->c_str(), 1) : unsetenv(Name); }

private:
    const char* Name;
    std::optional<std::string> Before;
};

TEST(KvFormatSettings, DefaultsHoldWithoutALocale)
{
    for (const auto* const Locale : {"C", "POSIX", "C.UTF-8", "no such locale"}) {
        const TVariableGuard Guard("LC_ALL", Locale);
        const auto Settings = LocaleFormatSettings();
        EXPECT_EQ(Settings.DecimalSeparator, '.') << Locale;
        EXPECT_EQ(Settings.ThousandSeparator, ',') << Locale;
        EXPECT_EQ(Settings.DateSeparator, '/') << Locale;
        EXPECT_EQ(Settings.TimeSeparator, ':') << Locale;
        EXPECT_EQ(Settings.ShortDateFormat, "M/d/yyyy") << Locale;
        EXPECT_EQ(Settings.TwoDigitYearCenturyWindow, 50) << Locale;
    }
}

TEST(KvFormatSettings, AreTheSameObjectForTheWholeProcess)
{
    EXPECT_EQ(&FormatSettings(), &FormatSettings());
}

TEST(KvFormatSettings, DateFormatsOfLocalesBecomeLetters)
{
    const std::pair<const char*, const char*> Rows[] = {
        {"%m/%d/%y", "MM/dd/yy"},     {"%d.%m.%Y", "dd.MM.yyyy"},   {"%Y-%m-%d", "yyyy-MM-dd"},
        {"%F", "yyyy-MM-dd"},         {"%D", "MM/dd/yy"},           {"%-d.%-m.%Y", "d.M.yyyy"},
        {"%e.%m.%Y", "d.MM.yyyy"},    {"%d. %m. %Y", "dd.MM.yyyy"}, {"%d.%m.%Y.", "dd.MM.yyyy"},
        {"%d-%m-%Y", "dd-MM-yyyy"},
    };
    for (const auto& [TimeFormat, Letters] : Rows)
        EXPECT_EQ(ShortDateFormatOf(TimeFormat), Letters) << TimeFormat;
}

TEST(KvFormatSettings, OtherDateFormatsAreNone)
{
    for (const auto* const TimeFormat : {"", "%", "%-", "%d", "%d %b %Y", "%d/%m-%Y", "%d%m%Y",
                                         "%Y\xE5\xB9\xB4%m\xE6\x9C\x88", "%x", "...", "d.m.y"})
        EXPECT_EQ(ShortDateFormatOf(TimeFormat), "") << TimeFormat;
}

} // namespace
} // namespace kv
