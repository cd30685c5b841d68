// KvSaveCommand - `kvimport save`: the options of an import, kept in a specification file.
#pragma once

#include "KvExitStatus.h"

namespace CLI {
class App;
}

namespace kv {

/// Adds the sub-command; `Status` gets its exit status when it was called for.
void AddSaveCommand(CLI::App& Program, TExitStatus& Status);

} // namespace kv
