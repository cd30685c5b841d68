// What the errors of a record know of it, beside their messages.
#include "KvTestRun.h"

#include "KvCodePage.h"

namespace kv {

namespace {

struct KvibaseErrors : testing::Test, TTestRun
{
    KvibaseErrors()
    {
        Import.Rows = {{1, "Ada"}, {2, "Bob"}, {3, "Cyd"}};
        Import.OnErrorEvent = [this](TKvImportBaseComponent&, const Exception& Error, bool&) {
            Told.push_back(Error.Facts);
        };
    }

    /// What the one error of a record knows.
    TKvErrorFacts FactsOfRecord()
    {
        Execute();
        EXPECT_EQ(Import.Statistic.Result, irExecuted) << Import.ErrorMessage();
        EXPECT_EQ(Told.size(), 1u);
        return Told.empty() ? TKvErrorFacts() : Told.front();
    }
    /// What the error knows that ended the run.
    TKvErrorFacts FactsOfRun()
    {
        Execute();
        EXPECT_EQ(Import.Statistic.Result, irFailed);
        return Import.Error().Facts;
    }

    std::vector<TKvErrorFacts> Told;
};

TEST_F(KvibaseErrors, OfAnAssignmentKnowFieldAndValue)
{
    Import.Rows[1][0] = "two";
    const auto Facts = FactsOfRecord();
    EXPECT_EQ(Facts.Record, 2);
    EXPECT_EQ(Facts.Field, "ID");
    EXPECT_EQ(Facts.Value, "two");
    EXPECT_EQ(Facts.Rule, erConversion);
    EXPECT_EQ(Facts.Place, "");                     // nor does the message tell it
}

TEST_F(KvibaseErrors, OfADayOutsideTheCalendarConcernTheRecordAlone)
{
    Import.Rows[1][0] = TDateTime{1e9};
    const auto Facts = FactsOfRecord();
    EXPECT_EQ(Facts.Record, 2);
    EXPECT_EQ(Facts.Field, "ID");
    EXPECT_EQ(Facts.Value, "") << "it has no text";
}

TEST_F(KvibaseErrors, OfKeysThatAreNamedTwiceAreThoseOfOne)
{
    Import.RunExtensions = {rxErrorsByRecord};
    Import.Mode = imAppendUpdate;
    Import.DatasetKeys = "ID;ID";
    Import.Rows[1][0] = "two";
    EXPECT_EQ(FactsOfRecord().Record, 2);
    EXPECT_EQ(Import.Statistic.TotalAdded, 2);
}

TEST_F(KvibaseErrors, OfAFieldThatCannotBeChangedKnowItsValueToo)
{
    Table.Close();
    Table.SetFieldDefs({{.Name = "ID", .DataType = ftInteger}, {.Name = "NAME", .ReadOnly = true}});
    Table.Open();
    Import.Rows.resize(1);
    const auto Facts = FactsOfRecord();
    EXPECT_EQ(Facts.Field, "NAME");
    EXPECT_EQ(Facts.Value, "Ada");
    EXPECT_EQ(Facts.Rule, erReadOnly);
}

TEST_F(KvibaseErrors, OfStoringKnowTheRecord)
{
    Log.Refuse("insert 3;Cyd");
    const auto Facts = FactsOfRecord();
    EXPECT_EQ(Facts.Record, 3);
    EXPECT_EQ(Facts.Field, "");
}

TEST_F(KvibaseErrors, OfReadingKnowTheFieldThatLacksItsValue)
{
    Import.TellsBadRecords = true;
    Import.Rows.resize(1);
    Log.Refuse("GetFieldValue Field2");
    const auto Facts = FactsOfRecord();
    EXPECT_EQ(Facts.Record, 1);
    EXPECT_EQ(Facts.Field, "NAME");
    EXPECT_EQ(Facts.Value, "");
}

TEST_F(KvibaseErrors, OfReadingWithoutAFieldKnowTheColumn)
{
    Import.SetMappings({"ID=Field1", "NOFIELD=Field2"});
    Log.Refuse("GetFieldValue Field2");
    EXPECT_EQ(FactsOfRun().Field, "Field2");
}

TEST_F(KvibaseErrors, ThatEndTheRunKnowTheRecord)
{
    Import.Mode = imUpdate;
    Import.DatasetKeys = "ID";
    Log.Refuse("locate 2");
    EXPECT_EQ(FactsOfRun().Record, 2);
}

TEST_F(KvibaseErrors, OfNoRecordKnowNone)
{
    Log.Refuse("GetTotalCount");
    EXPECT_EQ(FactsOfRun().Record, -1);
}

TEST_F(KvibaseErrors, KeepWhatTheyKnewBefore)
{
    Import.OnBeforeUpdate = [](TKvImportBaseComponent&) {
        throw EDatabaseError("late", {.Field = "OTHER", .Record = 17});
    };
    const auto Facts = FactsOfRun();
    EXPECT_EQ(Facts.Record, 17);
    EXPECT_EQ(Facts.Field, "OTHER");
}

/// Code pages as they were, at the end.
class TKnownPages
{
public:
    TKnownPages() = default;
    TKnownPages(const TKnownPages&) = delete;
    TKnownPages& operator=(const TKnownPages&) = delete;
    ~TKnownPages() { SetAnsiCodePage(Saved); }

private:
    const std::string Saved = AnsiCodePage();
};

TEST_F(KvibaseErrors, OfTheOemPageKnowTheTextAsItWas)
{
    const TKnownPages Pages;
    SetAnsiCodePage("windows-1252");
    Import.CharacterSet = csiASCII_MSDOS;
    Import.Rows = {{1, "\xE0"}};                    // a Greek letter
    const auto Facts = FactsOfRun();
    EXPECT_EQ(Facts.Field, "NAME");
    EXPECT_EQ(Facts.Value, "\xE0");
    EXPECT_EQ(Facts.Rule, erConversion);
}

} // namespace

} // namespace kv
