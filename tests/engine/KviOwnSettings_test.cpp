#include "KviOwnSettings.h"

#include "KvException.h"
#include "KvIniFile.h"
#include "KvPublish.h"
#include "KvTempFolder.h"

namespace kv {

namespace {

enum TRule { ruFirst, ruSecond, ruThird };
using TRules = TSet<TRule>;
constexpr std::string_view RuleNames[] = {"ruFirst", "ruSecond", "ruThird"};

/// A component with all settings that are a source's own.
class TSheetSource : public TPersistent
{
public:
    std::string_view ClassName() const override { return "TSheetSource"; }
    TPublishedProperties PublishedProperties() const override
    {
        using T = TSheetSource;
        return {Publish("Extensions", &T::Extensions, RuleNames),
                AsPlace(Publish("SheetIndex", &T::SheetIndex)), AsPlace(Publish("TableName", &T::TableName)),
                Publish("HeaderLine", &T::HeaderLine)};
    }

    TRules Extensions;
    int SheetIndex = 0;
    int HeaderLine = 3;                             // no place
    std::string TableName;
};

/// A component with rules of its own and of all.
class TRuledSource : public TPersistent
{
public:
    std::string_view ClassName() const override { return "TRuledSource"; }
    TPublishedProperties PublishedProperties() const override
    {
        static constexpr std::string_view RunNames[] = {"rxCommon", "rxGeneral"};
        using T = TRuledSource;
        return {Publish("Extensions", &T::Extensions, RuleNames),
                Publish("RunExtensions", &T::RunExtensions, RunNames)};
    }

    TRules Extensions, RunExtensions;
};

/// A component that only names a table.
class TTableSource : public TPersistent
{
public:
    TPublishedProperties PublishedProperties() const override
    {
        return {AsPlace(Publish("TableName", &TTableSource::TableName))};
    }

    std::string TableName;
};

class KviOwnSettings : public testing::Test
{
protected:
    /// What the file holds after `Component` was written into it.
    std::string Written(const TPersistent& Component, std::string_view Before = "")
    {
        TIniFile File(Folder.Write("test.kvi", Before));
        WriteOwnSettings(File, Component);
        File.UpdateFile();
        return Folder.Read("test.kvi");
    }
    void Read(std::string_view Text, TPersistent& Component)
    {
        ReadOwnSettings(TIniFile(Folder.Write("test.kvi", Text)), Component);
    }
    /// The message of what Read raises.
    std::string Refused(std::string_view Text)
    {
        try {
            Read(Text, Source);
        }
        catch (const EConvertError& Error) {
            return Error.Message;
        }
        return {};
    }

    const TTempFolder Folder;
    TSheetSource Source;
};

TEST_F(KviOwnSettings, NothingIsWrittenForWhatIsAsItAlwaysWas)
{
    EXPECT_EQ(Written(Source), "");
    EXPECT_EQ(Written(Source, "[Common]\nMode=1\n"), "[Common]\nMode=1\n");
    EXPECT_EQ(Written(TStrings()), "");
}

TEST_F(KviOwnSettings, ElementsOfTheSetAreKeysWithoutTheirPrefix)
{
    Source.Extensions = {ruThird, ruFirst};
    EXPECT_EQ(Written(Source), "[Extensions]\r\nFirst=1\r\nThird=1\r\n");
}

TEST_F(KviOwnSettings, RulesOfAllSourcesStandBesideThoseOfOne)
{
    TRuledSource Ruled;
    Ruled.RunExtensions = {ruSecond};
    EXPECT_EQ(Written(Ruled), "[Extensions]\r\nGeneral=1\r\n");
    Ruled.Extensions = {ruFirst};
    EXPECT_EQ(Written(Ruled, "[Extensions]\nCommon=1\n"), "[Extensions]\nCommon=0\nFirst=1\nGeneral=1\n");
    Read("[Extensions]\nCommon=1\nThird=1\n", Ruled);
    EXPECT_EQ(Ruled.Extensions, TRules{ruThird});
    EXPECT_EQ(Ruled.RunExtensions, TRules{ruFirst});
    Read("[Extensions]\nThird=1\n", Ruled);         // as files are that know of none
    EXPECT_TRUE(Ruled.RunExtensions.IsEmpty());
}

TEST_F(KviOwnSettings, TheSheetAndTheTableAreWrittenWhenTheyAreNamed)
{
    Source.SheetIndex = 2;
    Source.TableName = "Orders";
    EXPECT_EQ(Written(Source), "[Extensions]\r\nSheetIndex=2\r\nTableName=Orders\r\n");
}

TEST_F(KviOwnSettings, WhatTheFileHasIsBroughtUpToDate)
{
    Source.Extensions = {ruSecond};
    EXPECT_EQ(Written(Source, "[Extensions]\nFirst=1\nSheetIndex=2\nTableName=Orders\nOther=1\n"),
              "[Extensions]\nFirst=0\nSheetIndex=0\nTableName=\nOther=1\nSecond=1\n");
}

TEST_F(KviOwnSettings, WithoutTheSectionAllStayAsTheyAre)
{
    Source.Extensions = {ruSecond};
    Source.SheetIndex = 2;
    Source.TableName = "Orders";
    Read("[Common]\nSheetIndex=5\n", Source);
    EXPECT_EQ(Source.Extensions, TRules{ruSecond});
    EXPECT_EQ(Source.SheetIndex, 2);
    EXPECT_EQ(Source.TableName, "Orders");
}

TEST_F(KviOwnSettings, TheSetHoldsWhatTheSectionNames)
{
    Source.Extensions = {ruSecond};
    Source.SheetIndex = 2;
    Read("[Extensions]\nfirst=1\nThird=0\n", Source);
    EXPECT_EQ(Source.Extensions, TRules{ruFirst});
    EXPECT_EQ(Source.SheetIndex, 2);
}

TEST_F(KviOwnSettings, TheSheetAndTheTableAreReadBack)
{
    Read("[Extensions]\nSheetIndex=3\nTableName=\" Orders\"\n", Source);
    EXPECT_TRUE(Source.Extensions.IsEmpty());
    EXPECT_EQ(Source.SheetIndex, 3);
    EXPECT_EQ(Source.TableName, " Orders");
    Read("[Extensions]\nSheetIndex=0\nTableName=\n", Source);
    EXPECT_EQ(Source.SheetIndex, 0);
    EXPECT_EQ(Source.TableName, "");
}

TEST_F(KviOwnSettings, ASettingThatTheComponentLacksIsRefused)
{
    const auto Place = "Cannot read file \"" + Folder / "test.kvi" + "\": [Extensions] ";
    EXPECT_EQ(Refused("[Extensions]\nFirst=1\nFourth=1\n"),
              Place + "Fourth: TSheetSource has no such setting");
    EXPECT_EQ(Refused("[Extensions]\nFirst=yes\n"), Place + "First: 'yes' is not a valid integer value");
    EXPECT_EQ(Refused("[Extensions]\nSheetIndex=two\n"),
              Place + "SheetIndex: 'two' is not a valid integer value");
    EXPECT_EQ(Refused("[Extensions]\nHeaderLine=2\n"),
              Place + "HeaderLine: TSheetSource has no such setting");
    EXPECT_EQ(Refused("[Extensions]\nFourth=0\nFifth=\n"), "");
}

TEST_F(KviOwnSettings, AComponentWithoutExtensionsTakesWhatItKnows)
{
    TTableSource Table;
    Read("[Extensions]\nFirst=1\nTableName=Orders\n", Table);
    EXPECT_EQ(Table.TableName, "Orders");
}

} // namespace

} // namespace kv
