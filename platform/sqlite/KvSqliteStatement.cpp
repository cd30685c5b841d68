#include "KvSqliteStatement.h"

#include "KvSqliteConnection.h"

namespace kv {

namespace {

std::string_view BytesOf(const void* Data, int Size)
{
    return Data ? std::string_view(static_cast<const char*>(Data), static_cast<std::size_t>(Size))
                : std::string_view();
}

} // namespace

TSQLiteStatement::TSQLiteStatement(TSQLiteConnection& Owner, std::string_view Sql, std::string_view About,
                                   std::string_view* Rest)
    : Connection(&Owner), Subject(About)
{
    Owner.Settle();
    sqlite3_stmt* Statement = nullptr;
    const char* End = nullptr;
    const int Code = sqlite3_prepare_v3(Owner.Handle(), Sql.data(), static_cast<int>(Sql.size()),
                                        SQLITE_PREPARE_PERSISTENT, &Statement, &End);
    Handle.reset(Statement);
    if (Code != SQLITE_OK)
        RaiseError();
    if (Rest)
        *Rest = Sql.substr(static_cast<std::size_t>(End - Sql.data()));
}

bool TSQLiteStatement::Step()
{
    const int Code = TryStep();
    if (Code == SQLITE_ROW)
        return true;
    if (Code != SQLITE_DONE)
        RaiseError();
    Reset();
    return false;
}

TSQLiteValue TSQLiteStatement::Column(int Index) const
{
    auto* const Statement = Handle.get();
    switch (sqlite3_column_type(Statement, Index)) {
    case SQLITE_INTEGER: return TSQLiteValue::OfInteger(sqlite3_column_int64(Statement, Index));
    case SQLITE_FLOAT:   return TSQLiteValue::OfReal(sqlite3_column_double(Statement, Index));
    case SQLITE_TEXT: {
        // before its size, which follows the form
        const auto* const Text = sqlite3_column_text(Statement, Index);
        return TSQLiteValue::OfText(BytesOf(Text, sqlite3_column_bytes(Statement, Index)));
    }
    case SQLITE_BLOB: {
        const auto* const Blob = sqlite3_column_blob(Statement, Index);
        return TSQLiteValue::OfBlob(BytesOf(Blob, sqlite3_column_bytes(Statement, Index)));
    }
    default: return {};
    }
}

void TSQLiteStatement::RaiseError()
{
    if (Handle)
        Reset();                                    // keeps the error
    Connection->Raise(Connection->TakeError(), Subject);
}

} // namespace kv
