// HTML pages and XML data packets on the command line.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "KvFileTest.h"

namespace kv {

namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

const std::string Page = "<!DOCTYPE html><html><head><meta charset=windows-1252></head><body><table>\n"
                         "<tr><th>Id<th>City<th>Amount\n"
                         "<tr><td>1<td>K\xF6ln &amp; Bonn<td align=right>1,234.50\n"
                         "<tr><td>2<td>Rom<td>&nbsp;\n"
                         "</table></body></html>";
const std::string TwoTables =
    "<html><table><tr><td>1</td><td>Rom</td></tr></table><table><tr><td>2</td><td>Oslo</td></tr></table>";
const std::string Packet = "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>\n<DATAPACKET><METADATA><FIELDS>"
                           "<FIELD attrname=\"ID\"/><FIELD attrname=\"CITY\"/><FIELD "
                           "attrname=\"AMOUNT\"/></FIELDS></METADATA>\n"
                           "<ROWDATA><ROW ID='1' CITY=\"K\xF6ln &amp; Bonn\" AMOUNT=\"1234.50\"></ROW>\n"
                           "<ROW CITY=\"Rom\" ID=\"2\"/></ROWDATA></DATAPACKET>";

class KvMarkupOnTheCommandLine : public TFileTest
{
protected:
    KvMarkupOnTheCommandLine()
        : TFileTest("orders",
                    "CREATE TABLE orders (ID INTEGER PRIMARY KEY, CITY VARCHAR(20), AMOUNT DECIMAL(10,2))")
    {
    }

    std::string Orders() const { return Shop.Ask("SELECT * FROM orders"); }
};

using KvHtmlOnTheCommandLine = KvMarkupOnTheCommandLine;
using KvXmlOnTheCommandLine = KvMarkupOnTheCommandLine;

} // namespace

// Pages.

TEST_F(KvHtmlOnTheCommandLine, RowsGoIntoTheFieldsThatTheHeaderNames)
{
    const auto Run = Import(Page);
    EXPECT_EQ(Run.Status, 0) << Run.Err;
    EXPECT_EQ(Orders(), "1|Köln & Bonn|1234.5\n2|Rom|NULL");
    EXPECT_THAT(Run.Out, HasSubstr("Field2  City    -> CITY"));
}

TEST_F(KvHtmlOnTheCommandLine, TheNameOfTheFileTellsItsKindToo)
{
    EXPECT_EQ(Import("<table><tr><td>ID</td></tr><tr><td>7</td></tr></table>", {}, "orders.HTM").Status, 0);
    EXPECT_EQ(Orders(), "7|NULL|NULL");
}

TEST_F(KvHtmlOnTheCommandLine, CellsGoIntoTheFieldsByPosition)
{
    const auto Run = Import(TwoTables, {"--by-position"});
    EXPECT_EQ(Run.Status, 0) << Run.Err;
    EXPECT_EQ(Orders(), "1|Rom|NULL\n2|Oslo|NULL");
    EXPECT_THAT(Run.Err,
                HasSubstr("rows of 2 tables were read one after the other; --table-number takes one"));
}

TEST_F(KvHtmlOnTheCommandLine, OneTableIsTakenByItsNumber)
{
    const auto Run = Import(TwoTables, {"--by-position", "--table-number", "2"});
    EXPECT_EQ(Run.Status, 0);
    EXPECT_EQ(Orders(), "2|Oslo|NULL");
    EXPECT_THAT(Run.Err, Not(HasSubstr("one after the other")));
}

TEST_F(KvHtmlOnTheCommandLine, ATableThatIsNotThereIsAnError)
{
    const auto Run = Import(TwoTables, {"--by-position", "--table-number", "3"});
    EXPECT_EQ(Run.Status, 3);
    EXPECT_THAT(Run.Err, HasSubstr("--table-number 3: " + (Shop.Folder / "orders") + " has tables 1 to 2"));
}

TEST_F(KvHtmlOnTheCommandLine, AColumnIsNamedByItsNumber)
{
    const auto Run = Import(Page, {"--map", "ID=Field1", "--map", "CITY=Field3", "--first-row", "2"});
    EXPECT_EQ(Run.Status, 0) << Run.Err;
    EXPECT_EQ(Orders(), "1|1,234.50|NULL\n2|NULL|NULL");
    EXPECT_EQ(Import(Page, {"--map", "ID=Ident"}).Status, 3);
}

TEST_F(KvHtmlOnTheCommandLine, ARecordThatFailsIsNamedByItsRow)
{
    const auto Run = Import("<table><tr><td>1</td></tr><tr><td>x</td></tr></table>",
                            {"--by-position", "--from", "html"});
    EXPECT_EQ(Run.Status, 1);
    EXPECT_THAT(Run.Err, HasSubstr("row 2: 'x' is not a valid integer value for field 'ID'"));
}

