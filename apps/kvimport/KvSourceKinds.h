// KvSourceKinds - the kinds of sources that this program reads, and which of them a file is.
#pragma once

#include <memory>
#include <span>
#include <string_view>
#include <vector>

#include "KvSource.h"
#include "KvSourceOptions.h"

namespace kv {

struct TSourceKind
{
    std::string_view Name;                          ///< As option --from has it.
    std::string_view Title;
    std::vector<std::string_view> Extensions;       ///< In lower case, with the dot.
    std::string_view OptionGroup;                   ///< Heading of the options that only such kinds have.
    /// True when a file that begins with these bytes is of the kind, whatever its name; none for a kind
    /// that nothing tells.
    bool (*Recognizes)(std::string_view Beginning);
    std::unique_ptr<TSource> (*Make)(const TSourceOptions&);
};

/// All of them; the first also takes what is not known otherwise.
std::span<const TSourceKind> SourceKinds();

/// As the file's content tells, else its name. Raises EFileError when it cannot be read, Exception when it is
/// of no kind.
const TSourceKind& KindOfFile(const std::string& FileName);

/// Raises EUsageError for an unknown kind and for options that it does not have, and what KindOfFile and
/// the kinds raise.
std::unique_ptr<TSource> MakeSource(const TSourceOptions& Options);

} // namespace kv
