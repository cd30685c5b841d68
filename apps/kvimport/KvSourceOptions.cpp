#include "KvSourceOptions.h"

#include <CLI/CLI.hpp>

#include "KvOptionCheck.h"

namespace kv {

namespace {

void AddSharedOptions(CLI::App& Command, TSourceOptions& Options)
{
    Command.option_defaults()->group("What is read");
    AddRowOptions(Command, Options);
    AddChoice(Command, "--charset", "ansi or msdos: text is in the ANSI code page (default) or in the OEM code page, whatever a table file says of itself",
              {{"ansi", [&Options] { Options.MsDos = false; }}, {"msdos", [&Options] { Options.MsDos = true; }}});
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
            });
}

} // namespace

void AddSourceFile(CLI::App& Command, TSourceOptions& Options, const std::string& FileHelp)
{
    Command.add_option("FILE", Options.FileName, FileHelp)->required()->type_name("");
    Command.add_option("--from", Options.Kind, "Kind of the source, as kvimport formats lists them (default: told by what the file holds and its name)")
        ->type_name("KIND");
}

void AddRowOptions(CLI::App& Command, TSourceOptions& Options)
{
    AddChecked(Command, "--first-row", "N", "First line, row or record to import, from 1 (default: 2 when columns are found by name in a "
               "header, else 1)",
               [&Options](const std::string& Text) { Options.RowFirst = ReadCount(Text, 1); });
    AddChecked(Command, "--last-row", "N", "Last line, row or record to import (default: the last)",
               [&Options](const std::string& Text) { Options.RowLast = ReadCount(Text, 1); });
}

void AddSourceOptions(CLI::App& Command, TSourceOptions& Options)
{
    AddSharedOptions(Command, Options);
    AddGroup(Command, TextOptionGroup, Options, [&] { AddTextOptions(Command, Options.Text); });
    AddGroup(Command, HtmlOptionGroup, Options, [&] { AddHtmlOptions(Command, Options.Html); });
    AddGroup(Command, XmlOptionGroup, Options, [&] { AddXmlOptions(Command, Options.Xml); });
    AddGroup(Command, SheetOptionGroup, Options, [&] { AddSheetOptions(Command, Options.Sheet); });
    AddGroup(Command, TableOptionGroup, Options, [&] { AddTableOptions(Command, Options.Table); });
}

} // namespace kv
