// KvImportCommand - `kvimport import`: a file into a table.
#pragma once

#include "KvExitStatus.h"

namespace CLI {
class App;
}

namespace kv {

/// Adds the sub-command; `Status` gets its exit status when it was called for.
void AddImportCommand(CLI::App& Program, TExitStatus& Status);

} // namespace kv
