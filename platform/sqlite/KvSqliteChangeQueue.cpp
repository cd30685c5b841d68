#include "KvSqliteChangeQueue.h"

#include <algorithm>
#include <string>
#include <utility>

#include "KvSqliteConnection.h"
#include "KvSqliteName.h"

namespace kv {

// --- A set of rowids --------------------------------------------------------------------------------

std::size_t TSQLiteRowidSet::SlotOf(std::int64_t Rowid) const
{
    constexpr std::uint64_t Golden = 0x9E3779B97F4A7C15; // spreads neighbours over all upper bits
    const auto Mask = Slots.size() - 1;
    auto Slot = static_cast<std::size_t>(static_cast<std::uint64_t>(Rowid) * Golden >> 32) & Mask;
    while (Used[Slot] && Slots[Slot] != Rowid)
        Slot = (Slot + 1) & Mask;
    return Slot;
}

void TSQLiteRowidSet::Add(std::int64_t Rowid)
{
    if (2 * (Count + 1) > Slots.size())
        Grow();
    const auto Slot = SlotOf(Rowid);
    Slots[Slot] = Rowid;
    Used[Slot] = true;
    ++Count;
}

void TSQLiteRowidSet::Grow()
{
    constexpr std::size_t FewestSlots = 256;
    const auto Size = std::max(2 * Slots.size(), FewestSlots);
    const auto Before = std::exchange(Slots, std::vector<std::int64_t>(Size));
    const auto WereUsed = std::exchange(Used, std::vector<bool>(Size));
    Count = 0;
    for (std::size_t Slot = 0; Slot < Before.size(); ++Slot)
        if (WereUsed[Slot])
            Add(Before[Slot]);
}

void TSQLiteRowidSet::Clear()
{
    Slots = {};
    Used = {};
    Count = 0;
}

// --- Taking changes ---------------------------------------------------------------------------------

TSQLiteChangeQueue::TSQLiteChangeQueue(TSQLiteConnection& Owner, const TSQLiteTableSchema& Schema)
    : Connection(Owner), Table(Schema), Scratch(Schema.Columns.size())
{
}

int TSQLiteChangeQueue::ChangesSoFar() const
{
    return sqlite3_total_changes(Connection.Handle());
}

bool TSQLiteChangeQueue::MayTake(std::int64_t Rowid, bool Exists)
{
    const auto Known = std::exchange(Answer, {});
    return Known && Known->Rowid == Rowid && Known->Exists == Exists && Known->Changes == ChangesSoFar() &&
           IsReady();
}

/// True when changes may be taken: from a number of them on that came one after the other.
bool TSQLiteChangeQueue::IsReady()
{
    if (Active)
        return true;
    if (Candidates == ChangesBeforeStart || ++Candidates < ChangesBeforeStart)
        return false;                               // asked once in a row of changes
    if (!Connection.InTransaction() || CanRefuse(Connection, Table))
        return false;
    if (IsReferredTo(Connection, Table))
        return false;
    Inserts.Set.clear();
    Updates.Set.clear();
    if (!Delete)
        Delete = TSQLiteStatement(Connection,
                                  "DELETE FROM " + Table.QualifiedName() + " WHERE " + Table.KeyCondition(1),
                                  Table.Title);
    Active = true;
    return true;
}

bool TSQLiteChangeQueue::TryUpdate(const TRecordBuffer& Record, const decltype(TRecordBuffer::Assigned)& Set,
                                   std::int64_t Rowid, std::int64_t Tag)
{
    return TryWrite(Updates, ckUpdate, Record, Set, Rowid, Tag);
}

bool TSQLiteChangeQueue::TryDelete(std::int64_t Rowid, std::int64_t Tag)
{
    if (!MayTake(Rowid, true))
        return false;
    DeleteTags.push_back(Tag);
    Take(Rowid, ckDelete, DeleteTags.size() - 1);
    return true;
}

bool TSQLiteChangeQueue::TryWrite(TWrites& Writes, TKind Kind, const TRecordBuffer& Record,
                                  const decltype(TRecordBuffer::Assigned)& Set, std::int64_t Rowid,
                                  std::int64_t Tag)
{
    if (!MayTake(Rowid, Kind == ckUpdate))
        return false;
    if (Writes.Set.empty())
        Prepare(Writes, Kind, Set);
    if (Writes.Set != Set || !FitsIntoQueue(Record, Writes.Columns)) {
        Finish();
        return false;
    }
    Writes.Block.BeginRow();
    for (const auto Column : Writes.Columns)        // may raise: then the row is not ended
        Writes.Block.Add(EncodeValue(Table.Columns[Column], Record.Values[Column], Scratch[Column]));
    Writes.Block.EndRow();
    Writes.Tags.push_back(Tag);
    Take(Rowid, Kind, Writes.Block.Rows() - 1);
    return true;
}

void TSQLiteChangeQueue::Prepare(TWrites& Writes, TKind Kind, const decltype(TRecordBuffer::Assigned)& Set)
{
    const TBypass Bypass(*this);
    const auto& Key = Table.Key.front();
    Writes.Columns.clear();
    std::string Names, Params, Assignments;
    for (std::size_t I = 0; I < Set.size(); ++I) {
        if (!Set[I] || static_cast<int>(I) == Key.Column)
            continue;
        Writes.Columns.push_back(I);
        const auto Name = QuoteName(Table.Columns[I].Name);
        AddToList(Names, Name);
        AddToList(Params, "?");
        AddToList(Assignments, Name + " = ?");
    }
    AddToList(Names, Key.Sql);
    AddToList(Params, "?");
    const auto Sql =
        Kind == ckInsert
            ? "INSERT INTO " + Table.QualifiedName() + " (" + Names + ") VALUES (" + Params + ")"
            : "UPDATE " + Table.QualifiedName() + " SET " + Assignments + " WHERE " + Key.Sql + " = ?";
    Writes.Statement = TSQLiteStatement(Connection, Sql, Table.Title);
    Writes.Set = Set;
}

void TSQLiteChangeQueue::Take(std::int64_t Rowid, TKind Kind, std::size_t Row)
{
    Changes.push_back({Rowid, Kind, static_cast<std::uint32_t>(Row)});
    Rowids.Add(Rowid);
    Connection.SetQueue(this);
    if (Changes.size() == MaxChanges || Inserts.Block.Bytes() + Updates.Block.Bytes() > MaxBytes)
        StoreAll();
}

// --- Storing ----------------------------------------------------------------------------------------

void TSQLiteChangeQueue::Finish()
{
    Candidates = 0;
    if (!Active)
        return;
    StoreAll();
    Active = false;
}

void TSQLiteChangeQueue::Forget()
{
    Clear();
    Candidates = 0;
    Active = false;
}

void TSQLiteChangeQueue::StoreAll()
{
    if (Changes.empty())
        return;
    Connection.SetQueue(nullptr);                   // the statements are its own
    std::ranges::sort(Changes, {}, &TChange::Rowid);
    const auto Failed =
        std::ranges::find_if_not(Changes, [this](const TChange& Change) { return Store(Change); });
    const bool Stored = Failed == Changes.end();
    const auto Tag = Stored ? -1 : TagOf(*Failed);
    Clear();
    if (!Stored)
        Fail(Tag);
    Connection.CheckPatience();
}

void TSQLiteChangeQueue::Clear()
{
    if (!Changes.empty())
        Connection.SetQueue(nullptr);
    Changes.clear();
    Rowids.Clear();
    for (auto* const Writes : {&Inserts, &Updates}) {
        Writes->Block.Clear();
        Writes->Tags.clear();
    }
    DeleteTags.clear();
}

/// After an error the statement stays as it is, for Fail to ask why.
bool TSQLiteChangeQueue::Store(const TChange& Change)
{
    if (Change.Kind == ckDelete)
        return Run(Delete, 1, Change.Rowid);
    auto& Writes = Change.Kind == ckInsert ? Inserts : Updates;
    const auto Width = Writes.Columns.size();
    for (std::size_t I = 0; I < Width; ++I)
        BindValue(Writes.Statement.Get(), static_cast<int>(I) + 1,
                  Writes.Block.Value(Change.Row * Width + I));
    return Run(Writes.Statement, static_cast<int>(Width) + 1, Change.Rowid);
}

bool TSQLiteChangeQueue::Run(TSQLiteStatement& Statement, int RowidParam, std::int64_t Rowid)
{
    BindValue(Statement.Get(), RowidParam, TSQLiteValue::OfInteger(Rowid));
    if (Statement.TryStep() != SQLITE_DONE)
        return false;
    Statement.Reset();
    return true;
}

std::int64_t TSQLiteChangeQueue::TagOf(const TChange& Change) const
{
    if (Change.Kind == ckDelete)
        return DeleteTags[Change.Row];
    return (Change.Kind == ckInsert ? Inserts : Updates).Tags[Change.Row];
}

void TSQLiteChangeQueue::Fail(std::int64_t Tag)
{
    auto Error = Connection.AbandonTransaction();
    Error.Facts.Record = Tag;
    Active = false;
    Candidates = 0;
    for (auto* const Statement : {&Inserts.Statement, &Updates.Statement, &Delete})
        if (*Statement)
            Statement->Reset();
    Connection.Raise(Error, Table.Title);
}

// --- Asking past the queue --------------------------------------------------------------------------

TSQLiteChangeQueue::TBypass::TBypass(TSQLiteChangeQueue& Waiting) : Queue(Waiting)
{
    if (!Queue.Changes.empty())
        Queue.Connection.SetQueue(nullptr);
}

TSQLiteChangeQueue::TBypass::~TBypass()
{
    if (!Queue.Changes.empty())
        Queue.Connection.SetQueue(&Queue);
}

} // namespace kv
