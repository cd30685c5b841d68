// KvAccess - Access databases with the operations of an automation server: an engine is created by the
// name of its class, opens databases, and those open cursors on their tables.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "KvAccessReader.h"
#include "KvAccessTypes.h"
#include "KvVariant.h"

namespace kv {

// Arguments of OpenRecordset.
inline constexpr int AccessTableRecordset = 1;      ///< A cursor on a table itself.
inline constexpr int AccessNoOptions = 0;
inline constexpr int AccessPessimistic = 2;         ///< Locking; nobody writes here, so that it says nothing.

/// The records of one table, from the first to the last. Everything that may fail raises EDatabaseError,
/// which names the database.
class TAccessRecordset
{
public:
    virtual ~TAccessRecordset() = default;

    /// In their order in the table; does not change.
    virtual const std::vector<TAccessField>& Fields() const = 0;
    /// The value of field `Index`, from 0, in the current record: dates as TDateTime, amounts exact, text
    /// in the process's code page, objects as their bytes. An exact number that fits neither an integer nor
    /// TCurrency is text with a decimal point. Texts may be loans that hold until the cursor moves.
    virtual TVariant Value(int Index) = 0;

    virtual void MoveFirst() = 0;                   ///< Does nothing in an empty table.
    virtual void MoveNext() = 0;
    virtual bool Eof() const = 0;                   ///< True past the last record.
    virtual int RecordCount() = 0;                  ///< As the definition of the table has it.
    virtual void Close() = 0;
};

class TAccessDatabase
{
public:
    virtual ~TAccessDatabase() = default;

    /// All tables, those of Access itself too, in the order of the database.
    virtual const std::vector<TAccessTable>& TableDefs() = 0;
    /// Positioned on the first record. `Type` is AccessTableRecordset. Names match without regard to case.
    virtual std::unique_ptr<TAccessRecordset> OpenRecordset(const std::string& TableName, int Type,
                                                            int Options, int Locking) = 0;
    /// Its recordsets are not closed with it.
    virtual void Close() = 0;
};

class TAccessEngine
{
public:
    virtual ~TAccessEngine() = default;

    /// `Continue` is asked now and then while the databases that are opened next, and their recordsets, keep
    /// somebody waiting; false gives up, which raises EDatabaseError with the rule erCancelled.
    virtual void SetContinue(std::function<bool()> Continue) { static_cast<void>(Continue); }
    /// How long somebody waits for the next records of the databases that are opened next.
    virtual void SetPatience(std::chrono::milliseconds Patience) { static_cast<void>(Patience); }
    /// Opens for reading. Raises EDatabaseError when it is no Access database or cannot be read.
    virtual std::unique_ptr<TAccessDatabase> OpenDatabase(const std::string& FileName) = 0;
};

using TAccessEngineMaker = std::function<std::unique_ptr<TAccessEngine>()>;

/// A new engine of that class. "DAO.DBEngine.36" and "DAO.DBEngine.35" are there from the start; both read
/// every version, through the program kvaccess. Raises EDatabaseError when no class of that name is
/// registered, or what it needs is missing.
std::unique_ptr<TAccessEngine> CreateAccessEngine(const std::string& ClassName);

/// Puts `Maker` in the place of the class that has the name so far and returns that one, empty when there
/// was none. An empty `Maker` takes the class away.
TAccessEngineMaker RegisterAccessEngine(const std::string& ClassName, TAccessEngineMaker Maker);

} // namespace kv
