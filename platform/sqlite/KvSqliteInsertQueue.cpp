#include "KvSqliteInsertQueue.h"

#include <algorithm>
#include <bit>
#include <chrono>
#include <csignal>
#include <limits>
#include <utility>

#include "KvSqliteConnection.h"
#include "KvSqliteName.h"
#include "KvText.h"

namespace kv {

namespace {

/// Starts a thread that no signal interrupts: they are for the thread that imports.
template <class TBody> std::thread StartThread(TBody Body)
{
    sigset_t All, Before;
    sigfillset(&All);
    pthread_sigmask(SIG_SETMASK, &All, &Before);
    std::thread Thread(Body);
    pthread_sigmask(SIG_SETMASK, &Before, nullptr);
    return Thread;
}

} // namespace

TSQLiteInsertQueue::TSQLiteInsertQueue(TSQLiteConnection& Owner, const TSQLiteTableSchema& Schema)
    : Connection(Owner), Table(Schema), Scratch(Schema.Columns.size())
{
}

TSQLiteInsertQueue::~TSQLiteInsertQueue()
{
    Stop();
    if (!Thread.joinable())
        return;
    {
        const std::lock_guard Lock(Mutex);
        Ending = true;
    }
    Changed.notify_all();
    Thread.join();
}

// --- Taking records ---------------------------------------------------------------------------------

bool TSQLiteInsertQueue::TryAdd(const TRecordBuffer& Record, std::int64_t Tag, TSQLiteKey& Key)
{
    if (!Active && !MayStart(Record))
        return false;
    const auto Rowid = RowidFor(Record);
    if (Rowid <= LastRowid || !Suits(Record)) {
        Finish();
        return false;
    }
    Filling.BeginRow();
    Filling.Add(TSQLiteValue::OfInteger(Rowid));
    for (const auto Column : Columns)               // may raise: then the row is not ended
        Filling.Add(EncodeValue(Table.Columns[Column], Record.Values[Column], Scratch[Column]));
    FillingTags[Filling.Rows()] = Tag;
    Filling.EndRow();
    LastRowid = Rowid;
    Key.front().Set(TSQLiteValue::OfInteger(Rowid));
    if (Filling.Rows() == BlockRows || Filling.Bytes() > BlockBytes)
        HandOver();
    return true;
}

bool TSQLiteInsertQueue::MayStart(const TRecordBuffer& Record)
{
    if (Candidates == RecordsBeforeStart || ++Candidates < RecordsBeforeStart)
        return false;                               // asked once in a row of records
    if (!Connection.InTransaction() || CanRefuse(Connection, Table))
        return false;
    Start(Record);
    return true;
}

void TSQLiteInsertQueue::Start(const TRecordBuffer& Record)
{
    KeyColumn = Table.Key.front().Column;
    TSQLiteStatement Max(Connection, "SELECT ifnull(max(" + Table.Key.front().Sql + "), 0) FROM " +
                                         Table.QualifiedName());
    Max.Step();
    LastRowid = Max.Column(0).Integer;
    Max.Reset();

    Assigned = Record.Assigned;
    Columns.clear();
    std::string Names = Table.Key.front().Sql, Params = "?";
    for (std::size_t I = 0; I < Assigned.size(); ++I) {
        if (!Assigned[I] || static_cast<int>(I) == KeyColumn)
            continue;
        Columns.push_back(I);
        Names += ", " + QuoteName(Table.Columns[I].Name);
        Params += ", ?";
    }
    Insert = TSQLiteStatement(
        Connection, "INSERT INTO " + Table.QualifiedName() + " (" + Names + ") VALUES (" + Params + ")",
        Table.Title);
    Filling.Clear();
    if (!Thread.joinable())
        Thread = StartThread([this] { RunBlocks(); });
    Active = true;
    Connection.SetQueue(this);
}

bool TSQLiteInsertQueue::Suits(const TRecordBuffer& Record) const
{
    return Record.Assigned == Assigned && FitsIntoQueue(Record, Columns);
}

/// The rowid that the record will have: its own, or the one after the last.
std::int64_t TSQLiteInsertQueue::RowidFor(const TRecordBuffer& Record) const
{
    const auto I = static_cast<std::size_t>(KeyColumn);
    if (KeyColumn >= 0 && Record.Assigned[I] && Record.Values[I].HasValue())
        return Record.Values[I].Kind() == vkInteger ? Record.Values[I].Integer() : LastRowid;
    return LastRowid < std::numeric_limits<std::int64_t>::max() ? LastRowid + 1 : LastRowid;
}

// --- Between the threads ----------------------------------------------------------------------------

void TSQLiteInsertQueue::HandOver()
{
    Pause();
    CheckStored();
    Connection.CheckPatience();
    std::swap(Filling, Storing);
    std::swap(FillingTags, StoringTags);
    Filling.Clear();
    Connection.LetWorkerGoOn(true);
    {
        const std::lock_guard Lock(Mutex);
        HasWork = true;
    }
    Changed.notify_all();
}

void TSQLiteInsertQueue::Pause()
{
    constexpr auto BetweenQuestions = std::chrono::milliseconds(50);
    std::unique_lock Lock(Mutex);
    while (!Changed.wait_for(Lock, BetweenQuestions, [this] { return !HasWork; })) {
        Lock.unlock();                              // the program may take its time to answer
        if (!Connection.GoesOn())
            Connection.LetWorkerGoOn(false);
        Lock.lock();
    }
}

void TSQLiteInsertQueue::RunBlocks()
{
    TSQLiteConnection::BecomeWorker();
    std::unique_lock Lock(Mutex);
    for (;;) {
        Changed.wait(Lock, [this] { return HasWork || Ending; });
        if (!HasWork)
            return;
        Lock.unlock();
        Store(Storing, StoringTags);
        Lock.lock();
        HasWork = false;
        Changed.notify_all();
    }
}

/// After an error the statement stays as it is, for CheckStored to ask why.
void TSQLiteInsertQueue::Store(const TSQLiteRecordBlock& Block, const TTags& Tags)
{
    auto* const Statement = Insert.Get();
    for (std::size_t Row = 0; Row < Block.Rows(); ++Row) {
        for (std::size_t I = 0; I < Width(); ++I)
            BindValue(Statement, static_cast<int>(I) + 1, Block.Value(Row * Width() + I));
        if (sqlite3_step(Statement) != SQLITE_DONE) {
            Failed = true;
            FailedTag = Tags[Row];
            break;
        }
        sqlite3_reset(Statement);
    }
}

void TSQLiteInsertQueue::CheckStored()
{
    if (!std::exchange(Failed, false))
        return Connection.ForgetAnswer();
    auto Error = Connection.AbandonTransaction();
    Error.Facts.Record = FailedTag;
    Stop();
    Connection.Raise(Error, Table.Title);
}

void TSQLiteInsertQueue::Finish()
{
    Candidates = 0;
    if (!Active)
        return;
    Pause();
    CheckStored();
    Store(Filling, FillingTags);
    Filling.Clear();
    CheckStored();
    Stop();
}

void TSQLiteInsertQueue::Forget()
{
    Connection.LetWorkerGoOn(false);
    Stop();
}

void TSQLiteInsertQueue::Stop()
{
    if (!Active)
        return;
    Pause();
    Connection.SetQueue(nullptr);
    Active = Failed = false;
    Candidates = 0;
    Filling.Clear();
    Insert.Reset();
}

} // namespace kv
