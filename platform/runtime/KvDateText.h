// KvDateText - dates and times from text in the process's short date format, and ISO 8601 text.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "KvVariant.h"

namespace kv {

/// A point of the proleptic Gregorian calendar, years 1 to 9999.
struct TCalendar
{
    int Year = 1, Month = 1, Day = 1;
    int Hour = 0, Minute = 0, Second = 0, Millisecond = 0;

    friend bool operator==(const TCalendar&, const TCalendar&) = default;
};

/// Nothing when there is no such day or time.
std::optional<TDateTime> EncodeDateTime(const TCalendar& Point);
/// Raises EConvertError when the value lies outside the years 1 to 9999 or is no number.
/// Rounds to the nearest millisecond.
TCalendar DecodeDateTime(TDateTime Value);

/// Year, month and day in the order of the process's short date format, separated by the process's
/// date separator; all three must be there. Two digits of a year fall into the century window.
std::optional<TDateTime> TryTextToDate(std::string_view Text);
/// h:mm, h:mm:ss or h:mm:ss.zzz with the process's time separator, AM or PM allowed after it.
std::optional<TDateTime> TryTextToTime(std::string_view Text);
/// A date, a time, or a date, blanks or "T", and a time.
std::optional<TDateTime> TryTextToDateTime(std::string_view Text);
/// Raises EConvertError "'%s' is not a valid date and time".
TDateTime TextToDateTime(std::string_view Text);

/// In the process's short date format; with the time ("hh:mm:ss", milliseconds when there are any)
/// when it is not midnight.
std::string DateTimeToText(TDateTime Value);

// ISO 8601, whatever the process's settings: "2024-02-29", "23:59:59", "2024-02-29 23:59:59".
// Milliseconds follow as ".123" only when there are any.
std::string DateToIso(TDateTime Value);
std::string TimeToIso(TDateTime Value);
std::string DateTimeToIso(TDateTime Value);
/// Any of the three forms, the blank also as "T".
std::optional<TDateTime> TryIsoToDateTime(std::string_view Text);

/// Writes like DateToIso, TimeToIso, DateTimeToIso into `Buffer`, for use once per value.
/// The result views `Buffer`.
inline constexpr std::size_t IsoTextMax = 32;
std::string_view WriteIsoDate(TDateTime Value, char (&Buffer)[IsoTextMax]);
std::string_view WriteIsoTime(TDateTime Value, char (&Buffer)[IsoTextMax]);
std::string_view WriteIsoDateTime(TDateTime Value, char (&Buffer)[IsoTextMax]);

} // namespace kv
