#include "Kvi2cell.h"

#include <algorithm>
#include <cstdint>

#include "KvCellText.h"
#include "KvCells.h"
#include "KvColumnLetters.h"
#include "KvException.h"
#include "KvPublish.h"
#include "KvText.h"

namespace kv {

namespace {

constexpr std::string_view ExtensionNames[] = {"seFormulaResults", "seCustomDates",  "seDateMode",
                                               "seCellExtent",     "seWideRows",     "seFileCodePage",
                                               "seSignedIntegers", "seCellRecords",  "seTellingErrors"};

constexpr int HeaderRow = 0;

/// The text is lent.
TVariant Lend(const TVariant& Value)
{
    return Value.IsString() ? TVariant::Borrow(Value.Text()) : Value;
}

/// A cell that has a fault.
class EBadCell : public EConvertError
{
public:
    using EConvertError::EConvertError;
};

/// Its text, and where it stands.
const char* MessageOf(TCellFault Fault)
{
    switch (Fault) {
    case cfNone:
    case cfNoDay:    break;
    case cfLeapDay:  return "'%s' in %s is 29 February 1900, a day that never was";
    case cfCodePage: return "'%s' in %s stands for characters that the code page in use lacks";
    }
    return "'%s' in %s is formatted as a date and is none";
}

/// Messages of readers do not name the file, but for those that say that it cannot be read as a file or as a
/// compound document: these know it already.
void NameFile(Exception& Error, const std::string& FileName)
{
    if (!Error.Facts.FileName.empty())
        return;
    Error.Facts.FileName = FileName;
    Error.Facts.LacksFileName = !IsBlank(FileName);
    if (Error.Facts.Rule == erNone)
        Error.Facts.Rule = erFormat;
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

TSpreadSheetFile& TKvImportFromCell::LoadWorkBook()
{
    Record = nullptr;
    LoadedAhead = false;
    if (!WorkBook)
        WorkBook = WorkBookCreation();
    if (!WorkBook)
        throw Exception(std::string(ClassName()) + " has no reader of workbooks");
    WorkBook->Extensions = Extensions;
    WorkBook->Continue = [this] { return KeepsRunning(); };
    try {
        WorkBook->LoadFromFile(SourceFileName);
    }
    catch (Exception& Error) {
        NameFile(Error, SourceFileName);
        throw;
    }
    LoadedAhead = true;
    return *WorkBook;
}

/// The file is loaded, and nobody has taken it yet.
bool TKvImportFromCell::IsKept() const
{
    return LoadedAhead && WorkBook->FileName == SourceFileName && WorkBook->Extensions == Extensions;
}

/// Without a workbook when the user cancels.
void TKvImportFromCell::LoadOnce()
{
    Columns.Clear();
    try {
        if (!IsKept())
            LoadWorkBook();
    }
    catch (const Exception& Error) {
        if (Error.Facts.Rule != erCancelled)
            throw;
        AfterImport();
    }
}

void TKvImportFromCell::BeforeImport()
{
    LoadOnce();
    LoadedAhead = false;
}

void TKvImportFromCell::AfterImport()
{
    Record = nullptr;
    LoadedAhead = false;
    WorkBook.reset();
}

// The records.

/// The sheet that is imported; none past the last.
TSpreadSheetCells* TKvImportFromCell::Sheet() const
{
    const auto Index = static_cast<std::size_t>(std::max(SheetIndex, 0));
    return WorkBook && Index < WorkBook->Sheets.Count() ? &WorkBook->Sheets[Index].Cells : nullptr;
}

TKvISourcePosition TKvImportFromCell::SourcePosition() const
{
    return {.Unit = PositionUnit(), .Number = HasRow() ? std::int64_t{CurrentRow} + 1 : 0};
}

void TKvImportFromCell::GoFirst()
{
    CurrentRow = std::max(RowFirst, -RowLastMax) - 1;
    LookAtExtent();
    SkipEmptyRows();
}

void TKvImportFromCell::GoNext()
{
    ++CurrentRow;
    SkipEmptyRows();
}

bool TKvImportFromCell::IsEmptyRow(int Row) const
{
    const auto& Cells = *Sheet();
    const int Position = Cells.GetRow(Row);
    return Position < 0 || Cells[static_cast<std::size_t>(Position)].IsBlank();
}

void TKvImportFromCell::SkipEmptyRows()
{
    if (!SkipsEmptyRows())
        return;
    CurrentRow = std::max(CurrentRow, 0);
    while (HasRow() && IsEmptyRow(CurrentRow))
        ++CurrentRow;
}

int TKvImportFromCell::GetTotalCount()
{
    const auto* const Cells = Sheet();
    return Cells ? RowExtent(*Cells, Extensions) : TKvImportFromFile::GetTotalCount();
}

bool TKvImportFromCell::HasRow() const
{
    const auto* const Cells = Sheet();
    return Cells && CurrentRow < RowExtent(*Cells, Extensions) && CurrentRow < RowLast;
}

bool TKvImportFromCell::NeedMore()
{
    return HasRow();
}

bool TKvImportFromCell::LoadRecord()
{
    Record = nullptr;
    if (auto* const Cells = Sheet())
        if (const int Position = Cells->GetRow(CurrentRow, false); Position >= 0)
            Record = &(*Cells)[static_cast<std::size_t>(Position)];
    try {
        return TKvImportFromFile::LoadRecord();
    }
    catch (EBadCell& Error) {
        Error.Message += ", for field '" + Error.Facts.Field + "'";
        RecordFailed(Error);
        return false;
    }
}

TVariant TKvImportFromCell::GetFieldValue(const TVariant& Source)
{
    if (!Record)
        return Null;
    const int Column = Columns.Find(Source, ColumnOfLetters);
    if (Record->HasFaults() || IsLooking())
        RequireSound(Column);
    return Lend(Record->Value(Column));
}

/// A look shows nothing that cannot be shown, whatever a run makes of it.
void TKvImportFromCell::RequireSound(int Column) const
{
    auto Fault = Record->Fault(Column);
    const auto& Value = Record->Value(Column);
    if (IsLooking() && !HasText(Value))
        Fault = cfNoDay;
    if (Fault == cfNone)
        return;
    const auto Place = "cell " + SpreadSheetLetters(Column + 1) + std::to_string(CurrentRow + 1);
    const auto Text = CellText(Value);
    throw EBadCell(FormatText(MessageOf(Fault), {Text, Place}),
                   {.Value = Text, .Rule = erRange});
}

TVariant TKvImportFromCell::SourceRecord()
{
    if (!HasRow())
        return Null;
    const int Count = Sheet()->CellColumns();
    auto Values = TVariant::Array(0, Count - 1);
    for (int Column = 0; Column < Count; ++Column)
        Values[Column] = Sheet()->GetValue(Column, CurrentRow);
    return Values;
}

// Automatic mapping.

/// By the names in the first row, when it is not imported. Otherwise by order, where the letters of the
/// first field, number 0, name no column and each other field gets the column before: mappings that
/// programs have stored stand on it.
void TKvImportFromCell::DetectAutoMapping()
{
    const bool WasKept = IsKept();
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
    if (WasKept)
        LoadedAhead = true;                         // for the run, as it was looked at
    else
        AfterImport();
}

std::vector<std::string> TKvImportFromCell::HeaderTexts() const
{
    std::vector<std::string> Result;
    const auto* const Cells = Sheet();
    for (int Col = 0; Cells && Col < ColumnExtent(*Cells, Extensions); ++Col)
        Result.push_back(CellText(Cells->GetValue(Col, HeaderRow)));
    return Result;
}

} // namespace kv
