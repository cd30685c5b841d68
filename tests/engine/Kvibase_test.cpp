#include "KvTestRun.h"

namespace kv {

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

using TTexts = std::vector<std::string>;

struct Kvibase : testing::Test, TTestRun
{
    Kvibase() { Import.Rows = {{1, "Ada"}, {2, "Bob"}}; }
};

TTexts NamesOf(const TPublishedProperties& Properties)
{
    TTexts Result;
    for (const auto& Property : Properties)
        Result.emplace_back(Property.Name);
    return Result;
}

// --- Construction -----------------------------------------------------------------------------------

TEST_F(Kvibase, StartsWithItsDefaults)
{
    TKvImportBaseComponent Fresh;
    EXPECT_EQ(Fresh.About, "");
    EXPECT_TRUE(Fresh.AnimatedStatus);
    EXPECT_EQ(Fresh.CharacterSet, csiANSI_WINDOWS);
    EXPECT_EQ(Fresh.GetDataSet(), nullptr);
    EXPECT_EQ(Fresh.DatasetKeys, "");
    EXPECT_TRUE(Fresh.Mappings().IsEmpty());
    EXPECT_EQ(Fresh.Mode, imAppend);
    EXPECT_EQ(Fresh.Options, (TKvIOptions{soShowMessage, soExtendedStatistic}));
    EXPECT_EQ(Fresh.TitleStatus, "Importing...");
    EXPECT_EQ(Fresh.Statistic.UpdateStep, 1);
    EXPECT_EQ(Fresh.Statistic.Result, irUnknown);
}

TEST_F(Kvibase, StartsWithTheDefaultsOfTheSources)
{
    TScriptedImport Fresh(Log);
    EXPECT_EQ(Fresh.TableType, teText);
    EXPECT_EQ(Fresh.SourceFileName, "KvImport.KVI");
    EXPECT_EQ(Fresh.GetFieldDelimiter(), fdTab);
    EXPECT_EQ(Fresh.GetFieldDelimiterCustom(), '\t');
    EXPECT_EQ(Fresh.GetTextQualifier(), tqQuot);
    EXPECT_EQ(Fresh.GetTextQualifierCustom(), '"');
    EXPECT_EQ(Fresh.GetRecordSeparator(), rsCRLF);
    EXPECT_EQ(Fresh.GetRecordSeparatorCustom(), "\r\n");
    EXPECT_FALSE(Fresh.Fixed);
    EXPECT_EQ(Fresh.RowFirst, 1);
    EXPECT_EQ(Fresh.RowLast, 2147483647);
}

TEST_F(Kvibase, BaseNamesItsFilesAndValues)
{
    EXPECT_EQ(TKvImportBaseComponent::Extension(), ".KVI");
    EXPECT_EQ(TKvImportBaseComponent::FillFileFilters(), "All files (*.*)|*.*");
    EXPECT_TRUE(Import.GetValues("NAME").IsNull());
    EXPECT_EQ(Import.RecordPlace(), "record 0");
}

TEST_F(Kvibase, DataFormatsOutliveTheirComponent)
{
    TKvIDataFormats* Kept;
    {
        TKvImportBaseComponent Fresh;
        Kept = &Fresh.DataFormats;
        Kept->BooleanTrue = "Yes";
    }
    EXPECT_EQ(Kept->BooleanTrue, "Yes");
}

// --- Published properties ---------------------------------------------------------------------------

TEST_F(Kvibase, PublishesItsPropertiesInDeclarationOrder)
{
    EXPECT_THAT(NamesOf(Import.PublishedProperties()),
                ElementsAre("About", "AnimatedStatus", "CharacterSet", "DataFormats", "DataSet",
                            "DatasetKeys", "Mappings", "Mode", "Options", "TitleStatus", "Statistic",
                            "OnErrorEvent", "OnGetCellParams", "OnBeforeExecute", "OnAfterExecute",
                            "OnBeforeRecordEvent", "OnAfterRecordEvent", "OnBeforeUpdate",
                            "OnBeforeLoadSpecification", "OnAfterLoadSpecification",
                            "OnBeforeSaveSpecification", "OnAfterSaveSpecification", "RunExtensions"));
}

TEST_F(Kvibase, PropertiesAreSetByTheirNames)
{
    SetPropValue(Import, "AnimatedStatus", true);
    SetPropValue(Import, "CharacterSet", "csiASCII_MSDOS");
    SetPropValue(Import, "DatasetKeys", "ID");
    SetPropValue(Import, "Mappings", "ID=Field2\r\n");
    SetPropValue(Import, "Mode", "imCopy");
    SetPropValue(Import, "Options", 2);
    EXPECT_TRUE(Import.AnimatedStatus);
    EXPECT_EQ(Import.CharacterSet, csiASCII_MSDOS);
    EXPECT_EQ(Import.DatasetKeys, "ID");
    EXPECT_EQ(Import.Mappings(), TStrings{"ID=Field2"});
    EXPECT_EQ(Import.Mode, imCopy);
    EXPECT_EQ(Import.Options, TKvIOptions{soExtendedStatistic});
}

TEST_F(Kvibase, PublishedObjectsAreItsOwn)
{
    const auto Properties = Import.PublishedProperties();
    EXPECT_EQ(FindProperty(Properties, "DataSet")->GetObject(Import), &Table);
    EXPECT_EQ(FindProperty(Properties, "DataFormats")->GetObject(Import), &Import.DataFormats);
    EXPECT_EQ(FindProperty(Properties, "Statistic")->GetObject(Import), &Import.Statistic);
}

TEST_F(Kvibase, MappingsAreCopiedNotShared)
{
    TStrings Lines{"ID=Field1"};
    Import.SetMappings(Lines);
    Lines.Add("NAME=Field2");
    EXPECT_EQ(Import.Mappings(), TStrings{"ID=Field1"});
}

// --- The destination --------------------------------------------------------------------------------

/// A destination that publishes an index and a query.
class TIndexedDataSet final : public TMemoryDataSet
{
public:
    std::string IndexFieldName = "ID;CITY";
    std::string TableName = "orders";
    TStrings Sql{"select *", "from orders"};
    bool HasTableName = true;

