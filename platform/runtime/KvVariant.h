// KvVariant - the tagged value in which everything travels between source, engine and dataset.
//
// 32 bytes; up to 30 bytes of text stand in the value itself, longer text on the heap, in storage
// that a later text of the same variant uses again. Moving copies the 32 bytes.
#pragma once

#include <cassert>
#include <compare>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <utility>

#include "KvText.h"

namespace kv {

/// What a variant holds.
enum TVariantKind : std::uint8_t {
    vkEmpty,                                        ///< Never set.
    vkNull,                                         ///< Set to "no value".
    vkInteger,                                      ///< 64-bit signed.
    vkDouble,
    vkCurrency,                                     ///< TCurrency.
    vkDateTime,                                     ///< TDateTime.
    vkBoolean,
    vkString,                                       ///< 8-bit text, any bytes.
    vkArray                                         ///< One-dimensional array of variants.
};

/// An exact amount with four decimals, counted in ten-thousandths.
struct TCurrency
{
    static constexpr std::int64_t Scale = 10000;

    std::int64_t Scaled = 0;

    /// The nearest amount. Raises EConvertError when the range is left.
    static TCurrency FromDouble(double Value);
    double ToDouble() const { return static_cast<double>(Scaled) / static_cast<double>(Scale); }

    auto operator<=>(const TCurrency&) const = default;
};

/// A date with time: days since 30 December 1899, the time of day as fraction.
/// Before that day the fraction still counts forward from midnight: -1.25 is 29 December, 6:00.
struct TDateTime
{
    double Days = 0;

    auto operator<=>(const TDateTime&) const = default;
};

/// Tells "no value" from every other argument: `TVariant V = Null;`.
struct TNull
{
};
inline constexpr TNull Null{};

class TVariantArray;

class TVariant
{
public:
    static constexpr std::size_t ShortTextMax = 30; ///< Longest text, in bytes, kept without the heap.

    TVariant() noexcept : FKind(vkEmpty), FShortSize(0) {}
    TVariant(TNull) noexcept : FKind(vkNull), FShortSize(0) {}
    template <std::same_as<bool> T>                 // not what merely converts to bool, as pointers do
    TVariant(T Value) noexcept : TVariant(vkBoolean, static_cast<std::int64_t>(Value)) {}
    template <std::integral T>
        requires(!std::same_as<T, bool> && !std::same_as<T, char>)
    TVariant(T Value) noexcept : TVariant(vkInteger, static_cast<std::int64_t>(Value)) {}
    template <std::floating_point T>
    TVariant(T Value) noexcept : TVariant(vkDouble, static_cast<double>(Value)) {}
    TVariant(TCurrency Value) noexcept : TVariant(vkCurrency, Value.Scaled) {}
    TVariant(TDateTime Value) noexcept : TVariant(vkDateTime, Value.Days) {}
    TVariant(std::string_view Text) : TVariant() { SetText(Text); }
    TVariant(const std::string& Text) : TVariant(std::string_view(Text)) {}
    TVariant(const char* Text) : TVariant(std::string_view(Text)) {}

    /// A text that the giver keeps, for handing on without a copy: valid as long as its characters are.
    /// Copying the variant makes a text of its own; moving it keeps the loan.
    static TVariant Borrow(std::string_view Text) noexcept
    {
        // Member by member: copying a TLongText that was just made would read its bytes wider than they
        // were written, which processors answer with a stall.
        TVariant Result;
        const std::size_t NoCapacity = 0;
        Result.StoreAt(offsetof(TLongText, Data), Text.data());
        Result.StoreAt(offsetof(TLongText, Size), Text.size());
        Result.StoreAt(offsetof(TLongText, Capacity), NoCapacity);
        Result.FKind = vkString;
        Result.FShortSize = LoanMark;
        return Result;
    }

    /// Makes a loan a text of its own.
    void Own()
    {
        if (FShortSize == LoanMark)
            SetText(Text());
    }

    /// An array with the bounds Low..High, its elements empty. An empty array has High = Low - 1.
    static TVariant Array(int Low, int High);

    TVariant(const TVariant& Other) : TVariant() { *this = Other; }
    TVariant(TVariant&& Other) noexcept { TakeFrom(Other); }
    TVariant& operator=(const TVariant& Other)
    {
        if (OwnsMemory() || !Other.IsWhole())
            Assign(Other);
        else if (this != &Other)
            CopyBytes(Other);
        return *this;
    }
    TVariant& operator=(TVariant&& Other) noexcept
    {
        if (this == &Other)
            return *this;
        if (OwnsMemory()) {
            TVariant Old;                           // dies last: Other may be an element of this array
            Old.TakeFrom(*this);
            TakeFrom(Other);
        } else {
            TakeFrom(Other);
        }
        return *this;
    }
    ~TVariant() { Release(); }

