#include "KvFileAlias.h"

#include <gtest/gtest.h>

#include "KvException.h"
#include "KvFile.h"
#include "KvFileWindow.h"
#include "KvTempFolder.h"

namespace kv {

namespace {

TEST(KvFileAlias, AFileIsOpenedUnderItsOtherNameWhileTheAliasLives)
{
    const TTempFolder Folder;
    const auto Path = Folder.Write("file", "bytes");
    {
        const TKvFileAlias Alias("standard input", Path);
        EXPECT_EQ(ReadFileBytes("standard input").View(), "bytes");
        EXPECT_EQ(TKvFileWindow("standard input").At(1, 3), "yte");
        EXPECT_EQ(FileSize("standard input"), 5u);
    }
    EXPECT_THROW(ReadFileBytes("standard input"), EFileError);
}

TEST(KvFileAlias, MessagesCallTheFileByTheNameThatWasGiven)
{
    const TKvFileAlias Alias("standard input", "/nowhere/file");
    try {
        ReadFileBytes("standard input");
        FAIL() << "there is no such file";
    }
    catch (const EFileError& Error) {
        EXPECT_EQ(Error.Message, "Cannot open file \"standard input\": No such file or directory");
    }
}

TEST(KvFileAlias, OtherNamesAreTheirOwn)
{
    EXPECT_EQ(PathOfFile("orders.csv"), "orders.csv");
}

} // namespace

} // namespace kv
