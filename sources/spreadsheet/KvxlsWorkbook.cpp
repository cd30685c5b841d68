#include "KvxlsWorkbook.h"

#include <algorithm>

#include "KvException.h"
#include "KvText.h"
#include "KvxlsNumbers.h"

namespace kv {

namespace {

enum TWorkbookRecordId : std::uint16_t {
    rcColumnWidths = 0x007D,
    rcOldRk = 0x007E,
    rcSheetEntry = 0x0085,
    rcMulBlank = 0x00BE,
    rcSharedStrings = 0x00FC,
    rcSharedString = 0x00FD,
    rcRow = 0x0208
};

constexpr std::uint16_t rcBof = 0x0809;
constexpr std::uint16_t Excel8Number = 0x0600;      // in a BOF

constexpr std::size_t MaxBody = 2080, MaxBodyOfExcel8 = 8224, AnySize = 0xFFFF;

constexpr std::uint8_t ekWorksheet = 0;             // kind of a sheet entry
constexpr std::uint8_t StateMask = 3;               // of its state: 0 shown, 1 and 2 hidden
constexpr std::uint8_t soWide = 1;                  // options of a text: 16 bits a character

bool IsWorksheet(const TKvRecord& Record)
{
    return VersionOfBof(Record.Id) != evUnknown && Record.Size() >= 4 &&
           Record.At<std::uint16_t>(2) == xpWorksheet;
}

} // namespace

TKvxlsWorkbook::TKvxlsWorkbook(TMSExcel& TheFile, TKvxlsFormats& TheFormats, std::string_view Stream)
    : TKvxlsStream(TheFile, TheFormats, Stream)
{
}

TExcelVersion TKvxlsWorkbook::VersionOf(std::string_view Stream)
{
    TKvRecords Records(Stream);
    if (!Records.IsNext(rcBof))
        return evUnknown;
    Records.Next();
    return Records.Record().At<std::uint16_t>(0) == Excel8Number ? evExcel8 : evExcel7;
}

bool TKvxlsWorkbook::Read()
{
    const bool HasLastSheet = ReadRecords();
    EndTextResult();
    if (AllCells && !HasLastSheet)
        RequireSheets();
    return HasLastSheet;
}

/// As many as have an entry.
void TKvxlsWorkbook::RequireSheets() const
{
    const auto Begun = static_cast<std::size_t>(File.SheetIndex + 1);
    if (Begun < Sheets.size())
        throw EFormatError(FormatText("File is truncated: of its %d sheets only %d are there",
                                      {std::to_string(Sheets.size()), std::to_string(Begun)}));
}

/// False when no end of the last sheet came.
bool TKvxlsWorkbook::ReadRecords()
{
    const auto MaxSize = AllCells ? AnySize : IsExcel8() ? MaxBodyOfExcel8 : MaxBody;
    while (Records.Next()) {
        const auto& Record = Records.Record();
        if (Record.Size() > MaxSize && Record.Id != rcSharedStrings)
            continue;
        if (AllCells && EndsGlobals(Record) && EntriesLead())
            return ReadSheetsByEntry();
        if (!ReadRecord(Record))
            return true;
    }
    return false;
}

bool TKvxlsWorkbook::EndsGlobals(const TKvRecord& Record) const
{
    return File.SheetIndex < 0 && OtherParts == 0 && (Record.Id == rcEof || IsWorksheet(Record));
}

/// Each entry leads to a sheet of its own.
bool TKvxlsWorkbook::EntriesLead() const
{
    return !Sheets.empty() && SheetsByOffset.size() == Sheets.size() &&
           std::ranges::all_of(Sheets, [this](const TSheetEntry& Entry) {
               const auto Record = Records.At(Entry.Offset);
               return Record && IsWorksheet(*Record);
           });
}

/// In the order of the tabs. False when the end of a sheet is missing.
bool TKvxlsWorkbook::ReadSheetsByEntry()
{
    bool HaveEnds = true;
    for (std::size_t I = 0; I < Sheets.size(); ++I) {
        Records.Seek(Sheets[I].Offset);
        Records.Next();                             // its BOF
        OtherParts = 0;
        if (AnnounceSheet(I))
            HaveEnds = ReadSheet() && HaveEnds;
    }
    return HaveEnds;
}

/// Up to its end or the next sheet.
bool TKvxlsWorkbook::ReadSheet()
{
    while (Records.Next()) {
        const auto& Record = Records.Record();
        if ((Record.Id == rcEof && OtherParts == 0) || IsWorksheet(Record))
            return true;
        ReadRecord(Record);
    }
    return false;
}

/// False when that was the end of the last sheet.
bool TKvxlsWorkbook::ReadRecord(const TKvRecord& Record)
{
    if (IsBof(Record.Id))
        return ReadBof(Record);
    if (Record.Id == rcEof)
        return ReadEof();
    if (OtherParts > 0)
        return true;
    switch (Record.Id) {
    case rcFilePass:      RefuseEncrypted();
    case rcSheetEntry:    ReadSheetEntry(Record); break;
    case rcSharedStrings: File.NewStrings().Read(Records, AllCells); break;
    case rcXf:            Formats.AddXf(Record.At<std::uint16_t>(2)); break;
    case rcFormat:        ReadFormat(Record); break;
    case rcDateMode:      ReadDateMode(Record); break;
    case rcCodePage:      ReadCodePage(Record); break;
    case rcDimensions:    ReadDimensions(Record); break;
    case rcRow:           ReadRow(Record); break;
    case rcColumnWidths:  ReadColumnWidths(Record); break;
    default:
        if (File.OnCellValue)
            ReadCell(Record);
    }
    return true;
}

bool TKvxlsWorkbook::ReadBof(const TKvRecord& Record)
{
    const auto Part = Record.At<std::uint16_t>(2);
    if (Part == xpWorksheet) {
        OtherParts = 0;
        return BeginSheet(Record);
    }
    if (AllCells && (Part != xpGlobals || OtherParts > 0))
        ++OtherParts;
    return true;
}

bool TKvxlsWorkbook::ReadEof()
{
    if (OtherParts > 0) {
        --OtherParts;
        return true;
    }
    return File.SheetIndex < 0 || !IsLastSheet();
}

bool TKvxlsWorkbook::IsLastSheet() const
{
    return File.SheetIndex >= static_cast<int>(Sheets.size()) - 1;
}

bool TKvxlsWorkbook::BeginSheet(const TKvRecord& Bof)
{
    if (AnnounceSheet(EntryOf(Bof)))
        return true;
    if (IsLastSheet())
        return false;
    if (AllCells)
        ++OtherParts;                               // until its end: sheets stand in any order
    else
        SeekSheet(static_cast<std::size_t>(File.SheetIndex) + 1, Bof);
    return true;
}

/// `Index` is that of its entry. False when it is to be left out.
bool TKvxlsWorkbook::AnnounceSheet(std::size_t Index)
{
    EndTextResult();
    ++File.SheetIndex;
    bool Skip = false;
    File.SheetHidden = Index < Sheets.size() && Sheets[Index].IsHidden;
    if (File.OnSheet)
        File.OnSheet(File, Index < Sheets.size() ? Sheets[Index].Name : "Sheet" + std::to_string(Index + 1),
                     File.SheetIndex, Skip);
    return !Skip;
}

/// Goes on with sheet `Index`, which must begin after the current one: else reading might never end.
void TKvxlsWorkbook::SeekSheet(std::size_t Index, const TKvRecord& Bof)
{
    const auto Offset = Sheets[Index].Offset;
    if (Offset <= Bof.Offset)
        Bof.Raise(FormatText("the next sheet cannot begin before it, at offset %d",
                             {std::to_string(Offset)}));
    Records.Seek(Offset);
}

/// That with the number of the sheet. Under the extension rather the one that tells where it begins: sheets
/// stand in any order.
std::size_t TKvxlsWorkbook::EntryOf(const TKvRecord& Bof) const
{
    const auto Found = SheetsByOffset.find(Bof.Offset);
    return AllCells && Found != SheetsByOffset.end() ? Found->second
                                                     : static_cast<std::size_t>(File.SheetIndex) + 1;
}

void TKvxlsWorkbook::ReadSheetEntry(const TKvRecord& Record)
{
    const auto Offset = Record.At<std::uint32_t>(0);
    if (AllCells && Record.At<std::uint8_t>(5) != ekWorksheet)
        return;
    SheetsByOffset.try_emplace(Offset, Sheets.size());
    const bool IsHidden = (Record.At<std::uint8_t>(4) & StateMask) != 0;
    Sheets.push_back({EntryName(Record), IsHidden, Offset}); // last: the name may run on into other records
}

std::string TKvxlsWorkbook::EntryName(const TKvRecord& Record)
{
    if (!IsExcel8())
        return std::string(ByteText.Convert(Record.Text(7, Record.At<std::uint8_t>(6))));
    if (Extends(seFileCodePage))
        return std::string(TakeCharacters(8, Record.At<std::uint8_t>(6), Record.At<std::uint8_t>(7)));
    // The length takes in the options byte after it, which adds 256 to that of a 16-bit name: it reaches past
    // the record, where nothing is left to take.
    const std::size_t Length = Record.At<std::uint16_t>(6);
    const bool IsWide = Record.At<std::uint8_t>(7) != 0;
    return std::string(Record.Text(8, IsWide ? std::min(Length, Record.Size() - 8) : Length));
}

void TKvxlsWorkbook::ReadDimensions(const TKvRecord& Record)
{
    if (!File.OnDimensions)
        return;
    if (IsExcel8())
        File.OnDimensions(File, File.SheetIndex, Record.At<std::int32_t>(0), Record.At<std::int32_t>(4),
                          Record.At<std::uint16_t>(8), Record.At<std::uint16_t>(10));
    else
        File.OnDimensions(File, File.SheetIndex, Record.At<std::uint16_t>(0), Record.At<std::uint16_t>(2),
                          Record.At<std::uint16_t>(4), Record.At<std::uint16_t>(6));
}

void TKvxlsWorkbook::ReadRow(const TKvRecord& Record)
{
    if (File.OnRowHeight)
        File.OnRowHeight(File, File.SheetIndex, Record.At<std::uint16_t>(0), Record.At<std::uint16_t>(6));
}

void TKvxlsWorkbook::ReadColumnWidths(const TKvRecord& Record)
{
    if (!File.OnColumnWidth)
        return;
    const int Width = Record.At<std::uint16_t>(4);
    const int Last = Record.At<std::uint16_t>(2);   // 256, one past the last, for "up to the end"
    for (int Column = Record.At<std::uint16_t>(0); Column <= Last; ++Column)
        File.OnColumnWidth(File, File.SheetIndex, Column, Width);
}

void TKvxlsWorkbook::ReadFormat(const TKvRecord& Record)
{
    if (!Extends(seCustomDates))
        return;
    const auto Format = Record.At<std::uint16_t>(0);
    if (!IsExcel8()) {
        Formats.SetPattern(Format, Record.Text(3, Record.At<std::uint8_t>(2)));
        return;
    }
    Formats.SetPattern(Format, TakeText(2));
}

void TKvxlsWorkbook::ReadCell(const TKvRecord& Cell)
{
    switch (Cell.Id) {
    case rcBlank2:
    case rcInteger2:
    case rcNumber2:
    case rcLabel2:       ReadOldCell(Cell); break;
    case rcBoolErr2:
    case rcBoolErr:
        RaiseBoolErr(PlaceOf(Cell), Cell.At<std::uint8_t>(6), Cell.At<std::uint8_t>(7) != 0);
        break;
    case rcFormula:      ReadFormula(Cell); break;
    case rcFormula3:
    case rcFormula4:
        if (AllCells)
            ReadFormula(Cell);
        break;
    case rcOldRk:
    case rcRk:           RaiseNumberRecord(Cell, RkNumber(Cell.At<std::uint32_t>(6))); break;
    case rcMulRk:        RaiseMulRk(Cell); break;
    case rcMulBlank:     ReadBlanks(Cell); break;
    case rcNumber:       RaiseNumberRecord(Cell, Cell.At<double>(6)); break;
    case rcLabel:        ReadLabel(Cell); break;
    case rcSharedString: ReadSharedString(Cell); break;
    case rcRString:
        if (AllCells)
            ReadLabel(Cell);
        break;
    case rcString2:
    case rcString: ReadFormulaText(); break;
    }
}

/// Cells in the records of Excel 2, where columns have 8 bits.
void TKvxlsWorkbook::ReadOldCell(const TKvRecord& Cell)
{
    auto Place = PlaceOf(Cell, AttributeAlignment(Cell.At<std::uint8_t>(6)));
    if (Cell.Id == rcBlank2)
        return Raise(Place, Null);
    Place.Column &= 0xFF;
    const auto Kind = Formats.KindOf(Cell.At<std::uint16_t>(4));
    switch (Cell.Id) {
    case rcInteger2: RaiseInteger(Place, Cell.At<std::uint16_t>(7), Kind); break;
    case rcNumber2:  RaiseNumber(Place, Cell.At<double>(7), Kind); break;
    default:         RaiseText(Place, Cell.Text(8, Cell.At<std::uint8_t>(7)));
    }
}

void TKvxlsWorkbook::ReadFormula(const TKvRecord& Cell)
{
    const auto Kind = Formats.KindOf(Cell.At<std::uint16_t>(4));
    RaiseResult(PlaceOf(Cell, Kind == skNumber ? taRightJustify : taLeftJustify), Cell, 6, Kind);
}

void TKvxlsWorkbook::ReadBlanks(const TKvRecord& Cells)
{
    constexpr std::size_t Ends = 6;                 // row, first column and last column
    auto Place = PlaceOf(Cells);
    for (std::size_t Size = Ends; Size + 2 <= Cells.Size(); Size += 2, ++Place.Column)
        Raise(Place, Null);
}

void TKvxlsWorkbook::ReadLabel(const TKvRecord& Cell)
{
    const auto Place = PlaceOf(Cell);
    if (AllCells && IsExcel8())
        RaiseTaken(Place, TakeText(6));
    else
        RaiseText(Place, TakeBytes(6));
}

void TKvxlsWorkbook::ReadSharedString(const TKvRecord& Cell)
{
    const auto& Strings = File.Strings();
    const auto Index = Cell.At<std::uint32_t>(6);
    if (Index >= Strings.Count())
        Cell.Raise(FormatText("there is no shared string %d, only %d",
                              {std::to_string(Index), std::to_string(Strings.Count())}));
    Raise(PlaceOf(Cell), TVariant::Borrow(Strings[Index]), Strings.IsReplaced(Index) ? cfCodePage : cfNone);
}

void TKvxlsWorkbook::ReadFormulaText()
{
    if (!TextResult)
        return;
    if (!IsExcel8())
        return RaiseTextResult(TakeBytes(0));
    RaiseTaken(*TextResult, TakeText(0));
    TextResult.reset();
}

/// The 8-bit text whose count of bytes stands at `Position` of the current record. Under the extension it may
/// go on in others, of which the last is current then.
std::string_view TKvxlsWorkbook::TakeBytes(std::size_t Position)
{
    const auto Record = Records.Record();
    const std::size_t Count = Record.At<std::uint16_t>(Position);
    const auto Begin = Record.From(Position + 2).Bytes();
    if (!AllCells || Begin.size() >= Count || !Records.IsNext(rcContinue))
        return Record.Text(Position + 2, Count);
    Text = Begin;
    while (Text.size() < Count && Records.IsNext(rcContinue)) {
        Records.Next();
        Text.append(Records.Record().Body.substr(0, Count - Text.size()));
    }
    if (Text.size() < Count)
        Record.Text(Position + 2, Count);           // says what is missing
    return Text;
}

/// The text of Excel 8 whose count of characters stands at `Position` of the current record.
std::string_view TKvxlsWorkbook::TakeText(std::size_t Position)
{
    const auto& Record = Records.Record();
    return TakeCharacters(Position + 3, Record.At<std::uint16_t>(Position),
                          Record.At<std::uint8_t>(Position + 2));
}

/// Characters that begin at `Position` of the current record and may go on in others, of which the last is
/// current then.
std::string_view TKvxlsWorkbook::TakeCharacters(std::size_t Position, std::size_t Count, std::uint8_t Options)
{
    const bool AreWide = (Options & soWide) != 0;
    if (!Records.IsNext(rcContinue))
        Records.Record().Text(Position, AreWide ? 2 * Count : Count);
    Text.clear();
    TKvxlsStringReader In(Records, Position);
    In.TakeCharacters(Count, AreWide, Text);
    TextReplaced = In.HasReplaced();
    return Text;
}

} // namespace kv
