// KvRecords - the records that worksheet and workbook streams consist of.
//
//   stream := record*
//   record := id:u16le  size:u16le  body:u8[size]
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

#include "KvByteCursor.h"

namespace kv {

/// One record. Its body is a view of the stream.
class TKvRecord
{
public:
    static constexpr std::size_t HeaderSize = 4;

    TKvRecord() = default;
    TKvRecord(std::uint16_t TheId, std::string_view TheBody, std::size_t TheOffset)
        : Id(TheId),
          Body(TheBody),
          Offset(TheOffset)
    {
    }

    std::size_t Size() const { return Body.size(); }    ///< Of the body.

    // What stands at `Position` of the body, from 0. Each raises EFormatError "Record 0x%s at offset %d is
    // too short: %d bytes, %d are needed" when the body ends before.
    template <CKvPlainNumber T> T At(std::size_t Position) const
    {
        return LoadLittleEndian<T>(Text(Position, sizeof(T)).data());
    }
    std::string_view Text(std::size_t Position, std::size_t Length) const
    {
        if (Position > Body.size() || Length > Body.size() - Position)
            RaiseTooShort(Position + Length);
        return Body.substr(Position, Length);
    }
    /// A cursor over the body from `Position` on.
    TKvByteCursor From(std::size_t Position) const
    {
        Text(Position, 0);
        return TKvByteCursor(Body.substr(Position), Offset + HeaderSize + Position);
    }

    /// Raises EFormatError "Record 0x%s at offset %d: %s" with `What`.
    [[noreturn]] void Raise(std::string_view What) const;

    std::uint16_t Id = 0;
    std::string_view Body;
    std::size_t Offset = 0;                         ///< Of its header, from the first byte of the stream.

private:
    [[noreturn]] void RaiseTooShort(std::size_t Needed) const;
};

/// The records of a stream, one after the other.
class TKvRecords
{
public:
    /// Keeps a view of `Stream`, which must outlive the object and the records.
    explicit TKvRecords(std::string_view Stream) : In(Stream) {}

    /// Moves to the next record. False past the last one, and on every later call; up to three zeros after
    /// it are padding. Raises EFormatError "File is truncated: ..." when the stream ends within a record.
    bool Next()
    {
        const auto Offset = In.Position();
        if (In.Remaining() < TKvRecord::HeaderSize) {
            RequirePadding();
            return false;
        }
        const auto Id = In.Take<std::uint16_t>();
        const auto Size = In.Take<std::uint16_t>();
        if (In.Remaining() < Size)
            RaiseTruncatedBody(Id, Size);
        FRecord = {Id, In.TakeBytes(Size), Offset};
        return true;
    }

    const TKvRecord& Record() const { return FRecord; }     ///< The current one.
    /// The id of the record that follows the current one; none when no header does.
    std::optional<std::uint16_t> NextId() const
    {
        if (In.Remaining() < TKvRecord::HeaderSize)
            return {};
        return In.At<std::uint16_t>(In.Position());
    }
    bool IsNext(std::uint16_t Id) const { return NextId() == Id; }
    std::size_t Remaining() const { return In.Remaining(); }    ///< Bytes after the current record.
    std::string_view Bytes() const { return In.Bytes(); }   ///< All of the stream.
    /// The record at `Offset` from the first byte of the stream; none where no whole one is.
    std::optional<TKvRecord> At(std::size_t Offset) const;
    /// Makes the record at `Offset` from the first byte of the stream the next one. Raises EFormatError
    /// when that is past the end.
    void Seek(std::size_t Offset) { In.Seek(Offset); }

private:
    void RequirePadding() const;
    [[noreturn]] void RaiseTruncatedBody(std::uint16_t Id, std::size_t Size) const;

    TKvByteCursor In;
    TKvRecord FRecord;
};

} // namespace kv
