#include "KvMarkupEncoding.h"

#include <algorithm>
#include <iterator>

#include "KvHtmlAttributes.h"
#include "KvText.h"

namespace kv {

namespace {

using namespace std::string_view_literals;

constexpr std::size_t HeadSize = 4096;              // bytes to declare an encoding in; HTML asks for 1024

bool IsSpace(char Char)
{
    return static_cast<unsigned char>(Char) <= ' ';
}

/// `Text` behind the first `Word`, compared without case; empty when it is not there.
std::string_view Behind(std::string_view Text, std::string_view Word)
{
    for (std::size_t Pos = 0; Pos + Word.size() <= Text.size(); ++Pos)
        if (SameText(Text.substr(Pos, Word.size()), Word))
            return Text.substr(Pos + Word.size());
    return {};
}

/// The value behind "=", in quotes or not.
std::string_view ValueOf(std::string_view Text)
{
    const auto SkipSpace = [&Text] {
        Text.remove_prefix(static_cast<std::size_t>(std::ranges::find_if_not(Text, IsSpace) - Text.begin()));
    };
    SkipSpace();
    if (!Text.starts_with('='))
        return {};
    Text.remove_prefix(1);
    SkipSpace();
    if (Text.starts_with('"') || Text.starts_with('\''))
        Text.remove_prefix(1);
    const auto IsEnd = [](char Char) {
        return IsSpace(Char) || "\"';/>?"sv.find(Char) != std::string_view::npos;
    };
    return Text.substr(0, static_cast<std::size_t>(std::ranges::find_if(Text, IsEnd) - Text.begin()));
}

bool IsWide(std::string_view Name)
{
    const auto Upper = UpperCase(Name.substr(0, 8));
    return Upper.starts_with("UTF-16") || Upper.starts_with("UTF-32") || Upper.starts_with("UTF16") ||
           Upper.starts_with("UTF32") || Upper.starts_with("UCS-") || Upper.starts_with("ISO-1064");
}

std::string_view UnlessWide(std::string_view Name)
{
    return IsWide(Name) ? std::string_view() : Name;
}

/// What a META tag says whose attributes are `Tag`:  charset="name"  or
/// http-equiv="content-type" content="...; charset=name".
std::string_view CharsetOfMeta(std::string_view Tag)
{
    std::string_view Charset, Content;
    bool IsContentType = false;
    TKvHtmlAttributes Attributes(Tag.data(), Tag.data() + Tag.size());
    while (Attributes.Next()) {
        if (SameText(Attributes.Name(), "charset"))
            Charset = Attributes.Value();
        else if (SameText(Attributes.Name(), "content"))
            Content = Attributes.Value();
        else if (SameText(Attributes.Name(), "http-equiv"))
            IsContentType = SameText(Attributes.Value(), "content-type");
    }
    if (Charset.empty() && IsContentType)
        Charset = ValueOf(Behind(Content, "charset"));
    return Trim(Charset);
}

} // namespace

std::string_view FindWideEncoding(std::string_view Text)
{
    if (Text.starts_with("<\0"sv))
        return "UTF-16LE";
    return Text.starts_with("\0<"sv) ? "UTF-16BE"sv : ""sv;
}

std::string_view FindXmlEncoding(std::string_view Text)
{
    if (!Text.starts_with("<?xml") || Text.size() == 5 || !IsSpace(Text[5]))
        return {};
    const auto Declaration = Text.substr(0, std::min(Text.find("?>"), HeadSize));
    return UnlessWide(ValueOf(Behind(Declaration, "encoding")));
}

std::string_view FindMetaCharset(std::string_view Text)
{
    constexpr std::string_view Meta = "<meta";
    const auto Head = Text.substr(0, HeadSize);
    for (auto Pos = Head.find('<'); Pos != Head.npos; Pos = Head.find('<', Pos + 1)) {
        const auto Rest = Head.substr(Pos);
        if (Rest.starts_with("<!--"))
            Pos += std::min(Rest.find("-->", 2), Rest.size() - 1);
        else if (SameText(Rest.substr(0, Meta.size()), Meta))
            if (const auto Name = CharsetOfMeta(Rest.substr(Meta.size())); !Name.empty())
                return UnlessWide(Name);
    }
    return {};
}

} // namespace kv
