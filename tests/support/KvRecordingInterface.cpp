#include "KvRecordingInterface.h"

namespace kv {

class TRecordingInterface::TWindow final : public TProgressWindow
{
public:
    explicit TWindow(TRecordingInterface& Interface) : Ui(Interface) {}
    ~TWindow() override { Ui.Log.Call("close"); }

    void SetRange(int Min, int Max, int Position) override
    {
        Ui.Log.Call("range " + std::to_string(Min) + ".." + std::to_string(Max) + " at " +
                    std::to_string(Position));
    }
    void Update(const std::string& Status, const TProgressFigures& Figures) override
    {
        Ui.Log.Call("show " + Status + " " + std::to_string(Figures.Processed) + "/" +
                    std::to_string(Figures.Errors) + "/" + std::to_string(Figures.Added) + "/" +
                    std::to_string(Figures.Deleted) + "/" + std::to_string(Figures.Updated));
        if (Ui.OnShow)
            Ui.OnShow();
    }
    bool Cancelled() const override { return Ui.Cancelled; }

private:
    TRecordingInterface& Ui;
};

TRecordingInterface::TRecordingInterface(TCallLog& Calls)
    : Log(Calls)
{
    SetUserInterface(this);
}

TRecordingInterface::~TRecordingInterface()
{
    SetUserInterface(nullptr);
}

std::unique_ptr<TProgressWindow> TRecordingInterface::OpenProgress(const TProgressCaptions& Opened)
{
    Captions = Opened;
    Log.Call("open " + Opened.Title);
    return std::make_unique<TWindow>(*this);
}

void TRecordingInterface::ShowMessage(TMessageKind Kind, const std::string& Text)
{
    Log.Call((Kind == mkError ? "error " : Kind == mkWarning ? "warning " : "information ") + Text);
}

bool TRecordingInterface::Confirm(const std::string& Text)
{
    Log.Call("confirm " + Text);
    return false;
}

void TRecordingInterface::SetBusyCursor(bool Busy)
{
    Log.Call(Busy ? "busy" : "idle");
}

void TRecordingInterface::ProcessMessages()
{
    ++MessageRounds;
    if (OnMessages)
        OnMessages();
}

bool TRecordingInterface::PickFileToOpen(const std::string& Filter, std::string& FileName)
{
    Log.Call("pick " + Filter);
    if (PickedFile.empty())
        return false;
    FileName = PickedFile;
    return true;
}

bool TRecordingInterface::AskSaveSpecification(TSaveSpecificationRequest& Request)
{
    Log.Call("ask " + Request.SpecName + "|" + Request.FileName);
    Asked = Request;
    return OnAsk && OnAsk(Request);
}

} // namespace kv
