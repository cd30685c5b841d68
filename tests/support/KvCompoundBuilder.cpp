#include "KvCompoundBuilder.h"

#include <algorithm>
#include <cstring>
#include <span>

namespace kv {

namespace {

constexpr std::size_t MiniLimit = 4096;
constexpr std::size_t MiniSectorSize = 64;
constexpr std::size_t NumbersInHeader = 109;
constexpr std::size_t EntrySize = 128;
constexpr std::uint32_t EndMark = 0xFFFFFFFE;
constexpr std::uint32_t FreeMark = 0xFFFFFFFF;
constexpr std::uint32_t TableMark = 0xFFFFFFFD;
constexpr std::uint32_t NumbersMark = 0xFFFFFFFC;

std::size_t CountOf(std::size_t Size, std::size_t Unit)
{
    return (Size + Unit - 1) / Unit;
}

template <class T> void Put(std::string& Bytes, std::size_t Offset, T Value)
{
    std::memcpy(Bytes.data() + Offset, &Value, sizeof Value);
}

std::string Pack(const std::vector<std::uint32_t>& Numbers)
{
    return {reinterpret_cast<const char*>(Numbers.data()), Numbers.size() * sizeof(std::uint32_t)};
}

} // namespace

TCompoundBuilder& TCompoundBuilder::Stream(std::u16string_view Name, std::string_view Bytes)
{
    Add(Name, Bytes, 2);
    return *this;
}

TCompoundBuilder& TCompoundBuilder::Storage(std::u16string_view Name)
{
    Add(Name, {}, 1);
    return *this;
}

TCompoundBuilder& TCompoundBuilder::Scattered()
{
    AreScattered = true;
    return *this;
}

void TCompoundBuilder::Add(std::u16string_view Name, std::string_view Bytes, std::uint8_t Kind)
{
    Entries.push_back({.Name = std::u16string(Name), .Bytes = std::string(Bytes), .Kind = Kind});
}

std::string TCompoundBuilder::Build()
{
    Sectors.clear();
    Next.clear();
    PlaceStreams();
    PlaceDirectory();
    const auto Numbers = PlaceTable();

    std::string Header(SectorSize, '\0');
    std::memcpy(Header.data(), "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1", 8);
    const bool IsSmall = SectorSize == 512;
    Put<std::uint16_t>(Header, 0x18, 0x3E);
    Put<std::uint16_t>(Header, 0x1A, IsSmall ? 3 : 4);
    Put<std::uint16_t>(Header, 0x1C, 0xFFFE);
    Put<std::uint16_t>(Header, 0x1E, IsSmall ? 9 : 12);
    Put<std::uint16_t>(Header, 0x20, 6);
    Put(Header, 0x28,
        IsSmall ? 0u : static_cast<std::uint32_t>(CountOf(Entries.size() * EntrySize, SectorSize)));
    Put(Header, 0x2C, static_cast<std::uint32_t>(TableSectors.size()));
    Put(Header, 0x30, FirstDirectorySector);
    Put(Header, 0x38, static_cast<std::uint32_t>(MiniLimit));
    Put(Header, 0x3C, FirstMiniTableSector);
    Put(Header, 0x40, FirstMiniTableSector == EndMark ? 0u : 1u);
    Put(Header, 0x44, FirstNumberSector);
    Put(Header, 0x48, static_cast<std::uint32_t>(Numbers.size()));
    for (std::size_t I = 0; I < NumbersInHeader; ++I)
        Put(Header, 0x4C + 4 * I, I < TableSectors.size() ? TableSectors[I] : FreeMark);
    return Header + Sectors;
}

std::size_t TCompoundBuilder::OffsetOfLink(std::size_t Sector) const
{
    const auto PerSector = SectorSize / 4;
    return OffsetOfSector(TableSectors.at(Sector / PerSector)) + Sector % PerSector * 4;
}

std::size_t TCompoundBuilder::OffsetOfEntry(std::size_t Index) const
{
    return OffsetOfSector(FirstDirectorySector) + Index * EntrySize; // its sectors follow each other
}

/// Appends bytes as a chain and gives its first sector.
std::uint32_t TCompoundBuilder::Place(std::string_view Bytes, bool IsScattered)
{
    const auto Count = CountOf(Bytes.size(), SectorSize);
    const auto Base = static_cast<std::uint32_t>(Next.size());
    if (Count == 0)
        return EndMark;
    for (std::size_t I = 0; I < Count; ++I) {
        const auto Part = IsScattered ? Count - 1 - I : I;
        std::string Sector(Bytes.substr(Part * SectorSize, SectorSize));
        Sector.resize(SectorSize);
        Sectors += Sector;
        const auto Self = static_cast<std::uint32_t>(Base + I);
        if (Part == Count - 1)
            Next.push_back(EndMark);
        else
            Next.push_back(IsScattered ? Self - 1 : Self + 1);
    }
    return static_cast<std::uint32_t>(IsScattered ? Base + Count - 1 : Base);
}

void TCompoundBuilder::PlaceStreams()
{
    std::string Container;
    std::vector<std::uint32_t> MiniNext;
    for (auto& Entry : std::span(Entries).subspan(1)) {
        if (Entry.Bytes.size() >= MiniLimit) {
            Entry.First = Place(Entry.Bytes, AreScattered);
            continue;
        }
        const auto Count = CountOf(Entry.Bytes.size(), MiniSectorSize);
        Entry.First = Count == 0 ? EndMark : static_cast<std::uint32_t>(MiniNext.size());
        for (std::size_t I = 1; I <= Count; ++I)
            MiniNext.push_back(I == Count ? EndMark : static_cast<std::uint32_t>(MiniNext.size() + 1));
        Container += Entry.Bytes;
        Container.resize(MiniNext.size() * MiniSectorSize);
    }
    Entries[0].Bytes = Container;
    Entries[0].First = Place(Container, AreScattered);
    MiniNext.resize(CountOf(MiniNext.size(), SectorSize / 4) * (SectorSize / 4), FreeMark);
    FirstMiniTableSector = Place(Pack(MiniNext), false);
}

/// Binds entries to a balanced tree and gives its top.
std::uint32_t TCompoundBuilder::BuildTree(const std::vector<std::uint32_t>& Sorted)
{
    if (Sorted.empty())
        return FreeMark;
    const auto Middle = Sorted.begin() + static_cast<std::ptrdiff_t>(Sorted.size() / 2);
    Entries[*Middle].Left = BuildTree({Sorted.begin(), Middle});
    Entries[*Middle].Right = BuildTree({Middle + 1, Sorted.end()});
    return *Middle;
}

void TCompoundBuilder::PlaceDirectory()
{
    std::vector<std::uint32_t> Sorted;
    for (std::uint32_t I = 1; I < Entries.size(); ++I)
        Sorted.push_back(I);
    std::ranges::stable_sort(Sorted, [this](auto A, auto B) { // shorter names come first
        const auto& [NameA, NameB] = std::pair(Entries[A].Name, Entries[B].Name);
        return NameA.size() != NameB.size() ? NameA.size() < NameB.size() : NameA < NameB;
    });
    Entries[0].Child = BuildTree(Sorted);
    FirstDirectorySector = Place(DirectoryBytes(), false);
}

std::string TCompoundBuilder::DirectoryBytes() const
{
    std::string Bytes;
    for (const auto& Entry : Entries) {
        std::string Field(EntrySize, '\0');
        std::memcpy(Field.data(), Entry.Name.data(), Entry.Name.size() * 2);
        Put(Field, 64, static_cast<std::uint16_t>(Entry.Name.size() * 2 + 2));
        Put(Field, 66, Entry.Kind);
        Put<std::uint8_t>(Field, 67, 1);            // black
        Put(Field, 68, Entry.Left);
        Put(Field, 72, Entry.Right);
        Put(Field, 76, Entry.Child);
        Put(Field, 116, Entry.First);
        Put(Field, 120, static_cast<std::uint64_t>(Entry.Bytes.size()));
        Bytes += Field;
    }
    return Bytes;
}

/// Appends the table, which counts its own sectors, and gives the sectors that list more than the header can.
std::vector<std::uint32_t> TCompoundBuilder::PlaceTable()
{
    const auto PerSector = SectorSize / 4;
    std::size_t TableCount = 0;
    std::size_t ListCount = 0;
    while (TableCount * PerSector < Next.size() + TableCount + ListCount) {
        ++TableCount;
        ListCount = TableCount > NumbersInHeader ? CountOf(TableCount - NumbersInHeader, PerSector - 1) : 0;
    }
    TableSectors.clear();
    for (std::size_t I = 0; I < TableCount; ++I) {
        TableSectors.push_back(static_cast<std::uint32_t>(Next.size()));
        Next.push_back(TableMark);
    }
    std::vector<std::uint32_t> Lists;
    for (std::size_t I = 0; I < ListCount; ++I) {
        Lists.push_back(static_cast<std::uint32_t>(Next.size()));
        Next.push_back(NumbersMark);
    }
    Next.resize(TableCount * PerSector, FreeMark);
    Sectors += Pack(Next);
    FirstNumberSector = Lists.empty() ? EndMark : Lists.front();
    for (std::size_t I = 0; I < ListCount; ++I) {
        std::vector<std::uint32_t> Numbers(PerSector, FreeMark);
        const auto First = NumbersInHeader + I * (PerSector - 1);
        for (std::size_t K = 0; K + 1 < PerSector && First + K < TableCount; ++K)
            Numbers[K] = TableSectors[First + K];
        Numbers.back() = I + 1 < ListCount ? Lists[I + 1] : EndMark;
        Sectors += Pack(Numbers);
    }
    return Lists;
}

} // namespace kv
