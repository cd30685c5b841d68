// The report for scripts. Names are as stable as options.
#include "KvImportReport.h"

#include "KvDisplayText.h"
#include "KvFindingText.h"
#include "KvJson.h"
#include "KvPlanText.h"

namespace kv {

namespace {

TJson Columns(const TImportReport& Report)
{
    auto List = TJson::array();
    for (std::size_t I = 0; I < Report.Plan.Columns.size(); ++I) {
        const auto& Fate = Report.Plan.Columns[I];
        List.push_back({{"column", ToDisplay(Fate.Column.Name)},
                        {"name", TextOrNull(Fate.Column.Title)},
                        {"field", TextOrNull(Fate.Field)},
                        {"remark", TextOrNull(Report.Remarks[I])}});
    }
    return List;
}

TJson FieldsWithout(const TJobPlan& Plan)
{
    auto List = TJson::array();
    for (const auto& Field : Plan.FieldsWithout)
        List.push_back({{"field", Field.Field}, {"remark", TextOrNull(RemarkOn(Field))}});
    return List;
}

/// The rule that was broken, as stable as options.
TJson Reason(TKvErrorRule Rule)
{
    switch (Rule) {
    case erNone:       break;
    case erFormat:     return "format";
    case erConversion: return "conversion";
    case erRange:      return "range";
    case erLength:     return "length";
    case erRequired:   return "required";
    case erReadOnly:   return "readOnly";
    case erUnique:     return "unique";
    case erForeignKey: return "foreignKey";
    case erCheck:      return "check";
    case erMissing:    return "missing";
    case erBusy:       return "busy";
    case erStorage:    return "storage";
    case erCancelled:  return "cancelled";
    }
    return {};
}

TJson Errors(const std::vector<TJobError>& Errors)
{
    auto List = TJson::array();
    for (const auto& Error : Errors) {
        const auto Offset = Error.Facts.Offset >= 0 ? Error.Facts.Offset : Error.Position.Offset;
        List.push_back({{"place", Error.Position.Text()},
                        {"number", Error.Position.Number},
                        {"offset", Offset >= 0 ? TJson(Offset) : TJson()},
                        {"field", TextOrNull(Error.Facts.Field)},
                        {"value", Error.Facts.Field.empty() ? TJson() : TJson(ToDisplay(Error.Facts.Value))},
                        {"reason", Reason(Error.Facts.Rule)},
                        {"message", Error.Message}});
    }
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

const char* NameOfOutcome(const TJobOutcome& Outcome)
{
    return Outcome.Complete ? "committed" : Outcome.KeptRecords > 0 ? "partly committed" : "rolled back";
}

} // namespace

void PrintJson(std::ostream& Out, const TImportReport& Report)
{
    const auto& Job = Report.Options.Job;
    const auto& Figures = Report.Outcome.Figures;
    const TJson Object = {{"result", NameOfStatus(Report.Status)},
                          {"exitStatus", static_cast<int>(Report.Status)},
                          {"message", TextOrNull(Report.Failure)},
                          {"source", ToDisplay(Report.SourceName)},
                          {"database", ToDisplay(Job.Destination.Url)},
                          {"table", ToDisplay(Job.Destination.Table)},
                          {"mode", NameOfMode(Job.Plan.Mode)},
                          {"keys", TextList(Report.Plan.Keys)},
                          {"read", Figures.Read},
                          {"added", Figures.Added},
                          {"updated", Figures.Updated},
                          {"deleted", Figures.Deleted},
                          {"refused", Figures.Refused},
                          {"failed", Figures.Failed},
                          {"notFound", Figures.NotFound},
                          {"emptied", Report.Outcome.Emptied},
                          {"transaction", NameOfOutcome(Report.Outcome)},
                          {"keptRecords", Report.Outcome.KeptRecords},
                          {"dryRun", Report.Outcome.DryRun},
                          {"columns", Columns(Report)},
                          {"fieldsWithoutColumn", FieldsWithout(Report.Plan)},
                          {"findings", TextList(Report.Findings)},
                          {"warnings", TextList(FindingTexts(Report.Outcome.Remarks))},
                          {"errors", Errors(Report.Errors)},
                          {"seconds", Report.Seconds}};
    PrintJsonLine(Out, Object);
}

} // namespace kv
