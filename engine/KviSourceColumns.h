// KviSourceColumns - remembers what a source made of the column names in the mappings, so that a name
// is taken apart once per run and not once per value.
#pragma once

#include <algorithm>
#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "KvVariant.h"

namespace kv {

/// `TColumn` is whatever a source turns a name into: a position, a range, a field.
template <class TColumn> class TKvSourceColumns
{
public:
    /// Forgets everything: a new run begins.
    void Clear()
    {
        Entries.clear();
        Places.clear();
        Next = 0;
    }

    /// The column for `Source`; `Resolve(const std::string& Name)` makes it when it is met first.
    /// The reference holds until the next call. A run asks for its columns in the same order record
    /// after record, so the one after the last answer is tried first.
    template <class TResolve> const TColumn& Find(const TVariant& Source, TResolve&& Resolve)
    {
        if (Next < Entries.size() && Entries[Next].Source == Source.Text())
            return Entries[Advance(Next)].Column;
        return Search(Source, std::forward<TResolve>(Resolve));
    }

private:
    struct TEntry
    {
        std::string Source;
        TColumn Column;
    };

    struct THash
    {
        using is_transparent = void;
        std::size_t operator()(std::string_view Name) const { return std::hash<std::string_view>()(Name); }
    };

    static constexpr std::size_t Few = 16;          // so many are compared sooner than a name is hashed

    /// Apart from Find, so that this stays small where it is called for every value.
    template <class TResolve>
    [[gnu::noinline]] const TColumn& Search(const TVariant& Source, TResolve&& Resolve)
    {
        for (std::size_t I = 0; I < std::min(Entries.size(), Few); ++I)
            if (Entries[I].Source == Source.Text())
                return Entries[Advance(I)].Column;
        if (const auto Found = Places.find(Source.Text()); Found != Places.end())
            return Entries[Advance(Found->second)].Column;
        const std::string Name = Source.ToText();
        if (Entries.size() >= Few)
            Places.emplace(Name, Entries.size());
        Entries.push_back({Name, std::forward<TResolve>(Resolve)(Name)});
        return Entries[Advance(Entries.size() - 1)].Column;
    }

    std::size_t Advance(std::size_t Found)
    {
        Next = Found + 1 < Entries.size() ? Found + 1 : 0;
        return Found;
    }

    std::vector<TEntry> Entries;
    std::unordered_map<std::string, std::size_t, THash, std::equal_to<>> Places; // in Entries, of the others
    std::size_t Next = 0;
};

} // namespace kv
