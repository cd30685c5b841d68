#include "KvOptionText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "KvExitStatus.h"

namespace kv {

namespace {

using namespace std::string_literals;
using testing::ElementsAre;

TEST(KvOptionText, ReadsCharactersByNameAndAsTheyAre)
{
    EXPECT_EQ(ReadCharacter("tab"), '\t');
    EXPECT_EQ(ReadCharacter("Comma"), ',');
    EXPECT_EQ(ReadCharacter("semicolon"), ';');
    EXPECT_EQ(ReadCharacter("space"), ' ');
    EXPECT_EQ(ReadCharacter("quot"), '"');
    EXPECT_EQ(ReadCharacter("apos"), '\'');
    EXPECT_EQ(ReadCharacter("none"), '\0');
    EXPECT_EQ(ReadCharacter("|"), '|');
    EXPECT_EQ(ReadCharacter("\t"), '\t');
    EXPECT_EQ(ReadCharacter("\\t"), '\t');
    EXPECT_EQ(ReadCharacter("\\x1f"), '\x1F');
    EXPECT_EQ(ReadCharacter("\\\\"), '\\');
    EXPECT_EQ(ReadCharacter("\\"), '\\');
    for (const auto* const Text : {"", "ab", "\\x1", "\\xZZ", "\\q", "ü"})
        EXPECT_THROW(ReadCharacter(Text), EUsageError) << Text;
}

TEST(KvOptionText, ReadsRecordSeparators)
{
    EXPECT_EQ(ReadRecordSeparator("crlf"), "\r\n");
    EXPECT_EQ(ReadRecordSeparator("CR"), "\r");
    EXPECT_EQ(ReadRecordSeparator("lf"), "\n");
    EXPECT_EQ(ReadRecordSeparator("\\r\\n"), "\r\n");
    EXPECT_EQ(ReadRecordSeparator("\\x1E\\0"), "\x1E\0"s);
    EXPECT_EQ(ReadRecordSeparator("#"), "#");
    EXPECT_THROW(ReadRecordSeparator(""), EUsageError);
}

TEST(KvOptionText, ReadsNamesHoweverTheyAreSeparated)
{
    EXPECT_THAT(ReadNames("ID"), ElementsAre("ID"));
    EXPECT_THAT(ReadNames(" ID ; CITY,Order No ;"), ElementsAre("ID", "CITY", "Order No"));
    EXPECT_THAT(ReadNames(" ; ,"), ElementsAre());
}

TEST(KvOptionText, ReadsFixedColumns)
{
    EXPECT_THAT(ReadFixedColumns("ID=1-9, CITY = 10 - 29 ;A=B=3-3"),
                ElementsAre("ID=Text1-9", "CITY=Text10-29", "A=B=Text3-3"));
    for (const auto* const Text : {"", "ID", "ID=", "ID=5", "=1-2", "ID=0-5", "ID=9-8", "ID=a-b", "ID=1-2-3"})
        EXPECT_THROW(ReadFixedColumns(Text), EUsageError) << Text;
}

TEST(KvOptionText, NamesCharacters)
{
    EXPECT_EQ(NameOfCharacter('\t'), "tab");
    EXPECT_EQ(NameOfCharacter('|'), "'|'");
    EXPECT_EQ(NameOfCharacter('\x1E'), "'\\x1E'");
    EXPECT_EQ(NameOfCharacter('\xB7'), "'\\xB7'");
}

TEST(KvOptionText, NamesRecordSeparatorsAsTheyAreRead)
{
    for (const std::string_view Separator : {"\r\n", "\r", "\n", "\x1E", "|", "\\ \xFF", "ab\n"})
        EXPECT_EQ(ReadRecordSeparator(NameOfRecordSeparator(Separator)), Separator);
    EXPECT_EQ(NameOfRecordSeparator("\r\n"), "crlf");
    EXPECT_EQ(NameOfRecordSeparator("\x1E|"), "\\x1E|");
}

} // namespace

} // namespace kv
