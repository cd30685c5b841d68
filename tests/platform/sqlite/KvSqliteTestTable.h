// KvSqliteTestTable - an open table in a file of its own, and short ways to fill and read datasets.
#pragma once

#include <gtest/gtest.h>

#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "KvException.h"
#include "KvSqliteTable.h"
#include "KvSqliteTestFile.h"

namespace kv {

using TTexts = std::vector<std::string>;
using TAssignments = std::initializer_list<std::pair<std::string_view, TVariant>>;

/// Assigns and posts; call Append or Edit before.
inline void PostValues(TDataSet& DataSet, TAssignments Values)
{
    for (const auto& [Name, Value] : Values)
        DataSet.FieldByName(Name).SetValue(Value);
    DataSet.Post();
}

inline void AppendRecord(TDataSet& DataSet, TAssignments Values)
{
    DataSet.Append();
    PostValues(DataSet, Values);
}

inline void EditRecord(TDataSet& DataSet, TAssignments Values)
{
    DataSet.Edit();
    PostValues(DataSet, Values);
}

/// The text of `Field` in the records from the current one to the last.
inline TTexts RestOf(TDataSet& DataSet, std::string_view Field)
{
    TTexts Result;
    for (; !DataSet.Eof(); DataSet.Next())
        Result.push_back(DataSet.FieldByName(Field).AsString());
    return Result;
}

inline TTexts AllOf(TDataSet& DataSet, std::string_view Field)
{
    DataSet.First();
    return RestOf(DataSet, Field);
}

/// The message of what `Action` raises, without the file name in front; "" when it raises nothing.
template <class TAction> std::string MessageOf(const std::string& FileName, TAction Action)
{
    try {
        Action();
    }
    catch (const Exception& Error) {
        return Error.Message.starts_with(FileName + ": ") ? Error.Message.substr(FileName.size() + 2)
                                                          : Error.Message;
    }
    return "";
}

/// The facts of what `Action` raises.
template <class TAction> TKvErrorFacts FactsOf(TAction Action)
{
    try {
        Action();
    }
    catch (const Exception& Error) {
        return Error.Facts;
    }
    ADD_FAILURE() << "nothing was raised";
    return {};
}

/// Table "orders" of a new file, which `Sql` creates.
struct TTestTable
{
    explicit TTestTable(const std::string& Sql = OrdersTable) : File(Sql)
    {
        Table.DatabaseName = File.FileName();
        Table.TableName = "orders";
        Table.Open();
    }

    /// What the file holds, seen from outside.
    TRowTexts Rows(std::string_view Sql = "SELECT id, name, qty FROM orders ORDER BY id")
    {
        return File.Rows(Sql);
    }
    template <class TAction> std::string MessageOf(TAction Action)
    {
        return kv::MessageOf(File.FileName(), Action);
    }

    TTestFile File;
    TSQLiteTable Table;
};

} // namespace kv
