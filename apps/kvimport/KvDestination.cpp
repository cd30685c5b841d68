#include "KvDestination.h"

#include <filesystem>
#include <system_error>

#include "KvCancelSignals.h"
#include "KvDisplayText.h"
#include "KvException.h"
#include "KvOptionText.h"
#include "Kvibase.h"

namespace kv {

namespace {

/// What SQLite would say about it is less clear.
void CheckDatabaseFile(const std::string& FileName)
{
    std::error_code Ignored;
    if (std::filesystem::is_directory(FileName, Ignored))
        throw Exception("Cannot open database \"" + FileName + "\": it is a directory");
    if (std::filesystem::exists(FileName, Ignored) && std::filesystem::is_empty(FileName, Ignored))
        throw Exception("Cannot open database \"" + FileName + "\": the file is empty, it has no tables");
}

} // namespace

void TEmptiableTable::InternalDelete()
{
    if (BeingEmptied && TCancelSignals::Requested())
        throw Exception("Cancelled while the table was emptied");
    TSQLiteTable::InternalDelete();
}

TDestination::TDestination(const TDestinationOptions& Given) : Options(Given)
{
    CheckDatabaseFile(Options.FileName);
    Database.DatabaseName = Options.FileName;
    Database.BusyTimeout = Options.BusyTimeout;
    Database.CacheSize = Options.CacheSize;
    Database.OnBusy = Database.OnWork = [] { return !TCancelSignals::Requested(); };
    Database.Open();
    if (Options.Table.empty())
        throw Exception("--table is missing; the tables of " + Options.FileName + " are " +
                        JoinNames(Database.TableNames()));
    Records.SetDatabase(&Database);
    Records.TableName = FromDisplay(Options.Table);
    Records.BeingEmptied = Options.Empties;
    Records.Open();
}

std::vector<std::string> TDestination::PrimaryKey()
{
    return ReadNames(TKvImportBaseComponent::GetKeyList(&Records));
}

void TDestination::Begin()
{
    Database.StartTransaction();
    NextCommit = Options.Batch;
}

void TDestination::CommitBatch()
{
    Database.Commit();
    Committed = RecordsRead;
    Database.StartTransaction();
    NextCommit = RecordsRead + Options.Batch;
}

TTransactionOutcome TDestination::Commit()
{
    Database.Commit();
    Committed = RecordsRead;
    return {.Complete = true, .KeptRecords = Committed};
}

TTransactionOutcome TDestination::Rollback()
{
    Database.Rollback();
    return {.Complete = false, .KeptRecords = Committed};
}

} // namespace kv
