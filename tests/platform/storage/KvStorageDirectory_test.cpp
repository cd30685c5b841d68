#include "KvStorageDirectory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "KvCodePage.h"
#include "KvException.h"

using testing::ElementsAre;

namespace kv {

namespace {

constexpr std::uint32_t None = 0xFFFFFFFF;

std::string Entry(std::u16string_view Name, std::uint32_t Left = None, std::uint32_t Right = None,
                  std::uint32_t Child = None)
{
    std::string Bytes(128, '\0');
    std::memcpy(Bytes.data(), Name.data(), Name.size() * 2);
    Bytes[66] = ekStream;
    std::memcpy(Bytes.data() + 68, &Left, 4);
    std::memcpy(Bytes.data() + 72, &Right, 4);
    std::memcpy(Bytes.data() + 76, &Child, 4);
    return Bytes;
}

std::string Root(std::uint32_t Child)
{
    return Entry(u"Root Entry", None, None, Child);
}

std::vector<std::string> Names(const std::string& Bytes)
{
    const TKvStorageDirectory Directory(Bytes);
    std::vector<std::string> Result;
    for (const auto& Entry : Directory.EntriesOf(Directory.Entry(0)))
        Result.push_back(Entry.Name());
    return Result;
}

std::string WalkError(const std::string& Bytes)
{
    try {
        Names(Bytes);
    }
    catch (const EFormatError& Error) {
        return Error.Message;
    }
    return {};
}

} // namespace

TEST(KvStorageDirectory, ReadsTheFieldsOfAnEntry)
{
    auto Bytes = Entry(u"Book", 1, 2, 3);
    const std::uint32_t First = 17;
    const std::uint64_t Size = 0x123456789A;
    std::memcpy(Bytes.data() + 116, &First, 4);
    std::memcpy(Bytes.data() + 120, &Size, 8);
    const TKvStorageDirectory Directory(Bytes);
    ASSERT_EQ(Directory.Count(), 1u);
    const auto Entry = Directory.Entry(0);
    EXPECT_EQ(Entry.Name(), "Book");
    EXPECT_EQ(Entry.Kind, ekStream);
    EXPECT_EQ(Entry.Left, 1u);
    EXPECT_EQ(Entry.Right, 2u);
    EXPECT_EQ(Entry.Child, 3u);
    EXPECT_EQ(Entry.FirstSector, 17u);
    EXPECT_EQ(Entry.Size, 0x123456789Au);
}

TEST(KvStorageDirectory, HalfAnEntryIsNone)
{
    EXPECT_EQ(TKvStorageDirectory(Root(None).substr(0, 127)).Count(), 0u);
}

TEST(KvStorageDirectory, GivesTheEntriesOfATreeFromLeftToRight)
{
    //      1
    //    2   4
    //     3 5
    const auto Bytes = Root(1) + Entry(u"one", 2, 4) + Entry(u"two", None, 3) + Entry(u"three") +
                       Entry(u"four", 5) + Entry(u"five") + Entry(u"unused");
    EXPECT_THAT(Names(Bytes), ElementsAre("two", "three", "one", "five", "four"));
}

TEST(KvStorageDirectory, AnEmptyStorageHasNoEntries)
{
    EXPECT_TRUE(Names(Root(None)).empty());
}

TEST(KvStorageDirectory, AStorageDoesNotShowWhatStandsInAStorageOfIts)
{
    EXPECT_THAT(Names(Root(1) + Entry(u"outer", None, None, 2) + Entry(u"inner")), ElementsAre("outer"));
}

TEST(KvStorageDirectory, ATreeThatLeadsAstrayIsRefused)
{
    EXPECT_EQ(WalkError(Root(5) + Entry(u"a")), "directory entry 5 does not exist");
    EXPECT_EQ(WalkError(Root(1) + Entry(u"a", None, 2)), "directory entry 2 does not exist");
    EXPECT_EQ(WalkError(Root(1) + Entry(u"a", 1)), "directory entry 1 is named twice");
    EXPECT_EQ(WalkError(Root(1) + Entry(u"a", None, 2) + Entry(u"b", None, 1)),
              "directory entry 1 is named twice");
    EXPECT_EQ(WalkError(Root(1) + Entry(u"a", 2, 2) + Entry(u"b")), "directory entry 2 is named twice");
}

TEST(KvStorageDirectory, ANameFillsItsField)
{
    const std::u16string Name(32, u'x');
    EXPECT_THAT(Names(Root(1) + Entry(Name)), ElementsAre(std::string(32, 'x')));
}

TEST(KvStorageDirectory, ANameIsProcessText)
{
    EXPECT_THAT(Names(Root(1) + Entry(u"Caf\u00E9 \u4E2D")), ElementsAre("Caf\xC3\xA9 \xE4\xB8\xAD"));
}

TEST(KvStorageDirectory, ANameThatTheCodePageCannotHoldIsSpelledInNumbers)
{
    SetAnsiCodePage("windows-1252");
    EXPECT_THAT(Names(Root(1) + Entry(u"Caf\u00E9", None, 2) + Entry(u"x\u4E2D")),
                ElementsAre("Caf\xE9", "x\\u4E2D"));
    SetAnsiCodePage("UTF-8");
    const char16_t Unpaired[] = {u'a', 0xD800, 0};
    EXPECT_THAT(Names(Root(1) + Entry(Unpaired)), ElementsAre("a\\uD800"));
}

} // namespace kv
