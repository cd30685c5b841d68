// KvBytes - bytes of a file, put together by a test; numbers low byte first.
#pragma once

#include <bit>
#include <cstdint>
#include <string>
#include <string_view>

namespace kv {

class TBytes
{
public:
    TBytes& U8(unsigned Value) { return Number(Value, 1); }
    TBytes& U16(unsigned Value) { return Number(Value, 2); }
    TBytes& U32(std::uint32_t Value) { return Number(Value, 4); }
    TBytes& F64(double Value) { return Number(std::bit_cast<std::uint64_t>(Value), 8); }
    TBytes& Text(std::string_view Value)
    {
        Bytes.append(Value);
        return *this;
    }
    /// UTF-16.
    TBytes& Text(std::u16string_view Value)
    {
        for (const char16_t Unit : Value)
            U16(Unit);
        return *this;
    }
    TBytes& Zeros(std::size_t Count)
    {
        Bytes.append(Count, '\0');
        return *this;
    }

    const std::string& Str() const { return Bytes; }
    operator const std::string&() const { return Bytes; }
    operator std::string_view() const { return Bytes; }

private:
    TBytes& Number(std::uint64_t Value, int Size)
    {
        for (; Size > 0; --Size, Value >>= 8)
            Bytes += static_cast<char>(Value & 0xFF);
        return *this;
    }

    std::string Bytes;
};

} // namespace kv
