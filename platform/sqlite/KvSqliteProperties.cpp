// What the classes of this folder are to those who set them up, whether SQLite was there to build them
// with or not.
#include "KvPublish.h"
#include "KvSqliteDatabase.h"
#include "KvSqliteQuery.h"
#include "KvSqliteTable.h"

namespace kv {

void RegisterSqliteDatabases()
{
    const auto Create = [](std::string_view Name) {
        auto Database = std::make_unique<TSQLiteDatabase>();
        Database->DatabaseName = Name;
        Database->CheckFile = true;
        return Database;
    };
    RegisterDatabaseDriver({.Scheme = "sqlite", .Title = "SQLite", .Create = Create, .TakesPaths = true});
}

TPublishedProperties TSQLiteDatabase::PublishedProperties() const
{
    return PublishAfter(TKvDatabase::PublishedProperties(),
                        {Publish("ReadOnly", &TSQLiteDatabase::ReadOnly),
                         Publish("CreateIfMissing", &TSQLiteDatabase::CreateIfMissing),
                         Publish("CheckFile", &TSQLiteDatabase::CheckFile)});
}

TPublishedProperties TSQLiteDataSet::PublishedProperties() const
{
    auto Properties = TDataSet::PublishedProperties();
    Properties.push_back(Publish("DatabaseName", &TSQLiteDataSet::DatabaseName));
    return Properties;
}

TPublishedProperties TSQLiteTable::PublishedProperties() const
{
    auto Properties = TSQLiteDataSet::PublishedProperties();
    Properties.push_back(Publish("TableName", &TSQLiteTable::TableName));
    auto& IndexFieldName = Properties.emplace_back();
    IndexFieldName.Name = "IndexFieldName";
    IndexFieldName.Get = [](const TPersistent& Object) {
        return TVariant(dynamic_cast<const TSQLiteTable&>(Object).PrimaryKeyFields());
    };
    IndexFieldName.Stored = false;
    Properties.push_back(Publish("CommitEvery", &TSQLiteTable::CommitEvery));
    return Properties;
}

TPublishedProperties TSQLiteQuery::PublishedProperties() const
{
    auto Properties = TSQLiteDataSet::PublishedProperties();
    Properties.push_back(PublishStrings("SQL", &TSQLiteQuery::SQL));
    return Properties;
}

void TSQLiteDataSet::SetDatabase(TSQLiteDatabase* Value)
{
    Close();
    if (FDatabase)
        FDatabase->RemoveFreeNotification(*this);
    FDatabase = Value;
    if (FDatabase)
        FDatabase->FreeNotification(*this);
}

void TSQLiteDataSet::Notification(TComponent& Component, TOperation Operation)
{
    TDataSet::Notification(Component, Operation);
    if (Operation == opRemove && &Component == FDatabase)
        FDatabase = nullptr;                        // it has closed this dataset before
}

std::string TSQLiteDataSet::FileName() const
{
    return FDatabase ? FDatabase->DatabaseName : DatabaseName;
}

std::string TSQLiteTable::DisplayName() const
{
    return FileName() + ": " + TableName;
}

std::string TSQLiteQuery::DisplayName() const
{
    return FileName();
}

} // namespace kv
