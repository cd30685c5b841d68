// KvCsvDump - what a tool wrote as comma-separated values.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace kv {

struct TCsvValue
{
    std::string Text;                               ///< Without its quotes.
    std::string Behind;                             ///< What follows the closing quote, such as :A40.
    bool IsQuoted = false;                          ///< An unquoted value without text is no value.
};

/// The lines of a file of UTF-8 text. Quoted values may hold commas, doubled quotes and line breaks.
std::vector<std::vector<TCsvValue>> ReadCsvDump(const std::filesystem::path& Path);

} // namespace kv
