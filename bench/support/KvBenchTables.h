// KvBenchTables - tables of orders of Paradox and dBase, as the benchmarks read them.
#pragma once

#include <cstddef>
#include <string>

namespace kv::bench {

// The bytes of a table of the orders 1 to `Rows` with the columns of KvBenchOrders, texts in the code page
// 1252 that the table names, a question mark for each of the few letters that it lacks.

/// A .db file of Paradox 7, without a key.
std::string MakeParadoxTable(std::size_t Rows);
/// A .dbf file of dBase III.
std::string MakeDbaseTable(std::size_t Rows);

} // namespace kv::bench
