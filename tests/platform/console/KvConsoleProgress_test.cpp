#include "KvConsoleProgress.h"

#include <gtest/gtest.h>

#include "KvTerminalText.h"

namespace kv {

namespace {

TConsoleProgress Half()
{
    return {.Title = "orders.csv", .Max = 1000, .Position = 500, .Seconds = 2};
}

TEST(KvConsoleProgress, ShowsBarFiguresAndTimeLeft)
{
    EXPECT_EQ(ProgressLine(Half(), 70, false),
              "orders.csv  [############            ]   50 %  500 of 1,000  0:02 left");
}

TEST(KvConsoleProgress, DrawsPartsOfABlock)
{
    auto Progress = Half();
    Progress.Position = 333;
    Progress.Seconds = 0;
    EXPECT_EQ(ProgressLine(Progress, 52, true), "orders.csv  █████▋           ▏   33 %  333 of 1,000");
}

TEST(KvConsoleProgress, CountsErrors)
{
    auto Progress = Half();
    Progress.Errors = 1;
    EXPECT_NE(ProgressLine(Progress, 100, false).find("500 of 1,000  1 error  "), std::string::npos);
    EXPECT_EQ(ProgressMessage(Progress), "orders.csv: 50 %, 500 of 1,000 records, 1 error");
    Progress.Errors = 2000;
    EXPECT_EQ(ProgressMessage(Progress), "orders.csv: 50 %, 500 of 1,000 records, 2,000 errors");
}

TEST(KvConsoleProgress, DoesWithoutTheSizeOfTheWork)
{
    EXPECT_EQ(ProgressLine({.Title = "orders.csv"}, 40, false), "orders.csv ...");
    EXPECT_EQ(ProgressLine({.Title = "orders.csv", .Position = 1234}, 40, false), "orders.csv  1,234");
    EXPECT_EQ(ProgressMessage({.Title = "orders.csv", .Position = 7}), "orders.csv: 7 records");
}

TEST(KvConsoleProgress, SaysNothingOfTimeAtTheBeginning)
{
    auto Progress = Half();
    Progress.Seconds = 0.5;
    EXPECT_EQ(ProgressLine(Progress, 70, false).find("left"), std::string::npos);
    Progress.Position = 0;
    Progress.Seconds = 5;
    EXPECT_EQ(ProgressLine(Progress, 70, false).find("left"), std::string::npos);
}

TEST(KvConsoleProgress, TellsHours)
{
    auto Progress = Half();
    Progress.Seconds = 3723;
    EXPECT_NE(ProgressLine(Progress, 100, false).find("1:02:03 left"), std::string::npos);
}

TEST(KvConsoleProgress, NeverLeavesItsLine)
{
    auto Progress = Half();
    Progress.Title = "注文書と長い名前のファイル.csv";
    for (int Width = 0; Width < 120; ++Width) {
        EXPECT_LE(DisplayWidth(ProgressLine(Progress, Width, true)), Width);
        EXPECT_LE(DisplayWidth(ProgressLine(Progress, Width, false)), Width);
    }
}

TEST(KvConsoleProgress, StaysWithinBoundsWhateverTheFigures)
{
    auto Progress = Half();
    Progress.Position = 5000;
    EXPECT_EQ(PercentDone(Progress), 100);
    Progress.Position = -5;
    EXPECT_EQ(PercentDone(Progress), 0);
    Progress.Max = -1;
    EXPECT_EQ(PercentDone(Progress), 0);
}

} // namespace

} // namespace kv
