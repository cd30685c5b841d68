// KvImpatientUser - a user who cancels a run while it still loads.
#pragma once

#include <memory>
#include <string>

#include "KvUserInterface.h"

namespace kv {

/// A user who clicks Cancel after pending messages were let run so many times.
class TImpatientUser final : public TUserInterface
{
public:
    explicit TImpatientUser(int Rounds) : RoundsLeft(Rounds) { SetUserInterface(this); }
    ~TImpatientUser() override { SetUserInterface(nullptr); }

    std::unique_ptr<TProgressWindow> OpenProgress(const TProgressCaptions&) override
    {
        return std::make_unique<TWindow>(*this);
    }
    void ShowMessage(TMessageKind, const std::string&) override {}
    bool Confirm(const std::string&) override { return false; }
    void SetBusyCursor(bool) override {}
    void ProcessMessages() override { --RoundsLeft; }
    bool PickFileToOpen(const std::string&, std::string&) override { return false; }
    bool AskSaveSpecification(TSaveSpecificationRequest&) override { return false; }

private:
    struct TWindow final : TProgressWindow
    {
        explicit TWindow(TImpatientUser& TheUser) : User(TheUser) {}
        void SetRange(int, int, int) override {}
        void Update(const std::string&, const TProgressFigures&) override {}
        bool Cancelled() const override { return User.RoundsLeft < 0; }
        TImpatientUser& User;
    };

    int RoundsLeft;
};

} // namespace kv
