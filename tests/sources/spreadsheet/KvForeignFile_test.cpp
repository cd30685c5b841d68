#include "KvForeignFile.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "KvBytes.h"

using namespace std::string_view_literals;

namespace kv {

namespace {

/// The beginning of an archive whose first file is `Name`.
std::string Zip(std::string_view Name, std::string_view Content = {})
{
    const auto Size = static_cast<unsigned>(Name.size());
    return TBytes().Text("PK\x03\x04").Zeros(22).U16(Size).U16(0).Text(Name).Text(Content);
}

} // namespace

TEST(KvForeignFile, PagesAreTold)
{
    for (const auto Page : {"<table border=1><tr><td>A</td></tr></table>", "<!DOCTYPE html><title>x</title>",
                            "\xEF\xBB\xBF \r\n<HTML><body>", "<style>a</style><TABLE>",
                            "<?xml version=\"1.0\"?><html xmlns=\"x\"/>", "<!-- x --><table>"})
        EXPECT_EQ(ForeignKind(Page), "a page of HTML") << Page;
}

TEST(KvForeignFile, XmlIsTold)
{
    EXPECT_EQ(ForeignKind("<?xml version=\"1.0\"?><Workbook/>"), "XML");
    EXPECT_EQ(ForeignKind("<?xml version=\"1.0\"?><a><table/></a>"), "XML");
    EXPECT_EQ(ForeignKind("<orders><order/></orders>"), "XML");
}

TEST(KvForeignFile, TextIsTold)
{
    EXPECT_EQ(ForeignKind("ID;NAME\r\n1;a\r\n"), "text");
    EXPECT_EQ(ForeignKind("\tx\x1A"), "text");
    EXPECT_EQ(ForeignKind("\xFF\xFE" "a\0"sv), "text of 16 bits a character");
    EXPECT_EQ(ForeignKind(""), "empty");
}

TEST(KvForeignFile, NewerWorkbooksAreTold)
{
    EXPECT_EQ(ForeignKind(Zip("[Content_Types].xml", "PK..xl/workbook.xml")),
              "a newer workbook, of Excel 2007 or later");
    EXPECT_EQ(ForeignKind(Zip("mimetype", "application/vnd.oasis.opendocument.spreadsheetPK")),
              "a workbook of OpenDocument");
    EXPECT_EQ(ForeignKind(Zip("a.txt")), "a ZIP archive");
    EXPECT_EQ(ForeignKind("PK\x03\x04"), "a ZIP archive");
}

TEST(KvForeignFile, OtherDocumentsAreTold)
{
    EXPECT_EQ(ForeignKind("%PDF-1.4\n"), "a PDF document");
    EXPECT_EQ(ForeignKind("{\\rtf1"), "a document of rich text");
    EXPECT_EQ(ForeignKind("\x01\x02\x03"), "");
    EXPECT_EQ(ForeignKind("a\0b"sv), "");
}

TEST(KvForeignFile, NewerWorkbooksAreKnownByTheirBeginning)
{
    for (const auto Name : {"[Content_Types].xml", "_rels/.rels", "xl/workbook.xml", "docProps/app.xml"})
        EXPECT_TRUE(BeginsNewerWorkbook(Zip(Name))) << Name;
    EXPECT_TRUE(BeginsNewerWorkbook(Zip("mimetype", "application/vnd.oasis.opendocument.spreadsheet")));
    EXPECT_FALSE(BeginsNewerWorkbook(Zip("mimetype", "application/vnd.oasis.opendocument.text")));
    EXPECT_FALSE(BeginsNewerWorkbook(Zip("readme.txt")));
    EXPECT_FALSE(BeginsNewerWorkbook("PK\x03\x04"));
    EXPECT_FALSE(BeginsNewerWorkbook(""));
}

} // namespace kv
