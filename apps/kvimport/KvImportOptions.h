// KvImportOptions - everything that `kvimport import` was told.
#pragma once

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

/// Settles what options say together. Raises EUsageError where they contradict each other.
void CheckImportOptions(TImportOptions& Options);

} // namespace kv
