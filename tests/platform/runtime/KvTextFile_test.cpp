#include "KvTextFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

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

TEST(KvTextFile, ReadsAllOfAUtf16FileSoThatNoCharacterIsCut)
{
    const TTempFolder Folder;
    const auto File = Folder.Write("file", "\xFF\xFE" "a\0b\0c\0"s);
    const TKvTextFile Text(File, bmTellsEncoding, 5);
    EXPECT_EQ(Text.Text(), "abc");
    EXPECT_TRUE(Text.IsWhole());
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
        EXPECT_EQ(Error.Message, "Cannot convert the text of file \"" + File + "\" from no-such-page to UTF-8");
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
