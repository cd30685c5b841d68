// kvaccess as it is built, on files that are no databases. What it makes of real ones is compared with
// other programs in tests/corpus.
#include <gtest/gtest.h>

#include <chrono>
#include <string>

#include "KvAccessEngine.h"
#include "KvException.h"
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

} // namespace

} // namespace kv
