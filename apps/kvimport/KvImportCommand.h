// KvImportCommand - `kvimport import`: a file into a table.
#pragma once

#include <functional>

#include "KvExitStatus.h"

namespace CLI {
class App;
}

namespace kv {

struct TImportOptions;

/// Adds the sub-command; `Status` gets its exit status when it was called for.
void AddImportCommand(CLI::App& Program, TExitStatus& Status);

/// Imports as the options have it, once `Complete` has filled in what they leave open, and tells what was
/// done. Exceptions, those of `Complete` too, become part of that.
TExitStatus RunImport(TImportOptions& Options, const std::function<void()>& Complete);

} // namespace kv
