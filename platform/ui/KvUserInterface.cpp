#include "KvUserInterface.h"

namespace kv {

namespace {

class TSilentProgress final : public TProgressWindow
{
public:
    void SetRange(int, int, int) override {}
    void Update(const std::string&, const TProgressFigures&) override {}
    bool Cancelled() const override { return false; }
};

/// No user: nothing is shown, nothing is confirmed, no file is picked. Names that were proposed for
/// saving are kept, as if the user had agreed to them.
class TSilentInterface final : public TUserInterface
{
public:
    std::unique_ptr<TProgressWindow> OpenProgress(const TProgressCaptions&) override
    {
        return std::make_unique<TSilentProgress>();
    }
    void ShowMessage(TMessageKind, const std::string&) override {}
    bool Confirm(const std::string&) override { return false; }
    void SetBusyCursor(bool) override {}
    void ProcessMessages() override {}
    bool PickFileToOpen(const std::string&, std::string&) override { return false; }
    bool AskSaveSpecification(TSaveSpecificationRequest&) override { return true; }
};

TSilentInterface SilentInterface;
TUserInterface* Installed = nullptr;

} // namespace

TUserInterface& UserInterface()
{
    return Installed ? *Installed : SilentInterface;
}

void SetUserInterface(TUserInterface* Interface)
{
    Installed = Interface;
}

} // namespace kv
