#include "KvDbaseFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "KvCodePage.h"
#include "KvDbaseBuilder.h"
#include "KvException.h"
#include "KvIsoDate.h"
#include "KvParadoxBuilder.h"
#include "KvTempFolder.h"

namespace kv {

namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::StartsWith;

/// A table in a folder of its own, with memos if it has some.
class TTableFile
{
public:
    explicit TTableFile(const TDbaseBuilder& Table, std::string_view MemoName = {},
                        std::string_view Memos = {})
        : TTableFile(Table.Build())
    {
        if (!MemoName.empty())
            Folder.Write(MemoName, Memos);
    }
    explicit TTableFile(std::string_view Bytes) : Name(Folder.Write("a.dbf", Bytes)) {}

    const TTempFolder Folder;
    const std::string Name;
};

std::string Shown(const TVariant& Value)
{
    if (Value.IsNull())
        return "-";
    return Value.Kind() == vkDateTime ? DateTimeToIso(Value.DateTime()) : Value.ToText();
}

/// All records, their values separated by "|", and the message that ended the reading. In messages "%" stands
/// for the folder of the file.
std::vector<std::string> ReadAll(const TTableFile& File, bool Transliterate = true)
{
    std::vector<std::string> Records;
    const auto Tell = [&](std::string Message) {
        const auto Folder = File.Folder / "";
        for (auto At = Message.find(Folder); At != Message.npos; At = Message.find(Folder))
            Message.replace(At, Folder.size(), "%");
        return Message;
    };
    try {
        TKvDbaseFile Table(File.Name, Transliterate);
        for (Table.First(); !Table.Eof(); Table.Next()) {
            std::string Record;
            for (std::size_t I = 0; I < Table.FieldDefs().size(); ++I) {
                Record += I > 0 ? "|" : "";
                try {
                    Record += Shown(Table.Value(I));
                }
                catch (const EFormatError& Error) {
                    Record += Tell(Error.Message);
                }
            }
            Records.push_back(Record);
        }
    }
    catch (const Exception& Error) {
        Records.push_back(Tell(Error.Message));
    }
    return Records;
}

/// Of the values of the first record.
std::vector<TVariantKind> KindsOf(const TTableFile& File)
{
    TKvDbaseFile Table(File.Name);
    Table.First();
    std::vector<TVariantKind> Kinds;
    for (std::size_t I = 0; I < Table.FieldDefs().size(); ++I)
        Kinds.push_back(Table.Value(I).Kind());
    return Kinds;
}

std::string Shown(const TKvTableRemark& Remark)
{
    const auto Count = std::to_string(Remark.Count), First = std::to_string(Remark.First),
               Limit = std::to_string(Remark.Limit);
    switch (Remark.Kind) {
    case trNoCodePage:     return "no code page from record " + First;
    case trFieldLeftOut:   return Remark.Name + " left out: " + Remark.Reason;
    case trBytesLeftOut:   return Count + " bytes left out";
    case trRecordsBeyond:  return Count + " records beyond " + Limit;
    case trRecordsMissing: return Count + " of " + Limit + " records: " + Remark.Reason;
    case trNumbersLost:    return "numbers lost in " + Count + " from record " + First;
    }
    return "";
}

/// After all records were read, as far as they can be, with every value twice.
std::vector<std::string> RemarksOf(const TTableFile& File, bool Transliterate = true)
{
    TKvDbaseFile Table(File.Name, Transliterate);
    try {
        for (Table.First(); !Table.Eof(); Table.Next())
            for (std::size_t I = 0; I < 2 * Table.FieldDefs().size(); ++I)
                Table.Value(I / 2);
    }
    catch (const EFormatError&) {                   // what ends the reading
    }
    std::vector<std::string> Remarks;
    for (const auto& Remark : Table.Remarks())
        Remarks.push_back(Shown(Remark));
    return Remarks;
}

TDbaseBuilder Numbers(unsigned Count)
{
    TDbaseBuilder Table;
    Table.Field("NO", 'N', 5);
    for (unsigned I = 1; I <= Count; ++I)
        Table.Record({std::to_string(I)});
    return Table;
}

/// Restores the code page of the process.
class TAnsiPage
{
public:
    explicit TAnsiPage(std::string_view Name) { SetAnsiCodePage(Name); }
    TAnsiPage(const TAnsiPage&) = delete;
    TAnsiPage& operator=(const TAnsiPage&) = delete;
    ~TAnsiPage() { SetAnsiCodePage(Saved); }

private:
    const std::string Saved = AnsiCodePage();
};

} // namespace

