#include "KvMemoryDataSet.h"

#include <algorithm>
#include <functional>
#include <string>
#include <utility>

#include "KvText.h"

namespace kv {

namespace {

std::uint64_t HashOf(const TVariant& Value, bool CaseInsensitive)
{
    switch (Value.Kind()) {
    case vkString:
        return CaseInsensitive ? std::hash<std::string>{}(UpperCase(Value.Text()))
                               : std::hash<std::string_view>{}(Value.Text());
    case vkInteger:  return std::hash<double>{}(static_cast<double>(Value.Integer())); // equal to a double
    case vkDouble:   return std::hash<double>{}(Value.Double());
    case vkCurrency: return std::hash<double>{}(Value.Currency().ToDouble());
    case vkDateTime: return std::hash<double>{}(Value.DateTime().Days);
    case vkBoolean:  return Value.Boolean() ? 1 : 2;
    default:         return 0;
    }
}

constexpr std::uint64_t Combine(std::uint64_t Hash, std::uint64_t Next)
{
    return (Hash ^ Next) * 0x9E3779B97F4A7C15;      // 2^64 / golden ratio: spreads neighbouring numbers
}

} // namespace

TMemoryDataSet::~TMemoryDataSet()
{
    Close();
}

void TMemoryDataSet::SetFieldDefs(std::vector<TFieldDef> Value)
{
    Close();
    Defs = std::move(Value);
    Rows.clear();
    LiveRows = 0;
}

void TMemoryDataSet::InternalOpen()
{
    for (const auto& Def : Defs)
        AddField(Def);
}

void TMemoryDataSet::InternalClose()
{
    Indexes.clear();
}

void TMemoryDataSet::InternalFirst()
{
    Current = NextRow(0);
}

void TMemoryDataSet::InternalNext()
{
    Current = NextRow(Current + 1);
}

bool TMemoryDataSet::InternalEof()
{
    return Current >= Rows.size();
}

int TMemoryDataSet::InternalRecordCount()
{
    return static_cast<int>(LiveRows);
}

TVariant TMemoryDataSet::InternalGetValue(const TField& Field)
{
    const TVariant& Value = Rows[Current][static_cast<std::size_t>(Field.Index())];
    return Value.IsString() ? TVariant::Borrow(Value.Text()) : Value;
}

void TMemoryDataSet::InternalInsert(const TRecordBuffer& Written)
{
    auto Row = std::make_unique<TVariant[]>(Written.Values.size());
    for (std::size_t I = 0; I < Written.Values.size(); ++I) {
        if (Written.Assigned[I])
            Row[I] = Written.Values[I];
        else
            Row[I] = Null;
    }
    Rows.push_back(std::move(Row));
    ++LiveRows;
    Current = Rows.size() - 1;
    for (auto& Index : Indexes)
        Index.Rows[HashOfRow(Index, Current)].insert(Current);
}

void TMemoryDataSet::InternalUpdate(const TRecordBuffer& Written)
{
    for (auto& Index : Indexes)
        Index.HashBeforeUpdate = HashOfRow(Index, Current);
    for (std::size_t I = 0; I < Written.Values.size(); ++I)
        if (Written.Assigned[I])
            Rows[Current][I] = Written.Values[I];
    for (auto& Index : Indexes) {
        const auto Hash = HashOfRow(Index, Current);
        if (Hash == Index.HashBeforeUpdate)
            continue;
        RemoveFromIndex(Index, Index.HashBeforeUpdate, Current);
        Index.Rows[Hash].insert(Current);
    }
}

void TMemoryDataSet::InternalDelete()
{
    for (auto& Index : Indexes)
        RemoveFromIndex(Index, HashOfRow(Index, Current), Current);
    Rows[Current] = nullptr;
    if (--LiveRows == 0)
        Rows.clear();                               // numbers begin anew: a table often refilled stays small
    Current = NextRow(Current);
}

bool TMemoryDataSet::InternalLocate(std::span<TField* const> Keys, std::span<const TVariant> Values,
                                    TLocateOptions Options)
{
    return Options.Contains(loPartialKey) ? LocateByScan(Keys, Values, Options)
                                          : LocateByIndex(Keys, Values, Options);
}

std::uint64_t TMemoryDataSet::HashOfRow(const TIndex& Index, TRowNumber Row) const
{
    std::uint64_t Hash = 0;
    for (const auto Key : Index.Keys)
        Hash = Combine(Hash, HashOf(Rows[Row][static_cast<std::size_t>(Key)], Index.CaseInsensitive));
    return Hash;
}

TMemoryDataSet::TIndex& TMemoryDataSet::IndexOn(std::span<TField* const> Keys, bool CaseInsensitive)
{
    for (auto& Index : Indexes)
        if (Index.CaseInsensitive == CaseInsensitive &&
            std::ranges::equal(Index.Keys, Keys, {}, {}, [](const TField* Field) { return Field->Index(); }))
            return Index;
    auto& Index = Indexes.emplace_back();
    Index.CaseInsensitive = CaseInsensitive;
    for (const auto* Key : Keys)
        Index.Keys.push_back(Key->Index());
    for (auto Row = NextRow(0); Row < Rows.size(); Row = NextRow(Row + 1))
        Index.Rows[HashOfRow(Index, Row)].insert(Row);
    return Index;
}

void TMemoryDataSet::RemoveFromIndex(TIndex& Index, std::uint64_t Hash, TRowNumber Row)
{
    const auto Entry = Index.Rows.find(Hash);
    Entry->second.erase(Row);
    if (Entry->second.empty())
        Index.Rows.erase(Entry);
}

bool TMemoryDataSet::RowMatches(TRowNumber Row, std::span<TField* const> Keys,
                                std::span<const TVariant> Values, TLocateOptions Options) const
{
    for (std::size_t I = 0; I < Keys.size(); ++I)
        if (!MatchesKey(Rows[Row][static_cast<std::size_t>(Keys[I]->Index())], Values[I], Options))
            return false;
    return true;
}

bool TMemoryDataSet::LocateByIndex(std::span<TField* const> Keys, std::span<const TVariant> Values,
                                   TLocateOptions Options)
{
    const bool CaseInsensitive = Options.Contains(loCaseInsensitive);
    const TIndex& Index = IndexOn(Keys, CaseInsensitive);
    std::uint64_t Hash = 0;
    for (const auto& Value : Values)
        Hash = Combine(Hash, HashOf(Value, CaseInsensitive));
    const auto Entry = Index.Rows.find(Hash);
    if (Entry == Index.Rows.end())
        return false;
    for (const auto Row : Entry->second) {
        if (RowMatches(Row, Keys, Values, Options)) {
            Current = Row;
            return true;
        }
    }
    return false;
}

bool TMemoryDataSet::LocateByScan(std::span<TField* const> Keys, std::span<const TVariant> Values,
                                  TLocateOptions Options)
{
    for (auto Row = NextRow(0); Row < Rows.size(); Row = NextRow(Row + 1)) {
        if (RowMatches(Row, Keys, Values, Options)) {
            Current = Row;
            return true;
        }
    }
    return false;
}

TMemoryDataSet::TRowNumber TMemoryDataSet::NextRow(TRowNumber From) const
{
    while (From < Rows.size() && !Rows[From])
        ++From;
    return From;
}

} // namespace kv
