// KvXmlAttributes - the attributes of one tag, and which of them a column means.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

namespace kv {

/// The last eight characters of a name, their case gone; 0 stands where there are none. Names that differ
/// there differ.
using TKvXmlNameEnd = std::uint64_t;
inline constexpr TKvXmlNameEnd NameEndLowerCase = 0x2020202020202020;
static_assert(std::endian::native == std::endian::little); // the last character is the highest byte
TKvXmlNameEnd NameEndOf(std::string_view Name);

/// An attribute as it stands in its tag.
struct TKvXmlAttribute
{
    const char* First;                              ///< As far as a name may reach to the left.
    const char* Last;                               ///< Behind the name.
    std::string_view Value;                         ///< Between the quotes.
    TKvXmlNameEnd NameEnd;                          ///< Set by AddAttribute.
    bool Closed;                                    ///< False when no quote ends the value.
};
using TKvXmlAttributes = std::vector<TKvXmlAttribute>;

/// Adds an attribute whose name ends at `Last` and reaches back to `First` at most, in a text that begins at
/// `TextFirst`; its value is to follow.
inline TKvXmlAttribute& AddAttribute(TKvXmlAttributes& Attributes, const char* TextFirst, const char* First,
                                     const char* Last)
{
    constexpr std::ptrdiff_t EndSize = sizeof(TKvXmlNameEnd);
    auto& Attribute = Attributes.emplace_back();    // member by member: a copy would wait for its parts
    Attribute.First = First;
    Attribute.Last = Last;
    if (Last - TextFirst >= EndSize) {              // what stands before a short name is masked out later
        std::memcpy(&Attribute.NameEnd, Last - EndSize, sizeof Attribute.NameEnd);
        Attribute.NameEnd |= NameEndLowerCase;
    }
    else {
        Attribute.NameEnd = NameEndOf({First, static_cast<std::size_t>(Last - First)});
    }
    Attribute.Closed = false;
    return Attribute;
}

/// Adds each ="..." of a tag, wherever it stands: inside another value too. A name may be any text in front
/// of it. True when the tag holds no line break; with one nothing is added.
bool CutClassicAttributes(std::string_view Tag, TKvXmlAttributes& Attributes);

/// A column of the records: the name of an attribute.
class TKvXmlColumn
{
public:
    /// With `Whole` an attribute is called just so; without it its name, or what stands before it, ends
    /// so. Upper and lower case are the same.
    TKvXmlColumn(std::string_view Name, bool Whole);

    /// The first attribute that the column means, or none.
    const TKvXmlAttribute* FindIn(const TKvXmlAttributes& Attributes) const;

private:
    bool Names(const TKvXmlAttribute& Attribute) const;

    std::string Name;                               // upper-cased
    bool Whole;
    TKvXmlNameEnd NameEnd;
    TKvXmlNameEnd NameEndMask;                      // the characters of NameEnd that there are
};

} // namespace kv
