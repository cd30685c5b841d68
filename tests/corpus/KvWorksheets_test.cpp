// Worksheets of other programs, compared cell by cell with what independent tools read from them.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <iostream>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "KvCorpus.h"
#include "KvException.h"
#include "Kvwks.h"
#include "Kvwq.h"

namespace kv {

namespace {

namespace fs = std::filesystem;

/// What is right although the cells differ, and for how many of them.
enum TRule {
    ruEmptyLabel,
    ruErrorValue,
    ruToolDropsCharacter,
    ruToolMisreadsText,
    ruErrorIsNumber,
    ruFormulaIsNoCell,
    ruIntegerIsUnsigned,
    ruRowIsFolded,
    ruLastRowIsOutside,
    RuleCount
};
constexpr std::string_view RuleTexts[RuleCount] = {
    "a label without text is a cell with an empty text",
    "a number that stands for an error is NA or ERR",
    "the tool drops the first character of the text of a formula",
    "the tool misreads the text of a formula in a WQ1 file",
    "classic: NA and ERR are the numbers that stand for them",
    "classic: a formula is no cell",
    "classic: a negative integer arrives unsigned",
    "classic: rows of WQ1 files above 255 fall on lower ones",
    "classic: a cell outside the extent, which ends before its last row and column"};
using TRuleCounts = std::map<TRule, int>;

constexpr TSpreadSheetExtensions AllExtensions = {
    seFormulaResults, seCustomDates, seDateMode, seCellExtent, seWideRows, seFileCodePage, seSignedIntegers};

/// The files that a reader is not for.
bool IsOfAnotherKind(const fs::path& File)
{
    const auto Name = File.filename().string();
    return Name.ends_with(".wk4") || Name.ends_with(".wk3") || Name.ends_with(".WQ2") ||
           Name.ends_with(".wb1");
}

bool IsQuattro(const fs::path& File)
{
    return File.parent_path().filename() == "quattro";
}

/// A worksheet as it was read.
struct TWorksheet
{
    std::map<TCellRef, TVariant> Cells;
    int LastRow = 0;
    int LastColumn = 0;
    std::string Error;                              ///< The message, when it could not be read to its end.
};

TWorksheet ReadWorksheet(const fs::path& File, TSpreadSheetExtensions Extensions)
{
    std::unique_ptr<TWorksheetFile> Reader;
    if (IsQuattro(File))
        Reader = std::make_unique<TQuattroPro>();
    else
        Reader = std::make_unique<TLotus123>();
    Reader->Extensions = Extensions;
    TWorksheet Sheet;
    try {
        Reader->LoadFromFile(File.string());
    }
    catch (const Exception& Error) {
        Sheet.Error = Error.Message;
    }
    if (Reader->Sheets.Count() == 0)
        return Sheet;
    const auto& Cells = Reader->Sheets[0].Cells;
    EXPECT_EQ(Cells.CellsBeyond(), 0u);
    Sheet.LastRow = Cells.LastRow;
    Sheet.LastColumn = Cells.LastColumn;
    for (std::size_t Row = 0; Row < Cells.Count(); ++Row)
        for (int Column = 0; Column < TSpreadSheetRow::MaxColumns; ++Column)
            if (const auto& Value = Cells[Row].Value(Column); Value.HasValue())
                Sheet.Cells[{Cells[Row].Row, Column}] = Value;
    return Sheet;
}

double NumberOf(const TVariant& Value)
{
    switch (Value.Kind()) {
    case vkInteger:  return static_cast<double>(Value.Integer());
    case vkDouble:   return Value.Double();
    case vkDateTime: return Value.DateTime().Days;
    default:         return std::nan("");
    }
}

/// One file, compared with one dump.
class TComparison
{
public:
    TComparison(const fs::path& TheFile, TDumpSheet TheDump, bool IsByTool, TRuleCounts& TheRules)
        : File(TheFile), Dump(std::move(TheDump)), KnowsFormats(IsByTool), Rules(TheRules)
    {
    }

