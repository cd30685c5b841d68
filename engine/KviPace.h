// KviPace - how often a run shows how far it is, and lets messages run.
#pragma once

#include <chrono>

namespace kv {

/// A few times a second, however fast it is asked.
class TKvIPace
{
public:
    static constexpr std::chrono::milliseconds Pause{50};

    /// True the first time, and when the pause since the last true answer is over.
    bool IsDue()
    {
        const auto Now = std::chrono::steady_clock::now();
        if (Now < Next)
            return false;
        Next = Now + Pause;
        return true;
    }

private:
    std::chrono::steady_clock::time_point Next{};
};

} // namespace kv
