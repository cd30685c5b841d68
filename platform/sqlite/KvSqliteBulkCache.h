// KvSqliteBulkCache - a larger page cache for a run that looks records up by keys.
// For the units of this folder.
#pragma once

#include <string>

namespace kv {

class TSQLiteConnection;

/// Keyed records come in any order: with the 2 MB that SQLite takes by itself pages are read and written
/// over and over, and many of the writes wait for the disk. The cache is set for as long as this lives.
class TSQLiteBulkCache
{
public:
    /// Of the database `Schema`. A cache that is larger already stays as it is.
    TSQLiteBulkCache(TSQLiteConnection& Connection, const std::string& Schema);
    TSQLiteBulkCache(const TSQLiteBulkCache&) = delete;
    TSQLiteBulkCache& operator=(const TSQLiteBulkCache&) = delete;
    ~TSQLiteBulkCache();

private:
    TSQLiteConnection& Connection;
    const std::string Setting;                      // as statements spell it
    // as SQLite counts: pages, or KiB below zero; 0: nothing was changed
    int Before = 0;
};

} // namespace kv
