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
    int Offset;
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

INSTANTIATE_TEST_SUITE_P(
    RowStates, Kvi2xmlReads,
    testing::Values(
        TReadings{
            "OfReplacedRecords",
            {xxTagSyntax, xxRowState},
            "<R RowState=\"5\" a=\"1\"/><R RowState=\"12\" a=\"2\"/><R RowState=\"2\" a=\"3\"/><R a=\"4\"/>"
            "<R a=\"5\" RowState='4'/><R RowState=\"6\" a=\"6\"/><R a=\"7\" RowState=\"\"/><R a=\"8\" "
            "RowState=\"0\"/>",
            {"1|b|c", "2|b|c", "3|b|c", "4|b|c", "5|b|c", "6|b|c", "7|b|c", "8|b|c"},
            {"2|b|c", "4|b|c", "5|b|c", "7|b|c", "8|b|c"}},
        TReadings{"OfTheElementsAroundThem",
                  {xxTagSyntax, xxRowState},
                  "<R a=\"1\"/><R RowState=\"1\"><R a=\"2\"/></R>",
                  {"1|b|c", "a|b|c", "2|b|c", "a|b|c"},
                  {"1|b|c"}},
        TReadings{
            "AreRecordsAllTheSame", {xxTagSyntax}, "<R RowState=\"2\" a=\"1\"/>", {"1|b|c"}, {"1|b|c"}}),
    NameOfRow);

