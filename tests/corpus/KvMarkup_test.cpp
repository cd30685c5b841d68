// HTML pages and data packets of other programs, compared with what independent tools read from them.
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

#include "KvCharacterReferences.h"
#include "KvCodePage.h"
#include "KvCorpus.h"
#include "KvCsvDump.h"
#include "KvMemoryDataSet.h"
#include "Kvi2html.h"
#include "Kvi2xml.h"

namespace kv {

namespace {

namespace fs = std::filesystem;

using TRow = std::vector<std::string>;              // no value reads as no characters

/// What is right although the values differ, and how often it was met.
class TRules
{
public:
    void Explain(const std::string& Rule) { ++Counts[Rule]; }
    void Print(int Files) const
    {
        std::cout << Files << " files compared; differences explained:\n";
        for (const auto& [Rule, Count] : Counts)
            std::cout << "  " << Count << " x " << Rule << '\n';
    }

private:
    std::map<std::string, int> Counts;
};

bool IsBlank(std::string_view Text)
{
    return std::ranges::all_of(Text, [](char Char) { return static_cast<unsigned char>(Char) <= ' '; });
}

/// Imports the given source columns as text. UTF-8.
std::vector<TRow> ImportRows(TKvImportFromMarkup& Import, const fs::path& Path,
                             const std::vector<std::string>& Columns)
{
    TMemoryDataSet Table;
    std::vector<TFieldDef> Fields;
    for (const auto& Column : Columns) {
        Fields.push_back({.Name = "F" + std::to_string(Fields.size()), .DataType = ftMemo});
        Import.Mappings().Add(Fields.back().Name + "=" + Column);
    }
    Table.SetFieldDefs(Fields);
    Table.Open();
    Import.SetDataSet(&Table);
    Import.AnimatedStatus = false;
    Import.Options = {};
    Import.SourceFileName = Path.string();
    Import.Execute();

    std::vector<TRow> Rows;
    std::string Buffer;
    for (Table.First(); !Table.Eof(); Table.Next()) {
        auto& Row = Rows.emplace_back();
        for (int I = 0; I < Table.FieldCount(); ++I)
            Row.emplace_back(AnsiToUtf8(Table.Fields(I).AsString(), Buffer));
    }
    return Rows;
}

// Data packets.

void CompareValue(const std::string& Ours, const nlohmann::json& Record, const std::string& Name,
                  TRules& Rules)
{
    const auto Found = Record.find(Name);
    if (Found == Record.end()) {
        EXPECT_EQ(Ours, "") << Name;
    }
    else if (!Found->is_string()) {
        EXPECT_EQ(Ours, "") << Name;
        Rules.Explain("records of a data set inside a record are not imported with it");
    }
    else if (Ours.empty() && IsBlank(Found->get<std::string>())) {
        if (!Found->get<std::string>().empty())
            Rules.Explain("a value of blanks only is no value");
    }
    else {
        EXPECT_EQ(Ours, Found->get<std::string>()) << Name;
    }
}

void ComparePacket(const fs::path& File, const nlohmann::json& Dump, TRules& Rules)
{
    SCOPED_TRACE(File.filename().string());
    std::vector<std::string> Names;
    for (const auto& Field : Dump["fields"])
        Names.push_back(Field["attrname"]);
    for (const auto& Record : Dump["rows"])
        for (const auto& [Name, Value] : Record.items())
            if (std::ranges::find(Names, Name) == Names.end())
                Names.push_back(Name);              // RowState has no field
    TKvImportFromXML Import;
    Import.Extensions = {xxTagSyntax, xxWholeNames, xxReferences, xxEncoding, xxMissingIsNull};
    const auto Rows = ImportRows(Import, File, Names);
    EXPECT_EQ(Import.Statistic.Result, irExecuted) << Import.ErrorMessage();
    ASSERT_EQ(Rows.size(), Dump["rows"].size());
    for (std::size_t I = 0; I < Rows.size(); ++I)
        for (std::size_t Column = 0; Column < Names.size(); ++Column)
            CompareValue(Rows[I][Column], Dump["rows"][I], Names[Column], Rules);
}

// The same by the older rules.

bool HasReference(const std::string& Text)
{
    return std::ranges::any_of(Text, [](char Char) {
        return static_cast<unsigned char>(Char) < ' ' ||
               std::string_view("<>&\"'").find(Char) != std::string_view::npos;
    });
}

/// An attribute before it whose name ends as the column is called.
bool IsValueOfLongerName(const std::string& Ours, const nlohmann::json& Record, const std::string& Name)
{
    return std::ranges::any_of(Record.items(), [&](const auto& Each) {
        return Each.key().size() > Name.size() && Each.key().ends_with(Name) && Each.value() == Ours;
    });
}

void CompareClassicValue(const std::string& Ours, const nlohmann::json& Record, const std::string& Name,
                         TRules& Rules)
{
    const auto Found = Record.find(Name);
    const auto Theirs = Found != Record.end() ? Found->get<std::string>() : std::string();
    if (Found == Record.end() && Ours == Name)
        Rules.Explain("classic: a missing attribute imports its name");
    else if (HasReference(Theirs) && Ours.find('&') != Ours.npos)
        Rules.Explain("classic: references are text");
    else if (Ours.empty() && IsBlank(Theirs))
        Rules.Explain("a value of blanks only is no value");
    else if (Ours != Theirs && IsValueOfLongerName(Ours, Record, Name))
        Rules.Explain("classic: a name matches the end of another");
    else
        EXPECT_EQ(Ours, Theirs) << Name;
}

void CompareClassicPacket(const fs::path& File, const nlohmann::json& Dump, TRules& Rules)
{
    SCOPED_TRACE(File.filename().string() + ", classic");
    std::vector<std::string> Names;
    for (const auto& Field : Dump["fields"])
        Names.push_back(Field["attrname"]);
    TKvImportFromXML Import;
    const auto Rows = ImportRows(Import, File, Names);
    EXPECT_EQ(Import.Statistic.Result, irExecuted) << Import.ErrorMessage();
    if (Rows.empty() && !Dump["rows"].empty())
        return Rules.Explain("classic: a text of two-byte characters ends at its first zero byte");
    if (Rows.size() > Dump["rows"].size())
        return Rules.Explain("classic: every tag inside ROWDATA is a record");
    ASSERT_EQ(Rows.size(), Dump["rows"].size());
    for (std::size_t I = 0; I < Rows.size(); ++I)
        for (std::size_t Column = 0; Column < Names.size(); ++Column)
            CompareClassicValue(Rows[I][Column], Dump["rows"][I], Names[Column], Rules);
}

void ExpectRefused(const fs::path& File, TRules& Rules)
{
    SCOPED_TRACE(File.filename().string());
    TKvImportFromXML Import;
    Import.Extensions = {xxTagSyntax, xxEncoding};
    EXPECT_TRUE(ImportRows(Import, File, {"N"}).empty());
    EXPECT_EQ(Import.Statistic.Result, irFailed);
    EXPECT_THAT(Import.ErrorMessage(), testing::HasSubstr(" is no XML: "));
    Rules.Explain("a file that was cut off is refused");
}

// Pages.

/// All that shows of a text: white space of any kind aside.
std::string Visible(std::string_view Text)
{
    std::string Result;
    for (std::size_t I = 0; I < Text.size(); ++I) {
        if (Text.substr(I).starts_with("\xC2\xA0"))
            ++I;
        else if (static_cast<unsigned char>(Text[I]) > ' ')
            Result += Text[I];
    }
    return Result;
}

/// With the numbers of characters, which the other tool leaves as they are, replaced.
std::string WithCharacters(std::string_view Text)
{
    std::string Result;
    while (!Text.empty()) {
        const auto Size = DecodeReference(Text, crHtml, Result);
        if (Size == 0)
            Result += Text.front();
        Text.remove_prefix(std::max<std::size_t>(Size, 1));
    }
    return Result;
}

/// The rows of a table, from 1, `Columns` values each.
std::vector<TRow> ImportTable(const fs::path& File, int Table, int Columns)
{
    std::vector<std::string> Names;
    for (int I = 1; I <= Columns; ++I)
        Names.push_back("Field" + std::to_string(I));
    TKvImportFromHTML Import;
    Import.Extensions = {xhTagSyntax, xhHeaderCells, xhReferences,  xhFoldedSpace,
                         xhSpans,     xhEncoding,    xhHeaderNames, xhEmptyIsNull};
    Import.TableNumber = Table;
    auto Rows = ImportRows(Import, File, Names);
    EXPECT_EQ(Import.Statistic.Result, irExecuted) << Import.ErrorMessage();
    return Rows;
}

/// One table of a page beside what another tool read from it.
class TTableComparison
{
public:
    TTableComparison(const fs::path& TheFile, int TheTable, const TDumpSheet& TheSheet)
        : File(TheFile), Table(TheTable), Sheet(TheSheet)
    {
        int Columns = 1;
        for (const auto& [Ref, Cell] : Sheet)
            Columns = std::max(Columns, Ref.second + 1);
        // One more, so that a value too many does not pass unseen.
        Rows = ImportTable(File, Table, Columns + 1);
    }

