// KvWorksheetFuzz - any bytes as a worksheet, for the readers of all formats.
//
//   input := extensions:u8 file
#pragma once

#include <algorithm>
#include <string>

#include "KvException.h"
#include "KvFuzz.h"
#include "KvMemoryFile.h"
#include "KvWorksheets.h"

namespace kv {

/// What the events of a file tell.
struct TWorksheetFigures
{
    int CellRows = 0;
    int CellColumns = 0;
    std::size_t TextBytes = 0;

    bool operator==(const TWorksheetFigures&) const = default;
};

template <class TReader> TWorksheetFigures CountEvents(const std::string& Name,
                                                       TSpreadSheetExtensions Extensions)
{
    TWorksheetFigures Figures;
    TReader Reader;
    Reader.Extensions = Extensions;
    Reader.FileName = Name;
    Reader.OnColumnWidth = [](auto&, int Sheet, int Column, int Width) {
        Require(Sheet == 0 && Column >= 0 && Column < 256 && Width >= 0 && Width < 256);
    };
    Reader.OnDimensions = [](auto&, int Sheet, int FirstRow, int, int FirstColumn, int) {
        Require(Sheet == 0 && FirstRow >= 0 && FirstColumn >= 0);
    };
    Reader.OnCellValue = [&](auto&, int Sheet, int Row, int Column, const TVariant& Value, TAlignment) {
        Require(Sheet == 0 && Row >= 0 && Row < 0x10000 && Column >= 0 && Column < 0x10000);
        Figures.TextBytes += Value.Text().size();
        if (Value.HasValue() && Column < TSpreadSheetRow::MaxColumns) {
            Figures.CellRows = std::max(Figures.CellRows, Row + 1);
            Figures.CellColumns = std::max(Figures.CellColumns, Column + 1);
        }
    };
    try {
        Reader.ImportFromStream();
    }
    catch (const Exception& Error) {
        Require(!Error.Message.empty());
    }
    return Figures;
}

/// Loads the file and compares the sheet with what its events told.
template <class TReader> void FuzzWorksheet(TFuzzInput Input)
{
    TReader Reader;
    const unsigned Bits = Input.Take<std::uint8_t>();
    Reader.Extensions = TSpreadSheetExtensions::FromBits(Bits | (Bits & 0x80u) << 1);
    const auto Bytes = Input.TakeRest();
    const TMemoryFile File(Bytes);
    try {
        Reader.LoadFromFile(File.Name());
    }
    catch (const Exception& Error) {
        Require(!Error.Message.empty());
    }
    const auto Figures = CountEvents<TReader>(File.Name(), Reader.Extensions);
    Require(Figures.TextBytes <= 2 * Bytes.size()); // a time may be longer as text
    Require(Reader.Sheets.Count() <= 1);
    if (Reader.Sheets.Count() == 1) {
        const auto& Cells = Reader.Sheets[0].Cells;
        Require(Cells.CellRows() == Figures.CellRows && Cells.CellColumns() == Figures.CellColumns);
    }
}

} // namespace kv
