// KvTextCharacters - positions in a line that count characters instead of bytes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace kv {

/// The characters of one line of UTF-8 at a time. A byte that is no part of one counts as one.
class TKvTextCharacters
{
public:
    /// Keeps a view of `Line` until the next call.
    void Split(std::string_view Line);

    /// The text from character `First` to character `Last`, both from 1, as far as the line reaches.
    std::string_view Slice(std::size_t First, std::size_t Last) const;

private:
    std::string_view Line;
    std::vector<std::uint32_t> Starts;              // of characters behind the ASCII ones, from 0
    std::size_t AsciiCount = 0;                     // those that the line begins with
};

} // namespace kv
