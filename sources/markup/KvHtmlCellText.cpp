#include "KvHtmlCellText.h"

#include <algorithm>

#include "KvCharacterReferences.h"
#include "KvCodePage.h"
#include "KvException.h"
#include "KvHtmlTags.h"

namespace kv {

namespace {

/// White space that folds: a no-break space does not.
bool IsSpace(char Char)
{
    return Char == ' ' || Char == '\n' || Char == '\t' || Char == '\r' || Char == '\f';
}

std::string FindNoBreakSpace()
{
    try {
        return Utf8ToAnsi("\xC2\xA0");
    }
    catch (const EConvertError&) {
        return {};
    }
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

    void BreakLine()                                // <BR>: each one counts
    {
        ++Breaks;
        Blanks = 0;
    }
    void BreakBlock()                               // two that meet are one
    {
        Breaks = std::max<std::size_t>(Breaks, 1);
        Blanks = 0;
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
        else if (Text.size() == 1 && IsSpace(Text.front()))
            Folds = true;
        else
            WriteWord(Text);
    }

    /// Text that is no white space, behind the white space before it.
    void WriteWord(std::string_view Text)
    {
        const bool AtStart = Out.empty();
        if (!AtStart && Breaks > 0)
            Out.append(Breaks, '\n');
        else if (!AtStart && (Blanks > 0 || Folds))
            Out.append(std::max<std::size_t>(Blanks, 1), ' ');
        Blanks = Breaks = 0;
        Folds = false;
        Out += Text;
    }

    const TKvHtmlCellText& Rules;
    std::string& Out;
    std::string Character;
    // White space that waits for a word to follow it:
    bool Folds = false;                             // some that folds
    std::size_t Blanks = 0;                         // no-break spaces
    std::size_t Breaks = 0;                         // line breaks
};

TKvHtmlCellText::TKvHtmlCellText(TKvIHTMLExtensions TheExtensions)
    : Extensions(TheExtensions),
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
    TKvHtmlTags Tags(Cell.Content, Extensions);
    const char* First = Cell.Content.data();
    for (TKvHtmlTag Tag = htOther; Tag != htNone; First = Tags.Pos()) {
        Tag = Tags.Next();
        Out.Write({First, static_cast<std::size_t>(Tags.TextEnd() - First)});
        if (!Folded)
            continue;
        if (Tag == htLineBreak)
            Out.BreakLine();
        else if (Tag != htOther && Tag != htNone)
            Out.BreakBlock();                       // paragraphs, and rows and cells of tables inside
    }
}

} // namespace kv
