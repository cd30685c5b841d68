#include "KvSectors.h"

#include <algorithm>
#include <cstring>
#include <memory>

namespace kv {

namespace {

/// Sectors of a chain that follow each other in the file.
struct TRun
{
    std::uint64_t Begin;                            // offset of its first byte
    std::uint64_t Size;
};

struct TChain
{
    std::vector<TRun> Runs;
    std::uint64_t Size = 0;
    std::string Fault;
};

std::string MissingSector(std::uint32_t Sector, std::uint32_t SectorBefore)
{
    if (Sector == FreeSector)
        return "its chain of sectors breaks off after sector " + std::to_string(SectorBefore);
    return "its chain of sectors leads to sector " + std::to_string(Sector) + ", which is not there";
}

void Append(TChain& Chain, TRun Run)
{
    Chain.Size += Run.Size;
    if (!Chain.Runs.empty() && Chain.Runs.back().Begin + Chain.Runs.back().Size == Run.Begin)
        Chain.Runs.back().Size += Run.Size;
    else
        Chain.Runs.push_back(Run);
}

/// Ends by itself: no sector is visited twice.
TChain Follow(const TKvSectors& Sectors, std::uint32_t First, std::uint64_t Size)
{
    TChain Chain;
    std::vector<bool> Visited(Sectors.Count());
    std::uint32_t Before = 0;
    for (auto Sector = First; Chain.Size < Size;) {
        if (Sector == EndOfChain) {
            if (Size != TKvChainBytes::ToTheEnd)
                Chain.Fault = "its chain of sectors ends";
            break;
        }
        if (Sector >= Visited.size()) {
            Chain.Fault = MissingSector(Sector, Before);
            break;
        }
        if (Visited[Sector]) {
            Chain.Fault = "its chain of sectors returns to sector " + std::to_string(Sector);
            break;
        }
        Visited[Sector] = true;
        const std::uint64_t Begin = std::uint64_t{Sector} * Sectors.SectorSize;
        const std::uint64_t Stored = Sectors.Sector(Sector).size();
        Append(Chain, {Begin, std::min(Stored, Size - Chain.Size)});
        if (Stored < Sectors.SectorSize && Chain.Size < Size) { // only the last sector of a file may be short
            Chain.Fault = "the file ends in sector " + std::to_string(Sector);
            break;
        }
        Before = Sector;
        Sector = Sector < Sectors.Next.size() ? Sectors.Next[Sector] : FreeSector;
    }
    return Chain;
}

TKvFileBytes Join(std::string_view Bytes, const TChain& Chain)
{
    auto Copy = std::make_unique_for_overwrite<char[]>(Chain.Size);
    char* Target = Copy.get();
    for (const auto& Run : Chain.Runs) {
        std::memcpy(Target, Bytes.data() + Run.Begin, Run.Size);
        Target += Run.Size;
    }
    return {std::move(Copy), Chain.Size};
}

} // namespace

std::string_view TKvSectors::Sector(std::uint32_t Number) const
{
    const std::uint64_t Begin = std::uint64_t{Number} * SectorSize;
    return Begin < Bytes.size() ? Bytes.substr(Begin, SectorSize) : std::string_view();
}

TKvChainBytes::TKvChainBytes(const TKvSectors& Sectors, std::uint32_t First, std::uint64_t Size)
{
    auto Chain = Follow(Sectors, First, Size);
    IsCopy = Chain.Runs.size() > 1;
    if (IsCopy)
        Copy = Join(Sectors.Bytes, Chain);
    else if (!Chain.Runs.empty())
        Whole = Sectors.Bytes.substr(Chain.Runs.front().Begin, Chain.Runs.front().Size);
    FFault = std::move(Chain.Fault);
}

} // namespace kv
