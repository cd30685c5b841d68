// KvCells - a workbook in memory, and the reader of workbooks that fills it.
//
// A reader of a format stores nothing itself: while it parses it raises events (a sheet, its extent, a
// cell), and TSpreadSheetFile answers them by filling its sheets.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "KvCellRows.h"
#include "KvComponent.h"
#include "KvSpreadSheetExtensions.h"
#include "KviSource.h"

namespace kv {

/// Rows and columns of a sheet that an import walks: as the sheet declares them, or with seCellExtent as
/// far as it holds values.
inline int RowExtent(const TSpreadSheetCells& Cells, TSpreadSheetExtensions Extensions)
{
    return Extensions.Contains(seCellExtent) ? Cells.CellRows() : Cells.LastRow;
}

inline int ColumnExtent(const TSpreadSheetCells& Cells, TSpreadSheetExtensions Extensions)
{
    return Extensions.Contains(seCellExtent) ? Cells.CellColumns() : Cells.LastColumn;
}

/// One sheet of a workbook.
class TSpreadSheet : public TPersistent
{
public:
    std::string_view ClassName() const override { return "TSpreadSheet"; }

    TSpreadSheetCells Cells;
    std::string Caption;                            ///< The sheet's name.
    bool Hidden = false;                            ///< Users do not see it.
};

/// The sheets of a workbook, in the order in which they were added.
class TSpreadSheets
{
public:
    std::size_t Count() const { return Sheets.size(); }
    TSpreadSheet& operator[](std::size_t Index) { return *Sheets[Index]; }
    const TSpreadSheet& operator[](std::size_t Index) const { return *Sheets[Index]; }

    /// Appends a sheet named "Sheet" and its number from 1; gives its position.
    int Add();
    /// The sheet at `Index`, the first for a negative one. Past the last sheet one, not more, is added
    /// and given, wherever it stands then. The reference holds as long as the sheet.
    TSpreadSheet& Spreadsheet(int Index);
    void Remove(int Index);                         ///< The sheet that Spreadsheet(Index) gives.
    void Clear() { Sheets.clear(); }

private:
    std::vector<std::unique_ptr<TSpreadSheet>> Sheets;
};

class TCustomSpreadSheetFile;
class TKvFileBytes;

// Sheets, rows and columns count from 0. The extent of OnDimensions is what the file says, which one
// format takes for the last numbers and another for counts.
using TOnColumnWidth =
    std::function<void(TCustomSpreadSheetFile& Sender, int SheetIndex, int ColumnNo, int Width)>;
using TOnRowHeight =
    std::function<void(TCustomSpreadSheetFile& Sender, int SheetIndex, int RowNo, int Height)>;
using TOnDimensions =
    std::function<void(TCustomSpreadSheetFile& Sender, int SheetIndex, int FirstRow, int LastRow,
                       int FirstColumn, int LastColumn)>;
/// `Value` lives as long as the call.
using TOnCellValue = std::function<void(TCustomSpreadSheetFile& Sender, int SheetIndex, int Row, int Column,
                                        const TVariant& Value, TAlignment Alignment)>;
/// Skip = true asks the reader to leave the sheet's cells out.
using TOnSheet =
    std::function<void(TCustomSpreadSheetFile& Sender, const std::string& Caption, int Index, bool& Skip)>;

/// What every reader of a format offers: a file's content as events.
class TCustomSpreadSheetFile : public TComponent
{
public:
    using TComponent::TComponent;

    std::string_view ClassName() const override { return "TCustomSpreadSheetFile"; }
    TPublishedProperties PublishedProperties() const override;

    std::string FileName;                           ///< Of the last load.

    // What a reader knows of that which an event tells, while it raises it.
    bool SheetHidden = false;                       ///< The sheet of OnSheet.
    TCellFault CellFault = cfNone;                  ///< The cell of OnCellValue.

    TOnColumnWidth OnColumnWidth;
    TOnRowHeight OnRowHeight;
    TOnDimensions OnDimensions;
    TOnCellValue OnCellValue;
    TOnSheet OnSheet;

    /// Reads the file and raises the events. A reader overrides it, calls the inherited one first and
    /// then parses.
    virtual void LoadFromFile(const std::string& Path) = 0;
};

/// A reader that keeps what it reads as sheets.
class TSpreadSheetFile : public TCustomSpreadSheetFile
{
public:
    using TCustomSpreadSheetFile::TCustomSpreadSheetFile;

    std::string_view ClassName() const override { return "TSpreadSheetFile"; }

    TSpreadSheets Sheets;
    TSpreadSheetExtensions Extensions;              ///< Read by the formats' readers when they load.
    /// Asked now and then while a file is loaded, when it is set; false ends that by an Exception with the
    /// rule erCancelled.
    std::function<bool()> Continue;
    /// What is odd about the file that was loaded last.
    std::vector<TKvISourceRemark> Remarks;

    /// Empties Sheets and binds OnSheet, OnDimensions and OnCellValue to the handlers below, whatever
    /// they were bound to. Raises Exception "File is not defined." for a blank name and "File is not
    /// exists." when there is no such file.
    void LoadFromFile(const std::string& Path) override;

    void SheetEvent(TCustomSpreadSheetFile& Sender, const std::string& Caption, int Index, bool& Skip);
    void DimsEvent(TCustomSpreadSheetFile& Sender, int SheetIndex, int FirstRow, int LastRow, int FirstColumn,
                   int LastColumn);
    void CellEvent(TCustomSpreadSheetFile& Sender, int SheetIndex, int Row, int Column, const TVariant& Value,
                   TAlignment Alignment);

    /// Raises Exception `Message`; with seTellingErrors it says too what the file is, whose bytes these are.
    [[noreturn]] void RaiseNotThisFormat(std::string_view Message, std::string_view Bytes) const;

protected:
    /// True for the text of a cell that the reader keeps as long as the sheets: it need not be copied.
    virtual bool KeepsText(std::string_view) { return false; }
    TKvFileBytes ReadBytes() const;                 ///< All of the file FileName. Raises EFileError.

private:
    void RequireContinue() const;

    unsigned CellEvents = 0;                        // of this load
};

} // namespace kv
