#include "KvAccessHelper.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <optional>
#include <string>

#include "KvException.h"
#include "KvTempFolder.h"

namespace kv {

namespace {

using namespace std::chrono_literals;

/// Sets a variable of the environment for the length of a test.
class TVariable
{
public:
    TVariable(const char* TheName, const char* Value) : Name(TheName)
    {
        if (const char* const Before = std::getenv(Name))
            Old = Before;
        Value ? ::setenv(Name, Value, 1) : ::unsetenv(Name);
    }
    ~TVariable() { Old ? ::setenv(Name, Old->c_str(), 1) : ::unsetenv(Name); }

private:
    const char* const Name;
    std::optional<std::string> Old;
};

class KvAccessHelper : public testing::Test
{
protected:
    std::string Script(const std::string& Commands) const
    {
        const auto File = Folder.Write("kvaccess", "#!/bin/sh\n" + Commands + "\n");
        std::filesystem::permissions(File, std::filesystem::perms::owner_all);
        return File;
    }

    /// All that a program says, and how it ended.
    std::string Run(const std::string& Commands, std::chrono::milliseconds Patience = 30s,
                    bool Progresses = true) const
    {
        std::string Said;
        try {
            TAccessHelper Helper({Script(Commands), Patience}, {"one", "two words"});
            char Bytes[7];
            while (const auto Count = Helper.Receive(Bytes, sizeof Bytes)) {
                Said.append(Bytes, Count);
                if (Progresses)
                    Helper.NoteProgress();
            }
        }
        catch (const EDatabaseError& Error) {
            Said += "[" + Error.Message + "]";
        }
        return Said;
    }

