// Excel files of other programs, compared cell by cell with what independent tools read from them.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <iostream>
#include <map>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

#include "KvCodePage.h"
#include "KvCorpus.h"
#include "KvException.h"
#include "KvText.h"
#include "Kvxls.h"

namespace kv {

namespace {

namespace fs = std::filesystem;

/// What is right although the cells differ, and for how many of them.
enum TRule {
    ruEmptyText,
    ruToolMisreadsValue,
    ruChartIsNoSheet,
    ruDateMode,
    ruDuration,
    ruFormulaIsNumber,
    ruFormulaIsNoCell,
    ruRecordIsNotRead,
    ruRecordIsMisread,
    ruDateIsNumber,
    ruXfNumberIsFormat,
    ruBytesAreText,
    ruChartIsRead,
    RuleCount
};
constexpr std::string_view RuleTexts[RuleCount] = {
    "a text without characters is a cell",
    "the tool misreads the value, and another does not",
    "a chart, whose copies of cells the tool takes for a sheet, is none",
    "a date of a workbook that counts from 1904 is shifted",
    "hours, minutes or seconds of any number are the text that shows them, not a date",
    "classic: a formula is a number whatever its result",
    "classic: formulas of plain streams are no cells",
    "classic: rich text, and numbers of plain streams in the record of Excel 3, are no cells",
    "classic: booleans of Excel 2 are read by the later layout",
    "classic: user-defined formats make no dates, and integers are none",
    "classic: without XF records that are read, their number counts as a format",
    "classic: 8-bit text passes as it stands",
    "classic: what a chart holds is a cell of the sheet before it"};
using TRuleCounts = std::map<TRule, int>;

constexpr TSpreadSheetExtensions AllButDateMode = {seFormulaResults, seCustomDates, seCellExtent,
                                                   seFileCodePage, seCellRecords};
constexpr TSpreadSheetExtensions AllExtensions = {seFormulaResults, seCustomDates,  seDateMode,
                                                  seCellExtent,     seFileCodePage, seCellRecords};

constexpr std::string_view Formats[] = {"xls-biff2-4", "xls-biff5", "xls-biff8"};

using TCells = std::map<TCellRef, TVariant>;

/// A workbook as it was read.
struct TBook
{
    std::vector<std::pair<std::string, TCells>> Sheets;
    std::string Error;                              ///< The message, when it could not be read to its end.
};

TBook ReadBook(const fs::path& File, TSpreadSheetExtensions Extensions)
{
    TMSExcel Reader;
    Reader.Extensions = Extensions;
    TBook Book;
    try {
        Reader.LoadFromFile(File.string());
    }
    catch (const Exception& Error) {
        Book.Error = Error.Message;
    }
    for (std::size_t I = 0; I < Reader.Sheets.Count(); ++I) {
        const auto& Cells = Reader.Sheets[I].Cells;
        EXPECT_EQ(Cells.CellsBeyond(), 0u);
        auto& Sheet = Book.Sheets.emplace_back(Reader.Sheets[I].Caption, TCells()).second;
        for (std::size_t Row = 0; Row < Cells.Count(); ++Row)
            for (int Column = 0; Column < TSpreadSheetRow::MaxColumns; ++Column)
                if (const auto& Value = Cells[Row].Value(Column); Value.HasValue())
                    Sheet[{Cells[Row].Row, Column}] = Value;
    }
    return Book;
}

double NumberOf(const TVariant& Value)
{
    switch (Value.Kind()) {
    case vkInteger:  return static_cast<double>(Value.Integer());
    case vkDouble:   return Value.Double();
    case vkDateTime: return Value.DateTime().Days;
    case vkBoolean:  return Value.Boolean() ? 1 : 0;
    default:         return std::nan("");
    }
}

std::string Shown(const TVariant& Value)
{
    return "kind " + std::to_string(Value.Kind()) + " \"" + Value.ToText() + '"';
}

/// Text as a destination of Unicode gets it.
std::string Unicode(const TVariant& Value)
{
    std::string Buffer;
    return std::string(AnsiToUtf8(Value.Text(), Buffer));
}

/// The codes by which one of the tools gives errors.
std::string_view ErrorText(int Code)
{
    static const std::map<int, std::string_view> Texts = {{0x00, "#NULL!"}, {0x07, "#DIV/0!"},
                                                          {0x0F, "#VALUE!"},
                                                          {0x17, "#REF!"},  {0x1D, "#NAME?"},
                                                          {0x24, "#NUM!"},
                                                          {0x2A, "#N/A"}};
    return Texts.at(Code);
}

bool AgreesWithDump(const TVariant& Ours, const TDumpCell& Theirs, std::string_view Tool)
{
    switch (Theirs.Type) {
    case 's': return Ours.IsString() && Unicode(Ours) == Theirs.Text;
    case 'e':
        return Ours.IsString() &&
               Ours.Text() == (Theirs.Number ? ErrorText(static_cast<int>(*Theirs.Number)) : Theirs.Text);
    case 'b': return Ours.Kind() == vkBoolean && NumberOf(Ours) == Theirs.Number;
    case 'd': return Ours.Kind() == vkDateTime && NumberOf(Ours) == Theirs.Number;
    default:
        // Only one of the tools tells dates.
        return (Tool != "xlrd" || Ours.Kind() != vkDateTime) && NumberOf(Ours) == Theirs.Number;
    }
}

/// Ours is a text such as "296296:17:36.960" for the tool's number of days, to the millisecond.
bool IsDuration(const TVariant& Ours, const TDumpCell& Theirs)
{
    int Hours = 0, Minutes = 0;
    double Seconds = 0;
    if (!Ours.IsString() || !Theirs.Number || Theirs.Type == 's')
        return false;
    const auto Text = Ours.ToText();
    const bool IsNegative = Text.starts_with('-');
    if (std::sscanf(Text.c_str() + (IsNegative ? 1 : 0), "%d:%d:%lf", &Hours, &Minutes, &Seconds) != 3)
        return false;
    const double Days = (Hours * 3600.0 + Minutes * 60 + Seconds) / 86400 * (IsNegative ? -1 : 1);
    return std::abs(Days - *Theirs.Number) < 0.001 / 86400;
}

/// Values that one tool misreads; the other tools agree with us.
bool IsKnownToBeMisread(std::string_view File, std::string_view Tool)
{
    return Tool == "sheetjs" &&
           (File == "edr__Test_git_issue_368_label_xf.xls" || File == "roo-xls__boolean.xls");
}

/// A file whose charts hold copies of cells.
bool HasChartCells(const fs::path& File)
{
    return File.filename() == "phpss__chartsheet.xls";
}

/// One file and what tools read from it.
class TComparison
{
public:
    TComparison(const fs::path& TheFile, TRuleCounts& TheRules)
        : File(TheFile), Today(ReadBook(TheFile, AllButDateMode)), Rules(TheRules)
    {
        EXPECT_EQ(Today.Error, "");
    }

