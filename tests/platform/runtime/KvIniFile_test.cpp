#include "KvIniFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <string_view>
#include <sys/stat.h>

#include "KvException.h"
#include "KvSettingsGuard.h"
#include "KvTempFolder.h"

namespace kv {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class KvIniFile : public testing::Test
{
protected:
    /// The file, holding `Text`.
    TIniFile Open(std::string_view Text) const { return TIniFile(Folder.Write("test.ini", Text)); }
    /// What the file holds after `Change`.
    template <class TChange> std::string After(std::string_view Text, TChange Change) const
    {
        auto File = Open(Text);
        Change(File);
        File.UpdateFile();
        return Folder.Read("test.ini");
    }
    /// What `Key` of a section reads as after it was written to a new file.
    std::string WrittenAndRead(std::string_view Value) const
    {
        TIniFile File(Folder / "new.ini", ioOpenOrCreate);
        File.WriteString("S", "Key", Value);
        File.UpdateFile();
        return TIniFile(Folder / "new.ini").ReadString("S", "Key", "missing");
    }

    const TTempFolder Folder;
};

// Reading.

TEST_F(KvIniFile, AnEmptyFileHasNothing)
{
    const auto File = Open("");
    EXPECT_FALSE(File.HasSection("S"));
    EXPECT_FALSE(File.HasKey("S", "A"));
    EXPECT_THAT(File.KeysOf("S"), IsEmpty());
    EXPECT_EQ(File.ReadString("S", "A", "default"), "default");
    EXPECT_EQ(File.ReadInteger("S", "A", 7), 7);
    EXPECT_TRUE(File.ReadBool("S", "A", true));
}

TEST_F(KvIniFile, ReadsTheKeysOfSections)
{
    const auto File = Open("[One]\r\nA=1\r\nB=two\r\n[Two]\r\nA=3\r\n");
    EXPECT_EQ(File.ReadString("One", "A", ""), "1");
    EXPECT_EQ(File.ReadString("One", "B", ""), "two");
    EXPECT_EQ(File.ReadString("Two", "A", ""), "3");
    EXPECT_EQ(File.ReadString("Two", "B", "default"), "default");
    EXPECT_EQ(File.ReadString("Three", "A", "default"), "default");
}

TEST_F(KvIniFile, NamesAreFoundWithoutRegardToCase)
{
    const auto File = Open("[common]\nMODE=4\n");
    EXPECT_TRUE(File.HasSection("Common"));
    EXPECT_TRUE(File.HasKey("COMMON", "Mode"));
    EXPECT_EQ(File.ReadInteger("Common", "mode", 0), 4);
}

TEST_F(KvIniFile, LinesEndInCrLfLfOrCr)
{
    for (const std::string End : {"\r\n", "\n", "\r"}) {
        const auto File = Open("[S]" + End + "A=1" + End + End + "B=2");
        EXPECT_EQ(File.ReadString("S", "A", ""), "1");
        EXPECT_EQ(File.ReadString("S", "B", ""), "2");
    }
}

TEST_F(KvIniFile, AByteOrderMarkIsNoPartOfTheFirstSection)
{
    EXPECT_EQ(Open("\xEF\xBB\xBF[S]\nA=1\n").ReadString("S", "A", ""), "1");
}

TEST_F(KvIniFile, OfEqualNamesTheFirstCounts)
{
    const auto File = Open("[S]\nA=1\na=2\n[s]\nA=3\nB=4\n");
    EXPECT_EQ(File.ReadString("S", "A", ""), "1");
    EXPECT_EQ(File.ReadString("S", "B", "default"), "default");
    EXPECT_THAT(File.KeysOf("S"), ElementsAre("A"));
}

TEST_F(KvIniFile, CommentsAndOtherLinesAreNoKeys)
{
    const auto File = Open("A=0\n; [S]\n[S]\n;A=1\n =2\nno key\n\n  B = 3\n");
    EXPECT_THAT(File.KeysOf("S"), ElementsAre("B"));
    EXPECT_EQ(File.ReadString("S", "A", "default"), "default");
    EXPECT_FALSE(File.HasKey("S", ""));
}

TEST_F(KvIniFile, AHeadingThatWasCutIsAHeading)
{
    const auto File = Open("[One]\nA=1\n[Two\nB=2\n[");
    EXPECT_FALSE(File.HasKey("One", "B"));
    EXPECT_EQ(File.ReadString("Two", "B", ""), "2");
    EXPECT_EQ(Open("[ S ] tail\nA=1\n").ReadString("S", "A", ""), "1");
}

struct TValueRow
{
    std::string_view Name, Line, Value;
};

std::ostream& operator<<(std::ostream& Out, const TValueRow& Row)
{
    return Out << Row.Name;
}

class KvIniFileReads : public KvIniFile, public testing::WithParamInterface<TValueRow> {};

TEST_P(KvIniFileReads, TheValue)
{
    EXPECT_EQ(Open("[S]\n" + std::string(GetParam().Line) + "\n").ReadString("S", "A", "missing"),
              GetParam().Value);
}

INSTANTIATE_TEST_SUITE_P(, KvIniFileReads, testing::Values(
    TValueRow{"Empty", "A=", ""},
    TValueRow{"Plain", "A=b c", "b c"},
    TValueRow{"WithBlanksAround", " A =\t b ", "b"},
    TValueRow{"WithEqualSigns", "A=NAME=Field1", "NAME=Field1"},
    TValueRow{"WithASemicolon", "A=b;c", "b;c"},
    TValueRow{"InDoubleQuotes", "A=\" b \"", " b "},
    TValueRow{"InSingleQuotes", "A=' b '", " b "},
    TValueRow{"InTwoPairsOfQuotes", "A=\"\"b\"\"", "\"b\""},
    TValueRow{"InDifferentQuotes", "A=\"b'", "\"b'"},
    TValueRow{"OneQuote", "A=\"", "\""},
    TValueRow{"EmptyInQuotes", "A=\"\"", ""},
    TValueRow{"OfOtherLetters", "A=\xC4\xE9", "\xC4\xE9"}),
    [](const auto& Row) { return std::string(Row.param.Name); });

TEST_F(KvIniFile, ReadsNumbersAndTruths)
{
    const auto File = Open("[S]\nA=-2147483648\nB= +7 \nC=0\nD=1\nE=\nF=2\n");
    EXPECT_EQ(File.ReadInteger("S", "A", 0), -2147483647 - 1);
    EXPECT_EQ(File.ReadInteger("S", "B", 0), 7);
    EXPECT_FALSE(File.ReadBool("S", "C", true));
    EXPECT_TRUE(File.ReadBool("S", "D", false));
    EXPECT_EQ(File.ReadInteger("S", "E", 5), 5);
    EXPECT_TRUE(File.ReadBool("S", "E", true));
    EXPECT_TRUE(File.ReadBool("S", "F", false));
}

TEST_F(KvIniFile, SaysWhichValueIsNoNumber)
{
    const auto File = Open("[Text]\nRowFirst=abc\nRowLast=2147483648\nFixed=True\n");
    const auto Place = "Cannot read file \"" + File.FileName() + "\": [Text] ";
    EXPECT_EQ(MessageOf<EConvertError>([&] { File.ReadInteger("Text", "RowFirst", 1); }),
              Place + "RowFirst: 'abc' is not a valid integer value");
    EXPECT_EQ(MessageOf<EConvertError>([&] { File.ReadInteger("Text", "RowLast", 1); }),
              Place + "RowLast: 2147483648 is out of range");
    EXPECT_EQ(MessageOf<EConvertError>([&] { File.ReadBool("Text", "Fixed", false); }),
              Place + "Fixed: 'True' is not a valid integer value");
}

TEST_F(KvIniFile, RefusesWhatItCannotRead)
{
    const auto Name = Folder / "none.ini";
    EXPECT_EQ(MessageOf<EFileError>([&] { TIniFile{Name}; }),
              "Cannot open file \"" + Name + "\": No such file or directory");
    const auto Utf16 = Folder.Write("utf16.ini", std::string_view("\xFF\xFE[\0S\0]\0", 8));
    EXPECT_EQ(MessageOf<EFileError>([&] { TIniFile{Utf16}; }),
              "Cannot read file \"" + Utf16 + "\": it is no 8-bit text");
    EXPECT_EQ(MessageOf<EFileError>([&] { TIniFile(Utf16, ioOpenOrCreate); }),
              "Cannot read file \"" + Utf16 + "\": it is no 8-bit text");
    const auto Large = Folder.Write("large.ini", std::string(TIniFile::MaxSize + 1, '\n'));
    EXPECT_EQ(MessageOf<EFileError>([&] { TIniFile{Large}; }),
              "Cannot read file \"" + Large + "\": it is larger than 16 MB");
}

// Writing.

TEST_F(KvIniFile, MakesAFileWithLineEndsOfItsOwn)
{
    TIniFile File(Folder / "new.ini", ioOpenOrCreate);
    File.WriteString("One", "A", "b");
    File.WriteInteger("One", "B", -3);
    File.WriteBool("Two", "C", true);
    File.WriteBool("Two", "D", false);
    EXPECT_THAT(Folder.Names(), IsEmpty());
    File.UpdateFile();
    EXPECT_EQ(Folder.Read("new.ini"), "[One]\r\nA=b\r\nB=-3\r\n[Two]\r\nC=1\r\nD=0\r\n");
}

TEST_F(KvIniFile, WhatWasWrittenIsReadAtOnce)
{
    auto File = Open("[S]\nA=1\n");
    File.WriteString("s", "a", "2");
    File.WriteString("T", "B", "3");
    EXPECT_EQ(File.ReadString("S", "A", ""), "2");
    EXPECT_EQ(File.ReadString("t", "b", ""), "3");
}

TEST_F(KvIniFile, ChangesOneValueAndNothingElse)
{
    const auto Saved =
        After("\xEF\xBB\xBF; mine\r\n\r\n[s]\r\n  Key \t=  old  \r\nother=\"1\"\nbroken\r\n\r\n[T]\r\nx=1",
              [](TIniFile& File) { File.WriteString("S", "KEY", "new"); });
    EXPECT_EQ(Saved,
              "\xEF\xBB\xBF; mine\r\n\r\n[s]\r\n  Key \t=  new\r\nother=\"1\"\nbroken\r\n\r\n[T]\r\nx=1");
}

TEST_F(KvIniFile, AValueThatIsThereIsNotWrittenAgain)
{
    const auto Name = Folder.Write("test.ini", "[S]\nA = 'b' \n");
    struct stat Before{}, Later{};
    stat(Name.c_str(), &Before);
    TIniFile File(Name);
    File.WriteString("S", "A", "b");
    File.UpdateFile();
    stat(Name.c_str(), &Later);
    EXPECT_EQ(Later.st_ino, Before.st_ino);         // a file that is saved is another one
    EXPECT_EQ(Folder.Read("test.ini"), "[S]\nA = 'b' \n");
}

TEST_F(KvIniFile, NewKeysGoToTheEndOfTheirSection)
{
    const auto Saved = After("[S]\nA=1\n; last\n\n\n[T]\nB=2\n", [](TIniFile& File) {
        File.WriteString("S", "C", "3");
        File.WriteString("S", "D", "4");
    });
    EXPECT_EQ(Saved, "[S]\nA=1\n; last\nC=3\nD=4\n\n\n[T]\nB=2\n");
}

TEST_F(KvIniFile, NewSectionsGoToTheEndOfTheFile)
{
    const auto Add = [](TIniFile& File) { File.WriteString("T", "A", "1"); };
    EXPECT_EQ(After("[S]\n", Add), "[S]\n[T]\nA=1\n");
    EXPECT_EQ(After("[S]\nA=1", Add), "[S]\nA=1\n[T]\nA=1\n");
    EXPECT_EQ(After("[S]\nA=1\n  ", Add), "[S]\nA=1\n  \n[T]\nA=1\n");
    EXPECT_EQ(After("[S]\rA=1\r", Add), "[S]\rA=1\r[T]\rA=1\r");
    EXPECT_EQ(After("no line end", Add), "no line end\r\n[T]\r\nA=1\r\n");
    EXPECT_EQ(After("\xEF\xBB\xBF", Add), "\xEF\xBB\xBF[T]\r\nA=1\r\n");
}

TEST_F(KvIniFile, ASectionIsErasedWithAllThatStandsInIt)
{
    const auto Erase = [](TIniFile& File) { File.EraseSection("s"); };
    EXPECT_EQ(After("A=0\n\n[S]\nA=1\n; mine\n\n[T]\nB=2\n[S]\nA=3", Erase), "A=0\n\n[T]\nB=2\n");
    EXPECT_EQ(After("[T]\nS=1\n", Erase), "[T]\nS=1\n");
    EXPECT_EQ(After("", Erase), "");
}

TEST_F(KvIniFile, AnErasedSectionIsGoneAndCanBeWrittenAgain)
{
    const auto Saved = After("[S]\nA=1\n[T]\nB=2\n[S]\nA=3\n", [](TIniFile& File) {
        File.EraseSection("S");
        EXPECT_FALSE(File.HasSection("S"));
        EXPECT_FALSE(File.HasKey("S", "A"));
        File.WriteString("S", "C", "4");
        EXPECT_EQ(File.KeysOf("S"), std::vector<std::string>{"C"});
    });
    EXPECT_EQ(Saved, "[T]\nB=2\n[S]\nC=4\n");
}

TEST_F(KvIniFile, ALastLineWithoutItsEndGetsOne)
{
    EXPECT_EQ(After("[S]\r\nA=1", [](TIniFile& File) { File.WriteString("S", "B", "2"); }),
              "[S]\r\nA=1\r\nB=2\r\n");
    EXPECT_EQ(After("[S", [](TIniFile& File) { File.WriteString("S", "B", "2"); }), "[S\r\nB=2\r\n");
    EXPECT_EQ(After("[S]\nA=1\n ", [](TIniFile& File) { File.WriteString("S", "B", "2"); }),
              "[S]\nA=1\nB=2\n \n");
}

TEST_F(KvIniFile, ValuesReadAsTheyWereWritten)
{
    for (const std::string_view Value :
         {"", " ", " b", "b\t", "\"", "\"b\"", "'b'", "\"'", "\"A\"=\"B\"", ";b", "[b]", "a=b", "\x01",
          "\x1A", "\xC4\xA0"})
        EXPECT_EQ(WrittenAndRead(Value), Value);
}

TEST_F(KvIniFile, QuotesStandOnlyWhereTheyAreNeeded)
{
    const auto Saved = After("[S]\n", [](TIniFile& File) {
        File.WriteString("S", "A", "NAME=Field 1");
        File.WriteString("S", "B", "NAME=Field 1 ");
    });
    EXPECT_EQ(Saved, "[S]\nA=NAME=Field 1\nB=\"NAME=Field 1 \"\n");
}

TEST_F(KvIniFile, RefusesWhatCouldNotBeReadBack)
{
    auto File = Open("[S]\n");
    const auto Place = "Cannot write file \"" + File.FileName() + "\": ";
    for (const auto Value : {std::string_view("a\nb"), std::string_view("a\r"), std::string_view("\0", 1)})
        EXPECT_EQ(MessageOf<EFileError>([&] { File.WriteString("S", "A", Value); }),
                  Place + "[S] A: a value cannot hold a line break or a zero byte");
    for (const std::string Key : {"", " A", "A=", ";A", "[A", "A\nB"})
        EXPECT_EQ(MessageOf<EFileError>([&] { File.WriteString("S", Key, "1"); }),
                  Place + "[S] " + Key + ": section and key cannot be written so");
    for (const std::string Section : {"", "S ", "S]", "S\nT"})
        EXPECT_EQ(MessageOf<EFileError>([&] { File.WriteString(Section, "A", "1"); }),
                  Place + "[" + Section + "] A: section and key cannot be written so");
    File.UpdateFile();
    EXPECT_EQ(Folder.Read("test.ini"), "[S]\n");
}

TEST_F(KvIniFile, RefusesToGrowBeyondWhatItReads)
{
    auto File = Open("[S]\n");
    File.WriteString("S", "A", std::string(TIniFile::MaxSize, 'x'));
    EXPECT_EQ(MessageOf<EFileError>([&] { File.UpdateFile(); }),
              "Cannot write file \"" + File.FileName() + "\": it would be larger than 16 MB");
    EXPECT_EQ(Folder.Read("test.ini"), "[S]\n");
}

TEST_F(KvIniFile, TakesManySectionsKeysAndBlankLines)
{
    std::string Text;
    for (int I = 0; I < 20000; ++I)
        Text += "[S" + std::to_string(I) + "]\nA=" + std::to_string(I) + "\n\n\n";
    const auto Saved = After(Text, [](TIniFile& File) {
        for (int I = 0; I < 20000; ++I)
            File.WriteInteger("S0", "K" + std::to_string(I), I);
        EXPECT_EQ(File.ReadInteger("S19999", "A", 0), 19999);
    });
    EXPECT_TRUE(Saved.starts_with("[S0]\nA=0\nK0=0\nK1=1\n"));
    EXPECT_TRUE(Saved.ends_with("[S19999]\nA=19999\n\n\n"));
}

} // namespace
} // namespace kv
