#include "KvImportReport.h"

#include <algorithm>
#include <cstddef>
#include <iomanip>
#include <sstream>

#include "KvDisplayText.h"
#include "KvOptionText.h"
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
    int TImportFigures::*Value;
};

constexpr TFigure FigureColumns[] = {{"read", &TImportFigures::Read},       {"added", &TImportFigures::Added},
                                     {"updated", &TImportFigures::Updated}, {"deleted", &TImportFigures::Deleted},
                                     {"refused", &TImportFigures::Refused}, {"failed", &TImportFigures::Failed},
                                     {"not found", &TImportFigures::NotFound}};

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

std::string FateText(const TColumnFate& Fate)
{
    if (Fate.Field.empty())
        return "   " + Fate.Remark;
    return "-> " + VisibleText(Fate.Field) + (Fate.Remark.empty() ? "" : "  (" + Fate.Remark + ")");
}

void PrintColumns(std::ostream& Out, const TColumnMap& Map)
{
    const auto SourceOf = [](const TColumnFate& Fate) { return ToDisplay(Fate.Column.Source); };
    const auto NameOf = [&](const TColumnFate& Fate) { // not told twice
        return Fate.Column.Name == SourceOf(Fate) ? std::string() : Fate.Column.Name;
    };
    const int SourceWidth = WidthOf(Map.Columns, SourceOf), NameWidth = WidthOf(Map.Columns, NameOf);
    for (const auto& Fate : Map.Columns) {
        Out << "  " << Cell(SourceOf(Fate), SourceWidth) << "  ";
        if (NameWidth > 0)
            Out << Cell(NameOf(Fate), NameWidth) << "  ";
        Out << FateText(Fate) << '\n';
    }
}

void PrintFieldsWithout(std::ostream& Out, const TColumnMap& Map)
{
    if (Map.FieldsWithout.empty())
        return;
    std::vector<std::string> Names;
    for (const auto& Fate : Map.FieldsWithout)
        Names.push_back(VisibleText(Fate.Field) + (Fate.Remark.empty() ? "" : " (" + Fate.Remark + ")"));
    Out << "  Fields without a column: " << JoinNames(Names) << '\n';
}

void PrintFigures(std::ostream& Out, const TImportFigures& Figures)
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
std::string Stored(const TImportFigures& Figures)
{
    std::vector<std::string> Parts;
    const auto Say = [&Parts](int Count, const char* What) {
        if (Count > 0)
            Parts.push_back(GroupDigits(Count) + " " + What);
    };
    Say(Figures.Added, "added");
    Say(Figures.Updated, "updated");
    Say(Figures.Deleted, "deleted");
    return Parts.empty() ? "nothing was changed" : JoinNames(Parts);
}

std::string Kept(const TImportReport& Report)
{
    if (Report.Transaction.KeptRecords > 0)
        return "kept up to record " + GroupDigits(Report.Transaction.KeptRecords) + ", the rest was rolled back";
    return "nothing was imported (rolled back)";
}

} // namespace

void PrintPlan(std::ostream& Out, const TImportReport& Report)
{
    const auto& Options = Report.Options;
    Out << VisibleText(Report.SourceName) << " -> " << VisibleText(Options.Destination.FileName) << ", table "
        << VisibleText(Options.Destination.Table) << ", mode " << NameOfMode(Options.Mode);
    if (!Report.Keys.empty())
        Out << " by " << VisibleText(JoinNames(Report.Keys));
    Out << '\n';
    for (const auto& Finding : Report.Findings)
        Out << "  (" << VisibleText(Finding) << ")\n";
    PrintColumns(Out, Report.Columns);
    PrintFieldsWithout(Out, Report.Columns);
}

void PrintResult(std::ostream& Out, const TImportReport& Report)
{
    PrintFigures(Out, Report.Figures);
    Out << OutcomeText(Report) << '\n';
}

std::string OutcomeText(const TImportReport& Report)
{
    std::ostringstream Text;
    switch (Report.Status) {
    case esDone:
    case esRecordErrors:
        Text << "Done: " << Stored(Report.Figures);
        if (Report.Figures.Failed > 0)
            Text << "; " << Records(Report.Figures.Failed) << " failed and " << (Report.Figures.Failed == 1 ? "was" : "were")
                 << " left out";
        if (Report.Options.Mode == imCopy)
            Text << "; " << Records(Report.Emptied) << " removed before";
        Text << " (" << std::fixed << std::setprecision(2) << Report.Seconds << " s).";
        break;
    case esCancelled: Text << "Cancelled: " << Kept(Report) << "."; break;
    default:          Text << "Failed: " << Kept(Report) << "."; break;
    }
    return Text.str();
}

} // namespace kv
