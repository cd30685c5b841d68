// KvSpreadSheetExtensions - rules of today's spreadsheets that take the place of older ones.
#pragma once

#include "KvSet.h"

namespace kv {

/// Each element replaces the rule that its comment ends with.
enum TSpreadSheetExtension {
    /// Results of formulas that are text, a boolean or an error arrive as such, and formulas of
    /// worksheets with the result that the file holds. Without it a workbook's formula is a number
    /// whatever its result, and a worksheet's formula no cell.
    seFormulaResults,
    /// Cells whose number format is a user-defined date or time pattern are dates, and a time that no day
    /// holds is text, such as "36:00:00". Without it only the built-in formats 14 to 22 make one.
    seCustomDates,
    /// The calendar of the file is applied: the 1904 date mode of a workbook, else the days of Excel and
    /// 1-2-3, of which 1 is 1 January 1900. Times of day and durations are the same in all. Without it serial
    /// numbers arrive as they stand.
    seDateMode,
    /// Rows and columns reach as far as cells hold values. Without it as far as the sheet declares.
    seCellExtent,
    /// Rows of WQ1 worksheets above 255 keep their number. Without it the two bytes are read in the
    /// other order.
    seWideRows,
    /// The code page that a file names is used for its 8-bit text, Excel 8 sheets have names of Unicode, and
    /// of two workbooks in a document that of Excel 8 is read, which lacks no characters. Without it that
    /// text is taken as the process's code page has it, and the workbook is the first in the document.
    seFileCodePage,
    /// Integers of worksheets are signed. Without it -1 is 65535.
    seSignedIntegers,
    /// Every cell record of an Excel file is read: of any size, and by the layout of the version that its
    /// first record tells. Read are also shared strings with phonetic text, or with runs of rich text that go
    /// on in another record, labels that do, and all sheets of a workbook outside a compound document. Sheets
    /// stand in the order of their tabs. Parts of a workbook that are no worksheets, such as charts, are
    /// passed over and take no name from one that is. Without it Kvxls says what is read, and how.
    seCellRecords,
    /// A cell that cannot be read, for its date is in no calendar or its text has characters that the
    /// process's code page lacks, refuses its record when it is mapped, and nothing otherwise. A file of
    /// another kind is named as what it is. Without it such a date is a date-time that cannot be shown, and a
    /// missing character a question mark.
    seTellingErrors
};
using TSpreadSheetExtensions = TSet<TSpreadSheetExtension>;

} // namespace kv
