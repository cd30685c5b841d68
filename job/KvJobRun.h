// KvJobRun - one import from its settings to its outcome: prepare, execute, settle.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "KvException.h"
#include "KvJobFindings.h"
#include "KvJobPlan.h"
#include "KvJobSettings.h"
#include "KvJobSource.h"
#include "KviRunObserver.h"

namespace kv {

class TDataSet;
class TJobDestination;
class TJobFile;

/// What became of the records that were read: Read is the sum of the others, but for one that was broken off.
struct TJobFigures
{
    int Read = 0, Added = 0, Updated = 0, Deleted = 0;
    int Refused = 0;                                ///< Skipped before they were written.
    int Failed = 0;                                 ///< Could not be read, converted or stored.
    int NotFound = 0;                               ///< No record has their key.
};

/// A record that failed, or what ended a run.
struct TJobError
{
    std::string Source;                             ///< As the source is called, UTF-8.
    TKvISourcePosition Position = {};               ///< Number 0: it concerns no record.
    /// UTF-8, without source and place where TellsPlace is false.
    std::string Message;
    bool TellsPlace = false;                        ///< The message itself names source and place.
    TKvErrorFacts Facts;

    /// The message, with source and place: "orders.csv, line 17: ...".
    std::string Text() const;
};

enum TJobResult {
    joDone,                                         ///< Every record was stored, or had nothing to store.
    joRecordErrors,                                 ///< Done, but some records failed and were left out.
    joFailed,
    joCancelled
};

struct TJobOutcome
{
    TJobResult Result = joFailed;
    bool Ran = false;                               ///< It came as far as importing.
    bool DryRun = false;
    bool Stopped = false;                           ///< By the limit of errors.
    /// Mode copy stored none of the records that it read: the table keeps what it has.
    bool StoredNone = false;
    TJobFigures Figures;
    int Emptied = 0;                                ///< Records that mode copy removed first.
    bool Complete = false;                          ///< All of it stands in the database.
    /// Records of the source up to which the table is changed.
    int KeptRecords = 0;
    std::optional<TJobError> Failure;               ///< Why it failed; none when it did not.
    std::vector<TJobFinding> Remarks;               ///< What the run met that the user should know.
};

/// Told of a job as it goes on, and asked whether it shall.
class TJobObserver
{
public:
    virtual ~TJobObserver() = default;

    /// False cancels: asked while anything takes long.
    virtual bool KeepsRunning() { return true; }
    /// Found before the run, or left out by it: how the source was read where nobody had told it.
    virtual void Found(const TJobFinding& Finding) { static_cast<void>(Finding); }
    /// A record could not be stored and is left out. False ends the run as failed.
    virtual bool RecordFailed(const TJobError& Error)
    {
        static_cast<void>(Error);
        return true;
    }
    /// Some records further. Told now and then, and with the last one.
    virtual void Progress(const TJobFigures& Figures) { static_cast<void>(Figures); }
};

class TJobRun : private TKvIRunObserver
{
public:
    /// Both must outlive the run.
    TJobRun(const TJobSettings& Settings, TJobObserver& Observer);
    /// A saved import; `Settings` are those that TJobFile::Complete has filled in.
    TJobRun(TJobFile& Saved, const TJobSettings& Settings, TJobObserver& Observer);
    ~TJobRun() override;

    /// Opens source and destination, joins columns and fields and checks both. Raises Exception; nothing was
    /// changed then.
    void Prepare();
    bool HasSource() const { return FSource != nullptr; } ///< Prepare came as far as that.
    // Once it is prepared, or as far as it came:
    TJobSource& Source() { return *FSource; }
    TDataSet& Table();
    const TJobPlan& Plan() const { return FPlan; }
    /// How the source was read where nobody had told it.
    const std::vector<TJobFinding>& Findings() const { return FFindings; }

    /// Imports. Whatever goes wrong is in the outcome.
    const TJobOutcome& Execute();

private:
    bool KeepsRunning() override;
    void Emptied(std::int64_t Count) override;
    void RecordDone(TKvIFate Fate) override;
    bool RecordFailed(const Exception& Error) override;

    void CheckFiles() const;
    void Check();
    void Add(std::vector<TJobFinding> More);
    void SetUp();
    void CountRecord(TKvIFate Fate);
    bool IsPastLimit(std::int64_t Records) const;
    std::int64_t ExpectedRecords() const;
    bool MayEndBatch() const;
    void NoteLegacyText();
    TJobError ErrorOf(const Exception& Error, bool InRecord) const;
    void Settle();
    void EndTransaction();

    const TJobSettings& Settings;
    TJobObserver& Observer;
    TJobFile* const Saved = nullptr;
    std::unique_ptr<TJobSource> FSource;
    std::unique_ptr<TJobDestination> Destination;
    TJobPlan FPlan;
    std::vector<TJobFinding> FFindings;
    std::optional<TJobError> Ending;                // of the record by which the run has ended
    std::int64_t LegacyTexts = 0;                   // of the process, before the current record
    std::optional<TJobFinding> LegacyText;          // the first record with one
    TJobOutcome Outcome;
};

} // namespace kv
