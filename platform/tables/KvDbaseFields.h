// KvDbaseFields - the fields that the header of a dBase or FoxPro table lists.
//
//   field := name:u8[11] type:u8 :u8[4] size:u8 decimals:u8 flags:u8 :u8[13]     dBase III to 5, FoxPro
//   field := name:u8[32] type:u8 size:u8 decimals:u8 :u8[13]                     dBase 7
//   field := name:u8[11] type:u8 size:u8 :u8[2] decimals:u8                      dBase II
//   fields := field* 0D                                                         what follows is of other use
//
// A record is the mark of deleted records, one byte, and the fields one behind the other. The flags are those
// of Visual FoxPro: 01 hidden, 02 may be null, 04 not text, 08 counts up. The hidden field of type '0' has
// bits for the fields in their order, low bit first: whether the last byte of a text of variable size is its
// size, and whether the field is null.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "KvByteCursor.h"
#include "KvField.h"

namespace kv {

/// The programs whose tables differ in how they list fields.
enum TKvDbaseDialect { ddDbase2, ddDbase, ddVisualFoxPro, ddDbase7 };

/// How a record holds a field.
enum TKvDbaseStorage {
    dvText,                                         ///< Text with blanks or zeros behind.
    dvRawText,                                      ///< Text of no code page, blanks behind.
    /// A decimal number in digits; asterisks where it had no room.
    dvNumber,
    dvFloat,                                        ///< The same, taken for a floating point number.
    /// T, Y, J, S or 1, F, N or 0, of either case; "?" or a blank.
    dvLogical,
    dvDay,                                          ///< YYYYMMDD
    dvMemo,                                         ///< Number of a memo block: ten digits, or u32.
    dvLong,                                         ///< i32
    dvDouble,                                       ///< f64
    dvAmount,                                       ///< i64, ten-thousandths
    dvMoment,                                       ///< Julian day:i32 milliseconds:i32
    dvVarText,                                      ///< Text; the last byte is its size where a bit tells so.
    dvVarBytes,                                     ///< The same with bytes.
    dvOrderedLong,                                  ///< dBase 7, as in Paradox tables: KvParadoxValues
    dvOrderedDouble,
    dvTimestamp                                     ///< The same, its sign bit apart.
};

struct TKvDbaseField
{
    static constexpr int NoBit = -1;

    std::string Name = {};                          ///< In the code page of the table.
    TFieldType Type = ftString;
    TKvDbaseStorage Storage = dvText;
    std::size_t Offset = 0;                         ///< From the first byte of the record.
    std::size_t Size = 0;                           ///< In bytes.
    int NullBit = NoBit;                            ///< Set: the field is null.
    int SizeBit = NoBit;                            ///< Set: the last byte is the size.
};

/// A field that cannot be read, and why.
struct TKvDbaseLeftOut
{
    std::string Name;
    std::string Reason;
};

struct TKvDbaseFields
{
    std::vector<TKvDbaseField> Visible;
    std::vector<TKvDbaseLeftOut> LeftOut;
    std::size_t BytesLeftOut = 0;                   ///< At the end of a record, behind the last field.
    std::size_t BitsOffset = 0;                     ///< Of the hidden bits, from the start of the record.
    std::size_t BitsSize = 0;                       ///< In bytes; 0 when there are none.
};

/// Reads the fields at `Header`, which ends where the records begin; they fill the `RecordSize` bytes of a
/// record, or fewer where the list is sound. A field of a type or size that nobody knows is left out. Raises
/// EFormatError with the reason when no field can be read.
TKvDbaseFields ReadDbaseFields(TKvByteCursor Header, TKvDbaseDialect Dialect, std::size_t RecordSize);

} // namespace kv
