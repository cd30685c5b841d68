// KvUtf8 - UTF-8: what is valid, and how its characters are written.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace kv {

/// The size of the longest front of `Text` that is ASCII.
std::size_t AsciiSize(std::string_view Text);
inline bool IsAscii(std::string_view Text) { return AsciiSize(Text) == Text.size(); }

bool IsValidUtf8(std::string_view Text);

/// The size of the longest front of `Text` that is valid.
std::size_t ValidUtf8Size(std::string_view Text);
/// The size of the well-formed sequence at the front of `Text`; 0 when there is none.
std::size_t Utf8SequenceSize(std::string_view Text);

/// `Point` is a number that Unicode gives to characters, no surrogate.
inline void AppendUtf8(std::string& Text, char32_t Point)
{
    const auto Put = [&Text](char32_t Byte) { Text += static_cast<char>(Byte); };
    const auto PutContinuation = [&](int Shift) { Put(0x80 | (Point >> Shift & 0x3F)); };
    if (Point < 0x80) {
        Put(Point);
    } else if (Point < 0x800) {
        Put(0xC0 | Point >> 6);
        PutContinuation(0);
    } else if (Point < 0x10000) {
        Put(0xE0 | Point >> 12);
        PutContinuation(6);
        PutContinuation(0);
    } else {
        Put(0xF0 | Point >> 18);
        PutContinuation(12);
        PutContinuation(6);
        PutContinuation(0);
    }
}

/// Appends the first 256 characters of Unicode, a byte each, to `Utf8`.
void AppendLatin1AsUtf8(std::string_view Text, std::string& Utf8);

} // namespace kv
