// KvWorksheets - what the readers of worksheets have in common: files of one sheet that programs wrote before
// workbooks came, a stream of records that differ little from format to format.
//
//   file := begin record* end
//   cell := format:u8  place:u8[4]  value              what stands in the place tell Kvwks and Kvwq
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "KvCells.h"
#include "KvRecords.h"
#include "KvSerials.h"

namespace kv {

/// Records that have the same number in all worksheets.
enum TWorksheetRecord : std::uint16_t {
    wrBegin = 0x00,
    wrEnd = 0x01,
    wrRange = 0x06,
    wrBlank = 0x0C,
    wrInteger = 0x0D,
    wrNumber = 0x0E,
    wrLabel = 0x0F,
    wrFormula = 0x10,
    wrString = 0x33                                 ///< The result of the formula before it, if text.
};

/// Where a cell stands, counted from 0.
struct TCellPlace
{
    int Row = 0;
    int Column = 0;
};

/// Reads a worksheet. Events carry sheet 0; OnSheet is not raised, so that the model names the sheet Sheet1.
/// OnDimensions has the extent of the range record, whose last row and column are numbers and not counts;
/// with seCellExtent it comes once more at the end, as counts. A record may have all of the 65535 bytes that
/// its length can tell; one of length 0 is only a header. Text passes as it stands, in a code page of DOS
/// that no record tells; a remark says how much of it is not ASCII.
class TWorksheetFile : public TSpreadSheetFile
{
public:
    void LoadFromFile(const std::string& Path) override;
    /// Reads the file FileName and raises the events that are assigned. Raises EFileError, Exception when the
    /// file is of another format, EFormatError when a record is too short for what it holds or the file ends
    /// within one. What was raised before stays with who took it.
    void ImportFromStream();

protected:
    TWorksheetFile(TComponent* TheOwner, std::uint16_t ColumnWidthsId, TSerialDays TheDays)
        : TSpreadSheetFile(TheOwner),
          ColumnWidthsRecord(ColumnWidthsId),
          Days(TheDays)
    {
    }

    // Where the formats differ.
    /// Takes note of the version: false when it belongs to another format.
    virtual bool ReadVersion(std::uint16_t Number) = 0;
    virtual std::string_view NotThisFormat() const = 0; ///< The message when it does.
    virtual void ReadRange(const TKvRecord& Record) = 0;
    virtual TCellPlace PlaceOf(const TKvRecord& Cell) const = 0;
    virtual std::string_view LabelOf(const TKvRecord& Cell) const = 0;
    virtual std::string_view StringOf(const TKvRecord& Cell) const = 0; ///< Of the result of a formula.

    void RaiseDimensions(int FirstRow, int LastRow, int FirstColumn, int LastColumn);

private:
    void ReadRecords(std::string_view Stream);
    void ReadRecord(const TKvRecord& Record);
    void RequireVersion(std::uint16_t Number);
    void ReadColumnWidths(const TKvRecord& Record);
    void ReadCell(const TKvRecord& Record);
    void ReadResult(const TKvRecord& Record);
    void RaiseCell(const TKvRecord& Record, const TVariant& Value, TCellFault Fault = cfNone);
    void RaiseText(const TKvRecord& Record, std::string_view Text);
    void RaiseInteger(const TKvRecord& Cell);
    void RaiseNumber(const TKvRecord& Cell);
    void RaiseSerial(const TKvRecord& Cell, double Serial, TSerialKind Kind);
    TSerialKind KindOf(const TKvRecord& Cell) const;

    const std::uint16_t ColumnWidthsRecord;         // its number
    const TSerialDays Days;
    TKvISourceRemark OldText{.Kind = srOldText};    // of this load
    int CellRows = 0;                               // one more than the highest with a value
    int CellColumns = 0;
};

} // namespace kv
