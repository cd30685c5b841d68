#include "KvJobPlan.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "KvDataSet.h"
#include "KvDisplayText.h"
#include "KvText.h"

namespace kv {

namespace {

std::vector<std::string> FieldNames(const TDataSet& Destination)
{
    std::vector<std::string> Names;
    for (int I = 0; I < Destination.FieldCount(); ++I)
        Names.push_back(ToDisplay(Destination.Fields(I).FieldName()));
    return Names;
}

std::vector<std::string> TitlesOf(const std::vector<TKvISourceColumn>& Columns)
{
    std::vector<std::string> Titles;
    for (const auto& Column : Columns)
        Titles.push_back(ToDisplay(Column.Title));
    return Titles;
}

/// Mapping lines know a field by its name without blanks around it, up to the first "=".
bool CanBeNamed(const TField& Field)
{
    const auto& Name = Field.FieldName();
    return Trim(Name) == Name && Name.find('=') == Name.npos;
}

/// Why nothing goes into the field; jcMapped when something can.
TJobFate Obstacle(const TField& Field)
{
    if (Field.ReadOnly())
        return jcReadOnly;
    return CanBeNamed(Field) ? jcMapped : jcUnnameable;
}

TJobFieldFate FateWithoutColumn(const TField& Field)
{
    if (Field.ReadOnly())
        return jdComputed;
    if (Field.HasDefault())
        return jdDefault;
    return Field.Required() ? jdRequired : jdNothing;
}

TJobFate FateOf(TKvISourceNameKind Kind)
{
    switch (Kind) {
    case snMissing:  return jcMissing;
    case snBlank:    return jcBlank;
    case snByOrder:  return jcByOrder;
    case snConstant: return jcConstant;
    default:         return jcMapped;
    }
}

/// Builds a plan column by column.
class TPlanBuilder
{
public:
    explicit TPlanBuilder(const TDataSet& Destination)
        : DataSet(Destination), Taken(static_cast<std::size_t>(DataSet.FieldCount()))
    {
    }

    bool IsTaken(const TField& Field) const { return Taken[static_cast<std::size_t>(Field.Index())]; }

    void Join(const TKvISourceColumn& Column, const TField& Field, TJobFate Fate = jcMapped)
    {
        Taken[static_cast<std::size_t>(Field.Index())] = true;
        Plan.Lines.push_back(Field.FieldName() + "=" + Column.Name);
        Plan.Columns.push_back({.Column = Column, .Field = ToDisplay(Field.FieldName()), .Fate = Fate});
    }
    void LeaveOut(const TKvISourceColumn& Column, TJobFate Fate)
    {
        Plan.Columns.push_back({.Column = Column, .Field = {}, .Fate = Fate});
    }
    void JoinOrLeaveOut(const TKvISourceColumn& Column, const TField& Field)
    {
        if (Trim(Column.Name) != Column.Name)
            LeaveOut(Column, jcUnnameableColumn);
        else if (IsTaken(Field))
            LeaveOut(Column, jcTitleTwice);
        else if (const auto Reason = Obstacle(Field); Reason != jcMapped)
            LeaveOut(Column, Reason);
        else
            Join(Column, Field);
    }

