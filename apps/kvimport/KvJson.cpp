#include "KvJson.h"

#include "KvDisplayText.h"
#include "KvTerminalText.h"

namespace kv {

TJson TextOrNull(const std::string& Text)
{
    return Text.empty() ? TJson() : TJson(ToDisplay(Text));
}

TJson TextList(const std::vector<std::string>& Texts)
{
    auto List = TJson::array();
    for (const auto& Text : Texts)
        List.push_back(ToDisplay(Text));
    return List;
}

void PrintJsonLine(std::ostream& Out, const TJson& Object)
{
    Out << VisibleJson(Object.dump(-1, ' ', false, TJson::error_handler_t::replace)) << '\n';
}

} // namespace kv
