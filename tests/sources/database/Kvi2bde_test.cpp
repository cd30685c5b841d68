#include "Kvi2bde.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "KvCodePage.h"
#include "KvDbaseBuilder.h"
#include "KvException.h"
#include "KvFormatSettings.h"
#include "KvMemoryDataSet.h"
#include "KvParadoxBuilder.h"
#include "KvProperties.h"
#include "KvTable.h"
#include "KvTempFolder.h"

namespace kv {

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using TLines = std::vector<std::string>;

TDbaseBuilder People()
{
    return TDbaseBuilder().Field("NAME", 'C', 10).Field("QTY", 'N', 5).Record({"Ada", "    3"})
        .Deleted({"Bob", "    4"}).Record({"Cy", ""}).Record({"Dee", "    5"});
}

TDbaseBuilder NamesThatBeginAlike()
{
    return TDbaseBuilder(0x04).Field("CustomerName", 'C', 10).Field("CustomerNation", 'C', 10)
        .Record({"Ada", "UK"});
}

/// Imports the people into Name and Qty.
class TTableImport : public TKvImportFromBDE
{
public:
    explicit TTableImport(const TDbaseBuilder& Source = People())
    {
        SourceFileName = Folder.Write("people.dbf", Source.Build());
        To.SetFieldDefs({{.Name = "Name"}, {.Name = "Qty", .DataType = ftInteger}});
        To.Open();
        SetDataSet(&To);
        SetMappings({"Name=NAME", "Qty=QTY"});
        AnimatedStatus = false;
        Options = {};
    }

    /// The records of the destination after a run.
    TLines Run(TKvIResult Expected = irExecuted)
    {
        Execute();
        EXPECT_EQ(Statistic.Result, Expected) << ErrorMessage();
        TLines Rows;
        for (To.First(); !To.Eof(); To.Next()) {
            Rows.emplace_back();
            for (int I = 0; I < To.FieldCount(); ++I)
                Rows.back() += (I > 0 ? "|" : "") + To.Fields(I).AsString();
        }
        return Rows;
    }

    void AddRecord(std::string_view Value)
    {
        To.Append();
        To.Fields(0).SetValue(Value);
        To.Post();
    }

    using TKvImportFromBDE::AfterImport;
    using TKvImportFromBDE::BeforeImport;
    using TKvImportFromBDE::DetectAutoMapping;
    using TKvImportFromBDE::FieldIsTruncated;
    using TKvImportFromBDE::NotDefined;
    using TKvImportFromBDE::SourceTable;

    const TTempFolder Folder;
    TMemoryDataSet To;
};

std::string MessageOf(const std::function<void()>& Act)
{
    try {
        Act();
    }
    catch (const Exception& Error) {
        return Error.Message;
    }
    return "nothing was raised";
}

TLines LinesOf(const TStrings& Lines) { return {Lines.begin(), Lines.end()}; }

/// The rows of a look, values separated by "|" and behind "!" why there is none.
TLines RowsIn(const TKvISourceView& View)
{
    TLines Rows;
    for (const auto& Row : View.Rows) {
        Rows.push_back(std::to_string(Row.Position.Number) + ":");
        for (const auto& Value : Row.Values)
            Rows.back() += "|" + (Value.Error.empty() ? Value.Value.ToText() : "!" + Value.Error);
    }
    return Rows;
}

/// A record for each number from 1.
TDbaseBuilder Numbers(int Count)
{
    auto Table = TDbaseBuilder().Field("NO", 'N', 7);
    for (int Number = 0; Number < Count;)
        Table.Record({std::to_string(++Number)});
    return Table;
}

/// An observer who lets a run go on until it has been asked so many times.
struct TPatience final : TKvIRunObserver
{
    explicit TPatience(int Times) : Left(Times) {}
    bool KeepsRunning() override { return Left-- > 0; }
    int Left;
};

/// What a preview shows: a line for each call.
struct TPreview
{
    TLines Show(const std::string& FileName, bool IsDBase, TStrings* Columns = nullptr)
    {
        TLines Calls;
        LoadBDEPreview(nullptr, FileName, FieldNames, IsDBase, nullptr, Flag, Columns,
                       [&](TPersistent*, int ColCount, int Row, bool GivenFlag, const TVariant& Values) {
                           EXPECT_EQ(GivenFlag, Flag);
                           EXPECT_EQ(Values.LowBound(), 0);
                           std::string Line = std::to_string(ColCount) + " " + std::to_string(Row) + ":";
                           for (int I = 0; I <= Values.HighBound(); ++I)
                               Line += " " + Values[I].ToText();
                           Calls.push_back(Line);
                       });
        return Calls;
    }

    std::string FieldNames;
    bool Flag = true;
};

} // namespace

// --- A run -------------------------------------------------------------------------------------------

TEST(Kvi2bde, ImportsTheRecordsThatAreNotDeleted)
{
    TTableImport Import;
    EXPECT_THAT(Import.Run(), ElementsAre("Ada|3", "Cy|", "Dee|5"));
    EXPECT_EQ(Import.Statistic.TotalImported, 3);
    EXPECT_EQ(Import.Statistic.TotalAdded, 3);
    EXPECT_EQ(Import.Statistic.TotalCount, 3);
}

