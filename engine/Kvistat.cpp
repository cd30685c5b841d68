#include "Kvistat.h"

#include <memory>

#include "KvUserInterface.h"

namespace kv {

namespace {

std::unique_ptr<TProgressWindow> frmKvIProcess;     // empty when no dialog is open

/// The failure reaches nobody else, even if it cannot be shown.
void ShowFailure() noexcept
{
    try {
        UserInterface().ShowMessage(mkError, "Can't create a process dialog");
    }
    catch (...) {
    }
}

} // namespace

bool CreateProgressDlg(const std::string& Caption, const std::string& Status,
                       const std::string& CancelCaption, const std::string& ProcessedCaption,
                       const std::string& ErrorsCaption, const std::string& AddedCaption,
                       const std::string& UpdatedCaption, const std::string& DeletedCaption, bool Extended)
{
    try {
        DestroyProgressDlg();
        frmKvIProcess = UserInterface().OpenProgress({.Title = Caption,
                                                      .Status = Status,
                                                      .Cancel = CancelCaption,
                                                      .Processed = ProcessedCaption,
                                                      .Errors = ErrorsCaption,
                                                      .Added = AddedCaption,
                                                      .Updated = UpdatedCaption,
                                                      .Deleted = DeletedCaption,
                                                      .Extended = Extended});
        UserInterface().ProcessMessages();
        return true;
    }
    catch (...) {
        ShowFailure();
        frmKvIProcess.reset();
        return false;
    }
}

void ChangeProgressDlg(int Min, int Max, int Position)
{
    if (frmKvIProcess)
        frmKvIProcess->SetRange(Min, Max, Position);
}

bool UpdateProgressDlg(const std::string& Status, int Progress, int Errors, int Added, int Deleted,
                       int Updated)
{
    if (!frmKvIProcess)
        return false;
    frmKvIProcess->Update(Status, {.Processed = Progress,
                                   .Errors = Errors,
                                   .Added = Added,
                                   .Deleted = Deleted,
                                   .Updated = Updated});
    return true;
}

bool DestroyProgressDlg()
{
    if (!frmKvIProcess)
        return false;
    frmKvIProcess.reset();
    UserInterface().ProcessMessages();
    return true;
}

bool ProgressCanceled()
{
    return frmKvIProcess && frmKvIProcess->Cancelled();
}

} // namespace kv
