// KviTableType - what the kinds of sources are called in specifications, and how their files end.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "KviTypes.h"

namespace kv {

/// The usual extension of the files of a kind, ".TXT"; empty for what is no kind.
std::string GetDefExt(TTableTypeImport TableType);

/// The name of the value without its prefix: "DBase" for teDBase; empty for what is no kind.
std::string_view TableTypeName(TTableTypeImport TableType);
/// The kind of that name, compared without regard to case, or nothing.
std::optional<TTableTypeImport> TableTypeOfName(std::string_view Name);

} // namespace kv
