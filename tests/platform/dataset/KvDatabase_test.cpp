#include "KvDatabase.h"

#include <filesystem>

#include "KvException.h"
#include "KvMemoryDataSet.h"
#include "KvProperties.h"
#include "KvTempFolder.h"

namespace kv {

namespace {

using testing::ElementsAre;

/// Two tables and nothing in them.
class TToyDatabase final : public TKvDatabase
{
public:
    TToyDatabase(std::string_view Driver, std::string_view Given) : DriverName(Driver)
    {
        DatabaseName = Given;
    }

    void Open() override { IsOpen = true; }
    void Close() override { IsOpen = false; }
    bool Connected() const override { return IsOpen; }
    std::vector<TKvTableInfo> Tables() override
    {
        return {{.Name = "orders", .Label = "Orders"}, {.Name = "totals", .IsView = true}};
    }
    TKvTableDef Describe(std::string_view) override { return {}; }
    std::unique_ptr<TDataSet> OpenTable(std::string_view) override
    {
        return std::make_unique<TMemoryDataSet>();
    }
    void StartTransaction() override {}
    void Commit() override {}
    void Rollback() override {}
    void CheckCommit() override {}
    bool InTransaction() const override { return false; }
    void Flush() override {}

    const std::string DriverName;

private:
    bool IsOpen = false;
};

TKvDatabaseDriver ToyDriver(const std::string& Scheme, bool TakesPaths = false)
{
    return {
        .Scheme = Scheme,
        .Title = "Toy",
        .Create = [Scheme](std::string_view Name) { return std::make_unique<TToyDatabase>(Scheme, Name); },
        .TakesPaths = TakesPaths};
}

/// "<driver> <what it was given>" of the database that `Url` names, or the error.
std::string Named(std::string_view Url)
{
    try {
        const auto Database = MakeDatabase(Url);
        return dynamic_cast<TToyDatabase&>(*Database).DriverName + " " + Database->DatabaseName;
    }
    catch (const EDatabaseError& Error) {
        EXPECT_EQ(Error.Facts.Rule, erMissing);
        return Error.Message;
    }
}

struct KvDatabaseUrl : testing::Test
{
    KvDatabaseUrl()
    {
        RegisterDatabaseDriver(ToyDriver("server"));
        RegisterDatabaseDriver(ToyDriver("toy", true));
    }
};

TEST_F(KvDatabaseUrl, BeginsWithARegisteredSchemeInAnyCase)
{
    EXPECT_EQ(Named("toy:shop.db"), "toy shop.db");
    EXPECT_EQ(Named("TOY:shop.db"), "toy shop.db");
    EXPECT_EQ(Named("server:host=a port=1"), "server host=a port=1");
    EXPECT_EQ(Named("toy::memory:"), "toy :memory:");
    EXPECT_EQ(Named("toy:server:x"), "toy server:x");
}

TEST_F(KvDatabaseUrl, IsElseThePathOfAFile)
{
    for (const std::string Path : {"shop.db", "C:\\shop.db", "C:shop.db", "./a:b.db", "/tmp/toy:x",
                                   ":memory:", "", "shop.db:1", "my shop:x"})
        EXPECT_EQ(Named(Path), "toy " + Path);
}

TEST_F(KvDatabaseUrl, OfAnUnknownKindListsTheKnownOnes)
{
    EXPECT_EQ(Named("abacus:shop"),
              "Cannot open database \"abacus:shop\": there is no such file, and \"abacus\" is no "
              "kind of database (known: server, toy)");
}

TEST_F(KvDatabaseUrl, NeedsASchemeWhenNoKindIsAFile)
{
    RegisterDatabaseDriver(ToyDriver("toy"));
    EXPECT_EQ(Named("shop.db"),
              "Cannot open database \"shop.db\": it does not say what kind of database it is "
              "(known: server, toy)");
}

TEST_F(KvDatabaseUrl, MayBeAFileThatReadsLikeOne)
{
    const TTempFolder Folder;
    Folder.Write("shop:2024", "");
    const auto Before = std::filesystem::current_path();
    std::filesystem::current_path(Folder.Path);
    EXPECT_EQ(Named("shop:2024"), "toy shop:2024");
    std::filesystem::current_path(Before);
}

TEST_F(KvDatabaseUrl, IsClosedUntilItIsOpened)
{
    EXPECT_FALSE(MakeDatabase("toy:x")->Connected());
    EXPECT_TRUE(OpenDatabase("toy:x")->Connected());
}

TEST_F(KvDatabaseUrl, LaterDriverTakesThePlaceOfOneOfItsScheme)
{
    const auto Count = DatabaseDrivers().size();
    RegisterDatabaseDriver(ToyDriver("Server"));
    EXPECT_EQ(DatabaseDrivers().size(), Count);
    EXPECT_EQ(Named("server:x"), "Server x");
    RegisterDatabaseDriver(ToyDriver("server"));
}

TEST_F(KvDatabaseUrl, GivesADatabaseThatPublishesItsSettings)
{
    const auto Database = MakeDatabase("toy:x");
    SetPropValue(*Database, "CacheSize", 100);
    SetPropValue(*Database, "BusyTimeout", "7");
    EXPECT_EQ(Database->CacheSize, 100);
    EXPECT_EQ(Database->BusyTimeout, 7);
    EXPECT_EQ(GetPropValue(*Database, "DatabaseName").ToText(), "x");
}

TEST_F(KvDatabaseUrl, NamesAreThoseOfItsTables)
{
    EXPECT_THAT(MakeDatabase("toy:x")->TableNames(), ElementsAre("orders", "totals"));
}

} // namespace

} // namespace kv
