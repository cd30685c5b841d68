// Access databases of other programs, compared with what two other readers of them say: mdbtools, which
// shares a library with ours, and mdb-reader, which does not.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <set>
#include <string>
#include <vector>

#include "KvAccessEngine.h"
#include "KvCorpus.h"
#include "KvCsvDump.h"
#include "KvException.h"

namespace kv {

namespace {

namespace fs = std::filesystem;
using TJson = nlohmann::json;
using TRow = std::vector<std::string>;

/// What is right although the readers differ.
enum TRule { ruRowsInTheOrderOfTheirPlaces, RuleCount };
constexpr std::string_view RuleTexts[RuleCount] = {
    "a record that was moved to another page stands where it was first, not where it went"};

fs::path DumpOf(const fs::path& Folder, const fs::path& File, const std::string& Tool)
{
    return Folder / "expected" / "access" / (File.filename().string() + Tool);
}

std::unique_ptr<TAccessDatabase> Open(const fs::path& File)
{
    return MakeAccessEngine({KV_ACCESS_PROGRAM, std::chrono::seconds(30)})->OpenDatabase(File.string());
}

std::unique_ptr<TAccessRecordset> OpenTable(TAccessDatabase& Database, const std::string& Table)
{
    return Database.OpenRecordset(Table, AccessTableRecordset, AccessNoOptions, AccessPessimistic);
}

/// The name of a table as a part of a file's name.
std::string FileNameOf(std::string Table)
{
    std::ranges::replace_if(Table, [](unsigned char Each) { return !std::isalnum(Each) && Each != '_'; },
                            '_');
    return Table;
}

std::string KindOf(TAccessFieldType Type)
{
    static const std::map<TAccessFieldType, std::string> Kinds = {
        {afBoolean, "boolean"}, {afByte, "byte"},         {afInteger, "integer"}, {afLong, "long"},
        {afCurrency, "currency"}, {afSingle, "float"},    {afDouble, "double"},   {afDateTime, "datetime"},
        {afBinary, "binary"},   {afText, "text"},         {afOle, "ole"},         {afMemo, "memo"},
        {afGuid, "repid"},      {afDecimal, "numeric"},   {afComplex, "complex"}, {afBigInt, "bigint"}};
    return Kinds.at(Type);
}

/// As mdb-reader writes it: "1981-12-12T00:00:00.000Z".
std::string DateText(TDateTime Date)
{
    using namespace std::chrono;
    const auto Days = std::floor(Date.Days);
    const auto Seconds = std::llround((Date.Days - Days) * 86400);
    const year_month_day Day = sys_days{1899y / December / 30} + days(static_cast<int>(Days));
    char Text[128];
    std::snprintf(Text, sizeof Text, "%04d-%02u-%02uT%02lld:%02lld:%02lld.000Z", static_cast<int>(Day.year()),
                  static_cast<unsigned>(Day.month()), static_cast<unsigned>(Day.day()), Seconds / 3600,
                  Seconds / 60 % 60, Seconds % 60);
    return Text;
}

constexpr std::string_view LowerDigits = "0123456789abcdef", UpperDigits = "0123456789ABCDEF";

std::string HexText(std::string_view Bytes, std::string_view HexDigits)
{
    std::string Text;
    for (const unsigned char Byte : Bytes) {
        Text += HexDigits[Byte >> 4];
        Text += HexDigits[Byte & 15];
    }
    return Text;
}

bool HoldsBytes(TAccessFieldType Type) { return Type == afOle || Type == afBinary; }

std::string AmountText(TCurrency Amount)
{
    char Text[40];
    std::snprintf(Text, sizeof Text, "%.4f", Amount.ToDouble());
    return Text;
}

/// A value as the dump of mdb-reader has it.
std::string DumpText(const TVariant& Value, TAccessFieldType Type)
{
    switch (Value.Kind()) {
    case vkNull:     return "null";
    case vkBoolean:  return Value.Boolean() ? "true" : "false";
    case vkDateTime: return TJson(DateText(Value.DateTime())).dump();
    case vkCurrency: return '"' + AmountText(Value.Currency()) + '"';
    case vkDouble:   return TJson(Value.Double()).dump();
    case vkString:   return TJson(HoldsBytes(Type) ? "0x" + HexText(Value.Text(), LowerDigits)
                                                   : Value.ToText()).dump();
    default:         return Type == afDecimal ? '"' + Value.ToText() + '"' : Value.ToText();
    }
}

/// A value as mdb-export writes it, which shows null as empty text.
std::string ExportText(const TVariant& Value, TAccessFieldType Type)
{
    switch (Value.Kind()) {
    case vkNull:     return "";
    case vkBoolean:  return Value.Boolean() ? "1" : "0";
    case vkDateTime: return DateText(Value.DateTime()).substr(0, 19).replace(10, 1, " ");
    case vkCurrency: return AmountText(Value.Currency());
    default:         return HoldsBytes(Type) ? HexText(Value.Text(), UpperDigits) : Value.ToText();
    }
}

template <class TText> std::vector<TRow> RowsOf(TAccessRecordset& Records, TText TextOf)
{
    std::vector<TRow> Rows;
    for (; !Records.Eof(); Records.MoveNext()) {
        auto& Row = Rows.emplace_back();
        for (std::size_t I = 0; I < Records.Fields().size(); ++I)
            Row.push_back(TextOf(Records.Value(static_cast<int>(I)), Records.Fields()[I].Type));
    }
    return Rows;
}

std::vector<TRow> RowsOf(const TJson& Table)
{
    std::vector<TRow> Rows;
    for (const auto& Record : Table["rows"]) {
        auto& Row = Rows.emplace_back();
        for (const auto& Column : Table["columns"]) {
            const auto& Value = Record[Column[0].get<std::string>()];
            const auto Kind = Column[1].get<std::string>();
            const bool IsReal = Value.is_number() && (Kind == "double" || Kind == "float");
            Row.push_back(IsReal ? TJson(Value.get<double>()).dump() : Value.dump());
        }
    }
    return Rows;
}

/// The same rows in another order say the same; that is counted.
void CompareRows(std::vector<TRow> Ours, std::vector<TRow> Theirs, std::map<TRule, int>& Rules)
{
    if (Ours == Theirs)
        return;
    const auto Unsorted = Ours;
    std::ranges::sort(Ours);
    std::ranges::sort(Theirs);
    if (Ours == Theirs)
        ++Rules[ruRowsInTheOrderOfTheirPlaces];
    else
        EXPECT_EQ(Unsorted, Theirs);
}

void CompareTable(TAccessRecordset& Records, const TJson& Dump, std::map<TRule, int>& Rules)
{
    const auto& Columns = Dump["columns"];
    ASSERT_EQ(Records.Fields().size(), Columns.size());
    for (std::size_t I = 0; I < Columns.size(); ++I) {
        const auto& Field = Records.Fields()[I];
        EXPECT_EQ(Field.Name, Columns[I][0].get<std::string>());
        EXPECT_EQ(KindOf(Field.Type), Columns[I][1].get<std::string>()) << Field.Name;
        const auto Bytes = Columns[I][2].get<std::uint32_t>();
        EXPECT_TRUE(Field.Size == Bytes || Field.Size * 2 == Bytes)
            << Field.Name; // two bytes a character since Jet 4
        EXPECT_TRUE(Field.Type != afDecimal || AccessTypeText(Field) == "Decimal (18, 0)")
            << AccessTypeText(Field);
    }
    EXPECT_EQ(Records.RecordCount(), Dump["rowCount"].get<int>());
    CompareRows(RowsOf(Records, DumpText), RowsOf(Dump), Rules);
}

TEST(KvAccessCorpus, AgreesWithMdbReader)
{
    const auto Folder = CorpusFolder("access");
    if (!Folder)
        GTEST_SKIP() << "no files: KV_CORPUS names no folder with access and expected/access";
    std::map<TRule, int> Rules;
    int Tables = 0;
    for (const auto& File : CorpusFiles(*Folder, "access")) {
        const auto Dump = TJson::parse(std::ifstream(DumpOf(*Folder, File, ".mdb-reader.json")));
        const auto Database = Open(File);
        for (const auto& [Table, Content] : Dump["tables"].items()) {
            SCOPED_TRACE(File.filename().string() + " " + Table);
            CompareTable(*OpenTable(*Database, Table), Content, Rules);
            ++Tables;
        }
    }
    EXPECT_EQ(Tables, 29);
    for (const auto& [Rule, Count] : Rules)
        std::cout << "  " << Count << " tables: " << RuleTexts[Rule] << '\n';
    EXPECT_EQ(Rules[ruRowsInTheOrderOfTheirPlaces], 1);
}

/// The first row has the names of the fields.
std::vector<TRow> RowsOfExport(const fs::path& Path)
{
    std::vector<TRow> Rows;
    for (const auto& Line : ReadCsvDump(Path)) {
        auto& Row = Rows.emplace_back();
        for (const auto& Value : Line)
            Row.push_back(Value.Text);
    }
    return Rows;
}

TEST(KvAccessCorpus, AgreesWithMdbExport)
{
    const auto Folder = CorpusFolder("access");
    if (!Folder)
        GTEST_SKIP() << "no files: KV_CORPUS names no folder with access and expected/access";
    std::map<TRule, int> Rules;
    int Tables = 0;
    for (const auto& File : CorpusFiles(*Folder, "access")) {
        const auto Database = Open(File);
        for (const auto& Table : Database->TableDefs()) {
            if (Table.IsSystem)
                continue;
            SCOPED_TRACE(File.filename().string() + " " + Table.Name);
            auto Theirs = RowsOfExport(DumpOf(*Folder, File, ".mdbtools." + FileNameOf(Table.Name) + ".csv"));
            ASSERT_FALSE(Theirs.empty());
            const auto Records = OpenTable(*Database, Table.Name);
            EXPECT_TRUE(std::ranges::equal(Records->Fields(), Theirs[0], {}, &TAccessField::Name));
            Theirs.erase(Theirs.begin());
            CompareRows(RowsOf(*Records, ExportText), Theirs, Rules);
            ++Tables;
        }
    }
    EXPECT_EQ(Tables, 29);
    EXPECT_EQ(Rules[ruRowsInTheOrderOfTheirPlaces], 1);
}

TEST(KvAccessCorpus, ListsTheTablesThatMdbtoolsLists)
{
    const auto Folder = CorpusFolder("access");
    if (!Folder)
        GTEST_SKIP() << "no files: KV_CORPUS names no folder with access and expected/access";
    for (const auto& File : CorpusFiles(*Folder, "access")) {
        SCOPED_TRACE(File.filename().string());
        std::vector<std::string> Ours, Theirs;
        const auto Database = Open(File);
        for (const auto& Table : Database->TableDefs())
            if (!Table.IsSystem)
                Ours.push_back(Table.Name);
        std::ifstream Dump(DumpOf(*Folder, File, ".mdbtools.tables.txt"));
        for (std::string Line; std::getline(Dump, Line);)
            if (!Line.empty())
                Theirs.push_back(Line);
        EXPECT_THAT(Ours, testing::UnorderedElementsAreArray(Theirs));
    }
}

TEST(KvAccessCorpus, SystemTablesCanBeReadToo)
{
    const auto Folder = CorpusFolder("access");
    if (!Folder)
        GTEST_SKIP() << "no files: KV_CORPUS names no folder with access and expected/access";
    for (const auto& File : CorpusFiles(*Folder, "access")) {
        SCOPED_TRACE(File.filename().string());
        const auto Database = Open(File);
        const auto Records = OpenTable(*Database, "MSysObjects");
        EXPECT_GE(RowsOf(*Records, DumpText).size(), Database->TableDefs().size());
    }
}

} // namespace

} // namespace kv
