// KvTextOptions - the options that say how a text file is laid out.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace kv {

struct TTextOptions
{
    std::optional<char> Delimiter;                  ///< Not given: told by the file's name and header.
    char Qualifier = '"';
    std::string RecordSeparator = "\r\n";
    bool Fixed = false;
    std::vector<std::string> FixedColumns;          ///< Mapping lines: "ID=Text1-9".
};

/// The heading above them in a help text.
inline constexpr char TextOptionGroup[] = "Layout of a text file";

/// Adds --delimiter, --qualifier, --record-separator, --fixed and --columns. `Options` must outlive the
/// parsing.
void AddTextOptions(CLI::App& Command, TTextOptions& Options);

/// Raises EUsageError where --fixed and --columns contradict each other or how columns find their fields:
/// by --map, by --by-position or, with neither, by name.
void CheckTextOptions(const TTextOptions& Options, bool HasMap, bool ByPosition);

} // namespace kv
