// KvParadoxBlocks - where the records of a Paradox table stand. Numbers low byte first.
//
//   table := header block*                           all blocks have the size that the header tells
//   block := next:u16 previous:u16 last:i16 record*  blocks count from 1; last is the offset of the last
//                                                    record from the first one, below 0 without records
//
// The order of the records is that of the chain of blocks, not that of the file.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "KvFileWindow.h"
#include "KvParadoxHeader.h"

namespace kv {

/// Records that follow each other in the file.
struct TKvParadoxBlock
{
    std::size_t FirstRecord = 0;                    ///< Offset in the file.
    std::size_t Count = 0;                          ///< At least 1; all of them lie within the file.
};

/// The blocks with records, in the order of their chain.
struct TKvParadoxBlocks
{
    std::vector<TKvParadoxBlock> Blocks;
    std::size_t RecordCount = 0;
    std::string Fault;                              ///< Why there may be more records; else empty.
};

/// Follows the chain until its end or a fault. A block fits into the window of `File`. Raises EFileError.
TKvParadoxBlocks FollowParadoxBlocks(TKvFileWindow& File, const TKvParadoxHeader& Header);

} // namespace kv
