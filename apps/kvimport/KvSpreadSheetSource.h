// KvSpreadSheetSource - a sheet of a workbook on the command line.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "KvSource.h"
#include "KvSpreadSheetExtensions.h"

namespace kv {

class TKvImportFromCell;
class TSourceFile;
class TSpreadSheetCells;
class TSpreadSheetFile;
struct TSourceOptions;

// Each reads the workbook at once; the run uses what was read. Raises EFileError when the file cannot be
// opened, EUsageError when the options contradict each other, Exception when it is no such workbook or
// lacks the sheet.
std::unique_ptr<TSource> MakeXlsSource(const TSourceOptions& Options);
std::unique_ptr<TSource> MakeWksSource(const TSourceOptions& Options);
std::unique_ptr<TSource> MakeQuattroSource(const TSourceOptions& Options);

/// Loads the workbook of `Import` ahead of its run, see TKvImportFromCell::LoadWorkBook. Errors name `File`.
TSpreadSheetFile& LoadWorkBook(TKvImportFromCell& Import, const TSourceFile& File);
/// What of a sheet an import with `Extensions` leaves out.
std::vector<std::string> SheetWarnings(const TSpreadSheetCells& Sheet, TSpreadSheetExtensions Extensions);

} // namespace kv
