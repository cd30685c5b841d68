// What holds for every file, however it is damaged: a value is stored right or its record is refused with its
// place and a reason; nothing else changes the table, and nothing is lost in silence.
#include <gmock/gmock.h>

#include <map>

#include "KvDamage.h"
#include "KvExampleFiles.h"
#include "KvJobTestShop.h"
#include "KvNumberText.h"

namespace kv {

namespace {

constexpr char Packet[] = "<?xml version=\"1.0\"?><DATAPACKET><METADATA><FIELDS><FIELD attrname=\"ID\" "
                          "fieldtype=\"i4\"/><FIELD attrname=\"CITY\" fieldtype=\"string\"/></FIELDS>"
                          "</METADATA><ROWDATA><ROW ID=\"1\" CITY=\"Rom\"/><ROW ID=\"2\" CITY=\"Oslo\"/>"
                          "<ROW ID=\"3\"/></ROWDATA></DATAPACKET>";
constexpr char Page[] = "<!DOCTYPE html><html><body><table><tr><th>ID</th><th>CITY</th></tr>"
                        "<tr><td>1</td><td>Rom</td></tr><tr><td>2<td>M&uuml;n<tr><td>3</table></body></html>";
constexpr char Lines[] = "ID;CITY;AMOUNT\r\n1;Rom;1,234.50\r\n2;\"Os;lo\";\r\n3;K\xC3\xB6ln;-3\r\n";

/// One of every kind that needs no other program; the files that belong to tables stand beside them.
std::map<std::string, std::string> GoodFiles()
{
    std::map<std::string, std::string> Files{
        {"orders.csv", Lines}, {"orders.xml", Packet}, {"orders.html", Page}};
    for (const auto& Examples : {ExampleBooks(), ExampleTables()})
        for (const auto& Each : Examples)
            Files[Each.Name] = Each.Bytes;
    return Files;
}

int SumOf(const TJobFigures& F)
{
    return F.Added + F.Updated + F.Deleted + F.Refused + F.Failed + F.NotFound;
}

class KvJobDamage : public testing::Test, protected TJobTestShop
{
protected:
    KvJobDamage() { Execute("INSERT INTO orders VALUES (77, 'Bern', 7)"); }

    /// Runs the job; what ends it before the first record says why.
    void Run()
    {
        Observer = {};
        try {
            TJobRun Import(Job, Observer);
            Import.Prepare();
            Check(Import.Execute());
        }
        catch (const Exception& Error) {
            EXPECT_NE(Error.Message, "");
            EXPECT_EQ(Rows(), "77|Bern|7");
        }
    }

    void Check(const TJobOutcome& Outcome)
    {
        EXPECT_EQ(SumOf(Outcome.Figures), Outcome.Figures.Read);
        EXPECT_EQ(Outcome.Failure.has_value() || Outcome.StoredNone, Outcome.Result == joFailed);
        if (!Outcome.Failure) {
            EXPECT_EQ(Observer.Errors.size(), static_cast<std::size_t>(Outcome.Figures.Failed));
        }
        for (const auto& Error : Observer.Errors) {
            EXPECT_GT(Error.Position.Number, 0);
            EXPECT_NE(Error.Message, "");
        }
        EXPECT_EQ(Rows(), "77|Bern|7") << "it was only tried";
    }
};

TEST_F(KvJobDamage, LeavesEveryRecordCountedAndEveryEndExplained)
{
    constexpr TJobMapping Mappings[] = {jmByName, jmByPosition};
    constexpr TImportMode Modes[] = {imAppend, imAppendUpdate, imCopy};
    constexpr int Copies = 30;                      // of each file, the first of them whole
    const auto Files = GoodFiles();
    for (const auto& [Name, Bytes] : Files)
        Folder.Write(Name, Bytes);
    TDamage Damage(20240501);
    Job.Run.DryRun = true;
    for (const auto& [Name, Bytes] : Files) {
        if (Name.ends_with(".dbt") || Name.ends_with(".mb"))
            continue;
        for (int Copy = 0; Copy < Copies; ++Copy) {
            SCOPED_TRACE(Name + ", copy " + std::to_string(Copy));
            Job.Source = {.FileName = Folder.Write(Name, Copy == 0 ? Bytes : Damage.Of(Bytes, 512))};
            Job.Plan = {.Mapping = Mappings[Damage.Number(2)], .Mode = Modes[Damage.Number(3)]};
            Run();
        }
        Folder.Write(Name, Bytes);
    }
}

/// What a record holds, and what the table shall hold of it.
struct TModel
{
    std::string Line, Stored;
};

std::string Pick(TDamage& Random, std::initializer_list<const char*> Texts)
{
    return std::data(Texts)[Random.Number(Texts.size())];
}

TModel RandomRecord(TDamage& Random, std::map<int, bool>& Taken)
{
    const auto Id = Pick(Random, {"1", "2", "3", "40", " 5", "x", "0x1", "1.5", "99999999999999999999"});
    const auto City = Pick(Random, {"Rom", "Oslo", "Barcelona", "", "a;b", "K\xC3\xB6ln",
                                    "\xE4\xB8\x9C\xE4\xBA\xAC", "\"x\"", "#N/A"});
    TModel Record{.Line = Id + ",\"" + (City == "\"x\"" ? "\"\"x\"\"" : City) + "\"\n", .Stored = {}};
    const auto Number = TryTextToInt(Id);
    const bool IsNew = Number && *Number < 100 && !Taken[static_cast<int>(*Number)];
    if (IsNew && City != "Barcelona") {
        Taken[static_cast<int>(*Number)] = true;
        Record.Stored = std::to_string(*Number) + "|" + City + "|";
    }
    return Record;
}

TEST_F(KvJobDamage, AValueIsStoredRightOrItsRecordIsRefused)
{
    TDamage Random(20240502);
    for (int Round = 0; Round < 40; ++Round) {
        Execute("DELETE FROM orders");
        Observer = {};
        std::map<int, bool> Taken;
        std::map<int, std::string> Stored;          // by key
        std::string Csv = "ID,CITY\n";
        int Failed = 0;
        for (std::size_t Rest = 1 + Random.Number(12); Rest > 0; --Rest) {
            const auto Record = RandomRecord(Random, Taken);
            Csv += Record.Line;
            if (Record.Stored.empty())
                ++Failed;
            else
                Stored[std::stoi(Record.Stored)] = Record.Stored;
        }
        SCOPED_TRACE(Csv);
        const auto Outcome = Import(Csv);
        std::string Expected;
        for (const auto& [Id, Text] : Stored)
            Expected += (Expected.empty() ? "" : " ") + Text;
        EXPECT_EQ(Rows(), Expected);
        EXPECT_EQ(Outcome.Figures.Failed, Failed);
        EXPECT_EQ(Outcome.Result, Failed > 0 ? joRecordErrors : joDone);
        for (const auto& Error : Observer.Errors)
            EXPECT_NE(Error.Facts.Field, "");
    }
}

} // namespace

} // namespace kv