// --- Records -----------------------------------------------------------------------------------------

TEST(KvDbaseFile, ReadsRecordsOfEveryVersion)
{
    for (const unsigned Version : {0x02u, 0x03u, 0x04u, 0x05u, 0x30u, 0x31u, 0x83u, 0x8Bu, 0x8Cu, 0xF5u}) {
        const TTableFile File(TDbaseBuilder(Version).Field("NAME", 'C', 5).Field("QTY", 'N', 4)
                                  .Record({"Ada", "   3"}).Record({"Bob", "    "}));
        EXPECT_THAT(ReadAll(File), ElementsAre("Ada|3", "Bob|-")) << Version;
    }
}

TEST(KvDbaseFile, AnEmptyTableHasNoRecord)
{
    const TTableFile File(Numbers(0));
    TKvDbaseFile Table(File.Name);
    Table.First();
    EXPECT_TRUE(Table.Eof());
    EXPECT_TRUE(Table.Value(0).IsNull());
    Table.Next();
    EXPECT_TRUE(Table.Eof());
    EXPECT_EQ(Table.RecordCount(), 0u);
}

TEST(KvDbaseFile, DeletedRecordsAreLeftOut)
{
    const TTableFile File(TDbaseBuilder().Field("A", 'C', 1).Deleted({"1"}).Record({"2"}).Deleted({"3"})
                              .Deleted({"4"}).Record({"5"}).Deleted({"6"}));
    EXPECT_THAT(ReadAll(File), ElementsAre("2", "5"));
    EXPECT_EQ(TKvDbaseFile(File.Name).RecordCount(), 2u);
}

TEST(KvDbaseFile, ATableOfDeletedRecordsIsEmpty)
{
    const TTableFile File(TDbaseBuilder().Field("A", 'C', 1).Deleted({"1"}).Deleted({"2"}));
    EXPECT_THAT(ReadAll(File), ElementsAre());
    EXPECT_EQ(TKvDbaseFile(File.Name).RecordCount(), 0u);
}

TEST(KvDbaseFile, FirstBeginsAnew)
{
    const TTableFile File(Numbers(3));
    TKvDbaseFile Table(File.Name);
    Table.First();
    Table.Next();
    Table.Next();
    EXPECT_EQ(Shown(Table.Value(0)), "3");
    Table.First();
    EXPECT_EQ(Shown(Table.Value(0)), "1");
}

TEST(KvDbaseFile, TheMarkBehindTheLastRecordMayBeMissing)
{
    const auto Bytes = Numbers(2).Build();
    EXPECT_THAT(ReadAll(TTableFile(std::string_view(Bytes).substr(0, Bytes.size() - 1))),
                ElementsAre("1", "2"));
}

TEST(KvDbaseFile, WhatStandsBehindTheLastRecordIsNone)
{
    EXPECT_THAT(ReadAll(TTableFile(Numbers(2).Build() + "    9 more")), ElementsAre("1", "2"));
}

TEST(KvDbaseFile, RecordsBeginWhereTheHeaderSays)
{
    auto Bytes = Numbers(2).Build();
    Bytes.insert(65, 263, '\0');                    // where Visual FoxPro names its database
    Bytes[8] = static_cast<char>((65 + 263) % 256);
    Bytes[9] = static_cast<char>((65 + 263) / 256);
    EXPECT_THAT(ReadAll(TTableFile(Bytes)), ElementsAre("1", "2"));
}

TEST(KvDbaseFile, AFileThatEndsTooEarlyGivesItsRecordsAndSaysSo)
{
    const auto Bytes = Numbers(3).Build();
    const TTableFile File(std::string_view(Bytes).substr(0, Bytes.size() - 2));
    EXPECT_THAT(ReadAll(File), ElementsAre("1", "2", "File \"%a.dbf\" ends after record 2 of 3"));
    EXPECT_EQ(TKvDbaseFile(File.Name).RecordCount(), 3u);
}

