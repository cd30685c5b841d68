#include "KvModelTable.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <utility>

namespace kv {

namespace {

constexpr std::size_t ShortText = 6;                // characters

const char* TypeOf(const TModelColumn& Column)
{
    switch (Column.Kind) {
    case mkInteger:   return "INTEGER";
    case mkText:      return "TEXT";
    case mkShortText: return "VARCHAR(6)";
    case mkDecimal:   return "DECIMAL(10,2)";
    case mkReal:      return "REAL";
    case mkDate:      return "DATE";
    case mkBoolean:   return "BOOLEAN";
    }
    std::abort();
}

template <class TTextOf> std::string Joined(std::size_t Count, const std::string& Between, TTextOf TextOf)
{
    std::string Result;
    for (std::size_t I = 0; I < Count; ++I)
        Result += (I == 0 ? "" : Between) + TextOf(I);
    return Result;
}

std::optional<double> NumberOf(const std::string& Text)
{
    char* End = nullptr;
    const double Number = std::strtod(Text.c_str(), &End);
    return Text.empty() || *End != '\0' ? std::nullopt : std::optional(Number);
}

/// Of numbers with few digits.
std::string DigitsOf(double Number)
{
    auto Text = std::to_string(Number);
    Text.erase(Text.find_last_not_of('0') + 1);
    return Text.back() == '.' ? Text + "0" : Text;
}

std::size_t CharactersOf(const std::string& Utf8)
{
    return static_cast<std::size_t>(
        std::ranges::count_if(Utf8, [](char Each) { return (Each & 0xC0) != 0x80; }));
}

bool IsDay(const std::string& Text)
{
    int Year = 0, Month = 0, Day = 0;
    if (std::sscanf(Text.c_str(), "%4d-%2d-%2d", &Year, &Month, &Day) != 3)
        return false;
    const bool IsLeap = Year % 4 == 0 && (Year % 100 != 0 || Year % 400 == 0);
    const int Days[] = {31, IsLeap ? 29 : 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return Month >= 1 && Month <= 12 && Day >= 1 && Day <= Days[Month - 1];
}

} // namespace

std::optional<std::string> StoredText(TModelKind Kind, const std::string& Text)
{
    const auto Number = NumberOf(Text);
    const bool IsWhole = Number && *Number == std::floor(*Number);
    switch (Kind) {
    case mkInteger:
        return IsWhole ? std::optional("integer:" + std::to_string(std::atoll(Text.c_str()))) : std::nullopt;
    case mkText:      return "text:" + Text;
    case mkShortText: return CharactersOf(Text) <= ShortText ? std::optional("text:" + Text) : std::nullopt;
    case mkDecimal:
        if (IsWhole)
            return "integer:" + std::to_string(std::atoll(Text.c_str()));
        [[fallthrough]];
    case mkReal:    return Number ? std::optional("real:" + DigitsOf(*Number)) : std::nullopt;
    case mkDate:    return IsDay(Text) ? std::optional("text:" + Text) : std::nullopt;
    case mkBoolean:
        if (Text == "True" || Text == "False")
            return Text == "True" ? "integer:1" : "integer:0";
        return {};
    }
    std::abort();
}

std::string TModelTable::Declaration() const
{
    const auto Names = Joined(Keys.size(), ", ",
                              [this](auto I) { return Columns[static_cast<std::size_t>(Keys[I])].Name; });
    std::string Sql = "CREATE TABLE orders (" + Joined(Columns.size(), ", ", [this](auto I) {
        const auto& Column = Columns[I];
        return Column.Name + " " + TypeOf(Column) +
               (KeyKind == mkRowid && Keys.front() == static_cast<int>(I) ? " PRIMARY KEY" : "") +
               (Column.IsRequired ? " NOT NULL" : "") + (Column.IsUnique ? " UNIQUE" : "") +
               (Column.IsPositive ? " CHECK (" + Column.Name + " > 0)" : "");
    });
    switch (KeyKind) {
    case mkPrimary:      return Sql + ", PRIMARY KEY (" + Names + "))";
    case mkWithoutRowid: return Sql + ", PRIMARY KEY (" + Names + ")) WITHOUT ROWID";
    case mkIndexed:      return Sql + "); CREATE UNIQUE INDEX by_key ON orders (" + Names + ")";
    case mkRowid:
    case mkPlain:        break;
    }
    return Sql + ")";
}

std::string TModelTable::Query() const
{
    return "SELECT " + Joined(Columns.size(), " || '|' || ", [this](auto I) {
               const auto& Name = Columns[I].Name;
               return "coalesce(typeof(" + Name + ") || ':' || " + Name + ", 'null')";
           }) + " FROM orders";
}

std::string RowText(const TModelRow& Row)
{
    return Joined(Row.size(), "|", [&Row](auto I) { return Row[I].value_or("null"); });
}

// A run.

namespace {

class TModelRun
{
public:
    TModelRun(TModelTable& Changed, const TModelJob& Done) : Table(Changed), Job(Done) {}

