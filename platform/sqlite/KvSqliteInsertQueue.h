// KvSqliteInsertQueue - stores appended records in a thread of its own while the run reads the next ones.
// For the units of this folder.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "KvDataSet.h"
#include "KvSqliteQueue.h"
#include "KvSqliteRecordBlock.h"
#include "KvSqliteSchema.h"
#include "KvSqliteStatement.h"

namespace kv {

/// A record is taken only within a transaction, in a table that has no ground to refuse it, with a rowid
/// above all others. All other records are for TSQLiteWriter.
///
/// Only one thread at a time works with the connection: every statement waits for the queue first.
class TSQLiteInsertQueue final : public TSQLiteQueue
{
public:
    /// Keeps references to both.
    TSQLiteInsertQueue(TSQLiteConnection& Connection, const TSQLiteTableSchema& Table);
    TSQLiteInsertQueue(const TSQLiteInsertQueue&) = delete;
    TSQLiteInsertQueue& operator=(const TSQLiteInsertQueue&) = delete;
    ~TSQLiteInsertQueue() override;                 ///< Drops what was not stored: see Finish.

    /// Takes the record and sets `Key` to its key; false leaves it to the caller. Begins to take records
    /// only after a number of them came one after the other, with nothing else in between.
    /// Raises EDatabaseError when records taken before could not be stored; it names the one by its `Tag`.
    bool TryAdd(const TRecordBuffer& Record, std::int64_t Tag, TSQLiteKey& Key);

    /// Stores all that was taken, and takes nothing before the next number of records. Raises as TryAdd.
    void Finish() override;
    void Forget() override;
    /// Waits until the thread has nothing to do, and ends its work when the program is asked and wants to
    /// stop.
    void Pause() override;
    /// True while records are being taken: the connection is shared with the thread.
    bool IsActive() const { return Active; }

private:
    static constexpr std::size_t BlockRows = 1024;  // handed over at once; waking the thread takes 10 µs
    static constexpr std::size_t BlockBytes = 4 << 20; // and so many, or one record more
    static constexpr int RecordsBeforeStart = 64;
    using TTags = std::vector<std::int64_t>;        // of the records of a block

    bool MayStart(const TRecordBuffer& Record);
    void Start(const TRecordBuffer& Record);
    bool Suits(const TRecordBuffer& Record) const;
    std::int64_t RowidFor(const TRecordBuffer& Record) const;
    void HandOver();
    void RunBlocks();
    void Store(const TSQLiteRecordBlock& Block, const TTags& Tags);
    std::size_t Width() const { return Columns.size() + 1; } ///< Values of a record: its rowid comes first.
    void CheckStored();
    void Stop();

    TSQLiteConnection& Connection;
    const TSQLiteTableSchema& Table;
    int KeyColumn = -1;                             // in the dataset; -1: the table has a hidden rowid
    int Candidates = 0;                             // records since the last statement of another kind
    bool Active = false;
    decltype(TRecordBuffer::Assigned) Assigned;     // of the records that are taken
    std::vector<std::size_t> Columns;               // those assigned, without the key
    std::int64_t LastRowid = 0;
    std::vector<TSQLiteScratch> Scratch;
    TSQLiteStatement Insert;                        // rowid, then Columns

    TSQLiteRecordBlock Filling;                     // of the caller
    TTags FillingTags = TTags(BlockRows);
    TSQLiteRecordBlock Storing;                     // of the thread while HasWork
    TTags StoringTags = TTags(BlockRows);
    std::thread Thread;
    std::mutex Mutex;                               // guards the three below
    std::condition_variable Changed;
    bool HasWork = false;
    bool Ending = false;
    bool Failed = false;                            // Storing stopped at an error ...
    std::int64_t FailedTag = -1;                    // ... of this record
};

} // namespace kv