TEST(KvDbaseFile, ACountThatLiesReadsNothingOutsideTheFile)
{
    auto Bytes = Numbers(1).Build();
    Bytes.replace(4, 4, "\xFF\xFF\xFF\xFF");
    EXPECT_THAT(ReadAll(TTableFile(Bytes)),
                ElementsAre("1", "File \"%a.dbf\" ends after record 1 of 4294967295"));
}

TEST(KvDbaseFile, AMissingFileIsNamed)
{
    try {
        const TKvDbaseFile Table("/no/such.dbf");
        FAIL();
    }
    catch (const EFileError& Error) {
        EXPECT_EQ(Error.Message, "Cannot open file \"/no/such.dbf\": No such file or directory");
    }
}

// --- Fields ------------------------------------------------------------------------------------------

TEST(KvDbaseFile, DeclaresFields)
{
    const TTableFile File(
        TDbaseBuilder(0x30).Field("NAME", 'C', 20).Field("PRICE", 'N', 8, 2).Field("RAW", 'C', 4, 0, 4));
    const TKvDbaseFile Table(File.Name);
    ASSERT_EQ(Table.FieldDefs().size(), 3u);
    EXPECT_EQ(Table.FieldDefs()[0].Name, "NAME");
    EXPECT_EQ(Table.FieldDefs()[0].DataType, ftString);
    EXPECT_EQ(Table.FieldDefs()[0].Size, 20);
    EXPECT_EQ(Table.FieldDefs()[1].DataType, ftBCD);
    EXPECT_EQ(Table.FieldDefs()[1].Size, 0);
    EXPECT_EQ(Table.FieldDefs()[2].DataType, ftString);
    EXPECT_EQ(Table.FieldDefs()[2].Size, 4);
}

TEST(KvDbaseFile, ANameThatOccursAgainGetsANumber)
{
    const TTableFile File(
        TDbaseBuilder().Field("ID", 'C', 1).Field("id", 'C', 1).Field("ID_1", 'C', 1).Field("ID", 'C', 1));
    const TKvDbaseFile Table(File.Name);
    std::vector<std::string> Names;
    for (const auto& Def : Table.FieldDefs())
        Names.push_back(Def.Name);
    EXPECT_THAT(Names, ElementsAre("ID", "id_1", "ID_1_1", "ID_2"));
}

TEST(KvDbaseFile, ValuesOfVisualFoxProAreTyped)
{
    const TTableFile File(TDbaseBuilder(0x31)
                              .Field("ID", 'I', 4, 0, 0x0C)
                              .Field("RATE", 'B', 8, 4)
                              .Field("NET", 'Y', 8, 4)
                              .Field("SEEN", 'T', 8)
                              .Field("BORN", 'D', 8)
                              .Field("PAID", 'L', 1)
                              .Field("QTY", 'N', 5)
                              .Field("LOAD", 'F', 8, 3)
                              .Record({DbaseLong(-7), DbaseDouble(0.1), DbaseAmount(9007199254740993),
                                       DbaseMoment(2450874, 57600000), "18210905", "T", "  12", "   2.500"})
                              .Record({DbaseLong(0), DbaseDouble(0), DbaseAmount(0), DbaseMoment(0, 0)}));
    EXPECT_THAT(ReadAll(File),
                ElementsAre("-7|0.1|900719925474.0993|1998-03-01 16:00:00|1821-09-05 00:00:00|True|12|2.5",
                            "0|0|0|-|-|-|-|-"));
    EXPECT_THAT(KindsOf(File), ElementsAre(vkInteger, vkDouble, vkCurrency, vkDateTime, vkDateTime, vkBoolean,
                                           vkInteger, vkDouble));
}

