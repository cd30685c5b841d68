#include "KvCompareCommands.h"

#include "KvBenchOrders.h"
#include "KvBenchSchema.h"

namespace kv::bench {

namespace {

/// "ID=1-9,CUSTOMER=10-45,...": bytes counted from 1, the last one included.
std::string FixedWidthColumns()
{
    std::string Text;
    std::size_t First = 1;
    for (const auto& Column : OrderColumns) {
        const auto Last = First + Column.Width - 1;
        Text.append(First == 1 ? "" : ",").append(Column.Name).append("=");
        Text.append(std::to_string(First)).append("-").append(std::to_string(Last));
        First = Last + 1;
    }
    return Text;
}

/// The statement that does `Work` with the rows of the table "incoming".
std::string FromIncomingSql(TWork Work)
{
    switch (Work) {
    case wkAppend: break;
    case wkAppendUpdate: // the WHERE keeps ON CONFLICT from reading as part of a join
        return "INSERT INTO orders SELECT * FROM incoming WHERE true ON CONFLICT (ID) DO UPDATE SET " +
               AssignmentsSql("excluded");
    case wkUpdate:
        return "UPDATE orders SET " + AssignmentsSql("incoming") +
               " FROM incoming WHERE orders.ID = incoming.ID";
    case wkDelete: return "DELETE FROM orders WHERE ID IN (SELECT ID FROM incoming)";
    }
    return "INSERT INTO orders SELECT * FROM incoming";
}

/// The tool's own command; `Table` may be followed by options.
std::string ImportInto(const std::string& Table, const std::filesystem::path& File)
{
    return ".import --csv --skip 1 '" + File.string() + "' " + Table;
}

TCommand ThroughIncoming(const TPrograms& Programs, TWork Work, const TPair& Pair, TOrderKey IncomingKey)
{
    return {Programs.Sqlite3,
            "-bail",
            Pair.Database,
            CreateOrdersSql(IncomingKey, "temp.incoming"),
            ImportInto("incoming --schema temp", Pair.File),
            FromIncomingSql(Work)};
}

TCommand OgrCommand(const std::string& How, const TPair& Pair)
{
    return {"ogr2ogr", "-f", "SQLite", How, Pair.Database, Pair.File, "-nln", "orders"};
}

/// An ogr2ogr that writes in one transaction and does not wait for the disk.
TCommand Quickly(TCommand Command)
{
    Command.insert(Command.end(), {"-gt", "unlimited", "--config", "OGR_SQLITE_SYNCHRONOUS", "OFF"});
    return Command;
}

} // namespace

std::string NameOf(TWork Work)
{
    switch (Work) {
    case wkAppend: break;
    case wkAppendUpdate: return "append-update";
    case wkUpdate: return "update";
    case wkDelete: return "delete";
    }
    return "append";
}

TCommand KvImportCommand(const TPrograms& Programs, TWork Work, const TPair& Pair)
{
    TCommand Command{Programs.KvImport, "import", Pair.File, "--to",       Pair.Database,
                     "--table",         "orders", "--mode",  NameOf(Work), "--quiet"};
    if (Pair.Lines == olFixedWidth)
        Command.insert(Command.end(), {"--fixed", "--columns", FixedWidthColumns()});
    else
        Command.insert(Command.end(), {"--delimiter", "comma", "--first-row", "2"});
    if (Work != wkAppend)
        Command.insert(Command.end(), {"--keys", "ID"});
    return Command;
}

TCommand KvImportSheetCommand(const TPrograms& Programs, TWork Work, const TPair& Pair)
{
    return {Programs.KvImport, "import", Pair.File,    "--to",        Pair.Database, "--table", "orders",
            "--mode",          NameOf(Work), "--first-row", "2",           "--quiet"};
}

TCommand KvImportNamedCommand(const TPrograms& Programs, TWork Work, const TPair& Pair)
{
    return {Programs.KvImport, "import", Pair.File,    "--to", Pair.Database, "--table", "orders",
            "--mode",          NameOf(Work), "--quiet"};
}

TCommand KvImportLoadCommand(const TPrograms& Programs, TWork, const TPair& Pair)
{
    return {Programs.KvImport, "sheets", Pair.File};
}

TCommand Xls2CsvCommand(const TPrograms&, TWork, const TPair& Pair)
{
    return {"xls2csv", "-d", "utf-8", Pair.File};
}

TCommand SsConvertCommand(const TPrograms&, TWork, const TPair& Pair)
{
    return {"ssconvert", "-T", "Gnumeric_stf:stf_csv", Pair.File, "fd://1"};
}

TCommand Xls2CsvIntoSqlite3Command(const TPrograms& Programs, TWork, const TPair& Pair)
{
    return {Programs.Sqlite3, "-bail", Pair.Database,
            ".import --csv --skip 1 '|xls2csv -d utf-8 -b \"\" \"" + Pair.File.string() + "\"' orders"};
}

TCommand KvImportAccessCommand(const TPrograms& Programs, TWork Work, const TPair& Pair)
{
    // Both have the same columns in the same order, some under other names.
    return {Programs.KvImport, "import", Pair.File, "--source-table", "orders", "--to", Pair.Database,
            "--table", "orders", "--mode", NameOf(Work), "--by-position", "--quiet"};
}

TCommand MdbExportIntoSqlite3Command(const TPrograms& Programs, TWork, const TPair& Pair)
{
    return {Programs.Sqlite3, "-bail", Pair.Database,
            ".import --csv '|mdb-export -H -D %Y-%m-%d -T %Y-%m-%d \"" + Pair.File.string() +
            "\" orders' orders"};
}

TCommand OgrAppendCommand(const TPrograms&, TWork, const TPair& Pair)
{
    return OgrCommand("-append", Pair);
}

TCommand OgrQuickAppendCommand(const TPrograms& Programs, TWork Work, const TPair& Pair)
{
    return Quickly(OgrAppendCommand(Programs, Work, Pair));
}

TCommand OgrOverwriteCommand(const TPrograms&, TWork, const TPair& Pair)
{
    return OgrCommand("-overwrite", Pair);
}

TCommand OgrQuickOverwriteCommand(const TPrograms& Programs, TWork Work, const TPair& Pair)
{
    return Quickly(OgrOverwriteCommand(Programs, Work, Pair));
}

TCommand YardstickCommand(const TPrograms& Programs, TWork Work, const TPair& Pair)
{
    return {Programs.Yardstick, NameOf(Work) + (Pair.Lines == olFixedWidth ? "-fixed" : ""), Pair.File,
            Pair.Database};
}

TCommand Sqlite3Command(const TPrograms& Programs, TWork Work, const TPair& Pair)
{
    if (Work == wkAppend)
        return {Programs.Sqlite3, "-bail", Pair.Database, ImportInto("orders", Pair.File)};
    return ThroughIncoming(Programs, Work, Pair, okPlain);
}

TCommand Sqlite3KeyedCommand(const TPrograms& Programs, TWork Work, const TPair& Pair)
{
    return ThroughIncoming(Programs, Work, Pair, okIndexed);
}

} // namespace kv::bench
