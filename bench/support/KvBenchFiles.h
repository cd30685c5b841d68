// KvBenchFiles - files of orders, the same bytes on every machine.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string_view>

namespace kv::bench {

/// How the lines of a file of orders look.
enum TOrderLines
{
    olDelimited,                                    ///< A header, commas, CUSTOMER in quotation marks.
    olFixedWidth,                                   ///< No header; values padded with blanks to OrderColumns.
    olHtml,                                         ///< A table with a row of header cells.
    olXml                                           ///< A data packet; an empty NOTE has no attribute.
};

/// Writes orders 1 to `Rows` in order of ID; a row is about 87 bytes long in a delimited file, 165 in an HTML
/// table and 140 in a data packet.
void WriteOrders(const std::filesystem::path& File, TOrderLines Lines, std::uint64_t Rows,
                 std::string_view LineEnd = "\n");

/// Writes a delimited file of `Rows` orders in random order: every other one is one of the orders 1 to
/// `TableRows` with changed values, the rest have larger IDs. `Rows` is at most twice `TableRows`.
void WriteKeyedOrders(const std::filesystem::path& File, std::uint64_t Rows, std::uint64_t TableRows);

} // namespace kv::bench
