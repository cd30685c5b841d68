// kvaccess as it is built, on files that are no databases. What it makes of real ones is compared with
// other programs in tests/corpus.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <string>
#include <thread>

#include "KvAccessEngine.h"
#include "KvAccessHelper.h"
#include "KvException.h"
#include "KvJetBuilder.h"
#include "KvTempFolder.h"

namespace kv {

namespace {

using namespace std::string_literals;

std::string MessageOfOpen(const std::string& FileName)
{
    try {
        MakeAccessEngine({KV_ACCESS_PROGRAM, std::chrono::seconds(30)})->OpenDatabase(FileName);
    }
    catch (const EDatabaseError& Error) {
        return Error.Message;
    }
    return "";
}

/// The start of a database of version `Version`, then zeros.
std::string Header(char Version, std::size_t Size)
{
    auto Bytes = "\0\1\0\0Standard Jet DB\0"s + Version;
    Bytes.resize(Size);
    return Bytes;
}

TEST(KvAccessProgram, SaysWhyAFileCannotBeOpened)
{
    const TTempFolder Folder;
    EXPECT_EQ(MessageOfOpen(Folder / "none.mdb"),
              Folder / "none.mdb: cannot be opened: No such file or directory");
    EXPECT_EQ(MessageOfOpen(Folder.Path.string()),
              Folder.Path.string() + ": cannot be opened: it is a directory");
    EXPECT_EQ(MessageOfOpen("/dev/null"), "/dev/null: cannot be opened: it is no ordinary file");
}

TEST(KvAccessProgram, RefusesWhatIsNoDatabase)
{
    const TTempFolder Folder;
    for (const auto& Bytes : {""s, "a"s, std::string(5000, '\0'),
                              "\0\1\0\0Standard Text   "s + std::string(5000, '\0')})
        EXPECT_EQ(MessageOfOpen(Folder.Write("a.mdb", Bytes)), Folder / "a.mdb: is not an Access database");
}

TEST(KvAccessProgram, RefusesAVersionThatIsNotKnown)
{
    const TTempFolder Folder;
    EXPECT_EQ(MessageOfOpen(Folder.Write("a.mdb", Header(9, 8192))),
              Folder / "a.mdb: is an Access database of an unknown version (9)");
}

TEST(KvAccessProgram, RefusesADatabaseThatIsCutOff)
{
    const TTempFolder Folder;
    for (const char Version : {'\0', '\1', '\2', '\6'})
        for (const std::size_t Size : {100, 2048, 4096, 8192, 16384})
            EXPECT_NE(MessageOfOpen(Folder.Write("a.mdb", Header(Version, Size))), "")
                << int(Version) << " " << Size;
}

/// Whether the process has ended; what nobody has asked about stays a zombie.
bool HasEnded(int Process)
{
    std::ifstream Status("/proc/" + std::to_string(Process) + "/stat");
    std::string Number, Name, State;
    Status >> Number >> Name >> State;
    return State.empty() || State == "Z" || State == "X";
}

TEST(KvAccessProgram, EndsWithTheProcessThatStartedIt)
{
    const TTempFolder Folder;
    TJetBuilder Builder;
    Builder.Table(u"T").Field(u"F", afText, 510);
    for (int I = 0; I < 2000; ++I)                  // more than fits into its pipe
        Builder.Record({JetText(std::u16string(255, u'\u4E2D'))});
    const auto File = Folder.Write("a.mdb", Builder.Build());
    int Numbers[2];
    ASSERT_EQ(::pipe(Numbers), 0);
    const auto Parent = ::fork();
    if (Parent == 0) {
        TAccessHelper Helper({KV_ACCESS_PROGRAM, std::chrono::seconds(30)}, {"records", File, "T"});
        char Byte;
        Helper.Receive(&Byte, 1);
        std::ifstream Children("/proc/self/task/" + std::to_string(::getpid()) + "/children");
        int Child = 0;
        Children >> Child;
        ::kill(Child, SIGSTOP);                     // it will not notice that nobody reads any more
        ::write(Numbers[1], &Child, sizeof Child);
        std::_Exit(0);
    }
    int Child = 0;
    ASSERT_EQ(::read(Numbers[0], &Child, sizeof Child), static_cast<ssize_t>(sizeof Child));
    ::waitpid(Parent, nullptr, 0);
    ASSERT_GT(Child, 0);
    for (int Try = 0; Try < 100 && !HasEnded(Child); ++Try)
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    EXPECT_TRUE(HasEnded(Child));
    if (!HasEnded(Child))
        ::kill(Child, SIGKILL);
    ::close(Numbers[0]);
    ::close(Numbers[1]);
}

} // namespace

} // namespace kv
