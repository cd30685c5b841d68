#include "KvHtmlTags.h"

#include <algorithm>

#include "KvHtmlAttributes.h"
#include "KvHtmlSpace.h"

namespace kv {

namespace {

constexpr std::string_view CommentOpen = "<!--";
constexpr std::string_view CommentClose = "-->";

const TKvByteSet TagEndOrQuote(">\"'");

constexpr char Upper(char Char)
{
    return Char >= 'a' && Char <= 'z' ? static_cast<char>(Char - 'a' + 'A') : Char;
}

bool IsLetter(char Char)
{
    return Upper(Char) >= 'A' && Upper(Char) <= 'Z';
}

/// Elements whose text holds no tags and is not shown in the page ...
constexpr std::string_view HiddenTexts[] = {"SCRIPT", "STYLE", "TITLE", "IFRAME", "NOEMBED", "NOFRAMES"};
/// ... and those in which it is.
constexpr std::string_view RawTexts[] = {"TEXTAREA", "XMP"};
constexpr std::string_view FirstOfThese = "STINX";  // letters with which their names begin

} // namespace

TKvHtmlFlavour FlavourOf(std::string_view Page)
{
    return Page.starts_with("<?xml") ? hfXhtml : hfHtml;
}

TKvHtmlTags::TKvHtmlTags(std::string_view Text, TKvIHTMLExtensions Extensions, TKvHtmlFlavour Flavour)
    : Syntax(Extensions.Contains(xhTagSyntax)),
      IsXhtml(Flavour == hfXhtml),
      HeaderCells(Extensions.Contains(xhHeaderCells)),
      Breaks(Extensions.Contains(xhFoldedSpace)),
      End(Text.data() + Text.size()),
      FPos(Text.data()),
      FTextEnd(FPos),
      Tag(FPos, 0)
{
}

const char* TKvHtmlTags::FindBehind(const char* From, std::string_view Mark) const
{
    const std::string_view Rest(From, static_cast<std::size_t>(End - From));
    const auto Found = Rest.find(Mark);
    return Found == Rest.npos ? End : From + Found + Mark.size();
}

// The classic cut.

TKvHtmlTag TKvHtmlTags::NextClassic()
{
    const auto* First = FTextEnd;
    while (std::string_view(First, static_cast<std::size_t>(End - First)).starts_with(CommentOpen))
        First = FindNear(FindBehind(First + 2, CommentClose), End, '<'); // "<!-->" is one, too
    if (First == End)
        return Set(End, End, htNone);
    const auto Kind = Classify(First + 1);
    return Set(First, FindNear(First + 1, End, '>'), Kind);
}

// The cut of the extension.

TKvHtmlTag TKvHtmlTags::NextBySyntax()
{
    const auto* const First = FindTag();
    FTextEnd = First;
    if (First == End)
        return Set(End, End, htNone);
    const auto Rest = std::string_view(First, static_cast<std::size_t>(End - First));
    if (Rest.starts_with(CommentOpen))
        return Set(First, SkipComment(First), htOther);
    const bool IsElement = IsLetter(First[First[1] == '/' ? 2 : 1]);
    if (!IsElement)
        return Set(First, FindBehind(First, ">"), htOther);
    const auto Kind = Classify(First + 1);
    const auto* const Last = FindTagEnd(First + 1);
    return Kind == htOther ? SetRaw(First, Last, Kind) : Set(First, Last, Kind);
}

/// Behind "-->" or "--!>"; "<!-->" and "<!--->" are comments, too.
const char* TKvHtmlTags::SkipComment(const char* From) const
{
    constexpr std::ptrdiff_t OpenSize = 4;
    for (const auto* Pos = From + 2;;) {
        Pos = FindBehind(Pos, "--");
        if (Pos == End)
            return End;
        if (*Pos == '>')
            return Pos + 1;
        if (*Pos == '!' && End - Pos > 1 && Pos[1] == '>' && Pos - From >= OpenSize + 2)
            return Pos + 2;
        --Pos;                                      // the second hyphen may be the first of two
    }
}

/// A "<" before anything but a letter, "/" and a letter, "!" or "?" is text.
const char* TKvHtmlTags::FindTag() const
{
    for (const auto* Pos = FTextEnd;; Pos = FindNear(Pos + 1, End, '<')) {
        if (End - Pos < 2)
            return End;
        if (IsLetter(Pos[1]) || Pos[1] == '!' || Pos[1] == '?' || (Pos[1] == '/' && End - Pos > 2))
            return Pos;
    }
}

/// Behind the ">" that ends a tag, outside of its quoted values. Where no quote stands before it the first
/// one does.
const char* TKvHtmlTags::FindTagEnd(const char* From) const
{
    const auto* const Stop = TagEndOrQuote.FindIn(From, End);
    if (Stop != End && *Stop == '>')
        return Stop + 1;
    TKvHtmlAttributes Attributes(From, End);
    while (Attributes.Next())
        continue;
    return Attributes.Pos() == End ? End : Attributes.Pos() + 1;
}

/// Makes the tag the current one, together with what follows it as far as that holds no tags.
TKvHtmlTag TKvHtmlTags::SetRaw(const char* First, const char* Last, TKvHtmlTag Kind)
{
    const bool IsEmpty = IsXhtml && Last - First > 2 && Last[-2] == '/';
    const auto* const Name = First + 1;
    if (IsEmpty || FirstOfThese.find(Upper(*Name)) == FirstOfThese.npos)
        return Set(First, Last, Kind);
    for (const auto Hidden : HiddenTexts)
        if (IsName(Name, Hidden, true))
            return Set(First, FindEndTag(Last, Hidden), Kind);
    for (const auto Raw : RawTexts)
        if (IsName(Name, Raw, true)) {
            Set(First, Last, htRawText);
            FPos = FindEndTag(Last, Raw);
            return htRawText;
        }
    return Set(First, Last, Kind);
}

/// Where the end tag of an element begins; what looks like another tag before it is none.
const char* TKvHtmlTags::FindEndTag(const char* From, std::string_view Name) const
{
    for (const auto* Pos = From;; ++Pos) {
        Pos = FindNear(Pos, End, '<');
        if (Pos == End || (End - Pos > 2 && Pos[1] == '/' && IsName(Pos + 2, Name, true)))
            return Pos;
    }
}

// What a tag is.

bool TKvHtmlTags::EndsName(const char* Pos, bool BySyntax) const
{
    if (Pos == End || *Pos == '>' || *Pos == ' ')
        return true;
    return BySyntax && (IsHtmlSpace(*Pos) || *Pos == '/');
}

bool TKvHtmlTags::IsName(const char* Name, std::string_view UpperName, bool BySyntax) const
{
    if (End - Name < static_cast<std::ptrdiff_t>(UpperName.size()))
        return false;
    for (const char Char : UpperName)
        if (Upper(*Name++) != Char)
            return false;
    return EndsName(Name, BySyntax);
}

TKvHtmlTag TKvHtmlTags::Classify(const char* Name) const
{
    const bool IsEnd = Name != End && *Name == '/';
    if (IsEnd)
        ++Name;
    if (Name == End)
        return htOther;
    if (Upper(*Name) == 'T')
        return ClassifyTable(Name, IsEnd);
    return Breaks ? ClassifyText(Name, IsEnd) : htOther;
}

TKvHtmlTag TKvHtmlTags::ClassifyTable(const char* Name, bool IsEnd) const
{
    switch (End - Name > 1 ? Upper(Name[1]) : '\0') {
    case 'D':
        return !EndsName(Name + 2, Syntax) ? htOther : IsEnd ? htCellEnd : htCell;
    case 'R':
        return !EndsName(Name + 2, Syntax) ? htOther : IsEnd ? htRowEnd : htRow;
    case 'H':
        if (HeaderCells && EndsName(Name + 2, Syntax))
            return IsEnd ? htCellEnd : htCell;
        return ClassifySection(Name, "THEAD", IsEnd);
    case 'A':
        return !IsName(Name, "TABLE", Syntax) ? htOther : IsEnd ? htTableEnd : htTable;
    case 'B':
        return ClassifySection(Name, "TBODY", IsEnd);
    case 'F':
        return ClassifySection(Name, "TFOOT", IsEnd);
    default:
        return htOther;
    }
}

TKvHtmlTag TKvHtmlTags::ClassifySection(const char* Name, std::string_view Upper, bool IsEnd) const
{
    if (!Syntax || !IsName(Name, Upper, true))
        return htOther;
    return IsEnd ? htSectionEnd : htSection;
}

TKvHtmlTag TKvHtmlTags::ClassifyText(const char* Name, bool IsEnd) const
{
    static constexpr std::string_view Blocks[] = {"P",  "DIV", "LI", "UL", "OL", "DL", "DT",  "DD",
                                                  "H1", "H2",  "H3", "H4", "H5", "H6", "HR",
                                                  "BLOCKQUOTE", "CAPTION"};
    const auto IsThis = [this, Name](std::string_view Each) { return IsName(Name, Each, true); };
    if (IsThis("BR") && !IsEnd)
        return htLineBreak;
    if (IsThis("PRE"))
        return IsEnd ? htPreEnd : htPre;
    return std::ranges::any_of(Blocks, IsThis) ? htBlock : htOther;
}

} // namespace kv
