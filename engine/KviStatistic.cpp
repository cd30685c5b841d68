#include "KviStatistic.h"

#include <string_view>

#include "KvPublish.h"

namespace kv {

namespace {

constexpr std::string_view ActionNames[] = {"iaUnknown", "iaAdd", "iaUpdate", "iaDelete"};
constexpr std::string_view ResultNames[] = {"irUnknown", "irExecuted", "irCanceled", "irFailed"};

} // namespace

void TKvIStatistic::Assign(const TPersistent& Source)
{
    const auto* const Other = dynamic_cast<const TKvIStatistic*>(&Source);
    if (!Other)
        return TPersistent::Assign(Source);
    TotalCount = Other->TotalCount;
    TotalImported = Other->TotalImported;
    TotalAdded = Other->TotalAdded;
    TotalDeleted = Other->TotalDeleted;
    TotalUpdated = Other->TotalUpdated;
    TotalErrors = Other->TotalErrors;
    UpdateStep = Other->UpdateStep;
    LastAction = Other->LastAction;
}

TPublishedProperties TKvIStatistic::PublishedProperties() const
{
    using T = TKvIStatistic;
    return {Publish("TotalCount", &T::TotalCount),
            NotStored(Publish("TotalImported", &T::TotalImported)),
            NotStored(Publish("TotalAdded", &T::TotalAdded)),
            NotStored(Publish("TotalDeleted", &T::TotalDeleted)),
            NotStored(Publish("TotalUpdated", &T::TotalUpdated)),
            NotStored(Publish("TotalErrors", &T::TotalErrors)),
            Publish("UpdateStep", &T::UpdateStep),
            NotStored(Publish("LastAction", &T::LastAction, ActionNames)),
            Publish("Result", &T::Result, ResultNames)};
}

void TKvIStatistic::Reset()
{
    TotalCount = TotalImported = TotalAdded = TotalDeleted = TotalUpdated = TotalErrors = 0;
    LastAction = iaUnknown;
}

} // namespace kv
