// KvRecordingInterface - a user interface that notes what it was asked to show.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "KvCallLog.h"
#include "KvUserInterface.h"

namespace kv {

/// The installed interface for as long as it lives. Notes "open <title>", "range 0..3 at 0",
/// "show <status> 2/0/2/0/0" (processed/errors/added/deleted/updated), "close", "information <text>",
/// "error <text>", "busy", "idle", "pick <filter>" and "ask <name>|<file>".
class TRecordingInterface final : public TUserInterface
{
public:
    explicit TRecordingInterface(TCallLog& Calls);
    ~TRecordingInterface() override;

    std::unique_ptr<TProgressWindow> OpenProgress(const TProgressCaptions& Captions) override;
    void ShowMessage(TMessageKind Kind, const std::string& Text) override;
    bool Confirm(const std::string& Text) override;
    void SetBusyCursor(bool Busy) override;
    void ProcessMessages() override;
    bool PickFileToOpen(const std::string& Filter, std::string& FileName) override;
    bool AskSaveSpecification(TSaveSpecificationRequest& Request) override;

    bool Cancelled = false;                         ///< What the window says until it closes.
    int MessageRounds = 0;                          ///< Times that pending messages were let run.
    TProgressCaptions Captions;                     ///< Of the window that was opened last.
    std::function<void()> OnShow;                   ///< A refresh: the user may click Cancel.
    std::function<void()> OnMessages;               ///< What else happens while messages are let run.
    std::string PickedFile;                         ///< What the user picks; empty: nothing.
    TSaveSpecificationRequest Asked;                ///< The dialog that was shown last, as it opened.
    std::function<bool(TSaveSpecificationRequest&)> OnAsk; ///< What the user does with it; none: Cancel.

private:
    class TWindow;

    TCallLog& Log;
};

} // namespace kv
