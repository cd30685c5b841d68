#include "KvParadoxBlobs.h"

#include "KvByteCursor.h"
#include "KvCompanionFile.h"
#include "KvException.h"
#include "KvText.h"

namespace kv {

namespace {

constexpr std::size_t BlockSize = 4096;
constexpr std::size_t ChunkSize = 16;
constexpr std::size_t FieldEndSize = 10;            // what follows the leader
constexpr std::uint32_t IndexMask = 0xFF;
constexpr std::uint32_t WholeBlock = 0xFF;          // instead of an index

enum TBlockKind : std::uint8_t { bkOneBlob = 2, bkSmallBlobs = 3 };

[[noreturn]] void Refuse(std::string_view Pattern, std::size_t First, std::size_t Second = 0)
{
    throw EFormatError(FormatText(Pattern, {std::to_string(First), std::to_string(Second)}));
}

void CheckSize(std::size_t InRecord, std::size_t InFile)
{
    if (InRecord != InFile)
        Refuse("its record tells of %d bytes, the file of blobs of %d", InRecord, InFile);
}

/// Where the bytes of the value begin.
std::uint64_t OneBlob(TKvByteCursor Block, std::size_t Size)
{
    const auto Blocks = Block.Take<std::uint16_t>();
    CheckSize(Size, Block.Take<std::uint32_t>());
    Block.Skip(2);
    if (Block.Position() + Size > Blocks * BlockSize)
        Refuse("%d bytes do not fit into %d blocks", Size, Blocks);
    return Block.Offset();
}

std::uint64_t SmallBlob(TKvByteCursor Block, unsigned Index, std::size_t Size)
{
    constexpr std::size_t FirstEntry = 12, EntrySize = 5, EntryCount = 64;
    if (Index >= EntryCount)
        Refuse("a block of small blobs has no entry %d", Index);
    Block.Seek(FirstEntry + Index * EntrySize);
    const std::size_t First = Block.Take<std::uint8_t>();
    const std::size_t Chunks = Block.Take<std::uint8_t>();
    Block.Skip(2);
    const std::size_t InLast = Block.Take<std::uint8_t>();
    if (First * ChunkSize < FirstEntry + EntryCount * EntrySize || Chunks == 0 || InLast > ChunkSize)
        Refuse("entry %d of the block at offset %d is empty or damaged", Index,
               Block.Offset() - Block.Position());
    CheckSize(Size, (Chunks - 1) * ChunkSize + (InLast != 0 ? InLast : ChunkSize));
    Block.BytesAt(First * ChunkSize, Size);         // within the block
    return Block.Offset() - Block.Position() + First * ChunkSize;
}

/// The body of part 0 when all bodies are there, nothing when the first part is another one.
std::string_view FirstBody(std::string_view Memo)
{
    constexpr std::size_t PartSize = 6;
    TKvByteCursor Parts(Memo);
    const std::size_t Count = Parts.Take<std::uint16_t>();
    auto Bodies = Parts;
    Bodies.Skip(Count * PartSize);
    std::string_view Result;
    for (std::size_t Part = 0; Part < Count; ++Part) {
        const auto Id = Parts.Take<std::uint16_t>();
        const auto Body = Bodies.TakeBytes(Parts.Take<std::uint32_t>());
        if (Part == 0 && Id == 0)
            Result = Body;
    }
    return Result;
}

} // namespace

TKvParadoxBlob ParadoxBlob(std::string_view Field)
{
    const auto Leader = Field.size() - FieldEndSize;
    return {.Leader = Field.substr(0, Leader),
            .Place = LoadLittleEndian<std::uint32_t>(Field.data() + Leader),
            .Size = LoadLittleEndian<std::uint32_t>(Field.data() + Leader + 4)};
}

std::string_view ParadoxBlobBytes(TKvFileWindow& File, const TKvParadoxBlob& Blob, std::string& Buffer)
{
    const std::size_t Offset = Blob.Place & ~IndexMask;
    const auto Index = Blob.Place & IndexMask;
    const auto IsWhole = Index == WholeBlock;
    if (Offset >= File.FileSize())
        Refuse("the file of blobs ends before offset %d", Offset);
    TKvByteCursor Block(File.At(Offset, BlockSize), Offset);
    if (Block.Take<std::uint8_t>() != (IsWhole ? bkOneBlob : bkSmallBlobs))
        Refuse(IsWhole ? "the block at offset %d is none of one blob"
                       : "the block at offset %d is none of small blobs",
               Offset);
    const auto Start = IsWhole ? OneBlob(Block, Blob.Size) : SmallBlob(Block, Index, Blob.Size);
    return CopyBytes(File, Start, Blob.Size, Buffer);
}

std::string_view FormattedMemoText(std::string_view Memo)
{
    try {
        const auto Text = FirstBody(Memo);
        if (!Text.empty() && Text.find('\0') == Text.size() - 1)
            return Text.substr(0, Text.size() - 1);
    }
    catch (const EFormatError&) {                   // its parts leave the memo
    }
    throw EFormatError("it is no formatted memo");
}

} // namespace kv