    /// All extensions: the sheets have the names and the cells of the dump.
    void CompareWith(const fs::path& Dump, std::string_view Tool)
    {
        const auto Theirs = ReadCellDump(Dump);
        const auto FileName = File.filename().string();
        if (FileName == "own-writer__biff4w.xlw" && Tool == "sheetjs")
            return;                                 // which finds one empty sheet
        std::size_t Found = 0;
        for (const auto& [Name, Cells] : Theirs) {
            SCOPED_TRACE(std::string(Tool) + " sheet " + Name);
            const auto* const Ours = FindSheet(Name, Theirs.size());
            if (Ours) {
                CompareCells(*Ours, Cells, Tool);
                ++Found;
            } else {
                EXPECT_TRUE(FileName == "phpss__chartsheet.xls" && Name == "Chart1") << "no such sheet";
                ++Rules[ruChartIsNoSheet];
            }
        }
        EXPECT_EQ(Found, Today.Sheets.size());
    }

    /// The date mode moves the dates of a workbook by four years and a day, or only those before March 1900,
    /// by a day; times of day stay.
    void CompareDateMode()
    {
        constexpr double Shift = 1462;
        const auto Book = ReadBook(File, AllExtensions);
        std::map<double, int> Shifts;
        for (std::size_t I = 0; I < Today.Sheets.size(); ++I)
            for (const auto& [Ref, Value] : Today.Sheets[I].second) {
                const auto& Shifted = Book.Sheets.at(I).second.at(Ref);
                EXPECT_EQ(Shifted.Kind(), Value.Kind());
                if (Value.Kind() == vkDateTime)
                    ++Shifts[std::round(NumberOf(Shifted) - NumberOf(Value))];
                else
                    EXPECT_EQ(Shifted, Value);
            }
        for (const auto& [Days, Count] : Shifts)
            EXPECT_TRUE(Days == 0 || Days == (Shifts.contains(Shift) ? Shift : 1)) << Count << " by " << Days;
        if (const auto All = Shifts.find(Shift); All != Shifts.end())
            Rules[ruDateMode] += All->second;
    }

