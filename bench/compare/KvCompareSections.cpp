#include "KvCompareSections.h"

#include <cstdio>

#include "KvCompareProcess.h"

namespace kv::bench {

namespace fs = std::filesystem;

bool TComparison::IsThere(const std::string& Program, const std::string& Package)
{
    const bool Found = IsInstalled(Program);
    if (!Found)
        std::printf("\n%s (Debian package %s) is not installed: left out\n", Program.c_str(),
                    Package.c_str());
    return Found;
}

TContestant TComparison::Contestant(const std::string& Name, TMakeCommand Make, TWork Work, const TPair& Pair,
                                    double Target) const
{
    const auto Command = [this, Make, Work, Pair](const fs::path& Database) {
        return Make(Settings.Programs, Work, {Pair.File, Database, Pair.Lines});
    };
    return {Name, Command, Target};
}

/// Runs the contest, prints how it ended and gives the outcome of the first.
TOutcome TComparison::Judge(const TContest& Contest)
{
    const auto Outcomes = RunContest(Contest, Settings.Repetitions, Workspace);
    PrintContest(Contest, Outcomes);
    AllGood &= PrintTrouble(Contest, Outcomes);
    return Outcomes.front();
}

/// The same and the memory that a file of text may take. `Lines` are those of `File`.
void TComparison::Judge(const TContest& Contest, const fs::path& File, std::uint64_t Lines)
{
    PrintMemory(Judge(Contest), fs::file_size(File) + Lines * 48 + (std::uint64_t{32} << 20));
}

void TComparison::CompareAppend()
{
    const TPair Pair{Workspace.Orders(olDelimited, Settings.Rows), {}, olDelimited};
    const TContest Contest{"append " + Grouped(Settings.Rows) + " delimited rows",
                           Workspace.Table(okIndexed, 0),
                           {Contestant("kvimport", KvImportCommand, wkAppend, Pair),
                            Contestant("yardstick", YardstickCommand, wkAppend, Pair, 1.25),
                            Contestant("sqlite3 .import", Sqlite3Command, wkAppend, Pair, 1 / 1.6)}};
    Judge(Contest, Pair.File, Settings.Rows + 1);
}

void TComparison::CompareFixedWidth()
{
    const TPair Pair{Workspace.Orders(olFixedWidth, Settings.Rows), {}, olFixedWidth};
    const TContest Contest{"append " + Grouped(Settings.Rows) + " fixed-width rows",
                           Workspace.Table(okIndexed, 0),
                           {Contestant("kvimport", KvImportCommand, wkAppend, Pair),
                            Contestant("yardstick", YardstickCommand, wkAppend, Pair, 1.25)}};
    Judge(Contest, Pair.File, Settings.Rows);
}

void TComparison::CompareKeyed()
{
    for (const auto Work : {wkAppendUpdate, wkUpdate, wkDelete})
        CompareKeyed(Work);
}

void TComparison::CompareKeyed(TWork Work)
{
    const TPair Pair{Workspace.KeyedOrders(Settings.KeyedRows, Settings.Rows), {}, olDelimited};
    const TContest Contest{
        NameOf(Work) + " " + Grouped(Settings.KeyedRows) + " rows in a table of " + Grouped(Settings.Rows),
        Workspace.Table(okIndexed, Settings.Rows),
        {Contestant("kvimport", KvImportCommand, Work, Pair),
         Contestant("yardstick", YardstickCommand, Work, Pair, 1.15),
         Contestant("sqlite3, temporary table", Sqlite3Command, Work, Pair, 1),
         Contestant("sqlite3, temporary table with key", Sqlite3KeyedCommand, Work, Pair, 1)}};
    Judge(Contest, Pair.File, Settings.KeyedRows + 1);
}

/// Adds a line for each program. A file has as many records as the table has; an append starts with an
/// empty table.
void TComparison::AddGrowth(TWork Work, TOrderKey Key, const std::vector<std::uint64_t>& Sizes,
                            std::vector<TGrowthLine>& Lines)
{
    const bool Append = Work == wkAppend;
    const bool WithYardstick = Append || Key == okIndexed; // without an index it is quadratic
    const auto What = NameOf(Work) + (Key == okIndexed ? ", indexed key" : ", plain key");
    TGrowthLine Ours{What, "kvimport", {}}, Theirs{What, "yardstick", {}};
    for (const auto Rows : Sizes) {
        const auto File = Append ? Workspace.Orders(olDelimited, Rows) : Workspace.KeyedOrders(Rows, Rows);
        TContest Contest{What, Workspace.Table(Key, Append ? 0 : Rows), {}};
        Contest.Contestants.push_back(
            Contestant(Ours.Program, KvImportCommand, Work, {File, {}, olDelimited}));
        if (WithYardstick)
            Contest.Contestants.push_back(
                Contestant(Theirs.Program, YardstickCommand, Work, {File, {}, olDelimited}));
        const auto Outcomes = RunContest(Contest, Settings.Repetitions, Workspace);
        AllGood &= PrintTrouble(Contest, Outcomes);
        Ours.Outcomes.push_back(Outcomes.front());
        Theirs.Outcomes.push_back(Outcomes.back());
    }
    Lines.push_back(Ours);
    if (WithYardstick)
        Lines.push_back(Theirs);
}

void TComparison::MeasureGrowth()
{
    std::vector<std::uint64_t> Sizes{10'000, 100'000, 1'000'000};
    if (Settings.Full)
        Sizes.push_back(5'000'000);
    std::vector<TGrowthLine> Lines;
    for (const auto Key : {okIndexed, okPlain})
        for (const auto Work : {wkAppend, wkAppendUpdate})
            AddGrowth(Work, Key, Sizes, Lines);
    PrintGrowth(Sizes, Lines);
}

} // namespace kv::bench
