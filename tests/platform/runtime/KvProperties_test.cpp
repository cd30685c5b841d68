#include "KvProperties.h"

#include <gtest/gtest.h>

#include <string>

#include "KvComponent.h"
#include "KvException.h"
#include "KvSettingsGuard.h"

namespace kv {
namespace {

constexpr std::string_view ColorNames[] = {"clRed", "clGreen", "clBlue"};

/// Publishes one property of every kind; each keeps the variant that it was set to.
class TSample : public TPersistent
{
public:
    std::string_view ClassName() const override { return "TSample"; }
    TPublishedProperties PublishedProperties() const override
    {
        return {Property("Number", pkInteger),
                Property("Flag", pkBoolean),
                Property("Letter", pkChar),
                Property("Caption", pkString),
                Property("Color", pkEnumeration, ColorNames),
                Property("Colors", pkSet, ColorNames),
                Property("Lines", pkStrings),
                {.Name = "Fixed", .Kind = pkInteger, .Get = [](const TPersistent&) { return TVariant(42); }},
                {.Name = "OnChange", .Kind = pkEvent}};
    }

    TVariant Value;

private:
    static TPublishedProperty Property(std::string_view Name, TPropertyKind Kind,
                                       std::span<const std::string_view> Names = {})
    {
        return {.Name = Name,
                .Kind = Kind,
                .Get = [](const TPersistent& Object) { return dynamic_cast<const TSample&>(Object).Value; },
                .Set = [](TPersistent& Object,
                          const TVariant& New) { dynamic_cast<TSample&>(Object).Value = New; },
                .Names = Names};
    }
};

TEST(KvProperties, AreFoundInAnyCase)
{
    const auto Properties = TSample().PublishedProperties();
    ASSERT_NE(FindProperty(Properties, "nUMBER"), nullptr);
    EXPECT_EQ(FindProperty(Properties, "nUMBER")->Name, "Number");
    EXPECT_EQ(FindProperty(Properties, "Numbers"), nullptr);
    EXPECT_EQ(FindProperty(Properties, ""), nullptr);
}

TEST(KvProperties, AreReadByName)
{
    TSample Sample;
    Sample.Value = 7;
    EXPECT_EQ(GetPropValue(Sample, "number"), TVariant(7));
    EXPECT_EQ(GetPropValue(Sample, "Fixed"), TVariant(42));
}

TEST(KvProperties, TakeValuesThatSuitTheirKind)
{
    struct TRow
    {
        const char* Name;
        TVariant Given, Taken;
    };
    const TRow Rows[] = {
        {"Number", -5, -5},
        {"Number", " +12 ", 12},
        {"Number", "-2147483648", std::int64_t{-2147483648}},
        {"Number", 2147483647, 2147483647},
        {"Flag", true, true},
        {"Flag", "TRUE", true},
        {"Flag", "1", true},
        {"Flag", 1, true},
        {"Flag", "false", false},
        {"Flag", "0", false},
        {"Letter", ";", ";"},
        {"Letter", " ", " "},
        {"Caption", "text", "text"},
        {"Caption", "", ""},
        {"Caption", 12, "12"},
        {"Color", 2, 2},
        {"Color", "CLGREEN", 1},
        {"Color", "0", 0},
        {"Colors", 7, 7},
        {"Colors", "0", 0},
        {"Lines", "a\r\nb\r\n", "a\r\nb\r\n"},
    };
    for (const auto& Row : Rows) {
        TSample Sample;
        SetPropValue(Sample, Row.Name, Row.Given);
        EXPECT_EQ(Sample.Value, Row.Taken) << Row.Name << " = " << Row.Given.ToText();
    }
}

TEST(KvProperties, RefuseValuesThatDoNotSuit)
{
    struct TRow
    {
        const char* Name;
        TVariant Value;
    };
    const TRow Rows[] = {
        {"Number", "five"}, {"Number", 1.5},  {"Number", Null}, {"Number", ""},    {"Flag", "yes"},
        {"Flag", 2},        {"Flag", Null},   {"Letter", ""},   {"Letter", ",;"},  {"Letter", 1},
        {"Color", 3},       {"Color", -1},    {"Color", "cl"},  {"Color", true},   {"Colors", 8},
        {"Colors", -1},     {"Colors", "x"},  {"Number", std::int64_t{1} << 31}, {"Number", "-2147483649"},
    };
    for (const auto& Row : Rows) {
        TSample Sample;
        EXPECT_EQ(MessageOf<EPropertyError>([&] { SetPropValue(Sample, Row.Name, Row.Value); }),
                  "'" + Row.Value.ToText() + "' is not a valid value for property TSample." + Row.Name);
        EXPECT_TRUE(Sample.Value.IsEmpty());
    }
    TSample Sample;
    EXPECT_EQ(MessageOf<EPropertyError>([&] { SetPropValue(Sample, "Caption", TVariant::Array(0, 1)); }),
              "'Array' is not a valid value for property TSample.Caption");
}

TEST(KvProperties, RefuseWhatIsNotThere)
{
    TSample Sample;
    EXPECT_EQ(MessageOf<EPropertyError>([&] { GetPropValue(Sample, "Size"); }),
              "TSample has no property \"Size\"");
    EXPECT_EQ(MessageOf<EPropertyError>([&] { SetPropValue(Sample, "Size", 1); }),
              "TSample has no property \"Size\"");
    EXPECT_EQ(MessageOf<EPropertyError>([&] { SetPropValue(Sample, "fixed", 1); }),
              "Property TSample.Fixed is read-only");
    EXPECT_EQ(MessageOf<EPropertyError>([&] { GetPropValue(Sample, "OnChange"); }),
              "Property TSample.OnChange has no value");
}

} // namespace
} // namespace kv
