#include "KvCommands.h"

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
#include "KvOptionText.h"
#include "KvRefusal.h"
#include "KvTextTable.h"

namespace kv {

namespace {

struct TTablesOptions
{
    TSourceOptions Source;
    TJobFormats Formats;
    bool System = false;
    bool Json = false;
};

void AddOptions(CLI::App& Command, TTablesOptions& Options)
{
    Command.footer("Examples:\n"
                   "  kvimport tables northwind.mdb\n"
                   "  kvimport import northwind.mdb --source-table Orders --to shop.db --table orders\n"
                   "\n"
                   "Databases are read by the program kvaccess, beside this one or in the PATH; "
                   "KV_ACCESS_HELPER names another.");
    Command.add_option("FILE", Options.Source.FileName, "Access database to look into")
        ->required()
        ->type_name("");
    Command.add_flag("--system", Options.System, "List the tables that Access keeps for itself too");
    Command.add_flag("--json", Options.Json, "Print the tables as one JSON object");
    AddPatience(Command, Options.Source);
    AddCodePageOptions(Command, Options.Formats);
}

using TTables = std::vector<TKvISourcePart>;

TTables ListTables(const TTablesOptions& Options, TJobSource& Source)
{
    if (Source.Kind().Part != spTable)
        throw Exception(Source.Title() + " is no Access database but of kind " +
                        std::string(Source.Kind().Name) + "; kvimport preview shows what it holds");
    TTables Listed;
    for (const auto& Table : Source.Parts())
        if (Options.System || !Table.IsSystem)
            Listed.push_back(Table);
    return Listed;
}

std::string FieldsText(const TKvISourcePart& Table)
{
    std::vector<std::string> Texts;
    for (const auto& Field : Table.Fields)
        Texts.push_back(ToDisplay(Field.Name) + " " + Field.TypeName);
    return JoinNames(Texts, ", ");
}

void PrintTable(const TTables& Tables)
{
    TTextTable Text;
    Text.AddHeading({"table", "records", "fields"});
    for (const auto& Each : Tables)
        Text.AddRow({ToDisplay(Each.Name), Each.Error.empty() ? std::to_string(Each.Rows) : "",
                     Each.Error.empty() ? FieldsText(Each) : "(" + ToDisplay(Each.Error) + ")"});
    Text.PrintToScreen();
    if (Tables.empty())
        std::cout << "There are no tables.\n";
}

void PrintJson(const std::string& Source, const TTables& Tables)
{
    auto List = TJson::array();
    for (const auto& Each : Tables) {
        auto Fields = TJson::array();
        for (const auto& Field : Each.Fields)
            Fields.push_back({{"name", ToDisplay(Field.Name)}, {"type", Field.TypeName}});
        TJson Object = {{"name", ToDisplay(Each.Name)}};
        if (Each.Error.empty())
            Object.update({{"records", Each.Rows}, {"fields", Fields}});
        else
            Object["error"] = ToDisplay(Each.Error);
        List.push_back(Object);
    }
    const TJson Object = {{"source", Source}, {"tables", List}};
    PrintJsonLine(std::cout, Object);
}

void PrintTables(const TTablesOptions& Options)
{
    if (Options.Source.FileName == "-")
        throw EUsageError("an Access database cannot be read from standard input");
    UseFormats(Options.Formats);
    TJobSource Source(Options.Source, [] { return true; });
    const auto Tables = ListTables(Options, Source);
    if (Options.Json)
        PrintJson(Source.Title(), Tables);
    else
        PrintTable(Tables);
    std::cout.flush();
}

} // namespace

void AddTablesCommand(CLI::App& Program, TExitStatus& Status)
{
    const auto Options = std::make_shared<TTablesOptions>();
    auto* const Command = Program.add_subcommand("tables", "List the tables of a database");
    AddOptions(*Command, *Options);
    Command->callback([Options, &Status] {
        WordRefusals(Options->Source, [&Options] { PrintTables(*Options); });
        Status = esDone;
    });
}

} // namespace kv
