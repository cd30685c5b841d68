#include "KvNumberText.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <iterator>
#include <system_error>

#include "KvException.h"
#include "KvFormatSettings.h"
#include "KvText.h"

namespace kv {

namespace {

constexpr bool IsDigit(char Char) { return Char >= '0' && Char <= '9'; }

/// Takes a sign off the front; true for a minus.
bool TakeSign(std::string_view& Text)
{
    const bool Negative = Text.starts_with('-');
    if (Negative || Text.starts_with('+'))
        Text.remove_prefix(1);
    return Negative;
}

/// The whole of `Text` as a number, or nothing.
std::optional<double> FromChars(std::string_view Text)
{
    double Value;
    const auto* const End = Text.data() + Text.size();
    const auto [Stop, Error] = std::from_chars(Text.data(), End, Value);
    if (Error != std::errc() || Stop != End)
        return {};
    return Value;
}

/// A number without exponent and of so few digits that it takes one division, which rounds once.
std::optional<double> ParseShortFloat(std::string_view Text)
{
    static constexpr double Powers[] = {1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9, 1e10, 1e11, 1e12,
                                        1e13, 1e14};
    constexpr std::size_t MaxSize = 15;             // digits of an integer that a double always holds
    if (Text.size() > MaxSize)
        return {};
    std::int64_t Digits = 0;
    std::size_t Period = Text.size();
    for (std::size_t I = 0; I < Text.size(); ++I) {
        if (IsDigit(Text[I]))
            Digits = Digits * 10 + (Text[I] - '0');
        else if (Text[I] == '.' && Period == Text.size())
            Period = I;
        else
            return {};
    }
    const auto Decimals = Period == Text.size() ? 0 : Text.size() - Period - 1;
    return static_cast<double>(Digits) / Powers[Decimals];
}

/// A number whose fraction follows a period.
std::optional<double> ParseFloat(std::string_view Text)
{
    const bool Negative = TakeSign(Text);
    if (Text.empty() || Text == "." || !(IsDigit(Text[0]) || Text[0] == '.')) // nor "inf" and a second sign
        return {};
    auto Value = ParseShortFloat(Text);
    if (!Value)
        Value = FromChars(Text);
    if (Value && Negative)
        *Value = -*Value;
    return Value;
}

std::optional<double> ParseFloat(std::string_view Text, char Separator)
{
    if (Text.find('.') != Text.npos)
        return {};
    char Short[64];
    std::string Long;                               // for digits without end, which are rare
    auto* Copy = Short;
    if (Text.size() > sizeof Short) {
        Long.resize(Text.size());
        Copy = Long.data();
    }
    std::ranges::replace_copy(Text, Copy, Separator, '.');
    return ParseFloat({Copy, Text.size()});
}

/// Without the zeros that end a fraction, nor the separator before nothing else.
std::string_view WithoutFractionZeros(std::string_view Text, char Separator)
{
    if (Text.find(Separator) == Text.npos)
        return Text;
    Text = Text.substr(0, Text.find_last_not_of('0') + 1);
    if (Text.size() > 1 && Text.ends_with(Separator))
        Text.remove_suffix(1);
    return Text;
}

/// A double of so few digits gives the same digits back.
constexpr int MaxDoubleDigits = 15;

bool HasMoreDigitsThanDoubles(std::string_view Text)
{
    Text = Text.substr(0, Text.find_first_of("eE"));
    const auto First = std::min(Text.find_first_of("123456789"), Text.size());
    return std::ranges::count_if(Text.substr(First), IsDigit) > MaxDoubleDigits;
}

/// Appends a decimal digit to a magnitude kept negative, which reaches one further. False on overflow.
bool AppendDigit(std::int64_t& Negated, int Digit)
{
    return !__builtin_mul_overflow(Negated, 10, &Negated) &&
           !__builtin_sub_overflow(Negated, Digit, &Negated);
}

/// "1.5e+300" as users know it: "1.5E300".
std::string ScientificForUsers(std::string_view Text)
{
    const auto Mark = Text.find('e');
    if (Mark == Text.npos)                          // infinity or no number
        return UpperCase(Text);
    auto Exponent = Text.substr(Mark + 1);
    const bool Negative = TakeSign(Exponent);
    Exponent.remove_prefix(std::min(Exponent.find_first_not_of('0'), Exponent.size() - 1));
    std::string Result(Text.substr(0, Mark));
    Result += Negative ? "E-" : "E";
    return Result.append(Exponent);
}

} // namespace

std::optional<std::int64_t> TryTextToInt(std::string_view Text)
{
    Text = Trim(Text);
    const bool Negative = TakeSign(Text);
    if (Text.empty())
        return {};
    std::int64_t Value = 0;                         // negated
    for (const char Char : Text)
        if (!IsDigit(Char) || !AppendDigit(Value, Char - '0'))
            return {};
    if (!Negative && __builtin_sub_overflow(0, Value, &Value))
        return {};
    return Value;
}

std::int64_t TextToInt(std::string_view Text)
{
    if (const auto Value = TryTextToInt(Text))
        return *Value;
    throw EConvertError(FormatText("'%s' is not a valid integer value", {Text}));
}

std::optional<double> TryTextToFloat(std::string_view Text)
{
    const char Separator = FormatSettings().DecimalSeparator;
    return Separator == '.' ? ParseFloat(Trim(Text)) : ParseFloat(Trim(Text), Separator);
}

double TextToFloat(std::string_view Text)
{
    if (const auto Value = TryTextToFloat(Text))
        return *Value;
    throw EConvertError(FormatText("'%s' is not a valid floating point value", {Text}));
}

std::optional<TCurrency> TryTextToCurrency(std::string_view Text)
{
    constexpr int Decimals = 4;
    const char Separator = FormatSettings().DecimalSeparator;
    Text = Trim(Text);
    const bool Negative = TakeSign(Text);

    std::int64_t Negated = 0;
    int FractionDigits = -1;                        // -1 before the separator
    for (const char Char : Text) {
        if (Char == Separator && FractionDigits < 0) {
            FractionDigits = 0;
            continue;
        }
        if (!IsDigit(Char) || FractionDigits == Decimals || !AppendDigit(Negated, Char - '0'))
            return {};
        FractionDigits += FractionDigits >= 0;
    }
    const bool HasDigits = Text.size() > (FractionDigits >= 0 ? 1u : 0u);
    if (!HasDigits)
        return {};
    for (int Digit = std::max(FractionDigits, 0); Digit < Decimals; ++Digit)
        if (!AppendDigit(Negated, 0))
            return {};
    if (!Negative && __builtin_sub_overflow(0, Negated, &Negated))
        return {};
    return TCurrency{Negated};
}

bool TryTextToDecimal(std::string_view Text, TVariant& Result)
{
    const auto Take = [&Result](std::string_view Digits) {
        if (const auto Amount = TryTextToCurrency(Digits); !Amount) {
            const auto Integer = TryTextToInt(Digits);
            if (Integer)
                Result = *Integer;
            return Integer.has_value();
        } else if (Amount->Scaled % TCurrency::Scale == 0) {
            Result = Amount->Scaled / TCurrency::Scale;
        } else {
            Result = *Amount;
        }
        return true;
    };
    Text = Trim(Text);
    if (Take(Text))
        return true;
    const auto Number = TryTextToFloat(Text);
    if (!Number)
        return false;
    const bool IsScientific = Text.find_first_of("eE") != Text.npos;
    const auto Digits = IsScientific ? Text : WithoutFractionZeros(Text, FormatSettings().DecimalSeparator);
    if (Take(Digits))
        return true;
    if (HasMoreDigitsThanDoubles(Digits))
        Result.SetText(Text);
    else
        Result = *Number;
    return true;
}

double ShownNumber(double Value)
{
    if (!std::isfinite(Value) || Value == std::trunc(Value))
        return Value;
    char Buffer[32];
    const auto End = std::to_chars(std::begin(Buffer), std::end(Buffer), Value, std::chars_format::scientific,
                                   MaxDoubleDigits - 1).ptr;
    std::from_chars(Buffer, End, Value);
    return Value;
}

std::string ShownText(double Value)
{
    constexpr double FirstWithExponent = 1e21;
    const double Shown = ShownNumber(Value);
    if (Shown != std::trunc(Shown) || !(std::fabs(Shown) < FirstWithExponent) || Shown == 0)
        return FloatToText(Shown);
    char Buffer[32];
    const auto End = std::to_chars(std::begin(Buffer), std::end(Buffer), Shown, std::chars_format::fixed).ptr;
    return std::string(Buffer, End);
}

std::string FloatToText(double Value)
{
    if (Value == 0)                                 // nobody types "-0"
        return "0";
    const double Magnitude = std::fabs(Value);
    const bool IsPlain = Magnitude >= 1e-5 && Magnitude < 1e15;
    char Buffer[32];
    const auto End = std::to_chars(std::begin(Buffer), std::end(Buffer), Value,
                                   IsPlain ? std::chars_format::fixed : std::chars_format::scientific).ptr;
    const std::string_view Text(Buffer, End);
    auto Result = IsPlain ? std::string(Text) : ScientificForUsers(Text);
    std::ranges::replace(Result, '.', FormatSettings().DecimalSeparator);
    return Result;
}

std::string CurrencyToText(TCurrency Value)
{
    auto Result = std::to_string(Value.Scaled / TCurrency::Scale);
    const auto Fraction = static_cast<int>(Value.Scaled % TCurrency::Scale);
    if (Fraction == 0)
        return Result;
    if (Fraction < 0 && Value.Scaled > -TCurrency::Scale)
        Result.insert(0, 1, '-');                   // the whole part, 0, has lost it
    auto Digits = std::to_string(TCurrency::Scale + std::abs(Fraction));
    Digits[0] = FormatSettings().DecimalSeparator;
    Digits.erase(Digits.find_last_not_of('0') + 1);
    return Result + Digits;
}

} // namespace kv
