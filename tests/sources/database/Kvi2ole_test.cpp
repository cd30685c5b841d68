#include "Kvi2ole.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "KvAccessSession.h"
#include "KvException.h"
#include "KvFormatSettings.h"
#include "KvMemoryDataSet.h"

namespace kv {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using TRows = std::vector<std::vector<TVariant>>;
using TLines = std::vector<std::string>;

struct TFakeTable
{
    std::vector<TAccessField> Fields;
    TRows Rows;
};

/// What the engines of a test open, and what they were asked to do.
struct TFakeDatabase
{
    std::map<std::string, TFakeTable> Tables;
    TLines Log;
    bool FailsAtSecondRow = false;
    int RefusesAtRow = -1;                          // the value of field 1
    std::size_t EndsAt = ~std::size_t{0};           // the move there fails
    std::chrono::milliseconds Patience{};
    bool KeepsWaiting = false;                      // until somebody gives up
    std::string Gone;                               // a table that is listed and not there
};

class TFakeRecordset final : public TAccessRecordset
{
public:
    TFakeRecordset(TFakeDatabase& TheFake, const TFakeTable& TheTable) : Fake(TheFake), Table(TheTable) {}

    const std::vector<TAccessField>& Fields() const override { return Table.Fields; }
    TVariant Value(int Index) override
    {
        if (Fake.FailsAtSecondRow && Row == 1)
            throw EDatabaseError("record 2 is damaged");
        if (Fake.RefusesAtRow == static_cast<int>(Row) && Index == 1)
            throw EDatabaseError("shop.mdb: it cannot be read",
                                 {.FileName = "shop.mdb", .Place = "record 3", .Field = "CITY"});
        return TVariant(std::as_const(Table.Rows[Row][static_cast<std::size_t>(Index)]));
    }
    void MoveFirst() override
    {
        Fake.Log.push_back("MoveFirst");
        Row = 0;
    }
    void MoveNext() override
    {
        if (++Row == Fake.EndsAt)
            throw EDatabaseError("shop.mdb: damaged", {.FileName = "shop.mdb"});
    }
    bool Eof() const override { return Row >= Table.Rows.size(); }
    int RecordCount() override { return static_cast<int>(Table.Rows.size()); }
    void Close() override { Fake.Log.push_back("Recordset.Close"); }

private:
    TFakeDatabase& Fake;
    const TFakeTable& Table;
    std::size_t Row = 0;
};

class TFakeOpenDatabase final : public TAccessDatabase
{
public:
    explicit TFakeOpenDatabase(TFakeDatabase& TheFake) : Fake(TheFake)
    {
        for (const auto& [Name, Table] : Fake.Tables)
            Defs.push_back({.Name = Name, .IsSystem = Name.starts_with("MSys")});
    }

    const std::vector<TAccessTable>& TableDefs() override { return Defs; }
    std::unique_ptr<TAccessRecordset> OpenRecordset(const std::string& Name, int Type, int Options,
                                                    int Locking) override
    {
        Fake.Log.push_back("OpenRecordset " + Name + " " + std::to_string(Type) + " " +
                           std::to_string(Options) + " " + std::to_string(Locking));
        if (!Fake.Tables.contains(Name) || Name == Fake.Gone)
            throw EDatabaseError("shop.mdb: has no table " + Name);
        return std::make_unique<TFakeRecordset>(Fake, Fake.Tables[Name]);
    }
    void Close() override { Fake.Log.push_back("Database.Close"); }

private:
    TFakeDatabase& Fake;
    std::vector<TAccessTable> Defs;
};

class TFakeEngine final : public TAccessEngine
{
public:
    TFakeEngine(TFakeDatabase& TheFake, std::string Class) : Fake(TheFake) { Fake.Log.push_back(Class); }

    std::unique_ptr<TAccessDatabase> OpenDatabase(const std::string& FileName) override
    {
        Fake.Log.push_back("OpenDatabase " + FileName);
        if (FileName != "shop.mdb")
            throw EDatabaseError(FileName + ": is not an Access database");
        while (Fake.KeepsWaiting)
            if (!Continue())
                throw EDatabaseError("shop.mdb: reading was canceled by user", {.Rule = erCancelled});
        return std::make_unique<TFakeOpenDatabase>(Fake);
    }