TEST(KvDbaseFile, ValuesOfDbase7AreTyped)
{
    auto Moment = ParadoxNumber(63173520000000.0);  // as in Paradox tables but for the sign bit
    Moment[0] = static_cast<char>(Moment[0] & 0x7F);
    const std::string Zeros(8, '\0');
    const TTableFile File(
        TDbaseBuilder(0x8C)
            .Field("ID", '+', 4)
            .Field("QTY", 'I', 4)
            .Field("RATE", 'O', 8)
            .Field("SEEN", '@', 8)
            .Field("NET", 'N', 20, 4)
            .Record({ParadoxLong(1), ParadoxLong(-7), ParadoxNumber(-0.1), Moment, "900719925474.0993"})
            .Record({Zeros.substr(4), Zeros.substr(4), Zeros, Zeros}));
    EXPECT_THAT(ReadAll(File), ElementsAre("1|-7|-0.1|2002-11-21 00:00:00|900719925474.0993", "-|-|-|-|-"));
    EXPECT_THAT(KindsOf(File), ElementsAre(vkInteger, vkInteger, vkDouble, vkDateTime, vkCurrency));
}

TEST(KvDbaseFile, ABitMarksNulls)
{
    const TTableFile File(TDbaseBuilder(0x30)
                              .Field("A", 'I', 4, 0, 2)
                              .Field("B", 'C', 3, 0, 2)
                              .Field("_NullFlags", '0', 1, 0, 5)
                              .Record({DbaseLong(7), "abc", std::string(1, '\x02')})
                              .Record({DbaseLong(0), "abc", std::string(1, '\x01')}));
    EXPECT_THAT(ReadAll(File), ElementsAre("7|-", "-|abc"));
}

TEST(KvDbaseFile, TextsOfVariableSizeKeepTheirBlanks)
{
    const TTableFile File(TDbaseBuilder(0x32).Field("A", 'V', 6).Field("B", 'Q', 6)
                                             .Field("_NullFlags", '0', 1, 0, 5)
                              .Record({DbaseVarText("ab ", 6), "123456", std::string(1, '\x01')})
                              .Record({"abcdef", DbaseVarText("12", 6), std::string(1, '\x02')})
                              .Record({DbaseVarText("", 6), DbaseVarText("", 6), std::string(1, '\x03')}));
    EXPECT_THAT(ReadAll(File), ElementsAre("ab |123456", "abcdef|12", "|"));
}

TEST(KvDbaseFile, TextOfVariableSizeThatIsNotToBeTranslatedIsBytes)
{
    const TTableFile File(TDbaseBuilder(0x32).Language(0x65).Field("A", 'V', 6, 0, 4)
                                             .Field("_NullFlags", '0', 1, 0, 5)
                              .Record({DbaseVarText("\x8F\xE0", 6), std::string(1, '\x01')}));
    EXPECT_THAT(ReadAll(File), ElementsAre("\x8F\xE0"));
}

TEST(KvDbaseFile, ATextOfVariableSizeIsNoLongerThanItsField)
{
    const TTableFile File(TDbaseBuilder(0x32).Field("A", 'V', 4).Field("_NullFlags", '0', 1, 0, 5)
                              .Record({"abc\x04", std::string(1, '\x01')}));
    EXPECT_THAT(ReadAll(File), ElementsAre("File \"%a.dbf\", record 1, field 'A': its size is said to be 4"));
}

TEST(KvDbaseFile, AnErrorOfAValueNamesItsPlaceAndLeavesTheOthersAlone)
{
    const TTableFile File(TDbaseBuilder().Field("QTY", 'N', 3).Field("BORN", 'D', 8).Deleted({"  1"})
                              .Record({"*1*", "20020230"}).Record({"  2", "20020228"}));
    EXPECT_THAT(ReadAll(File), ElementsAre("File \"%a.dbf\", record 2, field 'QTY': '*1*' is no number|"
                                           "File \"%a.dbf\", record 2, field 'BORN': '20020230' is no date",
                                           "2|2002-02-28 00:00:00"));
}

// --- Texts -------------------------------------------------------------------------------------------

TEST(KvDbaseFile, TextsAreOfTheCodePageThatTheTableNames)
{
    const TTableFile File(TDbaseBuilder().Language(0x65).Field("\x88\x8C\x9F", 'C', 6)
                                         .Record({"\x8F\xE0\xA8"}));
    EXPECT_THAT(ReadAll(File), ElementsAre("При"));
    EXPECT_EQ(TKvDbaseFile(File.Name).FieldDefs()[0].Name, "ИМЯ");
}

