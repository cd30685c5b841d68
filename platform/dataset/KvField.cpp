#include "KvField.h"

#include <algorithm>

#include "KvDataSet.h"
#include "KvException.h"
#include "KvFieldConvert.h"

namespace kv {

bool IsTextField(TFieldType Type)
{
    return Type == ftString || Type == ftFixedChar || Type == ftMemo || Type == ftFmtMemo || Type == ftGuid;
}

bool IsBinaryField(TFieldType Type)
{
    return Type == ftBytes || Type == ftVarBytes || Type == ftBlob || Type == ftGraphic || Type == ftOle;
}

bool IsNumericField(TFieldType Type)
{
    return IsIntegerField(Type) || Type == ftFloat || Type == ftCurrency || Type == ftBCD;
}

bool IsDateTimeField(TFieldType Type)
{
    return Type == ftDate || Type == ftTime || Type == ftDateTime;
}

TField::TField(TDataSet& DataSet, int Index, TFieldDef Definition)
    : FDataSet(DataSet), FIndex(Index), FDef(std::move(Definition))
{
}

int TField::DisplayWidth() const
{
    constexpr int UnlimitedWidth = 50;
    switch (FDef.DataType) {
    case ftSmallint: return 6;                      // -32768
    case ftInteger:
    case ftAutoInc:  return 11;                     // -2147483648
    case ftWord:     return 5;
    case ftLargeint: return 20;                     // -9223372036854775808
    case ftBoolean:  return 5;                      // False
    case ftFloat:
    case ftCurrency:
    case ftBCD:      return 20;
    case ftDate:     return 10;                     // 2024-02-29
    case ftTime:     return 12;                     // 23:59:59.999
    case ftDateTime: return 23;
    case ftGuid:     return 38;
    default:         return FDef.Size > 0 ? FDef.Size : UnlimitedWidth;
    }
}

TVariant TField::PeekValue() const
{
    return FDataSet.FieldValue(*this);
}

TVariant TField::Value() const
{
    const TVariant Loan = PeekValue();
    return TVariant(Loan);                          // a copy owns its text
}

bool TField::IsNull() const
{
    return !PeekValue().HasValue();
}

std::string TField::AsString() const
{
    return PeekValue().ToText();
}

void TField::SetValue(const TVariant& Value)
{
    TVariant& Slot = FDataSet.WritableSlot(*this);
    Convert(Value, Slot);
    if (FDef.Size > 0 && Slot.IsString() && Slot.Text().size() > static_cast<std::size_t>(FDef.Size))
        CheckFieldSize(*this, Slot);
    if (FDef.Precision > 0 && Slot.HasValue())
        CheckFieldPrecision(*this, Slot);
    FDataSet.MarkAssigned(*this);
}

void TField::SetAsString(std::string_view Text)
{
    SetValue(TVariant::Borrow(Text));
}

void TField::Clear()
{
    FDataSet.WritableSlot(*this) = Null;
    FDataSet.MarkAssigned(*this);
}

void TField::Convert(const TVariant& Value, TVariant& Result) const
{
    if (!ConvertFieldValue(DataType(), Value, Result))
        RaiseConversion(*this, Value);
}

bool TField::TryConvert(const TVariant& Value, TVariant& Result) const
{
    return ConvertFieldValue(DataType(), Value, Result);
}

} // namespace kv
