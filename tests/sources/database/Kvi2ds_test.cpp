#include "Kvi2ds.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "KvException.h"
#include "KvMemoryDataSet.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace kv {

namespace {

using TRows = std::vector<std::vector<TVariant>>;

void Fill(TMemoryDataSet& DataSet, std::vector<TFieldDef> Defs, const TRows& Rows)
{
    DataSet.SetFieldDefs(std::move(Defs));
    DataSet.Open();
    for (const auto& Row : Rows) {
        DataSet.Append();
        for (std::size_t I = 0; I < Row.size(); ++I)
            DataSet.Fields(static_cast<int>(I)).SetValue(Row[I]);
        DataSet.Post();
    }
    DataSet.First();
}

/// Copies NAME and QTY of three records into Name, Qty and Other.
class TCopy : public TKvImportFromDataSet
{
public:
    TCopy()
    {
        Fill(From, {{.Name = "NAME"}, {.Name = "QTY", .DataType = ftInteger}},
             {{"Ada", 3}, {"Bob", Null}, {"Cy", 5}});
        Fill(To, {{.Name = "Name"}, {.Name = "Qty", .DataType = ftInteger}, {.Name = "Other"}}, {});
        SetDataSet(&To);
        SetSourceDataset(&From);
        AnimatedStatus = false;
        Options = {};
    }

    std::vector<std::string> Run()
    {
        Execute();
        EXPECT_EQ(Statistic.Result, irExecuted) << ErrorMessage();
        std::vector<std::string> Rows;
        for (To.First(); !To.Eof(); To.Next())
            Rows.push_back(To.Fields(0).AsString() + "|" + To.Fields(1).AsString() + "|" +
                           To.Fields(2).AsString());
        return Rows;
    }

    using TKvImportFromDataSet::DetectAutoMapping;
    using TKvImportFromDataSet::RowFirst;
    using TKvImportFromDataSet::RowLast;

    TMemoryDataSet From, To;
};

template <class TAct> std::string MessageOf(TAct Act)
{
    try {
        Act();
    }
    catch (const Exception& Error) {
        return Error.Message;
    }
    return "";
}

std::string MessageOfExecute(TKvImportBaseComponent& Import)
{
    return MessageOf([&] { Import.Execute(); });
}

std::vector<std::string> LinesOf(const TStrings& Lines)
{
    return {Lines.begin(), Lines.end()};
}

} // namespace

TEST(Kvi2ds, CopiesEveryRecordInOrder)
{
    TCopy Copy;
    Copy.SetMappings({"Name=QTY", "Other=NAME"});
    EXPECT_THAT(Copy.Run(), ElementsAre("3||Ada", "||Bob", "5||Cy"));
    EXPECT_EQ(Copy.Statistic.TotalImported, 3);
    EXPECT_EQ(Copy.Statistic.TotalAdded, 3);
}

TEST(Kvi2ds, WithoutMappingsCopiesFieldsOfTheSameName)
{
    TCopy Copy;
    EXPECT_THAT(Copy.Run(), ElementsAre("Ada|3|", "Bob||", "Cy|5|"));
    EXPECT_TRUE(Copy.Mappings().IsEmpty());
}

TEST(Kvi2ds, ANullStaysNull)
{
    TCopy Copy;
    Copy.Run();
    Copy.To.First();
    Copy.To.Next();
    EXPECT_TRUE(Copy.To.Fields(1).IsNull());
}

TEST(Kvi2ds, SourceFieldsAreFoundWithoutRegardToCase)
{
    TCopy Copy;
    Copy.SetMappings({"Name=name", "Qty=Qty"});
    EXPECT_THAT(Copy.Run(), ElementsAre("Ada|3|", "Bob||", "Cy|5|"));
}

TEST(Kvi2ds, ANameThatTheSourceDoesNotHaveIsAConstant)
{
    TCopy Copy;
    Copy.SetMappings({"Name=NAME", "Other=Imported"});
    EXPECT_THAT(Copy.Run(), ElementsAre("Ada||Imported", "Bob||Imported", "Cy||Imported"));
}

