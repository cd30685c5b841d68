#include "KvApplication.h"
#include "KvTempFolder.h"
#include "KvTestRun.h"

namespace kv {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using TTexts = std::vector<std::string>;

/// A title known to the tests, for the length of one.
class TKnownTitle
{
public:
    TKnownTitle() { SetApplicationTitle("Order desk"); }
    TKnownTitle(const TKnownTitle&) = delete;
    TKnownTitle& operator=(const TKnownTitle&) = delete;
    ~TKnownTitle() { SetApplicationTitle(Before); }

private:
    const std::string Before = ApplicationTitle();
};

struct KvibaseSpecification : testing::Test, TTestRun
{
    KvibaseSpecification()
    {
        Import.SourceFileName = "orders.txt";
        const auto Noting = [this](std::string Event) {
            return [this, Event](TKvImportBaseComponent&) { Log.Call(Event); };
        };
        Import.OnBeforeSaveSpecification = Noting("before save");
        Import.OnAfterSaveSpecification = Noting("after save");
        Import.OnBeforeLoadSpecification = Noting("before load");
        Import.OnAfterLoadSpecification = Noting("after load");
        Log.Clear();
    }

    /// The file after the import was saved into it.
    std::string Saved()
    {
        Import.SaveSpecification("Orders", File, false);
        return Folder.Read("orders.kvi");
    }
    void Load(std::string_view Text) { Import.LoadSpecification(Folder.Write("orders.kvi", Text)); }
    /// The message of the EError that Load raises.
    template <class EError = EConvertError> std::string Refused(std::string_view Text)
    {
        try {
            Load(Text);
        }
        catch (const EError& Error) {
            return Error.Message;
        }
        return {};
    }
    /// What such a message begins with.
    std::string Place() const { return "Cannot read file \"" + File + "\": "; }

