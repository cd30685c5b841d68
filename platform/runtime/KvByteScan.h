// KvByteScan - finds the first byte of a small set, sixteen or eight bytes at a step.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace kv {

/// A set of one to four byte values to search for. Values may repeat.
class TKvByteSet
{
public:
    static constexpr std::size_t MaxSize = 4;

    /// Takes the first MaxSize bytes of `Values`; at least one.
    explicit TKvByteSet(std::string_view Values)
    {
        for (std::size_t I = 0; I < MaxSize; ++I)
            Pattern[I] = Ones * static_cast<unsigned char>(Values[I < Values.size() ? I : 0]);
    }

    /// The first byte of [First, Last) that is in the set, or Last.
    const char* FindIn(const char* First, const char* Last) const
    {
#ifdef __SSE2__
        for (; Last - First >= 16; First += 16)
            if (const auto Hits = MatchesOf16(First))
                return First + std::countr_zero(Hits);
#endif
        for (; Last - First >= 8; First += 8) {
            std::uint64_t Word;
            std::memcpy(&Word, First, sizeof Word);
            if (const auto Hits = Matches(Word))
                return First + std::countr_zero(Hits) / 8;
        }
        while (First != Last && !Contains(*First))
            ++First;
        return First;
    }

    bool Contains(char Value) const
    {
        const auto Byte = static_cast<unsigned char>(Value);
        return Byte == (Pattern[0] & 0xFF) || Byte == (Pattern[1] & 0xFF) || Byte == (Pattern[2] & 0xFF) ||
               Byte == (Pattern[3] & 0xFF);
    }

private:
    static_assert(std::endian::native == std::endian::little); // the first byte is the lowest
    static constexpr std::uint64_t Ones = 0x0101010101010101;
    static constexpr std::uint64_t Highs = 0x8080808080808080;

    // The lowest set bit is exact: a borrow can only raise false hits above a true one.
    static std::uint64_t ZeroBytes(std::uint64_t Word) { return (Word - Ones) & ~Word & Highs; }
    std::uint64_t Matches(std::uint64_t Word) const
    {
        return ZeroBytes(Word ^ Pattern[0]) | ZeroBytes(Word ^ Pattern[1]) | ZeroBytes(Word ^ Pattern[2]) |
               ZeroBytes(Word ^ Pattern[3]);
    }

#ifdef __SSE2__
    /// Bit n is set when byte n of the sixteen at `Bytes` is in the set.
    unsigned MatchesOf16(const char* Bytes) const
    {
        const auto Block = _mm_loadu_si128(reinterpret_cast<const __m128i*>(Bytes));
        const auto EqualTo = [this, Block](std::size_t I) {
            return _mm_cmpeq_epi8(Block, _mm_set1_epi64x(static_cast<long long>(Pattern[I])));
        };
        const auto Equal = _mm_or_si128(_mm_or_si128(EqualTo(0), EqualTo(1)),
                                        _mm_or_si128(EqualTo(2), EqualTo(3)));
        return static_cast<unsigned>(_mm_movemask_epi8(Equal));
    }
#endif

    std::uint64_t Pattern[MaxSize];
};

/// The set of all byte values up to a limit and of one to three more, which may repeat.
class TKvLowByteSet
{
public:
    static constexpr std::size_t MaxMore = 3;

    /// Takes the first MaxMore bytes of `More`; at least one.
    TKvLowByteSet(char TheLimit, std::string_view TheMore) : Limit(static_cast<unsigned char>(TheLimit))
    {
        for (std::size_t I = 0; I < MaxMore; ++I)
            More[I] = TheMore[I < TheMore.size() ? I : 0];
    }

    /// The first byte of [First, Last) that is in the set, or Last.
    const char* FindIn(const char* First, const char* Last) const
    {
#ifdef __SSE2__
        for (; Last - First >= 16; First += 16)
            if (const auto Hits = MatchesOf16(First))
                return First + std::countr_zero(Hits);
#endif
        while (First != Last && !Contains(*First))
            ++First;
        return First;
    }

    bool Contains(char Value) const
    {
        return static_cast<unsigned char>(Value) <= Limit || Value == More[0] || Value == More[1] ||
               Value == More[2];
    }

private:
#ifdef __SSE2__
    unsigned MatchesOf16(const char* Bytes) const
    {
        const auto Block = _mm_loadu_si128(reinterpret_cast<const __m128i*>(Bytes));
        auto Found = _mm_cmpeq_epi8(_mm_min_epu8(Block, _mm_set1_epi8(static_cast<char>(Limit))), Block);
        for (const char Value : More)
            Found = _mm_or_si128(Found, _mm_cmpeq_epi8(Block, _mm_set1_epi8(Value)));
        return static_cast<unsigned>(_mm_movemask_epi8(Found));
    }
#endif

    unsigned char Limit;
    char More[MaxMore];
};

/// The first `Value` in [First, Last), or Last. For values that mostly are a few bytes away, where calling
/// memchr costs more than its search.
inline const char* FindNear(const char* First, const char* Last, char Value)
{
#ifdef __SSE2__
    const auto Pattern = _mm_set1_epi8(Value);
    const auto MatchesOf16 = [Pattern](const char* Bytes) {
        const auto Block = _mm_loadu_si128(reinterpret_cast<const __m128i*>(Bytes));
        return static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(Block, Pattern)));
    };
    for (; Last - First >= 32; First += 32)         // most searches end here: one branch to predict
        if (const auto Hits = MatchesOf16(First) | MatchesOf16(First + 16) << 16)
            return First + std::countr_zero(Hits);
#endif
    while (First != Last && *First != Value)
        ++First;
    return First;
}

} // namespace kv
