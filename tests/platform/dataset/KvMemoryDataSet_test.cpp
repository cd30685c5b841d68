#include "KvMemoryDataSet.h"

#include <random>

#include "KvException.h"
#include "KvText.h"

namespace kv {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct KvMemoryDataSet : testing::Test
{
    KvMemoryDataSet()
    {
        Table.SetFieldDefs({{.Name = "ID", .DataType = ftInteger}, {.Name = "NAME"}});
        Table.Open();
    }

    void Add(const TVariant& Id, const TVariant& Name)
    {
        Table.Append();
        Table.Fields(0).SetValue(Id);
        Table.Fields(1).SetValue(Name);
        Table.Post();
    }
    std::string Record() { return Table.Fields(0).AsString() + " " + Table.Fields(1).AsString(); }
    std::vector<std::string> Records()
    {
        std::vector<std::string> Result;
        for (Table.First(); !Table.Eof(); Table.Next())
            Result.push_back(Record());
        return Result;
    }
    static TVariant Both(const TVariant& First, const TVariant& Second)
    {
        auto Result = TVariant::Array(0, 1);
        Result[0] = First;
        Result[1] = Second;
        return Result;
    }

    TMemoryDataSet Table;
};

TEST_F(KvMemoryDataSet, TellsItsFieldsWhileItIsClosed)
{
    Table.Close();
    const auto Defs = Table.DescribeFields();
    ASSERT_EQ(Defs.size(), 2u);
    EXPECT_EQ(Defs[0].Name, "ID");
    EXPECT_EQ(Defs[0].DataType, ftInteger);
    EXPECT_EQ(Table.KeyFields(), "");
    EXPECT_FALSE(Table.Active());
}

TEST_F(KvMemoryDataSet, IsEmptyAtFirst)
{
    EXPECT_TRUE(Table.Eof());
    EXPECT_EQ(Table.RecordCount(), 0);
    EXPECT_TRUE(Table.Fields(0).IsNull());
}

TEST_F(KvMemoryDataSet, KeepsTheOrderInWhichRecordsCame)
{
    Add(2, "b");
    Add(1, "a");
    EXPECT_EQ(Record(), "1 a");                     // the one that was posted is current
    EXPECT_THAT(Records(), ElementsAre("2 b", "1 a"));
    EXPECT_EQ(Table.RecordCount(), 2);
}

TEST_F(KvMemoryDataSet, RecordsOutliveClose)
{
    Add(1, "a");
    Add(2, "b");
    Table.Close();
    Table.Open();
    EXPECT_EQ(Record(), "1 a");
    EXPECT_THAT(Records(), ElementsAre("1 a", "2 b"));
}

TEST_F(KvMemoryDataSet, OtherFieldsDropTheRecords)
{
    Add(1, "a");
    Table.SetFieldDefs({{.Name = "X"}});
    EXPECT_FALSE(Table.Active());
    Table.Open();
    EXPECT_EQ(Table.RecordCount(), 0);
    EXPECT_EQ(Table.FieldCount(), 1);
}

TEST_F(KvMemoryDataSet, ChangesOnlyTheFieldsThatWereAssigned)
{
    Add(1, "a");
    Table.Edit();
    Table.Fields(1).SetValue("z");
    Table.Post();
    EXPECT_THAT(Records(), ElementsAre("1 z"));
}

TEST_F(KvMemoryDataSet, FieldsThatWereNotAssignedStayNull)
{
    Table.Append();
    Table.Fields(1).SetValue("a");
    Table.Post();
    EXPECT_TRUE(Table.Fields(0).IsNull());
}

// --- Deleting ---------------------------------------------------------------------------------------

TEST_F(KvMemoryDataSet, RecordAfterADeletedOneBecomesCurrent)
{
    for (int I = 1; I <= 4; ++I)
        Add(I, "x");
    Table.Locate("ID", 2);
    Table.Delete();
    EXPECT_EQ(Record(), "3 x");
    Table.Locate("ID", 4);
    Table.Delete();
    EXPECT_TRUE(Table.Eof());
    EXPECT_THAT(Records(), ElementsAre("1 x", "3 x"));
}

TEST_F(KvMemoryDataSet, DeletingWhileNotEofEmptiesIt)
{
    for (int I = 1; I <= 10; ++I)
        Add(I, "x");
    int Deleted = 0;
    for (Table.First(); !Table.Eof(); ++Deleted)
        Table.Delete();
    EXPECT_EQ(Deleted, 10);
    EXPECT_EQ(Table.RecordCount(), 0);
    Add(1, "new");
    EXPECT_THAT(Records(), ElementsAre("1 new"));
}

TEST_F(KvMemoryDataSet, EmptiedTableIsLocatedAnew)
{
    Add(1, "old");
    ASSERT_TRUE(Table.Locate("ID", 1));
    Table.Delete();
    EXPECT_FALSE(Table.Locate("ID", 1));
    Add(2, "b");
    Add(1, "new");
    ASSERT_TRUE(Table.Locate("ID", 1));
    EXPECT_EQ(Record(), "1 new");
}

// --- Locate -----------------------------------------------------------------------------------------

TEST_F(KvMemoryDataSet, LocatesTheFirstOfEqualKeys)
{
    Add(1, "a");
    Add(2, "first");
    Add(2, "second");
    EXPECT_TRUE(Table.Locate("ID", 2));
    EXPECT_EQ(Record(), "2 first");
}

TEST_F(KvMemoryDataSet, FailedLocateKeepsTheCursor)
{
    Add(1, "a");
    Add(2, "b");
    Table.First();
    EXPECT_FALSE(Table.Locate("ID", 3));
    EXPECT_FALSE(Table.Locate("NAME", "z", {loPartialKey}));
    EXPECT_EQ(Record(), "1 a");
}

TEST_F(KvMemoryDataSet, LocatesSeveralKeysTogether)
{
    Add(1, "a");
    Add(2, "a");
    Add(2, "b");
    EXPECT_TRUE(Table.Locate("NAME;ID", Both("a", 2)));
    EXPECT_EQ(Record(), "2 a");
    EXPECT_FALSE(Table.Locate("NAME;ID", Both("b", 1)));
}

TEST_F(KvMemoryDataSet, NullFindsNullAndNothingElse)
{
    Add(0, "");
    Add(Null, "null id");
    Add(3, Null);
    EXPECT_TRUE(Table.Locate("ID", Null));
    EXPECT_EQ(Record(), " null id");
    EXPECT_TRUE(Table.Locate("NAME", Null));
    EXPECT_EQ(Record(), "3 ");
    EXPECT_TRUE(Table.Locate("NAME;ID", Both(Null, 3)));
    EXPECT_FALSE(Table.Locate("NAME;ID", Both(Null, 0)));
}

struct TOptionRow
{
    const char* Wanted;
    TLocateOptions Options;
    const char* Found;                              // none for nothing
};

TEST_F(KvMemoryDataSet, OptionsWidenWhatTextEquals)
{
    Add(1, "Mill Street");
    Add(2, "mill");
    const TOptionRow Rows[] = {
        {"mill", {}, "2 mill"},
        {"MILL", {}, nullptr},
        {"MILL", {loCaseInsensitive}, "2 mill"},
        {"MILL STREET", {loCaseInsensitive}, "1 Mill Street"},
        {"Mill", {loPartialKey}, "1 Mill Street"},
        {"MI", {loPartialKey}, nullptr},
        {"MI", {loPartialKey, loCaseInsensitive}, "1 Mill Street"},
        {"", {loPartialKey}, "1 Mill Street"},
        {"mill street 5", {loPartialKey, loCaseInsensitive}, nullptr}};
    for (const auto& Row : Rows) {
        const bool Found = Table.Locate("NAME", Row.Wanted, Row.Options);
        EXPECT_EQ(Found ? Record() : "nothing", Row.Found ? Row.Found : "nothing") << Row.Wanted;
    }
}

TEST_F(KvMemoryDataSet, NumbersAreNotFoundByTheirBeginning)
{
    Add(12, "a");
    EXPECT_FALSE(Table.Locate("ID", 1, {loPartialKey}));
    EXPECT_TRUE(Table.Locate("ID", 12, {loPartialKey, loCaseInsensitive}));
}

TEST_F(KvMemoryDataSet, NumbersOfOtherKindsAreFoundAsTheyAre)
{
    Table.SetFieldDefs({{.Name = "ID", .DataType = ftBCD}, {.Name = "NAME"}});
    Table.Open();
    Add(5, "integer");
    Add(2.5, "double");
    Add(TCurrency{12345}, "currency");
    EXPECT_TRUE(Table.Locate("ID", "5.0"));
    EXPECT_EQ(Table.Fields(1).AsString(), "integer");
    EXPECT_TRUE(Table.Locate("ID", TCurrency{25000}));
    EXPECT_EQ(Table.Fields(1).AsString(), "double");
    EXPECT_TRUE(Table.Locate("ID", 1.2345));
    EXPECT_EQ(Table.Fields(1).AsString(), "currency");
    EXPECT_FALSE(Table.Locate("ID", 1.23456));
}

// --- The index against a walk -----------------------------------------------------------------------

/// What a table holds, as a plain list.
struct TModelRow
{
    TVariant Id, Name;
};

bool Equal(const TVariant& Stored, const TVariant& Wanted, bool CaseInsensitive)
{
    return CaseInsensitive && Stored.IsString() && Wanted.IsString() ? SameText(Stored.Text(), Wanted.Text())
                                                                     : Stored == Wanted;
}

TEST_F(KvMemoryDataSet, IndexFindsWhatAWalkWouldFind)
{
    const auto Seed = std::random_device{}();
    SCOPED_TRACE("seed " + std::to_string(Seed));
    std::mt19937 Random(Seed);
    const auto Below = [&](unsigned Limit) { return static_cast<int>(Random() % Limit); };
    const auto SomeId = [&] { return Below(8) == 0 ? TVariant(Null) : TVariant(Below(12)); };
    const auto SomeName = [&] {
        static constexpr const char* Names[] = {"a", "A", "b", "B", "", "abc", "ABC"};
        return Below(8) == 0 ? TVariant(Null) : TVariant(Names[Below(std::size(Names))]);
    };
    std::vector<TModelRow> Model;
    const auto Find = [&](const TVariant& Id, const TVariant& Name, bool CaseInsensitive) {
        return std::ranges::find_if(Model, [&](const TModelRow& Row) {
            return Row.Id == Id && Equal(Row.Name, Name, CaseInsensitive);
        });
    };

    for (int Step = 0; Step < 4000; ++Step) {
        const auto Id = SomeId(), Name = SomeName();
        if (Below(3) == 0) {
            Add(Id, Name);
            Model.push_back({Id, Name});
            continue;
        }
        const bool CaseInsensitive = Below(2) == 0;
        const auto Options = CaseInsensitive ? TLocateOptions{loCaseInsensitive} : TLocateOptions{};
        const auto Expected = Find(Id, Name, CaseInsensitive);
        ASSERT_EQ(Table.Locate("ID;NAME", Both(Id, Name), Options), Expected != Model.end());
        if (Expected == Model.end())
            continue;
        ASSERT_EQ(Record(), Expected->Id.ToText() + " " + Expected->Name.ToText());
        if (Below(2) == 0) {
            Table.Delete();
            Model.erase(Expected);
        } else {
            *Expected = {SomeId(), SomeName()};
            Table.Edit();
            Table.Fields(0).SetValue(Expected->Id);
            Table.Fields(1).SetValue(Expected->Name);
            Table.Post();
        }
    }
    std::vector<std::string> Expected;
    for (const auto& Row : Model)
        Expected.push_back(Row.Id.ToText() + " " + Row.Name.ToText());
    EXPECT_EQ(Records(), Expected);
}

} // namespace

} // namespace kv
