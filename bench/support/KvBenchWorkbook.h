// KvBenchWorkbook - an Excel 97 workbook of orders, as the benchmarks read it.
#pragma once

#include <cstddef>
#include <string>

namespace kv::bench {

/// The bytes of an .xls file with one sheet of `Rows` rows below a header and 12 columns: numbers of every
/// record, dates, booleans and shared strings, of which about half are the only ones of their kind.
/// `Rows` is at most 65535.
std::string MakeWorkbook(std::size_t Rows);

} // namespace kv::bench
