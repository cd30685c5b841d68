#include "KvCommands.h"

#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "KvDisplayText.h"
#include "KvFindingText.h"
#include "KvFormatOptions.h"
#include "KvJobFormats.h"
#include "KvJobSource.h"
#include "KvJson.h"
#include "KvOptionCheck.h"
#include "KvRefusal.h"
#include "KvSourceOptions.h"
#include "KvTerminalText.h"
#include "KvTextTable.h"

namespace kv {

namespace {

constexpr int UsualRows = 20;

struct TPreviewOptions
{
    TSourceOptions Source;
    TJobFormats Formats;
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
    Command.add_flag("--classic", Options.Source.Classic,
                     "Read as the components do by themselves; see kvimport import --help");
    AddSourceOptions(Command, Options.Source);
    Command.option_defaults()->group("How values are written");
    AddCodePageOptions(Command, Options.Formats);
}

/// Bytes that are no text only show their number.
std::string CellText(const TKvISourceValue& Cell, TFieldType Type)
{
    if (!Cell.Error.empty())
        return "(unreadable)";
    if (Cell.Value.IsString() && IsBinaryField(Type))
        return "(" + std::to_string(Cell.Value.Text().size()) + " bytes)";
    return SourceText(Cell.Value);
}

std::vector<std::string> CellTexts(const TKvISourceView& View, const TKvISourceRow& Row)
{
    std::vector<std::string> Texts;
    for (std::size_t I = 0; I < Row.Values.size(); ++I)
        Texts.push_back(
            CellText(Row.Values[I], I < View.Columns.size() ? View.Columns[I].DataType : ftUnknown));
    return Texts;
}

/// What stands above the name by which mappings call a column; empty where that is the same.
std::string TitleText(const TKvISourceColumn& Column)
{
    return Column.Title == Column.Name ? std::string() : ToDisplay(Column.Title);
}

/// The source's own names stand above those that mappings use.
void PrintRows(const TKvISourceView& View, const std::string& Unit)
{
    std::vector<std::string> Titles{Unit}, Names{""};
    bool HasTitles = false;
    for (const auto& Column : View.Columns) {
        Titles.push_back(TitleText(Column));
        Names.push_back(ToDisplay(Column.Name));
        HasTitles = HasTitles || !Titles.back().empty();
    }
    TTextTable Table;
    if (HasTitles)
        Table.AddHeading(Titles);
    else
        Names.front() = Unit;
    Table.AddHeading(Names);
    for (const auto& Row : View.Rows) {
        std::vector<std::string> Cells{std::to_string(Row.Position.Number)};
        for (auto& Text : CellTexts(View, Row))
            Cells.push_back(std::move(Text));
        Table.AddRow(std::move(Cells));
    }
    Table.PrintToScreen();
}

void PrintTable(const TJobSource& Source)
{
    for (const auto& Finding : Source.Findings())
        std::cout << "(" << VisibleText(FindingText(Finding)) << ")\n";
    PrintRows(Source.View(), Source.Unit());
    if (Source.View().Rows.empty())
        std::cout << "There are no rows.\n";
    else if (Source.View().HasMore)
        std::cout << "There are more rows; --rows N shows N of them.\n";
}

std::vector<std::string> Warnings(const TJobSource& Source)
{
    auto Result = FindingTexts(Source.Remarks());
    for (auto& Text : FindingTexts(Source.Unreadable()))
        Result.push_back(std::move(Text));
    return Result;
}

void PrintJson(const TJobSource& Source)
{
    const auto& View = Source.View();
    auto Columns = TJson::array(), Rows = TJson::array();
    for (const auto& Column : View.Columns)
        Columns.push_back({{"column", ToDisplay(Column.Name)}, {"name", TextOrNull(TitleText(Column))}});
    for (const auto& Row : View.Rows)
        Rows.push_back({{Source.Unit(), Row.Position.Number}, {"values", CellTexts(View, Row)}});
    const TJson Object = {{"source", Source.Title()},
                          {"columns", Columns},
                          {"rows", Rows},
                          {"hasMore", View.HasMore},
                          {"findings", FindingTexts(Source.Findings())},
                          {"warnings", Warnings(Source)}};
    PrintJsonLine(std::cout, Object);
}

void Preview(const TPreviewOptions& Options)
{
    UseFormats(Options.Formats);
    TJobSource Source(Options.Source, [] { return true; });
    SetFormats(Options.Formats, Source.Component().DataFormats);
    const bool SaysHeader = Options.Source.RowFirst.value_or(1) > 1; // it is the row above
    Source.Look({.FindTitles = SaysHeader, .Rows = Options.Rows, .ShowsTitles = true});
    if (Options.Json)
        PrintJson(Source);
    else
        PrintTable(Source);
    std::cout.flush();
    for (const auto& Warning : Warnings(Source))
        std::cerr << "Warning: " << VisibleText(Source.Title() + ", " + Warning) << '\n';
}

} // namespace

void AddPreviewCommand(CLI::App& Program, TExitStatus& Status)
{
    const auto Options = std::make_shared<TPreviewOptions>();
    auto* const Command = Program.add_subcommand("preview", "Show the first rows of a file");
    AddPreviewOptions(*Command, *Options);
    Command->callback([Options, &Status] {
        WordRefusals(Options->Source, [&Options] { Preview(*Options); });
        Status = esDone;
    });
}

} // namespace kv
