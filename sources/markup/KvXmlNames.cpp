#include "KvXmlNames.h"

namespace kv {

void TKvXmlNames::Add(const TKvXmlAttributes& Record)
{
    std::size_t Next = 0;                           // behind the last one that was met
    for (const auto& Attribute : Record) {
        const std::string_view Name(Attribute.First,
                                    static_cast<std::size_t>(Attribute.Last - Attribute.First));
        Next = (Next < FNames.size() && FNames[Next] == Name ? Next : IndexOf(Name)) + 1;
    }
}

std::size_t TKvXmlNames::IndexOf(std::string_view Name)
{
    const auto [Found, IsNew] = Indices.try_emplace(Name, FNames.size());
    if (IsNew)
        FNames.push_back(Name);
    return Found->second;
}

} // namespace kv
