// KvBenchSheetOrders - the rows of the workbooks, worksheets and text files that are compared: orders, with
// four more columns of numbers.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

#include "KvBenchOrders.h"

namespace kv::bench {

/// A column that follows those of the orders.
struct TSheetColumn
{
    std::string_view Name, SqlType;
};

inline constexpr std::array<TSheetColumn, 4> MoreSheetColumns{
    {{"PRICE", "DECIMAL(10,2)"}, {"WEIGHT", "INTEGER"}, {"RATE", "REAL"}, {"TOTAL", "DECIMAL(10,2)"}}};

inline constexpr std::size_t SheetColumnCount = OrderColumns.size() + MoreSheetColumns.size();

/// "ID" for 0 up to "TOTAL" for 11.
std::string_view SheetColumnName(std::size_t Column);

/// A row, as values and as the texts that stand for them in a text file.
struct TSheetOrder
{
    std::uint64_t Id = 0;
    TOrder Texts;
    int OrderedDays = 0;                            ///< Since 30 December 1899.
    int AmountCents = 0, Qty = 0;
    bool Paid = false;
    int PriceCents = 0, Weight = 0, TotalCents = 0;
    static constexpr double Rate = 0.25;
};

/// The row of the order `Id`.
void MakeSheetOrder(std::uint64_t Id, TSheetOrder& Row);

/// Writes the rows 1 to `Rows` below a header, with commas.
void WriteSheetOrders(const std::filesystem::path& File, std::uint64_t Rows);

/// "CREATE TABLE orders (...)" with all columns and no key.
std::string CreateSheetOrdersSql();

} // namespace kv::bench
