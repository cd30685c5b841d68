#include "KvSqliteBulkCache.h"

#include <gtest/gtest.h>

#include <string>

#include "KvBulkRun.h"
#include "KvSqliteDatabase.h"
#include "KvSqliteQuery.h"
#include "KvSqliteTestTable.h"
#include "KvTestRun.h"

namespace kv {

namespace {

/// A shared database, so that the cache can be asked for beside the table.
struct KvSqliteBulkCache : testing::Test
{
    KvSqliteBulkCache()
    {
        Database.DatabaseName = File.FileName();
        Table.SetDatabase(&Database);
        Table.TableName = "orders";
    }

    std::string CacheSize(const std::string& Schema = "main")
    {
        TSQLiteQuery Query;
        Query.SetDatabase(&Database);
        Query.SQL.Add("SELECT cache_size FROM pragma_cache_size('" + Schema + "')");
        Query.Open();
        return Query.Fields(0).AsString();
    }
    void Begin(TKvBulkKind Kind, std::vector<std::string> Keys)
    {
        Table.Open();
        Table.BeginBulk({.Kind = Kind, .Keys = std::move(Keys)});
    }
    /// The cache during and after a run of the engine in `Mode`.
    std::string CacheOfRun(TImportMode Mode)
    {
        TTestRun Run;
        std::string During;
        Table.Open();
        Run.Import.SetDataSet(&Table);
        Run.Import.Mappings().SetText("id=Field1\nname=Field2\n");
        Run.Import.DatasetKeys = "ID";
        Run.Import.Rows = {{1, "Ada"}, {2, "Bob"}};
        Run.Import.Mode = Mode;
        Run.Import.OnBeforeUpdate = [&](TKvImportBaseComponent&) { During = CacheSize(); };
        Run.Import.Execute();
        EXPECT_EQ(Run.Import.Statistic.Result, irExecuted);
        return During + " " + CacheSize();
    }

    TTestFile File;
    TSQLiteDatabase Database;
    TSQLiteTable Table;
};

TEST_F(KvSqliteBulkCache, IsThereDuringAKeyedRunOfTheEngine)
{
    for (const auto Mode : {imAppendUpdate, imUpdate, imDelete})
        EXPECT_EQ(CacheOfRun(Mode), "-12288 -2000") << Mode;
}

TEST_F(KvSqliteBulkCache, IsNotNeededToAppend)
{
    EXPECT_EQ(CacheOfRun(imAppend), "-2000 -2000");
    EXPECT_EQ(CacheOfRun(imCopy), "-2000 -2000");
}

TEST_F(KvSqliteBulkCache, GivesWayToWhatTheProgramHasSet)
{
    Database.CacheSize = 3000;
    EXPECT_EQ(CacheOfRun(imAppendUpdate), "-3000 -3000");
}

TEST_F(KvSqliteBulkCache, NeverShrinksACache)
{
    Database.Execute("PRAGMA cache_size = -50000");
    EXPECT_EQ(CacheOfRun(imAppendUpdate), "-50000 -50000");
    Database.Execute("PRAGMA cache_size = 5000");   // pages of 4096 bytes
    EXPECT_EQ(CacheOfRun(imAppendUpdate), "5000 5000");
    Database.Execute("PRAGMA cache_size = 300");
    EXPECT_EQ(CacheOfRun(imAppendUpdate), "-12288 300");
}

TEST_F(KvSqliteBulkCache, GoesWithTheTableToo)
{
    Begin(bkDelete, {"id"});
    EXPECT_EQ(CacheSize(), "-12288");
    Table.Close();
    EXPECT_EQ(CacheSize(), "-2000");
    Table.EndBulk();                                // of a run that ended before
}

TEST_F(KvSqliteBulkCache, IsThatOfTheDatabaseThatHoldsTheTable)
{
    TTestFile Archive;
    Database.Execute("ATTACH '" + Archive.FileName() + "' AS archive");
    Table.TableName = "archive.orders";
    Begin(bkUpdate, {"id"});
    EXPECT_EQ(CacheSize(), "-2000");
    EXPECT_EQ(CacheSize("archive"), "-12288");
    Table.EndBulk();
    EXPECT_EQ(CacheSize("archive"), "-2000");
}

TEST_F(KvSqliteBulkCache, EndsWhileRecordsStillWait)
{
    Begin(bkAppendUpdate, {"id"});
    Database.StartTransaction();
    for (int Id = 1; Id <= 3000; ++Id)
        AppendRecord(Table, {{"id", Id}});
    Table.EndBulk();
    EXPECT_EQ(CacheSize(), "-2000");
    Database.Commit();
    EXPECT_EQ(File.Rows("SELECT count(*) FROM orders"), TRowTexts{"3000"});
}

TEST_F(KvSqliteBulkCache, NeedsAnOpenTable)
{
    EXPECT_THROW(Table.BeginBulk({.Kind = bkUpdate, .Keys = {"id"}}), EDatabaseError);
}

} // namespace

} // namespace kv
