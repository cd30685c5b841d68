// KvJobHeader - tells from the first rows of a source how it is laid out: which row names the columns, and
// what delimits values.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace kv {

struct TKvISourceView;

/// A row as texts.
struct TJobSampleRow
{
    std::vector<std::string> Texts = {};            ///< Without blanks at their ends; UTF-8.
    bool HasFigures = false;                        ///< One of its values is a number or a date, and no name.
    std::size_t Filled = 0;                         ///< Values that are not blank.
    int Number = 0;                                 ///< Of the row in the source, from 1.
};
using TJobSample = std::vector<TJobSampleRow>;

TJobSample SampleOf(const TKvISourceView& View);

/// The row of `Sample`, from 1, that names the columns; 0 when none of them does. A header names something
/// and holds no figures, and no name of it is a value further down; what stands above it are rows with
/// hardly a value, such as the title of a report. A row that has one of the names `Wanted` is one in any
/// case.
int FindHeader(const TJobSample& Sample, const std::vector<std::string>& Wanted);

/// True when row `Number` of `Sample`, from 1, may name columns.
bool MayBeHeader(const TJobSample& Sample, std::size_t Number);

/// How many rows of `Sample` have the width that most of those have that are wider than one value.
std::size_t RowsOfOneWidth(const TJobSample& Sample);

/// A title as it is compared: without blanks at its ends and without quotes around it.
std::string_view BareTitle(std::string_view Title);

} // namespace kv