TEST(Kvi2bde, ImportsParadoxTables)
{
    TTableImport Import;
    Import.SourceFileName = Import.Folder.Write(
        "people.db",
        TParadoxBuilder().Field("Name", 'A', 10).Field("Qty", 'I').Record({"Eve", ParadoxLong(7)}).Build());
    for (const auto Type : {ttDefault, ttParadox}) {
        Import.TableType = Type;
        Import.Mode = imCopy;
        EXPECT_THAT(Import.Run(), ElementsAre("Eve|7"));
    }
}

TEST(Kvi2bde, SourceFieldsAreFoundWithoutRegardToCase)
{
    TTableImport Import;
    Import.SetMappings({"Name=name"});
    EXPECT_THAT(Import.Run(), ElementsAre("Ada|", "Cy|", "Dee|"));
}

TEST(Kvi2bde, ANameThatTheTableDoesNotHaveIsAConstant)
{
    TTableImport Import;
    Import.SetMappings({"Name=Imported", "Qty=QTY"});
    EXPECT_THAT(Import.Run(), ElementsAre("Imported|3", "Imported|", "Imported|5"));
}

TEST(Kvi2bde, AnEmptyTableGivesNoRecord)
{
    TTableImport Import(TDbaseBuilder().Field("NAME", 'C', 10));
    EXPECT_THAT(Import.Run(), IsEmpty());
    EXPECT_EQ(Import.Statistic.TotalImported, 0);
}

TEST(Kvi2bde, EachRunReadsTheFileAnew)
{
    TTableImport Import;
    Import.Run();
    Import.Folder.Write(
        "people.dbf", TDbaseBuilder().Field("X", 'C', 3).Field("NAME", 'C', 3).Record({"x", "Eve"}).Build());
    Import.Mode = imCopy;
    Import.SetMappings({"Name=NAME"});
    EXPECT_THAT(Import.Run(), ElementsAre("Eve|"));
}

TEST(Kvi2bde, UpdatesRecordsWithTheSameKey)
{
    TTableImport Import;
    Import.AddRecord("Dee");
    Import.Mode = imAppendUpdate;
    Import.DatasetKeys = "Name";
    EXPECT_THAT(Import.Run(), ElementsAre("Dee|5", "Ada|3", "Cy|"));
    EXPECT_EQ(Import.Statistic.TotalUpdated, 1);
    EXPECT_EQ(Import.Statistic.TotalAdded, 2);
}

TEST(Kvi2bde, ARunThatFailedLeavesNothingForTheNext)
{
    TTableImport Import;
    const auto Good = Import.SourceFileName;
    Import.SourceFileName = Import.Folder.Write("cut.dbf", People().Build().substr(0, 120));
    EXPECT_THAT(Import.Run(irFailed), ElementsAre("Ada|3"));
    EXPECT_THAT(Import.ErrorMessage(), HasSubstr("cut.dbf\" ends after record 1 of 4"));
    Import.SourceFileName = Good;
    Import.Mode = imCopy;
    EXPECT_THAT(Import.Run(), ElementsAre("Ada|3", "Cy|", "Dee|5"));
}

TEST(Kvi2bde, RowFirstAndRowLastOnlyShapeTheExpectedCount)
{
    TTableImport Import;
    Import.RowFirst = 2;
    Import.RowLast = 3;
    EXPECT_THAT(Import.Run(), ElementsAre("Ada|3", "Cy|", "Dee|5"));
    EXPECT_EQ(Import.Statistic.TotalCount, 2);
}

TEST(Kvi2bde, KeepsToRowsImportsTheRecordsWithTheseNumbers)
{
    TTableImport Import;
    Import.Extensions = {xbKeepsToRows};
    Import.Mode = imCopy;
    Import.RowFirst = 2;
    EXPECT_THAT(Import.Run(), ElementsAre("Cy|", "Dee|5"));
    Import.RowLast = 3;
    EXPECT_THAT(Import.Run(), ElementsAre("Cy|"));
    Import.RowFirst = 5;
    EXPECT_THAT(Import.Run(), IsEmpty());
}

TEST(Kvi2bde, ARecordsPlaceIsItsNumberInTheTable)
{
    TTableImport Import;
    TLines Places;
    Import.OnAfterRecordEvent = [&](TKvImportBaseComponent& Sender, bool&) {
        Places.push_back(Sender.RecordPlace());
    };
    Import.Run();
    EXPECT_THAT(Places, ElementsAre("record 1", "record 3", "record 4"));
}

TEST(Kvi2bde, AMissingFileFailsTheRunAndIsNamed)
{
    TTableImport Import;
    Import.SourceFileName = "/no/such.dbf";
    EXPECT_THAT(Import.Run(irFailed), IsEmpty());
    EXPECT_EQ(Import.ErrorMessage(), "Cannot open file \"/no/such.dbf\": No such file or directory");
}

// --- Values that cannot be read ----------------------------------------------------------------------