    TPublishedProperties PublishedProperties() const override;
};

TPublishedProperty Named(std::string_view Name, TPropertyKind Kind, std::string Value)
{
    TPublishedProperty Property;
    Property.Name = Name;
    Property.Kind = Kind;
    Property.Get = [Value](const TPersistent&) { return TVariant(Value); };
    return Property;
}

TPublishedProperties TIndexedDataSet::PublishedProperties() const
{
    TPublishedProperties Result{Named("IndexFieldName", pkString, IndexFieldName),
                                Named("SQL", pkStrings, Sql.Text())};
    if (HasTableName)
        Result.push_back(Named("TableName", pkString, TableName));
    return Result;
}

TEST_F(Kvibase, KeyListIsTheIndexOfTheDataset)
{
    const TIndexedDataSet Indexed;
    EXPECT_EQ(TKvImportBaseComponent::GetKeyList(&Indexed), "ID;CITY");
    EXPECT_EQ(TKvImportBaseComponent::GetKeyList(&Table), "");
    EXPECT_EQ(TKvImportBaseComponent::GetKeyList(nullptr), "");
}

TEST_F(Kvibase, AssigningADatasetNeverChangesTheKeys)
{
    TIndexedDataSet Indexed;
    for (const char* const Keys : {"", "ID;CITY", "NAME"}) {
        Import.DatasetKeys = Keys;
        Import.SetDataSet(&Table);
        Import.SetDataSet(&Indexed);
        EXPECT_EQ(Import.DatasetKeys, Keys);
    }
}

TEST_F(Kvibase, TableNameIsThatOfTheTableElseTheQuery)
{
    TIndexedDataSet Indexed;
    Import.SetDataSet(&Indexed);
    EXPECT_EQ(Import.GetTableName(), "orders");
    Indexed.HasTableName = false;
    EXPECT_EQ(Import.GetTableName(), "select *\r\nfrom orders\r\n");
    Import.SetDataSet(&Table);
    EXPECT_EQ(Import.GetTableName(), "");
    Import.SetDataSet(nullptr);
    EXPECT_EQ(Import.GetTableName(), "");
}

TEST_F(Kvibase, ForgetsADatasetThatIsDestroyed)
{
    auto Gone = std::make_unique<TMemoryDataSet>();
    Import.SetDataSet(Gone.get());
    Gone.reset();
    EXPECT_EQ(Import.GetDataSet(), nullptr);
}

TEST_F(Kvibase, KeepsItsDatasetWhenAFormerOneIsDestroyed)
{
    auto Former = std::make_unique<TMemoryDataSet>();
    Import.SetDataSet(Former.get());
    Import.SetDataSet(&Table);
    Former.reset();
    EXPECT_EQ(Import.GetDataSet(), &Table);
}

/// Tells when it dies whether it still has a dataset.
class TMortalImport : public TKvImportBaseComponent
{
public:
    TMortalImport(TComponent* Owner, TTexts& Ends) : TKvImportBaseComponent(Owner), Log(Ends) {}
    ~TMortalImport() override { Log.emplace_back(GetDataSet() ? "has its dataset" : "has none"); }

private:
    TTexts& Log;
};

TEST_F(Kvibase, DiesBeforeOrAfterTheDatasetOfTheSameOwner)
{
    TTexts Ends;
    for (const bool DataSetFirst : {true, false}) {
        TComponent Form;                            // deletes the last added first
        auto* const First = DataSetFirst ? new TMemoryDataSet(&Form) : nullptr;
        auto* const Mortal = new TMortalImport(&Form, Ends);
        Mortal->SetDataSet(First ? First : new TMemoryDataSet(&Form));
    }
    EXPECT_THAT(Ends, ElementsAre("has its dataset", "has none"));
}

// --- What Execute raises ----------------------------------------------------------------------------

TEST_F(Kvibase, MissingDatasetIsRaisedBeforeAnythingHappens)
{
    Import.SetDataSet(nullptr);
    Import.AnimatedStatus = true;
    NoteEvents();
    EXPECT_EQ(Raised(), "Property DataSet wasn't specified.");
    EXPECT_THAT(Log.Entries, ElementsAre("OnBeforeExecute", "NotDefined"));
    EXPECT_EQ(Import.Statistic.Result, irUnknown);
}

TEST_F(Kvibase, MissingKeysAreRaisedWithAnEmptyNameInTheKeyModes)
{
    NoteEvents();
    for (const auto Mode : {imUpdate, imAppendUpdate, imDelete}) {
        Import.Mode = Mode;
        Import.Statistic.Result = irExecuted;
        EXPECT_EQ(Raised(), "Property  wasn't specified.");
        EXPECT_THAT(Log.Entries, ElementsAre("OnBeforeExecute", "NotDefined"));
        EXPECT_EQ(Import.Statistic.Result, irUnknown);
    }
}

TEST_F(Kvibase, KeysAreNotNeededToAppendOrCopy)
{
    for (const auto Mode : {imAppend, imCopy}) {
        Import.Mode = Mode;
        EXPECT_EQ(Raised(), "");
        EXPECT_EQ(Import.Statistic.Result, irExecuted);
    }
}

TEST_F(Kvibase, MissingDatasetIsReportedBeforeMissingKeys)
{
    Import.SetDataSet(nullptr);
    Import.Mode = imUpdate;
    EXPECT_EQ(Raised(), "Property DataSet wasn't specified.");
}

TEST_F(Kvibase, OnBeforeExecuteMaySupplyWhatIsMissing)
{
    Import.SetDataSet(nullptr);
    Import.OnBeforeExecute = [&](TKvImportBaseComponent&) { Import.SetDataSet(&Table); };
    EXPECT_EQ(Raised(), "");
    EXPECT_THAT(Records(), ElementsAre("1;Ada", "2;Bob"));
}

TEST_F(Kvibase, ErrorOfOnBeforeExecuteReachesTheCaller)
{
    NoteEvents();
    Log.Refuse("OnBeforeExecute");
    EXPECT_EQ(Raised(), "OnBeforeExecute refused");
    EXPECT_THAT(Log.Entries, ElementsAre("OnBeforeExecute"));
}

// --- Automatic mapping ------------------------------------------------------------------------------

TEST_F(Kvibase, EmptyMappingsMapEveryFieldToTheSourceFieldOfItsNameForTheRun)
{
    TStrings DuringTheRun;
    Import.SetMappings({});
    Import.Rows = {{1, "Ada"}};
    Import.OnBeforeUpdate = [&](TKvImportBaseComponent&) { DuringTheRun.Assign(Import.Mappings()); };
    Execute();
    EXPECT_EQ(DuringTheRun, (TStrings{"ID=ID", "NAME=NAME"}));
    EXPECT_THAT(Log.Of("GetFieldValue"), ElementsAre("GetFieldValue ID", "GetFieldValue NAME"));
    EXPECT_TRUE(Import.Mappings().IsEmpty());
}

TEST_F(Kvibase, AutomaticMappingDoesNotSurviveAFailedRun)
{
    for (const char* const Call : {"BeforeImport", "GoFirst", "GoNext"}) {
        TTestRun Failing;
        Failing.Import.Rows = {{1, "Ada"}};
        Failing.Import.SetMappings({});
        Failing.Log.Refuse(Call);
        Failing.Execute();
        EXPECT_EQ(Failing.Import.Statistic.Result, irFailed) << Call;
        EXPECT_TRUE(Failing.Log.Has("DetectAutoMapping") && Failing.Log.Has(Call)) << Call;
        EXPECT_TRUE(Failing.Import.Mappings().IsEmpty()) << Call;
    }
}

/// Finds a mapping and fails all the same.
class TStumblingImport : public TScriptedImport
{
public:
    using TScriptedImport::TScriptedImport;

