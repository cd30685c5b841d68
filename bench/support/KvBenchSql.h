// KvBenchSql - the few calls of SQLite that the yardsticks and the driver make, with errors as exceptions.
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

#include <sqlite3.h>

namespace kv::bench {

/// A database file with the library's default settings. Every failure raises std::runtime_error with
/// the library's message.
class TSqlDatabase
{
public:
    explicit TSqlDatabase(const std::filesystem::path& File);
    void Execute(const std::string& Sql);
    /// The first column of the first row, empty when there is none or it is NULL.
    std::string TextOf(const std::string& Sql);
    sqlite3* Handle() const { return Connection.get(); }

private:
    struct TClose
    {
        void operator()(sqlite3* Opened) const { sqlite3_close(Opened); }
    };
    std::unique_ptr<sqlite3, TClose> Connection;
};

/// A statement that runs many times.
class TSqlStatement
{
public:
    TSqlStatement(TSqlDatabase& Database, std::string_view Sql);

    /// Parameters count from 1. Text is not copied: it stays where it is until Run returns.
    void BindNull(int Parameter);
    void Bind(int Parameter, sqlite3_int64 Value);
    void Bind(int Parameter, double Value);
    void Bind(int Parameter, std::string_view Text);

    /// Runs, and makes ready for the next time. True when there was a row.
    bool Run();

private:
    void Check(int Status);

    struct TFinalize
    {
        void operator()(sqlite3_stmt* Statement) const { sqlite3_finalize(Statement); }
    };
    std::unique_ptr<sqlite3_stmt, TFinalize> Handle;
};

} // namespace kv::bench
