#include "KvImportOptions.h"

#include <CLI/CLI.hpp>

#include "KvExitStatus.h"
#include "KvFormatOptions.h"
#include "KvJobFile.h"
#include "KvOptionCheck.h"
#include "KvOptionText.h"

namespace kv {

namespace {

constexpr char ExtraHelp[] =
    "Examples:\n"
    "  kvimport import orders.csv --to shop.db --table orders\n"
    "      Adds every record; columns go to the fields that line 1 names.\n"
    "  kvimport import orders.csv --to shop.db --table orders --mode append-update --keys ID\n"
    "      Changes the orders that are there and adds the others.\n"
    "  kvimport import book.xls --sheet 2 --to shop.db --table orders\n"
    "      A sheet of a workbook; kvimport sheets lists them.\n"
    "  kvimport import northwind.mdb --source-table Orders --to shop.db --table orders\n"
    "      A table of an Access database; kvimport tables lists them.\n"
    "  kvimport import orders.dbf --to shop.db --table orders --charset msdos --oem-code-page 850\n"
    "      A table that does not name the code page of its text; those that do need no options.\n"
    "  kvimport import old.txt --to shop.db --table orders --fixed --columns ID=1-9,CITY=10-29 --charset "
    "msdos\n"
    "      A file of fixed width from an MS-DOS program.\n"
    "  zcat orders.csv.gz | kvimport import - --to shop.db --table orders --delimiter comma --json\n"
    "      Standard input; what was done goes to standard output as one JSON object.\n"
    "\n"
    "The run is one transaction: when it fails or is cancelled nothing of it stays. Records that cannot be "
    "stored\n"
    "are reported and left out, the others are kept. With --batch every N records are kept for good.\n"
    "\n"
    "Exit status: 0 done, 1 done but some records were not stored, 2 wrong usage, 3 failed, 130 cancelled.";

constexpr char ClassicHelp[] =
    "Read as the components do by themselves. Of text: doubled qualifiers stay doubled, lines have at "
    "most 9999 characters, a byte order mark is text, fixed values keep their blanks. Of pages and data "
    "packets: tags are cut as they come, references and encodings are not resolved, cells go to the "
    "mappings in their order, a missing attribute is its own name. Of workbooks: what a sheet does not "
    "declare is not read, results of formulas are numbers or missing, only built-in date formats make "
    "dates, the 1904 date mode and code pages are not looked at, integers of worksheets have no sign. Of "
    "tables: --first-row and --last-row skip nothing, for Access they only say how many records are "
    "taken; field names of dBase have 10 characters";

void AddMappingOptions(CLI::App& Command, TImportOptions& Options)
{
    AddModeOptions(Command, Options, [&Options](TImportMode Mode) { Options.Job.Plan.Mode = Mode; });
    Command.add_option("--map", Options.Job.Plan.Lines,
                       "A field and its column by name or place, such as CITY=Ort or CITY=Field3 (may be "
                       "repeated; only these are used)")
        ->type_name("FIELD=COLUMN")
        ->allow_extra_args(false);
    Command.add_option("--set", Options.Job.Plan.Constants,
                       "A field and the text that all records get, such as NOTE=imported (may be repeated)")
        ->type_name("FIELD=TEXT")
        ->allow_extra_args(false);
    Command.add_flag("--by-position", Options.ByPosition,
                     "First column to first field, and so on, instead of by name");
}

EUsageError KeysWithoutMeaning(TImportMode Mode)
{
    return EUsageError("--keys has no meaning with --mode " + NameOfMode(Mode) +
                       "; records are found by keys with update, append-update and delete");
}

} // namespace

std::string NameOfMode(TImportMode Mode)
{
    switch (Mode) {
    case imAppend:       return "append";
    case imUpdate:       return "update";
    case imAppendUpdate: return "append-update";
    case imDelete:       return "delete";
    case imCopy:         return "copy";
    }
    return {};
}

void AddDestinationOptions(CLI::App& Command, TJobSettings& Job)
{
    auto& Destination = Job.Destination;
    Command.add_option("--to", Destination.Url, "SQLite database to import into")->type_name("FILE");
    Command.add_option("--table", Destination.Table, "Table to import into")->type_name("NAME");
    AddChecked(Command, "--batch", "N",
               "Keep every N records for good (default: one transaction for the run)",
               [&Job](const std::string& Text) { Job.Run.Batch = ReadCount(Text, 1); });
    AddChecked(Command, "--busy-timeout", "MS",
               "Milliseconds to wait for other programs' locks (default: 5000)",
               [&Destination](const std::string& Text) { Destination.BusyTimeout = ReadCount(Text, 0); });
    AddChecked(Command, "--cache-size", "KIB",
               "Page cache of the database (default: 12288 with keys, else its own)",
               [&Destination](const std::string& Text) { Destination.CacheSize = ReadCount(Text, 0); });
    Command.add_flag_callback("--no-foreign-keys", [&Destination] { Destination.ForeignKeys = false; },
                              "Do not hold what foreign keys of the database ask for");
}

void AddModeOptions(CLI::App& Command, TImportOptions& Options,
                    const std::function<void(TImportMode)>& SetMode)
{
    AddChoice(Command, "--mode",
              "What a record does to the table: append (default), update, append-update, delete, or copy, "
              "which empties the table first",
              {{"append", [SetMode] { SetMode(imAppend); }},
               {"update", [SetMode] { SetMode(imUpdate); }},
               {"append-update", [SetMode] { SetMode(imAppendUpdate); }},
               {"delete", [SetMode] { SetMode(imDelete); }},
               {"copy", [SetMode] { SetMode(imCopy); }}});
    AddChecked(Command, "--keys", "LIST",
               "Fields that tell records apart, such as 'ID' or 'ID;CITY' (default: the primary key)",
               [&Options](const std::string& Text) { Options.Job.Plan.Keys = ReadNames(Text); });
}

void AddPlanOptions(CLI::App& Command, TImportOptions& Options)
{
    Command.option_defaults()->group("Records and columns");
    AddMappingOptions(Command, Options);
    AddSourceOptions(Command, Options.Source);
    Command.add_flag("--classic", Options.Source.Classic, ClassicHelp)
        ->group("What is read");
    Command.option_defaults()->group("How values are written");
    AddFormatOptions(Command, Options.Job.Formats);
    AddTruthOptions(Command, Options.Job.Formats);
    AddCodePageOptions(Command, Options.Job.Formats);
}

void AddRunOptions(CLI::App& Command, TImportOptions& Options)
{
    Command.add_flag("--dry-run", Options.Job.Run.DryRun,
                     "Do all of it, say what came of it, and roll it back");
    Command.add_flag("--abort-on-error", Options.AbortOnError,
                     "Fail at the first record that cannot be stored");
    AddChecked(Command, "--stop-after", "N",
               "Fail, and roll back, once more than N records could not be stored",
               [&Options](const std::string& Text) { Options.Job.Run.StopAfter = ReadCount(Text, 0); });
    AddChecked(Command, "--max-errors", "N", "Errors of records to show (default: 20); all are counted",
               [&Options](const std::string& Text) { Options.MaxErrors = ReadCount(Text, 0); });
    Command.add_flag("-q,--quiet", Options.Quiet, "Print nothing but errors");
    Command.add_flag("--json", Options.Json, "Print what was done as one JSON object");
}

void AddImportOptions(CLI::App& Command, TImportOptions& Options)
{
    Command.footer(ExtraHelp);
    AddSourceFile(Command, Options.Source, "File to import; - is standard input");
    Command.option_defaults()->group("Destination");
    AddDestinationOptions(Command, Options.Job);
    Command.get_option("--to")->required();
    AddPlanOptions(Command, Options);
    Command.option_defaults()->group("The run");
    AddRunOptions(Command, Options);
}

void CheckImportOptions(TImportOptions& Options)
{
    auto& Plan = Options.Job.Plan;
    const auto& Layout = Options.Source.Layout;
    const bool HasMap = !Plan.Lines.empty();
    if (!Plan.Keys.empty() && !NeedsKeys(Plan.Mode))
        throw KeysWithoutMeaning(Plan.Mode);
    if (HasMap && Options.ByPosition)
        throw EUsageError("--map and --by-position exclude each other");
    CheckTextOptions(Options.Source, HasMap, Options.ByPosition);
    Plan.Lines.insert(Plan.Lines.end(), Layout.Columns.begin(), Layout.Columns.end());
    Plan.Mapping = Options.ByPosition ? jmByPosition : Plan.Lines.empty() ? jmByName : jmByLines;
    Options.Job.Source = Options.Source;
}

void CompleteOptions(TImportOptions& Options, const TJobFile& Saved)
{
    auto& Job = Options.Job;
    Job.Source = Options.Source;
    Job.Plan.Mode = Options.Mode.value_or(Saved.Import().Mode);
    Saved.Complete(Job);
    if (!Job.Plan.Keys.empty() && !NeedsKeys(Job.Plan.Mode))
        throw KeysWithoutMeaning(Job.Plan.Mode);
    if (Job.Destination.Url.empty())
        throw EUsageError("--to is required: " + Saved.FileName() + " names no destination");
}

} // namespace kv
