// KvCellText - the text of a cell's value, which each has.
#pragma once

#include <string>

#include "KvVariant.h"

namespace kv {

/// False for a date-time that lies outside of the calendar.
bool HasText(const TVariant& Value);

/// TVariant::ToText, and for a date-time outside of the calendar the number of its day.
std::string CellText(const TVariant& Value);

} // namespace kv
