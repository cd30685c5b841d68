#include "Kvistat.h"

#include "KvCallLog.h"
#include "KvRecordingInterface.h"

namespace kv {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct Kvistat : testing::Test
{
    ~Kvistat() override { DestroyProgressDlg(); }

    bool Open(const char* Caption = "Caption", bool Extended = true)
    {
        return CreateProgressDlg(Caption, "Status", "Cancel", "Processed", "Errors", "Added", "Updated",
                                 "Deleted", Extended);
    }

    TCallLog Log;
    TRecordingInterface Ui{Log};
};

TEST_F(Kvistat, WithoutADialogNothingHappens)
{
    EXPECT_FALSE(ProgressCanceled());
    EXPECT_FALSE(UpdateProgressDlg("Status", 1, 2, 3, 4, 5));
    EXPECT_FALSE(DestroyProgressDlg());
    ChangeProgressDlg(0, 1, 0);
    EXPECT_THAT(Log.Entries, IsEmpty());
    EXPECT_EQ(Ui.MessageRounds, 0);
}

TEST_F(Kvistat, OpensWithTheTextsGiven)
{
    EXPECT_TRUE(Open());
    const auto& C = Ui.Captions;
    EXPECT_THAT(
        (std::vector<std::string>{C.Title, C.Status, C.Cancel, C.Processed, C.Errors, C.Added, C.Updated,
                                  C.Deleted}),
        ElementsAre("Caption", "Status", "Cancel", "Processed", "Errors", "Added", "Updated", "Deleted"));
    EXPECT_TRUE(C.Extended);
    EXPECT_GT(Ui.MessageRounds, 0);
    Open("Caption", false);
    EXPECT_FALSE(C.Extended);
}

TEST_F(Kvistat, ShowsRangeAndFigures)
{
    Open();
    ChangeProgressDlg(1, 10, 3);
    EXPECT_TRUE(UpdateProgressDlg("Status", 1, 2, 3, 4, 5));
    EXPECT_THAT(Log.Entries, ElementsAre("open Caption", "range 1..10 at 3", "show Status 1/2/3/4/5"));
}

TEST_F(Kvistat, OpeningTwiceLeavesOneDialog)
{
    Open("One");
    Open("Two");
    EXPECT_THAT(Log.Entries, ElementsAre("open One", "close", "open Two"));
    EXPECT_TRUE(DestroyProgressDlg());
    EXPECT_FALSE(DestroyProgressDlg());
}

TEST_F(Kvistat, ClosingLetsMessagesRun)
{
    Open();
    Ui.MessageRounds = 0;
    EXPECT_TRUE(DestroyProgressDlg());
    EXPECT_EQ(Ui.MessageRounds, 1);
    EXPECT_EQ(Log.Entries.back(), "close");
}

TEST_F(Kvistat, CancelIsSeenUntilTheDialogCloses)
{
    Open();
    EXPECT_FALSE(ProgressCanceled());
    Ui.Cancelled = true;
    EXPECT_TRUE(ProgressCanceled());
    DestroyProgressDlg();
    EXPECT_FALSE(ProgressCanceled());
}

TEST_F(Kvistat, FailureToOpenIsShownAndDoesNotReachTheCaller)
{
    Log.Refuse("open Caption");
    EXPECT_FALSE(Open());
    EXPECT_THAT(Log.Entries, ElementsAre("open Caption", "error Can't create a process dialog"));
    EXPECT_FALSE(UpdateProgressDlg("Status", 0, 0, 0, 0, 0));
}

TEST_F(Kvistat, FailureToOpenASecondOneClosesTheFirst)
{
    Open("One");
    Log.Refuse("open Caption");
    EXPECT_FALSE(Open());
    EXPECT_FALSE(DestroyProgressDlg());
    EXPECT_THAT(Log.Entries,
                ElementsAre("open One", "close", "open Caption", "error Can't create a process dialog"));
}

} // namespace

} // namespace kv
