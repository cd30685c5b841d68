#include "KvMarkupKinds.h"

#include <algorithm>

#include "KvText.h"
#include "KvTextFile.h"
#include "Kvi2html.h"
#include "Kvi2xml.h"
#include "KviExtensions.h"

namespace kv {

namespace {

/// With a document type or the tag of a page.
bool BeginsHtml(std::string_view Beginning)
{
    const auto Start = Trim(WithoutByteOrderMark(Beginning));
    return SameText(Start.substr(0, 14), "<!DOCTYPE html") || SameText(Start.substr(0, 5), "<html");
}

/// With the tag of a data packet, perhaps behind a declaration.
bool BeginsPacket(std::string_view Beginning)
{
    auto Start = Trim(WithoutByteOrderMark(Beginning));
    if (Start.starts_with("<?xml"))
        Start = Trim(Start.substr(std::min(Start.find("?>"), Start.size() - 2) + 2));
    return Start.starts_with("<DATAPACKET");
}

} // namespace

const TKvISourceKind& HtmlSourceKind()
{
    static const TKvISourceKind Kind{.TableType = teHTML,
                                     .Name = "html",
                                     .Title = "Tables of HTML pages",
                                     .Extensions = {".html", ".htm", ".xhtml"},
                                     .Part = spTableNumber,
                                     .Names = cnHeaderRow,
                                     .Recognizes = &BeginsHtml,
                                     .Create = &NewImport<TKvImportFromHTML>,
                                     .Extend = &TurnOnExtensions,
                                     .FileFilters = &TKvImportFromHTML::FillFileFilters};
    return Kind;
}

const TKvISourceKind& XmlSourceKind()
{
    static const TKvISourceKind Kind{.TableType = teXML,
                                     .Name = "xml",
                                     .Title = "XML data packets",
                                     .Extensions = {".xml"},
                                     .Part = spRowTag,
                                     .Recognizes = &BeginsPacket,
                                     .Create = &NewImport<TKvImportFromXML>,
                                     .Extend = &TurnOnExtensions,
                                     .FileFilters = &TKvImportFromXML::FillFileFilters};
    return Kind;
}

} // namespace kv
