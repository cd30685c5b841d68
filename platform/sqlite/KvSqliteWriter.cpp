#include "KvSqliteWriter.h"

#include <algorithm>
#include <optional>

#include "KvSqliteConnection.h"
#include "KvSqliteName.h"
#include "KvSqliteWriteError.h"

namespace kv {

namespace {

constexpr std::size_t MaxPrepared = 16;             // statements kept of each sort

/// Undoes what a failed statement left behind. Needed only where triggers RAISE(FAIL).
class TSavepoint
{
public:
    explicit TSavepoint(TSQLiteConnection& Owner) : Connection(Owner)
    {
        Connection.Execute("SAVEPOINT kv_change");
    }
    TSavepoint(const TSavepoint&) = delete;
    TSavepoint& operator=(const TSavepoint&) = delete;
    ~TSavepoint()
    {
        if (!Kept)
            sqlite3_exec(Connection.Handle(), "ROLLBACK TO kv_change; RELEASE kv_change", nullptr, nullptr,
                         nullptr);
    }
    void Keep()
    {
        Connection.Execute("RELEASE kv_change");
        Kept = true;
    }

private:
    TSQLiteConnection& Connection;
    bool Kept = false;
};

} // namespace

TSQLiteWriter::TSQLiteWriter(TSQLiteConnection& Owner, const TSQLiteTableSchema& Schema)
    : Connection(Owner), Table(Schema), Scratch(Schema.Columns.size())
{
}

void TSQLiteWriter::Insert(const TRecordBuffer& Record, TSQLiteKey& Key)
{
    if (!Table.TakesInserts)
        Fail("records cannot be added to a view", erReadOnly);
    auto& Write = Prepared(Inserts, Record.Assigned, &TSQLiteWriter::InsertSql);
    BindColumns(Write, Record);
    Run(Write.Statement, Record, Write.Columns, &Key);
    CheckChanged("a trigger has ignored the record", erCheck);
    if (!Table.WithoutRowid && !Key.empty())
        Key.front().Set(TSQLiteValue::OfInteger(sqlite3_last_insert_rowid(Connection.Handle())));
    else if (!ReturnsKey(Write.Columns))
        TakeKey(Record, Write.Columns, Key);
}

void TSQLiteWriter::Update(const TRecordBuffer& Record, const TSQLiteColumnSet& Set, TSQLiteKey& Key)
{
    if (!Table.TakesUpdates)
        Fail("records of a view cannot be changed", erReadOnly);
    if (Key.empty())
        Fail("its records have no key and cannot be changed", erReadOnly);
    auto& Write = Prepared(Updates, Set, &TSQLiteWriter::UpdateSql);
    BindColumns(Write, Record);
    BindKey(Write.Statement, static_cast<int>(Write.Columns.size()) + 1, Key);
    Run(Write.Statement, Record, Write.Columns);
    CheckChanged("the record has been deleted, or a trigger has ignored the change", erMissing);
    if (!Table.IsView)
        TakeKey(Record, Write.Columns, Key);
}

void TSQLiteWriter::Delete(const TSQLiteKey& Key)
{
    if (!Table.TakesDeletes)
        Fail("records of a view cannot be deleted", erReadOnly);
    if (Key.empty())
        Fail("its records have no key and cannot be deleted", erReadOnly);
    if (!DeleteOne)
        DeleteOne = TSQLiteStatement(
            Connection, "DELETE FROM " + Table.QualifiedName() + " WHERE " + Table.RecordCondition(1),
            Table.Title);
    BindKey(DeleteOne, 1, Key);
    Run(DeleteOne, {}, {});
    CheckChanged("the record has been deleted already, or a trigger keeps it", erMissing);
}

// --- Statements -------------------------------------------------------------------------------------

TSQLiteWriter::TWrite& TSQLiteWriter::Prepared(TWrites& Writes, const TSQLiteColumnSet& Set, TMakeSql MakeSql)
{
    const auto Found = std::ranges::find(Writes, Set, &TWrite::Set);
    if (Found != Writes.end()) {
        std::rotate(Writes.begin(), Found, Found + 1);
        return Writes.front();
    }
    TColumns Columns;
    for (std::size_t I = 0; I < Set.size(); ++I)
        if (Set[I])
            Columns.push_back(static_cast<int>(I));
    TSQLiteStatement Statement(Connection, (this->*MakeSql)(Columns), Table.Title);
    if (Writes.size() == MaxPrepared)
        Writes.pop_back();
    Writes.insert(Writes.begin(), TWrite{Set, std::move(Columns), std::move(Statement)});
    return Writes.front();
}

/// A constraint declared ON CONFLICT IGNORE or REPLACE would drop records in silence; an explicit
/// clause overrules it. Otherwise there is none, because it would overrule those inside triggers too.
std::string TSQLiteWriter::ConflictClause() const
{
    return Table.DeclaresConflicts ? " OR ABORT" : "";
}

std::string TSQLiteWriter::InsertSql(const TColumns& Columns) const
{
    auto Sql = "INSERT" + ConflictClause() + " INTO " + Table.QualifiedName();
    if (Columns.empty())
        Sql += " DEFAULT VALUES";
    else {
        std::string Names, Params;
        for (const int Index : Columns) {
            AddToList(Names, QuoteName(Table.Column(Index).Name));
            AddToList(Params, "?");
        }
        Sql += " (" + Names + ") VALUES (" + Params + ")";
    }
    return ReturnsKey(Columns) ? Sql + " RETURNING " + Table.KeyList() : Sql;
}

std::string TSQLiteWriter::UpdateSql(const TColumns& Columns) const
{
    std::string Sets;
    int Param = 0;
    for (const int Index : Columns)
        AddToList(Sets, QuoteName(Table.Column(Index).Name) + " = ?" + std::to_string(++Param));
    return "UPDATE" + ConflictClause() + " " + Table.QualifiedName() + " SET " + Sets + " WHERE " +
           Table.RecordCondition(Param + 1);
}

/// A primary key that the record does not give whole has to be asked for.
bool TSQLiteWriter::ReturnsKey(const TColumns& Columns) const
{
    return Table.WithoutRowid && std::ranges::any_of(Table.Key, [&Columns](const TSQLiteKeyColumn& Key) {
               return std::ranges::find(Columns, Key.Column) == Columns.end();
           });
}

// --- Running ----------------------------------------------------------------------------------------

TSQLiteValue TSQLiteWriter::Encoded(const TRecordBuffer& Record, int Index)
{
    const auto I = static_cast<std::size_t>(Index);
    return EncodeValue(Table.Columns[I], Record.Values[I], Scratch[I]);
}

void TSQLiteWriter::BindColumns(TWrite& Write, const TRecordBuffer& Record)
{
    int Param = 0;
    for (const int Index : Write.Columns)
        Write.Statement.Bind(++Param, Encoded(Record, Index));
}

void TSQLiteWriter::BindKey(TSQLiteStatement& Statement, int FirstParam, const TSQLiteKey& Key)
{
    for (const auto& Value : Key)
        Statement.Bind(FirstParam++, Value.Get());
}

void TSQLiteWriter::Run(TSQLiteStatement& Statement, const TRecordBuffer& Record,
                        std::span<const int> Columns, TSQLiteKey* Returned)
{
    std::optional<TSavepoint> Savepoint;
    if (Table.TriggersLeaveTraces)
        Savepoint.emplace(Connection);
    int Code = Statement.TryStep();
    if (Code == SQLITE_ROW) {
        for (std::size_t I = 0; I < Returned->size(); ++I)
            (*Returned)[I].Set(Statement.Column(static_cast<int>(I)));
        Code = Statement.TryStep();
    }
    Statement.Reset();                              // keeps the error
    if (Code != SQLITE_DONE)
        Connection.Raise(DescribeRefusal(Connection, Table, Connection.TakeError(), Record, Columns),
                         Table.Title);
    if (Savepoint)
        Savepoint->Keep();
}

/// Follows the key columns that were written.
void TSQLiteWriter::TakeKey(const TRecordBuffer& Record, const TColumns& Columns, TSQLiteKey& Key)
{
    for (std::size_t I = 0; I < Key.size(); ++I)
        if (const int Index = Table.Key[I].Column; std::ranges::find(Columns, Index) != Columns.end())
            Key[I].Set(Encoded(Record, Index));
}

void TSQLiteWriter::CheckChanged(std::string_view Otherwise, TKvErrorRule Rule) const
{
    if (!Table.IsView && sqlite3_changes(Connection.Handle()) == 0) // a view's triggers are not counted
        Fail(Otherwise, Rule);
}

void TSQLiteWriter::Fail(std::string_view Text, TKvErrorRule Rule) const
{
    Connection.Fail(Table.Title + ": " + std::string(Text), {.Rule = Rule});
}

} // namespace kv
