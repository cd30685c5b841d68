// KvAccessHelper - the program that reads Access databases, running, and the pipe that it writes into.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace kv {

struct TAccessHelperOptions
{
    std::string Program;                            ///< The file to run.
    /// How long it may keep silent while somebody waits for it. Damage makes the library run in circles.
    std::chrono::milliseconds Patience = std::chrono::seconds(30);
    /// Asked about ten times a second while somebody waits for it; false gives up. None: nobody is asked.
    std::function<bool()> Continue = {};
};

/// The file of kvaccess: the one that environment variable KV_ACCESS_HELPER names, else the one in
/// `ProgramFolder`, which ends in a slash or is empty when it is not known, else the first on PATH. Raises
/// EDatabaseError when there is none.
std::string FindAccessHelper(const std::string& ProgramFolder);

class TAccessHelper
{
public:
    /// Runs the program with these arguments, without standard input and error output. Raises
    /// EDatabaseError when it cannot be started.
    TAccessHelper(const TAccessHelperOptions& Options, const std::vector<std::string>& Arguments);
    TAccessHelper(const TAccessHelper&) = delete;
    TAccessHelper& operator=(const TAccessHelper&) = delete;
    /// Ends the program if it still runs.
    ~TAccessHelper();

    /// Waits for output, stores up to `Size` bytes of it and tells how many; 0 after the program ended well.
    /// Raises EDatabaseError when it ended otherwise or kept silent for too long, and says how; with the rule
    /// erCancelled when the options' Continue said no.
    std::size_t Receive(char* Bytes, std::size_t Size);

private:
    void WaitForOutput();
    void AskWhetherToGoOn();
    void CheckExit();
    int Reap();
    void Stop();

    const std::chrono::milliseconds Patience;
    const std::function<bool()> Continue;
    pid_t Process = -1;                             // -1: has ended
    int Output = -1;                                // our end of the pipe
};

} // namespace kv
