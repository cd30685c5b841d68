#include "KvMdbLimits.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <cstdlib>
#include <memory>
#include <new>

namespace kv {

namespace {

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
TEST(KvMdbLimitsDeathTest, MoreMemoryThanTheLimitIsRefused)
{
    const auto AskForMore = [] {
        LimitResources();
        try {
            const auto Bytes = std::make_unique<char[]>(MaxReaderMemory + 1);
            Bytes[0] = 1;
        }
        catch (const std::bad_alloc&) {
            std::_Exit(7);
        }
        std::_Exit(0);
    };
    EXPECT_EXIT(AskForMore(), testing::ExitedWithCode(7), "");
}
#endif

TEST(KvMdbLimitsDeathTest, TimeIsGrantedFromNowOn)
{
    const auto CheckTime = [] {
        LimitResources();
        rlimit Time{};
        ::getrlimit(RLIMIT_CPU, &Time);
        std::_Exit(Time.rlim_cur >= MaxSecondsWithoutOutput &&
                   Time.rlim_cur < 2 * MaxSecondsWithoutOutput ? 0 : 1);
    };
    EXPECT_EXIT(CheckTime(), testing::ExitedWithCode(0), "");
}

} // namespace

} // namespace kv
