// KvSqliteKeyTable - a temporary index over columns that the database has no index for.
// For the units of this folder.
#pragma once

#include <string>
#include <vector>

#include "KvSqliteSchema.h"

namespace kv {

class TSQLiteConnection;

/// A table in SQLite's temporary file, one row a record:
///
///   nulls INTEGER   bit n: column n of the keys is null, and stands here as 0
///   k0, k1, ...     the values of the columns, with their affinity, compared bytewise
///   r0, r1, ...     the key of the record
///
/// All of it is the primary key. It is filled once; temporary triggers follow whatever changes the
/// table through this connection, and the transaction's rollback undoes both alike.
class TSQLiteKeyTable
{
public:
    /// Creates and fills it. Keeps a reference to the connection.
    TSQLiteKeyTable(TSQLiteConnection& Connection, const TSQLiteTableSchema& Table, std::vector<int> Columns);
    TSQLiteKeyTable(const TSQLiteKeyTable&) = delete;
    TSQLiteKeyTable& operator=(const TSQLiteKeyTable&) = delete;
    ~TSQLiteKeyTable();                             ///< Drops it; harmless when a rollback has done so.

    /// Whether such a table can follow `Table`: it has a key and allows triggers.
    static bool Suits(const TSQLiteTableSchema& Table) { return !Table.Key.empty() && !Table.IsVirtual; }

    const std::vector<int>& Columns() const { return FColumns; }
    const std::string& Name() const { return FName; }
    static std::string KeyName(std::size_t Column) { return "k" + std::to_string(Column); }
    static std::string RecordKeyName(std::size_t Column) { return "r" + std::to_string(Column); }

private:
    void Create();
    void Fill();
    void CreateTriggers();
    std::string RowOf(const std::string& Prefix) const;

    TSQLiteConnection& Connection;
    const TSQLiteTableSchema& Table;
    std::vector<int> FColumns;
    std::string FName;
};

} // namespace kv
