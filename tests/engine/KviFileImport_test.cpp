#include "KviFileImport.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "KvImpatientUser.h"
#include "KvMemoryDataSet.h"
#include "Kvistat.h"

using testing::ElementsAre;

namespace kv {

namespace {

/// A source that has files and no rows.
class TEmptyFiles final : public TKvImportFromFile
{
public:
    TEmptyFiles() : TKvImportFromFile(nullptr, teXML, ".EMPTY") { SetDataSet(&Destination); }

    using TKvImportFromFile::KeepsRunning;
    using TKvImportFromFile::NotDefined;
    using TKvImportFromFile::WantsMoreThan;

private:
    TMemoryDataSet Destination;
};

/// The property that keeps `Import` from running, empty when none does.
std::string Missing(TEmptyFiles& Import)
{
    std::string PropName;
    const bool NotDefined = Import.NotDefined(PropName);
    EXPECT_EQ(NotDefined, !PropName.empty());
    return PropName;
}

} // namespace

TEST(KviFileImport, ItsFileIsNamedByTheExtensionAndItsRowsAreAll)
{
    const TEmptyFiles Import;
    EXPECT_EQ(Import.SourceFileName, "KvImport.EMPTY");
    EXPECT_EQ(Import.RowFirst, 1);
    EXPECT_EQ(Import.RowLast, 2147483647);
}

TEST(KviFileImport, PublishesFileAndRowsAfterThePropertiesOfEveryImport)
{
    std::vector<std::string_view> Names;
    for (const auto& Property : TEmptyFiles().PublishedProperties())
        Names.push_back(Property.Name);
    const auto Inherited = TKvImportBaseComponent().PublishedProperties().size();
    Names.erase(Names.begin(), Names.begin() + static_cast<std::ptrdiff_t>(Inherited));
    EXPECT_THAT(Names, ElementsAre("SourceFileName", "RowFirst", "RowLast"));
}

TEST(KviFileImport, NeedsADestinationAndThenAFile)
{
    TEmptyFiles Import;
    EXPECT_EQ(Missing(Import), "");
    Import.SourceFileName.clear();
    EXPECT_EQ(Missing(Import), "SourceFileName");
    Import.SetDataSet(nullptr);
    EXPECT_EQ(Missing(Import), "DataSet");
}

TEST(KviFileImport, WantsAsManyRowsAsStandFromTheFirstToTheLast)
{
    struct TCase
    {
        int RowFirst, RowLast;
        std::int64_t Count;
        bool Wants;
    };
    for (const auto& Case : {TCase{2, 4, 2, true}, TCase{2, 4, 3, false}, TCase{5, 4, 0, false},
                             TCase{4, 4, 0, true}, TCase{-2147483647 - 1, 2147483647, 4294967295, true},
                             TCase{-2147483647 - 1, 2147483647, 4294967296, false}}) {
        TEmptyFiles Import;
        Import.RowFirst = Case.RowFirst;
        Import.RowLast = Case.RowLast;
        EXPECT_EQ(Import.WantsMoreThan(Case.Count), Case.Wants) << Case.RowFirst << ".." << Case.RowLast;
    }
}

TEST(KviFileImport, KeepsRunningUntilTheUserCancels)
{
    TEmptyFiles Import;
    EXPECT_TRUE(Import.KeepsRunning());             // no progress dialog
    TImpatientUser User(2);                         // opening the dialog is the first round
    CreateProgressDlg("", "", "", "", "", "", "", "", false);
    EXPECT_TRUE(Import.KeepsRunning());
    EXPECT_FALSE(Import.KeepsRunning());
    DestroyProgressDlg();
}

TEST(KviFileImport, WithoutAnimatedStatusNoMessagesRunWhileItLoads)
{
    TEmptyFiles Import;
    Import.AnimatedStatus = false;
    TImpatientUser User(1);
    CreateProgressDlg("", "", "", "", "", "", "", "", false); // of somebody else
    for (int I = 0; I < 3; ++I)
        EXPECT_TRUE(Import.KeepsRunning());
    UserInterface().ProcessMessages();
    EXPECT_FALSE(Import.KeepsRunning());
    DestroyProgressDlg();
}

} // namespace kv
