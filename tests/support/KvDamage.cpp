#include "KvDamage.h"

#include <cstdint>
#include <iterator>

namespace kv {

std::string TDamage::Of(std::string Bytes, std::size_t BlockSize)
{
    constexpr std::size_t StartSize = 128;
    switch (Number(4)) {
    case 0:
        Bytes.resize(Number(Bytes.size()));
        break;
    case 1:
        FlipBits(Bytes);
        break;
    case 2:
        for (std::size_t Count = 1 + Number(16); Count > 0; --Count)
            Overwrite(Bytes, Number(Bytes.size()));
        break;
    default:
        for (std::size_t Count = 1 + Number(4); Count > 0; --Count)
            Overwrite(Bytes, Number(Bytes.size() / BlockSize + 1) * BlockSize + Number(StartSize));
        break;
    }
    return Bytes;
}

void TDamage::FlipBits(std::string& Bytes)
{
    for (std::size_t Count = 1 + Number(64); Count > 0; --Count)
        Bytes[Number(Bytes.size())] ^= static_cast<char>(1 << Number(8));
}

void TDamage::Overwrite(std::string& Bytes, std::size_t Position)
{
    constexpr std::uint32_t Extremes[] = {0,      1,      0x7F,       0xFF,       0x7FFF,
                                          0x8000, 0xFFFF, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF};
    const auto Extreme = Extremes[Number(std::size(Extremes))];
    const auto Size = std::size_t{1} << Number(3);
    for (std::size_t I = 0; I < Size && Position + I < Bytes.size(); ++I)
        Bytes[Position + I] = static_cast<char>(Extreme >> 8 * I);
}

} // namespace kv
