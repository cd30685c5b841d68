#include "KvSqliteDatabase.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include "KvProperties.h"
#include "KvSqliteConnection.h"
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
    EXPECT_EQ(OpenMessage("/tmp/no/such.db"),
              "Cannot open database \"/tmp/no/such.db\": No such file or directory");
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
    TTestFile File(
        "CREATE TABLE b (x); CREATE TABLE A (x INTEGER PRIMARY KEY AUTOINCREMENT); CREATE VIEW c AS SELECT 1;"
        "CREATE INDEX i ON b (x)");
    TSQLiteDatabase Database;
    Database.DatabaseName = File.FileName();
    EXPECT_EQ(Database.TableNames(), (TTexts{"A", "b", "c"}));
}

// --- As a database of any kind ----------------------------------------------------------------------

/// Opened by URL.
struct KvSqliteDatabaseUrl : testing::Test
{
    KvSqliteDatabaseUrl() { RegisterSqliteDatabases(); }

    static std::string OpenMessage(const std::string& Url)
    {
        return MessageOf("", [&] { OpenDatabase(Url); });
    }
};

TEST_F(KvSqliteDatabaseUrl, IsTheFileWithAndWithoutScheme)
{
    TTestFile File;
    for (const auto& Url : {"sqlite:" + File.FileName(), "SQLite:" + File.FileName(), File.FileName()}) {
        const auto Database = OpenDatabase(Url);
        EXPECT_TRUE(Database->Connected());
        EXPECT_EQ(Database->DatabaseName, File.FileName());
        EXPECT_EQ(Database->TableNames(), TTexts{"orders"});
    }
}

TEST_F(KvSqliteDatabaseUrl, OfWhatIsNoDatabaseSaysSo)
{
    TTestFile Empty(""), Other("");
    std::ofstream{Empty.FileName()};
    std::ofstream(Other.FileName()) << std::string(1000, 'x');
    const auto Folder = std::filesystem::temp_directory_path().string();
    EXPECT_EQ(OpenMessage(Folder), "Cannot open database \"" + Folder + "\": it is a directory");
    EXPECT_EQ(OpenMessage("/tmp/no/such.db"),
              "Cannot open database \"/tmp/no/such.db\": No such file or directory");
    EXPECT_EQ(OpenMessage(Empty.FileName()),
              "Cannot open database \"" + Empty.FileName() + "\": the file is empty, it has no tables");
    EXPECT_EQ(OpenMessage(Other.FileName()), Other.FileName() + ": file is not a database");
    EXPECT_EQ(OpenMessage("sqlite:"), "Property DatabaseName wasn't specified.");
}

TEST_F(KvSqliteDatabaseUrl, OfAnEmptyFileIsFineForWhoCreates)
{
    TTestFile File("");
    std::ofstream{File.FileName()};
    const auto Database = MakeDatabase(File.FileName());
    SetPropValue(*Database, "CreateIfMissing", true);
    Database->Open();
    EXPECT_TRUE(Database->Tables().empty());
}

TEST_F(KvSqliteDatabaseUrl, TellsTablesFromViews)
{
    TTestFile File("CREATE TABLE b (x); CREATE TABLE A (x); CREATE VIEW c AS SELECT 1");
    std::string Text;
    const auto Database = OpenDatabase(File.FileName());
    for (const auto& Table : Database->Tables())
        Text += Table.Name + (Table.IsView ? "* " : " ") + Table.Label;
    EXPECT_EQ(Text, "A b c* ");
}

