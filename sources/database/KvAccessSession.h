// KvAccessSession - an Access database open through an automation engine, with a table of it.
#pragma once

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
    void Open(const std::string& TableName, const std::string& FileName);
    /// Closes the database, after its recordset when `CloseRecordset` is true, and forgets both.
    void Close(bool CloseRecordset);

    bool IsOpen() const { return FDatabase != nullptr; }
    TAccessDatabase& Database() { return *FDatabase; }
    /// None when no table is open.
    TAccessRecordset* Recordset() const { return FRecordset.get(); }
    /// True when this table of this database is open.
    bool Holds(const std::string& TableName, const std::string& FileName) const;

    /// The value of field `Index` in the current record; a number that comes as text has `DecimalSeparator`.
    TVariant Value(int Index, char DecimalSeparator);

private:
    std::unique_ptr<TAccessEngine> FEngine;
    std::unique_ptr<TAccessDatabase> FDatabase;
    std::unique_ptr<TAccessRecordset> FRecordset;
    std::string FTableName, FFileName;
};

} // namespace kv
