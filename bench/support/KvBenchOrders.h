// KvBenchOrders - the rows that every benchmark imports: orders of a shop, made up from their ID alone.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace kv::bench {

/// A column of the orders: its name, its declared SQL type and its width in a fixed-width line in bytes.
struct TOrderColumn
{
    std::string_view Name, SqlType;
    std::size_t Width;
};

inline constexpr std::array<TOrderColumn, 8> OrderColumns{{
    {"ID", "INTEGER", 9},
    {"CUSTOMER", "VARCHAR(60)", 36},
    {"CITY", "VARCHAR(40)", 14},
    {"ORDERED", "DATE", 10},
    {"AMOUNT", "DECIMAL(10,2)", 8},
    {"QTY", "INTEGER", 3},
    {"PAID", "BOOLEAN", 5},
    {"NOTE", "TEXT", 40},
}};

/// One order as text, a value a column: dates as yyyy-mm-dd, amounts as 1234.56, True or False. About one
/// customer in ten holds a comma and one in twenty quotation marks; one NOTE in twelve is empty.
/// All is UTF-8, some of it beyond ASCII.
using TOrder = std::array<std::string, OrderColumns.size()>;

/// Fills `Order` with the order `Id`. Another `Revision` is the same order with other values.
void MakeOrder(std::uint64_t Id, std::uint64_t Revision, TOrder& Order);

} // namespace kv::bench