TEST_F(KvHtmlOnTheCommandLine, ClassicTakesCellsInTheirOrder)
{
    const std::string Old = "<html><table><tr><td>1</td><td>a &amp; b</td><td>2.5</td></tr></table>";
    EXPECT_EQ(Import(Old, {"--by-position", "--classic"}).Status, 0);
    EXPECT_EQ(Orders(), "1|a &amp; b|2.5");
    const auto ByName = Import(Old, {"--classic"});
    EXPECT_EQ(ByName.Status, 2);
    EXPECT_THAT(ByName.Err,
                HasSubstr("with --classic the first mapping takes the first cell of a row and so on"));
}

TEST_F(KvHtmlOnTheCommandLine, APreviewShowsTheRowsBelowTheHeader)
{
    const auto Run = Kvimport("preview", Page);
    EXPECT_EQ(Run.Status, 0) << Run.Err;
    EXPECT_THAT(Run.Out, AllOf(HasSubstr("Field2"), HasSubstr("City"), HasSubstr("Köln & Bonn"),
                               HasSubstr("1,234.50")));
    const auto Json = Kvimport("preview", Page, {"--json", "--rows", "1"}).Json();
    EXPECT_EQ(Json["rows"].size(), 1u);
}

// Data packets.

TEST_F(KvXmlOnTheCommandLine, AttributesGoIntoTheFieldsOfTheirName)
{
    const auto Run = Import(Packet);
    EXPECT_EQ(Run.Status, 0) << Run.Err;
    EXPECT_EQ(Orders(), "1|Köln & Bonn|1234.5\n2|Rom|NULL");
}

TEST_F(KvXmlOnTheCommandLine, WithoutAFieldsSectionTheRecordsNameTheColumns)
{
    const auto Run = Import("<ROWDATA><R ID=\"1\"/><R ID=\"2\" city=\"Rom\"/></ROWDATA>", {}, "orders.xml");
    EXPECT_EQ(Run.Status, 0) << Run.Err;
    EXPECT_EQ(Orders(), "1|NULL|NULL\n2|Rom|NULL");
}

TEST_F(KvXmlOnTheCommandLine, RecordsOfAnotherTagAreTaken)
{
    const std::string File = "<shop><Orders><o id='1'/><o id='2' city='Rom'/></Orders></shop>";
    const auto Run = Import(File, {"--row-tag", "orders"}, "shop.xml");
    EXPECT_EQ(Run.Status, 0) << Run.Err;
    EXPECT_EQ(Orders(), "1|NULL|NULL\n2|Rom|NULL");
}

TEST_F(KvXmlOnTheCommandLine, AnAttributeMayBeNamedInAnyCase)
{
    EXPECT_EQ(Import(Packet, {"--map", "ID=id", "--map", "CITY=City"}).Status, 0);
    EXPECT_EQ(Orders(), "1|Köln & Bonn|NULL\n2|Rom|NULL");
}

TEST_F(KvXmlOnTheCommandLine, AFileThatWasCutOffImportsNothing)
{
    const auto Run = Import(Packet.substr(0, Packet.size() - 40));
    EXPECT_EQ(Run.Status, 3);
    EXPECT_THAT(Run.Err, HasSubstr("is no XML: "));
    EXPECT_EQ(Orders(), "");
}

TEST_F(KvXmlOnTheCommandLine, ClassicImportsTheNameOfAMissingAttribute)
{
    const std::string File = "<DATAPACKET><FIELDS><FIELD attrname=\"ID\"/><FIELD attrname=\"CITY\"/></FIELDS>"
                             "<ROWDATA><ROW ID=\"1\"/></ROWDATA></DATAPACKET>";
    EXPECT_EQ(Import(File, {"--classic"}).Status, 0);
    EXPECT_EQ(Orders(), "1|CITY|NULL");
}

TEST_F(KvXmlOnTheCommandLine, APreviewShowsTheRecords)
{
    const auto Run = Kvimport("preview", Packet);
    EXPECT_EQ(Run.Status, 0) << Run.Err;
    EXPECT_THAT(Run.Out, AllOf(StartsWith("row"), HasSubstr("CITY"), HasSubstr("Köln & Bonn")));
}

// Options of other kinds.

TEST_F(KvMarkupOnTheCommandLine, OptionsOfOtherKindsAreRefused)
{
    EXPECT_THAT(Import(Packet, {"--table-number", "1"}).Err,
                HasSubstr("--table-number has no meaning for a source of kind xml; it is for html"));
    EXPECT_THAT(Import(Page, {"--row-tag", "x"}).Err,
                HasSubstr("--row-tag has no meaning for a source of kind html; it is for xml"));
}

} // namespace kv
