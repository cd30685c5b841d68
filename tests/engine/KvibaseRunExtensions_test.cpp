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
              (TKvIRunExtensions{rxRestoresControls, rxTimedProgress, rxNoNumberBoxes, rxExactNumbers,
                                 rxWrittenForms, rxFormatsInForce, rxTimesAlone, rxOemTextOnly,
                                 rxErrorsByRecord, rxSourceFirst, rxNoEmptyRecords}));
    EXPECT_EQ(Import.Options, TKvIOptions());       // another set
    const auto Properties = Import.PublishedProperties();
    EXPECT_THAT(FindProperty(Properties, "RunExtensions")->Names,
                ElementsAre("rxRestoresControls", "rxTimedProgress", "rxNoNumberBoxes", "rxExactNumbers",
                            "rxWrittenForms", "rxFormatsInForce", "rxTimesAlone", "rxOemTextOnly",
                            "rxErrorsByRecord", "rxSourceFirst", "rxNoEmptyRecords"));
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

// --- rxOemTextOnly ----------------------------------------------------------------------------------

struct KvibaseOemTextOnly : KvibaseRunExtensions
{
    KvibaseOemTextOnly()
    {
        Table.Close();
        Table.SetFieldDefs({{.Name = "ID", .DataType = ftString}, {.Name = "NAME", .DataType = ftBlob}});
        Table.Open();
        Import.CharacterSet = csiASCII_MSDOS;
        Import.Mode = imAppendUpdate;
        Import.DatasetKeys = "ID";
        Import.RunExtensions = {rxOemTextOnly};
    }
};

TEST_F(KvibaseOemTextOnly, ABlankKeyFindsTheRecordWithoutOne)
{
    Table.Fill({{Null, "x"}});
    Import.Rows = {{" ", "\x81"}, {"\x81", "y"}, {Null, "\x81"}};
    Execute();
    EXPECT_EQ(Counters(), "3/1/2/0/0");
    EXPECT_EQ(Records(), (std::vector<std::string>{";\x81", "\xC3\xBC;y"})); // bytes as they were
    Import.RunExtensions = {};
    Execute();
    EXPECT_EQ(Counters(), "3/2/1/0/0");             // an empty text finds nothing
}

// --- rxErrorsByRecord -------------------------------------------------------------------------------

struct KvibaseErrorsByRecord : KvibaseRunExtensions
{
    KvibaseErrorsByRecord()
    {
        Import.RunExtensions = {rxErrorsByRecord};
        Import.DatasetKeys = "ID";
        Import.OnErrorEvent = [this](TKvImportBaseComponent&, const Exception& Error, bool&) {
            Errors.push_back(Error.Message);
        };
        Table.Fill({{1, "Ada"}});
    }

    /// The destination refuses every record for that reason.
    void Break(TKvErrorRule Rule, const std::string& Field = {})
    {
        Table.OnInsert = [=] { throw EDatabaseError("broken", {.Field = Field, .Rule = Rule}); };
    }

    std::vector<std::string> Errors;
};

TEST_F(KvibaseErrorsByRecord, AKeyThatIsNoValueOfItsFieldFailsItsRecord)
{
    for (const auto Mode : {imUpdate, imAppendUpdate, imDelete}) {
        Errors.clear();
        Import.Mode = Mode;
        Import.Rows = {{"abc", "Eve"}, {99, "Zoe"}};
        Execute();
        EXPECT_EQ(Import.Statistic.Result, irExecuted);
        EXPECT_EQ(Import.Statistic.TotalErrors, 1);
        EXPECT_THAT(Errors, ElementsAre("'abc' is not a valid integer value for field 'ID'"));
    }
    Import.RunExtensions = {};
    Import.Mode = imUpdate;
    Execute();
    EXPECT_EQ(Import.Statistic.TotalErrors, 0);     // it is not found
}

TEST_F(KvibaseErrorsByRecord, ABlankKeyIsNoError)
{
    Import.Mode = imUpdate;
    Import.Rows = {{"", "Eve"}};
    Execute();
    EXPECT_THAT(Errors, IsEmpty());
}

TEST_F(KvibaseErrorsByRecord, ARecordThatMayNotBeDeletedFailsAlone)
{
    Import.Mode = imDelete;
    Import.Rows = {{1, "Ada"}, {1, "Ada"}};
    Table.OnDelete = [this] {
        if (Errors.empty())
            throw EDatabaseError("referred to", {.Rule = erForeignKey});
    };
    Execute();
    EXPECT_EQ(Import.Statistic.Result, irExecuted);
    EXPECT_EQ(Counters(), "2/0/0/1/1");
    EXPECT_THAT(Errors, ElementsAre("referred to"));
    Import.RunExtensions = {};
    Errors.clear();
    Table.Fill({{1, "Ada"}});
    Execute();
    EXPECT_EQ(Import.Statistic.Result, irFailed);
    EXPECT_EQ(Counters(), "1/0/0/0/0");             // nothing was deleted
}

