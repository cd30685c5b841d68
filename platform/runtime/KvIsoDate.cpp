#include "KvIsoDate.h"

#include "KvCalendar.h"
#include "KvDateCursor.h"

namespace kv {

namespace {

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

char* PutIsoTime(char* Out, int Ms)
{
    Out = PutDigits<2>(Out, Ms / MsPerHour);
    *Out++ = ':';
    Out = PutDigits<2>(Out, Ms / MsPerMinute % 60);
    *Out++ = ':';
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

} // namespace

std::optional<TDateTime> TryIsoToDateTime(std::string_view Text)
{
    return ReadDateTime(Text, TakeIsoDate, TakeIsoTime);
}

std::string_view WriteIsoDate(TDateTime Value, char (&Buffer)[IsoTextMax])
{
    return ViewOf(Buffer, PutIsoDate(Buffer, SplitDateTime(Value).Day));
}

std::string_view WriteIsoTime(TDateTime Value, char (&Buffer)[IsoTextMax])
{
    return ViewOf(Buffer, PutIsoTime(Buffer, SplitDateTime(Value).Ms));
}

std::string_view WriteIsoDateTime(TDateTime Value, char (&Buffer)[IsoTextMax])
{
    const auto [Day, Ms] = SplitDateTime(Value);
    char* End = PutIsoDate(Buffer, Day);
    *End++ = ' ';
    return ViewOf(Buffer, PutIsoTime(End, Ms));
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
