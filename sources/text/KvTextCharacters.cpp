#include "KvTextCharacters.h"

#include <algorithm>

#include "KvUtf8.h"
#include "Kvi2txtLine.h"

namespace kv {

void TKvTextCharacters::Split(std::string_view TheLine)
{
    Line = TheLine;
    AsciiCount = AsciiSize(Line);
    Starts.clear();
    for (auto Pos = AsciiCount; Pos < Line.size();) {
        Starts.push_back(static_cast<std::uint32_t>(Pos));
        Pos += std::max<std::size_t>(Utf8SequenceSize(Line.substr(Pos)), 1);
    }
}

std::string_view TKvTextCharacters::Slice(std::size_t First, std::size_t Last) const
{
    const auto ByteOf = [this](std::size_t Index) { // of a character, or the end of the line
        if (Index < AsciiCount)
            return Index;
        return Index - AsciiCount < Starts.size() ? Starts[Index - AsciiCount] : Line.size();
    };
    return First > Last ? std::string_view() : kv::Slice(Line, ByteOf(First - 1) + 1, ByteOf(Last));
}

} // namespace kv
