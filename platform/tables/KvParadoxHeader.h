// KvParadoxHeader - what the first block of a Paradox table tells of it. Numbers low byte first.
//
//   00  record size:u16          header size:u16     file type:u8       block size in KB:u8
//   06  record count:u32         0E first block:u16, from 1
//   21  field count:u16          25  encryption:u32, FF00FF00 where 5C holds it
//   39  version:u8               3 and 4 of 3.x, 5 to 9 of 4.x, 10 and 11 of 5, 12 of 7 and later
//   5C  encryption:u32           6A  code page:u16   both from version byte 5 on
//   58  (78 from version byte 5 on)
//       field := type:u8 length:u8                   for each field
//       pointer:u32                                  to the table's name, and one more for each field
//       table name:u8[79]                            261 bytes from version byte 12 on
//       field name:u8[] 00                           for each field
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kv {

/// How a field is stored, with its size in a record.
enum TKvParadoxType : std::uint8_t {
    ptAlpha = 0x01,                                 ///< Text of 1 to 255 bytes, ended by zeros.
    ptDate = 0x02,                                  ///< 4: day number.
    ptShort = 0x03,                                 ///< 2
    ptLong = 0x04,                                  ///< 4
    ptCurrency = 0x05,                              ///< 8, as ptNumber
    ptNumber = 0x06,                                ///< 8: double.
    ptLogical = 0x09,                               ///< 1
    ptMemo = 0x0C,                                  ///< 10 and more, as all blobs: KvParadoxBlobs
    ptBinary = 0x0D,
    ptFormattedMemo = 0x0E,
    ptOle = 0x0F,
    ptGraphic = 0x10,
    ptTime = 0x14,                                  ///< 4: milliseconds.
    ptTimestamp = 0x15,                             ///< 8: milliseconds as double.
    ptAutoIncrement = 0x16,                         ///< 4
    ptBcd = 0x17,                                   ///< 17: decimal digits.
    ptBytes = 0x18                                  ///< 1 to 255
};

/// Memo, binary, OLE and graphic: the field refers to bytes in the file of blobs.
bool IsParadoxBlob(TKvParadoxType Type);

struct TKvParadoxField
{
    std::string Name;                               ///< In the code page of the table.
    TKvParadoxType Type = ptAlpha;
    std::size_t Offset = 0;                         ///< From the first byte of a record.
    std::size_t Size = 0;                           ///< In bytes.
};

/// The header, checked: the fields fill the record, a block holds at least one record.
struct TKvParadoxHeader
{
    std::size_t RecordSize = 0;                     ///< In bytes, as the other sizes.
    std::size_t HeaderSize = 0;                     ///< The first block begins there.
    std::size_t BlockSize = 0;
    std::uint32_t RecordCount = 0;                  ///< As the header has it.
    std::uint16_t FirstBlock = 0;                   ///< From 1; 0 when there is none.
    std::string CodePage;                           ///< In the words of KvCodePage; empty when none is named.
    std::vector<TKvParadoxField> Fields;
};

/// True when `Bytes` begin like a table or another file of Paradox with such a header.
bool IsParadox(std::string_view Bytes);

/// Reads the header of the table file `FileName`, which begins with `Bytes`. Raises EFormatError
/// "File "%s" is encrypted", "File "%s" is an index of a Paradox table, not the table itself" or
/// "File "%s" is no Paradox table: %s".
TKvParadoxHeader ReadParadoxHeader(std::string_view Bytes, const std::string& FileName);

} // namespace kv
