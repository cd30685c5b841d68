// KvDestination - the table that an import fills, and the transactions around it.
#pragma once

#include <string>
#include <vector>

#include "KvSqliteDatabase.h"
#include "KvSqliteTable.h"

namespace kv {

struct TDestinationOptions
{
    std::string FileName;                           ///< Of the database.
    std::string Table;
    int Batch = 0;                                  ///< Records of one transaction; 0: all of them.
    int BusyTimeout = 5000;                         ///< Milliseconds to wait for other programs.
    int CacheSize = 0;                              ///< KiB; 0: as the database has it.
    bool Empties = false;                           ///< All records of the table are removed first.
};

/// What became of the records of a run.
struct TTransactionOutcome
{
    bool Complete = false;                          ///< All of them stand in the database.
    int KeptRecords = 0;                            ///< Records of the source up to which the table is changed.
};

/// A table that can be emptied record by record without keeping the user waiting who has cancelled: the
/// engine asks between records that it reads, not between those that it removes before.
class TEmptiableTable final : public TSQLiteTable
{
public:
    bool BeingEmptied = false;                      ///< Removing raises once the user has cancelled.

protected:
    void InternalDelete() override;
};

/// Everything that waits for another program gives up as soon as the user cancels.
class TDestination
{
public:
    /// Opens database and table. Raises Exception that names what is wrong, and the tables that there are.
    explicit TDestination(const TDestinationOptions& Options);

    TDataSet& Table() { return Records; }
    /// The fields of the table's primary key; none when it has none.
    std::vector<std::string> PrimaryKey();

    void Begin();
    /// To be called after each record that was read, stored or not: ends a full batch.
    void RecordDone()
    {
        if (++RecordsRead == NextCommit)
            CommitBatch();
    }
    TTransactionOutcome Commit();
    /// What was committed in batches stays.
    TTransactionOutcome Rollback();

private:
    void CommitBatch();

    const TDestinationOptions Options;
    TSQLiteDatabase Database;
    TEmptiableTable Records;
    int RecordsRead = 0, NextCommit = 0, Committed = 0;
};

} // namespace kv
