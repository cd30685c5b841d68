#include "KvConsoleInterface.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <string>
#include <sys/ioctl.h>
#include <unistd.h>

#include "KvCancelSignals.h"

namespace kv {

namespace {

using testing::HasSubstr;

/// Both ends of a pipe or of a terminal: what is written to one is read from the other.
class TOutput
{
public:
    enum TKind { Pipe, Terminal };

    explicit TOutput(TKind Kind)
    {
        if (Kind == Pipe) {
            std::array<int, 2> Ends;
            EXPECT_EQ(pipe(Ends.data()), 0);
            Reader = Ends[0];
            Writer = Ends[1];
        }
        else {
            const winsize Size{.ws_row = 24, .ws_col = 60, .ws_xpixel = 0, .ws_ypixel = 0};
            EXPECT_EQ(openpty(&Reader, &Writer, nullptr, nullptr, &Size), 0);
        }
    }
    TOutput(const TOutput&) = delete;
    TOutput& operator=(const TOutput&) = delete;
    ~TOutput()
    {
        close(Reader);
        close(Writer);
    }

    /// All that was written since the last call.
    std::string Read() const
    {
        std::string Text;
        std::array<char, 4096> Buffer;
        for (pollfd Wait{.fd = Reader, .events = POLLIN, .revents = 0}; poll(&Wait, 1, 20) > 0;) {
            const auto Count = read(Reader, Buffer.data(), Buffer.size());
            if (Count <= 0)
                break;
            Text.append(Buffer.data(), static_cast<std::size_t>(Count));
        }
        return Text;
    }

    int Reader = -1, Writer = -1;
};

TProgressCaptions Captions()
{
    return {.Title = "orders.csv", .Status = "Importing...", .Cancel = {}, .Processed = {}, .Errors = {},
            .Added = {}, .Updated = {}, .Deleted = {}};
}

TEST(KvConsoleInterface, DrawsABarInOneLineAndErasesIt)
{
    const TOutput Output(TOutput::Terminal);
    TConsoleInterface Console(csBar, Output.Writer);
    auto Window = Console.OpenProgress(Captions());
    EXPECT_EQ(Output.Read(), "\r\x1B[Korders.csv ...");
    Window->SetRange(0, 100, 0);
    EXPECT_THAT(Output.Read(), HasSubstr("0 of 100"));
    Window.reset();
    EXPECT_EQ(Output.Read(), "\r\x1B[K");
}

TEST(KvConsoleInterface, DrawsTenTimesASecondAtMost)
{
    const TOutput Output(TOutput::Terminal);
    TConsoleInterface Console(csBar, Output.Writer);
    auto Window = Console.OpenProgress(Captions());
    Window->SetRange(0, 1000000, 0);
    const auto End = std::chrono::steady_clock::now() + std::chrono::milliseconds(350);
    int Position = 0;
    while (std::chrono::steady_clock::now() < End)
        Window->Update("Importing...", {.Processed = ++Position});
    const auto Text = Output.Read();
    const auto Drawn = std::ranges::count(Text, '\r');
    EXPECT_GE(Drawn, 3);
    EXPECT_LE(Drawn, 6);
}

TEST(KvConsoleInterface, PrintsLinesAboveTheBar)
{
    const TOutput Output(TOutput::Terminal);
    TConsoleInterface Console(csBar, Output.Writer);
    const auto Window = Console.OpenProgress(Captions());
    Output.Read();
    Console.PrintLine("line 3: 'x\x1B' is no number");
    EXPECT_EQ(Output.Read(), "\r\x1B[Kline 3: 'x\\x1B' is no number\r\norders.csv ...");
}

TEST(KvConsoleInterface, LeavesTheOutcomeToTheProgram)
{
    const TOutput Output(TOutput::Terminal);
    TConsoleInterface Console(csBar, Output.Writer);
    const auto Window = Console.OpenProgress(Captions());
    Output.Read();
    Window->Update("The end.", {.Processed = 100});
    EXPECT_EQ(Output.Read(), "");
}

TEST(KvConsoleInterface, IsSilentInALogForTheFirstSeconds)
{
    const TOutput Output(TOutput::Pipe);
    TConsoleInterface Console(csLines, Output.Writer);
    auto Window = Console.OpenProgress(Captions());
    Window->SetRange(0, 100, 0);
    for (int I = 0; I < 100; ++I)
        Window->Update("Importing...", {.Processed = I});
    Window.reset();
    EXPECT_EQ(Output.Read(), "");
}

TEST(KvConsoleInterface, ShowsNothingWhenQuietButStillCancels)
{
    const TOutput Output(TOutput::Terminal);
    TConsoleInterface Console(csQuiet, Output.Writer);
    const TCancelSignals Signals;
    const auto Window = Console.OpenProgress(Captions());
    Window->SetRange(0, 100, 50);
    EXPECT_FALSE(Window->Cancelled());
    raise(SIGINT);
    EXPECT_TRUE(Window->Cancelled());
    EXPECT_EQ(Output.Read(), "");
    TCancelSignals::Reset();
}

TEST(KvConsoleInterface, ShowsMessagesUnlessTheProgramTellsThem)
{
    const TOutput Output(TOutput::Pipe);
    TConsoleInterface Console(csLines, Output.Writer);
    Console.ShowMessage(mkError, "It is broken");
    Console.ShowsMessages = false;
    Console.ShowMessage(mkError, "It is broken again");
    EXPECT_EQ(Output.Read(), "It is broken\n");
}

TEST(KvConsoleInterface, AnswersNoWithoutATerminal)
{
    const TOutput Output(TOutput::Pipe);
    TConsoleInterface Console(csLines, Output.Writer);
    EXPECT_FALSE(Console.Confirm("Overwrite?"));
    std::string Name = "x";
    EXPECT_FALSE(Console.PickFileToOpen("", Name));
    TSaveSpecificationRequest Request;
    EXPECT_TRUE(Console.AskSaveSpecification(Request));
}

TEST(KvConsoleInterface, DrawsABarOnlyOnATerminalThatCanErase)
{
    const TOutput Pipe(TOutput::Pipe), Terminal(TOutput::Terminal);
    setenv("TERM", "xterm", 1);
    EXPECT_EQ(ConsoleStyleOf(Pipe.Writer), csLines);
    EXPECT_EQ(ConsoleStyleOf(Terminal.Writer), csBar);
    setenv("TERM", "dumb", 1);
    EXPECT_EQ(ConsoleStyleOf(Terminal.Writer), csLines);
    unsetenv("TERM");
    EXPECT_EQ(ConsoleStyleOf(Terminal.Writer), csLines);
}

TEST(KvConsoleInterface, DoesNotMindAReaderThatWentAway)
{
    const TOutput Output(TOutput::Pipe);
    std::signal(SIGPIPE, SIG_IGN);
    close(Output.Reader);
    errno = 0;
    EXPECT_NO_THROW(TConsoleInterface(csLines, Output.Writer).PrintLine("nobody reads this"));
    EXPECT_EQ(errno, EPIPE) << "nothing was written";
    std::signal(SIGPIPE, SIG_DFL);
}

} // namespace

} // namespace kv
