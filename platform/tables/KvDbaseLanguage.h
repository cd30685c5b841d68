// KvDbaseLanguage - the code page of a table's texts.
//
// Tables up to dBase 5 and those of FoxPro have a byte for it, dBase 7 the name of a language driver:
// "DB437US0" is of the IBM page 437, "DBWINUS0" of a Windows page.
#pragma once

#include <cstdint>
#include <string_view>

namespace kv {

// Each gives the page in the words of KvCodePage, or nothing when the table does not tell.
std::string_view CodePageOfDriver(std::uint8_t LanguageDriver);
std::string_view CodePageOfDriver(std::string_view LanguageDriver);

} // namespace kv
