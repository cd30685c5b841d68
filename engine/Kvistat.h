// Kvistat - the progress dialog of a run. There is at most one in the process.
#pragma once

#include <string>

namespace kv {

/// Opens the dialog, closing one that is open; counters are shown when `Extended`. When it cannot be
/// shown an error box says "Can't create a process dialog" and the answer is false.
bool CreateProgressDlg(const std::string& Caption, const std::string& Status,
                       const std::string& CancelCaption, const std::string& ProcessedCaption,
                       const std::string& ErrorsCaption, const std::string& AddedCaption,
                       const std::string& UpdatedCaption, const std::string& DeletedCaption, bool Extended);
/// The bar's range and position; it is visible exactly when Min or Max is not zero.
void ChangeProgressDlg(int Min, int Max, int Position);
/// Refreshes the dialog and lets pending messages run. "Processed:" shows `Progress`, also at the end
/// of a run, which passes 100. False when no dialog is open.
bool UpdateProgressDlg(const std::string& Status, int Progress, int Errors, int Added, int Deleted,
                       int Updated);
/// False when none was open.
bool DestroyProgressDlg();
/// True once the user cancelled or closed the open dialog; false when none is open.
bool ProgressCanceled();

} // namespace kv
