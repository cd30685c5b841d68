// From a source's text to a value of the destination field's type, under the component's data formats.
#include "Kvibase.h"

#include <algorithm>
#include <string>

#include "KvCodePage.h"
#include "KvDateText.h"
#include "KvFormatSettings.h"
#include "KvNumberText.h"
#include "KvUserInterface.h"

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

// Each turns `Value` into one of its kind under the settings of `Import` or, where it has no meaning in it,
// leaves it as it is.

void ParseBoolean(TVariant& Value, const TKvImportBaseComponent& Import)
{
    std::string Storage;
    const auto Text = TextOf(Value, Storage);
    if (Text == Import.DataFormats.BooleanTrue)
        Value = true;
    else if (Text == Import.DataFormats.BooleanFalse)
        Value = false;
}

/// `Text` without `Separator`; a copy, in `Storage`, is made only where there is one to remove.
std::string_view WithoutSeparator(std::string_view Text, char Separator, std::string& Storage)
{
    if (Text.find(Separator) == Text.npos)
        return Text;
    Storage.clear();
    std::ranges::remove_copy(Text, std::back_inserter(Storage), Separator);
    return Storage;
}

void ParseFloat(TVariant& Value, const TKvImportBaseComponent& Import)
{
    if (Value.Kind() == vkInteger || Value.Kind() == vkDouble || Value.Kind() == vkCurrency)
        return;                                     // its text would only lose digits
    const TSeparatorInForce Decimal(FormatSettings().DecimalSeparator, Import.DataFormats.DecimalSeparator);
    std::string Whole, Digits;
    const auto Text = WithoutSeparator(TextOf(Value, Whole), Import.DataFormats.ThousandSeparator, Digits);
    if (const auto Number = TryTextToFloat(Text))
        Value = *Number;
    else if (!Import.RunExtensions.Contains(rxNoNumberBoxes))
        UserInterface().ShowMessage(mkError,
                                    "'" + std::string(Text) + "' is not a valid floating point value");
}

void ParseDateTime(TVariant& Value, const TKvImportBaseComponent& Import)
{
    if (Value.Kind() == vkDateTime)
        return;
    const TSeparatorInForce Date(FormatSettings().DateSeparator, Import.DataFormats.DateSeparator);
    const TSeparatorInForce Time(FormatSettings().TimeSeparator, Import.DataFormats.TimeSeparator);
    std::string Storage;
    if (const auto Point = TryTextToDateTime(TextOf(Value, Storage)))
        Value = *Point;
}

using TParse = void (*)(TVariant& Value, const TKvImportBaseComponent& Import);

/// How a value gets the kind of a field's type. None for texts and bytes, which stay as they are, and for
/// integers, on which the field's assignment decides.
TParse ParserFor(TFieldType Type)
{
    switch (Type) {
    case ftBoolean:  return ParseBoolean;
    case ftFloat:
    case ftCurrency:
    case ftBCD:      return ParseFloat;
    case ftDate:
    case ftTime:
    case ftDateTime: return ParseDateTime;
    default:         return nullptr;
    }
}

TVariant ToArray(const std::string& Name, const TVariant& Source, const TVariant& Value, int Index)
{
    auto Element = TVariant::Array(0, 3);
    Element[0] = Name;
    Element[1] = Source;
    Element[2] = Value;
    Element[3] = Index;
    return Element;
}

} // namespace

TVariant TKvImportBaseComponent::GetParsedValue(const TVariant& Source, int FieldIndex)
{
    TVariant Value = GetFieldValue(Source);
    if (Value.IsBlank())
        Value = Null;
    else if (const auto Parse =
                 FieldIndex >= 0 ? ParserFor(FDataSet->Fields(FieldIndex).DataType()) : nullptr)
        Parse(Value, *this);
    return Value;
}

bool TKvImportBaseComponent::LoadRecord()
{
    if (IsLooking())                                // at values one by one
        return true;
    const TMappedField* Current = nullptr;
    try {
        for (auto& Field : DestFields) {
            Current = &Field;
            Field.Value = GetParsedValue(Field.Source, Field.Index);
        }
        if (CharacterSet == csiASCII_MSDOS || OnGetCellParams)
            for (auto& Field : DestFields) {
                Current = &Field;
                OfferCell(Field);
            }
    }
    catch (Exception& Error) {
        TellRecord(Error, Current);
        throw;
    }
    return !OnBeforeRecordEvent || OfferRecord();
}

/// Adds to what `Error` knows its record and, where there is one, its field.
void TKvImportBaseComponent::TellRecord(Exception& Error, const TMappedField* Mapped) const
{
    auto& Facts = Error.Facts;
    if (Facts.Record < 0)
        Facts.Record = Statistic.TotalImported;
    if (Mapped && Facts.Field.empty())
        Facts.Field =
            Mapped->Index >= 0 ? FDataSet->Fields(Mapped->Index).FieldName() : Mapped->Source.ToText();
}

void TKvImportBaseComponent::ConvertText(TVariant& Value)
{
    try {
        Value = UECode(true, Value.ToText());
    }
    catch (Exception& Error) {
        Error.Facts.Value = Value.ToText();
        Error.Facts.Rule = erConversion;
        throw;
    }
}

void TKvImportBaseComponent::OfferCell(TMappedField& Mapped)
{
    auto* const Field = Mapped.Index >= 0 ? &FDataSet->Fields(Mapped.Index) : nullptr;
    const bool IsText = !Field || !(IsNumericField(Field->DataType()) || IsDateTimeField(Field->DataType()));
    if (CharacterSet == csiASCII_MSDOS && IsText)
        ConvertText(Mapped.Value);
    if (!OnGetCellParams)
        return;
    TVariant Value(std::as_const(Mapped.Value));    // a copy: the handler may keep it
    OnGetCellParams(*this, Field, Value);
    if (Value.Kind() != Mapped.Value.Kind() || Value != Mapped.Value)
        Mapped.Value = std::move(Value);
}

bool TKvImportBaseComponent::OfferRecord()
{
    auto Values = TVariant::Array(0, static_cast<int>(DestFields.size()) - 1);
    for (std::size_t I = 0; I < DestFields.size(); ++I) {
        const auto& Field = DestFields[I];
        Values[static_cast<int>(I)] = ToArray(Field.Name, Field.Source, Field.Value, Field.Index);
    }
    bool Accept = true;
    OnBeforeRecordEvent(*this, {}, Values, Accept);
    for (std::size_t I = 0; I < DestFields.size(); ++I)
        DestFields[I].Value = std::move(Values[static_cast<int>(I)][2]);
    return Accept;
}

std::string TKvImportBaseComponent::UECode(bool Convert, std::string_view Text)
{
    return Convert ? OemToAnsi(Text) : std::string(Text);
}

} // namespace kv