    const TTempFolder Folder;
};

template <class TAction> std::string MessageOf(TAction Action)
{
    try {
        Action();
    }
    catch (const EDatabaseError& Error) {
        return Error.Message;
    }
    return "";
}

TEST_F(KvAccessHelper, GivesWhatTheProgramWrites)
{
    EXPECT_EQ(Run("printf '%s|' \"$@\"; echo trouble >&2"), "one|two words|");
}

TEST_F(KvAccessHelper, TheProgramHasNoInput)
{
    EXPECT_EQ(Run("cat; echo end"), "end\n");
}

TEST_F(KvAccessHelper, SaysWhichSignalKilledIt)
{
    EXPECT_EQ(Run("printf begun; kill -SEGV $$"),
              "begun[the reader of Access databases stopped: killed by signal 11 (Segmentation fault)]");
}

TEST_F(KvAccessHelper, SaysWithWhichStatusItEnded)
{
    EXPECT_EQ(Run("exit 3"), "[the reader of Access databases stopped: exit status 3]");
    EXPECT_EQ(Run("exit 127"),
              "[the reader of Access databases stopped: a library that it needs is missing, or it is "
              "no program of this system]");
}

TEST_F(KvAccessHelper, EndsOneThatKeepsSilent)
{
    const auto Begun = std::chrono::steady_clock::now();
    EXPECT_EQ(Run("printf begun; exec sleep 60", 1s),
              "begun[the reader of Access databases stopped: it made no progress for 1 s]");
    EXPECT_LT(std::chrono::steady_clock::now() - Begun, 20s);
}

TEST_F(KvAccessHelper, EndsOneThatNobodyWaitsForAnyMore)
{
    int Asked = 0;
    const auto Begun = std::chrono::steady_clock::now();
    const auto Program = Script("printf begun; exec sleep 60");
    TAccessHelper Helper({.Program = Program, .Continue = [&] { return ++Asked < 3; }}, {});
    char Bytes[100];
    EXPECT_EQ(Helper.Receive(Bytes, sizeof Bytes), 5);
    try {
        Helper.Receive(Bytes, sizeof Bytes);
        FAIL() << "nothing was raised";
    }
    catch (const EDatabaseError& Error) {
        EXPECT_EQ(Error.Message, "reading was canceled by user");
        EXPECT_EQ(Error.Facts.Rule, erCancelled);
    }
    EXPECT_EQ(Asked, 3);
    EXPECT_LT(std::chrono::steady_clock::now() - Begun, 20s);
}

TEST_F(KvAccessHelper, PatienceEndsForWhoIsAskedToo)
{
    const auto Program = Script("exec sleep 60");
    TAccessHelper Helper({.Program = Program, .Patience = 300ms, .Continue = [] { return true; }}, {});
    char Byte;
    EXPECT_EQ(MessageOf([&] { Helper.Receive(&Byte, 1); }),
              "the reader of Access databases stopped: it made no progress for 0 s");
}

TEST_F(KvAccessHelper, WaitsForOneThatGoesOn)
{
    EXPECT_EQ(Run("for I in 1 2 3 4; do sleep 0.4; printf $I; done", 1500ms), "1234");
}

TEST_F(KvAccessHelper, BytesAloneAreNoProgress)
{
    const auto Said = Run("while :; do sleep 0.2; printf .; done", 1s, false);
    EXPECT_THAT(Said, testing::EndsWith("it made no progress for 1 s]"));
    EXPECT_LT(Said.find('['), 7U);
}

TEST_F(KvAccessHelper, EndsWithItsOwner)
{
    const auto Begun = std::chrono::steady_clock::now();
    {
        const TAccessHelper Helper({Script("exec sleep 60"), 30s}, {});
    }
    EXPECT_LT(std::chrono::steady_clock::now() - Begun, 20s);
}

TEST_F(KvAccessHelper, ASignalThatTheParentIgnoresStillEndsIt)
{
    const auto Before = std::signal(SIGPIPE, SIG_IGN);
    EXPECT_EQ(Run("kill -PIPE $$; echo alive"),
              "[the reader of Access databases stopped: killed by signal 13 (Broken pipe)]");
    std::signal(SIGPIPE, Before);
}

TEST_F(KvAccessHelper, CtrlCIsLeftToWhoWaitsForIt)
{
    EXPECT_EQ(Run("kill -INT $$; echo alive"), "alive\n");
}

TEST_F(KvAccessHelper, ASignalDuringTheWaitChangesNothing)
{
    static int Signals = 0;
    struct sigaction Counting = {}, Before = {};
    Counting.sa_handler = [](int) { ++Signals; };   // without SA_RESTART: calls of the system end early
    ::sigaction(SIGALRM, &Counting, &Before);
    const itimerval Often{.it_interval = {0, 10'000}, .it_value = {0, 10'000}}, Never{};
    ::setitimer(ITIMER_REAL, &Often, nullptr);
    EXPECT_EQ(Run("sleep 0.3; echo said"), "said\n");
    EXPECT_EQ(Run("exec sleep 60", 1s),
              "[the reader of Access databases stopped: it made no progress for 1 s]");
    ::setitimer(ITIMER_REAL, &Never, nullptr);
    ::sigaction(SIGALRM, &Before, nullptr);
    EXPECT_GT(Signals, 10);
}

TEST_F(KvAccessHelper, LeavesNoProcessAndNoDescriptorBehind)
{
    const auto Descriptors = [] {
        const std::filesystem::directory_iterator All("/proc/self/fd");
        return std::distance(begin(All), end(All));
    };
    const auto Before = Descriptors();
    for (int I = 0; I < 20; ++I) {
        Run("echo to the end");
        Run("kill -KILL $$");
        const TAccessHelper NotAsked({Script("yes"), 30s}, {});
        TAccessHelper LeftEarly({Script("yes"), 30s}, {});
        char Bytes[7];
        EXPECT_EQ(LeftEarly.Receive(Bytes, sizeof Bytes), sizeof Bytes);
        EXPECT_THROW(TAccessHelper({Folder / "none", 30s}, {}), EDatabaseError);
    }
    EXPECT_EQ(Descriptors(), Before);
    EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1);
    EXPECT_EQ(errno, ECHILD) << "a child is left";
}

TEST_F(KvAccessHelper, NeedsNoStandardStreamsOfItsParent)
{
    for (const int Closed : {1, 2, 4, 3, 5, 6, 7}) {
        const auto RunWithout = [this, Closed] {
            for (const int Stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
                if (Closed >> Stream & 1)
                    ::close(Stream);
            std::_Exit(Run("cat; echo said; echo trouble >&2") == "said\n" ? 7 : 1);
        };
        EXPECT_EXIT(RunWithout(), testing::ExitedWithCode(7), "") << Closed;
    }
}

TEST_F(KvAccessHelper, SaysWhyItCannotBeStarted)
{
    const auto File = Folder.Write("text", "no program");
    EXPECT_EQ(MessageOf([&] {
                  TAccessHelper({File, 30s}, {});
              }),
              "Cannot start " + File + ": Permission denied");
}

TEST_F(KvAccessHelper, IsTheOneThatTheEnvironmentNames)
{
    const auto File = Script("exit 0");
    const TVariable Named("KV_ACCESS_HELPER", File.c_str());
    EXPECT_EQ(FindAccessHelper("/usr/bin/"), File);
}

TEST_F(KvAccessHelper, AWrongNameInTheEnvironmentIsAnError)
{
    const TVariable Named("KV_ACCESS_HELPER", "/nowhere/kvaccess");
    EXPECT_EQ(MessageOf([] { FindAccessHelper(""); }),
              "/nowhere/kvaccess, which KV_ACCESS_HELPER names as the reader of "
              "Access databases, is not a program");
}

TEST_F(KvAccessHelper, AFolderOfItsNameIsNoProgram)
{
    std::filesystem::create_directory(Folder / "kvaccess");
    const TVariable Path("PATH", Folder.Path.c_str());
    {
        const TVariable Named("KV_ACCESS_HELPER", nullptr);
        EXPECT_THAT(MessageOf([this] { FindAccessHelper(Folder / ""); }),
                    testing::StartsWith("The reader of Access databases is missing"));
    }
    const TVariable Named("KV_ACCESS_HELPER", (Folder / "kvaccess").c_str());
    EXPECT_EQ(MessageOf([] { FindAccessHelper(""); }),
              (Folder / "kvaccess") +
                  ", which KV_ACCESS_HELPER names as the reader of Access databases, is not a program");
}

TEST_F(KvAccessHelper, IsElseTheOneBesideTheProgram)
{
    const TVariable Named("KV_ACCESS_HELPER", nullptr);
    const TVariable Path("PATH", "/nowhere");
    const auto File = Script("exit 0");
    EXPECT_EQ(FindAccessHelper(Folder / ""), File);
}

TEST_F(KvAccessHelper, IsNeverTheOneInTheCurrentFolder)
{
    const TVariable Named("KV_ACCESS_HELPER", nullptr);
    const TVariable Path("PATH", "/nowhere::");
    Script("exit 0");
    const auto Before = std::filesystem::current_path();
    std::filesystem::current_path(Folder.Path);
    EXPECT_THAT(MessageOf([] { FindAccessHelper(""); }),
                testing::StartsWith("The reader of Access databases is missing"))
        << "where the program's folder is not known";
    std::filesystem::current_path(Before);
}

TEST_F(KvAccessHelper, IsElseTheFirstOnThePath)
{
    const TVariable Named("KV_ACCESS_HELPER", "");
    const TVariable Path("PATH", ("/nowhere::" + Folder.Path.string()).c_str());
    const auto File = Script("exit 0");
    EXPECT_EQ(FindAccessHelper("/nowhere/"), File);
}

TEST_F(KvAccessHelper, SaysWhatToInstallWhenThereIsNone)
{
    const TVariable Named("KV_ACCESS_HELPER", nullptr);
    const TVariable Path("PATH", "/nowhere");
    EXPECT_EQ(
        MessageOf([] { FindAccessHelper("/nowhere/"); }),
        "The reader of Access databases is missing: there is no program kvaccess in /nowhere/ or on PATH; it "
        "is built where mdbtools is installed (Debian package mdbtools-dev)");
}

} // namespace

} // namespace kv
