// KvHtmlCellText - makes the text of a cell out of what stands between its tags.
#pragma once

#include <string>
#include <string_view>

#include "KvByteScan.h"
#include "KvHTMLExtensions.h"
#include "KvHtmlCell.h"
#include "KvHtmlTags.h"

namespace kv {

/// By default the text is all that stands between tags, as it stands.
class TKvHtmlCellText
{
public:
    TKvHtmlCellText(TKvIHTMLExtensions Extensions, TKvHtmlFlavour Flavour);

    /// True when the text of `Cell` is its content as it stands. `PageEnd` is the end of the text around it.
    bool IsPlain(const TKvHtmlCell& Cell, const char* PageEnd) const;
    /// Puts the text of `Cell` into `Text`.
    void Write(const TKvHtmlCell& Cell, std::string& Text) const;

private:
    class TWriter;

    bool IsSpecial(char Char) const { return Special.Contains(Char); }

    const TKvIHTMLExtensions Extensions;
    const TKvHtmlFlavour Flavour;
    const bool References;
    const bool Folded;
    const std::string NoBreakSpace;                 // in the process's code page; empty when it has none
    const TKvLowByteSet Special;                    // characters that may not stay as they are
};

} // namespace kv
