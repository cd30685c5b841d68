#include "KvDateText.h"

#include <algorithm>
#include <chrono>
#include <cmath>

#include "KvException.h"
#include "KvFormatSettings.h"
#include "KvNumberText.h"
#include "KvText.h"

namespace kv {

namespace {

using namespace std::chrono;

constexpr int MsPerSecond = 1000;
constexpr int MsPerMinute = 60 * MsPerSecond;
constexpr int MsPerHour = 60 * MsPerMinute;
constexpr int MsPerDay = 24 * MsPerHour;

constexpr sys_days DayZero = year{1899} / December / 30;
constexpr int FirstDay = (sys_days{year{1} / January / 1} - DayZero).count();
constexpr int LastDay = (sys_days{year{9999} / December / 31} - DayZero).count();

/// A value taken apart: days since DayZero and milliseconds since midnight.
struct TDayTime
{
    int Day = 0;
    int Ms = 0;
};

/// `Ms` may be MsPerDay, which rounding makes of the last instants of a day.
TDateTime Join(TDayTime Parts)
{
    const int Day = Parts.Ms == MsPerDay ? Parts.Day + 1 : Parts.Day;
    const double Fraction = Parts.Ms == MsPerDay ? 0 : Parts.Ms / static_cast<double>(MsPerDay);
    return {Day < 0 ? Day - Fraction : Day + Fraction};
}

TDayTime Split(TDateTime Value)
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

year_month_day DateOf(int Day) { return DayZero + days{Day}; }

std::optional<int> MsOf(int Hour, int Minute, int Second)
{
    if (Hour < 0 || Hour > 23 || Minute < 0 || Minute > 59 || Second < 0 || Second > 59)
        return {};
    return Hour * MsPerHour + Minute * MsPerMinute + Second * MsPerSecond;
}

// --- Reading -----------------------------------------------------------------------------------------

/// A run of decimal digits, at most nine of them.
struct TDigits
{
    int Value = 0;
    int Count = 0;                                  // 0 when there is no digit

    bool HasCount(int Min, int Max) const { return Count >= Min && Count <= Max; }
};

/// Reads `Text` from its front; what does not match is left standing.
class TDateCursor
{
public:
    explicit TDateCursor(std::string_view Source) : Text(Source) {}

    bool AtEnd() const { return Text.empty(); }

    bool Take(char Char)
    {
        if (!Text.starts_with(Char))
            return false;
        Text.remove_prefix(1);
        return true;
    }

    bool TakeWord(std::string_view Word)
    {
        if (!SameText(Text.substr(0, Word.size()), Word))
            return false;
        Text.remove_prefix(Word.size());
        return true;
    }

    /// Blanks, or else the letter that ISO 8601 puts between date and time.
    bool TakeGap()
    {
        if (Take('T'))
            return true;
        const bool Found = Take(' ');
        SkipBlanks();
        return Found;
    }

    void SkipBlanks()
    {
        while (Take(' ')) {
        }
    }