    const TKnownTitle Title;
    const TTempFolder Folder;
    const std::string File = Folder / "orders.kvi";
};

// --- Characters -------------------------------------------------------------------------------------

TEST_F(KvibaseSpecification, CharactersAreTwoHexadecimalDigitsEach)
{
    EXPECT_EQ(Import.Translate("\t", true), "09");
    EXPECT_EQ(Import.Translate(",", true), "2C");
    EXPECT_EQ(Import.Translate("\r\n", true), "0D0A");
    EXPECT_EQ(Import.Translate(std::string_view("\0", 1), true), "00");
    EXPECT_EQ(Import.Translate("\xFF", true), "FF");
    EXPECT_EQ(Import.Translate("", true), "");
}

TEST_F(KvibaseSpecification, HexadecimalDigitsBecomeCharactersAgain)
{
    EXPECT_EQ(Import.Translate("0d0A", false), "\r\n");
    EXPECT_EQ(Import.Translate("00", false), std::string(1, '\0'));
    EXPECT_EQ(Import.Translate("2C4", false), ",");
    EXPECT_EQ(Import.Translate("4", false), "");
    EXPECT_THROW(Import.Translate("4G", false), EConvertError);
}

// --- Saving -----------------------------------------------------------------------------------------

TEST_F(KvibaseSpecification, TheKeysStandInTheirOrder)
{
    EXPECT_EQ(Saved(), "[Common]\r\n"
                       "App=Order desk\r\n"
                       "Description=KvImport: specification\r\n"
                       "Specification=Orders\r\n"
                       "DatasetKeys=\r\n"
                       "Mode=0\r\n"
                       "TableType=Text\r\n"
                       "SourceFileName=orders.txt\r\n"
                       "CharacterSet=0\r\n"
                       "[Mappings]\r\n"
                       "Count=2\r\n"
                       "Map0=ID=Field1\r\n"
                       "Map1=NAME=Field2\r\n"
                       "[Text]\r\n"
                       "FieldDelimiter=09\r\n"
                       "TextQualifier=22\r\n"
                       "RecordSeparator=0D0A\r\n"
                       "Fixed=0\r\n"
                       "RowFirst=1\r\n"
                       "RowLast=2147483647\r\n"
                       "[DataFormat]\r\n"
                       "DateOrder=0\r\n"
                       "DateSeparator=2F\r\n"
                       "TimeSeparator=3A\r\n"
                       "ThousandSeparator=2C\r\n"
                       "DecimalSeparator=2E\r\n"
                       "FourDigitYear=1\r\n"
                       "LeadingZerosInDate=0\r\n");
}

void ChangeAll(TScriptedImport& Import)
{
    Import.DatasetKeys = "ID;N\xC4ME";
    Import.Mode = imCopy;
    Import.TableType = teQuattro;
    Import.SourceFileName = " C:\\data\\orders 1.wq1 ";
    Import.CharacterSet = csiASCII_MSDOS;
    Import.SetMappings({"ID=A", " NAME = B ", "", "\"X\"=\"Y\""});
    Import.SetFieldDelimiterCustom('|');
    Import.SetTextQualifierCustom('\0');
    Import.SetRecordSeparatorCustom("\x1E\n");
    Import.Fixed = true;
    Import.RowFirst = -3;
    Import.RowLast = 17;
    auto& Formats = Import.DataFormats;
    Formats.DateOrder = doMYD;
    Formats.DateSeparator = '.';
    Formats.TimeSeparator = '\xB7';
    Formats.ThousandSeparator = ' ';
    Formats.DecimalSeparator = ',';
    Formats.FourDigitYear = false;
    Formats.LeadingZerosInDate = true;
}

TEST_F(KvibaseSpecification, EverySettingIsSaved)
{
    ChangeAll(Import);
    EXPECT_EQ(Saved(), "[Common]\r\n"
                       "App=Order desk\r\n"
                       "Description=KvImport: specification\r\n"
                       "Specification=Orders\r\n"
                       "DatasetKeys=ID;N\xC4ME\r\n"
                       "Mode=4\r\n"
                       "TableType=Quattro\r\n"
                       "SourceFileName=\" C:\\data\\orders 1.wq1 \"\r\n"
                       "CharacterSet=1\r\n"
                       "[Mappings]\r\n"
                       "Count=4\r\n"
                       "Map0=ID=A\r\n"
                       "Map1=\" NAME = B \"\r\n"
                       "Map2=\r\n"
                       "Map3=\"\"X\"=\"Y\"\"\r\n"
                       "[Text]\r\n"
                       "FieldDelimiter=7C\r\n"
                       "TextQualifier=00\r\n"
                       "RecordSeparator=1E0A\r\n"
                       "Fixed=1\r\n"
                       "RowFirst=-3\r\n"
                       "RowLast=17\r\n"
                       "[DataFormat]\r\n"
                       "DateOrder=5\r\n"
                       "DateSeparator=2E\r\n"
                       "TimeSeparator=B7\r\n"
                       "ThousandSeparator=20\r\n"
                       "DecimalSeparator=2C\r\n"
                       "FourDigitYear=0\r\n"
                       "LeadingZerosInDate=1\r\n");
}

TEST_F(KvibaseSpecification, EverySettingIsLoadedAgain)
{
    ChangeAll(Import);
    const auto First = Saved();
    TScriptedImport Other(Log);
    Other.LoadSpecification(File);
    EXPECT_EQ(Other.DatasetKeys, "ID;N\xC4ME");
    EXPECT_EQ(Other.Mode, imCopy);
    EXPECT_EQ(Other.TableType, teQuattro);
    EXPECT_EQ(Other.SourceFileName, " C:\\data\\orders 1.wq1 ");
    EXPECT_EQ(Other.CharacterSet, csiASCII_MSDOS);
    EXPECT_EQ(Other.Mappings(), (TStrings{"ID=A", " NAME = B ", "", "\"X\"=\"Y\""}));
    EXPECT_EQ(Other.GetFieldDelimiter(), fdCustom);
    EXPECT_EQ(Other.GetFieldDelimiterCustom(), '|');
    EXPECT_EQ(Other.GetTextQualifier(), tqNone);
    EXPECT_EQ(Other.GetRecordSeparator(), rsCustom);
    EXPECT_EQ(Other.GetRecordSeparatorCustom(), "\x1E\n");
    EXPECT_TRUE(Other.Fixed);
    EXPECT_EQ(Other.RowFirst, -3);
    EXPECT_EQ(Other.RowLast, 17);
    EXPECT_EQ(Other.DataFormats.DateOrder, doMYD);
    EXPECT_EQ(Other.DataFormats.DateSeparator, '.');
    EXPECT_EQ(Other.DataFormats.TimeSeparator, '\xB7');
    EXPECT_EQ(Other.DataFormats.ThousandSeparator, ' ');
    EXPECT_EQ(Other.DataFormats.DecimalSeparator, ',');
    EXPECT_FALSE(Other.DataFormats.FourDigitYear);
    EXPECT_TRUE(Other.DataFormats.LeadingZerosInDate);

    Other.SaveSpecification("Orders", Folder / "again.kvi", false);
    EXPECT_EQ(Folder.Read("again.kvi"), First);
}

TEST_F(KvibaseSpecification, EveryKindIsNamedWithoutItsPrefix)
{
    const TTexts Names = {"Paradox", "DBase", "Text", "HTML", "XLS", "WKS", "Quattro", "XML", "Access"};
    for (int I = 0; I <= teAccess; ++I) {
        Import.TableType = static_cast<TTableTypeImport>(I);
        EXPECT_THAT(Saved(),
                    testing::HasSubstr("\r\nTableType=" + Names[static_cast<std::size_t>(I)] + "\r\n"));
    }
}

TEST_F(KvibaseSpecification, TheWordsOfTruthAreNoPartOfTheFile)
{
    const auto Before = Saved();
    Import.DataFormats.BooleanTrue = "Yes";
    Import.DataFormats.BooleanFalse = "No";
    EXPECT_EQ(Saved(), Before);
    Import.LoadSpecification(File);
    EXPECT_EQ(Import.DataFormats.BooleanTrue, "Yes");
    EXPECT_EQ(Import.DataFormats.BooleanFalse, "No");
}

TEST_F(KvibaseSpecification, OtherSectionsAndKeysOfTheFileStay)
{
    Folder.Write("orders.kvi",
                 "\xEF\xBB\xBF; Monday's orders\n\n[common]\nmode = 3\nOwner=Ada\n\n[Window]\nTop=1\n");
    EXPECT_THAT(Saved(),
                testing::StartsWith("\xEF\xBB\xBF; Monday's orders\n\n[common]\nmode = 0\nOwner=Ada\n"
                                    "App=Order desk\nDescription=KvImport: specification\n"));
    EXPECT_THAT(Folder.Read("orders.kvi"),
                testing::HasSubstr("\nCharacterSet=0\n\n[Window]\nTop=1\n[Mappings]\nCount=2\n"));
}

TEST_F(KvibaseSpecification, MappingsBeyondTheNewCountStayUnread)
{
    Saved();
    Import.SetMappings({"ID=Field7"});
    EXPECT_THAT(Saved(),
                testing::HasSubstr("[Mappings]\r\nCount=1\r\nMap0=ID=Field7\r\nMap1=NAME=Field2\r\n"));
    Import.LoadSpecification(File);
    EXPECT_EQ(Import.Mappings(), (TStrings{"ID=Field7"}));
}

TEST_F(KvibaseSpecification, WithoutANameOrAFileNothingIsSavedAndNoEventIsFired)
{
    Import.SaveSpecification("", File, false);
    Import.SaveSpecification("Orders", "", false);
    EXPECT_THAT(Folder.Names(), IsEmpty());
    EXPECT_THAT(Log.Entries, IsEmpty());
}

TEST_F(KvibaseSpecification, SavingTellsBeforeAndAfter)
{
    bool WasThere = true;
    Import.OnBeforeSaveSpecification = [&](TKvImportBaseComponent& Sender) {
        EXPECT_EQ(&Sender, &Import);
        WasThere = std::filesystem::exists(File);
        Import.DatasetKeys = "ID";
    };
    EXPECT_THAT(Saved(), testing::HasSubstr("\r\nDatasetKeys=ID\r\n"));
    EXPECT_FALSE(WasThere);
    EXPECT_THAT(Log.Entries, ElementsAre("after save"));
}

TEST_F(KvibaseSpecification, WhatCannotBeReadBackIsRefusedAndTheFileStays)
{
    const auto Before = Saved();
    Log.Clear();
    Import.RowFirst = 5;
    Import.SetMappings({"ID=Field1"});
    Import.Mappings().SetLine(0, "ID=\n");
    EXPECT_THROW(Saved(), EFileError);
    EXPECT_EQ(Folder.Read("orders.kvi"), Before);
    EXPECT_THAT(Log.Entries, ElementsAre("before save"));
}

TEST_F(KvibaseSpecification, MoreMappingsThanCanBeReadAreNotWritten)
{
    for (int I = Import.Mappings().Count(); I <= 65536; ++I)
        Import.Mappings().Add("ID=A");
    std::string Message;
    try {
        Saved();
    }
    catch (const EFileError& Error) {
        Message = Error.Message;
    }
    EXPECT_EQ(Message, "Cannot write file \"" + File + "\": of 65537 mappings a specification holds 65536");
    Import.Mappings().Delete(0);
    Saved();
    Import.LoadSpecification(File);
    EXPECT_EQ(Import.Mappings().Count(), 65536);
}

// --- The dialogs ------------------------------------------------------------------------------------

TEST_F(KvibaseSpecification, TheSaveDialogProposesNames)
{
    Import.SourceFileName = "/data.d/orders.old.csv";
    Import.SaveSpecification("", "", true);
    EXPECT_EQ(Ui.Asked.Caption, "Import specification");
    EXPECT_EQ(Ui.Asked.NameLabel, "Import specification");
    EXPECT_EQ(Ui.Asked.FileLabel, "Import from File:");
    EXPECT_EQ(Ui.Asked.SpecName, "Import specification");
    EXPECT_EQ(Ui.Asked.FileName, ApplicationFolder() + "orders.old.kvi");
    EXPECT_EQ(Ui.Asked.Filter, "Import specification|*.KVI|All files (*.*)|*.*");
    EXPECT_EQ(Ui.Asked.Ok, "&OK");
    EXPECT_EQ(Ui.Asked.Cancel, "&Cancel");
}

TEST_F(KvibaseSpecification, TheProposedFileIsNamedAfterTheSource)
{
    for (const auto& [Source, Proposed] : std::vector<std::pair<std::string, std::string>>{
             {"orders.csv", "orders.kvi"}, {"orders", "orders.kvi"}, {"C:\\data\\orders.txt", "orders.kvi"},
                 {"", ".kvi"}}) {
        Import.SourceFileName = Source;
        Import.SaveSpecification("Orders", "", true);
        EXPECT_EQ(Ui.Asked.FileName, ApplicationFolder() + Proposed);
    }
}

TEST_F(KvibaseSpecification, TheSaveDialogShowsTheNamesThatWereGiven)
{
    Import.SaveSpecification("Monday", File, true);
    EXPECT_EQ(Ui.Asked.SpecName, "Monday");
    EXPECT_EQ(Ui.Asked.FileName, File);
}

TEST_F(KvibaseSpecification, TheSaveDialogSettlesTheNames)
{
    Ui.OnAsk = [this](TSaveSpecificationRequest& Request) {
        Request.SpecName = "Tuesday";
        Request.FileName = Folder / "other.kvi";
        return true;
    };
    Import.SaveSpecification("Monday", File, true);
    EXPECT_THAT(Folder.Names(), ElementsAre("other.kvi"));
    EXPECT_THAT(Folder.Read("other.kvi"), testing::HasSubstr("\r\nSpecification=Tuesday\r\n"));
}

TEST_F(KvibaseSpecification, CancelLeavesTheNamesAsTheyWerePassed)
{
    Ui.OnAsk = [](TSaveSpecificationRequest& Request) {
        Request.SpecName = "Tuesday";
        return false;
    };
    Import.SaveSpecification("Monday", File, true);
    EXPECT_THAT(Folder.Read("orders.kvi"), testing::HasSubstr("\r\nSpecification=Monday\r\n"));
    Log.Clear();
    Import.SaveSpecification("", "", true);
    EXPECT_EQ(Log.Of("before save"), TTexts());
}

TEST_F(KvibaseSpecification, WithoutAUserTheNamesAreKeptAsProposed)
{
    SetUserInterface(nullptr);
    Import.SaveSpecification("", File, true);
    EXPECT_THAT(Folder.Read("orders.kvi"), testing::HasSubstr("\r\nSpecification=Import specification\r\n"));
    Import.LoadSpecification("");
    EXPECT_THAT(Log.Entries, ElementsAre("before save", "after save"));
}

TEST_F(KvibaseSpecification, WithoutAFileNameTheUserPicksOne)
{
    Import.DatasetKeys = "ID";
    Saved();
    Import.DatasetKeys = "";
    Log.Clear();
    Import.LoadSpecification("");
    EXPECT_THAT(Log.Entries, ElementsAre("pick Import specification|*.KVI|All files (*.*)|*.*"));
    Ui.PickedFile = File;
    Import.LoadSpecification("");
    EXPECT_EQ(Import.DatasetKeys, "ID");
    EXPECT_EQ(Log.Entries.back(), "after load");
}

// --- Loading ----------------------------------------------------------------------------------------

TEST_F(KvibaseSpecification, LoadingTellsBeforeAndAfter)
{
    Load("[Common]\nMode=1\n");
    EXPECT_THAT(Log.Entries, ElementsAre("before load", "after load"));
}

TEST_F(KvibaseSpecification, AMissingKeyLeavesItsSettingAlone)
{
    ChangeAll(Import);
    const auto Before = Saved();
    Import.SetMappings({});
    Load("[Other]\n");
    Import.SetMappings({"ID=A", " NAME = B ", "", "\"X\"=\"Y\""});
    EXPECT_EQ(Saved(), "[Other]\n" + [&] {
        auto Text = Before;
        std::erase(Text, '\r');
        return Text;
    }());
}

TEST_F(KvibaseSpecification, AFileWithoutDataFormatsLeavesThemAlone)
{
    Import.DataFormats.DateOrder = doDMY;
    Import.DataFormats.DateSeparator = '.';
    Import.DataFormats.FourDigitYear = false;
    Load("[Common]\nMode=1\n[Text]\nFixed=1\n");
    EXPECT_EQ(Import.DataFormats.DateOrder, doDMY);
    EXPECT_EQ(Import.DataFormats.DateSeparator, '.');
    EXPECT_FALSE(Import.DataFormats.FourDigitYear);
    EXPECT_TRUE(Import.Fixed);
}

TEST_F(KvibaseSpecification, MappingsAreThoseOfTheFile)
{
    Load("[Mappings]\nCount=0\nMap0=ID=A\n");
    EXPECT_TRUE(Import.Mappings().IsEmpty());
    Load("[Mappings]\nCount=3\nMap0=ID=A\nMap2=NAME=C\nMap3=AGE=D\n");
    EXPECT_EQ(Import.Mappings(), (TStrings{"ID=A", "", "NAME=C"}));
    Load("[Mappings]\nCount=-1\nMap0=ID=A\n");
    EXPECT_TRUE(Import.Mappings().IsEmpty());
    Import.SetMappings({"ID=A"});
    Load("");
    EXPECT_TRUE(Import.Mappings().IsEmpty());
}

TEST_F(KvibaseSpecification, TheKindIsFoundByItsName)
{
    Load("[Common]\nTableType=XLS\n");
    EXPECT_EQ(Import.TableType, teXLS);
    Load("[Common]\nTableType=dbase\n");
    EXPECT_EQ(Import.TableType, teDBase);
}

TEST_F(KvibaseSpecification, AKindThatThereIsNotKeepsTheOneBefore)
{
    Import.TableType = teXML;
    for (const std::string Name : {"Oracle", "teXLS", "4", ""}) {
        Load("[Common]\nTableType=" + Name + "\n");
        EXPECT_EQ(Import.TableType, teXML);
    }
}

TEST_F(KvibaseSpecification, CharactersSetTheirKindToo)
{
    Load("[Text]\nFieldDelimiter=00\nTextQualifier=27\nRecordSeparator=0A\n");
    EXPECT_EQ(Import.GetFieldDelimiter(), fdNone);
    EXPECT_EQ(Import.GetTextQualifier(), tqApos);
    EXPECT_EQ(Import.GetRecordSeparator(), rsLF);
    Load("[Text]\nFieldDelimiter=3B3C\nTextQualifier=2a\nRecordSeparator=\n");
    EXPECT_EQ(Import.GetFieldDelimiter(), fdSemicolon);
    EXPECT_EQ(Import.GetTextQualifier(), tqCustom);
    EXPECT_EQ(Import.GetTextQualifierCustom(), '*');
    EXPECT_EQ(Import.GetRecordSeparator(), rsCustom);
    EXPECT_EQ(Import.GetRecordSeparatorCustom(), "");
}

TEST_F(KvibaseSpecification, AnEmptyCharacterKeepsTheOneBefore)
{
    Import.SetFieldDelimiterCustom(';');
    Load("[Text]\nFieldDelimiter=\nTextQualifier=2\n[DataFormat]\nDateSeparator=\n");
    EXPECT_EQ(Import.GetFieldDelimiter(), fdSemicolon);
    EXPECT_EQ(Import.GetTextQualifier(), tqQuot);
    EXPECT_EQ(Import.DataFormats.DateSeparator, '/');
}

TEST_F(KvibaseSpecification, FilesOfOtherSystemsAreRead)
{
    for (const std::string End : {"\n", "\r", "\r\n"}) {
        Import.DatasetKeys = "";
        Load("\xEF\xBB\xBF; comment" + End + "[COMMON]" + End + "datasetkeys = ID " + End + "Unknown=1" +
             End + "[Else]" + End + End + "[text]" + End + "rowfirst=2" + End + "RowLa");
        EXPECT_EQ(Import.DatasetKeys, "ID");
        EXPECT_EQ(Import.RowFirst, 2);
        EXPECT_EQ(Import.RowLast, RowLastMax);
    }
}

TEST_F(KvibaseSpecification, AppDescriptionAndNameAreNotRead)
{
    Load("[Common]\nApp=Other\nDescription=Other\nSpecification=Other\n");
    EXPECT_THAT(Saved(), testing::StartsWith("[Common]\nApp=Order desk\nDescription=KvImport: specification\n"
                                             "Specification=Orders\n"));
}

// --- Files that are wrong ---------------------------------------------------------------------------

TEST_F(KvibaseSpecification, WhatWasReadBeforeAnErrorStays)
{
    Import.RowFirst = 7;
    EXPECT_EQ(Refused("[Common]\nMode=1\n[Mappings]\nCount=1\nMap0=ID=A\n[Text]\nFieldDelimiter=3B\n"
                      "TextQualifier=G1\nRowFirst=2\n"),
              Place() + "[Text] TextQualifier: '$G1' is not a valid integer value");
    EXPECT_EQ(Import.Mode, imUpdate);
    EXPECT_EQ(Import.Mappings(), (TStrings{"ID=A"}));
    EXPECT_EQ(Import.GetFieldDelimiter(), fdSemicolon);
    EXPECT_EQ(Import.GetTextQualifier(), tqQuot);
    EXPECT_EQ(Import.RowFirst, 7);
    EXPECT_THAT(Log.Entries, ElementsAre("before load"));
}

TEST_F(KvibaseSpecification, ValuesWithoutMeaningAreRefused)
{
    EXPECT_EQ(Refused("[Common]\nMode=5\n"), Place() + "[Common] Mode: 5 is none of the values 0 to 4");
    EXPECT_EQ(Refused("[Common]\nMode=-1\n"), Place() + "[Common] Mode: -1 is none of the values 0 to 4");
    EXPECT_EQ(Refused("[Common]\nMode=append\n"),
              Place() + "[Common] Mode: 'append' is not a valid integer value");
    EXPECT_EQ(Refused("[Common]\nCharacterSet=2\n"),
              Place() + "[Common] CharacterSet: 2 is none of the values 0 to 1");
    EXPECT_EQ(Refused("[DataFormat]\nDateOrder=6\n"),
              Place() + "[DataFormat] DateOrder: 6 is none of the values 0 to 5");
    EXPECT_EQ(Refused("[Text]\nRowLast=4294967296\n"),
              Place() + "[Text] RowLast: 4294967296 is out of range");
    EXPECT_EQ(Refused("[Text]\nFixed=yes\n"), Place() + "[Text] Fixed: 'yes' is not a valid integer value");
    EXPECT_EQ(Refused("[Text]\nRecordSeparator=0D 0A\n"),
              Place() + "[Text] RecordSeparator: '$ 0' is not a valid integer value");
    EXPECT_EQ(Refused("[DataFormat]\nDateSeparator=xx\n"),
              Place() + "[DataFormat] DateSeparator: '$xx' is not a valid integer value");
    EXPECT_EQ(Refused("[Mappings]\nCount=2000000000\n"),
              Place() + "[Mappings] Count: 2000000000 is more than 65536");
}

TEST_F(KvibaseSpecification, AFileThatIsNoneIsRefused)
{
    Import.SetMappings({"ID=A"});
    EXPECT_EQ(Refused<EFileError>(std::string_view("\xD0\xCF\0\0", 4)), Place() + "it is no 8-bit text");
    std::filesystem::remove(File);
    EXPECT_THROW(Import.LoadSpecification(File), EFileError);
    EXPECT_EQ(Import.Mappings(), (TStrings{"ID=A"}));
    Folder.Write("orders.kvi", std::string_view("\xD0\xCF\0\0", 4));
    EXPECT_THROW(Import.SaveSpecification("Orders", File, false), EFileError);
    EXPECT_EQ(Folder.Read("orders.kvi").size(), 4u);
}

} // namespace

} // namespace kv
