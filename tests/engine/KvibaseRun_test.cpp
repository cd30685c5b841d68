#include "KvTestRun.h"

#include <new>
#include <stdexcept>

namespace kv {

namespace {

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

using TRows = std::vector<std::vector<TVariant>>;
using TTexts = std::vector<std::string>;

constexpr char Finished[] = "The data importing successfuly is finished.";
constexpr char Canceled[] = "Data importing was canceled by user.";
constexpr char Failed[] = "Error of data import.";

struct KvibaseRun : testing::Test, TTestRun
{
    KvibaseRun() { Import.Rows = {{1, "Ada"}, {2, "Bob"}, {3, "Cyd"}}; }

    void AbortAfterRecord(int Record)
    {
        Import.OnAfterRecordEvent = [this, Record](TKvImportBaseComponent&, bool& Abort) {
            Abort = Import.Statistic.TotalImported == Record;
        };
    }
    void IgnoreErrors()
    {
        Import.OnErrorEvent = [](TKvImportBaseComponent&, const Exception&, bool&) {};
    }
};

// --- Order ------------------------------------------------------------------------------------------

TEST_F(KvibaseRun, CallsAndEventsComeInTheirOrder)
{
    Import.Rows = {{1, "Bob"}, {2, "Cyd"}};
    Table.Fill({{1, "Ada"}});
    Import.Mode = imAppendUpdate;
    Import.DatasetKeys = "ID";
    Import.AnimatedStatus = true;
    Import.TitleStatus = "Orders";
    NoteEvents();
    Execute();
    EXPECT_THAT(Log.Entries,
                ElementsAre("OnBeforeExecute", "NotDefined", "busy", "open Orders", "BeforeImport",
                            "BuildFieldMapping", "BuildArrayIntersection", "GoFirst", "GetTotalCount",
                            "range 0..2 at 0", "NeedMore", "LoadRecord", "GetFieldValue Field1",
                            "GetFieldValue Field2", "OnGetCellParams ID 1", "OnGetCellParams NAME Bob",
                            "OnBeforeRecordEvent", "locate 1", "OnBeforeUpdate", "update ID=1;NAME=Bob",
                            "OnAfterRecordEvent", "GoNext", "NeedMore", "show Importing... 1/0/0/0/1",
                            "LoadRecord", "GetFieldValue Field1", "GetFieldValue Field2",
                            "OnGetCellParams ID 2", "OnGetCellParams NAME Cyd", "OnBeforeRecordEvent",
                            "locate 2", "OnBeforeUpdate", "insert 2;Cyd", "OnAfterRecordEvent", "GoNext",
                            "NeedMore", "first", "AfterImport",
                            "show The data importing successfuly is finished. 100/0/1/0/1", "close", "idle",
                            "OnAfterExecute"));
}

TEST_F(KvibaseRun, CopyEmptiesTheDestinationBeforeTheSourceIsPositioned)
{
    Table.Fill({{7, "Old"}});
    Import.Rows = {{1, "Ada"}};
    Import.Mode = imCopy;
    Execute();
    EXPECT_THAT(Log.Entries, ElementsAre(
        "NotDefined", "busy", "BeforeImport", "BuildFieldMapping", "BuildArrayIntersection",
        "first", "delete 7;Old", "GoFirst", "GetTotalCount",
        "NeedMore", "LoadRecord", "GetFieldValue Field1", "GetFieldValue Field2", "insert 1;Ada", "GoNext",
        "NeedMore", "first", "AfterImport", "idle"));
}

TEST_F(KvibaseRun, ControlsAreDisabledBeforeTheFirstRecordAndEnabledAfterTheLast)
{
    TTexts Seen;
    const auto Look = [&](TKvImportBaseComponent&) {
        Seen.push_back(Table.ControlsDisabled() ? "disabled" : "enabled");
    };
    Import.Rows = {{1, "Ada"}};
    Import.OnBeforeExecute = Import.OnBeforeUpdate = Import.OnAfterExecute = Look;
    Execute();
    EXPECT_THAT(Seen, ElementsAre("enabled", "disabled", "enabled"));
}

TEST_F(KvibaseRun, DestinationStandsOnItsFirstRecordInTheEnd)
{
    Execute();
    EXPECT_EQ(RecordText(Table), "1;Ada");
}

// --- The five modes ---------------------------------------------------------------------------------

struct TModeRow
{
    const char* Name;
    TImportMode Mode;
    const char* Counters;                           // imported/added/updated/deleted/errors
    TTexts Records;
};

std::string NameOfRow(const testing::TestParamInfo<TModeRow>& Info) { return Info.param.Name; }

struct KvibaseMode : KvibaseRun, testing::WithParamInterface<TModeRow>
{
};

TEST_P(KvibaseMode, DecidesWhatARecordDoes)
{
    Table.Fill({{2, "Two"}, {9, "Nine"}});
    Import.Mode = GetParam().Mode;
    Import.DatasetKeys = "ID";
    Execute();
    EXPECT_EQ(Counters(), GetParam().Counters);
    EXPECT_EQ(Records(), GetParam().Records);
    EXPECT_EQ(Import.Statistic.Result, irExecuted);
}

INSTANTIATE_TEST_SUITE_P(, KvibaseMode, testing::Values(
    TModeRow{"Append",       imAppend,       "3/3/0/0/0", {"2;Two", "9;Nine", "1;Ada", "2;Bob", "3;Cyd"}},
    TModeRow{"Update",       imUpdate,       "3/0/1/0/0", {"2;Bob", "9;Nine"}},
    TModeRow{"AppendUpdate", imAppendUpdate, "3/2/1/0/0", {"2;Bob", "9;Nine", "1;Ada", "3;Cyd"}},
    TModeRow{"Delete",       imDelete,       "3/0/0/1/0", {"9;Nine"}},
    TModeRow{"Copy",         imCopy,         "3/3/0/0/0", {"1;Ada", "2;Bob", "3;Cyd"}}), NameOfRow);

TEST_F(KvibaseRun, RecordsDeletedForACopyAreNotCounted)
{
    for (int I = 0; I < 10; ++I)
        Table.Fill({{I, "Old"}});
    Import.Mode = imCopy;
    Execute();
    EXPECT_EQ(Log.Of("delete").size(), 10u);
    EXPECT_EQ(Import.Statistic.TotalDeleted, 0);
}

TEST_F(KvibaseRun, UpdateOfAKeyThatIsNotThereWritesNothing)
{
    Import.Rows = {{5, "Eve"}};
    Import.Mode = imUpdate;
    Import.DatasetKeys = "ID";
    Execute();
    EXPECT_EQ(Counters(), "1/0/0/0/0");
    EXPECT_EQ(Import.Statistic.LastAction, iaUnknown);
    EXPECT_THAT(Records(), IsEmpty());
}

TEST_F(KvibaseRun, LastActionIsDecidedAfterOnBeforeUpdate)
{
    std::vector<TKvIAction> Seen;
    const auto Look = [&] { Seen.push_back(Import.Statistic.LastAction); };
    Import.Rows = {{1, "Ada"}, {2, "Bob"}};
    Table.Fill({{2, "Old"}});
    Import.Mode = imAppendUpdate;
    Import.DatasetKeys = "ID";
    Import.OnBeforeUpdate = [&](TKvImportBaseComponent&) { Look(); };
    Import.OnAfterRecordEvent = [&](TKvImportBaseComponent&, bool&) { Look(); };
    Execute();
    EXPECT_THAT(Seen, ElementsAre(iaUnknown, iaAdd, iaUnknown, iaUpdate));
}

TEST_F(KvibaseRun, OnBeforeUpdateSeesTheRecordThatWasFound)
{
    TTexts Seen;
    Table.Fill({{1, "One"}, {3, "Three"}});
    Import.Mode = imUpdate;
    Import.DatasetKeys = "ID";
    Import.Rows = {{3, "Cyd"}};
    Import.OnBeforeUpdate = [&](TKvImportBaseComponent&) { Seen.push_back(RecordText(Table)); };
    Execute();
    EXPECT_THAT(Seen, ElementsAre("3;Three"));
}

TEST_F(KvibaseRun, RecordThatOnBeforeUpdateBeginsIsWrittenAndNotCounted)
{
    Import.Rows = {{5, "Eve"}};
    Import.Mode = imUpdate;
    Import.DatasetKeys = "ID";
    Import.OnBeforeUpdate = [&](TKvImportBaseComponent&) { Table.Append(); };
    Execute();
    EXPECT_THAT(Records(), ElementsAre("5;Eve"));
    EXPECT_EQ(Counters(), "1/0/0/0/0");
}

// --- Keys -------------------------------------------------------------------------------------------

TEST_F(KvibaseRun, SeveralKeysAreLocatedTogether)
{
    Table.Fill({{1, "Ada"}, {2, "Ada"}, {2, "Bob"}});
    Import.Rows = {{2, "Bob"}};
    Import.Mode = imDelete;
    Import.DatasetKeys = "NAME;ID";
    Execute();
    EXPECT_THAT(Log.Of("locate"), ElementsAre("locate Bob;2"));
    EXPECT_THAT(Records(), ElementsAre("1;Ada", "2;Ada"));
}

TEST_F(KvibaseRun, KeysAreComparedWithTheirCase)
{
    Table.Fill({{1, "ada"}});
    Import.Rows = {{2, "ADA"}};
    Import.Mode = imDelete;
    Import.DatasetKeys = "NAME";
    Execute();
    EXPECT_THAT(Records(), ElementsAre("1;ada"));
}

TEST_F(KvibaseRun, KeyIsTheConvertedAndChangedValue)
{
    Table.Fill({{7, "Gil"}});
    Import.Rows = {{1, "Ada"}};
    Import.Mode = imUpdate;
    Import.DatasetKeys = "ID";
    Import.OnGetCellParams = [](TKvImportBaseComponent&, TField* Field, TVariant& Value) {
        if (Field->FieldName() == "ID")
            Value = 7;
    };
    Execute();
    EXPECT_THAT(Records(), ElementsAre("7;Ada"));
}

TEST_F(KvibaseRun, SourceKeyWithoutAValueFindsTheRecordWithoutOne)
{
    Table.Fill({{1, "Ada"}, {Null, "Bob"}});
    Import.Rows = {{"  ", "Eve"}};
    Import.Mode = imUpdate;
    Import.DatasetKeys = "ID";
    Execute();
    EXPECT_THAT(Records(), ElementsAre("1;Ada", ";Eve"));
}

TEST_F(KvibaseRun, WithoutMappedKeysNothingIsLocatedAndNothingFound)
{
    Table.Fill({{1, "Old"}});
    Import.Mode = imAppendUpdate;
    Import.DatasetKeys = "ID ; NAME";               // blanks around ";" make other names of both
    Execute();
    EXPECT_THAT(Log.Of("locate"), IsEmpty());
    EXPECT_EQ(Counters(), "3/3/0/0/0");
}

TEST_F(KvibaseRun, KeyFoundIsKeptFromTheRecordBeforeWhenKeysVanish)
{
    Table.Fill({{1, "Old"}});
    Import.Mode = imAppendUpdate;
    Import.DatasetKeys = "ID";
    Import.OnAfterRecordEvent = [&](TKvImportBaseComponent&, bool&) { Import.DatasetKeys.clear(); };
    Execute();
    EXPECT_THAT(Log.Of("locate"), ElementsAre("locate 1"));
    EXPECT_EQ(Counters(), "3/0/3/0/0");
    EXPECT_THAT(Records(), ElementsAre("3;Cyd"));
}

TEST_F(KvibaseRun, KeyFoundIsForgottenBetweenRuns)
{
    Table.Fill({{1, "Old"}});
    Import.Mode = imAppendUpdate;
    Import.DatasetKeys = "ID";
    Import.Rows = {{1, "Ada"}};
    Execute();
    Import.DatasetKeys = "UNKNOWN";                 // not mapped: nothing is located
    Execute();
    EXPECT_EQ(Counters(), "1/1/0/0/0");
}

TEST_F(KvibaseRun, KeyThatIsNotMappedLeavesTheOthersTooFewForLocate)
{
    Import.SetMappings({"ID=Field1"});
    Import.Mode = imUpdate;
    Import.DatasetKeys = "ID;NAME";
    Execute();
    EXPECT_EQ(Import.Statistic.Result, irFailed);
    EXPECT_EQ(Import.ErrorMessage(), "TMemoryDataSet: Locate needs 2 key values, not 1");
}

// --- Refused records --------------------------------------------------------------------------------

TEST_F(KvibaseRun, RefusedRecordIsReadAndNothingElse)
{
    Import.Mode = imAppendUpdate;
    Import.DatasetKeys = "ID";
    Import.Rows = {{1, "Ada"}};
    NoteEvents();
    Import.OnBeforeRecordEvent = [](TKvImportBaseComponent&, const std::string&, TVariant&, bool& Accept) {
        Accept = false;
    };
    Execute();
    EXPECT_EQ(Counters(), "1/0/0/0/0");
    EXPECT_FALSE(Log.Has("locate 1"));
    EXPECT_FALSE(Log.Has("OnBeforeUpdate"));
    EXPECT_TRUE(Log.Has("OnAfterRecordEvent"));
    EXPECT_TRUE(Log.Has("GoNext"));
}

// --- Values into fields -----------------------------------------------------------------------------

TEST_F(KvibaseRun, EmptyTextClearsTheField)
{
    Table.Fill({{1, "Ada"}});
    Import.Rows = {{1, " "}};
    Import.Mode = imUpdate;
    Import.DatasetKeys = "ID";
    Execute();
    Table.First();
    EXPECT_TRUE(Table.FieldByName("NAME").IsNull());
}

TEST_F(KvibaseRun, EmptyTextFromAHandlerClearsTheField)
{
    Import.Rows = {{1, "Ada"}};
    Import.OnGetCellParams = [](TKvImportBaseComponent&, TField* Field, TVariant& Value) {
        if (Field->FieldName() == "NAME")
            Value = "";
    };
    Execute();
    EXPECT_TRUE(Table.FieldByName("NAME").IsNull());
}

TEST_F(KvibaseRun, LargeIntegersPassAsText)
{
    Table.SetFieldDefs({{.Name = "ID", .DataType = ftLargeint}, {.Name = "NAME"}});
    Table.Open();
    Import.Rows = {{"9007199254740993", "2^53 + 1"},
                   {std::int64_t{-9007199254740993}, "integer"},
                   {3.0, "double"},
                   {TCurrency{70000}, "currency"}};
    Execute();
    EXPECT_THAT(Records(), ElementsAre("9007199254740993;2^53 + 1", "-9007199254740993;integer", "3;double",
                                       "7;currency"));
}

TEST_F(KvibaseRun, LargeIntegersTakeNoValueWhoseTextIsNoInteger)
{
    Table.SetFieldDefs({{.Name = "ID", .DataType = ftLargeint}, {.Name = "QTY", .DataType = ftInteger}});
    Table.Open();
    Import.SetMappings({"ID=Field1", "QTY=Field2"});
    Import.Rows = {{5, true}, {true, 5}};
    NoteEvents();
    Execute();
    EXPECT_THAT(Log.Of("OnErrorEvent"),
                ElementsAre("OnErrorEvent 'True' is not a valid integer value for field 'ID'"));
    EXPECT_THAT(Records(), ElementsAre("5;1"));
}

// --- Errors of a record -----------------------------------------------------------------------------

TEST_F(KvibaseRun, FailedPostWithoutAHandlerStaysCountedAsAdded)
{
    Log.Refuse("insert 2;Bob");
    Execute();
    EXPECT_EQ(Counters(), "3/3/0/0/1");
    EXPECT_THAT(Records(), ElementsAre("1;Ada", "3;Cyd"));
    EXPECT_EQ(Import.Statistic.Result, irExecuted);
}

TEST_F(KvibaseRun, FailedPostWithAHandlerIsNotCountedAsAdded)
{
    Log.Refuse("insert 2;Bob");
    IgnoreErrors();
    Execute();
    EXPECT_EQ(Counters(), "3/2/0/0/1");
    EXPECT_EQ(Import.Statistic.Result, irExecuted);
}

TEST_F(KvibaseRun, FailedAssignmentIsAnErrorOfTheRecordToo)
{
    Import.Rows[1] = {"two", "Bob"};
    NoteEvents();
    Execute();
    EXPECT_THAT(Log.Of("OnErrorEvent"),
                ElementsAre("OnErrorEvent 'two' is not a valid integer value for field 'ID'"));
    EXPECT_EQ(Counters(), "3/2/0/0/1");
    EXPECT_THAT(Records(), ElementsAre("1;Ada", "3;Cyd"));
}

TEST_F(KvibaseRun, FailedUpdateKeepsTheRecordAndIsNotCountedAsUpdated)
{
    Table.Fill({{2, "Old"}});
    Log.Refuse("update ID=2;NAME=Bob");
    Import.Mode = imAppendUpdate;
    Import.DatasetKeys = "ID";
    IgnoreErrors();
    Execute();
    EXPECT_EQ(Counters(), "3/2/0/0/1");
    EXPECT_THAT(Records(), ElementsAre("2;Old", "1;Ada", "3;Cyd"));
}

TEST_F(KvibaseRun, RecordIsCancelledBeforeTheHandlerSeesTheError)
{
    Log.Refuse("insert 2;Bob");
    TDataSetState State = dsInactive;
    int Errors = 0;
    Import.OnErrorEvent = [&](TKvImportBaseComponent&, const Exception&, bool& Abort) {
        State = Table.State();
        Errors = Import.Statistic.TotalErrors;
        EXPECT_FALSE(Abort);
        EXPECT_EQ(Counters(), "2/1/0/0/1");
    };
    Execute();
    EXPECT_EQ(State, dsBrowse);
    EXPECT_EQ(Errors, 1);
}

TEST_F(KvibaseRun, ErrorOfARecordThatWasNotCountedTakesNothingBack)
{
    Import.Rows = {{5, "Eve"}};
    Import.Mode = imUpdate;
    Import.DatasetKeys = "ID";
    Import.OnBeforeUpdate = [&](TKvImportBaseComponent&) { Table.Append(); };
    Log.Refuse("insert 5;Eve");
    IgnoreErrors();
    Execute();
    EXPECT_EQ(Counters(), "1/0/0/0/1");
}

TEST_F(KvibaseRun, RecordAfterAFailedOneStartsClean)
{
    Import.Rows = {{1, "far too long for it"}, {2, ""}};
    Execute();
    EXPECT_THAT(Records(), ElementsAre("2;"));
}

// --- Abort and Cancel -------------------------------------------------------------------------------

TEST_F(KvibaseRun, AbortAfterTheThirdRecordCancelsWithThreeRecordsWritten)
{
    Import.Rows.push_back({4, "Dan"});
    Import.Options = {soShowMessage};
    AbortAfterRecord(3);
    Execute();
    EXPECT_THAT(Records(), ElementsAre("1;Ada", "2;Bob", "3;Cyd"));
    EXPECT_EQ(Import.Statistic.Result, irCanceled);
    EXPECT_THAT(Log.Of("information"), ElementsAre(std::string("information ") + Canceled));
    EXPECT_EQ(Log.Count("GoNext"), 3);
    EXPECT_EQ(Log.Count("NeedMore"), 3);            // not asked once Abort was set
    EXPECT_TRUE(Log.Has("AfterImport"));
}

TEST_F(KvibaseRun, AbortAfterTheLastRecordCancelsToo)
{
    AbortAfterRecord(3);
    Execute();
    EXPECT_EQ(Import.Statistic.Result, irCanceled);
}

TEST_F(KvibaseRun, AbortOfOneRunDoesNotReachTheNext)
{
    AbortAfterRecord(1);
    Execute();
    Import.OnAfterRecordEvent = nullptr;
    Execute();
    EXPECT_EQ(Import.Statistic.Result, irExecuted);
    EXPECT_EQ(Import.Statistic.TotalImported, 3);
}

TEST_F(KvibaseRun, AbortFromOnErrorEventFailsTheRun)
{
    Log.Refuse("insert 2;Bob");
    Import.Options = {soShowMessage};
    NoteEvents();
    Import.OnErrorEvent = [](TKvImportBaseComponent&, const Exception&, bool& Abort) { Abort = true; };
    Execute();
    EXPECT_EQ(Import.Statistic.Result, irFailed);
    EXPECT_EQ(Import.ErrorMessage(), "insert 2;Bob refused");
    EXPECT_EQ(Counters(), "2/1/0/0/1");
    EXPECT_THAT(Log.Of("information"), ElementsAre(std::string("information ") + Failed));
    EXPECT_EQ(Log.Count("OnAfterRecordEvent"), 1);
    EXPECT_FALSE(Log.Has("AfterImport"));
    EXPECT_EQ(Table.State(), dsBrowse);
}

TEST_F(KvibaseRun, AfterRecordHandlerStartsWithAbortFalse)
{
    Log.Refuse("insert 1;Ada");
    IgnoreErrors();
    std::vector<bool> Given;
    Import.OnAfterRecordEvent = [&](TKvImportBaseComponent&, bool& Abort) { Given.push_back(Abort); };
    Execute();
    EXPECT_THAT(Given, ElementsAre(false, false, false));
}

TEST_F(KvibaseRun, CancelIsSeenBeforeTheSourceIsAskedForMore)
{
    Import.AnimatedStatus = true;
    Ui.OnShow = [&] { Ui.Cancelled = true; };       // first shown before the second record
    Execute();
    EXPECT_EQ(Log.Count("NeedMore"), 2);
    EXPECT_THAT(Records(), ElementsAre("1;Ada", "2;Bob"));
    EXPECT_EQ(Import.Statistic.Result, irCanceled);
    EXPECT_THAT(Log.Entries, Contains(std::string("show ") + Canceled + " 100/0/2/0/0"));
}

TEST_F(KvibaseRun, CancelBeforeTheFirstRecordReadsNone)
{
    Import.AnimatedStatus = true;
    Ui.Cancelled = true;
    Execute();
    EXPECT_EQ(Import.Statistic.TotalImported, 0);
    EXPECT_FALSE(Log.Has("NeedMore"));
    EXPECT_TRUE(Log.Has("AfterImport"));
    EXPECT_EQ(Import.Statistic.Result, irCanceled);
}

// --- Errors of the run ------------------------------------------------------------------------------

struct TBrokenCall
{
    const char* Name;
    const char* Call;
    bool ControlsStayDisabled;
};

std::string NameOfBroken(const testing::TestParamInfo<TBrokenCall>& Info) { return Info.param.Name; }

struct KvibaseBroken : KvibaseRun, testing::WithParamInterface<TBrokenCall>
{
};

TEST_P(KvibaseBroken, EndsTheRunAndReachesNobody)
{
    Table.Fill({{1, "Old"}});
    Import.Mode = imDelete;
    Import.DatasetKeys = "ID";
    Import.AnimatedStatus = true;
    NoteEvents();
    Log.Refuse(GetParam().Call);
    EXPECT_NO_THROW(Execute());

    EXPECT_EQ(Import.Statistic.Result, irFailed);
    EXPECT_EQ(Import.ErrorMessage(), std::string(GetParam().Call) + " refused");
    EXPECT_EQ(Table.ControlsDisabled(), GetParam().ControlsStayDisabled);
    EXPECT_EQ(Log.Entries.back(), "OnAfterExecute");
    EXPECT_EQ(*(Log.Entries.end() - 2), "idle");
    EXPECT_EQ(*(Log.Entries.end() - 3), "close");
    EXPECT_THAT(*(Log.Entries.end() - 4), testing::StartsWith(std::string("show ") + Failed + " 100/"));
    EXPECT_EQ(*(Log.Entries.end() - 5), GetParam().Call); // nothing was called after it
    EXPECT_EQ(Import.Statistic.TotalErrors, 0);
}

INSTANTIATE_TEST_SUITE_P(, KvibaseBroken, testing::Values(
    TBrokenCall{"BeforeImport",           "BeforeImport",           false},
    TBrokenCall{"BuildFieldMapping",      "BuildFieldMapping",      false},
    TBrokenCall{"BuildArrayIntersection", "BuildArrayIntersection", false},
    TBrokenCall{"GoFirst",                "GoFirst",                true},
    TBrokenCall{"GetTotalCount",          "GetTotalCount",          true},
    TBrokenCall{"ChangeOfTheDialog",      "range 0..3 at 0",        true},
    TBrokenCall{"NeedMore",               "NeedMore",               true},
    TBrokenCall{"LoadRecord",             "LoadRecord",             true},
    TBrokenCall{"GetFieldValue",          "GetFieldValue Field2",   true},
    TBrokenCall{"OnGetCellParams",        "OnGetCellParams ID 1",   true},
    TBrokenCall{"OnBeforeRecordEvent",    "OnBeforeRecordEvent",    true},
    TBrokenCall{"Locate",                 "locate 1",               true},
    TBrokenCall{"OnBeforeUpdate",         "OnBeforeUpdate",         true},
    TBrokenCall{"Delete",                 "delete 1;Old",           true},
    TBrokenCall{"OnAfterRecordEvent",     "OnAfterRecordEvent",     true},
    TBrokenCall{"GoNext",                 "GoNext",                 true},
    TBrokenCall{"First",                  "first",                  true},
    TBrokenCall{"AfterImport",            "AfterImport",            false}), NameOfBroken);

TEST_F(KvibaseRun, FailedAppendEndsTheRunUncounted)
{
    Import.OnBeforeUpdate = [&](TKvImportBaseComponent&) { Table.Close(); };
    IgnoreErrors();
    Execute();
    EXPECT_EQ(Import.Statistic.Result, irFailed);
    EXPECT_EQ(Import.ErrorMessage(), "TMemoryDataSet: cannot perform this operation on a closed dataset");
    EXPECT_EQ(Counters(), "1/0/0/0/0");
}

TEST_F(KvibaseRun, FailedEditEndsTheRunUncounted)
{
    Table.Fill({{1, "Old"}});
    Import.Mode = imUpdate;
    Import.DatasetKeys = "ID";
    Import.OnBeforeUpdate = [&](TKvImportBaseComponent&) { Table.Delete(); };
    IgnoreErrors();
    Execute();
    EXPECT_EQ(Import.Statistic.Result, irFailed);
    EXPECT_EQ(Import.ErrorMessage(), "TMemoryDataSet: no current record to edit");
    EXPECT_EQ(Counters(), "1/0/0/0/0");
}

TEST_F(KvibaseRun, ErrorRaisedByOnErrorEventEndsTheRun)
{
    Log.Refuse("insert 2;Bob");
    Import.OnErrorEvent = [](TKvImportBaseComponent&, const Exception&, bool&) {
        throw EConvertError("enough");
    };
    Execute();
    EXPECT_EQ(Import.Statistic.Result, irFailed);
    EXPECT_EQ(Import.ErrorMessage(), "enough");
}

TEST_F(KvibaseRun, ErrorsOutsideTheFamilyEndTheRunAndAreNoErrorsOfARecord)
{
    Import.OnBeforeUpdate = [](TKvImportBaseComponent&) { throw std::runtime_error("disk on fire"); };
    Execute();
    EXPECT_EQ(Import.Statistic.Result, irFailed);
    EXPECT_EQ(Import.ErrorMessage(), "disk on fire");
}

/// A destination that finds no memory for a record.
class TFullDataSet final : public TMemoryDataSet
{
protected:
    void InternalInsert(const TRecordBuffer&) override { throw std::bad_alloc(); }
};

TEST_F(KvibaseRun, ErrorsOutsideTheFamilyLeaveNoRecordHalfWritten)
{
    TFullDataSet Full;
    Full.SetFieldDefs({{.Name = "ID", .DataType = ftInteger}, {.Name = "NAME"}});
    Full.Open();
    Import.SetDataSet(&Full);
    Execute();
    EXPECT_EQ(Import.Statistic.Result, irFailed);
    EXPECT_EQ(Full.State(), dsBrowse);              // else the next Append would post it
}

TEST_F(KvibaseRun, WhateverIsThrownEndsTheRunAndReachesNobody)
{
    Import.OnBeforeUpdate = [](TKvImportBaseComponent&) { throw 7; };
    EXPECT_NO_THROW(Execute());
    EXPECT_EQ(Import.Statistic.Result, irFailed);
    EXPECT_EQ(Import.ErrorMessage(), "Unknown error");
}

TEST_F(KvibaseRun, ErrorMessageOfOneRunDoesNotReachTheNext)
{
    Import.OnBeforeUpdate = [](TKvImportBaseComponent&) { throw Exception("once"); };
    Execute();
    Import.OnBeforeUpdate = nullptr;
    Execute();
    EXPECT_EQ(Import.ErrorMessage(), "");
}

// --- Counters ---------------------------------------------------------------------------------------

TEST_F(KvibaseRun, CountersOfTheRunBeforeAreNotThoseOfOneThatCannotLoad)
{
    for (const auto* const Call : {"BeforeImport", "BuildFieldMapping", "GoFirst"}) {
        TTestRun Run;
        Run.Import.Rows = {{1, "Ada"}};
        Run.Execute();
        EXPECT_EQ(Run.Counters(), "1/1/0/0/0");
        Run.Log.Refuse(Call);
        Run.Execute();
        EXPECT_EQ(Run.Counters(), "0/0/0/0/0") << Call;
        EXPECT_EQ(Run.Import.Statistic.TotalCount, 0);
        EXPECT_EQ(Run.Import.Statistic.Result, irFailed);
    }
}

TEST_F(KvibaseRun, CountersOfABrokenRunStay)
{
    Log.Refuse("insert 2;Bob");
    Import.OnErrorEvent = [](TKvImportBaseComponent&, const Exception&, bool& Abort) { Abort = true; };
    Execute();
    EXPECT_EQ(Counters(), "2/1/0/0/1");
}

TEST_F(KvibaseRun, ResetKeepsUpdateStep)
{
    Import.Statistic.UpdateStep = 5;
    Execute();
    EXPECT_EQ(Import.Statistic.UpdateStep, 5);
}

TEST_F(KvibaseRun, ResultIsUnknownWhileItRuns)
{
    Execute();
    std::vector<TKvIResult> Seen;
    const auto Look = [&](TKvImportBaseComponent&) { Seen.push_back(Import.Statistic.Result); };
    Import.OnBeforeExecute = Import.OnAfterExecute = Look;
    Import.OnAfterRecordEvent = [&](TKvImportBaseComponent& Sender, bool& Abort) {
        Look(Sender);
        Abort = true;
    };
    Execute();
    EXPECT_THAT(Seen, ElementsAre(irUnknown, irUnknown, irCanceled));
}

struct TTotalRow
{
    const char* Name;
    int RowFirst, RowLast, TotalCount;
};

std::string NameOfTotal(const testing::TestParamInfo<TTotalRow>& Info) { return Info.param.Name; }

struct KvibaseTotal : KvibaseRun, testing::WithParamInterface<TTotalRow>
{
};

TEST_P(KvibaseTotal, IsClippedByTheRows)
{
    Import.RowFirst = GetParam().RowFirst;
    Import.RowLast = GetParam().RowLast;
    Import.AnimatedStatus = true;
    Execute();
    EXPECT_EQ(Import.Statistic.TotalCount, GetParam().TotalCount);
    EXPECT_THAT(Log.Of("range"), ElementsAre("range 0.." + std::to_string(GetParam().TotalCount) + " at 0"));
    EXPECT_EQ(Import.Statistic.TotalImported, 3);   // which records are read is the source's business
}

INSTANTIATE_TEST_SUITE_P(, KvibaseTotal, testing::Values(
    TTotalRow{"AllRows",             1, RowLastMax,  3},
    TTotalRow{"RowLastClips",        1, 2,           2},
    TTotalRow{"RowLastPastTheEnd",   1, 4,           3},
    TTotalRow{"RowFirstShortens",    2, RowLastMax,  2},
    TTotalRow{"OneRow",              2, 2,           1},
    TTotalRow{"RowFirstPastTheEnd",  9, RowLastMax, -5},
    TTotalRow{"RowLastBeforeFirst",  3, 1,          -1},
    TTotalRow{"RowFirstZero",        0, RowLastMax,  4}), NameOfTotal);

// --- The progress dialog ----------------------------------------------------------------------------

struct TRefreshRow
{
    int UpdateStep;
    TTexts Shown;                                   // records read before each refresh
};

struct KvibaseRefresh : KvibaseRun, testing::WithParamInterface<TRefreshRow>
{
};

TEST_P(KvibaseRefresh, ComesEveryUpdateStepRecords)
{
    Import.Rows.push_back({4, "Dan"});
    Import.Rows.push_back({5, "Eve"});
    Import.AnimatedStatus = true;
    Import.Statistic.UpdateStep = GetParam().UpdateStep;
    Execute();
    TTexts Shown;
    for (const auto& Entry : Log.Of("show Importing... "))
        Shown.push_back(Entry.substr(18, Entry.find('/') - 18));
    EXPECT_EQ(Shown, GetParam().Shown);
}

INSTANTIATE_TEST_SUITE_P(, KvibaseRefresh, testing::Values(
    TRefreshRow{1, {"1", "2", "3", "4"}},           // before every record but the first
    TRefreshRow{2, {"2", "4"}},
    TRefreshRow{3, {"3"}},
    TRefreshRow{100, {}},
    TRefreshRow{0, {"0", "1", "2", "3", "4"}}),
    [](const auto& Info) { return "UpdateStep" + std::to_string(Info.param.UpdateStep); });

TEST_F(KvibaseRun, RefreshShowsImportedErrorsAddedDeletedUpdated)
{
    Table.Fill({{1, "Old"}});
    Import.Rows = {{1, "Ada"}, {2, "Bob"}, {"x", "Cyd"}, {4, "Dan"}};
    Import.AnimatedStatus = true;
    Import.Mode = imAppendUpdate;
    Import.DatasetKeys = "ID";
    IgnoreErrors();
    Execute();
    EXPECT_THAT(Log.Of("show"), ElementsAre("show Importing... 1/0/0/0/1", "show Importing... 2/0/1/0/1",
                                            "show Importing... 3/1/1/0/1",
                                            std::string("show ") + Finished + " 100/1/2/0/1"));
}

TEST_F(KvibaseRun, DialogOpensWithTheTextsOfTheRun)
{
    Import.AnimatedStatus = true;
    Import.TitleStatus = "Orders";
    Execute();
    const auto& C = Ui.Captions;
    EXPECT_THAT((TTexts{C.Title, C.Status, C.Cancel, C.Processed, C.Errors, C.Added, C.Updated, C.Deleted}),
                ElementsAre("Orders", "Importing...", "&Cancel",
                            "Processed:", "Errors:", "Added:", "Updated:", "Deleted:"));
    EXPECT_FALSE(C.Extended);
    Import.Options = {soExtendedStatistic};
    Execute();
    EXPECT_TRUE(C.Extended);
}

TEST_F(KvibaseRun, DialogThatCannotOpenDoesNotStopTheRun)
{
    Import.AnimatedStatus = true;
    Log.Refuse("open Importing...");
    Execute();
    EXPECT_TRUE(Log.Has("error Can't create a process dialog"));
    EXPECT_EQ(Counters(), "3/3/0/0/0");
    EXPECT_EQ(Import.Statistic.Result, irExecuted);
}

// --- The message box --------------------------------------------------------------------------------

TEST_F(KvibaseRun, WithoutDialogAndOptionsNothingIsShown)
{
    Execute();
    EXPECT_THAT(Log.Entries, AllOf(Not(Contains(testing::StartsWith("open"))),
                                   Not(Contains(testing::StartsWith("information"))),
                                   Not(Contains(testing::StartsWith("range")))));
}

TEST_F(KvibaseRun, WithShowMessageTheOutcomeIsShownUnderTheBusyCursor)
{
    Import.Options = {soShowMessage};
    Execute();
    EXPECT_EQ(Log.Entries.back(), "idle");
    EXPECT_EQ(*(Log.Entries.end() - 2), std::string("information ") + Finished);
}

TEST_F(KvibaseRun, DialogTakesThePlaceOfTheMessageBox)
{
    Import.AnimatedStatus = true;
    Import.Options = {soShowMessage};
    Execute();
    EXPECT_THAT(Log.Of("information"), IsEmpty());
}

// --- One run after another --------------------------------------------------------------------------

TEST(KvibaseRunAgain, AnEmptyRunHasNoLastAction)
{
    TTestRun Run;
    Run.Import.Rows = {{1, "Ada"}};
    Run.Execute();
    EXPECT_EQ(Run.Import.Statistic.LastAction, iaAdd);
    Run.Import.Rows.clear();
    Run.Execute();
    EXPECT_EQ(Run.Import.Statistic.LastAction, iaUnknown);
}

TEST(KvibaseRunAgain, MayHaveAnotherNumberOfKeys)
{
    TTestRun Run;
    Run.Table.Close();
    Run.Table.SetFieldDefs({{.Name = "A"}, {.Name = "B"}, {.Name = "C"}, {.Name = "N"}});
    Run.Table.Open();
    Run.Table.Fill({{"1", "2", "3", ""}});
    Run.Import.SetMappings({"A=Field1", "B=Field2", "C=Field3", "N=Field4"});
    Run.Import.Mode = imUpdate;
    for (const char* const Keys : {"A;B", "A;B;C", "C", "A;B", "A;B;C"}) {
        Run.Import.DatasetKeys = Keys;
        Run.Import.Rows = {{"1", "2", "3", Keys}};
        Run.Execute();
        EXPECT_EQ(Run.Records(), std::vector<std::string>{std::string("1;2;3;") + Keys});
    }
}

} // namespace

} // namespace kv
