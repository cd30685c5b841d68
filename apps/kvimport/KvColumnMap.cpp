#include "KvColumnMap.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

#include "KvDataSet.h"
#include "KvDisplayText.h"
#include "KvException.h"
#include "KvOptionText.h"
#include "KvTerminalText.h"
#include "KvText.h"

namespace kv {

namespace {

constexpr char NoFieldOfThatName[] = "no field of that name: not imported";

/// Builds a map line by line.
class TMapBuilder
{
public:
    explicit TMapBuilder(const TDataSet& Destination) : DataSet(Destination), Taken(static_cast<std::size_t>(DataSet.FieldCount())) {}

    bool IsTaken(const TField& Field) const { return Taken[static_cast<std::size_t>(Field.Index())]; }

    /// `Column` goes into `Field`.
    void Join(const TSourceColumn& Column, const TField& Field, std::string Remark = {})
    {
        Taken[static_cast<std::size_t>(Field.Index())] = true;
        Map.Lines.push_back(Field.FieldName() + "=" + Column.Source);
        Map.Columns.push_back({.Column = Column, .Field = ToDisplay(Field.FieldName()), .Remark = std::move(Remark)});
    }
    void LeaveOut(const TSourceColumn& Column, std::string Remark)
    {
        Map.Columns.push_back({.Column = Column, .Field = {}, .Remark = std::move(Remark)});
    }

    TColumnMap Build()
    {
        for (int I = 0; I < DataSet.FieldCount(); ++I)
            if (const auto& Field = DataSet.Fields(I); !IsTaken(Field))
                Map.FieldsWithout.push_back({.Field = ToDisplay(Field.FieldName()), .Remark = WithoutColumn(Field)});
        return std::move(Map);
    }

private:
    static std::string WithoutColumn(const TField& Field)
    {
        if (Field.ReadOnly())
            return "computed by the database";
        if (Field.HasDefault())
            return "default of the database";
        return Field.Required() ? "new records must have a value" : "";
    }

