#include "KvShop.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

namespace kv {

namespace {

int AppendRow(void* Target, int Count, char** Values, char**)
{
    auto& Text = *static_cast<std::string*>(Target);
    if (!Text.empty())
        Text += '\n';
    for (int I = 0; I < Count; ++I)
        Text.append(I > 0 ? "|" : "").append(Values[I] ? Values[I] : "NULL");
    return 0;
}

TArguments Complete(const TShop& Shop, const std::string& File, const TArguments& Arguments)
{
    TArguments All{File, "--to", Shop.Database(), "--table", "orders"};
    All.insert(All.end(), Arguments.begin(), Arguments.end());
    return All;
}

} // namespace

TShop::TShop(std::string_view Sql)
{
    Ask(Sql);
}

std::string TShop::Ask(std::string_view Sql) const
{
    sqlite3* Handle = nullptr;
    EXPECT_EQ(sqlite3_open(Database().c_str(), &Handle), SQLITE_OK);
    sqlite3_busy_timeout(Handle, 10000);
    std::string Text;
    char* Message = nullptr;
    if (sqlite3_exec(Handle, std::string(Sql).c_str(), &AppendRow, &Text, &Message) != SQLITE_OK)
        ADD_FAILURE() << Message << ": " << Sql;
    sqlite3_free(Message);
    sqlite3_close(Handle);
    return Text;
}

nlohmann::json TShop::Import(std::string_view Text, const TArguments& Arguments) const
{
    return ImportWithJson(Folder, Complete(*this, Folder.Write("orders.csv", Text), Arguments));
}

TProgramResult TShop::Run(std::string_view Text, const TArguments& Arguments) const
{
    return ImportFile(Folder.Write("orders.csv", Text), Arguments);
}

TProgramResult TShop::ImportFile(const std::string& File, const TArguments& Arguments) const
{
    auto All = Complete(*this, File, Arguments);
    All.insert(All.begin(), "import");
    return RunKvImport(Folder, All);
}

} // namespace kv
