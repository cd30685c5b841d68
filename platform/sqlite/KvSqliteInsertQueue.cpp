#include "KvSqliteInsertQueue.h"

#include <algorithm>
#include <bit>
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

// --- A block of records -----------------------------------------------------------------------------

void TSQLiteInsertQueue::TBlock::Clear()
{
    Cells.clear();
    Bytes.clear();
    FRows = EndedCells = EndedBytes = 0;
}

void TSQLiteInsertQueue::TBlock::BeginRow()
{
    Cells.resize(EndedCells);
    Bytes.resize(EndedBytes);
}

void TSQLiteInsertQueue::TBlock::EndRow()
{
    ++FRows;
    EndedCells = Cells.size();
    EndedBytes = Bytes.size();
}

void TSQLiteInsertQueue::TBlock::Add(const TSQLiteValue& Value)
{
    switch (Value.Storage) {
    case ssNull:
    case ssInteger: Cells.push_back({Value.Integer, 0, Value.Storage}); break;
    case ssReal:    Cells.push_back({std::bit_cast<std::int64_t>(Value.Real), 0, ssReal}); break;
    case ssText:
    case ssBlob:
        Cells.push_back({static_cast<std::int64_t>(Bytes.size()), static_cast<std::uint32_t>(Value.Bytes.size()),
                         Value.Storage});
        Bytes.append(Value.Bytes);
        break;
    }
}

TSQLiteValue TSQLiteInsertQueue::TBlock::Value(std::size_t Index) const
{
    const auto& Cell = Cells[Index];
    switch (Cell.Storage) {
    case ssNull:    break;
    case ssInteger: return TSQLiteValue::OfInteger(Cell.Content);
    case ssReal:    return TSQLiteValue::OfReal(std::bit_cast<double>(Cell.Content));
    case ssText:
    case ssBlob: {
        const std::string_view Text(Bytes.data() + Cell.Content, Cell.Size);
        return Cell.Storage == ssText ? TSQLiteValue::OfText(Text) : TSQLiteValue::OfBlob(Text);
    }
    }
    return {};
}

// --- Taking records ---------------------------------------------------------------------------------

bool TSQLiteInsertQueue::TryAdd(const TRecordBuffer& Record, TSQLiteKey& Key)
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
    Filling.EndRow();
    LastRowid = Rowid;
    Key.front().Set(TSQLiteValue::OfInteger(Rowid));
    if (Filling.Rows() == BlockRows)
        HandOver();
    return true;
}

bool TSQLiteInsertQueue::MayStart(const TRecordBuffer& Record)
{
    if (Candidates == RecordsBeforeStart || ++Candidates < RecordsBeforeStart)
        return false;                               // asked once in a row of records
    if (!Connection.InTransaction() || CanRefuse())
        return false;
    Start(Record);
    return true;
}

/// Looks at the declaration as text: a word too many costs speed, one too few a wrong answer.
bool TSQLiteInsertQueue::CanRefuse() const
{
    if (Table.IsView || Table.IsVirtual || Table.WithoutRowid || Table.Key.size() != 1)
        return true;
    TSQLiteStatement Select(Connection,
                            "SELECT sql FROM " + QuoteName(Table.Schema) + ".sqlite_schema WHERE type = 'table' AND name = ?1"
                            " AND NOT EXISTS (SELECT 1 FROM " + QuoteName(Table.Schema) + ".sqlite_schema"
                            " WHERE type IN ('trigger', 'index') AND tbl_name = ?1 COLLATE NOCASE)"
                            " AND NOT EXISTS (SELECT 1 FROM temp.sqlite_schema"
                            " WHERE type = 'trigger' AND tbl_name = ?1 COLLATE NOCASE)");
    Select.Bind(1, TSQLiteValue::OfText(Table.Name));
    if (!Select.Step())
        return true;
    const auto Declaration = UpperCase(Select.Column(0).Bytes);
    constexpr std::string_view Words[] = {"CHECK", "REFERENCES", "GENERATED", "AS (",    "AS(",
                                          "STRICT", "CONFLICT",  "COLLATE",   "DEFAULT", "AUTOINCREMENT"};
    const auto Names = [&Declaration](std::string_view Word) { return Declaration.find(Word) != std::string::npos; };
    return std::ranges::any_of(Words, Names);
}

void TSQLiteInsertQueue::Start(const TRecordBuffer& Record)
{
    KeyColumn = Table.Key.front().Column;
    TSQLiteStatement Max(Connection, "SELECT ifnull(max(" + Table.Key.front().Sql + "), 0) FROM " + Table.QualifiedName());
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
    Insert = TSQLiteStatement(Connection, "INSERT INTO " + Table.QualifiedName() + " (" + Names + ") VALUES (" + Params + ")",
                              Table.Title);
    Filling.Clear();
    if (!Thread.joinable())
        Thread = StartThread([this] { RunBlocks(); });
    Active = true;
    Connection.SetQueue(this);
}

bool TSQLiteInsertQueue::Suits(const TRecordBuffer& Record) const
{
    return Record.Assigned == Assigned && std::ranges::all_of(Columns, [&Record](std::size_t Column) {
               const auto& Value = Record.Values[Column];
               return !Value.IsString() || Value.Text().size() <= MaxTextSize;
           });
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
    std::swap(Filling, Storing);
    Filling.Clear();
    {
        const std::lock_guard Lock(Mutex);
        HasWork = true;
    }
    Changed.notify_all();
}

void TSQLiteInsertQueue::Pause()
{
    std::unique_lock Lock(Mutex);
    Changed.wait(Lock, [this] { return !HasWork; });
}

void TSQLiteInsertQueue::RunBlocks()
{
    std::unique_lock Lock(Mutex);
    for (;;) {
        Changed.wait(Lock, [this] { return HasWork || Ending; });
        if (!HasWork)
            return;
        Lock.unlock();
        Store(Storing);
        Lock.lock();
        HasWork = false;
        Changed.notify_all();
    }
}

/// After an error the statement stays as it is, for CheckStored to ask why.
void TSQLiteInsertQueue::Store(TBlock& Block)
{
    auto* const Statement = Insert.Get();
    for (std::size_t Row = 0; Row < Block.Rows(); ++Row) {
        for (std::size_t I = 0; I < Width(); ++I)
            BindValue(Statement, static_cast<int>(I) + 1, Block.Value(Row * Width() + I));
        if (sqlite3_step(Statement) != SQLITE_DONE) {
            Failed = true;
            break;
        }
        sqlite3_reset(Statement);
    }
}

void TSQLiteInsertQueue::CheckStored()
{
    if (!std::exchange(Failed, false))
        return;
    const auto Reason = Connection.AbandonTransaction();
    Stop();
    Connection.Fail(Table.Title + ": " + Reason);
}

void TSQLiteInsertQueue::Finish()
{
    Candidates = 0;
    if (!Active)
        return;
    Pause();
    CheckStored();
    Store(Filling);
    Filling.Clear();
    CheckStored();
    Stop();
}

void TSQLiteInsertQueue::Stop()
{
    if (!Active)
        return;
    Pause();
    Connection.SetQueue(nullptr);
    Active = false;
    Candidates = 0;
    Filling.Clear();
    Insert.Reset();
}

} // namespace kv
