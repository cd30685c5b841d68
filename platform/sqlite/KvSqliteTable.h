// KvSqliteTable - a table or view of an SQLite database as a dataset.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "KvSqliteDataSet.h"

namespace kv {

class TSQLiteBulkCache;
class TSQLiteChangeQueue;
class TSQLiteInsertQueue;
class TSQLiteLookup;
class TSQLiteOwnValue;
class TSQLiteWriter;
struct TKvTableDef;
struct TSQLiteTableSchema;

/// The records run in the order of the rowid, in a WITHOUT ROWID table of the primary key; those of a
/// view as the database gives them. A view is written through its INSTEAD OF triggers, without them it is
/// read-only; a change or deletion there concerns all records of the same values.
///
/// Fields follow the declared types; where these say nothing, SQLite's affinity of the column. Dates
/// are ISO 8601 text. Integers are ftLargeint whatever their declared width, since SQLite keeps 64
/// bits, but for SMALLINT. Columns that are not assigned get the default that the database declares;
/// constraints that say ON CONFLICT IGNORE or REPLACE raise here as the others do.
///
/// Locate compares text bytewise even where the column declares another collation. It uses an index
/// that begins with the key fields; without one it reads the table once, and from the second time on
/// keeps an index in SQLite's temporary file.
class TSQLiteTable : public TSQLiteDataSet
{
public:
    explicit TSQLiteTable(TComponent* Owner = nullptr);
    /// Closes; what then still waits for its commit and cannot be committed is rolled back.
    ~TSQLiteTable() override;

    std::string_view ClassName() const override { return "TSQLiteTable"; }
    /// TableName; IndexFieldName, the primary key's fields joined by ";", empty while closed.
    TPublishedProperties PublishedProperties() const override;

    /// "orders", or with the schema "archive.orders", "main.[my table]". A table of exactly this name
    /// comes first.
    std::string TableName;

    /// Changes a transaction: 1 makes each permanent by itself; N gathers N of them in a transaction,
    /// the last ones until Commit or Close; 0 leaves it to the program. A transaction that the program
    /// has started stays the program's. A change that fails takes no other with it.
    /// While another program keeps a batch from being committed it grows on; Close and Commit raise then
    /// and can be called again.
    int CommitEvery = 1;

    /// A run that looks records up by keys, or whose records do not come in the order of the table, gets a
    /// page cache of 12 MB, unless the database is set to another CacheSize.
    void BeginBulk(const TKvBulkRun& Run) override;
    void EndBulk() override;

    // The transaction of the connection, which datasets on the same database share. See TSQLiteDatabase.
    void StartTransaction();
    void Commit();
    void Rollback();
    bool InTransaction();

    /// What IndexFieldName reads.
    std::string PrimaryKeyFields() const;
    // As the database declares them; a closed table stays closed. The second is the primary key's, also then.
    std::vector<TFieldDef> DescribeFields() override;
    std::string KeyFields() override;
    std::string TableIdentity() const override { return Identity; }

protected:
    void InternalOpen() override;
    void InternalClose() override;
    void InternalFirst() override;
    void InternalNext() override;
    int InternalRecordCount() override;
    void InternalInsert(const TRecordBuffer& Written) override;
    void InternalUpdate(const TRecordBuffer& Written) override;
    void InternalDelete() override;
    bool InternalLocate(std::span<TField* const> Keys, std::span<const TVariant> Values,
                        TLocateOptions Options) override;
    void ReleaseCursor() override;
    void TransactionRolledBack() override;
    std::string DisplayName() const override;

private:
    /// A field of the current record whose stored value is known without reading it.
    struct TKnownValue
    {
        std::size_t Column;
        TVariant Value;
    };

    static bool IsUnchanged(const TKnownValue& Known, const TRecordBuffer& Written);
    std::optional<std::int64_t> RowidAmong(std::span<TField* const> Keys,
                                           std::span<const TVariant> Values) const;
    std::optional<std::int64_t> CurrentRowid();
    bool Find(std::span<TField* const> Keys, std::span<const TVariant> Values);
    bool QueueInsert(const TRecordBuffer& Written);
    std::vector<TSQLiteOwnValue> CurrentValues();
    void UpdateView(const TRecordBuffer& Written);
    void DeleteFromView();
    void BeginChange();
    void MakeBulkCache();
    void CheckTableName() const;
    TKvTableDef ReadDeclaration() const;
    std::string ReadIdentity();

    std::string Identity;
    std::unique_ptr<TSQLiteTableSchema> Schema;     // these five while open
    std::unique_ptr<TSQLiteWriter> Writer;
    std::unique_ptr<TSQLiteInsertQueue> Queue;
    std::unique_ptr<TSQLiteChangeQueue> Waiting;
    std::unique_ptr<TSQLiteLookup> Lookup;
    std::unique_ptr<TSQLiteBulkCache> BulkCache;    // during a run that needs it
    int InsertsUntilCache = 0;                      // during another run; 0: there is none
    std::vector<TKnownValue> Known;                 // what Locate has found, until anything else happens
    std::size_t KnownCount = 0;                     // of Known; its entries are used again
    decltype(TRecordBuffer::Assigned) Changed;      // columns that an update writes
    std::vector<TSQLiteOwnValue> FoundKey;          // of the record found ...
    std::vector<TSQLiteOwnValue> WrittenKey;        // ... or written last
};

} // namespace kv
