// The report for scripts. Names are as stable as options.
#include "KvImportReport.h"

#include "KvDisplayText.h"
#include "KvJson.h"

namespace kv {

namespace {

TJson Columns(const TColumnMap& Map)
{
    auto List = TJson::array();
    for (const auto& Fate : Map.Columns)
        List.push_back({{"column", ToDisplay(Fate.Column.Source)},
                        {"name", TextOrNull(Fate.Column.Name)},
                        {"field", TextOrNull(Fate.Field)},
                        {"remark", TextOrNull(Fate.Remark)}});
    return List;
}

TJson FieldsWithout(const TColumnMap& Map)
{
    auto List = TJson::array();
    for (const auto& Fate : Map.FieldsWithout)
        List.push_back({{"field", Fate.Field}, {"remark", TextOrNull(Fate.Remark)}});
    return List;
}

TJson Errors(const std::vector<TRecordError>& Errors)
{
    auto List = TJson::array();
    for (const auto& Error : Errors)
        List.push_back({{"place", Error.Place}, {"message", ToDisplay(Error.Message)}});
    return List;
}

const char* NameOfStatus(TExitStatus Status)
{
    switch (Status) {
    case esDone:
    case esRecordErrors: return "done";
    case esCancelled:    return "cancelled";
    default:             return "failed";
    }
}

const char* NameOfOutcome(const TTransactionOutcome& Outcome)
{
    return Outcome.Complete ? "committed" : Outcome.KeptRecords > 0 ? "partly committed" : "rolled back";
}

} // namespace

void PrintJson(std::ostream& Out, const TImportReport& Report)
{
    const auto& Figures = Report.Figures;
    const TJson Object = {{"result", NameOfStatus(Report.Status)},
                          {"exitStatus", static_cast<int>(Report.Status)},
                          {"message", TextOrNull(Report.Failure)},
                          {"source", ToDisplay(Report.SourceName)},
                          {"database", ToDisplay(Report.Options.Destination.FileName)},
                          {"table", ToDisplay(Report.Options.Destination.Table)},
                          {"mode", NameOfMode(Report.Options.Mode)},
                          {"keys", TextList(Report.Keys)},
                          {"read", Figures.Read},
                          {"added", Figures.Added},
                          {"updated", Figures.Updated},
                          {"deleted", Figures.Deleted},
                          {"refused", Figures.Refused},
                          {"failed", Figures.Failed},
                          {"notFound", Figures.NotFound},
                          {"emptied", Report.Emptied},
                          {"transaction", NameOfOutcome(Report.Transaction)},
                          {"keptRecords", Report.Transaction.KeptRecords},
                          {"columns", Columns(Report.Columns)},
                          {"fieldsWithoutColumn", FieldsWithout(Report.Columns)},
                          {"findings", TextList(Report.Findings)},
                          {"warnings", TextList(Report.Warnings)},
                          {"errors", Errors(Report.Errors)},
                          {"seconds", Report.Seconds}};
    PrintJsonLine(Out, Object);
}

} // namespace kv
