#include "KvMdbRows.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "KvByteCursor.h"
#include "KvCodePage.h"
#include "KvException.h"
#include "KvJetBuilder.h"
#include "KvTempFolder.h"

namespace kv {

namespace {

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using TLines = std::vector<std::string>;

/// A record in words: "null" for null, numbers and texts as they are, Yes/No as such, between bars.
std::string LineOf(const TMdbRows& Rows)
{
    std::string Line;
    for (std::size_t I = 0; I < Rows.FieldCount(); ++I) {
        const auto Value = Rows.Value(I);
        const auto Type = Rows.Column(I).col_type;
        if (I > 0)
            Line += '|';
        if (Type == afBoolean)
            Line += Value.IsNull ? "No" : "Yes";
        else if (Value.IsNull)
            Line += "null";
        else
            Line += Type == afLong ? std::to_string(LoadLittleEndian<std::int32_t>(Value.Bytes.data()))
                                   : std::string(Value.Bytes);
    }
    return Line;
}

/// The records of table Orders, and the error that ends them in brackets.
TLines LinesOf(const std::string& Database)
{
    TLines Lines;
    const TTempFolder Folder;
    try {
        const TMdbFile File(Folder.Write("shop.mdb", Database));
        TMdbRows Rows(File, File.Table("Orders"));
        while (Rows.Next())
            Lines.push_back(LineOf(Rows));
        EXPECT_EQ(Rows.RecordNumber(), Lines.size());
    }
    catch (const Exception& Error) {
        Lines.push_back("[" + Error.Message + "]");
    }
    SetAnsiCodePage("UTF-8");                       // that of a database of Jet 3 may be another one
    return Lines;
}

TLines LinesOf(const TJetBuilder& Builder) { return LinesOf(Builder.Build()); }

/// The table Orders with the fields ID and NAME.
TJetBuilder Orders(unsigned Version = TJetBuilder::Jet4)
{
    TJetBuilder Builder(Version);
    Builder.Table(u"Orders").Field(u"ID", afLong).Field(u"NAME", afText, 100);
    return Builder;
}

TEST(KvMdbRows, ReadsTheRecordsOfEveryVersion)
{
    for (const auto Version : {TJetBuilder::Jet3, TJetBuilder::Jet4, TJetBuilder::Ace12})
        EXPECT_THAT(LinesOf(Orders(Version).Record({JetLong(1), "Ada"}).Record({JetLong(-2), "Bob"})),
                    ElementsAre("1|Ada", "-2|Bob")) << Version;
}

TEST(KvMdbRows, AnEmptyTableHasNoRecords)
{
    EXPECT_THAT(LinesOf(Orders()), IsEmpty());
}

TEST(KvMdbRows, NullIsNotEmpty)
{
    EXPECT_THAT(LinesOf(Orders().Record({JetLong(1), ""}).Record({{}, {}}).Record({JetLong(0), {}})),
                ElementsAre("1|", "null|null", "0|null"));
}

TEST(KvMdbRows, DeletedRecordsAreLeftOut)
{
    EXPECT_THAT(LinesOf(Orders()
                            .DeletedRecord({JetLong(1), "a"})
                            .Record({JetLong(2), "b"})
                            .DeletedRecord({JetLong(3), "c"})),
                ElementsAre("2|b"));
}

TEST(KvMdbRows, GoesOnFromPageToPage)
{
    auto Builder = Orders();
    TLines Expected;
    for (int Id = 0; Id < 1000; ++Id) {
        Builder.Record({JetLong(Id), std::string(50, 'x')});
        Expected.push_back(std::to_string(Id) + "|" + std::string(50, 'x'));
    }
    EXPECT_EQ(LinesOf(Builder), Expected);
}

TEST(KvMdbRows, ARecordThatWasMovedStandsInItsOldPlace)
{
    for (const auto Version : {TJetBuilder::Jet3, TJetBuilder::Jet4})
        EXPECT_THAT(LinesOf(Orders(Version)
                                .Record({JetLong(1), "a"})
                                .MovedRecord({JetLong(2), "moved"})
                                .Record({JetLong(3), "c"})),
                    ElementsAre("1|a", "2|moved", "3|c"))
            << Version;
    EXPECT_THAT(LinesOf(Orders().MovedRecord({JetLong(1), "moved twice"}, 2)), ElementsAre("1|moved twice"));
    EXPECT_THAT(LinesOf(Orders().MovedRecord({JetLong(1), "moved in a circle"}, 9)),
                ElementsAre("[record 1 of table Orders is damaged: it was moved in a circle]"));
}

TEST(KvMdbRows, AFieldThatWasAddedLaterIsNullBefore)
{
    for (const auto Version : {TJetBuilder::Jet3, TJetBuilder::Jet4}) {
        auto Builder = Orders(Version).Record({JetLong(1), "Ada"});
        Builder.Field(u"QTY", afLong).Field(u"PAID", afBoolean).Field(u"CITY", afText, 50);
        EXPECT_THAT(LinesOf(Builder.Record({JetLong(2), "Bob", JetLong(7), "Yes", "Rome"})),
                    ElementsAre("1|Ada|null|No|null", "2|Bob|7|Yes|Rome")) << Version;
    }
}

TEST(KvMdbRows, ALaterYesNoFieldIsNotTakenFromTheNextRecord)
{
    // Eight fields fill the byte of marks: that of the ninth would be the first byte of the record behind.
    for (const auto Version : {TJetBuilder::Jet3, TJetBuilder::Jet4}) {
        TJetBuilder Builder(Version);
        Builder.Table(u"Orders");
        for (const auto* const Name : {u"A", u"B", u"C", u"D", u"E", u"F", u"G", u"H"})
            Builder.Field(Name, afBoolean);
        const std::vector<TJetBuilder::TValue> Yes(8, "Yes");
        Builder.Record(Yes).Record(Yes).Record(Yes);
        for (const auto* const Name : {u"I", u"J", u"K", u"L"})
            Builder.Field(Name, afBoolean);
        EXPECT_THAT(LinesOf(Builder),
                    testing::AllOf(testing::SizeIs(3), Each("Yes|Yes|Yes|Yes|Yes|Yes|Yes|Yes|No|No|No|No")))
            << Version;
    }
}

TEST(KvMdbRows, FieldsThatWereDroppedLeaveTheOthersAsTheyWere)
{
    for (const auto Version : {TJetBuilder::Jet3, TJetBuilder::Jet4}) {
        TJetBuilder Builder(Version);
        Builder.Table(u"Orders")
            .Field(u"A", afLong)
            .Field(u"B", afText, 50)
            .Field(u"C", afLong)
            .Field(u"D", afText, 50);
        Builder.Field(u"E", afBoolean).Field(u"F", afBoolean);
        Builder.Record({JetLong(1), "b", JetLong(3), "d", "Yes", {}});
        Builder.DropField(u"A").DropField(u"B").DropField(u"E");
        Builder.Record({{}, {}, JetLong(33), "dd", {}, "Yes"});
        Builder.Field(u"G", afLong).Field(u"H", afText, 50).Field(u"I", afBoolean);
        Builder.Record({{}, {}, JetLong(333), "ddd", {}, {}, JetLong(7), "h", "Yes"});
        EXPECT_THAT(LinesOf(Builder),
                    ElementsAre("3|d|No|null|null|No", "33|dd|Yes|null|null|No", "333|ddd|No|7|h|Yes"))
            << Version;
    }
}

TEST(KvMdbRows, ADefinitionMayTakeSeveralPages)
{
    TJetBuilder Builder;
    Builder.Table(u"Orders");
    std::vector<TJetBuilder::TValue> Values;
    std::string Expected;
    for (int I = 0; I < 255; ++I) {
        const auto Number = std::to_string(I);
        Builder.Field(u"A FIELD OF THE NUMBER " + std::u16string(Number.begin(), Number.end()), afLong);
        Values.push_back(JetLong(I));
        Expected += (I > 0 ? "|" : "") + Number;
    }
    EXPECT_THAT(LinesOf(Builder.Record(Values)), ElementsAre(Expected));
}

TEST(KvMdbRows, FewerRecordsThanTheDefinitionCountsAreDamage)
{
    EXPECT_THAT(
        LinesOf(Orders().Record({JetLong(1), "a"}).Counted(3)),
        ElementsAre("1|a",
                    "[table Orders is damaged: its definition counts 3 records, but only 1 can be found]"));
    EXPECT_THAT(LinesOf(Orders().Record({JetLong(1), "a"}).Counted(0)), ElementsAre("1|a"))
        << "none is left out";
}

TEST(KvMdbRows, ARecordThatReachesOutOfItsPageIsDamage)
{
    auto Bytes = Orders().Record({JetLong(1), "the only one"}).Build();
    const auto Slot = Bytes.find("the only one") / 4096 * 4096 + 14;
    Bytes.replace(Slot, 2, "\xFF\x1F");
    EXPECT_THAT(LinesOf(Bytes),
                ElementsAre("[record 1 of table Orders is damaged: its position is out of range]"));
}

TEST(KvMdbRows, FieldsLongerThanTheirRecordAreDamage)
{
    auto Bytes = Orders().Record({JetLong(1), "the only one"}).Build();
    // Behind the text: where it ends, where it begins.
    Bytes.replace(Bytes.find("the only one") + 12, 2, "\xFF\x0F");
    EXPECT_THAT(LinesOf(Bytes), ElementsAre(testing::StartsWith("[record 1 of table Orders is damaged: ")));
}

TEST(KvMdbRows, ATableWithoutFieldsIsDamage)
{
    TJetBuilder Builder;
    EXPECT_THAT(LinesOf(Builder.Table(u"Orders").Record({})),
                ElementsAre("[table Orders is damaged: it claims to have 0 fields]"));
}

TEST(KvMdbRows, AFieldWithoutANameIsDamage)
{
    EXPECT_THAT(LinesOf(Orders().Field(u"", afLong)),
                ElementsAre("[table Orders is damaged: the name of field 3 cannot be read]"));
}

} // namespace

} // namespace kv
