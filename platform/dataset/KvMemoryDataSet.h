// KvMemoryDataSet - a dataset whose records live in memory, with a hash index for Locate.
#pragma once

#include <cstdint>
#include <memory>
#include <set>
#include <span>
#include <unordered_map>
#include <vector>

#include "KvDataSet.h"

namespace kv {

/// Records in the order in which they were added. They outlive Close and end with the dataset.
class TMemoryDataSet : public TDataSet
{
public:
    using TDataSet::TDataSet;
    ~TMemoryDataSet() override;

    std::string_view ClassName() const override { return "TMemoryDataSet"; }

    /// The columns, to be set before the first Open. Changing them drops all records.
    const std::vector<TFieldDef>& FieldDefs() const { return Defs; }
    void SetFieldDefs(std::vector<TFieldDef> Value);
    std::vector<TFieldDef> DescribeFields() override { return Defs; }

protected:
    void InternalOpen() override;
    void InternalClose() override;
    void InternalFirst() override;
    void InternalNext() override;
    bool InternalEof() override;
    int InternalRecordCount() override;
    TVariant InternalGetValue(const TField& Field) override;
    void InternalInsert(const TRecordBuffer& Written) override;
    void InternalUpdate(const TRecordBuffer& Written) override;
    void InternalDelete() override;
    bool InternalLocate(std::span<TField* const> Keys, std::span<const TVariant> Values,
                        TLocateOptions Options) override;

private:
    using TRow = std::unique_ptr<TVariant[]>;       // one value a field; none once deleted
    using TRowNumber = std::size_t;                 // stays with a row for life

    /// Rows by the hash of their values in Keys. Rows that share a key stand in the order of the
    /// records, so that the first of them is found, and each of them removed, without a walk.
    struct TIndex
    {
        std::vector<int> Keys;                      // field indexes
        bool CaseInsensitive = false;
        std::unordered_map<std::uint64_t, std::set<TRowNumber>> Rows;
        std::uint64_t HashBeforeUpdate = 0;
    };

    TIndex& IndexOn(std::span<TField* const> Keys, bool CaseInsensitive);
    static void RemoveFromIndex(TIndex& Index, std::uint64_t Hash, TRowNumber Row);
    std::uint64_t HashOfRow(const TIndex& Index, TRowNumber Row) const;
    bool RowMatches(TRowNumber Row, std::span<TField* const> Keys, std::span<const TVariant> Values,
                    TLocateOptions Options) const;
    bool LocateByIndex(std::span<TField* const> Keys, std::span<const TVariant> Values,
                       TLocateOptions Options);
    bool LocateByScan(std::span<TField* const> Keys, std::span<const TVariant> Values,
                      TLocateOptions Options);
    TRowNumber NextRow(TRowNumber From) const;      // the first that is not deleted, or Rows.size()

    std::vector<TFieldDef> Defs;
    std::vector<TRow> Rows;
    std::size_t LiveRows = 0;
    TRowNumber Current = 0;
    std::vector<TIndex> Indexes;                    // made when a Locate first needs one
};

} // namespace kv
