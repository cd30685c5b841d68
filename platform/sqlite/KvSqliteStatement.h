// KvSqliteStatement - one prepared statement. For the units of this folder.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include <sqlite3.h>

#include "KvSqliteConnection.h"
#include "KvSqliteValue.h"

namespace kv {

/// Binds `Value` to the parameter `Param`, from 1; its bytes must stay until the statement is reset.
/// Gives SQLite's code.
int BindValue(sqlite3_stmt* Statement, int Param, const TSQLiteValue& Value);

/// Statements end before their connection does.
class TSQLiteStatement
{
public:
    TSQLiteStatement() = default;
    /// Every error is an EDatabaseError that begins with the file and `Subject`, if any: the table or
    /// query that the statement is about. `Rest`, when given, gets what follows the first statement of
    /// `Sql`, which is otherwise ignored. A text without a statement gives none.
    TSQLiteStatement(TSQLiteConnection& Connection, std::string_view Sql, std::string_view Subject = {},
                     std::string_view* Rest = nullptr);

    explicit operator bool() const { return Handle != nullptr; }
    sqlite3_stmt* Get() const { return Handle.get(); }

    /// `Param` counts from 1. The bytes of `Value` must stay until the statement is reset.
    void Bind(int Param, const TSQLiteValue& Value)
    {
        Connection->Settle();
        if (BindValue(Handle.get(), Param, Value) != SQLITE_OK)
            RaiseError();
    }

    /// True when there is a row. False at the end, and then reset, as after an error.
    bool Step();
    /// SQLITE_ROW, SQLITE_DONE or an error code; nothing is reset.
    int TryStep()
    {
        Connection->Settle();
        return sqlite3_step(Handle.get());
    }
    void Reset() { sqlite3_reset(Handle.get()); }

    /// Column of the current row, from 0. Views memory of the statement until it moves.
    TSQLiteValue Column(int Index) const;

private:
    struct TFinalize
    {
        void operator()(sqlite3_stmt* Statement) const { sqlite3_finalize(Statement); }
    };

    [[noreturn]] void RaiseError();

    TSQLiteConnection* Connection = nullptr;
    std::string Subject;
    std::unique_ptr<sqlite3_stmt, TFinalize> Handle;
};

inline int BindValue(sqlite3_stmt* Statement, int Param, const TSQLiteValue& Value)
{
    switch (Value.Storage) {
    case ssNull:    return sqlite3_bind_null(Statement, Param);
    case ssInteger: return sqlite3_bind_int64(Statement, Param, Value.Integer);
    case ssReal:    return sqlite3_bind_double(Statement, Param, Value.Real);
    case ssText:
        return sqlite3_bind_text64(Statement, Param, Value.Bytes.data(), Value.Bytes.size(), SQLITE_STATIC,
                                   SQLITE_UTF8);
    case ssBlob:    break;
    }
    return sqlite3_bind_blob64(Statement, Param, Value.Bytes.data(), Value.Bytes.size(), SQLITE_STATIC);
}

} // namespace kv
