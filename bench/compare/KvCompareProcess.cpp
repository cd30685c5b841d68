#include "KvCompareProcess.h"

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <sstream>
#include <stdexcept>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace kv::bench {

namespace {

/// A file without a name, in memory: unlike a pipe it never fills up while nobody reads.
class TMemoryFile
{
public:
    TMemoryFile() : FDescriptor(::memfd_create("stderr", MFD_CLOEXEC))
    {
        if (FDescriptor < 0)
            throw std::system_error(errno, std::generic_category(), "memfd_create");
    }
    ~TMemoryFile() { ::close(FDescriptor); }
    TMemoryFile(const TMemoryFile&) = delete;
    TMemoryFile& operator=(const TMemoryFile&) = delete;

    int Descriptor() const { return FDescriptor; }

    /// The first kilobyte or so of what was written.
    std::string Text() const
    {
        std::string Result(1000, '\0');
        const auto Size = ::pread(FDescriptor, Result.data(), Result.size(), 0);
        Result.resize(Size > 0 ? static_cast<std::size_t>(Size) : 0);
        return Result;
    }

private:
    int FDescriptor;
};

pid_t Spawn(const TCommand& Command, int StandardError)
{
    std::vector<char*> Arguments;
    for (const auto& Argument : Command)
        Arguments.push_back(const_cast<char*>(Argument.c_str()));
    Arguments.push_back(nullptr);

    posix_spawn_file_actions_t Actions;
    ::posix_spawn_file_actions_init(&Actions);
    ::posix_spawn_file_actions_addopen(&Actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    ::posix_spawn_file_actions_addopen(&Actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    ::posix_spawn_file_actions_adddup2(&Actions, StandardError, STDERR_FILENO);
    pid_t Process = 0;
    const int Error = ::posix_spawnp(&Process, Arguments[0], &Actions, nullptr, Arguments.data(), environ);
    ::posix_spawn_file_actions_destroy(&Actions);
    if (Error != 0)
        throw std::runtime_error(Command[0] + ": " + std::generic_category().message(Error));
    return Process;
}

/// Until the process ends: its status and what it used.
std::pair<int, rusage> Wait(pid_t Process)
{
    int Status = 0;
    rusage Usage{};
    while (::wait4(Process, &Status, 0, &Usage) < 0)
        if (errno != EINTR)
            throw std::system_error(errno, std::generic_category(), "wait4");
    return {Status, Usage};
}

volatile std::sig_atomic_t Interrupted = 0;

double Seconds(const timeval& Time)
{
    return static_cast<double>(Time.tv_sec) + static_cast<double>(Time.tv_usec) / 1e6;
}

} // namespace

void CatchInterrupts()
{
    std::signal(SIGINT, [](int) { Interrupted = 1; });
}

TFigures RunProcess(const TCommand& Command)
{
    const TMemoryFile StandardError;
    const auto Start = std::chrono::steady_clock::now();
    const auto Process = Spawn(Command, StandardError.Descriptor());
    const auto [Status, Usage] = Wait(Process);
    const std::chrono::duration<double> Wall = std::chrono::steady_clock::now() - Start;
    if (Interrupted)
        throw TInterrupted();
    if (Status != 0)
        throw std::runtime_error(CommandText(Command) + "\n" + StandardError.Text());
    return {Wall.count(), Seconds(Usage.ru_utime) + Seconds(Usage.ru_stime),
            static_cast<std::uint64_t>(Usage.ru_maxrss) * 1024};
}

void RunApart(const std::function<void()>& Work)
{
    const auto Process = ::fork();
    if (Process < 0)
        throw std::system_error(errno, std::generic_category(), "fork");
    if (Process == 0) {
        try {
            Work();
        }
        catch (const std::exception& Error) {
            std::fprintf(stderr, "%s\n", Error.what());
            ::_exit(1);
        }
        ::_exit(0);
    }
    if (Wait(Process).first != 0)
        throw std::runtime_error("A process of kv_compare failed");
}

bool IsInstalled(const std::string& Program)
{
    const char* const Path = std::getenv("PATH");
    std::istringstream Folders(Path ? Path : "");
    for (std::string Folder; std::getline(Folders, Folder, ':');)
        if (::access((Folder + "/" + Program).c_str(), X_OK) == 0)
            return true;
    return false;
}

std::string CommandText(const TCommand& Command)
{
    std::string Text;
    for (const auto& Argument : Command) {
        const bool Plain = Argument.find_first_of(" \"'();") == Argument.npos;
        Text.append(Text.empty() ? "" : " ").append(Plain ? Argument : "'" + Argument + "'");
    }
    return Text;
}

} // namespace kv::bench
