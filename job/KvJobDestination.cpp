#include "KvJobDestination.h"

#include "KvDataSet.h"
#include "KvDisplayText.h"
#include "KvJobFindings.h"
#include "KvText.h"
#include "Kvibase.h"

namespace kv {

TJobDestination::TJobDestination(const TJobDestinationSettings& Settings, int BatchSize,
                                 const std::function<bool()>& Continue)
    : Batch(BatchSize), Database(MakeDatabase(Settings.Url))
{
    Database->BusyTimeout = Settings.BusyTimeout;
    Database->CacheSize = Settings.CacheSize;
    Database->ForeignKeys = Settings.ForeignKeys;
    Database->OnWait = Continue;
    Database->Open();
    if (Settings.Table.empty())
        Refuse({.Kind = jfTableMissing, .Name = Settings.Url, .Names = Database->TableNames()});
    TableName = FromDisplay(Settings.Table);
    Records = Database->OpenTable(TableName);
}

TJobDestination::~TJobDestination() = default;

std::vector<std::string> TJobDestination::PrimaryKey()
{
    auto Names = SplitNames(TKvImportBaseComponent::GetKeyList(Records.get()), ';');
    for (auto& Name : Names)
        Name = ToDisplay(Name);
    return Names;
}

std::vector<TKvTableReference> TJobDestination::References()
{
    return Database->Describe(TableName).References;
}

void TJobDestination::Begin()
{
    Database->StartTransaction();
    NextCommit = Batch;
}

void TJobDestination::CommitBatch()
{
    Database->Commit();
    FCommitted = RecordsRead;
    Database->StartTransaction();
    NextCommit = RecordsRead + Batch;
}

void TJobDestination::Commit()
{
    Database->Commit();
    FCommitted = RecordsRead;
}

void TJobDestination::CheckCommit()
{
    Database->CheckCommit();
}

void TJobDestination::Rollback()
{
    Database->Rollback();
}

} // namespace kv
