// KvSqliteValue - values on their way between the variants of a dataset and SQLite's storage classes.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "KvCodePage.h"
#include "KvIsoDate.h"
#include "KvSqliteType.h"
#include "KvVariant.h"

namespace kv {

/// SQLite's storage classes.
enum TSQLiteStorage : std::uint8_t { ssNull, ssInteger, ssReal, ssText, ssBlob };

/// A value as SQLite stores it. Text is UTF-8. `Bytes` views memory that others keep.
struct TSQLiteValue
{
    TSQLiteStorage Storage = ssNull;
    std::int64_t Integer = 0;
    double Real = 0;
    std::string_view Bytes = {};                    ///< Of text and blob; never a null pointer there.

    static TSQLiteValue OfInteger(std::int64_t Value) { return {.Storage = ssInteger, .Integer = Value}; }
    static TSQLiteValue OfReal(double Value) { return {.Storage = ssReal, .Real = Value}; }
    static TSQLiteValue OfText(std::string_view Value) { return OfBytes(ssText, Value); }
    static TSQLiteValue OfBlob(std::string_view Value) { return OfBytes(ssBlob, Value); }

private:
    static TSQLiteValue OfBytes(TSQLiteStorage Storage, std::string_view Value)
    {
        return {.Storage = Storage, .Bytes = Value.data() ? Value : std::string_view("", 0)};
    }
};

/// A stored value that keeps its own bytes; memory is used again.
class TSQLiteOwnValue
{
public:
    void Set(const TSQLiteValue& Value)
    {
        Head = Value;
        if (HasBytes())
            Bytes.assign(Value.Bytes);
    }
    TSQLiteValue Get() const
    {
        auto Value = Head;
        if (HasBytes())
            Value.Bytes = Bytes;
        return Value;
    }

private:
    bool HasBytes() const { return Head.Storage >= ssText; }

    TSQLiteValue Head;                              // its Bytes may view what is long gone
    std::string Bytes;
};

/// The values that identify one record of a table, in the order of its key columns.
using TSQLiteKey = std::vector<TSQLiteOwnValue>;

/// One column of a table or query.
struct TSQLiteColumn
{
    std::string Name;                               ///< As the database spells it, UTF-8.
    TFieldDef Def;                                  ///< As the dataset declares it.
    TSQLiteAffinity Affinity = saBlob;
    bool KeepsText = false;                         ///< Stores text as it is: no number, no bytes.

    void SetType(const TSQLiteType& Type);
};

/// Where the converted form of one value lives until the statement has run.
struct TSQLiteScratch
{
    std::string Utf8;
    char Iso[IsoTextMax];
};

/// `Value`, of the kind that the column's field type reads as, in the form in which it is stored: dates
/// as ISO 8601 text, booleans as 0 and 1, text as UTF-8.
/// The result views `Value` and `Scratch`. Raises EConvertError when SQLite would not keep the value:
/// not a number, digits beyond its precision, text that the column's affinity turns into a number.
inline TSQLiteValue EncodeValue(const TSQLiteColumn& Column, const TVariant& Value, TSQLiteScratch& Scratch);

/// A stored value as the field type reads it; as what it is when it does not fit that type.
/// Text in the process's code page, as a loan of `Stored` where it needs no conversion.
TVariant DecodeValue(TFieldType Type, const TSQLiteValue& Stored);

// --- What runs once per value -------------------------------------------------------------------------

/// The kinds that need more than a look.
TSQLiteValue EncodeOtherValue(const TSQLiteColumn& Column, const TVariant& Value, TSQLiteScratch& Scratch);

inline TSQLiteValue EncodeValue(const TSQLiteColumn& Column, const TVariant& Value, TSQLiteScratch& Scratch)
{
    if (Value.IsString() && Column.KeepsText)
        return TSQLiteValue::OfText(AnsiToUtf8(Value.Text(), Scratch.Utf8));
    if (Value.Kind() == vkInteger)
        return TSQLiteValue::OfInteger(Value.Integer());
    return EncodeOtherValue(Column, Value, Scratch);
}

} // namespace kv
