// KvCompareProcess - runs a program and measures what it took.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace kv::bench {

/// The program, looked up along PATH when it has no slash, and its arguments.
using TCommand = std::vector<std::string>;

/// What one run took.
struct TFigures
{
    double WallSeconds = 0;
    double CpuSeconds = 0;                          ///< User and system time of the process.
    std::uint64_t PeakBytes = 0;                    ///< The most memory that was resident at once.
};

/// Raised instead of going on after Ctrl+C; no std::exception, so that nobody takes it for a failed run.
struct TInterrupted
{
};

/// From now on Ctrl+C raises TInterrupted at the next RunProcess, which lets the caller clean up, instead
/// of ending the program.
void CatchInterrupts();

/// Runs `Command` to its end, its standard output thrown away. Raises std::runtime_error with the command
/// and what it wrote to standard error when it cannot be started or does not exit with status 0.
/// The peak is never below that of the calling process, which should therefore stay small.
TFigures RunProcess(const TCommand& Command);

/// Does `Work` in a process of its own, so that the calling process stays small. Raises std::runtime_error
/// when it fails.
void RunApart(const std::function<void()>& Work);

/// Whether there is a program of that name along PATH.
bool IsInstalled(const std::string& Program);

/// The command as one would type it, roughly.
std::string CommandText(const TCommand& Command);

} // namespace kv::bench
