#include "KvSqliteWriteError.h"

#include <string_view>
#include <vector>

#include "KvSqliteName.h"
#include "KvSqliteStatement.h"
#include "KvText.h"

namespace kv {

namespace {

bool IsWordCharacter(char C)
{
    return C == '_' || (C >= '0' && C <= '9') || (C >= 'A' && C <= 'Z') || (C >= 'a' && C <= 'z') ||
           (C & 0x80) != 0;
}

/// True when `Word` stands in `Text` and is not a part of a longer word.
bool HasWord(std::string_view Text, std::string_view Word)
{
    const auto IsEnd = [Text](std::size_t At) { return At >= Text.size() || !IsWordCharacter(Text[At]); };
    for (auto At = Text.find(Word); At != Text.npos; At = Text.find(Word, At + 1))
        if ((At == 0 || IsEnd(At - 1)) && IsEnd(At + Word.size()))
            return true;
    return false;
}

std::string ValueText(const TVariant& Value)
{
    constexpr std::size_t Longest = 80;             // bytes; what is longer tells nobody more
    if (!Value.HasValue())
        return "NULL";
    if (!Value.IsString())
        return Value.ToText();
    auto Text = Value.Text();
    if (Text.size() <= Longest)
        return "'" + std::string(Text) + "'";
    auto Cut = Longest;
    while (Cut > 0 && (Text[Cut] & 0xC0) == 0x80)   // not inside a character
        --Cut;
    return "'" + std::string(Text.substr(0, Cut)) + "...'";
}

/// Columns that refer to other tables, one a line.
std::string ReferringColumns(TSQLiteConnection& Connection, const TSQLiteTableSchema& Table)
{
    TSQLiteStatement Select(Connection, "SELECT \"from\" FROM pragma_foreign_key_list(?1, ?2)");
    Select.Bind(1, TSQLiteValue::OfText(Table.Name));
    Select.Bind(2, TSQLiteValue::OfText(Table.Schema));
    std::string Names;
    while (Select.Step())
        Names.append(Select.Column(0).Bytes).append("\n");
    return Names;
}

} // namespace

TSQLiteError DescribeRefusal(TSQLiteConnection& Connection, const TSQLiteTableSchema& Table,
                             TSQLiteError Error, const TRecordBuffer& Record, std::span<const int> Columns)
{
    const auto Named = Error.Facts.Rule == erForeignKey ? ReferringColumns(Connection, Table) : Error.Text;
    std::string Values;
    for (const int Index : Columns) {
        const auto& Column = Table.Column(Index);
        if (!HasWord(Named, Column.Name))
            continue;
        const auto& Value = Record.Values[static_cast<std::size_t>(Index)];
        AddToList(Values, Column.Def.Name + " = " + ValueText(Value));
        const char* const Separator = Error.Facts.Field.empty() ? "" : ";";
        Error.Facts.Field += Separator + Column.Def.Name;
        Error.Facts.Value += Separator + Value.ToText();
    }
    if (!Values.empty())
        Error.Text += " (" + Values + ")";
    return Error;
}

} // namespace kv
