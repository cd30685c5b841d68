// Kvi2cell - imports the rows of one sheet of a workbook, whatever format it has been read from.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "KvSpreadSheetExtensions.h"
#include "KvStringList.h"
#include "KviFileImport.h"
#include "KviSourceColumns.h"

namespace kv {

class TSpreadSheetCells;
class TSpreadSheetFile;
class TSpreadSheetRow;

/// Imports a sheet of the workbook that a subclass reads. Source columns are column letters: A is the first
/// column, AA the 27th. A row without values is a record without values, with rxNoEmptyRecords it is none.
/// This class itself has no reader: a run of it fails.
///
/// Errors of readers whose messages do not name the file say so in their facts.
class TKvImportFromCell : public TKvImportFromFile
{
public:
    explicit TKvImportFromCell(TComponent* Owner = nullptr);
    ~TKvImportFromCell() override;

    std::string_view ClassName() const override { return "TKvImportFromCell"; }
    TPublishedProperties PublishedProperties() const override;

    int SheetIndex = 0;                             ///< From 0. Past the last sheet there are no records.
    TSpreadSheetExtensions Extensions;

    /// Loads the workbook anew and keeps it as a look does: for programs that want more of it than a look
    /// shows. It is good until the next run ends or another file is loaded. Raises what the run would end by.
    TSpreadSheetFile& LoadWorkBook();

    std::string_view PositionUnit() const override { return "row"; }
    TKvISourcePosition SourcePosition() const override;
    TVariant SourceRecord() override;               ///< An array of the row's values, that of column A at 0.
    void EndLook() override;
    /// The sheets. A file without any has an empty one.
    std::vector<TKvISourcePart> SourceParts() override;
    void SelectPart(int Index, const TKvISourcePart& Part) override;
    /// What of the sheet lies outside of what is read; of the last look or run.
    std::vector<TKvISourceRemark> SourceRemarks() const override { return Remarks; }
    TKvISourceName ResolveName(const std::string& Wanted,
                               const std::vector<TKvISourceColumn>& Shown) const override;

protected:
    /// `Extension` is that of the files of the subclass.
    TKvImportFromCell(TComponent* Owner, TTableTypeImport Type, std::string_view Extension);

    /// A new reader of the format, see KvCells.
    virtual std::unique_ptr<TSpreadSheetFile> WorkBookCreation();

    void DetectAutoMapping() override;
    void BeforeImport() override;
    void GoFirst() override;
    int GetTotalCount() override;
    bool NeedMore() override;
    bool LoadRecord() override;
    TVariant GetFieldValue(const TVariant& Source) override;
    void GoNext() override;
    void AfterImport() override;
    void BeforeLook(const TKvISourceLook& What) override;
    /// Columns with a title or with values in rows that are imported. The values propose the type.
    std::vector<TKvISourceColumn> SourceColumns(int HeaderRow) override;
    void AfterLook() override { Record = nullptr; }

private:
    TSpreadSheetCells* Sheet() const;
    bool HasRow() const;
    bool SkipsEmptyRows() const { return RunExtensions.Contains(rxNoEmptyRecords); }
    bool IsEmptyRow(int Row) const;
    void SkipEmptyRows();
    void RemarkEmptyRows(const TSpreadSheetCells& Cells);
    void RequireSound(int Column) const;
    bool IsKept() const;
    void LoadOnce();
    void LookAtExtent();
    std::vector<std::string> HeaderTexts() const;
    std::string TitleOf(int Column, int HeaderRow) const;
    template <class TVisit> void ForImportedRows(TVisit Visit) const;
    int LongestText(int Column) const;

    std::unique_ptr<TSpreadSheetFile> WorkBook;     // until AfterImport or EndLook
    bool LoadedAhead = false;                       // no run has begun with it yet
    std::vector<TKvISourceRemark> Remarks;
    int CurrentRow = 0;                             // from 0
    const TSpreadSheetRow* Record = nullptr;        // the current row; none where it holds no value
    TKvSourceColumns<int> Columns;                  // from 0
};

/// Shows the first rows of a sheet, 21 at most. `SpreadSheetType` is 1 for Excel, 2 for Lotus 1-2-3 and 3 for
/// Quattro Pro; Exception "Incorrect type of spreadsheet" is raised for another one. `Sheets` receives the
/// captions of all sheets, `Columns` the letters of those columns that `ColumnSpec` names, separated by ";",
/// each with its number from 0 attached, or of all that were stored, with their numbers from 1. Rows go from
/// `FirstRow`, from 1, up to, and without, row `LastRow`, from 0. `Callback` gets `Sender`, the number of
/// columns, the row of the preview, `Flag`, and an array that holds for each column an array of Null, its
/// name and its value.
void LoadSpreadSheetPreview(int SpreadSheetType, TPersistent* Sender, std::string_view ColumnSpec,
                            const std::string& FileName, int SheetIndex, int FirstRow, int LastRow,
                            TStrings& Sheets, bool Flag, TStrings& Columns, const TPreviewCallback& Callback,
                            TSpreadSheetExtensions Extensions = {});

} // namespace kv
