// KvSet - a set over the values of an enumeration with ordinals 0 to 31.
#pragma once

#include <cstdint>
#include <initializer_list>

namespace kv {

template <class TEnum> class TSet
{
public:
    constexpr TSet() = default;
    constexpr TSet(std::initializer_list<TEnum> Elements)
    {
        for (const auto Element : Elements)
            Include(Element);
    }
    /// Bit n stands for the value with the ordinal n.
    static constexpr TSet FromBits(std::uint32_t Bits)
    {
        TSet Result;
        Result.FBits = Bits;
        return Result;
    }

    constexpr bool Contains(TEnum Element) const { return (FBits & BitOf(Element)) != 0; }
    constexpr bool IsEmpty() const { return FBits == 0; }
    constexpr std::uint32_t Bits() const { return FBits; }
    constexpr void Include(TEnum Element) { FBits |= BitOf(Element); }
    constexpr void Exclude(TEnum Element) { FBits &= ~BitOf(Element); }

    friend constexpr bool operator==(TSet, TSet) = default;

private:
    static constexpr std::uint32_t BitOf(TEnum Element)
    {
        return std::uint32_t{1} << static_cast<unsigned>(Element);
    }

    std::uint32_t FBits = 0;
};

} // namespace kv
