#include "KvSqliteDatabase.h"

#include <filesystem>
#include <system_error>

#include "KvCodePage.h"
#include "KvException.h"
#include "KvSqliteConnection.h"
#include "KvSqliteSchema.h"
#include "KvSqliteStatement.h"
#include "KvSqliteTable.h"

namespace kv {

void StopSqliteMemoryCount()
{
    sqlite3_config(SQLITE_CONFIG_MEMSTATUS, 0);
}

namespace {

/// What SQLite would say about it is less clear.
void CheckDatabaseFile(const TSQLiteDatabase& Database)
{
    const auto& FileName = Database.DatabaseName;
    std::error_code Ignored;
    const auto Refuse = [&FileName](const char* Reason) {
        throw EDatabaseError("Cannot open database \"" + FileName + "\": " + Reason,
                             {.FileName = FileName, .Rule = erFormat});
    };
    if (std::filesystem::is_directory(FileName, Ignored))
        Refuse("it is a directory");
    if (!Database.CreateIfMissing && std::filesystem::exists(FileName, Ignored) &&
        std::filesystem::is_empty(FileName, Ignored))
        Refuse("the file is empty, it has no tables");
}

} // namespace

TSQLiteDatabase::TSQLiteDatabase(TComponent* Owner) : TKvDatabase(Owner) {}

TSQLiteDatabase::~TSQLiteDatabase()
{
    try {
        Close();
    }
    // a last batch that cannot be committed, and nobody left to tell
    catch (...) {
        FConnection->Rollback();
        Close();
    }
}

void TSQLiteDatabase::Open()
{
    if (FConnection)
        return;
    if (CheckFile)
        CheckDatabaseFile(*this);
    FConnection = std::make_unique<TSQLiteConnection>(*this);
}

void TSQLiteDatabase::Close()
{
    if (!FConnection)
        return;
    while (!FConnection->DataSets().empty())
        FConnection->DataSets().back()->Close();    // which detaches it
    if (InTransaction())
        FConnection->Rollback();
    FConnection.reset();
}

TSQLiteConnection& TSQLiteDatabase::Connection()
{
    Open();
    return *FConnection;
}

void TSQLiteDatabase::Execute(std::string_view Sql)
{
    Connection().BeforeForeignSql();
    std::string Buffer;
    FConnection->Execute(std::string(AnsiToUtf8(Sql, Buffer)));
}

void TSQLiteDatabase::StartTransaction()
{
    Connection().StartTransaction();
}

void TSQLiteDatabase::Commit()
{
    if (FConnection)
        FConnection->Commit();
}

void TSQLiteDatabase::Rollback()
{
    if (FConnection)
        FConnection->Rollback();
}

void TSQLiteDatabase::CheckCommit()
{
    if (FConnection)
        FConnection->CheckCommit();
}

bool TSQLiteDatabase::InTransaction() const
{
    return FConnection && FConnection->InTransaction();
}

void TSQLiteDatabase::Flush()
{
    if (FConnection)
        FConnection->Settle();
}

// --- Tables -----------------------------------------------------------------------------------------

std::vector<TKvTableInfo> TSQLiteDatabase::Tables()
{
    TSQLiteStatement Select(
        Connection(), "SELECT name, type = 'view' FROM main.sqlite_schema WHERE type IN ('table', 'view') "
                      "AND name NOT LIKE 'sqlite\\_%' ESCAPE '\\' ORDER BY name COLLATE NOCASE");
    std::vector<TKvTableInfo> Found;
    while (Select.Step())
        Found.push_back(
            {.Name = Utf8ToAnsi(Select.Column(0).Bytes), .IsView = Select.Column(1).Integer != 0});
    return Found;
}

TKvTableDef TSQLiteDatabase::Describe(std::string_view TableName)
{
    const auto Table = ReadTableSchema(Connection(), TableName);
    TKvTableDef Def;
    for (const auto& Column : Table.Columns)
        Def.Fields.push_back(Column.Def);
    for (const int Column : Table.PrimaryKey)
        Def.KeyFields.push_back(Table.Column(Column).Def.Name);
    Def.References = ReadReferences(Connection(), Table);
    return Def;
}

std::unique_ptr<TDataSet> TSQLiteDatabase::OpenTable(std::string_view TableName)
{
    auto Table = std::make_unique<TSQLiteTable>();
    Table->SetDatabase(this);
    Table->TableName = TableName;
    Table->Open();
    return Table;
}

} // namespace kv
