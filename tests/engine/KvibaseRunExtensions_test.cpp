// Rules of a run that take the place of older ones. The older ones are tested with the run.
#include "KvTestRun.h"

#include <thread>

#include "KviExtensions.h"

namespace kv {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct KvibaseRunExtensions : testing::Test, TTestRun
{
    KvibaseRunExtensions() { Import.Rows = {{1, "Ada"}, {2, "Bob"}}; }
};

TEST_F(KvibaseRunExtensions, AreNoneByDefault)
{
    EXPECT_TRUE(Import.RunExtensions.IsEmpty());
}

TEST_F(KvibaseRunExtensions, AreAllTurnedOnTogetherByTheirPublishedNames)
{
    TurnOnExtensions(Import);
    EXPECT_EQ(Import.RunExtensions,
              (TKvIRunExtensions{rxRestoresControls, rxTimedProgress, rxNoNumberBoxes}));
    EXPECT_EQ(Import.Options, TKvIOptions());       // another set
    const auto Properties = Import.PublishedProperties();
    EXPECT_THAT(FindProperty(Properties, "RunExtensions")->Names,
                ElementsAre("rxRestoresControls", "rxTimedProgress", "rxNoNumberBoxes"));
}

// --- rxRestoresControls -----------------------------------------------------------------------------

struct TBrokenCall
{
    const char* Call;
    int AfterImports;                               // calls of it
};

TEST_F(KvibaseRunExtensions, AFailedRunGivesControlsBackAndLetsGoOfTheSource)
{
    for (const auto& [Call, AfterImports] :
         {TBrokenCall{"DetectAutoMapping", 0}, TBrokenCall{"BeforeImport", 1},
          TBrokenCall{"BuildFieldMapping", 1}, TBrokenCall{"GoFirst", 1}, TBrokenCall{"LoadRecord", 1},
          TBrokenCall{"GoNext", 1}, TBrokenCall{"first", 1}, TBrokenCall{"AfterImport", 1}})
    {
        SCOPED_TRACE(Call);
        TTestRun Run;
        Run.Import.RunExtensions = {rxRestoresControls};
        Run.Import.Rows = {{1, "Ada"}};
        Run.Import.SetMappings({});
        Run.Log.Refuse(Call);
        Run.Execute();
        EXPECT_EQ(Run.Import.Statistic.Result, irFailed);
        EXPECT_EQ(Run.Import.ErrorMessage(), std::string(Call) + " refused");
        EXPECT_FALSE(Run.Table.ControlsDisabled());
        EXPECT_EQ(Run.Log.Count("AfterImport"), AfterImports);
    }
}

TEST_F(KvibaseRunExtensions, ControlsOfAProgramAreNotGivenBack)
{
    Import.RunExtensions = {rxRestoresControls};
    Table.DisableControls();
    Log.Refuse("BeforeImport");
    Execute();
    EXPECT_TRUE(Table.ControlsDisabled());
    Table.EnableControls();
    EXPECT_FALSE(Table.ControlsDisabled());
}

TEST_F(KvibaseRunExtensions, AnErrorOfLettingGoDoesNotHideTheOneBefore)
{
    Import.RunExtensions = {rxRestoresControls};
    Log.Refuse("LoadRecord");
    Log.Refuse("AfterImport");
    Execute();
    EXPECT_EQ(Import.ErrorMessage(), "LoadRecord refused");
    EXPECT_FALSE(Table.ControlsDisabled());
}

TEST_F(KvibaseRunExtensions, ARunThatIsExecutedLetsGoOnce)
{
    Import.RunExtensions = {rxRestoresControls};
    Execute();
    EXPECT_EQ(Log.Count("AfterImport"), 1);
    EXPECT_FALSE(Table.ControlsDisabled());
}

// --- rxTimedProgress --------------------------------------------------------------------------------

struct KvibaseTimedProgress : KvibaseRunExtensions
{
    KvibaseTimedProgress()
    {
        Import.AnimatedStatus = true;
        Import.RunExtensions = {rxTimedProgress};
    }

    /// The records that were read at each refresh.
    std::vector<int> Shown()
    {
        Execute();
        std::vector<int> Result;
        for (const auto& Entry : Log.Of("show Importing... "))
            Result.push_back(std::stoi(Entry.substr(18)));
        return Result;
    }
};

TEST_F(KvibaseTimedProgress, IsShownBeforeTheFirstRecordAndAfterTheLast)
{
    Import.Rows.assign(2000, {1, "Ada"});
    const auto Refreshes = Shown();
    ASSERT_GE(Refreshes.size(), 2u);
    EXPECT_EQ(Refreshes.front(), 0);
    EXPECT_EQ(Refreshes.back(), 2000);
    EXPECT_LT(Refreshes.size(), 1000u);             // not after each, as UpdateStep says
}

TEST_F(KvibaseTimedProgress, IsShownAfterARecordThatTookLong)
{
    Import.Rows.assign(5, {1, "Ada"});
    Import.Statistic.UpdateStep = 100;
    Import.OnBeforeUpdate = [&](TKvImportBaseComponent&) {
        if (Import.Statistic.TotalImported == 3)
            std::this_thread::sleep_for(std::chrono::milliseconds(60));
    };
    EXPECT_THAT(Shown(), testing::Contains(3));
}

TEST_F(KvibaseTimedProgress, IsNotShownWithoutADialog)
{
    Import.AnimatedStatus = false;
    EXPECT_THAT(Shown(), IsEmpty());
}

// --- rxNoNumberBoxes --------------------------------------------------------------------------------

TEST_F(KvibaseRunExtensions, AMalformedNumberIsToldByItsRecordAlone)
{
    Table.Close();
    Table.SetFieldDefs(
        {{.Name = "ID", .DataType = ftFloat}, {.Name = "NAME", .DataType = ftString, .Size = 10}});
    Table.Open();
    Import.Rows = {{"1,5x", "Ada"}, {"2", "Bob"}};
    NoteEvents();
    Execute();
    EXPECT_THAT(Log.Of("error"), ElementsAre("error '15x' is not a valid floating point value"));
    Import.RunExtensions = {rxNoNumberBoxes};
    Execute();
    EXPECT_THAT(Log.Of("error"), IsEmpty());
    EXPECT_THAT(Log.Of("OnErrorEvent"),
                ElementsAre("OnErrorEvent '1,5x' is not a valid floating point value for field 'ID'"));
}

// --- Messages ---------------------------------------------------------------------------------------

TEST_F(KvibaseRunExtensions, CancelIsSeenWhileTheDestinationIsEmptied)
{
    Table.Fill({{7, "Old"}, {8, "Older"}});
    Import.Mode = imCopy;
    Import.AnimatedStatus = true;
    Ui.OnMessages = [&] { Ui.Cancelled = Log.Has("first"); }; // emptying has begun
    Execute();
    EXPECT_EQ(Import.Statistic.Result, irCanceled);
    EXPECT_THAT(Log.Of("delete"), IsEmpty());
    EXPECT_THAT(Records(), ElementsAre("7;Old", "8;Older"));
}

TEST_F(KvibaseRunExtensions, WithoutAnimatedStatusNoMessagesRunWhileTheDestinationIsEmptied)
{
    Table.Fill({{7, "Old"}});
    Import.Mode = imCopy;
    Execute();
    EXPECT_EQ(Ui.MessageRounds, 0);
}

} // namespace

} // namespace kv
