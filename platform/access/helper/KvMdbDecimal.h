// KvMdbDecimal - exact numbers of up to 28 digits as Access stores them: a byte whose highest bit is the
// sign, then four words of 32 bits, the highest first, each low byte first.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kv {

__extension__ typedef unsigned __int128 TUInt128;

/// An exact number, -1 ^ Negative * Digits / 10 ^ Scale, without zeros at the end of its fraction.
struct TMdbDecimal
{
    static constexpr std::size_t Size = 17;         ///< Bytes that it takes.

    /// From `Size` bytes.
    TMdbDecimal(std::string_view Bytes, int Scale);

    /// The number times 10 ^ `Places` when that is an integer of 64 bits.
    std::optional<std::int64_t> Scaled(int Places) const;
    /// All digits, with "-" and ".".
    std::string ToText() const;

    bool Negative;
    TUInt128 Digits;
    int Scale;
};

} // namespace kv
