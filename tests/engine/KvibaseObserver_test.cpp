// What the observer of a run is told of each record, and when.
#include "KvTestRun.h"

#include <stdexcept>

namespace kv {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using TTexts = std::vector<std::string>;

std::string_view NameOf(TKvIFate Fate)
{
    static constexpr std::string_view Names[] = {"added",     "updated", "deleted",   "refused",
                                                 "not found", "failed",  "broken off"};
    return Names[Fate];
}

/// Notes what it is told, with the place of the record.
class TNotingObserver final : public TKvIRunObserver
{
public:
    TNotingObserver(TCallLog& Calls, const TKvImportBaseComponent& Observed) : Log(Calls), Import(Observed) {}

    bool KeepsRunning() override { return OnAsked ? OnAsked() : true; }
    void SourceOpened() override { Note("opened"); }
    void Emptied(std::int64_t Count) override { Note("emptied " + std::to_string(Count)); }
    void RecordDone(TKvIFate Fate) override
    {
        Note(Import.RecordPlace() + " " + std::string(NameOf(Fate)));
    }
    bool RecordFailed(const Exception& Error) override
    {
        Note(Import.RecordPlace() + " failed: " + Error.Message);
        return GoesOn;
    }

    std::function<bool()> OnAsked;                  ///< What KeepsRunning answers; none: yes.
    bool GoesOn = true;                             ///< What RecordFailed answers.
    TTexts Told;

private:
    void Note(const std::string& What)
    {
        Told.push_back(What);
        Log.Call("told " + What);
    }

    TCallLog& Log;
    const TKvImportBaseComponent& Import;
};

struct KvibaseObserver : testing::Test, TTestRun
{
    KvibaseObserver()
    {
        Import.Rows = {{1, "Ada"}, {2, "Bob"}, {3, "Cyd"}};
        Import.SetObserver(&Observer);
    }

    /// What the observer is told of a run.
    TTexts Told()
    {
        Observer.Told.clear();
        Execute();
        return Observer.Told;
    }
    void IgnoreErrors()
    {
        Import.OnErrorEvent = [](TKvImportBaseComponent&, const Exception&, bool&) {};
    }
    /// The observer answers "no" from question `Number` on, counted from 1, or only then.
    void StopAt(int Number, bool OnlyThen = false)
    {
        Observer.OnAsked = [this, Number, OnlyThen] {
            ++Asked;
            return OnlyThen ? Asked != Number : Asked < Number;
        };
    }

