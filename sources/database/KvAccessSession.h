// KvAccessSession - an Access database open through an automation engine, with a table of it.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>

#include "KvAccess.h"

namespace kv {

class TKvAccessSession
{
public:
    TKvAccessSession() = default;
    TKvAccessSession(const TKvAccessSession&) = delete;
    TKvAccessSession& operator=(const TKvAccessSession&) = delete;
    ~TKvAccessSession();                            ///< Closes what is open.

    /// Opens the database with engine "DAO.DBEngine.36", or with "DAO.DBEngine.35" where there is none, and a
    /// recordset on the table; none when `TableName` is empty. What was open before is closed first.
    /// `Continue` is as TAccessEngine::SetContinue has it, and so is Patience.
    void Open(const std::string& TableName, const std::string& FileName,
              const std::function<bool()>& Continue = {});
    /// The same, but what of it is open already stays so: the database, and its recordset where that is on
    /// the table or none is asked for.
    void OpenOrKeep(const std::string& TableName, const std::string& FileName,
                    const std::function<bool()>& Continue = {});
    /// Closes the database, after its recordset when `CloseRecordset` is true, and forgets both.
    void Close(bool CloseRecordset);

    std::chrono::milliseconds Patience = std::chrono::seconds(30);

    bool IsOpen() const { return FDatabase != nullptr; }
    TAccessDatabase& Database() { return *FDatabase; }
    /// Another recordset on a table of the database.
    std::unique_ptr<TAccessRecordset> OpenTable(const std::string& TableName);
    /// None when no table is open.
    TAccessRecordset* Recordset() const { return FRecordset.get(); }
    /// True when this table of this database is open.
    bool Holds(const std::string& TableName, const std::string& FileName) const;

    /// The value of field `Index` in the current record; a number that comes as text has `DecimalSeparator`.
    TVariant Value(int Index, char DecimalSeparator);

private:
    void OpenRecordset(const std::string& TableName);

    std::unique_ptr<TAccessEngine> FEngine;
    std::unique_ptr<TAccessDatabase> FDatabase;
    std::unique_ptr<TAccessRecordset> FRecordset;
    std::string FTableName, FFileName;
};

} // namespace kv
