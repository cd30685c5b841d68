#include "KvWorksheets.h"

#include <algorithm>
#include <cmath>

#include "KvException.h"
#include "KvFile.h"
#include "KvUtf8.h"

namespace kv {

namespace {

constexpr std::size_t AlignmentAt = 6;
constexpr std::size_t ValueAt = 5;
constexpr std::uint16_t NoVersion = 0;

/// The character that begins a label tells how it stands, and is looked for where this format's oldest reader
/// looked: for a number that is a byte of the number. Blank cells end before it.
TAlignment AlignmentOf(const TKvRecord& Record)
{
    switch (Record.Size() > AlignmentAt ? Record.At<char>(AlignmentAt) : '\0') {
    case '^': return taRightJustify;
    case '"': return taCenter;
    default:  return taLeftJustify;
    }
}

/// The format of a cell: bit 7 protection, bits 4 to 6 the kind, bits 0 to 3 decimals or the variety.
TSerialKind KindOfFormat(std::uint8_t Format)
{
    constexpr unsigned SpecialKind = 7;
    if ((Format >> 4 & 7u) != SpecialKind)
        return skNumber;
    switch (Format & 15u) {
    case 2: case 3: case 4:                         // day-month-year, day-month, month-year
    case 9: case 10: return skMoment;               // the international ones
    case 7: case 8:                                 // with seconds and without
    case 11: case 12: return skTime;
    default:          return skNumber;
    }
}

bool IsFollowedByRecord(const TKvRecord& Record, std::string_view Stream)
{
    const auto Rest = Stream.substr(Record.Offset + TKvRecord::HeaderSize + Record.Size());
    return Rest.size() >= TKvRecord::HeaderSize &&
           Rest.size() - TKvRecord::HeaderSize >= LoadLittleEndian<std::uint16_t>(Rest.data() + 2);
}

} // namespace

void TWorksheetFile::LoadFromFile(const std::string& Path)
{
    TSpreadSheetFile::LoadFromFile(Path);
    ImportFromStream();
}

void TWorksheetFile::ImportFromStream()
{
    const auto Bytes = ReadBytes();
    CellRows = 0;
    CellColumns = 0;
    OldText = {.Kind = srOldText};
    ReadRecords(Bytes.View());
    if (Extensions.Contains(seCellExtent) && CellRows > 0)
        RaiseDimensions(0, CellRows, 0, CellColumns);
    if (OldText.Count > 0)
        Remarks.push_back(OldText);
}

void TWorksheetFile::ReadRecords(std::string_view Stream)
{
    TKvRecords Records(Stream);
    const bool HasBegin = Records.IsNext(wrBegin) && Records.Next() && Records.Record().Size() > 0;
    if (!ReadVersion(HasBegin ? Records.Record().At<std::uint16_t>(0) : NoVersion))
        RaiseNotThisFormat(NotThisFormat(), Stream);
    bool HasEnded = false;
    // What fills the last block of a disk or of a transfer behind the end is no record that was cut short.
    while ((!HasEnded || IsFollowedByRecord(Records.Record(), Stream)) && Records.Next()) {
        const auto& Record = Records.Record();
        HasEnded = HasEnded || Record.Id == wrEnd;
        if (Record.Size() > 0)
            ReadRecord(Record);
    }
}

void TWorksheetFile::ReadRecord(const TKvRecord& Record)
{
    if (Record.Id == wrBegin)
        RequireVersion(Record.At<std::uint16_t>(0));
    else if (Record.Id == wrRange && OnDimensions)
        ReadRange(Record);
    else if (Record.Id == ColumnWidthsRecord)
        ReadColumnWidths(Record);
    else if (OnCellValue)
        ReadCell(Record);
}

void TWorksheetFile::RequireVersion(std::uint16_t Number)
{
    if (!ReadVersion(Number))
        throw Exception(std::string(NotThisFormat()));
}

/// first:u8 last:u8 width:u16, the width in 256ths. Most files have a shorter record of this number, which is
/// a setting of another kind.
void TWorksheetFile::ReadColumnWidths(const TKvRecord& Record)
{
    constexpr std::size_t NeededSize = 4;
    if (!OnColumnWidth || Record.Size() < NeededSize)
        return;
    const int Width = Record.At<std::uint16_t>(2) / 256;
    for (int Column = Record.At<std::uint8_t>(0); Column <= Record.At<std::uint8_t>(1); ++Column)
        OnColumnWidth(*this, 0, Column, Width);
}

void TWorksheetFile::ReadCell(const TKvRecord& Record)
{
    switch (Record.Id) {
    case wrBlank:   RaiseCell(Record, Null); break;
    case wrInteger: RaiseInteger(Record); break;
    case wrNumber:  RaiseNumber(Record); break;
    case wrLabel:   RaiseText(Record, LabelOf(Record)); break;
    case wrFormula:
    case wrString:
        if (Extensions.Contains(seFormulaResults))
            ReadResult(Record);
        break;
    default:        break;
    }
}

/// A text follows the number that stands for it in the formula, and takes the place of that number.
void TWorksheetFile::ReadResult(const TKvRecord& Record)
{
    if (Record.Id == wrFormula)
        RaiseNumber(Record);
    else
        RaiseText(Record, StringOf(Record));
}

void TWorksheetFile::RaiseCell(const TKvRecord& Record, const TVariant& Value, TCellFault Fault)
{
    const auto Place = PlaceOf(Record);
    if (Value.HasValue()) {
        CellRows = std::max(CellRows, Place.Row + 1);
        CellColumns = std::max(CellColumns, Place.Column + 1);
    }
    CellFault = Fault;
    OnCellValue(*this, 0, Place.Row, Place.Column, Value, AlignmentOf(Record));
}

void TWorksheetFile::RaiseDimensions(int FirstRow, int LastRow, int FirstColumn, int LastColumn)
{
    if (OnDimensions)
        OnDimensions(*this, 0, FirstRow, LastRow, FirstColumn, LastColumn);
}

void TWorksheetFile::RaiseText(const TKvRecord& Record, std::string_view Text)
{
    if (!IsAscii(Text) && OldText.Count++ == 0)
        OldText.First = PlaceOf(Record).Row + 1;
    RaiseCell(Record, TVariant::Borrow(Text));
}

void TWorksheetFile::RaiseInteger(const TKvRecord& Cell)
{
    const auto Unsigned = Cell.At<std::uint16_t>(ValueAt);
    const int Value = Extensions.Contains(seSignedIntegers) ? static_cast<std::int16_t>(Unsigned) : Unsigned;
    if (const auto Kind = KindOf(Cell); Kind == skNumber)
        RaiseCell(Cell, Value);
    else
        RaiseSerial(Cell, Value, Kind);
}

void TWorksheetFile::RaiseNumber(const TKvRecord& Cell)
{
    const auto Value = Cell.At<double>(ValueAt);
    if (!std::isfinite(Value) && Extensions.Contains(seFormulaResults))
        RaiseCell(Cell, Value > 0 ? "NA" : "ERR");  // infinite is "not available", all else an error
    else if (const auto Kind = KindOf(Cell); Kind == skNumber)
        RaiseCell(Cell, Value);
    else
        RaiseSerial(Cell, Value, Kind);
}

void TWorksheetFile::RaiseSerial(const TKvRecord& Cell, double Serial, TSerialKind Kind)
{
    TCellFault Fault = cfNone;
    const auto Value = TSerialCalendar(Days, Extensions).ValueOf(Serial, Kind, Fault);
    RaiseCell(Cell, Value, Fault);
}

TSerialKind TWorksheetFile::KindOf(const TKvRecord& Cell) const
{
    return Extensions.Contains(seCustomDates) ? KindOfFormat(Cell.At<std::uint8_t>(0)) : skNumber;
}

} // namespace kv
