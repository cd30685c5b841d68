// Every file of the corpus, imported: each value stands in a table of texts, and in one of the types that the
// columns of the source propose, as a look at the source shows it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <limits>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "KvCodePage.h"
#include "KvCorpus.h"
#include "KvDateText.h"
#include "KvDisplayText.h"
#include "KvException.h"
#include "KvFormatSettings.h"
#include "KvJobFormats.h"
#include "KvJobRun.h"
#include "KvJobSource.h"
#include "KvSqliteDatabase.h"
#include "KvSqliteQuery.h"
#include "KvTempFolder.h"
#include "KvText.h"

namespace kv {

namespace {

namespace fs = std::filesystem;

constexpr const char* Formats[] = {"text",  "html",    "xml",    "xls-biff2-4", "xls-biff5", "xls-biff8",
                                   "lotus", "quattro", "dbase",  "paradox",     "access"};

/// The column of a table in which values of the type belong.
std::string TypeFor(const TKvISourceColumn& Column)
{
    switch (Column.DataType) {
    case ftSmallint:
    case ftInteger:
    case ftWord:
    case ftAutoInc:
    case ftLargeint: return "INTEGER";
    case ftBoolean:  return "BOOLEAN";
    case ftFloat:    return "REAL";
    case ftCurrency:
    case ftBCD:      return "DECIMAL";
    case ftDate:     return "DATE";
    case ftTime:     return "TIME";
    case ftDateTime: return "TIMESTAMP";
    default:         return IsBinaryField(Column.DataType) ? "BLOB" : "TEXT";
    }
}

struct TFigures
{
    int Files = 0, Parts = 0, Values = 0;
    std::map<std::string, int> Unreadable;          // files and parts, by reason
    std::map<std::string, int> Refused;             // records, by reason
};

/// Notes which records were refused, and why.
struct TNotingObserver : TJobObserver
{
    bool RecordFailed(const TJobError& Error) override
    {
        Refused[Error.Position.Number] = Error.Message;
        return true;
    }
    std::map<std::int64_t, std::string> Refused;
};

struct TStoredValue
{
    std::string Class, Text;                        // as SQLite calls and shows it
};

bool IsSameMoment(TDateTime Value, const std::string& Text)
{
    const auto Parsed = TryTextToDateTime(Text);
    return Parsed && std::abs(Parsed->Days - Value.Days) < 0.6 / 86400;
}

bool IsSameNumber(const std::string& Source, const std::string& Stored)
{
    char* End = nullptr;
    const double Number = std::strtod(Source.c_str(), &End);
    const double Error = std::strtod(Stored.c_str(), nullptr) - Number;
    return *End == '\0' && std::abs(Error) <= std::abs(Number) * 1e-14;
}

bool IsBlank(const std::string& Text)
{
    return std::ranges::all_of(Text, [](unsigned char Each) { return Each <= ' '; });
}

/// As text stands for bytes in packets.
std::string Base64Of(const std::string& Bytes)
{
    constexpr char Digits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string Text;
    for (std::size_t I = 0; I < Bytes.size(); I += 3) {
        unsigned Three = 0;
        for (std::size_t J = I; J < I + 3; ++J)
            Three = Three * 256 + (J < Bytes.size() ? static_cast<unsigned char>(Bytes[J]) : 0);
        for (unsigned J = 0; J < 4; ++J)
            Text += I + J > Bytes.size() ? '=' : Digits[Three >> (18 - 6 * J) & 63];
    }
    return Text;
}

/// Digits for digits, days for days; a blank is no value.
bool Agrees(const TVariant& Source, const TStoredValue& Stored)
{
    const auto Bytes = Source.HasValue() ? Source.ToText() : std::string();
    std::string Buffer;
    if (Stored.Class == "null")
        return IsBlank(Bytes);
    if (Source.Kind() == vkDateTime)
        return IsSameMoment(Source.DateTime(), Stored.Text);
    if (Stored.Text == AnsiToUtf8(Bytes, Buffer) || Stored.Text == Bytes)
        return true;
    if (Stored.Class == "blob" && Base64Of(Stored.Text) == Bytes)
        return true;
    const bool IsNumber = Stored.Class == "integer" || Stored.Class == "real";
    if (Bytes == "True" || Bytes == "False")
        return SameText(Stored.Text, Bytes) || (IsNumber && Stored.Text == (Bytes == "True" ? "1" : "0"));
    return (IsNumber || Source.Kind() != vkString) && IsSameNumber(Bytes, Stored.Text);
}

bool HasUnreadable(const TKvISourceRow& Row)
{
    return std::ranges::any_of(Row.Values, [](const auto& Each) { return !Each.Error.empty(); });
}

/// An error without the value that it quotes.
std::string ReasonOf(const std::string& Message)
{
    const auto First = Message.find('\'');
    const auto Last = Message.find("' is ", First);
    return Last == std::string::npos ? Message : Message.substr(0, First) + "..." + Message.substr(Last);
}

/// One part of one file.
class TStoredPart
{
public:
    TStoredPart(const fs::path& File, const TKvISourceKind& Kind, const std::string& Part, TFigures& Told)
        : Figures(Told)
    {
        Job.Source.FileName = File.string();
        Job.Source.Part = Part;
        Job.Source.PartKind = Part.empty() ? spNone : Kind.Part;
        if (Kind.Names != cnSource)
            Job.Source.RowFirst = 2;                // what names the columns is of other types
        Job.Plan.Mapping = jmByPosition;
        Job.Destination = {.Url = Folder / "values.db", .Table = "stored"};
        Job.Formats.CheckThousands = false;
    }

