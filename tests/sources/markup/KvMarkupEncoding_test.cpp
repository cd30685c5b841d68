#include "KvMarkupEncoding.h"

#include <gtest/gtest.h>

#include <string>

#include "KvEncodingLabels.h"
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

TEST(KvMarkupEncoding, AMetaTagCountsOnlyWhereItIsOne)
{
    EXPECT_EQ(FindMetaCharset("<!-- <meta charset=koi8-r> --><meta charset=utf-8>"), "utf-8");
    EXPECT_EQ(FindMetaCharset("<!--> <meta charset=koi8-r> -->"), "koi8-r") << "a comment that ends at once";
    EXPECT_EQ(FindMetaCharset("<!-- <meta charset=koi8-r>"), "");
    EXPECT_EQ(FindMetaCharset("<meta name=description content=\"charset=koi8-r\">"), "");
    EXPECT_EQ(FindMetaCharset("<meta title='charset=koi8-r'>"), "");
    EXPECT_EQ(FindMetaCharset("<meta title='>' charset=' koi8-r '>"), "koi8-r");
}

TEST(KvMarkupEncoding, AMetaTagMayStandFarFromTheStartButNotAnywhere)
{
    const auto Behind = [](std::size_t Size) { return std::string(Size, ' ') + "<meta charset=koi8-r>"; };
    EXPECT_EQ(FindMetaCharset(Behind(257)), "koi8-r");
    EXPECT_EQ(FindMetaCharset(Behind(4000)), "koi8-r");
    EXPECT_EQ(FindMetaCharset(Behind(4096)), "");
}

TEST(KvMarkupEncoding, AFileNamesItsEncoding)
{
    EXPECT_EQ(FindHtmlEncoding("<meta charset=ISO-8859-2>"), "ISO-8859-2");
    EXPECT_EQ(FindHtmlEncoding("<?xml version=\"1.0\" encoding=\"us-ascii\"?><html>"), "us-ascii");
    EXPECT_EQ(FindHtmlEncoding("<p>"), "");
    EXPECT_EQ(FindXmlFileEncoding("<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>"), "ISO-8859-1");
}

TEST(KvMarkupEncoding, LabelsMeanWhatTheyMeanInTheWeb)
{
    for (const std::string_view Label : {"ISO-8859-1", "iso8859-1", "Latin1", "US-ASCII", "windows-1252"})
        EXPECT_EQ(EncodingOfLabel(Label), "windows-1252") << Label;
    EXPECT_EQ(EncodingOfLabel("gb2312"), "GB18030");
    EXPECT_EQ(EncodingOfLabel("Shift_JIS"), "CP932");
    EXPECT_EQ(EncodingOfLabel("x-sjis"), "CP932");
    EXPECT_EQ(EncodingOfLabel("UTF8"), "UTF-8");
    EXPECT_EQ(EncodingOfLabel("latin2"), "ISO-8859-2");
    EXPECT_EQ(EncodingOfLabel("koi8-r"), "KOI8-R");
    EXPECT_EQ(EncodingOfLabel("IBM850"), "IBM850") << "which the web does not know";
    EXPECT_EQ(EncodingOfLabel("no-such"), "");
}

} // namespace kv
