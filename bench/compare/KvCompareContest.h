// KvCompareContest - lets several programs do the same work in turn and keeps their best figures.
#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "KvCompareProcess.h"
#include "KvCompareWorkspace.h"

namespace kv::bench {

/// A program that does the work of a contest on the database that it is given.
struct TContestant
{
    std::string Name;
    std::function<TCommand(const std::filesystem::path& Database)> Command;
    double Target = 0;                              ///< How many times its wall time the first may take.
};

/// The work and who does it; the first is the one that is judged by the others.
struct TContest
{
    std::string Work;
    std::filesystem::path Database;                 ///< What the database looks like before the work.
    std::vector<TContestant> Contestants;
};

/// How a contestant did: the least of each figure over all runs, which other work on the machine
/// disturbs least, and the middle wall time.
struct TOutcome
{
    TFigures Best;
    double MedianWallSeconds = 0;
    std::string Digest;                             ///< Says what the last run left in the table.
    std::string Failure;                            ///< Why the program failed; the rest is then empty.
};

/// Runs A, B, C, A, B, C, ... on fresh databases, `Repetitions` times. One outcome a contestant.
std::vector<TOutcome> RunContest(const TContest& Contest, int Repetitions, TWorkspace& Workspace);

} // namespace kv::bench
