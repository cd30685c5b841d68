#include "KvSqliteLookup.h"

#include <algorithm>
#include <limits>

#include "KvException.h"
#include "KvSqliteConnection.h"
#include "KvSqliteName.h"

namespace kv {

namespace {

constexpr std::string_view Bytewise = "\"BINARY\"";
constexpr int MaxSpellings = 9;                     // what SpellingsOf gives at most

bool IsNull(std::uint64_t Nulls, std::size_t Column)
{
    return (Nulls >> Column & 1) != 0;
}

/// ISO 8601 allows more than one text for a point in time. These are what programs write: with blank
/// or "T", without zero seconds, with three or six decimals, a date alone for midnight.
std::vector<std::string> SpellingsOf(TFieldType Type, TDateTime Value)
{
    const auto Time = TimeToIso(Value);
    constexpr std::size_t WholeSeconds = 8;         // of "23:59:59"
    std::vector<std::string> Times{Time};
    if (Time.size() == WholeSeconds)
        Times.insert(Times.end(), {Time + ".000", Time + ".000000"});
    else
        Times.push_back(Time + "000");
    if (Time.ends_with(":00"))
        Times.push_back(Time.substr(0, 5));
    if (Type == ftTime)
        return Times;
    const auto Date = DateToIso(Value);
    std::vector<std::string> All;
    for (const char* const Gap : {" ", "T"})
        for (const auto& Text : Times)
            All.push_back(Date + Gap + Text);
    if (Time == "00:00:00")
        All.push_back(Date);
    return All;
}

/// "COLUMN COLLATE ... = ?N", with several parameters "COLUMN COLLATE ... IN (?N, ...)".
std::string Equals(const std::string& Column, std::string_view Collation, int FirstParam, int Count)
{
    auto Term = Column;
    if (!Collation.empty())
        Term.append(" COLLATE ").append(Collation);
    if (Count == 1)
        return Term + " = ?" + std::to_string(FirstParam);
    std::string Params;
    for (int I = 0; I < Count; ++I)
        AddToList(Params, "?" + std::to_string(FirstParam + I));
    return Term + " IN (" + Params + ")";
}

} // namespace

TSQLiteLookup::TSQLiteLookup(TSQLiteConnection& Owner, const TSQLiteTableSchema& Schema)
    : Connection(Owner), Table(Schema)
{
}

bool TSQLiteLookup::Prepare(std::span<TField* const> Keys)
{
    if (Table.Key.empty() || Keys.size() > std::numeric_limits<std::uint64_t>::digits / 2)
        return false;
    auto& Plan = PlanFor(Keys);
    if (!Plan.Index && TSQLiteKeyTable::Suits(Table) && std::exchange(Plan.AskedBefore, true))
        RefreshKeyTable(Plan);
    return true;
}

bool TSQLiteLookup::Find(std::span<const TVariant> Values, TSQLiteKey& Found)
{
    std::uint64_t Nulls = 0;
    for (std::size_t I = 0; I < Values.size(); ++I)
        if (!Values[I].HasValue())
            Nulls |= std::uint64_t{1} << I;
    auto& Plan = Plans.front();
    auto& Statement = SelectFor(Plan, Nulls);
    try {
        Bind(Statement, Plan, Values);
    }
    catch (const EConvertError&) {
        return false;                               // what cannot be stored equals no record
    }
    if (!Statement.Step())
        return false;
    for (std::size_t I = 0; I < Found.size(); ++I)
        Found[I].Set(Statement.Column(static_cast<int>(I)));
    Statement.Reset();
    return true;
}

void TSQLiteLookup::Forget()
{
    for (auto& Plan : Plans)
        Plan.Stale = true;
}

// --- Plans ------------------------------------------------------------------------------------------

TSQLiteLookup::TPlan& TSQLiteLookup::PlanFor(std::span<TField* const> Keys)
{
    const auto Found = std::ranges::find_if(Plans, [Keys](const TPlan& Plan) {
        return std::ranges::equal(Plan.Columns, Keys, {}, {}, [](const TField* Field) {
            return Field->Index();
        });
    });
    if (Found != Plans.end()) {
        std::rotate(Plans.begin(), Found, Found + 1);
        return Plans.front();
    }
    TPlan Plan;
    for (const auto* const Key : Keys) {
        Plan.Columns.push_back(Key->Index());
        Plan.ManySpellings.push_back(IsDateTimeField(Key->DataType()) && HasOtherSpellings(Key->Index()));
    }
    Plan.Index = BestIndex(Plan.Columns);
    Scratch.resize(std::max(Scratch.size(), Keys.size()));
    Plans.insert(Plans.begin(), std::move(Plan));
    return Plans.front();
}

/// The index whose first columns are `Columns` in any order, or a unique one that needs only some of
/// them; of several the unique one, then the shortest.
const TSQLiteIndex* TSQLiteLookup::BestIndex(std::span<const int> Columns) const
{
    const auto Serves = [Columns](const TSQLiteIndex& Index) {
        const auto IsKey = [Columns](const TSQLiteIndex::TPart& Part) {
            return std::ranges::find(Columns, Part.Column) != Columns.end();
        };
        const auto Matching = std::ranges::find_if_not(Index.Parts, IsKey) - Index.Parts.begin();
        return Matching >= std::ssize(Columns) || (Index.Unique && Matching == std::ssize(Index.Parts));
    };
    const auto IsBetter = [](const TSQLiteIndex& A, const TSQLiteIndex& B) {
        return A.Unique != B.Unique ? A.Unique : A.Parts.size() < B.Parts.size();
    };
    const TSQLiteIndex* Best = nullptr;
    for (const auto& Index : Table.Indexes)
        if (Serves(Index) && (!Best || IsBetter(Index, *Best)))
            Best = &Index;
    return Best;
}

bool TSQLiteLookup::HasOtherSpellings(int Index) const
{
    const auto Name = QuoteName(Table.Column(Index).Name);
    const auto Like = [&Name](const char* Pattern) { return Name + " LIKE '" + Pattern + "'"; };
    std::string Ours;
    switch (Table.Column(Index).Def.DataType) {
    case ftDate: Ours = Like("____-__-__"); break;
    case ftTime: Ours = Like("__:__:__") + " OR " + Like("__:__:__.___"); break;
    default:     Ours = Like("____-__-__ __:__:__") + " OR " + Like("____-__-__ __:__:__.___"); break;
    }
    TSQLiteStatement Other(Connection, "SELECT 1 FROM " + Table.QualifiedName() + " WHERE NOT (" + Ours +
                                           ") OR " + Like("%.000") + " LIMIT 1", Table.Title);
    return Other.Step();
}

void TSQLiteLookup::RefreshKeyTable(TPlan& Plan)
{
    const bool Usable = Plan.KeyTable && !Plan.Stale;
    if (Usable && Connection.InTransaction() && Plan.CheckedIn == Connection.TransactionSerial())
        return;                                     // nobody else writes during our transaction
    const auto Version = ReadDataVersion();
    Plan.CheckedIn = Connection.TransactionSerial();
    if (Usable && Plan.DataVersion == Version)
        return;
    Plan.Selects.clear();
    Plan.KeyTable.reset();
    Plan.KeyTable = std::make_unique<TSQLiteKeyTable>(Connection, Table, Plan.Columns);
    Plan.DataVersion = Version;
    Plan.Stale = false;
}

/// Changes when another connection has changed the database.
std::int64_t TSQLiteLookup::ReadDataVersion()
{
    if (!DataVersion)
        DataVersion = TSQLiteStatement(Connection, "PRAGMA " + QuoteName(Table.Schema) + ".data_version",
                                       Table.Title);
    DataVersion.Step();
    const auto Version = DataVersion.Column(0).Integer;
    DataVersion.Reset();
    return Version;
}

// --- Statements -------------------------------------------------------------------------------------

TSQLiteStatement& TSQLiteLookup::SelectFor(TPlan& Plan, std::uint64_t Nulls)
{
    constexpr std::size_t MaxSelects = 16;
    auto& Selects = Plan.Selects;
    const auto Found = std::ranges::find(Selects, Nulls, &TSelect::Nulls);
    if (Found != Selects.end()) {
        std::rotate(Selects.begin(), Found, Found + 1);
        return Selects.front().Statement;
    }
    const auto Sql = Plan.KeyTable ? KeyTableSql(Plan, Nulls) : IndexSql(Plan, Nulls);
    TSQLiteStatement Statement(Connection, Sql, Table.Title);
    if (Selects.size() == MaxSelects)
        Selects.pop_back();
    Selects.insert(Selects.begin(), {Nulls, std::move(Statement)});
    return Selects.front().Statement;
}

/// Of the table itself, through the index of the plan if there is one.
std::string TSQLiteLookup::IndexSql(const TPlan& Plan, std::uint64_t Nulls) const
{
    const TSQLiteIndex None;
    const auto& Index = Plan.Index ? *Plan.Index : None;
    std::string Where;
    int Param = 1;
    for (std::size_t I = 0; I < Plan.Columns.size(); ++I) {
        const auto Name = QuoteName(Table.Column(Plan.Columns[I]).Name);
        if (IsNull(Nulls, I)) {
            AddToList(Where, Name + " IS NULL", " AND ");
            continue;
        }
        const auto Part = std::ranges::find(Index.Parts, Plan.Columns[I], &TSQLiteIndex::TPart::Column);
        const auto Collation = Part != Index.Parts.end() ? std::string_view(Part->Collation) : Bytewise;
        const int Count = Plan.ManySpellings[I] ? MaxSpellings : 1;
        AddToList(Where, Equals(Name, Collation, Param, Count), " AND ");
        if (!Collation.empty() && Collation != Bytewise)
            AddToList(Where, Equals(Name, Bytewise, Param, Count), " AND ");
        Param += Count;
    }
    const auto From = Table.QualifiedName() + (Index.Name.empty() ? "" : " INDEXED BY " + Index.Name);
    return "SELECT " + Table.KeyList() + " FROM " + From + " WHERE " + Where + " ORDER BY " +
           Table.KeyOrder() + " LIMIT 1";
}

std::string TSQLiteLookup::KeyTableSql(const TPlan& Plan, std::uint64_t Nulls) const
{
    std::string List, Where = "nulls = " + std::to_string(Nulls);
    for (std::size_t I = 0; I < Table.Key.size(); ++I)
        AddToList(List, TSQLiteKeyTable::RecordKeyName(I));
    int Param = 1;
    for (std::size_t I = 0; I < Plan.Columns.size(); ++I) {
        const int Count = Plan.ManySpellings[I] ? MaxSpellings : 1;
        Where += " AND " + (IsNull(Nulls, I) ? TSQLiteKeyTable::KeyName(I) + " = 0"
                                             : Equals(TSQLiteKeyTable::KeyName(I), "", Param, Count));
        Param += IsNull(Nulls, I) ? 0 : Count;
    }
    return "SELECT " + List + " FROM temp." + Plan.KeyTable->Name() + " WHERE " + Where + " ORDER BY " +
           List + " LIMIT 1";
}

void TSQLiteLookup::Bind(TSQLiteStatement& Statement, const TPlan& Plan, std::span<const TVariant> Values)
{
    int Param = 1;
    Spellings.clear();
    for (std::size_t I = 0; I < Values.size(); ++I) {
        if (!Values[I].HasValue())
            continue;
        if (Plan.ManySpellings[I])
            Param = BindSpellings(Statement, Param, Table.Column(Plan.Columns[I]), Values[I].DateTime());
        else
            Statement.Bind(Param++, EncodeValue(Table.Column(Plan.Columns[I]), Values[I], Scratch[I]));
    }
}

/// Binds MaxSpellings parameters, those to spare to null. Returns the number after them.
int TSQLiteLookup::BindSpellings(TSQLiteStatement& Statement, int Param, const TSQLiteColumn& Column,
                                 TDateTime Value)
{
    const auto Texts = SpellingsOf(Column.Def.DataType, Value);
    Spellings.reserve(MaxSpellings * Scratch.size()); // what is bound must stay where it is
    for (std::size_t I = 0; I < MaxSpellings; ++I) {
        TSQLiteValue Text;
        if (I < Texts.size())
            Text = TSQLiteValue::OfText(Spellings.emplace_back(Texts[I]));
        Statement.Bind(Param++, Text);
    }
    return Param;
}

} // namespace kv
