#include "KvDataSet.h"

#include "KvException.h"
#include "KvMemoryDataSet.h"

namespace kv {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using TTexts = std::vector<std::string>;

/// Notes the calls of the base class; records are numbers from 1 to Count.
class TStubDataSet final : public TDataSet
{
public:
    ~TStubDataSet() override { Close(); }

    TPublishedProperties PublishedProperties() const override
    {
        TPublishedProperty Keys;
        Keys.Name = "IndexFieldName";
        Keys.Get = [](const TPersistent& Object) {
            return TVariant(dynamic_cast<const TStubDataSet&>(Object).Active() ? "ID" : "");
        };
        return {Keys};
    }

    int Count = 3;
    int Current = 1;
    std::string FailAt;
    TTexts Calls;
    std::int64_t LateRecord = -1;                   // that the error at FailAt knows of

protected:
    void InternalOpen() override
    {
        AddField({.Name = "ID", .DataType = ftInteger, .Required = true});
        AddField({.Name = "NAME"});
        Call("open");
    }
    void InternalClose() override { Call("close"); }
    void InternalFirst() override
    {
        Current = 1;
        Call("first");
    }
    void InternalNext() override
    {
        ++Current;
        Call("next");
    }
    bool InternalEof() override { return Current > Count; }
    int InternalRecordCount() override { return Count; }
    TVariant InternalGetValue(const TField& Field) override
    {
        return Field.Index() == 0 ? TVariant(Current) : Null;
    }
    void InternalInsert(const TRecordBuffer&) override
    {
        Call("insert");
        Current = ++Count;
    }
    void InternalUpdate(const TRecordBuffer&) override { Call("update"); }
    void InternalDelete() override
    {
        Call("delete");
        --Count;
    }
    bool InternalLocate(std::span<TField* const> Keys, std::span<const TVariant> Values,
                        TLocateOptions) override
    {
        std::string Entry = "locate";
        for (std::size_t I = 0; I < Keys.size(); ++I)
            Entry += " " + Keys[I]->FieldName() + "=" + Values[I].ToText();
        Call(Entry);
        return true;
    }

private:
    void Call(const std::string& Entry)
    {
        Calls.push_back(Entry);
        if (Entry == FailAt)
            throw EDatabaseError(Entry + " refused", {.Record = LateRecord});
    }
};

struct KvDataSet : testing::Test
{
    KvDataSet()
    {
        Table.Open();
        Table.Calls.clear();
    }

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

    static TKvErrorFacts FactsOf(const std::function<void()>& Act)
    {
        try {
            Act();
        }
        catch (const Exception& Error) {
            return Error.Facts;
        }
        ADD_FAILURE() << "nothing was raised";
        return {};
    }

