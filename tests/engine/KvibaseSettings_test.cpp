// Taking over the settings of another component.
#include "KvTestRun.h"

#include "KvPublish.h"

namespace kv {

namespace {

enum TRule { ruFirst, ruSecond, ruThird };
using TRules = TSet<TRule>;
enum TWay { wyShort, wyLong };

/// A component that publishes what sources of text do, and rules.
class TRuledImport final : public TKvImportBaseComponent
{
public:
    TPublishedProperties PublishedProperties() const override
    {
        static constexpr std::string_view RuleNames[] = {"ruFirst", "ruSecond", "ruThird"};
        static constexpr std::string_view WayNames[] = {"wyShort", "wyLong"};
        static constexpr std::string_view DelimiterNames[] = {"fdNone",      "fdCustom", "fdTab",
                                                              "fdSemicolon", "fdComma",  "fdSpace"};
        using T = TRuledImport;
        return PublishAfter(
            TKvImportBaseComponent::PublishedProperties(),
            {Publish("SourceFileName", &T::SourceFileName),
             Publish<T>("FieldDelimiter", &T::GetFieldDelimiter, &T::SetFieldDelimiter, DelimiterNames),
             Publish<T>("FieldDelimiterCustom", &T::GetFieldDelimiterCustom, &T::SetFieldDelimiterCustom),
             Publish("Way", &T::Way, WayNames), Publish("Number", &T::Number),
             Publish("Extensions", &T::Extensions, RuleNames)});
    }

    using TKvImportBaseComponent::GetFieldDelimiter;
    using TKvImportBaseComponent::GetFieldDelimiterCustom;
    using TKvImportBaseComponent::SetFieldDelimiter;
    using TKvImportBaseComponent::SetFieldDelimiterCustom;
    using TKvImportBaseComponent::SourceFileName;
    TWay Way = wyShort;
    int Number = 1;
    TRules Extensions;
};

/// One of another class: some settings have the same name, not all of them the same meaning.
class TOtherImport final : public TKvImportBaseComponent
{
public:
    TPublishedProperties PublishedProperties() const override
    {
        static constexpr std::string_view RuleNames[] = {"otThird", "otOwn", "otFirst"};
        static constexpr std::string_view WayNames[] = {"wyLong", "wyLonger"};
        using T = TOtherImport;
        return PublishAfter(TKvImportBaseComponent::PublishedProperties(),
                            {Publish("SourceFileName", &T::SourceFileName), Publish("Way", &T::Way, WayNames),
                             Publish("Number", &T::Number),
                             Publish("Extensions", &T::Extensions, RuleNames)});
    }