TEST_F(KvSqliteDatabaseUrl, DescribesATableWithoutOpeningIt)
{
    TTestFile File(
        "CREATE TABLE Orders (day DATE NOT NULL, nr INTEGER DEFAULT 1, name VARCHAR(20),"
        " size INT AS (length(name)), PRIMARY KEY (nr, day)); CREATE VIEW v AS SELECT name FROM Orders");
    const auto Database = OpenDatabase(File.FileName());
    const auto Table = Database->Describe("ORDERS");
    EXPECT_EQ(Table.KeyFields, (TTexts{"nr", "day"}));
    ASSERT_EQ(Table.Fields.size(), 4u);
    EXPECT_EQ(Table.Fields[0].DataType, ftDate);
    EXPECT_TRUE(Table.Fields[0].Required);
    EXPECT_TRUE(Table.Fields[1].HasDefault);
    EXPECT_EQ(Table.Fields[2].Size, 20);
    EXPECT_TRUE(Table.Fields[3].ReadOnly);
    EXPECT_EQ(Table.Fields[0].Label, "");
    EXPECT_TRUE(Database->Describe("main.v").Fields[0].ReadOnly);
    EXPECT_TRUE(Database->Describe("v").KeyFields.empty());
    EXPECT_EQ(MessageOf(File.FileName(), [&] { Database->Describe("nothing"); }),
              "no such table: nothing (there are: Orders, v)");
}

TEST_F(KvSqliteDatabaseUrl, OpensTablesInItsTransaction)
{
    TTestFile File;
    const auto Database = OpenDatabase(File.FileName());
    EXPECT_EQ(MessageOf(File.FileName(), [&] { Database->OpenTable("nothing"); }),
              "no such table: nothing (there are: orders)");
    const auto Table = Database->OpenTable("ORDERS");
    EXPECT_TRUE(Table->Active());
    Database->StartTransaction();
    AppendRecord(*Table, {{"qty", 1}});
    EXPECT_TRUE(Database->InTransaction());
    Database->Rollback();
    Database->StartTransaction();
    AppendRecord(*Table, {{"qty", 2}});
    Database->Commit();
    EXPECT_EQ(File.Rows("SELECT qty FROM orders"), TRowTexts{"2"});
}

TEST_F(KvSqliteDatabaseUrl, ClosesTheTablesThatOutliveIt)
{
    TTestFile File;
    auto Database = OpenDatabase(File.FileName());
    const auto Table = Database->OpenTable("orders");
    Database.reset();
    EXPECT_FALSE(Table->Active());
}

TEST_F(KvSqliteDatabaseUrl, FlushStoresWhatWaitsAndRaisesWhatWentWrong)
{
    TTestFile File;
    TSQLiteDatabase Database;
    Database.Flush();                               // closed: nothing waits
    Database.DatabaseName = File.FileName();
    Database.Execute("PRAGMA max_page_count = 5");
    const auto Table = Database.OpenTable("orders");
    Database.StartTransaction();
    const auto Append = [&](int Count) {
        for (int I = 0; I < Count; ++I)
            AppendRecord(*Table, {{"name", std::string(20, 'x')}});
    };
    Append(100);
    Database.Flush();
    EXPECT_EQ(sqlite3_total_changes(Database.Connection().Handle()), 100);
    const auto Message = MessageOf(File.FileName(), [&] {
        Append(1000);                               // less than is handed over at once: all of them wait
        Database.Flush();
    });
    EXPECT_TRUE(Message.starts_with("orders: database or disk is full; the transaction was rolled back"))
        << Message;
    Database.Rollback();
}

// --- Statements -------------------------------------------------------------------------------------

