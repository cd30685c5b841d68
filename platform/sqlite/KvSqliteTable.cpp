#include "KvSqliteTable.h"

#include <algorithm>
#include <limits>

#include "KvBulkRun.h"
#include "KvException.h"
#include "KvSqliteBulkCache.h"
#include "KvSqliteChangeQueue.h"
#include "KvSqliteConnection.h"
#include "KvSqliteCursor.h"
#include "KvSqliteDatabase.h"
#include "KvSqliteInsertQueue.h"
#include "KvSqliteLookup.h"
#include "KvSqliteName.h"
#include "KvSqliteSchema.h"
#include "KvSqliteWriter.h"

namespace kv {

TSQLiteTable::TSQLiteTable(TComponent* Owner) : TSQLiteDataSet(Owner) {}

TSQLiteTable::~TSQLiteTable()
{
    try {
        Close();
    }
    catch (...) {                                   // a destructor has nobody to tell
        Connection().Rollback();
        Close();
    }
}

std::string TSQLiteTable::PrimaryKeyFields() const
{
    std::string Names;
    if (Active())
        for (const int Column : Schema->PrimaryKey)
            AddToList(Names, Fields(Column).FieldName(), ";");
    return Names;
}

TKvTableDef TSQLiteTable::ReadDeclaration() const
{
    CheckTableName();
    if (auto* const Shared = GetDatabase())
        return Shared->Describe(TableName);
    TSQLiteDatabase Own;
    Own.DatabaseName = DatabaseName;
    return Own.Describe(TableName);
}

std::vector<TFieldDef> TSQLiteTable::DescribeFields()
{
    return Active() ? TSQLiteDataSet::DescribeFields() : ReadDeclaration().Fields;
}

std::string TSQLiteTable::KeyFields()
{
    if (Active())
        return PrimaryKeyFields();
    const auto Declared = ReadDeclaration();
    std::string Names;
    for (const auto& Field : Declared.KeyFields)
        AddToList(Names, Field, ";");
    return Names;
}

/// By the file, which may be open more than once, and the name in it.
std::string TSQLiteTable::ReadIdentity()
{
    const char* const File = sqlite3_db_filename(Connection().Handle(), Schema->Schema.c_str());
    if (File && *File)
        return File + ("\n" + Schema->Name);
    return std::to_string(reinterpret_cast<std::uintptr_t>(&Connection())) + "\n" + Schema->Schema + "\n" +
           Schema->Name;
}

// --- Opening ----------------------------------------------------------------------------------------

void TSQLiteTable::CheckTableName() const
{
    if (TableName.empty())
        throw EDatabaseError("Property TableName wasn't specified.");
}

void TSQLiteTable::InternalOpen()
{
    OpenConnection();
    CheckTableName();
    Schema = std::make_unique<TSQLiteTableSchema>(ReadTableSchema(Connection(), TableName));
    Writer = std::make_unique<TSQLiteWriter>(Connection(), *Schema);
    Queue = std::make_unique<TSQLiteInsertQueue>(Connection(), *Schema);
    Waiting = std::make_unique<TSQLiteChangeQueue>(Connection(), *Schema);
    Lookup = std::make_unique<TSQLiteLookup>(Connection(), *Schema);
    FoundKey.resize(Schema->Key.size());
    WrittenKey.resize(Schema->Key.size());
    OpenCursor(*Schema);
    Identity = ReadIdentity();
}

void TSQLiteTable::InternalClose()
{
    if (Queue)
        Queue->Finish();
    if (Waiting)
        Waiting->Finish();
    if (IsConnected())
        Connection().CommitBatch();                 // may raise, and then everything stays for another try
    EndBulk();
    Lookup.reset();
    Waiting.reset();
    Queue.reset();
    Writer.reset();
    TSQLiteDataSet::InternalClose();
    Schema.reset();
    Identity.clear();
    KnownCount = 0;
}

// --- Runs -------------------------------------------------------------------------------------------

void TSQLiteTable::BeginBulk(const TKvBulkRun& Run)
{
    EndBulk();
    CheckActive();
    constexpr int FewInserts = 1024;                // fill no cache
    if (Run.Keys.empty())
        InsertsUntilCache = FewInserts;
    else
        MakeBulkCache();
}

void TSQLiteTable::MakeBulkCache()
{
    if (UsedDatabase().CacheSize == 0)
        BulkCache = std::make_unique<TSQLiteBulkCache>(Connection(), Schema->Schema);
}

void TSQLiteTable::EndBulk()
{
    BulkCache.reset();
    InsertsUntilCache = 0;
}

// --- Transactions -----------------------------------------------------------------------------------

void TSQLiteTable::StartTransaction()
{
    UsedDatabase().StartTransaction();
}

void TSQLiteTable::Commit()
{
    UsedDatabase().Commit();
}

void TSQLiteTable::Rollback()
{
    UsedDatabase().Rollback();
}

bool TSQLiteTable::InTransaction()
{
    return UsedDatabase().InTransaction();
}

void TSQLiteTable::TransactionRolledBack()
{
    if (Lookup)
        Lookup->Forget();
}

void TSQLiteTable::ReleaseCursor()
{
    KnownCount = 0;
    TSQLiteDataSet::ReleaseCursor();
}

// --- The cursor -------------------------------------------------------------------------------------

void TSQLiteTable::InternalFirst()
{
    Queue->Finish();
    KnownCount = 0;
    TSQLiteDataSet::InternalFirst();
}

void TSQLiteTable::InternalNext()
{
    KnownCount = 0;
    TSQLiteDataSet::InternalNext();
}

int TSQLiteTable::InternalRecordCount()
{
    TSQLiteStatement Count(Connection(), "SELECT COUNT(*) FROM " + Schema->QualifiedName(), TableName);
    Count.Step();
    return static_cast<int>(std::min<std::int64_t>(Count.Column(0).Integer, std::numeric_limits<int>::max()));
}

bool TSQLiteTable::InternalLocate(std::span<TField* const> Keys, std::span<const TVariant> Values,
                                  TLocateOptions Options)
{
    Queue->Finish();
    if (!Options.IsEmpty() || !Lookup->Prepare(Keys)) {
        const bool Found = TSQLiteDataSet::InternalLocate(Keys, Values, Options);
        if (Found)
            KnownCount = 0;
        return Found;
    }
    if (!Find(Keys, Values))
        return false;
    Cursor().MoveTo(FoundKey);
    Known.resize(std::max(Known.size(), Keys.size()));
    for (KnownCount = 0; KnownCount < Keys.size(); ++KnownCount) {
        Known[KnownCount].Column = static_cast<std::size_t>(Keys[KnownCount]->Index());
        Known[KnownCount].Value = Values[KnownCount];
    }
    return true;
}

bool TSQLiteTable::Find(std::span<TField* const> Keys, std::span<const TVariant> Values)
{
    const auto InDatabase = [&] { return Lookup->Find(Values, FoundKey); };
    const auto Rowid = RowidAmong(Keys, Values);
    return Rowid ? Waiting->Ask(*Rowid, InDatabase) : InDatabase();
}

/// What is looked for when that is nothing but a rowid.
std::optional<std::int64_t> TSQLiteTable::RowidAmong(std::span<TField* const> Keys,
                                                     std::span<const TVariant> Values) const
{
    if (Keys.size() == 1 && Keys.front()->Index() == Schema->RowidColumn() &&
        Values.front().Kind() == vkInteger)
        return Values.front().Integer();
    return {};
}

/// Of a table that shows its rowid as a column.
std::optional<std::int64_t> TSQLiteTable::CurrentRowid()
{
    if (Schema->RowidColumn() < 0)
        return {};
    return Cursor().Key().front().Get().Integer;
}

// --- Writing ----------------------------------------------------------------------------------------

void TSQLiteTable::BeginChange()
{
    ReleaseCursor();
    Connection().BeginChange(CommitEvery);
}

void TSQLiteTable::InternalInsert(const TRecordBuffer& Written)
{
    if (QueueInsert(Written))
        return;
    // then the transaction has begun and nothing is being read
    const bool Queued = Queue->IsActive();
    if (!Queued)
        BeginChange();
    if (!Queue->TryAdd(Written, RecordTag, WrittenKey)) {
        if (Queued)
            BeginChange();
        if (InsertsUntilCache > 0 && --InsertsUntilCache == 0)
            MakeBulkCache();
        Writer->Insert(Written, WrittenKey);
    }
    Cursor().MoveTo(WrittenKey);
    Connection().EndChange(CommitEvery, RecordTag);
}

/// A record of which Locate has just found that it is not there.
bool TSQLiteTable::QueueInsert(const TRecordBuffer& Written)
{
    const auto Column = static_cast<std::size_t>(Schema->RowidColumn());
    if (Schema->RowidColumn() < 0 || !Written.Assigned[Column] || Written.Values[Column].Kind() != vkInteger)
        return false;
    const auto Rowid = Written.Values[Column].Integer();
    if (!Waiting->TryInsert(Written, Rowid, RecordTag))
        return false;
    WrittenKey.front().Set(TSQLiteValue::OfInteger(Rowid));
    Cursor().MoveTo(WrittenKey);
    Connection().EndChange(CommitEvery, RecordTag);
    return true;
}

void TSQLiteTable::InternalUpdate(const TRecordBuffer& Written)
{
    Queue->Finish();
    Changed = Written.Assigned;
    for (std::size_t I = 0; I < KnownCount; ++I)
        if (IsUnchanged(Known[I], Written))
            Changed[Known[I].Column] = false;
    if (std::ranges::count(Changed, false) == std::ssize(Changed))
        return;
    const auto Rowid = CurrentRowid();
    const bool SameKey = Rowid && !Changed[static_cast<std::size_t>(Schema->RowidColumn())];
    if (!SameKey || !Waiting->TryUpdate(Written, Changed, *Rowid, RecordTag)) {
        if (Schema->IsView)
            return UpdateView(Written);
        BeginChange();
        WrittenKey = Cursor().Key();
        Writer->Update(Written, Changed, WrittenKey);
        Cursor().MoveTo(WrittenKey);
    }
    Connection().EndChange(CommitEvery, RecordTag);
}

void TSQLiteTable::InternalDelete()
{
    Queue->Finish();
    if (Schema->IsView)
        return DeleteFromView();
    const auto Rowid = CurrentRowid();
    if (!Rowid || !Waiting->TryDelete(*Rowid, RecordTag)) {
        BeginChange();
        Writer->Delete(Cursor().Key());
    }
    Cursor().Deleted();
    Connection().EndChange(CommitEvery, RecordTag);
}

// A record of a view has no key, only values; the cursor goes on reading while they change.

TSQLiteKey TSQLiteTable::CurrentValues()
{
    TSQLiteKey Values(Schema->Columns.size());
    for (std::size_t I = 0; I < Values.size(); ++I)
        Values[I].Set(Cursor().Value(static_cast<int>(I)));
    return Values;
}

void TSQLiteTable::UpdateView(const TRecordBuffer& Written)
{
    auto Before = CurrentValues();
    BeginChange();
    Writer->Update(Written, Changed, Before);
    Connection().EndChange(CommitEvery, RecordTag);
}

void TSQLiteTable::DeleteFromView()
{
    const auto Before = CurrentValues();
    BeginChange();
    Writer->Delete(Before);
    Cursor().Next();
    Connection().EndChange(CommitEvery, RecordTag);
}

/// True when the record has that value already.
bool TSQLiteTable::IsUnchanged(const TKnownValue& Known, const TRecordBuffer& Written)
{
    const auto& Value = Written.Values[Known.Column];
    return Known.Value.Kind() == Value.Kind() && Known.Value == Value;
}

} // namespace kv