TEST(KvDbaseFile, TextsBecomeTextOfTheProcessesCodePage)
{
    const TAnsiPage Windows("windows-1251");
    const TTableFile File(TDbaseBuilder().Language(0x65).Field("A", 'C', 6).Record({"\x8F\xE0\xA8"}));
    EXPECT_THAT(ReadAll(File), ElementsAre("\xCF\xF0\xE8"));
}

TEST(KvDbaseFile, TextsOfATableThatNamesNoCodePageStayAsTheyAre)
{
    const TTableFile File(TDbaseBuilder().Field("A", 'C', 6).Record({"\x8F\xE0\xA8"}).Record({"При"}));
    EXPECT_THAT(ReadAll(File), ElementsAre("\x8F\xE0\xA8", "При"));
}

TEST(KvDbaseFile, TextsStayAsTheyAreWhenAskedTo)
{
    const TTableFile File(TDbaseBuilder().Language(0x65).Field("A", 'C', 6).Record({"\x8F\xE0\xA8"}));
    EXPECT_THAT(ReadAll(File, false), ElementsAre("\x8F\xE0\xA8"));
}

TEST(KvDbaseFile, TextOfACodePageThatNobodyKnowsIsAnError)
{
    const TTableFile File(TDbaseBuilder(0x8C).Language("DB999XX0").Field("A", 'C', 6).Record({"ascii"})
                                             .Record({"\x84"}));
    EXPECT_THAT(ReadAll(File),
                ElementsAre("ascii", "File \"%a.dbf\", record 2, field 'A': Unknown code page '999'"));
    EXPECT_THAT(ReadAll(File, false), ElementsAre("ascii", "\x84"));
}

TEST(KvDbaseFile, ANameThatIsNoneOfItsCodePageIsAnErrorOfTheTable)
{
    const TTableFile File(
        TDbaseBuilder(0x8C).Language("DB999XX0").Field("ID", 'N', 5).Field("\x84", 'C', 6));
    EXPECT_THAT(ReadAll(File), ElementsAre("File \"%a.dbf\", name of field 2: Unknown code page '999'"));
}

TEST(KvDbaseFile, TextThatIsNotToBeTranslatedIsOfNoCodePage)
{
    const TTableFile File(TDbaseBuilder(0x30).Language(0x65).Field("A", 'C', 5, 0, 4)
                                             .Record({"\x8F\xE0\xA8"}).Record({"a b"}).Record({""}));
    EXPECT_THAT(ReadAll(File), ElementsAre("\x8F\xE0\xA8", "a b", "-"));
    EXPECT_THAT(RemarksOf(File), ElementsAre("no code page from record 1"));
}

TEST(KvDbaseFile, AFileBesideTheTableNamesItsCodePage)
{
    const TDbaseBuilder Table = TDbaseBuilder().Language(0x57).Field("A", 'C', 6).Record({"Grö\xC3\x9F"});
    EXPECT_THAT(ReadAll(TTableFile(Table, "A.cpg", "UTF-8\r\n")), ElementsAre("Größ"));
    const auto Russian = TDbaseBuilder().Language(0x65).Field("A", 'C', 3);
    EXPECT_THAT(ReadAll(TTableFile(TDbaseBuilder(Russian).Record({"\x94"}), "a.cpg", "CP852")),
                ElementsAre("ö"))
        << "it wins";
    const TTableFile Unknown(TDbaseBuilder(Russian).Record({"\x8F\xE0\xA8"}), "a.cpg", "no such page");
    EXPECT_THAT(ReadAll(Unknown), ElementsAre("При"));
}

TEST(KvDbaseFile, TextOfNoNamedPageIsRemarkedOnWhereItIsMet)
{
    auto Table = TDbaseBuilder().Language(0x57).Field("A", 'C', 6);
    for (int I = 0; I < 300; ++I)
        Table.Record({"ascii"});
    const TTableFile File(Table.Deleted({"\xCC"}).Record({"\xCC\xEE\xF1"}).Record({"\xCC"}));
    EXPECT_THAT(RemarksOf(File), ElementsAre("no code page from record 302"));
    TDbaseMemoBuilder Memos(TDbaseMemoBuilder::Dbase3);
    const auto Block = std::to_string(Memos.Add("K\x94ln"));
    const TTableFile WithMemo(TDbaseBuilder(0x83).Field("N", 'M', 10).Record({""}).Record({Block}), "a.dbt",
                              Memos.Build());
    EXPECT_THAT(RemarksOf(WithMemo), ElementsAre("no code page from record 2"));
    EXPECT_THAT(RemarksOf(WithMemo, false), ElementsAre()) << "whoever says what it is need not guess";
}

