// KvSqliteSchema - what the database declares of one table or view: columns, key, indexes.
// For the units of this folder.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "KvDatabase.h"
#include "KvSqliteCursor.h"

namespace kv {

class TSQLiteConnection;

/// A way to records by the values of some columns that does not read all of them.
struct TSQLiteIndex
{
    struct TPart
    {
        int Column;                                 ///< In the dataset; -1: not there, or an expression.
        std::string Collation;
    };

    std::string Name;                               ///< Empty: the order in which the table itself is stored.
    bool Unique = false;
    std::vector<TPart> Parts;
};

struct TSQLiteTableSchema : TSQLiteRowSource
{
    std::string Schema;                             ///< "main", "temp" or the name of an attached database.
    std::string Name;
    bool IsView = false;
    // Of a view those for which it has a trigger INSTEAD OF.
    bool TakesInserts = true, TakesUpdates = true, TakesDeletes = true;
    bool IsVirtual = false;
    bool WithoutRowid = false;
    std::vector<int> PrimaryKey;                    ///< Columns in the order of the key.
    std::vector<TSQLiteIndex> Indexes;
    bool DeclaresConflicts = false;                 ///< Some constraint has an ON CONFLICT clause.
    bool TriggersLeaveTraces = false;               ///< One may RAISE(FAIL), which undoes nothing.

    std::string QualifiedName() const;              ///< As statements spell it.
    /// "a = ?N AND ..." for the record with a key, of a view "a IS ?N AND ..." for those with these values.
    std::string RecordCondition(int FirstParam) const;
    /// The column that is another name of the rowid, -1 when there is none.
    int RowidColumn() const { return WithoutRowid || Key.size() != 1 ? -1 : Key.front().Column; }
};

/// The references of tables to records of `Table`, itself among them. A view has none.
std::vector<TKvTableReference> ReadReferences(TSQLiteConnection& Connection, const TSQLiteTableSchema& Table);

/// Reads the declaration of "table" or "schema.table". Raises EDatabaseError
/// "<file>: no such table: <name> (there are: ...)".
TSQLiteTableSchema ReadTableSchema(TSQLiteConnection& Connection, std::string_view TableName);

} // namespace kv
