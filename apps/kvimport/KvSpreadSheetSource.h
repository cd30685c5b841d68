// KvSpreadSheetSource - a sheet of a workbook on the command line.
#pragma once

#include <memory>
#include <string_view>

#include "KvSource.h"

namespace kv {

struct TSourceOptions;

// Each reads the workbook at once; the run uses what was read. Raises EFileError when the file cannot be
// opened, EUsageError when the options contradict each other, Exception when it is no such workbook or
// lacks the sheet.
std::unique_ptr<TSource> MakeXlsSource(const TSourceOptions& Options);
std::unique_ptr<TSource> MakeWksSource(const TSourceOptions& Options);
std::unique_ptr<TSource> MakeQuattroSource(const TSourceOptions& Options);

// What files of these kinds begin with.
bool BeginsLikeXls(std::string_view Beginning);     ///< A compound document, or a record that begins a sheet.
bool BeginsLikeWks(std::string_view Beginning);
bool BeginsLikeQuattro(std::string_view Beginning);

} // namespace kv
