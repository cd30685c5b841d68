// KvCellImport - an import of a workbook that a test wrote down, into a table in memory.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "KvCells.h"
#include "KvFileRun.h"
#include "Kvi2cell.h"

namespace kv {

/// The values of a sheet, row by row, from column A on.
using TSheetRows = std::vector<std::vector<TVariant>>;

/// What a reader finds in its file.
using TBookScript = std::function<void(TSpreadSheetFile& Reader)>;

/// Announces the sheet `Caption` of `Rows` with an extent that holds them.
void AddSheet(TSpreadSheetFile& Reader, const std::string& Caption, const TSheetRows& Rows);

/// Imports into the fields A, B and C (text), by default from the columns A, B and C.
class TCellImport : public TFileRun<TKvImportFromCell>
{
public:
    explicit TCellImport(TBookScript Script);
    /// A workbook of one sheet, "Orders".
    explicit TCellImport(const TSheetRows& Rows);

    using TKvImportFromCell::AfterImport;
    using TKvImportFromCell::BeforeImport;
    using TKvImportFromCell::GetFieldValue;
    using TKvImportFromCell::GoFirst;
    using TKvImportFromCell::LoadRecord;
    using TKvImportFromCell::NeedMore;

    int Loads = 0;                                  ///< How often a reader read the file.
    int Readers = 0;                                ///< Those that exist.

protected:
    std::unique_ptr<TSpreadSheetFile> WorkBookCreation() override;

private:
    TBookScript Script;
};

} // namespace kv
