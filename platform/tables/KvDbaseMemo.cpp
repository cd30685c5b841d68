#include "KvDbaseMemo.h"

#include <string>

#include "KvByteCursor.h"
#include "KvException.h"
#include "KvText.h"

namespace kv {

namespace {

constexpr std::size_t HeaderSize = 512;
constexpr std::size_t Dbase3BlockSize = 512;

std::size_t BlockSizeOf(const TKvByteCursor& File, TKvDbaseMemoKind Kind)
{
    std::size_t Size = Dbase3BlockSize;
    if (Kind == dmDbase4)
        Size = File.At<std::uint16_t>(20);
    else if (Kind == dmFoxPro)
        Size = File.BigEndianAt<std::uint16_t>(6);
    if (Size == 0)
        throw EFormatError("its blocks have no size");
    return Size;
}

/// A memo without an end goes on to the end of the file, as the last one may.
std::string_view TakeDbase3Memo(TKvByteCursor& Memo)
{
    const auto Rest = Memo.TakeBytes(Memo.Remaining());
    return Rest.substr(0, Rest.find('\x1A'));
}

std::string_view TakeDbase4Memo(TKvByteCursor& Memo)
{
    constexpr std::uint32_t Mark = 0x0008FFFF;
    constexpr std::uint32_t HeadSize = 8;
    const auto Begin = Memo.Take<std::uint32_t>();
    const auto Size = Memo.Take<std::uint32_t>();
    if (Begin != Mark || Size < HeadSize)
        throw EFormatError("no memo begins there");
    return Memo.TakeBytes(Size - HeadSize);
}

std::string_view TakeFoxProMemo(TKvByteCursor& Memo)
{
    constexpr std::uint32_t LastType = 2;           // picture, text, object
    if (Memo.TakeBigEndian<std::uint32_t>() > LastType)
        throw EFormatError("no memo begins there");
    return Memo.TakeBytes(Memo.TakeBigEndian<std::uint32_t>());
}

std::string_view TakeMemo(TKvByteCursor File, TKvDbaseMemoKind Kind, std::uint64_t Block)
{
    const auto BlockSize = BlockSizeOf(File, Kind);
    const auto BlockCount = File.Size() / BlockSize + 1;
    if (Block > BlockCount || Block * BlockSize < HeaderSize || Block * BlockSize >= File.Size())
        throw EFormatError("it lies outside");
    File.Seek(Block * BlockSize);
    switch (Kind) {
    case dmDbase3: return TakeDbase3Memo(File);
    case dmDbase4: return TakeDbase4Memo(File);
    default:       return TakeFoxProMemo(File);
    }
}

} // namespace

std::string_view DbaseMemo(std::string_view File, TKvDbaseMemoKind Kind, std::uint64_t Block)
{
    try {
        return TakeMemo(TKvByteCursor(File), Kind, Block);
    }
    catch (const EFormatError& Error) {
        throw EFormatError(FormatText("memo block %d: %s", {std::to_string(Block), Error.Message}),
                           Error.Facts);
    }
}

} // namespace kv
