#include "KvJobFile.h"

#include <gmock/gmock.h>

#include "KvCodePage.h"
#include "KvJobTestShop.h"
#include "KvMemoryDataSet.h"
#include "KvSourceFactory.h"

namespace kv {

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

struct KvJobFile : testing::Test, TJobTestShop
{
    ~KvJobFile() override { SetAnsiCodePage("UTF-8"); }

    void Save()
    {
        TJobRun Run(Job, Observer);
        Run.Prepare();
        SaveJob(File, "Orders", Run.Source(), Run.Plan(), Job);
    }
    /// Runs the saved import under `Settings`, its source being `Csv` where one is given.
    TJobOutcome RunSaved(std::string_view Csv = {}, TJobSettings Settings = {})
    {
        if (!Csv.empty())
            Settings.Source.FileName = Folder.Write("next.csv", Csv);
        TJobFile Saved(File);
        Saved.Complete(Settings);
        TJobRun Run(Saved, Settings, Observer);
        Run.Prepare();
        Findings = Run.Findings();
        return Run.Execute();
    }
    std::vector<TJobFindingKind> Found() const
    {
        std::vector<TJobFindingKind> Kinds;
        for (const auto& Finding : Findings)
            Kinds.push_back(Finding.Kind);
        return Kinds;
    }

