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
    bool MsDos = false;                             ///< Text is in the OEM code page.
    std::optional<int> RowFirst;                    ///< Not given: after the header, when there is one.
    std::optional<int> RowLast;
};

/// Adds --delimiter, --qualifier, --record-separator, --fixed, --columns, --charset, --first-row and
/// --last-row. `Options` must outlive the parsing.
void AddTextOptions(CLI::App& Command, TTextOptions& Options);

} // namespace kv
