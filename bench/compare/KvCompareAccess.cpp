// The section "access" of TComparison.
#include <cstdio>

#include "KvCompareSections.h"

namespace kv::bench {

void TComparison::CompareAccess()
{
    if (Settings.AccessFile.empty()) {
        std::printf("\nThere is no Access database of orders (--access FILE): left out\n");
        return;
    }
    const TPair Pair{Settings.AccessFile, {}, olDelimited};
    TContest Contest{"append the orders of an Access database", Workspace.Table(okPlain, 0),
                     {Contestant("kvimport", KvImportAccessCommand, wkAppend, Pair)}};
    if (IsThere("mdb-export", "mdbtools"))
        Contest.Contestants.push_back(
            Contestant("mdb-export, sqlite3 .import", MdbExportIntoSqlite3Command, wkAppend, Pair, 1));
    Judge(Contest);
}

} // namespace kv::bench
