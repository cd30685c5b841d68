// KvSqliteLookup - finds the record that has certain values, through an index of the database or, where
// it has none, one made for the purpose. For the units of this folder.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "KvDataSet.h"
#include "KvSqliteKeyTable.h"
#include "KvSqliteSchema.h"
#include "KvSqliteStatement.h"

namespace kv {

/// Values compare bytewise, whatever collation a column declares: an index of another collation is
/// used to come near and the bytes decide. Of several records the first in dataset order is found.
class TSQLiteLookup
{
public:
    /// Keeps references to both.
    TSQLiteLookup(TSQLiteConnection& Connection, const TSQLiteTableSchema& Table);

    /// Prepares for the columns of `Keys`. False for a view and for more columns than anybody looks up by.
    /// What the database has no index for gets one from the second time on: reading it once costs less.
    /// Which record is found does not depend on the way.
    bool Prepare(std::span<TField* const> Keys);
    /// Finds a record for the columns of the last Prepare. False, and `Found` undefined, when there is none.
    bool Find(std::span<const TVariant> Values, TSQLiteKey& Found);

    /// Temporary indexes are to be made anew: a rollback may have taken them away.
    void Forget();

private:
    /// The statement for keys of which those with a bit in `Nulls` are null.
    struct TSelect
    {
        std::uint64_t Nulls;
        TSQLiteStatement Statement;
    };
    /// How to look up by certain columns.
    struct TPlan
    {
        std::vector<int> Columns;
        std::vector<bool> ManySpellings;            // date-times that are not all written as we write them
        const TSQLiteIndex* Index = nullptr;        // none: KeyTable, or nothing yet
        std::unique_ptr<TSQLiteKeyTable> KeyTable;
        std::int64_t DataVersion = 0;               // of the database when KeyTable was filled
        std::int64_t CheckedIn = 0;                 // the transaction in which that was last compared
        bool AskedBefore = false;
        bool Stale = false;
        std::vector<TSelect> Selects;               // the last used one at the front
    };

    TPlan& PlanFor(std::span<TField* const> Keys);
    const TSQLiteIndex* BestIndex(std::span<const int> Columns) const;
    bool HasOtherSpellings(int Column) const;
    void RefreshKeyTable(TPlan& Plan);
    std::int64_t ReadDataVersion();
    TSQLiteStatement& SelectFor(TPlan& Plan, std::uint64_t Nulls);
    std::string IndexSql(const TPlan& Plan, std::uint64_t Nulls) const;
    std::string KeyTableSql(const TPlan& Plan, std::uint64_t Nulls) const;
    void Bind(TSQLiteStatement& Statement, const TPlan& Plan, std::span<const TVariant> Values);
    int BindSpellings(TSQLiteStatement& Statement, int Param, const TSQLiteColumn& Column, TDateTime Value);

    TSQLiteConnection& Connection;
    const TSQLiteTableSchema& Table;
    std::vector<TPlan> Plans;                       // the last used one at the front
    std::vector<TSQLiteScratch> Scratch;            // one a key column
    std::vector<std::string> Spellings;             // what BindSpellings has bound
    TSQLiteStatement DataVersion;
};

} // namespace kv
