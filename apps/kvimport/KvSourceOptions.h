// KvSourceOptions - what the command line says about the source of an import.
#pragma once

#include <string>
#include <vector>

#include "KvJobFindings.h"
#include "KvJobSettings.h"

namespace CLI {
class App;
}

namespace kv {

/// An option that only some kinds of sources have, and that the user gave.
struct TGivenOption
{
    std::string Name;                               ///< "--delimiter"
    std::string Group;                              ///< See OptionGroupOf.
};

struct TSourceOptions : TJobSourceSettings
{
    std::vector<TGivenOption> Given;                ///< Of the groups of the kinds.
};

// `Options` must outlive the parsing.

/// Adds FILE, described by `FileHelp`, --from and --spool-limit.
void AddSourceFile(CLI::App& Command, TSourceOptions& Options, const std::string& FileHelp);
/// Adds --spool-limit.
void AddSpoolOption(CLI::App& Command, TSourceOptions& Options);
/// Adds --first-row and --last-row.
void AddRowOptions(CLI::App& Command, TSourceOptions& Options);
void AddPatience(CLI::App& Command, TSourceOptions& Options); ///< --patience
/// Adds --first-row, --last-row and --charset, which all kinds have, and the options of the kinds.
void AddSourceOptions(CLI::App& Command, TSourceOptions& Options);

/// Raises EUsageError where --fixed and --columns contradict each other or how columns find their fields:
/// by --map, by --by-position or, with neither, by name.
void CheckTextOptions(const TSourceOptions& Options, bool HasMap, bool ByPosition);
/// Why the source of the kind that was refused has not got one of the options that were given.
std::string ForeignOptionText(const TSourceOptions& Options, const TJobFinding& Refused);

} // namespace kv