    void Compare(TRules& Rules) const
    {
        SCOPED_TRACE(File.filename().string() + ", table " + std::to_string(Table));
        for (std::size_t Row = 0; Row < Rows.size(); ++Row)
            for (std::size_t Column = 0; Column < Rows[Row].size(); ++Column)
                if (Rows[Row][Column] != Theirs(Row, Column))
                    Explain(Row, Column, Rules);
        for (const auto& [Ref, Cell] : Sheet) {
            const bool HasPlace = Ref.second < 0 || Ref.first < std::ssize(Rows);
            EXPECT_TRUE(HasPlace || IsInsideACell(Cell.Text))
                << CellRefText(Ref) << ": theirs '" << Cell.Text << "'";
        }
    }

private:
    std::string Theirs(std::size_t Row, std::size_t Column) const
    {
        const auto Cell = Sheet.find({static_cast<int>(Row), static_cast<int>(Column)});
        return Cell != Sheet.end() ? Cell->second.Text : std::string();
    }

    void Explain(std::size_t Row, std::size_t Column, TRules& Rules) const
    {
        const auto& Ours = Rows[Row][Column];
        const auto Their = Theirs(Row, Column);
        if (Their.empty() && IsSpanned(Row, Column))
            Rules.Explain("a cell over several columns or rows is read in each");
        else if (Ours == WithCharacters(Their))
            Rules.Explain("the number of a character stands for the character");
        else if (Visible(Ours) == Visible(WithCharacters(Their)))
            Rules.Explain("white space differs: line breaks, or a cell of nothing else");
        else if (Their.empty() && IsNextTable(Ours))
            Rules.Explain("a table inside a cell is part of the cell's text");
        else if (Their.empty() && IsLost(Ours))
            Rules.Explain("the other tool lost the column behind a COLSPAN that is no number");
        else
            ADD_FAILURE() << CellRefText({static_cast<int>(Row), static_cast<int>(Column)}) << ": '" << Ours
                          << "', theirs '" << Their << "'";
    }

