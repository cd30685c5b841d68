// Looking at a source without importing.
#include "KvTestRun.h"

#include "KvCodePage.h"

namespace kv {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using TTexts = std::vector<std::string>;

struct KvibaseLook : testing::Test, TTestRun
{
    KvibaseLook()
    {
        Import.Rows = {{1, "Ada"}, {2, "Bob"}, {3, "Cyd"}};
        Import.Columns = {{.Name = "Field1", .Title = "ID"}, {.Name = "Field2", .Title = "NAME"}};
    }

    TKvISourceView Look(const TKvISourceLook& What = {})
    {
        Log.Clear();
        return Import.Look(What);
    }
    /// The message of what a look raises.
    std::string Raised(const TKvISourceLook& What = {})
    {
        try {
            Look(What);
        }
        catch (const Exception& Error) {
            return Error.Message;
        }
        return {};
    }
};

/// The values of a row, separated by "|"; what cannot be read as "!" and the reason.
std::string TextOf(const TKvISourceRow& Row)
{
    std::string Result;
    for (const auto& [Value, Error] : Row.Values)
        Result += (Result.empty() ? "" : "|") + (Error.empty() ? Value.ToText() : "!" + Error);
    return Result;
}

TTexts TextsOf(const TKvISourceView& View)
{
    TTexts Result;
    for (const auto& Row : View.Rows)
        Result.push_back(TextOf(Row));
    return Result;
}

TTexts NamesOf(const TKvISourceView& View)
{
    TTexts Result;
    for (const auto& Column : View.Columns)
        Result.push_back(Column.Name);
    return Result;
}

// --- Order ------------------------------------------------------------------------------------------

TEST_F(KvibaseLook, CallsComeInTheirOrderAndNothingElseHappens)
{
    Import.Rows.resize(2);
    Import.AnimatedStatus = true;
    Import.Options = {soShowMessage};
    NoteEvents();
    Look({.Rows = 5, .HeaderRow = 1});
    EXPECT_THAT(Log.Entries, ElementsAre(
        "BeforeLook 5", "BeforeImport", "SourceColumns 1", "GoFirst",
        "NeedMore", "LoadRecord", "GetFieldValue Field1", "GetFieldValue Field2", "GoNext",
        "NeedMore", "LoadRecord", "GetFieldValue Field1", "GetFieldValue Field2", "GoNext",
        "NeedMore", "AfterLook", "AfterImport"));
}

TEST_F(KvibaseLook, NeedsNoDestinationAndNoKeys)
{
    Import.SetDataSet(nullptr);
    Import.Mode = imUpdate;
    EXPECT_THAT(TextsOf(Look()), ElementsAre("1|Ada", "2|Bob", "3|Cyd"));
}

TEST_F(KvibaseLook, CountsNothingAndChangesNothing)
{
    Execute();
    Import.SetMappings({});
    Look({.Rows = 1});
    EXPECT_EQ(Counters(), "3/3/0/0/0");
    EXPECT_EQ(Import.Statistic.Result, irExecuted);
    EXPECT_TRUE(Import.Mappings().IsEmpty());
    EXPECT_FALSE(Import.IsLooking());
}

TEST_F(KvibaseLook, BetweenTwoRunsLeavesTheSecondAsTheFirst)
{
    Execute();
    Look({.Rows = 2, .Columns = {"Field2"}});
    Execute();
    EXPECT_EQ(Counters(), "3/3/0/0/0");
    EXPECT_EQ(Records().size(), 6u);
}

// --- Columns and rows -------------------------------------------------------------------------------

TEST_F(KvibaseLook, ShowsTheColumnsOfTheSourceAndItsFirstRows)
{
    const auto View = Look({.Rows = 2});
    EXPECT_THAT(NamesOf(View), ElementsAre("Field1", "Field2"));
    EXPECT_EQ(View.Columns[1].Title, "NAME");
    EXPECT_THAT(TextsOf(View), ElementsAre("1|Ada", "2|Bob"));
    EXPECT_EQ(View.Rows[0].Values[0].Value.Kind(), vkInteger);
    EXPECT_TRUE(View.HasMore);
}

TEST_F(KvibaseLook, SaysWhetherThereAreMoreRows)
{
    EXPECT_FALSE(Look({.Rows = 3}).HasMore);
    EXPECT_FALSE(Look({.Rows = 4}).HasMore);
    EXPECT_TRUE(Look({.Rows = 0}).HasMore);
    Import.Rows.clear();
    EXPECT_FALSE(Look({.Rows = 0}).HasMore);
    EXPECT_THAT(Look().Rows, IsEmpty());
}

TEST_F(KvibaseLook, ShowsTheColumnsAskedForAndNoOthers)
{
    Import.RowsWiden = true;
    const auto View = Look({.Columns = {"Field2", "constant"}});
    EXPECT_THAT(NamesOf(View), ElementsAre("Field2", "constant"));
    EXPECT_THAT(TextsOf(View), ElementsAre("Ada|constant", "Bob|constant", "Cyd|constant"));
    EXPECT_THAT(Log.Of("SourceColumns"), IsEmpty());
}

TEST_F(KvibaseLook, RowsThatHoldMoreThanTheHeaderAddColumns)
{
    Import.RowsWiden = true;
    Import.Rows = {{1}, {2, "Bob", "x", "y"}, {3, "Cyd"}};
    const auto View = Look();
    EXPECT_THAT(NamesOf(View), ElementsAre("Field1", "Field2", "Field3", "Field4"));
    EXPECT_THAT(TextsOf(View), ElementsAre("1", "2|Bob|x|y", "3|Cyd"));
}

/// A source whose columns are found by the place of their name in the mappings.
class TPlacedImport final : public TKvImportBaseComponent
{
protected:
    std::vector<TKvISourceColumn> SourceColumns(int) override { return {{.Name = "A"}}; }
    int RecordWidth() const override { return 3; }
    bool NeedMore() override { return !Done; }
    void GoNext() override { Done = true; }
    TVariant GetFieldValue(const TVariant& Source) override { return GetFieldItem(Source.Text()); }

private:
    bool Done = false;
};

TEST_F(KvibaseLook, ColumnsHaveTheirPlacesInTheMappings)
{
    TPlacedImport Placed;
    EXPECT_THAT(TextsOf(Placed.Look({})), ElementsAre("0|1|2"));
}

TEST_F(KvibaseLook, RowsKnowWhereTheyStand)
{
    Execute();
    const auto View = Look({.Rows = 2});
    EXPECT_EQ(View.Rows[0].Position.Text(), "record 1");
    EXPECT_EQ(View.Rows[1].Position.Text(), "record 2");
    EXPECT_EQ(Import.RecordPlace(), "record 3");    // of the run
}

TEST_F(KvibaseLook, ValuesAreOwned)
{
    const auto View = Look();
    Import.Rows.clear();
    EXPECT_THAT(TextsOf(View), ElementsAre("1|Ada", "2|Bob", "3|Cyd"));
}

TEST_F(KvibaseLook, TextOfTheOemPageIsShownAsARunReadsIt)
{
    Import.CharacterSet = csiASCII_MSDOS;
    Import.Columns.push_back({.Name = "Field3", .DataType = ftBlob});
    Import.Rows = {{1, "\x84", "\x84"}};
    EXPECT_EQ(TextOf(Look().Rows[0]), "1|" + OemToAnsi("\x84") + "|\x84"); // bytes are no text
    EXPECT_NE(OemToAnsi("\x84"), "\x84");
}

// --- Errors -----------------------------------------------------------------------------------------

TEST_F(KvibaseLook, AValueThatCannotBeReadShowsItsReason)
{
    Log.Refuse("GetFieldValue Field2");
    const auto View = Look({.Rows = 2});
    EXPECT_THAT(TextsOf(View),
                ElementsAre("1|!GetFieldValue Field2 refused", "2|!GetFieldValue Field2 refused"));
    EXPECT_TRUE(View.Rows[0].Values[1].Value.IsNull());
}

TEST_F(KvibaseLook, ARecordThatCannotBeLoadedShowsItsReasonInEachValue)
{
    Log.Refuse("LoadRecord");
    EXPECT_THAT(TextsOf(Look({.Rows = 1})), ElementsAre("!LoadRecord refused|!LoadRecord refused"));
}

TEST_F(KvibaseLook, ARecordThatASourceTellsAsBadIsNoErrorOfTheRun)
{
    Import.TellsBadRecords = true;
    NoteEvents();
    Log.Refuse("LoadRecord");
    const auto View = Look({.Rows = 1});
    EXPECT_THAT(TextsOf(View), ElementsAre("!LoadRecord refused|!LoadRecord refused"));
    EXPECT_EQ(View.Rows[0].Position.Number, 1);
    EXPECT_THAT(Log.Of("OnErrorEvent"), IsEmpty());
    EXPECT_EQ(Import.Statistic.TotalErrors, 0);
}

TEST_F(KvibaseLook, WhatIsNoMatterOfAValueIsRaisedAndTheSourceClosed)
{
    for (const auto* const Call :
         {"BeforeLook 20", "BeforeImport", "SourceColumns 0", "GoFirst", "NeedMore", "GoNext"}) {
        SCOPED_TRACE(Call);
        TTestRun Run;
        Run.Import.Rows = {{1, "Ada"}};
        Run.Log.Refuse(Call);
        EXPECT_THROW(Run.Import.Look({}), EDatabaseError);
        EXPECT_EQ(Run.Log.Entries.back(), "AfterImport");
        EXPECT_EQ(Run.Log.Count("AfterLook"), 1);
        EXPECT_FALSE(Run.Import.IsLooking());
        Run.Execute();
        EXPECT_FALSE(Run.Log.Has("AfterLook"));
    }
}

TEST_F(KvibaseLook, AnErrorOfClosingIsRaisedUnlessAnotherCameFirst)
{
    Log.Refuse("AfterLook");
    EXPECT_EQ(Raised(), "AfterLook refused");
    EXPECT_FALSE(Import.IsLooking());
    Log.Refuse("GoFirst");
    EXPECT_EQ(Raised(), "GoFirst refused");
}

TEST_F(KvibaseLook, AComponentWithoutPartsHasNoneToSelect)
{
    EXPECT_THAT(Import.SourceParts(), IsEmpty());
    EXPECT_THAT(Import.SourceRemarks(), IsEmpty());
    std::string Message;
    try {
        Import.SelectPart(0, {.Name = "Sheet1"});
    }
    catch (const Exception& Error) {
        Message = Error.Message;
    }
    EXPECT_EQ(Message, "TScriptedImport has no parts such as 'Sheet1'");
}

// --- Cancel -----------------------------------------------------------------------------------------

/// Says no once it was asked so many times, and yes again later.
class TFickleObserver final : public TKvIRunObserver
{
public:
    explicit TFickleObserver(int AskedBefore) : Asked(AskedBefore) {}
    bool KeepsRunning() override { return Asked-- != 0; }

private:
    int Asked;
};

TEST_F(KvibaseLook, ThatIsCancelledIsNoEmptySource)
{
    TFickleObserver Observer(1);
    Import.SetObserver(&Observer);
    Import.Polls = 3;
    EXPECT_EQ(Raised(), "Looking at the source was canceled by user.");
    EXPECT_EQ(Log.Entries.back(), "AfterImport");
    EXPECT_THAT(TextsOf(Look()), ElementsAre("1|Ada", "2|Bob", "3|Cyd")); // what was said is forgotten
}

TEST_F(KvibaseLook, SaysByItsRuleThatItWasCancelled)
{
    TFickleObserver Observer(0);
    Import.SetObserver(&Observer);
    try {
        Look();
        FAIL();
    }
    catch (const Exception& Error) {
        EXPECT_EQ(Error.Facts.Rule, erCancelled);
    }
}

// --- One thing at a time ----------------------------------------------------------------------------

TEST_F(KvibaseLook, InsideARunIsRefusedAndFailsIt)
{
    Import.OnBeforeUpdate = [&](TKvImportBaseComponent& Sender) { Sender.Look({}); };
    Execute();
    EXPECT_EQ(Import.Statistic.Result, irFailed);
    EXPECT_EQ(Import.ErrorMessage(), "TScriptedImport: Look cannot be called before its run has ended");
}

/// A program whose user starts something while messages are let run.
class TRestlessObserver final : public TKvIRunObserver
{
public:
    explicit TRestlessObserver(std::function<void()> Act) : Does(std::move(Act)) {}
    bool KeepsRunning() override
    {
        Does();
        return true;
    }

private:
    std::function<void()> Does;
};

TEST_F(KvibaseLook, LetsNeitherARunNorAnotherLookIn)
{
    TRestlessObserver Runs([&] { Import.Execute(); }), Looks([&] { Import.Look({}); });
    Import.SetObserver(&Runs);
    EXPECT_EQ(Raised(), "TScriptedImport: Execute cannot be called before its look at the source has ended");
    Import.SetObserver(&Looks);
    EXPECT_EQ(Raised(), "TScriptedImport: Look cannot be called before its look at the source has ended");
    Import.SetObserver(nullptr);
    EXPECT_EQ(Raised(), "");
}

} // namespace

} // namespace kv
