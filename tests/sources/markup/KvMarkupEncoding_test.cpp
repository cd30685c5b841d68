#include "KvMarkupEncoding.h"

#include <gtest/gtest.h>

#include <string>

#include "Kvi2html.h"
#include "Kvi2xml.h"

using namespace std::string_literals;

namespace kv {

TEST(KvMarkupEncoding, TwoByteTextShowsInItsFirstTag)
{
    EXPECT_EQ(FindWideEncoding("<\0?\0"s), "UTF-16LE");
    EXPECT_EQ(FindWideEncoding("\0<\0?"s), "UTF-16BE");
    EXPECT_EQ(FindWideEncoding("<?xml"), "");
}

TEST(KvMarkupEncoding, AnXmlDeclarationNamesTheEncoding)
{
    EXPECT_EQ(FindXmlEncoding("<?xml version=\"1.0\" encoding=\"ISO-8859-2\"?><a/>"), "ISO-8859-2");
    EXPECT_EQ(FindXmlEncoding("<?xml version='1.0' encoding = 'koi8-r' ?>"), "koi8-r");
    EXPECT_EQ(FindXmlEncoding("<?xml version=\"1.0\"?><a encoding=\"koi8-r\"/>"), "");
    EXPECT_EQ(FindXmlEncoding("<?xml-stylesheet encoding=\"koi8-r\"?>"), "");
    EXPECT_EQ(FindXmlEncoding("<a/>"), "");
}

TEST(KvMarkupEncoding, ADeclarationInBytesCannotMeanTwoByteText)
{
    EXPECT_EQ(FindXmlEncoding("<?xml version=\"1.0\" encoding=\"UTF-16\"?>"), "");
    EXPECT_EQ(FindMetaCharset("<meta charset=utf-16le>"), "");
}

TEST(KvMarkupEncoding, AMetaTagNamesTheCharset)
{
    EXPECT_EQ(FindMetaCharset("<html><META CHARSET=koi8-r>"), "koi8-r");
    EXPECT_EQ(FindMetaCharset("<meta charset = 'koi8-r'/>"), "koi8-r");
    EXPECT_EQ(
        FindMetaCharset("<meta name=x><meta http-equiv=Content-Type content=\"text/html; charset=gb18030\">"),
        "gb18030");
    EXPECT_EQ(FindMetaCharset("<meta name=\"generator\"><p charset=koi8-r>"), "");
}

TEST(KvMarkupEncoding, LatinOneOfAPageMeansWindows1252)
{
    EXPECT_EQ(FindHtmlEncoding("<meta charset=ISO-8859-1>"), "windows-1252");
    EXPECT_EQ(FindHtmlEncoding("<?xml version=\"1.0\" encoding=\"us-ascii\"?><html>"), "windows-1252");
    EXPECT_EQ(FindHtmlEncoding("<meta charset=ISO-8859-2>"), "ISO-8859-2");
    EXPECT_EQ(FindHtmlEncoding("<p>"), "");
    EXPECT_EQ(FindXmlFileEncoding("<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>"), "ISO-8859-1");
}

} // namespace kv
