// KvXmlNames - the names of all attributes of many records, in the order in which they come first.
#pragma once

#include <cstddef>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "KvXmlAttributes.h"

namespace kv {

class TKvXmlNames
{
public:
    /// Adds those of a record. Most records have the attributes of the one before: then each costs a
    /// comparison.
    void Add(const TKvXmlAttributes& Record);

    /// Views of the text that the records stand in.
    const std::vector<std::string_view>& Names() const { return FNames; }

private:
    std::size_t IndexOf(std::string_view Name);

    std::vector<std::string_view> FNames;
    std::unordered_map<std::string_view, std::size_t> Indices;
};

} // namespace kv
