// KvTablesCommand - `kvimport tables`: what tables a database has.
#pragma once

#include "KvExitStatus.h"

namespace CLI {
class App;
}

namespace kv {

/// Adds the sub-command; `Status` gets its exit status when it was called for.
void AddTablesCommand(CLI::App& Program, TExitStatus& Status);

} // namespace kv
