#include "KvParadoxBlocks.h"

#include <algorithm>
#include <cstdint>

#include "KvByteCursor.h"
#include "KvText.h"

namespace kv {

namespace {

constexpr std::size_t BlockHeaderSize = 6;
constexpr std::size_t MaxBlocks = 0x10000;          // what 16 bits can number

/// Adds the records of a block and gives the number of the next one; 0 when there is none or a fault.
std::uint16_t AddBlock(TKvByteCursor Block, std::size_t Number, std::size_t RecordSize,
                       TKvParadoxBlocks& Result)
{
    if (Block.Size() < BlockHeaderSize) {
        Result.Fault = FormatText("block %d is not there", {std::to_string(Number)});
        return 0;
    }
    const auto Next = Block.Take<std::uint16_t>();
    Block.Skip(2);
    const auto Last = Block.Take<std::int16_t>();
    if (Last < 0)
        return Next;
    const auto Told = static_cast<std::size_t>(Last) / RecordSize + 1;
    const auto Found = std::min(Told, Block.Remaining() / RecordSize);
    if (Found > 0)
        Result.Blocks.push_back({static_cast<std::size_t>(Block.Offset()), Found});
    Result.RecordCount += Found;
    if (static_cast<std::size_t>(Last) % RecordSize == 0 && Found == Told)
        return Next;
    Result.Fault =
        FormatText("block %d tells of %d bytes before its last record, there is room for %d records of %d",
                   {std::to_string(Number), std::to_string(Last),
                    std::to_string(Block.Remaining() / RecordSize), std::to_string(RecordSize)});
    return 0;
}

} // namespace

TKvParadoxBlocks FollowParadoxBlocks(TKvFileWindow& File, const TKvParadoxHeader& Header)
{
    std::vector<bool> Visited(MaxBlocks);
    TKvParadoxBlocks Result;
    for (std::size_t Number = Header.FirstBlock; Number != 0;) {
        if (Visited[Number]) {
            Result.Fault = FormatText("its chain of blocks returns to block %d", {std::to_string(Number)});
            break;
        }
        Visited[Number] = true;
        const auto Offset = Header.HeaderSize + (Number - 1) * Header.BlockSize;
        const TKvByteCursor Block(File.At(Offset, Header.BlockSize), Offset);
        Number = AddBlock(Block, Number, Header.RecordSize, Result);
    }
    if (Result.Fault.empty() && Result.RecordCount < Header.RecordCount)
        Result.Fault = FormatText("its blocks hold %d records, its header tells of %d",
                                  {std::to_string(Result.RecordCount), std::to_string(Header.RecordCount)});
    return Result;
}

} // namespace kv