    TStrings Found;

protected:
    void DetectAutoMapping() override
    {
        TScriptedImport::DetectAutoMapping();
        Found.Assign(Mappings());
        throw Exception("stumbled");
    }
};

TEST_F(Kvibase, AutomaticMappingDoesNotSurviveAFailedDetection)
{
    TStumblingImport Stumbling(Log);
    Stumbling.SetDataSet(&Table);
    Stumbling.AnimatedStatus = false;
    Stumbling.Execute();
    EXPECT_EQ(Stumbling.ErrorMessage(), "stumbled");
    EXPECT_EQ(Stumbling.Found, (TStrings{"ID=ID", "NAME=NAME"}));
    EXPECT_TRUE(Stumbling.Mappings().IsEmpty());
}

TEST_F(Kvibase, MappingsThatWereGivenSurviveTheRun)
{
    Execute();
    EXPECT_EQ(Import.Mappings(), (TStrings{"ID=Field1", "NAME=Field2"}));
    EXPECT_THAT(Log.Entries, Not(Contains("DetectAutoMapping")));
}

TEST_F(Kvibase, AutomaticMappingIsDetectedUnderTheOpenDialog)
{
    Import.SetMappings({});
    Import.AnimatedStatus = true;
    Execute();
    const auto At = [&](const char* Entry) { return std::ranges::find(Log.Entries, Entry); };
    EXPECT_LT(At("open Importing..."), At("DetectAutoMapping"));
    EXPECT_LT(At("DetectAutoMapping"), At("BeforeImport"));
}

} // namespace

} // namespace kv
