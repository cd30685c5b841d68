#include "KvCompareContest.h"

#include <algorithm>
#include <exception>
#include <string>

#include "KvBenchSql.h"

namespace kv::bench {

namespace {

/// What everybody must agree on. The sqlite3 tool keeps True and empty values as the texts that they are,
/// so those are left out.
constexpr auto DigestSql =
    "SELECT count(*) || ' rows, IDs ' || total(ID) || ', QTYs ' || total(QTY) || ', AMOUNTs '"
    " || round(total(AMOUNT), 1) || ', CUSTOMERs ' || total(length(CUSTOMER)) FROM orders";

TFigures Least(const std::vector<TFigures>& Runs)
{
    auto Result = Runs.front();
    for (const auto& Run : Runs) {
        Result.WallSeconds = std::min(Result.WallSeconds, Run.WallSeconds);
        Result.CpuSeconds = std::min(Result.CpuSeconds, Run.CpuSeconds);
        Result.PeakBytes = std::min(Result.PeakBytes, Run.PeakBytes);
    }
    return Result;
}

double MedianWall(std::vector<TFigures> Runs)
{
    const auto Middle = Runs.begin() + static_cast<std::ptrdiff_t>(Runs.size() / 2);
    std::nth_element(Runs.begin(), Middle, Runs.end(),
                     [](const auto& A, const auto& B) { return A.WallSeconds < B.WallSeconds; });
    return Middle->WallSeconds;
}

} // namespace

std::vector<TOutcome> RunContest(const TContest& Contest, int Repetitions, TWorkspace& Workspace)
{
    const auto Count = Contest.Contestants.size();
    std::vector<TOutcome> Outcomes(Count);
    std::vector<std::vector<TFigures>> Runs(Count);
    for (int Repetition = 0; Repetition < Repetitions; Repetition++)
        for (std::size_t Index = 0; Index < Count; Index++) {
            auto& Outcome = Outcomes[Index];
            if (!Outcome.Failure.empty())
                continue;
            try {
                const auto Database = Workspace.FreshCopy(Contest.Database);
                Runs[Index].push_back(RunProcess(Contest.Contestants[Index].Command(Database)));
                if (Repetition == Repetitions - 1)
                    Outcome = {Least(Runs[Index]), MedianWall(Runs[Index]),
                               TSqlDatabase(Database).TextOf(DigestSql), ""};
            }
            catch (const std::exception& Error) {
                Outcome.Failure = Error.what();
            }
        }
    return Outcomes;
}

} // namespace kv::bench
