#include "KvTextWindow.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <unistd.h>

#include "KvCodePage.h"
#include "KvException.h"
#include "KvRandomText.h"
#include "KvTempFolder.h"

using namespace std::string_literals;

namespace kv {

namespace {

constexpr auto WholeFile = TKvTextFile::WholeFile;

/// All of the text, of which `Kept` bytes stay in the window at each step.
std::string ReadAll(TKvTextWindow& Window, std::size_t Kept = 0)
{
    std::string Text(Window.Text());
    while (!Window.IsLast()) {
        const auto Seen = Window.Text().size();
        const auto Stays = std::min(Kept, Seen);
        EXPECT_TRUE(Window.MoveOn(Seen - Stays, {}));
        EXPECT_EQ(Window.Text().substr(0, Stays), std::string_view(Text).substr(Text.size() - Stays));
        Text += Window.Text().substr(Stays);
    }
    return Text;
}

/// UTF-16, low byte first, of a text of the basic plane and of one character beyond it: '?'.
std::string Utf16(std::string_view Text)
{
    std::string Result = "\xFF\xFE";
    for (const char Char : Text)
        Result += Char == '?' ? "\x3D\xD8\x00\xDE"s : std::string{Char, '\0'};
    return Result;
}

} // namespace

TEST(KvTextWindow, SeesNothingBeforeItMoves)
{
    const TTempFolder Folder;
    TKvTextWindow Window(Folder.Write("file", "abc"), bmIsText);
    EXPECT_EQ(Window.Text(), "");
    EXPECT_FALSE(Window.IsLast());
    EXPECT_TRUE(Window.MoveOn(0, {}));
    EXPECT_EQ(Window.Text(), "abc");
    EXPECT_TRUE(Window.IsLast());
    EXPECT_TRUE(Window.IsWhole());
}

TEST(KvTextWindow, AnEmptyFileEndsAtOnce)
{
    const TTempFolder Folder;
    TKvTextWindow Window(Folder.Write("file", ""), bmTellsEncoding);
    EXPECT_TRUE(Window.MoveOn(0, {}));
    EXPECT_EQ(Window.Text(), "");
    EXPECT_TRUE(Window.IsLast());
}

TEST(KvTextWindow, HoldsTwoPiecesOfALargeFile)
{
    const TTempFolder Folder;
    const std::string Text(10000, 'x');
    TKvTextWindow Window(Folder.Write("file", Text), bmIsText, WholeFile, 16);
    std::size_t Size = 0;
    while (!Window.IsLast()) {
        ASSERT_TRUE(Window.MoveOn(Window.Text().size(), {}));
        EXPECT_LE(Window.Text().size(), 32u);
        Size += Window.Text().size();
    }
    EXPECT_EQ(Size, Text.size());
}

TEST(KvTextWindow, KeepsWhatIsNotLeftBehind)
{
    const TTempFolder Folder;
    std::string Text;
    for (int I = 0; I < 500; ++I)
        Text += std::to_string(I);
    const auto File = Folder.Write("file", Text);
    for (const std::size_t Kept : {0, 1, 7, 8, 15, 16, 40, 2000})
        for (const std::size_t Piece : {1, 2, 8, 16, 1000, 5000}) {
            TKvTextWindow Window(File, bmIsText, WholeFile, Piece);
            EXPECT_EQ(ReadAll(Window, Kept), Text) << Kept << " " << Piece;
        }
}

TEST(KvTextWindow, GoesBackToTheStartFromWhereverItIs)
{
    const TTempFolder Folder;
    const std::string Text = "0123456789abcdefghij";
    for (const auto& Bytes : {Text, "\xEF\xBB\xBF" + Text, Utf16(Text)})
        for (const std::size_t Piece : {1, 5, 100})
            for (const int Moves : {0, 1, 3, 100}) {
                TKvTextWindow Window(Folder.Write("file", Bytes), bmTellsEncoding, WholeFile, Piece);
                for (int I = 0; I < Moves && !Window.IsLast(); ++I)
                    Window.MoveOn(Window.Text().size(), {});
                Window.Rewind();
                EXPECT_EQ(ReadAll(Window), Text) << Piece << " " << Moves;
                EXPECT_EQ(Window.Mark() != nullptr, Bytes != Text);
            }
}

TEST(KvTextWindow, EndsWhereItIsToldTo)
{
    const TTempFolder Folder;
    const auto File = Folder.Write("file", "0123456789");
    for (const std::size_t Size : {0, 1, 9, 10, 11}) {
        TKvTextWindow Window(File, bmIsText, Size, 4);
        EXPECT_EQ(ReadAll(Window), "0123456789"s.substr(0, Size));
        EXPECT_EQ(Window.IsWhole(), Size > 10) << Size; // of just so many bytes it may hold more
    }
}

TEST(KvTextWindow, WhatIsAddedToTheFileMeanwhileIsNoPartOfIt)
{
    const TTempFolder Folder;
    const auto File = Folder.Write("file", "0123456789");
    TKvTextWindow Window(File, bmIsText, WholeFile, 4);
    Window.MoveOn(0, {});
    std::ofstream(File, std::ios::app) << "more";
    EXPECT_EQ(ReadAll(Window), "0123456789");
    EXPECT_TRUE(Window.IsWhole());
}

TEST(KvTextWindow, AFileThatIsCutMeanwhileEndsThere)
{
    const TTempFolder Folder;
    const auto File = Folder.Write("file", "0123456789");
    TKvTextWindow Window(File, bmIsText, WholeFile, 4);
    Window.MoveOn(0, {});
    std::filesystem::resize_file(File, 6);
    EXPECT_EQ(ReadAll(Window), "012345");
}

TEST(KvTextWindow, APipeCanBeSeenAgainToo)
{
    int Ends[2];
    ASSERT_EQ(pipe(Ends), 0);
    const std::string Text(5000, 'x');
    ASSERT_EQ(write(Ends[1], Text.data(), Text.size()), static_cast<ssize_t>(Text.size()));
    close(Ends[1]);
    TKvTextWindow Window("/proc/self/fd/" + std::to_string(Ends[0]), bmIsText, WholeFile, 16);
    EXPECT_EQ(ReadAll(Window), Text);
    Window.Rewind();
    EXPECT_EQ(ReadAll(Window), Text);
    close(Ends[0]);
}

TEST(KvTextWindow, TellsWhereItsTextStandsInTheFile)
{
    const TTempFolder Folder;
    TKvTextWindow Window(Folder.Write("file", "\xEF\xBB\xBF"
                                              "0123456789abcdef"),
                         bmTellsEncoding, WholeFile, 8);
    Window.MoveOn(0, {});
    EXPECT_EQ(Window.OffsetOf(Window.Text().data()), 3);
    Window.MoveOn(2, {});
    EXPECT_EQ(Window.OffsetOf(Window.Text().data() + 1), 6);
    TKvTextWindow Wide(Folder.Write("wide", Utf16("ab")), bmTellsEncoding);
    Wide.MoveOn(0, {});
    EXPECT_EQ(Wide.OffsetOf(Wide.Text().data()), -1);
}

TEST(KvTextWindow, DecodesPieceByPiece)
{
    const TTempFolder Folder;
    const auto File = Folder.Write("file", Utf16("a?bc??d?"));
    const auto Expected = "a\xF0\x9F\x98\x80"
                          "bc\xF0\x9F\x98\x80\xF0\x9F\x98\x80"
                          "d\xF0\x9F\x98\x80";
    for (std::size_t Piece = 2; Piece < 20; ++Piece) {
        TKvTextWindow Window(File, bmTellsEncoding, WholeFile, Piece);
        EXPECT_EQ(ReadAll(Window), Expected) << Piece;
    }
    // A part ends with a whole character.
    TKvTextWindow Part(File, bmTellsEncoding, 7);
    EXPECT_EQ(ReadAll(Part), "a");
}

TEST(KvTextWindow, AMarkIsTextUnlessItTellsTheEncoding)
{
    const TTempFolder Folder;
    const auto File = Folder.Write("file", "\xEF\xBB\xBF\xC3\xA9");
    TKvTextWindow Plain(File, bmIsText);
    EXPECT_EQ(ReadAll(Plain), "\xEF\xBB\xBF\xC3\xA9");
    EXPECT_EQ(Plain.Mark(), nullptr);
    SetAnsiCodePage("windows-1252");
    TKvTextWindow Decoded(File, bmTellsEncoding, WholeFile, 4);
    EXPECT_EQ(ReadAll(Decoded), "\xE9");
    SetAnsiCodePage("UTF-8");
}

TEST(KvTextWindow, TextThatBeliesItsMarkIsRefused)
{
    const TTempFolder Folder;
    for (const auto& Bytes : {"\xFF\xFE"
                              "1\0,"s,
                              "\xFF\xFE"
                              "1\0\x00\xDC"s})
    {
        TKvTextWindow Window(Folder.Write("file", Bytes), bmTellsEncoding, WholeFile, 4);
        EXPECT_THROW(ReadAll(Window), EConvertError);
    }
}

TEST(KvTextWindow, StopsWhenItIsToldTo)
{
    const TTempFolder Folder;
    for (const auto& Bytes : {"0123456789"s, Utf16("0123456789")}) {
        TKvTextWindow Window(Folder.Write("file", Bytes), bmTellsEncoding, WholeFile, 4);
        int Asked = 0;
        EXPECT_TRUE(Window.MoveOn(0, [&Asked] { return ++Asked > 0; }));
        EXPECT_GT(Asked, 0);
        EXPECT_FALSE(Window.MoveOn(0, [] { return false; }));
    }
}

TEST(KvTextWindow, AFileThatCannotBeReadIsRefused)
{
    EXPECT_THROW(TKvTextWindow("/no/such/file", bmIsText), EFileError);
    EXPECT_THROW(TKvTextWindow("/", bmIsText), EFileError);
    TKvTextWindow Window("/proc/self/mem", bmIsText); // opens, and has nothing at its start
    EXPECT_THROW(Window.MoveOn(0, {}), EFileError);
}

} // namespace kv
