#include "KvSqliteConnection.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <system_error>
#include <thread>
#include <utility>

#include "KvException.h"
#include "KvSqliteDataSet.h"
#include "KvSqliteDatabase.h"
#include "KvSqliteQueue.h"

namespace kv {

namespace {

constexpr int StepsBetweenQuestions = 20000;        // of SQLite's virtual machine: about a millisecond

thread_local bool IsWorker = false;                 // see BecomeWorker

std::int64_t SteadyMilliseconds()
{
    using namespace std::chrono;
    return duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count();
}

std::string LossOf(std::int64_t Changes)
{
    return "the transaction was rolled back and its " +
           (Changes == 1 ? "change is lost" : std::to_string(Changes) + " changes are lost");
}

} // namespace

TSQLiteConnection::TSQLiteConnection(const TSQLiteDatabase& Wanted)
    : Settings(Wanted), FFileName(Wanted.DatabaseName)
{
    if (FFileName.empty())
        throw EDatabaseError("Property DatabaseName wasn't specified.");
    const int Access = Settings.ReadOnly ? SQLITE_OPEN_READONLY
                       : SQLITE_OPEN_READWRITE | (Settings.CreateIfMissing ? SQLITE_OPEN_CREATE : 0);
    sqlite3* Opened = nullptr;
    const int Code = sqlite3_open_v2(FFileName.c_str(), &Opened,
                                     Access | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE, nullptr);
    FHandle.reset(Opened);
    if (Code != SQLITE_OK) {
        const int SystemError = sqlite3_system_errno(Opened);
        auto Error = TakeError();
        if (SystemError == ENOENT)
            Error.Facts.Rule = erMissing;
        throw EDatabaseError(
            "Cannot open database \"" + FFileName +
                "\": " + (SystemError != 0 ? std::generic_category().message(SystemError) : Error.Text),
            Error.Facts);
    }
    Configure();
}

void TSQLiteConnection::Configure()
{
    sqlite3_busy_handler(Handle(), &WaitForLock, this);
    sqlite3_rollback_hook(Handle(), &TellRolledBack, this);
    sqlite3_progress_handler(Handle(), StepsBetweenQuestions, &AskToStop, this);
    if (Settings.ForeignKeys)
        Execute("PRAGMA foreign_keys = ON");
    if (Settings.CacheSize > 0)
        Execute("PRAGMA cache_size = -" + std::to_string(Settings.CacheSize));
    Execute("SELECT 1 FROM sqlite_schema LIMIT 1"); // opening alone does not look into the file
}

// --- Asking the program -----------------------------------------------------------------------------

void TSQLiteConnection::BecomeWorker()
{
    IsWorker = true;
}

bool TSQLiteConnection::GoesOn()
{
    try {
        return !Settings.OnWait || Settings.OnWait();
    }
    catch (...) {                                   // must not cross SQLite's own frames
        Raised = std::current_exception();
        return false;
    }
}

/// Whoever waits for the worker asks for it.
bool TSQLiteConnection::MayGoOn()
{
    return IsWorker ? WorkerGoesOn.load() : GoesOn();
}

/// Not zero to stop.
int TSQLiteConnection::AskToStop(void* Self)
{
    return !static_cast<TSQLiteConnection*>(Self)->MayGoOn();
}

// --- Waiting for locks ------------------------------------------------------------------------------

int TSQLiteConnection::WaitForLock(void* Self, int Tries)
{
    return static_cast<TSQLiteConnection*>(Self)->WaitForLock(Tries);
}

/// True to try again. Sleeps longer with every try, up to a tenth of a second.
bool TSQLiteConnection::WaitForLock(int Tries)
{
    constexpr std::int64_t LongestSleep = 100;      // milliseconds
    if (Tries == 0) {
        Waited = Owner == toNobody ? 0 : Waited;
        GaveUp = false;
    }
    const auto Left = Settings.BusyTimeout - Waited;
    OutOfPatience = Left <= 0;
    GaveUp = !OutOfPatience && !MayGoOn();
    if (OutOfPatience || GaveUp)
        return false;
    const auto Before = SteadyMilliseconds();
    const auto Sleep = std::min({std::int64_t{1} << std::min(Tries, 7), LongestSleep, Left});
    std::this_thread::sleep_for(std::chrono::milliseconds(Sleep));
    Waited += SteadyMilliseconds() - Before;
    return true;
}

void TSQLiteConnection::CheckPatience()
{
    if (std::exchange(OutOfPatience, false))
        Fail("the database is locked by another connection, and has been for " + std::to_string(Waited) +
                 " ms",
             {.Rule = erBusy});
}

// --- Errors -----------------------------------------------------------------------------------------

TSQLiteError TSQLiteConnection::TakeError()
{
    constexpr int PrimaryCode = 0xFF;
    const int Code = sqlite3_extended_errcode(Handle());
    const bool Busy = (Code & PrimaryCode) == SQLITE_BUSY;
    OutOfPatience = false;                          // it is told here
    TSQLiteError Error;
    Error.Text = Busy ? "the database is locked by another connection" : sqlite3_errmsg(Handle());
    Error.Facts = {.FileName = FFileName,
                   .Rule = Busy && GaveUp ? erCancelled : RuleOfCode(Code, Error.Text)};
    Error.Text += LossAfterFailure();
    Error.Raised = std::exchange(Raised, nullptr);
    return Error;
}

/// A full disk, a failing device and some triggers end the whole transaction and not just a statement.
std::string TSQLiteConnection::LossAfterFailure()
{
    if (!std::exchange(RolledBack, false) || Owner == toNobody || InTransaction())
        return {};
    ++FTransactionSerial;
    Lost = Owner == toProgram;                      // until the program ends it; a batch is just gone
    if (!Lost)
        Owner = toNobody;
    return "; " + LossOf(Changes);
}

TSQLiteError TSQLiteConnection::AbandonTransaction()
{
    auto Error = TakeError();
    if (InTransaction()) {
        sqlite3_exec(Handle(), "ROLLBACK", nullptr, nullptr, nullptr);
        Error.Text += LossAfterFailure();
    }
    return Error;
}

void TSQLiteConnection::FinishQueue()
{
    Queue->Finish();
}

void TSQLiteConnection::Raise(const TSQLiteError& Error, std::string_view Subject) const
{
    if (Error.Raised)
        std::rethrow_exception(Error.Raised);
    Fail(Subject.empty() ? Error.Text : std::string(Subject) + ": " + Error.Text, Error.Facts);
}

void TSQLiteConnection::Fail(std::string_view Text, TKvErrorFacts Facts) const
{
    Facts.FileName = FFileName;
    throw EDatabaseError(FFileName + ": " + std::string(Text), std::move(Facts));
}

void TSQLiteConnection::Execute(const std::string& Sql)
{
    Settle();
    if (sqlite3_exec(Handle(), Sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK)
        Raise(TakeError());
}

void TSQLiteConnection::ExecuteUnsettled(const std::string& Sql)
{
    if (Queue)
        Queue->Pause();
    sqlite3_exec(Handle(), Sql.c_str(), nullptr, nullptr, nullptr);
}

void TSQLiteConnection::BeforeForeignSql()
{
    Settle();
    ReleaseCursors();
    ++FTransactionSerial;
    if (!InTransaction())
        FirstTag = -1;                              // it may begin one
}

// --- Transactions -----------------------------------------------------------------------------------

void TSQLiteConnection::Begin(TTransactionOwner NewOwner)
{
    // For a database that it cannot write SQLite begins as if it were asked to read.
    if (!Settings.ReadOnly && sqlite3_db_readonly(Handle(), "main") == 1)
        Fail("the database is read-only", {.Rule = erStorage});
    // The right to write is taken at once: a transaction that reads first can find it gone for good.
    Execute(Settings.ReadOnly ? "BEGIN" : "BEGIN IMMEDIATE");
    Owner = NewOwner;
    BatchSince = SteadyMilliseconds();
    RolledBack = false;
    Changes = 0;
    FirstTag = -1;
    ++FTransactionSerial;
}

/// False when the transaction is still open, for TakeError to tell why.
bool TSQLiteConnection::TryEnd(const char* Sql)
{
    Settle();
    ReleaseCursors();
    if (InTransaction()) {
        if (sqlite3_exec(Handle(), Sql, nullptr, nullptr, nullptr) != SQLITE_OK) {
            if (InTransaction())
                return false;
            RaiseForAll();
        }
    }
    ++FTransactionSerial;
    Owner = toNobody;
    Lost = false;
    return true;
}

void TSQLiteConnection::StartTransaction()
{
    CheckNotLost();
    CommitBatch();
    if (InTransaction())
        Fail("a transaction is already active");
    Begin(toProgram);
}

void TSQLiteConnection::Commit()
{
    const bool HasWork = Queue || InTransaction();  // a thread of the queue may be using the connection
    if (HasWork && !GoesOn())
        Raise({.Text = "interrupted",
               .Facts = {.Rule = erCancelled},
               .Raised = std::exchange(Raised, nullptr)});
    CommitNow();
}

void TSQLiteConnection::CommitNow()
{
    if (std::exchange(Lost, false)) {
        Owner = toNobody;
        FailLost();
    }
    if (!TryEnd("COMMIT"))
        RaiseForAll();
}

void TSQLiteConnection::CheckCommit()
{
    Settle();
    if (Lost)
        FailLost();
    int HasUnresolved = 0, Unused = 0;
    sqlite3_db_status(Handle(), SQLITE_DBSTATUS_DEFERRED_FKS, &HasUnresolved, &Unused, 0);
    if (HasUnresolved != 0)                         // in the words of SQLite's own refusal
        Fail("FOREIGN KEY constraint failed", {.Rule = erForeignKey, .Record = FirstTag});
}

void TSQLiteConnection::FailLost() const
{
    Fail("there is nothing to commit: " + LossOf(Changes), {.Rule = erStorage, .Record = FirstTag});
}

void TSQLiteConnection::Rollback()
{
    if (Queue)
        Queue->Forget();
    if (!TryEnd("ROLLBACK"))
        Raise(TakeError());
}

/// The reason why a transaction cannot end may be any of its records.
void TSQLiteConnection::RaiseForAll()
{
    auto Error = TakeError();
    Error.Facts.Record = FirstTag;
    Raise(Error);
}

void TSQLiteConnection::CommitBatch()
{
    if (Owner == toBatch)
        CommitNow();
}

void TSQLiteConnection::CheckNotLost()
{
    if (Lost)
        Fail("the transaction was rolled back; it must be ended before anything else is written",
             {.Rule = erStorage});
}

void TSQLiteConnection::BeginChange(int CommitEvery)
{
    CheckPatience();
    if (InTransaction())
        return;
    CheckNotLost();
    // whatever it was ended by a statement of the program's own
    Owner = toNobody;
    if (CommitEvery > 1)
        Begin(toBatch);
}

/// Who waits for the right to write looks for it now and then: without a moment between two batches he would
/// hardly ever find it.
void TSQLiteConnection::EndFullBatch()
{
    constexpr std::int64_t Share = 10;              // of the time that the batch has taken
    constexpr std::int64_t LongestMoment = 100;     // milliseconds
    if (TryEnd("COMMIT")) {
        const auto Taken = SteadyMilliseconds() - BatchSince;
        const auto Moment = std::clamp(Taken / Share, std::int64_t{1}, LongestMoment);
        std::this_thread::sleep_for(std::chrono::milliseconds(Moment));
        return;
    }
    OutOfPatience = false;                          // the batch grows on
    if (Raised)
        std::rethrow_exception(std::exchange(Raised, nullptr));
}

void TSQLiteConnection::ReleaseCursors()
{
    for (auto* const DataSet : FDataSets)
        DataSet->ReleaseCursor();
}

/// Called by SQLite for every rollback, also that of a single statement outside a transaction, which
/// takes nothing with it that anybody prepared before.
void TSQLiteConnection::TellRolledBack(void* Self)
{
    auto& Connection = *static_cast<TSQLiteConnection*>(Self);
    if (!Connection.InTransaction())
        return;
    Connection.RolledBack = true;
    for (auto* const DataSet : Connection.FDataSets)
        DataSet->TransactionRolledBack();
}

// --- Datasets ---------------------------------------------------------------------------------------

void TSQLiteConnection::Attach(TSQLiteDataSet& DataSet)
{
    FDataSets.push_back(&DataSet);
}

void TSQLiteConnection::Detach(TSQLiteDataSet& DataSet)
{
    std::erase(FDataSets, &DataSet);
}

} // namespace kv
