// KvName - names of fields and columns, which people write in any case of letters.
#pragma once

#include <string>
#include <string_view>

namespace kv {

/// `Name` with the letters of all scripts in upper case, those without a single one (ß) as they are.
std::string UpperName(std::string_view Name);
/// Equal but for the case of letters.
bool SameName(std::string_view A, std::string_view B);

} // namespace kv
