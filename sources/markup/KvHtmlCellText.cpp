#include "KvHtmlCellText.h"

#include <algorithm>

#include "KvCharacterReferences.h"
#include "KvCodePage.h"
#include "KvException.h"
#include "KvHtmlSpace.h"

namespace kv {

namespace {

std::string FindNoBreakSpace()
{
    try {
        return Utf8ToAnsi("\xC2\xA0");
    }
    catch (const EConvertError&) {
        return {};
    }
}

/// The first line break of a block whose white space stays does not count.
const char* SkipLineBreak(const char* From, const char* End)
{
    if (From != End && *From == '\r')
        ++From;
    return From != End && *From == '\n' ? From + 1 : From;
}

} // namespace

/// Writes a text piece by piece, white space folded.
class TKvHtmlCellText::TWriter
{
public:
    TWriter(const TKvHtmlCellText& TheRules, std::string& Target) : Rules(TheRules), Out(Target)
    {
        Out.clear();
    }

    void Write(std::string_view Text)
    {
        if (!Rules.References && !Rules.Folded) {
            Out += Text;
            return;
        }
        while (!Text.empty())
            Text.remove_prefix(WriteNext(Text));
    }

    /// As it stands in a block whose white space stays.
    void WriteKept(std::string_view Text)
    {
        Keeps = true;
        Write(Text);
        Keeps = false;
    }

    void BreakLine()                                // <BR>: each one counts
    {
        ++Breaks;
        Blanks = Indent = 0;
    }
    void BreakBlock()                               // two that meet are one
    {
        Breaks = std::max<std::size_t>(Breaks, 1);
        Blanks = Indent = 0;
    }

private:
    /// Writes the first character of `Text` or what it refers to, and gives the bytes that it took.
    std::size_t WriteNext(std::string_view Text)
    {
        if (!Rules.IsSpecial(Text.front())) {
            std::size_t Size = 1;
            while (Size < Text.size() && !Rules.IsSpecial(Text[Size]))
                ++Size;
            WriteWord(Text.substr(0, Size));
            return Size;
        }
        if (Text.front() == '&' && Rules.References) {
            Character.clear();
            if (const auto Size = DecodeReference(Text, crHtml, Character); Size > 0) {
                WriteCharacter(Character);
                return Size;
            }
        }
        const auto Size = StartsNoBreak(Text) ? Rules.NoBreakSpace.size() : 1;
        WriteCharacter(Text.substr(0, Size));
        return Size;
    }

    bool StartsNoBreak(std::string_view Text) const
    {
        return !Rules.NoBreakSpace.empty() && Text.starts_with(Rules.NoBreakSpace);
    }

    void WriteCharacter(std::string_view Text)
    {
        if (!Rules.Folded)
            Out += Text;
        else if (StartsNoBreak(Text))
            ++Blanks;
        else if (Keeps && Text.size() == 1 && IsHtmlSpace(Text.front()))
            WriteKeptSpace(Text.front());
        else if (Text.size() == 1 && IsHtmlSpace(Text.front()))
            Folds = true;
        else
            WriteWord(Text);
    }

    void WriteKeptSpace(char Char)
    {
        const bool IsSecondHalf = Char == '\n' && AfterReturn;
        AfterReturn = Char == '\r';
        if (IsSecondHalf)
            return;
        if (Char == '\r' || Char == '\n')
            BreakLine();
        else if (Breaks > 0)
            ++Indent;
        else
            ++Blanks;
    }

    /// Text that is no white space, behind the white space before it.
    void WriteWord(std::string_view Text)
    {
        const bool AtStart = Out.empty();
        if (!AtStart && Breaks > 0)
            Out.append(Breaks, '\n').append(Indent, ' ');
        else if (!AtStart && (Blanks > 0 || Folds))
            Out.append(std::max<std::size_t>(Blanks, 1), ' ');
        Blanks = Breaks = Indent = 0;
        Folds = AfterReturn = false;
        Out += Text;
    }

    const TKvHtmlCellText& Rules;
    std::string& Out;
    std::string Character;
    bool Keeps = false;                             // white space as it stands
    bool AfterReturn = false;                       // and the last was a "\r"
    // White space that waits for a word to follow it:
    bool Folds = false;                             // some that folds
    std::size_t Blanks = 0;                         // no-break spaces
    std::size_t Breaks = 0;                         // line breaks
    std::size_t Indent = 0;                         // blanks that stay behind these
};

TKvHtmlCellText::TKvHtmlCellText(TKvIHTMLExtensions TheExtensions, TKvHtmlFlavour TheFlavour)
    : Extensions(TheExtensions),
      Flavour(TheFlavour),
      References(Extensions.Contains(xhReferences)),
      Folded(Extensions.Contains(xhFoldedSpace)),
      NoBreakSpace(Folded ? FindNoBreakSpace() : std::string()),
      Special(Folded ? ' ' : '\0', std::string("<") + (References ? "&" : "") + NoBreakSpace.substr(0, 1))
{
}

/// Nothing in it has to change: single blanks inside it do not. The search stops at the tag behind the
/// content and not at its end, which is too near for whole blocks of bytes.
bool TKvHtmlCellText::IsPlain(const TKvHtmlCell& Cell, const char* PageEnd) const
{
    if (Cell.HasTags)
        return false;
    if (!References && !Folded)
        return true;
    const char* const First = Cell.Content.data();
    const char* const Last = First + Cell.Content.size();
    for (const char* Pos = First; (Pos = Special.FindIn(Pos, PageEnd)) < Last; ++Pos) {
        const bool SingleBlank = *Pos == ' ' && Pos != First && Last - Pos > 1 && !IsSpecial(Pos[1]);
        if (!SingleBlank)
            return false;
    }
    return true;
}

void TKvHtmlCellText::Write(const TKvHtmlCell& Cell, std::string& Text) const
{
    TWriter Out(*this, Text);
    TKvHtmlTags Tags(Cell.Content, Extensions, Flavour);
    const char* First = Cell.Content.data();
    std::size_t Kept = 0;                           // blocks that are open whose white space stays
    for (TKvHtmlTag Tag = htOther; Tag != htNone; First = Tags.Pos()) {
        const bool BeginsKept = Tag == htPre;
        Tag = Tags.Next();
        if (BeginsKept)
            First = SkipLineBreak(First, Tags.TextEnd());
        const std::string_view Before(First, static_cast<std::size_t>(Tags.TextEnd() - First));
        Kept > 0 ? Out.WriteKept(Before) : Out.Write(Before);
        if (Tag == htRawText) {
            const auto* const Raw = SkipLineBreak(Tags.Current().data() + Tags.Current().size(), Tags.Pos());
            Out.WriteKept({Raw, static_cast<std::size_t>(Tags.Pos() - Raw)});
        }
        else if (Folded && Tag == htLineBreak) {
            Out.BreakLine();
        }
        else if (Folded && Tag != htOther && Tag != htNone) {
            Out.BreakBlock();                       // paragraphs, and rows and cells of tables inside
            Kept += Tag == htPre ? 1 : 0;
            Kept -= Tag == htPreEnd && Kept > 0 ? 1 : 0;
        }
    }
}

} // namespace kv
