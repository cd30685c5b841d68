// KviSourceKinds - the kinds of sources that there are, and which of them a file is.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

#include "KviSourceKind.h"

namespace kv {

/// All of them, in the order in which programs list them.
std::span<const TKvISourceKind* const> ImportKinds();

/// The kind of that name, compared without regard to case, or none.
const TKvISourceKind* FindImportKind(std::string_view Name);
/// The kind of that ordinal, or none.
const TKvISourceKind* FindImportKind(TTableTypeImport TableType);

inline constexpr std::size_t KindBeginningSize = 512; ///< Bytes in which a file shows its kind.

/// The kind of a file that begins with `Beginning`, KindBeginningSize bytes of it or all: bytes that only one
/// kind begins with tell more than the name, and what neither tells is text if it may be. `FileName` may be
/// empty. None for what is of no kind, such as an SQLite database.
const TKvISourceKind* KindOfSource(const std::string& FileName, std::string_view Beginning);

/// True for a file that is no source, but a destination.
bool IsSqliteDatabase(std::string_view Beginning);

} // namespace kv
