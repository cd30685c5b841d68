// KvCompanionFile - the file that stands beside a table and holds its memos: the table's name with another
// extension. Programs that took names for equal whatever their case wrote them in any.
#pragma once

#include <string>
#include <string_view>

namespace kv {

/// The companion of the table `FileName` with the extension `Extension` (".MB"): the name in the case of the
/// table's own extension when there is such a file, else the first, by name, that differs in case only.
/// When there is none, the former.
std::string CompanionFileName(const std::string& FileName, std::string_view Extension);

} // namespace kv
