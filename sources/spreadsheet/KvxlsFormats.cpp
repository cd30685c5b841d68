#include "KvxlsFormats.h"

#include <algorithm>

#include "KvText.h"

namespace kv {

namespace {

/// Built-in formats that are dates in the reading without patterns.
constexpr std::uint16_t FirstDate = 14, LastDate = 22;

/// Built-in formats that show dates in the languages of East Asia, and have no pattern of their own here.
struct TRange
{
    std::uint16_t First, Last;
};
constexpr TRange EastAsianDates[] = {{27, 36}, {50, 58}};
constexpr TRange EastAsianTimes = {32, 33};

/// The size of the word at the front that stands for no format in particular; 0 when there is none. Until
/// Excel 4 files held it in the user's language.
std::size_t SizeOfGeneral(std::string_view Pattern)
{
    for (const std::string_view Word : {"General", "Standard"})
        if (SameText(Pattern.substr(0, Word.size()), Word))
            return Word.size();
    return 0;
}

/// What a bracket holds: "[h]" and "[mm]" show durations, "[Red]", "[$-409]" and "[<100]" nothing.
bool IsElapsedTime(std::string_view Bracket)
{
    const auto IsTimeLetter = [](char Char) {
        return std::string_view("hHmMsS").find(Char) != std::string_view::npos;
    };
    return !Bracket.empty() && std::ranges::all_of(Bracket, IsTimeLetter);
}

bool IsLetter(char Char) { return (Char >= 'a' && Char <= 'z') || (Char >= 'A' && Char <= 'Z'); }
char LowerOf(char Char) { return IsLetter(Char) ? static_cast<char>(Char | 0x20) : Char; }

/// What of a date the letters of a pattern show.
class TPatternLetters
{
public:
    /// Takes the letter at `Position` and those like it that follow, and gives their number. `Pattern` shows
    /// what stands beside them.
    std::size_t Take(std::string_view Pattern, std::size_t Position)
    {
        const char Letter = LowerOf(Pattern[Position]);
        auto End = Position;
        while (End < Pattern.size() && LowerOf(Pattern[End]) == Letter)
            ++End;
        const auto Count = End - Position;
        switch (Letter) {
        case 'd':
        case 'y': HasDay = true; break;
        case 'm': (Count > 2 ? HasDay : HasMonthOrMinutes) = true; break;
        case 'h':
        case 's': HasTime = true; break;
        case 'a': HasDay = HasDay || Count > 2; break;
        case 'b':
        case 'e':
        case 'g': HasDay = HasDay || StandsAlone(Pattern, Position, End); break;
        }
        return Count;
    }
    void TakeElapsed() { HasTime = IsElapsed = true; }

    TSerialKind Kind() const
    {
        if (HasDay || (HasMonthOrMinutes && !HasTime))
            return skMoment;
        return IsElapsed ? skDuration : HasTime ? skTime : skNumber;
    }

private:
    /// No part of a word, which some writers leave without quotes, nor of an exponent.
    static bool StandsAlone(std::string_view Pattern, std::size_t Begin, std::size_t End)
    {
        while (Begin > 0 && IsLetter(Pattern[Begin - 1]))
            --Begin;
        while (End < Pattern.size() && IsLetter(Pattern[End]))
            ++End;
        const bool IsExponent = Begin > 0 && (Pattern[Begin - 1] == '0' || Pattern[Begin - 1] == '#');
        return !IsExponent &&
               Pattern.substr(Begin, End - Begin).find_first_not_of("ymdhsegbYMDHSEGB") == Pattern.npos;
    }

    bool HasDay = false, HasMonthOrMinutes = false, HasTime = false, IsElapsed = false;
};

} // namespace

constexpr std::array<std::string_view, 50> BuiltInFormats = {
    /*  0 */ "", "0", "0.00", "#,##0", "#,##0.00",
    /*  5 */ "_($#,##0_);($#,##0)", "_($#,##0_);[Red]($#,##0)", "_($#,##0.00_);($#,##0.00)",
    /*  8 */ "_($#,##0.00_);[Red]($#,##0.00)", "0%", "0.00%", "0.00E+00", "# ?/?", "# ?\?/??",
    /* 14 */ "m/d/yy", "d-mmm-y", "d-mmm", "mmmm-yy", "h:mm AM/PM", "h:mm:ss AM/PM", "h:mm", "h:mm:SS",
    /* 22 */ "m/d/yy h:mm", "", "", "", "", "", "", "", "", "", "", "", "", "", "",
    /* 37 */ "(#,##0_);(#,##0)", "(#,##0_);[Red](#,##0)", "(#,##0.00_);(#,##0.00)",
    /* 40 */ "(#,##0.00_);[Red](#,##0.00)", R"(_(* #,##0_);_(* (#,##0);_(* "-"_);_(@_))",
    /* 42 */ R"(_($* #,##0_);_($* (#,##0);_($* "-"_);_(@_))",
    /* 43 */ R"(_(* #,##0.00_);_(* (#,##0.00);_(* "-"??_);_(@_))",
    /* 44 */ R"(_($* #,##0.00_);_($* (#,##0.00);_($* "-"??_);_(@_))", "mm:ss", "[h]:mm:ss", "mm:ss.0",
    /* 48 */ "# #0.0E+0", "@"};

TSerialKind KindOfPattern(std::string_view Pattern)
{
    TPatternLetters Letters;
    for (std::size_t I = 0; I < Pattern.size(); ++I) {
        switch (Pattern[I]) {
        case '"':
            I = std::min(Pattern.find('"', I + 1), Pattern.size());
            break;
        case '[': {
            const auto Close = std::min(Pattern.find(']', I), Pattern.size());
            if (IsElapsedTime(Pattern.substr(I + 1, Close - I - 1)))
                Letters.TakeElapsed();
            I = Close;
            break;
        }
        case '\\':                                  // the next character as it stands,
        case '_':                                   // a space of its width,
        case '*':                                   // or as many of it as fit
            ++I;
            break;
        default:
            if (const auto Size = SizeOfGeneral(Pattern.substr(I)))
                I += Size - 1;
            else
                I += Letters.Take(Pattern, I) - 1;
        }
    }
    return Letters.Kind();
}

TKvxlsFormats::TKvxlsFormats(bool Patterns) : PatternsDecide(Patterns)
{
    for (std::uint16_t Format = 0; Format < BuiltInFormats.size(); ++Format)
        if (PatternsDecide || (Format >= FirstDate && Format <= LastDate))
            SetKind(Format, KindOfPattern(BuiltInFormats[Format]));
    if (!PatternsDecide)
        return;
    for (const auto& Range : EastAsianDates)
        for (auto Format = Range.First; Format <= Range.Last; ++Format)
            SetKind(Format, skMoment);
    for (auto Format = EastAsianTimes.First; Format <= EastAsianTimes.Last; ++Format)
        SetKind(Format, skTime);
}

void TKvxlsFormats::SetKind(std::uint16_t Format, TSerialKind Kind)
{
    if (Format >= Kinds.size())
        Kinds.resize(std::size_t{Format} + 1, skNumber);
    Kinds[Format] = Kind;
}

void TKvxlsFormats::SetPattern(std::uint16_t Format, std::string_view Pattern)
{
    if (PatternsDecide)
        SetKind(Format, KindOfPattern(Pattern));
}

void TKvxlsFormats::AddPattern(std::string_view Pattern)
{
    if (PatternCount++ > 0)
        SetPattern(static_cast<std::uint16_t>(PatternCount - 1), Pattern);
}

} // namespace kv
