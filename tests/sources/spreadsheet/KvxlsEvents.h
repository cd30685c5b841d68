// KvxlsEvents - what an Excel reader raises, as one line of text an event.
//
//   sheet 0 "One"                   dimensions 0: 0 5 0 3         width 0: 2 256      height 0: 7 300
//   cell 0: 4 2 double 1.5 right
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "KvException.h"
#include "Kvxls.h"

namespace kv {

using TEventLines = std::vector<std::string>;

inline std::string Describe(const TVariant& Value)
{
    constexpr std::string_view Kinds[] = {"empty", "null",    "integer", "double", "currency",
                                          "date",  "boolean", "string",  "array"};
    // The serial number itself: its text would depend on the process's formats.
    const auto Text = Value.Kind() == vkDateTime ? TVariant(Value.DateTime().Days).ToText() : Value.ToText();
    return std::string(Kinds[Value.Kind()]) + (Value.HasValue() ? " " + Text : "");
}

/// A reader whose events are recorded.
class TRecordingExcel
{
public:
    explicit TRecordingExcel(TSpreadSheetExtensions Extensions = {})
    {
        Reader.Extensions = Extensions;
        Reader.OnSheet = [this](auto&, const std::string& Caption, int Index, bool& Skip) {
            Lines.push_back("sheet " + std::to_string(Index) + " \"" + Caption + '"');
            Skip = Index == SkippedSheet;
        };
        Reader.OnDimensions = [this](auto&, int Sheet, int FirstRow, int LastRow, int FirstCol, int LastCol) {
            Add("dimensions", Sheet, {FirstRow, LastRow, FirstCol, LastCol});
        };
        Reader.OnCellValue = [this](auto&, int Sheet, int Row, int Col, const TVariant& Value,
                                    TAlignment Alignment) {
            constexpr std::string_view Sides[] = {" left", " right", " centre"};
            Add("cell", Sheet, {Row, Col});
            Lines.back().append(" ").append(Describe(Value)).append(Sides[Alignment]);
        };
    }

    /// Widths and heights are recorded too.
    TRecordingExcel& WithSizes()
    {
        Reader.OnColumnWidth = [this](auto&, int Sheet, int Col,
                                      int Width) { Add("width", Sheet, {Col, Width}); };
        Reader.OnRowHeight = [this](auto&, int Sheet, int Row, int Height) {
            Add("height", Sheet, {Row, Height});
        };
        return *this;
    }
    /// OnSheet answers Skip for this sheet.
    TRecordingExcel& Skipping(int Sheet)
    {
        SkippedSheet = Sheet;
        return *this;
    }

    // The events of a stream, the last one "error: ..." when it cannot be read to its end.
    TEventLines Plain(std::string_view Stream)
    {
        return Record([&] { Reader.ReadPlainStream(Stream); });
    }
    TEventLines Workbook(std::string_view Stream, TExcelVersion Version = evExcel8)
    {
        return Record([&] { Reader.ReadWorkbookStream(Stream, Version); });
    }

    TMSExcel Reader;

private:
    template <class TAction> TEventLines Record(TAction Action)
    {
        Lines.clear();
        try {
            Action();
        } catch (const Exception& Error) {
            Lines.push_back("error: " + Error.Message);
        }
        return Lines;
    }

    void Add(std::string_view Name, int Sheet, std::initializer_list<int> Numbers)
    {
        auto& Line = Lines.emplace_back(Name);
        Line += ' ' + std::to_string(Sheet) + ':';
        for (const int Number : Numbers)
            Line += ' ' + std::to_string(Number);
    }

    TEventLines Lines;
    int SkippedSheet = -1;
};

} // namespace kv
