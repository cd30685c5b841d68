// KvBenchRandom - pseudo-random numbers that are the same on every machine, which the standard
// library's distributions are not, and a random order that needs no memory.
#pragma once

#include <cstdint>

namespace kv::bench {

/// Mixes all bits of `Value`; neighbouring values give unrelated results.
constexpr std::uint64_t Mixed(std::uint64_t Value)
{
    Value += 0x9E3779B97F4A7C15u;
    Value = (Value ^ (Value >> 30)) * 0xBF58476D1CE4E5B9u;
    Value = (Value ^ (Value >> 27)) * 0x94D049BB133111EBu;
    return Value ^ (Value >> 31);
}

/// A stream of numbers, the same for the same seed.
class TRandom
{
public:
    explicit constexpr TRandom(std::uint64_t Seed) : State(Mixed(Seed)) {}

    /// Evenly spread over 0 .. Bound - 1; Bound is 1 to 2^32.
    constexpr std::uint32_t Below(std::uint64_t Bound)
    {
        State = Mixed(State);
        return static_cast<std::uint32_t>(((State >> 32) * Bound) >> 32);
    }

    /// True once in `Times` calls, on average.
    constexpr bool OneIn(std::uint32_t Times) { return Below(Times) == 0; }

private:
    std::uint64_t State;
};

/// The numbers 0 .. Count - 1 in a random order, each once, any of them at once: a four-round Feistel
/// network over the next power of four, walked until it lands below Count.
class TRandomOrder
{
public:
    constexpr TRandomOrder(std::uint64_t Count, std::uint64_t OrderSeed) : Size(Count), Seed(OrderSeed)
    {
        while ((std::uint64_t{1} << (2 * HalfBits)) < Size)
            HalfBits++;
    }

    /// The number at `Position`, which is below Count.
    constexpr std::uint64_t operator[](std::uint64_t Position) const
    {
        do
            Position = Shuffled(Position);
        while (Position >= Size);
        return Position;
    }

private:
    constexpr std::uint64_t Shuffled(std::uint64_t Value) const
    {
        const auto Mask = (std::uint64_t{1} << HalfBits) - 1;
        auto Left = Value >> HalfBits, Right = Value & Mask;
        for (std::uint64_t Round = 0; Round < 4; Round++) {
            const auto Next = Left ^ (Mixed(Right ^ Mixed(Seed + Round)) & Mask);
            Left = Right;
            Right = Next;
        }
        return Left << HalfBits | Right;
    }

    std::uint64_t Size, Seed;
    int HalfBits = 1;
};

} // namespace kv::bench