INSTANTIATE_TEST_SUITE_P(
    Elements, Kvi2xmlReads,
    testing::Values(
        TReadings{"AreValues",
                  {xxTagSyntax, xxElementValues},
                  "<R><a>1</a>\n<B> x </B></R><R c='3'><a/><b></b></R>",
                  TRows(11, "a|b|c"),
                  {"1| x |c", "-|-|3"}},
        TReadings{
            "HoldReferencesAndCharacterData",
            {xxTagSyntax, xxElementValues, xxReferences},
            "<R><a>1 &lt; <!-- no > -->2</a><b>x<![CDATA[<&amp;>]]>\"y\"</b><c>1\r\n2&#13;<?x>?>\t3</c></R>",
            TRows(14, "a|b|c"),
            {"1 < 2|x<&amp;>\"y\"|1\n2\r\t3"}},
        TReadings{"ThatHoldOthersAreNone",
                  {xxTagSyntax, xxElementValues},
                  "<R b='2'><a><x>1</x></a><c>3</c><c>4</c><b>5</b></R>",
                  TRows(12, "a|b|c"),
                  {"a|2|3"}},
        TReadings{"AreNoneOfTheRecord",
                  {xxTagSyntax},
                  "<R><a>1</a></R>",
                  {"a|b|c", "a|b|c", "a|b|c", "a|b|c"},
                  {"a|b|c"}}),
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

TEST(Kvi2xmlSyntax, TextsOfADoctypeHoldNoBrackets)
{
    for (const std::string Subset :
         {"<!ENTITY x \"a]b\">", "<!-- don't [1] won't --> <!ENTITY x \"y\">", "<!-- it's ]> -->",
          "<?x ]> ?>", "<!ELEMENT a (b)> <!ATTLIST a b CDATA ']>'>", "%p; x"})
        EXPECT_THAT(ImportedFile("<!DOCTYPE p [" + Subset + "]><ROWDATA><R a=\"it's\"/><R a='2'/></ROWDATA>",
                                 {xxTagSyntax}),
                    ElementsAre("it's|b|c", "2|b|c"))
            << Subset;
}

TEST(Kvi2xmlSyntax, EntitiesOfADoctypeStandForTheirTexts)
{
    const std::string Packet =
        "<!DOCTYPE p [<!ENTITY co \"Acme &amp; &sons;\"><!ENTITY sons 'Sons'>"
        "<!ENTITY co 'other'><!ENTITY far SYSTEM \"file\"><!ENTITY % part 'x'>]>"
        "<ROWDATA><R a=\"&co; Ltd\" b=\"&undef;&far;&part;\" c=\"&sons;&sons;\"/></ROWDATA>";
    EXPECT_THAT(ImportedFile(Packet, {xxTagSyntax, xxReferences}),
                ElementsAre("Acme & Sons Ltd|&undef;&far;&part;|SonsSons"));
    EXPECT_THAT(ImportedFile(Packet, {xxTagSyntax}), ElementsAre("&co; Ltd|&undef;&far;&part;|&sons;&sons;"));
}

TEST(Kvi2xmlSyntax, NamesOfSectionsAreThoseOfXml)
{
    EXPECT_THAT(ImportedFile("<P><rowdata><R a=\"1\"/></rowdata></P>", {xxTagSyntax}), IsEmpty());
    EXPECT_THAT(ImportedFile("<P><ROWDATA><R a=\"1\"/></ROWDATA></P>", {xxTagSyntax}), ElementsAre("1|b|c"));
    TXmlRun Import("<P><fields><FIELD attrname=\"a\"/></fields><FIELDS><FIELD attrname=\"b\"/></FIELDS></P>",
                   {xxTagSyntax});
    Import.RowFirst = 2;
    EXPECT_THAT(Import.DetectedMappings(), ElementsAre("B=b"));
}

TEST(Kvi2xmlSyntax, WhatStandsBehindASectionIsNoRecord)
{
    EXPECT_THAT(ImportedFile("<P><ROWDATA><R a=\"1\"/></ROWDATA><R a=\"2\"/><Q><R a=\"3\"/></Q>"
                             "<ROWDATA><R a=\"4\"/></ROWDATA></P>",
                             {xxTagSyntax}),
                ElementsAre("1|b|c", "4|b|c"));
    EXPECT_THAT(
        ImportedFile("<P><ROWDATA><ROWDATA><R a=\"1\"/></ROWDATA><R a=\"2\"/></ROWDATA></P>", {xxTagSyntax}),
        ElementsAre("a|b|c", "2|b|c"))
        << "a section in a section is a record";
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
    EXPECT_EQ(Import.RunAndFail(),
              GetParam().Message + (" (offset " + std::to_string(GetParam().Offset) + ")"));
    EXPECT_EQ(Import.Destination.RecordCount(), 0);
}

INSTANTIATE_TEST_SUITE_P(
    , Kvi2xmlRefuses,
    testing::Values(
        TRefused{"CutOffInAValue", "<ROWDATA>\n<R a=\"1\"/>\n<R a=\"2", 24,
                 "Line 3 of FILE is no XML: the attribute \"a\" has a value that does not end"},
        TRefused{"CutOffInATag", "<ROWDATA><R a=\"1\"", 17,
                 "Line 1 of FILE is no XML: the tag \"R\" does not end"},
        TRefused{"CutOffBetweenTags", "<ROWDATA><R a=\"1\"/>", 19,
                 "Line 1 of FILE is no XML: the text ends inside the element \"ROWDATA\""},
        TRefused{"WrongEndTag", "<ROWDATA><R></ROWDATA></R>", 21,
                 "Line 1 of FILE is no XML: the tag \"/ROWDATA\" ends no element that is open"},
        TRefused{"EndTagTooMany", "<ROWDATA/></R>", 13,
                 "Line 1 of FILE is no XML: the tag \"/R\" ends no element that is open"},
        TRefused{"EndTagCutOff", "<ROWDATA><R></R", 15,
                 "Line 1 of FILE is no XML: the tag \"/R\" does not end"},
        TRefused{"NoName", "<ROWDATA>\r\n1 < 2", 14, "Line 2 of FILE is no XML: a name is missing"},
        TRefused{"AttributeWithoutAValue", "<ROWDATA><R a b=\"1\"/>", 12,
                 "Line 1 of FILE is no XML: the attribute \"a\" has no value"},
        TRefused{"ValueWithoutQuotes", "<ROWDATA><R a=1/>", 12,
                 "Line 1 of FILE is no XML: the attribute \"a\" has a value without quotes"},
        TRefused{"SlashInATag", "<ROWDATA><R / a=\"1\">", 13,
                 "Line 1 of FILE is no XML: the tag \"R\" does not end"},
        TRefused{"CommentWithoutEnd", "<ROWDATA/>\n<!-- x ->", 11,
                 "Line 2 of FILE is no XML: nothing ends what begins here"},
        TRefused{"CharacterDataWithoutEnd", "<ROWDATA><![CDATA[ ]>", 9,
                 "Line 1 of FILE is no XML: nothing ends what begins here"},
        TRefused{"InstructionWithoutEnd", "<?xml", 0,
                 "Line 1 of FILE is no XML: nothing ends what begins here"},
        TRefused{"Nothing", "", 0, "Line 1 of FILE is no XML: it has no element"},
        TRefused{"NothingButAComment", "\n<!-- x -->", 11, "Line 2 of FILE is no XML: it has no element"},
        TRefused{"NoTag", "\nhello", 1, "Line 2 of FILE is no XML: it begins with no tag"},
        TRefused{"TextBehind", "<ROWDATA/>\n x", 12,
                 "Line 2 of FILE is no XML: text stands behind its last element"},
        TRefused{"RecordWithoutEnd", "<ROWDATA><R><a>1</a></ROWDATA>", 29,
                 "Line 1 of FILE is no XML: the tag \"/ROWDATA\" ends no element that is open"},
        TRefused{"EntityWithoutEnd", "<!DOCTYPE p [<!ENTITY x 'y]><a/>", 0,
                 "Line 1 of FILE is no XML: nothing ends what begins here"},
        TRefused{"DoctypeWithoutEnd", "<!DOCTYPE [>", 0,
                 "Line 1 of FILE is no XML: nothing ends what begins here"}),
    NameOfRow);

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
              "Line 1 of FILE is no XML: elements stand more than 1000 deep in each other (offset 3003)");
}

