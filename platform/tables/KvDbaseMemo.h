// KvDbaseMemo - the blocks of a file of memos: .dbt of dBase, .fpt of FoxPro.
//
//   dBase III   blocks of 512 bytes      memo := text 1A
//   dBase IV    14 block size:u16le      memo := FF FF 08 00 size:u32le text:u8[size - 8]
//   FoxPro      06 block size:u16be      memo := type:u32be size:u32be text:u8[size]
//
// A memo begins with a block and fills as many as it needs. The first 512 bytes are the header. A block size
// of 0 means 512 to dBase IV.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "KvDbaseHeader.h"
#include "KvFileWindow.h"

namespace kv {

/// The memo that begins with block `Block`, a view of `Buffer`. Raises EFormatError with the reason when the
/// file holds none there.
std::string_view DbaseMemo(TKvFileWindow& File, TKvDbaseMemoKind Kind, std::uint64_t Block,
                           std::string& Buffer);

/// True when JoinSoftLines has something to do.
bool HasSoftLines(std::string_view Memo);
/// Takes out the line ends that editors of dBase put where a line had no room for the next word, 8D 0A: one
/// blank stays in their place.
void JoinSoftLines(std::string& Memo);

} // namespace kv