TEST(Kvi2bde, AValueThatCannotBeReadIsAnErrorOfItsRecord)
{
    TTableImport Import(TDbaseBuilder().Field("NAME", 'C', 10).Field("QTY", 'N', 5).Record({"Ada", "    3"})
                            .Record({"Bob", "1****"}).Record({"Cy", "    5"}));
    TLines Errors;
    Import.OnErrorEvent = [&](auto&, const Exception& Error, bool&) { Errors.push_back(Error.Message); };
    EXPECT_THAT(Import.Run(), ElementsAre("Ada|3", "Cy|5"));
    EXPECT_THAT(Errors, ElementsAre("File \"" + Import.SourceFileName +
                                    "\", record 2, field 'QTY': '1****' is no number"));
    EXPECT_EQ(Import.Statistic.TotalImported, 3);
    EXPECT_EQ(Import.Statistic.TotalAdded, 2);
    EXPECT_EQ(Import.Statistic.TotalErrors, 1);
}

TEST(Kvi2bde, AnErrorOfARecordMayEndTheRun)
{
    TTableImport Import(TDbaseBuilder().Field("NAME", 'C', 10).Field("QTY", 'N', 5).Record({"Ada", "1****"})
                            .Record({"Bob", "    5"}));
    Import.OnErrorEvent = [](auto&, const Exception&, bool& Abort) { Abort = true; };
    EXPECT_THAT(Import.Run(irFailed), IsEmpty());
    EXPECT_EQ(Import.Statistic.TotalErrors, 1);
    EXPECT_THAT(Import.ErrorMessage(), HasSubstr("record 1, field 'QTY': '1****' is no number"));
}

TEST(Kvi2bde, WithoutAHandlerErrorsOfRecordsAreCounted)
{
    TTableImport Import(TDbaseBuilder().Field("QTY", 'N', 5).Record({"1****"}).Record({"    5"}));
    Import.SetMappings({"Qty=QTY"});
    EXPECT_THAT(Import.Run(), ElementsAre("|5"));
    EXPECT_EQ(Import.Statistic.TotalErrors, 1);
    EXPECT_EQ(Import.Statistic.TotalAdded, 1);
}

TEST(Kvi2bde, AFieldThatIsNotMappedIsNotRead)
{
    TTableImport Import(TDbaseBuilder().Field("NAME", 'C', 10).Field("QTY", 'N', 5).Record({"Ada", "1****"}));
    Import.SetMappings({"Name=NAME"});
    EXPECT_THAT(Import.Run(), ElementsAre("Ada|"));
}

TEST(Kvi2bde, NumbersThatHadNoRoomAreEmptyAndRemarkedOn)
{
    TTableImport Import(TDbaseBuilder().Field("NAME", 'C', 10).Field("QTY", 'N', 5).Record({"Ada", "    3"})
                            .Record({"Bob", "*****"}).Record({"Cy", "*****"}));
    EXPECT_THAT(Import.Run(), ElementsAre("Ada|3", "Bob|", "Cy|"));
    ASSERT_EQ(Import.SourceRemarks().size(), 1U);
    EXPECT_EQ(Import.SourceRemarks()[0].Kind, srNumbersLost);
    EXPECT_EQ(Import.SourceRemarks()[0].Count, 2);
    EXPECT_EQ(Import.SourceRemarks()[0].First, 2);
}

TEST(Kvi2bde, WhatTheTableSaysOfItselfIsRemarkedOn)
{
    auto Table = TDbaseBuilder().Field("NAME", 'C', 10).Field("X", 'X', 4).Field("QTY", 'N', 5);
    Table.Record({"K\x94ln", "", "    3"}).Record({"Cy", "", "    4"});
    TTableImport Import;
    auto Bytes = Table.Build();
    Bytes[4] = 1;
    Import.Folder.Write("people.dbf", Bytes);
    const auto RemarksOf = [&Import] {
        TLines Lines;
        for (const auto& Each : Import.SourceRemarks())
            Lines.push_back(std::to_string(Each.Kind) + " " + std::to_string(Each.Count) + " " +
                            std::to_string(Each.First) + " " + std::to_string(Each.Limit) + " " + Each.Name +
                            " " + Each.Reason);
        return Lines;
    };
    const auto Expected = ElementsAre(
        std::to_string(srTextOfNoPage) + " 0 1 0  ",
        std::to_string(srColumnLeftOut) + " 0 0 0 X field 2 has the unknown type 'X'",
        std::to_string(srRowsBeyondCount) + " 1 0 1  ");
    EXPECT_THAT(RemarksOf(), IsEmpty());
    Import.Look({});
    EXPECT_THAT(RemarksOf(), Expected);
    Import.EndLook();
    EXPECT_THAT(RemarksOf(), Expected) << "still those of the look";
    EXPECT_THAT(Import.Run(), ElementsAre("K\x94ln|3"));
    EXPECT_THAT(RemarksOf(), Expected);
    Import.SourceFileName = "/no/such.dbf";
    Import.Run(irFailed);
    EXPECT_THAT(RemarksOf(), IsEmpty()) << "nothing was opened";
}

