// KvWorksheetEvents - what a reader raises for a worksheet, in words.
#pragma once

#include <string>
#include <vector>

#include "KvException.h"
#include "KvTempFolder.h"
#include "KvWorksheets.h"

namespace kv {

inline std::string WordsOf(const TVariant& Value)
{
    switch (Value.Kind()) {
    case vkNull:     return "null";
    case vkInteger:  return "integer " + Value.ToText();
    case vkDouble:   return "number " + Value.ToText();
    case vkDateTime: return "date " + TVariant(Value.DateTime().Days).ToText();
    case vkString:   return "text " + std::string(Value.Text());
    default:         return "?";
    }
}

/// Nothing for the one sheet that there should be.
inline std::string SheetWords(int Sheet)
{
    return Sheet == 0 ? "" : "sheet " + std::to_string(Sheet) + ' ';
}

/// The events of a worksheet, one a line, in their order. An error is the last line.
template <class TReader>
std::vector<std::string> EventsOf(const std::string& Bytes, TSpreadSheetExtensions Extensions = {})
{
    static constexpr std::string_view Alignments[] = {" left", " right", " center"};
    const TTempFolder Folder;
    std::vector<std::string> Lines;
    TReader Reader;
    Reader.Extensions = Extensions;
    Reader.FileName = Folder.Write("sheet", Bytes);
    Reader.OnSheet = [&](auto&, const std::string& Caption, int, bool&) {
        Lines.push_back("sheet " + Caption);
    };
    Reader.OnColumnWidth = [&](auto&, int Sheet, int Column, int Width) {
        Lines.push_back(SheetWords(Sheet) + "column " + std::to_string(Column) + ": width " +
                        std::to_string(Width));
    };
    Reader.OnDimensions = [&](auto&, int Sheet, int FirstRow, int LastRow, int FirstColumn, int LastColumn) {
        Lines.push_back(SheetWords(Sheet) + "rows " + std::to_string(FirstRow) + " to " +
                        std::to_string(LastRow) + ", columns " + std::to_string(FirstColumn) + " to " +
                        std::to_string(LastColumn));
    };
    Reader.OnCellValue = [&](auto&, int Sheet, int Row, int Column, const TVariant& Value,
                             TAlignment Alignment) {
        Lines.push_back(SheetWords(Sheet) + "row " + std::to_string(Row) + " column " +
                        std::to_string(Column) + ": " + WordsOf(Value) + std::string(Alignments[Alignment]));
    };
    try {
        Reader.ImportFromStream();
    }
    catch (const Exception& Error) {
        Lines.push_back(Error.Message);
    }
    return Lines;
}

} // namespace kv
