// KvXmlEntities - texts that a document type declares by name.
//
//   <!ENTITY name "text">       the text may refer to other entities; those in other files are not read
#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <string_view>

namespace kv {

/// The entities of one file.
class TKvXmlEntities
{
public:
    /// Steps of a value: the bytes that its entities make, and one for each name. Entities that refer to
    /// each other ten times over make gigabytes of a few lines.
    static constexpr std::size_t MaxSteps = 65536;
    static constexpr std::size_t MaxDepth = 16;     ///< Entities inside each other.
    static constexpr std::size_t MaxName = 128;     ///< Longer names are none.

    /// Keeps views of both. The first declaration of a name counts.
    void Declare(std::string_view Name, std::string_view Text) { Texts.try_emplace(Name, Text); }

    bool IsEmpty() const { return Texts.empty(); }
    /// Appends to `Out` the text of the reference that `Text` begins with, and answers the length of the
    /// reference; 0 when there is no such entity. Takes what it costs off `StepsLeft`, which a value begins
    /// with MaxSteps of. Raises EFormatError past the limits.
    std::size_t Decode(std::string_view Text, std::size_t& StepsLeft, std::string& Out) const
    {
        return Expand(Text, 0, StepsLeft, Out);
    }

private:
    std::size_t Expand(std::string_view Reference, std::size_t Depth, std::size_t& StepsLeft,
                       std::string& Out) const;

    std::map<std::string_view, std::string_view> Texts;
};

} // namespace kv