TEST(Kvi2ds, AnEmptySourceGivesNoRecord)
{
    TCopy Copy;
    Copy.From.SetFieldDefs({{.Name = "NAME"}});
    EXPECT_THAT(Copy.Run(), IsEmpty());
    EXPECT_EQ(Copy.Statistic.TotalImported, 0);
}

TEST(Kvi2ds, BeginsWithTheFirstRecordWhereverTheCursorStands)
{
    TCopy Copy;
    Copy.From.Next();
    Copy.From.Next();
    EXPECT_EQ(Copy.Run().size(), 3u);
    EXPECT_EQ(Copy.Run().size(), 6u);
}

TEST(Kvi2ds, RowFirstAndRowLastOnlyShapeTheExpectedCount)
{
    TCopy Copy;
    Copy.RowFirst = 2;
    Copy.RowLast = 2;
    EXPECT_EQ(Copy.Run().size(), 3u);
    EXPECT_EQ(Copy.Statistic.TotalCount, 1);
}

TEST(Kvi2ds, ExpectsAsManyRecordsAsTheSourceReports)
{
    TCopy Copy;
    Copy.Run();
    EXPECT_EQ(Copy.Statistic.TotalCount, 3);
}

TEST(Kvi2ds, AClosedSourceIsOpenedAndStaysOpen)
{
    for (const bool Mapped : {true, false}) {
        TCopy Copy;
        if (Mapped)
            Copy.SetMappings({"Name=NAME"});
        Copy.From.Close();
        EXPECT_EQ(Copy.Run().size(), 3u);
        EXPECT_TRUE(Copy.From.Active());
        Copy.To.First();
        EXPECT_EQ(Copy.To.Fields(0).AsString(), "Ada");
    }
}

TEST(Kvi2ds, TheSourceMayHaveOtherFieldsInTheNextRun)
{
    TCopy Copy;
    Copy.SetMappings({"Name=NAME"});
    Copy.Run();
    Copy.Mode = imCopy;
    Copy.From.Close();
    Fill(Copy.From, {{.Name = "X"}, {.Name = "NAME"}}, {{"x", "Dee"}});
    EXPECT_THAT(Copy.Run(), ElementsAre("Dee||"));
}

TEST(Kvi2ds, DetectsMappingsByTheDestinationsNames)
{
    TCopy Copy;
    Copy.DetectAutoMapping();
    EXPECT_THAT(LinesOf(Copy.Mappings()), ElementsAre("Name=Name", "Qty=Qty"));
}

TEST(Kvi2ds, DetectsMappingsBesideThoseThatAreThere)
{
    TCopy Copy;
    Copy.DetectAutoMapping();
    Copy.DetectAutoMapping();
    EXPECT_THAT(LinesOf(Copy.Mappings()), ElementsAre("Name=Name", "Qty=Qty", "Name=Name", "Qty=Qty"));
}

TEST(Kvi2ds, RefusesToCopyATableOntoItself)
{
    TCopy Copy;
    Copy.SetDataSet(&Copy.From);
    for (const auto Mode : {imAppend, imCopy}) {
        Copy.Mode = Mode;
        Copy.Execute();
        EXPECT_EQ(Copy.Statistic.Result, irFailed);
        EXPECT_EQ(Copy.ErrorMessage(), "Source and destination are the same table");
        EXPECT_EQ(Copy.From.RecordCount(), 3);
    }
}

/// A dataset that says which table it shows.
class TNamedTable : public TMemoryDataSet
{
public:
    std::string TableIdentity() const override { return Identity; }
    std::string Identity;
};

TEST(Kvi2ds, RefusesToEmptyTheTableThatAnotherDatasetReads)
{
    TNamedTable From, To;
    Fill(From, {{.Name = "NAME"}}, {{"Ada"}});
    Fill(To, {{.Name = "NAME"}}, {{"Ada"}});
    From.Identity = To.Identity = "shop.db orders";
    TKvImportFromDataSet Copy;
    Copy.SetSourceDataset(&From);
    Copy.SetDataSet(&To);
    Copy.AnimatedStatus = false;
    Copy.Options = {};
    Copy.Mode = imCopy;
    Copy.Execute();
    EXPECT_EQ(Copy.ErrorMessage(), "Source and destination are the same table");
    EXPECT_EQ(To.RecordCount(), 1);
    Copy.Mode = imAppend;                           // is as good as any other
    Copy.Execute();
    EXPECT_EQ(To.RecordCount(), 2);
    From.Identity = To.Identity = "";
    Copy.Mode = imCopy;
    Copy.Execute();
    EXPECT_EQ(Copy.Statistic.Result, irExecuted);
}

