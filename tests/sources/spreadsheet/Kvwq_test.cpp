#include "Kvwq.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "KvWorksheetBuilder.h"
#include "KvWorksheetEvents.h"

using namespace std::string_literals;
using testing::ElementsAre;

namespace kv {

namespace {

/// An integer cell with these bytes for its place.
std::string CellAt(std::string_view Place)
{
    return TWorksheetBuilder(wfQuattro).Record(0x0D, TBytes().U8(0xF1).Text(Place).U16(7)).Build();
}

} // namespace

TEST(Kvwq, TheVersionIsThatOfTheLastFile)
{
    const TTempFolder Folder;
    TQuattroPro Reader;
    EXPECT_EQ(Reader.Version, qvUnknown);
    Reader.LoadFromFile(Folder.Write("sheet", TWorksheetBuilder(wfQuattro).Build()));
    EXPECT_EQ(Reader.Version, qvWQ1);
    EXPECT_EQ(GetPropValue(Reader, "Version"), TVariant(1));
    EXPECT_THROW(Reader.LoadFromFile(Folder.Write("sheet", TWorksheetBuilder(wfQuattro, 0x5121).Build())),
                 Exception);
    EXPECT_EQ(Reader.Version, qvUnknown);
}

TEST(Kvwq, VersionsAreNumberedFromUnknownOn)
{
    EXPECT_EQ(qvUnknown, 0);
    EXPECT_EQ(qvWQ1, 1);
    EXPECT_EQ(qvWQ2, 2);
}

TEST(Kvwq, AnotherVersionFailsBeforeAnyCell)
{
    EXPECT_THAT(EventsOf<TQuattroPro>(TWorksheetBuilder(wfQuattro, 0x5121).Integer(0, 0, 7).Build()),
                ElementsAre("File is not a QuattroPro file"));
}

TEST(Kvwq, TheRowIsComposedHighByteFirst)
{
    EXPECT_THAT(EventsOf<TQuattroPro>(CellAt("\x03\0\x05\0"s)),
                ElementsAre("row 5 column 3: integer 7 left"));
    EXPECT_THAT(EventsOf<TQuattroPro>(CellAt("\x03\x01\0\0"s)),
                ElementsAre("row 256 column 3: integer 7 left"));
    EXPECT_THAT(EventsOf<TQuattroPro>(CellAt("\xFF\xFF\xFF\xFF")),
                ElementsAre("row 65535 column 255: integer 7 left"));
}

TEST(Kvwq, ARowAbove255IsMisplaced)
{
    EXPECT_THAT(EventsOf<TQuattroPro>(TWorksheetBuilder(wfQuattro).Integer(0, 0x1234, 7).Build()),
                ElementsAre("row 52 column 0: integer 7 left"));
}

TEST(Kvwq, WithTheExtensionARowAbove255KeepsItsNumber)
{
    EXPECT_THAT(EventsOf<TQuattroPro>(TWorksheetBuilder(wfQuattro).Integer(0, 0x1234, 7).Build(),
                                      {seWideRows}),
                ElementsAre("row 4660 column 0: integer 7 left"));
    EXPECT_THAT(EventsOf<TQuattroPro>(CellAt("\x03\0\x05\0"s), {seWideRows}),
                ElementsAre("row 5 column 3: integer 7 left"));
}

TEST(Kvwq, TheRangeHasColumnsOfOneByte)
{
    EXPECT_THAT(
        EventsOf<TQuattroPro>(
            TWorksheetBuilder(wfQuattro).Record(0x06, TBytes().U16(258).U16(1).U16(515).U16(8191)).Build()),
        ElementsAre("rows 1 to 8191, columns 2 to 3"));
    EXPECT_THAT(EventsOf<TQuattroPro>(TWorksheetBuilder(wfQuattro).Record(0x06, "\0\0\0\0\0\0\0"s).Build()),
                ElementsAre("Record 0x0006 at offset 6 is too short: 7 bytes, 8 are needed"));
}

TEST(Kvwq, ALabelIsAlignedByItsLength)
{
    EXPECT_THAT(EventsOf<TQuattroPro>(TWorksheetBuilder(wfQuattro)
                                          .Label(0, 0, "abc", '^') // the prefix does not count
                                          .Label(0, 1, std::string(0x5E, 'x'))
                                          .Label(0, 2, std::string(0x22, 'x'))
                                          .Build()),
                ElementsAre("row 0 column 0: text abc left",
                            "row 1 column 0: text " + std::string(0x5E, 'x') + " right",
                            "row 2 column 0: text " + std::string(0x22, 'x') + " center"));
}

TEST(Kvwq, ALabelHasTheTextToTheEndOfTheRecord)
{
    const auto Body = TBytes().U8(0xF1).Zeros(4).U8('\'').U8(2).Text("abc").Str(); // whatever its length says
    EXPECT_THAT(EventsOf<TQuattroPro>(TWorksheetBuilder(wfQuattro).Record(0x0F, Body).Build()),
                ElementsAre("row 0 column 0: text abc left"));
}

TEST(Kvwq, TheTextOfAFormulaHasItsLengthBeforeIt)
{
    const auto Cell = TBytes().U8(0xF1).U16(1).U16(2).Str();
    const auto Text = [&](const std::string& Rest) {
        return EventsOf<TQuattroPro>(TWorksheetBuilder(wfQuattro).Record(0x33, Cell + Rest).Build(),
                                     {seFormulaResults});
    };
    EXPECT_THAT(Text("\x03" "abc"), ElementsAre("row 2 column 1: text abc left"));
    EXPECT_THAT(Text("\x03" "abcxy"), ElementsAre("row 2 column 1: text abc left"));
    EXPECT_THAT(Text("\x03" "ab"),
                ElementsAre("Record 0x0033 at offset 6 is too short: 8 bytes, 9 are needed"));
    EXPECT_THAT(Text(""), ElementsAre("Record 0x0033 at offset 6 is too short: 5 bytes, 6 are needed"));
}

} // namespace kv
