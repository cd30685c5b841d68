#include "KvSheetsCommand.h"

#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "KvException.h"
#include "KvFormatOptions.h"
#include "KvJson.h"
#include "KvSourceKinds.h"
#include "KvTextTable.h"

namespace kv {

namespace {

struct TSheetsOptions
{
    TSourceOptions Source;
    TFormatOptions Formats;
    bool Json = false;
};

void AddOptions(CLI::App& Command, TSheetsOptions& Options)
{
    Command.footer("Examples:\n"
                   "  kvimport sheets book.xls\n"
                   "  kvimport import book.xls --sheet Orders --to shop.db --table orders");
    AddSourceFile(Command, Options.Source, "Workbook to look into; - is standard input");
    Command.add_flag("--json", Options.Json, "Print the sheets as one JSON object");
    Command.add_flag("--classic", Options.Source.Classic, "Rows and columns as the sheets declare them; see kvimport import --help");
    AddCodePageOptions(Command, Options.Formats);
}

void PrintTable(const std::vector<TSourceSheet>& Sheets)
{
    TTextTable Table;
    Table.AddHeading({"sheet", "name", "rows", "columns"});
    for (std::size_t I = 0; I < Sheets.size(); ++I)
        Table.AddRow({std::to_string(I + 1), Sheets[I].Name, std::to_string(Sheets[I].Rows), std::to_string(Sheets[I].Columns)});
    Table.Print(std::cout, 0);
}

void PrintJson(const TSource& Source, const std::vector<TSourceSheet>& Sheets)
{
    auto List = TJson::array();
    for (const auto& Sheet : Sheets)
        List.push_back({{"sheet", List.size() + 1}, {"name", Sheet.Name}, {"rows", Sheet.Rows}, {"columns", Sheet.Columns}});
    const TJson Object = {{"source", Source.DisplayName()}, {"sheets", List}};
    PrintJsonLine(std::cout, Object);
}

void PrintSheets(const TSheetsOptions& Options)
{
    UseFormats(Options.Formats);
    const auto Source = MakeSource(Options.Source);
    const auto Sheets = Source->Sheets();
    if (Sheets.empty())
        throw Exception(Source->DisplayName() + " is no workbook: it has no sheets");
    if (Options.Json)
        PrintJson(*Source, Sheets);
    else
        PrintTable(Sheets);
    std::cout.flush();
}

} // namespace

void AddSheetsCommand(CLI::App& Program, TExitStatus& Status)
{
    const auto Options = std::make_shared<TSheetsOptions>();
    auto* const Command = Program.add_subcommand("sheets", "List the sheets of a workbook");
    AddOptions(*Command, *Options);
    Command->callback([Options, &Status] {
        PrintSheets(*Options);
        Status = esDone;
    });
}

} // namespace kv
