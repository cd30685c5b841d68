// KvForeignFile - what a file is that only bears the name of a workbook: many programs give that name to
// pages, to text and to workbooks of later formats.
#pragma once

#include <string_view>

namespace kv {

/// In words, "a page of HTML"; empty for what is unknown. `Bytes` are those of the file, or its beginning.
std::string_view ForeignKind(std::string_view Bytes);

/// True for the beginning of a workbook of Excel 2007 and later or of OpenDocument.
bool BeginsNewerWorkbook(std::string_view Beginning);

} // namespace kv
