#include "KvCommands.h"

#include <chrono>
#include <csignal>
#include <iostream>
#include <memory>

#include <CLI/CLI.hpp>

#include "KvCancelSignals.h"
#include "KvConsoleInterface.h"
#include "KvDisplayText.h"
#include "KvException.h"
#include "KvFindingText.h"
#include "KvImportOptions.h"
#include "KvImportReport.h"
#include "KvJobFile.h"
#include "KvPlanText.h"
#include "KvRefusal.h"
#include "KvTerminalText.h"
#include "KvUserInterface.h"

namespace kv {

namespace {

/// The console as the user interface of all components, for the length of a command.
class TInstalledConsole
{
public:
    explicit TInstalledConsole(TConsoleStyle Style) : FConsole(Style) { SetUserInterface(&FConsole); }
    TInstalledConsole(const TInstalledConsole&) = delete;
    TInstalledConsole& operator=(const TInstalledConsole&) = delete;
    ~TInstalledConsole() { SetUserInterface(nullptr); }

    TConsoleInterface& Console() { return FConsole; }

private:
    TConsoleInterface FConsole;
};

class TImportCommand : private TJobObserver
{
public:
    explicit TImportCommand(TImportOptions& Given)
        : Options(Given),
          Installed(Options.Quiet ? csQuiet : ConsoleStyleOf(TConsoleInterface::StandardError)),
          Console(Installed.Console()),
          Report(Options)
    {
    }

    TExitStatus Run()
    {
        const auto Begin = std::chrono::steady_clock::now();
        Import();
        Report.Seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - Begin).count();
        Tell();
        return Report.Status;
    }

private:
    bool TellsPeople() const { return !Options.Quiet && !Options.Json; }

    bool KeepsRunning() override { return !TCancelSignals::Requested(); }

    /// The error that ends the run is told with its outcome.
    bool RecordFailed(const TJobError& Error) override
    {
        if (Options.AbortOnError)
            return false;
        if (Report.ErrorsMet++ < Options.MaxErrors) {
            Report.Errors.push_back(Error);
            Console.PrintLine(Error.Text());
        }
        return true;
    }

    void Import()
    {
        try {
            Report.SourceName = Options.Source.FileName;
            Options.Specification.empty() ? ImportGiven() : ImportSaved();
        }
        catch (const EJobRefused& Error) {
            Fail(StatusOfRefusal(Error.Finding), RefusalText(Error.Finding, Options.Source));
        }
        catch (const EUsageError& Error) {
            Fail(esUsage, Error.Message);
        }
        catch (const Exception& Error) {
            Fail(esFailed, Error.FullMessage());
        }
    }

    void ImportGiven()
    {
        CheckImportOptions(Options);
        TJobRun Run(Options.Job, *this);
        Execute(Run);
    }

    void ImportSaved()
    {
        TJobFile Saved(Options.Specification);
        CompleteOptions(Options, Saved);
        TJobRun Run(Saved, Options.Job, *this);
        Execute(Run);
    }

    void Execute(TJobRun& Run)
    {
        try {
            Run.Prepare();
        }
        catch (...) {
            TakePlan(Run);
            throw;
        }
        TakePlan(Run);
        if (TellsPeople())
            PrintPlan(std::cout, Report);
        std::cout.flush();
        Console.ShowsMessages = false;              // RecordFailed tells them, with the place
        Report.Outcome = Run.Execute();
        Console.ShowsMessages = true;
        if (Report.Outcome.Stopped)
            Report.Failure = GroupDigits(Report.Outcome.Figures.Failed) +
                             " records could not be stored, more than are allowed";
        else if (Report.Outcome.Failure)
            Report.Failure = Report.Outcome.Failure->Text();
        else if (Report.Outcome.StoredNone)
            Report.Failure = "none of the records could be stored: the table keeps those that it has";
        Report.Status = StatusOf(Report.Outcome.Result);
    }

    /// As far as it came.
    void TakePlan(TJobRun& Run)
    {
        if (!Run.HasSource())
            return;
        const auto& Source = Run.Source();
        Report.SourceName = Source.Title();
        Report.Findings = FindingTexts(Run.Findings());
        Report.Plan = Run.Plan();
        for (const auto& Fate : Report.Plan.Columns)
            Report.Remarks.push_back(RemarkOn(Fate, Source));
    }

    static TExitStatus StatusOf(TJobResult Result)
    {
        switch (Result) {
        case joDone:         return esDone;
        case joRecordErrors: return esRecordErrors;
        case joFailed:       return esFailed;
        case joCancelled:    break;
        }
        return esCancelled;
    }

    void Fail(TExitStatus Status, const std::string& Message)
    {
        Report.Status = TCancelSignals::Requested() ? esCancelled : Status;
        if (Report.Status != esCancelled)
            Report.Failure = ToDisplay(Message);
    }

    /// Errors and warnings go to stderr, what was done to stdout.
    void Tell()
    {
        TellErrors();
        if (Options.Json)
            PrintJson(std::cout, Report);
        else if (Report.Outcome.Ran && !Options.Quiet)
            PrintResult(std::cout, Report);
        else if (Report.Status == esCancelled || (Report.Outcome.Ran && Report.Status == esFailed))
            Console.PrintLine(OutcomeText(Report));
        std::cout.flush();
    }

    void TellErrors()
    {
        if (const int Hidden = Report.ErrorsMet - static_cast<int>(Report.Errors.size()); Hidden > 0)
            Console.PrintLine("... and " + GroupDigits(Hidden) +
                              (Hidden == 1 ? " more error" : " more errors"));
        if (!Options.Quiet)
            for (const auto& Warning : FindingTexts(Report.Outcome.Remarks))
                Console.PrintLine("Warning: " + Report.SourceName + ", " + Warning);
        if (!Report.Failure.empty())
            Console.PrintLine("kvimport: " + Report.Failure);
        if (Report.Status == esUsage)
            Console.PrintLine("Run with --help for more information.");
    }

    TImportOptions& Options;
    const TCancelSignals Signals;
    TInstalledConsole Installed;
    TConsoleInterface& Console;
    TImportReport Report;
};

} // namespace

void AddImportCommand(CLI::App& Program, TExitStatus& Status)
{
    const auto Options = std::make_shared<TImportOptions>();
    auto* const Command = Program.add_subcommand("import", "Import a file into a table of a database");
    AddImportOptions(*Command, *Options);
    Command->callback([Options, &Status] { Status = RunImport(*Options); });
}

TExitStatus RunImport(TImportOptions& Options)
{
    std::signal(SIGPIPE, SIG_IGN);                  // a reader that goes away does not break the run off
    return TImportCommand(Options).Run();
}

} // namespace kv
