// KvMdbLink - tables that are only links to those of other databases.
#pragma once

#include <string>

#include "KvMdbFile.h"

namespace kv {

/// What the table `Link` of `File` leads to: "table Orders of C:\data\shop.mdb", or "another database" where
/// that is not told.
std::string LinkTarget(const TMdbFile& File, const MdbCatalogEntry& Link);

} // namespace kv
