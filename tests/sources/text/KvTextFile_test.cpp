#include "KvTextFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "KvException.h"
#include "KvTextImport.h"

using namespace std::string_literals;

namespace kv {

TEST(KvTextFile, HoldsTheBytesOfAFile)
{
    const TTemporaryFile File("one\0two"s);
    const TKvTextFile Text(File.Name(), bmIsText);
    EXPECT_EQ(Text.Text(), "one\0two"s);
    EXPECT_TRUE(Text.IsWhole());
}

TEST(KvTextFile, ReadsNoMoreThanAskedFor)
{
    const TTemporaryFile File("12345");
    const TKvTextFile Part(File.Name(), bmIsText, 4);
    EXPECT_EQ(Part.Text(), "1234");
    EXPECT_FALSE(Part.IsWhole());
    EXPECT_FALSE(TKvTextFile(File.Name(), bmIsText, 5).IsWhole()); // it may go on
    EXPECT_TRUE(TKvTextFile(File.Name(), bmIsText, 6).IsWhole());
}

TEST(KvTextFile, AMarkIsTextUnlessItTellsTheEncoding)
{
    const TTemporaryFile File("\xEF\xBB\xBF" "abc");
    EXPECT_EQ(TKvTextFile(File.Name(), bmIsText).Text(), "\xEF\xBB\xBF" "abc");
    EXPECT_EQ(TKvTextFile(File.Name(), bmTellsEncoding).Text(), "abc");
}

TEST(KvTextFile, ReadsAllOfAUtf16FileSoThatNoCharacterIsCut)
{
    const TTemporaryFile File("\xFF\xFE" "a\0b\0c\0"s);
    const TKvTextFile Text(File.Name(), bmTellsEncoding, 5);
    EXPECT_EQ(Text.Text(), "abc");
    EXPECT_TRUE(Text.IsWhole());
}

TEST(KvTextFile, TextThatBeliesItsMarkIsRefused)
{
    const TTemporaryFile File("\xFE\xFF" "abc");
    try {
        const TKvTextFile Text(File.Name(), bmTellsEncoding);
        FAIL() << "accepted";
    }
    catch (const EConvertError& Error) {
        EXPECT_EQ(Error.Message, "Cannot convert the text of file \"" + File.Name() + "\" from UTF-16BE to UTF-8");
    }
}

TEST(KvTextFile, AMissingFileIsRefused)
{
    EXPECT_THROW(TKvTextFile("/no/such/file", bmTellsEncoding), EFileError);
}

TEST(KvTextFile, ACancelledReadGivesNothing)
{
    const TTemporaryFile File("\xFF\xFE" "a\0"s);
    EXPECT_EQ(TKvTextFile(File.Name(), bmTellsEncoding, TKvTextFile::WholeFile, [] { return false; }).Text(), "");
}

} // namespace kv
