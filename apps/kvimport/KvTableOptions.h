// KvTableOptions - the options that say what of a database is read.
#pragma once

#include <string>

namespace CLI {
class App;
}

namespace kv {

struct TTableOptions
{
    std::string Table;                              ///< Empty: the only one.
};

/// The heading above them in a help text.
inline constexpr char TableOptionGroup[] = "Table of a database";

/// Adds --source-table. `Options` must outlive the parsing.
void AddTableOptions(CLI::App& Command, TTableOptions& Options);

} // namespace kv
