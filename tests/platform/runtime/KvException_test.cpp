#include "KvException.h"

#include <gtest/gtest.h>

namespace kv {
namespace {

TEST(KvException, KnowsNothingButItsMessageUnlessTold)
{
    const Exception Error("It broke");

    EXPECT_STREQ(Error.what(), "It broke");
    EXPECT_EQ(Error.Facts.Rule, erNone);
    EXPECT_EQ(Error.Facts.Field, "");
    EXPECT_EQ(Error.Facts.Value, "");
    EXPECT_EQ(Error.Facts.Offset, -1);
    EXPECT_EQ(Error.Facts.Record, -1);
}

TEST(KvException, KeepsTheFactsOfTheWholeFamily)
{
    try {
        throw EDatabaseError("Field 'ID' must have a value",
                             {.Field = "ID", .Rule = erRequired, .Record = 17});
    }
    catch (const Exception& Error) {
        EXPECT_EQ(Error.Message, "Field 'ID' must have a value");
        EXPECT_EQ(Error.Facts.Field, "ID");
        EXPECT_EQ(Error.Facts.Rule, erRequired);
        EXPECT_EQ(Error.Facts.Record, 17);
    }
}

TEST(KvException, NamesTheFileBeforeAMessageThatLacksIt)
{
    Exception Error("File is encrypted", {.FileName = "a.xls"});
    EXPECT_EQ(Error.FullMessage(), "File is encrypted");
    Error.Facts.LacksFileName = true;
    EXPECT_EQ(Error.FullMessage(), "a.xls: File is encrypted");
    EXPECT_EQ(Error.Message, "File is encrypted");
}

} // namespace
} // namespace kv
