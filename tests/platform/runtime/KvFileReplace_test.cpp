#include "KvFileReplace.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <string>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include "KvException.h"
#include "KvSettingsGuard.h"
#include "KvTempFolder.h"

namespace kv {
namespace {

using testing::ElementsAre;

mode_t ModeOf(const std::string& FileName)
{
    struct stat Status{};
    EXPECT_EQ(stat(FileName.c_str(), &Status), 0);
    return Status.st_mode & 07777;
}

/// Files of this process hold at most a few bytes, as on a disk that is full.
class TSmallFiles
{
public:
    explicit TSmallFiles(rlim_t Bytes)
    {
        getrlimit(RLIMIT_FSIZE, &Before);
        const rlimit During{.rlim_cur = Bytes, .rlim_max = Before.rlim_max};
        setrlimit(RLIMIT_FSIZE, &During);
        Handler = std::signal(SIGXFSZ, SIG_IGN);
    }
    TSmallFiles(const TSmallFiles&) = delete;
    TSmallFiles& operator=(const TSmallFiles&) = delete;
    ~TSmallFiles()
    {
        setrlimit(RLIMIT_FSIZE, &Before);
        std::signal(SIGXFSZ, Handler);
    }

private:
    rlimit Before{};
    void (*Handler)(int) = nullptr;
};

/// Nobody in particular, where the tests are run by somebody who may do everything.
class TOrdinaryUser
{
public:
    TOrdinaryUser() : Before(geteuid())
    {
        if (Before == 0 && seteuid(65534) != 0)
            ADD_FAILURE() << "cannot become an ordinary user";
    }
    TOrdinaryUser(const TOrdinaryUser&) = delete;
    TOrdinaryUser& operator=(const TOrdinaryUser&) = delete;
    ~TOrdinaryUser() { EXPECT_EQ(seteuid(Before), 0); }

private:
    const uid_t Before;
};

TEST(KvFileReplace, MakesANewFile)
{
    const TTempFolder Folder;
    ReplaceFileBytes(Folder / "new", std::string_view("a\0b", 3));
    EXPECT_EQ(Folder.Read("new"), std::string_view("a\0b", 3));
    const auto Mask = umask(0);
    umask(Mask);
    EXPECT_EQ(ModeOf(Folder / "new"), 0666 & ~Mask);
    EXPECT_THAT(Folder.Names(), ElementsAre("new"));
}

TEST(KvFileReplace, ReplacesAllOfTheOldContent)
{
    const TTempFolder Folder;
    const auto Name = Folder.Write("file", "a long text that was there");
    ReplaceFileBytes(Name, "short");
    EXPECT_EQ(Folder.Read("file"), "short");
    ReplaceFileBytes(Name, "");
    EXPECT_EQ(Folder.Read("file"), "");
    EXPECT_THAT(Folder.Names(), ElementsAre("file"));
}

TEST(KvFileReplace, KeepsThePermissions)
{
    const TTempFolder Folder;
    const auto Name = Folder.Write("file", "old");
    for (const mode_t Mode : {0600u, 0664u, 0755u}) {
        ASSERT_EQ(chmod(Name.c_str(), Mode), 0);
        ReplaceFileBytes(Name, "new");
        EXPECT_EQ(ModeOf(Name), Mode);
    }
}

TEST(KvFileReplace, KeepsSymbolicLinks)
{
    const TTempFolder Folder;
    std::filesystem::create_directory(Folder.Path / "there");
    Folder.Write("there/file", "old");
    std::filesystem::create_symlink("there/file", Folder.Path / "first");
    std::filesystem::create_symlink("first", Folder.Path / "second");
    ReplaceFileBytes(Folder / "second", "new");
    EXPECT_EQ(Folder.Read("there/file"), "new");
    EXPECT_TRUE(std::filesystem::is_symlink(Folder.Path / "first"));
    EXPECT_TRUE(std::filesystem::is_symlink(Folder.Path / "second"));
}

TEST(KvFileReplace, MakesTheFileThatALinkNames)
{
    const TTempFolder Folder;
    std::filesystem::create_symlink("missing", Folder.Path / "link");
    ReplaceFileBytes(Folder / "link", "new");
    EXPECT_EQ(Folder.Read("missing"), "new");
    EXPECT_TRUE(std::filesystem::is_symlink(Folder.Path / "link"));
}

TEST(KvFileReplace, LeavesTheOldContentWhenTheNewDoesNotFit)
{
    const TTempFolder Folder;
    const auto Name = Folder.Write("file", "old");
    std::string Message;
    {
        const TSmallFiles Limit(10);
        Message = MessageOf<EFileError>([&] { ReplaceFileBytes(Name, "eleven bytes"); });
    }
    EXPECT_EQ(Message, "Cannot write file \"" + Name + "\": File too large");
    EXPECT_EQ(Folder.Read("file"), "old");
    EXPECT_THAT(Folder.Names(), ElementsAre("file"));
}

TEST(KvFileReplace, PassesOverWhatAKilledProcessLeft)
{
    const TTempFolder Folder;
    const auto Left = ".kv" + std::to_string(getpid()) + "-0~";
    Folder.Write(Left, "left");
    ReplaceFileBytes(Folder / "file", "new");
    EXPECT_EQ(Folder.Read("file"), "new");
    EXPECT_EQ(Folder.Read(Left), "left");
}

TEST(KvFileReplace, WritesIntoTheCurrentFolder)
{
    const TTempFolder Folder;
    const auto Before = std::filesystem::current_path();
    std::filesystem::current_path(Folder.Path);
    ReplaceFileBytes("file", "new");
    std::filesystem::current_path(Before);
    EXPECT_THAT(Folder.Names(), ElementsAre("file"));
}

TEST(KvFileReplace, RefusesWhatMayNotBeWritten)
{
    const TTempFolder Folder;
    const auto Name = Folder.Write("file", "old");
    ASSERT_EQ(chmod(Name.c_str(), 0444), 0);
    ASSERT_EQ(chmod(Folder.Path.c_str(), 0755), 0);
    const TOrdinaryUser User;
    EXPECT_EQ(MessageOf<EFileError>([&] { ReplaceFileBytes(Name, "new"); }),
              "Cannot write file \"" + Name + "\": Permission denied");
    EXPECT_EQ(Folder.Read("file"), "old");
}

TEST(KvFileReplace, RefusesAFolderThatMayNotBeWritten)
{
    const TTempFolder Folder;
    ASSERT_EQ(chmod(Folder.Path.c_str(), 0555), 0);
    {
        const TOrdinaryUser User;
        EXPECT_EQ(MessageOf<EFileError>([&] { ReplaceFileBytes(Folder / "file", "new"); }),
                  "Cannot write file \"" + (Folder / "file") + "\": Permission denied");
    }
    ASSERT_EQ(chmod(Folder.Path.c_str(), 0755), 0);
}

TEST(KvFileReplace, RefusesWhatIsNoRegularFile)
{
    const TTempFolder Folder;
    EXPECT_EQ(MessageOf<EFileError>([&] { ReplaceFileBytes(Folder.Path.string(), "new"); }),
              "Cannot write file \"" + Folder.Path.string() + "\": Is a directory");
    EXPECT_EQ(MessageOf<EFileError>([] { ReplaceFileBytes("/dev/null", "new"); }),
              "Cannot write file \"/dev/null\": it is no regular file");
    EXPECT_EQ(MessageOf<EFileError>([&] { ReplaceFileBytes(Folder / "none/file", "new"); }),
              "Cannot write file \"" + (Folder / "none/file") + "\": No such file or directory");
    std::filesystem::create_symlink("loop", Folder.Path / "loop");
    EXPECT_EQ(MessageOf<EFileError>([&] { ReplaceFileBytes(Folder / "loop", "new"); }),
              "Cannot write file \"" + (Folder / "loop") + "\": Too many levels of symbolic links");
}

} // namespace
} // namespace kv
