#include "KvConsoleInterface.h"

#include <chrono>
#include <cstdlib>
#include <iostream>
#include <optional>
#include <utility>

#include "KvCancelSignals.h"
#include "KvConsoleLine.h"
#include "KvConsoleProgress.h"
#include "KvTerminalText.h"
#include "KvText.h"

namespace kv {

namespace {

using TClock = std::chrono::steady_clock;

constexpr auto BarPause = std::chrono::milliseconds(100);
constexpr auto LinePause = std::chrono::seconds(5);

/// What all windows have in common: Cancel, and the figures as the run tells them.
class TConsoleWindow : public TProgressWindow
{
public:
    explicit TConsoleWindow(const TProgressCaptions& Captions) : OpeningStatus(Captions.Status)
    {
        Progress.Title = Captions.Title;
    }

    void SetRange(int Min, int Max, int Position) override
    {
        Progress.Min = Min;
        Progress.Max = Max;
        Progress.Position = Position;
        Begin = TClock::now();
        Changed(Begin);
    }
    void Update(const std::string& Status, const TProgressFigures& Figures) override
    {
        if (Status != OpeningStatus)                // the outcome: the program tells it in its own words
            return;
        const auto Now = TClock::now();
        Progress.Position = Figures.Processed;
        Progress.Errors = Figures.Errors;
        Progress.Seconds = std::chrono::duration<double>(Now - Begin).count();
        Changed(Now);
    }
    bool Cancelled() const override { return TCancelSignals::Requested(); }

protected:
    virtual void Changed(TClock::time_point) {}

    TConsoleProgress Progress;

private:
    const std::string OpeningStatus;
    TClock::time_point Begin = TClock::now();
};

class TBarWindow final : public TConsoleWindow
{
public:
    TBarWindow(const TProgressCaptions& Captions, TConsoleLine& OutputLine)
        : TConsoleWindow(Captions), Line(OutputLine), Blocks(TConsoleLine::SpeaksUtf8())
    {
        Draw();
    }
    TBarWindow(const TBarWindow&) = delete;
    TBarWindow& operator=(const TBarWindow&) = delete;
    ~TBarWindow() override { Line.Erase(); }

protected:
    void Changed(TClock::time_point Now) override
    {
        if (Now < NextDraw)
            return;
        NextDraw = Now + BarPause;
        Draw();
    }

private:
    void Draw() { Line.Show(ProgressLine(Progress, Line.Width(), Blocks)); }

    TConsoleLine& Line;
    const bool Blocks;
    TClock::time_point NextDraw{};
};

/// A line every few seconds, and none that repeats the one before.
class TLinesWindow final : public TConsoleWindow
{
public:
    TLinesWindow(const TProgressCaptions& Captions, TConsoleLine& OutputLine)
        : TConsoleWindow(Captions), Line(OutputLine)
    {
    }

protected:
    void Changed(TClock::time_point Now) override
    {
        if (Now < NextLine || Progress.Position == LastPosition)
            return;
        NextLine = Now + LinePause;
        LastPosition = Progress.Position;
        Line.Print(ProgressMessage(Progress));
    }

private:
    TConsoleLine& Line;
    TClock::time_point NextLine = TClock::now() + LinePause;
    int LastPosition = 0;
};

} // namespace

TConsoleStyle ConsoleStyleOf(int Descriptor)
{
    const char* const Terminal = std::getenv("TERM");
    const bool CanErase = Terminal && *Terminal != '\0' && std::string_view(Terminal) != "dumb";
    return CanErase && TConsoleLine(Descriptor).IsTerminal() ? csBar : csLines;
}

TConsoleInterface::TConsoleInterface(TConsoleStyle ProgressStyle, int Descriptor)
    : Style(ProgressStyle), Line(std::make_unique<TConsoleLine>(Descriptor))
{
}

TConsoleInterface::~TConsoleInterface() = default;

void TConsoleInterface::PrintLine(std::string_view Text)
{
    Line->Print(VisibleText(Text));
}

std::unique_ptr<TProgressWindow> TConsoleInterface::OpenProgress(const TProgressCaptions& Captions)
{
    switch (Style) {
    case csBar:   return std::make_unique<TBarWindow>(Captions, *Line);
    case csLines: return std::make_unique<TLinesWindow>(Captions, *Line);
    case csQuiet: break;
    }
    return std::make_unique<TConsoleWindow>(Captions);
}

void TConsoleInterface::ShowMessage(TMessageKind, const std::string& Text)
{
    if (ShowsMessages)
        PrintLine(Text);
}

bool TConsoleInterface::Confirm(const std::string& Text)
{
    if (Style != csBar || !TConsoleLine(0).IsTerminal())
        return false;
    Line->Show(VisibleText(Text) + " [y/N] ");
    std::string Answer;
    std::getline(std::cin, Answer);
    const auto Word = Trim(Answer);
    Line->Erase();
    return SameText(Word, "y") || SameText(Word, "yes");
}

} // namespace kv