TEST(Kvi2bde, KeepsToRowsTakesWhatACutTableStillHolds)
{
    const auto Whole = Numbers(5).Build();
    TTableImport Import;
    Import.SetMappings({"Qty=NO"});
    Import.Folder.Write("people.dbf", Whole.substr(0, Whole.size() - 4));
    Import.Extensions = {xbKeepsToRows};
    Import.RowLast = 4;
    EXPECT_THAT(Import.Run(), ElementsAre("|1", "|2", "|3", "|4"));
    ASSERT_EQ(Import.SourceRemarks().size(), 1U);
    EXPECT_EQ(Import.SourceRemarks()[0].Kind, srRowsMissing);
    EXPECT_EQ(Import.SourceRemarks()[0].Count, 4);
    EXPECT_EQ(Import.SourceRemarks()[0].Limit, 5);
    Import.RowLast = 5;
    Import.Run(irFailed);
    EXPECT_THAT(Import.ErrorMessage(), HasSubstr("ends after record 4 of 5"));
    Import.Extensions = {};
    Import.RowLast = 4;
    Import.Run(irFailed);
}

// --- Texts and digits --------------------------------------------------------------------------------

TEST(Kvi2bde, TextsAreOfTheCodePageThatTheTableNames)
{
    TTableImport Import(TDbaseBuilder().Language(0x65).Field("NAME", 'C', 10).Record({"\x8F\xE0\xA8"}));
    Import.SetMappings({"Name=NAME"});
    EXPECT_THAT(Import.Run(), ElementsAre("При|"));
}

TEST(Kvi2bde, TextsOfMsDosAreOfTheOemCodePageWhateverTheTableSays)
{
    SetOemCodePage("866");
    TTableImport Import(TDbaseBuilder().Language(0x03).Field("NAME", 'C', 10).Record({"\x8F\xE0\xA8"}));
    Import.SetMappings({"Name=NAME"});
    Import.CharacterSet = csiASCII_MSDOS;
    EXPECT_THAT(Import.Run(), ElementsAre("При|"));
    SetOemCodePage("437");
}

TEST(Kvi2bde, DigitsThatOnlyTextHoldsAreReadWithTheSeparatorsOfTheRun)
{
    // a whole number by its field may have decimals all the same
    for (const unsigned Decimals : {15, 0}) {
        TTableImport Import(TDbaseBuilder().Field("NAME", 'N', 18, Decimals).Record({"1.234567890123456"}));
        Import.To.SetFieldDefs({{.Name = "Value", .DataType = ftFloat}});
        Import.To.Open();
        Import.SetMappings({"Value=NAME"});
        const auto Decimal = Import.DataFormats.DecimalSeparator,
                   Thousand = Import.DataFormats.ThousandSeparator;
        Import.DataFormats.DecimalSeparator = ',';
        Import.DataFormats.ThousandSeparator = '.';
        EXPECT_THAT(Import.Run(), ElementsAre("1.234567890123456")) << Decimals;
        Import.DataFormats.DecimalSeparator = Decimal;
        Import.DataFormats.ThousandSeparator = Thousand;
    }
}

TEST(Kvi2bde, FloatsKeepMoreDigitsThanADoubleHas)
{
    TTableImport Import(TDbaseBuilder().Field("NAME", 'F', 20, 6).Field("QTY", 'F', 18)
                            .Record({"-123456789012.345678", "12345678901234567"}));
    Import.To.SetFieldDefs({{.Name = "Name"}, {.Name = "Qty", .DataType = ftLargeint}});
    Import.To.Open();
    EXPECT_THAT(Import.Run(), ElementsAre("-123456789012.345678|12345678901234567"));
}

TEST(Kvi2bde, AmountsKeepTheirDigits)
{
    TTableImport Import(TDbaseBuilder().Field("NAME", 'N', 20, 2).Record({"99999999999999.99"}));
    Import.SetMappings({"Name=NAME"});
    EXPECT_THAT(Import.Run(), ElementsAre("99999999999999.99|"));
}

// --- Names -------------------------------------------------------------------------------------------

TEST(Kvi2bde, NamesOfDbaseTablesAreShort)
{
    TTableImport Import;
    for (const auto& [Type, IsTruncated] : {std::pair{ttDefault, false}, {ttParadox, false}, {ttDBase, true},
                                            {ttFoxPro, false}, {ttASCII, false}}) {
        Import.TableType = Type;
        EXPECT_EQ(Import.FieldIsTruncated(), IsTruncated) << Type;
    }
}

TEST(Kvi2bde, AComponentForDbaseTablesTakesItsDefaultForThem)
{
    struct TDbaseImport : TKvImportFromBDE
    {
        TDbaseImport() : TKvImportFromBDE(nullptr, teDBase) {}
        using TKvImportFromBDE::FieldIsTruncated;
    } Import;
    EXPECT_TRUE(Import.FieldIsTruncated());
    Import.TableType = ttParadox;
    EXPECT_FALSE(Import.FieldIsTruncated());
}

