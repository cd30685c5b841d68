// KvSqliteQueue - changes that a table has taken and not stored yet. For the units of this folder.
#pragma once

#include <cstddef>

#include "KvDataSet.h"
#include "KvSqliteSchema.h"

namespace kv {

/// Whoever posts a change need not wait until it is stored when the database has no ground to refuse it.
/// Every statement on the connection waits for the queue first, so that nobody sees the difference. What
/// can still go wrong is that the disk is full or the device fails; then the transaction is rolled back
/// as a whole, because changes that were reported as stored are missing.
class TSQLiteQueue
{
public:
    virtual ~TSQLiteQueue() = default;

    /// Stores all that was taken. Raises EDatabaseError when that fails.
    virtual void Finish() = 0;
    /// Drops what was taken and not stored: the transaction is about to be rolled back.
    virtual void Forget() = 0;
    /// Leaves the connection to the caller until more is taken. Does not raise: what went wrong is kept for
    /// the next call that does.
    virtual void Pause() {}
};

/// True when the database may have a ground to refuse records of `Table` or may add to what is written:
/// constraints, indexes, triggers, defaults. Types and NOT NULL are for the dataset to check.
bool CanRefuse(TSQLiteConnection& Connection, const TSQLiteTableSchema& Table);

/// True when the database keeps the references of other tables to records of `Table` valid.
bool IsReferredTo(TSQLiteConnection& Connection, const TSQLiteTableSchema& Table);

/// True when no value of the columns `Columns` of `Record` may be too long for SQLite.
bool FitsIntoQueue(const TRecordBuffer& Record, std::span<const std::size_t> Columns);

} // namespace kv