TEST_F(KvibaseErrorsByRecord, AnErrorOfTheWholeDestinationEndsTheRun)
{
    for (const auto Rule : {erStorage, erBusy, erFormat, erReadOnly}) {
        Break(Rule);
        Execute();
        EXPECT_EQ(Import.Statistic.Result, irFailed);
        EXPECT_EQ(Import.ErrorMessage(), "broken");
        EXPECT_EQ(Import.Error().Facts.Record, 1);
        EXPECT_EQ(Counters(), "1/0/0/0/0");
        EXPECT_EQ(Table.State(), dsBrowse);
    }
    EXPECT_THAT(Errors, IsEmpty());
    Import.RunExtensions = {};
    Execute();
    EXPECT_EQ(Import.Statistic.Result, irExecuted);
    EXPECT_THAT(Errors, ElementsAre("broken", "broken"));
}

TEST_F(KvibaseErrorsByRecord, AnErrorOfAValueOrAFieldDoesNot)
{
    for (const auto Rule : {erNone, erConversion, erUnique, erCheck, erMissing}) {
        Break(Rule);
        Execute();
        EXPECT_EQ(Counters(), "2/0/0/0/2");
    }
    Break(erReadOnly, "NAME");
    Execute();
    EXPECT_EQ(Counters(), "2/0/0/0/2");
}

// --- rxSourceFirst ----------------------------------------------------------------------------------

struct KvibaseSourceFirst : KvibaseRunExtensions
{
    KvibaseSourceFirst()
    {
        Import.RunExtensions = {rxSourceFirst};
        Import.Mode = imCopy;
        Table.Fill({{7, "Old"}});
    }
};

TEST_F(KvibaseSourceFirst, ASourceThatCannotBeReadLeavesTheDestinationAsItWas)
{
    for (const char* const Call : {"BeforeImport", "GoFirst", "GetTotalCount"}) {
        TTestRun Run;
        Run.Import.RunExtensions = {rxSourceFirst};
        Run.Import.Mode = imCopy;
        Run.Import.Rows = {{1, "Ada"}};
        Run.Table.Fill({{7, "Old"}});
        Run.Log.Refuse(Call);
        Run.Execute();
        EXPECT_EQ(Run.Import.Statistic.Result, irFailed) << Call;
        EXPECT_THAT(Run.Records(), ElementsAre("7;Old")) << Call;
    }
}

TEST_F(KvibaseSourceFirst, TheDestinationIsEmptiedBeforeTheFirstRecordIsAdded)
{
    Execute();
    EXPECT_THAT(Records(), ElementsAre("1;Ada", "2;Bob"));
    EXPECT_EQ(Counters(), "2/2/0/0/0");
}

TEST_F(KvibaseSourceFirst, WhoCancelsWhileTheSourceGoesToItsFirstRecordKeepsTheDestination)
{
    struct TImpatient : TKvIRunObserver
    {
        explicit TImpatient(TCallLog& Calls) : Log(Calls) {}
        bool KeepsRunning() override { return !Log.Has("GoFirst"); }
        TCallLog& Log;
    } Impatient(Log);
    Import.SetObserver(&Impatient);
    Execute();
    Import.SetObserver(nullptr);
    EXPECT_EQ(Import.Statistic.Result, irCanceled);
    EXPECT_THAT(Records(), ElementsAre("7;Old"));
}

// --- Loans ------------------------------------------------------------------------------------------

TEST_F(KvibaseRunExtensions, HandlersMayMoveTheSourceWithoutHarmToTheRecord)
{
    for (int Handler = 0; Handler < 3; ++Handler) {
        TTestRun Run;
        Run.Import.Rows = {{1, "Ada"}, {2, "Bob"}};
        const auto Overwrite = [&Run] { Run.Import.EndLoans(); };
        if (Handler == 0)
            Run.Import.OnGetCellParams = [&](TKvImportBaseComponent&, TField*, TVariant&) { Overwrite(); };
        if (Handler == 1)
            Run.Import.OnBeforeRecordEvent = [&](auto&, auto&, auto&, auto&) { Overwrite(); };
        if (Handler == 2)
            Run.Import.OnBeforeUpdate = [&](TKvImportBaseComponent&) { Overwrite(); };
        Run.Execute();
        EXPECT_THAT(Run.Records(), ElementsAre("1;Ada", "2;Bob")) << Handler;
    }
}

} // namespace

} // namespace kv