    TVariantKind Kind() const noexcept { return FKind; }
    bool IsEmpty() const noexcept { return FKind == vkEmpty; }
    bool IsNull() const noexcept { return FKind == vkNull; }
    bool IsString() const noexcept { return FKind == vkString; }
    bool IsArray() const noexcept { return FKind == vkArray; }
    bool HasValue() const noexcept { return FKind > vkNull; }

    // The stored value, for the kind that Kind() tells; asking for another kind is a programming error.
    std::int64_t Integer() const { return Stored<std::int64_t>(vkInteger); }
    double Double() const { return Stored<double>(vkDouble); }
    TCurrency Currency() const { return {Stored<std::int64_t>(vkCurrency)}; }
    TDateTime DateTime() const { return {Stored<double>(vkDateTime)}; }
    bool Boolean() const { return Stored<std::int64_t>(vkBoolean) != 0; }

    /// The characters of a string, none for any other kind. Valid until this variant changes, moves or dies.
    std::string_view Text() const noexcept
    {
        if (FShortSize <= ShortTextMax)
            return {Short(), FShortSize};
        const auto& Long = LongText();
        return {Long.Data, Long.Size};
    }

    /// Becomes a string with these characters, which may be its own; storage on the heap is used again.
    void SetText(std::string_view Text)
    {
        if (Text.size() > ShortTextMax || OwnsMemory())
            SetLongText(Text);
        else
            SetShortText(Text);
    }

    /// The text form of any value: digits, the process's separators and short date format,
    /// "True" and "False", nothing for empty and null. Raises EConvertError for an array.
    std::string ToText() const;

    /// True when the text form holds nothing but blanks (characters up to 32).
    bool IsBlank() const noexcept
    {
        return FKind == vkString ? kv::IsBlank(Text()) : FKind <= vkNull;
    }

    // Arrays. An index outside the bounds raises EConvertError "Variant array index out of bounds".
    int LowBound() const;
    int HighBound() const;
    TVariant& operator[](int Index);
    const TVariant& operator[](int Index) const;

    /// Equality of values: numbers compare as numbers whatever their kind (integer, double, currency),
    /// texts by their bytes, null equals null and empty equals empty, arrays by bounds and elements.
    /// Kinds that have no common form (a text and a number, a date and a number) are not equal.
    friend bool operator==(const TVariant& A, const TVariant& B);

private:
    struct TLongText
    {
        const char* Data;
        std::size_t Size;
        std::size_t Capacity;                       // bytes at Data; 0 for a loan
    };
    // FShortSize of a text that stands elsewhere:
    static constexpr std::uint8_t LoanMark = 254;   // in storage of its giver
    static constexpr std::uint8_t LongMark = 255;   // in storage of its own

    template <class T>
    TVariant(TVariantKind Kind, T Value) noexcept : FKind(Kind), FShortSize(0)
    {
        Store(Value);
    }
    template <class T> void StoreAt(std::size_t Offset, const T& Value) noexcept
    {
        std::memcpy(FBytes + Offset, &Value, sizeof Value);
    }
    template <class T> void Store(const T& Value) noexcept { StoreAt(0, Value); }
    template <class T> T Load() const noexcept
    {
        T Value;
        std::memcpy(&Value, FBytes, sizeof Value);
        return Value;
    }
    template <class T> T Stored([[maybe_unused]] TVariantKind Expected) const
    {
        assert(FKind == Expected);
        return Load<T>();
    }
    TLongText LongText() const noexcept { return Load<TLongText>(); }
    const char* Short() const noexcept { return reinterpret_cast<const char*>(FBytes); }
    /// True when the 32 bytes are all that there is, and a copy of them is a copy of the value.
    bool IsWhole() const noexcept { return FKind != vkArray && FShortSize <= ShortTextMax; }
    bool OwnsMemory() const noexcept { return FKind == vkArray || FShortSize == LongMark; }
    void CopyBytes(const TVariant& Other) noexcept
    {
        std::memcpy(static_cast<void*>(this), static_cast<const void*>(&Other), sizeof *this);
    }
    void TakeFrom(TVariant& Other) noexcept
    {
        CopyBytes(Other);
        Other.FKind = vkEmpty;
        Other.FShortSize = 0;
    }
    void Release() noexcept
    {
        if (OwnsMemory())
            Free();
    }
    static void CopyChars(void* Target, std::string_view Text) noexcept
    {
        if (!Text.empty())                          // data() of an empty view may be null
            std::memmove(Target, Text.data(), Text.size());
    }
    void SetShortText(std::string_view Text) noexcept
    {
        CopyChars(FBytes, Text);
        FKind = vkString;
        FShortSize = static_cast<std::uint8_t>(Text.size());
    }
    void SetLongText(std::string_view Text);
    void Assign(const TVariant& Other);
    void Free() noexcept;
    const TVariantArray& Elements() const;

    alignas(8) std::byte FBytes[ShortTextMax];      // value, short text, TLongText or TVariantArray*
    TVariantKind FKind;
    std::uint8_t FShortSize;
};

static_assert(sizeof(TVariant) == 32);

} // namespace kv
