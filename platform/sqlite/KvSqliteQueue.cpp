#include "KvSqliteQueue.h"

#include <algorithm>
#include <string_view>

#include "KvSqliteName.h"
#include "KvSqliteStatement.h"
#include "KvText.h"

namespace kv {

/// Looks at the declaration as text: a word too many costs speed, one too few a wrong answer.
bool CanRefuse(TSQLiteConnection& Connection, const TSQLiteTableSchema& Table)
{
    if (Table.IsView || Table.IsVirtual || Table.WithoutRowid || Table.Key.size() != 1)
        return true;
    TSQLiteStatement Select(Connection,
                            "SELECT sql FROM " + QuoteName(Table.Schema) +
                            ".sqlite_schema WHERE type = 'table' AND name = ?1"
                            " AND NOT EXISTS (SELECT 1 FROM " + QuoteName(Table.Schema) + ".sqlite_schema"
                            " WHERE type IN ('trigger', 'index') AND tbl_name = ?1 COLLATE NOCASE)"
                            " AND NOT EXISTS (SELECT 1 FROM temp.sqlite_schema"
                            " WHERE type = 'trigger' AND tbl_name = ?1 COLLATE NOCASE)");
    Select.Bind(1, TSQLiteValue::OfText(Table.Name));
    if (!Select.Step())
        return true;
    const auto Declaration = UpperCase(Select.Column(0).Bytes);
    constexpr std::string_view Words[] = {"CHECK", "REFERENCES", "GENERATED", "AS (",    "AS(",
                                          "STRICT", "CONFLICT",  "COLLATE",   "DEFAULT", "AUTOINCREMENT"};
    const auto Names = [&Declaration](std::string_view Word) {
        return Declaration.find(Word) != std::string::npos;
    };
    return std::ranges::any_of(Words, Names);
}

bool IsReferredTo(TSQLiteConnection& Connection, const TSQLiteTableSchema& Table)
{
    TSQLiteStatement Enforced(Connection, "PRAGMA foreign_keys");
    return Enforced.Step() && Enforced.Column(0).Integer != 0 && !ReadReferences(Connection, Table).empty();
}

bool FitsIntoQueue(const TRecordBuffer& Record, std::span<const std::size_t> Columns)
{
    constexpr std::size_t MaxTextSize = 1 << 20;    // longer text has a limit in SQLite to pass
    return std::ranges::all_of(Columns, [&Record](std::size_t Column) {
        const auto& Value = Record.Values[Column];
        return !Value.IsString() || Value.Text().size() <= MaxTextSize;
    });
}

} // namespace kv
