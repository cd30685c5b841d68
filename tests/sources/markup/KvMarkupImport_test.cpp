// What holds for pages and packets alike.
#include "KvMarkupImport.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "KvImpatientUser.h"
#include "KvMarkupRun.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace kv {

namespace {

struct TPage
{
    using TImport = TKvImportFromHTML;
    static constexpr const char* Name = "Page";
    static constexpr auto LoadPreview = LoadHTMLPreview;
    static std::string File(int Rows) { return "<table>" + NumberedHtmlRows(Rows) + "</table>"; }
};

struct TPacket
{
    using TImport = TKvImportFromXML;
    static constexpr const char* Name = "Packet";
    static constexpr auto LoadPreview = LoadXMLPreview;
    static std::string File(int Rows) { return "<ROWDATA>" + NumberedXmlRows(Rows) + "</ROWDATA>"; }
};

using TKinds = testing::Types<TPage, TPacket>;

struct TNameOfKind
{
    template <class TKind> static std::string GetName(int) { return TKind::Name; }
};

/// The rows "1|b|c", "2|b|c", ...
template <class TKind> struct TNumberedRun : TMarkupRun<typename TKind::TImport>
{
    explicit TNumberedRun(int Count) : TMarkupRun<typename TKind::TImport>(TKind::File(Count)) {}

    TRows Preview(const std::string& Names, int First = 1, int Last = RowLastMax) const
    {
        return PreviewOf(TKind::LoadPreview, this->SourceFileName, Names, "", First, Last);
    }
};

/// The message of what Execute raises.
std::string Raised(TKvImportBaseComponent& Import)
{
    try {
        Import.Execute();
    }
    catch (const Exception& Error) {
        return Error.Message;
    }
    return {};
}

} // namespace

template <class TKind> struct KvMarkupImport : testing::Test
{
};
TYPED_TEST_SUITE(KvMarkupImport, TKinds, TNameOfKind);

// Rows.

TYPED_TEST(KvMarkupImport, RowsCountFromRowFirstToRowLast)
{
    TNumberedRun<TypeParam> Import(5);
    Import.RowFirst = 2;
    Import.RowLast = 4;
    EXPECT_THAT(Import.Run(), ElementsAre("2|b|c", "3|b|c", "4|b|c"));
}

TYPED_TEST(KvMarkupImport, RowFirstBelowOneIsTheFirstRow)
{
    TNumberedRun<TypeParam> Import(2);
    Import.RowFirst = -2147483647 - 1;
    EXPECT_THAT(Import.Run(), ElementsAre("1|b|c", "2|b|c"));
}

TYPED_TEST(KvMarkupImport, RowFirstPastTheLastRowImportsNothing)
{
    TNumberedRun<TypeParam> Import(2);
    Import.RowFirst = 3;
    EXPECT_THAT(Import.Run(), IsEmpty());
}

TYPED_TEST(KvMarkupImport, ACountOfRowsIsThatOfTheRangeBeforeTheRunClipsIt)
{
    TNumberedRun<TypeParam> Import(5);
    Import.RowFirst = 2;
    Import.Run();
    EXPECT_EQ(Import.GetTotalCount(), 4);
    EXPECT_EQ(Import.Statistic.TotalCount, 3);      // the run takes RowFirst - 1 off once more
    EXPECT_EQ(Import.Statistic.TotalImported, 4);
}

TYPED_TEST(KvMarkupImport, ARecordsPlaceIsItsRow)
{
    TNumberedRun<TypeParam> Import(3);
    Import.RowFirst = 2;
    std::vector<std::string> Places;
    Import.OnAfterRecordEvent = [&Places](TKvImportBaseComponent& Sender, bool&) {
        Places.push_back(Sender.RecordPlace());
    };
    Import.Run();
    EXPECT_THAT(Places, ElementsAre("row 2", "row 3"));
}

TYPED_TEST(KvMarkupImport, AComponentRunsAgainAfterARunThatFailed)
{
    TNumberedRun<TypeParam> Import(1);
    const auto Name = Import.SourceFileName;
    Import.SourceFileName = "/no/such/file";
    EXPECT_EQ(Import.RunAndFail(), "Cannot open file \"FILE\": No such file or directory");
    Import.SourceFileName = Name;
    EXPECT_THAT(Import.Run(), ElementsAre("1|b|c"));
}

