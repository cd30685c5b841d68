#include "KvMdbValues.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <string>
#include <vector>

#include "KvAccessReader.h"
#include "KvAccessScript.h"
#include "KvCodePage.h"
#include "KvException.h"
#include "KvJetBuilder.h"
#include "KvTempFolder.h"

namespace kv {

namespace {

using namespace std::string_literals;
using testing::ElementsAre;
using TBuilder = TJetBuilder;

/// A value in words, its kind before it.
std::string Words(const TVariant& Value, bool IsBytes)
{
    switch (Value.Kind()) {
    case vkNull:     return "null";
    case vkBoolean:  return Value.Boolean() ? "True" : "False";
    case vkInteger:  return "integer " + Value.ToText();
    case vkDouble:   return "double " + Value.ToText();
    case vkCurrency: return "currency " + std::to_string(Value.Currency().Scaled);
    case vkDateTime: return "days " + TVariant(Value.DateTime().Days).ToText();
    default:         return (IsBytes ? "bytes " : "text ") + Value.ToText();
    }
}

/// All values of table T, record by record; errors in brackets.
std::vector<std::string> ValuesOf(const TJetBuilder& Builder)
{
    const TTempFolder Folder;
    std::size_t Fields = 0;
    std::vector<bool> IsBytes;
    const auto Stream = AccessStream([&](TAccessWriter& Writer) {
        const TMdbFile File(Folder.Write("a.mdb", Builder.Build()));
        TMdbRows Rows(File, File.Table("T"));
        TMdbValues Values(File, Writer);
        Fields = Rows.FieldCount();
        for (std::size_t I = 0; I < Fields; ++I) {
            const auto Type = DescribeField(Rows.Column(I), File.IsUnicode()).Type;
            IsBytes.push_back(Type == afOle || Type == afBinary);
        }
        while (Rows.Next())
            Values.WriteRecord(Rows);
        Writer.End();
    });
    SetAnsiCodePage("UTF-8");                       // that of a database of Jet 3 may be another one

    std::vector<std::string> Found;
    TAccessReader Reader([Rest = std::string_view(Stream)](char* Bytes, std::size_t Size) mutable {
        const auto Count = Rest.copy(Bytes, Size);
        Rest.remove_prefix(Count);
        return Count;
    });
    TAccessRecords Records;
    Records.SetFieldCount(Fields);
    for (auto Message = Reader.Next(); Message.Kind != amEnd; Message = Reader.Next()) {
        Records.Load(Message.Body);
        while (Records.Next())
            for (std::size_t I = 0; I < Fields; ++I)
                try {
                    Found.push_back(Words(Records.Value(I), IsBytes[I]));
                }
                catch (const EDatabaseError& Error) {
                    Found.push_back("[" + Error.Message + "]");
                }
    }
    return Found;
}

/// Each value is stored in a record of its own, in the only field of the table.
std::vector<std::string> ValuesOf(TAccessFieldType Type, const std::vector<TBuilder::TValue>& Stored,
                                  unsigned Size = 0)
{
    TJetBuilder Builder;
    Builder.Table(u"T").Field(u"F", Type, Size);
    for (const auto& Each : Stored)
        Builder.Record({Each});
    return ValuesOf(Builder);
}

TEST(KvMdbValues, YesAndNoAreTrueAndFalse)
{
    EXPECT_THAT(ValuesOf(afBoolean, {"Yes", {}}), ElementsAre("True", "False"));
}

TEST(KvMdbValues, IntegersAreOfTheirWidth)
{
    EXPECT_THAT(ValuesOf(afByte, {"\0"s, "\xFF", {}}), ElementsAre("integer 0", "integer 255", "null"));
    EXPECT_THAT(ValuesOf(afInteger, {JetLong(-32768, 2), JetLong(32767, 2)}),
                ElementsAre("integer -32768", "integer 32767"));
    EXPECT_THAT(ValuesOf(afLong, {JetLong(std::numeric_limits<std::int32_t>::min()), JetLong(2147483647)}),
                ElementsAre("integer -2147483648", "integer 2147483647"));
    EXPECT_THAT(ValuesOf(afBigInt, {JetLong(std::numeric_limits<std::int64_t>::min(), 8)}),
                ElementsAre("integer -9223372036854775808"));
    EXPECT_THAT(ValuesOf(afComplex, {JetLong(7), {}}),
                ElementsAre("[record 1 of table T, field F: attachments and multiple values cannot be read]",
                            "null"));
}

TEST(KvMdbValues, AmountsAreExact)
{
    EXPECT_THAT(ValuesOf(afCurrency, {JetLong(std::numeric_limits<std::int64_t>::max(), 8), JetLong(-1, 8)}),
                ElementsAre("currency 9223372036854775807", "currency -1"));
}

TEST(KvMdbValues, ADayThatIsNoneIsRefused)
{
    const auto None = [](int Record, const std::string& Day) {
        return "[record " + std::to_string(Record) + " of table T, field F: day " + Day +
               " lies outside the years 100 to 9999]";
    };
    EXPECT_THAT(ValuesOf(afDateTime, {JetDouble(-657434), JetDouble(2958465.5), JetDouble(1e10),
                                      JetDouble(-657434.5), JetDouble(2958466)}),
                ElementsAre("days -657434", "days 2958465.5", None(3, "1e+10"), None(4, "-657434.5"),
                            None(5, "2958466")));
}

TEST(KvMdbValues, FloatingNumbersAreThoseThatWereWritten)
{
    EXPECT_THAT(ValuesOf(afSingle,
                         {JetSingle(0.5F), JetSingle(-3e38F), JetSingle(0.1F), JetSingle(16777216)}),
                ElementsAre("double 0.5", "double -3E38", "double 0.1", "double 16777216"));
    constexpr auto Infinity = std::numeric_limits<double>::infinity();
    EXPECT_THAT(ValuesOf(afSingle, {JetSingle(static_cast<float>(Infinity))}),
                ElementsAre("[record 1 of table T, field F: its number is not finite]"));
    EXPECT_THAT(ValuesOf(afDouble, {JetDouble(-Infinity)}),
                ElementsAre("[record 1 of table T, field F: its number is not finite]"));
    EXPECT_THAT(ValuesOf(afDouble, {JetDouble(0.1), JetDouble(-1e300)}),
                ElementsAre("double 0.1", "double -1E300"));
}

TEST(KvMdbValues, DatesAreDaysAlsoBefore1900)
{
    EXPECT_THAT(ValuesOf(afDateTime,
                         {JetDouble(0), JetDouble(-1.25), JetDouble(-657434), JetDouble(45351.5)}),
                ElementsAre("days 0", "days -1.25", "days -657434", "days 45351.5"));
}

TEST(KvMdbValues, TextIsUtf8)
{
    EXPECT_THAT(ValuesOf(afText, {JetText(u"Łódź 漢"), "\xFF\xFEK\xF6ln", "", {}}, 100),
                ElementsAre("text Łódź 漢", "text Köln", "text ", "null"));
    EXPECT_THAT(ValuesOf(afText, {"abc"}, 100),
                ElementsAre("[record 1 of table T, field F: its text ends within a character]"));
}

TEST(KvMdbValues, TextOfJet3IsInTheCodePageOfTheDatabase)
{
    const auto Of = [](unsigned CodePage, const char* Bytes) {
        TJetBuilder Builder(TJetBuilder::Jet3);
        Builder.CodePage(CodePage).Table(u"T").Field(u"F", afText, 100).Field(u"M", afMemo);
        return ValuesOf(Builder.Record({Bytes, JetInline(Bytes)}));
    };
    EXPECT_THAT(Of(1252, "K\xF6ln \x80"), ElementsAre("text Köln €", "text Köln €"));
    EXPECT_THAT(Of(1250, "\xA3\xF3\x64\x9F"), ElementsAre("text Łódź", "text Łódź"));
    EXPECT_THAT(Of(1251, "\xCC\xEE\xF1\xEA\xE2\xE0"), ElementsAre("text Москва", "text Москва"));
    EXPECT_THAT(Of(932, "\x93\x8C\x8B\x9E"), ElementsAre("text 東京", "text 東京"));
    EXPECT_THAT(Of(936, "\xB1\xB1\xBE\xA9"), ElementsAre("text 北京", "text 北京"));
}

TEST(KvMdbValues, MemosAndObjectsAreWhole)
{
    TJetBuilder Builder;
    const auto Memo = Builder.OnPages(JetText(std::u16string(5'000, u'漢')), 4'000);
    const auto Object = Builder.OnPages(std::string(70'000, '\xAB'), 4'000);
    Builder.Table(u"T").Field(u"M", afMemo).Field(u"O", afOle);
    Builder.Record({Memo, Object}).MovedRecord({Memo, Object}).Record({"", JetInline("")}).Record({{}, {}});
    std::string Long;
    for (int I = 0; I < 5'000; ++I)
        Long += "漢";
    EXPECT_THAT(ValuesOf(Builder),
                ElementsAre("text " + Long, "bytes " + std::string(70'000, '\xAB'), "text " + Long,
                            "bytes " + std::string(70'000, '\xAB'), "text ", "bytes ", "null", "null"));
}

TEST(KvMdbValues, BytesStayBytes)
{
    EXPECT_THAT(ValuesOf(afBinary, {"a\0\xFF"s, "", {}}, 50),
                ElementsAre("bytes a\0\xFF"s, "bytes ", "null"));
}

TEST(KvMdbValues, AReplicationIdIsItsText)
{
    EXPECT_THAT(ValuesOf(afGuid, {"\x10\x08\x02\x00\x00\x00\x01\x00\xC0\x00\x00\x00\x00\x00\x00\x46"s, {}}),
                ElementsAre("text {00020810-0000-0001-C000-000000000046}", "null"));
}

TEST(KvMdbValues, DecimalsHaveTheScaleOfTheirField)
{
    TJetBuilder Builder;
    Builder.Table(u"T").Decimal(u"A", 18, 2).Decimal(u"B", 28, 0).Decimal(u"C", 28, 28).Decimal(u"D", 5, 5);
    Builder.Record({JetDecimal(true, 0, 0, 0, 12345), JetDecimal(true, 0, 0, 0, 7),
                    JetDecimal(true, 0, 0, 0, 1), JetDecimal(false, 0, 0, 0, 50000)});
    Builder.Record({{}, {}, {}, {}});
    EXPECT_THAT(ValuesOf(Builder),
                ElementsAre("currency -1234500", "integer -7", "text -0.0000000000000000000000000001",
                            "currency 5000", "null", "null", "null", "null"));
}

TEST(KvMdbValues, CalculatedValuesAreTakenOutOfTheirForm)
{
    TJetBuilder Builder(TJetBuilder::Ace14);
    Builder.Table(u"T").Field(u"GONE", afLong).Field(u"L", afLong).Calculated().Field(u"A", afText, 20);
    Builder.Field(u"T", afText, 255)
        .Calculated()
        .Field(u"B", afBoolean)
        .Calculated()
        .Field(u"M", afMemo)
        .Calculated();
    Builder.DropField(u"GONE");
    const auto Long = Builder.OnPages(JetCalculated(JetText(u"a long one")), 10);
    Builder.Record({{},
                    JetCalculated(JetLong(-7)),
                    JetText(u"a"),
                    JetCalculated(JetText(u"t")),
                    JetCalculated("\xFF"),
                    Long});
    Builder.Record(
        {{}, JetCalculated("xy"), {}, {}, JetCalculated("\0"s), JetInline(JetCalculated(JetText(u"m")))});
    Builder.Record({{}, {}, {}, "cut", {}, {}});
    EXPECT_THAT(
        ValuesOf(Builder),
        ElementsAre(
            "integer -7", "text a", "text t", "True", "text a long one",
            "[record 2 of table T, field L: its value is damaged: it takes 2 bytes instead of 4]", "null",
            "null", "False", "text m", "null", "null",
            "[record 3 of table T, field T: its calculated value is damaged: its beginning is cut off]",
            "False", "null"));
}

TEST(KvMdbValues, BeforeAccess2010NoFieldIsCalculated)
{
    TJetBuilder Builder(TJetBuilder::Ace12);
    Builder.Table(u"T").Field(u"T", afText, 100).Calculated().Record({JetText(u"plain text of some length")});
    EXPECT_THAT(ValuesOf(Builder), ElementsAre("text plain text of some length"));
}

TEST(KvMdbValues, CalculatedFieldsAreFoundInADefinitionOfSeveralPages)
{
    TJetBuilder Builder(TJetBuilder::Ace14);
    Builder.Table(u"T");
    std::vector<TBuilder::TValue> Values;
    for (int I = 0; I < 200; ++I) {
        Builder.Field(u"FIELD" + std::u16string(1, static_cast<char16_t>(u'\u4E00' + I)), afText, 40);
        if (I % 2 == 1)
            Builder.Calculated();
        Values.push_back(I % 2 == 1 ? TBuilder::TValue(JetCalculated("\xFF\xFE"
                                                                     "c"))
                                    : TBuilder::TValue("\xFF\xFE"
                                                       "p"));
    }
    const auto Found = ValuesOf(Builder.Record(Values));
    ASSERT_EQ(Found.size(), 200);
    EXPECT_EQ(std::ranges::count(Found, "text p"), 100);
    EXPECT_EQ(std::ranges::count(Found, "text c"), 100);
}

TEST(KvMdbValues, ATypeThatIsNotKnownHasNoValues)
{
    EXPECT_THAT(ValuesOf(static_cast<TAccessFieldType>(20), {"12345678", {}}, 42),
                ElementsAre("[record 1 of table T, field F: values of type 20 cannot be read]", "null"));
}

TEST(KvMdbValues, AValueThatIsDamagedLeavesTheOthersOfItsRecord)
{
    TJetBuilder Builder;
    Builder.Table(u"T").Field(u"A", afLong).Field(u"B", afMemo).Field(u"C", afText, 20);
    Builder.Record({JetLong(1), "cut", JetText(u"c")}).Record({JetLong(2), JetInline(JetText(u"b")), {}});
    EXPECT_THAT(ValuesOf(Builder),
                ElementsAre("integer 1",
                            "[record 1 of table T, field B: its value is damaged: not all of it is there]",
                            "text c", "integer 2", "text b", "null"));
}

TEST(KvMdbValues, FieldsAreDescribedAsAccessShowsThem)
{
    TJetBuilder Builder;
    Builder.Table(u"T")
        .Field(u"A", afText, 100)
        .Field(u"B", afBinary, 16)
        .Field(u"C", afMemo)
        .Field(u"D", afGuid)
        .Decimal(u"E", 18, 2);
    Builder.Decimal(u"F", 28, 28);
    const TTempFolder Folder;
    const TMdbFile File(Folder.Write("a.mdb", Builder.Build()));
    const TMdbRows Rows(File, File.Table("T"));
    std::vector<std::string> Texts;
    for (std::size_t I = 0; I < Rows.FieldCount(); ++I)
        Texts.push_back(AccessTypeText(DescribeField(Rows.Column(I), File.IsUnicode())));
    EXPECT_THAT(Texts, ElementsAre("Text (50)", "Binary (16)", "Memo", "Replication ID", "Decimal (18, 2)",
                                   "Decimal (28, 28)"));
}

} // namespace

} // namespace kv
