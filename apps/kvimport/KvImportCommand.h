// KvImportCommand - `kvimport import`: a file into a table.
#pragma once

#include "KvExitStatus.h"

namespace CLI {
class App;
}

namespace kv {

struct TImportOptions;

/// Adds the sub-command; `Status` gets its exit status when it was called for.
void AddImportCommand(CLI::App& Program, TExitStatus& Status);

/// Imports as the options have it, a saved import where they name one, and tells what was done. Exceptions become
/// part of that.
TExitStatus RunImport(TImportOptions& Options);

} // namespace kv
