// KvShop - an SQLite database to import into, and what stands in it afterwards: asked through SQLite
// itself, so that no reading of ours can repeat a mistake of our writing.
#pragma once

#include <string>
#include <string_view>

#include "KvProgramRun.h"

namespace kv {

/// A folder with "shop.db". Fails the test when SQLite refuses.
class TShop
{
public:
    static constexpr std::string_view Orders = "CREATE TABLE orders (ID INTEGER PRIMARY KEY, "
                                               "CITY VARCHAR(20) NOT NULL, "
                                               "ORDERED DATE, AMOUNT DECIMAL(10,2), QTY SMALLINT, "
                                               "PAID BOOLEAN, NOTE TEXT)";

    explicit TShop(std::string_view Sql = Orders);

    /// Runs statements; gives the values of all rows, those of a row separated by "|", rows by line ends.
    /// Null is "NULL", bytes that are no text are as SQLite shows them.
    std::string Ask(std::string_view Sql) const;
    long long Count(std::string_view Table = "orders") const
    {
        return std::stoll(Ask("SELECT count(*) FROM " + std::string(Table)));
    }

    /// Imports `Text` as "orders.csv" into "orders".
    nlohmann::json Import(std::string_view Text, const TArguments& Arguments = {}) const;
    TProgramResult Run(std::string_view Text, const TArguments& Arguments = {}) const;

    /// Imports a file into "orders".
    TProgramResult ImportFile(const std::string& File, const TArguments& Arguments = {}) const;

    std::string Database() const { return Folder / "shop.db"; }

    TTempFolder Folder;
};

} // namespace kv
