// KvxlsWorkbook - reads the workbook stream of Excel 5 to 2003: globals, then a substream for each sheet.
//
//   workbook := BOF globals EOF  (BOF sheet EOF)*          charts stand within sheets, or beside them
//
//   record           id          body
//   BOF              ..09        version:u16 part:u16 ...
//   EOF              000A
//   encryption       002F        ...
//   column widths    007D        first:u16 last:u16 width:u16
//   sheet            0085        bof:u32 state:u8 kind:u8 length:u8 name            length:u16 in Excel 8
//   XF               00E0        font:u16 format:u16 ...
//   shared strings   00FC        see KvxlsStrings
//   dimensions       0200        firstrow:u16 endrow:u16 firstcol:u16 endcol:u16    rows:u32 in Excel 8
//   row              0208        row:u16 firstcol:u16 endcol:u16 height:u16
//
//   blank            0001        row:u16 column:u16 attributes:u8[3]                column := low byte ...
//   integer          0002        row:u16 column:u16 attributes:u8[3] value:u16
//   number           0003        row:u16 column:u16 attributes:u8[3] value:f64
//   label            0004        row:u16 column:u16 attributes:u8[3] length:u8 text     ... but for blanks
//
//   boolean, error   0005 0205   cell xf:u16 value:u8 iserror:u8                    cell := row:u16 col:u16
//   formula          0006        cell xf:u16 result:f64 ...                         also 0206 and 0406
//   RK               007E 027E   cell xf:u16 rk:u32
//   RK's             00BD        row:u16 first:u16 (xf:u16 rk:u32)* last:u16
//   blanks           00BE        row:u16 first:u16 (xf:u16)* last:u16
//   shared string    00FD        cell xf:u16 index:u32
//   number           0203        cell xf:u16 value:f64
//   label            0204        cell xf:u16 length:u16 text
//
// Records but the shared strings that are longer than any of their version, 2080 bytes and 8224 in Excel 8,
// are passed over. Parts that are no worksheets are not told from them: a chart's copies of the cells that it
// shows are cells of the sheet before it, and its end may be taken for that of the last sheet. With
// seCellRecords records of any size are read, such parts are passed over, sheets are read in the order of
// their entries, and a stream that lacks sheets is truncated. Only with the extensions:
//
//   string           0007 0207   length:u16 [options:u8] text                       a formula's result
//   rich text        00D6        cell xf:u16 length:u16 text runs
//   label            0204        cell xf:u16 length:u16 options:u8 text             in Excel 8
//   format           041E        index:u16 length:u8 text
//                                index:u16 length:u16 options:u8 text               in Excel 8
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "KvxlsStream.h"
#include "KvxlsStrings.h"

namespace kv {

class TKvxlsWorkbook final : private TKvxlsStream
{
public:
    /// The version of the workbook is that of the file.
    TKvxlsWorkbook(TMSExcel& TheFile, TKvxlsFormats& TheFormats, std::string_view Stream);

    /// Raises what the stream holds. False when it ended before the last sheet did. Raises the errors of
    /// TMSExcel but for "File is not a ...", and with seCellRecords EFormatError "File is truncated: of its
    /// %d sheets only %d are there".
    bool Read();

    /// evExcel7 or evExcel8 for bytes that begin like a workbook stream, evUnknown for others.
    static TExcelVersion VersionOf(std::string_view Stream);

private:
    struct TSheetEntry
    {
        std::string Name;
        bool IsHidden;
        std::uint32_t Offset;                       // of its BOF
    };

    bool IsExcel8() const { return File.Version == evExcel8; }
    bool ReadRecords();
    void RequireSheets() const;
    bool ReadRecord(const TKvRecord& Record);
    bool EndsGlobals(const TKvRecord& Record) const;
    bool EntriesLead() const;
    bool ReadSheetsByEntry();
    bool ReadSheet();
    bool AnnounceSheet(std::size_t Index);
    bool ReadBof(const TKvRecord& Record);
    bool ReadEof();
    bool BeginSheet(const TKvRecord& Bof);
    void SeekSheet(std::size_t Index, const TKvRecord& Bof);
    std::size_t EntryOf(const TKvRecord& Bof) const;
    bool IsLastSheet() const;
    void ReadSheetEntry(const TKvRecord& Record);
    std::string EntryName(const TKvRecord& Record);
    void ReadDimensions(const TKvRecord& Record);
    void ReadRow(const TKvRecord& Record);
    void ReadColumnWidths(const TKvRecord& Record);
    void ReadFormat(const TKvRecord& Record);

    void ReadCell(const TKvRecord& Cell);
    void ReadOldCell(const TKvRecord& Cell);
    void ReadFormula(const TKvRecord& Cell);
    void ReadBlanks(const TKvRecord& Cells);
    void ReadLabel(const TKvRecord& Cell);
    void ReadSharedString(const TKvRecord& Cell);
    void ReadFormulaText();
    /// A text that TakeText has given.
    void RaiseTaken(const TPlace& Place, std::string_view Taken)
    {
        Raise(Place, TVariant::Borrow(Taken), TextReplaced ? cfCodePage : cfNone);
    }
    std::string_view TakeText(std::size_t Position);
    std::string_view TakeBytes(std::size_t Position);
    std::string_view TakeCharacters(std::size_t Position, std::size_t Count, std::uint8_t Options);

    std::vector<TSheetEntry> Sheets;
    std::unordered_map<std::size_t, std::size_t> SheetsByOffset; // their positions
    int OtherParts = 0;                             // how many parts that are passed over are open
    std::string Text;                               // of one cell
    bool TextReplaced = false;                      // characters of it
};

} // namespace kv
