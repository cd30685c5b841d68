#include "KvColumnMap.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "KvException.h"
#include "KvMemoryDataSet.h"

namespace kv {

namespace {

using testing::ElementsAre;

/// ID, CITY, TOTAL (computed) and NOTE (required).
struct TOrders : TMemoryDataSet
{
    TOrders()
    {
        SetFieldDefs({{.Name = "ID", .DataType = ftInteger},
                      {.Name = "CITY", .DataType = ftString, .Size = 20},
                      {.Name = "TOTAL", .DataType = ftFloat, .ReadOnly = true},
                      {.Name = "NOTE", .DataType = ftMemo, .Required = true}});
        Open();
    }
};

std::vector<TSourceColumn> Columns(const std::vector<std::string>& Names)
{
    std::vector<TSourceColumn> Result;
    for (const auto& Name : Names)
        Result.push_back({.Source = "Field" + std::to_string(Result.size() + 1), .Name = Name});
    return Result;
}

template <class TAction> std::string MessageOf(TAction Action)
{
    try {
        Action();
    }
    catch (const Exception& Error) {
        return Error.Message;
    }
    return "nothing was raised";
}

/// Under the rule of a source that has constants.
TColumnMap MapGiven(const std::vector<std::string>& Lines, const std::vector<TSourceColumn>& Given, const TDataSet& Destination)
{
    return MapAsGiven(Lines, Given, Destination,
                      [&Given](const std::string& Source) { return RemarkOnConstant(Source, Given); });
}

TEST(KvColumnMap, JoinsByName)
{
    const TOrders Orders;
    const auto Map = MapByName(Columns({"city", "TOTAL", "x", "Id"}), Orders);
    EXPECT_THAT(Map.Lines, ElementsAre("CITY=Field1", "ID=Field4"));
    ASSERT_EQ(Map.FieldsWithout.size(), 2);
    EXPECT_EQ(Map.FieldsWithout[0].Remark, "computed by the database");
    EXPECT_EQ(Map.FieldsWithout[1].Remark, "new records must have a value");
}

TEST(KvColumnMap, RaisesWhenNoNameFits)
{
    const TOrders Orders;
    EXPECT_EQ(MessageOf([&] { MapByName(Columns({"A", "B"}), Orders); }),
              "no column has the name of a field; the columns are A, B; the fields are ID, CITY, TOTAL, NOTE");
}

TEST(KvColumnMap, JoinsByPosition)
{
    const TOrders Orders;
    const auto Map = MapByPosition(Columns({"", "", "", "", ""}), Orders);
    EXPECT_THAT(Map.Lines, ElementsAre("ID=Field1", "CITY=Field2", "NOTE=Field4"));
    EXPECT_EQ(Map.Columns[2].Remark, "its field is computed by the database: not imported");
    EXPECT_EQ(Map.Columns[4].Remark, "the table has no more fields: not imported");
}

TEST(KvColumnMap, TakesLinesAsTheyAreGiven)
{
    const TOrders Orders;
    const auto Map = MapGiven({" city = Field2", "NOTE=Text11-20", "ID=7"}, Columns({"", ""}), Orders);
    EXPECT_THAT(Map.Lines, ElementsAre("CITY=Field2", "NOTE=Text11-20", "ID=7"));
    EXPECT_EQ(Map.Columns[0].Remark, "");
    EXPECT_EQ(Map.Columns[1].Remark, "");
    EXPECT_EQ(Map.Columns[2].Remark, "no column but a constant: every record gets this text");
    EXPECT_EQ(Map.Columns[3].Remark, "no --map names it: not imported");
}

TEST(KvColumnMap, PointsToTheColumnThatAConstantMayMean)
{
    const TOrders Orders;
    EXPECT_EQ(MapGiven({"CITY=Town"}, Columns({"ID", "town"}), Orders).Columns[0].Remark,
              "no column but a constant: every record gets this text (the column of that name is Field2)");
}

TEST(KvColumnMap, ASourceMayRefuseAStranger)
{
    const TOrders Orders;
    const auto Refuse = [](const std::string& Source) -> std::string { throw Exception(Source + " is no column"); };
    EXPECT_EQ(MessageOf([&] { MapAsGiven({"CITY=Town"}, Columns({"ID"}), Orders, Refuse); }), "Town is no column");
}

TEST(KvColumnMap, RefusesToWriteComputedFields)
{
    const TOrders Orders;
    EXPECT_EQ(MessageOf([&] { MapGiven({"TOTAL=Field1"}, Columns({""}), Orders); }),
              "'TOTAL=Field1': its field is computed by the database: not imported");
}

TEST(KvColumnMap, DoesNotNameFieldsThatMappingLinesCannotName)
{
    TMemoryDataSet Odd;
    Odd.SetFieldDefs({{.Name = "A=B"}, {.Name = " C"}, {.Name = "D"}});
    Odd.Open();
    const auto Map = MapByName(Columns({"A=B", " C", "D"}), Odd);
    EXPECT_THAT(Map.Lines, ElementsAre("D=Field3"));
    EXPECT_EQ(Map.Columns[0].Remark, "the name of its field cannot stand in a mapping: not imported");
}

TEST(KvColumnMap, ListsKeysAsTheFieldsAreSpelled)
{
    const TOrders Orders;
    const auto Map = MapByName(Columns({"ID", "CITY"}), Orders);
    EXPECT_EQ(KeyList({"city", "id", "CITY"}, Map, Orders), "CITY;ID");
    EXPECT_EQ(MessageOf([&] { KeyList({"NR"}, Map, Orders); }),
              "--keys: there is no field 'NR'; the fields are ID, CITY, TOTAL, NOTE");
    EXPECT_EQ(MessageOf([&] { KeyList({"NOTE"}, Map, Orders); }),
              "--keys: the field 'NOTE' gets no column, so no record can be found by it");
}

TEST(KvColumnMap, KnowsAHeaderByItsNames)
{
    const TOrders Orders;
    EXPECT_TRUE(LooksLikeHeader({"id", " City ", "x"}, Orders));
    EXPECT_FALSE(LooksLikeHeader({"1", "City"}, Orders));
    EXPECT_FALSE(LooksLikeHeader({}, Orders));
}

} // namespace

} // namespace kv
