#include "KvxlsNumbers.h"

#include <bit>

namespace kv {

double RkNumber(std::uint32_t Rk)
{
    constexpr std::uint32_t IsHundredfold = 1, IsInteger = 2, Flags = IsHundredfold | IsInteger;
    const double Number = (Rk & IsInteger) != 0 ? static_cast<double>(static_cast<std::int32_t>(Rk) >> 2)
                                                : std::bit_cast<double>(std::uint64_t{Rk & ~Flags} << 32);
    return (Rk & IsHundredfold) != 0 ? Number / 100 : Number;
}

std::string_view ExcelErrorText(std::uint8_t Code)
{
    switch (Code) {
    case 0x00: return "#NULL!";
    case 0x07: return "#DIV/0!";
    case 0x0F: return "#VALUE!";
    case 0x17: return "#REF!";
    case 0x1D: return "#NAME?";
    case 0x24: return "#NUM!";
    case 0x2A: return "#N/A";
    default:   return "#???";
    }
}

TAlignment AttributeAlignment(std::uint8_t Attribute)
{
    switch (Attribute & 3) {
    case 2:  return taCenter;
    case 3:  return taRightJustify;
    default: return taLeftJustify;
    }
}

} // namespace kv
