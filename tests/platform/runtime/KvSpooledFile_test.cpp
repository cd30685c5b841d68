#include "KvSpooledFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <sys/stat.h>
#include <thread>

#include "KvException.h"

namespace kv {

namespace {

std::string ReadText(const std::string& Name)
{
    std::ifstream File(Name, std::ios::binary);
    return {std::istreambuf_iterator<char>(File), std::istreambuf_iterator<char>()};
}

bool GoOn()
{
    return true;
}

class KvSpooledFile : public testing::Test
{
protected:
    KvSpooledFile()
    {
        auto Pattern = (std::filesystem::temp_directory_path() / "kvspool-XXXXXX").string();
        Folder = mkdtemp(Pattern.data());
        Pipe = Folder + "/pipe";
        EXPECT_EQ(mkfifo(Pipe.c_str(), 0600), 0);
    }
    ~KvSpooledFile() override { std::filesystem::remove_all(Folder); }

    std::string Folder, Pipe;
};

TEST_F(KvSpooledFile, KeepsWhatAPipeGives)
{
    const std::string Text(3'000'000, 'x');
    std::thread Writer([&] { std::ofstream(Pipe) << Text << "end"; });
    const TSpooledFile Spooled(Pipe, GoOn);
    Writer.join();
    EXPECT_TRUE(ReadText(Spooled.Name()) == Text + "end");
    EXPECT_TRUE(ReadText(Spooled.Name()) == Text + "end"); // more than once
}

TEST_F(KvSpooledFile, KeepsAnEmptyPipe)
{
    std::thread Writer([&] { std::ofstream Opened(Pipe); });
    const TSpooledFile Spooled(Pipe, GoOn);
    Writer.join();
    EXPECT_EQ(ReadText(Spooled.Name()), "");
}

TEST_F(KvSpooledFile, RefusesMoreThanItMayKeep)
{
    for (const std::uint64_t Limit : {3, 4}) {
        std::thread Writer([&] { std::ofstream(Pipe) << "1234"; });
        if (Limit == 4)
            EXPECT_EQ(ReadText(TSpooledFile(Pipe, GoOn, Limit).Name()), "1234");
        else
            EXPECT_THROW(TSpooledFile(Pipe, GoOn, Limit), EFileError);
        Writer.join();
    }
}

TEST_F(KvSpooledFile, StopsWhenItMayNotGoOn)
{
    int Asked = 0;
    const TSpooledFile Spooled(Pipe, [&Asked] { return ++Asked < 3; }); // nobody ever writes
    EXPECT_EQ(Asked, 3);
    EXPECT_EQ(ReadText(Spooled.Name()), "");
}

TEST_F(KvSpooledFile, TellsWhatIsReadOnlyOnce)
{
    EXPECT_TRUE(IsReadOnce(Pipe));
    EXPECT_TRUE(IsReadOnce("/dev/null"));
    EXPECT_FALSE(IsReadOnce(Folder));
    std::ofstream(Folder + "/file") << "x";
    EXPECT_FALSE(IsReadOnce(Folder + "/file"));
}

TEST_F(KvSpooledFile, NamesAFileThatIsMissing)
{
    try {
        IsReadOnce(Folder + "/none");
        FAIL();
    }
    catch (const EFileError& Error) {
        EXPECT_EQ(Error.Message, "Cannot open file \"" + Folder + "/none\": No such file or directory");
    }
}

} // namespace

} // namespace kv
