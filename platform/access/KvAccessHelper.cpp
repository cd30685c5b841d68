#include "KvAccessHelper.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <string_view>
#include <utility>

#include "KvException.h"

extern char** environ;

namespace kv {

namespace {

constexpr char HelperName[] = "kvaccess";
constexpr char HelperVariable[] = "KV_ACCESS_HELPER";
constexpr int PipeSize = 1 << 20;                   // lets the program read ahead while records are stored
constexpr int CannotRun = 127;                      // exit status of what could not be started
constexpr std::chrono::milliseconds PollTime(100);  // between two looks at the Cancel button

std::string SystemWord(int Code)
{
    return std::strerror(Code);
}

bool IsProgram(const std::string& File)
{
    struct stat Status {};
    return ::stat(File.c_str(), &Status) == 0 && S_ISREG(Status.st_mode) && ::access(File.c_str(), X_OK) == 0;
}

/// Empty when no folder of `Folders`, separated by ":", has the program.
std::string SearchIn(std::string_view Folders)
{
    while (!Folders.empty()) {
        const auto Folder = Folders.substr(0, Folders.find(':'));
        Folders.remove_prefix(Folder.size() < Folders.size() ? Folder.size() + 1 : Folder.size());
        const auto File = std::string(Folder) + '/' + HelperName;
        if (!Folder.empty() && IsProgram(File))
            return File;
    }
    return {};
}

/// What the child gets instead of what the parent has.
class TSpawnSettings
{
public:
    explicit TSpawnSettings(int Output)
    {
        ::posix_spawn_file_actions_init(&Actions);
        ::posix_spawn_file_actions_addopen(&Actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        ::posix_spawn_file_actions_adddup2(&Actions, Output, STDOUT_FILENO);
        // The library writes about every damaged byte there.
        ::posix_spawn_file_actions_addopen(&Actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);

        // A program that ignores or blocks signals must not make a child that cannot be ended by them. But
        // Ctrl+C, which reaches both, is left to the one that waits for the answer.
        sigset_t CtrlC, All;
        sigemptyset(&CtrlC);
        sigaddset(&CtrlC, SIGINT);
        sigfillset(&All);
        ::posix_spawnattr_init(&Attributes);
        ::posix_spawnattr_setsigmask(&Attributes, &CtrlC);
        ::posix_spawnattr_setsigdefault(&Attributes, &All);
        ::posix_spawnattr_setflags(&Attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
    }
    TSpawnSettings(const TSpawnSettings&) = delete;
    TSpawnSettings& operator=(const TSpawnSettings&) = delete;
    ~TSpawnSettings()
    {
        ::posix_spawn_file_actions_destroy(&Actions);
        ::posix_spawnattr_destroy(&Attributes);
    }

    posix_spawn_file_actions_t Actions;
    posix_spawnattr_t Attributes;
};

[[noreturn]] void RaiseStopped(const std::string& How)
{
    throw EDatabaseError("the reader of Access databases stopped: " + How);
}

} // namespace

std::string FindAccessHelper(const std::string& ProgramFolder)
{
    if (const char* const Named = std::getenv(HelperVariable); Named && *Named) {
        if (IsProgram(Named))
            return Named;
        throw EDatabaseError(std::string(Named) + ", which " + HelperVariable +
                                 " names as the reader of Access databases, is not a program",
                             {.FileName = Named, .Rule = erMissing});
    }
    auto File = ProgramFolder + HelperName;
    if (!ProgramFolder.empty() && IsProgram(File))
        return File;
    const char* const Path = std::getenv("PATH");
    File = SearchIn(Path ? Path : "");
    if (File.empty())
        throw EDatabaseError("The reader of Access databases is missing: there is no program kvaccess " +
                                 (ProgramFolder.empty() ? "" : "in " + ProgramFolder + " or ") +
                                 "on PATH; it is built where mdbtools is installed (Debian package "
                                 "mdbtools-dev)",
                             {.Rule = erMissing});
    return File;
}

TAccessHelper::TAccessHelper(const TAccessHelperOptions& Options, const std::vector<std::string>& Arguments)
    : Patience(Options.Patience), Continue(Options.Continue)
{
    std::vector<char*> Words{const_cast<char*>(Options.Program.c_str())};
    for (const auto& Argument : Arguments)
        Words.push_back(const_cast<char*>(Argument.c_str()));
    Words.push_back(nullptr);

    int Ends[2];
    if (::pipe2(Ends, O_CLOEXEC) != 0)
        throw EDatabaseError("Cannot make a pipe: " + SystemWord(errno));
    Output = Ends[0];
#ifdef F_SETPIPE_SZ
    ::fcntl(Output, F_SETPIPE_SZ, PipeSize);        // the usual 64 KB will do where this is refused
#endif
    const TSpawnSettings Settings(Ends[1]);
    const int Code = ::posix_spawn(&Process, Options.Program.c_str(), &Settings.Actions, &Settings.Attributes,
                                   Words.data(), environ);
    ::close(Ends[1]);
    if (Code != 0) {
        ::close(Output);
        throw EDatabaseError("Cannot start " + Options.Program + ": " + SystemWord(Code));
    }
}

TAccessHelper::~TAccessHelper()
{
    Stop();
    ::close(Output);
}

std::size_t TAccessHelper::Receive(char* Bytes, std::size_t Size)
{
    for (;;) {
        WaitForOutput();
        const auto Count = ::read(Output, Bytes, Size);
        if (Count > 0)
            return static_cast<std::size_t>(Count);
        if (Count == 0) {
            CheckExit();
            return 0;
        }
        if (errno != EINTR && errno != EAGAIN)
            throw EDatabaseError("Cannot read from the reader of Access databases: " + SystemWord(errno));
    }
}

void TAccessHelper::WaitForOutput()
{
    using TClock = std::chrono::steady_clock;
    for (auto Begun = TClock::now();;) {
        const auto Left = std::chrono::ceil<std::chrono::milliseconds>(Patience - Waited);
        const auto Wait = std::clamp<std::chrono::milliseconds>(Left, {}, Continue ? PollTime : Patience);
        pollfd End{.fd = Output, .events = POLLIN, .revents = 0};
        const int Ready = ::poll(&End, 1, static_cast<int>(Wait.count()));
        Waited += TClock::now() - std::exchange(Begun, TClock::now());
        if (Ready > 0 || (Ready < 0 && errno != EINTR))
            return;                                 // read() tells what is wrong
        AskWhetherToGoOn();
        if (Ready == 0 && Waited >= Patience) {
            Stop();
            RaiseStopped("it made no progress for " + std::to_string(Patience.count() / 1000) + " s");
        }
    }
}

void TAccessHelper::AskWhetherToGoOn()
{
    if (!Continue || Continue())
        return;
    Stop();
    throw EDatabaseError("reading was canceled by user", {.Rule = erCancelled});
}

/// How the program ended, as waitpid has it; 0 when somebody else has asked for it before.
int TAccessHelper::Reap()
{
    int Status = 0;
    while (Process > 0 && ::waitpid(Process, &Status, 0) < 0 && errno == EINTR) {
    }
    Process = -1;
    return Status;
}

void TAccessHelper::CheckExit()
{
    const int Status = Reap();
    if (WIFSIGNALED(Status)) {
        const int Signal = WTERMSIG(Status);
        RaiseStopped("killed by signal " + std::to_string(Signal) + " (" + ::strsignal(Signal) + ")");
    }
    if (WEXITSTATUS(Status) == CannotRun)
        RaiseStopped("a library that it needs is missing, or it is no program of this system");
    if (WEXITSTATUS(Status) != 0)
        RaiseStopped("exit status " + std::to_string(WEXITSTATUS(Status)));
}

void TAccessHelper::Stop()
{
    if (Process > 0)
        ::kill(Process, SIGKILL);
    Reap();
}

} // namespace kv
