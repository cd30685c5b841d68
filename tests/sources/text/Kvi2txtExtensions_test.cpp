// The rules of today's files, each beside the older one that it replaces.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "KvCodePage.h"
#include "KvTextImport.h"

using namespace std::string_literals;
using testing::ElementsAre;

namespace kv {

namespace {

struct TReadings
{
    const char* Name;
    std::string Text;
    TRows Classic;
    TRows Extended;
};
void PrintTo(const TReadings& Readings, std::ostream* Out) { *Out << testing::PrintToString(Readings.Text); }
std::string NameOfRow(const testing::TestParamInfo<TReadings>& Info) { return Info.param.Name; }

TRows Imported(const std::string& Text, TKvITextExtensions Extensions)
{
    TTextImport Import(Text);
    Import.Extensions = Extensions;
    return Import.Run();
}

/// UTF-16 of ASCII text, with its mark. `High` is the place of the high byte in each pair.
std::string Utf16(std::string_view Text, bool HighFirst)
{
    std::string Result = HighFirst ? "\xFE\xFF" : "\xFF\xFE";
    for (const char Char : Text) {
        const char Pair[] = {HighFirst ? '\0' : Char, HighFirst ? Char : '\0'};
        Result.append(Pair, 2);
    }
    return Result;
}

} // namespace

class Kvi2txtReadsQualifiers : public testing::TestWithParam<TReadings> {};

TEST_P(Kvi2txtReadsQualifiers, ClassicThenRfc4180)
{
    EXPECT_EQ(Imported(GetParam().Text, {}), GetParam().Classic);
    EXPECT_EQ(Imported(GetParam().Text, {xtDoubledQualifiers}), GetParam().Extended);
}

INSTANTIATE_TEST_SUITE_P(, Kvi2txtReadsQualifiers, testing::Values(
    TReadings{"PlainValues", "1,2,3\r\n4,,6\r\n", {"1|2|3", "4||6"}, {"1|2|3", "4||6"}},
    TReadings{"QualifiedValues", "\"a,b\",\"c\r\nd\",3\r\n", {"a,b|c\r\nd|3"}, {"a,b|c\r\nd|3"}},
    TReadings{"DoubledQualifier", "\"a \"\"b\"\"\",2,3\r\n", {"a \"\"b\"\"|2|3"}, {"a \"b\"|2|3"}},
    TReadings{"OnlyAQualifier", "\"\"\"\",2,3\r\n", {"\"\"|2|3"}, {"\"|2|3"}},
    TReadings{"QualifierInsideAValue", "5\" x,y\",3\r\n", {"5\" x,y|3|"}, {"5\" x|y\"|3"}},
    TReadings{"QualifierInsideTwoLines", "5\" x,2,3\r\n4\" y,5,6\r\n",
              {"5\" x,2,3\r\n4\" y|5|6"}, {"5\" x|2|3", "4\" y|5|6"}},
    TReadings{"BlankBeforeAQualifier", "1, \"a,b\",3\r\n", {"1| \"a,b|3"}, {"1| \"a|b\""}},
    TReadings{"TextAfterAQualifier", "\"abc\"def,2,3\r\n", {"abc\"def|2|3"}, {"abcdef|2|3"}},
    TReadings{"DelimiterAtTheEndOfAValue", "\"a,\",b,\"c,\"\r\n", {"a|b|c"}, {"a,|b|c,"}},
    TReadings{"TrailingDelimiter", "a,b,\r\n", {"a|b|"}, {"a|b|"}},
    TReadings{"LineThatEndsQualified", "a,\"b\"\r\nc,\"d\"\r\n", {"a|b|", "c|d|"}, {"a|b|", "c|d|"}},
    TReadings{"EmptyQualifiedValues", "\"\",\"\",\"\"\r\n", {"||"}, {"||"}},
    TReadings{"EmptyLine", "1,2,3\r\n\r\n", {"1|2|3", "||"}, {"1|2|3", "||"}}), NameOfRow);

TEST(Kvi2txtDoubledQualifiers, OfFixedLinesHideNoLineEnds)
{
    TTextImport Import("\"1\r\n2\"\r\n");
    Import.Fixed = true;
    Import.MapTo({"Text1-9"});
    EXPECT_THAT(Import.Run(), ElementsAre("\"1\r\n2\"||"));
    Import.Mode = imCopy;
    Import.Extensions = {xtDoubledQualifiers};
    EXPECT_THAT(Import.Run(), ElementsAre("\"1||", "2\"||"));
}

TEST(Kvi2txtDoubledQualifiers, ZeroBytesHideNoLineEnds)
{
    TTextImport Import("\0a\r\nb\0,\"2\r\n"s);
    Import.SetTextQualifier(tqNone);
    Import.Extensions = {xtDoubledQualifiers};
    EXPECT_THAT(Import.Run(), ElementsAre("\0a||"s, "b\0|\"2|"s));
}

TEST(Kvi2txtDoubledQualifiers, AValueThatIsNeverClosedIsAnError)
{
    const auto* const Text = "A,B,C\r\n1,2,3\r\n4,\"5,6\r\n7,8,9\r\n";
    TTextImport Import(Text);
    Import.RowFirst = 2;
    EXPECT_THAT(Import.Run(), ElementsAre("1|2|3", "4|5,6\r\n7,8,9\r\n|"));
    Import.Mode = imCopy;
    Import.Extensions = {xtDoubledQualifiers};
    EXPECT_EQ(Import.RunAndFail(), "Line 3 of FILE begins a value that no text qualifier closes");
    EXPECT_EQ(Import.Destination.RecordCount(), 2); // nothing was deleted either
}

TEST(Kvi2txtDoubledQualifiers, LinesThatAreNotAskedForNeedNotBeClosed)
{
    TTextImport Import("1,2,3\r\n4,\"5,6\r\n");
    Import.Extensions = {xtDoubledQualifiers};
    Import.RowLast = 1;
    EXPECT_THAT(Import.Run(), ElementsAre("1|2|3"));
}

TEST(Kvi2txtDoubledQualifiers, AConstantStillLosesItsDelimiter)
{
    TTextImport Import("1,2,3\r\n");
    Import.MapTo({"Constant,", "Field2", "Field9"});
    Import.Extensions = {xtDoubledQualifiers};
    EXPECT_THAT(Import.Run(), ElementsAre("Constant|2|"));
}

TEST(Kvi2txtDoubledQualifiers, TheSameColumnMayBeMappedTwice)
{
    TTextImport Import("\"a\"\"b\",2\r\n\"c\"\"d\",3\r\n");
    Import.MapTo({"Field1", "Field2", "Field1"});
    Import.Extensions = {xtDoubledQualifiers};
    EXPECT_THAT(Import.Run(), ElementsAre("a\"b|2|a\"b", "c\"d|3|c\"d"));
}

TEST(Kvi2txtLongLines, AnyLengthIsImported)
{
    const std::string Long(20000, 'x');
    TTextImport Import(Long + ",2,3\r\n");
    Import.MapTo({"Field3", "Field2", "Field1"});
    EXPECT_EQ(Import.RunAndFail(), "Line 1 of FILE is longer than 9999 characters");
    Import.Extensions = {xtLongLines};
    EXPECT_THAT(Import.Run(), ElementsAre("3|2|" + Long));
}

TEST(Kvi2txtLongLines, TheHeaderMayBeLongToo)
{
    TTextImport Import("A," + std::string(20000, 'x') + ",B\r\n1,2,3\r\n");
    Import.RowFirst = 2;
    Import.Extensions = {xtLongLines};
    EXPECT_THAT(Import.DetectedMappings(), ElementsAre("A=Field1", "B=Field3"));
}

class Kvi2txtReadsMarks : public testing::TestWithParam<TReadings> {};

TEST_P(Kvi2txtReadsMarks, ClassicThenDecoded)
{
    EXPECT_EQ(Imported(GetParam().Text, {}), GetParam().Classic);
    EXPECT_EQ(Imported(GetParam().Text, {xtByteOrderMark}), GetParam().Extended);
}

INSTANTIATE_TEST_SUITE_P(, Kvi2txtReadsMarks, testing::Values(
    TReadings{"Utf8", "\xEF\xBB\xBF" "1,\xC3\xA9,3\r\n", {"\xEF\xBB\xBF" "1|\xC3\xA9|3"}, {"1|\xC3\xA9|3"}},
    TReadings{"Utf8BeforeAQualifier", "\xEF\xBB\xBF\"1,2\",3\r\n", {"\xEF\xBB\xBF\"1,2|3|"}, {"1,2|3|"}},
    TReadings{"Utf8WithoutText", "\xEF\xBB\xBF", {"\xEF\xBB\xBF||"}, {}},
    TReadings{"Utf8InvalidLater", "\xEF\xBB\xBF" "1,\xE9,3\r\n", {"\xEF\xBB\xBF" "1|\xE9|3"}, {"1|\xE9|3"}},
    TReadings{"OnlyTheBeginningOfAMark", "\xEF\xBB,2,3\r\n", {"\xEF\xBB|2|3"}, {"\xEF\xBB|2|3"}},
    TReadings{"NoMark", "1,\xC3\xA9,3\r\n", {"1|\xC3\xA9|3"}, {"1|\xC3\xA9|3"}}), NameOfRow);

TEST(Kvi2txtByteOrderMark, Utf16IsConvertedBeforeItIsCut)
{
    for (const bool HighFirst : {false, true}) {
        EXPECT_THAT(Imported(Utf16("1,\"x\r\ny\",3\r\n4,5,6", HighFirst), {xtByteOrderMark}),
                    ElementsAre("1|x\r\ny|3", "4|5|6"));
        EXPECT_EQ(Imported(Utf16("", HighFirst), {xtByteOrderMark}), TRows());
    }
    // U+00E9, then U+1F600 as a pair of surrogates.
    EXPECT_THAT(Imported("\xFF\xFE\xE9\0,\0\x3D\xD8\x00\xDE"s, {xtByteOrderMark}),
                ElementsAre("\xC3\xA9|\xF0\x9F\x98\x80|"));
}

TEST(Kvi2txtByteOrderMark, TextThatIsNoUtf16IsRefused)
{
    for (const auto& Text : {"\xFF\xFE" "1\0,"s, "\xFF\xFE\x00\xDC"s}) {
        TTextImport Import(Text);
        Import.Extensions = {xtByteOrderMark};
        EXPECT_EQ(Import.RunAndFail(), "Cannot convert the text of file \"FILE\" from UTF-16LE to UTF-8");
    }
}

TEST(Kvi2txtByteOrderMark, TextBecomesThatOfTheProcess)
{
    SetAnsiCodePage("windows-1252");
    EXPECT_THAT(Imported("\xFF\xFE\xE9\0"s, {xtByteOrderMark}), ElementsAre("\xE9||"));
    EXPECT_THAT(Imported("\xEF\xBB\xBF\xC3\xA9", {xtByteOrderMark}), ElementsAre("\xE9||"));
    SetAnsiCodePage("UTF-8");
}

TEST(Kvi2txtFixedPadding, BlanksAfterAFixedValueAreNoPartOfIt)
{
    TTextImport Import(" Ada   Bern  \r\n");
    Import.Fixed = true;
    Import.SetFieldDelimiter(fdNone);
    Import.MapTo({"Text1-7", "Text8-13"});
    EXPECT_THAT(Import.Run(), ElementsAre(" Ada   |Bern  |"));
    Import.Mode = imCopy;
    Import.Extensions = {xtFixedPadding};
    EXPECT_THAT(Import.Run(), ElementsAre(" Ada|Bern|"));
}

TEST(Kvi2txtFixedPadding, OfDelimitedValuesStays)
{
    TTextImport Import("Ada  ,Bern\r\n");
    Import.MapTo({"Field1", "Field2"});
    Import.Extensions = {xtFixedPadding};
    EXPECT_THAT(Import.Run(), ElementsAre("Ada  |Bern|"));
}

} // namespace kv
