// KvSectors - a run of bytes cut into sectors of equal size, and the chains that bind sectors together.
//
//   table := next:u32le per sector                     FFFFFFFE ends a chain, FFFFFFFF marks a free sector,
//                                                      FFFFFFFD and FFFFFFFC hold tables themselves
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

#include "KvFile.h"

namespace kv {

inline constexpr std::uint32_t MaxSector = 0xFFFFFFFA; ///< The largest number; above it are marks.
inline constexpr std::uint32_t EndOfChain = 0xFFFFFFFE;
inline constexpr std::uint32_t FreeSector = 0xFFFFFFFF;

/// The sectors, numbered from 0, and the table that tells which sector follows which.
struct TKvSectors
{
    std::string_view Bytes;                         ///< The last sector may be short.
    std::size_t SectorSize = 512;
    std::vector<std::uint32_t> Next;                ///< May cover fewer sectors than there are.

    std::size_t Count() const { return (Bytes.size() + SectorSize - 1) / SectorSize; }
    /// The bytes of one sector, none past the last one.
    std::string_view Sector(std::uint32_t Number) const;
};

/// Bytes that stand in a chain of sectors, as one piece: a view where the sectors follow each other, a copy
/// where they are scattered.
class TKvChainBytes
{
public:
    static constexpr std::uint64_t ToTheEnd = std::numeric_limits<std::uint64_t>::max();

    TKvChainBytes() = default;
    /// Follows the chain from sector `First` for `Size` bytes or to its end. A chain that is broken gives
    /// the bytes up to there. `Sectors.Bytes` must outlive the object.
    TKvChainBytes(const TKvSectors& Sectors, std::uint32_t First, std::uint64_t Size);

    std::string_view View() const { return IsCopy ? Copy.View() : Whole; }
    /// Why there is no more although more was asked for: "its chain of sectors returns to sector 7". Empty
    /// when nothing is missing.
    const std::string& Fault() const { return FFault; }

private:
    std::string_view Whole;
    bool IsCopy = false;
    TKvFileBytes Copy;
    std::string FFault;
};

} // namespace kv
