// KvSqliteChangeQueue - holds changes of records that were looked up by rowid back, and stores them in
// the order of the rowids. For the units of this folder.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "KvDataSet.h"
#include "KvSqliteQueue.h"
#include "KvSqliteRecordBlock.h"
#include "KvSqliteSchema.h"
#include "KvSqliteStatement.h"

namespace kv {

/// A set of rowids, in one piece of memory that grows with it and is given back by Clear.
class TSQLiteRowidSet
{
public:
    void Add(std::int64_t Rowid);                   ///< One that it does not contain.
    bool Contains(std::int64_t Rowid) const { return Count > 0 && Used[SlotOf(Rowid)]; }
    void Clear();

private:
    std::size_t SlotOf(std::int64_t Rowid) const;   // where it stands, or an unused one
    void Grow();

    std::vector<std::int64_t> Slots;                // a power of two of them, at most half of them used
    std::vector<bool> Used;                         // which
    std::size_t Count = 0;
};

/// In random order each change reads a page of its own and writes it twice, once into the journal; in
/// the order of the rowids all changes of a page come together. A change is taken only when the caller
/// has asked for the rowid just before and nothing was written since, within a transaction, in a table
/// that has no ground to refuse it.
class TSQLiteChangeQueue final : public TSQLiteQueue
{
public:
    /// Keeps references to both.
    TSQLiteChangeQueue(TSQLiteConnection& Connection, const TSQLiteTableSchema& Table);
    TSQLiteChangeQueue(const TSQLiteChangeQueue&) = delete;
    TSQLiteChangeQueue& operator=(const TSQLiteChangeQueue&) = delete;
    ~TSQLiteChangeQueue() override { Forget(); }

    /// Calls `Find`, which looks for `Rowid` and says whether it is there, past the changes that wait
    /// unless they concern this record, and keeps the answer.
    template <class TFind> bool Ask(std::int64_t Rowid, TFind Find)
    {
        if (Active && Rowids.Contains(Rowid))
            Finish();
        const TBypass Bypass(*this);
        const bool Found = Find();
        Answer = {Rowid, Found, ChangesSoFar()};
        return Found;
    }

    // Each takes a change of the record with the rowid `Rowid`; false leaves it to the caller. The first
    // ones are always left. Raise EDatabaseError when changes taken before could not be stored; it names the
    // one by its `Tag`.
    bool TryInsert(const TRecordBuffer& Record, std::int64_t Rowid, std::int64_t Tag)
    {
        return Answer && TryWrite(Inserts, ckInsert, Record, Record.Assigned, Rowid, Tag);
    }
    bool TryUpdate(const TRecordBuffer& Record, const decltype(TRecordBuffer::Assigned)& Set,
                   std::int64_t Rowid, std::int64_t Tag);
    bool TryDelete(std::int64_t Rowid, std::int64_t Tag);

    void Finish() override;
    void Forget() override;

private:
    static constexpr std::size_t MaxChanges = 1 << 18;
    static constexpr std::size_t MaxBytes = 8 << 20;
    static constexpr int ChangesBeforeStart = 64;
    using TTags = std::vector<std::int64_t>;

    /// While it lives, statements do not wait for the queue.
    class TBypass
    {
    public:
        explicit TBypass(TSQLiteChangeQueue& Queue);
        TBypass(const TBypass&) = delete;
        TBypass& operator=(const TBypass&) = delete;
        ~TBypass();

    private:
        TSQLiteChangeQueue& Queue;
    };

    /// Whether there is a record with this rowid.
    struct TAnswer
    {
        std::int64_t Rowid;
        bool Exists;
        int Changes;                                // of the connection when this was so
    };
    enum TKind : std::uint32_t { ckDelete, ckInsert, ckUpdate };
    struct TChange
    {
        std::int64_t Rowid;
        TKind Kind;
        std::uint32_t Row;                          // of the tags of its kind, and of the block if it has one
    };
    /// Records that are written by one statement.
    struct TWrites
    {
        decltype(TRecordBuffer::Assigned) Set;      // columns that are written, without the rowid
        std::vector<std::size_t> Columns;           // the same
        TSQLiteStatement Statement;                 // Columns, then the rowid
        TSQLiteRecordBlock Block;
        TTags Tags;                                 // of the records in Block
    };

    int ChangesSoFar() const;
    bool MayTake(std::int64_t Rowid, bool Exists);
    bool IsReady();
    bool TryWrite(TWrites& Writes, TKind Kind, const TRecordBuffer& Record,
                  const decltype(TRecordBuffer::Assigned)& Set, std::int64_t Rowid, std::int64_t Tag);
    void Prepare(TWrites& Writes, TKind Kind, const decltype(TRecordBuffer::Assigned)& Set);
    void Take(std::int64_t Rowid, TKind Kind, std::size_t Row);
    void StoreAll();
    bool Store(const TChange& Change);
    bool Run(TSQLiteStatement& Statement, int RowidParam, std::int64_t Rowid);
    void Clear();
    std::int64_t TagOf(const TChange& Change) const;
    [[noreturn]] void Fail(std::int64_t Tag);

    TSQLiteConnection& Connection;
    const TSQLiteTableSchema& Table;
    std::optional<TAnswer> Answer;
    int Candidates = 0;                             // changes since the last statement of another kind
    bool Active = false;
    std::vector<TChange> Changes;
    TSQLiteRowidSet Rowids;                         // of Changes
    TWrites Inserts, Updates;
    TSQLiteStatement Delete;
    TTags DeleteTags;                               // of the records that it deletes
    std::vector<TSQLiteScratch> Scratch;            // one a column
};

} // namespace kv
