// KvMutants - damaged copies of files of other programs, read one after the other: each gives what it holds
// or a clear error, in bounded time and memory.
//
//   KV_MUTANTS      how many, instead of as many as a test makes by itself
//   KV_MUTANT_SEED  what they are made from, 1 when not set
#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace kv {

/// A file before it is damaged.
struct TMutantFile
{
    std::string Name;                               ///< Of its copies.
    std::string Bytes;
    std::size_t BlockSize = 0;                      ///< See TDamage.
};

/// What is read together: a file and those that stand beside it. A mutant has damage in one of them.
struct TMutantOrigin
{
    std::string Name;                               ///< What it is called when a mutant of it fails.
    std::vector<TMutantFile> Files;                 ///< The first is the one to open.
};

/// Who reads the mutants.
enum TMutantReader {
    mrThisProcess,
    mrChildProcess                                  ///< Those that this process waits for.
};

/// How many mutants there are, and what each may take.
struct TMutantLimits
{
    unsigned Count;
    TMutantReader Reader;
    double MaxSeconds;                              ///< Of processor time, for one mutant.
    long MaxMegabytes;                              ///< By which memory may grow over all of them.
};

/// What came of the mutants, in words, and how often.
using TMutantOutcomes = std::map<std::string, int>;

/// Makes mutants of origins taken at random and has `Read` read each, given the file to open; prints and
/// gives what it noted. The test fails where a limit is passed.
TMutantOutcomes ReadMutants(const std::vector<TMutantOrigin>& Origins, const TMutantLimits& Limits,
                            const std::function<void(const std::string& File, TMutantOutcomes&)>& Read);

/// The first of the fixed words in `Known` that the message of an error has. The test fails when it has none.
std::string KnownOutcome(const std::string& Message, std::span<const std::string_view> Known);

} // namespace kv