// --- Remarks -----------------------------------------------------------------------------------------

TEST(KvDbaseFile, NumbersThatHadNoRoomAreNullAndCounted)
{
    const TTableFile File(TDbaseBuilder().Field("A", 'N', 3).Field("B", 'F', 3).Record({"  1", "  2"})
                              .Record({"***", "***"}).Record({"", "***"}).Record({"", ""}));
    EXPECT_THAT(ReadAll(File), ElementsAre("1|2", "-|-", "-|-", "-|-"));
    EXPECT_THAT(RemarksOf(File), ElementsAre("numbers lost in 2 from record 2"));
}

TEST(KvDbaseFile, RecordsBehindThoseThatAreCountedAreRemarkedOn)
{
    auto Bytes = Numbers(3).Build();
    Bytes[4] = 1;
    EXPECT_THAT(ReadAll(TTableFile(Bytes)), ElementsAre("1"));
    EXPECT_THAT(RemarksOf(TTableFile(Bytes)), ElementsAre("2 records beyond 1"));
    Bytes[4] = 0;
    EXPECT_THAT(RemarksOf(TTableFile(Bytes)), ElementsAre("3 records beyond 0"));
    auto WithDeleted = Numbers(2).Deleted({"3"}).Record({"4"}).Build();
    WithDeleted[4] = 2;
    EXPECT_THAT(RemarksOf(TTableFile(WithDeleted)), ElementsAre("2 records beyond 2"));
    EXPECT_THAT(RemarksOf(TTableFile(Numbers(3).Build() + "    4 no record")), ElementsAre());
    EXPECT_THAT(RemarksOf(TTableFile(Numbers(3).Build() + " ")), ElementsAre());
}

TEST(KvDbaseFile, AFileThatEndsTooEarlySaysWhatItHolds)
{
    const auto Bytes = Numbers(3).Build();
    EXPECT_THAT(RemarksOf(TTableFile(std::string_view(Bytes).substr(0, Bytes.size() - 2))),
                ElementsAre("2 of 3 records: the file ends there"));
}

TEST(KvDbaseFile, AFieldThatNobodyKnowsIsLeftOut)
{
    const TTableFile File(TDbaseBuilder().Field("A", 'C', 3).Field("X", 'X', 4).Field("Z", 'C', 0)
                                         .Field("B", 'C', 3).Record({"a", "1234", "", "b"}));
    EXPECT_THAT(ReadAll(File), ElementsAre("a|b"));
    EXPECT_THAT(RemarksOf(File), ElementsAre("X left out: field 2 has the unknown type 'X'",
                                             "Z left out: field 3 cannot have a size of 0"));
}

TEST(KvDbaseFile, RecordsMayBeLongerThanTheirFieldsWhereTheyFillTheFile)
{
    auto Table = TDbaseBuilder().Field("A", 'C', 3).Field("PAD", 'C', 2);
    auto Bytes = Table.Record({"abc"}).Record({"def"}).Build();
    Bytes.erase(64, 32);
    Bytes[8] = 65;                                  // the list now ends before PAD
    EXPECT_THAT(ReadAll(TTableFile(Bytes)), ElementsAre("abc", "def"));
    EXPECT_THAT(RemarksOf(TTableFile(Bytes)), ElementsAre("2 bytes left out"));
    EXPECT_THAT(ReadAll(TTableFile(Bytes + "more")),
                ElementsAre("File \"%a.dbf\" is no dBase table: its records have 6 bytes, their fields and "
                            "the mark of deleted ones 4"))
        << "a size that is damaged";
}

