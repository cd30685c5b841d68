// KvImportOptions - everything that `kvimport import` was told.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "KvJobSettings.h"
#include "KvSourceOptions.h"

namespace CLI {
class App;
}

namespace kv {

class TJobFile;

struct TImportOptions
{
    /// What the job is told; its source is that of Source, once options are settled.
    TJobSettings Job;
    TSourceOptions Source;
    /// A saved import, whose settings hold where options are silent.
    std::string Specification;
    std::optional<TImportMode> Mode;                ///< Instead of that of the saved import.
    bool ByPosition = false;

    bool AbortOnError = false;
    int MaxErrors = 20;                             ///< Errors of records that are shown.
    bool Quiet = false;
    bool Json = false;
};

/// As --mode has it: "append-update".
std::string NameOfMode(TImportMode Mode);

void AddImportOptions(CLI::App& Command, TImportOptions& Options);

// Parts of them, for commands that have them too. `Options` must outlive the parsing.
void AddDestinationOptions(CLI::App& Command, TJobSettings& Job); ///< --to, --table, --batch, ...
/// --mode, whose value goes to `SetMode`, and --keys.
void AddModeOptions(CLI::App& Command, TImportOptions& Options,
                    const std::function<void(TImportMode)>& SetMode);
/// Which records and columns are imported, how they are read and what becomes of them.
void AddPlanOptions(CLI::App& Command, TImportOptions& Options);
void AddRunOptions(CLI::App& Command, TImportOptions& Options); ///< --max-errors, --json, ...

/// Settles what options say together, of an import that was not saved. Raises EUsageError where they
/// contradict each other.
void CheckImportOptions(TImportOptions& Options);
/// Fills in what a saved import says where options are silent. Raises EUsageError where nothing says it.
void CompleteOptions(TImportOptions& Options, const TJobFile& Saved);

} // namespace kv