    TModelFigures Run()
    {
        if (Job.Mode == imCopy)
            Table.Rows.clear();
        for (const auto& Record : Job.Records) {
            ++Figures.Read;
            Do(Record);
        }
        return Figures;
    }

private:
    void Do(const TModelRecord& Record)
    {
        Take(Record);
        auto Found = Table.Rows.end();
        if (Job.Mode != imAppend && Job.Mode != imCopy) {
            if (HasWrongKey) {
                ++Figures.Failed;
                return;
            }
            Found = FindRow();
        }
        if (Found == Table.Rows.end() && (Job.Mode == imUpdate || Job.Mode == imDelete))
            ++Figures.NotFound;                     // whatever else it says
        else if (Found != Table.Rows.end() && Job.Mode == imDelete) {
            Table.Rows.erase(Found);
            ++Figures.Deleted;
        }
        else if (HasWrong)
            ++Figures.Failed;
        else if (Found == Table.Rows.end())
            Store(Table.Rows.size(), TModelRow(Table.Columns.size()), Figures.Added);
        else
            Store(static_cast<std::size_t>(Found - Table.Rows.begin()), *Found, Figures.Updated);
    }

    /// The values of a record, by the columns of the table. A key that is too long may be looked for.
    void Take(const TModelRecord& Record)
    {
        Given.assign(Table.Columns.size(), {});
        HasWrong = HasWrongKey = false;
        for (std::size_t I = 0; I < Job.Columns.size(); ++I) {
            const int Column = Job.Columns[I];
            if (!Record[I])
                continue;
            const auto Kind = Table.Columns[static_cast<std::size_t>(Column)].Kind;
            auto Stored = StoredText(Kind, *Record[I]);
            HasWrong = HasWrong || !Stored;
            HasWrongKey = HasWrongKey ||
                          (!Stored && Kind != mkShortText && std::ranges::count(Table.Keys, Column) > 0);
            Given[static_cast<std::size_t>(Column)] = Stored ? Stored : "text:" + *Record[I];
        }
    }

    std::vector<TModelRow>::iterator FindRow()
    {
        return std::ranges::find_if(Table.Rows, [this](const auto& Row) {
            return std::ranges::all_of(Table.Keys, [&](int Key) {
                const auto I = static_cast<std::size_t>(Key);
                return Given[I] == Row[I];
            });
        });
    }

    void Store(std::size_t Index, TModelRow Row, int& Counter)
    {
        for (const int Column : Job.Columns)
            Row[static_cast<std::size_t>(Column)] = Given[static_cast<std::size_t>(Column)];
        if (auto& Key = Row[static_cast<std::size_t>(Table.Keys.front())]; Table.KeyKind == mkRowid && !Key)
            Key = "integer:" + std::to_string(LastRowid() + 1);
        if (IsRefused(Row, Index)) {
            ++Figures.Failed;
            return;
        }
        if (Index == Table.Rows.size())
            Table.Rows.emplace_back();
        Table.Rows[Index] = std::move(Row);
        ++Counter;
    }

    static long long IntegerOf(const std::string& Stored) { return std::atoll(Stored.c_str() + 8); }

    long long LastRowid() const
    {
        long long Last = 0;
        for (const auto& Row : Table.Rows)
            Last = std::max(Last, IntegerOf(*Row[static_cast<std::size_t>(Table.Keys.front())]));
        return Last;
    }

    bool IsRefused(const TModelRow& Row, std::size_t Index) const
    {
        for (std::size_t I = 0; I < Row.size(); ++I) {
            const auto& Column = Table.Columns[I];
            if (Column.IsRequired && !Row[I])
                return true;
            if (Column.IsPositive && Row[I] && *NumberOf(Row[I]->substr(Row[I]->find(':') + 1)) <= 0)
                return true;
            if (Column.IsUnique && IsTaken(Row, Index, {static_cast<int>(I)}))
                return true;
        }
        return Table.KeyKind != mkPlain && IsTaken(Row, Index, Table.Keys);
    }

    /// Nulls differ from each other.
    bool IsTaken(const TModelRow& Row, std::size_t Index, const std::vector<int>& Columns) const
    {
        for (std::size_t Other = 0; Other < Table.Rows.size(); ++Other)
            if (Other != Index && std::ranges::all_of(Columns, [&](int Column) {
                    const auto I = static_cast<std::size_t>(Column);
                    return Row[I] && Row[I] == Table.Rows[Other][I];
                }))
                return true;
        return false;
    }

    TModelTable& Table;
    const TModelJob& Job;
    TModelRow Given;
    bool HasWrong = false, HasWrongKey = false;
    TModelFigures Figures;
};

} // namespace

TModelFigures RunModel(TModelTable& Table, const TModelJob& Job)
{
    return TModelRun(Table, Job).Run();
}

} // namespace kv
