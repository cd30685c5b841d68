#include "KvCommandLine.h"

#include <algorithm>
#include <exception>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "KvCommands.h"
#include "KvDisplayText.h"
#include "KvExitStatus.h"
#include "KvHelpFormatter.h"
#include "KvOptionText.h"
#include "KvTerminalText.h"

#ifndef KV_VERSION
#define KV_VERSION "unknown"
#endif

namespace kv {

namespace {

void SetUp(CLI::App& Program)
{
    Program.name("kvimport");
    Program.formatter(std::make_shared<THelpFormatter>());
    Program.set_version_flag("--version", "kvimport " KV_VERSION);
    Program.failure_message(CLI::FailureMessage::simple);
    Program.footer("Examples:\n"
                   "  kvimport preview orders.csv\n"
                   "  kvimport import orders.csv --to shop.db --table orders\n"
                   "\n"
                   "kvimport COMMAND --help tells more.");
}

int Explain(TExitStatus Status, const std::string& Message)
{
    std::cerr << "kvimport: " << VisibleText(ToDisplay(Message)) << '\n';
    if (Status == esUsage)
        std::cerr << "Run with --help for more information.\n";
    return Status;
}

/// The parser would only say that a command is missing, whatever stands in its place.
void CheckCommand(const CLI::App& Program, int ArgumentCount, const char* const* Arguments)
{
    std::vector<std::string> Names;
    for (const auto* const Command : Program.get_subcommands({}))
        Names.push_back(Command->get_name());
    if (ArgumentCount < 2)
        throw EUsageError("a command is missing; there are " + JoinNames(Names));
    const std::string Given = Arguments[1];
    if (!Given.starts_with('-') && std::ranges::count(Names, Given) == 0)
        throw EUsageError("'" + Given + "' is no command; there are " + JoinNames(Names));
}

/// `Status`, unless what was printed has not arrived.
int WithOutput(TExitStatus Status)
{
    std::cout.flush();
    if (std::cout)
        return Status;
    return Explain(esFailed, "standard output cannot be written" +
                                 std::string(Status == esDone ? "; the command itself was done" : ""));
}

/// Help and version are no errors, though they arrive as exceptions.
int Leave(const CLI::App& Program, const CLI::ParseError& Error)
{
    if (Error.get_exit_code() == 0) {
        Program.exit(Error);
        return WithOutput(esDone);
    }
    return Explain(esUsage, Error.what());
}

} // namespace

int RunCommandLine(int ArgumentCount, const char* const* Arguments)
{
    CLI::App Program("Imports files into the tables of a database.");
    SetUp(Program);
    auto Status = esDone;
    AddImportCommand(Program, Status);
    AddPreviewCommand(Program, Status);
    AddSheetsCommand(Program, Status);
    AddTablesCommand(Program, Status);
    AddFormatsCommand(Program, Status);
    AddSaveCommand(Program, Status);
    AddShowCommand(Program, Status);
    AddRunCommand(Program, Status);
    try {
        CheckCommand(Program, ArgumentCount, Arguments);
        Program.parse(ArgumentCount, Arguments);
        return WithOutput(Status);
    }
    catch (const CLI::ParseError& Error) {
        return Leave(Program, Error);
    }
    catch (const EUsageError& Error) {
        return Explain(esUsage, Error.Message);
    }
    catch (const Exception& Error) {
        return Explain(esFailed, Error.FullMessage());
    }
    catch (const std::exception& Error) {
        return Explain(esFailed, Error.what());
    }
}

} // namespace kv
