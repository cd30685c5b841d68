// KvSqliteDatabase - one SQLite database file: its connection, transactions and tables.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "KvComponent.h"

namespace kv {

class TSQLiteConnection;

/// Keeps SQLite from counting the memory that it allocates, in the whole process. The count takes a
/// lock for every allocation, some 6 % of an import. For programs, before they open a database;
/// afterwards it does nothing.
void StopSqliteMemoryCount();

/// Datasets share the connection through their SetDatabase. Every operation raises EDatabaseError that
/// names the file and the reason. Journal and synchronisation are as the database has them, so that a
/// crash at any instant leaves what was committed.
class TSQLiteDatabase : public TComponent
{
public:
    explicit TSQLiteDatabase(TComponent* Owner = nullptr);
    /// Rolls back a transaction that the program started and closes.
    ~TSQLiteDatabase() override;

    std::string_view ClassName() const override { return "TSQLiteDatabase"; }
    TPublishedProperties PublishedProperties() const override;

    // Each of the following counts from the next Open.
    std::string DatabaseName;                       ///< The file; ":memory:" for a database without one.
    bool ReadOnly = false;
    bool CreateIfMissing = false;                   ///< Otherwise a file that does not exist is an error.
    int CacheSize = 0;                              ///< Page cache in KiB; 0: SQLite's own choice, 2000.

    int BusyTimeout = 5000;                         ///< Milliseconds to wait for other programs' locks.
    /// Asked between two tries while another program holds a lock; false gives up at once.
    std::function<bool()> OnBusy;
    /// Asked every millisecond or so while a statement works, such as one that builds an index; false ends
    /// it with an error. Set before Open. It must not raise.
    std::function<bool()> OnWork;

    void Open();                                    ///< Does nothing when open.
    /// Closes the datasets that are open on it, then itself. A transaction that the program started and
    /// did not commit is rolled back.
    void Close();
    bool Connected() const { return FConnection != nullptr; }

    /// Runs one or several statements, separated by ";", for their effect. Opens the database.
    void Execute(std::string_view Sql);

    // A transaction of the program's own: until Commit or Rollback all changes belong together.
    void StartTransaction();                        ///< Opens the database; waits for the right to write.
    /// Makes the changes permanent; does nothing without a transaction. When another program is in the
    /// way it raises and leaves the transaction open, to be tried again. When the database has rolled
    /// the transaction back by itself (a full disk), it raises and says so.
    void Commit();
    void Rollback();                                ///< Does nothing without a transaction.
    bool InTransaction() const;

    /// Tables and views of the main database in alphabetical order. Opens the database.
    std::vector<std::string> TableNames();

    /// For the datasets of this folder: the connection, opened.
    TSQLiteConnection& Connection();

private:
    std::unique_ptr<TSQLiteConnection> FConnection;
};

} // namespace kv