TEST(Kvi2ds, TextOfRecordsReachesTheDestinationAsItWas)
{
    TCopy Copy;
    const std::string Long(100, 'x');
    Copy.From.Close();
    Fill(Copy.From, {{.Name = "NAME"}}, {{Long}, {"short"}, {Long + "y"}});
    EXPECT_THAT(Copy.Run(), ElementsAre(Long + "||", "short||", Long + "y||"));
}

TEST(Kvi2ds, AHandlerMayMoveTheSourceWithoutHarmToTheRecord)
{
    TCopy Copy;
    const std::string Long(100, 'x');
    Copy.From.Close();
    Fill(Copy.From, {{.Name = "NAME"}}, {{Long}, {"short"}});
    Copy.OnBeforeUpdate = [&](TKvImportBaseComponent&) {
        Copy.From.Edit();
        Copy.From.Fields(0).SetValue("changed by a handler, to another text that is long enough");
        Copy.From.Post();
    };
    EXPECT_THAT(Copy.Run(), ElementsAre(Long + "||", "short||"));
}

TEST(Kvi2ds, UpdatesRecordsWithTheSameKey)
{
    TCopy Copy;
    Copy.Run();
    Copy.From.First();
    Copy.From.Edit();
    Copy.From.Fields(1).SetValue(30);
    Copy.From.Post();
    Copy.Mode = imAppendUpdate;
    Copy.DatasetKeys = "Name";
    Copy.SetMappings({"Name=NAME", "Qty=QTY"});
    EXPECT_THAT(Copy.Run(), ElementsAre("Ada|30|", "Bob||", "Cy|5|"));
    EXPECT_EQ(Copy.Statistic.TotalUpdated, 3);
}

TEST(Kvi2ds, RefusesToRunWithoutASource)
{
    TCopy Copy;
    Copy.SetSourceDataset(nullptr);
    EXPECT_EQ(MessageOfExecute(Copy), "Property SourceDataset wasn't specified.");
    Copy.SetDataSet(nullptr);
    EXPECT_EQ(MessageOfExecute(Copy), "Property DataSet wasn't specified.");
}

TEST(Kvi2ds, ForgetsASourceThatIsDestroyed)
{
    TCopy Copy;
    {
        TMemoryDataSet Other;
        Copy.SetSourceDataset(&Other);
    }
    EXPECT_EQ(Copy.GetSourceDataset(), nullptr);
}

TEST(Kvi2ds, ASourceMayOutliveTheImport)
{
    TMemoryDataSet Other;
    {
        TCopy Copy;
        Copy.SetSourceDataset(&Other);
    }
    EXPECT_FALSE(Other.Active());
}

TEST(Kvi2ds, PublishesTheSource)
{
    TCopy Copy;
    const auto Properties = Copy.PublishedProperties();
    EXPECT_EQ(Properties.back().Name, "SourceDataset");
    EXPECT_EQ(Properties.back().Kind, pkObject);
    EXPECT_EQ(Properties.back().GetObject(Copy), &Copy.From);
}

// A look.

/// A source whose records have a key.
class TKeyed : public TMemoryDataSet
{
public:
    std::string KeyFields() override { return "NAME"; }
};

std::vector<std::string> RowsIn(const TKvISourceView& View)
{
    std::vector<std::string> Rows;
    for (const auto& Row : View.Rows) {
        Rows.push_back(Row.Position.Text());
        for (const auto& Value : Row.Values)
            Rows.back() += "|" + Value.Value.ToText();
    }
    return Rows;
}

