// KvSqliteDataSet - what tables and queries of an SQLite database have in common: the connection, which
// they own or share, and reading through a cursor.
#pragma once

#include <memory>
#include <span>
#include <string>

#include "KvDataSet.h"

namespace kv {

class TSQLiteConnection;
class TSQLiteCursor;
class TSQLiteDatabase;
struct TSQLiteRowSource;

/// Text passes between UTF-8 in the database and the process's code page. A stored value that does not
/// fit its column's declared type reads as what it is: 'abc' in an INTEGER column is text.
class TSQLiteDataSet : public TDataSet
{
public:
    explicit TSQLiteDataSet(TComponent* Owner = nullptr);
    ~TSQLiteDataSet() override;

    TPublishedProperties PublishedProperties() const override;

    /// The file to open a connection of its own to; unused when SetDatabase gave one.
    std::string DatabaseName;
    /// A connection to share; not owned, forgotten when it is destroyed. Set while closed.
    TSQLiteDatabase* GetDatabase() const { return FDatabase; }
    void SetDatabase(TSQLiteDatabase* Value);

protected:
    friend class TSQLiteConnection;

    // Reading, for what InternalOpen has set up.
    void InternalClose() override;
    void InternalFirst() override;
    void InternalNext() override;
    bool InternalEof() override;
    TVariant InternalGetValue(const TField& Field) override;
    /// Reads from the first record on, comparing values as the dataset shows them.
    bool InternalLocate(std::span<TField* const> Keys, std::span<const TVariant> Values,
                        TLocateOptions Options) override;

    /// Gives up an open read statement, and with it its lock, but not the current record.
    virtual void ReleaseCursor();
    /// Everything since the transaction began is undone, temporary tables too. Called from within
    /// SQLite: no time to ask it anything.
    virtual void TransactionRolledBack() {}

    /// The database that is used while the dataset is open: the shared one or its own.
    TSQLiteDatabase& UsedDatabase();
    TSQLiteConnection& Connection();                ///< Opened and attached by OpenConnection.
    bool IsConnected() const { return FConnection != nullptr; }
    void OpenConnection();
    /// Declares the fields and starts reading. `Source` must outlive the reading.
    void OpenCursor(const TSQLiteRowSource& Source);
    TSQLiteCursor& Cursor() { return *FCursor; }

    std::string FileName() const;                   ///< Of the database, for messages.
    void Notification(TComponent& Component, TOperation Operation) override;

private:
    TSQLiteDatabase* FDatabase = nullptr;
    std::unique_ptr<TSQLiteDatabase> OwnDatabase;
    TSQLiteConnection* FConnection = nullptr;       // while open
    const TSQLiteRowSource* Rows = nullptr;         // what FCursor reads
    std::unique_ptr<TSQLiteCursor> FCursor;         // while open
};

} // namespace kv
