// KvSqliteWriter - inserts, updates and deletes records of one table through prepared statements.
// For the units of this folder.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "KvDataSet.h"
#include "KvSqliteSchema.h"
#include "KvSqliteStatement.h"

namespace kv {

/// For every column whether it is meant.
using TSQLiteColumnSet = decltype(TRecordBuffer::Assigned);

/// One statement for every set of columns that is written: the last ones stay prepared, so that a run
/// which fills the same columns again and again prepares once and looks up nothing.
/// A statement that fails is undone by SQLite alone and leaves the transaction as it was.
/// Errors are EDatabaseError, told with the table, and the values of the columns at fault.
class TSQLiteWriter
{
public:
    /// Keeps references to both.
    TSQLiteWriter(TSQLiteConnection& Connection, const TSQLiteTableSchema& Table);

    /// Adds a record from the columns of `Record` that are assigned; the database fills the others.
    /// Afterwards `Key` is that of the new record.
    void Insert(const TRecordBuffer& Record, TSQLiteKey& Key);
    // The key of a view's record is the values of all of its columns.
    /// Writes the columns `Set` of `Record` to the record with `Key`, which follows when they belong to it.
    void Update(const TRecordBuffer& Record, const TSQLiteColumnSet& Set, TSQLiteKey& Key);
    void Delete(const TSQLiteKey& Key);

private:
    using TColumns = std::vector<int>;

    /// A statement that writes certain columns.
    struct TWrite
    {
        TSQLiteColumnSet Set;
        TColumns Columns;                           // those of Set
        TSQLiteStatement Statement;
    };
    using TWrites = std::vector<TWrite>;            // the last used one at the front

    using TMakeSql = std::string (TSQLiteWriter::*)(const TColumns& Columns) const;

    TWrite& Prepared(TWrites& Writes, const TSQLiteColumnSet& Set, TMakeSql MakeSql);
    std::string InsertSql(const TColumns& Columns) const;
    std::string UpdateSql(const TColumns& Columns) const;
    std::string ConflictClause() const;
    TSQLiteValue Encoded(const TRecordBuffer& Record, int Index);
    void BindColumns(TWrite& Write, const TRecordBuffer& Record);
    void BindKey(TSQLiteStatement& Statement, int FirstParam, const TSQLiteKey& Key);
    void Run(TSQLiteStatement& Statement, const TRecordBuffer& Record, std::span<const int> Columns,
             TSQLiteKey* Returned = nullptr);
    void TakeKey(const TRecordBuffer& Record, const TColumns& Columns, TSQLiteKey& Key);
    bool ReturnsKey(const TColumns& Columns) const;
    void CheckChanged(std::string_view Otherwise, TKvErrorRule Rule) const;
    [[noreturn]] void Fail(std::string_view Text, TKvErrorRule Rule) const;

    TSQLiteConnection& Connection;
    const TSQLiteTableSchema& Table;
    TWrites Inserts, Updates;
    TSQLiteStatement DeleteOne;
    std::vector<TSQLiteScratch> Scratch;            // one a column
};

} // namespace kv
