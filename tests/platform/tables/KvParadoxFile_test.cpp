#include "KvParadoxFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "KvAllocationCount.h"
#include "KvBytes.h"
#include "KvException.h"
#include "KvIsoDate.h"
#include "KvParadoxBuilder.h"
#include "KvTempFolder.h"

namespace kv {

namespace {

using testing::ElementsAre;

/// A table in a folder of its own, with its long values if it has some.
class TTableFile
{
public:
    explicit TTableFile(std::string_view Table, std::string_view Blobs = {})
        : Name(Folder.Write("a.db", Table))
    {
        if (!Blobs.empty())
            Folder.Write("a.mb", Blobs);
    }
    explicit TTableFile(const TParadoxBuilder& Table, std::string_view Blobs = {})
        : TTableFile(Table.Build(), Blobs) {}

    const TTempFolder Folder;
    const std::string Name;
};

/// The first field of all records as text, "-" for null, and the message that ended the reading.
std::vector<std::string> ReadFirstField(const TTableFile& File)
{
    TKvParadoxFile Table(File.Name);
    std::vector<std::string> Found;
    try {
        for (Table.First(); !Table.Eof(); Table.Next()) {
            const auto Value = Table.Value(0);
            Found.push_back(Value.IsNull() ? "-" : Value.ToText());
        }
    }
    catch (const EFormatError& Error) {
        Found.push_back(Error.Message);
    }
    return Found;
}

/// The value of the only field of the only record.
TVariant SingleValue(const TTableFile& File)
{
    TKvParadoxFile Table(File.Name);
    Table.First();
    const auto Loan = Table.Value(0);
    return TVariant(Loan);                          // a copy owns its text
}

std::string ErrorOfSingleValue(const TTableFile& File)
{
    try {
        SingleValue(File);
    }
    catch (const EFormatError& Error) {
        return Error.Message;
    }
    return "";
}

TParadoxBuilder LongValue(char Kind, const std::string& Stored, unsigned Length = 15)
{
    return TParadoxBuilder().Field("NOTE", Kind, Length).Record({Stored});
}

std::string Patched(std::string File, std::size_t Offset, std::string_view Bytes)
{
    return File.replace(Offset, Bytes.size(), Bytes);
}

} // namespace

TEST(KvParadoxFile, FieldsHaveTheKindsOfTheTable)
{
    const TTableFile File(TParadoxBuilder()
                              .Field("A", 'A', 20).Field("D", 'D').Field("S", 'S').Field("I", 'I')
                              .Field("$", '$')
                              .Field("N", 'N').Field("L", 'L').Field("M", 'M', 30).Field("B", 'B', 30)
                              .Field("F", 'F', 30).Field("O", 'O', 30).Field("G", 'G', 30).Field("T", 'T')
                              .Field("@", '@').Field("+", '+').Field("#", '#', 4).Field("Y", 'Y', 5));
    const TKvParadoxFile Table(File.Name);
    std::string Names;
    std::vector<TFieldType> Types;
    std::vector<int> Sizes;
    for (const auto& Def : Table.FieldDefs()) {
        Names += Def.Name;
        Types.push_back(Def.DataType);
        Sizes.push_back(Def.Size);
    }
    EXPECT_EQ(Names, "ADSI$NLMBFOGT@+#Y");
    EXPECT_THAT(Types,
                ElementsAre(ftString, ftDate, ftSmallint, ftInteger, ftCurrency, ftFloat, ftBoolean, ftMemo,
                            ftBlob, ftFmtMemo, ftOle, ftGraphic, ftTime, ftDateTime, ftAutoInc, ftBCD,
                            ftBytes));
    EXPECT_THAT(Sizes, ElementsAre(20, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 5));
}

TEST(KvParadoxFile, ANameThatOccursAgainGetsANumber)
{
    const TTableFile File(TParadoxBuilder().Field("ID", 'I').Field("id", 'I'));
    const TKvParadoxFile Table(File.Name);
    EXPECT_EQ(Table.FieldDefs()[0].Name, "ID");
    EXPECT_EQ(Table.FieldDefs()[1].Name, "id_1");
}

TEST(KvParadoxFile, ATableWithoutRecordsIsAtItsEnd)
{
    const TTableFile File(TParadoxBuilder().Field("ID", 'I'));
    TKvParadoxFile Table(File.Name);
    EXPECT_EQ(Table.RecordCount(), 0u);
    Table.First();
    EXPECT_TRUE(Table.Eof());
    Table.Next();
    EXPECT_TRUE(Table.Eof());
    EXPECT_TRUE(Table.Value(0).IsNull());
}

TEST(KvParadoxFile, RecordsComeInTheOrderOfTheChain)
{
    for (const unsigned Version : {3, 5, 12}) {
        TParadoxBuilder Builder(Version);
        Builder.Field("ID", 'I').RecordsPerBlock(2).Keyed().Reversed();
        for (int I = 1; I <= 5; ++I)
            Builder.Record({ParadoxLong(I)});
        const TTableFile File(Builder);
        EXPECT_THAT(ReadFirstField(File), ElementsAre("1", "2", "3", "4", "5")) << Version;
        EXPECT_EQ(TKvParadoxFile(File.Name).RecordCount(), 5u);
    }
}

TEST(KvParadoxFile, ReadsAgainFromItsFirstRecord)
{
    const TTableFile File(TParadoxBuilder().Field("ID", 'I').Record({ParadoxLong(1)})
                                           .Record({ParadoxLong(2)}));
    TKvParadoxFile Table(File.Name);
    for (int Pass = 0; Pass < 2; ++Pass) {
        Table.First();
        EXPECT_EQ(Table.Value(0), TVariant(1));
        Table.Next();
        EXPECT_EQ(Table.Value(0), TVariant(2));
        Table.Next();
        EXPECT_TRUE(Table.Eof());
    }
}

TEST(KvParadoxFile, ValuesOfARecordAreTyped)
{
    const TTableFile File(TParadoxBuilder().Field("NAME", 'A', 20).Field("BORN", 'D').Field("NET", '#', 2)
                              .Field("PAID", 'L').Field("RATE", 'N')
                              .Record({"Ada", ParadoxLong(664989), ParadoxBcd("-12.50", 2), "\x81",
                                       ParadoxNumber(0.1)})
                              .Record({}));
    TKvParadoxFile Table(File.Name);
    Table.First();
    EXPECT_EQ(Table.Value(0), TVariant("Ada"));
    EXPECT_EQ(DateToIso(Table.Value(1).DateTime()), "1821-09-05");
    EXPECT_EQ(Table.Value(2).Currency(), TCurrency{-125000});
    EXPECT_EQ(Table.Value(3), TVariant(true));
    EXPECT_EQ(Table.Value(4).Double(), 0.1);
    Table.Next();
    for (std::size_t I = 0; I < 5; ++I)
        EXPECT_TRUE(Table.Value(I).IsNull()) << I;
}

TEST(KvParadoxFile, AnInvalidValueIsAnErrorOfItsRecordAndField)
{
    const TTableFile File(TParadoxBuilder().Field("ID", 'I').Field("PAID", 'L').RecordsPerBlock(2)
                              .Record({ParadoxLong(1), "\x81"}).Record({ParadoxLong(2), "\x81"})
                              .Record({ParadoxLong(3), "\x07"}));
    TKvParadoxFile Table(File.Name);
    Table.First();
    Table.Next();
    Table.Next();
    EXPECT_EQ(Table.Value(0), TVariant(3));
    try {
        Table.Value(1);
        ADD_FAILURE() << "no error";
    }
    catch (const EFormatError& Error) {
        EXPECT_EQ(Error.Message,
                  "File \"" + File.Name + "\", record 3, field 'PAID': byte 0x07 is no logical value");
    }
    Table.Next();
    EXPECT_TRUE(Table.Eof());
}

TEST(KvParadoxFile, TextsAndNamesAreOfTheCodePageOfTheTable)
{
    TParadoxBuilder Builder;
    Builder.Field("STRA\xE1" "E", 'A', 20).Field("NOTE", 'M', 20).CodePage(850);
    Builder.Record({"Z\x81rich", ParadoxBlobField("K\x94ln      ", 0, 4)});
    const TTableFile File(Builder);
    TKvParadoxFile Table(File.Name);
    Table.First();
    EXPECT_EQ(Table.FieldDefs()[0].Name, "STRAßE");
    EXPECT_EQ(Table.Value(0), TVariant("Zürich"));
    EXPECT_EQ(Table.Value(1), TVariant("Köln"));
}

TEST(KvParadoxFile, ATextThatIsNoneOfItsCodePageIsAnErrorOfItsRecord)
{
    const TTableFile File(TParadoxBuilder().Field("CITY", 'A', 20).CodePage(932).Record({"\x93"}));
    EXPECT_EQ(ErrorOfSingleValue(File), "File \"" + File.Name +
                                            "\", record 1, field 'CITY': "
                                            "Text is not valid in code page '932'");
}

TEST(KvParadoxFile, ANameThatIsNoneOfItsCodePageIsAnErrorOfTheTable)
{
    const TTableFile File(TParadoxBuilder().Field("ID", 'I').Field("\x93", 'A', 20).CodePage(932));
    try {
        TKvParadoxFile Table(File.Name);
        ADD_FAILURE() << "no error";
    }
    catch (const EFormatError& Error) {
        EXPECT_EQ(Error.Message,
                  "File \"" + File.Name + "\", name of field 2: Text is not valid in code page '932'");
    }
}

TEST(KvParadoxFile, ATableThatNamesNoCodePageGivesItsTextsAsTheyAre)
{
    for (const unsigned Version : {3, 12})
        EXPECT_EQ(
            SingleValue(TTableFile(TParadoxBuilder(Version).Field("CITY", 'A', 20).Record({"Z\xFCrich"}))),
            TVariant("Z\xFCrich"));
}

TEST(KvParadoxFile, TextOfACodePageThatNobodyKnowsIsAnErrorOfItsRecord)
{
    const auto Table = TParadoxBuilder().Field("CITY", 'A', 20).CodePage(999);
    EXPECT_EQ(SingleValue(TTableFile(TParadoxBuilder(Table).Record({"Zurich"}))), TVariant("Zurich"));
    const TTableFile File(TParadoxBuilder(Table).Record({"Z\xFCrich"}));
    EXPECT_EQ(ErrorOfSingleValue(File),
              "File \"" + File.Name + "\", record 1, field 'CITY': Unknown code page '999'");
}

TEST(KvParadoxFile, TextsStayAsTheyAreWhenAskedFor)
{
    const TTableFile File(TParadoxBuilder().Field("CITY", 'A', 20).CodePage(850).Record({"Z\x81rich"}));
    TKvParadoxFile Table(File.Name, false);
    Table.First();
    EXPECT_EQ(Table.Value(0), TVariant("Z\x81rich"));
}

TEST(KvParadoxFile, BinaryValuesAreNotConverted)
{
    for (const char Kind : {'B', 'O', 'G'})
        EXPECT_EQ(SingleValue(TTableFile(LongValue(Kind, ParadoxBlobField("\x81\x94\x81\x94\x81", 0, 5))
                                             .CodePage(850))),
                  TVariant("\x81\x94\x81\x94\x81"))
            << Kind;
}

TEST(KvParadoxFile, AShortMemoStandsInItsRecord)
{
    EXPECT_EQ(SingleValue(TTableFile(LongValue('M', ParadoxBlobField("short", 0, 5)))), TVariant("short"));
    EXPECT_EQ(SingleValue(TTableFile(LongValue('M', ParadoxBlobField("short", 0, 2)))), TVariant("sh"));
    EXPECT_TRUE(SingleValue(TTableFile(LongValue('M', ParadoxBlobField("short", 0, 0)))).IsNull());
}

TEST(KvParadoxFile, ALongMemoStandsInTheFileOfBlobs)
{
    TParadoxBlobBuilder Blobs;
    const std::string Small(100, 's'), Large(9000, 'l');
    const auto SmallPlace = Blobs.AddSmall(Small), LargePlace = Blobs.Add(Large);
    for (const char Kind : {'M', 'B', 'O', 'G'}) {
        const TTableFile First(LongValue(Kind, ParadoxBlobField("sssss", SmallPlace, 100)), Blobs.Build());
        EXPECT_EQ(SingleValue(First), TVariant(Small));
        const TTableFile Second(LongValue(Kind, ParadoxBlobField("lllll", LargePlace, 9000)), Blobs.Build());
        EXPECT_EQ(SingleValue(Second), TVariant(Large));
    }
}

TEST(KvParadoxFile, TheFileOfBlobsMayBeNamedInAnyCase)
{
    TParadoxBlobBuilder Blobs;
    const auto Place = Blobs.AddSmall("beyond the leader");
    const TTableFile File(LongValue('M', ParadoxBlobField("beyon", Place, 17)));
    File.Folder.Write("A.Mb", Blobs.Build());
    EXPECT_EQ(SingleValue(File), TVariant("beyond the leader"));
}

TEST(KvParadoxFile, AFormattedMemoComesAsItsText)
{
    const auto Text = std::string("K\x94ln\0", 5);
    const std::string Memo = TBytes().U16(1).U16(0).U32(5).Text(Text);
    EXPECT_EQ(
        SingleValue(TTableFile(LongValue('F', ParadoxBlobField(Memo, 0, Memo.size()), 23).CodePage(437))),
        TVariant("Köln"));
    const TTableFile Damaged(LongValue('F', ParadoxBlobField("plain", 0, 5)));
    EXPECT_EQ(ErrorOfSingleValue(Damaged),
              "File \"" + Damaged.Name + "\", record 1, field 'NOTE': it is no formatted memo");
}

TEST(KvParadoxFile, AMissingFileOfBlobsIsAnErrorOfTheRecordsThatNeedIt)
{
    const TTableFile File(TParadoxBuilder().Field("NOTE", 'M', 15)
                              .Record({ParadoxBlobField("short", 0, 5)})
                              .Record({ParadoxBlobField("beyon", 0x103F, 17)})
                              .Record({ParadoxBlobField("again", 0, 5)})
                              .Record({ParadoxBlobField("beyon", 0x103F, 17)}));
    TKvParadoxFile Table(File.Name);
    const auto Message = [&](int Record) {
        return "File \"" + File.Name + "\", record " + std::to_string(Record) +
               ", field 'NOTE': Cannot open file \"" +
               (File.Folder / "a.mb") + "\": No such file or directory";
    };
    std::vector<std::string> Found;
    for (Table.First(); !Table.Eof(); Table.Next()) {
        try {
            Found.push_back(Table.Value(0).ToText());
        }
        catch (const EFormatError& Error) {
            Found.push_back(Error.Message);
        }
    }
    EXPECT_THAT(Found, ElementsAre("short", Message(2), "again", Message(4)));
}

TEST(KvParadoxFile, ABlobThatIsNotWhereItsRecordTellsIsAnError)
{
    const TTableFile File(LongValue('M', ParadoxBlobField("beyon", 0x103F, 17)),
                          TParadoxBlobBuilder().Build());
    EXPECT_EQ(ErrorOfSingleValue(File),
              "File \"" + File.Name +
              "\", record 1, field 'NOTE': the file of blobs ends before offset 4096");
}

TEST(KvParadoxFile, ADamagedTableGivesTheRecordsBeforeTheDamage)
{
    TParadoxBuilder Builder;
    Builder.Field("ID", 'I').RecordsPerBlock(2);
    for (int I = 1; I <= 5; ++I)
        Builder.Record({ParadoxLong(I)});
    const auto Good = Builder.Build();
    const TTableFile Loop(Patched(Good, TParadoxBuilder::OffsetOfBlock(2), TBytes().U16(1)));
    EXPECT_THAT(ReadFirstField(Loop),
                ElementsAre("1", "2", "3", "4",
                            "File \"" + Loop.Name +
                                "\" is damaged after record 4: its chain of blocks returns to block 1"));
    const TTableFile Cut(Good.substr(0, TParadoxBuilder::OffsetOfBlock(3)));
    EXPECT_THAT(ReadFirstField(Cut),
                ElementsAre("1", "2", "3", "4",
                            "File \"" + Cut.Name + "\" is damaged after record 4: block 3 is not there"));
}

TEST(KvParadoxFile, ADamagedTableIsAtItsEndAfterTheError)
{
    const TTableFile File(
        Patched(TParadoxBuilder().Field("ID", 'I').Record({ParadoxLong(1)}).Build(), 6, TBytes().U32(2)));
    TKvParadoxFile Table(File.Name);
    Table.First();
    EXPECT_THROW(Table.Next(), EFormatError);
    EXPECT_TRUE(Table.Eof());
    EXPECT_NO_THROW(Table.Next());
}

TEST(KvParadoxFile, ReadingShortValuesAllocatesNothing)
{
    TParadoxBuilder Builder;
    Builder.Field("NAME", 'A', 60).Field("CITY", 'A', 20).Field("BORN", 'D').Field("RATE", 'N')
           .Field("PAID", 'L');
    Builder.Field("QTY", 'S').Field("SEEN", '@').CodePage(850).RecordsPerBlock(10);
    for (int I = 0; I < 100; ++I)
        Builder.Record({std::string(60, 'x'), "Z\x81rich", ParadoxLong(664989), ParadoxNumber(0.1), "\x81",
                        ParadoxShort(I), ParadoxNumber(63716202001000.0)});
    const TTableFile File(Builder);
    TKvParadoxFile Table(File.Name);
    Table.First();
    Table.Value(1);                                 // fills the buffer of texts once
    const auto Before = AllocationCount();
    std::size_t Values = 0;
    for (; !Table.Eof(); Table.Next())
        for (std::size_t I = 0; I < 7; ++I)
            Values += Table.Value(I).HasValue() ? 1 : 0;
    EXPECT_EQ(AllocationCount(), Before);
    EXPECT_EQ(Values, 700u);
}

TEST(KvParadoxFile, AFileThatIsNotThereIsNamed)
{
    const TTempFolder Folder;
    EXPECT_THROW(TKvParadoxFile(Folder / "none.db"), EFileError);
}

TEST(KvParadoxFile, AFileThatBecomesShorterGivesTheRecordsBeforeItsEnd)
{
    TParadoxBuilder Builder;
    Builder.Field("L", 'I').RecordsPerBlock(1);
    for (int I = 1; I <= 100; ++I)
        Builder.Record({ParadoxLong(I)});
    const TTableFile File(Builder);
    TKvParadoxFile Table(File.Name);
    std::filesystem::resize_file(File.Name, TParadoxBuilder::OffsetOfBlock(80));
    int Records = 0;
    try {
        for (Table.First(); !Table.Eof(); Table.Next())
            EXPECT_EQ(Table.Value(0), TVariant(++Records));
        ADD_FAILURE() << "no error";
    }
    catch (const EFormatError& Error) {
        EXPECT_EQ(Error.Message,
                  "File \"" + File.Name + "\" is damaged after record 79: it has become shorter");
    }
    EXPECT_EQ(Records, 79);
}

} // namespace kv
