#include "KvCommands.h"

#include <memory>
#include <regex>
#include <string>

#include <CLI/CLI.hpp>

#include "KvFormatOptions.h"
#include "KvImportOptions.h"

namespace kv {

namespace {

constexpr char ChangesGroup[] = "Instead of what the file says";
constexpr char ExtraHelp[] =
    "Examples:\n"
    "  kvimport run orders.kvi --to shop.db --table orders\n"
    "  kvimport run orders.kvi --to shop.db --table orders --source march.csv --mode append-update\n"
    "      The same layout and mappings, another file and mode.\n"
    "\n"
    "Options win over what the file says; without --to and --table records go where it was saved for. A "
    "relative\n"
    "name is one from the folder of the file. Columns that were found by name when the import was saved\n"
    "are found by name again, wherever they stand now; a source that lacks one of them is refused before\n"
    "its first record.\n"
    "\n"
    "Exit status: 0 done, 1 done but some records were not stored, 2 wrong usage, 3 failed, 130 cancelled.";

/// What options have by default elsewhere is what the file says here.
void LeaveOutDefaults(CLI::App& Command)
{
    static const std::regex Default(" \\(default[^)]*\\)");
    for (auto* const Option : Command.get_options())
        if (Option->get_group() == ChangesGroup)
            Option->description(std::regex_replace(Option->get_description(), Default, ""));
}

void AddOptions(CLI::App& Command, TImportOptions& Import)
{
    Command.footer(ExtraHelp);
    Command.add_option("FILE", Import.Specification, "Import specification, a .kvi file")
        ->required()
        ->type_name("");
    Command.add_option("--source", Import.Source.FileName, "Import this file instead; - is standard input")
        ->type_name("FILE");
    AddSpoolOption(Command, Import.Source);
    Command.option_defaults()->group("Destination");
    AddDestinationOptions(Command, Import.Job);
    Command.option_defaults()->group(ChangesGroup);
    AddModeOptions(Command, Import, [&Import](TImportMode Mode) { Import.Mode = Mode; });
    AddRowOptions(Command, Import.Source);
    AddPatience(Command, Import.Source);
    AddFormatOptions(Command, Import.Job.Formats);
    LeaveOutDefaults(Command);
    Command.option_defaults()->group("What files of other programs do not say");
    AddTruthOptions(Command, Import.Job.Formats);
    AddCodePageOptions(Command, Import.Job.Formats);
    Command.option_defaults()->group("The run");
    AddRunOptions(Command, Import);
}

} // namespace

void AddRunCommand(CLI::App& Program, TExitStatus& Status)
{
    const auto Options = std::make_shared<TImportOptions>();
    auto* const Command = Program.add_subcommand("run", "Import as a specification file has it");
    AddOptions(*Command, *Options);
    Command->callback([Options, &Status] { Status = RunImport(*Options); });
}

} // namespace kv