    TDigits TakeDigits()
    {
        constexpr std::size_t MaxCount = 9;
        TDigits Result;
        for (const char Char : Text.substr(0, MaxCount)) {
            if (Char < '0' || Char > '9')
                break;
            Result.Value = Result.Value * 10 + (Char - '0');
            ++Result.Count;
        }
        Text.remove_prefix(static_cast<std::size_t>(Result.Count));
        return Result;
    }

private:
    std::string_view Text;
};

/// Places of year, month and day among the three numbers of a date.
struct TDateOrder
{
    int Year, Month, Day;
};

constexpr TDateOrder YearMonthDay{0, 1, 2}, MonthDayYear{2, 0, 1}, DayMonthYear{2, 1, 0};

TDateOrder OrderOf(std::string_view ShortDateFormat)
{
    for (const char Char : ShortDateFormat) {
        switch (Char) {
        case 'y': case 'Y': return YearMonthDay;
        case 'm': case 'M': return MonthDayYear;
        case 'd': case 'D': return DayMonthYear;
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

/// A fraction of a second in milliseconds, rounded.
int RoundedMs(TDigits Fraction)
{
    static constexpr double MsPerUnit[] = {0, 1e2, 1e1, 1e0, 1e-1, 1e-2, 1e-3, 1e-4, 1e-5, 1e-6};
    return static_cast<int>(Fraction.Value * MsPerUnit[Fraction.Count] + 0.5);
}

/// The hour on a clock of 24 after "AM" or "PM", if either follows; 24 when a clock of 12 has no such hour.
int TakeHalf(TDateCursor& In, int Hour)
{
    In.SkipBlanks();
    const bool AfterNoon = In.TakeWord("PM");
    if (!AfterNoon && !In.TakeWord("AM"))
        return Hour;
    return Hour < 1 || Hour > 12 ? 24 : Hour % 12 + (AfterNoon ? 12 : 0);
}

struct TTimeForm
{
    char Separator;
    int MinDigits;                                  // of each number; the most is 2
    bool HasHalves;                                 // AM or PM may follow
};

/// Milliseconds since midnight; MsPerDay when the fraction rounds up to it.
std::optional<int> TakeTime(TDateCursor& In, const TTimeForm& Form)
{
    const auto Hour = In.TakeDigits();
    if (!Hour.HasCount(Form.MinDigits, 2) || !In.Take(Form.Separator))
        return {};
    const auto Minute = In.TakeDigits();
    if (!Minute.HasCount(Form.MinDigits, 2))
        return {};
    TDigits Second, Fraction;
    if (In.Take(Form.Separator)) {
        Second = In.TakeDigits();
        if (!Second.HasCount(Form.MinDigits, 2))
            return {};
        if (In.Take('.') && (Fraction = In.TakeDigits()).Count == 0)
            return {};
    }
    auto Ms = MsOf(Form.HasHalves ? TakeHalf(In, Hour.Value) : Hour.Value, Minute.Value, Second.Value);
    if (Ms)
        *Ms += RoundedMs(Fraction);
    return Ms;
}

std::optional<int> TakeProcessTime(TDateCursor& In)
{
    return TakeTime(In, {FormatSettings().TimeSeparator, 1, true});
}

std::optional<int> TakeIsoTime(TDateCursor& In) { return TakeTime(In, {':', 2, false}); }

std::optional<int> TakeIsoDate(TDateCursor& In)
{
    const auto Year = In.TakeDigits();
    if (!Year.HasCount(4, 4) || !In.Take('-'))
        return {};
    const auto Month = In.TakeDigits();
    if (!Month.HasCount(2, 2) || !In.Take('-'))
        return {};
    const auto Day = In.TakeDigits();
    if (!Day.HasCount(2, 2))
        return {};
    return DayOf(Year.Value, Month.Value, Day.Value);
}

using TTake = std::optional<int> (&)(TDateCursor&);

std::optional<TDateTime> ReadOne(std::string_view Text, TTake TakePart, int TDayTime::*Part)
{
    TDateCursor In(Trim(Text));
    const auto Value = TakePart(In);
    if (!Value || !In.AtEnd())
        return {};
    TDayTime Result;
    Result.*Part = *Value;
    return Join(Result);
}

/// A date, a time, or both.
std::optional<TDateTime> Read(std::string_view Text, TTake TakeDatePart, TTake TakeTimePart)
{
    TDateCursor In(Trim(Text));
    const auto Day = TakeDatePart(In);
    if (!Day)
        return ReadOne(Text, TakeTimePart, &TDayTime::Ms);
    if (In.AtEnd())
        return Join({*Day, 0});
    if (!In.TakeGap())
        return {};
    const auto Ms = TakeTimePart(In);
    if (!Ms || !In.AtEnd() || (*Day == LastDay && *Ms == MsPerDay))
        return {};
    return Join({*Day, *Ms});
}

// --- Writing -----------------------------------------------------------------------------------------

/// Writes the last `Count` digits of `Value` and returns the place after them.
template <int Count> char* PutDigits(char* Out, int Value)
{
    for (int I = Count; I-- > 0; Value /= 10)
        Out[I] = static_cast<char>('0' + Value % 10);
    return Out + Count;
}

char* PutIsoDate(char* Out, int Day)
{
    const auto Date = DateOf(Day);
    Out = PutDigits<4>(Out, static_cast<int>(Date.year()));
    *Out++ = '-';
    Out = PutDigits<2>(Out, static_cast<int>(static_cast<unsigned>(Date.month())));
    *Out++ = '-';
    return PutDigits<2>(Out, static_cast<int>(static_cast<unsigned>(Date.day())));
}

char* PutTime(char* Out, int Ms, char Separator)
{
    Out = PutDigits<2>(Out, Ms / MsPerHour);
    *Out++ = Separator;
    Out = PutDigits<2>(Out, Ms / MsPerMinute % 60);
    *Out++ = Separator;
    Out = PutDigits<2>(Out, Ms / MsPerSecond % 60);
    if (Ms % MsPerSecond == 0)
        return Out;
    *Out++ = '.';
    return PutDigits<3>(Out, Ms % MsPerSecond);
}

std::string_view ViewOf(const char* Begin, const char* End)
{
    return {Begin, static_cast<std::size_t>(End - Begin)};
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
        case 'm': case 'M': AppendNumber(Result, static_cast<unsigned>(Date.month()), Count > 1 ? 2 : 1); break;
        case 'd': case 'D': AppendNumber(Result, static_cast<unsigned>(Date.day()), Count > 1 ? 2 : 1); break;
        case '/':           Result.append(Count, FormatSettings().DateSeparator); break;
        default:            Result.append(Count, Format[0]); break;
        }
        Format.remove_prefix(Count);
    }
    return Result;
}

} // namespace

std::optional<TDateTime> EncodeDateTime(const TCalendar& Point)
{
    const auto Day = DayOf(Point.Year, Point.Month, Point.Day);
    const auto Ms = MsOf(Point.Hour, Point.Minute, Point.Second);
    if (!Day || !Ms || Point.Millisecond < 0 || Point.Millisecond >= MsPerSecond)
        return {};
    return Join({*Day, *Ms + Point.Millisecond});
}

TCalendar DecodeDateTime(TDateTime Value)
{
    const auto [Day, Ms] = Split(Value);
    const auto Date = DateOf(Day);
    return {.Year = static_cast<int>(Date.year()),
            .Month = static_cast<int>(static_cast<unsigned>(Date.month())),
            .Day = static_cast<int>(static_cast<unsigned>(Date.day())),
            .Hour = Ms / MsPerHour,
            .Minute = Ms / MsPerMinute % 60,
            .Second = Ms / MsPerSecond % 60,
            .Millisecond = Ms % MsPerSecond};
}

std::optional<TDateTime> TryTextToDate(std::string_view Text) { return ReadOne(Text, TakeDate, &TDayTime::Day); }

std::optional<TDateTime> TryTextToTime(std::string_view Text) { return ReadOne(Text, TakeProcessTime, &TDayTime::Ms); }

std::optional<TDateTime> TryTextToDateTime(std::string_view Text) { return Read(Text, TakeDate, TakeProcessTime); }

TDateTime TextToDateTime(std::string_view Text)
{
    if (const auto Value = TryTextToDateTime(Text))
        return *Value;
    throw EConvertError(FormatText("'%s' is not a valid date and time", {Text}));
}

std::optional<TDateTime> TryIsoToDateTime(std::string_view Text) { return Read(Text, TakeIsoDate, TakeIsoTime); }

std::string DateTimeToText(TDateTime Value)
{
    const auto [Day, Ms] = Split(Value);
    auto Result = FormatDate(Day);
    if (Ms != 0) {
        char Buffer[IsoTextMax];
        Result.append(" ").append(Buffer, PutTime(Buffer, Ms, FormatSettings().TimeSeparator));
    }
    return Result;
}

std::string_view WriteIsoDate(TDateTime Value, char (&Buffer)[IsoTextMax])
{
    return ViewOf(Buffer, PutIsoDate(Buffer, Split(Value).Day));
}

std::string_view WriteIsoTime(TDateTime Value, char (&Buffer)[IsoTextMax])
{
    return ViewOf(Buffer, PutTime(Buffer, Split(Value).Ms, ':'));
}

std::string_view WriteIsoDateTime(TDateTime Value, char (&Buffer)[IsoTextMax])
{
    const auto [Day, Ms] = Split(Value);
    char* End = PutIsoDate(Buffer, Day);
    *End++ = ' ';
    return ViewOf(Buffer, PutTime(End, Ms, ':'));
}

std::string DateToIso(TDateTime Value)
{
    char Buffer[IsoTextMax];
    return std::string(WriteIsoDate(Value, Buffer));
}

std::string TimeToIso(TDateTime Value)
{
    char Buffer[IsoTextMax];
    return std::string(WriteIsoTime(Value, Buffer));
}

std::string DateTimeToIso(TDateTime Value)
{
    char Buffer[IsoTextMax];
    return std::string(WriteIsoDateTime(Value, Buffer));
}

} // namespace kv
