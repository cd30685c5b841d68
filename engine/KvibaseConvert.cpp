// The values of a record: fetched, of the OEM code page, offered to handlers.
#include "Kvibase.h"

#include <string>

#include "KvCodePage.h"

namespace kv {

namespace {

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

bool TKvImportBaseComponent::LoadRecord()
{
    if (IsLooking())                                // at values one by one
        return true;
    // What a handler does may end the loans of the source.
    const bool Owns = OnGetCellParams || OnBeforeRecordEvent || OnBeforeUpdate;
    const TMappedField* Current = nullptr;
    try {
        for (auto& Field : DestFields) {
            Current = &Field;
            Field.Value = GetParsedValue(Field.Source, Field.Index);
            if (Owns)
                Field.Value.Own();
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

bool TKvImportBaseComponent::TakesOemText(const TField* Field, const TVariant& Value) const
{
    if (RunExtensions.Contains(rxOemTextOnly) &&
        (!Value.IsString() || (Field && IsBinaryField(Field->DataType()))))
        return false;
    return !Field || !(IsNumericField(Field->DataType()) || IsDateTimeField(Field->DataType()));
}

void TKvImportBaseComponent::OfferCell(TMappedField& Mapped)
{
    auto* const Field = Mapped.Index >= 0 ? &FDataSet->Fields(Mapped.Index) : nullptr;
    if (IsOemText() && TakesOemText(Field, Mapped.Value))
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