TEST(Kvi2bde, AMappingOfADbaseTableMayNameAFieldByMoreCharactersThanItHas)
{
    TTableImport Import(TDbaseBuilder().Field("CUSTOMERNA", 'C', 10).Record({"Ada"}));
    Import.TableType = ttDBase;
    Import.SetMappings({"Name=CustomerName"});
    EXPECT_THAT(Import.Run(), ElementsAre("Ada|"));
}

TEST(Kvi2bde, TenCharactersStandForALongerNameThatBeginsWithThem)
{
    TTableImport Import(TDbaseBuilder(0x04).Field("CustomerName", 'C', 10).Record({"Ada"}));
    Import.TableType = ttDBase;
    Import.SetMappings({"Name=CustomerName"});
    EXPECT_THAT(Import.Run(), ElementsAre("Ada|"));
}

TEST(Kvi2bde, TenCharactersThatBeginTwoNamesAreRefused)
{
    TTableImport Import(NamesThatBeginAlike());
    Import.TableType = ttDBase;
    Import.SetMappings({"Name=CustomerName"});
    EXPECT_THAT(Import.Run(irFailed), IsEmpty());
    EXPECT_EQ(Import.ErrorMessage(),
              Import.SourceFileName +
                  ": both field 'CustomerName' and field 'CustomerNation' begin with 'CustomerNa'");
}

// --- Automatic mappings ------------------------------------------------------------------------------

TEST(Kvi2bde, AClosedTableHasNoFieldsToMap)
{
    TTableImport Import;
    Import.Mappings().Clear();
    Import.DetectAutoMapping();
    EXPECT_TRUE(Import.Mappings().IsEmpty());
}

TEST(Kvi2bde, ARunWithoutMappingsFailsBeforeItsFirstRecord)
{
    TTableImport Import;
    Import.AddRecord("kept");
    Import.Mappings().Clear();
    for (const auto Mode : {imAppend, imCopy}) {
        Import.Mode = Mode;
        EXPECT_THAT(Import.Run(irFailed), ElementsAre("kept|"));
        EXPECT_EQ(Import.ErrorMessage(),
                  Import.SourceFileName +
                      ": a table tells its fields only once it is open; mappings are needed");
    }
}

TEST(Kvi2bde, OpensForMappingFindsFieldsByTheirNames)
{
    TTableImport Import;
    Import.Extensions = {xbOpensForMapping};
    Import.Mappings().Clear();
    Import.DetectAutoMapping();
    EXPECT_THAT(LinesOf(Import.Mappings()), ElementsAre("Name=Name", "Qty=Qty"));
    EXPECT_EQ(Import.SourceTable(), nullptr) << "it lets go of the table";
    Import.Mappings().Clear();
    EXPECT_THAT(Import.Run(), ElementsAre("Ada|3", "Cy|", "Dee|5"));
    EXPECT_TRUE(Import.Mappings().IsEmpty());
}

TEST(Kvi2bde, OpensForMappingFailsWhereNoNameIsShared)
{
    TTableImport Import(TDbaseBuilder().Field("OTHER", 'C', 10).Record({"x"}));
    Import.Extensions = {xbOpensForMapping};
    Import.Mappings().Clear();
    EXPECT_THAT(Import.Run(irFailed), IsEmpty());
    EXPECT_EQ(Import.ErrorMessage(),
              Import.SourceFileName +
                  ": no field has the name of a field of the destination; mappings are needed");
}

// --- The table ---------------------------------------------------------------------------------------

TEST(Kvi2bde, OwnsATableFromBeforeImportToAfterImport)
{
    TTableImport Import;
    Import.TableType = ttFoxPro;
    EXPECT_EQ(Import.SourceTable(), nullptr);
    Import.BeforeImport();
    const auto* const Table = Import.SourceTable();
    ASSERT_NE(Table, nullptr);
    EXPECT_EQ(Table->TableName, Import.SourceFileName);
    EXPECT_EQ(Table->TableType, ttFoxPro);
    EXPECT_FALSE(Table->Active()) << "GoFirst opens it";
    Import.BeforeImport();
    EXPECT_EQ(Import.SourceTable(), Table);
    Import.AfterImport();
    EXPECT_EQ(Import.SourceTable(), nullptr);
}

TEST(Kvi2bde, TheTableTakesTheSessionOfADestinationOfTheTableEngine)
{
    TTableImport Import;
    Import.BeforeImport();
    EXPECT_EQ(Import.SourceTable()->SessionName, "") << "no such destination";
    TTable Destination;
    Destination.SessionName = "Import";
    Import.SetDataSet(&Destination);
    Import.BeforeImport();
    EXPECT_EQ(Import.SourceTable()->SessionName, "Import");
}

// --- A look ------------------------------------------------------------------------------------------

TEST(Kvi2bdeLook, ShowsFieldsAndRecordsWithTheirNumbers)
{
    TTableImport Import;
    const auto View = Import.Look({});
    ASSERT_EQ(View.Columns.size(), 2U);
    EXPECT_EQ(View.Columns[0].Name, "NAME");
    EXPECT_EQ(View.Columns[0].Title, "NAME");
    EXPECT_EQ(View.Columns[0].DataType, ftString);
    EXPECT_EQ(View.Columns[0].Size, 10);
    EXPECT_EQ(View.Columns[1].DataType, ftInteger);
    EXPECT_THAT(RowsIn(View), ElementsAre("1:|Ada|3", "3:|Cy|", "4:|Dee|5"));
    EXPECT_EQ(View.Rows[0].Position.Unit, "record");
    EXPECT_EQ(View.Rows[0].Position.Offset, -1);
    EXPECT_FALSE(View.HasMore);
}

