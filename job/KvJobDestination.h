// KvJobDestination - the table that an import fills, and the transactions around it.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "KvDatabase.h"
#include "KvJobSettings.h"

namespace kv {

class TDataSet;

/// Everything that waits for another program gives up as soon as `Continue` says so.
class TJobDestination
{
public:
    /// Opens database and table. Raises EJobRefused when it is not said which, and what opening raises.
    TJobDestination(const TJobDestinationSettings& Settings, int Batch,
                    const std::function<bool()>& Continue);
    ~TJobDestination();

    TDataSet& Table() { return *Records; }
    /// The fields of the table's primary key; none when it has none.
    std::vector<std::string> PrimaryKey();

    /// Of other tables, or of the table itself, to its records.
    std::vector<TKvTableReference> References();

    void Begin();
    /// To be called after each record that was read, stored or not: ends a full batch, with the first record
    /// for which it may.
    void RecordDone(bool MayEndBatch = true)
    {
        if (++RecordsRead >= NextCommit && MayEndBatch && Batch > 0)
            CommitBatch();
    }
    void Commit();
    void CheckCommit();                             ///< Raises what Commit would raise, and leaves all open.
    void Rollback();                                ///< What was committed in batches stays.
    /// Records of the source up to which the table is changed.
    int Committed() const { return FCommitted; }

private:
    void CommitBatch();

    const int Batch;
    std::unique_ptr<TKvDatabase> Database;
    std::string TableName;
    std::unique_ptr<TDataSet> Records;
    int RecordsRead = 0, NextCommit = 0, FCommitted = 0;
};

} // namespace kv
