// KvTextProbe - some lines of a text file, cut as its import cuts them, without reading the whole file.
#pragma once

#include <string>
#include <vector>

namespace kv {

class TKvImportFromText;

struct TProbedLine
{
    int Number = 0;                                 ///< From 1.
    std::vector<std::string> Values;                ///< Of a fixed line: the line. As the file has them.
};

struct TProbedText
{
    std::vector<TProbedLine> Lines;
    bool HasMore = false;                           ///< There is a line after the last of them.
};

/// Lines `First` to `Last` under the layout of `Component`. Raises EFileError, and Exception for a value
/// that no qualifier closes.
TProbedText ProbeText(const TKvImportFromText& Component, int First, int Last);

} // namespace kv
