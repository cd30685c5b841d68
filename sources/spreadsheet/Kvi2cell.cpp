#include "Kvi2cell.h"

#include <algorithm>
#include <cstdint>

#include "KvCells.h"
#include "KvColumnLetters.h"
#include "KvException.h"
#include "KvPublish.h"
#include "KvText.h"

namespace kv {

namespace {

constexpr std::string_view ExtensionNames[] = {"seFormulaResults", "seCustomDates",  "seDateMode",
                                               "seCellExtent",     "seWideRows",     "seFileCodePage",
                                               "seSignedIntegers", "seCellRecords"};

constexpr int HeaderRow = 0;

/// The text is lent.
TVariant Lend(const TVariant& Value)
{
    return Value.IsString() ? TVariant::Borrow(Value.Text()) : Value;
}

} // namespace

TKvImportFromCell::TKvImportFromCell(TComponent* Owner) : TKvImportFromFile(Owner) {}

TKvImportFromCell::TKvImportFromCell(TComponent* Owner, TTableTypeImport Type, std::string_view Extension)
    : TKvImportFromFile(Owner, Type, Extension)
{
}

TKvImportFromCell::~TKvImportFromCell() = default;

TPublishedProperties TKvImportFromCell::PublishedProperties() const
{
    using T = TKvImportFromCell;
    return PublishAfter(TKvImportFromFile::PublishedProperties(),
                        {AsPlace(Publish("SheetIndex", &T::SheetIndex)),
                         Publish("Extensions", &T::Extensions, ExtensionNames)});
}

// Loading.

std::unique_ptr<TSpreadSheetFile> TKvImportFromCell::WorkBookCreation()
{
    return nullptr;
}

TSpreadSheetCells& TKvImportFromCell::Cells()
{
    return WorkBook->Sheets.Spreadsheet(SheetIndex).Cells;
}

TSpreadSheetFile& TKvImportFromCell::LoadWorkBook()
{
    Record = nullptr;
    LoadedAhead = false;
    if (!WorkBook)
        WorkBook = WorkBookCreation();
    if (!WorkBook)
        throw Exception(std::string(ClassName()) + " has no reader of workbooks");
    WorkBook->Extensions = LoadedWith = Extensions;
    LoadedName = SourceFileName;
    try {
        WorkBook->LoadFromFile(SourceFileName);
    }
    catch (EFileError&) {
        throw;
    }
    catch (Exception& Error) {
        Error.Facts.LacksFileName = Error.Facts.FileName.empty();
        Error.Facts.FileName = SourceFileName;
        throw;
    }
    LoadedAhead = true;
    return *WorkBook;
}

void TKvImportFromCell::LoadOnce()
{
    if (!LoadedAhead || LoadedName != SourceFileName || LoadedWith != Extensions)
        LoadWorkBook();
}

void TKvImportFromCell::BeforeImport()
{
    Columns.Clear();
    LoadOnce();
    LoadedAhead = false;
}

void TKvImportFromCell::AfterImport()
{
    Record = nullptr;
    WorkBook.reset();
}

// The records.

TKvISourcePosition TKvImportFromCell::SourcePosition() const
{
    return {.Unit = PositionUnit(), .Number = std::int64_t{CurrentRow} + 1};
}

void TKvImportFromCell::GoFirst()
{
    CurrentRow = RowFirst - 1;
    LookAtExtent();
}

int TKvImportFromCell::GetTotalCount()
{
    return WorkBook ? RowExtent(Cells(), Extensions) : TKvImportFromFile::GetTotalCount();
}

bool TKvImportFromCell::NeedMore()
{
    return WorkBook && CurrentRow < RowExtent(Cells(), Extensions) && CurrentRow < RowLast;
}

bool TKvImportFromCell::LoadRecord()
{
    Record = nullptr;
    if (WorkBook)
        if (const int Position = Cells().GetRow(CurrentRow, false); Position >= 0)
            Record = &Cells()[static_cast<std::size_t>(Position)];
    return TKvImportFromFile::LoadRecord();
}

TVariant TKvImportFromCell::GetFieldValue(const TVariant& Source)
{
    if (!Record)
        return Null;
    return Lend(Record->Value(Columns.Find(Source, ColumnOfLetters)));
}

// Automatic mapping.

/// By the names in the first row, when it is not imported. Otherwise by order, where the letters of the
/// first field, number 0, name no column and each other field gets the column before: mappings that
/// programs have stored stand on it.
void TKvImportFromCell::DetectAutoMapping()
{
    BeforeImport();
    const bool HasHeader = RowFirst > 1;
    const auto Header = HasHeader ? HeaderTexts() : std::vector<std::string>();
    MapFields([&](const TField& Field) {
        if (!HasHeader)
            return LettersOfColumn(Field.Index());
        const auto NamesField = [&Field](const auto& Each) { return SameText(Each, Field.FieldName()); };
        const auto Found = std::ranges::find_if(Header, NamesField);
        return Found != Header.end() ? LettersOfColumn(static_cast<int>(Found - Header.begin()) + 1)
                                     : std::string();
    });
    AfterImport();
}

std::vector<std::string> TKvImportFromCell::HeaderTexts()
{
    std::vector<std::string> Result;
    const auto& Sheet = Cells();
    for (int Col = 0; Col < ColumnExtent(Sheet, Extensions); ++Col)
        Result.push_back(Sheet.GetValue(Col, HeaderRow).ToText());
    return Result;
}

} // namespace kv
