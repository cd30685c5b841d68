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
    /// How long somebody waits for progress. Damage makes the library run in circles.
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
    /// Ends the program if it still runs. It also ends with the thread that started it, however that ends.
    ~TAccessHelper();

    /// Waits for output, stores up to `Size` bytes of it and tells how many; 0 after the program ended well.
    /// Raises EDatabaseError when it ended otherwise or the patience is at its end, and says how; with the
    /// rule erCancelled when the options' Continue said no.
    std::size_t Receive(char* Bytes, std::size_t Size);
    /// What has come is of use: patience begins anew. Bytes alone are no progress.
    void NoteProgress() { Waited = {}; }

private:
    void WaitForOutput();
    void AskWhetherToGoOn();
    void CheckExit();
    int Reap();
    void Stop();

    const std::chrono::milliseconds Patience;
    const std::function<bool()> Continue;
    std::chrono::steady_clock::duration Waited{};   // since the last progress
    pid_t Process = -1;                             // -1: has ended
    int Output = -1;                                // our end of the pipe
};

} // namespace kv
