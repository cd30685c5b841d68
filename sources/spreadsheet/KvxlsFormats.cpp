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

constexpr std::string_view DateLetters = "dDmMyYhHsS";

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

bool IsDatePattern(std::string_view Pattern)
{
    for (std::size_t I = 0; I < Pattern.size(); ++I) {
        switch (Pattern[I]) {
        case '"':
            I = std::min(Pattern.find('"', I + 1), Pattern.size());
            break;
        case '[': {
            const auto Close = std::min(Pattern.find(']', I), Pattern.size());
            if (IsElapsedTime(Pattern.substr(I + 1, Close - I - 1)))
                return true;
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
            else if (DateLetters.find(Pattern[I]) != DateLetters.npos)
                return true;
        }
    }
    return false;
}

TKvxlsFormats::TKvxlsFormats(bool Patterns) : PatternsDecide(Patterns)
{
    for (std::uint16_t Format = 0; Format < BuiltInFormats.size(); ++Format)
        DateFormats[Format] = PatternsDecide ? IsDatePattern(BuiltInFormats[Format])
                                             : Format >= FirstDate && Format <= LastDate;
    if (PatternsDecide)
        for (const auto& Range : EastAsianDates)
            for (auto Format = Range.First; Format <= Range.Last; ++Format)
                DateFormats.set(Format);
}

void TKvxlsFormats::SetPattern(std::uint16_t Format, std::string_view Pattern)
{
    if (PatternsDecide)
        DateFormats[Format] = IsDatePattern(Pattern);
}

} // namespace kv
