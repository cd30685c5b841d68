#include "KvSqliteDatabase.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include "KvSqliteTestTable.h"

namespace kv {

namespace {

std::string OpenMessage(const std::string& FileName)
{
    TSQLiteDatabase Database;
    Database.DatabaseName = FileName;
    return MessageOf(FileName, [&] { Database.Open(); });
}

TEST(KvSqliteDatabase, MissingFileIsAnErrorAndStaysMissing)
{
    EXPECT_EQ(OpenMessage("/tmp/no/such.db"), "Cannot open database \"/tmp/no/such.db\": No such file or directory");
    const auto Name = (std::filesystem::temp_directory_path() / "kvsqlite-missing.db").string();
    EXPECT_EQ(OpenMessage(Name), "Cannot open database \"" + Name + "\": No such file or directory");
    EXPECT_FALSE(std::filesystem::exists(Name));
}

TEST(KvSqliteDatabase, MissingFileIsCreatedOnRequest)
{
    TTestFile File("");
    std::filesystem::remove(File.FileName());
    TSQLiteDatabase Database;
    Database.DatabaseName = File.FileName();
    Database.CreateIfMissing = true;
    Database.Execute("CREATE TABLE a (x)");
    Database.Close();
    EXPECT_EQ(File.Rows("SELECT name FROM sqlite_schema"), TRowTexts{"a"});
}

TEST(KvSqliteDatabase, DirectoryIsNoDatabase)
{
    const auto Name = std::filesystem::temp_directory_path().string();
    EXPECT_EQ(OpenMessage(Name), "Cannot open database \"" + Name + "\": Is a directory");
}

TEST(KvSqliteDatabase, OtherFilesAreNoDatabase)
{
    TTestFile File("");
    std::ofstream(File.FileName()) << std::string(1000, 'x');
    EXPECT_EQ(OpenMessage(File.FileName()), "file is not a database");
}

TEST(KvSqliteDatabase, EmptyFileIsADatabaseWithoutTables)
{
    TTestFile File("");
    std::ofstream{File.FileName()};
    TSQLiteDatabase Database;
    Database.DatabaseName = File.FileName();
    EXPECT_TRUE(Database.TableNames().empty());
}

TEST(KvSqliteDatabase, NameIsNeeded)
{
    EXPECT_EQ(OpenMessage(""), "Property DatabaseName wasn't specified.");
}

TEST(KvSqliteDatabase, MemoryNeedsNoFile)
{
    TSQLiteDatabase Database;
    Database.DatabaseName = ":memory:";
    Database.Execute("CREATE TABLE a (x); INSERT INTO a VALUES (1)");
    EXPECT_EQ(Database.TableNames(), TTexts{"a"});
}

TEST(KvSqliteDatabase, ReadOnlyRefusesChanges)
{
    TTestFile File;
    TSQLiteDatabase Database;
    Database.DatabaseName = File.FileName();
    Database.ReadOnly = true;
    TSQLiteTable Table;
    Table.SetDatabase(&Database);
    Table.TableName = "orders";
    Table.Open();
    EXPECT_EQ(MessageOf(File.FileName(), [&] { AppendRecord(Table, {{"qty", 1}}); }),
              "orders: attempt to write a readonly database");
}

TEST(KvSqliteDatabase, TablesAndViewsAreListedByName)
{
    TTestFile File("CREATE TABLE b (x); CREATE TABLE A (x INTEGER PRIMARY KEY AUTOINCREMENT); CREATE VIEW c AS SELECT 1;"
                   "CREATE INDEX i ON b (x)");
    TSQLiteDatabase Database;
    Database.DatabaseName = File.FileName();
    EXPECT_EQ(Database.TableNames(), (TTexts{"A", "b", "c"}));
}

TEST(KvSqliteDatabase, ExecuteTellsWhatIsWrong)
{
    TTestFile File;
    TSQLiteDatabase Database;
    Database.DatabaseName = File.FileName();
    EXPECT_EQ(MessageOf(File.FileName(), [&] { Database.Execute("SELEC 1"); }), "near \"SELEC\": syntax error");
}

TEST(KvSqliteDatabase, CacheSizeIsSetOnRequestOnly)
{
    TTestFile File;
    for (const int Size : {0, 8000}) {
        TSQLiteDatabase Database;
        Database.DatabaseName = File.FileName();
        Database.CacheSize = Size;
        Database.Execute("CREATE TABLE IF NOT EXISTS sizes AS SELECT * FROM pragma_cache_size WHERE 0;"
                         "INSERT INTO sizes SELECT * FROM pragma_cache_size");
    }
    EXPECT_EQ(File.Rows("SELECT * FROM sizes"), (TRowTexts{"-2000", "-8000"}));
}

TEST(KvSqliteDatabase, ClosingClosesItsDatasets)
{
    TTestFile File;
    TSQLiteDatabase Database;
    Database.DatabaseName = File.FileName();
    TSQLiteTable First, Second;
    for (auto* const Table : {&First, &Second}) {
        Table->SetDatabase(&Database);
        Table->TableName = "orders";
        Table->CommitEvery = 10;
        Table->Open();
        AppendRecord(*Table, {{"qty", 1}});
    }
    Database.Close();
    EXPECT_FALSE(First.Active());
    EXPECT_FALSE(Second.Active());
    EXPECT_EQ(File.Rows("SELECT count(*) FROM orders"), TRowTexts{"2"});
    First.Open();                                   // which opens the database again
    EXPECT_EQ(First.RecordCount(), 2);
}

TEST(KvSqliteDatabase, MayGoBeforeItsDatasets)
{
    TTestFile File;
    TSQLiteTable Table;
    {
        TSQLiteDatabase Database;
        Database.DatabaseName = File.FileName();
        Table.SetDatabase(&Database);
        Table.TableName = "orders";
        Table.Open();
        Database.StartTransaction();
        AppendRecord(Table, {{"qty", 1}});
    }
    EXPECT_FALSE(Table.Active());
    EXPECT_EQ(Table.GetDatabase(), nullptr);
    EXPECT_EQ(File.Rows("SELECT count(*) FROM orders"), TRowTexts{"0"});
}

TEST(KvSqliteDatabase, DatasetsShareItsTransaction)
{
    TTestFile File("CREATE TABLE a (x INT); CREATE TABLE b (x INT)");
    TSQLiteDatabase Database;
    Database.DatabaseName = File.FileName();
    TSQLiteTable A, B;
    A.SetDatabase(&Database);
    A.TableName = "a";
    A.Open();
    B.SetDatabase(&Database);
    B.TableName = "b";
    B.Open();
    Database.StartTransaction();
    AppendRecord(A, {{"x", 1}});
    AppendRecord(B, {{"x", 2}});
    Database.Rollback();
    EXPECT_EQ(A.RecordCount() + B.RecordCount(), 0);
}

/// Counts for ever unless something ends it.
const std::string EndlessInsert =
    "INSERT INTO orders (qty) WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n) SELECT i FROM n";

TEST(KvSqliteDatabase, StatementThatWorksIsEndedByOnWork)
{
    TTestFile File;
    TSQLiteDatabase Database;
    Database.DatabaseName = File.FileName();
    int Asked = 0;
    Database.OnWork = [&Asked] { return ++Asked < 10; };
    EXPECT_EQ(MessageOf(File.FileName(), [&] { Database.Execute(EndlessInsert); }), "interrupted");
    EXPECT_EQ(Asked, 10);
    Asked = 0;
    Database.Execute("INSERT INTO orders VALUES (1, 'after', 1)");
    EXPECT_EQ(File.Rows("SELECT name FROM orders"), TRowTexts{"after"});
}

TEST(KvSqliteDatabase, TransactionThatOnWorkEndsIsUndoneAndSaysSo)
{
    TTestFile File;
    TSQLiteDatabase Database;
    Database.DatabaseName = File.FileName();
    bool GoesOn = true;
    Database.OnWork = [&GoesOn] { return GoesOn; };
    Database.StartTransaction();
    Database.Execute("INSERT INTO orders VALUES (1, 'before', 1)");
    GoesOn = false;
    const auto Message = MessageOf(File.FileName(), [&] { Database.Execute(EndlessInsert); });
    EXPECT_TRUE(Message.starts_with("interrupted; the transaction was rolled back")) << Message;
    Database.Rollback();
    EXPECT_EQ(File.Rows("SELECT count(*) FROM orders"), TRowTexts{"0"});
}

TEST(KvSqliteDatabase, JournalAndSynchronisationStayAsTheyAre)
{
    TTestFile File("PRAGMA journal_mode = WAL; CREATE TABLE orders (id INTEGER PRIMARY KEY, name TEXT, qty INT)");
    {
        TSQLiteTable Table;
        Table.DatabaseName = File.FileName();
        Table.TableName = "orders";
        Table.Open();
        AppendRecord(Table, {{"qty", 1}});
    }
    EXPECT_EQ(File.Rows("PRAGMA journal_mode"), TRowTexts{"wal"});
}

} // namespace

} // namespace kv
