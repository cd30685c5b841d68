// KvFormatsCommand - `kvimport formats`: the kinds of sources that this program can read.
#pragma once

#include "KvExitStatus.h"

namespace CLI {
class App;
}

namespace kv {

/// Adds the sub-command; `Status` gets its exit status when it was called for.
void AddFormatsCommand(CLI::App& Program, TExitStatus& Status);

} // namespace kv
