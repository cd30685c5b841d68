// KviStatistic - the counters of a run.
#pragma once

#include "KvComponent.h"
#include "KviTypes.h"

namespace kv {

class TKvIStatistic final : public TPersistent
{
public:
    std::string_view ClassName() const override { return "TKvIStatistic"; }
    /// Copies the seven counters and LastAction; Result stays.
    void Assign(const TPersistent& Source) override;
    TPublishedProperties PublishedProperties() const override;

    /// All counters and LastAction back to none, as a run does before its first record.
    void Reset();

    int TotalCount = 0;                             ///< Records that the run expects.
    int TotalImported = 0;                          ///< Records read from the source, accepted or not.
    int TotalAdded = 0;                             ///< Records appended.
    int TotalDeleted = 0;
    int TotalUpdated = 0;                           ///< Records edited.
    int TotalErrors = 0;                            ///< Records whose writing failed.
    int UpdateStep = 1;                             ///< Records between two refreshes of the progress dialog.
    TKvIAction LastAction = iaUnknown;              ///< What was done with the current record.
    TKvIResult Result = irUnknown;                  ///< Outcome of the last run.
};

} // namespace kv
