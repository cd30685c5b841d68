// KvCompareWorkspace - a temporary directory with the files and databases that are compared on.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>

#include "KvBenchFiles.h"
#include "KvBenchSchema.h"

namespace kv::bench {

/// Everything is made when it is first asked for and removed with the object.
class TWorkspace
{
public:
    /// Makes a directory of its own inside `Parent`. `YardstickProgram` fills the databases.
    TWorkspace(const std::filesystem::path& Parent, std::filesystem::path YardstickProgram);
    ~TWorkspace();
    TWorkspace(const TWorkspace&) = delete;
    TWorkspace& operator=(const TWorkspace&) = delete;

    /// See WriteOrders and WriteKeyedOrders.
    std::filesystem::path Orders(TOrderLines Lines, std::uint64_t Rows);
    std::filesystem::path KeyedOrders(std::uint64_t Rows, std::uint64_t TableRows);

    /// See KvBenchWorkbook and KvBenchSheetOrders: the same rows in every kind of file.
    std::filesystem::path Workbook(std::uint64_t Rows);
    std::filesystem::path LotusSheet(std::uint64_t Rows);
    std::filesystem::path QuattroSheet(std::uint64_t Rows);
    std::filesystem::path SheetOrders(std::uint64_t Rows);
    /// A database with an empty table for those rows.
    std::filesystem::path SheetTable();

    /// See KvBenchTables.
    std::filesystem::path ParadoxTable(std::uint64_t Rows);
    std::filesystem::path DbaseTable(std::uint64_t Rows);

    /// A database with the orders 1 to `Rows`, not to be changed.
    std::filesystem::path Table(TOrderKey Key, std::uint64_t Rows);

    /// A copy of `Database` under a name that is always the same. Returns when all files are on the disk,
    /// so that no earlier writes are left for the measured program to wait for.
    std::filesystem::path FreshCopy(const std::filesystem::path& Database);

private:
    std::filesystem::path Made(const std::string& Name,
                               const std::function<void(const std::filesystem::path&)>& Make);

    std::filesystem::path Directory, Yardstick;
};

} // namespace kv::bench
