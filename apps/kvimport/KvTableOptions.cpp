#include "KvTableOptions.h"

#include <CLI/CLI.hpp>

namespace kv {

void AddTableOptions(CLI::App& Command, TTableOptions& Options)
{
    Command.add_option("--source-table", Options.Table, "Table of the database to read (default: the only one); kvimport tables lists them")
        ->type_name("NAME");
}

} // namespace kv
