// KvRefusal - lets a command end with the words of this program where a job has refused.
#pragma once

#include <string>

#include "KvExitStatus.h"
#include "KvFindingText.h"
#include "KvSourceOptions.h"

namespace kv {

/// Why the import was refused, with the option that `Options` should not have got.
inline std::string RefusalText(const TJobFinding& Finding, const TSourceOptions& Options)
{
    if (Finding.Kind == jfNoSuchSetting)
        return ForeignOptionText(Options, Finding);
    return RefusalText(Finding);
}

/// Does `Act`. Raises EUsageError or Exception in words for what a job refuses.
template <class TAct> void WordRefusals(const TSourceOptions& Options, TAct Act)
{
    try {
        Act();
    }
    catch (const EJobRefused& Refused) {
        const auto Text = RefusalText(Refused.Finding, Options);
        if (StatusOfRefusal(Refused.Finding) == esUsage)
            throw EUsageError(Text);
        throw Exception(Text);
    }
}

} // namespace kv
