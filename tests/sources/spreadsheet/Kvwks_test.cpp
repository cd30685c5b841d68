#include "Kvwks.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "KvWorksheetBuilder.h"
#include "KvWorksheetEvents.h"

using namespace std::string_literals;
using testing::ElementsAre;

namespace kv {

TEST(Kvwks, TheVersionIsThatOfTheLastFile)
{
    const TTempFolder Folder;
    TLotus123 Reader;
    EXPECT_EQ(Reader.Version, wvUnknown);
    const std::pair<std::uint16_t, TWKSVersion> Rows[] = {{0x0404, wvWKS1}, {0x0405, wvWKS2},
                                                          {0x0406, wvWR1}};
    for (const auto& [Number, Version] : Rows) {
        Reader.LoadFromFile(Folder.Write("sheet", TWorksheetBuilder(wfLotus, Number).Build()));
        EXPECT_EQ(Reader.Version, Version);
        EXPECT_EQ(GetPropValue(Reader, "Version"), TVariant(static_cast<int>(Version)));
    }
    EXPECT_THROW(Reader.LoadFromFile(Folder.Write("sheet", "text")), Exception);
    EXPECT_EQ(Reader.Version, wvUnknown);
}

TEST(Kvwks, VersionsAreNumberedFromUnknownOn)
{
    EXPECT_EQ(wvUnknown, 0);
    EXPECT_EQ(wvWKS1, 1);
    EXPECT_EQ(wvWKS2, 2);
    EXPECT_EQ(wvWR1, 3);
}

TEST(Kvwks, ColumnAndRowHave16Bits)
{
    EXPECT_THAT(EventsOf<TLotus123>(
                    TWorksheetBuilder(wfLotus).Integer(0x0102, 0x0304, 7).Integer(65535, 65535, 8).Build()),
                ElementsAre("row 772 column 258: integer 7 left", "row 65535 column 65535: integer 8 left"));
}

TEST(Kvwks, AColumnBeyondTheSlotsIsCountedByTheModel)
{
    const TTempFolder Folder;
    TLotus123 Reader;
    Reader.LoadFromFile(
        Folder.Write("sheet", TWorksheetBuilder(wfLotus).Integer(256, 0, 7).Integer(255, 0, 8).Build()));
    EXPECT_EQ(Reader.Sheets[0].Cells.CellsBeyond(), 1u);
    EXPECT_EQ(Reader.Sheets[0].Cells.GetValue(255, 0), TVariant(8));
}

TEST(Kvwks, TheRangeHas16BitColumns)
{
    EXPECT_THAT(
        EventsOf<TLotus123>(
            TWorksheetBuilder(wfLotus).Record(0x06, TBytes().U16(258).U16(1).U16(515).U16(2)).Build()),
        ElementsAre("rows 1 to 2, columns 258 to 515"));
    EXPECT_THAT(EventsOf<TLotus123>(TWorksheetBuilder(wfLotus).Record(0x06, "\0\0\0\0\0\0\0"s).Build()),
                ElementsAre("Record 0x0006 at offset 6 is too short: 7 bytes, 8 are needed"));
}

TEST(Kvwks, ALabelIsAlignedByTheFirstCharacterOfItsText)
{
    EXPECT_THAT(EventsOf<TLotus123>(TWorksheetBuilder(wfLotus)
                                        .Label(0, 0, "abc", '^') // the prefix does not count
                                        .Label(0, 1, "abc", '"')
                                        .Label(0, 2, "^abc")
                                        .Label(0, 3, "\"abc")
                                        .Build()),
                ElementsAre("row 0 column 0: text abc left", "row 1 column 0: text abc left",
                            "row 2 column 0: text ^abc right", "row 3 column 0: text \"abc center"));
}

TEST(Kvwks, ALabelHasTheTextBetweenPrefixAndLastByte)
{
    const auto Cell = TBytes().U8(0xF1).U16(0).U16(0).U8('\'').Str();
    EXPECT_THAT(EventsOf<TLotus123>(TWorksheetBuilder(wfLotus).Record(0x0F, Cell + "abcX").Build()),
                ElementsAre("row 0 column 0: text abc left")); // whatever that byte is
    EXPECT_THAT(EventsOf<TLotus123>(TWorksheetBuilder(wfLotus).Record(0x0F, Cell + "a\0b\0"s).Build()),
                ElementsAre("row 0 column 0: text a\0b left"s));
}

TEST(Kvwks, TheTextOfAFormulaEndsAtAZero)
{
    const auto Cell = TBytes().U8(0xF1).U16(1).U16(2).Str();
    const auto Text = [&](const std::string& Rest) {
        return EventsOf<TLotus123>(TWorksheetBuilder(wfLotus).Record(0x33, Cell + Rest).Build(),
                                   {seFormulaResults});
    };
    EXPECT_THAT(Text("abc\0"s), ElementsAre("row 2 column 1: text abc left"));
    EXPECT_THAT(Text("abc\0xy"s), ElementsAre("row 2 column 1: text abc left"));
    EXPECT_THAT(Text("abc"), ElementsAre("row 2 column 1: text abc left"));
    EXPECT_THAT(Text(""), ElementsAre("row 2 column 1: text  left"));
}

} // namespace kv
