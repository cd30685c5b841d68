// KvHtmlTags - finds one tag of an HTML text after the other.
#pragma once

#include <cstddef>
#include <string_view>

#include "KvByteScan.h"
#include "KvHTMLExtensions.h"

namespace kv {

/// What a tag means to the tables of a page.
enum TKvHtmlTag {
    htNone,                                         ///< The text has ended.
    htTable,
    htTableEnd,
    htSection,                                      ///< Begins THEAD, TBODY or TFOOT.
    htSectionEnd,
    htRow,
    htRowEnd,
    htCell,
    htCellEnd,
    htLineBreak,
    htBlock,                                        ///< Begins or ends a paragraph or the like.
    htPre,                                          ///< Begins a block whose white space stays.
    htPreEnd,
    htRawText,                                      ///< The text between it and Pos() has no tags.
    htOther
};

/// What a "/" before the ">" of a tag means.
enum TKvHtmlFlavour {
    hfHtml,                                         ///< Nothing.
    hfXhtml                                         ///< The tag ends its element, too.
};

/// A page that begins with an XML declaration is XHTML.
TKvHtmlFlavour FlavourOf(std::string_view Page);

/// The tags of a text, first to last.
///
/// By default a tag is skipped with the line ends, blanks and ">" that follow it, and a comment with all
/// up to the next tag. TH is htOther unless the extension makes it a cell.
class TKvHtmlTags
{
public:
    /// Keeps a view of `Text`, which must outlive the object.
    TKvHtmlTags(std::string_view Text, TKvIHTMLExtensions Extensions, TKvHtmlFlavour Flavour);

    /// Moves behind the next tag. htNone at the end, and on every later call.
    TKvHtmlTag Next()
    {
        FTextEnd = FindNear(FPos, End, '<');
        if (End - FTextEnd >= 5) {                  // most tags of a page with a large table are these two
            if (FTextEnd[3] == '>' && IsCellName(FTextEnd + 1))
                return Set(FTextEnd, FTextEnd + 4, htCell);
            if (FTextEnd[4] == '>' && FTextEnd[1] == '/' && IsCellName(FTextEnd + 2))
                return Set(FTextEnd, FTextEnd + 5, htCellEnd);
        }
        return Syntax ? NextBySyntax() : NextClassic();
    }
    /// The next Next() gives the current tag again.
    void PutBack() { FPos = Tag.data(); }

    const char* TextLast() const { return End; }    ///< Where the text ends.
    const char* Pos() const { return FPos; }        ///< Where the text behind the current tag begins.
    /// Where the text before the current tag ends: at the tag, or at the comment that ends it early.
    const char* TextEnd() const { return FTextEnd; }
    std::string_view Current() const { return Tag; } ///< "<TD ALIGN=LEFT>", or as far as the text goes.

private:
    TKvHtmlTag NextClassic();
    TKvHtmlTag NextBySyntax();
    const char* FindBehind(const char* From, std::string_view Mark) const;
    const char* FindTag() const;
    const char* FindTagEnd(const char* From) const;
    const char* SkipComment(const char* From) const;
    TKvHtmlTag SetRaw(const char* First, const char* Last, TKvHtmlTag Kind);
    const char* FindEndTag(const char* From, std::string_view Name) const;
    TKvHtmlTag Classify(const char* Name) const;
    TKvHtmlTag ClassifyTable(const char* Name, bool IsEnd) const;
    TKvHtmlTag ClassifySection(const char* Name, std::string_view Upper, bool IsEnd) const;
    TKvHtmlTag ClassifyText(const char* Name, bool IsEnd) const;
    bool IsName(const char* Name, std::string_view Upper, bool BySyntax) const;
    bool EndsName(const char* Pos, bool BySyntax) const;
    static bool IsCellName(const char* Name) { return (Name[0] | 0x20) == 't' && (Name[1] | 0x20) == 'd'; }
    /// What the older rules skip behind a tag. White space that folds is left to that.
    bool IsFill(char Char) const
    {
        return Char == '>' || (!Breaks && (Char == '\n' || Char == '\r' || Char == ' '));
    }
    /// Makes [First, Last) the current tag and moves behind it.
    TKvHtmlTag Set(const char* First, const char* Last, TKvHtmlTag Kind)
    {
        Tag = {First, static_cast<std::size_t>(Last - First)};
        while (!Syntax && Last != End && IsFill(*Last))
            ++Last;
        FPos = Last;
        return Kind;
    }

    const bool Syntax;
    const bool IsXhtml;
    const bool HeaderCells;
    const bool Breaks;                              // tells line breaks and blocks from other tags
    const char* const End;
    const char* FPos;
    const char* FTextEnd;
    std::string_view Tag;
};

} // namespace kv
