#include "KvxlsStream.h"

#include "KvException.h"
#include "KvxlsNumbers.h"

namespace kv {

namespace {

constexpr char MsgEncrypted[] = "Can not read: file is encrypted";

/// What the first of the 8 bytes of a result says when the last two are FF: they are no number then.
enum TResultKind : std::uint8_t { rkText, rkBoolean, rkError, rkEmptyText };
constexpr std::uint16_t NoNumber = 0xFFFF;

} // namespace

TExcelVersion VersionOfBof(std::uint16_t Id)
{
    switch (Id) {
    case 0x0009: return evExcel2;
    case 0x0209: return evExcel3;
    case 0x0409: return evExcel4;
    case 0x0809: return evExcel5;
    default:     return evUnknown;
    }
}

TKvxlsStream::TKvxlsStream(TMSExcel& TheFile, TKvxlsFormats& TheFormats, std::string_view Stream)
    : File(TheFile),
      AllCells(Extends(seCellRecords)),
      Formats(TheFormats),
      Records(Stream),
      Calendar(sdExcel, TheFile.Extensions)
{
}

void TKvxlsStream::RaiseInteger(const TPlace& Place, std::uint16_t Number, TSerialKind Kind)
{
    if (Kind != skNumber && Extends(seCustomDates))
        RaiseSerial(Place, Number, Kind);
    else
        Raise(Place, Number);
}

void TKvxlsStream::RaiseSerial(const TPlace& Place, double Number, TSerialKind Kind)
{
    TCellFault Fault = cfNone;
    const auto Value = Calendar.ValueOf(Number, Kind, Fault);
    Raise(Place, Value, Fault);
}

void TKvxlsStream::RaiseBoolErr(const TPlace& Place, std::uint8_t Value, bool IsError)
{
    if (IsError)
        Raise(Place, TVariant::Borrow(ExcelErrorText(Value)));
    else
        Raise(Place, Value != 0);
}

void TKvxlsStream::RaiseMulRk(const TKvRecord& Cells)
{
    constexpr std::size_t EntrySize = 6, Ends = 6;  // row, first column and last column
    auto Place = PlaceOf(Cells);
    Cells.Text(0, Ends);
    for (std::size_t Position = 4; Position + EntrySize + 2 <= Cells.Size();
         Position += EntrySize, ++Place.Column)
        RaiseAligned(Place, RkNumber(Cells.At<std::uint32_t>(Position + 2)),
                     Formats.KindOf(Cells.At<std::uint16_t>(Position)));
}

void TKvxlsStream::RaiseResult(const TPlace& Place, const TKvRecord& Formula, std::size_t Position,
                               TSerialKind Kind)
{
    EndTextResult();
    if (!Extends(seFormulaResults) || Formula.At<std::uint16_t>(Position + 6) != NoNumber) {
        RaiseNumber(Place, Formula.At<double>(Position), Kind);
        return;
    }
    const auto Value = Formula.At<std::uint8_t>(Position + 2);
    const TPlace Left{Place.Row, Place.Column, taLeftJustify};
    switch (Formula.At<std::uint8_t>(Position)) {
    case rkText:      TextResult = Left; break;
    case rkBoolean:   RaiseBoolErr(Left, Value, false); break;
    case rkError:     RaiseBoolErr(Left, Value, true); break;
    case rkEmptyText: Raise(Left, ""); break;
    default:          Formula.Raise("the kind of its result is unknown");
    }
}

void TKvxlsStream::RaiseTextResult(std::string_view Bytes)
{
    if (TextResult)
        RaiseText(*TextResult, Bytes);
    TextResult.reset();
}

void TKvxlsStream::ReadDateMode(const TKvRecord& Record)
{
    if (Extends(seDateMode))
        Calendar.SetIs1904(Record.At<std::uint16_t>(0) == 1);
}

void TKvxlsStream::ReadCodePage(const TKvRecord& Record)
{
    if (Extends(seFileCodePage))
        ByteText.SetCodePage(Record.At<std::uint16_t>(0));
}

void TKvxlsStream::RefuseEncrypted() { throw Exception(MsgEncrypted, {.Rule = erStorage}); }

} // namespace kv
