// KvBenchSchema - SQL texts over the table of orders, put together from its columns.
#pragma once

#include <cstddef>
#include <string>

#include "KvBenchOrders.h"

namespace kv::bench {

/// Whether the ID of the table is its key, and so has an index.
enum TOrderKey
{
    okIndexed,
    okPlain
};

/// "CREATE TABLE orders (...)"; with okIndexed ID is the INTEGER PRIMARY KEY.
std::string CreateOrdersSql(TOrderKey Key = okIndexed, const std::string& Table = "orders");
/// "INSERT INTO orders VALUES (?1, ..., ?8)": parameter n is column n, as in all of these.
std::string InsertOrderSql();
/// "UPDATE orders SET CUSTOMER = ?2, ... WHERE ID = ?1"
std::string UpdateOrderSql();
/// "CUSTOMER = incoming.CUSTOMER, ...": all columns but the key, set from the table `Source`.
std::string AssignmentsSql(const std::string& Source);

} // namespace kv::bench
