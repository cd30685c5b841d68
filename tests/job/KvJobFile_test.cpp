#include "KvJobFile.h"

#include <gmock/gmock.h>

#include <filesystem>

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

TEST_F(KvJobFile, AColumnThatALineFoundByItsTitleIsFollowed)
{
    Write("Nr,Ort,Betrag\n1,Rom,1\n");
    Job.Plan = {.Mapping = jmByLines, .Lines = {"ID=Nr", "CITY=Ort", "AMOUNT=Field3"}};
    Save();
    EXPECT_EQ(RunSaved("Ort,Nr,Sum\nOslo,2,5\n").Result, joDone);
    EXPECT_EQ(Rows(), "2|Oslo|5") << "the third column is meant whatever it is called";
    EXPECT_EQ(RefusalOf([&] { RunSaved("Stadt,Nr,Sum\nOslo,2,5\n"); }).Kind, jfColumnGone);
}

TEST_F(KvJobFile, AFileWithFewerColumnsThanAreMappedIsRefused)
{
    Write("ID,CITY,AMOUNT\n1,Rom,1\n");
    Save();
    auto Text = Folder.Read("orders.kvi");
    Folder.Write("orders.kvi", Text.substr(0, Text.find("[Job]")));
    TJobSettings Settings;
    Settings.Destination = Job.Destination;
    const auto Refused = RefusalOf([&] { RunSaved("ID,CITY\n1,Rom\n", Settings); });
    EXPECT_EQ(Refused.Kind, jfColumnMissing) << "it would empty a field of every record";
    EXPECT_EQ(Refused.Value, "Field3");
}

TEST_F(KvJobFile, ALineOfTheFileMeansWhatItMeansToTheComponent)
{
    Write("1,Rom\n");
    Folder.Write("orders.kvi", "[Common]\nTableType=Text\nSourceFileName=orders.csv\n[Mappings]\nCount=2\n"
                               "Map0=ID=batch1\nMap1=CITY=May\n[Text]\nFieldDelimiter=2C\n");
    TJobSettings Settings;
    Settings.Destination = Job.Destination;
    EXPECT_EQ(RunSaved({}, Settings).Result, joDone);
    EXPECT_EQ(Rows(), "1|May|");
}

TEST_F(KvJobFile, WithoutMappingsEveryCheckHolds)
{
    Write("ID,CITY,AMOUNT\n1,Rom,1\n");
    Folder.Write("orders.kvi", "[Common]\nTableType=Text\nSourceFileName=orders.csv\nMode=2\n"
                               "DatasetKeys=IDD\n[Text]\nFieldDelimiter=2C\nRowFirst=2\n");
    TJobSettings Settings;
    Settings.Destination = Job.Destination;
    Settings.Plan.Mode = imAppendUpdate;
    EXPECT_EQ(RefusalOf([&] { RunSaved({}, Settings); }).Kind, jfNoSuchField) << "a key that is misspelt";
    Settings.Plan.Mode = imAppend;
    EXPECT_EQ(RefusalOf([&] { RunSaved("ID,CITY,AMOUNT\n1,Rom,\"1,5\"\n", Settings); }).Kind,
              jfNotThousands);
    EXPECT_EQ(RefusalOf([&] { RunSaved("A,B\n1,Rom\n", Settings); }).Kind, jfNoColumns);
    EXPECT_EQ(RunSaved({}, Settings).Result, joDone);
    EXPECT_EQ(Rows(), "1|Rom|1");
}

