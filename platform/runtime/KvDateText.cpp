#include "KvDateText.h"

#include <algorithm>
#include <chrono>
#include <cmath>

#include "KvCalendar.h"
#include "KvDateCursor.h"
#include "KvException.h"
#include "KvFormatSettings.h"
#include "KvIsoDate.h"
#include "KvText.h"

namespace kv {

namespace {

using namespace std::chrono;

/// Places of year, month and day among the three numbers of a date.
struct TDateOrder
{
    int Year, Month, Day;
};

constexpr TDateOrder YearMonthDay{0, 1, 2}, YearDayMonth{0, 2, 1}, MonthDayYear{2, 0, 1},
    MonthYearDay{1, 0, 2}, DayMonthYear{2, 1, 0}, DayYearMonth{1, 2, 0};

/// By its first letter, and the last one where that ends the format.
TDateOrder OrderOf(std::string_view ShortDateFormat)
{
    const auto EndsWith = [ShortDateFormat](char Small, char Capital) {
        return ShortDateFormat.back() == Small || ShortDateFormat.back() == Capital;
    };
    for (const char Char : ShortDateFormat) {
        switch (Char) {
        case 'y': case 'Y': return EndsWith('m', 'M') ? YearDayMonth : YearMonthDay;
        case 'm': case 'M': return EndsWith('d', 'D') ? MonthYearDay : MonthDayYear;
        case 'd': case 'D': return EndsWith('m', 'M') ? DayYearMonth : DayMonthYear;
        default: break;
        }
    }
    return MonthDayYear;
}

int CurrentYear()
{
    return static_cast<int>(year_month_day{floor<days>(system_clock::now())}.year());
}

/// The year as written, one of two digits within the century window.
int FullYear(TDigits Year)
{
    if (Year.Count > 2)
        return Year.Value;
    const int First = CurrentYear() - FormatSettings().TwoDigitYearCenturyWindow;
    const int Result = First - First % 100 + Year.Value;
    return Result < First ? Result + 100 : Result;
}

std::optional<int> TakeDate(TDateCursor& In)
{
    const auto& Settings = FormatSettings();
    TDigits Parts[3];
    for (int I = 0; I < 3; ++I) {
        if (I > 0 && !In.Take(Settings.DateSeparator))
            return {};
        Parts[I] = In.TakeDigits();
    }
    const auto Order = OrderOf(Settings.ShortDateFormat);
    const auto Year = Parts[Order.Year], Month = Parts[Order.Month], Day = Parts[Order.Day];
    if (!Year.HasCount(1, 4) || !Month.HasCount(1, 2) || !Day.HasCount(1, 2))
        return {};
    return DayOf(FullYear(Year), Month.Value, Day.Value);
}

std::optional<int> TakeProcessTime(TDateCursor& In)
{
    return TakeTime(In, {FormatSettings().TimeSeparator, 1, true});
}

/// Appends a number with at least `MinDigits` digits.
void AppendNumber(std::string& Text, unsigned Value, std::size_t MinDigits)
{
    const auto Digits = std::to_string(Value);
    Text.append(MinDigits > Digits.size() ? MinDigits - Digits.size() : 0, '0').append(Digits);
}

/// The date in the process's short date format; a slash there stands for the date separator.
std::string FormatDate(int Day)
{
    const auto Date = DateOf(Day);
    const auto Year = static_cast<unsigned>(static_cast<int>(Date.year()));
    std::string Result;
    std::string_view Format = FormatSettings().ShortDateFormat;
    while (!Format.empty()) {
        const auto Count = std::min(Format.find_first_not_of(Format[0]), Format.size());
        switch (Format[0]) {
        case 'y': case 'Y': AppendNumber(Result, Count > 2 ? Year : Year % 100, Count > 2 ? 4 : 2); break;
        case 'm': case 'M': AppendNumber(Result, static_cast<unsigned>(Date.month()),
                                         Count > 1 ? 2 : 1); break;
        case 'd': case 'D': AppendNumber(Result, static_cast<unsigned>(Date.day()), Count > 1 ? 2 : 1); break;
        case '/':           Result.append(Count, FormatSettings().DateSeparator); break;
        default:            Result.append(Count, Format[0]); break;
        }
        Format.remove_prefix(Count);
    }
    return Result;
}

} // namespace

std::optional<TDateTime> TryTextToDate(std::string_view Text) { return ReadDate(Text, TakeDate); }

std::optional<TDateTime> TryTextToTime(std::string_view Text) { return ReadTime(Text, TakeProcessTime); }

std::optional<TDateTime> TryTextToDateTime(std::string_view Text)
{
    return ReadDateTime(Text, TakeDate, TakeProcessTime);
}

TDateTime TextToDateTime(std::string_view Text)
{
    if (const auto Value = TryTextToDateTime(Text))
        return *Value;
    throw EConvertError(FormatText("'%s' is not a valid date and time", {Text}));
}

std::string DateTimeToText(TDateTime Value)
{
    const auto [Day, Ms] = SplitDateTime(Value);
    auto Result = FormatDate(Day);
    if (Ms != 0) {
        char Buffer[IsoTextMax];
        Result += ' ';
        for (const char Char : WriteIsoTime(Value, Buffer))
            Result += Char == ':' ? FormatSettings().TimeSeparator : Char;
    }
    return Result;
}

std::string DurationToText(TDateTime Value)
{
    const auto Ms = std::llround(std::fabs(Value.Days) * MsPerDay);
    const char Separator = FormatSettings().TimeSeparator;
    std::string Result(Value.Days < 0 && Ms != 0 ? "-" : "");
    AppendNumber(Result, static_cast<unsigned>(Ms / MsPerHour), 2);
    AppendNumber(Result += Separator, static_cast<unsigned>(Ms / MsPerMinute % 60), 2);
    AppendNumber(Result += Separator, static_cast<unsigned>(Ms / MsPerSecond % 60), 2);
    if (Ms % MsPerSecond != 0)
        AppendNumber(Result += '.', static_cast<unsigned>(Ms % MsPerSecond), 3);
    return Result;
}

} // namespace kv
