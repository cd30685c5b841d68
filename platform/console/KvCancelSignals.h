// KvCancelSignals - Ctrl+C as the Cancel button of a program without windows.
#pragma once

#include <csignal>

namespace kv {

/// While one lives, the first SIGINT or SIGTERM asks the program to cancel what it does, and the next
/// one ends it as it always would. One at a time.
class TCancelSignals
{
public:
    TCancelSignals();
    TCancelSignals(const TCancelSignals&) = delete;
    TCancelSignals& operator=(const TCancelSignals&) = delete;
    ~TCancelSignals();                              ///< What was asked for stays asked for.

    /// True from the first signal on, also when no TCancelSignals lives any more.
    static bool Requested();
    /// Forgets a request.
    static void Reset();

private:
    struct sigaction SavedInterrupt, SavedTerminate;
};

} // namespace kv
