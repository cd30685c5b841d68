#include "KvJobRun.h"

#include <gmock/gmock.h>

#include "KvJobTestShop.h"

namespace kv {

namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

struct KvJobRun : testing::Test, TJobTestShop
{
    int SumOf(const TJobFigures& F)
    {
        return F.Added + F.Updated + F.Deleted + F.Refused + F.Failed + F.NotFound;
    }
};

// Fates.

TEST_F(KvJobRun, CountsWhatBecomesOfEveryRecord)
{
    const auto Added = Import("ID,CITY,AMOUNT\n1,Rom,1.5\n2,Oslo,2\n");
    EXPECT_EQ(Added.Result, joDone);
    EXPECT_EQ(Added.Figures.Read, 2);
    EXPECT_EQ(Added.Figures.Added, 2);
    EXPECT_TRUE(Added.Complete);
    EXPECT_EQ(Added.KeptRecords, 2);
    EXPECT_EQ(Rows(), "1|Rom|1.5 2|Oslo|2");

    Job.Plan.Mode = imUpdate;
    const auto Updated = Import("ID,CITY\n1,Bern\n9,Wien\n");
    EXPECT_EQ(Updated.Figures.Updated, 1);
    EXPECT_EQ(Updated.Figures.NotFound, 1);
    EXPECT_EQ(Updated.Result, joDone);

    Job.Plan.Mode = imDelete;
    const auto Deleted = Import("ID\n2\n9\n");
    EXPECT_EQ(Deleted.Figures.Deleted, 1);
    EXPECT_EQ(Deleted.Figures.NotFound, 1);
    EXPECT_EQ(Rows(), "1|Bern|1.5");

    Job.Plan.Mode = imCopy;
    const auto Copied = Import("ID,CITY\n5,Graz\n");
    EXPECT_EQ(Copied.Emptied, 1);
    EXPECT_EQ(Copied.Figures.Added, 1);
    EXPECT_EQ(Copied.Figures.Deleted, 0);
    EXPECT_EQ(Rows(), "5|Graz|");
}

TEST_F(KvJobRun, AFailedRecordIsToldWithItsFactsAndLeftOut)
{
    const auto Outcome = Import("ID,CITY,AMOUNT\n1,Rom,1\nx,Oslo,2\n3,Barcelona,3\n1,Wien,4\n");
    EXPECT_EQ(Outcome.Result, joRecordErrors);
    EXPECT_EQ(Outcome.Figures.Failed, 3);
    EXPECT_EQ(SumOf(Outcome.Figures), Outcome.Figures.Read);
    EXPECT_EQ(Rows(), "1|Rom|1");
    ASSERT_THAT(Observer.Errors, SizeIs(3));
    const auto& First = Observer.Errors[0];
    EXPECT_EQ(First.Position.Text(), "line 3");
    EXPECT_EQ(First.Position.Offset, 23);
    EXPECT_EQ(First.Facts.Field, "ID");
    EXPECT_EQ(First.Facts.Value, "x");
    EXPECT_EQ(First.Facts.Rule, erConversion);
    EXPECT_EQ(First.Text(),
              Job.Source.FileName + ", line 3: 'x' is not a valid integer value for field 'ID'");
    EXPECT_EQ(Observer.Errors[1].Facts.Rule, erLength);
    EXPECT_EQ(Observer.Errors[2].Facts.Rule, erUnique);
}

// Limits.

TEST_F(KvJobRun, MoreErrorsThanTheLimitEndTheRunAndUndoIt)
{
    Job.Run.StopAfter = 1;
    const auto Outcome = Import("ID,CITY\n1,Rom\nx,Oslo\n3,Bern\ny,Wien\n5,Graz\n");
    EXPECT_EQ(Outcome.Result, joFailed);
    EXPECT_TRUE(Outcome.Stopped);
    EXPECT_EQ(Outcome.Figures.Read, 4) << "what comes after is not looked at";
    EXPECT_FALSE(Outcome.Complete);
    EXPECT_EQ(Rows(), "");
    Job.Run.StopAfter = 2;
    EXPECT_EQ(RunJob().Result, joRecordErrors);
    EXPECT_EQ(Rows(), "1|Rom| 3|Bern| 5|Graz|");
}

TEST_F(KvJobRun, AShareOfErrorsIsJudgedByTheRecordsThatAreExpected)
{
    Job.Run.StopShare = 0.25;
    EXPECT_EQ(Import("ID,CITY\nx,Rom\n2,Oslo\n3,Bern\n4,Wien\n").Result, joRecordErrors)
        << "a quarter is no more";
    const auto Outcome = Import("ID,CITY\nx,Rom\ny,Oslo\n13,Bern\n14,Wien\n");
    EXPECT_EQ(Outcome.Result, joFailed);
    EXPECT_TRUE(Outcome.Stopped);
    EXPECT_EQ(Rows(), "2|Oslo| 3|Bern| 4|Wien|");
}

TEST_F(KvJobRun, AnObserverEndsTheRunAtAnError)
{
    Observer.EndsAtErrors = true;
    const auto Outcome = Import("ID,CITY\n1,Rom\nx,Oslo\n3,Bern\n");
    EXPECT_EQ(Outcome.Result, joFailed);
    EXPECT_FALSE(Outcome.Stopped);
    ASSERT_TRUE(Outcome.Failure);
    EXPECT_THAT(Outcome.Failure->Text(),
                HasSubstr("line 3: 'x' is not a valid integer value for field 'ID'"));
    EXPECT_EQ(Rows(), "");
}

// What is kept.

TEST_F(KvJobRun, ADryRunHasAllFiguresAndChangesNothing)
{
    Execute("INSERT INTO orders VALUES (1, 'Rom', 1), (2, 'Oslo', 2)");
    Job.Run.DryRun = true;
    Job.Plan.Mode = imAppendUpdate;
    const auto Outcome = Import("ID,CITY\n1,Bern\n3,Wien\nx,Graz\n");
    EXPECT_EQ(Outcome.Result, joRecordErrors);
    EXPECT_TRUE(Outcome.DryRun);
    EXPECT_EQ(Outcome.Figures.Updated, 1);
    EXPECT_EQ(Outcome.Figures.Added, 1);
    EXPECT_EQ(Outcome.Figures.Failed, 1);
    EXPECT_FALSE(Outcome.Complete);
    EXPECT_EQ(Outcome.KeptRecords, 0);
    EXPECT_EQ(Rows(), "1|Rom|1 2|Oslo|2");
}

TEST_F(KvJobRun, ADryRunFailsWhereTheRunCouldNotCommit)
{
    Execute("CREATE TRIGGER t BEFORE INSERT ON orders WHEN NEW.ID = 3"
            " BEGIN SELECT RAISE(ROLLBACK, 'no'); END");
    for (const bool IsDry : {true, false}) {
        Job.Run.DryRun = IsDry;
        const auto Outcome = Import("ID,CITY\n1,Bern\n3,Wien\n");
        EXPECT_EQ(Outcome.Result, joFailed);
        ASSERT_TRUE(Outcome.Failure);
        EXPECT_THAT(Outcome.Failure->Text(), HasSubstr("there is nothing to commit"));
        EXPECT_EQ(Rows(), "");
    }
}

TEST_F(KvJobRun, ForeignKeysHoldUnlessTheyAreNotWanted)
{
    Execute("CREATE TABLE lines (ORDER_ID INTEGER REFERENCES orders);"
            "INSERT INTO orders VALUES (1, 'Rom', 1), (2, 'Oslo', 2); INSERT INTO lines VALUES (2)");
    Job.Plan.Mode = imDelete;
    auto Outcome = Import("ID,CITY\n1,Rom\n2,Oslo\n");
    ASSERT_FALSE(Findings.empty());
    EXPECT_EQ(Findings.back().Kind, jfHeldByOthers);
    EXPECT_EQ(Findings.back().Name, "lines");
    EXPECT_EQ(Outcome.Figures.Deleted, 1);
    EXPECT_EQ(Outcome.Figures.Failed, 1);
    EXPECT_EQ(Rows(), "2|Oslo|2");

    Job.Destination.ForeignKeys = false;
    Outcome = Import("ID,CITY\n2,Oslo\n");
    EXPECT_TRUE(Findings.empty());
    EXPECT_EQ(Outcome.Figures.Deleted, 1);
    EXPECT_EQ(Rows(), "");
}

TEST_F(KvJobRun, RecordsThatGoAlongWithADeletedOneAreTold)
{
    Execute("CREATE TABLE lines (ORDER_ID INTEGER REFERENCES orders ON DELETE CASCADE)");
    Job.Plan.Mode = imDelete;
    Import("ID,CITY\n1,Rom\n");
    ASSERT_FALSE(Findings.empty());
    EXPECT_EQ(Findings.back().Kind, jfChangesOthers);
    EXPECT_EQ(Findings.back().Name, "lines");
    Job.Plan.Mode = imAppend;
    Import("ID,CITY\n1,Rom\n");
    EXPECT_TRUE(Findings.empty());
}

TEST_F(KvJobRun, ADryRunKeepsNoBatchEither)
{
    Job.Run.DryRun = true;
    Job.Run.Batch = 1;
    EXPECT_EQ(Import("ID,CITY\n1,Bern\n3,Wien\n").Figures.Added, 2);
    EXPECT_EQ(Rows(), "");
}

TEST_F(KvJobRun, BatchesThatWereFullStayWhenTheRunFails)
{
    Job.Run.Batch = 2;
    Observer.EndsAtErrors = true;
    const auto Outcome = Import("ID,CITY\n1,Rom\n2,Oslo\n3,Bern\nx,Wien\n");
    EXPECT_EQ(Outcome.Result, joFailed);
    EXPECT_FALSE(Outcome.Complete);
    EXPECT_EQ(Outcome.KeptRecords, 2);
    EXPECT_EQ(Rows(), "1|Rom| 2|Oslo|");
}

TEST_F(KvJobRun, CancellingUndoesTheRun)
{
    Observer.CancelAfter = 1024;
    std::string Csv = "ID,CITY\n";
    for (int I = 1; I <= 5000; ++I)
        Csv += std::to_string(I) + ",Rom\n";
    const auto Outcome = Import(Csv);
    EXPECT_EQ(Outcome.Result, joCancelled);
    EXPECT_FALSE(Outcome.Failure);
    EXPECT_EQ(Outcome.Figures.Read, 1024);
    EXPECT_EQ(Rows(), "");
}

TEST_F(KvJobRun, ACancelledCopyRemovesNothing)
{
    Execute("INSERT INTO orders VALUES (1, 'Rom', 1), (2, 'Oslo', 2)");
    Job.Plan.Mode = imCopy;
    Write("ID,CITY\n5,Graz\n");
    TJobRun Run(Job, Observer);
    Run.Prepare();
    Observer.CancelAfter = 0;
    const auto& Outcome = Run.Execute();
    EXPECT_EQ(Outcome.Result, joCancelled);
    EXPECT_EQ(Outcome.Emptied, 0);
    EXPECT_EQ(Rows(), "1|Rom|1 2|Oslo|2");
}

TEST_F(KvJobRun, AConstraintThatIsCheckedAtTheEndFailsTheRun)
{
    TJobTestShop Shop(
        "ID INTEGER PRIMARY KEY, CITY TEXT REFERENCES orders (ID) DEFERRABLE INITIALLY DEFERRED");
    for (const bool IsDry : {true, false}) {
        Shop.Job.Run.DryRun = IsDry;
        const auto Outcome = Shop.Import("ID,CITY\n1,7\n");
        EXPECT_EQ(Outcome.Result, joFailed);
        ASSERT_TRUE(Outcome.Failure);
        EXPECT_EQ(Outcome.Failure->Facts.Rule, erForeignKey);
        EXPECT_EQ(Shop.Rows(), "");
    }
}

// Separators beyond the rows that are looked at.

struct KvJobRunOfAmounts : KvJobRun
{
    /// 300 amounts; one of the last is `Odd`.
    TJobOutcome ImportWith(const std::string& Odd)
    {
        std::string Csv = "ID;CITY;AMOUNT\n";
        for (int I = 1; I <= 300; ++I)
            Csv += std::to_string(I) + ";Rom;" + (I == 290 ? Odd : "1,234") + "\n";
        return Import(Csv);
    }
};

TEST_F(KvJobRunOfAmounts, OneThatSeparatesNoThousandsIsAnErrorOfItsRecord)
{
    for (const bool IsChecked : {true, false}) {
        Job.Formats.CheckThousands = IsChecked;     // of the rows that are looked at
        Execute("DELETE FROM orders");
        const auto Outcome = ImportWith("1,5");
        EXPECT_EQ(Outcome.Result, joRecordErrors);
        EXPECT_EQ(Outcome.Figures.Failed, 1);
        EXPECT_EQ(Outcome.Figures.Added, 299);
        ASSERT_EQ(Observer.Errors.size(), 1U);
        EXPECT_EQ(Observer.Errors[0].Position.Text(), "line 291");
        EXPECT_EQ(Observer.Errors[0].Facts.Value, "1,5");
        Observer.Errors.clear();
    }
    EXPECT_EQ(Rows("SELECT DISTINCT AMOUNT FROM orders"), "1234");
}

// Text of another code page.

TEST_F(KvJobRun, TextThatIsNoUtf8IsToldWhereverItStands)
{
    std::string Csv = "ID,CITY\n";
    for (int I = 1; I <= 300; ++I)
        Csv += std::to_string(I) + (I < 290 ? ",Rom\n" : ",K\xF6ln\n");
    const auto Outcome = Import(Csv);
    EXPECT_THAT(Findings, IsEmpty());
    ASSERT_THAT(Outcome.Remarks, SizeIs(1));
    EXPECT_EQ(Outcome.Remarks[0].Kind, jfLegacyText);
    EXPECT_EQ(Outcome.Remarks[0].Place, "line 291");
    EXPECT_EQ(Outcome.Remarks[0].Value, "windows-1252");
    Execute("DELETE FROM orders");
    EXPECT_THAT(Import("ID,CITY\n1,K\xF6ln\n").Remarks, IsEmpty()) << "it was told before the run";
    Execute("DELETE FROM orders");
    EXPECT_THAT(Import("ID,CITY\n1,Köln\n").Remarks, IsEmpty());
}

// Copies.

TEST_F(KvJobRun, ACopyThatStoresNoneIsUndone)
{
    Execute("INSERT INTO orders VALUES (1, 'Rom', 1), (2, 'Oslo', 2)");
    Job.Plan.Mode = imCopy;
    const auto Outcome = Import("ID,CITY\nx,Graz\ny,Wien\n");
    EXPECT_EQ(Outcome.Result, joFailed);
    EXPECT_TRUE(Outcome.StoredNone);
    EXPECT_FALSE(Outcome.Complete);
    EXPECT_EQ(Rows(), "1|Rom|1 2|Oslo|2");
    Job.Run.Batch = 1;
    EXPECT_EQ(RunJob().Result, joFailed);
    EXPECT_EQ(Rows(), "1|Rom|1 2|Oslo|2") << "an empty table is no batch either";
    EXPECT_EQ(Import("ID,CITY\nx,Graz\n5,Wien\ny,Bonn\n").Result, joRecordErrors);
    EXPECT_EQ(Rows(), "5|Wien|");
}

TEST_F(KvJobRun, ACopyOfNothingEmptiesTheTable)
{
    Execute("INSERT INTO orders VALUES (1, 'Rom', 1)");
    Job.Plan.Mode = imCopy;
    const auto Outcome = Import("ID,CITY\n");
    EXPECT_EQ(Outcome.Result, joDone);
    EXPECT_FALSE(Outcome.StoredNone);
    EXPECT_EQ(Outcome.Emptied, 1);
    EXPECT_EQ(Rows(), "");
}

// Refusals.

TEST_F(KvJobRun, IsRefusedBeforeAnythingHappens)
{
    const auto Kind = [this] {
        return RefusalOf([this] {
                   TJobRun Run(Job, Observer);
                   Run.Prepare();
               }).Kind;
    };
    Write("ID,CITY,AMOUNT\n1,Rom,1;5\n2,Oslo,1,5\n");
    Job.Destination.Table.clear();
    EXPECT_EQ(Kind(), jfTableMissing);
    Job.Destination.Table = "orders";
    Job.Formats.DateOrder = doYDM;
    EXPECT_EQ(Kind(), jfDateOrder);
    Job.Formats.DateOrder.reset();
    Job.Formats.DecimalSeparator = Job.Formats.ThousandSeparator = ',';
    EXPECT_EQ(Kind(), jfSameSeparators);
    Job.Formats = {};
    Job.Formats.CodePage = "klingon";
    EXPECT_EQ(Kind(), jfCodePage);
    Job.Formats = {};
    Write("ID;CITY;AMOUNT\n1;Rom;1,5\n");
    EXPECT_EQ(Kind(), jfNotThousands);
    Job.Formats.CheckThousands = false;
    EXPECT_EQ(RunJob().Result, joRecordErrors) << "it groups nothing";
    Write("ID;CITY;AMOUNT\n1;Rom;1,500\n");
    EXPECT_EQ(RunJob().Result, joDone);
    EXPECT_EQ(Rows(), "1|Rom|1500") << "as was asked for";
    Job.Source.FileName = Job.Destination.Url;
    EXPECT_EQ(Kind(), jfSameFile);
}

TEST_F(KvJobRun, AModeThatFindsRecordsWantsKeys)
{
    TJobTestShop Shop("ID INTEGER, CITY TEXT");
    Shop.Job.Plan.Mode = imUpdate;
    Shop.Write("ID,CITY\n1,Rom\n");
    const auto Found = RefusalOf([&] { Shop.RunJob(); });
    EXPECT_EQ(Found.Kind, jfKeysMissing);
    EXPECT_EQ(Found.Number, imUpdate);
    Shop.Job.Plan.Keys = {"id"};
    EXPECT_EQ(Shop.RunJob().Figures.NotFound, 1);
}

// What is told.

TEST_F(KvJobRun, TellsFindingsBeforeAndRemarksAfterTheRun)
{
    const auto Outcome = Import("ID;CITY\n1;Rom;x\n2\n");
    ASSERT_THAT(Findings, SizeIs(1));
    EXPECT_EQ(Findings[0].Kind, jfDelimiter);
    ASSERT_THAT(Outcome.Remarks, SizeIs(2));
    EXPECT_EQ(Outcome.Remarks[0].Kind, jfMoreValues);
    EXPECT_EQ(Outcome.Remarks[0].Number, 2);
    EXPECT_TRUE(Outcome.Remarks[0].Given) << "line 1 is a header";
    EXPECT_EQ(Outcome.Remarks[1].Kind, jfFewerValues);
    EXPECT_EQ(Outcome.Remarks[1].Number, 3);
}

TEST_F(KvJobRun, AHeaderAmongTheRecordsIsTold)
{
    Job.Plan.Mapping = jmByPosition;
    Job.Source.RowFirst = 1;
    const auto Outcome = Import("ID,CITY\n1,Rom\n");
    ASSERT_THAT(Findings, SizeIs(1));
    EXPECT_EQ(Findings[0].Kind, jfLooksLikeHeader);
    EXPECT_EQ(Outcome.Figures.Failed, 1);
}

TEST_F(KvJobRun, ProgressIsToldWithTheLastRecord)
{
    Import("ID,CITY\n1,Rom\n2,Oslo\n");
    EXPECT_EQ(Observer.LastSeen.Added, 2);
    EXPECT_THAT(Observer.Errors, IsEmpty());
}

} // namespace

} // namespace kv
