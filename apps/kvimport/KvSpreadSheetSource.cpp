#include "KvSpreadSheetSource.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "KvColumnLetters.h"
#include "KvDisplayText.h"
#include "KvException.h"
#include "KvNumberText.h"
#include "KvOptionText.h"
#include "KvRowRange.h"
#include "KvSourceFile.h"
#include "KvSourceOptions.h"
#include "KvSourceSetUp.h"
#include "KvTerminalText.h"
#include "KvText.h"
#include "Kvi2wks.h"
#include "Kvi2wq.h"
#include "Kvi2xls.h"

namespace kv {

namespace {

constexpr std::string_view RowWord = "row";

constexpr TSpreadSheetExtensions AllExtensions{seFormulaResults, seCustomDates,    seDateMode,
                                               seCellExtent,     seWideRows,       seFileCodePage,
                                               seSignedIntegers, seCellRecords};

class TSpreadSheetSource final : public TSource
{
public:
    TSpreadSheetSource(const TSourceOptions& Given, std::unique_ptr<TKvImportFromCell> Component);

    TKvImportBaseComponent& Component() override { return *Import; }
    std::string DisplayName() const override { return File.DisplayName(); }
    std::string_view PlaceWord() const override { return RowWord; }
    bool HasNames() const override { return Rows.Header > 0; }
    std::vector<TSourceColumn> Columns() override;
    TSourceRows FirstRows(int Count) override;
    std::string Explain(std::string Text) const override { return File.Explain(std::move(Text)); }
    std::vector<std::string> Findings() const override;
    std::vector<std::string> Warnings() const override { return FWarnings; }
    std::vector<TSourceSheet> Sheets() const override { return FSheets; }

private:
    std::string RemarkOnStranger(const std::string& Name) override;
    const TSpreadSheetCells& Cells() const { return Book->Sheets[static_cast<std::size_t>(Import->SheetIndex)].Cells; }
    void ListSheets();
    int SheetNamed(const std::string& Sheet) const;
    std::string ThisSheet() const;
    std::string TextAt(int Col, int Row) const;
    bool HoldsValues(int Col) const;
    std::string ColumnName(int Col) const;
    std::vector<TSourceColumn> ColumnsThere() const;