    using TKvImportBaseComponent::SourceFileName;
    TWay Way = wyShort;                             // published as other values
    std::string Number = "one";
    TRules Extensions;
};

struct KvibaseSettings : testing::Test
{
    TMemoryDataSet Table;
    TRuledImport Import, Taker;
};

TEST_F(KvibaseSettings, AreTakenByNameAllThatAreCommon)
{
    Import.AnimatedStatus = false;
    Import.CharacterSet = csiASCII_MSDOS;
    Import.DatasetKeys = "ID";
    Import.SetMappings({"ID=Field1", " NAME = Field2 "});
    Import.Mode = imUpdate;
    Import.Options = {soShowMessage};
    Import.TitleStatus = "Orders";
    Import.RunExtensions = {rxTimedProgress};
    Import.SourceFileName = "orders.csv";
    Import.Way = wyLong;
    Import.Number = 7;
    Import.Extensions = {ruFirst, ruThird};
    Import.DataFormats.BooleanTrue = "yes";
    Import.DataFormats.DateOrder = doYMD;
    Taker.Extensions = {ruSecond};
    Taker.TakeSettings(Import);
    for (const auto& Property : Taker.PublishedProperties()) {
        const auto Value = [&](const TPersistent& Of) {
            return Property.Get ? Property.Get(Of) : TVariant();
        };
        EXPECT_EQ(Value(Taker), Value(Import)) << Property.Name;
    }
    EXPECT_EQ(Taker.DataFormats.BooleanTrue, "yes");
    EXPECT_EQ(Taker.DataFormats.DateOrder, doYMD);
}

TEST_F(KvibaseSettings, AreCopiesOfTheirOwn)
{
    Import.SetMappings({"ID=Field1"});
    Taker.TakeSettings(Import);
    Import.SetMappings({});
    Import.DataFormats.BooleanTrue = "yes";
    EXPECT_EQ(Taker.Mappings(), TStrings{"ID=Field1"});
    EXPECT_EQ(Taker.DataFormats.BooleanTrue, "True");
}

TEST_F(KvibaseSettings, TheDestinationIsSharedAndForgottenByBoth)
{
    {
        TMemoryDataSet Other;
        Import.SetDataSet(&Other);
        Taker.TakeSettings(Import);
        EXPECT_EQ(Taker.GetDataSet(), &Other);
    }
    EXPECT_EQ(Taker.GetDataSet(), nullptr);
    Taker.SetDataSet(&Table);
    Taker.TakeSettings(Import);                     // which has none now
    EXPECT_EQ(Taker.GetDataSet(), nullptr);
}

TEST_F(KvibaseSettings, HandlersAndFiguresAreNotTaken)
{
    Import.OnBeforeExecute = [](TKvImportBaseComponent&) {};
    Import.Statistic.TotalAdded = 7;
    Import.Statistic.UpdateStep = 100;
    Taker.TakeSettings(Import);
    EXPECT_FALSE(Taker.OnBeforeExecute);
    EXPECT_EQ(Taker.Statistic.TotalAdded, 0);
    EXPECT_EQ(Taker.Statistic.UpdateStep, 1);
}

TEST_F(KvibaseSettings, AChoiceAndItsCharacterStayInStep)
{
    for (const char Delimiter : {';', '|', '\0', ','}) {
        Import.SetFieldDelimiterCustom(Delimiter);
        Taker.TakeSettings(Import);
        EXPECT_EQ(Taker.GetFieldDelimiterCustom(), Delimiter);
        EXPECT_EQ(Taker.GetFieldDelimiter(), Import.GetFieldDelimiter());
    }
    Import.SetFieldDelimiter(fdCustom);             // keeps the comma
    Taker.TakeSettings(Import);
    EXPECT_EQ(Taker.GetFieldDelimiter(), fdCustom);
    EXPECT_EQ(Taker.GetFieldDelimiterCustom(), ',');
}

TEST_F(KvibaseSettings, OfAnotherClassAreTakenWhereTheyMeanTheSame)
{
    TOtherImport Other;
    Import.SourceFileName = "orders.csv";
    Import.Mode = imCopy;
    Import.Way = wyLong;
    Import.Number = 7;
    Import.Extensions = {ruFirst, ruSecond};
    Other.Way = wyLong;                             // published as "wyLonger"
    Other.Extensions = {ruFirst, ruSecond};         // published as otThird and otOwn
    Other.TakeSettings(Import);
    EXPECT_EQ(Other.SourceFileName, "orders.csv");
    EXPECT_EQ(Other.Mode, imCopy);
    EXPECT_EQ(GetPropValue(Other, "Way"), TVariant(0)); // "wyLong" here
    EXPECT_EQ(Other.Number, "one");                 // of another kind
    EXPECT_EQ(Other.Extensions, (TRules{ruSecond, ruThird})); // otOwn stays, otFirst is taken, otThird goes
    Other.Way = wyLong;
    Import.TakeSettings(Other);
    EXPECT_EQ(Import.Way, wyLong);                  // which has no "wyLonger"
}

TEST_F(KvibaseSettings, OfItselfChangeNothing)
{
    Import.SetMappings({"ID=Field1"});
    Import.SetDataSet(&Table);
    Import.Extensions = {ruSecond};
    Import.TakeSettings(Import);
    EXPECT_EQ(Import.Mappings(), TStrings{"ID=Field1"});
    EXPECT_EQ(Import.GetDataSet(), &Table);
    EXPECT_EQ(Import.Extensions, TRules{ruSecond});
}

} // namespace

} // namespace kv