    /// No extension: each cell that differs does so by a rule that one extension replaces.
    void CompareClassic()
    {
        const auto Classic = ReadBook(File, {});
        if (Classic.Sheets.size() != Today.Sheets.size())
            return;                                 // refused, or a workbook of Excel 4: tests of their own
        for (const auto Extension : {seFormulaResults, seCustomDates, seFileCodePage, seCellRecords})
            Single[Extension] = ReadBook(File, {Extension});
        for (std::size_t I = 0; I < Today.Sheets.size(); ++I) {
            for (const auto& [Ref, Value] : Today.Sheets[I].second) {
                const auto Old = CellOf(Classic, I, Ref);
                EXPECT_TRUE((Old.Kind() == Value.Kind() && Old == Value) ||
                            ExplainsClassic(Old, Value, I, Ref))
                    << CellRefText(Ref) << ": " << Shown(Old) << ", today " << Shown(Value);
            }
            for (const auto& [Ref, Value] : Classic.Sheets[I].second)
                EXPECT_TRUE(Today.Sheets[I].second.contains(Ref) || ExplainsChartCell(Value, I, Ref))
                    << CellRefText(Ref) << ' ' << Shown(Value);
        }
    }

private:
    static TVariant CellOf(const TBook& Book, std::size_t Sheet, TCellRef Ref)
    {
        if (Sheet >= Book.Sheets.size())
            return {};
        const auto& Cells = Book.Sheets[Sheet].second;
        const auto Found = Cells.find(Ref);
        return Found == Cells.end() ? TVariant() : Found->second;
    }

    const TCells* FindSheet(const std::string& Name, std::size_t Count) const
    {
        for (const auto& [OurName, Cells] : Today.Sheets)
            if (OurName == Name)
                return &Cells;
        return Count == 1 && Today.Sheets.size() == 1 && Today.Sheets[0].first == "Sheet1"
                 ? &Today.Sheets[0].second
                 : nullptr;
    }

    void CompareCells(const TCells& Ours, const TDumpSheet& Theirs, std::string_view Tool)
    {
        for (const auto& [Ref, Cell] : Theirs)
            EXPECT_TRUE(Ours.contains(Ref)) << "not read: " << CellRefText(Ref);
        for (const auto& [Ref, Value] : Ours) {
            const auto Found = Theirs.find(Ref);
            if (Found == Theirs.end()) {
                EXPECT_EQ(Value, TVariant("")) << CellRefText(Ref);
                ++Rules[ruEmptyText];
            }
            else if (IsDuration(Value, Found->second)) {
                ++Rules[ruDuration];
            }
            else if (!AgreesWithDump(Value, Found->second, Tool)) {
                EXPECT_TRUE(IsKnownToBeMisread(File.filename().string(), Tool))
                    << CellRefText(Ref) << ": " << Shown(Value) << ", not " << Found->second.Type << ' '
                    << Found->second.Text << Found->second.Number.value_or(0);
                ++Rules[ruToolMisreadsValue];
            }
        }
    }

