// What surrounds the loop of a run: the check before it, the busy cursor, the progress dialog, the outcome.
#include "Kvibase.h"

#include <exception>
#include <optional>

#include "KvFormatSettings.h"
#include "KvText.h"
#include "KvUserInterface.h"
#include "KviActive.h"
#include "Kvistat.h"

namespace kv {

namespace {

constexpr char MsgNotSpecified[] = "Property %s wasn't specified.";
constexpr char MsgBusy[] = "%s: %s cannot be called before %s has ended";
constexpr char MsgCanceled[] = "Data importing was canceled by user.";
constexpr char MsgExecuted[] = "The data importing successfuly is finished.";
constexpr char MsgFailed[] = "Error of data import.";

/// For what tells others of a run: that they fail is no reason to fail for the run or for its caller.
template <class TAct> void Quietly(TAct Act) noexcept
{
    try {
        Act();
    }
    catch (...) {
    }
}

/// The busy cursor for the length of a run.
class TBusyCursor
{
public:
    TBusyCursor() { Show(true); }
    TBusyCursor(const TBusyCursor&) = delete;
    TBusyCursor& operator=(const TBusyCursor&) = delete;
    ~TBusyCursor() { Show(false); }

private:
    static void Show(bool Busy)
    {
        Quietly([Busy] { UserInterface().SetBusyCursor(Busy); });
    }
};

/// DataFormats as the formats of the process, if they are to be, for the length of a run.
class TRunFormats
{
public:
    explicit TRunFormats(const TKvImportBaseComponent& Import)
    {
        if (!Import.RunExtensions.Contains(rxFormatsInForce))
            return;
        Saved = FormatSettings();
        Import.DataFormats.PutInForce(FormatSettings());
    }
    TRunFormats(const TRunFormats&) = delete;
    TRunFormats& operator=(const TRunFormats&) = delete;
    ~TRunFormats()
    {
        if (Saved)
            FormatSettings() = *Saved;
    }

private:
    std::optional<TFormatSettings> Saved;
};

/// An automatic mapping never survives its run, however the run ends.
class TRunMappings
{
public:
    explicit TRunMappings(TStrings& Mappings) : Lines(Mappings), Automatic(Mappings.IsEmpty()) {}
    TRunMappings(const TRunMappings&) = delete;
    TRunMappings& operator=(const TRunMappings&) = delete;
    ~TRunMappings()
    {
        if (Automatic)
            Lines.Clear();
    }

