#include "KvSqliteSchema.h"

#include <algorithm>
#include <array>

#include "KvCodePage.h"
#include "KvSqliteConnection.h"
#include "KvSqliteName.h"
#include "KvSqliteStatement.h"
#include "KvText.h"

namespace kv {

namespace {

constexpr int TablesInMessage = 20;                 // past these a message says "..."

/// Reads the declaration of one table, step by step.
class TSchemaReader
{
public:
    TSchemaReader(TSQLiteConnection& Owner, TSQLiteTableSchema& Result) : Connection(Owner), Table(Result) {}

    bool FindTable(const TSQLiteName& Wanted);
    void ReadColumns();
    void ReadViewTriggers();
    void ReadKey();
    void ReadIndexes();
    void ReadDeclaration();
    void BuildSelect();

private:
    TSQLiteStatement Query(std::string_view Sql) const;
    bool CanPrepare(const std::string& Sql) const;
    bool HasPrimaryKeyIndex() const;
    void AddRowidKey();
    std::string FreeRowidName() const;
    bool HasFailingTrigger(std::string_view Schema) const;
    std::vector<TSQLiteIndex::TPart> ReadParts(std::string_view Index) const;
    int ColumnOf(int SchemaColumn) const;

    TSQLiteConnection& Connection;
    TSQLiteTableSchema& Table;
    bool Strict = false;
    std::vector<int> SchemaColumns;                 // of each dataset column, its number in the table
};

/// Parameters ?1 and ?2 are the table and its schema.
TSQLiteStatement TSchemaReader::Query(std::string_view Sql) const
{
    TSQLiteStatement Statement(Connection, Sql);
    Statement.Bind(1, TSQLiteValue::OfText(Table.Name));
    Statement.Bind(2, TSQLiteValue::OfText(Table.Schema));
    return Statement;
}

bool TSchemaReader::FindTable(const TSQLiteName& Wanted)
{
    // An unqualified name means the first of temp, main and the attached databases that has it.
    TSQLiteStatement Select(Connection,
                            "SELECT l.schema, l.name, l.type, l.wr, l.strict "
                            "FROM pragma_table_list AS l JOIN pragma_database_list AS d ON d.name = l.schema "
                            "WHERE l.name = ?1 COLLATE NOCASE AND (?2 = '' OR l.schema = ?2 COLLATE NOCASE) "
                            "ORDER BY d.name <> 'temp', d.seq");
    Select.Bind(1, TSQLiteValue::OfText(Wanted.Name));
    Select.Bind(2, TSQLiteValue::OfText(Wanted.Schema));
    if (!Select.Step())
        return false;
    Table.Schema = Select.Column(0).Bytes;
    Table.Name = Select.Column(1).Bytes;
    Table.IsView = Select.Column(2).Bytes == "view";
    Table.IsVirtual = Select.Column(2).Bytes == "virtual";
    Table.WithoutRowid = Select.Column(3).Integer != 0;
    Strict = Select.Column(4).Integer != 0;
    return true;
}

/// What cannot be written to a view through its triggers.
void TSchemaReader::ReadViewTriggers()
{
    if (!Table.IsView)
        return;
    const auto Name = Table.QualifiedName();
    const auto First = Table.Columns.empty() ? "" : QuoteName(Table.Columns.front().Name);
    Table.TakesInserts = CanPrepare("INSERT INTO " + Name + " DEFAULT VALUES");
    Table.TakesUpdates = CanPrepare("UPDATE " + Name + " SET " + First + " = NULL");
    Table.TakesDeletes = CanPrepare("DELETE FROM " + Name);
    for (auto& Column : Table.Columns)
        Column.Def.ReadOnly = !Table.TakesInserts && !Table.TakesUpdates;
}

/// SQLite prepares no statement that it would refuse.
bool TSchemaReader::CanPrepare(const std::string& Sql) const
{
    sqlite3_stmt* Statement = nullptr;
    const int Code = sqlite3_prepare_v2(Connection.Handle(), Sql.c_str(), -1, &Statement, nullptr);
    sqlite3_finalize(Statement);
    return Code == SQLITE_OK;
}

void TSchemaReader::ReadColumns()
{
    enum THidden { hdNone, hdOfVirtualTable, hdVirtual, hdStored };
    auto Select =
        Query("SELECT cid, name, type, \"notnull\", dflt_value, pk, hidden FROM pragma_table_xinfo(?1, ?2)");
    std::vector<std::pair<std::int64_t, int>> KeyPlaces;
    while (Select.Step()) {
        const auto Hidden = Select.Column(6).Integer;
        if (Hidden == hdOfVirtualTable)             // no SELECT * shows them either
            continue;
        const auto Declared = Select.Column(2).Bytes;
        const auto Default = Select.Column(4);
        TSQLiteColumn Column;
        Column.Name = Select.Column(1).Bytes;
        Column.SetType(Strict ? ReadStrictType(Declared) : ReadDeclaredType(Declared));
        Column.Def.Name = Utf8ToAnsi(Column.Name);
        Column.Def.ReadOnly = Table.IsView || Hidden == hdVirtual || Hidden == hdStored;
        Column.Def.Required = Select.Column(3).Integer != 0 && !Column.Def.ReadOnly;
        Column.Def.HasDefault = Default.Storage != ssNull && !SameText(Default.Bytes, "NULL");
        if (const auto Place = Select.Column(5).Integer; Place > 0)
            KeyPlaces.emplace_back(Place, static_cast<int>(Table.Columns.size()));
        SchemaColumns.push_back(static_cast<int>(Select.Column(0).Integer));
        Table.Columns.push_back(std::move(Column));
    }
    std::ranges::sort(KeyPlaces);
    for (const auto& [Place, Column] : KeyPlaces)
        Table.PrimaryKey.push_back(Column);
}

/// The dataset column with that number in the table, or -1.
int TSchemaReader::ColumnOf(int SchemaColumn) const
{
    const auto Found = std::ranges::find(SchemaColumns, SchemaColumn);
    return Found != SchemaColumns.end() ? static_cast<int>(Found - SchemaColumns.begin()) : -1;
}

// --- Key --------------------------------------------------------------------------------------------

bool TSchemaReader::HasPrimaryKeyIndex() const
{
    return Query("SELECT 1 FROM pragma_index_list(?1, ?2) WHERE origin = 'pk'").Step();
}

void TSchemaReader::ReadKey()
{
    if (Table.IsView)
        return;
    if (!Table.WithoutRowid)
        return AddRowidKey();
    auto Select = Query("SELECT name FROM pragma_index_list(?1, ?2) WHERE origin = 'pk'");
    if (!Select.Step())
        return;                                     // a virtual table with a key of its own kind
    for (const auto& Part : ReadParts(Select.Column(0).Bytes))
        Table.Key.push_back({QuoteName(Table.Column(Part.Column).Name), Part.Collation, Part.Column});
}

/// The rowid, by the name of the column that is an alias of it, if there is one: exactly then a single
/// primary key has no index of its own.
void TSchemaReader::AddRowidKey()
{
    const bool HasAlias = Table.PrimaryKey.size() == 1 && !Table.IsVirtual && !HasPrimaryKeyIndex();
    if (HasAlias) {
        const int Alias = Table.PrimaryKey.front();
        auto& Column = Table.Columns[static_cast<std::size_t>(Alias)];
        Column.Def.Required = false;
        Column.Def.HasDefault = true;
        Table.Key.push_back({QuoteName(Column.Name), "", Alias});
        Table.Indexes.push_back({"", true, {{Alias, ""}}});
    }
    else if (auto Rowid = FreeRowidName(); !Rowid.empty())
        Table.Key.push_back({std::move(Rowid), "", -1});
}

/// The first name of the rowid that is not the name of a column; empty when all three are.
std::string TSchemaReader::FreeRowidName() const
{
    constexpr std::array<std::string_view, 3> Names = {"rowid", "_rowid_", "oid"};
    const auto IsFree = [this](std::string_view Name) {
        return std::ranges::none_of(Table.Columns,
                                    [Name](const auto& Column) { return SameText(Column.Name, Name); });
    };
    const auto* const Free = std::ranges::find_if(Names, IsFree);
    return Free != Names.end() ? std::string(*Free) : std::string();
}

// --- Indexes ----------------------------------------------------------------------------------------

std::vector<TSQLiteIndex::TPart> TSchemaReader::ReadParts(std::string_view Index) const
{
    TSQLiteStatement Select(Connection,
                            "SELECT cid, coll FROM pragma_index_xinfo(?1, ?2) WHERE key ORDER BY seqno");
    Select.Bind(1, TSQLiteValue::OfText(Index));
    Select.Bind(2, TSQLiteValue::OfText(Table.Schema));
    std::vector<TSQLiteIndex::TPart> Parts;
    while (Select.Step())
        Parts.push_back(
            {ColumnOf(static_cast<int>(Select.Column(0).Integer)), QuoteName(Select.Column(1).Bytes)});
    return Parts;
}

void TSchemaReader::ReadIndexes()
{
    if (Table.IsView)
        return;
    auto Select = Query("SELECT name, \"unique\", origin FROM pragma_index_list(?1, ?2) WHERE NOT partial");
    while (Select.Step()) {
        const auto Name = Select.Column(0).Bytes;
        const bool IsTable = Table.WithoutRowid && Select.Column(2).Bytes == "pk";
        Table.Indexes.push_back(
            {IsTable ? "" : QuoteName(Name), Select.Column(1).Integer != 0, ReadParts(Name)});
    }
}

// --- Statements -------------------------------------------------------------------------------------

void TSchemaReader::ReadDeclaration()
{
    auto Select = Query("SELECT sql FROM " + QuoteName(Table.Schema) +
                        ".sqlite_schema WHERE type = 'table' AND name = ?1 AND ?2 <> ''");
    if (Select.Step())
        Table.DeclaresConflicts = UpperCase(Select.Column(0).Bytes).find("CONFLICT") != std::string::npos;
    Table.TriggersLeaveTraces = HasFailingTrigger(Table.Schema) || HasFailingTrigger("temp");
}

bool TSchemaReader::HasFailingTrigger(std::string_view Schema) const
{
    return TSQLiteStatement(Connection, "SELECT 1 FROM " + QuoteName(Schema) +
                                        ".sqlite_schema WHERE type = 'trigger' AND sql LIKE '%RAISE%FAIL%'")
        .Step();
}

void TSchemaReader::BuildSelect()
{
    auto List = Table.KeyList();
    for (const auto& Column : Table.Columns)
        AddToList(List, QuoteName(Column.Name));
    Table.Select = "SELECT " + List + " FROM " + Table.QualifiedName();
}

// --- Messages ---------------------------------------------------------------------------------------

std::string ListTables(TSQLiteConnection& Connection)
{
    TSQLiteStatement Select(Connection,
                            "SELECT iif(schema = 'main', '', schema || '.') || name FROM pragma_table_list "
                            "WHERE type <> 'shadow' AND name NOT LIKE 'sqlite\\_%' ESCAPE '\\' "
                            "ORDER BY schema <> 'main', 1 COLLATE NOCASE");
    std::string Names;
    for (int Count = 0; Select.Step(); ++Count) {
        if (Count == TablesInMessage)
            return Names + ", ...";
        AddToList(Names, Select.Column(0).Bytes);
    }
    return Names;
}

[[noreturn]] void RaiseNoTable(TSQLiteConnection& Connection, std::string_view TableName)
{
    const auto Tables = ListTables(Connection);
    Connection.Fail("no such table: " + std::string(TableName) +
                    (Tables.empty() ? " (the database has none)" : " (there are: " + Tables + ")"),
                    {.Rule = erMissing});
}

} // namespace

std::string TSQLiteTableSchema::QualifiedName() const
{
    return QuoteName(Schema) + "." + QuoteName(Name);
}

std::vector<TKvTableReference> ReadReferences(TSQLiteConnection& Connection, const TSQLiteTableSchema& Table)
{
    const auto Schema = QuoteName(Table.Schema);
    TSQLiteStatement Select(Connection,
                            "SELECT t.name, k.on_delete FROM " + Schema + ".sqlite_schema AS t "
                            "JOIN pragma_foreign_key_list(t.name, ?2) AS k "
                            "WHERE t.type = 'table' AND k.seq = 0 AND k.\"table\" = ?1 COLLATE NOCASE "
                            "ORDER BY t.name COLLATE NOCASE, k.id");
    Select.Bind(1, TSQLiteValue::OfText(Table.Name));
    Select.Bind(2, TSQLiteValue::OfText(Table.Schema));
    std::vector<TKvTableReference> Found;
    while (Select.Step()) {
        const auto Action = Select.Column(1).Bytes;
        Found.push_back({.Table = Utf8ToAnsi(Select.Column(0).Bytes),
                         .Changes = Action == "CASCADE" || Action.starts_with("SET ")});
    }
    return Found;
}

std::string TSQLiteTableSchema::RecordCondition(int FirstParam) const
{
    if (!IsView)
        return KeyCondition(FirstParam);
    std::string Condition;
    for (const auto& Column : Columns)
        AddToList(Condition, QuoteName(Column.Name) + " IS ?" + std::to_string(FirstParam++), " AND ");
    return Condition;
}

TSQLiteTableSchema ReadTableSchema(TSQLiteConnection& Connection, std::string_view TableName)
{
    TSQLiteTableSchema Table;
    Table.Title = TableName;
    TSchemaReader Reader(Connection, Table);
    std::string Buffer;
    const auto Wanted = AnsiToUtf8(TableName, Buffer);
    if (!Reader.FindTable({"", std::string(Wanted)}) && !Reader.FindTable(ParseTableName(Wanted)))
        RaiseNoTable(Connection, Wanted);
    Reader.ReadColumns();
    Reader.ReadViewTriggers();
    Reader.ReadKey();
    Reader.ReadIndexes();
    Reader.ReadDeclaration();
    Reader.BuildSelect();
    return Table;
}

} // namespace kv
