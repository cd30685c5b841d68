// KvTestRun - everything that a run of an import needs, complete by default, so that a test changes
// only what it is about.
#pragma once

#include <string>
#include <vector>

#include "KvCallLog.h"
#include "KvFormatSettings.h"
#include "KvRecordingDataSet.h"
#include "KvRecordingInterface.h"
#include "KvScriptedImport.h"

namespace kv {

/// The process's format settings as they are without a locale, until it ends.
class TKnownFormats
{
public:
    TKnownFormats() { FormatSettings() = {}; }
    TKnownFormats(const TKnownFormats&) = delete;
    TKnownFormats& operator=(const TKnownFormats&) = delete;
    ~TKnownFormats() { FormatSettings() = Saved; }

private:
    const TFormatSettings Saved = FormatSettings();
};

/// An import of the columns Field1 and Field2 into the open, empty table (ID integer, NAME text of 10).
/// No progress dialog and no message box.
struct TTestRun
{
    TTestRun();

    /// Assigns a handler to every event of a run; each notes its name and what it was given.
    void NoteEvents();
    /// Executes and forgets what was noted before.
    void Execute();
    /// The message of what Execute raises, empty when it raises nothing.
    std::string Raised();
    /// What the table holds in the end.
    std::vector<std::string> Records() { return RecordTexts(Table); }
    /// The counters, "imported/added/updated/deleted/errors".
    std::string Counters() const;

    TKnownFormats Formats;
    TCallLog Log;
    TRecordingInterface Ui{Log};
    TRecordingDataSet Table{Log};
    TScriptedImport Import{Log};
};

} // namespace kv
