// KvSqliteDatabase - one SQLite database file: its connection, transactions and tables.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "KvDatabase.h"

namespace kv {

class TSQLiteConnection;

/// Keeps SQLite from counting the memory that it allocates, in the whole process. The count takes a
/// lock for every allocation, some 6 % of an import. For programs, before they open a database;
/// afterwards it does nothing.
void StopSqliteMemoryCount();

/// Makes "sqlite:shop.db" and "shop.db" URLs of databases, for the start of a program.
void RegisterSqliteDatabases();

/// Datasets share the connection through their SetDatabase. Journal and synchronisation are as the
/// database has them, so that a crash at any instant leaves what was committed. What is said of CacheSize,
/// OnWait and Commit in TKvDatabase holds here so:
/// - CacheSize 0 is SQLite's own choice, 2000, and more during a run that looks records up by keys;
/// - OnWait is asked between two tries for a lock and every millisecond or so of work. A statement that it
///   ends undoes the transaction, and the error says so; a commit that it refuses leaves it open;
/// - BusyTimeout: SQLite waits also in the midst of a transaction, when others read and its memory is full.
///   Once that has taken too long in all, the next change raises;
/// - a transaction that the database has rolled back by itself (a full disk) cannot be committed: that
///   raises and says so.
class TSQLiteDatabase : public TKvDatabase
{
public:
    explicit TSQLiteDatabase(TComponent* Owner = nullptr);
    /// Rolls back a transaction that the program started and closes.
    ~TSQLiteDatabase() override;

    std::string_view ClassName() const override { return "TSQLiteDatabase"; }
    TPublishedProperties PublishedProperties() const override;

    // DatabaseName is the file, ":memory:" for a database without one. These count from the next Open too.
    bool ReadOnly = false;
    bool CreateIfMissing = false;                   ///< Otherwise a file that does not exist is an error.
    /// Open looks at the file first: a directory is an error, and so is a file without a byte, which SQLite
    /// takes for a database without tables, unless CreateIfMissing. On in databases that a URL has named.
    bool CheckFile = false;

    void Open() override;
    void Close() override;
    bool Connected() const override { return FConnection != nullptr; }

    /// Runs one or several statements, separated by ";", for their effect.
    void Execute(std::string_view Sql);

    std::vector<TKvTableInfo> Tables() override;    ///< Of the main database.
    TKvTableDef Describe(std::string_view TableName) override;
    std::unique_ptr<TDataSet> OpenTable(std::string_view TableName) override; ///< Gives a TSQLiteTable.

    void StartTransaction() override;               ///< Waits for the right to write.
    void Commit() override;
    void Rollback() override;
    void CheckCommit() override;
    bool InTransaction() const override;
    void Flush() override;

    /// For the datasets of this folder: the connection, opened.
    TSQLiteConnection& Connection();

private:
    std::unique_ptr<TSQLiteConnection> FConnection;
};

} // namespace kv
