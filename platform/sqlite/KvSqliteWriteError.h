// KvSqliteWriteError - why a record was refused, with the values at fault. For the units of this folder.
#pragma once

#include <span>

#include "KvDataSet.h"
#include "KvSqliteError.h"
#include "KvSqliteSchema.h"

namespace kv {

/// `Error`, what SQLite said of a record that was to be written, with the values of those of `Columns` that
/// it names, or that refer to other tables when it says that one of them is missing there. They become facts
/// and the end of the text: "UNIQUE constraint failed: orders.id (id = 17)".
TSQLiteError DescribeRefusal(TSQLiteConnection& Connection, const TSQLiteTableSchema& Table,
                             TSQLiteError Error, const TRecordBuffer& Record, std::span<const int> Columns);

} // namespace kv
