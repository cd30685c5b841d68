// KvBulkRun - what a dataset is told before many records are written to it in one go.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace kv {

/// What becomes of the records of a run.
enum TKvBulkKind {
    bkAppend,                                       ///< Every record is added.
    bkUpdate,                                       ///< Those that are found by the keys are changed.
    bkAppendUpdate,                                 ///< Those that are found are changed, the others added.
    bkDelete,                                       ///< Those that are found are deleted.
    bkCopy                                          ///< As bkAppend; what was there has been deleted.
};

/// One run: a dataset prepares for it as it sees fit, and the results are the same if it does not.
struct TKvBulkRun
{
    TKvBulkKind Kind = bkAppend;
    /// The fields by which every record is looked for, in any case; empty when none is looked for.
    std::vector<std::string> Keys = {};
    std::int64_t ExpectedRecords = -1;              ///< About so many records come; -1: nobody knows.
};

} // namespace kv
