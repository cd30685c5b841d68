// KvCommands - the sub-commands of kvimport. Each function adds one; `Status` gets its exit status when it
// was called for.
#pragma once

#include "KvExitStatus.h"

namespace CLI {
class App;
}

namespace kv {

struct TImportOptions;

void AddFormatsCommand(CLI::App& Program, TExitStatus& Status); ///< The kinds of files that can be read.
void AddImportCommand(CLI::App& Program, TExitStatus& Status);  ///< A file into a table.
void AddPreviewCommand(CLI::App& Program, TExitStatus& Status); ///< The first rows of a file.
void AddRunCommand(CLI::App& Program, TExitStatus& Status);     ///< An import as a saved one has it.
void AddSaveCommand(CLI::App& Program, TExitStatus& Status);    ///< The options of an import into a file.
void AddSheetsCommand(CLI::App& Program, TExitStatus& Status);  ///< The sheets of a workbook.
void AddShowCommand(CLI::App& Program, TExitStatus& Status);    ///< What a saved import says.
void AddTablesCommand(CLI::App& Program, TExitStatus& Status);  ///< The tables of a database.

/// Imports as the options have it, a saved import where they name one, and tells what was done. Exceptions
/// become part of that.
TExitStatus RunImport(TImportOptions& Options);

} // namespace kv
