// KvSqliteCursor - a place among the records of a table, view or query, and reading from there.
// For the units of this folder.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "KvSqliteStatement.h"
#include "KvSqliteValue.h"

namespace kv {

class TSQLiteConnection;

/// A column of what identifies a record and orders the dataset: the rowid, or a primary key.
struct TSQLiteKeyColumn
{
    std::string Sql;                                ///< Name as statements spell it.
    std::string Collation;                          ///< By which the key is ordered.
    int Column = -1;                                ///< Its column in the dataset, -1 for a hidden rowid.
};

/// Records to read.
struct TSQLiteRowSource
{
    std::string Title;                              ///< How messages call it; may be empty.
    std::string Select;                             ///< Key columns, then Columns; no WHERE, no ORDER BY.
    std::vector<TSQLiteKeyColumn> Key;              ///< None: read in the order of the database.
    std::vector<TSQLiteColumn> Columns;

    const TSQLiteColumn& Column(int Index) const { return Columns[static_cast<std::size_t>(Index)]; }
    /// "KEY1, KEY2".
    std::string KeyList() const;
    /// "KEY1 COLLATE ..., KEY2 ...": the order of the dataset; empty without a key.
    std::string KeyOrder() const;
    /// "KEY1 COLLATE ... = ?N AND ...": one record; its parameters count from `FirstParam`.
    std::string KeyCondition(int FirstParam) const;
    /// "(KEY1 COLLATE ..., KEY2 ...) > (?1, ?2)": the records after one.
    std::string KeyAfter() const;
};

/// The records run in the order of the key. Nothing is read before it is asked for. Reading one record
/// after the other keeps a statement open, and with it a lock that others cannot write through, until
/// the last record or Release; a cursor with a key finds its place again by it. Without a key the
/// statement runs from First to the end, and only what it reads can be current.
class TSQLiteCursor
{
public:
    /// Keeps references to both.
    TSQLiteCursor(TSQLiteConnection& Connection, const TSQLiteRowSource& Source);

    void First();
    void Next();                                    ///< Only when not Eof.
    bool Eof();
    /// Makes the record with this key current, which exists; without a key none. Takes the key and
    /// leaves storage to be used again.
    void MoveTo(TSQLiteKey& Key);
    /// The current record was deleted: the one after it becomes current.
    void Deleted();

    /// A column of the current record, by its position in Columns; null when the record has vanished.
    /// Valid until the cursor moves or is released.
    TSQLiteValue Value(int Column);
    /// Identifies the current record; empty without a key.
    const TSQLiteKey& Key();

    void Release();                                 ///< Ends the open statement unless there is no key.

private:
    enum TPlace {
        plBeforeFirst,                              // First was called, nothing read yet
        plAfterKey,                                 // to go to the first record after CurrentKey
        plRecord,                                   // on a record
        plEnd
    };

    void Resolve();
    TSQLiteStatement Prepared(const std::string& Clauses) const;
    void Bind(TSQLiteStatement& Statement, const TSQLiteKey& Values);
    void StepScan();
    void FetchRecord();
    void EndScan();
    bool HasKey() const { return !Source.Key.empty(); }

    TSQLiteConnection& Connection;
    const TSQLiteRowSource& Source;
    TSQLiteStatement ScanAll;                       // all records in order
    TSQLiteStatement ScanAfter;                     // those after a key
    TSQLiteStatement Fetch;                         // the one with a key
    TSQLiteStatement* Scan = nullptr;               // which of the first two stands on the current record
    TPlace Place = plEnd;
    TSQLiteKey CurrentKey;                          // of the current record ...
    bool KeyKnown = false;                          // ... unless it is still to be read from Scan
    TSQLiteKey SeekKey;                             // what ScanAfter is bound to
    std::vector<TSQLiteOwnValue> Fetched;           // the current record ...
    bool IsFetched = false;                         // ... when it was read through Fetch
};

} // namespace kv
