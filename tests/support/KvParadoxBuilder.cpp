#include "KvParadoxBuilder.h"

#include <algorithm>
#include <bit>
#include <stdexcept>

#include "KvBytes.h"

namespace kv {

namespace {

constexpr std::size_t BlockSize = 2048;
constexpr std::size_t BlobBlockSize = 4096;
constexpr std::size_t ChunkSize = 16;

struct TKind
{
    char Letter;
    unsigned Type;
    std::size_t Size;                               // 0: the field's length
};

constexpr TKind Kinds[] = {{'A', 0x01, 0}, {'D', 0x02, 4}, {'S', 0x03, 2}, {'I', 0x04, 4}, {'$', 0x05, 8},
                           {'N', 0x06, 8}, {'L', 0x09, 1}, {'M', 0x0C, 0}, {'B', 0x0D, 0}, {'F', 0x0E, 0},
                           {'O', 0x0F, 0}, {'G', 0x10, 0}, {'T', 0x14, 4}, {'@', 0x15, 8}, {'+', 0x16, 4},
                           {'#', 0x17, 17}, {'Y', 0x18, 0}};

std::string HighByteFirst(std::uint64_t Bits, int Size)
{
    std::string Bytes;
    for (int Shift = 8 * (Size - 1); Shift >= 0; Shift -= 8)
        Bytes += static_cast<char>(Bits >> Shift & 0xFF);
    return Bytes;
}

void Put(std::string& Bytes, std::size_t Offset, std::string_view Part)
{
    Bytes.replace(Offset, Part.size(), Part);
}

} // namespace

std::string ParadoxShort(int Value) { return HighByteFirst(static_cast<std::uint16_t>(Value) ^ 0x8000u, 2); }

std::string ParadoxLong(std::int32_t Value)
{
    return HighByteFirst(static_cast<std::uint32_t>(Value) ^ 0x80000000u, 4);
}

std::string ParadoxNumber(double Value)
{
    constexpr auto SignBit = std::uint64_t{1} << 63;
    const auto Bits = std::bit_cast<std::uint64_t>(Value);
    return HighByteFirst((Bits & SignBit) != 0 ? ~Bits : Bits ^ SignBit, 8);
}

std::string ParadoxBcd(std::string_view Digits, unsigned Decimals)
{
    const bool IsNegative = Digits.starts_with('-');
    Digits.remove_prefix(IsNegative ? 1 : 0);
    const auto Point = std::min(Digits.find('.'), Digits.size());
    auto Fraction = std::string(Digits.substr(std::min(Point + 1, Digits.size())));
    Fraction.resize(Decimals, '0');
    auto All = std::string(Digits.substr(0, Point)) + Fraction;
    All.erase(0, std::min(All.find_first_not_of('0'), All.size()));
    All.insert(0, 32 - All.size(), '0');

    std::string Bytes(1, static_cast<char>((IsNegative ? 0x40 : 0xC0) | Decimals));
    for (std::size_t I = 0; I < All.size(); I += 2) {
        const auto Pair = (All[I] - '0') << 4 | (All[I + 1] - '0');
        Bytes += static_cast<char>(IsNegative ? ~Pair : Pair);
    }
    return Bytes;
}

std::string ParadoxBlobField(std::string_view Leader, std::uint32_t Place, std::size_t Size)
{
    return TBytes().Text(Leader).U32(Place).U32(static_cast<std::uint32_t>(Size)).U16(1);
}

TParadoxBlobBuilder::TParadoxBlobBuilder()
{
    AddBlock(0, BlobBlockSize);
}

std::size_t TParadoxBlobBuilder::AddBlock(unsigned Kind, std::size_t Size)
{
    const auto Offset = File.size();
    const auto Blocks = (Size + BlobBlockSize - 1) / BlobBlockSize;
    File.append(Blocks * BlobBlockSize, '\0');
    Put(File, Offset, TBytes().U8(Kind).U16(static_cast<unsigned>(Blocks)));
    return Offset;
}

std::uint32_t TParadoxBlobBuilder::Add(std::string_view Bytes)
{
    constexpr std::size_t BlobHeaderSize = 9;
    const auto Offset = AddBlock(2, BlobHeaderSize + Bytes.size());
    Put(File, Offset + 3, TBytes().U32(static_cast<std::uint32_t>(Bytes.size())).U16(1).Text(Bytes));
    return static_cast<std::uint32_t>(Offset | 0xFF);
}

std::uint32_t TParadoxBlobBuilder::AddSmall(std::string_view Bytes)
{
    constexpr std::size_t FirstEntry = 12, EntrySize = 5, FirstChunk = 21;
    const auto Chunks = (Bytes.size() + ChunkSize - 1) / ChunkSize;
    if (SmallCount == 64 || NextChunk + Chunks > BlobBlockSize / ChunkSize) {
        SmallBlock = AddBlock(3, BlobBlockSize);
        SmallCount = 0;
        NextChunk = FirstChunk;
    }
    const auto Index = 63 - SmallCount++;           // programs fill the entries from the last one on
    Put(File, SmallBlock + NextChunk * ChunkSize, Bytes);
    Put(File, SmallBlock + FirstEntry + Index * EntrySize,
        TBytes()
            .U8(static_cast<unsigned>(NextChunk))
            .U8(static_cast<unsigned>(Chunks))
            .U16(1)
            .U8(static_cast<unsigned>(Bytes.size() - (Chunks - 1) * ChunkSize)));
    NextChunk += Chunks;
    return static_cast<std::uint32_t>(SmallBlock | Index);
}

TParadoxBuilder& TParadoxBuilder::Field(std::string_view Name, char Kind, unsigned Length)
{
    const auto Found = std::ranges::find(Kinds, Kind, &TKind::Letter);
    if (Found == std::end(Kinds))
        throw std::invalid_argument("no kind of field");
    const bool IsFixed = Found->Size != 0;
    const auto Told = IsFixed && Kind != '#' ? static_cast<unsigned>(Found->Size) : Length;
    Fields.push_back({std::string(Name), Found->Type, Told, IsFixed ? Found->Size : Length});
    return *this;
}

TParadoxBuilder& TParadoxBuilder::Record(const std::vector<std::string>& Values)
{
    std::string Bytes;
    for (std::size_t I = 0; I < Fields.size(); ++I) {
        auto Value = I < Values.size() ? Values[I] : std::string();
        Value.resize(Fields[I].Size);
        Bytes += Value;
    }
    Records.push_back(Bytes);
    return *this;
}

TParadoxBuilder& TParadoxBuilder::CodePage(unsigned Number)
{
    PageNumber = Number;
    return *this;
}

TParadoxBuilder& TParadoxBuilder::Keyed()
{
    IsKeyed = true;
    return *this;
}

TParadoxBuilder& TParadoxBuilder::Encrypted(std::uint32_t Key)
{
    Encryption = Key;
    return *this;
}

TParadoxBuilder& TParadoxBuilder::RecordsPerBlock(std::size_t Count)
{
    PerBlock = Count;
    return *this;
}

TParadoxBuilder& TParadoxBuilder::Reversed()
{
    IsReversed = true;
    return *this;
}

std::string TParadoxBuilder::Build() const
{
    const auto Fitting = PerBlock != 0 ? PerBlock : (BlockSize - 6) / RecordSize();
    const auto Count = (Records.size() + Fitting - 1) / Fitting;
    return Header(Count) + Blocks(Count, Fitting);
}

std::size_t TParadoxBuilder::RecordSize() const
{
    std::size_t Size = 0;
    for (const auto& Each : Fields)
        Size += Each.Size;
    return Size;
}

std::string TParadoxBuilder::Header(std::size_t Blocks) const
{
    const bool IsLong = Version >= 5;
    std::string Bytes(HeaderSize, '\0');
    const auto First = static_cast<unsigned>(Blocks == 0 ? 0 : IsReversed ? Blocks : 1);
    Put(Bytes, 0x00,
        TBytes().U16(static_cast<unsigned>(RecordSize())).U16(HeaderSize).U8(IsKeyed ? 0 : 2).U8(2));
    Put(Bytes, 0x06,
        TBytes().U32(static_cast<std::uint32_t>(Records.size())).U16(static_cast<unsigned>(Blocks)));
    Put(Bytes, 0x0C, TBytes().U16(static_cast<unsigned>(Blocks)).U16(First));
    Put(Bytes, 0x21, TBytes().U16(static_cast<unsigned>(Fields.size())).U16(IsKeyed ? 1 : 0));
    Put(Bytes, 0x25, TBytes().U32(IsLong ? 0xFF00FF00 : Encryption));
    Put(Bytes, 0x39, TBytes().U8(Version));
    if (IsLong) {
        Put(Bytes, 0x5C, TBytes().U32(Encryption));
        Put(Bytes, 0x6A, TBytes().U16(PageNumber));
    }
    TBytes Names;
    for (const auto& Each : Fields)
        Names.U8(Each.Type).U8(Each.Length);
    Names.Zeros((1 + Fields.size()) * 4).Text("TABLE.DB").Zeros((Version >= 12 ? 261 : 79) - 8);
    for (const auto& Each : Fields)
        Names.Text(Each.Name).U8(0);
    Put(Bytes, IsLong ? 0x78 : 0x58, Names);
    return Bytes;
}

std::string TParadoxBuilder::Blocks(std::size_t Count, std::size_t Fitting) const
{
    std::string Bytes(Count * BlockSize, '\0');
    const auto Place = [&](std::size_t I) { return IsReversed ? Count - I : I + 1; };
    for (std::size_t I = 0; I < Count; ++I) {
        const auto From = Records.begin() + static_cast<std::ptrdiff_t>(I * Fitting);
        const auto InBlock = std::min(Fitting, Records.size() - I * Fitting);
        TBytes Block;
        Block.U16(static_cast<unsigned>(I + 1 < Count ? Place(I + 1) : 0));
        Block.U16(static_cast<unsigned>(I > 0 ? Place(I - 1) : 0));
        Block.U16(static_cast<unsigned>((InBlock - 1) * RecordSize()));
        std::for_each_n(From, InBlock, [&](const std::string& Each) { Block.Text(Each); });
        Put(Bytes, (Place(I) - 1) * BlockSize, Block);
    }
    return Bytes;
}

} // namespace kv
