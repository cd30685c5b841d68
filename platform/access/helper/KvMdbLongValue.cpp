#include "KvMdbLongValue.h"

#include <algorithm>
#include <cstdint>

#include "KvAccessProtocol.h"
#include "KvByteCursor.h"
#include "KvException.h"

namespace kv {

namespace {

constexpr std::size_t HeaderSize = 12;
constexpr std::uint32_t SizeMask = 0x3FFFFFFF;
constexpr std::uint32_t InlineFlag = 0x80000000;
constexpr std::uint32_t SinglePageFlag = 0x40000000;
constexpr unsigned PositionMask = 0x1FFF;

[[noreturn]] void RaiseCut()
{
    throw EFormatError("its value is damaged: not all of it is there");
}

/// The row that `Place` points to, valid until the next one is read.
std::string_view RowAt(const TMdbFile& File, std::uint32_t Place)
{
    void* Page = nullptr;
    int Position = 0;
    std::size_t Size = 0;
    if (mdb_find_pg_row(File.Handle(), static_cast<int>(Place), &Page, &Position, &Size) != 0)
        RaiseCut();
    const auto Start = static_cast<unsigned>(Position) & PositionMask;
    if (Start + Size > File.PageSize())
        RaiseCut();
    return {static_cast<const char*>(Page) + Start, Size};
}

} // namespace

std::string_view ReadLongValue(const TMdbFile& File, std::string_view Bytes, std::string& Storage)
{
    if (Bytes.empty())
        return {};
    if (Bytes.size() < HeaderSize)
        RaiseCut();
    const auto SizeAndKind = LoadLittleEndian<std::uint32_t>(Bytes.data());
    auto Place = LoadLittleEndian<std::uint32_t>(Bytes.data() + sizeof SizeAndKind);
    std::size_t Size = SizeAndKind & SizeMask;

    if (SizeAndKind & InlineFlag) {
        const auto Value = Bytes.substr(HeaderSize);
        if (Value.size() < Size)
            RaiseCut();
        return Value.substr(0, Size);
    }
    if (Size > File.Size())                         // no chain of pages gives more
        RaiseCut();
    if (Size > TAccessBounds::MaxValueSize)
        throw EFormatError("its value of " + std::to_string(Size) + " bytes is too long");
    Storage.clear();
    if (SizeAndKind & SinglePageFlag) {
        const auto Row = RowAt(File, Place);
        if (Row.size() < Size)
            RaiseCut();
        return Storage.assign(Row.substr(0, Size));
    }
    while (Storage.size() < Size) {
        const auto Row = RowAt(File, Place);
        if (Row.size() <= sizeof Place)             // a chain that brings nothing would have no end
            RaiseCut();
        Place = LoadLittleEndian<std::uint32_t>(Row.data());
        Storage += Row.substr(sizeof Place, Size - Storage.size());
    }
    return Storage;
}

} // namespace kv