    void SetPatience(std::chrono::milliseconds Value) override { Fake.Patience = Value; }
    void SetContinue(std::function<bool()> Value) override { Continue = std::move(Value); }

private:
    TFakeDatabase& Fake;
    std::function<bool()> Continue;
};

/// An observer who lets a run go on until it has been asked so many times.
struct TPatience final : TKvIRunObserver
{
    explicit TPatience(int Times) : Left(Times) {}
    bool KeepsRunning() override { return Left-- > 0; }
    int Left;
};

template <class TAction> std::string MessageOf(TAction Action)
{
    try {
        Action();
    }
    catch (const Exception& Error) {
        return Error.Message;
    }
    return "";
}

/// The import with its protected parts in reach.
class TImport : public TKvImportFromAccess
{
public:
    using TKvImportFromAccess::AfterImport;
    using TKvImportFromAccess::BeforeImport;
    using TKvImportFromAccess::DetectAutoMapping;
    using TKvImportFromAccess::GetTotalCount;
    using TKvImportFromAccess::NeedMore;
    using TKvImportFromAccess::NotDefined;
    using TKvImportFromAccess::TableType;
};

/// A database "shop.mdb" with the table Orders of ten records (ID 1 to 10) behind both classes of engines,
/// and an import of it into Id and City.
class Kvi2ole : public testing::Test
{
protected:
    Kvi2ole()
    {
        auto& Orders = Fake.Tables["Orders"];
        Orders.Fields = {{.Name = "Id", .Type = afLong}, {.Name = "CITY", .Type = afText, .Size = 20}};
        for (int Id = 1; Id <= 10; ++Id)
            Orders.Rows.push_back({Id, "City " + std::to_string(Id)});
        Fake.Tables["MSysObjects"] = {{{.Name = "Id"}}, {}};
        for (const char* const Class : Classes)
            Before.push_back(RegisterAccessEngine(
                Class, [this, Class] { return std::make_unique<TFakeEngine>(Fake, Class); }));

        To.SetFieldDefs({{.Name = "Id"}, {.Name = "City"}});
        To.Open();
        Import.SetDataSet(&To);
        Import.AnimatedStatus = false;
        Import.Options = {};
        Import.SourceFileName = "shop.mdb";
        Import.TableName = "Orders";
        Import.SetMappings({"Id=Id", "City=CITY"});
    }
    ~Kvi2ole() override
    {
        for (std::size_t I = 0; I < Before.size(); ++I)
            RegisterAccessEngine(Classes[I], Before[I]);
    }

    TLines Run()
    {
        Import.Execute();
        EXPECT_EQ(Import.Statistic.Result, irExecuted) << Import.ErrorMessage();
        return Imported();
    }
    TLines Imported()
    {
        TLines Lines;
        for (To.First(); !To.Eof(); To.Next())
            Lines.push_back(To.Fields(0).AsString() + "|" + To.Fields(1).AsString());
        return Lines;
    }
    static TLines LinesOf(const TStrings& Strings) { return {Strings.begin(), Strings.end()}; }