TYPED_TEST(KvMarkupImport, CancelledWhileItLoadsImportsNothing)
{
    // One round opens the window, one follows the piece that is read, the next ones the rows counted.
    for (const int Rounds : {1, 2, 3}) {
        TImpatientUser User(Rounds);
        TNumberedRun<TypeParam> Import(40000);
        Import.AnimatedStatus = true;
        Import.Execute();
        EXPECT_EQ(Import.Statistic.Result, irCanceled) << Import.ErrorMessage();
        EXPECT_EQ(Import.Destination.RecordCount(), 0) << Rounds;
        EXPECT_EQ(Import.Statistic.TotalImported, 0);
    }
}

// The component.

TYPED_TEST(KvMarkupImport, NamesWhatIsMissing)
{
    TNumberedRun<TypeParam> Import(1);
    Import.SourceFileName.clear();
    EXPECT_EQ(Raised(Import), "Property SourceFileName wasn't specified.");
    Import.SetDataSet(nullptr);
    EXPECT_EQ(Raised(Import), "Property DataSet wasn't specified.");
}

TYPED_TEST(KvMarkupImport, MapsEachFieldToItsOwnNameByItself)
{
    EXPECT_THAT(TNumberedRun<TypeParam>(1).DetectedMappings(), ElementsAre("A=A", "B=B", "C=C"));
}

TYPED_TEST(KvMarkupImport, DetectingAMappingKeepsTheLinesThatAreThere)
{
    TNumberedRun<TypeParam> Import(1);
    Import.SetMappings(TStrings{"X=Y"});
    Import.DetectAutoMapping();
    EXPECT_EQ(Import.Mappings(), (TStrings{"X=Y", "A=A", "B=B", "C=C"}));
}

TYPED_TEST(KvMarkupImport, DetectingAMappingOfAMissingFileIsRefused)
{
    TNumberedRun<TypeParam> Import(1);
    Import.SourceFileName = "/no/such/file";
    EXPECT_THROW(Import.DetectAutoMapping(), EFileError);
}

// The preview.

TYPED_TEST(KvMarkupImport, APreviewShowsNoRowPastTheTwentieth)
{
    const TNumberedRun<TypeParam> Import(30);
    EXPECT_EQ(Import.Preview("a").size(), 20U);
    EXPECT_EQ(Import.Preview("a", 1, 20).size(), 20U);
    EXPECT_THAT(Import.Preview("a", 19, 21), ElementsAre("19", "20"));
    EXPECT_THAT(Import.Preview("a", 2, 3), ElementsAre("2", "3"));
    EXPECT_THAT(Import.Preview("a", 21, 30), IsEmpty());
}

TYPED_TEST(KvMarkupImport, APreviewWithoutNamesDoesNothing)
{
    TStrings Columns;
    TypeParam::LoadPreview(nullptr, "", "/no/such/file", "", 1, 2, false, Columns, {}, {});
    EXPECT_TRUE(Columns.IsEmpty());
}

TYPED_TEST(KvMarkupImport, APreviewPassesSenderAndFlagThrough)
{
    const TNumberedRun<TypeParam> Import(1);
    TStrings Sender, Columns;
    int Calls = 0;
    TypeParam::LoadPreview(&Sender, "a;", Import.SourceFileName, "", 1, 9, true, Columns,
                           [&](TPersistent* Passed, int ColCount, int Row, bool Flag,
                               const TVariant& Values) {
                               EXPECT_EQ(Passed, &Sender);
                               EXPECT_EQ(ColCount, 2);
                               EXPECT_EQ(Row, 1);
                               EXPECT_TRUE(Flag);
                               EXPECT_EQ(Values.LowBound(), 0);
                               EXPECT_EQ(Values.HighBound(), 1);
                               ++Calls;
                           },
                           {});
    EXPECT_EQ(Calls, 1);
    EXPECT_EQ(Columns, (TStrings{"a", ""}));
}

TYPED_TEST(KvMarkupImport, APreviewOfAMissingFileIsRefused)
{
    EXPECT_THROW(PreviewOf(TypeParam::LoadPreview, "/no/such/file", "a"), EFileError);
}

} // namespace kv
