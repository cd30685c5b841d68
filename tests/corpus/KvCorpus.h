// KvCorpus - files of other programs and what independent tools read from them.
//
//   <corpus>/<format>/<file>                           the files
//   <corpus>/expected/<format>/<file>.<tool>.json      {"sheets": {name: {"B7": [type, value, format]}}}
#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kv {

/// The folder that the environment variable KV_CORPUS names, or the one beside the project; nothing where it
/// lacks files of the format or dumps for them.
std::optional<std::filesystem::path> CorpusFolder(std::string_view Format);

/// The files of a format, by name.
std::vector<std::filesystem::path> CorpusFiles(const std::filesystem::path& Corpus, std::string_view Format);

/// A cell as a tool read it.
struct TDumpCell
{
    char Type = 'n';                                ///< n number, s text, b boolean, e error, d date
    std::optional<double> Number;                   ///< Nothing where the tool found one that is none.
    std::string Text;                               ///< UTF-8.
    std::string NumberFormat;
};

/// Row and column, counted from 0.
using TCellRef = std::pair<int, int>;
using TDumpSheet = std::map<TCellRef, TDumpCell>;

/// "B7" is {6, 1}.
TCellRef ParseCellRef(std::string_view Text);
std::string CellRefText(TCellRef Ref);

/// The sheets of a dump in the order of the file.
std::vector<std::pair<std::string, TDumpSheet>> ReadCellDump(const std::filesystem::path& Path);

} // namespace kv
