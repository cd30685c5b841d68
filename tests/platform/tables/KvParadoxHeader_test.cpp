#include "KvParadoxHeader.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "KvException.h"
#include "KvParadoxBuilder.h"

namespace kv {

namespace {

TParadoxBuilder Table(unsigned Version = 12)
{
    return TParadoxBuilder(Version).Field("ID", '+').Field("NAME", 'A', 20).Field("NET", '#', 2)
                                   .Field("NOTE", 'M', 30);
}

std::string Patched(std::string File, std::size_t Offset, std::string_view Bytes)
{
    return File.replace(Offset, Bytes.size(), Bytes);
}

std::string ErrorOf(std::string_view File)
{
    try {
        ReadParadoxHeader(File, "a.db");
    }
    catch (const EFormatError& Error) {
        return Error.Message;
    }
    return "";
}

struct TRefused
{
    const char* Name;
    std::string File;
    std::string Message;
};

std::string NameOfRow(const testing::TestParamInfo<TRefused>& Row) { return Row.param.Name; }

} // namespace

TEST(KvParadoxHeader, FieldsOfEveryVersionFillTheRecord)
{
    for (const unsigned Version : {3, 4, 5, 9, 10, 11, 12}) {
        SCOPED_TRACE(Version);
        const auto Header = ReadParadoxHeader(Table(Version).Build(), "a.db");
        ASSERT_EQ(Header.Fields.size(), 4u);
        EXPECT_EQ(Header.RecordSize, 4u + 20 + 17 + 30);
        const auto& Decimal = Header.Fields[2];
        EXPECT_EQ(Decimal.Name, "NET");
        EXPECT_EQ(Decimal.Type, ptBcd);
        EXPECT_EQ(Decimal.Offset, 24u);
        EXPECT_EQ(Decimal.Size, 17u);               // whatever its decimals
        EXPECT_EQ(Header.Fields[3].Name, "NOTE");
        EXPECT_EQ(Header.Fields[3].Offset, 41u);
        EXPECT_EQ(Header.Fields[3].Size, 30u);
    }
}

TEST(KvParadoxHeader, TellsOfTheBlocks)
{
    const auto Header = ReadParadoxHeader(Table().Record({}).Record({}).RecordsPerBlock(1).Reversed().Build(),
                                          "a.db");
    EXPECT_EQ(Header.HeaderSize, 2048u);
    EXPECT_EQ(Header.BlockSize, 2048u);
    EXPECT_EQ(Header.RecordCount, 2u);
    EXPECT_EQ(Header.FirstBlock, 2u);
}

TEST(KvParadoxHeader, VersionsFrom5OnNameACodePage)
{
    EXPECT_EQ(ReadParadoxHeader(Table(5).CodePage(850).Build(), "a.db").CodePage, "850");
    EXPECT_EQ(ReadParadoxHeader(Patched(Table(4).Build(), 0x6A, "\x01"), "a.db").CodePage, "");
}

TEST(KvParadoxHeader, KeyedAndHeapTablesAreTables)
{
    EXPECT_EQ(ErrorOf(Table().Keyed().Build()), "");
    EXPECT_EQ(ErrorOf(Table().Build()), "");
}

TEST(KvParadoxHeader, EveryIndexIsRefusedByName)
{
    for (const char Kind : {'\1', '\3', '\4', '\5', '\6', '\7', '\10'})
        EXPECT_EQ(ErrorOf(Patched(Table().Build(), 4, {&Kind, 1})),
                  "File \"a.db\" is an index of a Paradox table, not the table itself")
            << int{Kind};
}

TEST(KvParadoxHeader, AnEncryptedTableIsRefusedByName)
{
    for (const unsigned Version : {3, 4, 5, 12})
        EXPECT_EQ(ErrorOf(Table(Version).Encrypted(0x0A25E09A).Build()), "File \"a.db\" is encrypted")
            << Version;
    EXPECT_EQ(ErrorOf(Patched(Table(12).Build(), 0x25, "\x01\x02\x03\x04")), "File \"a.db\" is encrypted");
}

TEST(KvParadoxHeader, IsRecognisedByItsBytes)
{
    EXPECT_TRUE(IsParadox(Table(3).Build()));
    EXPECT_TRUE(IsParadox(Table(12).Build()));
    EXPECT_TRUE(IsParadox(Patched(Table().Build(), 4, "\x01"))); // an index, which has a message of its own
    EXPECT_FALSE(IsParadox(""));
    EXPECT_FALSE(IsParadox(Table().Build().substr(0, 0x77)));
    EXPECT_FALSE(IsParadox(std::string(4096, '\0')));
    EXPECT_FALSE(IsParadox(Patched(Table().Build(), 0x39, "\x02")));
    EXPECT_FALSE(IsParadox(Patched(Table().Build(), 5, "\x21")));
}

class KvParadoxHeaderRefuses : public testing::TestWithParam<TRefused>
{
};

TEST_P(KvParadoxHeaderRefuses, AFileThat)
{
    EXPECT_EQ(ErrorOf(GetParam().File), "File \"a.db\" is no Paradox table: " + GetParam().Message);
}

const std::string Good = Table().Build();
constexpr std::size_t FirstField = 0x78;
constexpr std::size_t FirstName = 0x78 + 4 * 2 + 5 * 4 + 261;

INSTANTIATE_TEST_SUITE_P(, KvParadoxHeaderRefuses, testing::Values(
    TRefused{"IsEmpty", "", "Unexpected end of data at offset 0"},
    TRefused{"EndsWithinItsFirstBytes", Good.substr(0, 0x20), "Unexpected end of data at offset 32"},
    TRefused{"EndsWithinItsHeader", Good.substr(0, 2047), "it ends within its header"},
    TRefused{"IsOfAnUnknownKind", Patched(Good, 4, "\x09"), "kind 9 of version 12 is unknown"},
    TRefused{"IsOfAnUnknownVersion", Patched(Good, 0x39, "\x02"), "kind 2 of version 2 is unknown"},
    TRefused{"HasNoBlockSize", Patched(Good, 5, {"\0", 1}), "its blocks cannot have 0 KB"},
    TRefused{"HasHugeBlocks", Patched(Good, 5, "\x21"), "its blocks cannot have 33 KB"},
    TRefused{"HasRecordsLargerThanBlocks", Patched(Good, 0, "\xFB\x07"),
             "a record of 2043 bytes does not fit into a block of 2048"},
    TRefused{"HasNoFields", Patched(Good, 0x21, {"\0\0", 2}), "it cannot have 0 fields"},
    TRefused{"HasTooManyFields", Patched(Good, 0x21, {"\0\1", 2}), "it cannot have 256 fields"},
    TRefused{"HasAnUnknownType", Patched(Good, FirstField, "\x07"), "field 1 has the unknown type 7"},
    TRefused{"HasAnIntegerOfThreeBytes", Patched(Good, FirstField + 1, "\x03"),
             "field 1 cannot have a length of 3"},
    TRefused{"HasATextWithoutLength", Patched(Good, FirstField + 3, {"\0", 1}),
             "field 2 cannot have a length of 0"},
    TRefused{"HasAMemoShorterThanItsReference", Patched(Good, FirstField + 7, "\x09"),
             "field 4 cannot have a length of 9"},
    TRefused{"HasRecordsThatAreNotItsFields", Patched(Good, 0, "\x48"),
             "its records have 72 bytes, their fields 71"},
    TRefused{"HasAFieldWithoutName", Patched(Good, FirstName, {"\0", 1}),
             "there is no field name at offset 409"},
    TRefused{"HasANameWithoutEnd", Patched(Good, FirstName, std::string(300, 'x')),
             "there is no field name at offset 409"},
    TRefused{"HasAHeaderThatEndsWithinItsNames", Patched(Good, 2, {"\xA0\1", 2}),
             "there is no field name at offset 412"},
    TRefused{"HasAHeaderThatEndsWithinItsFields", Patched(Good, 2, {"\x7A\0", 2}),
             "Unexpected end of data at offset 122"}),
    NameOfRow);

} // namespace kv
