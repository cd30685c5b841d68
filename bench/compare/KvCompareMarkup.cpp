// The section "markup" of TComparison.
#include <filesystem>

#include "KvCompareSections.h"

namespace kv::bench {

namespace {

constexpr std::uint64_t PageRows = 100'000;
constexpr std::uint64_t PacketRows = 200'000;
constexpr std::uint64_t OwnMemory = 32'000'000;     // of the program and the database

} // namespace

void TComparison::CompareMarkup()
{
    CompareMarkup("an HTML table", olHtml, PageRows);
    CompareMarkup("an XML data packet", olXml, PacketRows);
}

/// Beside the same rows as text. No row is kept: memory is that of the file.
void TComparison::CompareMarkup(const char* What, TOrderLines Lines, std::uint64_t Rows)
{
    const TPair Tags{Workspace.Orders(Lines, Rows), {}, Lines};
    const TPair Text{Workspace.Orders(olDelimited, Rows), {}, olDelimited};
    const TContest Contest{"append the " + Grouped(Rows) + " rows of " + What, Workspace.Table(okIndexed, 0),
                           {Contestant("kvimport", KvImportNamedCommand, wkAppend, Tags),
                            Contestant("kvimport, the rows as CSV", KvImportNamedCommand, wkAppend, Text,
                                       1.4)}};
    PrintMemory(Judge(Contest), std::filesystem::file_size(Tags.File) + OwnMemory);
}

} // namespace kv::bench
