// KvSignatures - what files of a kind begin with, whatever they are called.
#pragma once

#include <string_view>

namespace kv {

// Each gets the first bytes of a file, some hundred at most.

bool BeginsLikeHtml(std::string_view Beginning);    ///< With a document type or the tag of a page.
bool BeginsLikeXml(std::string_view Beginning);     ///< With the tag of a data packet, perhaps behind a declaration.
bool BeginsLikeXls(std::string_view Beginning);     ///< A compound document, or a record that begins a sheet.
bool BeginsLikeWks(std::string_view Beginning);
bool BeginsLikeQuattro(std::string_view Beginning);
bool BeginsLikeAccess(std::string_view Beginning);
bool BeginsLikeSqlite(std::string_view Beginning);  ///< A destination: no kind of source.
/// True for what may be text: only that of UTF-16 has bytes of zero, and begins with a mark.
bool BeginsLikeText(std::string_view Beginning);

} // namespace kv
