#include "KvDisplayText.h"

#include <cstddef>

#include "KvCodePage.h"
#include "KvUtf8.h"

namespace kv {

std::string ToDisplay(std::string_view Text)
{
    if (IsValidUtf8(Text))
        return std::string(Text);
    std::string Buffer;
    return std::string(AnsiToUtf8(Text, Buffer));
}

std::string ToDisplay(std::string_view Text, bool IsMsDos)
{
    return IsMsDos ? ToDisplay(OemToAnsi(Text)) : ToDisplay(Text);
}

std::string FromDisplay(std::string_view Text)
{
    return IsValidUtf8(Text) ? Utf8ToAnsi(Text) : std::string(Text);
}

std::string ReplaceAll(std::string Text, std::string_view From, std::string_view To)
{
    for (std::size_t Pos = 0; (Pos = Text.find(From, Pos)) != Text.npos; Pos += To.size())
        Text.replace(Pos, From.size(), To);
    return Text;
}

} // namespace kv
