// KvBenchWorkbook - workbooks and worksheets of orders, as the benchmarks read them.
#pragma once

#include <cstddef>
#include <string>

namespace kv::bench {

/// The bytes of an .xls file of Excel 97 with one sheet of `Rows` rows below a header and 12 columns: numbers
/// of every record, dates, booleans and shared strings, which go on over hundreds of records. The columns and
/// values are those of KvBenchSheetOrders. `Rows` is at most 65535.
std::string MakeWorkbook(std::size_t Rows);

/// The same in a worksheet of 1-2-3 (.wk1) and of Quattro Pro (.wq1), dates as plain numbers and booleans as
/// 0 and 1. Text that is not ASCII stands there as UTF-8. `Rows` is at most 8191.
std::string MakeLotusSheet(std::size_t Rows);
std::string MakeQuattroSheet(std::size_t Rows);

} // namespace kv::bench