// Types.

class Kvi2xmlTypes : public testing::Test
{
protected:
    static std::string Packet(const std::string& Type, const std::string& Value)
    {
        return "<P><FIELDS><FIELD attrname=\"V\" fieldtype=" + Type + "/></FIELDS><ROWDATA><ROW V=\"" +
               Value + "\"/></ROWDATA></P>";
    }

    /// What a field of type `Field` gets, as text.
    static std::string Got(const std::string& Type, const std::string& Value, TFieldType Field,
                           TKvIXMLExtensions Rules = {xxTagSyntax, xxFieldTypes})
    {
        TXmlRun Import(Packet(Type, Value), Rules);
        Import.SetFields({{.Name = "F", .DataType = Field}});
        Import.MapTo({"v"});
        Import.DataFormats.DecimalSeparator = ',';
        Import.DataFormats.ThousandSeparator = '.';
        const auto Errors = Import.RunAndRefuse();
        Import.DataFormats.DecimalSeparator = '.';
        Import.DataFormats.ThousandSeparator = ',';
        return Errors.empty() ? Import.FirstValues().at(0) : "!" + Errors.at(0);
    }
};

TEST_F(Kvi2xmlTypes, SayHowNumbersAreWrittenWhateverTheFormats)
{
    EXPECT_EQ(Got("\"r8\"", "1234.5", ftFloat), "1234.5");
    EXPECT_EQ(Got("\"r8\" SUBTYPE=\"Money\"", "-0.25", ftFloat), "-0.25");
    EXPECT_EQ(Got("\"fixed\"", "49788.7117", ftFloat), "49788.7117");
    EXPECT_EQ(Got("\"fixed\"", "49788.7117", ftString), "49788.7117") << "text stays as it is";
    EXPECT_EQ(Got("\"i4\"", "-13065", ftInteger), "-13065");
    EXPECT_EQ(Got("\"string\"", "1234.5", ftFloat), "12345") << "a text is read as the formats have it";
    EXPECT_EQ(Got("\"r8\"", "1234.5", ftFloat, {xxTagSyntax}), "12345") << "without the extension, too";
}

TEST_F(Kvi2xmlTypes, SayHowDatesAndTimesAreWritten)
{
    EXPECT_EQ(Got("\"date\"", "20220614", ftDate), Got("\"date\"", "20220614", ftDateTime));
    const auto Point = [](const std::string& Type, const std::string& Value) {
        TXmlRun Import(Packet(Type, Value), {xxTagSyntax, xxFieldTypes});
        const auto View = Import.Look({});
        const auto& Shown = View.Rows.at(0).Values.at(0).Value;
        return Shown.Kind() == vkDateTime ? Shown.DateTime().Days : -1.0;
    };
    EXPECT_EQ(Point("\"date\"", "18991231"), 1);
    EXPECT_EQ(Point("\"date\"", "20220614"), 44726);
    EXPECT_DOUBLE_EQ(Point("\"time\"", "18:00:00"), 0.75);
    EXPECT_DOUBLE_EQ(Point("\"time\"", "00:00:43200"), 43.2 / 86400);
    EXPECT_DOUBLE_EQ(Point("\"time\"", "00:00:43.200"), 43.2 / 86400);
    EXPECT_DOUBLE_EQ(Point("\"dateTime\"", "18991231T12:00:00000"), 1.5);
    EXPECT_DOUBLE_EQ(Point("\"datetime\"", "18991231 12:00:00"), 1.5);
    EXPECT_DOUBLE_EQ(Point("\"SQLdateTime\"", "18991231"), 1);
    for (const char* const Text : {"2022061", "202206141", "20220631", "2022-06-14", "20220614T", "x"})
        EXPECT_EQ(Point("\"date\"", Text), -1) << Text;
    for (const char* const Text : {"1:00:00", "01:00", "24:00:00", "01:00:00:00", "01:00:0000", "01.00.00"})
        EXPECT_EQ(Point("\"time\"", Text), -1) << Text;
    EXPECT_EQ(Point("\"dateTime\"", "20220614x01:00:00"), -1);
}

