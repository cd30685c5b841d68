// KvCompareReport - prints outcomes as tables.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "KvCompareContest.h"

namespace kv::bench {

/// The figures of a contest, how the first contestant stands to each other one, and its target. Wall times
/// are compared.
void PrintContest(const TContest& Contest, const std::vector<TOutcome>& Outcomes);

/// What failed, and who left another table than the last contestant that did not fail. False when there
/// was any of that.
bool PrintTrouble(const TContest& Contest, const std::vector<TOutcome>& Outcomes);

/// The most memory that the program took, beside what it may take.
void PrintMemory(const TOutcome& Outcome, std::uint64_t MaxBytes);

/// The times of one program at one kind of work, one outcome a size.
struct TGrowthLine
{
    std::string Work, Program;
    std::vector<TOutcome> Outcomes;
};

/// Microseconds a row, one column a number of rows: even along a line when the work grows no faster than
/// the data.
void PrintGrowth(const std::vector<std::uint64_t>& Sizes, const std::vector<TGrowthLine>& Lines);

/// 1000000 as "1,000,000".
std::string Grouped(std::uint64_t Number);

} // namespace kv::bench
