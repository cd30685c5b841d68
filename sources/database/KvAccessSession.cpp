#include "KvAccessSession.h"

#include <algorithm>
#include <cstddef>
#include <exception>

#include "KvException.h"

namespace kv {

namespace {

std::unique_ptr<TAccessEngine> NewEngine()
{
    try {
        return CreateAccessEngine("DAO.DBEngine.36");
    }
    catch (const Exception&) {                      // an older one is as good
        return CreateAccessEngine("DAO.DBEngine.35");
    }
}

} // namespace

TKvAccessSession::~TKvAccessSession()
{
    try {
        Close(true);
    }
    catch (const std::exception&) {                 // nothing was written that could be lost
    }
}

void TKvAccessSession::Open(const std::string& TableName, const std::string& FileName,
                            const std::function<bool()>& Continue)
{
    Close(true);
    FEngine = NewEngine();
    FEngine->SetContinue(Continue);
    FEngine->SetPatience(Patience);
    FDatabase = FEngine->OpenDatabase(FileName);
    FFileName = FileName;
    if (!TableName.empty())
        OpenRecordset(TableName);
}

void TKvAccessSession::OpenOrKeep(const std::string& TableName, const std::string& FileName,
                                  const std::function<bool()>& Continue)
{
    if (!IsOpen() || FileName != FFileName)
        Open(TableName, FileName, Continue);
    else if (!TableName.empty() && !Holds(TableName, FileName))
        OpenRecordset(TableName);
}

void TKvAccessSession::OpenRecordset(const std::string& TableName)
{
    if (const auto Before = std::move(FRecordset))
        Before->Close();
    FRecordset = OpenTable(TableName);
    FTableName = TableName;
}

std::unique_ptr<TAccessRecordset> TKvAccessSession::OpenTable(const std::string& TableName)
{
    return FDatabase->OpenRecordset(TableName, AccessTableRecordset, AccessNoOptions, AccessPessimistic);
}

void TKvAccessSession::Close(bool CloseRecordset)
{
    const auto Recordset = std::move(FRecordset);
    const auto Database = std::move(FDatabase);
    const auto Engine = std::move(FEngine);
    if (CloseRecordset && Recordset)
        Recordset->Close();
    if (Database)
        Database->Close();
}

bool TKvAccessSession::Holds(const std::string& TableName, const std::string& FileName) const
{
    return FRecordset && TableName == FTableName && FileName == FFileName;
}

TVariant TKvAccessSession::Value(int Index, char DecimalSeparator)
{
    if (DecimalSeparator == '.' || FRecordset->Fields()[static_cast<std::size_t>(Index)].Type != afDecimal)
        return FRecordset->Value(Index);            // as it is, most often
    auto Value = FRecordset->Value(Index);
    if (!Value.IsString())
        return Value;
    std::string Text(Value.Text());
    std::ranges::replace(Text, '.', DecimalSeparator);
    return Text;
}

} // namespace kv
