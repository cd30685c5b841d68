// KvExampleFiles - the files of the folder examples that no editor writes, made by our own writers.
#pragma once

#include <string>
#include <vector>

namespace kv {

struct TExampleFile
{
    std::string Name;                               ///< "orders.xls"
    std::string Bytes;
};

/// orders.xls, of Excel 97, has two sheets, the second of them orders; orders.wk1 and orders.wq1 hold the
/// orders of an MS-DOS program, their dates as serial numbers.
std::vector<TExampleFile> ExampleBooks();

/// orders.dbf, of dBase IV in code page 850, has a deleted record; orders.db, of Paradox 7 in code page 1252,
/// amounts of money. Orders that were not shipped yet have no date for it. The notes of the orders stand in
/// orders.dbt and orders.mb.
std::vector<TExampleFile> ExampleTables();

} // namespace kv
