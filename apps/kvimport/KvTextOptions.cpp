#include "KvTextOptions.h"

#include <CLI/CLI.hpp>

#include "KvExitStatus.h"
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
    Command.add_flag("--fixed", Options.Fixed, "Values stand at fixed positions, told by --columns or --map; blanks at their ends are no part of them");
    AddChecked(Command, "--columns", "LIST", "Fields and their bytes in a line, from 1: ID=1-9,CITY=10-29 (with --fixed)",
               [&Options](const std::string& Text) { Options.FixedColumns = ReadFixedColumns(Text); });
}

void CheckTextOptions(const TTextOptions& Options, bool HasMap, bool ByPosition)
{
    const bool HasColumns = !Options.FixedColumns.empty();
    if (HasColumns && !Options.Fixed)
        throw EUsageError("--columns is for --fixed");
    if (HasColumns && ByPosition)
        throw EUsageError("--columns names its fields; --by-position has no meaning with it");
    if (Options.Fixed && !HasColumns && !HasMap)
        throw EUsageError("--fixed needs --columns, such as ID=1-9,CITY=10-29, or --map, such as ID=Text1-9");
}

} // namespace kv
