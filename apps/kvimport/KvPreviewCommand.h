// KvPreviewCommand - `kvimport preview`: the first rows of a file, cut as an import would cut them.
#pragma once

#include "KvExitStatus.h"

namespace CLI {
class App;
}

namespace kv {

/// Adds the sub-command; `Status` gets its exit status when it was called for.
void AddPreviewCommand(CLI::App& Program, TExitStatus& Status);

} // namespace kv