    TJobPlan Build()
    {
        for (int I = 0; I < DataSet.FieldCount(); ++I)
            if (const auto& Field = DataSet.Fields(I); !IsTaken(Field))
                Plan.FieldsWithout.push_back(
                    {.Field = ToDisplay(Field.FieldName()), .Fate = FateWithoutColumn(Field)});
        return std::move(Plan);
    }

private:
    const TDataSet& DataSet;
    std::vector<bool> Taken;
    TJobPlan Plan;
};

/// Raises EJobRefused for sources that cannot name their columns.
void CheckTitles(const TJobSource& Source)
{
    const auto& Columns = Source.Columns();
    const auto HasNoTitle = [](const TKvISourceColumn& Column) { return Column.Title.empty(); };
    if (Source.Kind().Part == spTableNumber && Source.IsClassic())
        Refuse({.Kind = jfClassicByOrder, .Name = Source.Title()});
    if (Source.Kind().Part == spSheet && std::ranges::all_of(Columns, HasNoTitle))
        Refuse({.Kind = jfNoTitles,
                .Name = Source.Title(),
                .Number = Source.HeaderRow(),
                .Count = Source.PartNumber()});
    if (Columns.empty())
        Refuse({.Kind = jfNoHeader, .Name = Source.Title(), .Unit = Source.Unit()});
}

/// Each column into the field of its name, without regard to case.
TJobPlan PlanByName(const TJobSource& Source, const TDataSet& Destination)
{
    CheckTitles(Source);
    TPlanBuilder Builder(Destination);
    for (const auto& Column : Source.Columns()) {
        if (Column.Title.empty())
            Builder.LeaveOut(Column, jcNoTitle);
        else if (const auto* const Field = Destination.FindField(Column.Title))
            Builder.JoinOrLeaveOut(Column, *Field);
        else
            Builder.LeaveOut(Column, jcNoField);
    }
    auto Plan = Builder.Build();
    if (Plan.Lines.empty())
        Refuse({.Kind = jfNoColumnMatches,
                .Name = Source.Title(),
                .Names = TitlesOf(Source.Columns()),
                .Fields = FieldNames(Destination)});
    return Plan;
}

/// The first column into the first field, and so on.
TJobPlan PlanByPosition(const TJobSource& Source, const TDataSet& Destination)
{
    TPlanBuilder Builder(Destination);
    int Next = 0;
    for (const auto& Column : Source.Columns())
        if (Next < Destination.FieldCount())
            Builder.JoinOrLeaveOut(Column, Destination.Fields(Next++));
        else
            Builder.LeaveOut(Column, jcNoMoreFields);
    auto Plan = Builder.Build();
    if (Plan.Lines.empty())
        Refuse({.Kind = jfNoColumns, .Name = Source.Title()});
    return Plan;
}

/// The field that a user named. Raises EJobRefused that quotes `Line`; an empty one: the keys.
const TField& FieldNamed(const std::string& Name, const std::string& Line, const TDataSet& DataSet)
{
    if (const auto* const Field = DataSet.FindField(FromDisplay(Name)))
        return *Field;
    Refuse({.Kind = jfNoSuchField, .Name = Line, .Value = Name, .Fields = FieldNames(DataSet)});
}

void JoinLine(TPlanBuilder& Builder, const std::string& Line, const TJobSource& Source,
              const TDataSet& Destination)
{
    const auto Pair = SplitMapLine(Line);
    const auto& Field = FieldNamed(Pair.Field, Line, Destination);
    if (Builder.IsTaken(Field))
        Refuse({.Kind = jfFieldTwice, .Name = Line, .Value = Pair.Field});
    if (const auto Reason = Obstacle(Field); Reason != jcMapped)
        Refuse({.Kind = Reason == jcReadOnly ? jfFieldReadOnly : jfFieldUnnameable,
                .Name = Line,
                .Value = Pair.Field});
    const auto [Column, Kind] = Source.ColumnNamed(Pair.Column);
    Builder.Join(Column, Field, FateOf(Kind));
}

/// Exactly as the lines have it.
TJobPlan PlanByLines(const TJobSource& Source, const TDataSet& Destination,
                     const std::vector<std::string>& Lines)
{
    TPlanBuilder Builder(Destination);
    for (const auto& Line : Lines)
        JoinLine(Builder, Line, Source, Destination);
    auto Plan = Builder.Build();
    const auto Used = std::move(Plan.Columns);
    Plan.Columns = Used;
    for (const auto& Column : Source.Columns()) {
        const auto IsColumn = [&Column](const TJobColumnFate& Fate) {
            return Fate.Column.Name == Column.Name;
        };
        if (std::ranges::none_of(Used, IsColumn))
            Plan.Columns.push_back({.Column = Column, .Field = {}, .Fate = jcNotMapped});
    }
    return Plan;
}

/// As the destination spells them. The engine wants each mapped: a record is never looked for by fewer keys
/// than were asked for.
std::vector<std::string> KeyFields(const std::vector<std::string>& Keys, const TJobPlan& Plan,
                                   const TDataSet& Destination)
{
    std::vector<std::string> Names;
    for (const auto& Key : Keys) {
        const auto Name = ToDisplay(FieldNamed(Key, {}, Destination).FieldName());
        if (std::ranges::count(Plan.Columns, Name, &TJobColumnFate::Field) == 0)
            Refuse({.Kind = jfKeyNotMapped, .Value = Name});
        if (std::ranges::count(Names, Name) == 0)
            Names.push_back(Name);
    }
    return Names;
}

} // namespace

TJobMapPair SplitMapLine(const std::string& Line)
{
    const auto Equal = std::min(Line.find('='), Line.size());
    const auto Column = std::string_view(Line).substr(std::min(Equal + 1, Line.size()));
    TJobMapPair Pair{.Field = std::string(Trim(std::string_view(Line).substr(0, Equal))),
                     .Column = std::string(Trim(Column))};
    if (Pair.Field.empty() || Pair.Column.empty())
        Refuse({.Kind = jfBadMapLine, .Value = Line});
    return Pair;
}

TJobPlan MakePlan(const TJobSource& Source, const TDataSet& Destination, const TJobPlanSettings& Settings)
{
    if (Source.MapsItself())
        return {.Keys = Settings.Keys};
    const auto Join = [&] {
        switch (Settings.Mapping) {
        case jmByName:     return PlanByName(Source, Destination);
        case jmByPosition: return PlanByPosition(Source, Destination);
        case jmByLines:    break;
        }
        return PlanByLines(Source, Destination, Settings.Lines);
    };
    auto Plan = Join();
    if (NeedsKeys(Settings.Mode))
        Plan.Keys = KeyFields(Settings.Keys, Plan, Destination);
    return Plan;
}

TJobPlan MakePlanAlone(const TJobSource& Source, const TJobPlanSettings& Settings)
{
    TJobPlan Plan{.Keys = Settings.Keys};
    for (const auto& Line : Settings.Lines) {
        const auto Pair = SplitMapLine(Line);
        const auto [Column, Kind] = Source.ColumnNamed(Pair.Column);
        Plan.Lines.push_back(FromDisplay(Pair.Field) + '=' + Column.Name);
        Plan.Columns.push_back({.Column = Column, .Field = Pair.Field, .Fate = FateOf(Kind)});
    }
    for (const auto& Key : Settings.Keys) {
        const auto IsKey = [&Key](const TJobColumnFate& Fate) { return SameText(Fate.Field, Key); };
        if (std::ranges::none_of(Plan.Columns, IsKey))
            Refuse({.Kind = jfKeyNotMapped, .Value = Key});
    }
    return Plan;
}

void TakePlan(TKvImportBaseComponent& Component, const TJobPlan& Plan, TImportMode Mode)
{
    Component.Mappings().Clear();
    for (const auto& Line : Plan.Lines)
        Component.Mappings().Add(Line);
    std::string Keys;
    for (const auto& Key : Plan.Keys)
        Keys += (Keys.empty() ? "" : ";") + Key;
    Component.DatasetKeys = FromDisplay(Keys);
    Component.Mode = Mode;
}

bool LooksLikeHeader(const std::vector<std::string>& Values, const TDataSet& Destination)
{
    const auto Names = std::ranges::count_if(Values, [&Destination](const std::string& Value) {
        return Destination.FindField(Trim(Value)) != nullptr;
    });
    return 2 * Names > std::ssize(Values);
}

} // namespace kv
