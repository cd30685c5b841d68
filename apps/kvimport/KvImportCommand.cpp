#include "KvImportCommand.h"

#include <chrono>
#include <csignal>
#include <iostream>
#include <memory>

#include <CLI/CLI.hpp>

#include "KvCancelSignals.h"
#include "KvConsoleInterface.h"
#include "KvDisplayText.h"
#include "KvException.h"
#include "KvImportOptions.h"
#include "KvImportReport.h"
#include "KvImportRun.h"
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

class TImportCommand
{
public:
    explicit TImportCommand(TImportOptions& Given)
        : Options(Given),
          Installed(Options.Quiet ? csQuiet : ConsoleStyleOf(TConsoleInterface::StandardError)),
          Console(Installed.Console()),
          Report(Options)
    {
    }

    TExitStatus Run(const std::function<void()>& Complete)
    {
        const auto Begin = std::chrono::steady_clock::now();
        Import(Complete);
        Report.Seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - Begin).count();
        Tell();
        return Report.Status;
    }

private:
    bool TellsPeople() const { return !Options.Quiet && !Options.Json; }

    void Import(const std::function<void()>& Complete)
    {
        try {
            Complete();
            UseFormats(Options.Formats);
            CheckImportOptions(Options);
            TImportRun Run(Options, Console, Report);
            Run.Prepare();
            if (TellsPeople())
                PrintPlan(std::cout, Report);
            std::cout.flush();
            Run.Execute();
        }
        catch (const EUsageError& Error) {
            Fail(esUsage, Error.Message);
        }
        catch (const Exception& Error) {
            Fail(esFailed, Error.Message);
        }
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
        else if (Report.Ran && !Options.Quiet)
            PrintResult(std::cout, Report);
        else if (Report.Status == esCancelled || (Report.Ran && Report.Status == esFailed))
            Console.PrintLine(OutcomeText(Report));
        std::cout.flush();
    }

    void TellErrors()
    {
        if (const int Hidden = Report.ErrorsMet - static_cast<int>(Report.Errors.size()); Hidden > 0)
            Console.PrintLine("... and " + GroupDigits(Hidden) + (Hidden == 1 ? " more error" : " more errors"));
        if (!Options.Quiet)
            for (const auto& Warning : Report.Warnings)
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
    Command->callback([Options, &Status] { Status = RunImport(*Options, [] {}); });
}

TExitStatus RunImport(TImportOptions& Options, const std::function<void()>& Complete)
{
    std::signal(SIGPIPE, SIG_IGN);                  // a reader that goes away does not break the run off
    return TImportCommand(Options).Run(Complete);
}

} // namespace kv
