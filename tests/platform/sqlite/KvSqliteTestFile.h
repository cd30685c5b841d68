// KvSqliteTestFile - a database file that a test prepares and judges through SQLite's own interface, so
// that what it tests has no part in the verdict.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include <sqlite3.h>
#include <unistd.h>

namespace kv {

/// The text "a|b|c" of each row, NULL for null.
using TRowTexts = std::vector<std::string>;

/// What most tests work on.
inline const std::string OrdersTable =
    "CREATE TABLE orders (id INTEGER PRIMARY KEY, name VARCHAR(20), qty INTEGER);";

/// A connection of its own to a file, closed at the end.
class TTestConnection
{
public:
    explicit TTestConnection(const std::string& FileName)
    {
        EXPECT_EQ(sqlite3_open(FileName.c_str(), &Handle), SQLITE_OK);
    }
    TTestConnection(const TTestConnection&) = delete;
    TTestConnection& operator=(const TTestConnection&) = delete;
    ~TTestConnection() { sqlite3_close_v2(Handle); }

    void Run(const std::string& Sql)
    {
        EXPECT_EQ(sqlite3_exec(Handle, Sql.c_str(), nullptr, nullptr, nullptr), SQLITE_OK)
            << Sql << ": " << sqlite3_errmsg(Handle);
    }

    TRowTexts Rows(std::string_view Sql)
    {
        sqlite3_stmt* Statement = nullptr;
        EXPECT_EQ(sqlite3_prepare_v2(Handle, Sql.data(), static_cast<int>(Sql.size()), &Statement, nullptr),
                  SQLITE_OK)
            << Sql << ": " << sqlite3_errmsg(Handle);
        TRowTexts Result;
        while (sqlite3_step(Statement) == SQLITE_ROW) {
            auto& Row = Result.emplace_back();
            for (int I = 0; I < sqlite3_column_count(Statement); ++I)
                Row.append(I == 0 ? "" : "|").append(CellText(Statement, I));
        }
        EXPECT_EQ(sqlite3_finalize(Statement), SQLITE_OK) << Sql << ": " << sqlite3_errmsg(Handle);
        return Result;
    }

    sqlite3* Get() const { return Handle; }

private:
    static std::string CellText(sqlite3_stmt* Statement, int Column)
    {
        if (sqlite3_column_type(Statement, Column) == SQLITE_NULL)
            return "NULL";
        const auto* const Text = reinterpret_cast<const char*>(sqlite3_column_text(Statement, Column));
        return std::string(Text, static_cast<std::size_t>(sqlite3_column_bytes(Statement, Column)));
    }

    sqlite3* Handle = nullptr;
};

/// A new file, removed at the end.
class TTestFile
{
public:
    explicit TTestFile(const std::string& Sql = OrdersTable) { Run(Sql); }
    TTestFile(const TTestFile&) = delete;
    TTestFile& operator=(const TTestFile&) = delete;
    ~TTestFile()
    {
        for (const char* const Suffix : {"", "-journal", "-wal", "-shm"})
            std::filesystem::remove(Name + Suffix);
    }

    const std::string& FileName() const { return Name; }
    void Run(const std::string& Sql) { TTestConnection(Name).Run(Sql); }
    TRowTexts Rows(std::string_view Sql) { return TTestConnection(Name).Rows(Sql); }

private:
    static std::string NewName()
    {
        static int Count = 0;
        const auto Name = "kvsqlite-" + std::to_string(getpid()) + "-" + std::to_string(++Count) + ".db";
        return (std::filesystem::temp_directory_path() / Name).string();
    }

    std::string Name = NewName();
};

} // namespace kv
