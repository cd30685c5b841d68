#include "KvJobRun.h"

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <utility>

#include "KvCodePage.h"
#include "KvDataSet.h"
#include "KvDatabase.h"
#include "KvDisplayText.h"
#include "KvJobChecks.h"
#include "KvJobDestination.h"
#include "KvJobFile.h"
#include "KvJobFormats.h"
#include "Kvibase.h"

namespace kv {

namespace {

// records; a refresh that draws nothing costs next to nothing
constexpr int RefreshEvery = 64;
constexpr int ProgressEvery = 1024;

} // namespace

TJobRun::TJobRun(const TJobSettings& Given, TJobObserver& Told) : Settings(Given), Observer(Told) {}

TJobRun::TJobRun(TJobFile& File, const TJobSettings& Given, TJobObserver& Told)
    : Settings(Given), Observer(Told), Saved(&File)
{
}

TJobRun::~TJobRun() = default;

TDataSet& TJobRun::Table()
{
    return Destination->Table();
}

// Preparing.

void TJobRun::Prepare()
{
    CheckFiles();
    UseFormats(Settings.Formats);
    FSource = OpenSource(Saved, Settings, [this] { return Observer.KeepsRunning(); });
    Add(FSource->Findings());
    Destination =
        std::make_unique<TJobDestination>(Settings.Destination, Settings.Run.DryRun ? 0 : Settings.Run.Batch,
                                          [this] { return Observer.KeepsRunning(); });
    auto Plan = Settings.Plan;
    if (Saved)
        Add(Saved->FollowTitles(*FSource, Table(), Plan.Lines));
    if (NeedsKeys(Plan.Mode) && Plan.Keys.empty())
        Plan.Keys = Destination->PrimaryKey();
    if (NeedsKeys(Plan.Mode) && Plan.Keys.empty())
        Refuse({.Kind = jfKeysMissing, .Name = Settings.Destination.Table, .Number = Plan.Mode});
    FPlan = MakePlan(*FSource, Table(), Plan);
    Check();
    SetUp();
}

/// A file that is read while it is written to.
void TJobRun::CheckFiles() const
{
    std::error_code Ignored;
    const auto Database = MakeDatabase(Settings.Destination.Url)->DatabaseName;
    if (std::filesystem::equivalent(Settings.Source.FileName, Database, Ignored) && !Ignored)
        Refuse({.Kind = jfSameFile, .Name = Database});
}

/// Rows of fixed text are seen whole until it is known which columns they have.
void TJobRun::Check()
{
    if (FSource->Columns().empty() && !FPlan.Columns.empty()) {
        std::vector<std::string> Names;
        for (const auto& Fate : FPlan.Columns)
            Names.push_back(Fate.Column.Name);
        FSource->LookAt(Names);
    }
    if (Settings.Destination.ForeignKeys)
        Add(CheckReferences(Destination->References(), Settings.Plan.Mode));
    Add(CheckHeader(*FSource, Table()));
    Add(CheckDates(*FSource, FPlan, Table()));
    if (Settings.Formats.CheckThousands)
        CheckThousands(*FSource, FPlan, Table());
}

void TJobRun::Add(std::vector<TJobFinding> More)
{
    for (auto& Finding : More) {
        Observer.Found(Finding);
        FFindings.push_back(std::move(Finding));
    }
}

void TJobRun::SetUp()
{
    auto& Component = FSource->Component();
    Component.SetDataSet(&Table());
    TakePlan(Component, FPlan, Settings.Plan.Mode);
    Component.TitleStatus = FSource->Title();
    Component.Statistic.UpdateStep = RefreshEvery;
    Component.SetObserver(this);
}

// The run.

const TJobOutcome& TJobRun::Execute()
{
    Outcome.Ran = true;
    Outcome.DryRun = Settings.Run.DryRun;
    try {
        LegacyTexts = LegacyTextCount();
        Destination->Begin();
        FSource->Component().Execute();
    }
    catch (const Exception& Error) {
        Outcome.Failure = ErrorOf(Error, false);
    }
    Settle();
    return Outcome;
}

bool TJobRun::KeepsRunning()
{
    return Observer.KeepsRunning();
}

void TJobRun::Emptied(std::int64_t Count)
{
    Outcome.Emptied = static_cast<int>(Count);
}

void TJobRun::RecordDone(TKvIFate Fate)
{
    CountRecord(Fate);
    NoteLegacyText();
    try {
        Destination->RecordDone(MayEndBatch());
    }
    catch (const Exception& Error) {                // of the batch that ends with it
        Ending = ErrorOf(Error, true);
        throw;
    }
}

/// The error that ends the run is told with its outcome.
bool TJobRun::RecordFailed(const Exception& Error)
{
    CountRecord(rfFailed);
    auto Told = ErrorOf(Error, true);
    const bool HasEnded = FSource->Component().Statistic.Result == irFailed;
    bool GoesOn = !HasEnded && Observer.RecordFailed(Told);
    if (GoesOn && IsPastLimit(ExpectedRecords())) {
        Outcome.Stopped = true;
        GoesOn = false;
    }
    if (GoesOn)
        Destination->RecordDone(MayEndBatch());
    else
        Ending = std::move(Told);
    return GoesOn;
}

void TJobRun::CountRecord(TKvIFate Fate)
{
    auto& Figures = Outcome.Figures;
    switch (Fate) {
    case rfAdded:     ++Figures.Added; break;
    case rfUpdated:   ++Figures.Updated; break;
    case rfDeleted:   ++Figures.Deleted; break;
    case rfRefused:   ++Figures.Refused; break;
    case rfNotFound:  ++Figures.NotFound; break;
    case rfFailed:    ++Figures.Failed; break;
    case rfBrokenOff: return;                       // cancelling is no fault of it: it counts as not read
    }
    if (++Figures.Read % ProgressEvery == 0)
        Observer.Progress(Figures);
}

/// A share is that of `Records`.
bool TJobRun::IsPastLimit(std::int64_t Records) const
{
    const auto& Run = Settings.Run;
    const auto Failed = Outcome.Figures.Failed;
    return (Run.StopAfter && Failed > *Run.StopAfter) ||
           (Run.StopShare && Failed > *Run.StopShare * static_cast<double>(Records));
}

/// As many as may come: those before the first that is imported may be among them.
std::int64_t TJobRun::ExpectedRecords() const
{
    const auto& Component = FSource->Component();
    return std::max<std::int64_t>(Outcome.Figures.Read,
                                  std::int64_t{Component.Statistic.TotalCount} + Component.RowFirst - 1);
}

/// A copy keeps nothing for good as long as the table would be empty.
bool TJobRun::MayEndBatch() const
{
    return Settings.Plan.Mode != imCopy || Outcome.Figures.Added > 0;
}

/// The rows that were looked at are told before the run. Kinds that are older than UTF-8 hold nothing else.
void TJobRun::NoteLegacyText()
{
    const auto Texts = LegacyTextCount();
    if (Texts == LegacyTexts)
        return;
    LegacyTexts = Texts;
    if (!LegacyText)
        LegacyText = {.Kind = jfLegacyText,
                      .Name = FSource->Title(),
                      .Value = LegacyCodePage(),
                      .Was = OemCodePage(),
                      .Place = FSource->Component().SourcePosition().Text()};
}

TJobError TJobRun::ErrorOf(const Exception& Error, bool InRecord) const
{
    const auto& Component = FSource->Component();
    TJobError Result{
        .Source = FSource->Title(), .Message = ToDisplay(Error.FullMessage()), .Facts = Error.Facts};
    if (InRecord)
        Result.Position = Component.SourcePosition();
    Result.TellsPlace = !InRecord || !Error.Facts.Place.empty(); // as the errors of table files do
    return Result;
}

// Afterwards: one place that decides what was kept.

void TJobRun::Settle()
{
    const auto& Component = FSource->Component();
    const auto Result = Component.Statistic.Result;
    if (Result == irFailed && !Outcome.Failure)
        Outcome.Failure = Ending ? Ending : ErrorOf(Component.Error(), false);
    if (Result == irCanceled || (Result != irExecuted && !Observer.KeepsRunning()))
        Outcome.Result = joCancelled;
    else if (Outcome.Failure)
        Outcome.Result = joFailed;
    else
        Outcome.Result = Outcome.Figures.Failed > 0 ? joRecordErrors : joDone;
    Outcome.StoredNone =
        Settings.Plan.Mode == imCopy && Outcome.Figures.Read > 0 && Outcome.Figures.Added == 0;
    if (Outcome.StoredNone && Outcome.Result != joCancelled)
        Outcome.Result = joFailed;
    if (Outcome.Result == joRecordErrors && IsPastLimit(Outcome.Figures.Read)) {
        Outcome.Stopped = true;
        Outcome.Result = joFailed;
    }
    EndTransaction();
    if (Outcome.Result == joCancelled)
        Outcome.Failure.reset();                    // giving up a wait for a lock looks like a failure
    Outcome.Remarks = FSource->Remarks();
    const auto IsTold = [](const TJobFinding& Each) {
        return Each.Kind == jfLegacyText || Each.Kind == jfForeignText;
    };
    if (LegacyText && FSource->Kind().TableType == teText && std::ranges::none_of(FFindings, IsTold))
        Outcome.Remarks.push_back(*LegacyText);
    for (const auto& Remark : Outcome.Remarks)
        Observer.Found(Remark);
    Observer.Progress(Outcome.Figures);
}

void TJobRun::EndTransaction()
{
    const bool IsGood = Outcome.Result == joDone || Outcome.Result == joRecordErrors;
    const bool Keeps = IsGood && !Settings.Run.DryRun;
    try {
        if (IsGood && !Keeps)                       // a dry run fails as the run would
            Destination->CheckCommit();
        Keeps ? Destination->Commit() : Destination->Rollback();
        Outcome.Complete = Keeps;
    }
    catch (const Exception& Error) {
        if (!Outcome.Failure)
            Outcome.Failure = ErrorOf(Error, false);
        Outcome.Result = Observer.KeepsRunning() ? joFailed : joCancelled;
        Destination->Rollback();
    }
    Outcome.KeptRecords = Destination->Committed();
}

std::string TJobError::Text() const
{
    return TellsPlace ? Message : Source + ", " + Position.Text() + ": " + Message;
}

} // namespace kv
