// In which order the sheets of a workbook are read, and what their entries tell.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "KvBiffBuilder.h"
#include "KvException.h"
#include "KvxlsEvents.h"

using testing::ElementsAre;

namespace kv {

namespace {

/// The cell of a sheet tells which it is.
TBiffBuilder Marked(int Number) { return TBiffBuilder().Rk(0, 0, RkOfInteger(Number)); }

/// The sheets "One" and "Two", and their entries.
class TTwoTabs
{
public:
    /// Lets the entry `Index` lead to `Offset`.
    TTwoTabs& Leading(std::size_t Index, std::size_t Offset)
    {
        Stream.replace(Entry(Index), 4, TBytes().U32(static_cast<std::uint32_t>(Offset)).Str());
        return *this;
    }
    /// The first tab is of the sheet that stands last.
    TTwoTabs& Swapped() { return Leading(0, Builder.OffsetOfSheet(1)).Leading(1, Builder.OffsetOfSheet(0)); }
    TTwoTabs& WithState(std::size_t Index, unsigned State)
    {
        Stream[Entry(Index) + 4] = static_cast<char>(State);
        return *this;
    }

    /// Where the body of an entry begins.
    static std::size_t Entry(std::size_t Index) { return TBiffBuilder().Bof().Size() + 4 + Index * 15; }

    TWorkbookBuilder Builder;
    std::string Stream = Build();

private:
    std::string Build()
    {
        Builder = TWorkbookBuilder();
        return Builder.Sheet("One", Marked(1)).Sheet("Two", Marked(2)).Build();
    }
};

TEventLines Read(const TTwoTabs& Tabs, TSpreadSheetExtensions Extensions = {seCellRecords})
{
    return TRecordingExcel(Extensions).Workbook(Tabs.Stream);
}

} // namespace

TEST(KvxlsTabs, SheetsStandInTheOrderOfTheirTabs)
{
    const auto Tabs = TTwoTabs().Swapped();
    EXPECT_THAT(Read(Tabs), ElementsAre("sheet 0 \"One\"", "cell 0: 0 0 double 2 right", "sheet 1 \"Two\"",
                                        "cell 1: 0 0 double 1 right"));
    EXPECT_THAT(Read(Tabs, {}), ElementsAre("sheet 0 \"One\"", "cell 0: 0 0 double 1 right",
                                            "sheet 1 \"Two\"", "cell 1: 0 0 double 2 right"));
}

TEST(KvxlsTabs, SheetsMayBeSkippedInAnyOrder)
{
    const auto Tabs = TTwoTabs().Swapped();
    EXPECT_THAT(TRecordingExcel({seCellRecords}).Skipping(0).Workbook(Tabs.Stream),
                ElementsAre("sheet 0 \"One\"", "sheet 1 \"Two\"", "cell 1: 0 0 double 1 right"));
    EXPECT_THAT(TRecordingExcel({seCellRecords}).Skipping(1).Workbook(Tabs.Stream),
                ElementsAre("sheet 0 \"One\"", "cell 0: 0 0 double 2 right", "sheet 1 \"Two\""));
}

TEST(KvxlsTabs, EntriesThatLeadNowhereAreTakenInTheOrderOfTheSheets)
{
    const auto Lines = Read(TTwoTabs());
    for (const std::size_t Offset : {std::size_t{0}, std::size_t{7}, std::size_t{0x7FFFFFFF}}) {
        EXPECT_EQ(Read(TTwoTabs().Leading(0, Offset)), Lines) << Offset;
        EXPECT_EQ(Read(TTwoTabs().Leading(0, Offset).Leading(1, Offset)), Lines) << Offset;
    }
}

TEST(KvxlsTabs, TwoEntriesOfOneSheetDoNotReadItTwice)
{
    const TTwoTabs Tabs;
    EXPECT_THAT(Read(TTwoTabs().Leading(0, Tabs.Builder.OffsetOfSheet(1))),
                ElementsAre("sheet 0 \"One\"", "cell 0: 0 0 double 1 right", "sheet 1 \"One\"",
                            "cell 1: 0 0 double 2 right"));
}

TEST(KvxlsTabs, ASheetWithoutAnEndGoesUpToTheNext)
{
    TTwoTabs Tabs;
    const auto End = Tabs.Builder.OffsetOfSheet(1) - 4;
    Tabs.Stream[End] = '\x11';                      // in place of EOF
    EXPECT_THAT(Read(Tabs), ElementsAre("sheet 0 \"One\"", "cell 0: 0 0 double 1 right", "sheet 1 \"Two\"",
                                        "cell 1: 0 0 double 2 right"));
}

TEST(KvxlsTabs, EntriesTellWhichSheetsAreHidden)
{
    for (const unsigned State : {1u, 2u}) {
        for (const TSpreadSheetExtensions Extensions : {TSpreadSheetExtensions(), {seCellRecords}}) {
            std::string Hidden;
            TMSExcel Reader;
            Reader.Extensions = Extensions;
            Reader.OnSheet = [&](auto& Sender, const std::string& Caption, int, bool&) {
                Hidden += Sender.SheetHidden ? Caption : "-";
            };
            EXPECT_TRUE(Reader.ReadWorkbookStream(TTwoTabs().WithState(0, State).Stream, evExcel8));
            EXPECT_EQ(Hidden, "One-");
        }
    }
}

} // namespace kv
