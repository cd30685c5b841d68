// KvShowCommand - `kvimport show`: what a specification file says, in words.
#pragma once

#include "KvExitStatus.h"

namespace CLI {
class App;
}

namespace kv {

/// Adds the sub-command; `Status` gets its exit status when it was called for.
void AddShowCommand(CLI::App& Program, TExitStatus& Status);

} // namespace kv
