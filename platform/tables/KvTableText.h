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
    /// Texts stay as they are.
    TKvTableText() = default;
    /// `Name` is that of a page in the words of KvCodePage, empty when the file names none and texts stay as
    /// they are. Texts of a page that nobody knows can be converted only where they are ASCII.
    explicit TKvTableText(std::string_view Name) : PageName(Name), Watches(true) {}

    /// `Stored` as process text: itself where nothing changes, else a view of a buffer that the next call
    /// uses again. Bytes that the page leaves undefined become the characters that AnsiToUtf8 gives them.
    /// Raises EConvertError when `Stored` is no text of a page with characters of several bytes, when a
    /// character does not exist in the process's code page, or when nobody knows the page of that name.
    std::string_view Convert(std::string_view Stored);
    /// The same as a variant: a loan of `Stored` where nothing changes, else a text of its own.
    TVariant Value(std::string_view Stored);

    /// A text that is not to be converted, whatever page the file names.
    TVariant Unconverted(std::string_view Stored);

    /// True once a text stayed as it is although it is none of the process's page: somebody will guess.
    bool HasGuessed() const { return Guessed; }
    /// False where a character may take several bytes.
    bool IsSingleByte();

private:
    const TCodePage& OwnPage();
    void Notice(std::string_view Stored);


    std::string PageName;                           // empty: nothing is converted
    bool Watches = false, Guessed = false;
    const TCodePage* Page = nullptr;                // of that name, once a text has needed it
    std::string Buffer;
};

} // namespace kv
