// KvCodePageTables - pages of one byte a character that old tables are written in and iconv does not know:
// each as what it changes of another one.
#pragma once

#include <span>
#include <string_view>

namespace kv {

/// A byte that stands for another character, by its number in Unicode; for 0 it stands for none.
struct TKvPageChange
{
    unsigned char Byte;
    char16_t Character;
};

struct TKvOwnPage
{
    std::span<const std::string_view> Names;
    const char* Base;                               ///< As iconv knows it.
    std::span<const TKvPageChange> Changes;
};

/// The page of that name, written in any case; none when it is not one of these.
const TKvOwnPage* FindOwnPage(std::string_view Name);

} // namespace kv
