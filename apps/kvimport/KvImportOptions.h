// KvImportOptions - everything that `kvimport import` was told.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "KvDestination.h"
#include "KvFormatOptions.h"
#include "KvSourceOptions.h"
#include "KviTypes.h"

namespace CLI {
class App;
}

namespace kv {

struct TImportOptions
{
    TSourceOptions Source;
    TDestinationOptions Destination;
    TFormatOptions Formats;

    TImportMode Mode = imAppend;
    std::vector<std::string> Keys;                  ///< As the user spelled them; none: the primary key.
    std::vector<std::string> Map;                   ///< "ID=Field1"; none: columns are found by name.
    bool ByPosition = false;

    bool AbortOnError = false;
    int MaxErrors = 20;                             ///< Errors of records that are shown.
    bool Quiet = false;
    bool Json = false;
};

bool NeedsKeys(TImportMode Mode);
/// As --mode has it: "append-update".
std::string NameOfMode(TImportMode Mode);

void AddImportOptions(CLI::App& Command, TImportOptions& Options);

// Parts of them, for commands that have them too. `Options` must outlive the parsing.
void AddDestinationOptions(CLI::App& Command, TDestinationOptions& Options); ///< --to, --table, --batch, ...
/// --mode, whose value goes to `SetMode`, and --keys.
void AddModeOptions(CLI::App& Command, TImportOptions& Options, const std::function<void(TImportMode)>& SetMode);
/// Which records and columns are imported, how they are read and what becomes of them.
void AddPlanOptions(CLI::App& Command, TImportOptions& Options);
void AddRunOptions(CLI::App& Command, TImportOptions& Options); ///< --max-errors, --json, ...

/// Settles what options say together. Raises EUsageError where they contradict each other.
void CheckImportOptions(TImportOptions& Options);

} // namespace kv
