#include "KvCompanionFile.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "KvException.h"
#include "KvTempFolder.h"

namespace kv {

TEST(KvCompanionFile, HasTheNameOfTheTableInTheCaseOfItsExtension)
{
    const TTempFolder Folder;
    EXPECT_EQ(CompanionFileName(Folder / "Orders.db", ".MB"), Folder / "Orders.mb");
    EXPECT_EQ(CompanionFileName(Folder / "Orders.DB", ".mb"), Folder / "Orders.MB");
}

TEST(KvCompanionFile, OneInTheCaseOfTheTableIsPreferred)
{
    const TTempFolder Folder;
    Folder.Write("orders.MB", "");
    const auto Lower = Folder.Write("orders.mb", "");
    EXPECT_EQ(CompanionFileName(Folder / "orders.db", ".MB"), Lower);
}

TEST(KvCompanionFile, OneInAnotherCaseIsFound)
{
    const TTempFolder Folder;
    const auto Upper = Folder.Write("ORDERS.MB", "");
    Folder.Write("orders.mbx", "");
    EXPECT_EQ(CompanionFileName(Folder / "orders.db", ".MB"), Upper);
}

TEST(KvCompanionFile, OfSeveralInOtherCasesTheFirstByNameIsTaken)
{
    const TTempFolder Folder;
    Folder.Write("ordersMB", "");
    Folder.Write("Orders.Mb", "");
    const auto First = Folder.Write("ORDERS.mB", "");
    EXPECT_EQ(CompanionFileName(Folder / "orders.db", ".MB"), First);
}

TEST(KvCompanionFile, OneThatIsNotThereKeepsItsExpectedName)
{
    EXPECT_EQ(CompanionFileName("no such folder/orders.db", ".MB"), "no such folder/orders.mb");
    EXPECT_EQ(CompanionFileName("no-such-table", ".MB"), "no-such-table.MB");
}

TEST(KvCompanionFile, ATableWithoutAFolderIsLookedForInTheCurrentOne)
{
    const TTempFolder Folder;
    Folder.Write("ORDERS.MB", "");
    const auto Before = std::filesystem::current_path();
    std::filesystem::current_path(Folder.Path);
    const auto Name = CompanionFileName("orders.db", ".MB");
    std::filesystem::current_path(Before);
    EXPECT_EQ(Name, "ORDERS.MB");
}

TEST(KvCompanionFile, IsOpenedWhenItIsFirstAskedFor)
{
    const TTempFolder Folder;
    TKvCompanionFile Companion(Folder / "orders.db", ".MB");
    Folder.Write("ORDERS.MB", "blobs");
    EXPECT_EQ(Companion.File().At(0, 9), "blobs");
    EXPECT_EQ(&Companion.File(), &Companion.File());
}

TEST(KvCompanionFile, BytesAreCopiedPieceByPiece)
{
    const TTempFolder Folder;
    std::string Long;
    for (int I = 0; I < 20000; ++I)
        Long += std::to_string(I) + ' ';            // longer than the window
    Folder.Write("orders.mb", Long);
    TKvCompanionFile Companion(Folder / "orders.db", ".MB");
    std::string Buffer = "what was there before";
    EXPECT_EQ(CopyBytes(Companion.File(), 3, 100000, Buffer), Long.substr(3, 100000));
    EXPECT_EQ(CopyBytes(Companion.File(), Long.size(), 0, Buffer), "");
    EXPECT_EQ(CopyBytes(Companion.File(), Long.size() - 5, 5, Buffer), Long.substr(Long.size() - 5));
}

TEST(KvCompanionFile, MoreBytesThanThereAreIsAnErrorBeforeMemoryIsAskedFor)
{
    const TTempFolder Folder;
    Folder.Write("orders.mb", "blobs");
    TKvCompanionFile Companion(Folder / "orders.db", ".MB");
    std::string Buffer;
    for (const std::uint64_t Offset : {std::uint64_t{0}, std::uint64_t{6}, ~std::uint64_t{0}}) {
        try {
            CopyBytes(Companion.File(), Offset, std::size_t{1} << 60, Buffer);
            ADD_FAILURE() << "no error";
        }
        catch (const EFormatError& Error) {
            EXPECT_EQ(Error.Message, "Unexpected end of data at offset 5");
        }
    }
}

TEST(KvCompanionFile, OneThatIsNotThereIsTheSameErrorEveryTime)
{
    const TTempFolder Folder;
    TKvCompanionFile Companion(Folder / "orders.db", ".MB");
    for (int Try = 0; Try < 2; ++Try) {
        try {
            Companion.File();
            ADD_FAILURE() << "no error";
        }
        catch (const EFileError& Error) {
            EXPECT_EQ(Error.Message,
                      "Cannot open file \"" + (Folder / "orders.mb") + "\": No such file or directory");
        }
        Folder.Write("orders.mb", "too late");
    }
}

} // namespace kv
