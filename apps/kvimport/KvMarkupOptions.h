// KvMarkupOptions - the options that say what of a file of tags is read.
#pragma once

#include <string>

namespace CLI {
class App;
}

namespace kv {

struct THtmlOptions
{
    int TableNumber = 0;                            ///< From 1; 0: all tables, one after the other.
};

struct TXmlOptions
{
    std::string RowTag;                             ///< Empty: ROWDATA.
};

// The headings above them in a help text.
inline constexpr char HtmlOptionGroup[] = "Tables of an HTML page";
inline constexpr char XmlOptionGroup[] = "Records of an XML data packet";

// `Options` must outlive the parsing.
void AddHtmlOptions(CLI::App& Command, THtmlOptions& Options); ///< --table-number
void AddXmlOptions(CLI::App& Command, TXmlOptions& Options); ///< --row-tag

} // namespace kv
