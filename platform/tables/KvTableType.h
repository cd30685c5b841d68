// KvTableType - the kinds of table files.
#pragma once

#include <string_view>

namespace kv {

/// What kind of file a table is.
enum TTableType {
    ttDefault,                                      ///< As its name ends (".db", ".dbf"), else as it begins.
    ttParadox,
    ttDBase,
    ttFoxPro,
    ttASCII                                         ///< Text. Known by name only: other components read text.
};

inline constexpr std::string_view TableTypeNames[] = {"ttDefault", "ttParadox", "ttDBase", "ttFoxPro",
                                                      "ttASCII"};

} // namespace kv
