// KvByteCursor - reads the bytes of a file, never past their end.
//
// The one place that adds to offsets: whoever decodes a part of a file gets a cursor that ends where the
// part ends, so that a lying length cannot reach what follows.
#pragma once

#include <bit>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <type_traits>

namespace kv {

/// What a file stores as its bytes alone: a number of fixed width.
template <class T>
concept CKvPlainNumber = std::is_arithmetic_v<T> && !std::same_as<T, bool>;

/// The number at `Bytes`, low byte first. The caller knows that sizeof(T) bytes are there.
template <CKvPlainNumber T> T LoadLittleEndian(const char* Bytes)
{
    static_assert(std::endian::native == std::endian::little);
    T Value;                                        // one load; g++ 12 leaves a shift loop a loop
    std::memcpy(&Value, Bytes, sizeof Value);
    return Value;
}

/// The number at `Bytes`, high byte first. The caller knows that sizeof(T) bytes are there.
template <CKvPlainNumber T> T LoadBigEndian(const char* Bytes)
{
    if constexpr (sizeof(T) == 1)
        return LoadLittleEndian<T>(Bytes);
    else if constexpr (sizeof(T) == 2)
        return std::bit_cast<T>(__builtin_bswap16(LoadLittleEndian<std::uint16_t>(Bytes)));
    else if constexpr (sizeof(T) == 4)
        return std::bit_cast<T>(__builtin_bswap32(LoadLittleEndian<std::uint32_t>(Bytes)));
    else
        return std::bit_cast<T>(__builtin_bswap64(LoadLittleEndian<std::uint64_t>(Bytes)));
}

/// A position in bytes that somebody else keeps. Every operation that asks for more bytes than are there
/// raises EFormatError "Unexpected end of data at offset %d" and leaves the position as it was.
class TKvByteCursor
{
public:
    TKvByteCursor() = default;
    /// Views `Bytes`, which stand at `Start` in their file: messages count from the file's first byte.
    explicit TKvByteCursor(std::string_view Bytes, std::uint64_t Start = 0) : FBytes(Bytes), FStart(Start) {}

    std::string_view Bytes() const { return FBytes; }               ///< All of them, read or not.
    std::size_t Size() const { return FBytes.size(); }
    std::size_t Position() const { return FPosition; }              ///< From the first byte of the cursor.
    std::uint64_t Offset() const { return FStart + FPosition; }     ///< The same, from that of the file.
    std::size_t Remaining() const { return FBytes.size() - FPosition; }
    bool AtEnd() const { return Remaining() == 0; }

    /// Moves to `Position`, which may be the end.
    void Seek(std::size_t Position)
    {
        Require(Position, 0);
        FPosition = Position;
    }
    void Skip(std::size_t Count) { TakeBytes(Count); }

    /// The next `Count` bytes, valid as long as those of the cursor.
    std::string_view TakeBytes(std::size_t Count)
    {
        Require(FPosition, Count);
        const auto Taken = FBytes.substr(FPosition, Count);
        FPosition += Count;
        return Taken;
    }
    /// A cursor over the next `Count` bytes; this one moves past them.
    TKvByteCursor TakeSlice(std::size_t Count)
    {
        const auto Start = Offset();
        return TKvByteCursor(TakeBytes(Count), Start);
    }

    /// The next number.
    template <CKvPlainNumber T> T Take() { return LoadLittleEndian<T>(TakeBytes(sizeof(T)).data()); }
    template <CKvPlainNumber T> T TakeBigEndian() { return LoadBigEndian<T>(TakeBytes(sizeof(T)).data()); }

    // The same at `Position` bytes from the first byte of the cursor, which stays where it is.
    std::string_view BytesAt(std::size_t Position, std::size_t Count) const
    {
        Require(Position, Count);
        return FBytes.substr(Position, Count);
    }
    template <CKvPlainNumber T> T At(std::size_t Position) const
    {
        return LoadLittleEndian<T>(BytesAt(Position, sizeof(T)).data());
    }
    template <CKvPlainNumber T> T BigEndianAt(std::size_t Position) const
    {
        return LoadBigEndian<T>(BytesAt(Position, sizeof(T)).data());
    }

private:
    void Require(std::size_t Position, std::size_t Count) const
    {
        // Not Position + Count > Size: the sum can wrap.
        if (Position > FBytes.size() || Count > FBytes.size() - Position)
            RaiseEnd();
    }
    [[noreturn]] void RaiseEnd() const;

    std::string_view FBytes;
    std::uint64_t FStart = 0;
    std::size_t FPosition = 0;
};

} // namespace kv
