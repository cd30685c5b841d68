// KvSheetOptions - the options that say what of a workbook is read.
#pragma once

#include <string>

namespace CLI {
class App;
}

namespace kv {

struct TSheetOptions
{
    std::string Sheet;                              ///< Its number, from 1, or its name; empty: the first.
};

/// The heading above them in a help text.
inline constexpr char SheetOptionGroup[] = "Sheet of a workbook";

/// Adds --sheet. `Options` must outlive the parsing.
void AddSheetOptions(CLI::App& Command, TSheetOptions& Options);

} // namespace kv
