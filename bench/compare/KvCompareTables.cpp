// The section "tables" of TComparison.
#include "KvCompareSections.h"

namespace kv::bench {

namespace {

constexpr std::uint64_t TableRows = 500'000;

} // namespace

void TComparison::CompareTables()
{
    CompareDbase();
    CompareParadox();
}

/// ogr2ogr has several ways to write its rows; ours is to be three times as fast as any.
void TComparison::CompareDbase()
{
    constexpr double Third = 1.0 / 3;
    const TPair Pair{Workspace.DbaseTable(TableRows), {}, olDelimited};
    TContest Contest{"append the " + Grouped(TableRows) + " rows of a dBase table",
                     Workspace.Table(okPlain, 0),
                     {Contestant("kvimport", KvImportNamedCommand, wkAppend, Pair)}};
    if (IsThere("ogr2ogr", "gdal-bin"))
        Contest.Contestants.insert(
            Contest.Contestants.end(),
            {Contestant("ogr2ogr -append", OgrAppendCommand, wkAppend, Pair, Third),
             Contestant("ogr2ogr -append, without sync", OgrQuickAppendCommand, wkAppend, Pair, Third),
             Contestant("ogr2ogr -overwrite", OgrOverwriteCommand, wkAppend, Pair, Third),
             Contestant("ogr2ogr -overwrite, without sync", OgrQuickOverwriteCommand, wkAppend, Pair,
                        Third)});
    Judge(Contest);
}

void TComparison::CompareParadox()
{
    const TPair Paradox{Workspace.ParadoxTable(TableRows), {}, olDelimited};
    const TPair Dbase{Workspace.DbaseTable(TableRows), {}, olDelimited};
    Judge({"append the " + Grouped(TableRows) + " rows of a Paradox table", Workspace.Table(okPlain, 0),
           {Contestant("kvimport", KvImportNamedCommand, wkAppend, Paradox),
            Contestant("kvimport, the dBase table", KvImportNamedCommand, wkAppend, Dbase, 1.3)}});
}

} // namespace kv::bench
