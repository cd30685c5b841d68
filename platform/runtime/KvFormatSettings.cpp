#include "KvFormatSettings.h"

#include <langinfo.h>
#include <locale.h>
#include <memory>
#include <optional>
#include <type_traits>

namespace kv {

namespace {

struct TFreeLocale
{
    void operator()(locale_t Locale) const { freelocale(Locale); }
};
using TLocale = std::unique_ptr<std::remove_pointer_t<locale_t>, TFreeLocale>;

constexpr bool IsAsciiPunctuation(char Char)
{
    return (Char >= '!' && Char <= '/') || (Char >= ':' && Char <= '@');
}

constexpr bool IsFormatLetter(char Char) { return Char == 'y' || Char == 'M' || Char == 'd'; }

/// The letters for one conversion of strftime, none for a conversion that is no number of a date.
std::string_view LettersOf(char Conversion, bool Padded)
{
    switch (Conversion) {
    case 'd': return Padded ? "dd" : "d";
    case 'e': return "d";
    case 'm': return Padded ? "MM" : "M";
    case 'Y': return "yyyy";
    case 'y': return "yy";
    case 'F': return "yyyy-MM-dd";
    case 'D': return "MM/dd/yy";
    default: return {};
    }
}

/// The one character between the numbers of a short date format, or none.
std::optional<char> SeparatorOf(std::string_view DateFormat)
{
    std::optional<char> Result;
    for (const char Char : DateFormat) {
        if (IsFormatLetter(Char))
            continue;
        if (Result && *Result != Char)
            return {};
        Result = Char;
    }
    return Result;
}

/// A separator that is one ASCII character; `Otherwise` for none and for those of several bytes.
char SeparatorOr(const char* Text, char Otherwise)
{
    const std::string_view Separator(Text);
    return Separator.size() == 1 && static_cast<unsigned char>(Separator[0]) < 0x80 ? Separator[0]
                                                                                    : Otherwise;
}

/// The locale "C" speaks for no country: its two-digit years and missing separators are nobody's choice.
bool NamesCountry(locale_t Locale, int Category)
{
    const std::string_view Name = nl_langinfo_l(_NL_LOCALE_NAME(Category), Locale);
    return Name != "C" && Name != "POSIX" && !Name.starts_with("C.");
}

void TakeNumbers(locale_t Locale, TFormatSettings& Settings)
{
    Settings.DecimalSeparator = SeparatorOr(nl_langinfo_l(RADIXCHAR, Locale), '.');
    const char Fallback = Settings.DecimalSeparator == ',' ? '.' : ',';
    Settings.ThousandSeparator = SeparatorOr(nl_langinfo_l(THOUSEP, Locale), Fallback);
}

void TakeTimes(locale_t Locale, TFormatSettings& Settings)
{
    const std::string_view Format = nl_langinfo_l(T_FMT, Locale);   // "%H.%M.%S", or "%T" with colons
    if (Format.size() > 2 && Format.starts_with("%H") && Format[2] != '%' && IsAsciiPunctuation(Format[2]))
        Settings.TimeSeparator = Format[2];
}

void TakeDates(locale_t Locale, TFormatSettings& Settings)
{
    auto Format = ShortDateFormatOf(nl_langinfo_l(D_FMT, Locale));
    if (Format.empty())
        return;
    Settings.DateSeparator = *SeparatorOf(Format);
    Settings.ShortDateFormat = std::move(Format);
}

} // namespace

std::string ShortDateFormatOf(std::string_view TimeFormat)
{
    std::string Result;
    while (!TimeFormat.empty()) {
        if (TimeFormat.starts_with('%')) {
            const bool Padded = !TimeFormat.starts_with("%-");
            TimeFormat.remove_prefix(Padded ? 1 : 2);
            const auto Letters = TimeFormat.empty() ? std::string_view() : LettersOf(TimeFormat[0], Padded);
            if (Letters.empty())
                return {};
            Result += Letters;
        } else if (IsAsciiPunctuation(TimeFormat[0])) {
            Result += TimeFormat[0];
        } else if (TimeFormat[0] != ' ') {          // "%d. %m. %Y" is read without its blanks
            return {};
        }
        TimeFormat.remove_prefix(1);
    }
    while (!Result.empty() && !IsFormatLetter(Result.back()))
        Result.pop_back();                          // "%d.%m.%Y." ends in a period that nobody types
    return SeparatorOf(Result) ? Result : std::string();
}

TFormatSettings LocaleFormatSettings()
{
    TFormatSettings Settings;
    const TLocale Locale(newlocale(LC_ALL_MASK, "", nullptr));
    if (!Locale)                                    // the environment names a locale that is not installed
        return Settings;
    if (NamesCountry(Locale.get(), LC_NUMERIC))
        TakeNumbers(Locale.get(), Settings);
    if (NamesCountry(Locale.get(), LC_TIME)) {
        TakeDates(Locale.get(), Settings);
        TakeTimes(Locale.get(), Settings);
    }
    return Settings;
}

TFormatSettings& FormatSettings()
{
    static TFormatSettings Settings = LocaleFormatSettings();
    return Settings;
}

} // namespace kv
