// KvMarkupPreview - what the previews of files of tags have in common.
#pragma once

#include <algorithm>
#include <string_view>

#include "Kvibase.h"

namespace kv {

/// What a program gave to a preview routine.
struct TKvMarkupPreview
{
    static constexpr int MaxRow = 20;               ///< The last row that a preview shows, from 1.

    TPersistent* Sender;
    int RowFirst, RowLast;
    bool Flag;
    const TStrings& Columns;
    const TPreviewCallback& Callback;
};

/// Adds the pieces of `FieldNames`, separated by ";", to `Columns`; empty ones too.
inline void SplitFieldNames(std::string_view FieldNames, TStrings& Columns)
{
    for (std::size_t From = 0; From <= FieldNames.size();) {
        const auto To = std::min(FieldNames.find(';', From), FieldNames.size());
        Columns.Add(FieldNames.substr(From, To - From));
        From = To + 1;
    }
}

/// Calls back for each wanted row of `Rows`; `TextOf(int Column)` is the text of a column of the current one.
template <class TRows, class TTextOf> void OfferRows(const TKvMarkupPreview& Preview, TRows& Rows, TTextOf TextOf)
{
    const int Last = std::min(Preview.RowLast, TKvMarkupPreview::MaxRow);
    const int Count = Preview.Columns.Count();
    int Offered = 0;
    for (int Number = 1; Number <= Last && Rows.Next(); ++Number) {
        if (Number < Preview.RowFirst)
            continue;
        auto Values = TVariant::Array(0, Count - 1);
        for (int I = 0; I < Count; ++I)
            Values[I].SetText(TextOf(I));
        Preview.Callback(Preview.Sender, Count, ++Offered, Preview.Flag, Values);
    }
}

} // namespace kv
