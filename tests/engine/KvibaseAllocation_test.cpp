// A record costs no memory that was not there before, once the longest texts were seen.
#include "KvAllocationCount.h"
#include "KvFormatSettings.h"
#include "KvTestRun.h"

namespace kv {

namespace {

/// Takes every record, passes it through the fields' conversion and checks, and keeps none.
class TNullDataSet final : public TDataSet
{
public:
    ~TNullDataSet() override { Close(); }

protected:
    void InternalOpen() override
    {
        AddField({.Name = "ID", .DataType = ftInteger, .Required = true});
        AddField({.Name = "QTY", .DataType = ftInteger});
        AddField({.Name = "DUE", .DataType = ftDate});
        AddField({.Name = "NET", .DataType = ftCurrency});
        AddField({.Name = "PAID", .DataType = ftBoolean});
        AddField({.Name = "NAME", .DataType = ftString, .Size = 60});
        AddField({.Name = "CITY", .DataType = ftString, .Size = 60});
        AddField({.Name = "NOTE", .DataType = ftMemo});
    }
    void InternalClose() override {}
    void InternalFirst() override {}
    void InternalNext() override {}
    bool InternalEof() override { return true; }
    int InternalRecordCount() override { return 0; }
    TVariant InternalGetValue(const TField&) override { return Null; }
    void InternalInsert(const TRecordBuffer&) override {}
    void InternalUpdate(const TRecordBuffer&) override {}
    void InternalDelete() override {}
    bool InternalLocate(std::span<TField* const>, std::span<const TVariant>, TLocateOptions) override
    {
        return false;
    }
};

/// The same two records over and over, lent.
class TEndlessImport final : public TKvImportBaseComponent
{
public:
    int Records = 0;

    static inline const std::string Long = std::string(50, 'x');
    static inline const std::string Longer = std::string(200, 'y');

protected:
    void GoFirst() override { Row = 0; }
    bool NeedMore() override { return Row < Records; }
    void GoNext() override { ++Row; }
    TVariant GetFieldValue(const TVariant& Source) override
    {
        static const std::string_view Rows[2][8] = {
            {"1", "12", "12/31/2002", "1,234.50", "True", "Ada", Long, Longer},
            {"2", "", "02/28/2003", "7", "False", Long, "Mill", Long}};
        return TVariant::Borrow(Rows[Row % 2][static_cast<std::size_t>(Source.Text()[0] - '0')]);
    }

private:
    int Row = 0;
};

struct KvibaseAllocation : testing::TestWithParam<TImportMode>
{
    KvibaseAllocation()
    {
        Table.Open();
        Import.SetDataSet(&Table);
        Import.SetMappings({"ID=0", "QTY=1", "DUE=2", "NET=3", "PAID=4", "NAME=5", "CITY=6", "NOTE=7"});
        Import.Mode = GetParam();
        Import.DatasetKeys = "ID;NAME";
        Import.AnimatedStatus = false;
    }

    std::size_t AllocationsOver(int Records)
    {
        Import.Records = Records;
        const auto Before = AllocationCount();
        Import.Execute();
        const auto Result = AllocationCount() - Before;
        EXPECT_EQ(Import.Statistic.Result, irExecuted) << Import.ErrorMessage();
        EXPECT_EQ(Import.Statistic.TotalImported, Records);
        EXPECT_EQ(Import.Statistic.TotalErrors, 0);
        return Result;
    }

    TKnownFormats Formats;
    TNullDataSet Table;
    TEndlessImport Import;
};

TEST_P(KvibaseAllocation, LongRunsAllocateNoMoreThanShortOnes)
{
    AllocationsOver(2);                             // the buffers of the dataset grow
    EXPECT_EQ(AllocationsOver(1000), AllocationsOver(2));
}

INSTANTIATE_TEST_SUITE_P(, KvibaseAllocation, testing::Values(imAppend, imAppendUpdate),
                         [](const auto& Info) { return Info.param == imAppend ? "Append" : "AppendUpdate"; });

} // namespace

} // namespace kv
