// The rules of XML, each beside the older one that it replaces.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "KvMarkupRun.h"

using namespace std::string_literals;
using testing::ElementsAre;
using testing::IsEmpty;

namespace kv {

namespace {

using TReadings = TReadingsWith<TKvIXMLExtensions>;

TRows ImportedFile(const std::string& Text, TKvIXMLExtensions Extensions)
{
    return TXmlRun(Text, Extensions).Run();
}

TRows Imported(const std::string& Records, TKvIXMLExtensions Extensions)
{
    return ImportedFile("<ROWDATA>" + Records + "</ROWDATA>", Extensions);
}

struct TRefused
{
    const char* Name;
    std::string Text;
    const char* Message;
};
void PrintTo(const TRefused& Refused, std::ostream* Out) { *Out << Refused.Text; }

} // namespace

class Kvi2xmlReads : public testing::TestWithParam<TReadings> {};

TEST_P(Kvi2xmlReads, ClassicThenExtended)
{
    EXPECT_EQ(Imported(GetParam().Text, {}), GetParam().Classic);
    EXPECT_EQ(Imported(GetParam().Text, GetParam().Extensions), GetParam().Extended);
}

INSTANTIATE_TEST_SUITE_P(Syntax, Kvi2xmlReads, testing::Values(
    TReadings{"SingleQuotes", {xxTagSyntax}, "<R a='1\"' b=\"2'\"/>", {"a|2'|c"}, {"1\"|2'|c"}},
    TReadings{"BlanksAroundEquals", {xxTagSyntax}, "<R a = \"1\" b\n=\n'2'/>", {"a|b|c"}, {"1|2|c"}},
    TReadings{"QuotedGreaterSign", {xxTagSyntax}, "<R a=\"1>2\" b='>'/>", {"a|b|c", "a|b|c", "a|b|c"},
              {"1>2|>|c"}},
    TReadings{"LineBreaksInAValue", {xxTagSyntax}, "<R a=\"1\r\n2\n3\r4\t5\"/>", {"1234\t5|b|c"},
              {"1 2 3 4 5|b|c"}},
    TReadings{"EndTags", {xxTagSyntax}, "<R a=\"1\"></R ><R a=\"2\">\n</R>", {"1|b|c", "a|b|c", "2|b|c",
              "a|b|c"}, {"1|b|c", "2|b|c"}},
    TReadings{"BlankBeforeTheEnd", {xxTagSyntax}, "<R a=\"1\" /><R/>", {"1|b|c", "a|b|c"},
              {"1|b|c", "a|b|c"}},
    TReadings{"Comments", {xxTagSyntax}, "<!-- <R a=\"0\"/> --><R a=\"1\"/>", {"0|b|c", "a|b|c", "1|b|c"},
              {"1|b|c"}},
    TReadings{"CharacterData", {xxTagSyntax}, "<R a=\"1\"><![CDATA[<R a=\"2\"/>]]></R>",
              {"1|b|c", "2|b|c", "a|b|c", "a|b|c"}, {"1|b|c"}},
    TReadings{"Instructions", {xxTagSyntax}, "<?x a=\"0\"?><R a=\"1\"/>", {"0|b|c", "1|b|c"}, {"1|b|c"}},
    TReadings{"ElementsInsideARecord", {xxTagSyntax}, "<R a=\"1\"><N><S a=\"2\"/></N></R>",
              {"1|b|c", "a|b|c", "2|b|c", "a|b|c", "a|b|c"}, {"1|b|c"}},
    TReadings{"NoNameInsideAValue", {xxTagSyntax}, "<R x='a=\"1\"' a=\"2\"/>", {"1|b|c"}, {"2|b|c"}},
    TReadings{"NamesStillMatchTheEndOfOthers", {xxTagSyntax}, "<R xa=\"1\" a=\"2\"/>", {"1|b|c"},
              {"1|b|c"}}), NameOfRow);

INSTANTIATE_TEST_SUITE_P(Names, Kvi2xmlReads, testing::Values(
    TReadings{"AreWhole", {xxWholeNames}, "<R xa=\"1\" A=\"2\"/>", {"1|b|c"}, {"2|b|c"}},
    TReadings{"AreWholeBehindALineBreak", {xxWholeNames}, "<R xa=\"1\" \n A=\"2\"/>", {"1|b|c"}, {"2|b|c"}},
    TReadings{"AreWholeInXml", {xxWholeNames, xxTagSyntax}, "<R xa=\"1\" A = '2'/>", {"1|b|c"},
              {"2|b|c"}}), NameOfRow);

INSTANTIATE_TEST_SUITE_P(References, Kvi2xmlReads, testing::Values(
    TReadings{"AreCharacters", {xxReferences}, "<R a=\"&lt;&gt;&amp;&quot;&apos;\" b=\"&#65;&#x20AC;\"/>",
              {"&lt;&gt;&amp;&quot;&apos;|&#65;&#x20AC;|c"}, {"<>&\"'|A\u20AC|c"}},
    TReadings{"OthersStay", {xxReferences}, "<R a=\"&nbsp; & &x\"/>", {"&nbsp; & &x|b|c"},
              {"&nbsp; & &x|b|c"}},
    TReadings{"ToLineBreaksKeepThem", {xxReferences, xxTagSyntax}, "<R a=\"1&#13;&#10;2\n3&#9;4\"/>",
              {"1&#13;&#10;23&#9;4|b|c"}, {"1\r\n2 3\t4|b|c"}},
    TReadings{"AreReadOnce", {xxReferences}, "<R a=\"&amp;lt;\"/>", {"&amp;lt;|b|c"}, {"&lt;|b|c"}}),
    NameOfRow);

INSTANTIATE_TEST_SUITE_P(Missing, Kvi2xmlReads, testing::Values(
    TReadings{"AreNoValue", {xxMissingIsNull}, "<R b=\"2\" c=\"3/>", {"a|2|c"}, {"-|2|-"}},
    TReadings{"AreNoValueInXml", {xxMissingIsNull, xxTagSyntax}, "<R b=\"2\" c=\"\"/>", {"a|2|-"},
              {"-|2|-"}}), NameOfRow);

// Sections.

TEST(Kvi2xmlSyntax, SectionsMayHaveAttributes)
{
    EXPECT_THAT(ImportedFile("<P><ROWDATA x='y'><R a=\"1\"/></ROWDATA ></P>", {xxTagSyntax}),
                ElementsAre("1|b|c"));
}

TEST(Kvi2xmlSyntax, AnEmptySectionHasNoRecords)
{
    EXPECT_THAT(ImportedFile("<P><ROWDATA/><R a=\"1\"/></P>", {xxTagSyntax}), IsEmpty());
}

TEST(Kvi2xmlSyntax, ADoctypeIsSkipped)
{
    const std::string Doctype = "<!DOCTYPE p SYSTEM \"a>b\" [<!ENTITY x '<ROWDATA>'>]>";
    EXPECT_THAT(ImportedFile(Doctype + "<ROWDATA><R a=\"1\"/></ROWDATA>", {xxTagSyntax}),
                ElementsAre("1|b|c"));
}

TEST(Kvi2xmlSyntax, ARowTagTakesThePlaceOfRowdata)
{
    TXmlRun Import("<P><ROWDATA><ROW a=\"1\"><Lines><L a=\"2\"/><L a=\"3\"/></Lines></ROW>"
                   "<ROW><lines><L a=\"4\"/></lines></ROW></ROWDATA></P>");
    Import.Extensions = {xxTagSyntax};
    Import.TableName = "LINES";
    EXPECT_THAT(Import.Run(), ElementsAre("2|b|c", "3|b|c", "4|b|c"));
}

TEST(Kvi2xmlSyntax, FieldsAreNamedByAttrname)
{
    TXmlRun Import(
        "<P><FIELDS><FIELD width=\"C\" attrname='a'/><FIELD x=\"B\"/><FIELD/><FIELD attrname=\"n\">"
        "<FIELDS><FIELD attrname=\"c\"/></FIELDS></FIELD></FIELDS></P>");
    Import.RowFirst = 2;
    EXPECT_THAT(Import.DetectedMappings(), ElementsAre("B=B", "C=C"));
    Import.Extensions = {xxTagSyntax};
    EXPECT_THAT(Import.DetectedMappings(), ElementsAre("A=a", "B=B"));
}

class Kvi2xmlRefuses : public testing::TestWithParam<TRefused> {};

TEST_P(Kvi2xmlRefuses, WhatIsNoXmlBeforeItWrites)
{
    TXmlRun Import(GetParam().Text, {xxTagSyntax});
    EXPECT_EQ(Import.RunAndFail(), GetParam().Message);
    EXPECT_EQ(Import.Destination.RecordCount(), 0);
}

INSTANTIATE_TEST_SUITE_P(, Kvi2xmlRefuses, testing::Values(
    TRefused{"CutOffInAValue", "<ROWDATA>\n<R a=\"1\"/>\n<R a=\"2",
             "Line 3 of FILE is no XML: the attribute \"a\" has a value that does not end"},
    TRefused{"CutOffInATag", "<ROWDATA><R a=\"1\"", "Line 1 of FILE is no XML: the tag \"R\" does not end"},
    TRefused{"CutOffBetweenTags", "<ROWDATA><R a=\"1\"/>",
             "Line 1 of FILE is no XML: the text ends inside the element \"ROWDATA\""},
    TRefused{"WrongEndTag", "<ROWDATA><R></ROWDATA></R>",
             "Line 1 of FILE is no XML: the tag \"/ROWDATA\" ends no element that is open"},
    TRefused{"EndTagTooMany", "<ROWDATA/></R>",
             "Line 1 of FILE is no XML: the tag \"/R\" ends no element that is open"},
    TRefused{"EndTagCutOff", "<ROWDATA><R></R", "Line 1 of FILE is no XML: the tag \"/R\" does not end"},
    TRefused{"NoName", "<ROWDATA>\r\n1 < 2", "Line 2 of FILE is no XML: a name is missing"},
    TRefused{"AttributeWithoutAValue", "<ROWDATA><R a b=\"1\"/>",
             "Line 1 of FILE is no XML: the attribute \"a\" has no value"},
    TRefused{"ValueWithoutQuotes", "<ROWDATA><R a=1/>",
             "Line 1 of FILE is no XML: the attribute \"a\" has a value without quotes"},
    TRefused{"SlashInATag", "<ROWDATA><R / a=\"1\">", "Line 1 of FILE is no XML: the tag \"R\" does not end"},
    TRefused{"CommentWithoutEnd", "<ROWDATA/>\n<!-- x ->",
             "Line 2 of FILE is no XML: nothing ends what begins here"},
    TRefused{"CharacterDataWithoutEnd", "<ROWDATA><![CDATA[ ]>",
             "Line 1 of FILE is no XML: nothing ends what begins here"},
    TRefused{"InstructionWithoutEnd", "<?xml", "Line 1 of FILE is no XML: nothing ends what begins here"},
    TRefused{"DoctypeWithoutEnd", "<!DOCTYPE [>",
             "Line 1 of FILE is no XML: nothing ends what begins here"}), NameOfRow);

TEST(Kvi2xmlSyntax, ElementsStandAThousandDeepAtMost)
{
    std::string Deep, Ends;
    for (int I = 0; I < 1000; ++I) {
        Deep += "<x>";
        Ends += "</x>";
    }
    EXPECT_THAT(ImportedFile(Deep + Ends, {xxTagSyntax}), IsEmpty());
    TXmlRun Import(Deep + "<x>" + Ends + "</x>", {xxTagSyntax});
    EXPECT_EQ(Import.RunAndFail(),
              "Line 1 of FILE is no XML: elements stand more than 1000 deep in each other");
}

// The encoding.

TEST(Kvi2xmlEncoding, IsTheDeclaredOne)
{
    const std::string File = "<?xml version=\"1.0\" encoding=\"ISO-8859-2\"?><ROWDATA><R "
                             "a=\"\xB3\"/></ROWDATA>";
    EXPECT_THAT(ImportedFile(File, {}), ElementsAre("\xB3|b|c"));
    EXPECT_THAT(ImportedFile(File, {xxEncoding}), ElementsAre("\u0142|b|c"));
}

TEST(Kvi2xmlEncoding, Utf16IsRecognisedWithAMarkOrWithout)
{
    std::string File;
    for (const char Char : "<ROWDATA><R a=\"1\"/></ROWDATA>"s)
        File += {'\0', Char};
    EXPECT_THAT(ImportedFile(File, {}), IsEmpty());
    EXPECT_THAT(ImportedFile(File, {xxEncoding}), ElementsAre("1|b|c"));
    EXPECT_THAT(ImportedFile("\xFE\xFF" + File, {xxEncoding}), ElementsAre("1|b|c"));
}

TEST(Kvi2xmlEncoding, AZeroByteIsNoText)
{
    TXmlRun Import("<ROWDATA>\0</ROWDATA>"s, {xxEncoding});
    EXPECT_EQ(Import.RunAndFail(), "File \"FILE\" has a zero byte at offset 9, as no text of its kind has");
}

} // namespace kv
