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
#include "KvSqliteSchema.h"
#include "KvSqliteStatement.h"

namespace kv {

/// A record is taken only when the database has no ground to refuse it, so that whoever posts it need
/// not wait for the answer: within a transaction, in a table without constraints, indexes and triggers,
/// with a rowid above all others. All other records are for TSQLiteWriter. What can still go wrong is
/// that the disk is full or the device fails; then the transaction is rolled back as a whole, because
/// records that were reported as stored are missing.
///
/// Only one thread at a time works with the connection: every statement waits for the queue first.
class TSQLiteInsertQueue
{
public:
    /// Keeps references to both.
    TSQLiteInsertQueue(TSQLiteConnection& Connection, const TSQLiteTableSchema& Table);
    TSQLiteInsertQueue(const TSQLiteInsertQueue&) = delete;
    TSQLiteInsertQueue& operator=(const TSQLiteInsertQueue&) = delete;
    ~TSQLiteInsertQueue();                          ///< Drops what was not stored: see Finish.

    /// Takes the record and sets `Key` to its key; false leaves it to the caller. Begins to take records
    /// only after a number of them came one after the other, with nothing else in between.
    /// Raises EDatabaseError when records taken before could not be stored.
    bool TryAdd(const TRecordBuffer& Record, TSQLiteKey& Key);

    /// Stores all that was taken, and takes nothing before the next number of records. Raises as TryAdd.
    void Finish();
    /// Waits until the thread has nothing to do. Does not raise: what went wrong is kept for the next
    /// call that does.
    void Pause();
    /// True while records are being taken: the connection is shared with the thread.
    bool IsActive() const { return Active; }

private:
    static constexpr std::size_t BlockRows = 1024;  // handed to the thread at once; waking it costs 10 microseconds
    static constexpr int RecordsBeforeStart = 64;
    static constexpr std::size_t MaxTextSize = 1 << 20; // longer text has a limit in SQLite to pass

    /// Values of some records, close together: each cache line costs a trip between two processors.
    class TBlock
    {
    public:
        void Clear();
        void BeginRow();                            ///< Drops a row that was begun and not ended.
        void Add(const TSQLiteValue& Value);
        void EndRow();
        std::size_t Rows() const { return FRows; }
        TSQLiteValue Value(std::size_t Index) const; ///< Of all, from 0; views the block.

    private:
        struct TCell
        {
            std::int64_t Content;                   // integer, the bits of a real, or where in Bytes it begins
            std::uint32_t Size;                     // in bytes
            TSQLiteStorage Storage;
        };

        std::vector<TCell> Cells;
        std::string Bytes;                          // of texts and blobs
        std::size_t FRows = 0;
        std::size_t EndedCells = 0, EndedBytes = 0; // of the rows that were ended
    };

    bool MayStart(const TRecordBuffer& Record);
    bool CanRefuse() const;
    void Start(const TRecordBuffer& Record);
    bool Suits(const TRecordBuffer& Record) const;
    std::int64_t RowidFor(const TRecordBuffer& Record) const;
    void HandOver();
    void RunBlocks();
    void Store(TBlock& Block);
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

    TBlock Filling;                                 // of the caller
    TBlock Storing;                                 // of the thread while HasWork
    std::thread Thread;
    std::mutex Mutex;                               // guards the three below
    std::condition_variable Changed;
    bool HasWork = false;
    bool Ending = false;
    bool Failed = false;                            // Storing stopped at an error
};

} // namespace kv
