// KvFormatSettings - the process-wide forms in which numbers and dates are read and shown.
#pragma once

#include <string>
#include <string_view>

namespace kv {

/// Taken from the locale of the environment at start; a program may change it at any time.
struct TFormatSettings
{
    char DecimalSeparator = '.';
    char ThousandSeparator = ',';
    char DateSeparator = '/';
    char TimeSeparator = ':';
    /// Letters y, M and d in the order in which dates are read, with separators: "dd.MM.yyyy". The first and
    /// the last one decide.
    std::string ShortDateFormat = "M/d/yyyy";
    /// A two-digit year lies in the hundred years that begin this many years before the current one.
    int TwoDigitYearCenturyWindow = 50;
};

/// The settings of this process. Like every process-wide setting of the system they belong to the
/// thread that runs imports.
TFormatSettings& FormatSettings();

/// The settings of the locale that the environment names (LC_ALL, LC_NUMERIC, LC_TIME). Where that is
/// the locale "C", not installed, or has no such form, the members' own defaults hold.
TFormatSettings LocaleFormatSettings();

/// The date format of strftime, such as "%d.%m.%Y", in the letters of ShortDateFormat. Empty unless it
/// consists of numbers between which the same one ASCII character stands.
std::string ShortDateFormatOf(std::string_view TimeFormat);

} // namespace kv
