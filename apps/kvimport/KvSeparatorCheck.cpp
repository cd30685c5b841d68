#include "KvSeparatorCheck.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <string>
#include <vector>

#include "KvColumnMap.h"
#include "KvDataSet.h"
#include "KvDisplayText.h"
#include "KvException.h"
#include "KvOptionText.h"
#include "KvSource.h"
#include "KvText.h"

namespace kv {

namespace {

constexpr int RowsToLookAt = 200;

bool IsDigit(char Char)
{
    return std::isdigit(static_cast<unsigned char>(Char)) != 0;
}

/// The types whose text loses its thousand separators.
bool IsRealNumber(TFieldType Type)
{
    return Type == ftFloat || Type == ftCurrency || Type == ftBCD;
}

/// Positions, in the rows, of columns that go into such fields.
std::vector<std::size_t> NumberColumns(const TSourceRows& Rows, const TColumnMap& Map, const TDataSet& Destination)
{
    std::vector<std::size_t> Result;
    for (const auto& Fate : Map.Columns) {
        const auto* const Field = Fate.Field.empty() ? nullptr : Destination.FindField(FromDisplay(Fate.Field));
        const auto Column = std::ranges::find(Rows.Columns, Fate.Column.Source, &TSourceColumn::Source);
        if (Field && IsRealNumber(Field->DataType()) && Column != Rows.Columns.end())
            Result.push_back(static_cast<std::size_t>(Column - Rows.Columns.begin()));
    }
    return Result;
}

[[noreturn]] void Refuse(const std::string& Place, const std::string& Value, char Separator)
{
    const auto Name = NameOfCharacter(Separator);
    throw Exception(Place + ": '" + Value + "' has a " + Name + " where no thousands end; say --decimal-separator " + Name +
                    " if a fraction follows it, or --thousand-separator " + Name + " to remove it all the same");
}

} // namespace

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

void CheckThousandSeparators(TSource& Source, const TColumnMap& Map, const TDataSet& Destination, char Separator,
                             char DecimalSeparator)
{
    const auto Rows = Source.FirstRows(RowsToLookAt);
    const auto Columns = NumberColumns(Rows, Map, Destination);
    for (std::size_t Row = 0; Row < Rows.Rows.size(); ++Row)
        for (const auto Column : Columns)
            if (Column < Rows.Rows[Row].size() && !IsGroupedInThousands(Rows.Rows[Row][Column], Separator, DecimalSeparator))
                Refuse(Source.DisplayName() + ", " + std::string(Source.PlaceWord()) + " " + Rows.Places[Row], Rows.Rows[Row][Column], Separator);
}

} // namespace kv
