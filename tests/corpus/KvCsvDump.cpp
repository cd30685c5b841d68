#include "KvCsvDump.h"

#include <fstream>
#include <iterator>
#include <string_view>

namespace kv {

namespace {

/// Takes a quoted text, without its quotes, off the front of `Rest`.
std::string TakeQuoted(std::string_view& Rest)
{
    std::string Text;
    for (Rest.remove_prefix(1); !Rest.empty(); Rest.remove_prefix(1)) {
        if (Rest[0] == '"') {
            Rest.remove_prefix(1);
            if (!Rest.starts_with('"'))
                break;
        }
        Text += Rest[0];
    }
    return Text;
}

TCsvValue TakeValue(std::string_view& Rest)
{
    TCsvValue Value;
    Value.IsQuoted = Rest.starts_with('"');
    if (Value.IsQuoted)
        Value.Text = TakeQuoted(Rest);
    const auto Plain = Rest.substr(0, Rest.find_first_of(",\r\n"));
    (Value.IsQuoted ? Value.Behind : Value.Text) = Plain;
    Rest.remove_prefix(Plain.size());
    return Value;
}

} // namespace

std::vector<std::vector<TCsvValue>> ReadCsvDump(const std::filesystem::path& Path)
{
    std::ifstream File(Path, std::ios::binary);
    const std::string Text(std::istreambuf_iterator<char>(File), {});
    std::vector<std::vector<TCsvValue>> Lines;
    for (std::string_view Rest = Text; !Rest.empty();) {
        auto& Line = Lines.emplace_back();
        Line.push_back(TakeValue(Rest));
        while (Rest.starts_with(',')) {
            Rest.remove_prefix(1);
            Line.push_back(TakeValue(Rest));
        }
        Rest.remove_prefix(Rest.starts_with("\r\n") ? 2 : Rest.empty() ? 0 : 1);
    }
    return Lines;
}

} // namespace kv
