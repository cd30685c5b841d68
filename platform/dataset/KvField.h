// KvField - one column of a dataset: what it is declared to hold, and its value in the current record.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "KvVariant.h"

namespace kv {

class TDataSet;

/// What a field holds. The comment names the kind of variant that its value reads as.
enum TFieldType {
    ftUnknown,
    ftString,                                       ///< vkString of at most Size characters
    ftFixedChar,                                    ///< as ftString, in records of fixed width
    ftSmallint,                                     ///< vkInteger of 16 bits
    ftInteger,                                      ///< vkInteger of 32 bits
    ftWord,                                         ///< vkInteger 0 to 65535
    ftAutoInc,                                      ///< vkInteger of 32 bits that the dataset may supply
    ftLargeint,                                     ///< vkInteger of 64 bits
    ftBoolean,                                      ///< vkBoolean
    ftFloat,                                        ///< vkDouble
    ftCurrency,                                     ///< vkCurrency or vkDouble: an amount of money
    /// exact decimal: vkInteger, vkCurrency, vkDouble or digits as vkString
    ftBCD,
    ftDate,                                         ///< vkDateTime without a fraction
    ftTime,                                         ///< vkDateTime, only a fraction
    ftDateTime,                                     ///< vkDateTime
    ftMemo,                                         ///< vkString of any length
    ftFmtMemo,                                      ///< memo with formatting codes, as ftMemo
    ftBytes,                                        ///< vkString of Size raw bytes
    ftVarBytes,                                     ///< vkString of at most Size raw bytes
    ftBlob,                                         ///< vkString of raw bytes, any length
    ftGraphic,                                      ///< as ftBlob
    ftOle,                                          ///< as ftBlob
    ftGuid,                                         ///< vkString "{XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}"
    ftVariant                                       ///< any kind; nothing is converted
};

bool IsTextField(TFieldType Type);                  ///< Strings and memos: text for people.
bool IsBinaryField(TFieldType Type);                ///< Raw bytes that no code page touches.
bool IsNumericField(TFieldType Type);               ///< Integers of all sizes, floats, currency, BCD.
bool IsDateTimeField(TFieldType Type);              ///< Dates, times and both together.

/// What a dataset declares of a field before it is opened.
struct TFieldDef
{
    std::string Name;
    TFieldType DataType = ftString;
    /// Characters of text, bytes of binary data; 0: no limit.
    int Size = 0;
    bool Required = false;                          ///< A record without a value is refused.
    bool ReadOnly = false;                          ///< Computed or maintained by the database.
    bool HasDefault = false;                        ///< The database supplies a value that is not assigned.
    /// What people call the field; empty where nobody has said.
    std::string Label = {};
    /// Digits of a decimal number; 0: no limit.
    int Precision = 0;
    int Scale = 0;                                  ///< As many of these follow the separator.
};

/// A field of an open dataset; the dataset owns it, and closing the dataset ends it.
class TField
{
public:
    TField(TDataSet& DataSet, int Index, TFieldDef Def);

    TDataSet& DataSet() const { return FDataSet; }
    const TFieldDef& Def() const { return FDef; }
    const std::string& FieldName() const { return FDef.Name; }
    const std::string& Label() const { return FDef.Label; }
    int Index() const { return FIndex; }            ///< Position in the dataset, from 0.
    TFieldType DataType() const { return FDef.DataType; }
    int Size() const { return FDef.Size; }
    bool Required() const { return FDef.Required; }
    bool ReadOnly() const { return FDef.ReadOnly; }
    bool HasDefault() const { return FDef.HasDefault; }
    /// Characters that show any usual value of the field, at least 1.
    int DisplayWidth() const;

    /// The value in the current record, null when it has none: that being written while the dataset is
    /// in dsEdit or dsInsert, else the stored one.
    TVariant Value() const;
    /// The same without copying text: valid until the dataset moves, changes or closes.
    TVariant PeekValue() const;
    bool IsNull() const;
    std::string AsString() const;                   ///< Text form of the value, empty for null.

    /// Converts `Value` to the type of the field and sets it in the record being written; null and
    /// empty clear the field.
    /// Raises EConvertError naming value and field when it has no meaning there, leaves the range or
    /// is longer than the field, EDatabaseError when the field is read-only or nothing is being written.
    void SetValue(const TVariant& Value);
    void SetAsString(std::string_view Text);        ///< Like SetValue with a string.
    void Clear();

    /// `Value` in the kind that the field's type reads as, sizes apart. Null stays null.
    /// Raises EConvertError as SetValue does.
    void Convert(const TVariant& Value, TVariant& Result) const;
    /// The same without an error: false when the value has no meaning in the field's type.
    bool TryConvert(const TVariant& Value, TVariant& Result) const;

private:
    TDataSet& FDataSet;
    int FIndex;
    TFieldDef FDef;
};

} // namespace kv
