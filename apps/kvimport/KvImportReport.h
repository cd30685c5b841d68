// KvImportReport - what an import did, for people and for scripts.
#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "KvColumnMap.h"
#include "KvDestination.h"
#include "KvExitStatus.h"
#include "KvImportOptions.h"

namespace kv {

/// What became of the records that were read: Read is the sum of the others.
struct TImportFigures
{
    int Read = 0, Added = 0, Updated = 0, Deleted = 0;
    int Refused = 0;                                ///< Skipped before they were written.
    int Failed = 0;                                 ///< Could not be stored.
    int NotFound = 0;                               ///< No record has their key.
};

/// An error of one record.
struct TRecordError
{
    std::string Place;                              ///< "line 17"
    std::string Message;
};

struct TImportReport
{
    explicit TImportReport(const TImportOptions& Settings) : Options(Settings) {}

    const TImportOptions& Options;
    std::string SourceName;
    std::vector<std::string> Keys;
    std::vector<std::string> Findings;              ///< How the source was read, where the options left it open.
    TColumnMap Columns;
    TImportFigures Figures;
    int Emptied = 0;                                ///< Records that --mode copy removed first.
    int ErrorsMet = 0;                              ///< Of records, while the run went on.
    std::vector<TRecordError> Errors;               ///< The first of them, at most MaxErrors.
    std::vector<std::string> Warnings;
    TTransactionOutcome Transaction;
    bool Ran = false;                               ///< It came as far as importing.
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
