// KvYardText - cuts a file of orders into values, as a program written for just this file would.
#pragma once

#include <array>
#include <string>
#include <string_view>

#include "KvBenchOrders.h"

namespace kv::bench {

/// The values of one line; they view the file or the cutter's own buffers until the next line.
using TOrderText = std::array<std::string_view, OrderColumns.size()>;

/// Comma separated lines. A value in quotation marks ends at the closing one, a doubled one inside it
/// stands for one. Raises std::runtime_error when a line has too few values.
class TDelimitedCutter
{
public:
    /// Skips the header, the first line.
    explicit TDelimitedCutter(std::string_view File);
    /// False past the last line.
    bool Next(TOrderText& Order);

private:
    std::string_view Rest;
    std::array<std::string, OrderColumns.size()> Unquoted;
};

/// Lines whose values stand at the columns' widths, padded with blanks.
class TFixedWidthCutter
{
public:
    explicit TFixedWidthCutter(std::string_view File) : Rest(File) {}
    bool Next(TOrderText& Order);

private:
    std::string_view Rest;
};

} // namespace kv::bench