TEST(KvDbaseFile, NamesLoseTheirBlanks)
{
    const TTableFile File(TDbaseBuilder().Field("NAME   ", 'C', 3).Field(" QTY", 'N', 3).Field("  ", 'C', 1));
    const TKvDbaseFile Table(File.Name);
    std::vector<std::string> Names;
    for (const auto& Def : Table.FieldDefs())
        Names.push_back(Def.Name);
    EXPECT_THAT(Names, ElementsAre("NAME", "QTY", "Field3"));
}

TEST(KvDbaseFile, ANameThatIsCutWithinACharacterLosesIt)
{
    const TTableFile File(TDbaseBuilder().Field("日本国\xE5", 'C', 3), "a.cpg", "UTF-8");
    EXPECT_EQ(TKvDbaseFile(File.Name).FieldDefs()[0].Name, "日本国");
}

TEST(KvDbaseFile, LoansOfSeveralFieldsHoldTogether)
{
    const TTableFile File(TDbaseBuilder().Language(0x65).Field("A", 'C', 40).Field("B", 'C', 40)
                              .Record({std::string(40, '\x80'), std::string(40, '\x81')}));
    TKvDbaseFile Table(File.Name);
    Table.First();
    const auto A = Table.Value(0), B = Table.Value(1);
    EXPECT_THAT(A.ToText(), StartsWith("АА"));
    EXPECT_THAT(B.ToText(), StartsWith("ББ"));
}

// --- Memos -------------------------------------------------------------------------------------------

TEST(KvDbaseFile, MemosAreReadFromTheFileOfTheirKind)
{
    struct TRow
    {
        unsigned Version, Size;
        TDbaseMemoBuilder::TKind Kind;
        std::string Name;
    };
    const TRow Rows[] = {{0x83, 10, TDbaseMemoBuilder::Dbase3, "a.dbt"},
                         {0x8B, 10, TDbaseMemoBuilder::Dbase4, "a.DBT"},
                         {0x8C, 10, TDbaseMemoBuilder::Dbase4, "A.DBT"},
                         {0xF5, 10, TDbaseMemoBuilder::FoxPro, "a.fpt"},
                         {0x30, 4, TDbaseMemoBuilder::FoxPro, "a.Fpt"}};
    for (const auto& Row : Rows) {
        TDbaseMemoBuilder Memos(Row.Kind);
        const auto Stored = [&](std::string_view Text) {
            const auto Block = Memos.Add(Text);
            return Row.Size == 4 ? DbaseLong(static_cast<std::int32_t>(Block)) : std::to_string(Block);
        };
        TDbaseBuilder Table(Row.Version);
        Table.Field("NOTE", 'M', Row.Size).Record({Stored("first")}).Record({Stored(std::string(2000, 'x'))});
        Table.Record({Row.Size == 4 ? DbaseLong(0) : ""});
        EXPECT_THAT(ReadAll(TTableFile(Table, Row.Name, Memos.Build())),
                    ElementsAre("first", std::string(2000, 'x'), "-")) << Row.Name;
    }
}

TEST(KvDbaseFile, MemosOfOneRecordHoldTogether)
{
    TDbaseMemoBuilder Memos(TDbaseMemoBuilder::FoxPro);
    const auto A = DbaseLong(static_cast<std::int32_t>(Memos.Add(std::string(40000, 'a'))));
    const auto B = DbaseLong(static_cast<std::int32_t>(Memos.Add(std::string(50000, 'b'))));
    const TTableFile File(TDbaseBuilder(0x30).Field("A", 'M', 4).Field("B", 'M', 4).Record({A, B}), "a.fpt",
                          Memos.Build());
    TKvDbaseFile Table(File.Name);
    Table.First();
    const auto First = Table.Value(0), Second = Table.Value(1);
    EXPECT_EQ(First.Text(), std::string(40000, 'a'));
    EXPECT_EQ(Second.Text(), std::string(50000, 'b'));
}

