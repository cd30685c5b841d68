#include "KvCommands.h"

#include <iostream>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "KvOptionText.h"
#include "KvTextTable.h"
#include "KviSourceKinds.h"

namespace kv {

namespace {

void PrintKinds()
{
    TTextTable Table;
    Table.AddHeading({"kind", "reads", "taken for files named"});
    for (const auto* const Kind : ImportKinds()) {
        std::vector<std::string> Extensions(Kind->Extensions.begin(), Kind->Extensions.end());
        Table.AddRow({std::string(Kind->Name), std::string(Kind->Title), JoinNames(Extensions, " ")});
    }
    Table.Print(std::cout, 0);
}

} // namespace

void AddFormatsCommand(CLI::App& Program, TExitStatus& Status)
{
    auto* const Command = Program.add_subcommand("formats", "List the kinds of files that can be read");
    Command->callback([&Status] {
        PrintKinds();
        Status = esDone;
    });
}

} // namespace kv
