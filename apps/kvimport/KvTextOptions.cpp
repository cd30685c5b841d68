#include "KvTextOptions.h"

#include <CLI/CLI.hpp>

#include "KvOptionCheck.h"
#include "KvOptionText.h"

namespace kv {

void AddTextOptions(CLI::App& Command, TTextOptions& Options)
{
    AddChecked(Command, "--delimiter", "CHAR", "What separates the values: tab, comma, semicolon, space, none or any character "
               "(default: comma for .csv, else tab, or what the header line has instead)",
               [&Options](const std::string& Text) { Options.Delimiter = ReadCharacter(Text); });
    AddChecked(Command, "--qualifier", "CHAR", "What encloses a value that holds delimiters: quot (default), apos, none or any character",
               [&Options](const std::string& Text) { Options.Qualifier = ReadCharacter(Text); });
    AddChecked(Command, "--record-separator", "TEXT", "What ends a record: crlf (default, also takes CR or LF alone), cr, lf or any "
               "characters, such as '\\x1E'",
               [&Options](const std::string& Text) { Options.RecordSeparator = ReadRecordSeparator(Text); });
    AddChecked(Command, "--first-row", "N", "First line to import, from 1 (default: 2 when columns are found by name, else 1)",
               [&Options](const std::string& Text) { Options.RowFirst = ReadCount(Text, 1); });
    AddChecked(Command, "--last-row", "N", "Last line to import (default: the last)",
               [&Options](const std::string& Text) { Options.RowLast = ReadCount(Text, 1); });
    Command.add_flag("--fixed", Options.Fixed, "Values stand at fixed positions, told by --columns or --map; blanks at their ends are no part of them");
    AddChecked(Command, "--columns", "LIST", "Fields and their bytes in a line, from 1: ID=1-9,CITY=10-29 (with --fixed)",
               [&Options](const std::string& Text) { Options.FixedColumns = ReadFixedColumns(Text); });
    AddChoice(Command, "--charset", "ansi or msdos: text is in the ANSI code page (default) or in the OEM code page",
              {{"ansi", [&Options] { Options.MsDos = false; }}, {"msdos", [&Options] { Options.MsDos = true; }}});
}

} // namespace kv
