// KvImportReport - what an import did, for people and for scripts.
#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "KvExitStatus.h"
#include "KvImportOptions.h"
#include "KvJobRun.h"

namespace kv {

struct TImportReport
{
    explicit TImportReport(const TImportOptions& Settings) : Options(Settings) {}

    const TImportOptions& Options;
    std::string SourceName;
    /// How the source was read, where the options left it open.
    std::vector<std::string> Findings;
    TJobPlan Plan;
    std::vector<std::string> Remarks;               ///< On each column of Plan.
    TJobOutcome Outcome;
    int ErrorsMet = 0;                              ///< Of records, while the run went on.
    std::vector<TJobError> Errors;                  ///< The first of them, at most MaxErrors.
    TExitStatus Status = esFailed;
    std::string Failure;                            ///< Why the run failed; empty when it did not.
    double Seconds = 0;
};

/// What will be done: source, destination and the fate of every column.
void PrintPlan(std::ostream& Out, const TImportReport& Report);
/// The figures and the outcome.
void PrintResult(std::ostream& Out, const TImportReport& Report);
/// The outcome in one sentence: "Cancelled: nothing was imported (rolled back)."
std::string OutcomeText(const TImportReport& Report);

/// All of it as one JSON object, on one line.
void PrintJson(std::ostream& Out, const TImportReport& Report);

} // namespace kv
