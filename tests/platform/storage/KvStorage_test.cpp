#include "KvStorage.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "KvCompoundBuilder.h"
#include "KvException.h"
#include "KvTempFolder.h"

using testing::ElementsAre;

namespace kv {

namespace {

/// Bytes that tell where in their stream they stand.
std::string Pattern(std::size_t Size)
{
    std::string Bytes(Size, '\0');
    for (std::size_t I = 0; I < Size; ++I)
        Bytes[I] = static_cast<char>(I ^ I >> 8 ^ I >> 16);
    return Bytes;
}

std::vector<std::string> Names(const TKvStorage& Storage)
{
    std::vector<std::string> Result;
    for (const auto& Element : Storage.Elements())
        Result.push_back(Element.Name);
    return Result;
}

std::string ReadStream(std::string_view File, std::string_view Name)
{
    const TKvStorage Storage(File, "a.xls");
    const auto Stream = Storage.OpenStream(Name);
    Stream.RequireAll();
    return std::string(Stream.ReadAll());
}

/// The message of what `Act` raises, which knows the file too.
template <class TAct> std::string ErrorOf(TAct Act)
{
    try {
        Act();
    }
    catch (const EFormatError& Error) {
        EXPECT_EQ(Error.Facts.FileName, "a.xls");
        EXPECT_EQ(Error.Facts.Rule, erFormat);
        return Error.Message;
    }
    return {};
}

std::string OpenError(std::string_view File)
{
    return ErrorOf([&] { TKvStorage(File, "a.xls"); });
}

std::string ReadError(std::string_view File, std::string_view Name = "Book")
{
    return ErrorOf([&] { ReadStream(File, Name); });
}

template <class T> std::string Patched(std::string Bytes, std::size_t Offset, T Value)
{
    std::memcpy(Bytes.data() + Offset, &Value, sizeof Value);
    return Bytes;
}

std::string OneStream(std::size_t Size = 5000)
{
    return TCompoundBuilder().Stream(u"Book", Pattern(Size)).Build();
}

} // namespace

TEST(KvStorage, IsRecognisedByItsFirstBytes)
{
    EXPECT_TRUE(IsStorage(OneStream()));
    EXPECT_TRUE(IsStorage(OneStream().substr(0, 8)));
    EXPECT_FALSE(IsStorage(OneStream().substr(0, 7)));
    EXPECT_FALSE(IsStorage(""));
    EXPECT_FALSE(IsStorage("\x09\x08\x10\x00\x00\x06\x05\x00"));
}

TEST(KvStorage, AFileIsRecognisedWithoutOpeningItAsAStorage)
{
    const TTempFolder Folder;
    EXPECT_TRUE(IsStorageFile(Folder.Write("a.xls", OneStream().substr(0, 20))));
    EXPECT_FALSE(IsStorageFile(Folder.Write("b.xls", "text")));
    EXPECT_FALSE(IsStorageFile(Folder.Write("c.xls", "")));
    EXPECT_THROW(IsStorageFile(Folder / "none.xls"), EFileError);
}

TEST(KvStorage, ReadsAFile)
{
    const TTempFolder Folder;
    const TKvStorage Storage(Folder.Write("a.xls", OneStream()));
    EXPECT_THAT(Names(Storage), ElementsAre("Book"));
    EXPECT_EQ(Storage.OpenStream("Book").ReadAll(), Pattern(5000));
    EXPECT_THROW(TKvStorage(Folder / "none.xls"), EFileError);
}

TEST(KvStorage, ListsItsElementsInTheOrderOfTheTree)
{
    const auto File = TCompoundBuilder()
                          .Stream(u"Workbook", Pattern(5000))
                          .Stream(u"Book", Pattern(100))
                          .Storage(u"_VBA_PROJECT_CUR")
                          .Stream(u"\u0005SummaryInformation", "")
                          .Build();
    const TKvStorage Storage(File, "a.xls");
    EXPECT_THAT(Names(Storage),
                ElementsAre("Book", "Workbook", "_VBA_PROJECT_CUR", "\x05SummaryInformation"));
    EXPECT_EQ(Storage.Elements()[0].Kind, skStream);
    EXPECT_EQ(Storage.Elements()[0].Size, 100u);
    EXPECT_EQ(Storage.Elements()[1].Size, 5000u);
    EXPECT_EQ(Storage.Elements()[2].Kind, skStorage);
}

TEST(KvStorage, AnEmptyDocumentHasNoElements)
{
    const auto File = TCompoundBuilder().Build();
    EXPECT_TRUE(TKvStorage(File, "a.xls").Elements().empty());
}

TEST(KvStorage, StreamNamesCompareWithoutCase)
{
    const auto File = TCompoundBuilder().Stream(u"WORKBOOK", "abc").Build();
    EXPECT_EQ(ReadStream(File, "Workbook"), "abc");
    EXPECT_EQ(ReadStream(File, "workbook"), "abc");
}

TEST(KvStorage, AStreamThatIsNotThereIsNamed)
{
    const auto File = TCompoundBuilder().Stream(u"Book", "abc").Storage(u"Sub").Build();
    EXPECT_EQ(ReadError(File, "Workbook"), R"(File "a.xls" has no stream "Workbook")");
    EXPECT_EQ(ReadError(File, "Sub"), R"(File "a.xls" has no stream "Sub")"); // a storage is no stream
    EXPECT_EQ(ReadError(File, "Root Entry"), R"(File "a.xls" has no stream "Root Entry")");
}

TEST(KvStorage, ReadsStreamsOfAnySizeFromSectorsOfBothSizes)
{
    for (const std::size_t SectorSize : {512, 4096}) {
        for (const std::size_t Size : {0, 1, 63, 64, 65, 512, 4095, 4096, 4097, 4608, 8192, 100000}) {
            for (const bool IsScattered : {false, true}) {
                TCompoundBuilder Builder(SectorSize);
                if (IsScattered)
                    Builder.Scattered();
                Builder.Stream(u"Other", Pattern(3000)).Stream(u"Book", Pattern(Size))
                       .Stream(u"Last", Pattern(70));
                EXPECT_EQ(ReadStream(Builder.Build(), "Book"), Pattern(Size)) << Size << " in " << SectorSize;
            }
        }
    }
}

TEST(KvStorage, TheTableOfALargeFileGoesOnOutsideTheHeader)
{
    const auto Bytes = Pattern(17'000'000);         // two sectors of numbers beyond the 109 of the header
    EXPECT_EQ(ReadStream(TCompoundBuilder().Stream(u"Book", Bytes).Scattered().Build(), "Book"), Bytes);
}

TEST(KvStorage, AStreamInSectorsThatFollowEachOtherIsNotCopied)
{
    const auto File = OneStream();
    const TKvStorage Storage(File, "a.xls");
    const auto Stream = Storage.OpenStream("Book");
    EXPECT_GE(Stream.ReadAll().data(), File.data());
    EXPECT_LT(Stream.ReadAll().data(), File.data() + File.size());
}

TEST(KvStorage, ReadsAStreamPieceByPiece)
{
    const auto File = TCompoundBuilder().Stream(u"Book", Pattern(5000)).Scattered().Build();
    const TKvStorage Storage(File, "a.xls");
    auto Stream = Storage.OpenStream("Book");
    char Buffer[3000];
    EXPECT_EQ(Stream.Read(Buffer, 0), 0u);
    EXPECT_EQ(Stream.Read(Buffer, 3000), 3000u);
    EXPECT_EQ(std::string_view(Buffer, 3000), Pattern(5000).substr(0, 3000));
    EXPECT_EQ(Stream.Position(), 3000u);
    EXPECT_EQ(Stream.Read(Buffer, 3000), 2000u);
    EXPECT_EQ(std::string_view(Buffer, 2000), Pattern(5000).substr(3000));
    EXPECT_EQ(Stream.Read(Buffer, 3000), 0u);
    EXPECT_EQ(Stream.Position(), 5000u);
    EXPECT_EQ(Stream.Size(), 5000u);
}

TEST(KvStorage, SeeksFromTheStartAndFromTheCurrentPosition)
{
    const auto File = OneStream();
    const TKvStorage Storage(File, "a.xls");
    auto Stream = Storage.OpenStream("Book");
    char Byte;
    Stream.SeekFromStart(4321);
    EXPECT_EQ(Stream.Read(&Byte, 1), 1u);
    EXPECT_EQ(Byte, Pattern(5000)[4321]);
    Stream.SeekFromCurrent(-322);
    EXPECT_EQ(Stream.Position(), 4000u);
    Stream.SeekFromCurrent(999);
    EXPECT_EQ(Stream.Read(&Byte, 1), 1u);
    EXPECT_EQ(Byte, Pattern(5000)[4999]);
    Stream.SeekFromCurrent(1000);
    EXPECT_EQ(Stream.Read(&Byte, 1), 0u);           // past the end there is nothing
    EXPECT_EQ(ErrorOf([&] { Stream.SeekFromCurrent(-6001); }),
              R"(Cannot seek before the start of stream "Book" of file "a.xls")");
    EXPECT_EQ(Stream.Position(), 6000u);
}

TEST(KvStorage, AStreamMayBeMoved)
{
    const auto File = TCompoundBuilder().Stream(u"Book", Pattern(5000)).Scattered().Build();
    const TKvStorage Storage(File, "a.xls");
    auto Stream = Storage.OpenStream("Book");
    const auto Moved = std::move(Stream);
    EXPECT_EQ(Moved.ReadAll(), Pattern(5000));
}

// What damaged files give.

TEST(KvStorage, AHeaderThatCannotBeReadIsRefused)
{
    const auto Good = OneStream();
    EXPECT_EQ(OpenError(""), R"(File "a.xls" is no compound document: its signature is missing)");
    EXPECT_EQ(OpenError("PK\x03\x04"), R"(File "a.xls" is no compound document: its signature is missing)");
    EXPECT_EQ(OpenError(Good.substr(0, 8)),
              R"(File "a.xls" is no compound document: its header is cut short)");
    EXPECT_EQ(OpenError(Good.substr(0, 511)),
              R"(File "a.xls" is no compound document: its header is cut short)");
    EXPECT_EQ(OpenError(Good.substr(0, 512)),
              R"(File "a.xls" is no compound document: its directory is missing)");
}

TEST(KvStorage, SectorsOfAnotherSizeAreRefused)
{
    for (const int Shift : {0, 8, 10, 16, 31, 32, 63, 64, 65535})
        EXPECT_EQ(OpenError(Patched(OneStream(), 0x1E, static_cast<std::uint16_t>(Shift))),
                  "File \"a.xls\" is no compound document: its sectors have 2^" + std::to_string(Shift) +
                  " bytes");
    for (const int Shift : {0, 5, 7, 32, 65535})
        EXPECT_EQ(OpenError(Patched(OneStream(), 0x20, static_cast<std::uint16_t>(Shift))),
                  "File \"a.xls\" is no compound document: its small sectors have 2^" +
                  std::to_string(Shift) +
                      " bytes");
}

TEST(KvStorage, ADirectoryTreeWithACycleIsRefused)
{
    TCompoundBuilder Builder;
    const auto File = Builder.Stream(u"Book", "a").Stream(u"Other", "b").Build();
    EXPECT_EQ(OpenError(Patched(File, Builder.OffsetOfEntry(2) + 72, std::uint32_t{2})),
              R"(File "a.xls" is no compound document: directory entry 2 is named twice)");
    EXPECT_EQ(OpenError(Patched(File, Builder.OffsetOfEntry(0) + 76, std::uint32_t{9})),
              R"(File "a.xls" is no compound document: directory entry 9 does not exist)");
}

TEST(KvStorage, AnEntryThatIsNeitherStorageNorStreamIsPassedOver)
{
    TCompoundBuilder Builder;
    const auto File = Builder.Stream(u"Book", "a").Stream(u"Other", "b").Build();
    const auto Changed = Patched(File, Builder.OffsetOfEntry(2) + 66, std::uint8_t{3});
    EXPECT_THAT(Names(TKvStorage(Changed, "a.xls")), ElementsAre("Book"));
}

TEST(KvStorage, WhatAChainLosesIsMissedOnlyByWhoReadsIt)
{
    TCompoundBuilder Builder;
    const auto Good = Builder.Stream(u"Book", Pattern(5000)).Stream(u"Good", Pattern(5000)).Build();
    const auto File = Patched(Good, Builder.OffsetOfLink(Builder.FirstSectorOf(1) + 1), std::uint32_t{0});
    const TKvStorage Storage(File, "a.xls");
    auto Stream = Storage.OpenStream("Book");
    EXPECT_EQ(Stream.Size(), 5000u);
    EXPECT_EQ(Stream.ReadAll(), Pattern(5000).substr(0, 1024));
    char Buffer[1024];
    EXPECT_EQ(Stream.Read(Buffer, 1024), 1024u);
    EXPECT_EQ(ErrorOf([&] { Stream.Read(Buffer, 1); }),
              "Cannot read stream \"Book\" of file \"a.xls\" past byte 1024 of 5000: "
              "its chain of sectors returns to sector 0");
    EXPECT_EQ(Stream.Position(), 1024u);
    EXPECT_EQ(ReadStream(File, "Good"), Pattern(5000));
}

TEST(KvStorage, TellsWhyBytesOfAStreamAreMissing)
{
    TCompoundBuilder Builder;
    const auto Good = Builder.Stream(u"Book", Pattern(5000)).Build();
    const auto Link = Builder.OffsetOfLink(3);      // of ten sectors, 0 to 9
    const auto Size = Builder.OffsetOfEntry(1) + 120;
    const auto First = Builder.OffsetOfEntry(1) + 116;
    const std::string Start = R"(Cannot read stream "Book" of file "a.xls" past byte )";
    EXPECT_EQ(ReadError(Patched(Good, Link, std::uint32_t{3})),
              Start + "2048 of 5000: its chain of sectors returns to sector 3");
    EXPECT_EQ(ReadError(Patched(Good, Link, std::uint32_t{0xFFFFFFFE})),
              Start + "2048 of 5000: its chain of sectors ends");
    EXPECT_EQ(ReadError(Patched(Good, Link, std::uint32_t{0xFFFFFFFF})),
              Start + "2048 of 5000: its chain of sectors breaks off after sector 3");
    EXPECT_EQ(ReadError(Patched(Good, Link, std::uint32_t{100000})),
              Start + "2048 of 5000: its chain of sectors leads to sector 100000, which is not there");
    EXPECT_EQ(ReadError(Patched(Good, Size, std::uint32_t{0xFFFFFFFF})),
              Start + "5120 of 4294967295: its chain of sectors ends");
    EXPECT_EQ(ReadError(Patched(Good, First, std::uint32_t{0xFFFFFFFA})),
              Start + "0 of 5000: its chain of sectors leads to sector 4294967290, which is not there");
}

TEST(KvStorage, AFileCutShortInItsLastSectorGivesTheBytesThatAreLeft)
{
    // The directory and the table come before the stream when that is written anew at the end.
    TCompoundBuilder Builder;
    auto File = Builder.Stream(u"Book", Pattern(5000)).Build();
    const auto Count = static_cast<std::uint32_t>(File.size() / 512 - 1);
    const auto LastPart = Pattern(5000).substr(9 * 512);
    File += LastPart;                               // 392 bytes as a short sector
    File = Patched(File, Builder.OffsetOfLink(8), Count);
    File = Patched(File, Builder.OffsetOfLink(Count), std::uint32_t{0xFFFFFFFE});
    EXPECT_EQ(ReadStream(File, "Book"), Pattern(5000));
    File.resize(File.size() - 100);
    EXPECT_EQ(ReadError(File), "Cannot read stream \"Book\" of file \"a.xls\" past byte 4900 of 5000: "
                               "the file ends in sector " + std::to_string(Count));
}

TEST(KvStorage, ASmallStreamOutsideItsContainerIsCutShort)
{
    TCompoundBuilder Builder;
    const auto Good = Builder.Stream(u"Book", Pattern(1000)).Build(); // two sectors hold 16 small ones
    const auto Cut = Patched(Good, Builder.OffsetOfLink(0), std::uint32_t{0xFFFFFFFE});
    EXPECT_EQ(ReadError(Cut), "Cannot read stream \"Book\" of file \"a.xls\" past byte 512 of 1000: "
                              "its chain of sectors leads to sector 8, which is not there");
    EXPECT_EQ(ReadError(Patched(Good, 0x3C, std::uint32_t{0xFFFFFFFE})),
              "Cannot read stream \"Book\" of file \"a.xls\" past byte 64 of 1000: "
              "its chain of sectors breaks off after sector 0");
}

TEST(KvStorage, TheSizeOfTheContainerThatTheRootStatesDoesNotMatter)
{
    TCompoundBuilder Builder;
    const auto Good = Builder.Stream(u"Book", Pattern(1000)).Build();
    EXPECT_EQ(ReadStream(Patched(Good, Builder.OffsetOfEntry(0) + 120, std::uint64_t{64}), "Book"),
              Pattern(1000));
}

TEST(KvStorage, TheUpperHalfOfASizeCountsOnlyWithLargeSectors)
{
    TCompoundBuilder Small(512);
    TCompoundBuilder Large(4096);
    const auto SmallFile = Small.Stream(u"Book", Pattern(5000)).Build();
    const auto LargeFile = Large.Stream(u"Book", Pattern(5000)).Build();
    EXPECT_EQ(ReadStream(Patched(SmallFile, Small.OffsetOfEntry(1) + 124, std::uint32_t{0x10002}), "Book"),
              Pattern(5000));
    EXPECT_EQ(ReadError(Patched(LargeFile, Large.OffsetOfEntry(1) + 124, std::uint32_t{1})),
              "Cannot read stream \"Book\" of file \"a.xls\" past byte 8192 of 4294972296: "
              "its chain of sectors ends");
}

TEST(KvStorage, ADirectoryWhoseChainIsBrokenGivesItsFirstEntries)
{
    TCompoundBuilder Builder;
    const auto Good = Builder.Stream(u"Book", Pattern(100)).Stream(u"Other", "b").Build();
    const auto DirectorySector = Builder.OffsetOfEntry(0) / 512 - 1;
    for (const auto Link : {static_cast<std::uint32_t>(DirectorySector), 0xFFFFFFFFu, 0x7FFFFFFFu})
        EXPECT_EQ(ReadStream(Patched(Good, Builder.OffsetOfLink(DirectorySector), Link), "Book"),
                  Pattern(100));
}

TEST(KvStorage, AListOfTableSectorsWithoutEndEndsWithTheFile)
{
    TCompoundBuilder Builder;
    const auto Bytes = Pattern(8'000'000);
    auto File = Builder.Stream(u"Book", Bytes).Build();
    std::uint32_t ListSector;
    std::memcpy(&ListSector, File.data() + 0x44, 4);
    const auto Link = Builder.OffsetOfSector(ListSector) + 508;
    EXPECT_EQ(ReadStream(Patched(File, Link, ListSector), "Book"), Bytes); // leads back to itself
    // All numbers of the list name the list itself, whose numbers are then taken for the table.
    for (std::size_t I = 0; I < 128; ++I)
        File = Patched(std::move(File), Builder.OffsetOfSector(ListSector) + 4 * I, ListSector);
    EXPECT_EQ(ReadError(File), "Cannot read stream \"Book\" of file \"a.xls\" past byte 7144448 of 8000000: "
                               "its chain of sectors returns to sector 15750");
}

TEST(KvStorage, ACutFileGivesAnErrorOrItsBytes)
{
    const auto Whole = TCompoundBuilder().Stream(u"Book", Pattern(5000)).Stream(u"Small", Pattern(200))
                                         .Build();
    int Read = 0;
    for (std::size_t Size = 0; Size < Whole.size(); Size += 64) {
        try {
            const TKvStorage Storage(std::string_view(Whole).substr(0, Size), "a.xls");
            EXPECT_TRUE(Pattern(5000).starts_with(Storage.OpenStream("Book").ReadAll()));
            ++Read;
        }
        catch (const EFormatError& Error) {
            EXPECT_THAT(Error.Message, testing::HasSubstr("a.xls"));
        }
    }
    EXPECT_GT(Read, 0);
}

} // namespace kv
