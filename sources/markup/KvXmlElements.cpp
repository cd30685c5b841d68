#include "KvXmlElements.h"

#include <algorithm>
#include <charconv>

#include "KvByteScan.h"
#include "KvException.h"
#include "KvText.h"

namespace kv {

namespace {

constexpr std::string_view FieldNameAttribute = "attrname";
constexpr std::string_view RowStateAttribute = "RowState";
constexpr char MsgNoEnd[] = "nothing ends what begins here";

const TKvByteSet DoctypeStops(">[\"'");
const TKvByteSet DeclaredStops(">\"'");
const TKvLowByteSet NameStops(' ', "=/>");

std::string_view View(const char* First, const char* Last)
{
    return {First, static_cast<std::size_t>(Last - First)};
}

/// RowState is a sum: 1 means that another record has replaced this one, 2 that it is deleted, 4 that it was
/// inserted, 8 that it has replaced another.
bool TellsReplaced(std::string_view RowState)
{
    constexpr unsigned Replaced = 1, Deleted = 2;
    unsigned State = 0;
    std::from_chars(RowState.data(), RowState.data() + RowState.size(), State);
    return (State & (Replaced | Deleted)) != 0;
}

} // namespace

TKvXmlElements::TKvXmlElements(std::string_view Text, TKvIXMLExtensions Extensions,
                               std::string_view TheRowTag, std::string_view TheFileName,
                               std::int64_t TheTextOffset)
    : DropsReplaced(Extensions.Contains(xxRowState)),
      ReadsContent(Extensions.Contains(xxElementValues)),
      RowTag(TheRowTag),
      FileName(TheFileName),
      TextOffset(TheTextOffset),
      TextFirst(Text.data()),
      End(TextFirst + Text.size()),
      Pos(TextFirst),
      FBegin(TextFirst)
{
}

bool TKvXmlElements::Next(TKvXmlRowUse Use)
{
    KeepsAttributes = Use == ruValues;
    while (FindTag() != End) {
        if (StartsWith("</"))
            CloseElement();
        else if (StartsWith("<!") || StartsWith("<?"))
            SkipDeclaration();
        else if (FBegin = Pos; OpenElement())
            return true;
    }
    return false;
}

/// Moves to the next "<", or to the end of a text that is whole.
const char* TKvXmlElements::FindTag()
{
    const auto* const From = Pos;
    Pos = FindNear(Pos, End, '<');
    if (Open.empty() && SkipBlanks(From) != Pos) {
        Pos = SkipBlanks(From);
        Refuse(HasRoot ? "text stands behind its last element" : "it begins with no tag");
    }
    if (Pos == End && !Open.empty())
        Refuse("the text ends inside the element \"" + std::string(Open.back()) + "\"");
    if (Pos == End && !HasRoot)
        Refuse("it has no element");
    return Pos;
}

void TKvXmlElements::Refuse(const std::string& Reason) const
{
    const auto Line = std::to_string(std::count(TextFirst, Pos, '\n') + 1);
    const auto Offset = TextOffset < 0 ? -1 : TextOffset + (Pos - TextFirst);
    throw Exception("Line " + Line + " of " + FileName + " is no XML: " + Reason +
                        (Offset < 0 ? std::string() : " (offset " + std::to_string(Offset) + ")"),
                    {.FileName = FileName, .Place = "line " + Line, .Rule = erFormat, .Offset = Offset});
}

bool TKvXmlElements::StartsWith(std::string_view Mark) const
{
    return View(Pos, End).starts_with(Mark);
}

const char* TKvXmlElements::FindBehind(const char* From, std::string_view Mark) const
{
    const auto Found = View(From, End).find(Mark);
    if (Found == std::string_view::npos)
        Refuse(MsgNoEnd);
    return From + Found + Mark.size();
}

// What is no element.

void TKvXmlElements::SkipDeclaration()
{
    if (StartsWith("<!--"))
        Pos = FindBehind(Pos + 4, "-->");
    else if (StartsWith("<![CDATA["))
        Pos = FindBehind(Pos + 9, "]]>");
    else if (StartsWith("<?"))
        Pos = FindBehind(Pos + 2, "?>");
    else
        ReadDoctype();
}

/// To its ">", past quoted texts and past a subset in brackets, which has declarations of its own.
void TKvXmlElements::ReadDoctype()
{
    for (const char* Stop = Pos + 2;; ++Stop) {
        Stop = DoctypeStops.FindIn(Stop, End);
        if (Stop == End)
            Refuse(MsgNoEnd);
        if (*Stop == '>') {
            Pos = Stop + 1;
            return;
        }
        Stop = (*Stop == '[' ? ReadSubset(Stop + 1) : FindBehind(Stop + 1, View(Stop, Stop + 1))) - 1;
    }
}

/// Answers where the text behind its "]" begins. A "]" inside comments and quoted texts is none.
const char* TKvXmlElements::ReadSubset(const char* From)
{
    for (;;) {
        while (From != End && *From != ']' && *From != '<')
            ++From;
        if (From == End)
            Refuse(MsgNoEnd);
        if (*From == ']')
            return From + 1;
        const auto Rest = View(From, End);
        if (Rest.starts_with("<!--"))
            From = FindBehind(From + 4, "-->");
        else if (Rest.starts_with("<?"))
            From = FindBehind(From + 2, "?>");
        else
            From = ReadDeclared(From);
    }
}

/// Past one declaration; that of an entity is kept:  "<!ENTITY" name quote text quote ">"
const char* TKvXmlElements::ReadDeclared(const char* From)
{
    constexpr std::string_view Entity = "<!ENTITY";
    const auto* At = From + 1;
    if (View(From, End).starts_with(Entity)) {
        const auto* const Name = SkipBlanks(From + Entity.size());
        const auto* const NameLast = NameStops.FindIn(Name, End);
        At = SkipBlanks(NameLast);
        if (At != End && (*At == '"' || *At == '\'')) {
            const auto* const Behind = FindBehind(At + 1, View(At, At + 1));
            FEntities.Declare(View(Name, NameLast), View(At + 1, Behind - 1));
            At = Behind;
        }
    }
    for (;; ++At) {
        At = DeclaredStops.FindIn(At, End);
        if (At == End)
            Refuse(MsgNoEnd);
        if (*At == '>')
            return At + 1;
        At = FindBehind(At + 1, View(At, At + 1)) - 1;
    }
}

// Elements.

std::string_view TKvXmlElements::ReadName()
{
    const auto* const First = Pos;
    Pos = NameStops.FindIn(Pos, End);
    if (Pos == First)
        Refuse("a name is missing");
    return View(First, Pos);
}

/// Reads a tag that begins an element, its attributes too, and with them the values inside a record. True
/// when it is a record.
bool TKvXmlElements::OpenElement()
{
    HasRoot = true;
    FAttributes.clear();
    const bool IsEmpty = ReadTag(KeepsAttributes || FieldsDepth != 0);
    const bool Record = IsRecord();
    if (FieldsDepth != 0 && Open.size() == FieldsDepth)
        AddField();
    if (!IsEmpty) {
        Open.push_back(TagName);
        if (RowsDepth == 0 && IsRowSection(TagName))
            RowsDepth = Open.size();
        else if (FieldsDepth == 0 && RowsDepth == 0 && TagName == "FIELDS")
            FieldsDepth = Open.size();
    }
    if (!Record)
        return false;
    if (IsReplaced && DropsReplaced) {
        ++FDropped;
        return false;
    }
    if (ReadsContent && KeepsAttributes && !IsEmpty)
        ReadContent();
    return true;
}

/// True when the tag ends its element, too.
bool TKvXmlElements::ReadTag(bool KeepsThem)
{
    ++Pos;
    TagName = ReadName();
    IsReplaced = false;
    ReadAttributes(KeepsThem);
    const bool IsEmpty = Pos != End && *Pos == '/';
    if (IsEmpty)
        ++Pos;
    if (Pos == End || *Pos != '>')
        Refuse("the tag \"" + std::string(TagName) + "\" does not end");
    ++Pos;
    if (!IsEmpty && Open.size() == MaxDepth)
        Refuse("elements stand more than " + std::to_string(MaxDepth) + " deep in each other");
    return IsEmpty;
}

/// Up to the "/" or ">" that ends the tag. Its place is kept in a variable: a member would be stored and
/// loaded at every step.
void TKvXmlElements::ReadAttributes(bool KeepsThem)
{
    const char* At = SkipBlanks(Pos);
    while (At != End && *At != '/' && *At != '>') {
        const char* const Name = At;
        const char* const NameLast = NameStops.FindIn(Name, End);
        At = SkipBlanks(NameLast);
        if (At == End || *At != '=' || NameLast == Name)
            RefuseAttribute(View(Name, NameLast), "has no value");
        At = SkipBlanks(At + 1);
        if (At == End || (*At != '"' && *At != '\''))
            RefuseAttribute(View(Name, NameLast), "has a value without quotes");
        const char* const Value = At + 1;
        const char* const ValueLast = *At == '"' ? FindNear(Value, End, '"') : FindNear(Value, End, '\'');
        if (ValueLast == End)
            RefuseAttribute(View(Name, NameLast), "has a value that does not end");
        At = SkipBlanks(ValueLast + 1);
        if (*Name == RowStateAttribute.front() && View(Name, NameLast) == RowStateAttribute)
            IsReplaced = TellsReplaced(View(Value, ValueLast));
        if (!KeepsThem)
            continue;
        auto& Attribute = AddAttribute(FAttributes, TextFirst, Name, NameLast);
        Attribute.Value = View(Value, ValueLast);
        Attribute.Closed = true;
    }
    Pos = At;
}

void TKvXmlElements::RefuseAttribute(std::string_view Name, const char* Reason)
{
    Pos = Name.data();
    Refuse("the attribute \"" + std::string(Name) + "\" " + Reason);
}

void TKvXmlElements::CloseElement()
{
    Pos += 2;
    const auto Name = ReadName();
    Pos = SkipBlanks(Pos);
    if (Pos == End || *Pos != '>')
        Refuse("the tag \"/" + std::string(Name) + "\" does not end");
    if (Open.empty() || Open.back() != Name)
        Refuse("the tag \"/" + std::string(Name) + "\" ends no element that is open");
    ++Pos;
    if (Open.size() == RowsDepth)
        RowsDepth = 0;
    if (Open.size() == FieldsDepth)
        FieldsDepth = 0;
    Open.pop_back();
}

// Values in elements.

/// Up to the end of the record. The elements directly inside it are values unless they hold others.
void TKvXmlElements::ReadContent()
{
    const auto Depth = Open.size();                 // with the record
    const char* Text = Pos;
    bool HasElements = false;
    while (Open.size() >= Depth) {
        FindTag();
        const auto* const Last = Pos;
        if (StartsWith("</")) {
            const auto Name = Open.back();
            CloseElement();
            if (Open.size() == Depth && HasElements)
                ++FLeftOut;
            else if (Open.size() == Depth)
                AddContent(Name, View(Text, Last));
            continue;
        }
        if (StartsWith("<!") || StartsWith("<?")) {
            SkipDeclaration();
            continue;
        }
        HasElements = Open.size() > Depth;
        const bool IsEmpty = ReadTag(false);
        Text = Pos;
        if (!IsEmpty)
            Open.push_back(TagName);
        else if (Open.size() == Depth)
            AddContent(TagName, View(Text, Text));
    }
}

void TKvXmlElements::AddContent(std::string_view Name, std::string_view Text)
{
    const auto IsName = [Name](const TKvXmlAttribute& Each) { return View(Each.First, Each.Last) == Name; };
    if (std::ranges::any_of(FAttributes, IsName)) {
        ++FLeftOut;
        return;
    }
    auto& Attribute = AddAttribute(FAttributes, TextFirst, Name.data(), Name.data() + Name.size());
    Attribute.Value = Text;
    Attribute.Closed = true;
}

// Sections.

bool TKvXmlElements::IsRowSection(std::string_view Name) const
{
    return RowTag.empty() ? Name == "ROWDATA" : SameText(Name, RowTag);
}

bool TKvXmlElements::IsRecord() const
{
    return RowsDepth != 0 && Open.size() == RowsDepth;
}

void TKvXmlElements::AddField()
{
    if (FAttributes.empty())
        return;
    if (FFields.size() == MaxFields)
        Refuse("it declares more than " + std::to_string(MaxFields) + " fields");
    const auto IsName = [](const TKvXmlAttribute& Each) {
        return SameText(View(Each.First, Each.Last), FieldNameAttribute);
    };
    const auto Found = std::ranges::find_if(FAttributes, IsName);
    const auto& Named = Found != FAttributes.end() ? *Found : FAttributes.front();
    FFields.push_back(DeclaredXmlField(std::string(Named.Value), FAttributes));
}

} // namespace kv