    /// A cell that is there by the older reading only.
    bool ExplainsChartCell(const TVariant& Old, std::size_t Sheet, TCellRef Ref)
    {
        if (!HasChartCells(File) || CellOf(Single[seCellRecords], Sheet, Ref) == Old)
            return false;
        ++Rules[ruChartIsRead];
        return true;
    }

    bool ExplainsClassic(const TVariant& Old, const TVariant& New, std::size_t Sheet, TCellRef Ref)
    {
        const auto Changes = [&](TSpreadSheetExtension Extension) {
            const auto Value = CellOf(Single[Extension], Sheet, Ref);
            return Value.Kind() != Old.Kind() || !(Value == Old);
        };
        const auto Explained = [this](TRule Rule) {
            ++Rules[Rule];
            return true;
        };
        if (Old.IsEmpty() && Changes(seFormulaResults))
            return Explained(ruFormulaIsNoCell);
        if (Old.IsEmpty() && Changes(seCellRecords))
            return Explained(ruRecordIsNotRead);
        if (Changes(seFormulaResults))
            return std::isnan(NumberOf(Old)) && Explained(ruFormulaIsNumber);
        if (Changes(seCellRecords) && HasChartCells(File))
            return Explained(ruChartIsRead);
        if (Changes(seCellRecords))
            return (New.IsString() || New.Kind() == vkBoolean) && Explained(ruRecordIsMisread);
        if (Changes(seFileCodePage))
            return Old.IsString() && New.IsString() && Explained(ruBytesAreText);
        if (Changes(seCustomDates) && IsDuration(New, {'d', NumberOf(Old), {}, {}}))
            return Explained(ruDuration);
        if (Changes(seCustomDates) && NumberOf(Old) == NumberOf(New))
            return Explained(Old.Kind() == vkDateTime ? ruXfNumberIsFormat : ruDateIsNumber);
        return false;
    }

