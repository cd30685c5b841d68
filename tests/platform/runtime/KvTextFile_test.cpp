#include "KvTextFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "KvCodePage.h"
#include "KvException.h"
#include "KvTempFolder.h"

using namespace std::string_literals;

namespace kv {

TEST(KvTextFile, HoldsTheBytesOfAFile)
{
    const TTempFolder Folder;
    const auto File = Folder.Write("file", "one\0two"s);
    const TKvTextFile Text(File, bmIsText);
    EXPECT_EQ(Text.Text(), "one\0two"s);
    EXPECT_TRUE(Text.IsWhole());
}

TEST(KvTextFile, ReadsNoMoreThanAskedFor)
{
    const TTempFolder Folder;
    const auto File = Folder.Write("file", "12345");
    const TKvTextFile Part(File, bmIsText, 4);
    EXPECT_EQ(Part.Text(), "1234");
    EXPECT_FALSE(Part.IsWhole());
    EXPECT_FALSE(TKvTextFile(File, bmIsText, 5).IsWhole()); // it may go on
    EXPECT_TRUE(TKvTextFile(File, bmIsText, 6).IsWhole());
}

TEST(KvTextFile, AMarkIsTextUnlessItTellsTheEncoding)
{
    const TTempFolder Folder;
    const auto File = Folder.Write("file", "\xEF\xBB\xBF" "abc");
    EXPECT_EQ(TKvTextFile(File, bmIsText).Text(), "\xEF\xBB\xBF" "abc");
    EXPECT_EQ(TKvTextFile(File, bmTellsEncoding).Text(), "abc");
}

TEST(KvTextFile, AMarkIsLeftOutWhereverATextComesFrom)
{
    for (const auto& Mark : {""s, "\xEF\xBB\xBF"s, "\xFF\xFE"s, "\xFE\xFF"s})
        EXPECT_EQ(WithoutByteOrderMark(Mark + "abc"), "abc");
    EXPECT_EQ(WithoutByteOrderMark("\xEF\xBB"), "\xEF\xBB");
}

TEST(KvTextFile, APartOfUtf16EndsWithAWholeCharacter)
{
    const TTempFolder Folder;
    const auto Part = [&Folder](std::string_view Bytes, std::size_t MaxSize) {
        const TKvTextFile Text(Folder.Write("file", Bytes), bmTellsEncoding, MaxSize);
        EXPECT_EQ(Text.IsWhole(), MaxSize > Bytes.size());
        return std::string(Text.Text());
    };
    const auto LowFirst = "\xFF\xFE" "a\0b\0\x3D\xD8\x00\xDE"s; // at last U+1F600, a pair of surrogates
    const auto HighFirst = "\xFE\xFF" "\0a\0b\xD8\x3D\xDE\x00"s;
    for (const auto& Bytes : {LowFirst, HighFirst}) {
        EXPECT_EQ(Part(Bytes, 11), "ab\xF0\x9F\x98\x80");
        EXPECT_EQ(Part(Bytes, 10), "ab\xF0\x9F\x98\x80");
        for (const std::size_t Size : {9U, 8U, 7U, 6U})
            EXPECT_EQ(Part(Bytes, Size), "ab") << Size;
        EXPECT_EQ(Part(Bytes, 5), "a");
        EXPECT_EQ(Part(Bytes, 3), "");
        EXPECT_EQ(Part(Bytes, 2), "");
    }
}

TEST(KvTextFile, APartOfUtf8EndsWithAWholeCharacter)
{
    const TTempFolder Folder;
    const auto File = Folder.Write("file", "\xEF\xBB\xBF" "a\xE2\x82\xAC\xF0\x9F\x98\x80" "b");
    const auto Part = [&File](std::size_t MaxSize) {
        return std::string(TKvTextFile(File, bmTellsEncoding, MaxSize).Text());
    };
    EXPECT_EQ(Part(12), "a\xE2\x82\xAC\xF0\x9F\x98\x80" "b");
    EXPECT_EQ(Part(11), "a\xE2\x82\xAC\xF0\x9F\x98\x80");
    for (const std::size_t Size : {10U, 9U, 8U, 7U})
        EXPECT_EQ(Part(Size), "a\xE2\x82\xAC") << Size;
    for (const std::size_t Size : {6U, 5U, 4U})
        EXPECT_EQ(Part(Size), "a") << Size;
    EXPECT_EQ(Part(3), "");
    SetAnsiCodePage("windows-1252");
    EXPECT_EQ(Part(7), "a\x80");
    EXPECT_EQ(Part(6), "a");
    SetAnsiCodePage("UTF-8");
    EXPECT_EQ(TKvTextFile(File, bmIsText, 6).Text(), "\xEF\xBB\xBF" "a\xE2\x82");
}

TEST(KvTextFile, TellsWhereItsTextBeginsInTheFile)
{
    const TTempFolder Folder;
    const auto Marked = Folder.Write("utf8", "\xEF\xBB\xBF" "abc");
    EXPECT_EQ(TKvTextFile(Marked, bmIsText).Offset(), 0);
    EXPECT_EQ(TKvTextFile(Marked, bmTellsEncoding).Offset(), 3);
    EXPECT_EQ(TKvTextFile(Folder.Write("utf16", "\xFF\xFE" "a\0"s), bmTellsEncoding).Offset(), -1);
}

TEST(KvTextFile, TextThatBeliesItsMarkIsRefused)
{
    const TTempFolder Folder;
    const auto File = Folder.Write("file", "\xFE\xFF" "abc");
    try {
        const TKvTextFile Text(File, bmTellsEncoding);
        FAIL() << "accepted";
    }
    catch (const EConvertError& Error) {
        EXPECT_EQ(Error.Message, "Cannot convert the text of file \"" + File + "\" from UTF-16BE to UTF-8");
    }
}

TEST(KvTextFile, TheEncodingThatATextDeclaresIsThatOfTheText)
{
    const TTempFolder Folder;
    const auto FirstWord = [](std::string_view Text) { return Text.substr(0, Text.find(' ')); };
    EXPECT_EQ(TKvTextFile(Folder.Write("latin", "ISO-8859-1 \xE4"), FirstWord).Text(), "ISO-8859-1 \xC3\xA4");
    EXPECT_EQ(TKvTextFile(Folder.Write("own", "utf-8 \xE4"), FirstWord).Text(), "utf-8 \xE4");
    EXPECT_EQ(TKvTextFile(Folder.Write("none", " \xE4"), FirstWord).Text(), " \xE4");
}

TEST(KvTextFile, AByteOrderMarkComesBeforeADeclaredEncoding)
{
    const TTempFolder Folder;
    const auto Latin = [](std::string_view) { return std::string_view("ISO-8859-1"); };
    EXPECT_EQ(TKvTextFile(Folder.Write("utf8", "\xEF\xBB\xBF\xC3\xA4"), Latin).Text(), "\xC3\xA4");
    EXPECT_EQ(TKvTextFile(Folder.Write("utf16", "\xFE\xFF\0\xE4"s), Latin).Text(), "\xC3\xA4");
}

TEST(KvTextFile, BytesThatAreNoTextOfADeclaredEncodingAreReplaced)
{
    const TTempFolder Folder;
    const auto Declared = [](std::string_view) { return std::string_view("windows-1252"); };
    const TKvTextFile Text(Folder.Write("file", "\xE4\x81"), Declared);
    EXPECT_EQ(Text.Text(), "\u00E4\u0081");
    EXPECT_TRUE(Text.HasStandIns());
    EXPECT_EQ(Text.Encoding(), "windows-1252");
    const TKvTextFile Whole(Folder.Write("whole", "\xE4"), Declared);
    EXPECT_FALSE(Whole.HasStandIns());
    const TKvTextFile None(Folder.Write("none", "\xE4"), [](std::string_view) { return std::string_view(); });
    EXPECT_EQ(None.Encoding(), "");
}

TEST(KvTextFile, AnUnknownEncodingIsRefused)
{
    const TTempFolder Folder;
    const auto File = Folder.Write("file", "abc");
    const auto Unknown = [](std::string_view) { return std::string_view("no-such-page"); };
    try {
        const TKvTextFile Text(File, Unknown);
        FAIL() << "accepted";
    }
    catch (const EConvertError& Error) {
        EXPECT_EQ(Error.Message,
                  "Cannot convert the text of file \"" + File + "\" from no-such-page to UTF-8");
    }
}

TEST(KvTextFile, AMissingFileIsRefused)
{
    EXPECT_THROW(TKvTextFile("/no/such/file", bmTellsEncoding), EFileError);
}

TEST(KvTextFile, ACancelledReadGivesNothing)
{
    const TTempFolder Folder;
    const auto File = Folder.Write("file", "\xFF\xFE" "a\0"s);
    EXPECT_EQ(TKvTextFile(File, bmTellsEncoding, TKvTextFile::WholeFile, [] { return false; }).Text(), "");
}

} // namespace kv