    /// All extensions: cells and values agree, and every cell lies within the extent.
    void CompareToday()
    {
        const auto Sheet = ReadWorksheet(File, AllExtensions);
        for (const auto& [Ref, Cell] : Dump)
            EXPECT_TRUE(Sheet.Cells.contains(Ref)) << "not read: " << CellRefText(Ref);
        for (const auto& [Ref, Value] : Sheet.Cells) {
            EXPECT_TRUE(AgreesToday(Ref, Value)) << CellRefText(Ref) << ": " << Value.ToText();
            EXPECT_LT(Ref.first, Sheet.LastRow);
            EXPECT_LT(Ref.second, Sheet.LastColumn);
        }
    }

    /// No extension: what differs from the reading with all is as the rules of old have it.
    void CompareClassic()
    {
        const auto Today = ReadWorksheet(File, AllExtensions);
        const auto Classic = ReadWorksheet(File, {});
        const auto WithFormulas = ReadWorksheet(File, {seFormulaResults, seWideRows});
        const auto WithoutFormulas = ReadWorksheet(File, {seWideRows});
        for (const auto& [Ref, Value] : Today.Cells) {
            if (!WithoutFormulas.Cells.contains(Ref) && WithFormulas.Cells.contains(Ref))
                ++Rules[ruFormulaIsNoCell];
            else if (IsQuattro(File) && Ref.first > 255)
                ++Rules[ruRowIsFolded];
            else
                EXPECT_TRUE(Classic.Cells.contains(Ref)) << "not read: " << CellRefText(Ref);
        }
        for (const auto& [Ref, Value] : Classic.Cells) {
            EXPECT_TRUE(AgreesClassic(Ref, Value, Today)) << CellRefText(Ref) << ": " << Value.ToText();
            if (Ref.first >= Classic.LastRow || Ref.second >= Classic.LastColumn)
                ++Rules[ruLastRowIsOutside];
        }
    }

private:
    bool AgreesToday(TCellRef Ref, const TVariant& Ours)
    {
        const auto Found = Dump.find(Ref);
        if (Found == Dump.end())
            return Ours.IsString() && Ours.Text().empty() && Explained(ruEmptyLabel);
        const auto& Theirs = Found->second;
        if (Theirs.Type == 's')
            return Ours.IsString() &&
                   (Ours.Text() == Theirs.Text || AgreesBadText(Ref, Ours.Text(), Theirs.Text));
        if (!Theirs.Number)
            return (Ours == TVariant("NA") || Ours == TVariant("ERR")) && Explained(ruErrorValue);
        if (KnowsFormats && (Ours.Kind() == vkDateTime) != !Theirs.NumberFormat.empty())
            return false;
        return NumberOf(Ours) == *Theirs.Number;
    }

    bool AgreesBadText(TCellRef Ref, std::string_view Ours, std::string_view Theirs)
    {
        if (!KnowsFormats)
            return false;
        if (!IsQuattro(File))
            return Ours.substr(std::min<std::size_t>(1, Ours.size())) == Theirs &&
                   Explained(ruToolDropsCharacter);
        return IsTextOfFormula(Ref) && Explained(ruToolMisreadsText);
    }

    bool IsTextOfFormula(TCellRef Ref) const
    {
        return !ReadWorksheet(File, {seWideRows}).Cells.contains(Ref);
    }

    bool AgreesClassic(TCellRef Ref, const TVariant& Classic, const TWorksheet& Today)
    {
        // Of the rows that fall on this one, any may have come last.
        for (int Row = Ref.first; Row < 0x10000; Row += 256) {
            const auto Found = Today.Cells.find({Row, Ref.second});
            if (Found != Today.Cells.end() && AgreesClassic(Classic, Found->second))
                return true;
            if (!IsQuattro(File))
                return false;
        }
        return false;
    }

    bool AgreesClassic(const TVariant& Classic, const TVariant& Today)
    {
        if (Classic.IsString())
            return Today == Classic;
        const auto Number = NumberOf(Classic);
        if (!std::isfinite(Number))
            return (Today == TVariant("NA") || Today == TVariant("ERR")) && Explained(ruErrorIsNumber);
        if (Classic.Kind() == vkInteger && NumberOf(Today) == Number - 0x10000)
            return Explained(ruIntegerIsUnsigned);
        return NumberOf(Today) == Number;
    }

    bool Explained(TRule Rule)
    {
        ++Rules[Rule];
        return true;
    }

