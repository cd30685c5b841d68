// What surrounds the loop of a run: it is entered once, and left in order whatever happens.
#include "KvTestRun.h"

#include "Kvistat.h"

namespace kv {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct KvibaseExecute : testing::Test, TTestRun
{
    KvibaseExecute()
    {
        Import.Rows = {{1, "Ada"}, {2, "Bob"}};
        Import.AnimatedStatus = true;
    }
};

// --- One thing at a time ----------------------------------------------------------------------------

constexpr char Refusal[] = "TScriptedImport: Execute cannot be called before its run has ended";

TEST_F(KvibaseExecute, InsideItselfIsRefusedAndFailsTheRun)
{
    Import.OnAfterRecordEvent = [](TKvImportBaseComponent& Sender, bool&) { Sender.Execute(); };
    EXPECT_EQ(Raised(), "");
    EXPECT_EQ(Import.Statistic.Result, irFailed);
    EXPECT_EQ(Import.ErrorMessage(), Refusal);
    EXPECT_EQ(Counters(), "1/1/0/0/0");
    EXPECT_FALSE(DestroyProgressDlg());
}

TEST_F(KvibaseExecute, InsideItsBeginningIsRefusedToo)
{
    Import.OnBeforeExecute = [](TKvImportBaseComponent& Sender) { Sender.Execute(); };
    EXPECT_EQ(Raised(), Refusal);
    Import.OnBeforeExecute = nullptr;
    EXPECT_EQ(Raised(), "");
    EXPECT_EQ(Import.Statistic.Result, irExecuted);
}

TEST_F(KvibaseExecute, ThatIsRefusedLeavesTheRunAsItIs)
{
    std::string Message;
    Import.OnAfterRecordEvent = [&](TKvImportBaseComponent& Sender, bool&) {
        try {
            Sender.Execute();
        }
        catch (const Exception& Error) {
            Message = Error.Message;
        }
    };
    Execute();
    EXPECT_EQ(Message, Refusal);
    EXPECT_EQ(Counters(), "2/2/0/0/0");
    EXPECT_EQ(Import.Statistic.Result, irExecuted);
}

TEST_F(KvibaseExecute, MayFollowInOnAfterExecute)
{
    int Runs = 0;
    Import.OnAfterExecute = [&](TKvImportBaseComponent& Sender) {
        if (++Runs < 3)
            Sender.Execute();
    };
    EXPECT_EQ(Raised(), "");
    EXPECT_EQ(Runs, 3);
    EXPECT_EQ(Table.RecordCount(), 6);
}

TEST_F(KvibaseExecute, OfAnotherComponentMayBeInside)
{
    TScriptedImport Other(Log);
    Other.Rows = {{7, "Gil"}};
    Other.SetMappings({"ID=Field1", "NAME=Field2"});
    Other.SetDataSet(&Table);
    Other.AnimatedStatus = false;
    Import.OnBeforeRecordEvent = [&](TKvImportBaseComponent&, const std::string&, TVariant&, bool&) {
        if (Import.Statistic.TotalImported == 1)
            Other.Execute();
    };
    Execute();
    EXPECT_THAT(Records(), ElementsAre("7;Gil", "1;Ada", "2;Bob"));
}

TEST_F(KvibaseExecute, RunsAgainAfterAMissingProperty)
{
    Import.SetDataSet(nullptr);
    EXPECT_EQ(Raised(), "Property DataSet wasn't specified.");
    Import.SetDataSet(&Table);
    EXPECT_EQ(Raised(), "");
}

// --- A user interface that fails --------------------------------------------------------------------

struct TBrokenUi
{
    const char* Name;
    const char* Call;                               // empty: letting messages run
    TKvIResult Result;
};

struct KvibaseBrokenUi : KvibaseExecute, testing::WithParamInterface<TBrokenUi>
{
};

TEST_P(KvibaseBrokenUi, ReachesNobodyAndLeavesNoDialogOpen)
{
    NoteEvents();
    Log.Refuse(GetParam().Call);
    Log.Refuse("error Can't create a process dialog");
    if (*GetParam().Call == '\0')
        Ui.OnMessages = [] { throw Exception("no messages"); };
    EXPECT_EQ(Raised(), "");
    EXPECT_EQ(Import.Statistic.Result, GetParam().Result);
    EXPECT_EQ(Log.Entries.back(), "OnAfterExecute");
    EXPECT_EQ(Log.Count("close"), Log.Has("range 0..2 at 0") || *GetParam().Call == '\0' ? 1 : 0);
    EXPECT_TRUE(Log.Has("idle"));
    Ui.OnMessages = nullptr;
    EXPECT_FALSE(DestroyProgressDlg());
}

INSTANTIATE_TEST_SUITE_P(, KvibaseBrokenUi, testing::Values(
    TBrokenUi{"Opening", "open Importing...", irExecuted},
    TBrokenUi{"Range", "range 0..2 at 0", irFailed},
    TBrokenUi{"Refresh", "show Importing... 1/0/1/0/0", irFailed},
    TBrokenUi{"Outcome", "show The data importing successfuly is finished. 100/0/2/0/0", irExecuted},
    TBrokenUi{"BusyCursor", "busy", irExecuted},
    TBrokenUi{"IdleCursor", "idle", irExecuted},
    TBrokenUi{"Messages", "", irExecuted}), [](const auto& Info) { return std::string(Info.param.Name); });

TEST_F(KvibaseExecute, AMessageBoxThatFailsReachesNobody)
{
    Import.AnimatedStatus = false;
    Import.Options = {soShowMessage};
    NoteEvents();
    Log.Refuse("information The data importing successfuly is finished.");
    EXPECT_EQ(Raised(), "");
    EXPECT_EQ(Import.Statistic.Result, irExecuted);
    EXPECT_EQ(Log.Entries.back(), "OnAfterExecute");
}

TEST_F(KvibaseExecute, ClosesItsDialogThoughAHandlerWantsNoneAnyMore)
{
    Import.OnBeforeUpdate = [&](TKvImportBaseComponent&) { Import.AnimatedStatus = false; };
    Execute();
    EXPECT_EQ(Log.Count("close"), 1);
    EXPECT_FALSE(DestroyProgressDlg());
}

TEST_F(KvibaseExecute, LeavesTheDialogOfAnotherOpen)
{
    CreateProgressDlg("Other", "", "", "", "", "", "", "", false);
    Import.AnimatedStatus = false;
    Execute();
    EXPECT_TRUE(DestroyProgressDlg());
}

// --- OnAfterExecute ---------------------------------------------------------------------------------

TEST_F(KvibaseExecute, OnAfterExecuteComesHoweverTheRunEnds)
{
    for (const auto* const Call : {"BeforeImport", "GetTotalCount", "LoadRecord", "AfterImport"}) {
        TTestRun Run;
        Run.NoteEvents();
        Run.Log.Refuse(Call);
        Run.Import.Rows = {{1, "Ada"}};
        Run.Execute();
        EXPECT_EQ(Run.Log.Entries.back(), "OnAfterExecute") << Call;
    }
}

TEST_F(KvibaseExecute, OnAfterExecuteDoesNotComeWhenNothingBegan)
{
    NoteEvents();
    Import.SetDataSet(nullptr);
    Raised();
    EXPECT_THAT(Log.Of("OnAfterExecute"), IsEmpty());
}

TEST_F(KvibaseExecute, ErrorsOfOnAfterExecuteReachTheCaller)
{
    Import.OnAfterExecute = [](TKvImportBaseComponent&) { throw Exception("told too late"); };
    EXPECT_EQ(Raised(), "told too late");
    EXPECT_FALSE(DestroyProgressDlg());
    Import.OnAfterExecute = nullptr;
    EXPECT_EQ(Raised(), "");
}

} // namespace

} // namespace kv
