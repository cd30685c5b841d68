// KvDbaseLanguage - the code page of a table's texts.
//
// Tables up to dBase 5 and those of FoxPro have a byte for it, dBase 7 the name of a language driver:
// "DB437US0" is of the IBM page 437, "DBWINUS0" of a Windows page. Programs that make maps put a file beside
// the table, .cpg, that names it: "UTF-8", "1252", "ANSI 1252", "CP1250", "OEM 437", "88591".
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace kv {

// Each gives the page in the words of KvCodePage, or nothing when the table does not tell.
std::string_view CodePageOfDriver(std::uint8_t LanguageDriver);
std::string_view CodePageOfDriver(std::string_view LanguageDriver);
/// By what a .cpg file holds; nothing when no page is known by it.
std::string CodePageOfLabel(std::string_view Label);

} // namespace kv
