// KvTableText - texts of a table file: 8-bit text of the code page that the file names.
#pragma once

#include <string>
#include <string_view>

#include "KvVariant.h"

namespace kv {

class TCodePage;

/// Makes process text of the texts of one file.
class TKvTableText
{
public:
    /// Texts stay as they are: the file names no code page.
    TKvTableText() = default;
    /// `Name` is that of a page in the words of KvCodePage, empty when the file names none. Texts of a page
    /// that nobody knows can be converted only where they are ASCII.
    explicit TKvTableText(std::string_view Name) : PageName(Name) {}

    /// `Stored` as process text: itself where nothing changes, else a view of a buffer that the next call
    /// uses again. Bytes that the page leaves undefined become the characters that AnsiToUtf8 gives them.
    /// Raises EConvertError when `Stored` is no text of a page with characters of several bytes, when a
    /// character does not exist in the process's code page, or when nobody knows the page of that name.
    std::string_view Convert(std::string_view Stored);
    /// The same as a variant: a loan of `Stored` where nothing changes, else a text of its own.
    TVariant Value(std::string_view Stored);

private:
    std::string PageName;                           // empty: nothing is converted
    const TCodePage* Page = nullptr;                // of that name, once a text has needed it
    std::string Buffer;
};

} // namespace kv
