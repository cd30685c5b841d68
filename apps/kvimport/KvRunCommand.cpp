#include "KvRunCommand.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <regex>
#include <string>
#include <system_error>

#include <CLI/CLI.hpp>

#include "KvDisplayText.h"
#include "KvImportCommand.h"
#include "KvImportOptions.h"
#include "KvOptionCheck.h"
#include "KvSpecification.h"
#include "KvText.h"
#include "Kvibase.h"

namespace kv {

namespace {

constexpr char ChangesGroup[] = "Instead of what the file says";
constexpr char ExtraHelp[] =
    "Examples:\n"
    "  kvimport run orders.kvi --to shop.db --table orders\n"
    "  kvimport run orders.kvi --to shop.db --table orders --source march.csv --mode append-update\n"
    "      The same layout and mappings, another file and mode.\n"
    "\n"
    "Options win over what the file says. A source that is not found as the file names it is looked for beside\n"
    "the file. Words for truth and code pages are no part of such files: say them where they are not the usual.\n"
    "\n"
    "Exit status: 0 done, 1 done but some records were not stored, 2 wrong usage, 3 failed, 130 cancelled.";

struct TRunOptions
{
    std::string Specification;
    std::optional<TImportMode> Mode;
    TImportOptions Import;                          ///< What the specification leaves open or options change.
};

/// What options have by default elsewhere is what the file says here.
void LeaveOutDefaults(CLI::App& Command)
{
    static const std::regex Default(" \\(default[^)]*\\)");
    for (auto* const Option : Command.get_options())
        if (Option->get_group() == ChangesGroup)
            Option->description(std::regex_replace(Option->get_description(), Default, ""));
}

void AddOptions(CLI::App& Command, TRunOptions& Options)
{
    auto& Import = Options.Import;
    Command.footer(ExtraHelp);
    Command.add_option("FILE", Options.Specification, "Import specification, a .kvi file")->required()->type_name("");
    Command.add_option("--source", Import.Source.FileName, "Import this file instead; - is standard input")
        ->type_name("FILE");
    Command.option_defaults()->group("Destination");
    AddDestinationOptions(Command, Import.Destination);
    Command.option_defaults()->group(ChangesGroup);
    AddModeOptions(Command, Import, [&Options](TImportMode Mode) { Options.Mode = Mode; });
    AddRowOptions(Command, Import.Source);
    AddFormatOptions(Command, Import.Formats);
    LeaveOutDefaults(Command);
    Command.option_defaults()->group("What the file does not say");
    AddTruthOptions(Command, Import.Formats);
    AddCodePageOptions(Command, Import.Formats);
    Command.option_defaults()->group("The run");
    AddRunOptions(Command, Import);
}

/// The source that the specification names: in the current folder, or beside the specification.
std::string FindSource(const TSpecification& Specification)
{
    const std::filesystem::path Named = Specification.Text("SourceFileName");
    if (Named.empty())
        throw EUsageError(Specification.FileName + " names no source; say --source FILE");
    const auto Beside = std::filesystem::path(Specification.FileName).parent_path() / Named;
    std::error_code Ignored;
    for (const auto& Place : {Named, Beside})
        if (std::filesystem::exists(Place, Ignored))
            return Place;
    throw Exception(Specification.FileName + " names the source " + ToDisplay(Named.string()) +
                    ", which is not there; --source FILE names another");
}

/// Lines without a field or a column map nothing.
void TakeMappings(const TStrings& Lines, TImportOptions& Options)
{
    for (int I = 0; I < Lines.Count(); ++I)
        if (!IsBlank(Lines.NameAt(I)) && !IsBlank(Lines.ValueAt(I)))
            Options.Map.push_back(ToDisplay(Lines[I]));
}

/// The specification's settings where no option was given.
void TakeSpecification(TRunOptions& Options)
{
    auto& Import = Options.Import;
    UseCodePages(Import.Formats);                   // the names in the file are in them
    const TSpecification Specification(Options.Specification);
    Import.Source.Specification = Options.Specification;
    if (Import.Source.FileName.empty())
        Import.Source.FileName = FindSource(Specification);
    Import.Mode = Options.Mode.value_or(Specification.Import->Mode);
    if (Import.Keys.empty() && NeedsKeys(Import.Mode))
        for (const auto& Key : Specification.Keys())
            Import.Keys.push_back(ToDisplay(Key));
    TakeMappings(Specification.Import->Mappings(), Import);
    TakeFormats(Specification.Import->DataFormats, Import.Formats);
}

} // namespace

void AddRunCommand(CLI::App& Program, TExitStatus& Status)
{
    const auto Options = std::make_shared<TRunOptions>();
    auto* const Command = Program.add_subcommand("run", "Import as a specification file has it");
    AddOptions(*Command, *Options);
    Command->callback([Options, &Status] {
        Status = RunImport(Options->Import, [Options] { TakeSpecification(*Options); });
    });
}

} // namespace kv
