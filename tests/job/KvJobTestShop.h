// KvJobTestShop - a job into a table of an SQLite database, and what it told.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "KvFormatSettings.h"
#include "KvJobFile.h"
#include "KvJobRun.h"
#include "KvJobTestSource.h"
#include "KvSqliteDatabase.h"
#include "KvSqliteQuery.h"

namespace kv {

/// Notes what it is told, and cancels when it is asked to.
struct TJobTestObserver : TJobObserver
{
    bool KeepsRunning() override { return CancelAfter < 0 || LastSeen.Read < CancelAfter; }
    bool RecordFailed(const TJobError& Error) override
    {
        Errors.push_back(Error);
        return !EndsAtErrors;
    }
    void Progress(const TJobFigures& Figures) override { LastSeen = Figures; }

    std::vector<TJobError> Errors;
    TJobFigures LastSeen;
    int CancelAfter = -1;                           // records that were told as progress; -1: never
    bool EndsAtErrors = false;
};

/// shop.db with a table "orders" of ID, CITY and AMOUNT, and a job that imports orders.csv.
struct TJobTestShop
{
    explicit TJobTestShop(
        const std::string& Columns = "ID INTEGER PRIMARY KEY, CITY VARCHAR(5), AMOUNT DECIMAL(10,2)")
    {
        RegisterSqliteDatabases();
        TSQLiteDatabase Database;
        Database.DatabaseName = Folder / "shop.db";
        Database.CreateIfMissing = true;
        Database.Execute("CREATE TABLE orders (" + Columns + ")");
        Job.Destination = {.Url = Folder / "shop.db", .Table = "orders"};
    }

    void Write(std::string_view Csv) { Job.Source.FileName = Folder.Write("orders.csv", Csv); }

    /// Runs the job on `Csv`.
    TJobOutcome Import(std::string_view Csv)
    {
        Write(Csv);
        return RunJob();
    }
    TJobOutcome RunJob()
    {
        TJobRun Import(Job, Observer);
        Import.Prepare();
        Findings = Import.Findings();
        return Import.Execute();
    }

    void Execute(std::string_view Sql)
    {
        TSQLiteDatabase Database;
        Database.DatabaseName = Folder / "shop.db";
        Database.Execute(Sql);
    }
    /// Values separated by "|", records by blanks.
    std::string Rows(const std::string& Sql = "SELECT * FROM orders ORDER BY ID")
    {
        FormatSettings() = {};                      // a job has left its own
        TSQLiteQuery Query;
        Query.DatabaseName = Folder / "shop.db";
        Query.SQL.SetText(Sql);
        Query.Open();
        std::string Text;
        for (; !Query.Eof(); Query.Next()) {
            Text += Text.empty() ? "" : " ";
            for (int I = 0; I < Query.FieldCount(); ++I)
                Text += (I > 0 ? "|" : "") + Query.Fields(I).AsString();
        }
        return Text;
    }

    const TTempFolder Folder;
    TJobSettings Job;
    TJobTestObserver Observer;
    std::vector<TJobFinding> Findings;
};

} // namespace kv
