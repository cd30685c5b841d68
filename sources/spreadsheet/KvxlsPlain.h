// KvxlsPlain - reads a plain stream of Excel records: one sheet, its number -1.
//
//   record           id                 body
//   BOF              0009 0209 0409 0809   version:u16 part:u16 ...           the id tells the version
//   column widths    0024               first:u8 last:u8 width:u16            256ths of a character
//   dimensions       0200               firstrow:u16 endrow:u16 firstcol:u16 endcol:u16
//   XF               00E0               font:u16 format:u16 ...
//   blank            0001               cell attributes:u8[3]                 cell := row:u16 column:u16
//   integer          0002               cell attributes:u8[3] value:u16
//   number           0003               cell attributes:u8[3] value:f64
//   label            0004               cell attributes:u8[3] length:u8 text
//   boolean, error   0005 0205          cell xf:u16 value:u8 iserror:u8
//   label            0204               cell xf:u16 length:u16 text
//   RK               027E               cell xf:u16 rk:u32
//
// An XF is looked for at 4 and an alignment at 6, whatever the layout has there. Records of any size are
// read. Only with the extensions:
//
//   boolean, error   0005               cell attributes:u8[3] value:u8 iserror:u8
//   number           0203               cell xf:u16 value:f64
//   formula          0006               cell attributes:u8[3] result:u8[8] ...     in Excel 2
//   formula          0006 0206 0406     cell xf:u16 result:u8[8] ...
//   string           0007 0207          length:u8 or u16  text                     a formula's result
//   RK's, rich text  00BD 00D6          as in workbooks
//   format           001E               length:u8 text                             numbered in their order
//   format           041E               index:u16 length:u8 text                   the same, but for Excel 5
//   XF               0043 0243 0443     ... format:u8 at 2, 1 and 1
//   XF of a cell     0044               xf:u16                                     for the next cell
//   sheet            008F               size:u32 length:u8 name                    in an Excel 4 workbook
#pragma once

#include <string>
#include <string_view>

#include "KvxlsStream.h"

namespace kv {

class TKvxlsPlain final : private TKvxlsStream
{
public:
    TKvxlsPlain(TMSExcel& TheFile, TKvxlsFormats& TheFormats, std::string_view Stream);

    /// Raises what the stream holds. Raises Exception "File is not a Excel file" when it does not begin with
    /// a BOF (see TSpreadSheetFile::RaiseNotThisFormat) or has one of an unknown version, and "Can not read:
    /// file is encrypted".
    void Read();

private:
    void ReadRecord(const TKvRecord& Record);
    void ReadBof(const TKvRecord& Record);
    void ReadColumnWidths(const TKvRecord& Record);
    void ReadDimensions(const TKvRecord& Record);
    void RaiseLastDimensions();
    void ReadCell(const TKvRecord& Cell);
    void ReadLaterCell(const TKvRecord& Cell);
    void ReadFormula(const TKvRecord& Cell);
    void ReadFormulaText(const TKvRecord& Record);
    void ReadFormat(const TKvRecord& Record);
    void BeginSheet();

    TPlace NextPlace(const TKvRecord& Cell);
    TSerialKind KindOf(const TKvRecord& Cell) const;

    int LastRow = 0, LastColumn = 0;                // as declared, counts
    bool HasDimensions = false;
    int HighestRow = -1, HighestColumn = -1;        // of the cells
    std::uint16_t LongXf = 0;                       // of an Excel 2 cell whose own bits do not hold it
    bool IsWorkbook = false;                        // of Excel 4
    std::string SheetName;
    bool SkipsSheet = false;
};

} // namespace kv
