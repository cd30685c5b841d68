// KvConsoleInterface - the user interface of a program on a terminal: a progress bar, messages as
// lines, Ctrl+C as Cancel. All of it goes to the error stream, so that the output stays what the
// program prints.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "KvUserInterface.h"

namespace kv {

/// How progress is shown.
enum TConsoleStyle {
    csQuiet,                                        ///< Not at all.
    csLines,                                        ///< A line now and then, for a log or a pipe.
    csBar                                           ///< A bar that is drawn again in its line.
};

/// csBar when `Descriptor` is a terminal that can erase a line, else csLines.
TConsoleStyle ConsoleStyleOf(int Descriptor);

class TConsoleLine;

/// Cancel is what TCancelSignals heard; a program that wants Ctrl+C to cancel keeps one during its run.
class TConsoleInterface final : public TUserInterface
{
public:
    static constexpr int StandardError = 2;

    explicit TConsoleInterface(TConsoleStyle Style, int Descriptor = StandardError);
    ~TConsoleInterface() override;

    /// False: ShowMessage shows nothing. The box for a malformed number says what the error of its
    /// record says again, with less.
    bool ShowsMessages = true;

    /// Prints a line of its own above the progress bar. Control characters are written out.
    void PrintLine(std::string_view Text);

    std::unique_ptr<TProgressWindow> OpenProgress(const TProgressCaptions& Captions) override;
    void ShowMessage(TMessageKind Kind, const std::string& Text) override;
    /// Asks on a terminal; elsewhere the answer is No.
    bool Confirm(const std::string& Text) override;
    void SetBusyCursor(bool) override {}
    void ProcessMessages() override {}
    bool PickFileToOpen(const std::string&, std::string&) override { return false; }
    bool AskSaveSpecification(TSaveSpecificationRequest&) override { return true; }

private:
    const TConsoleStyle Style;
    const std::unique_ptr<TConsoleLine> Line;
};

} // namespace kv
