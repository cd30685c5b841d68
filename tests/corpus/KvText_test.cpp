// Text files of other programs, compared with what Python's csv module reads from them.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "KvCodePage.h"
#include "KvCorpus.h"
#include "KvFile.h"
#include "KvMemoryDataSet.h"
#include "Kvi2txt.h"

namespace kv {

namespace {

namespace fs = std::filesystem;

using TRow = std::vector<std::string>;              // no value reads as no characters

/// What is right although the rows differ, and in how many files or values.
enum TRule { ruBlankIsNoValue, ruEmptyLineIsARecord, ruSeparatorLineIsARecord, ruMarkTellsUtf16, RuleCount };
constexpr std::string_view RuleTexts[RuleCount] = {
    "a value of blanks only is no value",
    "an empty line is a record without values",
    "a first line \"sep=;\" is a record like any other",
    "UTF-16 without a byte order mark is not recognised (converted before the comparison)"};
using TRuleCounts = std::map<TRule, int>;

/// How Python read a file.
struct TDump
{
    std::string Encoding;
    char Delimiter;
    std::vector<TRow> Rows;
};

TDump ReadDump(const fs::path& Path)
{
    const auto Json = nlohmann::json::parse(std::ifstream(Path));
    return {.Encoding = Json["encoding_assumed"],
            .Delimiter = Json["delimiter_assumed"].get<std::string>().at(0),
            .Rows = Json["rows"]};
}

/// The rows of a file, `Columns` values each, imported with all extensions. UTF-8.
std::vector<TRow> ImportRows(const fs::path& Path, char Delimiter, std::size_t Columns)
{
    TMemoryDataSet Table;
    TKvImportFromText Import;
    std::vector<TFieldDef> Fields;
    for (std::size_t I = 1; I <= Columns; ++I) {
        Fields.push_back({.Name = "F" + std::to_string(I), .DataType = ftMemo});
        Import.Mappings().Add(Fields.back().Name + "=Field" + std::to_string(I));
    }
    Table.SetFieldDefs(Fields);
    Table.Open();
    Import.SetDataSet(&Table);
    Import.AnimatedStatus = false;
    Import.SourceFileName = Path.string();
    Import.SetFieldDelimiterCustom(Delimiter);
    Import.Extensions = {xtDoubledQualifiers, xtLongLines, xtByteOrderMark};
    Import.Execute();
    EXPECT_EQ(Import.Statistic.Result, irExecuted) << Import.ErrorMessage();

    std::vector<TRow> Rows;
    std::string Buffer;
    for (Table.First(); !Table.Eof(); Table.Next()) {
        auto& Row = Rows.emplace_back();
        for (int I = 0; I < Table.FieldCount(); ++I)
            Row.emplace_back(AnsiToUtf8(Table.Fields(I).AsString(), Buffer));
    }
    return Rows;
}

/// A copy of a file in another encoding than its own, where that cannot be told from the file.
class TConverted
{
public:
    TConverted(const fs::path& Source, const std::string& Encoding)
        : Path(fs::path(testing::TempDir()) / ("kvcorpus_" + Source.filename().string()))
    {
        std::ofstream(Path, std::ios::binary)
            << CodePageToUtf8(ReadFileBytes(Source.string()).View(), Encoding);
    }
    TConverted(const TConverted&) = delete;
    TConverted& operator=(const TConverted&) = delete;
    ~TConverted() { fs::remove(Path); }

    const fs::path Path;
};

bool IsBlank(std::string_view Text)
{
    return std::ranges::all_of(Text, [](char Char) { return static_cast<unsigned char>(Char) <= ' '; });
}

/// Whether a row says what Python's says, with the rules that explain a difference.
bool Agrees(const TRow& Ours, const TRow& Python, TRuleCounts& Rules)
{
    if (Python.empty())
        ++Rules[ruEmptyLineIsARecord];
    for (std::size_t I = 0; I < Ours.size(); ++I) {
        const auto Theirs = I < Python.size() ? std::string_view(Python[I]) : std::string_view();
        if (Ours[I] == Theirs)
            continue;
        if (!Ours[I].empty() || !IsBlank(Theirs))
            return false;
        ++Rules[ruBlankIsNoValue];
    }
    return true;
}

std::vector<TRow> ImportAsNamed(const fs::path& File, const TDump& Dump, std::size_t Columns,
                                TRuleCounts& Rules)
{
    if (Dump.Encoding != "utf-16-be")
        return ImportRows(File, Dump.Delimiter, Columns);
    ++Rules[ruMarkTellsUtf16];
    return ImportRows(TConverted(File, "UTF-16BE").Path, Dump.Delimiter, Columns);
}

void CompareFile(const fs::path& File, const TDump& Dump, TRuleCounts& Rules)
{
    SCOPED_TRACE(File.filename().string());
    std::size_t Columns = 1;
    for (const auto& Row : Dump.Rows)
        Columns = std::max(Columns, Row.size());
    // One more, so that a value too many does not pass unseen.
    auto Rows = ImportAsNamed(File, Dump, Columns + 1, Rules);
    if (!Rows.empty() && Rows[0][0] == "sep=" && Rows.size() == Dump.Rows.size() + 1) {
        ++Rules[ruSeparatorLineIsARecord];
        Rows.erase(Rows.begin());
    }
    ASSERT_EQ(Rows.size(), Dump.Rows.size());
    for (std::size_t I = 0; I < Rows.size(); ++I)
        EXPECT_TRUE(Agrees(Rows[I], Dump.Rows[I], Rules))
            << "row " << I + 1 << ": " << testing::PrintToString(Rows[I]) << "\nPython: "
            << testing::PrintToString(Dump.Rows[I]);
}

} // namespace

TEST(KvText, AgreesWithPythonOnEveryFile)
{
    const auto Folder = CorpusFolder("text");
    if (!Folder)
        GTEST_SKIP() << "no files: KV_CORPUS names no folder with text/ and expected/text/";
    constexpr std::string_view DumpSuffix = ".pycsv.json";
    TRuleCounts Rules;
    int Files = 0;
    for (const auto& Entry : fs::directory_iterator(*Folder / "text")) {
        const auto Dump = *Folder / "expected" / "text" /
                          (Entry.path().filename().string() + std::string(DumpSuffix));
        ASSERT_TRUE(fs::exists(Dump)) << Dump;
        CompareFile(Entry.path(), ReadDump(Dump), Rules);
        ++Files;
    }
    std::cout << Files << " files compared; differences explained:\n";
    for (const auto& [Rule, Count] : Rules)
        std::cout << "  " << Count << " x " << RuleTexts[Rule] << '\n';
}

} // namespace kv
