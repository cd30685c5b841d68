// KvSqliteWriteError - why a record was refused, with the values at fault. For the units of this folder.
#pragma once

#include <span>
#include <string>

#include "KvDataSet.h"
#include "KvSqliteSchema.h"

namespace kv {

/// `Reason`, what SQLite said of a record that was to be written, followed by the values of those of
/// `Columns` that it names, or that refer to other tables when it says that one of them is missing there:
/// "UNIQUE constraint failed: orders.id (id = 17)".
std::string DescribeRefusal(TSQLiteConnection& Connection, const TSQLiteTableSchema& Table, std::string Reason,
                            const TRecordBuffer& Record, std::span<const int> Columns);

} // namespace kv
