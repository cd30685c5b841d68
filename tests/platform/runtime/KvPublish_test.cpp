#include "KvPublish.h"

#include <gtest/gtest.h>

#include <string>

#include "KvException.h"
#include "KvSettingsGuard.h"

namespace kv {
namespace {

enum TColor { clRed, clGreen };
constexpr std::string_view ColorNames[] = {"clRed", "clGreen"};

class TSample : public TPersistent
{
public:
    int Number = 1;
    bool Flag = false;
    char Letter = ',';
    std::string Caption = "caption";
    TColor Color = clGreen;
    TSet<TColor> Colors{clRed};
    TStrings Lines{"a"};
    TSample* Next = nullptr;

    int GetDouble() const { return 2 * Number; }
    void SetDouble(int Value) { Number = Value / 2; }
    TSample* GetNext() const { return Next; }
    void SetNext(TSample* Value) { Next = Value; }

    TPublishedProperties PublishedProperties() const override
    {
        return {Publish("Number", &TSample::Number),
                Publish("Flag", &TSample::Flag),
                Publish("Letter", &TSample::Letter),
                Publish("Caption", &TSample::Caption),
                Publish("Color", &TSample::Color, ColorNames),
                Publish("Colors", &TSample::Colors, ColorNames),
                PublishStrings("Lines", &TSample::Lines),
                NotStored(Publish<TSample>("Double", &TSample::GetDouble, &TSample::SetDouble)),
                PublishObject<TSample>("Self",
                                       [](const TSample& Self) { return const_cast<TSample*>(&Self); }),
                PublishReference("Next", &TSample::GetNext, &TSample::SetNext),
                PublishEvent("OnChange")};
    }
};

TEST(KvPublish, ReadsAndWritesMembers)
{
    struct TRow
    {
        const char* Name;
        TPropertyKind Kind;
        TVariant Before, After;
    };
    const TRow Rows[] = {
        {"Number", pkInteger, 1, -7},
        {"Flag", pkBoolean, false, true},
        {"Letter", pkChar, ",", ";"},
        {"Caption", pkString, "caption", ""},
        {"Color", pkEnumeration, 1, 0},
        {"Colors", pkSet, 1, 3},
        {"Lines", pkStrings, "a\r\n", "b\r\nc\r\n"},
        {"Double", pkInteger, 2, 10},
    };
    for (const auto& Row : Rows) {
        TSample Sample;
        EXPECT_EQ(FindProperty(Sample.PublishedProperties(), Row.Name)->Kind, Row.Kind) << Row.Name;
        EXPECT_EQ(GetPropValue(Sample, Row.Name), Row.Before) << Row.Name;
        SetPropValue(Sample, Row.Name, Row.After);
        EXPECT_EQ(GetPropValue(Sample, Row.Name), Row.After) << Row.Name;
    }
}

TEST(KvPublish, ReferencesAreSetAndPartsAreNot)
{
    TSample Sample, Other;
    const auto Properties = Sample.PublishedProperties();
    const auto& Next = *FindProperty(Properties, "Next");
    Next.SetObject(Sample, &Other);
    EXPECT_EQ(Sample.Next, &Other);
    EXPECT_EQ(Next.GetObject(Sample), &Other);
    Next.SetObject(Sample, nullptr);
    EXPECT_EQ(Sample.Next, nullptr);
    EXPECT_FALSE(FindProperty(Properties, "Self")->SetObject);
}

TEST(KvPublish, APlaceSaysSo)
{
    EXPECT_TRUE(AsPlace(Publish("Number", &TSample::Number)).Place);
    EXPECT_FALSE(Publish("Number", &TSample::Number).Place);
}

TEST(KvPublish, DefaultsAreThoseOfANewObject)
{
    TSample Sample;
    const auto Properties = WithDefaults(TSample());
    for (const auto& Property : Properties)
        EXPECT_FALSE(IsChanged(Property, Sample)) << Property.Name;
    Sample.Caption = "other";
    Sample.Color = clRed;
    Sample.Lines.Clear();
    std::string Changed;
    for (const auto& Property : Properties)
        if (IsChanged(Property, Sample))
            Changed += std::string(Property.Name) + " ";
    EXPECT_EQ(Changed, "Caption Color Lines ");
    for (const auto& Property : Properties)
        ResetToDefault(Property, Sample);
    EXPECT_EQ(Sample.Caption, "caption");
    EXPECT_EQ(Sample.Color, clGreen);
    EXPECT_EQ(Sample.Lines, TStrings{"a"});
}

TEST(KvPublish, WithoutADefaultNothingIsChangedOrReset)
{
    TSample Sample;
    Sample.Number = 7;
    const auto Properties = Sample.PublishedProperties();
    for (const auto& Property : Properties) {
        EXPECT_FALSE(IsChanged(Property, Sample)) << Property.Name;
        ResetToDefault(Property, Sample);
    }
    EXPECT_EQ(Sample.Number, 7);
}

TEST(KvPublish, MembersAreSetFromTexts)
{
    TSample Sample;
    for (const auto& [Name, Text] : {std::pair("Number", "-7"), {"Flag", "TRUE"}, {"Color", "clred"},
                                     {"Colors", "2"}})
        SetPropValue(Sample, Name, Text);
    EXPECT_EQ(Sample.Number, -7);
    EXPECT_TRUE(Sample.Flag);
    EXPECT_EQ(Sample.Color, clRed);
    EXPECT_EQ(Sample.Colors, TSet<TColor>{clGreen});
}

TEST(KvPublish, AValueThatDoesNotSuitLeavesTheMember)
{
    TSample Sample;
    EXPECT_EQ(MessageOf<EPropertyError>([&] { SetPropValue(Sample, "Number", std::int64_t{1} << 31); }),
              "'2147483648' is not a valid value for property TPersistent.Number");
    EXPECT_EQ(Sample.Number, 1);
}

TEST(KvPublish, AddsTheOwnPropertiesBehindThoseOfTheBaseClass)
{
    const auto Properties = PublishAfter({PublishEvent("OnFirst"), PublishEvent("OnSecond")},
                                         {PublishEvent("OnOwn")});
    ASSERT_EQ(Properties.size(), 3U);
    EXPECT_EQ(Properties[0].Name, "OnFirst");
    EXPECT_EQ(Properties[2].Name, "OnOwn");
}

TEST(KvPublish, GivesTheObjectOfAReference)
{
    const TSample Sample;
    const auto Properties = Sample.PublishedProperties();
    const auto* const Self = FindProperty(Properties, "Self");
    EXPECT_EQ(Self->Kind, pkObject);
    EXPECT_EQ(Self->GetObject(Sample), &Sample);
}

TEST(KvPublish, TellsWhatIsSavedWithTheObject)
{
    const auto Properties = TSample().PublishedProperties();
    EXPECT_TRUE(FindProperty(Properties, "Number")->Stored);
    EXPECT_FALSE(FindProperty(Properties, "Double")->Stored);
}

} // namespace
} // namespace kv
