#include "KvTestRun.h"

namespace kv {

TTestRun::TTestRun()
{
    Table.SetFieldDefs(
        {{.Name = "ID", .DataType = ftInteger}, {.Name = "NAME", .DataType = ftString, .Size = 10}});
    Table.Open();
    Import.SetDataSet(&Table);
    Import.SetMappings({"ID=Field1", "NAME=Field2"});
    Import.AnimatedStatus = false;
    Import.Options = {};
}

void TTestRun::NoteEvents()
{
    const auto Noting = [this](std::string Name) {
        return [this, Name](TKvImportBaseComponent&) { Log.Call(Name); };
    };
    Import.OnBeforeExecute = Noting("OnBeforeExecute");
    Import.OnAfterExecute = Noting("OnAfterExecute");
    Import.OnBeforeUpdate = Noting("OnBeforeUpdate");
    Import.OnGetCellParams = [this](TKvImportBaseComponent&, TField* Field, TVariant& Value) {
        Log.Call("OnGetCellParams " + (Field ? Field->FieldName() : "none") + " " + Value.ToText());
    };
    Import.OnBeforeRecordEvent = [this](TKvImportBaseComponent&, const std::string&, TVariant&, bool&) {
        Log.Call("OnBeforeRecordEvent");
    };
    Import.OnAfterRecordEvent = [this](TKvImportBaseComponent&, bool&) { Log.Call("OnAfterRecordEvent"); };
    Import.OnErrorEvent = [this](TKvImportBaseComponent&, const Exception& Error, bool&) {
        Log.Call("OnErrorEvent " + Error.Message);
    };
}

void TTestRun::Execute()
{
    Log.Clear();
    Import.Execute();
}

std::string TTestRun::Raised()
{
    try {
        Execute();
    }
    catch (const Exception& Error) {
        return Error.Message;
    }
    return {};
}

std::string TTestRun::Counters() const
{
    const auto& S = Import.Statistic;
    std::string Result;
    for (const int Counter : {S.TotalImported, S.TotalAdded, S.TotalUpdated, S.TotalDeleted, S.TotalErrors})
        Result += (Result.empty() ? "" : "/") + std::to_string(Counter);
    return Result;
}

} // namespace kv
