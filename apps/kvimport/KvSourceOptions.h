// KvSourceOptions - what the command line says about the source of an import.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "KvMarkupOptions.h"
#include "KvSheetOptions.h"
#include "KvTableOptions.h"
#include "KvTextOptions.h"

namespace CLI {
class App;
}

namespace kv {

/// An option that only some kinds of sources have, and that the user gave.
struct TGivenOption
{
    std::string Name;                               ///< "--delimiter"
    std::string Group;                              ///< As TSourceKind has it.
};

struct TSourceOptions
{
    std::string FileName;                           ///< "-": standard input.
    std::string Kind;                               ///< Empty: told by the file's content and name.
    std::string Specification;                      ///< File whose settings are used; none of its kind's options are.
    bool Classic = false;                           ///< Without the extensions of the components.
    bool FindNames = false;                         ///< The source shall name its columns, in a header if need be.
    bool MsDos = false;                             ///< Text is in the OEM code page.
    std::optional<int> RowFirst;                    ///< Not given: after the header, when there is one.
    std::optional<int> RowLast;
    TTextOptions Text;
    THtmlOptions Html;
    TXmlOptions Xml;
    TSheetOptions Sheet;
    TTableOptions Table;
    std::vector<TGivenOption> Given;                ///< Of the groups of the kinds.
};

/// Adds FILE, described by `FileHelp`, and --from.
void AddSourceFile(CLI::App& Command, TSourceOptions& Options, const std::string& FileHelp);

/// Adds --first-row and --last-row. `Options` must outlive the parsing.
void AddRowOptions(CLI::App& Command, TSourceOptions& Options);

/// Adds --first-row, --last-row and --charset, which all kinds have, and the options of the kinds.
/// `Options` must outlive the parsing.
void AddSourceOptions(CLI::App& Command, TSourceOptions& Options);

} // namespace kv
