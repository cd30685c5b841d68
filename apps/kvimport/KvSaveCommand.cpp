#include "KvSaveCommand.h"

#include <algorithm>
#include <filesystem>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "KvConsoleInterface.h"
#include "KvDisplayText.h"
#include "KvImportOptions.h"
#include "KvImportReport.h"
#include "KvImportRun.h"
#include "KvIniFile.h"
#include "KvOptionText.h"
#include "KvSourceKinds.h"
#include "KvSpecification.h"
#include "KvSpecificationReport.h"
#include "KvSpooledFile.h"
#include "KvTerminalText.h"
#include "KvText.h"
#include "Kvibase.h"

namespace kv {

namespace {

constexpr char ExtraHelp[] =
    "Examples:\n"
    "  kvimport save orders.kvi orders.csv --to shop.db --table orders --mode append-update\n"
    "      Columns go to the fields of that table by name; nothing is imported.\n"
    "  kvimport save orders.kvi orders.csv --first-row 2 --map ID=Field1 --map CITY=Field3\n"
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
    Command.add_option("--to", Import.Destination.FileName, "SQLite database whose fields are meant; it is not changed")
        ->type_name("FILE");
    Command.add_option("--table", Import.Destination.Table, "Its table")->type_name("NAME");
    AddPlanOptions(Command, Import);
}

void CheckOptions(const TSaveOptions& Options)
{
    const auto& Import = Options.Import;
    if (Import.Source.FileName == "-" || IsReadOnce(Import.Source.FileName))
        throw EUsageError("a specification names a file that can be read again, which " + Import.Source.FileName +
                          " is not");
    if (!Import.Destination.FileName.empty())
        return;
    if (Import.Map.empty())
        throw EUsageError("--to and --table are missing: they say which fields there are; without them --map must "
                          "say it");
    if (NeedsKeys(Import.Mode) && Import.Keys.empty())
        throw EUsageError("--keys is missing: --mode " + NameOfMode(Import.Mode) + " finds records by keys");
}

/// What is no specification is not made one: the names may have changed places.
void CheckTarget(const std::string& FileName)
{
    const TIniFile File(FileName, ioOpenOrCreate);
    if (!File.Text().empty() && !File.HasSection("Common"))
        throw Exception(FileName + " is there and is no import specification; it is left as it is");
}

/// What is odd about the column or its way, in a line; empty when nothing is.
std::string RemarkOn(const TColumnFate& Fate)
{
    if (Fate.Remark.empty())
        return {};
    const auto Source = ToDisplay(Fate.Column.Source);
    const bool HasOtherName = !Fate.Column.Name.empty() && Fate.Column.Name != Source;
    const auto Column = Source + (HasOtherName ? " " + Fate.Column.Name : "");
    return Column + (Fate.Field.empty() ? "" : " for " + Fate.Field) + ": " + Fate.Remark;
}

/// Sets up a component without looking at a destination. Adds remarks.
void SetUpAlone(TSource& Source, const TImportOptions& Options, std::vector<std::string>& Remarks)
{
    auto& Component = Source.Component();
    auto& Lines = Component.Mappings();
    for (const auto& Line : Options.Map) {
        const auto Pair = SplitMapPair(Line);
        auto [Column, Remark] = Source.ColumnNamed(Pair.Column);
        Lines.Add(FromDisplay(Pair.Field) + '=' + Column.Source);
        Remarks.push_back(RemarkOn({.Column = Column, .Field = Pair.Field, .Remark = std::move(Remark)}));
    }
    for (const auto& Key : Options.Keys)
        if (Lines.IndexOfName(FromDisplay(Key)) < 0)
            throw Exception("--keys: the field '" + Key + "' gets no column, so no record can be found by it");
    Component.DatasetKeys = FromDisplay(JoinNames(Options.Keys, ";"));
    Component.Mode = Options.Mode;
    SetFormats(Options.Formats, Component.DataFormats);
}

// Both give what is to be said of the source and of its columns; some of it may be empty.

std::vector<std::string> SaveAlone(const TSaveOptions& Options)
{
    const auto Source = MakeSource(Options.Import.Source);
    auto Remarks = Source->Findings();
    SetUpAlone(*Source, Options.Import, Remarks);
    Source->Component().SaveSpecification(FromDisplay(Options.Name), Options.FileName, false);
    return Remarks;
}

/// With fields and keys as an import into the table would have them.
std::vector<std::string> SaveForTable(const TSaveOptions& Options)
{
    TConsoleInterface Console(csQuiet);
    TImportReport Report(Options.Import);
    TImportRun Run(Options.Import, Console, Report);
    Run.Prepare();
    Run.Component().SaveSpecification(FromDisplay(Options.Name), Options.FileName, false);
    auto Remarks = Report.Findings;
    for (const auto& Fate : Report.Columns.Columns)
        Remarks.push_back(RemarkOn(Fate));
    return Remarks;
}

/// Options that have no place in the file.
std::vector<std::string> NotKept(const TFormatOptions& Formats)
{
    std::vector<std::string> Result;
    const auto Add = [&Result](const char* Option, const std::string& Value) {
        if (!Value.empty())
            Result.push_back(std::string(Option) + " '" + Value + "'");
    };
    Add("--boolean-true", Formats.BooleanTrue.value_or(""));
    Add("--boolean-false", Formats.BooleanFalse.value_or(""));
    Add("--code-page", Formats.CodePage);
    Add("--oem-code-page", Formats.OemCodePage);
    Add("--legacy-code-page", Formats.LegacyCodePage);
    return Result;
}

void Save(TSaveOptions& Options)
{
    UseFormats(Options.Import.Formats);
    CheckImportOptions(Options.Import);
    CheckTarget(Options.FileName);
    CheckOptions(Options);
    if (Options.Name.empty())
        Options.Name = std::filesystem::path(Options.FileName).stem().string();
    const auto Remarks = Options.Import.Destination.FileName.empty() ? SaveAlone(Options) : SaveForTable(Options);
    PrintSpecification(std::cout, TSpecification(Options.FileName));
    for (const auto& Remark : Remarks)
        if (!Remark.empty())
            std::cout << "(" << VisibleText(Remark) << ")\n";
    if (const auto Rest = NotKept(Options.Import.Formats); !Rest.empty())
        std::cout << "Such files do not hold these; give them to kvimport run: " << VisibleText(JoinNames(Rest, " "))
                  << '\n';
    std::cout.flush();
}

} // namespace

void AddSaveCommand(CLI::App& Program, TExitStatus& Status)
{
    const auto Options = std::make_shared<TSaveOptions>();
    auto* const Command = Program.add_subcommand("save", "Save the options of an import as a specification file");
    AddOptions(*Command, *Options);
    Command->callback([Options, &Status] {
        Save(*Options);
        Status = esDone;
    });
}

} // namespace kv
