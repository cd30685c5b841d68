#include "KvBenchSql.h"

#include <stdexcept>

namespace kv::bench {

TSqlDatabase::TSqlDatabase(const std::filesystem::path& File)
{
    sqlite3* Opened = nullptr;
    const int Status = sqlite3_open(File.c_str(), &Opened);
    Connection.reset(Opened);
    if (Status != SQLITE_OK)
        throw std::runtime_error(File.string() + ": " + sqlite3_errstr(Status));
}

void TSqlDatabase::Execute(const std::string& Sql)
{
    if (sqlite3_exec(Handle(), Sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK)
        throw std::runtime_error(sqlite3_errmsg(Handle()));
}

std::string TSqlDatabase::TextOf(const std::string& Sql)
{
    std::string Result;
    const auto Keep = [](void* Text, int, char** Values, char**) {
        if (Values[0] && static_cast<std::string*>(Text)->empty())
            *static_cast<std::string*>(Text) = Values[0];
        return 0;
    };
    if (sqlite3_exec(Handle(), Sql.c_str(), Keep, &Result, nullptr) != SQLITE_OK)
        throw std::runtime_error(sqlite3_errmsg(Handle()));
    return Result;
}

TSqlStatement::TSqlStatement(TSqlDatabase& Database, std::string_view Sql)
{
    sqlite3_stmt* Prepared = nullptr;
    const int Status =
        sqlite3_prepare_v2(Database.Handle(), Sql.data(), static_cast<int>(Sql.size()), &Prepared, nullptr);
    Handle.reset(Prepared);
    if (Status != SQLITE_OK)
        throw std::runtime_error(sqlite3_errmsg(Database.Handle()));
}

void TSqlStatement::BindNull(int Parameter)
{
    Check(sqlite3_bind_null(Handle.get(), Parameter));
}

void TSqlStatement::Bind(int Parameter, sqlite3_int64 Value)
{
    Check(sqlite3_bind_int64(Handle.get(), Parameter, Value));
}

void TSqlStatement::Bind(int Parameter, double Value)
{
    Check(sqlite3_bind_double(Handle.get(), Parameter, Value));
}

void TSqlStatement::Bind(int Parameter, std::string_view Text)
{
    Check(sqlite3_bind_text(Handle.get(), Parameter, Text.data(), static_cast<int>(Text.size()),
                            SQLITE_STATIC));
}

bool TSqlStatement::Run()
{
    const bool Row = sqlite3_step(Handle.get()) == SQLITE_ROW;
    Check(sqlite3_reset(Handle.get()));             // repeats the error of a failed step
    return Row;
}

void TSqlStatement::Check(int Status)
{
    if (Status != SQLITE_OK)
        throw std::runtime_error(sqlite3_errmsg(sqlite3_db_handle(Handle.get())));
}

} // namespace kv::bench
