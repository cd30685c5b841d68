#include "KvXmlFields.h"

#include <gtest/gtest.h>

#include <string>

namespace kv {

namespace {

TKvXmlField Declared(const std::string& Tag)
{
    TKvXmlAttributes Attributes;
    CutClassicAttributes(Tag, Attributes);
    return DeclaredXmlField("x", Attributes);
}

} // namespace

TEST(KvXmlFields, ATypeThatIsKnownHasItsField)
{
    EXPECT_EQ(Declared("<FIELD fieldtype=\"r8\"/>").DataType, ftFloat);
    EXPECT_EQ(Declared("<FIELD fieldtype=\"r8\" SUBTYPE=\"Money\"/>").DataType, ftCurrency);
    EXPECT_EQ(Declared("<FIELD fieldtype=\"r8\" SUBTYPE=\"other\"/>").DataType, ftFloat);
    EXPECT_EQ(Declared("<FIELD fieldtype=\"datetime\"/>").DataType, ftDateTime);
    EXPECT_EQ(Declared("<FIELD fieldtype=\"bin.hex\" SUBTYPE=\"Text\" WIDTH=\"1\"/>").DataType, ftMemo);
    EXPECT_EQ(Declared("<FIELD fieldtype=\"bin.hex\" SUBTYPE=\"Graphics\"/>").DataType, ftBlob);
    EXPECT_EQ(Declared("<FIELD fieldtype=\"bin.hex\"/>").DataType, ftBlob);
}

TEST(KvXmlFields, ATypeThatIsNotKnownKeepsItsName)
{
    const auto Field = Declared("<FIELD fieldtype=\"nested\"/>");
    EXPECT_EQ(Field.Name, "x");
    EXPECT_EQ(Field.TypeName, "nested");
    EXPECT_EQ(Field.DataType, ftUnknown);
    EXPECT_EQ(Declared("<FIELD/>").TypeName, "");
}

TEST(KvXmlFields, TextsAloneHaveASize)
{
    EXPECT_EQ(Declared("<FIELD fieldtype=\"string\" WIDTH=\"20\"/>").Size, 20);
    EXPECT_EQ(Declared("<FIELD fieldtype=\"fixed\" WIDTH=\"18\"/>").Size, 0);
    EXPECT_EQ(Declared("<FIELD fieldtype=\"string\" WIDTH=\"-1\"/>").Size, 0);
    EXPECT_EQ(Declared("<FIELD fieldtype=\"string\" WIDTH=\"99999999999\"/>").Size, 0);
    EXPECT_EQ(Declared("<FIELD fieldtype=\"string\" WIDTH=\"many\"/>").Size, 0);
}

} // namespace kv
