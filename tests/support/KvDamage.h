// KvDamage - damages the bytes of files for tests.
#pragma once

#include <cstddef>
#include <random>
#include <string>

namespace kv {

/// Makes damaged copies; the same seed makes the same ones.
class TDamage
{
public:
    explicit TDamage(unsigned Seed) : Random(Seed) {}

    /// From 0 to `Below` - 1.
    std::size_t Number(std::size_t Below)
    {
        return std::uniform_int_distribution<std::size_t>(0, Below - 1)(Random);
    }

    /// `Bytes`, not empty, cut short, with bits flipped, or with numbers of 1, 2 or 4 bytes overwritten by
    /// extreme ones: anywhere, or at the start of some block of `BlockSize` bytes, where formats keep what
    /// they tell of a block.
    std::string Of(std::string Bytes, std::size_t BlockSize);

private:
    void FlipBits(std::string& Bytes);
    void Overwrite(std::string& Bytes, std::size_t Position);

    std::mt19937 Random;
};

} // namespace kv
