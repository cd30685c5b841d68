// KvCompoundBuilder - writes compound documents for tests.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kv {

/// A compound document with the streams that a test asks for. Valid as built; a test that wants damage
/// changes bytes of the result, whose parts stand where the functions below tell.
class TCompoundBuilder
{
public:
    /// Sectors of 512 or 4096 bytes.
    explicit TCompoundBuilder(std::size_t BytesPerSector = 512) : SectorSize(BytesPerSector) {}

    TCompoundBuilder& Stream(std::u16string_view Name, std::string_view Bytes);
    /// An empty storage.
    TCompoundBuilder& Storage(std::u16string_view Name);
    /// Lays out the sectors of each stream from its last to its first.
    TCompoundBuilder& Scattered();

    std::string Build();

    // Offsets in what Build made.
    std::size_t OffsetOfSector(std::size_t Sector) const { return (Sector + 1) * SectorSize; }
    /// Of the table's number for a sector.
    std::size_t OffsetOfLink(std::size_t Sector) const;
    /// Of a directory entry: 0 is the root, the others follow in the order in which they were added.
    std::size_t OffsetOfEntry(std::size_t Index) const;
    std::size_t FirstSectorOf(std::size_t Index) const { return Entries[Index].First; }

private:
    struct TEntry
    {
        std::u16string Name;
        std::string Bytes;
        std::uint8_t Kind;
        std::uint32_t Left = 0xFFFFFFFF, Right = 0xFFFFFFFF, Child = 0xFFFFFFFF;
        std::uint32_t First = 0xFFFFFFFE;
    };

    void Add(std::u16string_view Name, std::string_view Bytes, std::uint8_t Kind);
    std::uint32_t Place(std::string_view Bytes, bool IsScattered);
    void PlaceStreams();
    std::uint32_t BuildTree(const std::vector<std::uint32_t>& Sorted);
    void PlaceDirectory();
    std::vector<std::uint32_t> PlaceTable();
    std::string DirectoryBytes() const;

    std::size_t SectorSize;
    bool AreScattered = false;
    std::vector<TEntry> Entries = {{.Name = u"Root Entry", .Bytes = {}, .Kind = 5}};

    std::string Sectors;                            // all of them
    std::vector<std::uint32_t> Next;                // what follows each
    std::vector<std::uint32_t> TableSectors;
    std::uint32_t FirstNumberSector = 0xFFFFFFFE;
    std::uint32_t FirstMiniTableSector = 0xFFFFFFFE;
    std::uint32_t FirstDirectorySector = 0;
};

} // namespace kv
