#include "KvAccess.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "KvAccessEngine.h"
#include "KvAccessScript.h"
#include "KvException.h"

namespace kv {

namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;

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

template <class TAction> TKvErrorFacts FactsOf(TAction Action)
{
    try {
        Action();
    }
    catch (const Exception& Error) {
        return Error.Facts;
    }
    return {.Place = "nothing was raised"};
}

/// A database "shop.mdb" with the table Orders of three records, read by a script.
class KvAccess : public testing::Test
{
protected:
    KvAccess()
    {
        Script.Table(
            "MSysObjects", {{.Name = "Id"}}, 0, [](auto&) {}, ttSystem);
        Script.Table(
            "Orders",
            {{.Name = "ID", .Type = afLong, .Size = 4}, {.Name = "CITY", .Type = afText, .Size = 20}}, 3,
            [](TAccessWriter& Writer) {
                for (const char* const City : {"Rom", "", "Bern"}) {
                    Writer.Integer(City[0]);
                    *City ? Writer.Text(City) : Writer.Null();
                    Writer.EndRecord();
                }
            });
        Script.Table(
            "Elsewhere", {{.Name = "ID"}}, 0, [](auto&) {}, ttLinked);
        Script.Table("Empty", {{.Name = "ID"}}, 0, [](auto&) {});
    }

    std::unique_ptr<TAccessDatabase> Open(std::chrono::milliseconds Patience = 30s)
    {
        return MakeAccessEngine({Script.Program(), Patience})->OpenDatabase("shop.mdb");
    }
    std::unique_ptr<TAccessRecordset> OpenTable(const std::string& Name)
    {
        return Open()->OpenRecordset(Name, AccessTableRecordset, AccessNoOptions, AccessPessimistic);
    }
    std::vector<std::string> CitiesOf(TAccessRecordset& Records)
    {
        std::vector<std::string> Cities;
        for (; !Records.Eof(); Records.MoveNext())
            Cities.push_back(Records.Value(1).IsNull() ? "null" : Records.Value(1).ToText());
        return Cities;
    }

