#include "KvPreviewCommand.h"

#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "KvFormatOptions.h"
#include "KvJson.h"
#include "KvOptionCheck.h"
#include "KvSource.h"
#include "KvSourceKinds.h"
#include "KvTerminalText.h"
#include "KvTextTable.h"

namespace kv {

namespace {

constexpr int UsualRows = 20;

struct TPreviewOptions
{
    TSourceOptions Source;
    TFormatOptions Formats;
    int Rows = UsualRows;
    bool Json = false;
};

void AddPreviewOptions(CLI::App& Command, TPreviewOptions& Options)
{
    Command.footer("Examples:\n"
                   "  kvimport preview orders.csv\n"
                   "  kvimport preview orders.csv --first-row 1       line 1 is no header\n"
                   "  kvimport preview book.xls --sheet Orders\n"
                   "  kvimport preview northwind.mdb --source-table Orders\n"
                   "  kvimport preview old.txt --fixed --columns ID=1-9,CITY=10-29 --charset msdos");
    AddSourceFile(Command, Options.Source, "File to show; - is standard input");
    AddChecked(Command, "--rows", "N", "Rows to show (default: 20)",
               [&Options](const std::string& Text) { Options.Rows = ReadCount(Text, 1); });
    Command.add_flag("--json", Options.Json, "Print the rows as one JSON object");
    Command.add_flag("--classic", Options.Source.Classic, "Read as the components do by themselves; see kvimport import --help");
    AddSourceOptions(Command, Options.Source);
    Command.option_defaults()->group("How values are written");
    AddCodePageOptions(Command, Options.Formats);
}

/// The source's own names stand above those that mappings use.
void PrintTable(const TSourceRows& Rows, const std::string& PlaceWord, bool HasNames)
{
    TTextTable Table;
    std::vector<std::string> Names{PlaceWord}, Sources{HasNames ? "" : PlaceWord};
    for (const auto& Column : Rows.Columns) {
        Names.push_back(Column.Name);
        Sources.push_back(Column.Source);
    }
    if (HasNames)
        Table.AddHeading(Names);
    Table.AddHeading(Sources);
    for (std::size_t I = 0; I < Rows.Rows.size(); ++I) {
        std::vector<std::string> Cells{Rows.Places[I]};
        Cells.insert(Cells.end(), Rows.Rows[I].begin(), Rows.Rows[I].end());
        Table.AddRow(std::move(Cells));
    }
    Table.PrintToScreen();
}

void PrintTable(TSource& Source, const TSourceRows& Rows)
{
    for (const auto& Finding : Source.Findings())
        std::cout << "(" << VisibleText(Finding) << ")\n";
    bool HasNames = false;
    for (const auto& Column : Rows.Columns)
        HasNames = HasNames || !Column.Name.empty();
    PrintTable(Rows, std::string(Source.PlaceWord()), HasNames);
    if (Rows.Rows.empty())
        std::cout << "There are no rows.\n";
    else if (Rows.HasMore)
        std::cout << "There are more rows; --rows N shows N of them.\n";
}

std::vector<std::string> AllWarnings(const TSource& Source, const TSourceRows& Rows)
{
    auto Result = Source.Warnings();
    Result.insert(Result.end(), Rows.Warnings.begin(), Rows.Warnings.end());
    return Result;
}

void PrintJson(TSource& Source, const TSourceRows& Rows)
{
    const std::string PlaceWord(Source.PlaceWord());
    auto Columns = TJson::array(), Lines = TJson::array();
    for (const auto& Column : Rows.Columns)
        Columns.push_back({{"column", Column.Source}, {"name", Column.Name.empty() ? TJson() : TJson(Column.Name)}});
    for (std::size_t I = 0; I < Rows.Rows.size(); ++I)
        Lines.push_back({{PlaceWord, std::stoi(Rows.Places[I])}, {"values", Rows.Rows[I]}});
    const TJson Object = {{"source", Source.DisplayName()},
                          {"columns", Columns},
                          {"rows", Lines},
                          {"hasMore", Rows.HasMore},
                          {"findings", Source.Findings()},
                          {"warnings", AllWarnings(Source, Rows)}};
    PrintJsonLine(std::cout, Object);
}

void Preview(TPreviewOptions& Options)
{
    UseFormats(Options.Formats);
    Options.Source.FindNames = !Options.Source.Text.Fixed && Options.Source.RowFirst.value_or(2) > 1;
    const auto Source = MakeSource(Options.Source);
    const auto Rows = Source->FirstRows(Options.Rows);
    if (Options.Json)
        PrintJson(*Source, Rows);
    else
        PrintTable(*Source, Rows);
    std::cout.flush();
    for (const auto& Warning : AllWarnings(*Source, Rows))
        std::cerr << "Warning: " << VisibleText(Source->DisplayName() + ", " + Warning) << '\n';
}

} // namespace

void AddPreviewCommand(CLI::App& Program, TExitStatus& Status)
{
    const auto Options = std::make_shared<TPreviewOptions>();
    auto* const Command = Program.add_subcommand("preview", "Show the first rows of a file");
    AddPreviewOptions(*Command, *Options);
    Command->callback([Options, &Status] {
        Preview(*Options);
        Status = esDone;
    });
}

} // namespace kv
