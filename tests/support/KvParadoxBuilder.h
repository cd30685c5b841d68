// KvParadoxBuilder - writes Paradox tables (.db) and their long values (.mb) for tests.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kv {

// Values as a record stores them.
std::string ParadoxShort(int Value);
std::string ParadoxLong(std::int32_t Value);        ///< Also days of a date, milliseconds of a time.
std::string ParadoxNumber(double Value);            ///< Also currency and milliseconds of a timestamp.
/// `Digits` is a decimal number without an exponent: "-12.50".
std::string ParadoxBcd(std::string_view Digits, unsigned Decimals);
/// A long value: its leader, then where the rest of it is.
std::string ParadoxBlobField(std::string_view Leader, std::uint32_t Place, std::size_t Size);

/// The file of long values.
class TParadoxBlobBuilder
{
public:
    TParadoxBlobBuilder();

    // Each gives the place for ParadoxBlobField.
    std::uint32_t Add(std::string_view Bytes);      ///< A block of its own.
    std::uint32_t AddSmall(std::string_view Bytes); ///< Shares a block with the last one; at most 2048 bytes.

    const std::string& Build() const { return File; }

private:
    std::size_t AddBlock(unsigned Kind, std::size_t Size);

    std::string File;
    std::size_t SmallBlock = 0;                     // offset of the block being filled
    unsigned SmallCount = 64;
    std::size_t NextChunk = 0;
};

/// A table with the fields and records that a test asks for. Valid as built, of version 7; a test that wants
/// damage changes bytes of the result.
class TParadoxBuilder
{
public:
    static constexpr std::size_t HeaderSize = 2048;

    /// Version bytes are 3 and 4, 5 to 9, 10 and 11, 12.
    explicit TParadoxBuilder(unsigned VersionByte = 12) : Version(VersionByte) {}

    /// `Kind` is one of the letters of the format's makers: A D S I $ N L M B F O G T @ + # Y (bytes).
    /// `Length` is that of A, Y and the long ones, with # the number of decimals.
    TParadoxBuilder& Field(std::string_view Name, char Kind, unsigned Length = 0);
    /// One stored value a field; what is shorter than its field is filled up with zeros.
    TParadoxBuilder& Record(const std::vector<std::string>& Values);

    TParadoxBuilder& CodePage(unsigned Number);
    TParadoxBuilder& Keyed();
    TParadoxBuilder& Encrypted(std::uint32_t Key);
    /// How many records a block holds, instead of as many as fit.
    TParadoxBuilder& RecordsPerBlock(std::size_t Count);
    /// Lays out the blocks of the chain from last to first.
    TParadoxBuilder& Reversed();

    std::string Build() const;

    /// The offset of block `Number`, from 1, in what Build made.
    static std::size_t OffsetOfBlock(std::size_t Number) { return HeaderSize + (Number - 1) * 2048; }

private:
    struct TField
    {
        std::string Name;
        unsigned Type, Length;
        std::size_t Size;
    };

    std::size_t RecordSize() const;
    std::string Header(std::size_t Blocks) const;
    std::string Blocks(std::size_t Count, std::size_t PerBlock) const;

    unsigned Version;
    std::vector<TField> Fields;
    std::vector<std::string> Records;
    unsigned PageNumber = 0;
    bool IsKeyed = false;
    std::uint32_t Encryption = 0;
    std::size_t PerBlock = 0;
    bool IsReversed = false;
};

} // namespace kv
