// KvCompareCommands - the command lines that import a file of orders, for each program that can.
#pragma once

#include <filesystem>
#include <string>

#include "KvBenchFiles.h"
#include "KvCompareProcess.h"

namespace kv::bench {

/// What to do with the records of a file.
enum TWork
{
    wkAppend,
    wkAppendUpdate,
    wkUpdate,
    wkDelete
};

/// "append-update" and so on, as kvimport and the yardstick call them.
std::string NameOf(TWork Work);

/// Where the programs are. All but the sqlite3 tool can be absent; its name is looked up along PATH.
struct TPrograms
{
    std::filesystem::path KvImport, Yardstick;
    std::string Sqlite3 = "sqlite3";
};

/// A file and the database, with a table "orders", that it goes into.
struct TPair
{
    std::filesystem::path File, Database;
    TOrderLines Lines = olDelimited;
};

TCommand KvImportCommand(const TPrograms& Programs, TWork Work, const TPair& Pair);
/// Appends a file with a row of names, of any format, to the table "orders".
TCommand KvImportSheetCommand(const TPrograms& Programs, TWork Work, const TPair& Pair);
/// Appends a file that names its columns, of any format, to the table "orders".
TCommand KvImportNamedCommand(const TPrograms& Programs, TWork Work, const TPair& Pair);
/// Loads a workbook or worksheet and lists its sheets.
TCommand KvImportLoadCommand(const TPrograms& Programs, TWork Work, const TPair& Pair);

/// Appends the table "orders" of an Access database.
TCommand KvImportAccessCommand(const TPrograms& Programs, TWork Work, const TPair& Pair);

TCommand YardstickCommand(const TPrograms& Programs, TWork Work, const TPair& Pair);

/// With `.import`, straight into the table for wkAppend, otherwise into a temporary table from which one
/// statement does the rest; in the second the temporary table is sorted by its key. Delimited files only.
TCommand Sqlite3Command(const TPrograms& Programs, TWork Work, const TPair& Pair);
TCommand Sqlite3KeyedCommand(const TPrograms& Programs, TWork Work, const TPair& Pair);

// Other programs that read a workbook or a worksheet and print its cells as CSV.
TCommand Xls2CsvCommand(const TPrograms& Programs, TWork Work, const TPair& Pair);
TCommand SsConvertCommand(const TPrograms& Programs, TWork Work, const TPair& Pair);
/// The first of them, from which the sqlite3 tool appends to the table "orders".
TCommand Xls2CsvIntoSqlite3Command(const TPrograms& Programs, TWork Work, const TPair& Pair);

// ogr2ogr appends the rows of a dBase table to the table "orders", or makes a table of its own in its place;
// the quick ones in one transaction and without waiting for the disk.
TCommand OgrAppendCommand(const TPrograms& Programs, TWork Work, const TPair& Pair);
TCommand OgrQuickAppendCommand(const TPrograms& Programs, TWork Work, const TPair& Pair);
TCommand OgrOverwriteCommand(const TPrograms& Programs, TWork Work, const TPair& Pair);
TCommand OgrQuickOverwriteCommand(const TPrograms& Programs, TWork Work, const TPair& Pair);

/// mdbtools exports the table "orders" of an Access database as CSV, the sqlite3 tool appends it.
TCommand MdbExportIntoSqlite3Command(const TPrograms& Programs, TWork Work, const TPair& Pair);

} // namespace kv::bench