    TNotingObserver Observer{Log, Import};
    int Asked = 0;
};

// --- Fates ------------------------------------------------------------------------------------------

TEST_F(KvibaseObserver, IsToldOnceOfEachRecordAfterItIsStoredAndBeforeTheHandler)
{
    Import.Rows.resize(2);
    NoteEvents();
    Execute();
    EXPECT_THAT(Log.Entries,
                ElementsAre("OnBeforeExecute", "NotDefined", "busy", "BeforeImport", "BuildFieldMapping",
                            "BuildArrayIntersection", "told opened", "GoFirst", "GetTotalCount", "NeedMore",
                            "LoadRecord", "GetFieldValue Field1", "GetFieldValue Field2",
                            "OnGetCellParams ID 1", "OnGetCellParams NAME Ada", "OnBeforeRecordEvent",
                            "OnBeforeUpdate", "insert 1;Ada", "told record 1 added", "OnAfterRecordEvent",
                            "GoNext", "NeedMore", "LoadRecord", "GetFieldValue Field1",
                            "GetFieldValue Field2", "OnGetCellParams ID 2", "OnGetCellParams NAME Bob",
                            "OnBeforeRecordEvent", "OnBeforeUpdate", "insert 2;Bob", "told record 2 added",
                            "OnAfterRecordEvent", "GoNext", "NeedMore", "first", "AfterImport", "idle",
                            "OnAfterExecute"));
}

struct TModeRow
{
    const char* Name;
    TImportMode Mode;
    TTexts Told;
};

struct KvibaseObserverMode : KvibaseObserver, testing::WithParamInterface<TModeRow>
{
};

TEST_P(KvibaseObserverMode, IsToldWhatARecordHasDone)
{
    Table.Fill({{2, "Two"}, {9, "Nine"}});
    Import.Mode = GetParam().Mode;
    Import.DatasetKeys = "ID";
    EXPECT_EQ(Told(), GetParam().Told);
}

INSTANTIATE_TEST_SUITE_P(
    , KvibaseObserverMode,
    testing::Values(
        TModeRow{"Append", imAppend, {"opened", "record 1 added", "record 2 added", "record 3 added"}},
        TModeRow{
            "Update", imUpdate, {"opened", "record 1 not found", "record 2 updated", "record 3 not found"}},
        TModeRow{"AppendUpdate",
                 imAppendUpdate,
                 {"opened", "record 1 added", "record 2 updated", "record 3 added"}},
        TModeRow{
            "Delete", imDelete, {"opened", "record 1 not found", "record 2 deleted", "record 3 not found"}},
        TModeRow{
            "Copy", imCopy, {"opened", "emptied 2", "record 1 added", "record 2 added", "record 3 added"}}),
    [](const auto& Info) { return std::string(Info.param.Name); });

TEST_F(KvibaseObserver, IsToldOfRefusedRecords)
{
    Import.OnBeforeRecordEvent = [&](TKvImportBaseComponent&, const std::string&, TVariant&, bool& Accept) {
        Accept = Import.Statistic.TotalImported != 2;
    };
    EXPECT_THAT(Told(), ElementsAre("opened", "record 1 added", "record 2 refused", "record 3 added"));
}

TEST_F(KvibaseObserver, IsToldOfRecordsThatAreNotStored)
{
    Import.Rows[0][0] = "one";                      // fails in the assignment, the second one in Post
    Log.Refuse("insert 2;Bob");
    const TTexts Expected = {"opened", "record 1 failed: 'one' is not a valid integer value for field 'ID'",
                             "record 2 failed: insert 2;Bob refused", "record 3 added"};
    EXPECT_EQ(Told(), Expected);
    EXPECT_EQ(Counters(), "3/3/0/0/2");             // without a handler the old rule counts what was tried
    IgnoreErrors();
    EXPECT_EQ(Told(), Expected);
    EXPECT_EQ(Counters(), "3/1/0/0/2");
}

TEST_F(KvibaseObserver, IsToldOfAFailureBeforeTheHandler)
{
    NoteEvents();
    Log.Refuse("insert 2;Bob");
    Execute();
    const auto First = std::ranges::find(Log.Entries, "told record 2 failed: insert 2;Bob refused");
    ASSERT_NE(First, Log.Entries.end());
    EXPECT_EQ(*std::next(First), "OnErrorEvent insert 2;Bob refused");
}

TEST_F(KvibaseObserver, IsToldOfRecordsThatTheSourceCannotRead)
{
    Import.TellsBadRecords = true;
    Log.Refuse("GetFieldValue Field2");
    EXPECT_THAT(Told(), ElementsAre("opened", "record 1 failed: GetFieldValue Field2 refused",
                                    "record 2 failed: GetFieldValue Field2 refused",
                                    "record 3 failed: GetFieldValue Field2 refused"));
    EXPECT_EQ(Import.Statistic.Result, irExecuted);
}

struct TBrokenRow
{
    const char* Name;
    const char* Call;
};

struct KvibaseObserverBroken : KvibaseObserver, testing::WithParamInterface<TBrokenRow>
{
};

TEST_P(KvibaseObserverBroken, IsToldOfTheRecordThatEndsTheRun)
{
    Table.Fill({{1, "Old"}});
    Import.Mode = imDelete;
    Import.DatasetKeys = "ID";
    NoteEvents();
    Log.Refuse(GetParam().Call);
    EXPECT_THAT(Told(),
                ElementsAre("opened", "record 1 failed: " + std::string(GetParam().Call) + " refused"));
    EXPECT_EQ(Import.Statistic.Result, irFailed);
}

INSTANTIATE_TEST_SUITE_P(, KvibaseObserverBroken,
                         testing::Values(TBrokenRow{"LoadRecord", "LoadRecord"},
                                         TBrokenRow{"GetFieldValue", "GetFieldValue Field2"},
                                         TBrokenRow{"OnGetCellParams", "OnGetCellParams ID 1"},
                                         TBrokenRow{"OnBeforeRecordEvent", "OnBeforeRecordEvent"},
                                         TBrokenRow{"Locate", "locate 1"},
                                         TBrokenRow{"OnBeforeUpdate", "OnBeforeUpdate"},
                                         TBrokenRow{"Delete", "delete 1;Old"}),
                         [](const auto& Info) { return std::string(Info.param.Name); });

TEST_F(KvibaseObserver, IsToldOfTheRecordForWhichNoneCouldBeBegun)
{
    Import.OnBeforeUpdate = [&](TKvImportBaseComponent&) { Table.Close(); };
    Execute();
    ASSERT_EQ(Observer.Told.size(), 2u);
    EXPECT_THAT(Observer.Told[1], testing::StartsWith("record 1 failed: "));
}

TEST_F(KvibaseObserver, IsNotToldTwiceOfARecordWhoseHandlersRaise)
{
    Import.OnAfterRecordEvent = [](TKvImportBaseComponent&, bool&) { throw Exception("enough"); };
    EXPECT_THAT(Told(), ElementsAre("opened", "record 1 added"));
    Import.OnAfterRecordEvent = nullptr;
    Log.Refuse("insert 1;Ada");
    Import.OnErrorEvent = [](TKvImportBaseComponent&, const Exception&, bool&) {
        throw EConvertError("enough");
    };
    EXPECT_THAT(Told(), ElementsAre("opened", "record 1 failed: insert 1;Ada refused"));
    Import.OnErrorEvent = [](TKvImportBaseComponent&, const Exception&, bool& Abort) { Abort = true; };
    EXPECT_THAT(Told(), ElementsAre("opened", "record 1 failed: insert 1;Ada refused"));
}

TEST_F(KvibaseObserver, IsToldNoFateByWhatConcernsNoRecord)
{
    Log.Refuse("GoNext");
    EXPECT_THAT(Told(), ElementsAre("opened", "record 1 added"));
    EXPECT_EQ(Import.ErrorMessage(), "GoNext refused");
}

TEST_F(KvibaseObserver, IsToldOfErrorsOutsideTheFamily)
{
    Import.OnBeforeUpdate = [](TKvImportBaseComponent&) { throw std::runtime_error("disk on fire"); };
    EXPECT_THAT(Told(), ElementsAre("opened", "record 1 failed: disk on fire"));
    Import.OnBeforeUpdate = [](TKvImportBaseComponent&) { throw 7; };
    EXPECT_THAT(Told(), ElementsAre("opened", "record 1 failed: Unknown error"));
}

TEST_F(KvibaseObserver, IsForgottenWhenNoneTakesItsPlace)
{
    Import.SetObserver(nullptr);
    EXPECT_THAT(Told(), IsEmpty());
    EXPECT_EQ(Counters(), "3/3/0/0/0");
}

// --- Ending the run ---------------------------------------------------------------------------------

TEST_F(KvibaseObserver, EndsTheRunAsFailedByItsAnswerToAFailure)
{
    Log.Refuse("insert 2;Bob");
    Observer.GoesOn = false;
    EXPECT_THAT(Told(), ElementsAre("opened", "record 1 added", "record 2 failed: insert 2;Bob refused"));
    EXPECT_EQ(Import.Statistic.Result, irFailed);
    EXPECT_EQ(Import.ErrorMessage(), "insert 2;Bob refused");
    IgnoreErrors();                                 // does not overrule it
    EXPECT_EQ(Told().size(), 3u);
    EXPECT_EQ(Import.Statistic.Result, irFailed);
    EXPECT_EQ(Counters(), "2/1/0/0/1");
}

TEST_F(KvibaseObserver, WhatItRaisesEndsTheRunAndReachesNobody)
{
    for (const auto* const Call : {"told opened", "told record 1 added"}) {
        Log.Refuse(Call);
        EXPECT_NO_THROW(Execute());
        EXPECT_EQ(Import.Statistic.Result, irFailed);
    }
    Log.Refuse("insert 1;Ada");
    Log.Refuse("told record 1 failed: insert 1;Ada refused");
    EXPECT_NO_THROW(Execute());
    EXPECT_EQ(Import.Statistic.Result, irFailed);
}

TEST_F(KvibaseObserver, WhatItRaisesAboutAnErrorLeavesTheErrorThatEndedTheRun)
{
    Log.Refuse("OnBeforeUpdate");
    Log.Refuse("told record 1 failed: OnBeforeUpdate refused");
    NoteEvents();
    EXPECT_NO_THROW(Execute());
    EXPECT_EQ(Import.ErrorMessage(), "OnBeforeUpdate refused");
    EXPECT_EQ(Import.Statistic.Result, irFailed);
    EXPECT_EQ(Log.Entries.back(), "OnAfterExecute");
}

// --- Cancel -----------------------------------------------------------------------------------------

TEST_F(KvibaseObserver, CancelsBetweenTwoRecords)
{
    Observer.OnAsked = [&] { return Observer.Told.size() < 2; };
    EXPECT_THAT(Told(), ElementsAre("opened", "record 1 added"));
    EXPECT_EQ(Import.Statistic.Result, irCanceled);
    EXPECT_TRUE(Log.Has("AfterImport"));
    EXPECT_FALSE(Table.ControlsDisabled());
}

TEST_F(KvibaseObserver, WhatIsBrokenOffByCancelIsNoFailure)
{
    bool Stopped = false;
    Observer.OnAsked = [&] { return !Stopped; };
    Import.OnBeforeUpdate = [&](TKvImportBaseComponent&) {
        Stopped = Import.Statistic.TotalImported == 2;
        if (Stopped)
            throw EDatabaseError("interrupted");
    };
    EXPECT_THAT(Told(), ElementsAre("opened", "record 1 added", "record 2 broken off"));
    EXPECT_EQ(Import.Statistic.Result, irCanceled);
    EXPECT_EQ(Counters(), "2/1/0/0/0");
}

TEST_F(KvibaseObserver, SourceIsOpenBeforeAnythingOfTheDestinationChanges)
{
    Table.Fill({{7, "Old"}});
    Import.Mode = imCopy;
    Execute();
    const auto Opened = std::ranges::find(Log.Entries, "told opened");
    EXPECT_LT(std::ranges::find(Log.Entries, "BuildArrayIntersection"), Opened);
    EXPECT_LT(Opened, std::ranges::find(Log.Entries, "first"));
    EXPECT_LT(std::ranges::find(Log.Entries, "delete 7;Old"),
              std::ranges::find(Log.Entries, "told emptied 1"));
}

struct KvibaseObserverCopy : KvibaseObserver
{
    KvibaseObserverCopy()
    {
        Table.Fill({{7, "Old"}, {8, "Older"}, {9, "Oldest"}});
        Import.Mode = imCopy;
        Import.Polls = 2;
    }
};

TEST_F(KvibaseObserverCopy, CancelledWhileLoadingRemovesNothing)
{
    for (const int Question : {1, 2}) {
        Asked = 0;
        StopAt(Question);
        EXPECT_THAT(Told(), IsEmpty());             // what it has loaded is not the source
        EXPECT_EQ(Import.Statistic.Result, irCanceled);
        EXPECT_EQ(Records().size(), 3u);
        EXPECT_EQ(Counters(), "0/0/0/0/0");
        EXPECT_TRUE(Log.Has("AfterImport"));
    }
}

TEST_F(KvibaseObserverCopy, OneNoWhileLoadingIsEnough)
{
    StopAt(2, true);                                // later questions are answered "yes"
    EXPECT_THAT(Told(), IsEmpty());
    EXPECT_EQ(Import.Statistic.Result, irCanceled);
    EXPECT_EQ(Records().size(), 3u);
}

TEST_F(KvibaseObserverCopy, CancelledByTheDialogWhileLoadingRemovesNothing)
{
    Import.AnimatedStatus = true;
    Ui.Cancelled = true;
    EXPECT_THAT(Told(), IsEmpty());
    EXPECT_EQ(Import.Statistic.Result, irCanceled);
    EXPECT_EQ(Records().size(), 3u);
}

TEST_F(KvibaseObserverCopy, CancelledWhileEmptyingRemovesNoMoreAndReadsNothing)
{
    Observer.OnAsked = [&] { return Log.Of("delete").size() < 2; };
    EXPECT_THAT(Told(), ElementsAre("opened", "emptied 2"));
    EXPECT_EQ(Import.Statistic.Result, irCanceled);
    EXPECT_THAT(Records(), ElementsAre("9;Oldest"));
    EXPECT_THAT(Log.Of("LoadRecord"), IsEmpty());
}

TEST_F(KvibaseObserver, OneRunsCancelDoesNotReachTheNext)
{
    StopAt(2, true);
    EXPECT_THAT(Told(), ElementsAre("opened"));
    EXPECT_EQ(Import.Statistic.Result, irCanceled);
    EXPECT_EQ(Told().size(), 4u);
    EXPECT_EQ(Import.Statistic.Result, irExecuted);
}

TEST_F(KvibaseObserver, IsAskedWhileAComponentLoadsOutsideARun)
{
    StopAt(1, true);
    EXPECT_FALSE(Import.KeepsRunning());
    EXPECT_TRUE(Import.KeepsRunning());             // nothing is kept where there is no run
}

} // namespace

} // namespace kv