    TStubDataSet Table;
};

// --- Opening and closing ----------------------------------------------------------------------------

TEST_F(KvDataSet, OpensOnceOnTheFirstRecord)
{
    TStubDataSet Fresh;
    EXPECT_FALSE(Fresh.Active());
    EXPECT_EQ(Fresh.State(), dsInactive);
    EXPECT_EQ(Fresh.FieldCount(), 0);
    Fresh.Open();
    Fresh.Open();
    EXPECT_THAT(Fresh.Calls, ElementsAre("open", "first"));
    EXPECT_EQ(Fresh.State(), dsBrowse);
    EXPECT_EQ(Fresh.FieldCount(), 2);
}

TEST_F(KvDataSet, ClosesOnceAndDropsTheRecordBeingWritten)
{
    Table.Append();
    Table.Fields(0).SetValue(9);
    Table.Close();
    Table.Close();
    EXPECT_THAT(Table.Calls, ElementsAre("close"));
    EXPECT_FALSE(Table.Active());
    EXPECT_EQ(Table.FieldCount(), 0);
}

TEST_F(KvDataSet, FailedOpenLeavesItClosed)
{
    for (const char* const Step : {"open", "first"}) {
        TStubDataSet Fresh;
        Fresh.FailAt = Step;
        EXPECT_THROW(Fresh.Open(), EDatabaseError);
        EXPECT_FALSE(Fresh.Active());
        EXPECT_EQ(Fresh.FieldCount(), 0);
        EXPECT_EQ(Fresh.Calls.back(), "close");
        Fresh.FailAt.clear();
        EXPECT_NO_THROW(Fresh.Open());
        EXPECT_EQ(Fresh.FieldCount(), 2);
    }
}

TEST_F(KvDataSet, ClosedDatasetRefusesEverything)
{
    Table.Close();
    const std::function<void()> Acts[] = {
        [&] { Table.First(); },  [&] { Table.Next(); },   [&] { Table.Eof(); },  [&] { Table.RecordCount(); },
        [&] { Table.Append(); }, [&] { Table.Edit(); },   [&] { Table.Post(); }, [&] { Table.Delete(); },
        [&] { Table.Locate("ID", 1); }};
    for (const auto& Act : Acts)
        EXPECT_EQ(MessageOf(Act), "TDataSet: cannot perform this operation on a closed dataset");
    EXPECT_NO_THROW(Table.Cancel());
}

// --- Moving -----------------------------------------------------------------------------------------

TEST_F(KvDataSet, ValuesOfSeveralFieldsAreReadAtOnceByTheirNames)
{
    Table.Next();
    const auto Values = Table.FieldValues("name; ID");
    EXPECT_EQ(Values.LowBound(), 0);
    EXPECT_EQ(Values.HighBound(), 1);
    EXPECT_TRUE(Values[0].IsNull());
    EXPECT_EQ(Values[1], TVariant(2));
    EXPECT_EQ(Table.FieldValues("ID").HighBound(), 0);
    EXPECT_EQ(MessageOf([&] { Table.FieldValues("ID;QTY"); }), "TDataSet: field 'QTY' not found");
}

TEST_F(KvDataSet, NextStopsPastTheLastRecord)
{
    int Steps = 0;
    for (Table.First(); !Table.Eof(); Table.Next())
        ++Steps;
    EXPECT_EQ(Steps, 3);
    Table.Next();
    EXPECT_EQ(Table.Current, 4);
    EXPECT_TRUE(Table.Eof());
    EXPECT_TRUE(Table.Fields(0).IsNull());
    Table.First();
    EXPECT_FALSE(Table.Eof());
}

TEST_F(KvDataSet, MovingPostsARecordThatWasAssignedTo)
{
    Table.Edit();
    Table.Fields(1).SetValue("Ada");
    Table.Next();
    EXPECT_THAT(Table.Calls, ElementsAre("update", "next"));
    Table.Append();
    Table.Fields(0).SetValue(7);
    Table.First();
    EXPECT_THAT(Table.Calls, ElementsAre("update", "next", "insert", "first"));
}

TEST_F(KvDataSet, MovingDropsARecordThatWasNotAssignedTo)
{
    Table.Edit();
    Table.Next();
    Table.Append();
    Table.Append();
    Table.First();
    EXPECT_THAT(Table.Calls, ElementsAre("next", "first"));
    EXPECT_EQ(Table.State(), dsBrowse);
}

TEST_F(KvDataSet, RecordThatCannotBePostedKeepsTheCursor)
{
    Table.Append();
    Table.Fields(1).SetValue("Ada");
    EXPECT_EQ(MessageOf([&] { Table.Next(); }), "Field 'ID' must have a value");
    EXPECT_EQ(Table.State(), dsInsert);
    EXPECT_THAT(Table.Calls, IsEmpty());
}

// --- Writing ----------------------------------------------------------------------------------------

TEST_F(KvDataSet, AppendedRecordBecomesCurrent)
{
    Table.Append();
    EXPECT_EQ(Table.State(), dsInsert);
    EXPECT_FALSE(Table.Eof());
    Table.Fields(0).SetValue(7);
    Table.Post();
    EXPECT_EQ(Table.State(), dsBrowse);
    EXPECT_EQ(Table.Current, 4);
}

TEST_F(KvDataSet, EditWithoutAssignmentUpdatesNothing)
{
    Table.Edit();
    EXPECT_EQ(Table.State(), dsEdit);
    Table.Edit();
    Table.Post();
    EXPECT_THAT(Table.Calls, IsEmpty());
}

TEST_F(KvDataSet, EditOfARecordBeingInsertedGoesOnInserting)
{
    Table.Append();
    Table.Fields(0).SetValue(7);
    Table.Edit();
    EXPECT_EQ(Table.State(), dsInsert);
    EXPECT_EQ(Table.Fields(0).AsString(), "7");
}

TEST_F(KvDataSet, NothingToPostEditOrDeleteIsSaid)
{
    EXPECT_EQ(MessageOf([&] { Table.Post(); }), "TDataSet: not in edit or insert mode");
    Table.Current = 4;
    EXPECT_EQ(MessageOf([&] { Table.Edit(); }), "TDataSet: no current record to edit");
    EXPECT_EQ(MessageOf([&] { Table.Delete(); }), "TDataSet: no current record to delete");
}

TEST_F(KvDataSet, CancelDropsTheRecordAndItsValues)
{
    Table.Edit();
    Table.Fields(1).SetValue("Ada");
    Table.Cancel();
    Table.Cancel();
    EXPECT_EQ(Table.State(), dsBrowse);
    Table.Append();
    EXPECT_TRUE(Table.Fields(1).IsNull());
    EXPECT_THAT(Table.Calls, IsEmpty());
}

TEST_F(KvDataSet, DeleteOfARecordBeingInsertedOnlyDropsIt)
{
    Table.Append();
    Table.Delete();
    EXPECT_THAT(Table.Calls, IsEmpty());
    EXPECT_EQ(Table.State(), dsBrowse);
}

TEST_F(KvDataSet, DeleteOfARecordBeingEditedDeletesIt)
{
    Table.Edit();
    Table.Fields(1).SetValue("Ada");
    Table.Delete();
    EXPECT_THAT(Table.Calls, ElementsAre("delete"));
    EXPECT_EQ(Table.State(), dsBrowse);
}

TEST_F(KvDataSet, RefusedPostKeepsTheRecordBeingWritten)
{
    Table.FailAt = "insert";
    Table.Append();
    Table.Fields(0).SetValue(7);
    EXPECT_EQ(MessageOf([&] { Table.Post(); }), "insert refused");
    EXPECT_EQ(Table.State(), dsInsert);
    EXPECT_EQ(Table.Fields(0).AsString(), "7");
    Table.FailAt.clear();
    Table.Post();
    EXPECT_THAT(Table.Calls, ElementsAre("insert", "insert"));
}

TEST_F(KvDataSet, RefusedAssignmentLeavesTheFieldUnassigned)
{
    Table.Edit();
    EXPECT_THROW(Table.Fields(0).SetValue("x"), EConvertError);
    EXPECT_EQ(Table.Fields(0).AsString(), "1");
    Table.Post();
    EXPECT_THAT(Table.Calls, IsEmpty());
}

TEST_F(KvDataSet, RequiredFieldsMustHaveAValue)
{
    Table.Append();
    EXPECT_EQ(MessageOf([&] { Table.Post(); }), "Field 'ID' must have a value");
    EXPECT_EQ(Table.State(), dsInsert);
    Table.Cancel();

    Table.Edit();                                   // the stored value counts ...
    Table.Fields(1).SetValue("Ada");
    EXPECT_NO_THROW(Table.Post());
    Table.Edit();
    Table.Fields(0).Clear();                        // ... until it is taken away
    EXPECT_EQ(MessageOf([&] { Table.Post(); }), "Field 'ID' must have a value");
}

TEST_F(KvDataSet, RequiredFieldThatTheDatabaseFillsMayStayUnassigned)
{
    TMemoryDataSet Memory;
    Memory.SetFieldDefs({{.Name = "ID", .DataType = ftAutoInc, .Required = true, .HasDefault = true}});
    Memory.Open();
    Memory.Append();
    EXPECT_NO_THROW(Memory.Post());
    Memory.Append();
    Memory.Fields(0).Clear();
    EXPECT_EQ(MessageOf([&] { Memory.Post(); }), "Field 'ID' must have a value");
}

// --- Locate -----------------------------------------------------------------------------------------

TEST_F(KvDataSet, LocateGivesKeysOfTheFieldsOwnKinds)
{
    EXPECT_TRUE(Table.Locate("ID", " 2 "));
    auto Both = TVariant::Array(5, 6);              // bounds need not start at 0
    Both[5] = "Ada";
    Both[6] = 2.0;
    EXPECT_TRUE(Table.Locate("name; id", Both));
    EXPECT_TRUE(Table.Locate("ID", Null));
    EXPECT_THAT(Table.Calls, ElementsAre("locate ID=2", "locate NAME=Ada ID=2", "locate ID="));
}

TEST_F(KvDataSet, LocateOfAValueWithoutMeaningFindsNothing)
{
    EXPECT_FALSE(Table.Locate("ID", "two"));
    EXPECT_THAT(Table.Calls, IsEmpty());
}

TEST_F(KvDataSet, LocateSaysWhatIsWrongWithItsKeys)
{
    EXPECT_EQ(MessageOf([&] { Table.Locate("ID;CITY", 1); }), "TDataSet: field 'CITY' not found");
    EXPECT_EQ(MessageOf([&] { Table.Locate("", 1); }), "TDataSet: field '' not found");
    EXPECT_EQ(MessageOf([&] { Table.Locate("ID;", 1); }), "TDataSet: field '' not found");
    EXPECT_EQ(MessageOf([&] { Table.Locate("ID;NAME", 1); }), "TDataSet: Locate needs 2 key values, not 1");
    EXPECT_EQ(MessageOf([&] { Table.Locate("ID", TVariant::Array(0, 1)); }),
              "TDataSet: Locate needs 1 key values, not 2");
    EXPECT_TRUE(Table.Locate("ID", 1));             // and goes on working
}

TEST_F(KvDataSet, LocatePostsFirst)
{
    Table.Edit();
    Table.Fields(1).SetValue("Ada");
    Table.Locate("ID", 1);
    EXPECT_THAT(Table.Calls, ElementsAre("update", "locate ID=1"));
}

TEST_F(KvDataSet, LocateForgetsItsFieldsWhenTheDatasetCloses)
{
    Table.Locate("ID", 1);
    Table.Close();
    Table.Open();
    EXPECT_TRUE(Table.Locate("ID", 1));
    EXPECT_EQ(Table.Calls.back(), "locate ID=1");
}

// --- Asking before opening --------------------------------------------------------------------------

TEST_F(KvDataSet, ClosedOneIsOpenedToTellItsFieldsAndKey)
{
    int Told = 0;
    const auto Handle = Table.AddDataChangeHandler([&] { ++Told; });
    Table.Close();
    Table.Calls.clear();
    const auto Defs = Table.DescribeFields();
    ASSERT_EQ(Defs.size(), 2u);
    EXPECT_EQ(Defs[0].Name, "ID");
    EXPECT_TRUE(Defs[0].Required);
    EXPECT_THAT(Table.Calls, ElementsAre("open", "first", "close"));
    EXPECT_EQ(Table.KeyFields(), "ID");
    EXPECT_FALSE(Table.Active());
    EXPECT_FALSE(Table.ControlsDisabled());
    EXPECT_EQ(Told, 0);
}

TEST_F(KvDataSet, OpenOneTellsItsFieldsAndKeyAsItStands)
{
    Table.Append();
    EXPECT_EQ(Table.DescribeFields().size(), 2u);
    EXPECT_EQ(Table.KeyFields(), "ID");
    EXPECT_EQ(Table.State(), dsInsert);
    EXPECT_THAT(Table.Calls, IsEmpty());
}

TEST_F(KvDataSet, OneThatCannotBeOpenedSaysWhy)
{
    Table.Close();
    Table.FailAt = "open";
    EXPECT_EQ(MessageOf([&] { Table.DescribeFields(); }), "open refused");
    EXPECT_EQ(MessageOf([&] { Table.KeyFields(); }), "open refused");
    EXPECT_FALSE(Table.Active() || Table.ControlsDisabled());
}

// --- Facts of errors --------------------------------------------------------------------------------

TEST_F(KvDataSet, ErrorsOfWritingNameTheRecordByItsTag)
{
    Table.RecordTag = 17;
    Table.Append();
    const auto Missing = FactsOf([&] { Table.Post(); });
    EXPECT_EQ(Missing.Field, "ID");
    EXPECT_EQ(Missing.Rule, erRequired);
    EXPECT_EQ(Missing.Record, 17);
    Table.Cancel();
    for (const char* const Step : {"insert", "update", "delete"}) {
        Table.FailAt = Step;
        ++Table.RecordTag;
        EXPECT_EQ(FactsOf([&] {
                      if (Table.FailAt == "delete")
                          Table.Delete();
                      Table.FailAt == "insert" ? Table.Append() : Table.Edit();
                      Table.Fields(0).SetValue(1);
                      Table.Post();
                  }).Record,
                  Table.RecordTag);
        Table.Cancel();
    }
}

TEST_F(KvDataSet, ErrorThatComesLateKeepsTheRecordThatItKnows)
{
    Table.RecordTag = 17;
    Table.FailAt = "insert";
    Table.LateRecord = 4;
    Table.Append();
    Table.Fields(0).SetValue(1);
    EXPECT_EQ(FactsOf([&] { Table.Post(); }).Record, 4);
}

TEST_F(KvDataSet, UnknownAndReadOnlyFieldsAreFacts)
{
    const auto Unknown = FactsOf([&] { Table.FieldByName("CITY"); });
    EXPECT_EQ(Unknown.Field, "CITY");
    EXPECT_EQ(Unknown.Rule, erMissing);
    TMemoryDataSet Memory;
    Memory.SetFieldDefs({{.Name = "SUM", .ReadOnly = true}});
    Memory.Open();
    Memory.RecordTag = 2;
    Memory.Append();
    const auto Fixed = FactsOf([&] { Memory.Fields(0).SetValue(1); });
    EXPECT_EQ(Fixed.Field, "SUM");
    EXPECT_EQ(Fixed.Rule, erReadOnly);
    EXPECT_EQ(Fixed.Record, 2);
}

// --- Telling that something changed -----------------------------------------------------------------

TEST_F(KvDataSet, EveryMoveAndChangeIsTold)
{
    int Told = 0;
    const auto Handle = Table.AddDataChangeHandler([&] { ++Told; });
    const std::pair<const char*, std::function<void()>> Acts[] = {
        {"First",  [&] { Table.First(); }},
        {"Next",   [&] { Table.Next(); }},
        {"Locate", [&] { Table.Locate("ID", 1); }},
        {"Delete", [&] { Table.Delete(); }},
        {"Cancel", [&] { Table.Edit(); Told = 0; Table.Cancel(); }},
        {"Post",   [&] { Table.Append(); Table.Fields(0).SetValue(1); Told = 0; Table.Post(); }}};
    for (const auto& [Name, Act] : Acts) {
        Told = 0;
        Act();
        EXPECT_EQ(Told, 1) << Name;
    }
}

TEST_F(KvDataSet, DisabledControlsAreToldOnceWhenTheLastIsEnabled)
{
    int Told = 0;
    const auto Handle = Table.AddDataChangeHandler([&] { ++Told; });
    Table.DisableControls();
    Table.DisableControls();
    Table.First();
    Table.Next();
    Table.EnableControls();
    EXPECT_TRUE(Table.ControlsDisabled());
    EXPECT_EQ(Told, 0);
    Table.EnableControls();
    EXPECT_FALSE(Table.ControlsDisabled());
    EXPECT_EQ(Told, 1);
    Table.EnableControls();                         // one too many
    EXPECT_EQ(Told, 1);
    Table.DisableControls();
    EXPECT_TRUE(Table.ControlsDisabled());
}

TEST_F(KvDataSet, EveryHandlerIsToldInTurnUntilItsHandleGoes)
{
    std::string Told;
    auto First = Table.AddDataChangeHandler([&] { Told += "a"; });
    const auto Second = Table.AddDataChangeHandler([&] { Told += "b"; });
    Table.First();
    First.reset();
    Table.First();
    EXPECT_EQ(Told, "abb");
}

TEST_F(KvDataSet, HandlersMayComeAndGoWhileTheyAreTold)
{
    std::string Told;
    TDataChangeHandle Once, Added;
    Once = Table.AddDataChangeHandler([&] {
        Told += "once ";
        Added = Table.AddDataChangeHandler([&] { Told += "added "; });
        Once.reset();
    });
    const auto Last = Table.AddDataChangeHandler([&] { Told += "last "; });
    Table.First();
    EXPECT_EQ(Told, "once last ");
    Table.First();
    EXPECT_EQ(Told, "once last last added ");
}

TEST_F(KvDataSet, HandleMayOutliveTheDataset)
{
    TDataChangeHandle Handle;
    int Told = 0;
    {
        TStubDataSet Short;
        Handle = Short.AddDataChangeHandler([&] { ++Told; });
        Short.Open();
    }
    Handle.reset();
    EXPECT_EQ(Told, 1);
}

TEST_F(KvDataSet, ListenersLearnOfItsEnd)
{
    class TListener final : public TComponent
    {
    public:
        TComponent* Removed = nullptr;

    protected:
        void Notification(TComponent& Component, TOperation Operation) override
        {
            if (Operation == opRemove)
                Removed = &Component;
        }
    } Listener;
    auto Gone = std::make_unique<TStubDataSet>();
    Gone->FreeNotification(Listener);
    const TComponent* const Address = Gone.get();
    Gone.reset();
    EXPECT_EQ(Listener.Removed, Address);
}

} // namespace

} // namespace kv
