// KvSqliteConnection - an open database: errors in words, waiting for locks, and who began the
// transaction. For the units of this folder.
#pragma once

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <exception>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <sqlite3.h>

#include "KvSqliteError.h"

namespace kv {

class TSQLiteDatabase;
class TSQLiteDataSet;
class TSQLiteQueue;

class TSQLiteConnection
{
public:
    /// Opens as `Settings`, which must outlive the connection, asks for.
    explicit TSQLiteConnection(const TSQLiteDatabase& Settings);
    TSQLiteConnection(const TSQLiteConnection&) = delete;
    TSQLiteConnection& operator=(const TSQLiteConnection&) = delete;

    sqlite3* Handle() const { return FHandle.get(); }
    const std::string& FileName() const { return FFileName; }
    /// A number that no earlier call gave, for names of temporary tables.
    int NextSerial() { return ++Serial; }

    /// The reason for which the last call failed, also that SQLite has rolled back the transaction, if it
    /// has.
    TSQLiteError TakeError();
    /// Raises what the program raised, or EDatabaseError "<file>: <Subject>: <reason>".
    [[noreturn]] void Raise(const TSQLiteError& Error, std::string_view Subject = {}) const;
    /// Raises EDatabaseError "<file>: <Text>". The facts get the file.
    [[noreturn]] void Fail(std::string_view Text, TKvErrorFacts Facts = {}) const;
    void Execute(const std::string& Sql);
    /// For what does not depend on the changes that wait: neither settles them nor raises.
    void ExecuteUnsettled(const std::string& Sql);

    // The transaction. A batch is one that a dataset with CommitEvery began.
    void StartTransaction();
    void Commit();
    void Rollback();
    void CheckCommit();                             ///< As TKvDatabase says.
    bool InTransaction() const { return sqlite3_get_autocommit(Handle()) == 0; }
    /// Changes with every beginning and end of a transaction that went through this class.
    std::int64_t TransactionSerial() const { return FTransactionSerial; }

    /// To be called before a change: with `CommitEvery` above 1 it begins a batch unless a transaction
    /// is open. Raises when the program's transaction was rolled back by SQLite and the program has
    /// not ended it yet: changes would become permanent one by one.
    void BeginChange(int CommitEvery);
    /// To be called after a change that succeeded, of the record tagged `Tag`: commits a full batch. While
    /// another program is in the way the batch just grows.
    void EndChange(int CommitEvery, std::int64_t Tag)
    {
        ++Changes;
        if (FirstTag < 0)
            FirstTag = Tag;
        if (Owner == toBatch && Changes % std::max(CommitEvery, 1) == 0)
            EndFullBatch();
    }
    void CommitBatch();                             ///< Nothing when there is none.
    /// Raises when a change could not be written out because others read for longer than BusyTimeout. It is
    /// not lost: SQLite keeps it in memory, more and more of it.
    void CheckPatience();

    // A thread that stores what a queue has taken asks the program nothing; whoever waits for it does, and
    // lets it go on or stop.
    static void BecomeWorker();
    void LetWorkerGoOn(bool Value) { WorkerGoesOn = Value; }
    /// What OnWait of the database says; what it raises is kept for Raise, and a no.
    bool GoesOn();
    /// Nothing has failed although the program wanted to stop: it will be asked again.
    void ForgetAnswer() { Raised = nullptr; }

    // Changes that were taken and are not yet stored. Every statement settles them first.
    void Settle()
    {
        if (Queue)
            FinishQueue();
    }
    void SetQueue(TSQLiteQueue* Active) { Queue = Active; }
    /// Why a change could not be stored after all. The whole transaction is rolled back.
    TSQLiteError AbandonTransaction();

    /// To be called before statements of the program's own, which may do anything.
    void BeforeForeignSql();

    // The datasets that are open on this connection.
    void Attach(TSQLiteDataSet& DataSet);
    void Detach(TSQLiteDataSet& DataSet);
    const std::vector<TSQLiteDataSet*>& DataSets() const { return FDataSets; }

private:
    enum TTransactionOwner { toNobody, toProgram, toBatch };

    struct TCloseHandle
    {
        void operator()(sqlite3* Handle) const { sqlite3_close_v2(Handle); }
    };

    static int WaitForLock(void* Self, int Tries);
    bool WaitForLock(int Tries);
    bool MayGoOn();
    static int AskToStop(void* Self);
    static void TellRolledBack(void* Self);
    void Configure();
    void Begin(TTransactionOwner NewOwner);
    bool TryEnd(const char* Sql);
    void CommitNow();
    [[noreturn]] void FailLost() const;
    void EndFullBatch();
    [[noreturn]] void RaiseForAll();
    void CheckNotLost();
    std::string LossAfterFailure();
    void ReleaseCursors();
    void FinishQueue();

    const TSQLiteDatabase& Settings;
    std::string FFileName;
    std::unique_ptr<sqlite3, TCloseHandle> FHandle;
    std::vector<TSQLiteDataSet*> FDataSets;
    TTransactionOwner Owner = toNobody;
    bool RolledBack = false;                        // since the transaction began
    bool Lost = false;                              // and this by SQLite, of what the program began
    std::int64_t Changes = 0;                       // since the transaction began ...
    std::int64_t FirstTag = -1;                     // ... and the tag of the first one
    std::int64_t FTransactionSerial = 0;
    std::int64_t Waited = 0;                        // milliseconds, since the transaction was asked for
    bool OutOfPatience = false;                     // and somebody who waited gave up for that
    std::int64_t BatchSince = 0;                    // steady milliseconds
    bool GaveUp = false;                            // the last wait for a lock, because the program said so
    std::exception_ptr Raised;                      // what the program raised when it was asked
    std::atomic<bool> WorkerGoesOn = true;
    int Serial = 0;
    TSQLiteQueue* Queue = nullptr;                  // while changes wait
};

} // namespace kv
