// KvWorksheetBuilder - writes the worksheets of Lotus 1-2-3 and Quattro Pro for tests.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "KvBytes.h"

namespace kv {

enum TWorksheetFormat { wfLotus, wfQuattro };

/// A worksheet with the cells that a test asks for, as the format's own program would store them. Begins with
/// the begin record of version 2 of 1-2-3 or of Quattro Pro. Columns and rows count from 0.
class TWorksheetBuilder
{
public:
    explicit TWorksheetBuilder(TWorksheetFormat TheFormat);
    /// A worksheet of another version.
    TWorksheetBuilder(TWorksheetFormat TheFormat, std::uint16_t Version);

    TWorksheetBuilder& Range(unsigned LastColumn, unsigned LastRow);
    /// The format of the cells that follow: F1 (general) at first.
    TWorksheetBuilder& Format(std::uint8_t Value);
    TWorksheetBuilder& Blank(unsigned Column, unsigned Row);
    TWorksheetBuilder& Integer(unsigned Column, unsigned Row, int Value);
    TWorksheetBuilder& Number(unsigned Column, unsigned Row, double Value);
    TWorksheetBuilder& Label(unsigned Column, unsigned Row, std::string_view Text, char Prefix = '\'');
    /// A formula without code, and for a text the string record behind it.
    TWorksheetBuilder& Formula(unsigned Column, unsigned Row, double Result);
    TWorksheetBuilder& TextFormula(unsigned Column, unsigned Row, std::string_view Result);
    TWorksheetBuilder& End();
    /// Any record, whole or not.
    TWorksheetBuilder& Record(std::uint16_t Id, std::string_view Body);
    /// Bytes that are no record.
    TWorksheetBuilder& Bytes(std::string_view Text);

    const std::string& Build() const { return Stream; }

private:
    TBytes Cell(unsigned Column, unsigned Row) const;
    std::string Stored(std::string_view Text) const;

    TWorksheetFormat FileFormat;
    std::uint8_t CellFormat = 0xF1;
    std::string Stream;
};

} // namespace kv
