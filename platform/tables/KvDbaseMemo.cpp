#include "KvDbaseMemo.h"

#include <algorithm>
#include <cstddef>

#include "KvByteCursor.h"
#include "KvCompanionFile.h"
#include "KvException.h"
#include "KvText.h"

namespace kv {

namespace {

constexpr std::size_t HeaderSize = 512;
constexpr std::size_t DbaseBlockSize = 512;
constexpr std::size_t PieceSize = 4096;             // of a memo whose end is looked for
constexpr std::size_t MemoHeadSize = 8;
constexpr std::string_view SoftEnd = "\x8D\n";

[[noreturn]] void RefuseMemo()
{
    throw EFormatError("no memo begins there");
}

/// What stands before the first memo, as far as sizes are told there.
TKvByteCursor HeaderOf(TKvFileWindow& File)
{
    return TKvByteCursor(File.At(0, 22));
}

std::size_t BlockSizeOf(TKvFileWindow& File, TKvDbaseMemoKind Kind)
{
    if (Kind == dmFoxPro) {
        const std::size_t Size = HeaderOf(File).BigEndianAt<std::uint16_t>(6);
        return Size != 0 ? Size : throw EFormatError("its blocks have no size");
    }
    const std::size_t Size = Kind == dmDbase4 ? HeaderOf(File).At<std::uint16_t>(20) : 0;
    return Size != 0 ? Size : DbaseBlockSize;
}

/// A memo without an end goes on to the end of the file, as the last one may.
std::string_view TakeDbase3Memo(TKvFileWindow& File, std::uint64_t Offset, std::string& Buffer)
{
    Buffer.clear();
    for (;;) {
        const auto Piece = File.At(Offset, PieceSize);
        const auto End = Piece.find('\x1A');
        Buffer += Piece.substr(0, End);
        if (End != Piece.npos || Piece.size() < PieceSize)
            return Buffer;
        Offset += Piece.size();
    }
}

std::string_view TakeDbase4Memo(TKvFileWindow& File, std::uint64_t Offset, std::string& Buffer)
{
    constexpr std::uint32_t Mark = 0x0008FFFF;
    TKvByteCursor Head(File.At(Offset, MemoHeadSize), Offset);
    const auto Begin = Head.Take<std::uint32_t>();
    const auto Size = Head.Take<std::uint32_t>();
    if (Begin != Mark || Size < MemoHeadSize)
        RefuseMemo();
    return CopyBytes(File, Head.Offset(), Size - MemoHeadSize, Buffer);
}

std::string_view TakeFoxProMemo(TKvFileWindow& File, std::uint64_t Offset, std::string& Buffer)
{
    constexpr std::uint32_t LastType = 2;           // picture, text, object
    TKvByteCursor Head(File.At(Offset, MemoHeadSize), Offset);
    if (Head.TakeBigEndian<std::uint32_t>() > LastType)
        RefuseMemo();
    const auto Size = Head.TakeBigEndian<std::uint32_t>();
    return CopyBytes(File, Head.Offset(), Size, Buffer);
}

std::string_view TakeMemo(TKvFileWindow& File, TKvDbaseMemoKind Kind, std::uint64_t Block,
                          std::string& Buffer)
{
    const auto BlockSize = BlockSizeOf(File, Kind);
    const auto BlockCount = File.FileSize() / BlockSize + 1;
    if (Block > BlockCount || Block * BlockSize < HeaderSize || Block * BlockSize >= File.FileSize())
        throw EFormatError("it lies outside");
    switch (Kind) {
    case dmDbase3: return TakeDbase3Memo(File, Block * BlockSize, Buffer);
    case dmDbase4: return TakeDbase4Memo(File, Block * BlockSize, Buffer);
    default:       return TakeFoxProMemo(File, Block * BlockSize, Buffer);
    }
}

} // namespace

std::string_view DbaseMemo(TKvFileWindow& File, TKvDbaseMemoKind Kind, std::uint64_t Block,
                           std::string& Buffer)
{
    try {
        return TakeMemo(File, Kind, Block, Buffer);
    }
    catch (const EFormatError& Error) {
        throw EFormatError(FormatText("memo block %d: %s", {std::to_string(Block), Error.Message}),
                           Error.Facts);
    }
}

bool HasSoftLines(std::string_view Memo)
{
    return Memo.find(SoftEnd) != Memo.npos;
}

void JoinSoftLines(std::string& Memo)
{
    auto From = std::min(Memo.find(SoftEnd), Memo.size());
    auto To = From;
    for (auto Next = Memo.find(SoftEnd); Next != Memo.npos;) {
        if (To > 0 && Memo[To - 1] != ' ')
            Memo[To++] = ' ';
        From = Next + SoftEnd.size();
        Next = Memo.find(SoftEnd, From);
        const auto Count = std::min(Next, Memo.size()) - From;
        std::copy_n(Memo.begin() + static_cast<std::ptrdiff_t>(From), Count,
                    Memo.begin() + static_cast<std::ptrdiff_t>(To));
        To += Count;
    }
    Memo.resize(To);
}

} // namespace kv
