#include "KvJetValues.h"

#include <array>
#include <bit>

#include "KvBytes.h"

namespace kv {

namespace {

constexpr std::uint32_t InlineFlag = 0x80000000;

} // namespace

std::string JetLong(std::int64_t Value, int Size)
{
    const auto Bits = std::bit_cast<std::array<char, 8>>(Value);
    return std::string(Bits.data(), static_cast<std::size_t>(Size));
}

std::string JetDouble(double Value) { return TBytes().F64(Value); }
std::string JetSingle(float Value) { return TBytes().U32(std::bit_cast<std::uint32_t>(Value)); }
std::string JetText(std::u16string_view Text) { return TBytes().Text(Text); }

std::string JetDecimal(bool Negative, std::uint32_t A, std::uint32_t B, std::uint32_t C, std::uint32_t D)
{
    return TBytes().U8(Negative ? 0x80 : 0).U32(A).U32(B).U32(C).U32(D);
}

std::string JetCalculated(std::string_view Bytes)
{
    return TBytes().Zeros(16).U32(static_cast<std::uint32_t>(Bytes.size())).Text(Bytes).Zeros(3);
}

std::string JetLongValue(std::uint32_t SizeAndKind, std::uint32_t Place)
{
    return TBytes().U32(SizeAndKind).U32(Place).U32(0);
}

std::string JetInline(std::string_view Bytes)
{
    return JetLongValue(InlineFlag | static_cast<std::uint32_t>(Bytes.size()), 0).append(Bytes);
}

} // namespace kv
