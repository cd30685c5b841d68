#include "KvCommands.h"

#include <filesystem>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "KvDisplayText.h"
#include "KvImportOptions.h"
#include "KvJobFile.h"
#include "KvJobFormats.h"
#include "KvJobRun.h"
#include "KvPlanText.h"
#include "KvRefusal.h"
#include "KvSpecificationReport.h"
#include "KvSpooledFile.h"
#include "KvTerminalText.h"

namespace kv {

namespace {

constexpr char ExtraHelp[] =
    "Examples:\n"
    "  kvimport save orders.kvi orders.csv --to shop.db --table orders --mode append-update\n"
    "      Columns go to the fields of that table by name; nothing is imported.\n"
    "  kvimport save orders.kvi orders.csv --map ID=Nr --map CITY=Field3\n"
    "  kvimport run orders.kvi --to shop.db --table orders\n"
    "\n"
    "A file that is there is brought up to date; what else it holds stays.";

struct TSaveOptions
{
    std::string FileName, Name;
    TImportOptions Import;
};

void AddOptions(CLI::App& Command, TSaveOptions& Options)
{
    auto& Import = Options.Import;
    Command.footer(ExtraHelp);
    Command.add_option("SPECIFICATION", Options.FileName, "File to save to, usually with the extension .kvi")
        ->required()
        ->type_name("");
    AddSourceFile(Command, Import.Source, "File to import, as the specification shall name it");
    Command.add_option("--name", Options.Name, "Name of the specification (default: that of its file)")
        ->type_name("TEXT");
    Command.option_defaults()->group("Destination");
    Command
        .add_option("--to", Import.Job.Destination.Url,
                    "SQLite database whose fields are meant, and into which kvimport run imports unless told "
                    "otherwise; saving "
                    "changes nothing in it")
        ->type_name("FILE");
    Command.add_option("--table", Import.Job.Destination.Table, "Its table")->type_name("NAME");
    AddPlanOptions(Command, Import);
}

void CheckOptions(const TSaveOptions& Options)
{
    const auto& Job = Options.Import.Job;
    if (Job.Source.FileName == "-" || IsReadOnce(Job.Source.FileName))
        throw EUsageError("a specification names a file that can be read again, which " +
                          Job.Source.FileName + " is not");
    if (!Job.Destination.Url.empty())
        return;
    if (Job.Plan.Lines.empty())
        throw EUsageError(
            "--to and --table are missing: they say which fields there are; without them --map must "
            "say it");
    if (NeedsKeys(Job.Plan.Mode) && Job.Plan.Keys.empty())
        throw EUsageError("--keys is missing: --mode " + NameOfMode(Job.Plan.Mode) +
                          " finds records by keys");
}

/// What is odd about the column or its way, in a line; empty when nothing is.
std::string RemarkLine(const TJobColumnFate& Fate, const TJobSource& Source)
{
    const auto Remark = RemarkOn(Fate, Source);
    if (Remark.empty())
        return {};
    const auto Name = ToDisplay(Fate.Column.Name), Title = ToDisplay(Fate.Column.Title);
    const auto Column = Name + (Title.empty() || Title == Name ? "" : " " + Title);
    return Column + (Fate.Field.empty() ? "" : " for " + Fate.Field) + ": " + Remark;
}

/// Gives what is to be said of the source and of its columns.
std::vector<std::string> SavePlan(const TSaveOptions& Options, TJobSource& Source, const TJobPlan& Plan,
                                  const std::vector<TJobFinding>& Findings)
{
    SaveJob(Options.FileName, Options.Name, Source, Plan, Options.Import.Job);
    auto Remarks = FindingTexts(Findings);
    for (const auto& Fate : Plan.Columns)
        Remarks.push_back(RemarkLine(Fate, Source));
    return Remarks;
}

/// Without a look at a destination.
std::vector<std::string> SaveAlone(const TSaveOptions& Options)
{
    const auto& Job = Options.Import.Job;
    UseFormats(Job.Formats);
    const auto Source = OpenSource(nullptr, Job, [] { return true; });
    const auto Plan = MakePlanAlone(*Source, Job.Plan);
    TakePlan(Source->Component(), Plan, Job.Plan.Mode);
    return SavePlan(Options, *Source, Plan, Source->Findings());
}

/// With fields and keys as an import into the table would have them.
std::vector<std::string> SaveForTable(const TSaveOptions& Options)
{
    TJobObserver Observer;
    TJobRun Run(Options.Import.Job, Observer);
    Run.Prepare();
    return SavePlan(Options, Run.Source(), Run.Plan(), Run.Findings());
}

void Save(TSaveOptions& Options)
{
    CheckImportOptions(Options.Import);
    CheckJobFile(Options.FileName);
    CheckOptions(Options);
    if (Options.Name.empty())
        Options.Name = std::filesystem::path(Options.FileName).stem().string();
    const auto Remarks =
        Options.Import.Job.Destination.Url.empty() ? SaveAlone(Options) : SaveForTable(Options);
    PrintSpecification(std::cout, TJobFile(Options.FileName));
    for (const auto& Remark : Remarks)
        if (!Remark.empty())
            std::cout << "(" << VisibleText(Remark) << ")\n";
    std::cout.flush();
}

} // namespace

void AddSaveCommand(CLI::App& Program, TExitStatus& Status)
{
    const auto Options = std::make_shared<TSaveOptions>();
    auto* const Command =
        Program.add_subcommand("save", "Save the options of an import as a specification file");
    AddOptions(*Command, *Options);
    Command->callback([Options, &Status] {
        WordRefusals(Options->Import.Source, [&Options] { Save(*Options); });
        Status = esDone;
    });
}

} // namespace kv
