// KvKindText - the kinds of sources in words, and the options that only some of them have.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "KviSourceKind.h"

namespace kv {

/// As --from has them.
std::vector<std::string> KindNames();

/// A source of that kind: "a table file".
std::string SuchSource(std::string_view Kind);
/// What columns of that kind are called: "A to IV".
std::string ColumnsAreCalled(std::string_view Kind);

// The headings above the options of some kinds in a help text.
inline constexpr char TextOptionGroup[] = "Layout of a text file";
inline constexpr char HtmlOptionGroup[] = "Tables of an HTML page";
inline constexpr char XmlOptionGroup[] = "Records of an XML data packet";
inline constexpr char SheetOptionGroup[] = "Sheet of a workbook";
inline constexpr char TableOptionGroup[] = "Table of a database";

/// The heading of the options that only such kinds have; empty for none.
std::string_view OptionGroupOf(const TKvISourceKind& Kind);
/// The kinds whose options stand below that heading: "text".
std::string KindsOfGroup(std::string_view Group);

} // namespace kv
