#include "KvCompareWorkspace.h"

#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <system_error>

#include <unistd.h>

#include "KvBenchSheetOrders.h"
#include "KvBenchSql.h"
#include "KvBenchTables.h"
#include "KvBenchWorkbook.h"
#include "KvCompareProcess.h"

namespace kv::bench {

namespace fs = std::filesystem;

namespace {

void Write(const fs::path& File, std::string (*Make)(std::size_t), std::uint64_t Rows)
{
    RunApart([&] {
        const auto Bytes = Make(Rows);
        std::ofstream Out(File, std::ios::binary);
        if (!Out.write(Bytes.data(), std::ssize(Bytes)).flush())
            throw std::runtime_error("Cannot write " + File.string());
    });
}

} // namespace

TWorkspace::TWorkspace(const fs::path& Parent, fs::path YardstickProgram)
    : Yardstick(std::move(YardstickProgram))
{
    auto Name = (Parent / "kvimport-compare-XXXXXX").string();
    if (!::mkdtemp(Name.data()))
        throw std::system_error(errno, std::generic_category(), Name);
    Directory = Name;
}

TWorkspace::~TWorkspace()
{
    std::error_code Ignored;
    fs::remove_all(Directory, Ignored);
}

fs::path TWorkspace::Orders(TOrderLines Lines, std::uint64_t Rows)
{
    static constexpr const char* Extensions[] = {".csv", ".txt", ".html", ".xml"}; // by kind of lines
    const auto Name = "orders-" + std::to_string(Rows) + Extensions[Lines];
    return Made(Name, [&](const fs::path& File) { WriteOrders(File, Lines, Rows); });
}

fs::path TWorkspace::KeyedOrders(std::uint64_t Rows, std::uint64_t TableRows)
{
    const auto Name = "keyed-" + std::to_string(Rows) + "-of-" + std::to_string(TableRows) + ".csv";
    return Made(Name, [&](const fs::path& File) { WriteKeyedOrders(File, Rows, TableRows); });
}

fs::path TWorkspace::Workbook(std::uint64_t Rows)
{
    return Made("orders.xls", [&](const fs::path& File) { Write(File, MakeWorkbook, Rows); });
}

fs::path TWorkspace::LotusSheet(std::uint64_t Rows)
{
    return Made("orders.wk1", [&](const fs::path& File) { Write(File, MakeLotusSheet, Rows); });
}

fs::path TWorkspace::QuattroSheet(std::uint64_t Rows)
{
    return Made("orders.wq1", [&](const fs::path& File) { Write(File, MakeQuattroSheet, Rows); });
}

fs::path TWorkspace::SheetOrders(std::uint64_t Rows)
{
    return Made("sheet-orders.csv", [&](const fs::path& File) { WriteSheetOrders(File, Rows); });
}

fs::path TWorkspace::SheetTable()
{
    return Made("sheet-orders.db", [&](const fs::path& File) {
        TSqlDatabase(File).Execute(CreateSheetOrdersSql());
    });
}

fs::path TWorkspace::ParadoxTable(std::uint64_t Rows)
{
    return Made("orders.db", [&](const fs::path& File) { Write(File, MakeParadoxTable, Rows); });
}

fs::path TWorkspace::DbaseTable(std::uint64_t Rows)
{
    return Made("orders.dbf", [&](const fs::path& File) { Write(File, MakeDbaseTable, Rows); });
}

fs::path TWorkspace::Table(TOrderKey Key, std::uint64_t Rows)
{
    const auto Name = std::string(Key == okIndexed ? "indexed-" : "plain-") + std::to_string(Rows) + ".db";
    return Made(Name, [&](const fs::path& File) {
        TSqlDatabase(File).Execute(CreateOrdersSql(Key));
        if (Rows > 0)
            RunProcess({Yardstick, "append", Orders(olDelimited, Rows), File});
    });
}

fs::path TWorkspace::FreshCopy(const fs::path& Database)
{
    const auto Copy = Directory / "fresh.db";
    fs::copy_file(Database, Copy, fs::copy_options::overwrite_existing);
    ::sync();
    return Copy;
}

fs::path TWorkspace::Made(const std::string& Name, const std::function<void(const fs::path&)>& Make)
{
    const auto File = Directory / Name;
    if (!fs::exists(File))
        Make(File);
    return File;
}

} // namespace kv::bench