    void Check()
    {
        TJobSource Source(Job.Source, [] { return true; });
        UseFormats(Job.Formats);
        Source.Look({.FindTitles = false, .Rows = std::numeric_limits<int>::max()});
        if (Source.Columns().empty() || Source.Columns().size() > 200)
            return;
        ++Figures.Parts;
        for (const bool IsTyped : {false, true}) {
            SCOPED_TRACE(IsTyped ? "typed" : "as texts");
            MakeTable(Source.Columns(), IsTyped);
            Import();
            Compare(Source.View());
        }
    }

private:
    void MakeTable(const std::vector<TKvISourceColumn>& Columns, bool IsTyped)
    {
        std::string Sql;
        Query = "SELECT ";
        for (std::size_t I = 0; I < Columns.size(); ++I) {
            const auto Name = "C" + std::to_string(I + 1);
            Sql += (I == 0 ? "" : ", ") + Name + " " + (IsTyped ? TypeFor(Columns[I]) : "TEXT");
            Query += (I == 0 ? "" : ", ") + ("typeof(" + Name + "), CAST(" + Name + " AS TEXT)");
        }
        Query += " FROM stored ORDER BY rowid";
        TSQLiteDatabase Database;
        Database.DatabaseName = Job.Destination.Url;
        Database.CreateIfMissing = true;
        Database.Execute("DROP TABLE IF EXISTS stored; CREATE TABLE stored (" + Sql + ")");
    }

    void Import()
    {
        Observer = {};
        TJobRun Run(Job, Observer);
        Run.Prepare();
        Outcome = Run.Execute();
        EXPECT_TRUE(Outcome.Complete) << (Outcome.Failure ? Outcome.Failure->Text() : "");
    }

    void Compare(const TKvISourceView& View)
    {
        TSQLiteQuery Rows;
        Rows.DatabaseName = Job.Destination.Url;
        Rows.SQL.SetText(Query);
        Rows.Open();
        for (const auto& Row : View.Rows) {
            SCOPED_TRACE(Row.Position.Text());
            if (const auto Refused = Observer.Refused.find(Row.Position.Number);
                Refused != Observer.Refused.end()) {
                ++Figures.Refused[ReasonOf(Refused->second)];
                EXPECT_TRUE(HasUnreadable(Row)) << Refused->second;
                continue;
            }
            ASSERT_FALSE(Rows.Eof()) << "records are missing";
            CompareRow(Row, Rows);
            Rows.Next();
        }
        EXPECT_TRUE(Rows.Eof()) << "more records than the look shows";
    }

