// KvxlsNumbers - small codes of Excel's cells: packed numbers, errors, alignments.
#pragma once

#include <cstdint>
#include <string_view>

#include "KvCellRows.h"

namespace kv {

/// The number of an RK value.
///
///   bit 0: to be divided by 100   bit 1: an integer in bits 2..31, signed; else the high half of a double
double RkNumber(std::uint32_t Rk);

/// "#DIV/0!" for 0x07; "#???" for a code that is none.
std::string_view ExcelErrorText(std::uint8_t Code);

/// How the last attribute byte of an Excel 2 cell aligns it: bits 0 and 1 are 2 for centred, 3 for right.
TAlignment AttributeAlignment(std::uint8_t Attribute);

} // namespace kv
