// KvFuzz - what the fuzz targets of small conversions share: taking an input apart, and saying no.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string_view>

namespace kv {

/// Ends the program at a find, as a sanitizer would.
inline void Require(bool Holds)
{
    if (!Holds)
        std::abort();
}

/// Bytes of an input, taken from the front; zeros once it is used up.
class TFuzzInput
{
public:
    TFuzzInput(const std::uint8_t* Data, std::size_t Size)
        : Rest(reinterpret_cast<const char*>(Data), Size) {}

    template <class T> T Take()
    {
        T Value{};
        const auto Size = Rest.size() < sizeof Value ? Rest.size() : sizeof Value;
        if (Size != 0)
            std::memcpy(&Value, Rest.data(), Size);
        Rest.remove_prefix(Size);
        return Value;
    }
    /// One of the values, chosen by the next byte.
    template <class T, std::size_t N> const T& TakeOneOf(const T (&Values)[N])
    {
        return Values[Take<std::uint8_t>() % N];
    }
    std::string_view TakeRest() { return Rest; }

private:
    std::string_view Rest;
};

} // namespace kv
