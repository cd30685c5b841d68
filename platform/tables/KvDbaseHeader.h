// KvDbaseHeader - what the beginning of a dBase or FoxPro table tells of it. Numbers low byte first.
//
//   00  version:u8               02 dBase II, 03 and 05 dBase III to 5, 04 dBase 7, 30 to 32 Visual FoxPro;
//                                83, 8B, 8C, CB and F5 tell of memos
//   01  date:u8[3]               04  record count:u32
//   08  header size:u16          0A  record size:u16
//   0F  encrypted:u8             1D  language driver:u8            KvDbaseLanguage
//   20  dBase 7 only: name of the language driver:u8[32], 4 bytes of other use
//       fields                                                     KvDbaseFields
//
// dBase II:  version:u8 record count:u16 date:u8[3] record size:u16 fields; the records begin at 521
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "KvDbaseFields.h"

namespace kv {

/// Programs whose files of memos differ: KvDbaseMemo.
enum TKvDbaseMemoKind { dmNone, dmDbase3, dmDbase4, dmFoxPro };

/// The header, checked.
struct TKvDbaseHeader
{
    std::size_t HeaderSize = 0;                     ///< The first record begins there.
    std::size_t RecordSize = 0;
    std::size_t RecordCount = 0;                    ///< As the header has it, deleted ones too.
    std::string CodePage;                           ///< In the words of KvCodePage; empty when none is named.
    TKvDbaseMemoKind MemoKind = dmNone;
    TKvDbaseFields Fields;
};

/// True when `Bytes` begin like a dBase or FoxPro table.
bool IsDbase(std::string_view Bytes);

/// Reads the header of the table file `FileName`, which holds `Bytes`. Raises
/// EDatabaseError "File "%s" is encrypted" or EFormatError "File "%s" is no dBase table: %s".
TKvDbaseHeader ReadDbaseHeader(std::string_view Bytes, const std::string& FileName);

} // namespace kv
