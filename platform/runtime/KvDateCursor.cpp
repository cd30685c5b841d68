#include "KvDateCursor.h"

namespace kv {

namespace {

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

std::optional<TDateTime> ReadOne(std::string_view Text, TTakePart TakePart, int TDayTime::*Part)
{
    TDateCursor In(Trim(Text));
    const auto Value = TakePart(In);
    if (!Value || !In.AtEnd())
        return {};
    TDayTime Result;
    Result.*Part = *Value;
    return JoinDateTime(Result);
}

} // namespace

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

std::optional<TDateTime> ReadDate(std::string_view Text, TTakePart TakeDay)
{
    return ReadOne(Text, TakeDay, &TDayTime::Day);
}

std::optional<TDateTime> ReadTime(std::string_view Text, TTakePart TakeMs)
{
    return ReadOne(Text, TakeMs, &TDayTime::Ms);
}

std::optional<TDateTime> ReadDateTime(std::string_view Text, TTakePart TakeDay, TTakePart TakeMs)
{
    TDateCursor In(Trim(Text));
    const auto Day = TakeDay(In);
    if (!Day)
        return ReadTime(Text, TakeMs);
    if (In.AtEnd())
        return JoinDateTime({*Day, 0});
    if (!In.TakeGap())
        return {};
    const auto Ms = TakeMs(In);
    if (!Ms || !In.AtEnd() || (*Day == LastDay && *Ms == MsPerDay))
        return {};
    return JoinDateTime({*Day, *Ms});
}

} // namespace kv
