#include "KvSheetOptions.h"

#include <CLI/CLI.hpp>

namespace kv {

void AddSheetOptions(CLI::App& Command, TSheetOptions& Options)
{
    Command.add_option("--sheet", Options.Sheet, "Number of the sheet, from 1, or its name (default: 1); kvimport sheets lists them")
        ->type_name("SHEET");
}

} // namespace kv
