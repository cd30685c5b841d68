#include "KvWorksheetBuilder.h"

#include <limits>

namespace kv {

TWorksheetBuilder::TWorksheetBuilder(TWorksheetFormat TheFormat)
    : TWorksheetBuilder(TheFormat, TheFormat == wfLotus ? 0x0406 : 0x5120)
{
}

TWorksheetBuilder::TWorksheetBuilder(TWorksheetFormat TheFormat, std::uint16_t Version)
    : FileFormat(TheFormat)
{
    Record(0x00, TBytes().U16(Version));
}

TWorksheetBuilder& TWorksheetBuilder::Range(unsigned LastColumn, unsigned LastRow)
{
    return Record(0x06, TBytes().U16(0).U16(0).U16(LastColumn).U16(LastRow));
}

TWorksheetBuilder& TWorksheetBuilder::Format(std::uint8_t Value)
{
    CellFormat = Value;
    return *this;
}

TWorksheetBuilder& TWorksheetBuilder::Blank(unsigned Column, unsigned Row)
{
    return Record(0x0C, Cell(Column, Row));
}

TWorksheetBuilder& TWorksheetBuilder::Integer(unsigned Column, unsigned Row, int Value)
{
    return Record(0x0D, Cell(Column, Row).U16(static_cast<unsigned>(Value)));
}

TWorksheetBuilder& TWorksheetBuilder::Number(unsigned Column, unsigned Row, double Value)
{
    return Record(0x0E, Cell(Column, Row).F64(Value));
}

TWorksheetBuilder& TWorksheetBuilder::Label(unsigned Column, unsigned Row, std::string_view Text, char Prefix)
{
    return Record(0x0F, Cell(Column, Row).U8(static_cast<unsigned char>(Prefix)).Text(Stored(Text)));
}

TWorksheetBuilder& TWorksheetBuilder::Formula(unsigned Column, unsigned Row, double Result)
{
    return Record(0x10, Cell(Column, Row).F64(Result).U16(0));
}

TWorksheetBuilder& TWorksheetBuilder::TextFormula(unsigned Column, unsigned Row, std::string_view Result)
{
    Formula(Column, Row, std::numeric_limits<double>::quiet_NaN());
    return Record(0x33, Cell(Column, Row).Text(Stored(Result)));
}

TWorksheetBuilder& TWorksheetBuilder::End()
{
    return Record(0x01, {});
}

TWorksheetBuilder& TWorksheetBuilder::Record(std::uint16_t Id, std::string_view Body)
{
    return Bytes(TBytes().U16(Id).U16(static_cast<unsigned>(Body.size())).Text(Body));
}

TWorksheetBuilder& TWorksheetBuilder::Bytes(std::string_view Text)
{
    Stream += Text;
    return *this;
}

/// format:u8 col:u16 row:u16; Quattro Pro has a column of one byte and a zero behind it.
TBytes TWorksheetBuilder::Cell(unsigned Column, unsigned Row) const
{
    return TBytes().U8(CellFormat).U16(Column).U16(Row);
}

/// Ended by a zero, or led by its length.
std::string TWorksheetBuilder::Stored(std::string_view Text) const
{
    if (FileFormat == wfLotus)
        return TBytes().Text(Text).U8(0);
    return TBytes().U8(static_cast<unsigned>(Text.size())).Text(Text);
}

} // namespace kv