    const TDataSet& DataSet;
    std::vector<bool> Taken;
    TColumnMap Map;
};

/// Mapping lines know a field by its name without blanks around it, up to the first "=".
bool CanBeNamed(const TField& Field)
{
    const auto& Name = Field.FieldName();
    return Trim(Name) == Name && Name.find('=') == Name.npos;
}

/// Why nothing goes into the field; empty when something can.
std::string Obstacle(const TField& Field)
{
    if (Field.ReadOnly())
        return "its field is computed by the database: not imported";
    if (!CanBeNamed(Field))
        return "the name of its field cannot stand in a mapping: not imported";
    return {};
}

void JoinOrLeaveOut(TMapBuilder& Builder, const TSourceColumn& Column, const TField& Field)
{
    if (Builder.IsTaken(Field))
        Builder.LeaveOut(Column, "a column before it has that name: not imported");
    else if (auto Reason = Obstacle(Field); !Reason.empty())
        Builder.LeaveOut(Column, std::move(Reason));
    else
        Builder.Join(Column, Field);
}

/// What is no header may be of any size.
std::string NamesOf(const std::vector<TSourceColumn>& Columns)
{
    constexpr std::size_t MaxNames = 30;
    constexpr int MaxWidth = 40;
    std::vector<std::string> Names;
    for (std::size_t I = 0; I < std::min(Columns.size(), MaxNames); ++I)
        Names.push_back(FitToWidth(VisibleText(Columns[I].Name), MaxWidth));
    const auto More = Columns.size() - Names.size();
    return JoinNames(Names) + (More > 0 ? " and " + std::to_string(More) + " more" : "");
}

/// The field that a user named. Raises Exception.
const TField& FieldNamed(const std::string& Name, const std::string& Where, const TDataSet& DataSet)
{
    if (const auto* const Field = DataSet.FindField(FromDisplay(Name)))
        return *Field;
    throw Exception(Where + ": there is no field '" + Name + "'; the fields are " + FieldNames(DataSet));
}

} // namespace

TMapPair SplitMapPair(const std::string& Line)
{
    const auto Equal = std::min(Line.find('='), Line.size());
    TMapPair Pair{.Field = std::string(Trim(std::string_view(Line).substr(0, Equal))),
                  .Column = std::string(Trim(std::string_view(Line).substr(std::min(Equal + 1, Line.size()))))};
    if (Pair.Field.empty() || Pair.Column.empty())
        throw Exception("--map: '" + Line + "' is no pair such as ID=Field1: a field and a column");
    return Pair;
}

TColumnMap MapByName(const std::vector<TSourceColumn>& Columns, const TDataSet& Destination)
{
    TMapBuilder Builder(Destination);
    for (const auto& Column : Columns) {
        const auto* const Field = Column.Name.empty() ? nullptr : Destination.FindField(FromDisplay(Column.Name));
        if (Column.Name.empty())
            Builder.LeaveOut(Column, "has no name: not imported");
        else if (Field)
            JoinOrLeaveOut(Builder, Column, *Field);
        else
            Builder.LeaveOut(Column, NoFieldOfThatName);
    }
    auto Map = Builder.Build();
    if (Map.Lines.empty())
        throw Exception("no column has the name of a field; the columns are " + NamesOf(Columns) + "; the fields are " +
                        FieldNames(Destination) + "; --map or --by-position joins them otherwise");
    return Map;
}

TColumnMap MapByPosition(const std::vector<TSourceColumn>& Columns, const TDataSet& Destination)
{
    TMapBuilder Builder(Destination);
    int Next = 0;
    for (const auto& Column : Columns)
        if (Next < Destination.FieldCount())
            JoinOrLeaveOut(Builder, Column, Destination.Fields(Next++));
        else
            Builder.LeaveOut(Column, "the table has no more fields: not imported");
    auto Map = Builder.Build();
    if (Map.Lines.empty())
        throw Exception("there is no column to import");
    return Map;
}

TColumnMap MapAsGiven(const std::vector<std::string>& Lines, TSource& Source, const TDataSet& Destination)
{
    TMapBuilder Builder(Destination);
    std::vector<std::string> Used;
    for (const auto& Line : Lines) {
        const auto Pair = SplitMapPair(Line);
        const auto& Field = FieldNamed(Pair.Field, "'" + Line + "'", Destination);
        if (Builder.IsTaken(Field))
            throw Exception("'" + Line + "': the field has a column already");
        if (const auto Reason = Obstacle(Field); !Reason.empty())
            throw Exception("'" + Line + "': " + Reason);
        auto [Column, Remark] = Source.ColumnNamed(Pair.Column);
        Used.push_back(Column.Source);
        Builder.Join(Column, Field, std::move(Remark));
    }
    for (const auto& Column : Source.Columns())
        if (std::ranges::count(Used, Column.Source) == 0)
            Builder.LeaveOut(Column, "no --map names it: not imported");
    return Builder.Build();
}

bool LooksLikeHeader(const std::vector<std::string>& Values, const TDataSet& Destination)
{
    const auto Names = std::ranges::count_if(
        Values, [&Destination](const std::string& Value) { return Destination.FindField(Trim(Value)) != nullptr; });
    return 2 * Names > std::ssize(Values);
}

std::string KeyList(const std::vector<std::string>& Keys, const TColumnMap& Map, const TDataSet& Destination)
{
    std::vector<std::string> Names;
    for (const auto& Key : Keys) {
        const auto& Field = FieldNamed(Key, "--keys", Destination);
        const auto Mapped = std::ranges::find_if(
            Map.Columns, [&Field](const TColumnFate& Fate) { return Fate.Field == ToDisplay(Field.FieldName()); });
        if (Mapped == Map.Columns.end())
            throw Exception("--keys: the field '" + ToDisplay(Field.FieldName()) + "' gets no column, so no record can be found by it");
        if (std::ranges::count(Names, Field.FieldName()) == 0)
            Names.push_back(Field.FieldName());
    }
    return JoinNames(Names, ";");
}

std::string FieldNames(const TDataSet& Destination)
{
    std::vector<std::string> Names;
    for (int I = 0; I < Destination.FieldCount(); ++I)
        Names.push_back(ToDisplay(Destination.Fields(I).FieldName()));
    return JoinNames(Names);
}

} // namespace kv