    bool IsAutomatic() const { return Automatic; }

private:
    TStrings& Lines;
    const bool Automatic;
};

} // namespace

// One thing at a time.

TKvImportBaseComponent::TActive::TActive(TKvImportBaseComponent& Busy, TActivity Activity,
                                         std::string_view Operation)
    : Component(Busy)
{
    const auto* const Goes = Component.Activity == acRunning ? "its run" : "its look at the source";
    if (Component.Activity != acIdle)
        throw Exception(FormatText(MsgBusy, {Component.ClassName(), Operation, Goes}));
    Component.Activity = Activity;
    Component.Canceled = Component.InRecord = Component.Counting = false;
    Component.HasSource = Component.HasControls = false;
}

TKvImportBaseComponent::TActive::~TActive()
{
    Component.Activity = acIdle;
    Component.Canceled = Component.InRecord = false;
}

/// Asked for each record: messages run when the progress dialog is refreshed. What an observer has said once
/// stands: rows that a source dropped when it heard so must not look like a source without rows.
bool TKvImportBaseComponent::IsCanceled() const
{
    const bool Stops = Canceled || (Observer && !Observer->KeepsRunning());
    Canceled = Stops && Activity != acIdle;
    return Stops || ProgressCanceled();
}

bool TKvImportBaseComponent::KeepsRunning() const
{
    if (AnimatedStatus)
        UserInterface().ProcessMessages();
    return !IsCanceled();
}

// The run.

void TKvImportBaseComponent::Execute()
{
    {
        const TActive Active(*this, acRunning, "Execute");
        Statistic.Result = irUnknown;
        FError = Exception(std::string());
        if (OnBeforeExecute)
            OnBeforeExecute(*this);
        CheckRequired();
        const TBusyCursor Busy;
        ShowOutcome(Run());
    }
    if (OnAfterExecute)
        OnAfterExecute(*this);
}

void TKvImportBaseComponent::CheckRequired()
{
    std::string PropName;
    if (NotDefined(PropName))
        throw Exception(FormatText(MsgNotSpecified, {PropName}));
    if (DatasetKeys.empty() && IsKeyMode())
        throw Exception(FormatText(MsgNotSpecified, {DatasetKeys})); // the text always showed the empty value
}

std::vector<std::string> TKvImportBaseComponent::RunMappings()
{
    const TActive Active(*this, acLooking, "RunMappings");
    const TRunMappings Mapped(FMappings);
    if (Mapped.IsAutomatic())
        DetectAutoMapping();
    return {FMappings.begin(), FMappings.end()};
}

std::string TKvImportBaseComponent::Run()
{
    HasDialog = false;
    try {
        if (AnimatedStatus)
            HasDialog = CreateProgressDlg(TitleStatus, MsgImporting, "&Cancel", "Processed:", "Errors:",
                                          "Added:", "Updated:", "Deleted:",
                                          Options.Contains(soExtendedStatistic));
        const TRunFormats Formats(*this);
        const TRunMappings Mapped(FMappings);
        if (Mapped.IsAutomatic())
            DetectAutoMapping();
        Prepare();
        Statistic.Result = ProgressCanceled() || Aborted || Canceled ? irCanceled : irExecuted;
    }
    catch (Exception& Error) {
        if (InRecord)
            TellRecord(Error);
        EndByError(Error);
    }
    catch (const std::exception& Error) {
        EndByError(Exception(Error.what()));
    }
    catch (...) {                                   // handlers may throw anything
        EndByError(Exception("Unknown error"));
    }
    switch (Statistic.Result) {
    case irExecuted: return MsgExecuted;
    case irCanceled: return MsgCanceled;
    default:         return MsgFailed;
    }
}

/// What an observer has cancelled may end by an error: giving up a wait for a lock is one.
void TKvImportBaseComponent::EndByError(const Exception& Error)
{
    FError = Error;
    Statistic.Result = irFailed;
    Quietly([&] {
        const bool WasCanceled = Canceled || (Observer && !Observer->KeepsRunning());
        if (WasCanceled)
            Statistic.Result = irCanceled;
        if (InRecord && WasCanceled)
            RecordDone(rfBrokenOff);
        else if (InRecord)
            TellFailed(Error);
    });
    if (!Counting)
        Statistic.Reset();                          // the figures are still those of the run before
    if (RunExtensions.Contains(rxRestoresControls))
        Release();
}

/// What a run that is executed does at its end.
void TKvImportBaseComponent::Release()
{
    if (HasControls && FDataSet)
        Quietly([this] { FDataSet->EnableControls(); });
    if (HasSource)
        Quietly([this] { AfterImport(); });
}

/// A handler may have changed AnimatedStatus since: a dialog that was opened is closed nonetheless.
void TKvImportBaseComponent::ShowOutcome(const std::string& Outcome)
{
    const auto& S = Statistic;
    if (AnimatedStatus)
        Quietly([&] {
            UpdateProgressDlg(Outcome, 100, S.TotalErrors, S.TotalAdded, S.TotalDeleted, S.TotalUpdated);
        });
    else if (Options.Contains(soShowMessage))
        Quietly([&] { UserInterface().ShowMessage(mkInformation, Outcome); });
    if (HasDialog)
        Quietly([] { DestroyProgressDlg(); });
}

} // namespace kv
