#include "KvSqliteQuery.h"

#include <algorithm>
#include <limits>
#include <string>

#include "KvCodePage.h"
#include "KvException.h"
#include "KvSqliteConnection.h"
#include "KvSqliteCursor.h"
#include "KvSqliteStatement.h"
#include "KvText.h"

namespace kv {

namespace {

/// `Name`, or that with a number that no column has yet.
std::string UniqueName(const std::string& Name, const std::vector<TSQLiteColumn>& Columns)
{
    auto Result = Name;
    const auto IsTaken = [&Result](const TSQLiteColumn& Column) { return SameText(Column.Def.Name, Result); };
    for (int Number = 1; std::ranges::any_of(Columns, IsTaken); ++Number)
        Result = Name + "_" + std::to_string(Number);
    return Result;
}

TSQLiteColumn DescribeColumn(sqlite3_stmt* Statement, int Index, const std::vector<TSQLiteColumn>& Before)
{
    const char* const Declared = sqlite3_column_decltype(Statement, Index);
    TSQLiteColumn Column;
    Column.Name = sqlite3_column_name(Statement, Index);
    Column.SetType(ReadDeclaredType(Declared ? Declared : ""));
    Column.Def.Name = UniqueName(Utf8ToAnsi(Column.Name), Before);
    Column.Def.ReadOnly = true;
    return Column;
}

/// The text of a query, checked, with what it gives.
TSQLiteRowSource DescribeQuery(TSQLiteConnection& Connection, std::string_view Sql)
{
    std::string_view Rest;
    const TSQLiteStatement Statement(Connection, Sql, {}, &Rest);
    const auto Select = Trim(Sql.substr(0, Sql.size() - Rest.size()));
    auto* const Handle = Statement.Get();
    if (!Statement || sqlite3_column_count(Handle) == 0 || !sqlite3_stmt_readonly(Handle))
        Connection.Fail("a query needs a statement that reads: " + std::string(Select));
    if (TSQLiteStatement(Connection, Rest))
        Connection.Fail("a query is one statement, without: " + std::string(Trim(Rest)));
    if (sqlite3_bind_parameter_count(Handle) > 0) {
        const char* const Name = sqlite3_bind_parameter_name(Handle, 1);
        Connection.Fail("a query has no parameters, but there is " + std::string(Name ? Name : "?"));
    }
    TSQLiteRowSource Source;
    Source.Select = Select.ends_with(';') ? Select.substr(0, Select.size() - 1) : Select;
    for (int I = 0; I < sqlite3_column_count(Handle); ++I)
        Source.Columns.push_back(DescribeColumn(Handle, I, Source.Columns));
    return Source;
}

} // namespace

TSQLiteQuery::TSQLiteQuery(TComponent* Owner) : TSQLiteDataSet(Owner) {}

TSQLiteQuery::~TSQLiteQuery()
{
    Close();
}

void TSQLiteQuery::InternalOpen()
{
    OpenConnection();
    if (Trim(SQL.Text()).empty())
        throw EDatabaseError("Property SQL wasn't specified.");
    std::string Buffer;
    const auto Text = SQL.Text();
    Source = std::make_unique<TSQLiteRowSource>(DescribeQuery(Connection(), AnsiToUtf8(Text, Buffer)));
    OpenCursor(*Source);
}

void TSQLiteQuery::InternalClose()
{
    TSQLiteDataSet::InternalClose();
    Source.reset();
}

int TSQLiteQuery::InternalRecordCount()
{
    // The line end keeps a comment at the end of the query from swallowing the parenthesis.
    TSQLiteStatement Count(Connection(), "SELECT COUNT(*) FROM (" + Source->Select + "\n)");
    Count.Step();
    return static_cast<int>(std::min<std::int64_t>(Count.Column(0).Integer, std::numeric_limits<int>::max()));
}

void TSQLiteQuery::RefuseChange() const
{
    Fail("the records of a query cannot be changed", {.Rule = erReadOnly});
}

void TSQLiteQuery::InternalInsert(const TRecordBuffer&)
{
    RefuseChange();
}

void TSQLiteQuery::InternalUpdate(const TRecordBuffer&)
{
    RefuseChange();
}

void TSQLiteQuery::InternalDelete()
{
    RefuseChange();
}

} // namespace kv
