// KvFindingText - what an import finds, in the words of this program and its options.
#pragma once

#include <string>
#include <vector>

#include "KvExitStatus.h"
#include "KvJobFindings.h"

namespace kv {

/// A finding in words, for a line of its own.
std::string FindingText(const TJobFinding& Finding);
std::vector<std::string> FindingTexts(const std::vector<TJobFinding>& Findings);

/// Why an import was refused, with the options that help.
std::string RefusalText(const TJobFinding& Finding);
/// esUsage where the command line is wrong by itself, else esFailed.
TExitStatus StatusOfRefusal(const TJobFinding& Finding);

} // namespace kv
