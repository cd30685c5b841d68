#include "KvCalendar.h"

#include <cmath>

#include "KvException.h"
#include "KvNumberText.h"
#include "KvText.h"

namespace kv {

using namespace std::chrono;

namespace {

constexpr int FirstDay = (sys_days{year{1} / January / 1} - DayZero).count();

} // namespace

TDateTime JoinDateTime(TDayTime Parts)
{
    const int Day = Parts.Ms == MsPerDay ? Parts.Day + 1 : Parts.Day;
    const double Fraction = Parts.Ms == MsPerDay ? 0 : Parts.Ms / static_cast<double>(MsPerDay);
    return {Day < 0 ? Day - Fraction : Day + Fraction};
}

TDayTime SplitDateTime(TDateTime Value)
{
    if (Value.Days > FirstDay - 1 && Value.Days < LastDay + 1) {
        const int Day = static_cast<int>(Value.Days);
        const double Fraction = std::fabs(Value.Days - Day);
        TDayTime Parts{Day, static_cast<int>(Fraction * MsPerDay + 0.5)};
        if (Parts.Ms == MsPerDay)
            Parts = {Parts.Day + 1, 0};
        if (Parts.Day <= LastDay)
            return Parts;
    }
    throw EConvertError(FormatText("'%s' is not a valid date and time", {FloatToText(Value.Days)}));
}

std::optional<int> DayOf(int Year, int Month, int Day)
{
    if (Year < 1 || Year > 9999 || Month < 1 || Month > 12 || Day < 1 || Day > 31)
        return {};
    const auto Date = year{Year} / Month / Day;
    if (!Date.ok())
        return {};
    return (sys_days{Date} - DayZero).count();
}

std::optional<int> MsOf(int Hour, int Minute, int Second)
{
    if (Hour < 0 || Hour > 23 || Minute < 0 || Minute > 59 || Second < 0 || Second > 59)
        return {};
    return Hour * MsPerHour + Minute * MsPerMinute + Second * MsPerSecond;
}

std::optional<TDateTime> EncodeDateTime(const TCalendar& Point)
{
    const auto Day = DayOf(Point.Year, Point.Month, Point.Day);
    const auto Ms = MsOf(Point.Hour, Point.Minute, Point.Second);
    if (!Day || !Ms || Point.Millisecond < 0 || Point.Millisecond >= MsPerSecond)
        return {};
    return JoinDateTime({*Day, *Ms + Point.Millisecond});
}

TCalendar DecodeDateTime(TDateTime Value)
{
    const auto [Day, Ms] = SplitDateTime(Value);
    const auto Date = DateOf(Day);
    return {.Year = static_cast<int>(Date.year()),
            .Month = static_cast<int>(static_cast<unsigned>(Date.month())),
            .Day = static_cast<int>(static_cast<unsigned>(Date.day())),
            .Hour = Ms / MsPerHour,
            .Minute = Ms / MsPerMinute % 60,
            .Second = Ms / MsPerSecond % 60,
            .Millisecond = Ms % MsPerSecond};
}

} // namespace kv
