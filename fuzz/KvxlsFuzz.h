// KvxlsFuzz - any bytes as a stream of Excel, read into the model under any extensions; sheets may be
// skipped. What the model holds can be read, and the events count up as they should.
//
//   input := extensions:u8 skipped:u8 stream            sheet n of the first 8 is skipped by bit n
//
// The top bit of the extensions stands for all from the eighth on.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "KvException.h"
#include "KvFuzz.h"
#include "Kvxls.h"

namespace kv {

/// The size of a value's text. Only a date may have none: one past the year 9999.
inline std::size_t WeighValue(const TVariant& Value)
{
    try {
        return Value.ToText().size();
    } catch (const EConvertError&) {
        Require(Value.Kind() == vkDateTime);
        return 0;
    }
}

/// The sum of all that the sheets hold, so that every value is read.
inline std::size_t WeighSheets(const TSpreadSheets& Sheets)
{
    std::size_t Weight = 0;
    for (std::size_t I = 0; I < Sheets.Count(); ++I) {
        const auto& Cells = Sheets[I].Cells;
        Weight += Sheets[I].Caption.size();
        for (std::size_t Row = 0; Row < Cells.Count(); ++Row)
            for (int Column = 0; Column < TSpreadSheetRow::MaxColumns; ++Column)
                Weight += WeighValue(Cells[Row].Value(Column));
    }
    return Weight;
}

/// Calls `Read` with a reader whose events fill its sheets.
template <class TRead> void FuzzExcel(TFuzzInput Input, TRead Read)
{
    TMSExcel Excel;
    const unsigned Bits = Input.Take<std::uint8_t>();
    Excel.Extensions = TSpreadSheetExtensions::FromBits(Bits | (Bits & 0x80u) << 1);
    const unsigned Skipped = Input.Take<std::uint8_t>();
    int Announced = 0;
    Excel.OnSheet = [&](auto& Sender, const std::string& Caption, int Index, bool& Skip) {
        Require(Index == Announced++);
        Excel.SheetEvent(Sender, Caption, Index, Skip);
        Skip = Index < 8 && (Skipped >> Index & 1) != 0;
    };
    Excel.OnDimensions = std::bind_front(&TMSExcel::DimsEvent, &Excel);
    Excel.OnCellValue = [&](auto& Sender, int Sheet, int Row, int Column, const TVariant& Value,
                            TAlignment Alignment) {
        Require(Sheet < Announced && Row >= 0 && Column >= 0);
        Excel.CellEvent(Sender, Sheet, Row, Column, Value, Alignment);
    };
    Excel.OnColumnWidth = [](auto&, int, int Column, int) { Require(Column >= 0 && Column <= 0xFFFF); };
    Excel.OnRowHeight = [](auto&, int, int Row, int) { Require(Row >= 0); };
    try {
        Read(Excel, Input.TakeRest());
    } catch (const Exception& Error) {
        Require(!Error.Message.empty());
    }
    WeighSheets(Excel.Sheets);
}

} // namespace kv