    const std::string File = Folder / "orders.kvi";
};

TEST_F(KvJobFile, WhatIsSavedRunsAsTheImportWould)
{
    Write("ID;CITY;AMOUNT\n1;Rom;1.234,50\n");
    Job.Formats.DecimalSeparator = ',';
    Save();
    const auto Outcome = RunSaved();
    EXPECT_EQ(Outcome.Result, joDone);
    EXPECT_EQ(Rows(), "1|Rom|1234.5");
    EXPECT_THAT(Found(), ElementsAre(jfSaved));
    EXPECT_TRUE(Findings[0].Given) << "the source is the one that it names";
}

TEST_F(KvJobFile, TheComponentAloneImportsTheSame)
{
    Write("ID;CITY\n1;Rom\n");
    Save();
    const auto Import = LoadImport(File);
    TMemoryDataSet Table;
    Table.SetFieldDefs(
        {{.Name = "ID", .DataType = ftInteger}, {.Name = "CITY", .DataType = ftString, .Size = 9}});
    Table.Open();
    Import->SetDataSet(&Table);
    Import->AnimatedStatus = false;
    Import->Options = {};
    Import->Execute();
    Table.First();
    EXPECT_EQ(Table.FieldByName("ID").AsString() + Table.FieldByName("CITY").AsString(), "1Rom");
}

TEST_F(KvJobFile, KeepsWhatAComponentHasNoPlaceFor)
{
    Write("ID;CITY\n1;ja\n");
    Job.Formats.BooleanTrue = "ja";
    Job.Formats.BooleanFalse = "";
    Job.Formats.OemCodePage = "850";
    Job.Run = {.Batch = 7, .StopAfter = 3, .StopShare = 0.5};
    Save();
    TJobSettings Settings;
    TJobFile(File).Complete(Settings);
    EXPECT_EQ(Settings.Formats.BooleanTrue, "ja");
    EXPECT_EQ(Settings.Formats.OemCodePage, "850");
    EXPECT_EQ(Settings.Destination.Url, Job.Destination.Url);
    EXPECT_EQ(Settings.Destination.Table, "orders");
    EXPECT_EQ(Settings.Run.Batch, 7);
    EXPECT_EQ(Settings.Run.StopAfter, 3);
    EXPECT_EQ(Settings.Run.StopShare, 0.5);
    EXPECT_TRUE(Settings.Formats.CheckThousands);
}

TEST_F(KvJobFile, WhatIsSaidWinsOverTheFile)
{
    Write("ID;CITY\n1;Rom\n");
    Job.Formats.BooleanTrue = "ja";
    Job.Run.Batch = 7;
    Save();
    TJobSettings Settings;
    Settings.Formats.BooleanTrue = "yes";
    Settings.Formats.DecimalSeparator = ',';
    Settings.Run.Batch = 2;
    Settings.Plan = {.Mode = imUpdate, .Keys = {"CITY"}};
    TJobFile(File).Complete(Settings);
    EXPECT_EQ(Settings.Formats.BooleanTrue, "yes");
    EXPECT_EQ(Settings.Formats.DecimalSeparator, ',');
    EXPECT_EQ(Settings.Run.Batch, 2);
    EXPECT_THAT(Settings.Plan.Keys, ElementsAre("CITY"));
}

TEST_F(KvJobFile, AnOlderFileHasNoSectionAndRunsAsBefore)
{
    Write("ID,CITY\n1,Rom\n");
    Save();
    auto Text = Folder.Read("orders.kvi");
    Folder.Write("orders.kvi", Text.substr(0, Text.find("[Job]")));
    TJobSettings Settings;
    Settings.Destination = Job.Destination;
    EXPECT_EQ(RunSaved("CITY,ID\n2,Oslo\n", Settings).Figures.Failed, 0);
    EXPECT_EQ(Rows(), "2|Oslo|") << "columns go by their positions";
}

// Columns that were found by name.

TEST_F(KvJobFile, AColumnThatHasMovedIsFollowed)
{
    Write("ID,CITY,AMOUNT\n1,Rom,1\n");
    Save();
    EXPECT_EQ(RunSaved("AMOUNT,New,city,ID\n2,x,Oslo,5\n").Result, joDone);
    EXPECT_EQ(Rows(), "5|Oslo|2");
    EXPECT_THAT(Found(), ElementsAre(jfSaved, jfColumnMoved, jfColumnMoved, jfColumnMoved));
    EXPECT_EQ(Findings[1].Value, "ID");
    EXPECT_EQ(Findings[1].Name, "Field4");
    EXPECT_EQ(Findings[1].Was, "Field1");
}

TEST_F(KvJobFile, AColumnThatIsGoneIsRefusedBeforeTheFirstRecord)
{
    Write("ID,CITY,AMOUNT\n1,Rom,1\n");
    Save();
    const auto Refused = RefusalOf([&] { RunSaved("ID,CITY\n2,Oslo\n"); });
    EXPECT_EQ(Refused.Kind, jfColumnGone);
    EXPECT_EQ(Refused.Value, "AMOUNT");
    EXPECT_EQ(Refused.Was, "AMOUNT");
    EXPECT_EQ(Refused.Number, 1);
}

TEST_F(KvJobFile, ATitleOfAMappingThatWasChangedSinceIsForgotten)
{
    Write("ID,CITY,AMOUNT\n1,Rom,1\n");
    Save();
    auto Text = Folder.Read("orders.kvi");
    Text.replace(Text.find("Map2=AMOUNT=Field3"), 18, "Map2=AMOUNT=Field1");
    Folder.Write("orders.kvi", Text);
    EXPECT_EQ(RunSaved("ID,CITY\n7,Oslo\n").Result, joDone);
    EXPECT_EQ(Rows(), "7|Oslo|7");
}

TEST_F(KvJobFile, OfSeveralColumnsWithOneTitleTheFirstIsMeantAsInAnImport)
{
    Write("ID,CITY\n1,Rom\n");
    Save();
    EXPECT_EQ(RunSaved("CITY,CITY,ID\nOslo,Bern,3\n").Result, joDone);
    EXPECT_EQ(Rows(), "3|Oslo|");
}

TEST_F(KvJobFile, AnAttributeThatLaterRecordsMayHaveIsNotGone)
{
    Job.Source.FileName = Folder.Write(
        "orders.xml", "<DATAPACKET><ROWDATA><ROW ID=\"1\" CITY=\"Rom\"/></ROWDATA></DATAPACKET>");
    Save();
    EXPECT_EQ(RunSaved("<DATAPACKET><ROWDATA><ROW ID=\"2\"/></ROWDATA></DATAPACKET>").Result, joDone);
    EXPECT_EQ(Rows(), "2||");
}

TEST_F(KvJobFile, ColumnsThatWereNamedByPositionStayThere)
{
    Write("1,Rom\n");
    Job.Plan.Mapping = jmByPosition;
    Save();
    EXPECT_THAT(Folder.Read("orders.kvi"), Not(HasSubstr("Title")));
    EXPECT_EQ(RunSaved("7,Oslo\n").Result, joDone);
    EXPECT_EQ(Rows(), "7|Oslo|");
}

// The checks of an import.

TEST_F(KvJobFile, ASavedImportChecksSeparatorsToo)
{
    Write("ID;CITY;AMOUNT\n1;Rom;1\n");
    Save();
    EXPECT_EQ(RefusalOf([&] { RunSaved("ID;CITY;AMOUNT\n1;Rom;1,5\n"); }).Kind, jfNotThousands);
    Job.Formats.ThousandSeparator = ',';
    Job.Formats.CheckThousands = false;
    Save();
    EXPECT_EQ(RunSaved("ID;CITY;AMOUNT\n1;Rom;1,5\n").Result, joDone) << "it was meant when it was saved";
}

TEST_F(KvJobFile, AHeaderAmongTheRecordsIsTold)
{
    Write("1,Rom\n");
    Job.Plan.Mapping = jmByPosition;
    Save();
    RunSaved("ID,CITY\n1,Rom\n");
    EXPECT_THAT(Found(), ElementsAre(jfSaved, jfLooksLikeHeader));
    EXPECT_FALSE(Findings[0].Given);
    EXPECT_EQ(Findings[0].Was, Folder / "orders.csv");
}

// Files.

TEST_F(KvJobFile, ASourceIsLookedForBesideTheFile)
{
    Write("ID,CITY\n1,Rom\n");
    Save();
    auto Text = Folder.Read("orders.kvi");
    Text.replace(Text.find(Job.Source.FileName), Job.Source.FileName.size(), "orders.csv");
    Folder.Write("orders.kvi", Text);
    EXPECT_EQ(RunSaved().Figures.Added, 1);
    std::filesystem::remove(Folder / "orders.csv");
    EXPECT_EQ(RefusalOf([&] { RunSaved(); }).Kind, jfSourceGone);
}

TEST_F(KvJobFile, AFileThatWasCutIsAnError)
{
    Write("ID,CITY\n1,Rom\n");
    Save();
    auto Text = Folder.Read("orders.kvi");
    Text.replace(Text.find("Count=2"), 7, "Count=9");
    Folder.Write("orders.kvi", Text);
    EXPECT_THROW(TJobFile Saved(File), Exception);
}

TEST_F(KvJobFile, AFileThatIsNoSavedImportIsLeftAlone)
{
    Write("ID,CITY\n1,Rom\n");
    Folder.Write("orders.kvi", "my diary\n");
    EXPECT_THROW(Save(), Exception);
    EXPECT_EQ(Folder.Read("orders.kvi"), "my diary\n");
}

TEST_F(KvJobFile, SavingAgainForgetsWhatIsNoLongerSo)
{
    Write("ID,CITY,AMOUNT\n1,Rom,1\n");
    Job.Formats.BooleanTrue = "ja";
    Save();
    Job.Formats.BooleanTrue.reset();
    Write("CITY\nRom\n");
    Save();
    TJobSettings Settings;
    const TJobFile Saved(File);
    Saved.Complete(Settings);
    EXPECT_THAT(Saved.Mappings(), ElementsAre("CITY=Field1"));
    EXPECT_EQ(Settings.Formats.BooleanTrue.value_or(""), "");
    EXPECT_THAT(Folder.Read("orders.kvi"), Not(HasSubstr("Title1=CITY")));
}

} // namespace

} // namespace kv
