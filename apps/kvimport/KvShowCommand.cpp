#include "KvCommands.h"

#include <iostream>
#include <memory>
#include <string>

#include <CLI/CLI.hpp>

#include "KvFormatOptions.h"
#include "KvJobFile.h"
#include "KvJobFormats.h"
#include "KvRefusal.h"
#include "KvSpecificationReport.h"

namespace kv {

namespace {

struct TShowOptions
{
    std::string FileName;
    bool Json = false;
    TJobFormats Formats;                         ///< Only the code pages.
};

void Show(TShowOptions& Options)
{
    const TJobFile Saved(Options.FileName);
    Saved.TakeCodePages(Options.Formats);
    UseCodePages(Options.Formats);
    if (Options.Json)
        PrintSpecificationJson(std::cout, Saved);
    else
        PrintSpecification(std::cout, Saved);
    std::cout.flush();
}

} // namespace

void AddShowCommand(CLI::App& Program, TExitStatus& Status)
{
    const auto Options = std::make_shared<TShowOptions>();
    auto* const Command = Program.add_subcommand("show", "Show what a specification file says");
    Command->add_option("FILE", Options->FileName, "Import specification, a .kvi file")
        ->required()
        ->type_name("");
    Command->add_flag("--json", Options->Json, "Print it as one JSON object");
    AddCodePageOptions(*Command, Options->Formats);
    Command->callback([Options, &Status] {
        WordRefusals({}, [&Options] { Show(*Options); });
        Status = esDone;
    });
}

} // namespace kv
