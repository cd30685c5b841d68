#include "KvTablesCommand.h"

#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "KvAccessSession.h"
#include "KvDisplayText.h"
#include "KvException.h"
#include "KvFormatOptions.h"
#include "KvJson.h"
#include "KvOptionText.h"
#include "KvSourceKinds.h"
#include "KvTextTable.h"

namespace kv {

namespace {

struct TTablesOptions
{
    std::string FileName;
    TFormatOptions Formats;
    bool System = false;
    bool Json = false;
};

/// A table that cannot be opened has a reason instead of records and fields. UTF-8.
struct TListedTable
{
    std::string Name;
    int Records = 0;
    std::vector<TAccessField> Fields;
    std::string Reason;
};

void AddOptions(CLI::App& Command, TTablesOptions& Options)
{
    Command.footer("Examples:\n"
                   "  kvimport tables northwind.mdb\n"
                   "  kvimport import northwind.mdb --source-table Orders --to shop.db --table orders\n"
                   "\n"
                   "Databases are read by the program kvaccess, beside this one or in the PATH; KV_ACCESS_HELPER names another.");
    Command.add_option("FILE", Options.FileName, "Access database to look into")->required()->type_name("");
    Command.add_flag("--system", Options.System, "List the tables that Access keeps for itself too");
    Command.add_flag("--json", Options.Json, "Print the tables as one JSON object");
    AddCodePageOptions(Command, Options.Formats);
}

TListedTable Describe(TAccessDatabase& Database, const std::string& Name)
{
    TListedTable Listed{.Name = ToDisplay(Name), .Records = 0, .Fields = {}, .Reason = {}};
    try {
        const auto Recordset = Database.OpenRecordset(Name, AccessTableRecordset, AccessNoOptions, AccessPessimistic);
        Listed.Records = Recordset->RecordCount();
        Listed.Fields = Recordset->Fields();
        for (auto& Field : Listed.Fields)
            Field.Name = ToDisplay(Field.Name);
    }
    catch (const EDatabaseError& Error) {
        Listed.Reason = ToDisplay(Error.Message);
    }
    return Listed;
}

void CheckKind(const std::string& FileName)
{
    if (FileName == "-")
        throw EUsageError("an Access database cannot be read from standard input");
    if (const auto& Kind = KindOfFile(FileName); Kind.Name != "access")
        throw Exception(FileName + " is no Access database but of kind " + std::string(Kind.Name) +
                        "; kvimport preview shows what it holds");
}

std::vector<TListedTable> ListTables(const TTablesOptions& Options)
{
    CheckKind(Options.FileName);
    TKvAccessSession Session;
    Session.Open("", Options.FileName);
    std::vector<TListedTable> Listed;
    for (const auto& Table : Session.Database().TableDefs())
        if (Options.System || !Table.IsSystem)
            Listed.push_back(Describe(Session.Database(), Table.Name));
    return Listed;
}

std::string FieldsText(const TListedTable& Listed)
{
    std::vector<std::string> Texts;
    for (const auto& Field : Listed.Fields)
        Texts.push_back(Field.Name + " " + AccessTypeText(Field));
    return JoinNames(Texts, ", ");
}

void PrintTable(const std::vector<TListedTable>& Tables)
{
    TTextTable Text;
    Text.AddHeading({"table", "records", "fields"});
    for (const auto& Each : Tables)
        Text.AddRow({Each.Name, Each.Reason.empty() ? std::to_string(Each.Records) : "",
                     Each.Reason.empty() ? FieldsText(Each) : "(" + Each.Reason + ")"});
    Text.PrintToScreen();
    if (Tables.empty())
        std::cout << "There are no tables.\n";
}

void PrintJson(const std::string& Source, const std::vector<TListedTable>& Tables)
{
    auto List = TJson::array();
    for (const auto& Each : Tables) {
        auto Fields = TJson::array();
        for (const auto& Field : Each.Fields)
            Fields.push_back({{"name", Field.Name}, {"type", AccessTypeText(Field)}});
        TJson Object = {{"name", Each.Name}};
        if (Each.Reason.empty())
            Object.update({{"records", Each.Records}, {"fields", Fields}});
        else
            Object["error"] = Each.Reason;
        List.push_back(Object);
    }
    const TJson Object = {{"source", Source}, {"tables", List}};
    PrintJsonLine(std::cout, Object);
}

void PrintTables(const TTablesOptions& Options)
{
    UseFormats(Options.Formats);
    const auto Tables = ListTables(Options);
    if (Options.Json)
        PrintJson(Options.FileName, Tables);
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
        PrintTables(*Options);
        Status = esDone;
    });
}

} // namespace kv
