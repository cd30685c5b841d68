// KvFirstRows - the first rows of a source that has to read its whole file to get at any of them.
#pragma once

#include "KvSource.h"

namespace kv {

/// Rows to keep when the file is read for its columns: whoever looks at values asks for no more.
inline constexpr int SampleRows = 200;

/// The first `Count` of `Rows`.
inline TSourceRows FirstOf(TSourceRows Rows, int Count)
{
    const auto Size = static_cast<std::size_t>(Count);
    if (Size < Rows.Rows.size()) {
        Rows.Rows.resize(Size);
        Rows.Places.resize(Size);
        Rows.HasMore = true;
    }
    return Rows;
}

} // namespace kv
