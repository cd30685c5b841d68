#include "KvXmlRows.h"

#include "KvByteScan.h"
#include "KvCharacterReferences.h"

namespace kv {

namespace {

/// What may have to change in a value, and what may end one: a search for these needs no end so near that
/// it stops whole blocks of bytes from being looked at.
const TKvLowByteSet Stops('\x1F', "&\"'");

bool IsBlank(char Char)
{
    return Char == '\r' || Char == '\n' || Char == '\t';
}

/// `Text` up to `Mark`, which is taken off it as well; all of it when there is none.
std::string_view TakeUpTo(std::string_view& Text, std::string_view Mark)
{
    const auto Found = Text.find(Mark);
    const auto Taken = Text.substr(0, Found);
    Text.remove_prefix(Found == Text.npos ? Text.size() : Found + Mark.size());
    return Taken;
}

} // namespace

TKvXmlRows::TKvXmlRows(std::string_view Text, TKvIXMLExtensions TheExtensions, std::string_view RowTag,
                       std::string_view FileName, std::int64_t TextOffset)
    : Extensions(TheExtensions),
      Syntax(Extensions.Contains(xxTagSyntax)),
      References(Extensions.Contains(xxReferences)),
      Tokens(Text, RowTag),
      Elements(Text, Extensions, RowTag, FileName, TextOffset),
      TextEnd(Text.data() + Text.size())
{
}

bool TKvXmlRows::Next(TKvXmlRowUse Use)
{
    IsCut = false;
    return Syntax ? Elements.Next(Use) : Tokens.Next();
}

const std::vector<TKvXmlField>& TKvXmlRows::Fields() const
{
    return Syntax ? Elements.Fields() : Tokens.Fields();
}

const char* TKvXmlRows::Begin() const
{
    return Syntax ? Elements.Begin() : Tokens.Token().data();
}

std::size_t TKvXmlRows::AddColumn(std::string_view Name)
{
    Columns.emplace_back(Name, Extensions.Contains(xxWholeNames));
    Buffers.emplace_back();
    return Columns.size() - 1;
}

/// Of the current token, once: rows that are only counted are not cut.
void TKvXmlRows::CutAttributes()
{
    TokenAttributes.clear();
    auto Token = Tokens.Token();
    if (!CutClassicAttributes(Token, TokenAttributes)) {
        Token = WithoutLineBreaks(Token, TokenText);
        CutClassicAttributes(Token, TokenAttributes);
    }
    TextEnd = Token.data() + Token.size();
    IsCut = true;
}

const TKvXmlAttributes& TKvXmlRows::Attributes()
{
    if (Syntax)
        return Elements.Attributes();
    if (!IsCut)
        CutAttributes();
    return TokenAttributes;
}

std::vector<std::string_view> TKvXmlRows::AttributeNames()
{
    std::vector<std::string_view> Names;
    for (const auto& Attribute : Attributes()) {
        const char* First = Attribute.Last;
        while (First != Attribute.First && static_cast<unsigned char>(First[-1]) > ' ')
            --First;
        Names.emplace_back(First, static_cast<std::size_t>(Attribute.Last - First));
    }
    return Names;
}

std::optional<std::string_view> TKvXmlRows::Value(std::size_t Column)
{
    const auto* const Found = Columns[Column].FindIn(Attributes());
    if (!Found || !Found->Closed)
        return {};
    if (!Syntax && !References)
        return Found->Value;
    if (Syntax && TKvXmlElements::IsContent(Found->Value))
        return ContentText(Found->Value, Buffers[Column]);
    const char* const Last = Found->Value.data() + Found->Value.size();
    if (Stops.FindIn(Found->Value.data(), TextEnd) >= Last)
        return Found->Value;
    Buffers[Column].clear();
    Decode(Found->Value, true, Buffers[Column]);
    return Buffers[Column];
}

/// The text of an element, past comments and instructions; character data holds no references.
std::string_view TKvXmlRows::ContentText(std::string_view Content, std::string& Buffer) const
{
    Buffer.clear();
    while (!Content.empty()) {
        Decode(TakeUpTo(Content, "<"), false, Buffer);
        if (Content.starts_with("![CDATA[")) {
            TakeUpTo(Content, "[CDATA[");
            Buffer += TakeUpTo(Content, "]]>");
        }
        else {
            TakeUpTo(Content, Content.starts_with("!--") ? "-->" : "?>");
        }
    }
    return Buffer;
}

/// As XML 1.0 normalises texts: a line break of two characters is one, and in the value of an attribute it
/// reads as a blank, as does a tab; one that is written as a reference stays what it is.
void TKvXmlRows::Decode(std::string_view Value, bool IsAttribute, std::string& Text) const
{
    const char* Pos = Value.data();
    const char* const End = Pos + Value.size();
    auto StepsLeft = TKvXmlEntities::MaxSteps;
    for (const char* Stop; (Stop = Stops.FindIn(Pos, End)) != End;) {
        Text.append(Pos, Stop);
        Pos = Stop + 1;
        if (*Stop == '&' && References) {
            const std::string_view Rest(Stop, static_cast<std::size_t>(End - Stop));
            if (const auto Size = DecodeReferenceIn(Rest, StepsLeft, Text); Size > 0)
                Pos = Stop + Size;
            else
                Text += *Stop;
        }
        else if (Syntax && IsBlank(*Stop)) {
            if (IsAttribute)
                Text += ' ';
            else
                Text += *Stop == '\r' ? '\n' : *Stop;
            if (*Stop == '\r' && Pos != End && *Pos == '\n')
                ++Pos;                              // both are one line break
        }
        else {
            Text += *Stop;
        }
    }
    Text.append(Pos, End);
}

std::size_t TKvXmlRows::DecodeReferenceIn(std::string_view Value, std::size_t& StepsLeft,
                                          std::string& Text) const
{
    const auto Size = DecodeReference(Value, crXml, Text);
    if (Size > 0 || Elements.Entities().IsEmpty())
        return Size;
    return Elements.Entities().Decode(Value, StepsLeft, Text);
}

} // namespace kv
