#include "KvColumnMap.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

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

/// A source that is nothing but its columns.
class TColumnsOnly : public TSource
{
public:
    explicit TColumnsOnly(std::vector<TSourceColumn> Given) : List(std::move(Given)) {}

    TKvImportBaseComponent& Component() override { throw std::logic_error("nothing is imported"); }
    std::string DisplayName() const override { return "columns"; }
    std::string_view PlaceWord() const override { return "row"; }
    bool HasNames() const override { return true; }
    std::vector<TSourceColumn> Columns() override { return List; }
    TSourceRows FirstRows(int) override { return {}; }

private:
    const std::vector<TSourceColumn> List;
};

struct TColumnsWithoutConstants : TColumnsOnly
{
    using TColumnsOnly::TColumnsOnly;

    std::string RemarkOnStranger(const std::string& Name) override
    {
        throw Exception(Name + " is no column");
    }
};

TColumnMap MapGiven(const std::vector<std::string>& Lines, const std::vector<TSourceColumn>& Given,
                    const TDataSet& Destination)
{
    TColumnsOnly Source(Given);
    return MapAsGiven(Lines, Source, Destination);
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
              "no column has the name of a field; the columns are A, B; "
              "the fields are ID, CITY, TOTAL, NOTE; "
              "--map or --by-position joins them otherwise");
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
    const auto Map = MapGiven({" city = Field2", "ID=7"}, Columns({"", ""}), Orders);
    EXPECT_THAT(Map.Lines, ElementsAre("CITY=Field2", "ID=7"));
    EXPECT_EQ(Map.Columns[0].Remark, "");
    EXPECT_EQ(Map.Columns[1].Remark, "no column but a constant: every record gets this text");
    EXPECT_EQ(Map.Columns[2].Remark, "no --map names it: not imported");
}

TEST(KvColumnMap, AColumnMayBeWrittenInAnyCase)
{
    const TOrders Orders;
    const auto Map = MapGiven({"CITY=FIELD1", "ID=field2"}, Columns({"", ""}), Orders);
    EXPECT_THAT(Map.Lines, ElementsAre("CITY=Field1", "ID=Field2"));
    EXPECT_EQ(Map.Columns.size(), 2);
}

TEST(KvColumnMap, ColumnsThatDifferInCaseOnlyAreToldApart)
{
    const TOrders Orders;
    const std::vector<TSourceColumn> Twins = {{.Source = "town", .Name = {}}, {.Source = "Town", .Name = {}}};
    EXPECT_THAT(MapGiven({"CITY=Town", "NOTE=town"}, Twins, Orders).Lines,
                ElementsAre("CITY=Town", "NOTE=town"));
}

TEST(KvColumnMap, ASourceMayRefuseAStranger)
{
    const TOrders Orders;
    TColumnsWithoutConstants Source(Columns({"ID"}));
    EXPECT_EQ(MessageOf([&] { MapAsGiven({"CITY=Town"}, Source, Orders); }), "Town is no column");
}

TEST(KvColumnMap, WhatIsNoPairIsRefused)
{
    for (const std::string Line : {"ID", "ID=", "=Field1", "", " = "})
        EXPECT_EQ(MessageOf([&] { SplitMapPair(Line); }),
                  "--map: '" + Line + "' is no pair such as ID=Field1: a field and a column");
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
