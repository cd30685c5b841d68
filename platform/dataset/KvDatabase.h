// KvDatabase - a database of any kind: opened by a URL, it lists its tables, opens them as datasets and
// keeps their transactions. The kinds are registered by the adapters; nothing here knows one of them.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "KvComponent.h"
#include "KvField.h"

namespace kv {

class TDataSet;

/// A table or view of a database.
struct TKvTableInfo
{
    std::string Name;
    std::string Label = {};                         ///< What people call it; empty where nobody has said.
    bool IsView = false;
};

/// A foreign key of another table, or of the same, that refers to records of a table.
struct TKvTableReference
{
    std::string Table;                              ///< The one that refers.
    /// To delete a record that is referred to deletes or changes what refers to it. Otherwise it is refused.
    bool Changes = false;
};

/// What a database declares of a table.
struct TKvTableDef
{
    std::vector<TFieldDef> Fields;                  ///< In the order of its columns.
    std::vector<std::string> KeyFields;             ///< Of the primary key, in its order; empty without one.
    std::vector<TKvTableReference> References = {}; ///< Of tables to this one, by their names.
};

/// Every operation raises EDatabaseError that names the database and the reason. What needs an open
/// database opens it.
class TKvDatabase : public TComponent
{
public:
    using TComponent::TComponent;

    std::string_view ClassName() const override { return "TKvDatabase"; }
    /// The settings below and those of the driver.
    TPublishedProperties PublishedProperties() const override;

    // Settings. A driver that has nothing like one ignores it. The first two count from the next Open.
    /// In the words of the driver: a file, a connection string.
    std::string DatabaseName;
    /// KiB of memory for pages; 0: the driver decides, also by run.
    int CacheSize = 0;
    /// Milliseconds to wait for the locks of others, in all from the beginning of a transaction to its end.
    int BusyTimeout = 5000;
    /// Foreign keys are to hold, where a database leaves that to whoever opens it. Counts from the next Open.
    bool ForeignKeys = false;
    /// Asked, in the thread that called, while the database waits for others, works long on a statement or
    /// stores what it has taken, and before a commit; false gives up at once with an error. What it raises
    /// comes through. It must not use the database.
    std::function<bool()> OnWait;

    virtual void Open() = 0;                        ///< Does nothing when open.
    /// Closes the datasets that are open on it, then itself. What StartTransaction began and nobody
    /// committed is rolled back.
    virtual void Close() = 0;
    virtual bool Connected() const = 0;

    /// Tables and views by name, in alphabetical order.
    virtual std::vector<TKvTableInfo> Tables() = 0;
    std::vector<std::string> TableNames();          ///< Their names alone.
    // A table is found by its name as the database finds it in a statement: with or without regard to case,
    // with or without a schema. Both raise for an unknown one and name those that there are.
    virtual TKvTableDef Describe(std::string_view TableName) = 0;
    /// The table as a dataset, open. It may outlive the database, and is then closed.
    virtual std::unique_ptr<TDataSet> OpenTable(std::string_view TableName) = 0;

    // One transaction for all datasets of the database.
    virtual void StartTransaction() = 0;            ///< Raises when one is active.
    /// Makes the changes permanent; does nothing without a transaction. When others are in the way it
    /// raises and leaves the transaction open, to be tried again.
    virtual void Commit() = 0;
    virtual void Rollback() = 0;                    ///< Does nothing without a transaction.
    /// Raises what the transaction itself would make Commit raise, such as a reference to a record that is
    /// still missing, and leaves it open: for those who roll it back and yet want to know.
    virtual void CheckCommit() = 0;
    virtual bool InTransaction() const = 0;
    /// Stores every change taken so far, within the transaction. Raises what went wrong with one of them.
    virtual void Flush() = 0;
};

// --- Kinds of databases -----------------------------------------------------------------------------

struct TKvDatabaseDriver
{
    std::string Scheme;                             ///< Begins a URL, "sqlite"; of two characters or more.
    std::string Title;                              ///< For people, "SQLite".
    /// A closed database, of what follows the scheme and its colon.
    std::function<std::unique_ptr<TKvDatabase>(std::string_view Name)> Create;
    /// A text without a scheme is the name of one of its files.
    bool TakesPaths = false;
};

/// For the start of a program; adapters have a function that does it. Takes the place of a driver of the
/// same scheme.
void RegisterDatabaseDriver(TKvDatabaseDriver Driver);
/// In the order in which they were registered.
const std::vector<TKvDatabaseDriver>& DatabaseDrivers();

/// The database that `Url` names, closed, for settings to be made: "sqlite:shop.db", or "shop.db" alone. What
/// stands before the first colon is a scheme when a driver has registered it, in any case of letters; else
/// the whole is a path, such as "C:\shop.db" or "./a:b.db". Raises EDatabaseError, and lists the known ones,
/// when it reads as a scheme that nobody has registered and there is no file of that name.
std::unique_ptr<TKvDatabase> MakeDatabase(std::string_view Url);
/// The same, open.
std::unique_ptr<TKvDatabase> OpenDatabase(std::string_view Url);

} // namespace kv
