#include "KvHtmlTags.h"

#include <algorithm>

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

bool IsSpace(char Char)
{
    return Char == ' ' || Char == '\n' || Char == '\t' || Char == '\r' || Char == '\f';
}

/// What a quote must follow to be the start of a value, blanks aside.
bool FollowsEqualsSign(const char* First, const char* Quote)
{
    do
        --Quote;
    while (Quote > First && IsSpace(*Quote));
    return *Quote == '=';
}

} // namespace

TKvHtmlTags::TKvHtmlTags(std::string_view Text, TKvIHTMLExtensions Extensions)
    : Syntax(Extensions.Contains(xhTagSyntax)),
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
        return Set(First, FindBehind(First + 2, CommentClose), htOther);
    const bool IsElement = IsLetter(First[First[1] == '/' ? 2 : 1]);
    if (!IsElement)
        return Set(First, FindBehind(First, ">"), htOther);
    const auto Kind = Classify(First + 1);
    const auto* Last = FindTagEnd(First + 1);
    if (Kind == htOther)
        for (const std::string_view Raw : {"SCRIPT", "STYLE"})
            if (IsName(First + 1, Raw, true))
                Last = SkipRawText(Last, Raw);
    return Set(First, Last, Kind);
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

/// Behind the ">" that ends a tag, outside of its quoted values. A value that nothing closes is none: such
/// a quote is the last of the text, so that the search for its like is made once.
const char* TKvHtmlTags::FindTagEnd(const char* From) const
{
    for (const auto* Pos = From;; ++Pos) {
        Pos = TagEndOrQuote.FindIn(Pos, End);
        if (Pos == End)
            return End;
        if (*Pos == '>')
            return Pos + 1;
        if (!FollowsEqualsSign(From, Pos))
            continue;
        if (const auto* const Close = FindNear(Pos + 1, End, *Pos); Close != End)
            Pos = Close;
    }
}

/// Scripts and styles end at their own end tag; what looks like a tag in them is none.
const char* TKvHtmlTags::SkipRawText(const char* From, std::string_view Name) const
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
    return BySyntax && (IsSpace(*Pos) || *Pos == '/');
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
        return Syntax && IsName(Name, "THEAD", Syntax) ? htSection : htOther;
    case 'A':
        return !IsName(Name, "TABLE", Syntax) ? htOther : IsEnd ? htTableEnd : htTable;
    case 'B':
        return Syntax && IsName(Name, "TBODY", Syntax) ? htSection : htOther;
    case 'F':
        return Syntax && IsName(Name, "TFOOT", Syntax) ? htSection : htOther;
    default:
        return htOther;
    }
}

TKvHtmlTag TKvHtmlTags::ClassifyText(const char* Name, bool IsEnd) const
{
    static constexpr std::string_view Blocks[] = {"P",  "DIV", "LI", "UL", "OL", "DL", "DT",  "DD",
                                                  "H1", "H2",  "H3", "H4", "H5", "H6", "HR",  "PRE",
                                                  "BLOCKQUOTE", "CAPTION"};
    const auto IsThis = [this, Name](std::string_view Each) { return IsName(Name, Each, true); };
    if (IsThis("BR") && !IsEnd)
        return htLineBreak;
    return std::ranges::any_of(Blocks, IsThis) ? htBlock : htOther;
}

} // namespace kv