    void CompareRow(const TKvISourceRow& Row, TSQLiteQuery& Rows)
    {
        const int Count = Rows.FieldCount() / 2;
        for (int I = 0; I < Count; ++I) {
            const auto Index = static_cast<std::size_t>(I);
            const auto Value = Index < Row.Values.size() ? Row.Values[Index] : TKvISourceValue();
            EXPECT_EQ(Value.Error, "") << "a value that cannot be read was stored";
            const TStoredValue Stored{.Class = Rows.Fields(2 * I).AsString(),
                                      .Text = Rows.Fields(2 * I + 1).AsString()};
            ++Figures.Values;
            EXPECT_TRUE(Agrees(Value.Value, Stored))
                << "C" << I + 1 << ": '" << Value.Value.ToText() << "' is stored as " << Stored.Class << " '"
                << Stored.Text << "'";
        }
    }

    const TTempFolder Folder;
    TJobSettings Job;
    TNotingObserver Observer;
    TJobOutcome Outcome;
    std::string Query;
    TFigures& Figures;
};

/// A file that its tables keep their memos in is no table.
bool IsCompanion(const fs::path& File)
{
    auto Extension = File.extension().string();
    std::ranges::transform(Extension, Extension.begin(), [](char Each) { return Each | ' '; });
    return std::set<std::string>{".dbt", ".fpt", ".mb", ".px"}.contains(Extension);
}

/// The parts of a file, by number or name; one without a name where the file is the table.
std::vector<std::string> PartsOf(TJobSource& Source)
{
    std::vector<std::string> Names;
    for (std::size_t I = 0; I < Source.Parts().size(); ++I) {
        const auto& Part = Source.Parts()[I];
        if (Source.Kind().Part == spSheet)
            Names.push_back(std::to_string(I + 1));
        else if (!Part.IsSystem && Part.Error.empty())
            Names.push_back(ToDisplay(Part.Name));
    }
    if (Names.empty() && Source.Kind().Part != spTable)
        Names.emplace_back();
    return Names;
}

template <class TAction> void CountRefusals(TFigures& Figures, TAction Action)
{
    try {
        Action();
    }
    catch (const EJobRefused& Refused) {
        ++Figures.Unreadable["refused as finding " + std::to_string(Refused.Finding.Kind)];
    }
    catch (const Exception& Error) {
        ++Figures.Unreadable[Error.Message];
    }
}

void CheckFile(const fs::path& File, TFigures& Figures)
{
    SCOPED_TRACE(File.filename().string());
    ++Figures.Files;
    CountRefusals(Figures, [&] {
        TJobSourceSettings Settings;
        Settings.FileName = File.string();
        TJobSource Source(Settings, [] { return true; });
        for (const auto& Part : PartsOf(Source)) {
            SCOPED_TRACE(Part);
            CountRefusals(Figures, [&] { TStoredPart(File, Source.Kind(), Part, Figures).Check(); });
        }
    });
}

class KvStoredValues : public testing::TestWithParam<const char*>
{
};

TEST_P(KvStoredValues, AreThoseThatALookShows)
{
    const auto Folder = CorpusFolder(GetParam());
    if (!Folder)
        GTEST_SKIP() << "no files: KV_CORPUS names no folder with " << GetParam() << "/";
    RegisterSqliteDatabases();
    TFigures Figures;
    for (const auto& File : CorpusFiles(*Folder, GetParam()))
        if (!IsCompanion(File))
            CheckFile(File, Figures);
    std::cout << Figures.Files << " files, " << Figures.Parts << " tables, " << Figures.Values << " values\n";
    for (const auto& [Reason, Count] : Figures.Unreadable)
        std::cout << "  " << Count << " not read: " << Reason << '\n';
    for (const auto& [Reason, Count] : Figures.Refused)
        std::cout << "  " << Count << " records refused: " << Reason << '\n';
    EXPECT_GT(Figures.Values, 0);
}

INSTANTIATE_TEST_SUITE_P(OfFormat, KvStoredValues, testing::ValuesIn(Formats), [](const auto& Info) {
    std::string Name = Info.param;
    std::erase(Name, '-');
    return Name;
});

} // namespace

} // namespace kv