TEST(Kvi2bdeLook, KeepsToRowsAsARunDoes)
{
    TTableImport Import;
    Import.RowFirst = 2;
    Import.RowLast = 3;
    EXPECT_EQ(Import.Look({}).Rows.size(), 3U) << "they only shape the expected count";
    Import.Extensions = {xbKeepsToRows};
    EXPECT_THAT(RowsIn(Import.Look({})), ElementsAre("3:|Cy|"));
    EXPECT_TRUE(Import.Look({.Rows = 0, .Columns = {}}).HasMore);
}

TEST(Kvi2bdeLook, AValueThatCannotBeReadShowsWhy)
{
    TTableImport Import(TDbaseBuilder().Field("NAME", 'C', 10).Field("QTY", 'N', 5).Record({"Ada", "1****"})
                            .Record({"Bob", "    5"}));
    const auto Why = "!File \"" + Import.SourceFileName + "\", record 1, field 'QTY': '1****' is no number";
    EXPECT_THAT(RowsIn(Import.Look({})), ElementsAre("1:|Ada|" + Why, "2:|Bob|5"));
}

TEST(Kvi2bdeLook, ANameThatIsNoFieldShowsTheConstantThatARunImports)
{
    TTableImport Import;
    const auto View = Import.Look({.Rows = 1, .Columns = {"qty", "Imported"}});
    EXPECT_THAT(RowsIn(View), ElementsAre("1:|3|Imported"));
}

TEST(Kvi2bdeLook, NamesInMappingsAreCutAsARunCutsThem)
{
    TTableImport Import(TDbaseBuilder(0x04).Field("CustomerName", 'C', 10).Record({"Ada"}));
    Import.TableType = ttDBase;
    EXPECT_THAT(RowsIn(Import.Look({.Columns = {"CustomerNamed"}})), ElementsAre("1:|Ada"));
    Import.TableType = ttFoxPro;
    EXPECT_THAT(RowsIn(Import.Look({.Columns = {"CustomerNamed"}})), ElementsAre("1:|CustomerNamed"));
}

TEST(Kvi2bdeLook, CharactersAreCountedWhereNamesAreCut)
{
    TTableImport Import(
        TDbaseBuilder(0x04).Language(0x03).Field("Gr\xF6\xDF\x65nklasse", 'C', 10).Record({"XL"}));
    Import.TableType = ttDBase;
    Import.SetMappings({"Name=Größenklassenname"});
    EXPECT_THAT(Import.Run(), ElementsAre("XL|"));
}

TEST(Kvi2bdeLook, AShortNameOfTwoFieldsIsAnErrorOfItsValues)
{
    TTableImport Import(NamesThatBeginAlike());
    Import.TableType = ttDBase;
    const auto Reason = "!" + Import.SourceFileName +
                        ": both field 'CustomerName' and field 'CustomerNation' begin with 'CustomerNa'";
    EXPECT_THAT(RowsIn(Import.Look({})), ElementsAre("1:|" + Reason + "|" + Reason));
}

TEST(Kvi2bdeLook, SaysWhatANameInAMappingMeans)
{
    const std::vector<TKvISourceColumn> Shown{{.Name = "CustomerName", .Title = "CustomerName"}};
    TTableImport Import;
    Import.TableType = ttDBase;
    EXPECT_EQ(Import.ResolveName("customername", Shown).Kind, snColumn);
    EXPECT_EQ(Import.ResolveName("CustomerNamed", Shown).Kind, snColumn);
    EXPECT_EQ(Import.ResolveName("CustomerNamed", Shown).Name, "CustomerName");
    EXPECT_EQ(Import.ResolveName("Customer", Shown).Kind, snConstant);
    Import.TableType = ttFoxPro;
    EXPECT_EQ(Import.ResolveName("CustomerNamed", Shown).Kind, snConstant);
}

TEST(Kvi2bdeLook, LetsGoOfTheTableAtItsEnd)
{
    TTableImport Import;
    Import.Look({});
    Import.EndLook();
    EXPECT_EQ(Import.SourceTable(), nullptr);
}

TEST(Kvi2bdeLook, OpensTheTableOnceForAllLooksAndARunOpensItAnew)
{
    TTableImport Import;
    Import.Look({});
    const auto* const Table = Import.SourceTable();
    Import.Folder.Write("people.dbf", Numbers(5).Build());
    Import.Look({});
    EXPECT_EQ(Import.SourceTable(), Table);
    EXPECT_EQ(Table->FieldCount(), 2);
    Import.SetMappings({"Qty=NO"});
    EXPECT_THAT(Import.Run(), ElementsAre("|1", "|2", "|3", "|4", "|5"));
    EXPECT_EQ(Import.SourceTable(), nullptr);
}

