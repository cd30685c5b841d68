#include "KvFile.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <sys/stat.h>
#include <thread>

#include "KvException.h"
#include "KvSettingsGuard.h"

namespace kv {
namespace {

constexpr std::size_t Megabyte = std::size_t{1} << 20;

class KvFile : public testing::Test
{
protected:
    KvFile()
        : Path(std::filesystem::temp_directory_path() /
               (std::string("KvFile_") + testing::UnitTest::GetInstance()->current_test_info()->name()))
    {
        std::filesystem::remove_all(Path);
    }
    ~KvFile() override { std::filesystem::remove_all(Path); }

    void Write(std::string_view Content, std::ios::openmode Mode = std::ios::binary)
    {
        std::ofstream(Path, Mode) << Content;
    }

    const std::filesystem::path Path;
};

TEST_F(KvFile, ReadsAllBytes)
{
    for (const std::size_t Size : {std::size_t{0}, std::size_t{1}, 5 * Megabyte + 1}) {
        std::string Content(Size, '\0');
        for (std::size_t I = 0; I < Size; ++I)
            Content[I] = static_cast<char>(I * 7 + I / 251);
        Write(Content);
        const auto Bytes = ReadFileBytes(Path);
        EXPECT_EQ(Bytes.Size(), Size);
        EXPECT_TRUE(Bytes.View() == Content);
        EXPECT_EQ(FileSize(Path), Size);
    }
}

TEST_F(KvFile, ReadsNoMoreThanAsked)
{
    Write("0123456789");
    EXPECT_EQ(ReadFileBytes(Path, 0).View(), "");
    EXPECT_EQ(ReadFileBytes(Path, 4).View(), "0123");
    EXPECT_EQ(ReadFileBytes(Path, 10).View(), "0123456789");
    EXPECT_EQ(ReadFileBytes(Path, 11).View(), "0123456789");
}

TEST_F(KvFile, NamesTheFileAndTheReason)
{
    const std::string Name = Path;
    EXPECT_EQ(MessageOf<EFileError>([&] { ReadFileBytes(Name); }),
              "Cannot open file \"" + Name + "\": No such file or directory");
    EXPECT_EQ(MessageOf<EFileError>([&] { FileSize(Name); }),
              "Cannot open file \"" + Name + "\": No such file or directory");
    std::filesystem::create_directory(Path);
    EXPECT_EQ(MessageOf<EFileError>([&] { ReadFileBytes(Name); }),
              "Cannot open file \"" + Name + "\": Is a directory");
    EXPECT_EQ(MessageOf<EFileError>([&] { FileSize(Name); }),
              "Cannot open file \"" + Name + "\": Is a directory");
    EXPECT_EQ(MessageOf<EFileError>([] { ReadFileBytes("/proc/self/mem"); }),
              "Cannot read file \"/proc/self/mem\": Input/output error");
}

TEST_F(KvFile, ErrorsKnowTheFileAndWhetherItIsThere)
{
    const auto FactsOf = [](const std::string& Name) {
        try {
            ReadFileBytes(Name);
        }
        catch (const EFileError& Error) {
            return Error.Facts;
        }
        return TKvErrorFacts();
    };
    EXPECT_EQ(FactsOf("/no/such/file").FileName, "/no/such/file");
    EXPECT_EQ(FactsOf("/no/such/file").Rule, erMissing);
    EXPECT_FALSE(FactsOf("/no/such/file").LacksFileName);
    EXPECT_EQ(FactsOf("/").Rule, erStorage);
}

TEST_F(KvFile, ReadsFilesThatHideTheirSize)
{
    EXPECT_EQ(FileSize("/proc/self/status"), 0u);
    EXPECT_TRUE(ReadFileBytes("/proc/self/status").View().starts_with("Name:"));
    EXPECT_EQ(ReadFileBytes("/proc/self/status", 5).View(), "Name:");
    EXPECT_EQ(ReadFileBytes("/dev/null").Size(), 0u);
    EXPECT_EQ(ReadFileBytes("/dev/zero", Megabyte).Size(), Megabyte);
}

TEST_F(KvFile, ReadsPipesToTheirEnd)
{
    const std::string Content(Megabyte + 3, 'p');
    ASSERT_EQ(mkfifo(Path.c_str(), 0600), 0);
    EXPECT_EQ(FileSize(Path), 0u);
    std::thread Writer([&] { Write(Content); });
    const auto Bytes = ReadFileBytes(Path);
    Writer.join();
    EXPECT_TRUE(Bytes.View() == Content);
}

TEST_F(KvFile, StopsBetweenPieces)
{
    Write(std::string(10 * Megabyte, 'x'));
    int Asked = 0;
    EXPECT_EQ(ReadFileBytes(Path, 10 * Megabyte, [&] { return ++Asked < 2; }).Size(), 0u);
    EXPECT_EQ(Asked, 2);
    EXPECT_EQ(ReadFileBytes(Path, 10 * Megabyte, [&] { return ++Asked > 0; }).Size(), 10 * Megabyte);
    EXPECT_GE(Asked, 4);
}

TEST_F(KvFile, StopsWaitingForAPipe)
{
    ASSERT_EQ(mkfifo(Path.c_str(), 0600), 0);
    std::ofstream Writer;
    std::thread Opening([&] { Writer.open(Path); });
    const auto Bytes = ReadFileBytes(Path, Megabyte, [] { return false; });
    Opening.join();
    EXPECT_EQ(Bytes.Size(), 0u);
}

TEST_F(KvFile, ReadsWhatAFileGainsMeanwhile)
{
    Write(std::string(5 * Megabyte, 'a'));
    bool Grown = false;
    const auto Bytes = ReadFileBytes(Path, 100 * Megabyte, [&] {
        if (!std::exchange(Grown, true))
            Write("end", std::ios::binary | std::ios::app);
        return true;
    });
    EXPECT_EQ(Bytes.Size(), 5 * Megabyte + 3);
    EXPECT_TRUE(Bytes.View().ends_with("aend"));
}

TEST_F(KvFile, EndsWhereAFileWasCutMeanwhile)
{
    Write(std::string(9 * Megabyte, 'a'));
    const auto Bytes = ReadFileBytes(Path, 100 * Megabyte, [&] {
        std::filesystem::resize_file(Path, Megabyte);
        return true;
    });
    EXPECT_EQ(Bytes.Size(), 4 * Megabyte);
}

#ifndef __SANITIZE_ADDRESS__                        // which ends the program at such an allocation

TEST_F(KvFile, RefusesFilesThatDoNotFitIntoMemory)
{
    Write("");
    std::error_code Error;
    std::filesystem::resize_file(Path, std::uintmax_t{1} << 43, Error);
    if (Error)
        GTEST_SKIP() << "The file system does not hold a file of 8 TB";
    EXPECT_EQ(MessageOf<EFileError>([&] { ReadFileBytes(Path); }),
              "Cannot read file \"" + Path.string() + "\": Cannot allocate memory");
    EXPECT_EQ(FileSize(Path), std::uintmax_t{1} << 43);
    EXPECT_EQ(ReadFileBytes(Path, 3).View(), std::string_view("\0\0\0", 3));
}

#endif

} // namespace
} // namespace kv
