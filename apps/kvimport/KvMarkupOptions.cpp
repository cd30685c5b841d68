#include "KvMarkupOptions.h"

#include <CLI/CLI.hpp>

#include "KvOptionCheck.h"
#include "KvOptionText.h"

namespace kv {

void AddHtmlOptions(CLI::App& Command, THtmlOptions& Options)
{
    AddChecked(Command, "--table-number", "N", "Number of the table, from 1, those inside others counted (default: all, one after the other)",
               [&Options](const std::string& Text) { Options.TableNumber = ReadCount(Text, 1); });
}

void AddXmlOptions(CLI::App& Command, TXmlOptions& Options)
{
    Command.add_option("--row-tag", Options.RowTag, "Tag that the records stand in (default: ROWDATA)")->type_name("NAME");
}

} // namespace kv
