// Which values a field refuses for their length or their digits.
#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include "KvCodePage.h"
#include "KvDataSet.h"
#include "KvException.h"
#include "KvFieldConvert.h"
#include "KvFormatSettings.h"

namespace kv {

namespace {

/// How a message quotes a value: whole when short, else its beginning.
std::string Quoted(const TVariant& Value)
{
    constexpr std::size_t Longest = 80;
    if (Value.IsArray())
        return "an array";
    auto Text = Value.ToText();
    if (Text.size() > Longest) {
        auto Cut = Longest;
        while (Cut > 0 && (static_cast<unsigned char>(Text[Cut]) & 0xC0) == 0x80)
            --Cut;                                  // not inside a character
        Text.resize(Cut);
        Text += "...";
    }
    return "'" + Text + "'";
}

constexpr int MaxPower = 18;                        // of ten, in 64 bits

constexpr auto PowersOfTen = [] {
    std::array<std::int64_t, MaxPower + 1> Powers{1};
    for (std::size_t I = 1; I < Powers.size(); ++I)
        Powers[I] = Powers[I - 1] * 10;
    return Powers;
}();

constexpr std::int64_t PowerOfTen(int Exponent)
{
    return PowersOfTen[static_cast<std::size_t>(std::clamp(Exponent, 0, MaxPower))];
}

/// Of digits with the process's separator, or with an exponent of which nobody keeps count.
bool HasFittingDigits(std::string_view Text, int Whole, int Decimals)
{
    const auto Point = std::min(Text.find(FormatSettings().DecimalSeparator), Text.size());
    const auto First = std::min(Text.find_first_of("123456789"), Point);
    const auto Last = Text.find_last_of("123456789");
    const auto Used = Last == Text.npos || Last < Point ? 0 : Last - Point;
    return Text.find_first_of("eE") == Text.npos && std::cmp_less_equal(Point - First, Whole) &&
           std::cmp_less_equal(Used, Decimals);
}

/// Of an amount counted in units that have so many decimals.
bool HasFittingDigits(std::int64_t Amount, int UnitDecimals, int Whole, int Decimals)
{
    if (Whole + UnitDecimals <= MaxPower) {
        const auto Limit = PowerOfTen(Whole + UnitDecimals);
        if (Amount >= Limit || Amount <= -Limit)
            return false;
    }
    return Amount % PowerOfTen(UnitDecimals - Decimals) == 0;
}

bool HasFittingDigits(double Number, int Whole, int Decimals)
{
    if (Whole <= MaxPower && !(std::fabs(Number) < static_cast<double>(PowerOfTen(Whole))))
        return false;
    if (Decimals > MaxPower)
        return true;
    // The double that is nearest to a number of few decimals: dividing gives it back.
    const auto Power = static_cast<double>(PowerOfTen(Decimals));
    return std::round(Number * Power) / Power == Number;
}

/// True for a number of so many digits before the separator and after it.
bool HasFittingDigits(const TVariant& Value, int Whole, int Decimals)
{
    constexpr int CurrencyDecimals = 4;
    switch (Value.Kind()) {
    case vkInteger:  return HasFittingDigits(Value.Integer(), 0, Whole, Decimals);
    case vkCurrency: return HasFittingDigits(Value.Currency().Scaled, CurrencyDecimals, Whole, Decimals);
    case vkDouble:   return HasFittingDigits(Value.Double(), Whole, Decimals);
    case vkString:   return HasFittingDigits(Value.Text(), Whole, Decimals);
    default:         return true;
    }
}

} // namespace

void RefuseValue(const TField& Field, const TVariant& Value, TKvErrorRule Rule, const std::string& Why)
{
    throw EConvertError(Quoted(Value) + Why, {.Field = Field.FieldName(),
                                              .Value = Value.IsArray() ? "" : Value.ToText(),
                                              .Rule = Rule,
                                              .Record = Field.DataSet().RecordTag});
}

std::size_t CharacterCount(std::string_view Text)
{
    if (!AnsiIsUtf8())
        return Text.size();
    return static_cast<std::size_t>(std::ranges::count_if(
        Text, [](char Byte) { return (static_cast<unsigned char>(Byte) & 0xC0) != 0x80; }));
}

void CheckFieldSize(const TField& Field, const TVariant& Value)
{
    const auto Limit = static_cast<std::size_t>(Field.Size());
    const auto Text = Value.Text();
    const bool Binary = IsBinaryField(Field.DataType());
    const auto Length = Binary ? Text.size() : CharacterCount(Text);
    if (Length > Limit && (Binary || IsTextField(Field.DataType())))
        RefuseValue(Field, Value, erLength,
               " is longer than field '" + Field.FieldName() + "': " + std::to_string(Length) +
                   (Binary ? " bytes" : " characters") + ", it holds " + std::to_string(Limit));
}

void CheckFieldPrecision(const TField& Field, const TVariant& Value)
{
    const auto [Precision, Scale] = std::pair(Field.Def().Precision, Field.Def().Scale);
    if (!HasFittingDigits(Value, Precision - Scale, Scale))
        RefuseValue(Field, Value, erRange,
               " has more digits than field '" + Field.FieldName() + "' holds: " +
                   std::to_string(Precision - Scale) + " before and " + std::to_string(Scale) +
                   " after the separator");
}

} // namespace kv
