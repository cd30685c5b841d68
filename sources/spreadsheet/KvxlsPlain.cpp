#include "KvxlsPlain.h"

#include <algorithm>

#include "KvException.h"
#include "KvxlsNumbers.h"

namespace kv {

namespace {

enum TPlainRecordId : std::uint16_t {
    rcFormat2 = 0x001E,
    rcColumnWidths = 0x0024,
    rcXf2 = 0x0043,
    rcIxfe = 0x0044,
    rcSheetHeader = 0x008F,
    rcXf3 = 0x0243,
    rcXf4 = 0x0443
};

constexpr char MsgNoExcelFile[] = "File is not a Excel file";

constexpr int WidthUnits = 256;                     // of a character

// Attributes of an Excel 2 cell: the low bits of the first two tell its XF and its format.
constexpr std::uint8_t AttributeNumber = 0x3F;
constexpr std::uint8_t NumberInIxfe = 0x3F;

} // namespace

TKvxlsPlain::TKvxlsPlain(TMSExcel& TheFile, TKvxlsFormats& TheFormats, std::string_view Stream)
    : TKvxlsStream(TheFile, TheFormats, Stream)
{
}

void TKvxlsPlain::Read()
{
    // Any text begins with some id and size: what begins with no BOF is not worth another message.
    const auto FirstId = Records.NextId();
    if (!FirstId || VersionOfBof(*FirstId) == evUnknown)
        File.RaiseNotThisFormat(MsgNoExcelFile, Records.Bytes());
    while (Records.Next())
        ReadRecord(Records.Record());
    EndTextResult();
    RaiseLastDimensions();
}

void TKvxlsPlain::ReadRecord(const TKvRecord& Record)
{
    if (IsBof(Record.Id))
        return ReadBof(Record);
    switch (Record.Id) {
    case rcFilePass:     RefuseEncrypted();
    case rcColumnWidths: ReadColumnWidths(Record); break;
    case rcDimensions:   ReadDimensions(Record); break;
    case rcDateMode:     ReadDateMode(Record); break;
    case rcCodePage:     ReadCodePage(Record); break;
    case rcXf:           Formats.AddXf(Record.At<std::uint16_t>(2)); break;
    case rcFormat2:
    case rcFormat:
    case rcXf2:
    case rcXf3:
    case rcXf4:
    case rcIxfe:
        if (Extends(seCustomDates))
            ReadFormat(Record);
        break;
    case rcSheetHeader:
        if (IsWorkbook)
            SheetName = ByteText.Convert(Record.Text(5, Record.At<std::uint8_t>(4)));
        break;
    default:
        if (File.OnCellValue && !SkipsSheet)
            ReadCell(Record);
    }
}

void TKvxlsPlain::ReadBof(const TKvRecord& Record)
{
    File.Version = VersionOfBof(Record.Id);
    if (File.Version == evUnknown)
        throw Exception(MsgNoExcelFile);
    if (!AllCells)
        return;
    const auto Part = Record.At<std::uint16_t>(2);
    if (Part == xpWorkspace)
        IsWorkbook = true;
    else if (IsWorkbook && Part == xpWorksheet)
        BeginSheet();
}

/// The next sheet of an Excel 4 workbook.
void TKvxlsPlain::BeginSheet()
{
    EndTextResult();
    if (File.SheetIndex >= 0)
        RaiseLastDimensions();
    HasDimensions = false;
    LastRow = LastColumn = 0;
    HighestRow = HighestColumn = -1;
    SkipsSheet = false;
    ++File.SheetIndex;
    if (File.OnSheet)
        File.OnSheet(File, SheetName, File.SheetIndex, SkipsSheet);
}

void TKvxlsPlain::ReadColumnWidths(const TKvRecord& Record)
{
    if (!File.OnColumnWidth)
        return;
    const int Width = Record.At<std::uint16_t>(2) / WidthUnits;
    const int Last = Record.At<std::uint8_t>(1);
    for (int Column = Record.At<std::uint8_t>(0); Column <= Last; ++Column)
        File.OnColumnWidth(File, File.SheetIndex, Column, Width);
}

void TKvxlsPlain::ReadDimensions(const TKvRecord& Record)
{
    // One more than the counts that the record holds: programs rely on it.
    LastRow = Record.At<std::uint16_t>(2) + 1;
    LastColumn = Record.At<std::uint16_t>(6) + 1;
    HasDimensions = true;
    if (File.OnDimensions)
        File.OnDimensions(File, File.SheetIndex, 0, LastRow, 0, LastColumn);
}

void TKvxlsPlain::RaiseLastDimensions()
{
    const bool Exceeded = HighestRow >= LastRow || HighestColumn >= LastColumn;
    if (File.OnDimensions && (!HasDimensions || Exceeded))
        File.OnDimensions(File, File.SheetIndex, 0, HighestRow + 1, 0, HighestColumn + 1);
}

void TKvxlsPlain::ReadCell(const TKvRecord& Cell)
{
    switch (Cell.Id) {
    case rcBlank2:   Raise(NextPlace(Cell), Null); break;
    case rcInteger2: RaiseInteger(NextPlace(Cell), Cell.At<std::uint16_t>(7), KindOf(Cell)); break;
    case rcNumber2:  RaiseNumber(NextPlace(Cell), Cell.At<double>(7), KindOf(Cell)); break;
    case rcLabel2:   RaiseText(NextPlace(Cell), Cell.Text(8, Cell.At<std::uint8_t>(7))); break;
    case rcLabel:    RaiseText(NextPlace(Cell), Cell.Text(8, Cell.At<std::uint16_t>(6))); break;
    case rcRk:       RaiseNumber(NextPlace(Cell), RkNumber(Cell.At<std::uint32_t>(6)), KindOf(Cell)); break;
    case rcBoolErr2:
    case rcBoolErr: {
        const std::size_t Position = AllCells && Cell.Id == rcBoolErr2 ? 7 : 6;
        RaiseBoolErr(NextPlace(Cell), Cell.At<std::uint8_t>(Position),
                     Cell.At<std::uint8_t>(Position + 1) != 0);
        break;
    }
    case rcFormula:
    case rcFormula3:
    case rcFormula4:
        if (Extends(seFormulaResults))
            ReadFormula(Cell);
        break;
    case rcString2:
    case rcString:
        if (TextResult)
            ReadFormulaText(Cell);
        break;
    default:
        if (AllCells)
            ReadLaterCell(Cell);
    }
}

/// Cells that only the extension reads.
void TKvxlsPlain::ReadLaterCell(const TKvRecord& Cell)
{
    switch (Cell.Id) {
    case rcNumber:  RaiseNumber(NextPlace(Cell), Cell.At<double>(6), KindOf(Cell)); break;
    case rcRString: RaiseText(NextPlace(Cell), Cell.Text(8, Cell.At<std::uint16_t>(6))); break;
    case rcMulRk:   RaiseMulRk(Cell); break;
    }
}

void TKvxlsPlain::ReadFormula(const TKvRecord& Cell)
{
    const std::size_t Position = Cell.Id == rcFormula && File.Version == evExcel2 ? 7 : 6;
    RaiseResult(NextPlace(Cell), Cell, Position, KindOf(Cell));
}

void TKvxlsPlain::ReadFormulaText(const TKvRecord& Record)
{
    if (Record.Id == rcString2)
        RaiseTextResult(Record.Text(1, Record.At<std::uint8_t>(0)));
    else
        RaiseTextResult(Record.Text(2, Record.At<std::uint16_t>(0)));
}

/// What tells dates besides the XF records of Excel 5.
void TKvxlsPlain::ReadFormat(const TKvRecord& Record)
{
    switch (Record.Id) {
    case rcXf2:     Formats.AddXf(Record.At<std::uint8_t>(2) & AttributeNumber); break;
    case rcXf3:
    case rcXf4:     Formats.AddXf(Record.At<std::uint8_t>(1)); break;
    case rcIxfe:    LongXf = Record.At<std::uint16_t>(0); break;
    case rcFormat2: Formats.AddPattern(Record.Text(1, Record.At<std::uint8_t>(0))); break;
    default: {
        const auto Pattern = Record.Text(3, Record.At<std::uint8_t>(2));
        if (File.Version == evExcel5)
            Formats.SetPattern(Record.At<std::uint16_t>(0), Pattern);
        else
            Formats.AddPattern(Pattern);
    }
    }
}

/// The place of a cell, which counts for the extent of the sheet.
TKvxlsStream::TPlace TKvxlsPlain::NextPlace(const TKvRecord& Cell)
{
    const auto Place = PlaceOf(Cell, AttributeAlignment(Cell.At<std::uint8_t>(6)));
    HighestRow = std::max(HighestRow, Place.Row);
    if (Place.Column < TSpreadSheetRow::MaxColumns)
        HighestColumn = std::max(HighestColumn, Place.Column);
    return Place;
}

TSerialKind TKvxlsPlain::KindOf(const TKvRecord& Cell) const
{
    if (!Extends(seCustomDates) || Cell.Id > 0xFF || File.Version != evExcel2)
        return Formats.KindOf(Cell.At<std::uint16_t>(4));
    if (!Formats.HasXfs())
        return Formats.KindOfFormat(Cell.At<std::uint8_t>(5) & AttributeNumber);
    const std::uint8_t Xf = Cell.At<std::uint8_t>(4) & AttributeNumber;
    return Formats.KindOf(Xf == NumberInIxfe ? LongXf : Xf);
}

} // namespace kv
