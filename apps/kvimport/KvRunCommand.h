// KvRunCommand - `kvimport run`: an import as a specification file has it.
#pragma once

#include "KvExitStatus.h"

namespace CLI {
class App;
}

namespace kv {

/// Adds the sub-command; `Status` gets its exit status when it was called for.
void AddRunCommand(CLI::App& Program, TExitStatus& Status);

} // namespace kv
