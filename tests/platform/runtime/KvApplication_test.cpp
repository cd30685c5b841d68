#include "KvApplication.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace kv {
namespace {

constexpr char TestProgram[] = "platform_runtime_test";

TEST(KvApplication, KnowsTheFolderOfItsProgram)
{
    EXPECT_TRUE(ApplicationFolder().ends_with('/'));
    EXPECT_TRUE(std::filesystem::exists(ApplicationFolder() + TestProgram));
}

TEST(KvApplication, IsCalledAsItsProgramUntilItSaysOtherwise)
{
    EXPECT_EQ(ApplicationTitle(), TestProgram);
    SetApplicationTitle("Order desk");
    EXPECT_EQ(ApplicationTitle(), "Order desk");
    SetApplicationTitle(TestProgram);
}

} // namespace
} // namespace kv
