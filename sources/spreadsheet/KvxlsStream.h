// KvxlsStream - what plain streams and workbook streams of Excel have in common: how values are raised, the
// settings that hold for all cells, and the results of formulas.
//
//   setting      id    body
//   date mode    0022  is1904:u16
//   code page    0042  number:u16
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

#include "KvRecords.h"
#include "KvSerials.h"
#include "Kvxls.h"
#include "KvxlsFormats.h"
#include "KvxlsText.h"

namespace kv {

/// Ids of records that both kinds of streams have. Where an id has two bytes, the high one tells the version
/// that changed the layout.
enum TKvxlsRecordId : std::uint16_t {
    rcBlank2 = 0x0001,
    rcInteger2 = 0x0002,
    rcNumber2 = 0x0003,
    rcLabel2 = 0x0004,
    rcBoolErr2 = 0x0005,
    rcFormula = 0x0006,
    rcFormula3 = 0x0206,
    rcFormula4 = 0x0406,
    rcString2 = 0x0007,
    rcEof = 0x000A,
    rcDateMode = 0x0022,
    rcFilePass = 0x002F,
    rcCodePage = 0x0042,
    rcMulRk = 0x00BD,
    rcRString = 0x00D6,
    rcXf = 0x00E0,
    rcDimensions = 0x0200,
    rcNumber = 0x0203,
    rcLabel = 0x0204,
    rcBoolErr = 0x0205,
    rcString = 0x0207,
    rcRk = 0x027E,
    rcFormat = 0x041E
};

/// The version that the id of a BOF record tells; evUnknown for other ids.
TExcelVersion VersionOfBof(std::uint16_t Id);

/// What a BOF record begins.
enum TKvxlsPart : std::uint16_t { xpGlobals = 0x0005, xpWorksheet = 0x0010, xpWorkspace = 0x0100 };

class TKvxlsStream
{
protected:
    /// A cell and how it is aligned.
    struct TPlace
    {
        int Row = 0;
        int Column = 0;
        TAlignment Alignment = taLeftJustify;
    };

    TKvxlsStream(TMSExcel& TheFile, TKvxlsFormats& TheFormats, std::string_view Stream);
    ~TKvxlsStream() = default;

    bool Extends(TSpreadSheetExtension Extension) const { return File.Extensions.Contains(Extension); }

    /// By the older reading every id whose low byte is that of a BOF is one, such as that of the markers of
    /// a chart.
    bool IsBof(std::uint16_t Id) const
    {
        constexpr std::uint16_t LowByte = 0x09;
        return (Id & 0xFF) == LowByte && (!AllCells || VersionOfBof(Id) != evUnknown);
    }

    /// The place of a cell from Excel 3 on.
    static TPlace PlaceOf(const TKvRecord& Cell, TAlignment Alignment = taLeftJustify)
    {
        return {Cell.At<std::uint16_t>(0), Cell.At<std::uint16_t>(2), Alignment};
    }

    void Raise(const TPlace& Place, const TVariant& Value, TCellFault Fault = cfNone)
    {
        File.CellFault = Fault;
        File.OnCellValue(File, File.SheetIndex, Place.Row, Place.Column, Value, Place.Alignment);
    }
    void RaiseText(const TPlace& Place, std::string_view Bytes)
    {
        const auto Text = TVariant::Borrow(ByteText.Convert(Bytes));
        Raise(Place, Text, ByteText.HasReplaced() ? cfCodePage : cfNone);
    }
    /// A number, or what it counts.
    void RaiseNumber(const TPlace& Place, double Number, TSerialKind Kind)
    {
        if (Kind == skNumber)
            Raise(Place, Number);
        else
            RaiseSerial(Place, Number, Kind);
    }
    /// The same, dates to the left and numbers to the right.
    void RaiseAligned(TPlace Place, double Number, TSerialKind Kind)
    {
        Place.Alignment = Kind == skNumber ? taRightJustify : taLeftJustify;
        RaiseNumber(Place, Number, Kind);
    }
    /// An integer, which is never a date by the older reading.
    void RaiseInteger(const TPlace& Place, std::uint16_t Number, TSerialKind Kind);
    void RaiseBoolErr(const TPlace& Place, std::uint8_t Value, bool IsError);
    /// The number of a cell from Excel 3 on, whose XF stands at 4.
    void RaiseNumberRecord(const TKvRecord& Cell, double Number)
    {
        RaiseAligned(PlaceOf(Cell), Number, Formats.KindOf(Cell.At<std::uint16_t>(4)));
    }
    /// MULRK: row, first column, then XF and RK for each column, and the last column.
    void RaiseMulRk(const TKvRecord& Cells);

    /// Raises the result of a formula that stands in 8 bytes at `Position`, unless it is a text: that
    /// follows in a record of its own. By the older reading they are a number whatever they say.
    /// A formula whose text does not come has an empty one.
    void RaiseResult(const TPlace& Place, const TKvRecord& Formula, std::size_t Position,
                     TSerialKind Kind);
    /// The text of the last formula, if it asked for one.
    void RaiseTextResult(std::string_view Bytes);
    /// Before the next formula, the next sheet and at the end: the text is not to come any more.
    void EndTextResult()
    {
        if (TextResult)
            RaiseTextResult({});
    }

    void ReadDateMode(const TKvRecord& Record);
    void ReadCodePage(const TKvRecord& Record);
    [[noreturn]] static void RefuseEncrypted();

    TMSExcel& File;
    const bool AllCells;                            // by their own layouts
    TKvxlsFormats& Formats;
    TKvRecords Records;
    TKvxlsByteText ByteText;
    std::optional<TPlace> TextResult;               // the formula whose text is to come

private:
    void RaiseSerial(const TPlace& Place, double Number, TSerialKind Kind);

    TSerialCalendar Calendar;
};

} // namespace kv
