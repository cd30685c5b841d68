// The rules as programs have always known them.
#include "Kvi2xml.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "KvMarkupRun.h"

using namespace std::string_literals;
using testing::ElementsAre;
using testing::IsEmpty;

namespace kv {

namespace {

/// What the records of a packet hold: what stands between <ROWDATA> and </ROWDATA>.
TRows Imported(const std::string& Records)
{
    return TXmlRun("<ROWDATA>" + Records + "</ROWDATA>").Run();
}

} // namespace

// Values.

TEST(Kvi2xml, APacketOfSelfClosingTagsIsImported)
{
    TXmlRun Import("<?xml version=\"1.0\"?>\r\n"
                   "<DATAPACKET><METADATA><FIELDS><FIELD attrname=\"Name\"/></FIELDS>"
                   "</METADATA>\r\n<ROWDATA>\r\n  <ROW Name=\"Ada\" Age=\"36\"/>\r\n"
                   "  <ROW Name=\"Alan\"/>\r\n"
                   "</ROWDATA></DATAPACKET>");
    Import.MapTo({"Name", "Age"});
    EXPECT_THAT(Import.Run(), ElementsAre("Ada|36|-", "Alan|Age|-"));
}

TEST(Kvi2xml, ARecordWithoutTheAttributeImportsItsName)
{
    EXPECT_THAT(Imported("<ROW b=\"2\"/>"), ElementsAre("a|2|c"));
}

TEST(Kvi2xml, NamesAreReadInEitherCase)
{
    TXmlRun Import("<ROWDATA><ROW Aa=\"1\" BB=\"2\" cC=\"3\"/></ROWDATA>");
    Import.MapTo({"AA", "bb", "Cc"});
    EXPECT_THAT(Import.Run(), ElementsAre("1|2|3"));
}

TEST(Kvi2xml, ANameMatchesTheEndOfAnother)
{
    TXmlRun Import("<ROWDATA><ROW USERID=\"7\" ID=\"8\"/><ROW ID=\"9\" USERID=\"7\"/></ROWDATA>");
    Import.MapTo({"ID"});
    EXPECT_THAT(Import.Run(), ElementsAre("7|-|-", "9|-|-"));
}

TEST(Kvi2xml, LongNamesMatchInFull)
{
    TXmlRun Import(
        "<ROWDATA><ROW a_customer_name=\"1\" the_customer_name=\"2\" customer_name=\"3\"/></ROWDATA>");
    Import.MapTo({"the_customer_name", "Customer_Name", "his_customer_name"});
    EXPECT_THAT(Import.Run(), ElementsAre("2|1|his_customer_name"));
}

TEST(Kvi2xml, ANameMatchesInsideAValueToo)
{
    EXPECT_THAT(Imported("<ROW x='b=\"1\"' b=\"2\" a=\"c=\"/>"), ElementsAre("c=|1|c"));
    EXPECT_THAT(Imported("<ROW a=\"c=\"3\"/>"), ElementsAre("c=|b|3"));
}

TEST(Kvi2xml, ANameMayHoldWhatStandsBeforeTheAttribute)
{
    TXmlRun Import("<ROWDATA><ROW a=\"1\" b=\"2\"/></ROWDATA>");
    Import.MapTo({"\" b", "ROW a"});
    EXPECT_THAT(Import.Run(), ElementsAre("2|1|-"));
}

TEST(Kvi2xml, AValueWithoutAClosingQuoteImportsTheName)
{
    EXPECT_THAT(Imported("<ROW a=\"1\" b=\"2>"), ElementsAre("1|b|c"));
}

TEST(Kvi2xml, OnlyDoubleQuotesRightBehindTheEqualsSignOpenAValue)
{
    EXPECT_THAT(Imported("<ROW a='1' b= \"2\" c =\"3\"/>"), ElementsAre("a|b|c"));
}

TEST(Kvi2xml, AnEmptyValueIsNone)
{
    EXPECT_THAT(Imported("<ROW a=\"\" b=\"  \" c=\" 3 \"/>"), ElementsAre("-|-| 3 "));
}

TEST(Kvi2xml, ReferencesAreText)
{
    EXPECT_THAT(Imported("<ROW a=\"&lt;&amp;&#65;\"/>"), ElementsAre("&lt;&amp;&#65;|b|c"));
}

TEST(Kvi2xml, LineBreaksAreDropped)
{
    EXPECT_THAT(Imported("<R\r\nOW\na=\"1\r\n2\" b\n=\"3\"\n/>"), ElementsAre("12|3|c"));
    EXPECT_THAT(TXmlRun("<ROW\nDATA>\n<ROW\r\n a=\"1\"/></ROW\rDATA>").Run(), ElementsAre("1|b|c"));
}

TEST(Kvi2xml, AGreaterSignInAValueEndsTheRecordAndBeginsTheNext)
{
    EXPECT_THAT(Imported("<ROW a=\"1>2\" b=\"3\"/><ROW a=\"4\"/>"), ElementsAre("a|b|c", "a|3|c", "4|b|c"));
}

// Records.

TEST(Kvi2xml, EveryTagOfTheSectionIsARecord)
{
    EXPECT_THAT(Imported("<ROW a=\"1\"></ROW><!-- a=\"2\" -->"), ElementsAre("1|b|c", "a|b|c", "2|b|c"));
}

TEST(Kvi2xml, TextBetweenTagsBelongsToTheNext)
{
    EXPECT_THAT(Imported("a=\"0\" <ROW a=\"1\"/>"), ElementsAre("0|b|c"));
}

TEST(Kvi2xml, WhatNoGreaterSignEndsIsNoRecord)
{
    EXPECT_THAT(TXmlRun("<ROWDATA><ROW a=\"1\"/><ROW a=\"2\"").Run(), ElementsAre("1|b|c"));
}

TEST(Kvi2xml, AFileWithoutRowdataHasNoRecords)
{
    EXPECT_THAT(TXmlRun("<ROW a=\"1\"/>").Run(), IsEmpty());
    EXPECT_THAT(TXmlRun("<ROWDATA/><ROW a=\"1\"/>").Run(), IsEmpty());
    EXPECT_THAT(TXmlRun("").Run(), IsEmpty());
}

TEST(Kvi2xml, SectionTagsAreExact)
{
    EXPECT_THAT(TXmlRun("<rowdata><ROW a=\"1\"/></rowdata>").Run(), IsEmpty());
    EXPECT_THAT(TXmlRun("<ROWDATA><fields><ROW a=\"1\"/></ROWDATA>").Run(), ElementsAre("a|b|c", "1|b|c"));
    EXPECT_THAT(TXmlRun("<ROWDATA><ROW a=\"1\"/></rowdata><ROW a=\"2\"/>").Run(),
                ElementsAre("1|b|c", "a|b|c", "2|b|c"));
    EXPECT_THAT(TXmlRun("<ROWDATA x=\"y\"><ROW a=\"1\"/></ROWDATA>").Run(), IsEmpty());
    EXPECT_THAT(TXmlRun(" \t<ROWDATA>\t<ROW a=\"1\"/></ROWDATA >").Run(), ElementsAre("1|b|c", "a|b|c"));
}

TEST(Kvi2xml, SectionsOfRecordsAreOneSequence)
{
    EXPECT_THAT(
        TXmlRun("<ROWDATA><R a=\"1\"/></ROWDATA><R a=\"2\"/><ROWDATA><ROWDATA><R a=\"3\"/></ROWDATA>").Run(),
        ElementsAre("1|b|c", "3|b|c"));
}

TEST(Kvi2xml, AFieldsSectionEndsTheRecords)
{
    EXPECT_THAT(TXmlRun("<ROWDATA><R a=\"1\"/><FIELDS><F a=\"2\"/></FIELDS><R a=\"3\"/></ROWDATA>").Run(),
                ElementsAre("1|b|c"));
    EXPECT_THAT(TXmlRun("<FIELDS><ROWDATA><R a=\"1\"/></FIELDS></ROWDATA>").Run(),
                ElementsAre("1|b|c", "a|b|c"));
}

TEST(Kvi2xml, AZeroByteEndsTheFile)
{
    EXPECT_THAT(Imported("<R a=\"1\"/>\0<R a=\"2\"/>"s), ElementsAre("1|b|c"));
}

TEST(Kvi2xml, AClosingControlCharacterIsNoRecord)
{
    EXPECT_THAT(Imported("<R a=\"1\"/>\x1B"), ElementsAre("1|b|c"));
    EXPECT_THAT(TXmlRun("<ROWDATA><R a=\"1\"/>\x1B").Run(), ElementsAre("1|b|c"));
}

// The name of the row tag.

TEST(Kvi2xml, ARowTagOpensASectionOfItsOwn)
{
    TXmlRun Import("<Orders><R a=\"1\"/></Orders><R a=\"2\"/><ORDERS><R a=\"3\"/></orders>");
    Import.TableName = "orders";
    // Only </ROWDATA> ends the section: the tag of the row tag's end is no record, what follows it is.
    EXPECT_THAT(Import.Run(), ElementsAre("1|b|c", "2|b|c", "3|b|c"));
}

TEST(Kvi2xml, ARowTagStandsBesideRowdata)
{
    TXmlRun Import("<ROWDATA><orders><R a=\"1\"/></orders></ROWDATA><R a=\"2\"/><orders><R a=\"3\"/>");
    Import.TableName = "Orders";
    EXPECT_THAT(Import.Run(), ElementsAre("1|b|c", "3|b|c"));
}

TEST(Kvi2xml, ALateZeroByteIsNoErrorByTheOlderRules)
{
    EXPECT_THAT(TXmlRun("<ROWDATA>\0</ROWDATA>"s).Run(), IsEmpty());
}

// The component.

TEST(Kvi2xml, IsOfItsKind)
{
    TXmlRun Import("");
    EXPECT_EQ(Import.TableType, teXML);
    EXPECT_EQ(TKvImportFromXML().SourceFileName, "KvImport.XML");
    EXPECT_EQ(TKvImportFromXML::Extension(), ".XML");
    EXPECT_EQ(TKvImportFromXML::FillFileFilters(), "All files (*.*)|*.*|XML file (*.xml)|*.XML|");
    EXPECT_EQ(Import.RowFirst, 1);
    EXPECT_EQ(Import.RowLast, 2147483647);
    EXPECT_TRUE(Import.Extensions.IsEmpty());
    EXPECT_EQ(Import.TableName, "");
}

TEST(Kvi2xml, PublishesItsProperties)
{
    TKvImportFromXML Import;
    const auto Properties = Import.PublishedProperties();
    for (const std::string_view Name :
         {"SourceFileName", "RowFirst", "RowLast", "TableName", "CodePage", "Extensions"})
        EXPECT_NE(FindProperty(Properties, Name), nullptr) << Name;
    const auto* const Set = FindProperty(Properties, "Extensions");
    EXPECT_EQ(Set->Names.size(), std::size_t{xxFieldTypes} + 1);
    EXPECT_EQ(Set->Names[xxEncoding], "xxEncoding");
}

// Automatic mapping.

TEST(Kvi2xmlMapping, BehindAHeaderFieldsGetTheNamesOfTheFieldsSection)
{
    TXmlRun Import("<FIELDS>\n<FIELD attrname=\"c\" fieldtype=\"x\"/><FIELD attrname=\"other\"/><FIELD/>"
                   "<FIELD attrname=\"a\"/></FIELDS><FIELD attrname=\"b\"/><ROWDATA>");
    Import.RowFirst = 2;
    EXPECT_THAT(Import.DetectedMappings(), ElementsAre("A=a", "C=c"));
}

TEST(Kvi2xmlMapping, AFieldIsNamedByTheFirstQuotedTextOfItsTag)
{
    TXmlRun Import("<FIELDS><FIELD width=\"A\" attrname=\"b\"/></FIELDS>");
    Import.RowFirst = 2;
    EXPECT_THAT(Import.DetectedMappings(), ElementsAre("A=A"));
}

TEST(Kvi2xmlMapping, AnAutomaticMappingImportsByTheNamesOfTheFields)
{
    TXmlRun Import("<ROWDATA><ROW c=\"3\" a=\"1\"/></ROWDATA>");
    Import.Mappings().Clear();
    EXPECT_THAT(Import.Run(), ElementsAre("1|B|3"));
    EXPECT_TRUE(Import.Mappings().IsEmpty());
}

// The preview.

TEST(Kvi2xmlPreview, ShowsTheValuesOfEachRecord)
{
    const TXmlRun Import("<ROWDATA><ROW a=\"1\" b=\"2\"/><ROW b=\"3\"/></ROWDATA>");
    EXPECT_THAT(PreviewOf(LoadXMLPreview, Import.SourceFileName, "b;a"), ElementsAre("2|1", "3|a"));
}

TEST(Kvi2xmlPreview, AnEmptyNameTakesTheFirstValue)
{
    const TXmlRun Import("<ROWDATA><ROW a=\"1\" b=\"2\"/></ROWDATA>");
    EXPECT_THAT(PreviewOf(LoadXMLPreview, Import.SourceFileName, "b;"), ElementsAre("2|1"));
}

TEST(Kvi2xmlPreview, ReadsTheSectionOfTheRowTag)
{
    const TXmlRun Import("<list><ROW a=\"1\"/></list>");
    EXPECT_THAT(PreviewOf(LoadXMLPreview, Import.SourceFileName, "a", "LIST"), ElementsAre("1"));
    EXPECT_THAT(PreviewOf(LoadXMLPreview, Import.SourceFileName, "a"), IsEmpty());
}

} // namespace kv