    static constexpr const char* Classes[] = {"DAO.DBEngine.36", "DAO.DBEngine.35"};
    TFakeDatabase Fake;
    std::vector<TAccessEngineMaker> Before;
    TMemoryDataSet To;
    TImport Import;
};

TEST_F(Kvi2ole, HasTheDefaultsOfItsKind)
{
    const TImport New;
    EXPECT_EQ(New.TableType, teAccess);
    EXPECT_EQ(New.SourceFileName, "KvImport.MDB");
    EXPECT_EQ(New.TableName, "");
    EXPECT_EQ(New.RowFirst, 1);
    EXPECT_EQ(New.RowLast, RowLastMax);
    EXPECT_EQ(New.Extensions, TKvIAccessExtensions());
    EXPECT_EQ(TKvImportFromAccess::Extension(), ".MDB");
    EXPECT_EQ(TKvImportFromAccess::FillFileFilters(), "MS Access database (*.mdb)|*.MDB|All files (*.*)|*.*");
}

TEST_F(Kvi2ole, PublishesWhatItAdds)
{
    SetPropValue(Import, "TableName", "Customers");
    SetPropValue(Import, "SourceFileName", "a.mdb");
    SetPropValue(Import, "RowFirst", 2);
    SetPropValue(Import, "RowLast", 3);
    SetPropValue(Import, "Patience", 7);
    EXPECT_EQ(Import.Patience, 7);
    EXPECT_EQ(Import.TableName, "Customers");
    EXPECT_EQ(Import.SourceFileName, "a.mdb");
    EXPECT_EQ(Import.RowFirst, 2);
    EXPECT_EQ(Import.RowLast, 3);
}

TEST_F(Kvi2ole, ImportsEveryRecordOfTheTable)
{
    const auto Lines = Run();
    ASSERT_EQ(Lines.size(), 10);
    EXPECT_EQ(Lines.front(), "1|City 1");
    EXPECT_EQ(Lines.back(), "10|City 10");
    EXPECT_EQ(Import.Statistic.TotalCount, 10);
    EXPECT_EQ(Import.Statistic.TotalImported, 10);
    EXPECT_EQ(Import.Statistic.TotalAdded, 10);
}

TEST_F(Kvi2ole, OpensATableRecordsetAndClosesItAndTheDatabase)
{
    Run();
    EXPECT_THAT(Fake.Log, ElementsAre("DAO.DBEngine.36", "OpenDatabase shop.mdb",
                                      "OpenRecordset Orders 1 0 2", "MoveFirst",
                                      "Recordset.Close", "Database.Close"));
}

TEST_F(Kvi2ole, TheOlderEngineIsUsedWhereThereIsNoNewerOne)
{
    RegisterAccessEngine("DAO.DBEngine.36", nullptr);
    EXPECT_EQ(Run().size(), 10);
    EXPECT_EQ(Fake.Log[0], "DAO.DBEngine.35");
}

TEST_F(Kvi2ole, WithoutAnyEngineTheErrorOfTheOlderOneEndsTheRun)
{
    RegisterAccessEngine("DAO.DBEngine.36", []() -> std::unique_ptr<TAccessEngine> {
        throw EDatabaseError("no 36");
    });
    RegisterAccessEngine("DAO.DBEngine.35", []() -> std::unique_ptr<TAccessEngine> {
        throw EDatabaseError("no 35");
    });
    Import.Execute();
    EXPECT_EQ(Import.Statistic.Result, irFailed);
    EXPECT_EQ(Import.ErrorMessage(), "no 35");
}

TEST_F(Kvi2ole, RowFirstAndRowLastOnlySayHowManyRecordsToTake)
{
    Import.RowFirst = 3;
    Import.RowLast = 5;
    EXPECT_THAT(Run(), ElementsAre("1|City 1", "2|City 2", "3|City 3"));
}

TEST_F(Kvi2ole, WithTheExtensionRowFirstAndRowLastAreNumbersOfRecords)
{
    Import.Extensions = {xaSkipsToRowFirst};
    Import.RowFirst = 3;
    Import.RowLast = 5;
    EXPECT_THAT(Run(), ElementsAre("3|City 3", "4|City 4", "5|City 5"));
    EXPECT_EQ(Import.Statistic.TotalCount, 3);
    EXPECT_EQ(Import.RecordPlace(), "record 5");
    Import.RowFirst = 11;
    Import.RowLast = RowLastMax;
    EXPECT_EQ(Run().size(), 3) << "past the last there is nothing";
}

TEST_F(Kvi2ole, RecordsAreNamedByTheirNumber)
{
    Import.RowFirst = 3;
    Import.RowLast = 5;
    Run();
    EXPECT_EQ(Import.RecordPlace(), "record 3");
}

TEST_F(Kvi2ole, ARangeThatEndsBeforeItBeginsTakesNothing)
{
    Import.RowFirst = 5;
    Import.RowLast = 4;
    EXPECT_THAT(Run(), IsEmpty());
}

TEST_F(Kvi2ole, TheWidestRangeDoesNotOverflow)
{
    Import.RowFirst = -1000;
    EXPECT_EQ(Run().size(), 10);
}

TEST_F(Kvi2ole, ANameThatIsNoFieldImportsItself)
{
    Import.SetMappings({"Id=Id", "City=Rom"});
    EXPECT_EQ(Run()[4], "5|Rom");
}

TEST_F(Kvi2ole, FieldsAreFoundByTheirExactNames)
{
    Import.SetMappings({"Id=ID", "City=CITY"});
    EXPECT_EQ(Run()[0], "ID|City 1");
}

TEST_F(Kvi2ole, AnEmptyTableImportsNothing)
{
    Fake.Tables["Orders"].Rows.clear();
    EXPECT_THAT(Run(), IsEmpty());
    EXPECT_EQ(Import.Statistic.TotalCount, 0);
}

TEST_F(Kvi2ole, ValuesKeepTheirKinds)
{
    To.Close();
    To.SetFieldDefs({{.Name = "Id", .DataType = ftDateTime}, {.Name = "City", .DataType = ftCurrency}});
    To.Open();
    Fake.Tables["Orders"].Rows = {{TDateTime{-1.25}, TCurrency{12345}}, {Null, TCurrency{}}};
    Import.Execute();
    To.First();
    EXPECT_EQ(To.Fields(0).Value().DateTime().Days, -1.25);
    EXPECT_EQ(To.Fields(1).Value().Currency().Scaled, 12345);
    To.Next();
    EXPECT_TRUE(To.Fields(0).IsNull());
    EXPECT_EQ(To.Fields(1).Value().Currency().Scaled, 0);
}

TEST_F(Kvi2ole, AnExactNumberAsTextHasTheDecimalSeparatorOfTheDataFormats)
{
    Fake.Tables["Orders"].Fields[1].Type = afDecimal;
    Fake.Tables["Orders"].Rows = {{1, "0.123456"}};
    Import.DataFormats.DecimalSeparator = ',';
    Import.DataFormats.ThousandSeparator = '.';
    EXPECT_THAT(Run(), ElementsAre("1|0,123456"));
    Import.DataFormats.DecimalSeparator = '.';
    EXPECT_EQ(Run().back(), "1|0.123456");
}

TEST_F(Kvi2ole, TextWithAPointStaysAsItIs)
{
    Fake.Tables["Orders"].Rows = {{1, "St. Gallen"}};
    Import.DataFormats.DecimalSeparator = ',';
    EXPECT_THAT(Run(), ElementsAre("1|St. Gallen"));
}

TEST_F(Kvi2ole, ARunLooksUpEachColumnAnew)
{
    Run();
    Fake.Tables["Orders"].Fields = {{.Name = "CITY"}, {.Name = "Id"}};
    Import.SetMappings({"Id=Id"});
    EXPECT_EQ(Run()[10], "City 1|");
}

TEST_F(Kvi2ole, MissingPropertiesAreNamed)
{
    Import.TableName = "";
    EXPECT_EQ(MessageOf([this] { Import.Execute(); }), "Property TableName wasn't specified.");
    Import.SourceFileName = "";
    EXPECT_EQ(MessageOf([this] { Import.Execute(); }), "Property SourceFileName wasn't specified.");
    Import.SetDataSet(nullptr);
    EXPECT_EQ(MessageOf([this] { Import.Execute(); }), "Property DataSet wasn't specified.");
}

TEST_F(Kvi2ole, ErrorsOfTheDatabaseEndTheRun)
{
    Import.TableName = "Customers";
    Import.Execute();
    EXPECT_EQ(Import.Statistic.Result, irFailed);
    EXPECT_EQ(Import.ErrorMessage(), "shop.mdb: has no table Customers");
    Import.SourceFileName = "other.mdb";
    Import.Execute();
    EXPECT_EQ(Import.ErrorMessage(), "other.mdb: is not an Access database");
}

TEST_F(Kvi2ole, AValueThatCannotBeReadEndsTheRun)
{
    Fake.FailsAtSecondRow = true;
    Import.Execute();
    EXPECT_EQ(Import.Statistic.Result, irFailed);
    EXPECT_EQ(Import.ErrorMessage(), "record 2 is damaged");
    EXPECT_THAT(Imported(), ElementsAre("1|City 1"));
}

TEST_F(Kvi2ole, WithTheExtensionAValueThatCannotBeReadIsAnErrorOfItsRecord)
{
    Fake.RefusesAtRow = 2;
    Import.RowLast = 4;
    Import.Execute();
    EXPECT_EQ(Import.Statistic.Result, irFailed);
    Import.Extensions = {xaUnreadableValues};
    TLines Errors;
    Import.OnErrorEvent = [&](auto&, const Exception& Error, bool&) { Errors.push_back(Error.Message); };
    Import.Execute();
    EXPECT_EQ(Import.Statistic.Result, irExecuted);
    EXPECT_EQ(Import.Statistic.TotalImported, 4);
    EXPECT_EQ(Import.Statistic.TotalAdded, 3);
    EXPECT_THAT(Errors, ElementsAre("shop.mdb: it cannot be read"));
    Fake.RefusesAtRow = -1;
    Fake.FailsAtSecondRow = true;
    Import.Execute();
    EXPECT_EQ(Import.Statistic.Result, irFailed) << "what is no error of a value ends it all the same";
}

TEST_F(Kvi2ole, WithTheExtensionAFieldThatNobodyCanReadIsNoColumn)
{
    Fake.Tables["Orders"].Fields.push_back({.Name = "Att", .Type = afComplex});
    Fake.Tables["Orders"].Fields.push_back({.Name = "X", .Type = static_cast<TAccessFieldType>(20)});
    for (auto& Row : Fake.Tables["Orders"].Rows)
        Row.insert(Row.end(), {7, 8});
    EXPECT_EQ(Import.Look({}).Columns.size(), 4U);
    EXPECT_THAT(Import.SourceRemarks(), IsEmpty());
    Import.Extensions = {xaUnreadableValues};
    Import.EndLook();
    EXPECT_EQ(Import.Look({}).Columns.size(), 2U);
    const auto Remarks = Import.SourceRemarks();
    ASSERT_EQ(Remarks.size(), 2U);
    EXPECT_EQ(Remarks[0].Kind, srColumnLeftOut);
    EXPECT_EQ(Remarks[0].Name, "Att");
    EXPECT_EQ(Remarks[0].Reason, "attachments and multiple values cannot be read");
    EXPECT_EQ(Remarks[1].Reason, "values of type 20 cannot be read");
    EXPECT_EQ(Run().size(), 10U);
    EXPECT_EQ(Import.SourceRemarks().size(), 2U) << "after the run too";
}

TEST_F(Kvi2ole, WithTheExtensionDamageBehindTheLastRecordThatIsWantedDoesNotMatter)
{
    Fake.EndsAt = 3;
    Import.RowLast = 3;
    Import.Execute();
    EXPECT_EQ(Import.Statistic.Result, irFailed);
    Import.Extensions = {xaUnreadableValues};
    Run();
    EXPECT_EQ(Import.Statistic.TotalAdded, 3);
    Import.RowLast = 4;
    Import.Execute();
    EXPECT_EQ(Import.Statistic.Result, irFailed);
}

TEST_F(Kvi2ole, PatienceIsThatOfTheEngine)
{
    Run();
    EXPECT_EQ(Fake.Patience, std::chrono::seconds(30));
    Import.Patience = 5;
    Import.Look({});
    EXPECT_EQ(Fake.Patience, std::chrono::seconds(5));
}

TEST_F(Kvi2ole, WhatAFailedRunLeftOpenIsClosedBeforeTheNext)
{
    Fake.FailsAtSecondRow = true;
    Import.Execute();
    Fake.FailsAtSecondRow = false;
    Fake.Log.clear();
    Run();
    EXPECT_EQ(Fake.Log[0], "Recordset.Close");
    EXPECT_EQ(Fake.Log[1], "Database.Close");
}

TEST_F(Kvi2ole, ASessionMayCloseTheDatabaseAlone)
{
    TKvAccessSession Session;
    Session.Open("Orders", "shop.mdb");
    Fake.Log.clear();
    Session.Close(false);
    EXPECT_THAT(Fake.Log, ElementsAre("Database.Close"));
    EXPECT_FALSE(Session.IsOpen());
    EXPECT_EQ(Session.Recordset(), nullptr);
    Session.Close(true);
    EXPECT_THAT(Fake.Log, ElementsAre("Database.Close")) << "what is forgotten is not closed again";
}

TEST_F(Kvi2ole, NothingIsThereBeforeTheTableIsOpen)
{
    EXPECT_FALSE(Import.NeedMore());
    EXPECT_EQ(Import.GetTotalCount(), 0);
}

TEST_F(Kvi2ole, WithoutMappingsARunFailsBeforeItsFirstRecord)
{
    Import.Mappings().Clear();
    Import.Execute();
    EXPECT_EQ(Import.Statistic.Result, irFailed);
    EXPECT_EQ(Import.ErrorMessage(),
              "shop.mdb: table Orders is not open yet, so that its fields are not known; "
              "mappings are needed");
    EXPECT_THAT(Imported(), IsEmpty());
    EXPECT_THAT(Fake.Log, IsEmpty());
}

TEST_F(Kvi2ole, AnOpenTableIsMappedByExactNames)
{
    Import.Mappings().Clear();
    Import.BeforeImport();
    Import.DetectAutoMapping();
    EXPECT_THAT(LinesOf(Import.Mappings()), ElementsAre("Id=Id")) << "City is not CITY";
    Import.TableName = "Other";
    EXPECT_EQ(MessageOf([this] { Import.DetectAutoMapping(); }),
              "shop.mdb: table Other is not open yet, so that its fields are not known; mappings are needed");
}

TEST_F(Kvi2ole, AnOpenTableWithoutFieldsOfTheSameNameIsAnError)
{
    Fake.FailsAtSecondRow = true;
    Import.Execute();                               // leaves it open
    Fake.FailsAtSecondRow = false;
    Import.Mappings().Clear();
    To.Close();
    To.SetFieldDefs({{.Name = "ID"}, {.Name = "City"}});
    To.Open();
    Import.Execute();
    EXPECT_EQ(Import.Statistic.Result, irFailed);
    EXPECT_EQ(Import.ErrorMessage(),
              "shop.mdb: no field of table Orders has the name of a field of the destination");
    EXPECT_EQ(Import.Statistic.TotalImported, 0) << "what the run before has counted is gone";
}

TEST_F(Kvi2ole, WithTheExtensionARunWithoutMappingsOpensTheTable)
{
    Import.Mappings().Clear();
    Import.Extensions = {xaOpensForMapping};
    EXPECT_EQ(Run()[2], "3|City 3");
    EXPECT_TRUE(Import.Mappings().IsEmpty());
}

TEST_F(Kvi2ole, WithTheExtensionATableWithoutFieldsOfTheSameNameIsAnError)
{
    Import.Mappings().Clear();
    Import.Extensions = {xaOpensForMapping};
    Fake.Tables["Orders"].Fields = {{.Name = "A"}, {.Name = "B"}};
    Import.Execute();
    EXPECT_EQ(Import.Statistic.Result, irFailed);
    EXPECT_EQ(Import.ErrorMessage(),
              "shop.mdb: no field of table Orders has the name of a field of the destination");
    EXPECT_THAT(Imported(), IsEmpty());
}

// A look.

TLines RowsIn(const TKvISourceView& View)
{
    TLines Lines;
    for (const auto& Row : View.Rows) {
        Lines.push_back(std::to_string(Row.Position.Number) + ":");
        for (const auto& Value : Row.Values)
            Lines.back() += "|" + (Value.Error.empty() ? Value.Value.ToText() : "!" + Value.Error);
    }
    return Lines;
}

TLines Joined(const std::vector<TLines>& Parts)
{
    TLines All;
    for (const auto& Part : Parts)
        All.insert(All.end(), Part.begin(), Part.end());
    return All;
}

TEST_F(Kvi2ole, ALookShowsFieldsAndRecords)
{
    Fake.Tables["Orders"].Fields.push_back({.Name = "Price", .Type = afDecimal, .Precision = 18, .Scale = 2});
    Fake.Tables["Orders"].Rows = {{1, "Rom", "0.1"}, {2, Null, Null}, {3, "Bern", "2"}};
    const auto View = Import.Look({.Rows = 2, .Columns = {}});
    ASSERT_EQ(View.Columns.size(), 3);
    EXPECT_EQ(View.Columns[0].Name, "Id");
    EXPECT_EQ(View.Columns[0].DataType, ftInteger);
    EXPECT_EQ(View.Columns[1].Title, "CITY");
    EXPECT_EQ(View.Columns[1].DataType, ftString);
    EXPECT_EQ(View.Columns[1].Size, 20);
    EXPECT_EQ(View.Columns[1].TypeName, "Text (20)");
    EXPECT_EQ(View.Columns[2].DataType, ftBCD);
    EXPECT_EQ(View.Columns[2].TypeName, "Decimal (18, 2)");
    EXPECT_THAT(RowsIn(View), ElementsAre("1:|1|Rom|0.1", "2:|2||"));
    EXPECT_EQ(View.Rows[0].Position.Unit, "record");
    EXPECT_TRUE(View.HasMore);
}

TEST_F(Kvi2ole, ALookTakesTheRecordsThatARunTakes)
{
    Import.RowFirst = 3;
    Import.RowLast = 4;
    EXPECT_THAT(RowsIn(Import.Look({})), ElementsAre("1:|1|City 1", "2:|2|City 2"));
    Import.Extensions = {xaSkipsToRowFirst};
    const auto View = Import.Look({.Columns = {"CITY", "Rom"}});
    EXPECT_THAT(RowsIn(View), ElementsAre("3:|City 3|Rom", "4:|City 4|Rom"));
    EXPECT_FALSE(View.HasMore);
}

TEST_F(Kvi2ole, AValueThatCannotBeReadShowsWhy)
{
    Fake.FailsAtSecondRow = true;
    const auto View = Import.Look({.Rows = 2, .Columns = {"Id"}});
    EXPECT_THAT(RowsIn(View), ElementsAre("1:|1", "2:|!record 2 is damaged"));
}

TEST_F(Kvi2ole, LooksOpenTheDatabaseOnceAndARunOpensItAnew)
{
    Import.SelectPart(1, Import.SourceParts()[1]);
    Import.Look({});
    Import.Look({});
    const TLines Opened{"DAO.DBEngine.36", "OpenDatabase shop.mdb"};
    const TLines Listed{"OpenRecordset MSysObjects 1 0 2", "OpenRecordset Orders 1 0 2"};
    const TLines Shown{"OpenRecordset Orders 1 0 2", "MoveFirst"}, Again{"MoveFirst"};
    EXPECT_EQ(Fake.Log, Joined({Opened, Listed, Shown, Again}));
    Fake.Log.clear();
    Run();
    const TLines Closed{"Recordset.Close", "Database.Close"};
    EXPECT_EQ(Fake.Log, Joined({Closed, Opened, Shown, Closed}));
}

TEST_F(Kvi2ole, EndingALookClosesTheDatabase)
{
    Import.Look({});
    Fake.Log.clear();
    Import.EndLook();
    Import.EndLook();
    EXPECT_THAT(Fake.Log, ElementsAre("Recordset.Close", "Database.Close"));
}

TEST_F(Kvi2ole, ALookAtAnotherTableClosesTheOneBefore)
{
    Fake.Tables["Cities"] = {{{.Name = "Name"}}, {{"Bern"}}};
    Import.Look({});
    Fake.Log.clear();
    Import.TableName = "Cities";
    EXPECT_THAT(RowsIn(Import.Look({})), ElementsAre("1:|Bern"));
    EXPECT_THAT(Fake.Log, ElementsAre("Recordset.Close", "OpenRecordset Cities 1 0 2", "MoveFirst"));
}

TEST_F(Kvi2ole, ThePartsOfADatabaseAreAllItsTables)
{
    const auto Parts = Import.SourceParts();
    ASSERT_EQ(Parts.size(), 2);
    EXPECT_EQ(Parts[0].Name, "MSysObjects");
    EXPECT_TRUE(Parts[0].IsSystem);
    EXPECT_EQ(Parts[1].Name, "Orders");
    EXPECT_FALSE(Parts[1].IsSystem);
    EXPECT_EQ(Parts[1].Rows, 10);
    EXPECT_EQ(Parts[1].Columns, 2);
    ASSERT_EQ(Parts[1].Fields.size(), 2);
    EXPECT_EQ(Parts[1].Fields[0].TypeName, "Long Integer");
    Import.TableName = "";
    Import.SelectPart(1, Parts[1]);
    EXPECT_EQ(Import.TableName, "Orders");
}

TEST_F(Kvi2ole, ATableThatCannotBeOpenedSaysWhy)
{
    Fake.Gone = "Orders";
    const auto Parts = Import.SourceParts();
    ASSERT_EQ(Parts.size(), 2);
    EXPECT_EQ(Parts[0].Error, "");
    EXPECT_EQ(Parts[1].Error, "shop.mdb: has no table Orders");
}

TEST_F(Kvi2ole, ALookNeedsATableThatIsThere)
{
    Import.TableName = "";
    EXPECT_EQ(MessageOf([this] { Import.Look({}); }), "Property TableName wasn't specified.");
    Import.TableName = "Customers";
    EXPECT_EQ(MessageOf([this] { Import.Look({}); }), "shop.mdb: has no table Customers");
    EXPECT_EQ(Fake.Log.back(), "Database.Close");
    Import.TableName = "Orders";
    EXPECT_EQ(Import.Look({}).Rows.size(), 10);
}

TEST_F(Kvi2ole, ALookHelpsNoRunThatHasNoMappings)
{
    Import.Look({});
    Import.Mappings().Clear();
    Import.Execute();
    EXPECT_THAT(Import.ErrorMessage(), testing::HasSubstr("mappings are needed"));
}

TEST_F(Kvi2ole, TheRecordOfASourceIsTheValuesOfItsFields)
{
    std::vector<TVariant> Records;
    Import.RowLast = 1;
    Import.OnAfterRecordEvent = [&](TKvImportBaseComponent& Sender, bool&) {
        Records.push_back(Sender.SourceRecord());
    };
    Run();
    ASSERT_EQ(Records.size(), 1);
    EXPECT_EQ(Records[0][0].Kind(), vkInteger);
    EXPECT_EQ(Records[0][1].ToText(), "City 1");
    EXPECT_TRUE(Import.SourceRecord().IsNull()) << "after the run";
}

// Cancel.

TEST_F(Kvi2ole, ARunIsCancelledWhileTheDatabaseKeepsItWaiting)
{
    Fake.KeepsWaiting = true;
    TPatience Observer(3);
    Import.SetObserver(&Observer);
    Import.Execute();
    EXPECT_EQ(Import.Statistic.Result, irCanceled);
    EXPECT_EQ(Import.Statistic.TotalImported, 0);
    EXPECT_EQ(Import.ErrorMessage(), "");
}

TEST_F(Kvi2ole, ALookIsCancelledWhileTheDatabaseKeepsItWaiting)
{
    Fake.KeepsWaiting = true;
    TPatience Observer(3);
    Import.SetObserver(&Observer);
    EXPECT_EQ(MessageOf([this] { Import.Look({}); }), "shop.mdb: reading was canceled by user");
}

TEST_F(Kvi2ole, CancelIsSeenWhileRecordsAreSkipped)
{
    for (int Id = 11; Id <= 10000; ++Id)
        Fake.Tables["Orders"].Rows.push_back({Id, Null});
    Import.Extensions = {xaSkipsToRowFirst};
    Import.RowFirst = 10000;
    TPatience Observer(1);
    Import.SetObserver(&Observer);
    Import.Execute();
    EXPECT_EQ(Import.Statistic.Result, irCanceled);
    EXPECT_EQ(Import.Statistic.TotalImported, 0);
    Import.SetObserver(nullptr);
    EXPECT_THAT(Run(), ElementsAre("10000|"));
}

// Routines without a component.

TEST_F(Kvi2ole, ListsEveryTable)
{
    TStrings Items;
    GetAccessTables(Items, "shop.mdb", "");
    EXPECT_THAT(LinesOf(Items), ElementsAre("MSysObjects", "Orders"));
    EXPECT_THAT(Fake.Log, ElementsAre("DAO.DBEngine.36", "OpenDatabase shop.mdb", "Database.Close"));
}

TEST_F(Kvi2ole, ListsTheFieldsOfATable)
{
    TStrings Items;
    GetAccessTables(Items, "shop.mdb", "Orders");
    EXPECT_THAT(LinesOf(Items), ElementsAre("Id", "CITY"));
}

TEST_F(Kvi2ole, AListOfWhatIsNotThereClosesTheDatabase)
{
    TStrings Items;
    EXPECT_EQ(MessageOf([&] { GetAccessTables(Items, "shop.mdb", "Customers"); }),
              "shop.mdb: has no table Customers");
    EXPECT_EQ(Fake.Log.back(), "Database.Close");
    EXPECT_EQ(MessageOf([&] { GetAccessTables(Items, "other.mdb", ""); }),
              "other.mdb: is not an Access database");
    EXPECT_TRUE(Items.IsEmpty());
}

TEST_F(Kvi2ole, AListNeedsADatabase)
{
    TStrings Items;
    EXPECT_EQ(MessageOf([&] { GetAccessTables(Items, "", "Orders"); }),
              "Property DatabaseName wasn't specified.");
}

/// What a preview offers, a line a row.
struct TPreview
{
    TLines Rows;
    TStrings Columns;
    std::string FieldNames = "before";