TEST(Kvi2bdeLook, EveryLookBeginsWithTheFirstRecord)
{
    TTableImport Import(Numbers(5));
    const TLines All{"1:|1", "2:|2", "3:|3", "4:|4", "5:|5"};
    EXPECT_EQ(RowsIn(Import.Look({})), All);
    EXPECT_EQ(RowsIn(Import.Look({})), All);
    Import.Extensions = {xbKeepsToRows};
    Import.RowFirst = 2;
    Import.RowLast = 3;
    EXPECT_THAT(RowsIn(Import.Look({})), ElementsAre("2:|2", "3:|3"));
    Import.RowLast = 4;
    EXPECT_THAT(RowsIn(Import.Look({})), ElementsAre("2:|2", "3:|3", "4:|4"));
}

TEST(Kvi2bdeLook, ALookHelpsNoRunThatHasNoMappings)
{
    TTableImport Import;
    Import.Look({});
    Import.Mappings().Clear();
    EXPECT_THAT(Import.Run(irFailed), IsEmpty());
    EXPECT_THAT(Import.ErrorMessage(), HasSubstr("mappings are needed"));
}

TEST(Kvi2bdeLook, TakesTheSettingsAsTheyAre)
{
    SetOemCodePage("866");
    TTableImport Import(TDbaseBuilder().Language(0x03).Field("NAME", 'C', 10).Record({"\x8F\xE0\xA8"}));
    EXPECT_NE(RowsIn(Import.Look({})), (TLines{"1:|При"}));
    Import.CharacterSet = csiASCII_MSDOS;
    EXPECT_THAT(RowsIn(Import.Look({})), ElementsAre("1:|При"));
    Import.SourceFileName = Import.Folder.Write("other.dbf", People().Build());
    EXPECT_THAT(RowsIn(Import.Look({.Rows = 1, .Columns = {}})), ElementsAre("1:|Ada|3"));
    SetOemCodePage("437");
}

TEST(Kvi2bdeLook, ATableThatCannotBeOpenedLeavesNothing)
{
    TTableImport Import;
    const auto Good = Import.SourceFileName;
    Import.SourceFileName = "/no/such.dbf";
    EXPECT_EQ(MessageOf([&] { Import.Look({}); }),
              "Cannot open file \"/no/such.dbf\": No such file or directory");
    EXPECT_EQ(Import.SourceTable(), nullptr);
    Import.SourceFileName = Good;
    EXPECT_EQ(Import.Look({}).Rows.size(), 3U);
}

TEST(Kvi2bdeLook, TheRecordOfASourceIsTheValuesOfItsFields)
{
    TTableImport Import(TDbaseBuilder().Field("NAME", 'C', 10).Field("QTY", 'N', 5).Record({"Ada", "    3"})
                            .Record({"Bob", "1****"}));
    std::vector<TVariant> Records;
    Import.OnAfterRecordEvent = [&](TKvImportBaseComponent& Sender, bool&) {
        Records.push_back(Sender.SourceRecord());
    };
    Import.Run();
    ASSERT_EQ(Records.size(), 2U);
    EXPECT_EQ(Records[0].HighBound(), 1);
    EXPECT_EQ(Records[0][0].ToText(), "Ada");
    EXPECT_EQ(Records[0][1].Kind(), vkInteger);
    EXPECT_EQ(Records[1][0].ToText(), "Bob");
    EXPECT_TRUE(Records[1][1].IsNull()) << "it cannot be read";
    EXPECT_TRUE(Import.SourceRecord().IsNull()) << "after the run";
}

TEST(Kvi2bdeLook, CancelIsSeenWhileRecordsAreSkipped)
{
    TTableImport Import(Numbers(10000));
    Import.Extensions = {xbKeepsToRows};
    Import.RowFirst = 10000;
    Import.SetMappings({"Qty=NO"});
    TPatience Observer(2);                          // before the first record, and on the way to it
    Import.SetObserver(&Observer);
    EXPECT_THAT(Import.Run(irCanceled), IsEmpty());
    EXPECT_EQ(Observer.Left, -1) << "asked once more, it says no";
    EXPECT_EQ(Import.Statistic.TotalImported, 0);
    Import.SetObserver(nullptr);
    EXPECT_THAT(Import.Run(), ElementsAre("|10000"));
}

// --- Properties --------------------------------------------------------------------------------------

TEST(Kvi2bde, RefusesToRunWithoutAFile)
{
    TTableImport Import;
    Import.SourceFileName = "";
    EXPECT_EQ(MessageOf([&] { Import.Execute(); }), "Property SourceFileName wasn't specified.");
    Import.SetDataSet(nullptr);
    EXPECT_EQ(MessageOf([&] { Import.Execute(); }), "Property DataSet wasn't specified.");
}

TEST(Kvi2bde, HasItsDefaults)
{
    const TKvImportFromBDE Import;
    EXPECT_EQ(Import.SourceFileName, "KvImport.KVI");
    EXPECT_EQ(Import.TableType, ttDefault);
    EXPECT_TRUE(Import.Extensions.IsEmpty());
}

