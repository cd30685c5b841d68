#include "KvXmlElements.h"

#include <algorithm>

#include "KvByteScan.h"
#include "KvException.h"
#include "KvText.h"

namespace kv {

namespace {

constexpr std::string_view FieldNameAttribute = "attrname";

const TKvByteSet DoctypeStops(">[\"'");
const TKvLowByteSet NameStops(' ', "=/>");

std::string_view View(const char* First, const char* Last)
{
    return {First, static_cast<std::size_t>(Last - First)};
}

} // namespace

TKvXmlElements::TKvXmlElements(std::string_view Text, std::string_view TheRowTag,
                               std::string_view TheFileName, std::int64_t TheTextOffset)
    : RowTag(TheRowTag),
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
    for (;;) {
        Pos = FindNear(Pos, End, '<');
        if (Pos == End) {
            if (!Open.empty())
                Refuse("the text ends inside the element \"" + std::string(Open.back()) + "\"");
            return false;
        }
        if (StartsWith("</"))
            CloseElement();
        else if (StartsWith("<!") || StartsWith("<?"))
            SkipDeclaration();
        else if (FBegin = Pos; OpenElement())
            return true;
    }
}

void TKvXmlElements::Refuse(const std::string& Reason) const
{
    const auto Line = std::to_string(std::count(TextFirst, Pos, '\n') + 1);
    throw Exception("Line " + Line + " of " + FileName + " is no XML: " + Reason,
                    {.FileName = FileName,
                     .Place = "line " + Line,
                     .Rule = erFormat,
                     .Offset = TextOffset < 0 ? -1 : TextOffset + (Pos - TextFirst)});
}

bool TKvXmlElements::StartsWith(std::string_view Mark) const
{
    return View(Pos, End).starts_with(Mark);
}

const char* TKvXmlElements::FindBehind(const char* From, std::string_view Mark) const
{
    const auto Found = View(From, End).find(Mark);
    if (Found == std::string_view::npos)
        Refuse("nothing ends what begins here");
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
        SkipDoctype();
}

/// To its ">", past quoted texts and past a subset in brackets, which has declarations of its own.
void TKvXmlElements::SkipDoctype()
{
    for (const char* Stop = Pos + 2;; ++Stop) {
        Stop = DoctypeStops.FindIn(Stop, End);
        if (Stop == End)
            Refuse("nothing ends what begins here");
        if (*Stop == '>') {
            Pos = Stop + 1;
            return;
        }
        Stop = FindBehind(Stop + 1, *Stop == '[' ? "]" : View(Stop, Stop + 1)) - 1;
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

/// Reads a tag that begins an element, its attributes too. True when it is a record.
bool TKvXmlElements::OpenElement()
{
    ++Pos;
    const auto Name = ReadName();
    FAttributes.clear();
    ReadAttributes();
    const bool IsEmpty = Pos != End && *Pos == '/';
    if (IsEmpty)
        ++Pos;
    if (Pos == End || *Pos != '>')
        Refuse("the tag \"" + std::string(Name) + "\" does not end");
    ++Pos;

    const bool Record = IsRecord();
    if (FieldsDepth != 0 && Open.size() == FieldsDepth)
        AddField();
    if (IsEmpty)
        return Record;
    if (Open.size() == MaxDepth)
        Refuse("elements stand more than " + std::to_string(MaxDepth) + " deep in each other");
    Open.push_back(Name);
    if (RowsDepth == 0 && IsRowSection(Name))
        RowsDepth = Open.size();
    else if (FieldsDepth == 0 && RowsDepth == 0 && Name == "FIELDS")
        FieldsDepth = Open.size();
    return Record;
}

/// Up to the "/" or ">" that ends the tag. Its place is kept in a variable: a member would be stored and
/// loaded at every step.
void TKvXmlElements::ReadAttributes()
{
    const bool Keeps = KeepsAttributes || FieldsDepth != 0;
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
        if (!Keeps)
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
    const auto IsName = [](const TKvXmlAttribute& Each) {
        return SameText(View(Each.First, Each.Last), FieldNameAttribute);
    };
    const auto Found = std::ranges::find_if(FAttributes, IsName);
    const auto& Named = Found != FAttributes.end() ? *Found : FAttributes.front();
    FFields.push_back(DeclaredXmlField(std::string(Named.Value), FAttributes));
}

} // namespace kv
