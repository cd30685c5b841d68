#include "KvSerials.h"

#include <cmath>
#include <cstdint>

#include "KvCalendar.h"

namespace kv {

namespace {

constexpr double DaysFrom1900To1904 = 1462;
constexpr double LeapDay = 60;                      // 29 February 1900

constexpr double FirstDay = -693593;                // 1 January of the year 1
/// From there on rounding to a millisecond leads past the last day.
constexpr double EndOfCalendar = LastDay + 1 - 0.5 / MsPerDay;

/// At least two digits.
std::string Digits(std::int64_t Number)
{
    return (Number < 10 ? "0" : "") + std::to_string(Number);
}

} // namespace

std::string DurationText(double Days)
{
    const auto Ms = static_cast<std::int64_t>(std::round(std::fabs(Days) * MsPerDay));
    auto Text = (Days < 0 && Ms > 0 ? "-" : "") + Digits(Ms / MsPerHour) + ":" +
                Digits(Ms / MsPerMinute % 60) + ":" + Digits(Ms / MsPerSecond % 60);
    if (Ms % MsPerSecond != 0)
        Text += "." + std::to_string(MsPerSecond + Ms % MsPerSecond).substr(1);
    return Text;
}

TSerialCalendar::TSerialCalendar(TSerialDays TheDays, TSpreadSheetExtensions Extensions)
    : Days(TheDays),
      AppliesMode(Extensions.Contains(seDateMode)),
      ShowsDurations(Extensions.Contains(seCustomDates)),
      TellsFaults(Extensions.Contains(seTellingErrors))
{
}

TVariant TSerialCalendar::ValueOf(double Serial, TSerialKind Kind, TCellFault& Fault) const
{
    Fault = cfNone;
    const bool IsTime = Kind == skDuration || (Kind == skTime && Serial < 1);
    auto Value = IsTime ? TimeOf(Serial, Fault) : MomentOf(Serial, Fault);
    if (Fault != cfNone && TellsFaults)
        return Serial;
    Fault = cfNone;
    return Value;
}

TVariant TSerialCalendar::MomentOf(double Serial, TCellFault& Fault) const
{
    double Moment = Serial;
    if (AppliesMode && Is1904)
        Moment += DaysFrom1900To1904;
    else if (AppliesMode && Days == sdExcel && Serial >= 0 && Serial < LeapDay)
        Moment += 1;
    else if (AppliesMode && Days == sdExcel && Serial >= LeapDay && Serial < LeapDay + 1)
        Fault = cfLeapDay;
    else if (AppliesMode && Days == sdQuattro && Serial < 0)
        Moment = 2 * std::floor(Serial) - Serial;   // date-times count the time forward on each day
    if (!(Serial >= (Days == sdQuattro ? FirstDay : 0) && Moment < EndOfCalendar))
        Fault = cfNoDay;
    return TDateTime{Moment};
}

TVariant TSerialCalendar::TimeOf(double Serial, TCellFault& Fault) const
{
    if (!(std::fabs(Serial) < EndOfCalendar))
        Fault = cfNoDay;
    else if (ShowsDurations && !(Serial >= 0 && Serial < 1))
        return DurationText(Serial);
    return TDateTime{Serial};
}

} // namespace kv