TEST(Kvi2bde, PublishesItsProperties)
{
    TKvImportFromBDE Import;
    SetPropValue(Import, "SourceFileName", "a.dbf");
    SetPropValue(Import, "TableType", "ttFoxPro");
    SetPropValue(Import, "Extensions", 1);
    EXPECT_EQ(Import.SourceFileName, "a.dbf");
    EXPECT_EQ(Import.TableType, ttFoxPro);
    EXPECT_TRUE(Import.Extensions.Contains(xbOpensForMapping));
}

TEST(Kvi2bde, ASpecificationKeepsTheTypeOfTheTable)
{
    const TTempFolder Folder;
    TKvImportFromBDE Import;
    Import.TableType = ttDBase;
    Import.SaveSpecification("People", Folder / "people.kvi", false);
    EXPECT_THAT(Folder.Read("people.kvi"), HasSubstr("TableType=Paradox"));
    TKvImportFromBDE Loaded;
    Loaded.LoadSpecification(Folder / "people.kvi");
    EXPECT_EQ(Loaded.TableType, ttDBase);
    Folder.Write("people.kvi", "[Common]\nTableType=Paradox\n[Extensions]\nTableType=9\n");
    EXPECT_EQ(
        MessageOf([&] { Loaded.LoadSpecification(Folder / "people.kvi"); }),
        "Cannot read file \"" + Folder / "people.kvi" +
            "\": [Extensions] TableType: '9' is not a valid value for property TKvImportFromBDE.TableType");
}

TEST(Kvi2bde, AllKindsOfSourcesAreAvailable)
{
    const auto Formats = GetAvailableImportFormats();
    for (const auto Kind : {teParadox, teDBase, teText, teHTML, teXLS, teWKS, teQuattro, teXML, teAccess})
        EXPECT_TRUE(Formats.Contains(Kind)) << Kind;
}

// --- The preview -------------------------------------------------------------------------------------

TEST(LoadBDEPreview, ListsFieldsAndShowsRecords)
{
    const TTempFolder Folder;
    TStrings Columns{"something else"};
    TPreview Preview;
    EXPECT_THAT(Preview.Show(Folder.Write("a.dbf", People().Build()), true, &Columns),
                ElementsAre("2 1: Ada 3", "2 2: Cy ", "2 3: Dee 5"));
    EXPECT_EQ(Preview.FieldNames, "NAME;QTY");
    EXPECT_THAT(LinesOf(Columns), ElementsAre("NAME", "QTY"));
}

TEST(LoadBDEPreview, ShowsParadoxTables)
{
    const TTempFolder Folder;
    TPreview Preview;
    Preview.Flag = false;
    EXPECT_THAT(
        Preview.Show(Folder.Write("a.db", TParadoxBuilder().Field("WHO", 'A', 5).Record({"Eve"}).Build()),
                     false),
        ElementsAre("1 1: Eve"));
    EXPECT_EQ(Preview.FieldNames, "WHO");
}

TEST(LoadBDEPreview, ShowsTheFieldsThatAreNamed)
{
    const TTempFolder Folder;
    TStrings Columns{"stays"};
    TPreview Preview{.FieldNames = "qty;NAME;QTY"};
    EXPECT_THAT(Preview.Show(Folder.Write("a.dbf", People().Build()), true, &Columns),
                ElementsAre("3 1: 3 Ada 3", "3 2:  Cy ", "3 3: 5 Dee 5"));
    EXPECT_EQ(Preview.FieldNames, "qty;NAME;QTY");
    EXPECT_THAT(LinesOf(Columns), ElementsAre("stays"));
}

TEST(LoadBDEPreview, ShowsNineteenRecords)
{
    const TTempFolder Folder;
    const auto Calls = TPreview().Show(Folder.Write("a.dbf", Numbers(100).Build()), true);
    ASSERT_EQ(Calls.size(), 19u);
    EXPECT_EQ(Calls.back(), "1 19: 19");
}

TEST(LoadBDEPreview, TakesExtensions)
{
    const TTempFolder Folder;
    std::string FieldNames;
    int Calls = 0;
    const auto Name = Folder.Write("a.dbf", People().Build());
    const auto Count = [&Calls](auto&&...) { ++Calls; };
    LoadBDEPreview(nullptr, Name, FieldNames, true, nullptr, false, nullptr, Count, {xbKeepsToRows});
    EXPECT_EQ(Calls, 3);
}

TEST(LoadBDEPreview, ErrorsOfTheTableReachTheCaller)
{
    const TTempFolder Folder;
    const auto Name = Folder.Write("a.dbf", People().Build());
    TPreview Preview;
    EXPECT_THAT(MessageOf([&] { Preview.Show(Name, false); }), HasSubstr("a.dbf\" is no Paradox table"));
    EXPECT_THAT(MessageOf([&] { Preview.Show("/no/such.dbf", true); }),
                HasSubstr("No such file or directory"));
    Preview.FieldNames = "NAME;OTHER";
    EXPECT_EQ(MessageOf([&] { Preview.Show(Name, true); }), Name + ": field 'OTHER' not found");
}

} // namespace kv