TEST_F(KvJobFile, AConstantIsSavedAsALine)
{
    Write("ID\n1\n");
    Job.Plan.Constants = {"CITY=Rom"};
    Save();
    EXPECT_EQ(RunSaved("x,ID\n9,2\n").Result, joDone);
    EXPECT_EQ(Rows(), "2|Rom|");
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
    EXPECT_EQ(RunSaved("ID;CITY;AMOUNT\n1;Rom;1,500\n").Result, joDone) << "it was meant when it was saved";
    EXPECT_EQ(RunSaved("ID;CITY;AMOUNT\n2;Rom;1,5\n").Result, joRecordErrors) << "it groups nothing";
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

/// Makes `Folder` the current one.
struct TCurrentFolder
{
    explicit TCurrentFolder(const std::filesystem::path& Folder) : Before(std::filesystem::current_path())
    {
        std::filesystem::current_path(Folder);
    }
    ~TCurrentFolder() { std::filesystem::current_path(Before); }

    const std::filesystem::path Before;
};

TEST_F(KvJobFile, ARelativeSourceIsOneFromTheFolderOfTheFileWhateverFolderIsCurrent)
{
    std::filesystem::create_directories(Folder / "saved");
    std::filesystem::create_directories(Folder / "other");
    Write("ID,CITY\n1,Rom\n");
    Folder.Write("other/orders.csv", "ID,CITY\n2,Oslo\n");
    Job.Source.FileName = "orders.csv";
    Job.Destination.Url = "shop.db";
    {
        const TCurrentFolder Current(Folder / "");
        TJobRun Run(Job, Observer);
        Run.Prepare();
        SaveJob("saved/orders.kvi", "Orders", Run.Source(), Run.Plan(), Job);
        EXPECT_EQ(Run.Source().Component().SourceFileName, "orders.csv") << "only the file names it so";
    }
    const TCurrentFolder Current(Folder / "other");
    TJobSettings Settings;
    TJobFile Saved(Folder / "saved/orders.kvi");
    Saved.Complete(Settings);
    EXPECT_TRUE(std::filesystem::equivalent(Settings.Source.FileName, Folder / "orders.csv"));
    EXPECT_TRUE(std::filesystem::equivalent(Settings.Destination.Url, Folder / "shop.db"));
    EXPECT_THAT(Folder.Read("saved/orders.kvi"), HasSubstr("SourceFileName=../orders.csv\r\n"));
    std::filesystem::remove(Folder / "orders.csv");
    EXPECT_EQ(RefusalOf([&] { Saved.Complete(Settings = {}); }).Kind, jfSourceGone);
}

TEST_F(KvJobFile, ASourceOfAnOlderFileMayStandInTheCurrentFolder)
{
    std::filesystem::create_directories(Folder / "saved");
    Write("ID,CITY\n1,Rom\n");
    Folder.Write("saved/orders.kvi", "[Common]\nTableType=Text\nSourceFileName=orders.csv\n");
    const TCurrentFolder Current(Folder / "");
    TJobSettings Settings;
    TJobFile(Folder / "saved/orders.kvi").Complete(Settings);
    EXPECT_EQ(Settings.Source.FileName, "orders.csv");
}

TEST_F(KvJobFile, AFileNamesNoDevicesAndPipes)
{
    Folder.Write("orders.kvi", "[Common]\nTableType=Text\nSourceFileName=/dev/null\n");
    TJobSettings Settings;
    EXPECT_EQ(RefusalOf([&] { TJobFile(File).Complete(Settings); }).Kind, jfSourceNoFile);
    Settings.Source.FileName = "/dev/null";
    EXPECT_NO_THROW(TJobFile(File).Complete(Settings)) << "a user may";
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

TEST_F(KvJobFile, SavingOverAnotherKindLeavesNothingOfItBehind)
{
    Folder.Write("orders.kvi", "[Common]\nMode=4\nOwner=Ada\n[Extensions]\nSheetIndex=1\n[Mine]\nA=1\n");
    Write("ID,CITY\n1,Rom\n");
    Save();
    EXPECT_NO_THROW(TJobFile Saved(File));
    EXPECT_THAT(Folder.Read("orders.kvi"), Not(HasSubstr("SheetIndex")));
    EXPECT_THAT(Folder.Read("orders.kvi"), HasSubstr("Owner=Ada"));
    EXPECT_THAT(Folder.Read("orders.kvi"), HasSubstr("[Mine]\nA=1"));
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