TEST(KvDbaseFile, SoftLineEndsOfMemosBecomeBlanks)
{
    const auto MemoOf = [](unsigned Version, TDbaseMemoBuilder::TKind Kind, unsigned Language,
                           std::string_view Text) {
        TDbaseMemoBuilder Memos(Kind);
        const auto Block = std::to_string(Memos.Add(Text));
        const auto Table = TDbaseBuilder(Version).Language(Language).Field("N", 'M', 10).Record({Block});
        return ReadAll(TTableFile(Table, Kind == TDbaseMemoBuilder::FoxPro ? "a.fpt" : "a.dbt",
                                  Memos.Build()))[0];
    };
    constexpr std::string_view Soft = "one two\x8D\nthree";
    EXPECT_EQ(MemoOf(0x83, TDbaseMemoBuilder::Dbase3, 0x01, Soft), "one two three");
    EXPECT_EQ(MemoOf(0x8B, TDbaseMemoBuilder::Dbase4, 0x00, Soft), "one two three");
    EXPECT_EQ(MemoOf(0xF5, TDbaseMemoBuilder::FoxPro, 0x01, Soft), "one twoì\nthree") << "no editor of dBase";
    EXPECT_EQ(MemoOf(0x83, TDbaseMemoBuilder::Dbase3, 0x00, "mo\xC4\x8D\nthree"), "moč\nthree") << "UTF-8";
    EXPECT_EQ(MemoOf(0x83, TDbaseMemoBuilder::Dbase3, 0x13, "\x89\x8D\nb"), "燕\nb") << "half a character";
}

TEST(KvDbaseFile, BlockZeroIsNoMemo)
{
    for (const std::string& Zero : {std::string(10, ' '), std::string(10, '\0'), std::string("0000000000"),
                                    std::string("         0")})
        EXPECT_THAT(ReadAll(TTableFile(TDbaseBuilder(0x83).Field("NOTE", 'M', 10).Record({Zero}))),
                    ElementsAre("-"));
    EXPECT_THAT(ReadAll(TTableFile(TDbaseBuilder(0x30).Field("NOTE", 'M', 4).Record({DbaseLong(0)}))),
                ElementsAre("-"));
}

TEST(KvDbaseFile, MemosAreTextOfTheTablesCodePageAndBlobsAreNot)
{
    TDbaseMemoBuilder Memos(TDbaseMemoBuilder::Dbase4);
    const auto Block = std::to_string(Memos.Add("\x8F\xE0\xA8"));
    const TTableFile File(
        TDbaseBuilder(0x8B).Language(0x65).Field("A", 'M', 10).Field("B", 'B', 10).Record({Block, Block}),
        "a.dbt", Memos.Build());
    EXPECT_THAT(ReadAll(File), ElementsAre("При|\x8F\xE0\xA8"));
}

TEST(KvDbaseFile, AMissingFileOfMemosIsAnErrorOfTheRecordsThatNeedIt)
{
    const TTableFile File(TDbaseBuilder(0x83).Field("NAME", 'C', 3).Field("NOTE", 'M', 10)
                              .Record({"Ada", ""}).Record({"Bob", "1"}));
    EXPECT_THAT(ReadAll(File), ElementsAre("Ada|-", "Bob|File \"%a.dbf\", record 2, field 'NOTE': "
                                                    "Cannot open file \"%a.dbt\": "
                                                    "No such file or directory"));
}

TEST(KvDbaseFile, AMemoOutsideItsFileIsAnErrorOfTheRecord)
{
    TDbaseMemoBuilder Memos(TDbaseMemoBuilder::Dbase3);
    Memos.Add("memo");
    const TTableFile File(TDbaseBuilder(0x83).Field("NOTE", 'M', 10).Record({"7"}).Record({"x1"})
                                             .Record({"1"}),
                          "a.dbt", Memos.Build());
    EXPECT_THAT(ReadAll(File),
                ElementsAre("File \"%a.dbf\", record 1, field 'NOTE': memo block 7: it lies outside",
                            "File \"%a.dbf\", record 2, field 'NOTE': 'x1' is no number of a memo block",
                            "memo"));
}

TEST(KvDbaseFile, MemosOfAnUnknownKindAreAnError)
{
    const TTableFile File(TDbaseBuilder(0xE5).Field("NOTE", 'M', 10).Record({"1"}).Record({""}));
    EXPECT_THAT(ReadAll(File), ElementsAre("File \"%a.dbf\", record 1, field 'NOTE': "
                                           "memos of this kind of table cannot be read", "-"));
}

} // namespace kv
