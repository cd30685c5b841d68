// KvCompareSections - what kv_compare measures, one operation a section.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "KvCompareCommands.h"
#include "KvCompareContest.h"
#include "KvCompareReport.h"
#include "KvCompareWorkspace.h"

namespace kv::bench {

/// How much to measure and with which programs.
struct TCompareSettings
{
    TPrograms Programs;
    std::uint64_t Rows = 1'000'000;                 ///< To append, and of the table that records change.
    std::uint64_t KeyedRows = 200'000;
    std::filesystem::path AccessFile;               ///< Its table "orders" has our fields; may be empty.
    int Repetitions = 5;
    bool Full = false;                              ///< Growth up to 5,000,000 rows instead of 1,000,000.
};

/// How to have a program work on a pair of files: one of the functions of KvCompareCommands.
using TMakeCommand = TCommand (*)(const TPrograms&, TWork, const TPair&);

/// Each section runs its programs and prints what they took.
class TComparison
{
public:
    TComparison(const TCompareSettings& Wanted, TWorkspace& Place) : Settings(Wanted), Workspace(Place) {}

    void CompareAppend();
    void CompareFixedWidth();
    void CompareKeyed();
    void CompareMarkup();
    void CompareSpreadSheets();
    void CompareTables();
    void CompareAccess();
    void MeasureGrowth();

    /// Everything ran, and everybody left the same table.
    bool Good() const { return AllGood; }

private:
    /// Whether a program is installed; says that it is left out when it is not.
    static bool IsThere(const std::string& Program, const std::string& Package);
    TContestant Contestant(const std::string& Name, TMakeCommand Make, TWork Work, const TPair& Pair,
                           double Target = 0) const;
    TOutcome Judge(const TContest& Contest);
    void Judge(const TContest& Contest, const std::filesystem::path& File, std::uint64_t Lines);
    void CompareKeyed(TWork Work);
    void CompareMarkup(const char* What, TOrderLines Lines, std::uint64_t Rows);
    void CompareWorkbookLoad();
    void CompareWorkbookImport();
    void CompareWorksheetLoad();
    void CompareDbase();
    void CompareParadox();
    void AddGrowth(TWork Work, TOrderKey Key, const std::vector<std::uint64_t>& Sizes,
                   std::vector<TGrowthLine>& Lines);

    const TCompareSettings& Settings;
    TWorkspace& Workspace;
    bool AllGood = true;
};

} // namespace kv::bench
