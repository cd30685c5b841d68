#include "KvCancelSignals.h"

#include <gtest/gtest.h>

namespace kv {

namespace {

TEST(KvCancelSignals, RememberTheFirstSignal)
{
    {
        const TCancelSignals Signals;
        EXPECT_FALSE(TCancelSignals::Requested());
        raise(SIGTERM);
        EXPECT_TRUE(TCancelSignals::Requested());
    }
    EXPECT_TRUE(TCancelSignals::Requested());
    TCancelSignals::Reset();
    EXPECT_FALSE(TCancelSignals::Requested());
}

TEST(KvCancelSignalsDeathTest, LeaveTheSecondToTheSystem)
{
    EXPECT_EXIT(
        {
            const TCancelSignals Signals;
            raise(SIGINT);
            raise(SIGTERM);
        },
        testing::KilledBySignal(SIGTERM), "");
}

TEST(KvCancelSignalsDeathTest, RestoreWhatWasThere)
{
    EXPECT_EXIT(
        {
            std::signal(SIGINT, SIG_DFL);
            { const TCancelSignals Signals; }
            raise(SIGINT);
        },
        testing::KilledBySignal(SIGINT), "");
}

TEST(KvCancelSignals, RespectAParentThatIgnoresThem)
{
    std::signal(SIGINT, SIG_IGN);
    {
        const TCancelSignals Signals;
        raise(SIGINT);
        EXPECT_FALSE(TCancelSignals::Requested());
    }
    std::signal(SIGINT, SIG_DFL);
}

} // namespace

} // namespace kv