TEST_F(Kvi2xmlTypes, SayHowTruthIsWritten)
{
    EXPECT_EQ(Got("\"boolean\"", "TRUE", ftBoolean), "True");
    EXPECT_EQ(Got("\"boolean\"", "False", ftBoolean), "False");
    EXPECT_EQ(Got("\"boolean\"", "TRUE", ftString), "TRUE");
}

TEST_F(Kvi2xmlTypes, BytesAreInBase64)
{
    EXPECT_EQ(Got("\"bin.hex\" SUBTYPE=\"Binary\"", "YmluRA==", ftBlob), "binD");
    EXPECT_EQ(Got("\"bin.hex\"", "YmluRGE=", ftBlob), "binDa");
    EXPECT_EQ(Got("\"bin.hex\"", "Ymlu RGFi", ftBlob), "binDab");
    EXPECT_EQ(Got("\"bin.hex\"", "YmluRA==", ftMemo), "YmluRA==") << "where text goes they stay text";
    EXPECT_EQ(Got("\"bin.hex\" SUBTYPE=\"Text\"", "YmluRA==", ftBlob), "YmluRA==");
    for (const char* const Text : {"YmluRA=", "Ymlu=A==", "Ym!u", "Y===", "YmluR"})
        EXPECT_EQ(Got("\"bin.hex\"", Text, ftBlob), "!\"" + std::string(Text) + "\" is no base64");
    TXmlRun Import(Packet("\"bin.hex\"", ""), {xxTagSyntax, xxFieldTypes});
    EXPECT_EQ(Import.Look({}).Columns.at(0).DataType, ftBlob);
    TXmlRun Untyped(Packet("\"bin.hex\"", ""), {xxTagSyntax});
    EXPECT_EQ(Untyped.Look({}).Columns.at(0).DataType, ftMemo);
}

TEST(Kvi2xmlRowTag, RecordsOfAnotherTagHaveNoTypes)
{
    TXmlRun Import(
        "<P><FIELDS><FIELD attrname=\"a\" fieldtype=\"date\"/></FIELDS><L><R a=\"20220614\"/></L></P>",
        {xxTagSyntax, xxFieldTypes});
    Import.TableName = "L";
    EXPECT_THAT(Import.Run(), ElementsAre("20220614|b|c"));
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

TEST(Kvi2xmlEncoding, LabelsAreThoseOfTheWeb)
{
    const auto Packet = [](const std::string& Label, const std::string& Value) {
        return "<?xml version=\"1.0\" encoding=\"" + Label + "\"?><ROWDATA><R a=\"" + Value +
               "\"/></ROWDATA>";
    };
    EXPECT_THAT(ImportedFile(Packet("ISO-8859-1", "\x80"), {xxEncoding}), ElementsAre("\u20AC|b|c"));
    EXPECT_THAT(ImportedFile(Packet("UTF8", "\xE4 x"), {xxEncoding}), ElementsAre("\xE4 x|b|c"));
    EXPECT_THAT(ImportedFile(Packet("UTF-8", "\xE4 x"), {xxEncoding}), ElementsAre("\xE4 x|b|c"));
}

TEST(Kvi2xmlEncoding, AZeroByteIsNoText)
{
    TXmlRun Import("<ROWDATA>\0</ROWDATA>"s, {xxEncoding});
    EXPECT_EQ(Import.RunAndFail(), "File \"FILE\" has a zero byte at offset 9, as no text of its kind has");
}

} // namespace kv
