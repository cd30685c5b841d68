// KvImportRun - one import from the command line: sets up source and destination, runs, and commits or
// rolls back.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "KvConsoleInterface.h"
#include "KvDestination.h"
#include "KvImportReport.h"
#include "KvSource.h"

namespace kv {

class TKvImportBaseComponent;
class Exception;

class TImportRun
{
public:
    /// All must outlive the run. Errors of records go to `Console` as they come.
    TImportRun(const TImportOptions& Options, TConsoleInterface& Console, TImportReport& Report);
    ~TImportRun();

    /// Opens source and destination and joins columns and fields. Raises Exception.
    void Prepare();
    /// Ready for the import once it is prepared.
    TKvImportBaseComponent& Component() { return Source->Component(); }
    /// Imports. Whatever goes wrong is in the report.
    void Execute();

private:
    TColumnMap MapColumns();
    void LookForHeader();
    void SetKeys();
    void SetUp(TKvImportBaseComponent& Component);
    void RecordFailed(const Exception& Error, bool& Abort);
    void RecordDone();
    void Settle();
    void CountFigures();
    void SettleTransaction();
    std::string FailureText() const;

    const TImportOptions& Options;
    TConsoleInterface& Console;
    TImportReport& Report;
    std::unique_ptr<TSource> Source;
    std::unique_ptr<TDestination> Destination;
    bool Stored = false;                            // the current record got as far as being written
    bool FailedAlready = false;                     // the current record has an error
    int Failed = 0, Refused = 0, NotFound = 0;
};

} // namespace kv
