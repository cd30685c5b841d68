#include "KvDbaseMemo.h"

#include <gtest/gtest.h>

#include <string>

#include "KvDbaseBuilder.h"
#include "KvException.h"
#include "KvTempFolder.h"

namespace kv {

namespace {

std::string Read(std::string_view Bytes, TKvDbaseMemoKind Kind, std::uint64_t Block)
{
    const TTempFolder Folder;
    TKvFileWindow File(Folder.Write("memos", Bytes), 16 << 10);
    std::string Buffer = "of another memo";
    try {
        return std::string(DbaseMemo(File, Kind, Block, Buffer));
    }
    catch (const EFormatError& Error) {
        return Error.Message;
    }
}

std::string With(std::string File, std::size_t Offset, std::string_view Bytes)
{
    return File.replace(Offset, Bytes.size(), Bytes);
}

const std::string Long(50000, 'x');

std::string Joined(std::string Memo)
{
    JoinSoftLines(Memo);
    return Memo;
}

} // namespace

TEST(KvDbaseMemo, MemosOfDbase3EndAtAMark)
{
    TDbaseMemoBuilder Memos(TDbaseMemoBuilder::Dbase3);
    const auto Short = Memos.Add("first memo\r\n");
    const auto Several = Memos.Add(Long);
    const auto Empty = Memos.Add("");
    EXPECT_EQ(Short, 1u);
    EXPECT_EQ(Several, 2u);
    EXPECT_EQ(Read(Memos.Build(), dmDbase3, Short), "first memo\r\n");
    EXPECT_EQ(Read(Memos.Build(), dmDbase3, Several), Long);
    EXPECT_EQ(Read(Memos.Build(), dmDbase3, Empty), "");
}

TEST(KvDbaseMemo, TheLastMemoOfDbase3MayEndWithTheFile)
{
    TDbaseMemoBuilder Memos(TDbaseMemoBuilder::Dbase3);
    Memos.Add("memo");
    const auto& File = Memos.Build();
    EXPECT_EQ(Read(std::string_view(File).substr(0, File.size() - 2), dmDbase3, 1), "memo");
}

TEST(KvDbaseMemo, MemosOfDbase4TellTheirSize)
{
    for (const unsigned BlockSize : {64u, 512u, 1024u}) {
        TDbaseMemoBuilder Memos(TDbaseMemoBuilder::Dbase4, BlockSize);
        const auto First = Memos.Add("with a mark \x1A within");
        const auto Second = Memos.Add(Long);
        EXPECT_EQ(Read(Memos.Build(), dmDbase4, First), "with a mark \x1A within") << BlockSize;
        EXPECT_EQ(Read(Memos.Build(), dmDbase4, Second), Long) << BlockSize;
    }
}

TEST(KvDbaseMemo, MemosOfFoxProTellTheirSize)
{
    for (const unsigned BlockSize : {1u, 64u, 512u}) {
        TDbaseMemoBuilder Memos(TDbaseMemoBuilder::FoxPro, BlockSize);
        const auto First = Memos.Add(std::string("a zero \0 within", 15));
        const auto Second = Memos.Add(Long);
        EXPECT_EQ(Read(Memos.Build(), dmFoxPro, First), std::string("a zero \0 within", 15)) << BlockSize;
        EXPECT_EQ(Read(Memos.Build(), dmFoxPro, Second), Long) << BlockSize;
    }
}

TEST(KvDbaseMemo, ABlockSizeOfZeroIsTheUsualOneOfDbase4)
{
    TDbaseMemoBuilder Memos(TDbaseMemoBuilder::Dbase4);
    const auto Block = Memos.Add("memo");
    EXPECT_EQ(Read(With(Memos.Build(), 20, std::string(2, '\0')), dmDbase4, Block), "memo");
}

TEST(KvDbaseMemo, LineEndsOfAnEditorBecomeABlank)
{
    EXPECT_EQ(Joined("one two\x8D\nthree"), "one two three");
    EXPECT_EQ(Joined("one two \x8D\nthree\x8D\n\x8D\nfour\x8D\n"), "one two three four ");
    EXPECT_EQ(Joined("\x8D\none"), "one");
    EXPECT_EQ(Joined("one\r\ntwo\x8D" "three"), "one\r\ntwo\x8D" "three") << "a letter of the code page";
    EXPECT_FALSE(HasSoftLines("one\r\ntwo\x8D"));
    EXPECT_TRUE(HasSoftLines("one\x8D\n"));
}

TEST(KvDbaseMemo, ABlockOutsideTheFileIsAnError)
{
    TDbaseMemoBuilder Memos(TDbaseMemoBuilder::FoxPro, 64);
    Memos.Add("memo");                              // the file ends within block 8
    for (const std::uint64_t Block : {std::uint64_t{9}, std::uint64_t{0x8000000000000000}, std::uint64_t{7}})
        EXPECT_EQ(Read(Memos.Build(), dmFoxPro, Block),
                  "memo block " + std::to_string(Block) + ": it lies outside");
}

TEST(KvDbaseMemo, AMemoThatIsLongerThanTheFileIsAnError)
{
    TDbaseMemoBuilder Fox(TDbaseMemoBuilder::FoxPro);
    Fox.Add("memo");
    EXPECT_EQ(Read(With(Fox.Build(), 516, "\x7F"), dmFoxPro, 1),
              "memo block 1: Unexpected end of data at offset 524");
    TDbaseMemoBuilder Dbase(TDbaseMemoBuilder::Dbase4);
    Dbase.Add("memo");
    EXPECT_EQ(Read(With(Dbase.Build(), 519, "\x7F"), dmDbase4, 1),
              "memo block 1: Unexpected end of data at offset 524");
}

TEST(KvDbaseMemo, ABlockWithinAMemoIsAnError)
{
    TDbaseMemoBuilder Fox(TDbaseMemoBuilder::FoxPro);
    Fox.Add(Long);
    EXPECT_EQ(Read(Fox.Build(), dmFoxPro, 2), "memo block 2: no memo begins there");
    TDbaseMemoBuilder Dbase(TDbaseMemoBuilder::Dbase4);
    Dbase.Add(Long);
    EXPECT_EQ(Read(Dbase.Build(), dmDbase4, 2), "memo block 2: no memo begins there");
    EXPECT_EQ(Read(With(Dbase.Build(), 516, std::string("\x07\0", 2)), dmDbase4, 1),
              "memo block 1: no memo begins there")
        << "smaller than its own head";
}

TEST(KvDbaseMemo, BlocksWithoutASizeAreAnError)
{
    const std::string Zeros(1024, '\0');
    EXPECT_EQ(Read(Zeros, dmFoxPro, 1), "memo block 1: its blocks have no size");
    EXPECT_EQ(Read("", dmFoxPro, 1), "memo block 1: Unexpected end of data at offset 0");
}

} // namespace kv
