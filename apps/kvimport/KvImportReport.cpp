#include "KvImportReport.h"

#include <algorithm>
#include <cstddef>
#include <iomanip>
#include <sstream>

#include "KvDisplayText.h"
#include "KvOptionText.h"
#include "KvPlanText.h"
#include "KvTerminalText.h"

namespace kv {

namespace {

constexpr int MaxNameWidth = 32;

std::string Records(int Count)
{
    return GroupDigits(Count) + (Count == 1 ? " record" : " records");
}

struct TFigure
{
    const char* Title;
    int TJobFigures::*Value;
};

constexpr TFigure FigureColumns[] = {{"read", &TJobFigures::Read},       {"added", &TJobFigures::Added},
                                     {"updated", &TJobFigures::Updated}, {"deleted", &TJobFigures::Deleted},
                                     {"refused", &TJobFigures::Refused}, {"failed", &TJobFigures::Failed},
                                     {"not found", &TJobFigures::NotFound}};

/// The widest of the texts in columns of the screen, at most MaxNameWidth.
template <class TItems, class TText> int WidthOf(const TItems& Items, TText Text)
{
    int Width = 0;
    for (const auto& Item : Items)
        Width = std::max(Width, DisplayWidth(VisibleText(Text(Item))));
    return std::min(Width, MaxNameWidth);
}

std::string Cell(const std::string& Text, int Width)
{
    return PadToWidth(FitToWidth(VisibleText(Text), Width), Width);
}

std::string FateText(const TJobColumnFate& Fate, const std::string& Remark)
{
    if (Fate.Field.empty())
        return "   " + Remark;
    return "-> " + VisibleText(Fate.Field) + (Remark.empty() ? "" : "  (" + Remark + ")");
}

void PrintColumns(std::ostream& Out, const TImportReport& Report)
{
    const auto& Columns = Report.Plan.Columns;
    const auto NameOf = [](const TJobColumnFate& Fate) { return ToDisplay(Fate.Column.Name); };
    const auto TitleOf = [](const TJobColumnFate& Fate) { // not told twice
        return Fate.Column.Title == Fate.Column.Name ? std::string() : ToDisplay(Fate.Column.Title);
    };
    const int NameWidth = WidthOf(Columns, NameOf), TitleWidth = WidthOf(Columns, TitleOf);
    for (std::size_t I = 0; I < Columns.size(); ++I) {
        Out << "  " << Cell(NameOf(Columns[I]), NameWidth) << "  ";
        if (TitleWidth > 0)
            Out << Cell(TitleOf(Columns[I]), TitleWidth) << "  ";
        Out << FateText(Columns[I], Report.Remarks[I]) << '\n';
    }
}

void PrintFieldsWithout(std::ostream& Out, const TJobPlan& Plan)
{
    if (Plan.FieldsWithout.empty())
        return;
    std::vector<std::string> Names;
    for (const auto& Field : Plan.FieldsWithout) {
        const auto Remark = RemarkOn(Field);
        Names.push_back(VisibleText(Field.Field) + (Remark.empty() ? "" : " (" + Remark + ")"));
    }
    Out << "  Fields without a column: " << JoinNames(Names) << '\n';
}

void PrintFigures(std::ostream& Out, const TJobFigures& Figures)
{
    std::string Titles, Values;
    for (const auto& Each : FigureColumns) {
        const auto Value = GroupDigits(Figures.*Each.Value);
        const int Width = std::max(DisplayWidth(Each.Title), DisplayWidth(Value)) + 2;
        Titles += PadToWidth(Each.Title, Width, true);
        Values += PadToWidth(Value, Width, true);
    }
    Out << '\n' << Titles << '\n' << Values << '\n';
}

/// What the records that were kept did to the table.
std::string Stored(const TJobFigures& Figures, bool IsCopy)
{
    std::vector<std::string> Parts;
    const auto Say = [&Parts](int Count, const char* What) {
        if (Count > 0)
            Parts.push_back(GroupDigits(Count) + " " + What);
    };
    Say(Figures.Added, "added");
    Say(Figures.Updated, "updated");
    Say(Figures.Deleted, "deleted");
    return Parts.empty() ? "nothing was " + std::string(IsCopy ? "added" : "changed") : JoinNames(Parts);
}

std::string Kept(const TImportReport& Report)
{
    if (Report.Outcome.KeptRecords > 0)
        return "kept up to record " + GroupDigits(Report.Outcome.KeptRecords) + ", the rest was rolled back";
    return "nothing was imported (rolled back)";
}

} // namespace

void PrintPlan(std::ostream& Out, const TImportReport& Report)
{
    const auto& Job = Report.Options.Job;
    Out << VisibleText(Report.SourceName) << " -> " << VisibleText(Job.Destination.Url) << ", table "
        << VisibleText(Job.Destination.Table) << ", mode " << NameOfMode(Job.Plan.Mode);
    if (!Report.Plan.Keys.empty())
        Out << " by " << VisibleText(JoinNames(Report.Plan.Keys));
    Out << '\n';
    for (const auto& Finding : Report.Findings)
        Out << "  (" << VisibleText(Finding) << ")\n";
    PrintColumns(Out, Report);
    PrintFieldsWithout(Out, Report.Plan);
}

void PrintResult(std::ostream& Out, const TImportReport& Report)
{
    PrintFigures(Out, Report.Outcome.Figures);
    Out << OutcomeText(Report) << '\n';
}

std::string OutcomeText(const TImportReport& Report)
{
    const auto& Figures = Report.Outcome.Figures;
    std::ostringstream Text;
    switch (Report.Status) {
    case esDone:
    case esRecordErrors:
        Text << (Report.Outcome.DryRun ? "Tried: " : "Done: ")
             << Stored(Figures, Report.Options.Job.Plan.Mode == imCopy);
        if (Figures.Failed > 0)
            Text << "; " << Records(Figures.Failed) << " failed and "
                 << (Figures.Failed == 1 ? "was" : "were") << " left out";
        if (Report.Options.Job.Plan.Mode == imCopy)
            Text << "; " << Records(Report.Outcome.Emptied) << " removed before";
        if (Report.Outcome.DryRun)
            Text << "; all of it was rolled back";
        Text << " (" << std::fixed << std::setprecision(2) << Report.Seconds << " s).";
        break;
    case esCancelled: Text << "Cancelled: " << Kept(Report) << "."; break;
    default:          Text << "Failed: " << Kept(Report) << "."; break;
    }
    return Text.str();
}

} // namespace kv
