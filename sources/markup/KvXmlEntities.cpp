#include "KvXmlEntities.h"

#include "KvCharacterReferences.h"
#include "KvException.h"

namespace kv {

namespace {

[[noreturn]] void RaiseTooLarge(std::string_view Name)
{
    throw EFormatError("The entity \"" + std::string(Name) + "\" expands to too much text");
}

} // namespace

std::size_t TKvXmlEntities::Expand(std::string_view Reference, std::size_t Depth, std::size_t& StepsLeft,
                                   std::string& Out) const
{
    const auto Last = Reference.substr(0, MaxName + 2).find(';');
    if (Last == Reference.npos)
        return 0;
    const auto Name = Reference.substr(1, Last - 1);
    const auto Found = Texts.find(Name);
    if (Found == Texts.end())
        return 0;
    auto Rest = Found->second;
    if (Depth == MaxDepth || StepsLeft <= Rest.size())
        RaiseTooLarge(Name);
    StepsLeft -= Rest.size() + 1;
    while (!Rest.empty()) {
        std::size_t Size = 0;
        if (Rest.front() == '&') {
            Size = DecodeReference(Rest, crXml, Out);
            Size = Size > 0 ? Size : Expand(Rest, Depth + 1, StepsLeft, Out);
        }
        if (Size == 0) {
            Size = 1;
            Out += Rest.front();
        }
        Rest.remove_prefix(Size);
    }
    return Last + 1;
}

} // namespace kv