    const fs::path File;
    const TBook Today;
    std::map<TSpreadSheetExtension, TBook> Single;
    TRuleCounts& Rules;
};

/// A file that cannot be read, with the message: by any reading, or by the older one only.
struct TRefused
{
    std::string_view File;
    std::string_view Message;                       // "%s" stands for the path
    bool IsClassicOnly = false;
};

constexpr std::string_view Encrypted = "Can not read: file is encrypted";
constexpr std::string_view Phonetic = "Unhandled string in SST [04]";
constexpr TRefused Refused[] = {
    {"edr__Test_git_issue_242_xor_pwd_password.xls", Encrypted},
    {"msoffcrypto__rc4cryptoapi_password.xls", Encrypted},
    {"phpss__pwtest3.xls", Encrypted},
    {"poi__35897-type4.xls", Encrypted},
    {"poi__password.xls", Encrypted},
    {"poi__xor-encryption-abc.xls", Encrypted},
    {"sheetjs__password_2002_40_972000.xls", Encrypted},
    {"edr__Test_git_issue_382_oom.xls",
     "Cannot read stream \"Workbook\" of file \"%s\" past byte 512 of 15502: its chain "
     "of sectors returns to sector 0"},
    {"poi__61300.xls", "File is truncated: record 0x00E0 at offset 1666 needs 38932 bytes, 20548 are left"},
    {"poi__clusterfuzz-testcase-minimized-POIHSSFFuzzer-4819588401201152.xls",
     "Unhandled string in SST [02]"},
    {"libxls__utf8-sheet-names.xls", Phonetic, true},
    {"poi__florida_data.ashx.xls", Phonetic, true},
    {"poi__unicodeNameRecord.xls", Phonetic, true}};

const TRefused* FindRefused(const fs::path& File)
{
    const auto Found = std::ranges::find(Refused, File.filename().string(), &TRefused::File);
    return Found == std::end(Refused) ? nullptr : &*Found;
}

/// Calls `Action` for every file; false where there are none.
template <class TAction> bool ForEveryFile(TAction Action)
{
    for (const auto Format : Formats) {
        const auto Corpus = CorpusFolder(Format);
        if (!Corpus)
            return false;
        for (const auto& File : CorpusFiles(*Corpus, Format)) {
            SCOPED_TRACE(File.filename().string());
            Action(*Corpus / "expected" / Format, File);
        }
    }
    return true;
}

constexpr auto NoFiles = "no files: KV_CORPUS names no folder with xls-biff2-4, xls-biff5 and xls-biff8";

} // namespace

TEST(KvExcel, AgreesWithOtherToolsOnEveryFile)
{
    TRuleCounts Rules;
    int Files = 0;
    const auto Compare = [&](const fs::path& Dumps, const fs::path& File) {
        if (const auto* const Row = FindRefused(File); Row && !Row->IsClassicOnly)
            return;
        TComparison Comparison(File, Rules);
        int Compared = 0;
        for (const std::string_view Tool : {"truth", "xlrd", "sheetjs"}) {
            const auto Dump = Dumps / (File.filename().string() + '.' + std::string(Tool) + ".json");
            if (!fs::exists(Dump))
                continue;
            Comparison.CompareWith(Dump, Tool);
            ++Compared;
        }
        Comparison.CompareDateMode();
        Comparison.CompareClassic();
        // This one only has dumps of rounded values.
        EXPECT_TRUE(Compared > 0 || File.filename() == "poi__florida_data.ashx.xls") << "no dump";
        ++Files;
    };
    if (!ForEveryFile(Compare))
        GTEST_SKIP() << NoFiles;
    std::cout << Files << " files compared; differences explained:\n";
    for (const auto& [Rule, Count] : Rules)
        std::cout << "  " << Count << " x " << RuleTexts[Rule] << '\n';
}

TEST(KvExcel, TellsWhyAFileCannotBeRead)
{
    int Files = 0;
    const auto Check = [&](const fs::path&, const fs::path& File) {
        const auto* const Row = FindRefused(File);
        const auto Message = Row ? FormatText(Row->Message, {File.string()}) : "";
        EXPECT_EQ(ReadBook(File, {}).Error, Message);
        EXPECT_EQ(ReadBook(File, AllExtensions).Error, Row && Row->IsClassicOnly ? "" : Message);
        Files += Row != nullptr;
    };
    if (!ForEveryFile(Check))
        GTEST_SKIP() << NoFiles;
    EXPECT_EQ(Files, static_cast<int>(std::size(Refused)));
}

TEST(KvExcel, TheSheetsOfAnExcel4WorkbookFallOnOneWithoutTheExtension)
{
    const auto Corpus = CorpusFolder("xls-biff2-4");
    if (!Corpus)
        GTEST_SKIP() << NoFiles;
    const auto File = *Corpus / "xls-biff2-4" / "own-writer__biff4w.xlw";
    const auto Classic = ReadBook(File, {seFormulaResults, seFileCodePage});
    const auto Today = ReadBook(File, {seFormulaResults, seFileCodePage, seCellRecords});
    ASSERT_EQ(Classic.Sheets.size(), 1u);
    ASSERT_EQ(Today.Sheets.size(), 2u);
    for (const auto& [Ref, Value] : Classic.Sheets[0].second) {
        const auto& [First, Second] = std::tie(Today.Sheets[0].second, Today.Sheets[1].second);
        EXPECT_TRUE((Second.contains(Ref) && Second.at(Ref) == Value) ||
                    (First.contains(Ref) && First.at(Ref) == Value))
            << CellRefText(Ref);
    }
}

} // namespace kv