TEST(KvSqliteDatabase, ExecuteTellsWhatIsWrong)
{
    TTestFile File;
    TSQLiteDatabase Database;
    Database.DatabaseName = File.FileName();
    EXPECT_EQ(MessageOf(File.FileName(), [&] { Database.Execute("SELEC 1"); }),
              "near \"SELEC\": syntax error");
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
const std::string EndlessInsert = "INSERT INTO orders (qty) WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL "
                                  "SELECT i + 1 FROM n) SELECT i FROM n";

TEST(KvSqliteDatabase, StatementThatWorksIsEndedByOnWait)
{
    TTestFile File;
    TSQLiteDatabase Database;
    Database.DatabaseName = File.FileName();
    int Asked = 0;
    Database.OnWait = [&Asked] { return ++Asked < 10; };
    EXPECT_EQ(MessageOf(File.FileName(), [&] { Database.Execute(EndlessInsert); }), "interrupted");
    EXPECT_EQ(Asked, 10);
    Asked = 0;
    Database.Execute("INSERT INTO orders VALUES (1, 'after', 1)");
    EXPECT_EQ(File.Rows("SELECT name FROM orders"), TRowTexts{"after"});
}

TEST(KvSqliteDatabase, TransactionThatOnWaitEndsIsUndoneAndSaysSo)
{
    TTestFile File;
    TSQLiteDatabase Database;
    Database.DatabaseName = File.FileName();
    bool GoesOn = true;
    Database.OnWait = [&GoesOn] { return GoesOn; };
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
    TTestFile File(
        "PRAGMA journal_mode = WAL; CREATE TABLE orders (id INTEGER PRIMARY KEY, name TEXT, qty INT)");
    {
        TSQLiteTable Table;
        Table.DatabaseName = File.FileName();
        Table.TableName = "orders";
        Table.Open();
        AppendRecord(Table, {{"qty", 1}});
    }
    EXPECT_EQ(File.Rows("PRAGMA journal_mode"), TRowTexts{"wal"});
}

// --- Foreign keys -----------------------------------------------------------------------------------

const std::string Referring = "CREATE TABLE city (id INTEGER PRIMARY KEY);"
                              "CREATE TABLE orders (id INTEGER PRIMARY KEY, city INTEGER REFERENCES city);"
                              "CREATE TABLE note (city INTEGER REFERENCES CITY ON DELETE CASCADE);"
                              "INSERT INTO city VALUES (1), (2); INSERT INTO orders VALUES (1, 1);"
                              "INSERT INTO note VALUES (2);";

TEST(KvSqliteDatabase, ForeignKeysHoldOnRequestOnly)
{
    for (const bool Hold : {false, true}) {
        TTestFile File(Referring);
        TSQLiteDatabase Database;
        Database.DatabaseName = File.FileName();
        Database.ForeignKeys = Hold;
        const auto Orders = Database.OpenTable("orders"), City = Database.OpenTable("city");
        const auto AppendOrphan = [&] { AppendRecord(*Orders, {{"id", 2}, {"city", 99}}); };
        ASSERT_TRUE(City->Locate("id", 1));
        if (Hold) {
            EXPECT_EQ(FactsOf(AppendOrphan).Rule, erForeignKey);
            Orders->Cancel();
            EXPECT_EQ(FactsOf([&] { City->Delete(); }).Rule, erForeignKey);
        } else {
            AppendOrphan();
            City->Delete();
        }
    }
}

TEST(KvSqliteDatabase, ForeignKeysHoldInARunOfDeletionsToo)
{
    TTestFile File("CREATE TABLE city (id INTEGER PRIMARY KEY);"
                   "CREATE TABLE alone (id INTEGER PRIMARY KEY);"
                   "CREATE TABLE orders (id INTEGER PRIMARY KEY, city INTEGER REFERENCES city);"
                   "INSERT INTO city WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n"
                   " WHERE i < 500) SELECT i FROM n;"
                   "INSERT INTO alone SELECT id FROM city; INSERT INTO orders VALUES (1, 400);");
    TSQLiteDatabase Database;
    Database.DatabaseName = File.FileName();
    Database.ForeignKeys = true;
    const auto City = Database.OpenTable("city"), Alone = Database.OpenTable("alone");
    Database.StartTransaction();
    int Refused = 0;
    for (int Id = 1; Id <= 500; ++Id) {
        ASSERT_TRUE(City->Locate("id", Id));
        ASSERT_TRUE(Alone->Locate("id", Id));
        Alone->Delete();
        try {
            City->Delete();
        }
        catch (const EDatabaseError& Error) {
            EXPECT_EQ(Id, 400) << Error.Message;
            ++Refused;
        }
    }
    Database.Commit();
    EXPECT_EQ(Refused, 1);
    EXPECT_EQ(File.Rows("SELECT (SELECT group_concat(id) FROM city), (SELECT count(*) FROM alone)"),
              TRowTexts{"400|0"});
}

TEST_F(KvSqliteDatabaseUrl, TellsWhatRefersToATable)
{
    TTestFile Other(Referring);
    const auto Database = OpenDatabase(Other.FileName());
    const auto References = Database->Describe("City").References;
    ASSERT_EQ(References.size(), 2u);
    EXPECT_EQ(References[0].Table, "note");
    EXPECT_TRUE(References[0].Changes);
    EXPECT_EQ(References[1].Table, "orders");
    EXPECT_FALSE(References[1].Changes);
    EXPECT_TRUE(Database->Describe("orders").References.empty());
}

// --- Views ------------------------------------------------------------------------------------------

TEST(KvSqliteDatabase, ViewsTakeRecordsThroughTheirTriggers)
{
    TTestFile File(OrdersTable + "CREATE VIEW plain AS SELECT id, name FROM orders;"
                                 "CREATE VIEW open AS SELECT id, name FROM orders;"
                                 "CREATE TRIGGER opens INSTEAD OF INSERT ON open BEGIN"
                                 " INSERT INTO orders (id, name) VALUES (NEW.id, upper(NEW.name)); END;");
    TSQLiteDatabase Database;
    Database.DatabaseName = File.FileName();
    const auto Plain = Database.OpenTable("plain"), Open = Database.OpenTable("open");
    for (int Id = 1; Id <= 100; ++Id)
        AppendRecord(*Open, {{"id", Id}, {"name", "n" + std::to_string(Id)}});
    EXPECT_EQ(File.Rows("SELECT count(*), max(name) FROM orders"), TRowTexts{"100|N99"});
    EXPECT_EQ(AllOf(*Open, "name").size(), 100u);
    Plain->Append();
    EXPECT_EQ(FactsOf([&] { Plain->FieldByName("id").SetValue(1); }).Rule, erReadOnly);
    EXPECT_EQ(MessageOf(File.FileName(), [&] { Plain->Post(); }), "plain: records cannot be added to a view");
    Open->First();
    EXPECT_EQ(MessageOf(File.FileName(), [&] { Open->Delete(); }),
              "open: records of a view cannot be deleted");
    EXPECT_EQ(MessageOf(File.FileName(), [&] { EditRecord(*Open, {{"name", "x"}}); }),
              "open: records of a view cannot be changed");
}

TEST(KvSqliteDatabase, RecordsOfViewsAreChangedAndDeletedThroughTheirTriggers)
{
    TTestFile File(OrdersTable + "INSERT INTO orders VALUES (1, 'a', NULL), (2, 'b', 7), (3, 'c', NULL);"
                                 "CREATE VIEW open AS SELECT name, qty FROM orders;"
                                 "CREATE TRIGGER changes INSTEAD OF UPDATE ON open BEGIN"
                                 " UPDATE orders SET qty = NEW.qty WHERE name = OLD.name; END;"
                                 "CREATE TRIGGER deletes INSTEAD OF DELETE ON open BEGIN"
                                 " DELETE FROM orders WHERE name = OLD.name; END;");
    TSQLiteDatabase Database;
    Database.DatabaseName = File.FileName();
    const auto Open = Database.OpenTable("open");
    ASSERT_TRUE(Open->Locate("name", "c"));
    EditRecord(*Open, {{"qty", 9}});
    ASSERT_TRUE(Open->Locate("name", "b"));
    Open->Delete();
    EXPECT_EQ(File.Rows("SELECT name, qty FROM orders ORDER BY id"), (TRowTexts{"a|NULL", "c|9"}));
    Open->Append();
    Open->FieldByName("name").SetValue("d");
    EXPECT_EQ(MessageOf(File.FileName(), [&] { Open->Post(); }), "open: records cannot be added to a view");
    Open->Cancel();
    for (Open->First(); !Open->Eof();)
        Open->Delete();
    EXPECT_EQ(File.Rows("SELECT count(*) FROM orders"), TRowTexts{"0"});
}

} // namespace

} // namespace kv
