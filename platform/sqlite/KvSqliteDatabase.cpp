#include "KvSqliteDatabase.h"

#include "KvCodePage.h"
#include "KvException.h"
#include "KvSqliteConnection.h"
#include "KvSqliteDataSet.h"
#include "KvSqliteStatement.h"

namespace kv {

void StopSqliteMemoryCount()
{
    sqlite3_config(SQLITE_CONFIG_MEMSTATUS, 0);
}

TSQLiteDatabase::TSQLiteDatabase(TComponent* Owner) : TComponent(Owner) {}

TSQLiteDatabase::~TSQLiteDatabase()
{
    try {
        Close();
    }
    catch (...) {                                   // a last batch that cannot be committed, and nobody left to tell
        FConnection->Rollback();
        Close();
    }
}

void TSQLiteDatabase::Open()
{
    if (!FConnection)
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

bool TSQLiteDatabase::InTransaction() const
{
    return FConnection && FConnection->InTransaction();
}

std::vector<std::string> TSQLiteDatabase::TableNames()
{
    TSQLiteStatement Select(Connection(), "SELECT name FROM main.sqlite_schema WHERE type IN ('table', 'view') "
                                          "AND name NOT LIKE 'sqlite\\_%' ESCAPE '\\' ORDER BY name COLLATE NOCASE");
    std::vector<std::string> Names;
    while (Select.Step())
        Names.push_back(Utf8ToAnsi(Select.Column(0).Bytes));
    return Names;
}

} // namespace kv
