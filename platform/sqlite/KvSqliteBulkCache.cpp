#include "KvSqliteBulkCache.h"

#include <cstdint>

#include "KvSqliteConnection.h"
#include "KvSqliteName.h"
#include "KvSqliteStatement.h"

namespace kv {

namespace {

constexpr std::int64_t BulkCacheSize = 12288;       // KiB

std::int64_t ReadSetting(TSQLiteConnection& Connection, const std::string& Setting)
{
    TSQLiteStatement Read(Connection, "PRAGMA " + Setting);
    return Read.Step() ? Read.Column(0).Integer : 0;
}

} // namespace

TSQLiteBulkCache::TSQLiteBulkCache(TSQLiteConnection& Owner, const std::string& Schema)
    : Connection(Owner), Setting(QuoteName(Schema) + ".cache_size")
{
    constexpr std::int64_t BytesInKiB = 1024;
    const auto Size = ReadSetting(Owner, Setting);
    const auto Present =
        Size < 0 ? -Size : Size * ReadSetting(Owner, QuoteName(Schema) + ".page_size") / BytesInKiB;
    if (Present >= BulkCacheSize)
        return;
    Owner.Execute("PRAGMA " + Setting + " = -" + std::to_string(BulkCacheSize));
    Before = static_cast<int>(Size);
}

TSQLiteBulkCache::~TSQLiteBulkCache()
{
    if (Before != 0)
        Connection.ExecuteUnsettled("PRAGMA " + Setting + " = " + std::to_string(Before));
}

} // namespace kv
