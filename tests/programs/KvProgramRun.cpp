#include "KvProgramRun.h"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <spawn.h>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

namespace kv {

namespace {

/// The result of waitpid as a shell shows it.
int ShellStatus(int Status)
{
    return WIFEXITED(Status) ? WEXITSTATUS(Status) : 128 + WTERMSIG(Status);
}

/// Where the three standard files of a program lead.
class TFileActions
{
public:
    TFileActions(const std::string& In, const std::string& Out, const std::string& Err)
    {
        posix_spawn_file_actions_init(&Actions);
        posix_spawn_file_actions_addopen(&Actions, 0, In.c_str(), O_RDONLY, 0);
        posix_spawn_file_actions_addopen(&Actions, 1, Out.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
        posix_spawn_file_actions_addopen(&Actions, 2, Err.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    }
    TFileActions(const TFileActions&) = delete;
    TFileActions& operator=(const TFileActions&) = delete;
    ~TFileActions() { posix_spawn_file_actions_destroy(&Actions); }

    const posix_spawn_file_actions_t* Get() const { return &Actions; }

private:
    posix_spawn_file_actions_t Actions;
};

/// Signals as a program finds them that a shell starts in the foreground: test runners ignore some.
class TDefaultSignals
{
public:
    TDefaultSignals()
    {
        posix_spawnattr_init(&Attributes);
        sigset_t Signals;
        sigemptyset(&Signals);
        sigaddset(&Signals, SIGINT);
        sigaddset(&Signals, SIGTERM);
        sigaddset(&Signals, SIGPIPE);
        posix_spawnattr_setsigdefault(&Attributes, &Signals);
        posix_spawnattr_setflags(&Attributes, POSIX_SPAWN_SETSIGDEF);
    }
    TDefaultSignals(const TDefaultSignals&) = delete;
    TDefaultSignals& operator=(const TDefaultSignals&) = delete;
    ~TDefaultSignals() { posix_spawnattr_destroy(&Attributes); }

    const posix_spawnattr_t* Get() const { return &Attributes; }

private:
    posix_spawnattr_t Attributes;
};

} // namespace

TRunningProgram::TRunningProgram(const TTempFolder& Place, const std::string& Program,
                                 const TArguments& Arguments, const std::string& Input)
    : Folder(Place)
{
    std::vector<char*> Pointers{const_cast<char*>(Program.c_str())};
    for (const auto& Argument : Arguments)
        Pointers.push_back(const_cast<char*>(Argument.c_str()));
    Pointers.push_back(nullptr);
    const TFileActions Files(Input, Folder / "stdout", Folder / "stderr");
    const TDefaultSignals Signals;
    if (posix_spawn(&Process, Program.c_str(), Files.Get(), Signals.Get(), Pointers.data(), environ) != 0)
        throw std::runtime_error("cannot start " + Program);
}

TRunningProgram::~TRunningProgram()
{
    if (IsRunning()) {
        Signal(SIGKILL);
        Wait();
    }
}

void TRunningProgram::Signal(int Number) const
{
    if (Ended < 0)
        kill(Process, Number);
}

bool TRunningProgram::IsRunning()
{
    int Status = 0;
    if (Ended < 0 && waitpid(Process, &Status, WNOHANG) == Process)
        Ended = ShellStatus(Status);
    return Ended < 0;
}

TProgramResult TRunningProgram::Wait()
{
    int Status = 0;
    while (Ended < 0)
        if (waitpid(Process, &Status, 0) == Process)
            Ended = ShellStatus(Status);
        else if (errno != EINTR)
            throw std::runtime_error("cannot wait for a program");
    return {.Status = Ended, .Out = Folder.Read("stdout"), .Err = Folder.Read("stderr")};
}

TProgramResult RunKvImport(const TTempFolder& Folder, const TArguments& Arguments, const std::string& Input)
{
    return TRunningProgram(Folder, KV_PROGRAM, Arguments, Input).Wait();
}

nlohmann::json ImportWithJson(const TTempFolder& Folder, TArguments Arguments)
{
    Arguments.insert(Arguments.begin(), "import");
    Arguments.push_back("--json");
    const auto Result = RunKvImport(Folder, Arguments);
    auto Object = nlohmann::json::parse(Result.Out, nullptr, false);
    EXPECT_TRUE(Object.is_object()) << Result.Out << Result.Err;
    if (Object.is_object()) {
        EXPECT_EQ(Object["exitStatus"], Result.Status);
    }
    return Object;
}

} // namespace kv
