#include "KvCommands.h"

#include <algorithm>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "KvDisplayText.h"
#include "KvException.h"
#include "KvFormatOptions.h"
#include "KvJobFormats.h"
#include "KvJobSource.h"
#include "KvJson.h"
#include "KvRefusal.h"
#include "KvTextTable.h"

namespace kv {

namespace {

struct TSheetsOptions
{
    TSourceOptions Source;
    TJobFormats Formats;
    bool Json = false;
};

void AddOptions(CLI::App& Command, TSheetsOptions& Options)
{
    Command.footer("Examples:\n"
                   "  kvimport sheets book.xls\n"
                   "  kvimport import book.xls --sheet Orders --to shop.db --table orders");
    AddSourceFile(Command, Options.Source, "Workbook to look into; - is standard input");
    Command.add_flag("--json", Options.Json, "Print the sheets as one JSON object");
    Command.add_flag("--classic", Options.Source.Classic,
                     "Rows and columns as the sheets declare them; see kvimport import --help");
    AddCodePageOptions(Command, Options.Formats);
}

void PrintTable(const std::vector<TKvISourcePart>& Sheets)
{
    TTextTable Table;
    const bool HasHidden = std::ranges::count(Sheets, true, &TKvISourcePart::IsHidden) > 0;
    std::vector<std::string> Heading = {"sheet", "name", "rows", "columns"};
    if (HasHidden)
        Heading.push_back("");
    Table.AddHeading(Heading);
    for (std::size_t I = 0; I < Sheets.size(); ++I) {
        std::vector<std::string> Row = {std::to_string(I + 1), ToDisplay(Sheets[I].Name),
                                        std::to_string(Sheets[I].Rows), std::to_string(Sheets[I].Columns)};
        if (HasHidden)
            Row.push_back(Sheets[I].IsHidden ? "hidden" : "");
        Table.AddRow(Row);
    }
    Table.Print(std::cout, 0);
}

void PrintJson(TJobSource& Source)
{
    auto List = TJson::array();
    for (const auto& Sheet : Source.Parts()) {
        List.push_back({{"sheet", List.size() + 1},
                        {"name", ToDisplay(Sheet.Name)},
                        {"rows", Sheet.Rows},
                        {"columns", Sheet.Columns}});
        if (Sheet.IsHidden)
            List.back()["hidden"] = true;
    }
    const TJson Object = {{"source", Source.Title()}, {"sheets", List}};
    PrintJsonLine(std::cout, Object);
}

void PrintSheets(const TSheetsOptions& Options)
{
    UseFormats(Options.Formats);
    TJobSource Source(Options.Source, [] { return true; });
    if (Source.Kind().Part != spSheet)
        throw Exception(Source.Title() + " is no workbook: it has no sheets");
    if (Options.Json)
        PrintJson(Source);
    else
        PrintTable(Source.Parts());
    std::cout.flush();
}

} // namespace

void AddSheetsCommand(CLI::App& Program, TExitStatus& Status)
{
    const auto Options = std::make_shared<TSheetsOptions>();
    auto* const Command = Program.add_subcommand("sheets", "List the sheets of a workbook");
    AddOptions(*Command, *Options);
    Command->callback([Options, &Status] {
        WordRefusals(Options->Source, [&Options] { PrintSheets(*Options); });
        Status = esDone;
    });
}

} // namespace kv
