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

/// Mapping lines know a field by its name without blanks around it, up to an "=" behind it.
bool CanBeNamed(const TField& Field, const TDataSet& DataSet)
{
    const auto Line = Field.FieldName() + "=x";
    return TKvImportBaseComponent::SplitMapping(Line, &DataSet).first == Field.FieldName();
}

/// Why nothing goes into the field; jcMapped when something can.
TJobFate Obstacle(const TField& Field, const TDataSet& DataSet)
{
    if (Field.ReadOnly())
        return jcReadOnly;
    return CanBeNamed(Field, DataSet) ? jcMapped : jcUnnameable;
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

/// The field that a user named. Raises EJobRefused that quotes `Line`; an empty one: the keys.
const TField& FieldNamed(const std::string& Name, const std::string& Line, const TDataSet& DataSet)
{
    if (const auto* const Field = DataSet.FindField(FromDisplay(Name)))
        return *Field;
    Refuse({.Kind = jfNoSuchField, .Name = Line, .Value = Name, .Fields = FieldNames(DataSet)});
}

/// Builds a plan column by column.
class TPlanBuilder
{
public:
    TPlanBuilder(const TJobSource& From, const TDataSet& Destination)
        : Source(From), DataSet(Destination), Taken(static_cast<std::size_t>(DataSet.FieldCount()))
    {
    }

    bool IsTaken(const TField& Field) const
    {
        return Taken[static_cast<std::size_t>(Field.Index())] != tkNot;
    }

    void Join(const TKvISourceColumn& Column, const TField& Field, TJobFate Fate = jcMapped,
              bool ByTitle = false)
    {
        TakenBy(Field) = tkByColumn;
        Plan.Lines.push_back(Field.FieldName() + "=" + std::string(Trim(Column.Name)));
        Plan.Columns.push_back(
            {.Column = Column, .Field = ToDisplay(Field.FieldName()), .Fate = Fate, .ByTitle = ByTitle});
    }
    /// Its field is taken before any column can be, and its line is the last.
    void Set(const TKvISourceColumn& Constant, const TField& Field)
    {
        TakenBy(Field) = tkByConstant;
        Constants.emplace_back(Constant, &Field);
    }
    void LeaveOut(const TKvISourceColumn& Column, TJobFate Fate)
    {
        Plan.Columns.push_back({.Column = Column, .Field = {}, .Fate = Fate});
    }
    void JoinOrLeaveOut(const TKvISourceColumn& Column, const TField& Field, bool ByTitle)
    {
        if (!Source.CanBeNamed(Column))
            LeaveOut(Column, jcUnnameableColumn);
        else if (IsTaken(Field))
            LeaveOut(Column, TakenBy(Field) == tkByColumn ? jcTitleTwice : jcFieldSet);
        else if (const auto Reason = Obstacle(Field, DataSet); Reason != jcMapped)
            LeaveOut(Column, Reason);
        else
            Join(Column, Field, jcMapped, ByTitle);
    }
    /// For a line of a user, who is told why it cannot be.
    const TField& FieldFor(const std::string& Name, const std::string& Line) const
    {
        const auto& Field = FieldNamed(Name, Line, DataSet);
        if (IsTaken(Field))
            Refuse({.Kind = jfFieldTwice, .Name = Line, .Value = Name});
        if (const auto Reason = Obstacle(Field, DataSet); Reason != jcMapped)
            Refuse({.Kind = Reason == jcReadOnly ? jfFieldReadOnly : jfFieldUnnameable,
                    .Name = Line,
                    .Value = Name});
        return Field;
    }

    /// Columns of the source that nothing was said of.
    void LeaveOutOthers()
    {
        const auto Used = Plan.Columns;
        for (const auto& Column : Source.Columns()) {
            const auto IsColumn = [&Column](const auto& Fate) { return Fate.Column.Name == Column.Name; };
            if (std::ranges::none_of(Used, IsColumn))
                LeaveOut(Column, jcNotMapped);
        }
    }

    TJobPlan Build()
    {
        for (const auto& [Constant, Field] : Constants)
            Join(Constant, *Field, jcConstant);
        for (int I = 0; I < DataSet.FieldCount(); ++I)
            if (const auto& Field = DataSet.Fields(I); !IsTaken(Field))
                Plan.FieldsWithout.push_back(
                    {.Field = ToDisplay(Field.FieldName()), .Fate = FateWithoutColumn(Field)});
        return std::move(Plan);
    }

private:
    enum TTaken { tkNot, tkByColumn, tkByConstant };

    TTaken& TakenBy(const TField& Field) { return Taken[static_cast<std::size_t>(Field.Index())]; }

    const TJobSource& Source;
    const TDataSet& DataSet;
    std::vector<TTaken> Taken;                      // by field
    std::vector<std::pair<TKvISourceColumn, const TField*>> Constants;
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
void JoinByName(TPlanBuilder& Builder, const TJobSource& Source, const TDataSet& Destination)
{
    CheckTitles(Source);
    bool AnyFits = false;
    for (const auto& Column : Source.Columns()) {
        const auto* const Field = Column.Title.empty() ? nullptr : Destination.FindField(Column.Title);
        AnyFits = AnyFits || Field;
        if (Field)
            Builder.JoinOrLeaveOut(Column, *Field, true);
        else
            Builder.LeaveOut(Column, Column.Title.empty() ? jcNoTitle : jcNoField);
    }
    if (!AnyFits)
        Refuse({.Kind = jfNoColumnMatches,
                .Name = Source.Title(),
                .Names = TitlesOf(Source.Columns()),
                .Fields = FieldNames(Destination)});
}

/// The first column into the first field, and so on.
void JoinByPosition(TPlanBuilder& Builder, const TJobSource& Source, const TDataSet& Destination)
{
    int Next = 0;
    for (const auto& Column : Source.Columns())
        if (Next < Destination.FieldCount())
            Builder.JoinOrLeaveOut(Column, Destination.Fields(Next++), false);
        else
            Builder.LeaveOut(Column, jcNoMoreFields);
}

/// Exactly as the lines have it.
void JoinByLines(TPlanBuilder& Builder, const TJobSource& Source, const TDataSet& Destination,
                 const std::vector<std::string>& Lines)
{
    for (const auto& Line : Lines) {
        const auto Pair = SplitMapLine(Line, &Destination);
        const auto& Field = Builder.FieldFor(Pair.Field, Line);
        const auto [Column, Kind, ByTitle] = Source.ColumnNamed(Pair.Column);
        Builder.Join(Column, Field, FateOf(Kind), ByTitle);
    }
    Builder.LeaveOutOthers();
}

/// How the component joins columns and fields by itself.
std::vector<std::string> LinesOf(TKvImportFromFile& Component, TDataSet& Destination)
{
    std::vector<std::string> Lines;
    Component.SetDataSet(&Destination);
    for (const auto& Line : Component.RunMappings())
        Lines.push_back(ToDisplay(Line));
    return Lines;
}

/// A plan that takes nothing of a source that has records would store as many empty ones.
void CheckTakesAny(const TJobSource& Source, const TJobPlan& Plan)
{
    const auto TakesOne = [](const TJobColumnFate& Fate) {
        return !Fate.Field.empty() && (Fate.Fate == jcMapped || Fate.Fate == jcByOrder);
    };
    const bool TakesNone = std::ranges::none_of(Plan.Columns, TakesOne);
    if (Plan.Lines.empty() || (TakesNone && !Source.View().Rows.empty()))
        Refuse({.Kind = jfNoColumns, .Name = Source.Title(), .Names = TitlesOf(Source.Columns())});
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

TJobMapPair SplitMapLine(const std::string& Line, const TDataSet* Destination)
{
    const auto Given = FromDisplay(Line);
    const auto [Field, Column] = TKvImportBaseComponent::SplitMapping(Given, Destination);
    if (Field.empty() || Column.empty())
        Refuse({.Kind = jfBadMapLine, .Value = Line});
    return {.Field = ToDisplay(Field), .Column = ToDisplay(Column)};
}

TJobPlan MakePlan(const TJobSource& Source, TDataSet& Destination, const TJobPlanSettings& Settings)
{
    TPlanBuilder Builder(Source, Destination);
    for (const auto& Line : Settings.Constants) {
        const auto Pair = SplitMapLine(Line, &Destination);
        Builder.Set(Source.Constant(Pair.Column), Builder.FieldFor(Pair.Field, Line));
    }
    switch (Source.MapsItself() ? jmByLines : Settings.Mapping) {
    case jmByName:     JoinByName(Builder, Source, Destination); break;
    case jmByPosition: JoinByPosition(Builder, Source, Destination); break;
    case jmByLines:
        JoinByLines(Builder, Source, Destination,
                    Source.MapsItself() ? LinesOf(Source.Component(), Destination) : Settings.Lines);
        break;
    }
    auto Plan = Builder.Build();
    CheckTakesAny(Source, Plan);
    if (NeedsKeys(Settings.Mode))
        Plan.Keys = KeyFields(Settings.Keys, Plan, Destination);
    return Plan;
}

TJobPlan MakePlanAlone(const TJobSource& Source, const TJobPlanSettings& Settings)
{
    TJobPlan Plan{.Keys = Settings.Keys};
    const auto Join = [&Plan](const std::string& Field, const TJobColumn& Found) {
        Plan.Lines.push_back(FromDisplay(Field) + '=' + Found.Column.Name);
        Plan.Columns.push_back({.Column = Found.Column,
                                .Field = Field,
                                .Fate = FateOf(Found.Kind),
                                .ByTitle = Found.ByTitle});
    };
    for (const auto& Line : Settings.Lines) {
        const auto Pair = SplitMapLine(Line);
        Join(Pair.Field, Source.ColumnNamed(Pair.Column));
    }
    for (const auto& Line : Settings.Constants) {
        const auto Pair = SplitMapLine(Line);
        Join(Pair.Field, {.Column = Source.Constant(Pair.Column), .Kind = snConstant});
    }
    CheckTakesAny(Source, Plan);
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
