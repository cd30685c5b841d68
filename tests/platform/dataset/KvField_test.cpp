#include "KvField.h"

#include "KvException.h"
#include "KvMemoryDataSet.h"

namespace kv {

namespace {

struct KvField : testing::Test
{
    KvField()
    {
        Table.SetFieldDefs({{.Name = "ID", .DataType = ftInteger, .Required = true},
                            {.Name = "Name", .DataType = ftString, .Size = 40},
                            {.Name = "SUM", .DataType = ftFloat, .ReadOnly = true},
                            {.Name = "MADE", .DataType = ftDateTime, .Required = true, .HasDefault = true,
                             .Label = "Made on"}});
        Table.Open();
    }

    TField& Name() { return Table.Fields(1); }

    static std::string MessageOf(const std::function<void()>& Act)
    {
        try {
            Act();
        }
        catch (const EDatabaseError& Error) {
            return Error.Message;
        }
        return "nothing was raised";
    }

    TMemoryDataSet Table;
};

TEST_F(KvField, TellsWhatWasDeclared)
{
    const auto& Id = Table.Fields(0);
    EXPECT_EQ(&Id.DataSet(), &Table);
    EXPECT_EQ(Id.FieldName(), "ID");
    EXPECT_EQ(Id.Index(), 0);
    EXPECT_EQ(Id.DataType(), ftInteger);
    EXPECT_TRUE(Id.Required());
    EXPECT_FALSE(Id.ReadOnly());
    EXPECT_EQ(Name().Size(), 40);
    EXPECT_TRUE(Table.Fields(2).ReadOnly());
    EXPECT_TRUE(Table.Fields(3).HasDefault());
    EXPECT_EQ(Table.Fields(3).Label(), "Made on");
    EXPECT_EQ(Id.Label(), "");
    EXPECT_EQ(Name().Def().Size, 40);
}

TEST_F(KvField, IsFoundWithoutRegardToCase)
{
    EXPECT_EQ(Table.FindField("NAME"), &Name());
    EXPECT_EQ(&Table.FieldByName("name"), &Name());
    EXPECT_EQ(Table.FindField("NAMES"), nullptr);
    EXPECT_EQ(Table.FindField(""), nullptr);
    EXPECT_EQ(MessageOf([&] { Table.FieldByName("CITY"); }), "TMemoryDataSet: field 'CITY' not found");
}

TEST_F(KvField, MessagesCallTheDatasetByItsName)
{
    Table.Name = "Orders";
    EXPECT_EQ(MessageOf([&] { Table.FieldByName("CITY"); }), "Orders: field 'CITY' not found");
}

TEST_F(KvField, ReadsWhatIsBeingWritten)
{
    Table.Append();
    EXPECT_TRUE(Name().IsNull());
    EXPECT_EQ(Name().AsString(), "");
    Name().SetValue("Ada");
    EXPECT_EQ(Name().Value(), "Ada");
    Name().SetAsString("Bob");
    EXPECT_EQ(Name().AsString(), "Bob");
    Name().Clear();
    EXPECT_TRUE(Name().IsNull());
}

TEST_F(KvField, FieldsThatAreNotAssignedKeepTheirStoredValuesInAnEdit)
{
    Table.Append();
    Table.Fields(0).SetValue(1);
    Name().SetValue("Ada");
    Table.Post();
    Table.Edit();
    EXPECT_EQ(Name().AsString(), "Ada");
    Table.Fields(0).SetValue(2);
    EXPECT_EQ(Table.Fields(0).AsString(), "2");
    Table.Cancel();
    EXPECT_EQ(Table.Fields(0).AsString(), "1");
}

TEST_F(KvField, ReadOnlyFieldIsRefused)
{
    Table.Append();
    EXPECT_EQ(MessageOf([&] { Table.Fields(2).SetValue(1.5); }), "Field 'SUM' cannot be modified");
    EXPECT_EQ(MessageOf([&] { Table.Fields(2).Clear(); }), "Field 'SUM' cannot be modified");
}

TEST_F(KvField, NothingIsWrittenOutsideARecord)
{
    EXPECT_EQ(MessageOf([&] { Name().SetValue("Ada"); }), "TMemoryDataSet: not in edit or insert mode");
    EXPECT_EQ(MessageOf([&] { Name().Clear(); }), "TMemoryDataSet: not in edit or insert mode");
}

TEST_F(KvField, ValueIsACopyAndPeekedValueALoan)
{
    const std::string Long(100, 'x');
    Table.Append();
    Name().SetValue(std::string(40, 'x'));
    Table.Fields(0).SetValue(1);
    Table.Post();
    const TVariant Copy = Name().Value();
    EXPECT_EQ(Name().PeekValue().Text().data(), Name().PeekValue().Text().data());
    EXPECT_NE(Copy.Text().data(), Name().PeekValue().Text().data());
    Table.Delete();
    EXPECT_EQ(Copy.ToText(), std::string(40, 'x'));
}

TEST_F(KvField, TakesALoanOfItself)
{
    Table.Append();
    Name().SetValue(std::string(40, 'x'));
    Name().SetValue(Name().PeekValue());
    EXPECT_EQ(Name().AsString(), std::string(40, 'x'));
}

TEST_F(KvField, CopiesWhatItIsLent)
{
    Table.Append();
    {
        const std::string Lent(40, 'y');
        Name().SetValue(TVariant::Borrow(Lent));
    }
    EXPECT_EQ(Name().AsString(), std::string(40, 'y'));
}

TEST_F(KvField, DisplayWidthShowsAnyUsualValue)
{
    const std::pair<TFieldType, int> Rows[] = {
        {ftSmallint, 6}, {ftInteger, 11},  {ftAutoInc, 11}, {ftWord, 5},  {ftLargeint, 20}, {ftBoolean, 5},
        {ftFloat, 20},   {ftCurrency, 20}, {ftBCD, 20},     {ftDate, 10}, {ftTime, 12},     {ftDateTime, 23},
        {ftGuid, 38},    {ftString, 50},   {ftMemo, 50},    {ftBlob, 50}, {ftVariant, 50}};
    for (const auto& [Type, Width] : Rows)
        EXPECT_EQ(TField(Table, 0, {.Name = "X", .DataType = Type}).DisplayWidth(), Width) << Type;
    EXPECT_EQ(TField(Table, 0, {.Name = "X", .DataType = ftString, .Size = 7}).DisplayWidth(), 7);
    EXPECT_EQ(TField(Table, 0, {.Name = "X", .DataType = ftInteger, .Size = 7}).DisplayWidth(), 11);
}

TEST_F(KvField, FamiliesOfTypesAreDisjoint)
{
    for (int I = ftUnknown; I <= ftVariant; ++I) {
        const auto Type = static_cast<TFieldType>(I);
        EXPECT_LE(IsTextField(Type) + IsBinaryField(Type) + IsNumericField(Type) + IsDateTimeField(Type), 1)
            << I;
    }
    EXPECT_TRUE(IsNumericField(ftAutoInc));
    EXPECT_TRUE(IsNumericField(ftBCD));
    EXPECT_FALSE(IsNumericField(ftBoolean));
    EXPECT_TRUE(IsDateTimeField(ftTime));
    EXPECT_TRUE(IsTextField(ftFmtMemo));
    EXPECT_TRUE(IsBinaryField(ftGraphic));
}

} // namespace

} // namespace kv
