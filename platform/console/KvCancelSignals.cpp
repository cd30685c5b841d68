#include "KvCancelSignals.h"

#include <atomic>

namespace kv {

namespace {

std::atomic<bool> CancelRequested{false};
static_assert(std::atomic<bool>::is_always_lock_free, "a signal handler may set it");

void SetDefault(int Signal)
{
    struct sigaction Action{};
    Action.sa_handler = SIG_DFL;
    sigaction(Signal, &Action, nullptr);
}

extern "C" void RequestCancel(int)
{
    CancelRequested.store(true, std::memory_order_relaxed);
    SetDefault(SIGINT);
    SetDefault(SIGTERM);
}

/// A signal that the program's parent chose to ignore, as nohup and shells do, stays ignored.
void Install(int Signal, struct sigaction& Saved)
{
    struct sigaction Action{};
    Action.sa_handler = RequestCancel;
    sigemptyset(&Action.sa_mask);
    sigaddset(&Action.sa_mask, SIGINT);
    sigaddset(&Action.sa_mask, SIGTERM);
    // Without SA_RESTART: a read that waits for a pipe returns, so that its caller can look.
    sigaction(Signal, nullptr, &Saved);
    if (Saved.sa_handler != SIG_IGN)
        sigaction(Signal, &Action, nullptr);
}

} // namespace

TCancelSignals::TCancelSignals()
{
    Install(SIGINT, SavedInterrupt);
    Install(SIGTERM, SavedTerminate);
}

TCancelSignals::~TCancelSignals()
{
    sigaction(SIGINT, &SavedInterrupt, nullptr);
    sigaction(SIGTERM, &SavedTerminate, nullptr);
}

bool TCancelSignals::Requested()
{
    return CancelRequested.load(std::memory_order_relaxed);
}

void TCancelSignals::Reset()
{
    CancelRequested.store(false, std::memory_order_relaxed);
}

} // namespace kv
