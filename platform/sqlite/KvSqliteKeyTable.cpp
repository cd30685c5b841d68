#include "KvSqliteKeyTable.h"

#include <utility>

#include "KvException.h"
#include "KvSqliteConnection.h"
#include "KvSqliteName.h"

namespace kv {

TSQLiteKeyTable::TSQLiteKeyTable(TSQLiteConnection& Owner, const TSQLiteTableSchema& Schema,
                                 std::vector<int> Columns)
    : Connection(Owner), Table(Schema), FColumns(std::move(Columns)),
      FName("kv_keys_" + std::to_string(Owner.NextSerial()))
{
    Create();
    Fill();
    CreateTriggers();
}

TSQLiteKeyTable::~TSQLiteKeyTable()
{
    // The triggers go with the schema entry of the table that they are on, so they are dropped by name.
    std::string Sql;
    for (const char* const Event : {"_insert", "_delete", "_update"})
        Sql += "DROP TRIGGER IF EXISTS temp." + FName + Event + ";";
    Sql += "DROP TABLE IF EXISTS temp." + FName;
    sqlite3_exec(Connection.Handle(), Sql.c_str(), nullptr, nullptr, nullptr);
}

void TSQLiteKeyTable::Create()
{
    // Rows come in any order: with the 2 MB that SQLite takes by itself an appending run needs a third more.
    constexpr int CacheSize = 8000;                 // KiB, for all temporary tables of the connection
    Connection.Execute("PRAGMA temp.cache_size = -" + std::to_string(CacheSize));
    std::string Columns, Names;
    const auto Add = [&](const std::string& Name, TSQLiteAffinity Affinity) {
        AddToList(Columns, Name + " " + std::string(AffinityWord(Affinity)));
        AddToList(Names, Name);
    };
    Add("nulls", saInteger);
    for (std::size_t I = 0; I < FColumns.size(); ++I)
        Add(KeyName(I), Table.Column(FColumns[I]).Affinity);
    for (std::size_t I = 0; I < Table.Key.size(); ++I) {
        const int Column = Table.Key[I].Column;
        Add(RecordKeyName(I), Column < 0 ? saInteger : Table.Column(Column).Affinity);
    }
    Connection.Execute("CREATE TEMP TABLE " + FName + " (" + Columns + ", PRIMARY KEY (" + Names +
                       ")) WITHOUT ROWID");
}

/// The row of a record, as an expression list. `Prefix` is "", "NEW." or "OLD.".
std::string TSQLiteKeyTable::RowOf(const std::string& Prefix) const
{
    std::string Nulls = "0", Values, RecordKey;
    for (std::size_t I = 0; I < FColumns.size(); ++I) {
        const auto Name = Prefix + QuoteName(Table.Column(FColumns[I]).Name);
        Nulls += " | ((" + Name + " IS NULL) << " + std::to_string(I) + ")";
        Values += ", ifnull(" + Name + ", 0)";
    }
    for (const auto& Column : Table.Key)
        RecordKey += ", " + Prefix + Column.Sql;
    return Nulls + Values + RecordKey;
}

void TSQLiteKeyTable::Fill()
{
    // Sorted, so that the rows are appended one page after the other.
    std::string Order;
    const auto Count = 1 + FColumns.size() + Table.Key.size();
    for (std::size_t I = 1; I <= Count; ++I)
        AddToList(Order, std::to_string(I));
    Connection.Execute("INSERT INTO temp." + FName + " SELECT " + RowOf("") + " FROM " +
                       Table.QualifiedName() + " ORDER BY " + Order);
}

void TSQLiteKeyTable::CreateTriggers()
{
    std::string Names = "nulls";
    for (std::size_t I = 0; I < FColumns.size(); ++I)
        AddToList(Names, KeyName(I));
    for (std::size_t I = 0; I < Table.Key.size(); ++I)
        AddToList(Names, RecordKeyName(I));
    const auto Add = "INSERT INTO " + FName + " SELECT " + RowOf("NEW.") + "; ";
    const auto Remove = "DELETE FROM " + FName + " WHERE (" + Names + ") = (" + RowOf("OLD.") + "); ";

    std::string Watched;
    for (const int Column : FColumns)
        AddToList(Watched, QuoteName(Table.Column(Column).Name));
    for (const auto& Column : Table.Key)
        if (Column.Column >= 0)
            AddToList(Watched, Column.Sql);

    const auto On = " ON " + Table.QualifiedName() + " BEGIN ";
    const auto Create = "CREATE TEMP TRIGGER " + FName;
    Connection.Execute(Create + "_insert AFTER INSERT" + On + Add + "END");
    Connection.Execute(Create + "_delete AFTER DELETE" + On + Remove + "END");
    Connection.Execute(Create + "_update AFTER UPDATE OF " + Watched + On + Remove + Add + "END");
}

} // namespace kv
