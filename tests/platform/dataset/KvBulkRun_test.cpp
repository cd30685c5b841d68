// What a destination is told of a run of the engine.
#include "KvBulkRun.h"

#include "KvMemoryDataSet.h"
#include "KvTestRun.h"

namespace kv {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// Notes what it is told, and the tags of the records that it is given.
class TAttentiveDataSet final : public TMemoryDataSet
{
public:
    TAttentiveDataSet()
    {
        SetFieldDefs({{.Name = "ID", .DataType = ftInteger}, {.Name = "NAME"}});
        Open();
    }

    void BeginBulk(const TKvBulkRun& Run) override
    {
        EXPECT_FALSE(InBulk);
        InBulk = true;
        Told.push_back(Run);
        RecordsBefore = RecordCount();
    }
    void EndBulk() override { InBulk = false; }

    std::vector<TKvBulkRun> Told;
    bool InBulk = false;
    int RecordsBefore = -1;
    std::vector<std::int64_t> Tags;

protected:
    void InternalInsert(const TRecordBuffer& Written) override
    {
        EXPECT_TRUE(InBulk);
        Tags.push_back(RecordTag);
        TMemoryDataSet::InternalInsert(Written);
    }
};

struct KvBulkRun : testing::Test
{
    KvBulkRun()
    {
        Import.SetDataSet(&Table);
        Import.Rows = {{1, "Ada"}, {"x", "Bob"}, {3, "Cid"}};
    }

    TTestRun Run;
    TAttentiveDataSet Table;
    TScriptedImport& Import = Run.Import;
};

TEST_F(KvBulkRun, IsToldOncePerRunAndEnds)
{
    Import.Execute();
    ASSERT_EQ(Table.Told.size(), 1u);
    EXPECT_EQ(Table.Told[0].Kind, bkAppend);
    EXPECT_THAT(Table.Told[0].Keys, IsEmpty());
    EXPECT_EQ(Table.Told[0].ExpectedRecords, 3);
    EXPECT_FALSE(Table.InBulk);
}

TEST_F(KvBulkRun, NamesKindAndKeys)
{
    const std::pair<TImportMode, TKvBulkKind> Kinds[] = {
        {imUpdate, bkUpdate}, {imAppendUpdate, bkAppendUpdate}, {imDelete, bkDelete}};
    Import.DatasetKeys = "id;Name";
    for (const auto& [Mode, Kind] : Kinds) {
        Import.Mode = Mode;
        Import.Execute();
        EXPECT_EQ(Table.Told.back().Kind, Kind);
        EXPECT_THAT(Table.Told.back().Keys, ElementsAre("ID", "NAME"));
    }
}

TEST_F(KvBulkRun, OfACopyBeginsOnceTheTableIsEmpty)
{
    Import.Execute();
    Import.Mode = imCopy;
    Import.DatasetKeys = "ID";
    Import.Execute();
    EXPECT_EQ(Table.Told.back().Kind, bkCopy);
    EXPECT_THAT(Table.Told.back().Keys, IsEmpty());
    EXPECT_EQ(Table.RecordsBefore, 0);
}

TEST_F(KvBulkRun, SaysWhenNobodyKnowsTheNumberOfRecords)
{
    Import.Rows.clear();
    Import.Execute();
    EXPECT_EQ(Table.Told[0].ExpectedRecords, -1);
}

TEST_F(KvBulkRun, EndsWhateverTheRunEndsWith)
{
    Import.OnBeforeUpdate = [](TKvImportBaseComponent&) { throw 7; };
    Import.Execute();
    EXPECT_EQ(Import.Statistic.Result, irFailed);
    EXPECT_EQ(Table.Told.size(), 1u);
    EXPECT_FALSE(Table.InBulk);
    EXPECT_EQ(Table.RecordTag, -1);
}

TEST_F(KvBulkRun, TagsRecordsByTheirNumberInTheSource)
{
    std::vector<std::int64_t> Failed;
    Import.OnErrorEvent = [&](auto&, const Exception& Error, bool&) { Failed.push_back(Error.Facts.Record); };
    Import.Execute();
    EXPECT_THAT(Table.Tags, ElementsAre(1, 3));
    EXPECT_THAT(Failed, ElementsAre(2));
    EXPECT_EQ(Table.RecordTag, -1);
}

} // namespace

} // namespace kv
