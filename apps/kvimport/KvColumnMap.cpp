#include "KvColumnMap.h"

#include <algorithm>
#include <cstddef>

#include "KvDataSet.h"
#include "KvDisplayText.h"
#include "KvException.h"
#include "KvOptionText.h"
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

std::string NamesOf(const std::vector<TSourceColumn>& Columns)
{
    std::vector<std::string> Names;
    for (const auto& Column : Columns)
        Names.push_back(Column.Name);
    return JoinNames(Names);
}

/// The field that a user named. Raises Exception.
const TField& FieldNamed(const std::string& Name, const std::string& Where, const TDataSet& DataSet)
{
    if (const auto* const Field = DataSet.FindField(FromDisplay(Name)))
        return *Field;
    throw Exception(Where + ": there is no field '" + Name + "'; the fields are " + FieldNames(DataSet));
}

/// "Text11-20" is a column of a fixed line whatever the source lists.
bool IsRange(const std::string& Source)
{
    const auto Dash = Source.find('-');
    const auto IsNumber = [](std::string_view Text) {
        return !Text.empty() && Text.find_first_not_of("0123456789") == Text.npos;
    };
    return Source.starts_with("Text") && Dash != Source.npos && IsNumber(std::string_view(Source).substr(4, Dash - 4)) &&
           IsNumber(std::string_view(Source).substr(Dash + 1));
}

} // namespace

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
                        FieldNames(Destination));
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

std::string RemarkOnConstant(const std::string& Source, const std::vector<TSourceColumn>& Columns)
{
    if (IsRange(Source))
        return {};
    if (Source.starts_with("Field"))
        return "there is no such column: the field stays empty";
    const auto Meant = std::ranges::find_if(
        Columns, [&Source](const TSourceColumn& Column) { return SameText(Column.Name, Source); });
    if (Meant != Columns.end())
        return "no column but a constant: every record gets this text (the column of that name is " + Meant->Source + ")";
    return "no column but a constant: every record gets this text";
}

TColumnMap MapAsGiven(const std::vector<std::string>& Lines, const std::vector<TSourceColumn>& Columns,
                      const TDataSet& Destination,
                      const std::function<std::string(const std::string& Source)>& RemarkOnStranger)
{
    TMapBuilder Builder(Destination);
    std::vector<std::string> Used;
    for (const auto& Line : Lines) {
        const auto Equal = Line.find('=');
        const std::string Name(Trim(Line.substr(0, Equal)));
        const std::string Source(Equal == Line.npos ? "" : Trim(std::string_view(Line).substr(Equal + 1)));
        if (Name.empty() || Source.empty())
            throw Exception("--map: '" + Line + "' is no pair such as ID=Field1: a field and a column");
        const auto& Field = FieldNamed(Name, "'" + Line + "'", Destination);
        if (Builder.IsTaken(Field))
            throw Exception("'" + Line + "': the field has a column already");
        if (const auto Reason = Obstacle(Field); !Reason.empty())
            throw Exception("'" + Line + "': " + Reason);
        const auto Column = std::ranges::find_if(
            Columns, [Named = FromDisplay(Source)](const TSourceColumn& Each) { return Each.Source == Named; });
        const bool Known = Column != Columns.end();
        Used.push_back(FromDisplay(Source));
        Builder.Join(Known ? *Column : TSourceColumn{.Source = FromDisplay(Source), .Name = {}}, Field,
                     Known ? std::string() : RemarkOnStranger(Source));
    }
    for (const auto& Column : Columns)
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
