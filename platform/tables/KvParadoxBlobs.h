// KvParadoxBlobs - the long values of a Paradox table: memos, pictures and other bytes. Numbers low byte
// first.
//
//   field := leader:u8[n - 10]  place:u32  size:u32  changes:u16
//            the leader holds the first bytes; when it holds all, place says nothing
//   place := offset of a block; its low byte, not part of the offset, is FF for a block of one blob,
//            else the number of an entry
//   file  := block*                                  of 4096 bytes each, or several times that
//   block := 02 blocks:u16 size:u32 changes:u16 bytes                    one blob
//          | 03 blocks:u16 changes:u16 00[7] entry[64] chunk[]           small blobs, in one block
//   entry := first chunk:u8 chunks:u8 changes:u16 bytes of the last chunk:u8
//   chunk := u8[16]                                  chunk 0 is the start of the block
//
//   formatted memo := count:u16 part[count] body[count]                  part 0 is the text, ended by 00
//   part           := id:u16 size:u32
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "KvFileWindow.h"

namespace kv {

/// What a record says of a long value.
struct TKvParadoxBlob
{
    std::string_view Leader;                        ///< The first bytes, perhaps more of them than there are.
    std::uint32_t Place = 0;
    std::size_t Size = 0;                           ///< In bytes; 0: no value.

    bool IsInLeader() const { return Size <= Leader.size(); }
};

/// The long value that a field of at least 10 bytes refers to; views `Field`.
TKvParadoxBlob ParadoxBlob(std::string_view Field);

/// The bytes of a value that is longer than its leader, out of the file of blobs into `Buffer`.
/// Raises EFormatError with the reason when they are not there.
std::string_view ParadoxBlobBytes(TKvFileWindow& File, const TKvParadoxBlob& Blob, std::string& Buffer);

/// The text of a formatted memo. Raises EFormatError "it is no formatted memo".
std::string_view FormattedMemoText(std::string_view Memo);

} // namespace kv