    /// The cell to the left or above holds the same: the only way in which one is read twice.
    bool IsSpanned(std::size_t Row, std::size_t Column) const
    {
        const auto& Text = Rows[Row][Column];
        return (Column > 0 && Rows[Row][Column - 1] == Text) || (Row > 0 && Rows[Row - 1][Column] == Text);
    }

    bool IsNextTable(const std::string& Text) const
    {
        std::string Next;
        for (const auto& Row : ImportTable(File, Table + 1, 1))
            Next += Row.front();
        return Visible(Text) == Visible(Next);
    }

    /// What the other tool read from a table inside a cell. No text at all is in every cell.
    bool IsInsideACell(const std::string& Text) const
    {
        return Visible(Text).empty() || std::ranges::any_of(Rows, [&Text](const TRow& Row) {
                   return Visible(Row.front()).find(Visible(Text)) != std::string::npos;
               });
    }

    bool IsLost(const std::string& Text) const
    {
        return std::ranges::any_of(Sheet, [&](const auto& Each) {
            return Each.first.second < 0 && Each.second.Text == Text;
        });
    }

    const fs::path File;
    const int Table;
    const TDumpSheet Sheet;
    std::vector<TRow> Rows;
};

TDumpSheet ReadCsvSheet(const fs::path& Path)
{
    TDumpSheet Sheet;
    int Row = 0;
    for (const auto& Line : ReadCsvDump(Path)) {
        for (int Column = 0; Column < std::ssize(Line); ++Column)
            Sheet[{Row, Column}].Text = Line[static_cast<std::size_t>(Column)].Text;
        ++Row;
    }
    return Sheet;
}

/// Of the two tools that read tables one by one the first takes the text of every cell as it stands, but
/// every page for UTF-8; the second makes numbers and dates of what looks like one.
void ComparePage(const fs::path& File, const fs::path& Dumps, TRules& Rules)
{
    const auto Name = File.filename().string();
    const auto Cells = Dumps / (Name + ".sheetjs.json"), Values = Dumps / (Name + ".ssconvert.Sheet1.csv");
    if (fs::exists(Cells) && Name.find("charset") == Name.npos) {
        int Table = 0;
        for (const auto& [SheetName, Sheet] : ReadCellDump(Cells))
            TTableComparison(File, ++Table, Sheet).Compare(Rules);
    }
    else if (fs::exists(Values)) {
        TTableComparison(File, 1, ReadCsvSheet(Values)).Compare(Rules);
    }
    else {
        EXPECT_TRUE(ImportTable(File, 0, 1).empty()) << Name;
        Rules.Explain("a page without a table has no rows");
    }
}

} // namespace

TEST(KvMarkup, AgreesWithAnXmlParserOnEveryPacket)
{
    const auto Corpus = CorpusFolder("xml");
    if (!Corpus)
        GTEST_SKIP() << "no files: KV_CORPUS names no folder with xml/ and expected/xml/";
    TRules Rules;
    int Files = 0;
    for (const auto& File : CorpusFiles(*Corpus, "xml")) {
        const auto Dump = *Corpus / "expected" / "xml" / (File.filename().string() + ".pyxml.json");
        if (fs::exists(Dump)) {
            ComparePacket(File, nlohmann::json::parse(std::ifstream(Dump)), Rules);
            CompareClassicPacket(File, nlohmann::json::parse(std::ifstream(Dump)), Rules);
        }
        else {
            ExpectRefused(File, Rules);
        }
        ++Files;
    }
    Rules.Print(Files);
}

TEST(KvMarkup, AgreesWithOtherToolsOnEveryPage)
{
    const auto Corpus = CorpusFolder("html");
    if (!Corpus)
        GTEST_SKIP() << "no files: KV_CORPUS names no folder with html/ and expected/html/";
    TRules Rules;
    int Files = 0;
    for (const auto& File : CorpusFiles(*Corpus, "html")) {
        ComparePage(File, *Corpus / "expected" / "html", Rules);
        ++Files;
    }
    Rules.Print(Files);
}

} // namespace kv