    const TTempFolder Folder;
    TAccessScript Script{Folder};
};

TEST_F(KvAccess, ListsEveryTableSystemTablesIncluded)
{
    const auto Database = Open();
    const auto& Tables = Database->TableDefs();
    ASSERT_EQ(Tables.size(), 4);
    EXPECT_EQ(Tables[0].Name, "MSysObjects");
    EXPECT_TRUE(Tables[0].IsSystem);
    EXPECT_EQ(Tables[1].Name, "Orders");
    EXPECT_FALSE(Tables[1].IsSystem || Tables[1].IsLinked);
    EXPECT_TRUE(Tables[2].IsLinked);
}

TEST_F(KvAccess, ARecordsetHasFieldsAndStandsOnTheFirstRecord)
{
    const auto Records = OpenTable("Orders");
    ASSERT_EQ(Records->Fields().size(), 2);
    EXPECT_EQ(Records->Fields()[1].Name, "CITY");
    EXPECT_EQ(Records->Fields()[1].Type, afText);
    EXPECT_EQ(Records->Fields()[1].Size, 20);
    EXPECT_EQ(Records->RecordCount(), 3);
    EXPECT_FALSE(Records->Eof());
    EXPECT_EQ(Records->Value(0).Integer(), 'R');
}

TEST_F(KvAccess, MovesThroughTheRecords)
{
    const auto Records = OpenTable("Orders");
    EXPECT_THAT(CitiesOf(*Records), ElementsAre("Rom", "null", "Bern"));
    Records->MoveNext();
    EXPECT_TRUE(Records->Eof()) << "past the end nothing moves";
}

TEST_F(KvAccess, MoveFirstBeginsAgain)
{
    const auto Records = OpenTable("Orders");
    Records->MoveFirst();
    EXPECT_THAT(CitiesOf(*Records), ElementsAre("Rom", "null", "Bern"));
    Records->MoveFirst();
    Records->MoveNext();
    Records->MoveFirst();
    EXPECT_THAT(CitiesOf(*Records), ElementsAre("Rom", "null", "Bern"));
    // The list of tables, the first pass, and two of the three calls: nothing had moved before the first.
    EXPECT_EQ(Folder.Read("log"),
              "tables shop.mdb \n"
              "records shop.mdb Orders\nrecords shop.mdb Orders\nrecords shop.mdb Orders\n");
}

TEST_F(KvAccess, AnEmptyTableIsAtItsEnd)
{
    const auto Records = OpenTable("Empty");
    EXPECT_TRUE(Records->Eof());
    Records->MoveFirst();
    EXPECT_TRUE(Records->Eof());
    EXPECT_EQ(MessageOf([&] { Records->Value(0); }), "shop.mdb: no current record in table Empty");
}

TEST_F(KvAccess, AClosedRecordsetHasNoRecords)
{
    const auto Records = OpenTable("Orders");
    Records->Close();
    EXPECT_TRUE(Records->Eof());
    Records->Close();
}

TEST_F(KvAccess, OnlyTableRecordsetsCanBeOpened)
{
    const auto Database = Open();
    EXPECT_EQ(MessageOf([&] { Database->OpenRecordset("Orders", 4, 0, 2); }),
              "shop.mdb: a recordset of type 4 cannot be opened");
}

TEST_F(KvAccess, WhatTheReaderReportsNamesTheDatabase)
{
    Script.Answer("records.Orders", AccessStream([](auto& Writer) { Writer.Error("has no table Orders"); }));
    EXPECT_EQ(MessageOf([&] { OpenTable("Orders"); }), "shop.mdb: has no table Orders");
}

TEST_F(KvAccess, ACrashIsAnErrorOfTheDatabase)
{
    Script.Answer("tables", Script.AnswerTo("tables").substr(0, 20));
    Script.Afterwards("kill -SEGV $$");
    EXPECT_EQ(MessageOf([&] { Open(); }),
              "shop.mdb: the reader of Access databases stopped: killed by signal 11 (Segmentation fault)");
}

TEST_F(KvAccess, ACrashAfterSomeRecordsKeepsThose)
{
    const auto Records = OpenTable("Orders");
    Script.Answer("records.Orders",
                  Script.AnswerTo("records.Orders").substr(0, Script.AnswerTo("records.Orders").size() - 5));
    Script.Afterwards("kill -SEGV $$");
    Records->MoveNext();
    Records->MoveFirst();
    Records->MoveNext();
    Records->MoveNext();
    EXPECT_EQ(Records->Value(1).ToText(), "Bern");
    EXPECT_EQ(MessageOf([&] { Records->MoveNext(); }),
              "shop.mdb: the reader of Access databases stopped: killed by signal 11 (Segmentation fault)");
}

TEST_F(KvAccess, AfterAnErrorThereIsNoCurrentRecord)
{
    Script.Answer("records.Orders", AccessStream([](TAccessWriter& Writer) {
                      Writer.Field({.Name = "ID", .Type = afLong});
                      Writer.Count(2);
                      Writer.Integer(7);
                      Writer.EndRecord();
                      Writer.Error("record 2 of table Orders is damaged: it cannot be taken apart");
                  }));
    const auto Records = OpenTable("Orders");
    EXPECT_EQ(Records->Value(0).Integer(), 7);
    EXPECT_EQ(MessageOf([&] { Records->MoveNext(); }),
              "shop.mdb: record 2 of table Orders is damaged: it cannot be taken apart");
    EXPECT_TRUE(Records->Eof());
    EXPECT_EQ(MessageOf([&] { Records->Value(0); }), "shop.mdb: no current record in table Orders");
    Records->MoveFirst();
    EXPECT_EQ(Records->Value(0).Integer(), 7);
    Records->Close();
    Script.Answer("records.Orders", "");
    for (int Time = 0; Time < 2; ++Time)
        EXPECT_EQ(MessageOf([&] { Records->MoveFirst(); }),
                  "shop.mdb: the reader of Access databases stopped before its end");
}

TEST_F(KvAccess, AnotherProgramInItsPlaceIsAnError)
{
    Script.Answer("tables", "\x7F" "ELF and what else such a file has");
    EXPECT_EQ(MessageOf([&] { Open(); }),
              "shop.mdb: the reader of Access databases gave an answer that has no meaning (not its own)");
    Script.Answer("tables", "");
    EXPECT_EQ(MessageOf([&] { Open(); }), "shop.mdb: the reader of Access databases stopped before its end");
}

TEST_F(KvAccess, AHangIsAnErrorOfTheDatabase)
{
    Script.Answer("tables", "KVAC\1");
    Script.Afterwards("exec sleep 60");
    EXPECT_EQ(MessageOf([&] { Open(1s); }),
              "shop.mdb: the reader of Access databases stopped: it made no progress for 1 s");
}

TEST_F(KvAccess, AHangIsGivenUpWhenTheUserCancels)
{
    Script.Answer("tables", "KVAC\1");
    Script.Afterwards("exec sleep 60");
    const auto Engine = MakeAccessEngine({Script.Program()});
    Engine->SetContinue([] { return false; });
    const auto Facts = FactsOf([&] { Engine->OpenDatabase("shop.mdb"); });
    EXPECT_EQ(Facts.Rule, erCancelled);
    EXPECT_EQ(Facts.FileName, "shop.mdb");
}

TEST_F(KvAccess, DamageSaysWhichRecordAndWhichFieldAsFacts)
{
    const auto Answer = [](TAccessWriter& Writer) {
        Writer.Field({.Name = "NOTE", .Type = afMemo});
        Writer.Count(2);
        Writer.Refused("record 1 of table Notes, field NOTE: its value is damaged: not all of it is there");
        Writer.EndRecord();
        Writer.Damage("record 2 of table Notes is damaged: it cannot be taken apart");
    };
    Script.Table("Notes", {}, 0, [](auto&) {});
    Script.Answer("records.Notes", AccessStream(Answer));
    const auto Records = OpenTable("Notes");
    const auto OfValue = FactsOf([&] { Records->Value(0); });
    EXPECT_EQ(OfValue.FileName, "shop.mdb");
    EXPECT_EQ(OfValue.Place, "record 1");
    EXPECT_EQ(OfValue.Field, "NOTE");
    EXPECT_EQ(OfValue.Rule, erFormat);
    const auto OfRecord = FactsOf([&] { Records->MoveNext(); });
    EXPECT_EQ(OfRecord.FileName, "shop.mdb");
    EXPECT_EQ(OfRecord.Place, "record 2");
    EXPECT_EQ(OfRecord.Field, "");
    EXPECT_EQ(OfRecord.Rule, erFormat);
}

TEST_F(KvAccess, AnAnswerThatIsCutOffIsAnError)
{
    Script.Answer("records.Orders", Script.AnswerTo("records.Orders").substr(0, 30));
    EXPECT_EQ(MessageOf([&] { OpenTable("Orders"); }),
              "shop.mdb: the reader of Access databases stopped before its end");
}

TEST_F(KvAccess, AnswersOutOfTheirOrderAreErrors)
{
    const std::string OutOfOrder = "shop.mdb: the reader of Access databases gave an answer out of its order";
    const auto Tables = Script.AnswerTo("tables");
    Script.Answer("tables", Script.AnswerTo("records.Orders"));
    EXPECT_EQ(MessageOf([&] { Open(); }), OutOfOrder);
    Script.Answer("tables", Tables);
    Script.Answer("records.Orders", Tables);
    EXPECT_EQ(MessageOf([&] { OpenTable("Orders"); }), OutOfOrder);
    Script.Answer("records.Orders", AccessStream([](auto& Writer) {
                      for (int I = 0; I < 300; ++I)
                          Writer.Field({.Name = "F"});
                  }));
    EXPECT_EQ(MessageOf([&] { OpenTable("Orders"); }), OutOfOrder) << "more fields than a table can have";
}

TEST_F(KvAccess, AValueThatCannotBeReadNamesTheDatabase)
{
    Script.Table("Notes", {{.Name = "NOTE", .Type = afMemo}}, 1, [](TAccessWriter& Writer) {
        Writer.Refused("record 1 of table Notes, field NOTE: its value is damaged: not all of it is there");
        Writer.EndRecord();
    });
    const auto Records = OpenTable("Notes");
    EXPECT_EQ(MessageOf([&] { Records->Value(0); }),
              "shop.mdb: record 1 of table Notes, field NOTE: its value is damaged: not all of it is there");
}

TEST_F(KvAccess, EnginesAreCreatedByTheNameOfTheirClass)
{
    EXPECT_EQ(MessageOf([] { CreateAccessEngine("DAO.DBEngine.99"); }),
              "There is no automation class DAO.DBEngine.99");
    const auto Before =
        RegisterAccessEngine("DAO.DBEngine.36", [this] { return MakeAccessEngine({Script.Program()}); });
    EXPECT_TRUE(Before);
    EXPECT_EQ(CreateAccessEngine("DAO.DBEngine.36")->OpenDatabase("shop.mdb")->TableDefs().size(), 4);
    RegisterAccessEngine("DAO.DBEngine.36", Before);
}

TEST_F(KvAccess, AClassCanBeTakenAway)
{
    EXPECT_FALSE(RegisterAccessEngine("My.Engine", [] { return MakeAccessEngine({}); }));
    EXPECT_TRUE(RegisterAccessEngine("My.Engine", nullptr));
    EXPECT_EQ(MessageOf([] { CreateAccessEngine("My.Engine"); }), "There is no automation class My.Engine");
}

} // namespace

} // namespace kv
