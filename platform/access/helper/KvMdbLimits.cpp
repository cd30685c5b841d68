#include "KvMdbLimits.h"

#include <poll.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>

namespace kv {

namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool LimitsMemory = false;
#elif defined(__has_feature)
constexpr bool LimitsMemory = !__has_feature(address_sanitizer) && !__has_feature(thread_sanitizer);
#else
constexpr bool LimitsMemory = true;
#endif

void Limit(int Resource, rlim_t Value)
{
    rlimit Limits{};
    if (::getrlimit(static_cast<__rlimit_resource>(Resource), &Limits) != 0)
        return;
    Limits.rlim_cur = Limits.rlim_max == RLIM_INFINITY || Value < Limits.rlim_max ? Value : Limits.rlim_max;
    ::setrlimit(static_cast<__rlimit_resource>(Resource), &Limits);
}

} // namespace

void LimitResources()
{
    if (LimitsMemory)
        Limit(RLIMIT_AS, MaxReaderMemory);
    Limit(RLIMIT_CORE, 0);
    GrantTime();
}

void EndWithParent()
{
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    pollfd Answer{.fd = STDOUT_FILENO, .events = POLLOUT, .revents = 0};
    if (::poll(&Answer, 1, 0) > 0 && (Answer.revents & POLLERR) != 0)
        std::_Exit(EXIT_FAILURE);                   // it had ended before it was asked for
}

void GrantTime()
{
    rusage Used{};
    if (::getrusage(RUSAGE_SELF, &Used) == 0)
        Limit(RLIMIT_CPU,
              static_cast<rlim_t>(Used.ru_utime.tv_sec + Used.ru_stime.tv_sec + MaxSecondsWithoutOutput));
}

} // namespace kv
