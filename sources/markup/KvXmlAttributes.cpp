#include "KvXmlAttributes.h"

#include <algorithm>

#include "KvByteScan.h"
#include "KvText.h"

namespace kv {

namespace {

const TKvByteSet QuoteOrLineBreak("\"\r\n");

bool IsBlank(char Char)
{
    return static_cast<unsigned char>(Char) <= ' ';
}

constexpr char Upper(char Char)
{
    return Char >= 'a' && Char <= 'z' ? static_cast<char>(Char - 'a' + 'A') : Char;
}

/// The bytes of a name's end that `Size` characters fill.
TKvXmlNameEnd MaskOf(std::size_t Size)
{
    const auto Missing = sizeof(TKvXmlNameEnd) - std::min(Size, sizeof(TKvXmlNameEnd));
    return Missing == sizeof(TKvXmlNameEnd) ? 0 : ~TKvXmlNameEnd{0} << 8 * Missing;
}

} // namespace

bool CutClassicAttributes(std::string_view Tag, TKvXmlAttributes& Attributes)
{
    const char* const First = Tag.data();
    const char* const End = First + Tag.size();
    TKvXmlAttribute* Open = nullptr;                // waits for the next quote
    for (const char* Quote = First; (Quote = QuoteOrLineBreak.FindIn(Quote, End)) != End; ++Quote) {
        if (*Quote != '"') {
            Attributes.clear();
            return false;
        }
        if (Open) {
            Open->Value = {Open->Last + 2, static_cast<std::size_t>(Quote - Open->Last) - 2};
            Open->Closed = true;
            Open = nullptr;
        }
        if (Quote > First && Quote[-1] == '=')
            Open = &AddAttribute(Attributes, First, First, Quote - 1);
    }
    return true;
}

TKvXmlNameEnd NameEndOf(std::string_view Name)
{
    TKvXmlNameEnd End = 0;
    for (const char Char : Name)
        End = End >> 8 | static_cast<TKvXmlNameEnd>(static_cast<unsigned char>(Char)) << 56;
    return End | NameEndLowerCase;
}

TKvXmlColumn::TKvXmlColumn(std::string_view TheName, bool IsWhole)
    : Name(UpperCase(TheName)),
      Whole(IsWhole),
      NameEnd(NameEndOf(Name)),
      NameEndMask(MaskOf(Name.size()))
{
}

bool TKvXmlColumn::Names(const TKvXmlAttribute& Attribute) const
{
    const auto Size = static_cast<std::ptrdiff_t>(Name.size());
    if (Attribute.Last - Attribute.First < Size)
        return false;
    const char* Char = Attribute.Last;
    for (auto Expected = Name.rbegin(); Expected != Name.rend(); ++Expected)
        if (Upper(*--Char) != *Expected)
            return false;
    return !Whole || Char == Attribute.First || IsBlank(Char[-1]);
}

const TKvXmlAttribute* TKvXmlColumn::FindIn(const TKvXmlAttributes& Attributes) const
{
    for (const auto& Attribute : Attributes)
        if (((Attribute.NameEnd ^ NameEnd) & NameEndMask) == 0 && Names(Attribute))
            return &Attribute;
    return nullptr;
}

} // namespace kv
