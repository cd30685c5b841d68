#include "KvStorage.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "KvByteCursor.h"
#include "KvException.h"
#include "KvStorageDirectory.h"
#include "KvText.h"

namespace kv {

namespace {

using namespace std::string_view_literals;

constexpr std::string_view Signature = "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1"sv;
constexpr std::size_t HeaderSize = 512;             // without the padding to a sector of 4096 bytes
constexpr std::size_t NumbersInHeader = 109;
constexpr std::size_t NumberSize = 4;
constexpr std::size_t MiniSectorSize = 64;

/// The fields of the header that a reader needs.
struct THeader
{
    explicit THeader(std::string_view Bytes)
    {
        const TKvByteCursor In(Bytes);
        SectorShift = In.At<std::uint16_t>(0x1E);
        MiniSectorShift = In.At<std::uint16_t>(0x20);
        FirstDirectorySector = In.At<std::uint32_t>(0x30);
        MiniLimit = In.At<std::uint32_t>(0x38);
        FirstMiniTableSector = In.At<std::uint32_t>(0x3C);
        FirstNumberSector = In.At<std::uint32_t>(0x44);
        TableSectors = In.BytesAt(0x4C, NumbersInHeader * NumberSize);
    }

    unsigned SectorShift;
    unsigned MiniSectorShift;
    std::uint32_t FirstDirectorySector;
    std::uint32_t MiniLimit;
    std::uint32_t FirstMiniTableSector;
    std::uint32_t FirstNumberSector;                // of those that do not fit into the header
    std::string_view TableSectors;                  // their numbers, as far as they fit
};

std::vector<std::uint32_t> Numbers(std::string_view Bytes)
{
    std::vector<std::uint32_t> Result(Bytes.size() / NumberSize);
    if (!Result.empty())
        std::memcpy(Result.data(), Bytes.data(), Result.size() * NumberSize);
    return Result;
}

/// Appends the sectors of the table whose numbers stand in `List`. False at the end of the list or once the
/// table covers all sectors, so that a list that returns to itself ends as well.
bool AppendTable(TKvSectors& Sectors, std::string_view List)
{
    for (const auto Number : Numbers(List)) {
        if (Number > MaxSector || Sectors.Next.size() >= Sectors.Count())
            return false;
        // A sector that the file lost leaves its place, so that those after it keep theirs.
        auto Part = Numbers(Sectors.Sector(Number));
        Part.resize(Sectors.SectorSize / NumberSize, FreeSector);
        Sectors.Next.insert(Sectors.Next.end(), Part.begin(), Part.end());
    }
    return true;
}

void ReadTable(TKvSectors& Sectors, const THeader& Header)
{
    bool More = AppendTable(Sectors, Header.TableSectors);
    for (auto Number = Header.FirstNumberSector; More;) {
        const auto List = Sectors.Sector(Number);
        if (List.size() < Sectors.SectorSize)
            break;
        const auto Link = Sectors.SectorSize - NumberSize;  // the last number leads on
        More = AppendTable(Sectors, List.substr(0, Link));
        Number = LoadLittleEndian<std::uint32_t>(List.data() + Link);
    }
}

TKvErrorFacts FactsOf(const std::string& FileName)
{
    return {.FileName = FileName, .Rule = erFormat};
}

} // namespace

bool IsStorage(std::string_view Bytes)
{
    return Bytes.starts_with(Signature);
}

bool IsStorageFile(const std::string& FileName)
{
    return IsStorage(ReadFileBytes(FileName, Signature.size()).View());
}

TKvStorageStream::TKvStorageStream(TKvChainBytes Bytes, std::uint64_t StatedSize, std::string NameInMessages,
                                   std::string FileNameInMessages)
    : Content(std::move(Bytes)),
      FSize(StatedSize),
      Name(std::move(NameInMessages)),
      FileName(std::move(FileNameInMessages))
{
}

std::string TKvStorageStream::Title() const
{
    return FormatText("stream \"%s\" of file \"%s\"", {Name, FileName});
}

std::size_t TKvStorageStream::Read(void* Buffer, std::size_t Count)
{
    if (FPosition >= FSize)
        return 0;
    Count = static_cast<std::size_t>(std::min<std::uint64_t>(Count, FSize - FPosition));
    Require(FPosition + Count);
    if (Count != 0)
        std::memcpy(Buffer, ReadAll().data() + FPosition, Count);
    FPosition += Count;
    return Count;
}

void TKvStorageStream::SeekFromCurrent(std::int64_t Offset)
{
    // Unsigned sums wrap as they should; a position is less than half of its range.
    const auto Target = FPosition + static_cast<std::uint64_t>(Offset);
    if (Offset < 0 && Target > FPosition)
        throw EFormatError("Cannot seek before the start of " + Title(), FactsOf(FileName));
    FPosition = Target;
}

void TKvStorageStream::Require(std::uint64_t End) const
{
    const auto Present = ReadAll().size();
    if (End > Present)
        throw EFormatError(FormatText("Cannot read %s past byte %d of %d: %s",
                                      {Title(), std::to_string(Present), std::to_string(FSize),
                                       Content.Fault()}),
                           FactsOf(FileName));
}

TKvStorage::TKvStorage(const std::string& Path) : FileName(Path), FileBytes(ReadFileBytes(Path))
{
    Open(FileBytes.View());
}

TKvStorage::TKvStorage(std::string_view Bytes, std::string NameInMessages)
    : FileName(std::move(NameInMessages))
{
    Open(Bytes);
}

void TKvStorage::Open(std::string_view Bytes)
{
    if (!IsStorage(Bytes))
        Refuse("its signature is missing");
    if (Bytes.size() < HeaderSize)
        Refuse("its header is cut short");
    const THeader Header(Bytes);
    if (Header.SectorShift != 9 && Header.SectorShift != 12)
        Refuse(FormatText("its sectors have 2^%d bytes", {std::to_string(Header.SectorShift)}));
    if (Header.MiniSectorShift != 6)
        Refuse(FormatText("its small sectors have 2^%d bytes", {std::to_string(Header.MiniSectorShift)}));

    Sectors.SectorSize = std::size_t{1} << Header.SectorShift;
    Sectors.Bytes = Bytes.substr(std::min(Sectors.SectorSize, Bytes.size()));
    ReadTable(Sectors, Header);
    ReadDirectory(Header.FirstDirectorySector);
    MiniLimit = Header.MiniLimit;
    MiniSectors.SectorSize = MiniSectorSize;
    MiniSectors.Bytes = MiniBytes.View();
    MiniSectors.Next = Numbers(
        TKvChainBytes(Sectors, Header.FirstMiniTableSector, TKvChainBytes::ToTheEnd).View());
}

void TKvStorage::ReadDirectory(std::uint32_t FirstSector)
{
    const TKvChainBytes Bytes(Sectors, FirstSector, TKvChainBytes::ToTheEnd);
    const TKvStorageDirectory Directory(Bytes.View());
    if (Directory.Count() == 0)
        Refuse("its directory is missing");
    const auto Root = Directory.Entry(0);
    // To the end of its chain: the size that the entry states is too small in some files.
    MiniBytes = TKvChainBytes(Sectors, Root.FirstSector, TKvChainBytes::ToTheEnd);
    try {
        for (const auto& Entry : Directory.EntriesOf(Root))
            AddElement(Entry);
    }
    catch (const EFormatError& Error) {
        Refuse(Error.Message);
    }
}

void TKvStorage::AddElement(const TKvStorageEntry& Entry)
{
    if (Entry.Kind != ekStorage && Entry.Kind != ekStream)
        return;
    // With sectors of 512 bytes the upper half of the size is whatever the writer's memory held.
    const auto IsLarge = Sectors.SectorSize > 512;
    FElements.push_back({.Name = Entry.Name(),
                         .Kind = Entry.Kind == ekStorage ? skStorage : skStream,
                         .FirstSector = Entry.FirstSector,
                         .Size = IsLarge ? Entry.Size : static_cast<std::uint32_t>(Entry.Size)});
}

TKvStorageStream TKvStorage::OpenStream(std::string_view Name) const
{
    const auto Found = std::ranges::find_if(FElements, [&](const TKvStorageElement& Element) {
        return Element.Kind == skStream && SameText(Element.Name, Name);
    });
    if (Found == FElements.end())
        throw EFormatError(FormatText("File \"%s\" has no stream \"%s\"", {FileName, Name}),
                           FactsOf(FileName));
    const auto& Home = Found->Size < MiniLimit ? MiniSectors : Sectors;
    return {TKvChainBytes(Home, Found->FirstSector, Found->Size), Found->Size, Found->Name, FileName};
}

void TKvStorage::Refuse(std::string_view Reason) const
{
    throw EFormatError(FormatText("File \"%s\" is no compound document: %s", {FileName, Reason}),
                       FactsOf(FileName));
}

} // namespace kv
