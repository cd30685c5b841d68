// From what a source gives to a value of the kind of a field, under the settings of the import.
#include "Kvibase.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <optional>
#include <string>
#include <utility>

#include "KvCalendar.h"
#include "KvDateText.h"
#include "KvFormatSettings.h"
#include "KvIsoDate.h"
#include "KvNumberText.h"
#include "KvUserInterface.h"
#include "KvWrittenNumber.h"

namespace kv {

namespace {

/// Sets a process-wide separator for the length of one conversion.
class TSeparatorInForce
{
public:
    TSeparatorInForce(char& Target, char Value) : Setting(Target), Saved(Target) { Setting = Value; }
    TSeparatorInForce(const TSeparatorInForce&) = delete;
    TSeparatorInForce& operator=(const TSeparatorInForce&) = delete;
    ~TSeparatorInForce() { Setting = Saved; }

private:
    char& Setting;
    const char Saved;
};

/// The characters of a text value, else its text form in `Storage`.
std::string_view TextOf(const TVariant& Value, std::string& Storage)
{
    if (Value.IsString())
        return Value.Text();
    Storage = Value.ToText();
    return Storage;
}

/// The meaning of `Text` among the words of truth.
std::optional<bool> TruthOf(std::string_view Text, const TKvIDataFormats& Formats)
{
    if (Text == Formats.BooleanTrue)
        return true;
    if (Text == Formats.BooleanFalse)
        return false;
    return {};
}

void ParseBoolean(TVariant& Value, const TKvImportBaseComponent& Import)
{
    std::string Storage;
    if (const auto Truth = TruthOf(TextOf(Value, Storage), Import.DataFormats))
        Value = *Truth;
}

// --- Numbers ----------------------------------------------------------------------------------------

/// `Text` without `Separator`; a copy, in `Storage`, is made only where there is one to remove.
std::string_view WithoutSeparator(std::string_view Text, char Separator, std::string& Storage)
{
    if (Text.find(Separator) == Text.npos)
        return Text;
    Storage.clear();
    std::ranges::remove_copy(Text, std::back_inserter(Storage), Separator);
    return Storage;
}

/// True when `Read` makes a number of `Text` in one of the forms that people write.
template <class TRead>
bool ReadWritten(std::string_view Text, const TKvImportBaseComponent& Import, TRead Read)
{
    const auto& Formats = Import.DataFormats;
    if (Text.find(Formats.ThousandSeparator) == Text.npos && Read(Text))
        return true;
    std::string Storage;
    const auto Plain = TryPlainNumber(Text, Formats.ThousandSeparator, Formats.DecimalSeparator, Storage);
    return Plain && Read(*Plain);
}

template <class TRead>
void ReadNumber(const TVariant& Value, const TKvImportBaseComponent& Import, TRead Read)
{
    const TSeparatorInForce Decimal(FormatSettings().DecimalSeparator, Import.DataFormats.DecimalSeparator);
    std::string Whole, Digits;
    auto Text = TextOf(Value, Whole);
    if (Import.RunExtensions.Contains(rxWrittenForms)) {
        if (ReadWritten(Text, Import, Read))
            return;
    } else {
        Text = WithoutSeparator(Text, Import.DataFormats.ThousandSeparator, Digits);
        if (Read(Text))
            return;
    }
    if (!Import.RunExtensions.Contains(rxNoNumberBoxes))
        UserInterface().ShowMessage(mkError,
                                    "'" + std::string(Text) + "' is not a valid floating point value");
}

bool IsNumber(const TVariant& Value)
{
    return Value.Kind() == vkInteger || Value.Kind() == vkDouble || Value.Kind() == vkCurrency;
}

void ParseFloat(TVariant& Value, const TKvImportBaseComponent& Import)
{
    if (IsNumber(Value))
        return;                                     // its text would only lose digits
    std::optional<double> Number;
    ReadNumber(Value, Import, [&Number](std::string_view Text) {
        Number = TryTextToFloat(Text);
        return Number.has_value();
    });
    if (Number)
        Value = *Number;
}

/// The integer that `Number` is, or shows as.
std::optional<std::int64_t> IntegerOf(double Number)
{
    constexpr double Limit = 9223372036854775808.0; // 2 to the 63rd
    const double Shown = ShownNumber(Number);
    if (!(Shown >= -Limit && Shown < Limit) || Shown != std::trunc(Shown))
        return {};
    return static_cast<std::int64_t>(Shown);
}

/// A double as an exact field gets it.
void MakeExact(TVariant& Value)
{
    const double Number = Value.Double();
    if (const auto Integer = IntegerOf(Number))
        Value = *Integer;
    else
        Value = ShownNumber(Number);
}

/// Digits that no number holds stand as text, with the separator of the process.
void ParseDecimal(TVariant& Value, const TKvImportBaseComponent& Import)
{
    if (Value.Kind() == vkDouble)
        return MakeExact(Value);
    if (IsNumber(Value))
        return;
    TVariant Number;
    ReadNumber(Value, Import,
               [&Number](std::string_view Text) { return TryTextToDecimal(Text, Number); });
    if (Number.IsString() && Import.DataFormats.DecimalSeparator != FormatSettings().DecimalSeparator) {
        std::string Digits(Number.Text());
        std::ranges::replace(Digits, Import.DataFormats.DecimalSeparator, FormatSettings().DecimalSeparator);
        Number = Digits;
    }
    if (!Number.IsEmpty())
        Value = std::move(Number);
}

/// Text with separators, and with a fraction of zeros.
bool ReadInteger(std::string_view Text, const TKvImportBaseComponent& Import, TVariant& Result)
{
    const TSeparatorInForce Decimal(FormatSettings().DecimalSeparator, Import.DataFormats.DecimalSeparator);
    const bool IsExact = Import.RunExtensions.Contains(rxExactNumbers);
    const auto Read = [&](std::string_view Plain) {
        if (const auto Integer = TryTextToInt(Plain))
            Result = *Integer;
        else if (!IsExact || !TryTextToDecimal(Plain, Result))
            return false;
        if (Result.Kind() == vkDouble)
            MakeExact(Result);
        return Result.Kind() == vkInteger;
    };
    return Import.RunExtensions.Contains(rxWrittenForms) ? ReadWritten(Text, Import, Read) : Read(Text);
}

void ParseInteger(TVariant& Value, const TKvImportBaseComponent& Import)
{
    const bool IsExact = Import.RunExtensions.Contains(rxExactNumbers);
    if (Value.IsString()) {
        TVariant Number;
        if (const auto Integer = TryTextToInt(Value.Text()))
            Value = *Integer;
        else if (ReadInteger(Value.Text(), Import, Number))
            Value = Number;
        else if (const auto Truth = TruthOf(Value.Text(), Import.DataFormats); Truth && IsExact)
            Value = *Truth ? 1 : 0;
    }
    else if (Value.Kind() == vkDouble && IsExact) {
        if (const auto Integer = IntegerOf(Value.Double()))
            Value = *Integer;
    }
    else if (Value.Kind() == vkBoolean && IsExact)
        Value = Value.Boolean() ? 1 : 0;
}

// --- Dates and times --------------------------------------------------------------------------------

/// Years first and "T" leave no doubt, whatever order the dates of a source have.
std::optional<TDateTime> ReadIsoMoment(std::string_view Text)
{
    constexpr std::size_t DateSize = 10;            // of "2024-02-29"
    if (Text.size() <= DateSize || Text[DateSize] != 'T')
        return {};
    if (Text.ends_with('Z'))
        Text.remove_suffix(1);
    return TryIsoToDateTime(Text);
}

std::optional<TDateTime> ReadMoment(const TVariant& Value, const TKvImportBaseComponent& Import)
{
    const TSeparatorInForce Date(FormatSettings().DateSeparator, Import.DataFormats.DateSeparator);
    const TSeparatorInForce Time(FormatSettings().TimeSeparator, Import.DataFormats.TimeSeparator);
    std::string Storage;
    const auto Text = TextOf(Value, Storage);
    const auto Point = TryTextToDateTime(Text);
    return Point || !Import.RunExtensions.Contains(rxWrittenForms) ? Point : ReadIsoMoment(Trim(Text));
}

void ParseDateTime(TVariant& Value, const TKvImportBaseComponent& Import)
{
    if (Value.Kind() == vkDateTime)
        return;
    if (const auto Point = ReadMoment(Value, Import))
        Value = *Point;
}

/// True for what can only be a time or a length of time: nobody means the last days of 1899 with it.
bool IsTimeAlone(TDateTime Value)
{
    constexpr double NextMidnight = 1, MidnightAfter = 2;
    return Value.Days > -1 && Value.Days < MidnightAfter && Value.Days != NextMidnight;
}

/// A time alone is text, which no date field takes.
void ParseDate(TVariant& Value, const TKvImportBaseComponent& Import)
{
    const auto Point =
        Value.Kind() == vkDateTime ? std::optional(Value.DateTime()) : ReadMoment(Value, Import);
    if (!Point)
        return;
    if (!IsTimeAlone(*Point))
        Value = *Point;
    else if (!Value.IsString())
        Value = DurationToText(*Point);
}

bool IsTimeOfDay(TDateTime Value)
{
    return Value.Days >= 0 && std::llround(Value.Days * MsPerDay) < MsPerDay;
}

/// A length of time is text, which no time field takes.
void ParseTime(TVariant& Value, const TKvImportBaseComponent& Import)
{
    ParseDateTime(Value, Import);
    if (Value.Kind() == vkDateTime && IsTimeAlone(Value.DateTime()) && !IsTimeOfDay(Value.DateTime()))
        Value = DurationToText(Value.DateTime());
}

// --- Text -------------------------------------------------------------------------------------------

void ParseText(TVariant& Value, const TKvImportBaseComponent& Import)
{
    if (Value.Kind() == vkDouble && Import.RunExtensions.Contains(rxExactNumbers))
        Value = ShownText(Value.Double());
    else if (Value.Kind() == vkDateTime && Import.RunExtensions.Contains(rxTimesAlone) &&
             IsTimeAlone(Value.DateTime()))
        Value = DurationToText(Value.DateTime());
}

/// Gives a value that is not blank the kind of a field's type; where it has no meaning there it stays as it
/// is, and the field's assignment decides.
void Parse(TVariant& Value, TFieldType Type, const TKvImportBaseComponent& Import)
{
    const auto Has = [&Import](TKvIRunExtension Each) { return Import.RunExtensions.Contains(Each); };
    switch (Type) {
    case ftSmallint:
    case ftInteger:
    case ftWord:
    case ftAutoInc:
    case ftLargeint:
        if (Has(rxExactNumbers) || Has(rxWrittenForms))
            ParseInteger(Value, Import);
        break;
    case ftBoolean: ParseBoolean(Value, Import); break;
    case ftFloat:   ParseFloat(Value, Import); break;
    case ftCurrency:
    case ftBCD:     Has(rxExactNumbers) ? ParseDecimal(Value, Import) : ParseFloat(Value, Import); break;
    case ftDate:    Has(rxTimesAlone) ? ParseDate(Value, Import) : ParseDateTime(Value, Import); break;
    case ftTime:    Has(rxTimesAlone) ? ParseTime(Value, Import) : ParseDateTime(Value, Import); break;
    case ftDateTime: ParseDateTime(Value, Import); break;
    case ftString:
    case ftFixedChar:
    case ftMemo:
    case ftFmtMemo:
    case ftGuid:
        if (!Value.IsString())
            ParseText(Value, Import);
        break;
    default: break;                                 // bytes, and what takes every kind
    }
}

} // namespace

TVariant TKvImportBaseComponent::GetParsedValue(const TVariant& Source, int FieldIndex)
{
    TVariant Value = GetFieldValue(Source);
    if (Value.IsBlank())
        Value = Null;
    else if (FieldIndex >= 0)
        Parse(Value, FDataSet->Fields(FieldIndex).DataType(), *this);
    return Value;
}

} // namespace kv