    void Load(const std::string& TableName)
    {
        LoadAccessPreview(nullptr, TableName, "shop.mdb", FieldNames, true, &Columns,
                          [this](TPersistent* Sender, int ColCount, int Row, bool Flag,
                                 const TVariant& Values) {
                              EXPECT_EQ(Sender, nullptr);
                              EXPECT_TRUE(Flag);
                              EXPECT_EQ(Values.LowBound(), 0);
                              EXPECT_EQ(Values.HighBound(), ColCount - 1);
                              auto Line = std::to_string(Row);
                              for (int I = 0; I < ColCount; ++I)
                                  Line += "|" + Values[I].ToText();
                              Rows.push_back(Line);
                          });
    }
};

TEST_F(Kvi2ole, APreviewShowsFieldsAndRecords)
{
    TPreview Preview;
    Preview.Load("Orders");
    EXPECT_EQ(Preview.FieldNames, "Id;CITY");
    EXPECT_THAT(LinesOf(Preview.Columns), ElementsAre("Id", "CITY"));
    ASSERT_EQ(Preview.Rows.size(), 10);
    EXPECT_EQ(Preview.Rows.front(), "1|1|City 1");
    EXPECT_EQ(Preview.Rows.back(), "10|10|City 10");
    EXPECT_THAT(Fake.Log, ElementsAre("DAO.DBEngine.36", "OpenDatabase shop.mdb",
                                      "OpenRecordset Orders 1 0 2", "MoveFirst",
                                      "Recordset.Close", "Database.Close"));
}

TEST_F(Kvi2ole, APreviewNeedsNoListOfColumns)
{
    std::string FieldNames;
    int Rows = 0;
    LoadAccessPreview(&Import, "Orders", "shop.mdb", FieldNames, false, nullptr,
                      [&](TPersistent* Sender, int, int, bool Flag, const TVariant&) {
                          EXPECT_EQ(Sender, &Import);
                          EXPECT_FALSE(Flag);
                          ++Rows;
                      });
    EXPECT_EQ(FieldNames, "Id;CITY");
    EXPECT_EQ(Rows, 10);
}

TEST_F(Kvi2ole, APreviewStopsAfterTwentyRecords)
{
    for (int Id = 11; Id <= 30; ++Id)
        Fake.Tables["Orders"].Rows.push_back({Id, Null});
    TPreview Preview;
    Preview.Load("Orders");
    ASSERT_EQ(Preview.Rows.size(), 20);
    EXPECT_EQ(Preview.Rows.back(), "20|20|");
}

TEST_F(Kvi2ole, APreviewWithoutATableShowsNothing)
{
    TPreview Preview;
    Preview.Load("");
    EXPECT_THAT(Preview.Rows, IsEmpty());
    EXPECT_EQ(Preview.FieldNames, "");
    EXPECT_EQ(Fake.Log.back(), "Database.Close");
}

TEST_F(Kvi2ole, APreviewTakesExtensions)
{
    std::string FieldNames;
    int Rows = 0;
    LoadAccessPreview(nullptr, "Orders", "shop.mdb", FieldNames, false, nullptr, [&](auto&&...) { ++Rows; },
                      {xaSkipsToRowFirst});
    EXPECT_EQ(Rows, 10);
    Fake.RefusesAtRow = 2;
    Rows = 0;
    EXPECT_NE(MessageOf([&] {
                  LoadAccessPreview(nullptr, "Orders", "shop.mdb", FieldNames, false, nullptr,
                                    [&](auto&&...) { ++Rows; });
              }),
              "");
    EXPECT_EQ(Rows, 2);
    TLines Cities;
    LoadAccessPreview(
        nullptr, "Orders", "shop.mdb", FieldNames, false, nullptr,
        [&](auto&&, int, int, bool, const TVariant& Values) { Cities.push_back(Values[1].ToText()); },
        {xaUnreadableValues});
    ASSERT_EQ(Cities.size(), 10U);
    EXPECT_EQ(Cities[2], "");
    EXPECT_EQ(Cities[3], "City 4");
}

TEST_F(Kvi2ole, AFieldNameThatEndsInASemicolonGetsNoSecondOne)
{
    Fake.Tables["Orders"].Fields[0].Name = "Id;";
    TPreview Preview;
    Preview.Load("Orders");
    EXPECT_EQ(Preview.FieldNames, "Id;CITY");
}

TEST_F(Kvi2ole, APreviewClosesAfterAnError)
{
    Fake.FailsAtSecondRow = true;
    TPreview Preview;
    EXPECT_EQ(MessageOf([&] { Preview.Load("Orders"); }), "record 2 is damaged");
    EXPECT_THAT(Preview.Rows, ElementsAre("1|1|City 1"));
    EXPECT_EQ(Fake.Log[Fake.Log.size() - 2], "Recordset.Close");
    EXPECT_EQ(Fake.Log.back(), "Database.Close");
}

} // namespace

} // namespace kv