    const fs::path File;
    const TDumpSheet Dump;
    const bool KnowsFormats;
    TRuleCounts& Rules;
};

fs::path DumpOf(const fs::path& Corpus, const fs::path& File, std::string_view Tool)
{
    return Corpus / "expected" / File.parent_path().filename() /
           (File.filename().string() + '.' + std::string(Tool) + ".json");
}

/// Compares with every dump that there is; false when there is none.
bool CompareFile(const fs::path& Corpus, const fs::path& File, TRuleCounts& Rules)
{
    SCOPED_TRACE(File.filename().string());
    bool IsCompared = false;
    for (const std::string_view Tool : {"truth", "sheetjs"}) {
        const auto Path = DumpOf(Corpus, File, Tool);
        if (!fs::exists(Path))
            continue;
        SCOPED_TRACE(std::string(Tool));
        TComparison(File, ReadCellDump(Path).at(0).second, Tool == "sheetjs", Rules).CompareToday();
        IsCompared = true;
    }
    if (IsCompared)
        TComparison(File, {}, false, Rules).CompareClassic();
    return IsCompared;
}

} // namespace

TEST(KvWorksheets, AgreeWithOtherToolsOnEveryFile)
{
    TRuleCounts Rules;
    int Files = 0;
    for (const std::string_view Format : {"lotus", "quattro"}) {
        const auto Corpus = CorpusFolder(Format);
        if (!Corpus)
            GTEST_SKIP() << "no files: KV_CORPUS names no folder with " << Format << " and expected/"
                         << Format;
        for (const auto& File : CorpusFiles(*Corpus, Format)) {
            if (IsOfAnotherKind(File) || File.stem() == "own-writer__truncated")
                continue;
            EXPECT_EQ(ReadWorksheet(File, {}).Error, "") << File;
            EXPECT_TRUE(CompareFile(*Corpus, File, Rules)) << "no dump of " << File;
            ++Files;
        }
    }
    std::cout << Files << " files compared; differences explained:\n";
    for (const auto& [Rule, Count] : Rules)
        std::cout << "  " << Count << " x " << RuleTexts[Rule] << '\n';
}

TEST(KvWorksheets, FilesOfAnotherKindAreRefusedByName)
{
    for (const std::string_view Format : {"lotus", "quattro"}) {
        const auto Corpus = CorpusFolder(Format);
        if (!Corpus)
            GTEST_SKIP() << "no files: KV_CORPUS names no folder with " << Format << " and expected/"
                         << Format;
        for (const auto& File : CorpusFiles(*Corpus, Format)) {
            if (!IsOfAnotherKind(File))
                continue;
            const auto Sheet = ReadWorksheet(File, AllExtensions);
            EXPECT_EQ(Sheet.Error,
                      IsQuattro(File) ? "File is not a QuattroPro file" : "File is not a Lotus 1-2-3 file")
                << File;
            EXPECT_TRUE(Sheet.Cells.empty());
        }
    }
}

TEST(KvWorksheets, ATruncatedFileGivesTheCellsBeforeTheCut)
{
    const std::pair<std::string, std::string> Rows[] = {
        {"lotus/own-writer__truncated.wk1",
         "File is truncated: record 0x000E at offset 681 needs 13 bytes, 6 are left"},
        {"quattro/own-writer__truncated.wq1",
         "File is truncated: it ends within the header of the record at offset 696"}};
    for (const auto& [Name, Message] : Rows) {
        const auto Corpus = CorpusFolder(fs::path(Name).parent_path().string());
        if (!Corpus)
            GTEST_SKIP() << "no files: KV_CORPUS names no folder with lotus and quattro";
        SCOPED_TRACE(Name);
        const auto File = *Corpus / Name;
        const auto Sheet = ReadWorksheet(File, AllExtensions);
        EXPECT_EQ(Sheet.Error, Message);
        const auto Dump = ReadCellDump(DumpOf(*Corpus, File, "truth")).at(0).second;
        EXPECT_GE(Sheet.Cells.size() + 2, Dump.size()); // the last ones are cut
        for (const auto& [Ref, Value] : Sheet.Cells)
            EXPECT_TRUE(Dump.contains(Ref) || Value == TVariant("")) << CellRefText(Ref);
    }
}

} // namespace kv
