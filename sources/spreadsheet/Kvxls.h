// Kvxls - reads the workbooks of Excel (.xls): the values of their cells.
//
// Excel 2 to 4 wrote plain streams of records (KvRecords), one sheet a file; Excel 5 to 2003 a workbook of
// many sheets in a stream "Book" or "Workbook" of a compound document. KvxlsPlain and KvxlsWorkbook read the
// one and the other and list the records. A formula is the number that was its result, and formats only tell
// dates from numbers.
#pragma once

#include <list>
#include <string>
#include <string_view>

#include "KvCells.h"
#include "KvxlsFormats.h"
#include "KvxlsStrings.h"

namespace kv {

class TKvStorage;

enum TExcelVersion { evUnknown, evExcel2, evExcel3, evExcel4, evExcel5, evExcel7, evExcel8 };

/// The reader of Excel files. Its errors end the load; what was raised before stays in the sheets:
/// "File is not a Excel file", "File is not a Excel Workbook", "Can not read: file is encrypted", those of
/// the shared strings (KvxlsStrings), and EFormatError for records that are damaged or cut short. Of two
/// workbooks in a document that of Excel 5 is read by the extension only when the other cannot be; a remark
/// says so.
///
/// Date-times are the serial numbers of the file. 8-bit text is passed as it stands, UTF-16 as process text.
/// A column from 256 on is raised like any other; the model counts its values and keeps none.
class TMSExcel final : public TSpreadSheetFile
{
public:
    using TSpreadSheetFile::TSpreadSheetFile;

    std::string_view ClassName() const override { return "TMSExcel"; }
    TPublishedProperties PublishedProperties() const override;

    TExcelVersion Version = evUnknown;              ///< Of the last file read.
    /// Of the worksheet that the events tell of; -1 before the first, and in all of a plain stream.
    int SheetIndex = -1;

    void LoadFromFile(const std::string& Path) override;

    // The same for the file FileName, with the events as they are bound.
    void ImportFromStream();                        ///< A plain stream.
    void ImportFromOLEStream();                     ///< A compound document.

    // The same for bytes in memory.
    void ReadPlainStream(std::string_view Stream);
    /// The stream of a workbook, of evExcel7 or evExcel8. False when it ended before its last sheet did.
    bool ReadWorkbookStream(std::string_view Stream, TExcelVersion TheVersion);

    /// True when cells of the XF record `XFIndex` are dates.
    bool FormatIsDateTime(int XFIndex) const;
    void ClearFormats() { Formats.ClearXfs(); }

    // For its readers: the shared strings of the stream that is read.
    TKvxlsSharedStrings& NewStrings();
    const TKvxlsSharedStrings& Strings() const { return SharedStrings.back(); }

protected:
    bool KeepsText(std::string_view Text) override;

private:
    void ReadDocument(std::string_view Bytes);
    void ReadStream(const TKvStorage& Storage, const std::string& StreamName);
    void ReadNewest(const TKvStorage& Storage);
    void Restart();

    TKvxlsFormats Formats;
    std::list<TKvxlsSharedStrings> SharedStrings{1}; // long ones are lent to the cells: none of a load dies
    bool LendsStrings = false;
};

} // namespace kv
