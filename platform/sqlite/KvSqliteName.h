// KvSqliteName - names of tables and columns as SQL wants them written, and lists of them.
#pragma once

#include <string>
#include <string_view>

namespace kv {

/// `Name` in double quotes, whatever characters it holds.
std::string QuoteName(std::string_view Name);

/// Appends `Item` to the text `List`, after `Separator` unless it is the first.
void AddToList(std::string& List, std::string_view Item, std::string_view Separator = ", ");

/// A table and the schema that holds it: "main", "temp" or the name of an attached database.
struct TSQLiteName
{
    std::string Schema;                             ///< Empty: the first schema that has such a table.
    std::string Name;
};

/// Reads "table" or "schema.table", each part plain or quoted as "x", [x], 'x' or `x`.
TSQLiteName ParseTableName(std::string_view Text);

} // namespace kv
