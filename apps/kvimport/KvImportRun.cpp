#include "KvImportRun.h"

#include <algorithm>
#include <utility>

#include "KvCancelSignals.h"
#include "KvColumnMap.h"
#include "KvDisplayText.h"
#include "KvExitStatus.h"
#include "KvOptionText.h"
#include "KvSeparatorCheck.h"
#include "KvSourceKinds.h"
#include "KvTerminalText.h"
#include "Kvibase.h"

namespace kv {

namespace {

constexpr int RefreshEvery = 64;                    // records; a refresh that draws nothing costs next to nothing

} // namespace

TImportRun::TImportRun(const TImportOptions& Given, TConsoleInterface& Terminal, TImportReport& Target)
    : Options(Given), Console(Terminal), Report(Target)
{
}

TImportRun::~TImportRun() = default;

void TImportRun::Prepare()
{
    Report.SourceName = Options.Source.FileName;
    Source = MakeSource(Options.Source);
    Report.SourceName = Source->DisplayName();
    Report.Findings = Source->Findings();
    Destination = std::make_unique<TDestination>(Options.Destination);
    Report.Columns = MapColumns();
    LookForHeader();
    SetUp(Source->Component());
    SetKeys();
    if (const auto& Formats = Source->Component().DataFormats; !Options.Formats.ThousandSeparator)
        CheckThousandSeparators(*Source, Report.Columns, Destination->Table(), Formats.ThousandSeparator,
                                Formats.DecimalSeparator); // what nobody has asked for must fit
}

TColumnMap TImportRun::MapColumns()
{
    if (Source->MapsItself())
        return {};
    if (!Options.Map.empty())
        return MapAsGiven(Options.Map, *Source, Destination->Table());
    const auto Columns = Source->Columns();
    if (Options.ByPosition)
        return MapByPosition(Columns, Destination->Table());
    if (Columns.empty())
        throw Exception(Source->DisplayName() + " has no header " + std::string(Source->PlaceWord()) + " to find the columns by name");
    return MapByName(Columns, Destination->Table());
}

/// Imported as a record the header would be an error, or worse, none.
void TImportRun::LookForHeader()
{
    if (Source->HasNames())
        return;
    const auto First = Source->FirstRows(1);
    if (!First.Rows.empty() && LooksLikeHeader(First.Rows.front(), Destination->Table()))
        Report.Findings.push_back(std::string(Source->PlaceWord()) + " " + First.Places.front() + " looks like a header; --first-row " +
                                  std::to_string(std::stoi(First.Places.front()) + 1) + " skips it");
}

/// The engine wants the names without blanks and as mapped; a record is never looked for by fewer keys
/// than were asked for.
void TImportRun::SetKeys()
{
    if (!NeedsKeys(Options.Mode))
        return;
    Report.Keys = Options.Keys.empty() ? Destination->PrimaryKey() : Options.Keys;
    if (Report.Keys.empty())
        throw Exception("--keys is missing: --mode " + NameOfMode(Options.Mode) + " finds records by keys, and the table has no primary key");
    const auto List = Source->MapsItself() ? FromDisplay(JoinNames(Report.Keys, ";"))
                                           : KeyList(Report.Keys, Report.Columns, Destination->Table());
    Source->Component().DatasetKeys = List;
    Report.Keys = ReadNames(ToDisplay(List));
}

void TImportRun::SetUp(TKvImportBaseComponent& Component)
{
    Component.SetDataSet(&Destination->Table());
    for (const auto& Line : Report.Columns.Lines)
        Component.Mappings().Add(Line);
    Component.Mode = Options.Mode;
    SetFormats(Options.Formats, Component.DataFormats);
    Component.TitleStatus = Source->DisplayName();
    Component.Statistic.UpdateStep = RefreshEvery;
    Component.OnErrorEvent = [this](auto&, const Exception& Error, bool& Abort) { RecordFailed(Error, Abort); };
    Component.OnBeforeUpdate = [this](auto&) { Stored = true; };
    Component.OnAfterRecordEvent = [this](auto&, bool&) { RecordDone(); };
}

void TImportRun::RecordFailed(const Exception& Error, bool& Abort)
{
    ++Failed;
    FailedAlready = true;
    Abort = Options.AbortOnError;
    if (Abort || Report.ErrorsMet++ >= Options.MaxErrors) // the error that ends the run is told with its outcome
        return;
    const auto Place = Source->Component().RecordPlace();
    const auto Message = Source->Explain(ToDisplay(Error.Message));
    const bool TellsPlace = Message.starts_with("File \"" + Source->DisplayName() + "\", " + Place); // as a table's does
    Report.Errors.push_back({.Place = Place, .Message = Error.Message});
    Console.PrintLine(TellsPlace ? Message : Source->DisplayName() + ", " + Place + ": " + Message);
}

void TImportRun::RecordDone()
{
    if (Source->Component().Statistic.LastAction == iaUnknown && !FailedAlready)
        ++(Stored ? NotFound : Refused);
    Stored = FailedAlready = false;
    Destination->RecordDone();
}

void TImportRun::Execute()
{
    Report.Ran = true;
    Console.ShowsMessages = false;                  // RecordFailed tells them, with the place
    try {
        if (Options.Mode == imCopy)
            Report.Emptied = Destination->Table().RecordCount();
        Destination->Begin();
        Source->Component().Execute();
    }
    catch (const Exception& Error) {
        Report.Failure = ToDisplay(Error.Message);
    }
    Console.ShowsMessages = true;
    Settle();
}

void TImportRun::Settle()
{
    CountFigures();
    const auto Result = Source->Component().Statistic.Result;
    if (Result == irFailed)
        Report.Failure = FailureText();
    if (Result == irCanceled || (TCancelSignals::Requested() && Result != irExecuted))
        Report.Status = esCancelled;
    else if (!Report.Failure.empty())
        Report.Status = esFailed;
    else
        Report.Status = Failed > 0 ? esRecordErrors : esDone;
    SettleTransaction();
    if (Report.Status == esCancelled)
        Report.Failure.clear();                     // giving up a wait for a lock looks like a failure
    Report.Warnings = Source->Warnings();
}

void TImportRun::CountFigures()
{
    const auto& Counted = Source->Component().Statistic;
    auto& Figures = Report.Figures;
    Figures = {.Read = Counted.TotalImported,
               .Added = Counted.TotalAdded,
               .Updated = Counted.TotalUpdated,
               .Deleted = Options.Mode == imCopy ? 0 : Counted.TotalDeleted, // there it counts what was removed before
               .Refused = Refused,
               .Failed = Failed,
               .NotFound = NotFound};
    // The record at which a run broke off was read, and came to nothing else. Cancelling is no fault of it.
    if (Counted.Result != irFailed)
        return;
    const int BrokenOff = Figures.Read - Figures.Added - Figures.Updated - Figures.Deleted - Refused - Failed - NotFound;
    if (TCancelSignals::Requested())
        Figures.Read -= BrokenOff;
    else
        Figures.Failed += BrokenOff;
}

/// With the place of the record at which the run broke off.
std::string TImportRun::FailureText() const
{
    const auto& Component = Source->Component();
    const auto Message = Source->Explain(ToDisplay(Component.ErrorMessage()));
    const bool TellsPlace = Message.find(Source->DisplayName()) != Message.npos || Component.Statistic.TotalImported == 0;
    return TellsPlace ? Message : Source->DisplayName() + ", " + Component.RecordPlace() + ": " + Message;
}

void TImportRun::SettleTransaction()
{
    const bool Done = Report.Status == esDone || Report.Status == esRecordErrors;
    try {
        Report.Transaction = Done ? Destination->Commit() : Destination->Rollback();
        return;
    }
    catch (const Exception& Error) {
        if (Report.Failure.empty())
            Report.Failure = ToDisplay(Error.Message);
    }
    Report.Status = TCancelSignals::Requested() ? esCancelled : esFailed;
    Report.Transaction = Destination->Rollback();
}

} // namespace kv
