// KvDateCursor - reads the parts of dates and times from text, for the units of this folder that know
// their forms.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

#include "KvCalendar.h"
#include "KvText.h"

namespace kv {

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

struct TTimeForm
{
    char Separator;
    int MinDigits;                                  // of each number; the most is 2
    bool HasHalves;                                 // AM or PM may follow
};

/// Milliseconds since midnight; MsPerDay when the fraction of the second rounds up to it.
std::optional<int> TakeTime(TDateCursor& In, const TTimeForm& Form);

// Each of the routines takes the day or the time that the text begins with, as DayOf and MsOf count them.
using TTakePart = std::optional<int> (&)(TDateCursor&);

/// The whole of `Text`, blanks around it aside, as a date.
std::optional<TDateTime> ReadDate(std::string_view Text, TTakePart TakeDay);
std::optional<TDateTime> ReadTime(std::string_view Text, TTakePart TakeMs);
/// A date, a time, or both.
std::optional<TDateTime> ReadDateTime(std::string_view Text, TTakePart TakeDay, TTakePart TakeMs);

} // namespace kv
