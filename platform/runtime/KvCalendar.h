// KvCalendar - date-time values as days and times of the proleptic Gregorian calendar, years 1 to 9999.
#pragma once

#include <chrono>
#include <optional>

#include "KvVariant.h"

namespace kv {

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

// For units that read and write dates.

inline constexpr int MsPerSecond = 1000;
inline constexpr int MsPerMinute = 60 * MsPerSecond;
inline constexpr int MsPerHour = 60 * MsPerMinute;
inline constexpr int MsPerDay = 24 * MsPerHour;

/// Day 0 of date-time values.
inline constexpr std::chrono::sys_days DayZero =
    std::chrono::year{1899} / std::chrono::December / std::chrono::day{30};
inline constexpr int LastDay =
    (std::chrono::sys_days{std::chrono::year{9999} / std::chrono::December / std::chrono::day{31}} -
     DayZero).count();

/// A value taken apart: days since DayZero and milliseconds since midnight.
struct TDayTime
{
    int Day = 0;
    int Ms = 0;
};

/// `Ms` may be MsPerDay, which rounding makes of the last instants of a day.
TDateTime JoinDateTime(TDayTime Parts);
/// Raises as DecodeDateTime does, and rounds as it does.
TDayTime SplitDateTime(TDateTime Value);

/// The number of a day; nothing when the calendar has no such day.
std::optional<int> DayOf(int Year, int Month, int Day);
inline std::chrono::year_month_day DateOf(int Day) { return DayZero + std::chrono::days{Day}; }
/// Milliseconds since midnight; nothing when there is no such time.
std::optional<int> MsOf(int Hour, int Minute, int Second);

} // namespace kv