TEST(Kvi2dsLook, ShowsFieldsAndRecords)
{
    TCopy Copy;
    const auto View = Copy.Look({.Rows = 2});
    ASSERT_EQ(View.Columns.size(), 2U);
    EXPECT_EQ(View.Columns[0].Name, "NAME");
    EXPECT_EQ(View.Columns[0].Title, "NAME");
    EXPECT_EQ(View.Columns[0].DataType, ftString);
    EXPECT_EQ(View.Columns[1].DataType, ftInteger);
    EXPECT_THAT(RowsIn(View), ElementsAre("record 1|Ada|3", "record 2|Bob|"));
    EXPECT_TRUE(View.HasMore);
    const auto Named = Copy.Look({.Rows = 1, .Columns = {"qty", "Imported"}});
    EXPECT_THAT(RowsIn(Named), ElementsAre("record 1|3|Imported"));
}

TEST(Kvi2dsLook, LeavesTheCursorWhereItStoodWhenTheSourceHasAKey)
{
    TCopy Copy;
    TKeyed Keyed;
    Fill(Keyed, {{.Name = "NAME"}}, {{"Ada"}, {"Bob"}, {"Cy"}});
    Keyed.Next();
    Copy.SetSourceDataset(&Keyed);
    EXPECT_EQ(Copy.Look({}).Rows.size(), 3U);
    EXPECT_EQ(Keyed.Fields(0).AsString(), "Bob");
}

TEST(Kvi2dsLook, LeavesTheCursorOnTheFirstRecordOtherwise)
{
    TCopy Copy;
    Copy.From.Next();
    Copy.Look({});
    EXPECT_EQ(Copy.From.Fields(0).AsString(), "Ada");
}

TEST(Kvi2dsLook, ControlsAreToldOnceThatItIsOver)
{
    TCopy Copy;
    int Told = 0;
    const auto Handle = Copy.From.AddDataChangeHandler([&Told] { ++Told; });
    Copy.Look({});
    EXPECT_EQ(Told, 1);
    EXPECT_FALSE(Copy.From.ControlsDisabled());
}

TEST(Kvi2dsLook, AClosedSourceIsOpenedAndStaysOpen)
{
    TCopy Copy;
    Copy.From.Close();
    EXPECT_EQ(Copy.Look({}).Rows.size(), 3U);
    EXPECT_TRUE(Copy.From.Active());
}

TEST(Kvi2dsLook, StoresNothingThatIsBeingWritten)
{
    TCopy Copy;
    Copy.From.Edit();
    Copy.From.Fields(0).SetValue("changed");
    EXPECT_EQ(MessageOf([&] { Copy.Look({}); }),
              "A record of the source is being written; it has to be stored or dropped first");
    EXPECT_EQ(Copy.From.State(), dsEdit);
    EXPECT_FALSE(Copy.From.ControlsDisabled());
}

TEST(Kvi2dsLook, NeedsASource)
{
    TCopy Copy;
    Copy.SetSourceDataset(nullptr);
    EXPECT_EQ(MessageOf([&] { Copy.Look({}); }), "Property SourceDataset wasn't specified.");
}

TEST(Kvi2dsLook, TheRecordOfASourceIsTheValuesOfItsFields)
{
    TCopy Copy;
    std::vector<TVariant> Records;
    Copy.OnAfterRecordEvent = [&](TKvImportBaseComponent& Sender, bool&) {
        Records.push_back(Sender.SourceRecord());
    };
    Copy.Run();
    ASSERT_EQ(Records.size(), 3U);
    EXPECT_EQ(Records[0][0].ToText(), "Ada");
    EXPECT_EQ(Records[0][1].Kind(), vkInteger);
    EXPECT_TRUE(Records[1][1].IsNull());
    EXPECT_TRUE(Copy.SourceRecord().IsNull()) << "after the run";
}

TEST(Kvi2ds, AFailingSourceFailsTheRun)
{
    class TBroken : public TMemoryDataSet
    {
        void InternalOpen() override { throw EDatabaseError("the server is gone"); }
    };
    TCopy Copy;
    TBroken Broken;
    Copy.SetSourceDataset(&Broken);
    Copy.SetMappings({"Name=NAME"});
    Copy.Execute();
    EXPECT_EQ(Copy.Statistic.Result, irFailed);
    EXPECT_EQ(Copy.ErrorMessage(), "the server is gone");
}

} // namespace kv