    const TSourceOptions Options;
    const TRowRange Rows;
    const TSourceFile File;
    std::unique_ptr<TKvImportFromCell> Import;
    const TSpreadSheetFile* Book = nullptr;         // the component's, until it has run
    std::vector<TSourceSheet> FSheets;
    std::vector<std::string> FWarnings;
};

TSpreadSheetSource::TSpreadSheetSource(const TSourceOptions& Given, std::unique_ptr<TKvImportFromCell> Component)
    : Options(Given), Rows(RowRangeBelowHeader(Options, RowWord)), File(Options.FileName), Import(std::move(Component))
{
    SetUpSource(*Import, File.Name(), Rows, Options);
    if (!Options.Classic)
        Import->Extensions = AllExtensions;
    Book = &LoadWorkBook(*Import, File);
    ListSheets();
    if (!Options.Sheet.Sheet.empty())
        Import->SheetIndex = SheetNamed(Options.Sheet.Sheet);
    FWarnings = SheetWarnings(Cells(), Import->Extensions);
}

void TSpreadSheetSource::ListSheets()
{
    for (std::size_t I = 0; I < Book->Sheets.Count(); ++I) {
        const auto& Sheet = Book->Sheets[I];
        FSheets.push_back({.Name = ToDisplay(Sheet.Caption),
                           .Rows = RowExtent(Sheet.Cells, Import->Extensions),
                           .Columns = ColumnExtent(Sheet.Cells, Import->Extensions)});
    }
}

/// A number wins over a name of digits.
int TSpreadSheetSource::SheetNamed(const std::string& Sheet) const
{
    if (const auto Number = TryTextToInt(Sheet); Number && *Number >= 1 && *Number <= std::ssize(FSheets))
        return static_cast<int>(*Number) - 1;
    const auto Found = std::ranges::find_if(FSheets, [&](const TSourceSheet& Each) { return SameText(Each.Name, Sheet); });
    if (Found != FSheets.end())
        return static_cast<int>(Found - FSheets.begin());
    std::vector<std::string> Names;
    for (const auto& Each : FSheets)
        Names.push_back(std::to_string(Names.size() + 1) + " '" + Each.Name + "'");
    throw Exception("--sheet: " + DisplayName() + " has no sheet '" + Sheet + "'; its sheets are " + JoinNames(Names));
}

std::string TSpreadSheetSource::ThisSheet() const
{
    return "sheet " + std::to_string(Import->SheetIndex + 1) + " of " + DisplayName();
}

std::vector<std::string> TSpreadSheetSource::Findings() const
{
    if (FSheets.size() < 2)
        return {};
    const auto Index = static_cast<std::size_t>(Import->SheetIndex);
    return {"sheet " + std::to_string(Index + 1) + " of " + std::to_string(FSheets.size()) + ", '" + FSheets[Index].Name + "'" +
            (Options.Sheet.Sheet.empty() ? "; --sheet takes another" : "")};
}

/// UTF-8.
std::string TSpreadSheetSource::TextAt(int Col, int Row) const
{
    const auto& Value = Cells().GetValue(Col, Row);
    return ToDisplay(Value.ToText(), Options.MsDos && Value.IsString());
}

std::string TSpreadSheetSource::ColumnName(int Col) const
{
    return HasNames() ? std::string(Trim(TextAt(Col, Rows.Header - 1))) : std::string();
}

/// In a row that is imported.
bool TSpreadSheetSource::HoldsValues(int Col) const
{
    for (std::size_t I = 0; I < Cells().Count(); ++I) {
        const auto& Row = Cells()[I];
        if (Row.Row >= Rows.First - 1 && Row.Row < Rows.Last && !Row.Value(Col).IsBlank())
            return true;
    }
    return false;
}

/// A column that has neither a name nor values is none.
std::vector<TSourceColumn> TSpreadSheetSource::ColumnsThere() const
{
    std::vector<TSourceColumn> Result;
    for (int Col = 0; Col < FSheets[static_cast<std::size_t>(Import->SheetIndex)].Columns; ++Col)
        if (auto Name = ColumnName(Col); !Name.empty() || HoldsValues(Col))
            Result.push_back({.Source = SpreadSheetLetters(Col + 1), .Name = std::move(Name)});
    return Result;
}

std::vector<TSourceColumn> TSpreadSheetSource::Columns()
{
    auto Result = ColumnsThere();
    if (!HasNames())
        return Result;
    if (std::ranges::all_of(Result, [](const TSourceColumn& Column) { return Column.Name.empty(); }))
        throw Exception(ThisSheet() + " has no names of columns in row " + std::to_string(Rows.Header) +
                        "; --first-row is the row after the one that has them");
    return Result;
}

/// There are no constants: any name is read as letters, and most of them lead nowhere.
std::string TSpreadSheetSource::RemarkOnStranger(const std::string& Name)
{
    const int Number = ColumnOfLetters(Name) + 1;
    const auto Letters = SpreadSheetLetters(Number);
    if (SameText(Name, Letters) && Number <= TSpreadSheetRow::MaxColumns)
        return HoldsValues(Number - 1) ? "" : "the column holds no values: the field stays empty";
    throw Exception("'" + Name + "' is no column: columns are called A to IV");
}

TSourceRows TSpreadSheetSource::FirstRows(int Count)
{
    TSourceRows Result{.Columns = ColumnsThere(), .Rows = {}, .Places = {}, .Warnings = {}};
    const int End = std::min(FSheets[static_cast<std::size_t>(Import->SheetIndex)].Rows, Rows.Last);
    int Row = Rows.First - 1;
    for (; Row < End && std::ssize(Result.Rows) < Count; ++Row) {
        auto& Texts = Result.Rows.emplace_back();
        for (const auto& Column : Result.Columns)
            Texts.push_back(TextAt(ColumnOfLetters(Column.Source), Row));
        Result.Places.push_back(std::to_string(Row + 1));
    }
    Result.HasMore = Row < End;
    return Result;
}

template <class TImport> std::unique_ptr<TSource> Make(const TSourceOptions& Options)
{
    return std::make_unique<TSpreadSheetSource>(Options, std::make_unique<TImport>());
}

} // namespace

/// The messages of the readers do not say which file they are about.
TSpreadSheetFile& LoadWorkBook(TKvImportFromCell& Import, const TSourceFile& File)
{
    try {
        auto& Loaded = Import.LoadWorkBook();
        Loaded.Sheets.Spreadsheet(0);               // a file without any has an empty one
        return Loaded;
    }
    catch (const EFileError& Error) {
        throw EFileError(File.Explain(Error.Message));
    }
    catch (const Exception& Error) {
        const auto Message = File.Explain(Error.Message);
        const auto Name = File.DisplayName();
        throw Exception(Message.find(Name) == Message.npos ? Name + ": " + Message : Message);
    }
}

std::vector<std::string> SheetWarnings(const TSpreadSheetCells& Sheet, TSpreadSheetExtensions Extensions)
{
    const int RowCount = RowExtent(Sheet, Extensions), ColumnCount = ColumnExtent(Sheet, Extensions);
    std::vector<std::string> Result;
    if (Sheet.CellRows() > RowCount)
        Result.push_back("the sheet declares " + GroupDigits(RowCount) + " rows and holds values down to row " +
                         GroupDigits(Sheet.CellRows()) + ": the rest is not read with --classic");
    if (Sheet.CellColumns() > ColumnCount)
        Result.push_back("the sheet declares " + GroupDigits(ColumnCount) + " columns and holds values up to column " +
                         SpreadSheetLetters(Sheet.CellColumns()) + ": with --classic only --map finds the rest");
    if (Sheet.CellsBeyond() > 0)
        Result.push_back(GroupDigits(static_cast<std::int64_t>(Sheet.CellsBeyond())) +
                         (Sheet.CellsBeyond() == 1 ? " value stands" : " values stand") +
                         " beyond column IV, the last that can be read");
    return Result;
}

std::unique_ptr<TSource> MakeXlsSource(const TSourceOptions& Options)
{
    return Make<TKvImportFromXLS>(Options);
}

std::unique_ptr<TSource> MakeWksSource(const TSourceOptions& Options)
{
    return Make<TKvImportFromWKS>(Options);
}

std::unique_ptr<TSource> MakeQuattroSource(const TSourceOptions& Options)
{
    return Make<TKvImportFromQuattro>(Options);
}

} // namespace kv
