// KvExampleBooks - the workbooks of the folder examples, made by our own writers.
#pragma once

#include <string>
#include <vector>

namespace kv {

struct TExampleBook
{
    std::string Name;                               ///< "orders.xls"
    std::string Bytes;
};

/// orders.xls, of Excel 97, has two sheets, the second of them orders; orders.wk1 and orders.wq1 hold the
/// orders of an MS-DOS program, their dates as serial numbers.
std::vector<TExampleBook> ExampleBooks();

} // namespace kv
