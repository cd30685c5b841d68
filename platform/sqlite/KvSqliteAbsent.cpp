// Stands in for the rest of this folder where SQLite was not there to build it with: programs link and
// run, and opening a database says what is missing.
#include "KvException.h"
#include "KvSqliteDatabase.h"
#include "KvSqliteQuery.h"
#include "KvSqliteTable.h"
#include "KvSqliteValue.h"

namespace kv {

// There are no objects of these.
class TSQLiteConnection {};
class TSQLiteCursor {};
class TSQLiteBulkCache {};
class TSQLiteChangeQueue {};
class TSQLiteInsertQueue {};
class TSQLiteLookup {};
class TSQLiteWriter {};
struct TSQLiteTableSchema {};
struct TSQLiteRowSource {};

namespace {

[[noreturn]] void RaiseAbsent(const std::string& FileName)
{
    throw EDatabaseError((FileName.empty() ? "" : FileName + ": ") +
                         "this program was built without SQLite (Debian package libsqlite3-dev)");
}

} // namespace

void StopSqliteMemoryCount() {}

// --- TSQLiteDatabase --------------------------------------------------------------------------------

TSQLiteDatabase::TSQLiteDatabase(TComponent* Owner) : TKvDatabase(Owner) {}
TSQLiteDatabase::~TSQLiteDatabase() = default;

void TSQLiteDatabase::Open() { RaiseAbsent(DatabaseName); }
void TSQLiteDatabase::Close() {}
void TSQLiteDatabase::Execute(std::string_view) { Open(); }
void TSQLiteDatabase::StartTransaction() { Open(); }
void TSQLiteDatabase::Commit() {}
void TSQLiteDatabase::Rollback() {}
void TSQLiteDatabase::CheckCommit() {}
bool TSQLiteDatabase::InTransaction() const { return false; }
void TSQLiteDatabase::Flush() {}
std::vector<TKvTableInfo> TSQLiteDatabase::Tables() { RaiseAbsent(DatabaseName); }
TKvTableDef TSQLiteDatabase::Describe(std::string_view) { RaiseAbsent(DatabaseName); }
std::unique_ptr<TDataSet> TSQLiteDatabase::OpenTable(std::string_view) { RaiseAbsent(DatabaseName); }
TSQLiteConnection& TSQLiteDatabase::Connection() { RaiseAbsent(DatabaseName); }

// --- TSQLiteDataSet: it never gets beyond opening ----------------------------------------------------

TSQLiteDataSet::TSQLiteDataSet(TComponent* Owner) : TDataSet(Owner) {}
TSQLiteDataSet::~TSQLiteDataSet() = default;

TSQLiteDatabase& TSQLiteDataSet::UsedDatabase() { RaiseAbsent(FileName()); }
void TSQLiteDataSet::InternalClose() {}
void TSQLiteDataSet::InternalFirst() {}
void TSQLiteDataSet::InternalNext() {}
bool TSQLiteDataSet::InternalEof() { return true; }
TVariant TSQLiteDataSet::InternalGetValue(const TField&) { return {}; }
bool TSQLiteDataSet::InternalLocate(std::span<TField* const>, std::span<const TVariant>, TLocateOptions)
{
    return false;
}
void TSQLiteDataSet::ReleaseCursor() {}

// --- TSQLiteTable -----------------------------------------------------------------------------------

TSQLiteTable::TSQLiteTable(TComponent* Owner) : TSQLiteDataSet(Owner) {}
TSQLiteTable::~TSQLiteTable() = default;

void TSQLiteTable::InternalOpen() { RaiseAbsent(FileName()); }
void TSQLiteTable::InternalClose() {}
void TSQLiteTable::InternalFirst() {}
void TSQLiteTable::InternalNext() {}
int TSQLiteTable::InternalRecordCount() { return 0; }
void TSQLiteTable::InternalInsert(const TRecordBuffer&) {}
void TSQLiteTable::InternalUpdate(const TRecordBuffer&) {}
void TSQLiteTable::InternalDelete() {}
bool TSQLiteTable::InternalLocate(std::span<TField* const>, std::span<const TVariant>, TLocateOptions)
{
    return false;
}
void TSQLiteTable::ReleaseCursor() {}
void TSQLiteTable::TransactionRolledBack() {}
std::string TSQLiteTable::PrimaryKeyFields() const { return {}; }
std::vector<TFieldDef> TSQLiteTable::DescribeFields() { RaiseAbsent(FileName()); }
std::string TSQLiteTable::KeyFields() { RaiseAbsent(FileName()); }
void TSQLiteTable::BeginBulk(const TKvBulkRun&) {}
void TSQLiteTable::EndBulk() {}
void TSQLiteTable::StartTransaction() { RaiseAbsent(FileName()); }
void TSQLiteTable::Commit() { RaiseAbsent(FileName()); }
void TSQLiteTable::Rollback() { RaiseAbsent(FileName()); }
bool TSQLiteTable::InTransaction() { return false; }

// --- TSQLiteQuery -----------------------------------------------------------------------------------

TSQLiteQuery::TSQLiteQuery(TComponent* Owner) : TSQLiteDataSet(Owner) {}
TSQLiteQuery::~TSQLiteQuery() = default;

void TSQLiteQuery::InternalOpen() { RaiseAbsent(FileName()); }
void TSQLiteQuery::InternalClose() {}
int TSQLiteQuery::InternalRecordCount() { return 0; }
void TSQLiteQuery::InternalInsert(const TRecordBuffer&) {}
void TSQLiteQuery::InternalUpdate(const TRecordBuffer&) {}
void TSQLiteQuery::InternalDelete() {}

} // namespace kv
