#include "KvFileWindow.h"

#include <gtest/gtest.h>

#include <string>

#include "KvException.h"
#include "KvTempFolder.h"

namespace kv {

namespace {

struct KvFileWindow : testing::Test
{
    const TTempFolder Folder;
    const std::string Text = "0123456789abcdefghij";
    const std::string Name = Folder.Write("a.bin", Text);
};

} // namespace

TEST_F(KvFileWindow, GivesWhatIsAskedForWhereverItStands)
{
    for (const std::size_t WindowSize : {4u, 7u, 20u, 1000u}) {
        TKvFileWindow File(Name, WindowSize);
        EXPECT_EQ(File.FileSize(), Text.size());
        for (const std::size_t Offset : {0u, 1u, 2u, 5u, 16u, 3u, 19u, 0u})
            EXPECT_EQ(File.At(Offset, 4), Text.substr(Offset, 4)) << WindowSize << ", " << Offset;
    }
}

TEST_F(KvFileWindow, GivesFewerBytesWhereTheFileEnds)
{
    TKvFileWindow File(Name, 8);
    EXPECT_EQ(File.At(18, 4), "ij");
    EXPECT_EQ(File.At(20, 4), "");
    EXPECT_EQ(File.At(1000, 4), "");
    EXPECT_EQ(File.At(0, 4), "0123");
    EXPECT_EQ(File.At(5, 0), "");
}

TEST_F(KvFileWindow, AnEmptyFileHasNoBytes)
{
    TKvFileWindow File(Folder.Write("empty.bin", ""));
    EXPECT_EQ(File.FileSize(), 0u);
    EXPECT_EQ(File.At(0, 10), "");
}

TEST_F(KvFileWindow, AFileThatCannotBeOpenedIsNamed)
{
    for (const std::string& Other : {Folder / "none.bin", Folder.Path.string()}) {
        try {
            const TKvFileWindow File(Other);
            FAIL();
        }
        catch (const EFileError& Error) {
            EXPECT_TRUE(Error.Message.starts_with("Cannot open file \"" + Other + "\": ")) << Error.Message;
        }
    }
}

} // namespace kv
