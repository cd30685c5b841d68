#include "KvXmlTokens.h"

#include <algorithm>
#include <cstring>

#include "KvText.h"

namespace kv {

namespace {

bool IsLineBreak(char Char)
{
    return Char == '\n' || Char == '\r';
}

char Same(char Char)
{
    return Char;
}

char Upper(char Char)
{
    return Char >= 'a' && Char <= 'z' ? static_cast<char>(Char - 'a' + 'A') : Char;
}

/// Whether `Token` without its line breaks, each character turned by `Fold`, is `Expected`.
template <class TFold> bool Is(std::string_view Token, std::string_view Expected, TFold Fold)
{
    auto Next = Expected.begin();
    for (const char Char : Token) {
        if (IsLineBreak(Char))
            continue;
        if (Next == Expected.end() || Fold(Char) != *Next)
            return false;
        ++Next;
    }
    return Next == Expected.end();
}

bool Is(std::string_view Token, std::string_view Expected)
{
    return Is(Token, Expected, Same);
}

} // namespace

TKvXmlTokens::TKvXmlTokens(std::string_view Text, std::string_view RowTag)
    : RowOpen(RowTag.empty() ? std::string() : "<" + UpperCase(RowTag) + ">"),
      RowClose(RowTag.empty() ? std::string() : "</" + UpperCase(RowTag) + ">"),
      Rest(Text)
{
}

bool TKvXmlTokens::Next()
{
    while (!Rest.empty()) {
        const auto* const Last = static_cast<const char*>(std::memchr(Rest.data(), '>', Rest.size()));
        if (!Last)
            break;                                  // what no ">" ends is no token
        const auto Size = static_cast<std::size_t>(Last - Rest.data()) + 1;
        FToken = Trim(Rest.substr(0, Size));
        Rest.remove_prefix(Size);
        if (IsRow())
            return true;
    }
    Rest = FToken = {};
    return false;
}

/// Follows the sections up to the current token, and tells whether it is a record.
bool TKvXmlTokens::IsRow()
{
    const bool OpensNamed = !RowOpen.empty() && Is(FToken, RowOpen, Upper);
    const bool OpensRows = Is(FToken, "<ROWDATA>");
    if (Is(FToken, "<FIELDS>"))
        InFields = true;
    if (InFields)
        InRows = false;                             // it is in one section at a time
    if (OpensRows || OpensNamed) {
        InRows = true;
        InFields = false;
    }
    const bool ClosesRows = Is(FToken, "</ROWDATA>");
    const bool ClosesNamed = !RowClose.empty() && Is(FToken, RowClose, Upper);
    const bool Found = InRows && !(OpensRows || OpensNamed || ClosesRows || ClosesNamed);
    if (InFields)
        AddField();
    if (ClosesRows)
        InRows = false;
    if (InFields && Is(FToken, "</FIELDS>"))
        InFields = false;
    return Found;
}

void TKvXmlTokens::AddField()
{
    std::string Buffer;
    const auto Token = WithoutLineBreaks(FToken, Buffer);
    const auto Open = Token.find('"');
    const auto Close = Open == Token.npos ? Open : Token.find('"', Open + 1);
    if (Close == Token.npos)
        return;
    TKvXmlAttributes Attributes;
    CutClassicAttributes(Token, Attributes);
    FFields.push_back(DeclaredXmlField(std::string(Token.substr(Open + 1, Close - Open - 1)), Attributes));
}

std::string_view WithoutLineBreaks(std::string_view Token, std::string& Buffer)
{
    if (std::ranges::none_of(Token, IsLineBreak))
        return Token;
    Buffer.clear();
    std::ranges::remove_copy_if(Token, std::back_inserter(Buffer), IsLineBreak);
    return Buffer;
}

} // namespace kv
