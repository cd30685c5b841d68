#include "KvJobChecks.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <string>

#include "KvDataSet.h"
#include "KvDisplayText.h"
#include "KvText.h"

namespace kv {

namespace {

bool IsDigit(char Char)
{
    return std::isdigit(static_cast<unsigned char>(Char)) != 0;
}

/// The types whose text loses its thousand separators.
bool IsRealNumber(TFieldType Type)
{
    return Type == ftFloat || Type == ftCurrency || Type == ftBCD;
}

/// Positions, in the view, of columns that go into such fields.
std::vector<std::size_t> NumberColumns(const TJobSource& Source, const TJobPlan& Plan,
                                       const TDataSet& Destination)
{
    std::vector<std::size_t> Result;
    for (const auto& Fate : Plan.Columns) {
        const auto* const Field =
            Fate.Field.empty() ? nullptr : Destination.FindField(FromDisplay(Fate.Field));
        const auto Column = std::ranges::find(Source.Columns(), Fate.Column.Name, &TKvISourceColumn::Name);
        if (Field && IsRealNumber(Field->DataType()) && Column != Source.Columns().end())
            Result.push_back(static_cast<std::size_t>(Column - Source.Columns().begin()));
    }
    return Result;
}

} // namespace

std::vector<TJobFinding> CheckHeader(const TJobSource& Source, const TDataSet& Destination)
{
    if (Source.HasTitles() || Source.MapsItself() || Source.View().Rows.empty())
        return {};
    const auto& First = Source.View().Rows.front();
    std::vector<std::string> Values;
    for (const auto& Value : First.Values)
        Values.push_back(Value.Value.ToText());
    if (!LooksLikeHeader(Values, Destination))
        return {};
    return {{.Kind = jfLooksLikeHeader,
             .Name = Source.Title(),
             .Unit = Source.Unit(),
             .Number = First.Position.Number}};
}

bool IsGroupedInThousands(std::string_view Number, char Separator, char DecimalSeparator)
{
    Number = Trim(Number);
    if (!Number.empty() && (Number.front() == '-' || Number.front() == '+'))
        Number.remove_prefix(1);
    const auto Whole = Number.substr(0, std::min(Number.find(DecimalSeparator), Number.size()));
    if (Number.substr(Whole.size()).find(Separator) != Number.npos)
        return false;
    std::size_t Digits = 0;                         // since the last separator
    bool Grouped = false;
    for (const char Char : Whole) {
        if (Char == Separator) {
            if (Digits == 0 || Digits > 3 || (Grouped && Digits != 3))
                return false;
            Digits = 0;
            Grouped = true;
        }
        else if (IsDigit(Char))
            ++Digits;
        else
            return true;                            // no number: the field says so
    }
    return !Grouped || Digits == 3;
}

void CheckThousandSeparators(const TJobSource& Source, const TJobPlan& Plan, const TDataSet& Destination,
                             char Separator, char DecimalSeparator)
{
    const auto Columns = NumberColumns(Source, Plan, Destination);
    for (const auto& Row : Source.View().Rows)
        for (const auto Column : Columns) {
            if (Column >= Row.Values.size() || !Row.Values[Column].Value.IsString())
                continue;                           // a number that arrives as one has no separators
            const auto Text = SourceText(Row.Values[Column].Value);
            if (!IsGroupedInThousands(Text, Separator, DecimalSeparator))
                Refuse({.Kind = jfNotThousands,
                        .Name = Source.Title(),
                        .Value = Text,
                        .Place = Row.Position.Text(),
                        .Character = Separator});
        }
}

} // namespace kv
