#include "KvSourceOptions.h"

#include <CLI/CLI.hpp>

#include "KvExitStatus.h"
#include "KvKindText.h"
#include "KvOptionCheck.h"
#include "KvOptionText.h"
#include "KviSourceKinds.h"

namespace kv {

namespace {

void AddSharedOptions(CLI::App& Command, TSourceOptions& Options)
{
    Command.option_defaults()->group("What is read");
    AddRowOptions(Command, Options);
    AddChoice(
        Command, "--charset",
        "ansi or msdos: text is in the ANSI code page (default) or in the OEM code page, whatever a table "
        "file "
        "says of itself",
        {{"ansi", [&Options] { Options.MsDos = false; }}, {"msdos", [&Options] { Options.MsDos = true; }}});
}

void AddTextOptions(CLI::App& Command, TSourceOptions& Options)
{
    auto& Layout = Options.Layout;
    AddChecked(
        Command, "--delimiter", "CHAR",
        "What separates the values: tab, comma, semicolon, space, none or any character (default: what the "
        "first lines have, of comma, semicolon, tab and |)",
        [&Layout](const std::string& Text) { Layout.Delimiter = ReadCharacter(Text); });
    AddChecked(Command, "--qualifier", "CHAR",
               "What encloses a value that holds delimiters: quot (default), apos, none or any character",
               [&Layout](const std::string& Text) { Layout.Qualifier = ReadCharacter(Text); });
    AddChecked(Command, "--record-separator", "TEXT",
               "What ends a record: crlf (default, also takes CR or LF alone), cr, lf or any characters, "
               "such as '\\x1E'",
               [&Layout](const std::string& Text) { Layout.RecordSeparator = ReadRecordSeparator(Text); });
    Command.add_flag(
        "--fixed", Layout.Fixed,
        "Values stand at fixed positions, told by --columns or --map; blanks at their ends are no part of "
        "them");
    AddChecked(Command, "--columns", "LIST",
               "Fields and their bytes in a line, from 1: ID=1-9,CITY=10-29 (with --fixed)",
               [&Layout](const std::string& Text) { Layout.Columns = ReadFixedColumns(Text); });
}

void SetPart(TSourceOptions& Options, TKvISourcePartKind Kind, const std::string& Text)
{
    if (Options.PartKind != spNone && Options.PartKind != Kind)
        throw EUsageError("an option before it says what is read of another kind of source");
    Options.Part = Text;
    Options.PartKind = Kind;
}

void AddPart(CLI::App& Command, TSourceOptions& Options, TKvISourcePartKind Kind, const std::string& Name,
             const std::string& ValueName, const std::string& Help)
{
    AddChecked(Command, Name, ValueName, Help,
               [&Options, Kind](const std::string& Text) { SetPart(Options, Kind, Text); });
}

/// Adds the options of a kind as a group of their own; those that the user gives are noted.
template <class TAdd> void AddGroup(CLI::App& Command, const char* Group, TSourceOptions& Options, TAdd Add)
{
    Command.option_defaults()->group(Group);
    Add();
    for (auto* const Option : Command.get_options())
        if (Option->get_group() == Group)
            Option->each([&Options, Option, Group](const std::string&) {
                Options.Given.push_back({.Name = Option->get_name(), .Group = Group});
                Options.HasLayout = Options.HasLayout || Group == TextOptionGroup;
            });
}

} // namespace

void AddSourceFile(CLI::App& Command, TSourceOptions& Options, const std::string& FileHelp)
{
    Command.add_option("FILE", Options.FileName, FileHelp)->required()->type_name("");
    Command
        .add_option(
            "--from", Options.Kind,
            "Kind of the source, as kvimport formats lists them (default: told by what the file holds and "
            "its name)")
        ->type_name("KIND");
    AddSpoolOption(Command, Options);
}

void AddSpoolOption(CLI::App& Command, TSourceOptions& Options)
{
    AddChecked(Command, "--spool-limit", "MIB",
               "Refuse a pipe that gives more; it is kept in TMPDIR while it is read (default: 4096)",
               [&Options](const std::string& Text) {
                   Options.MaxSpool = static_cast<std::uint64_t>(ReadCount(Text, 1)) << 20;
               });
}

void AddPatience(CLI::App& Command, TSourceOptions& Options)
{
    AddChecked(Command, "--patience", "SECONDS",
               "How long to wait for the next records of the database (default: 30); a damaged one may give "
               "none",
               [&Options](const std::string& Text) { Options.Patience = ReadCount(Text, 1); });
}

void AddRowOptions(CLI::App& Command, TSourceOptions& Options)
{
    AddChecked(
        Command, "--first-row", "N",
        "First line, row or record to import, from 1 (default: the one below the header, when there is one)",
        [&Options](const std::string& Text) { Options.RowFirst = ReadCount(Text, 1); });
    AddChecked(Command, "--last-row", "N", "Last line, row or record to import (default: the last)",
               [&Options](const std::string& Text) { Options.RowLast = ReadCount(Text, 1); });
}

void AddSourceOptions(CLI::App& Command, TSourceOptions& Options)
{
    AddSharedOptions(Command, Options);
    AddGroup(Command, TextOptionGroup, Options, [&] { AddTextOptions(Command, Options); });
    AddGroup(Command, HtmlOptionGroup, Options, [&] {
        AddChecked(
            Command, "--table-number", "N",
            "Number of the table, from 1, those inside others counted (default: all, one after the other)",
            [&Options](const std::string& Text) {
                SetPart(Options, spTableNumber, std::to_string(ReadCount(Text, 1)));
            });
    });
    AddGroup(Command, XmlOptionGroup, Options, [&] {
        AddPart(Command, Options, spRowTag, "--row-tag", "NAME",
                "Tag that the records stand in (default: ROWDATA)");
    });
    AddGroup(Command, SheetOptionGroup, Options, [&] {
        AddPart(Command, Options, spSheet, "--sheet", "SHEET",
                "Number of the sheet, from 1, or its name (default: 1); kvimport sheets lists them");
    });
    AddGroup(Command, TableOptionGroup, Options, [&] {
        AddPart(Command, Options, spTable, "--source-table", "NAME",
                "Table of the database to read (default: the only one); kvimport tables lists them");
        AddPatience(Command, Options);
    });
}

void CheckTextOptions(const TSourceOptions& Options, bool HasMap, bool ByPosition)
{
    const auto& Layout = Options.Layout;
    const bool HasColumns = !Layout.Columns.empty();
    if (HasColumns && !Layout.Fixed)
        throw EUsageError("--columns is for --fixed");
    if (HasColumns && ByPosition)
        throw EUsageError("--columns names its fields; --by-position has no meaning with it");
    if (Layout.Fixed && !HasColumns && !HasMap)
        throw EUsageError("--fixed needs --columns, such as ID=1-9,CITY=10-29, or --map, such as ID=Text1-9");
}

std::string ForeignOptionText(const TSourceOptions& Options, const TJobFinding& Refused)
{
    const auto* const Kind = FindImportKind(Refused.Value);
    for (const auto& Option : Options.Given)
        if (Kind && Option.Group != OptionGroupOf(*Kind))
            return Option.Name + " has no meaning for a source of kind " + Refused.Value + "; it is for " +
                   KindsOfGroup(Option.Group);
    return {};
}

} // namespace kv
