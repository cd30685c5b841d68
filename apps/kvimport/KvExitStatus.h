// KvExitStatus - what kvimport tells the shell.
#pragma once

#include "KvException.h"

namespace kv {

enum TExitStatus {
    esDone = 0,
    esRecordErrors = 1,                             ///< Done, but some records were not stored.
    /// The command line is wrong by itself; nothing was touched.
    esUsage = 2,
    esFailed = 3,                                   ///< A file, the database or the run as a whole failed.
    esCancelled = 130                               ///< By Ctrl+C or SIGTERM.
};

/// The command line asks for something that has no meaning.
class EUsageError : public Exception
{
public:
    using Exception::Exception;
};

} // namespace kv
