// KvTextFields - cuts a delimited line into values.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kv {

/// Where the text of a value stands.
enum TKvTextPlace : std::uint8_t {
    tpInLine,
    tpQualified,                                    ///< In its line, but some qualifiers are no part of it.
    tpRewritten                                     ///< Among those that were written without them.
};

/// Where a value stands in its line: bytes [Start, Stop) from 0. An empty value may have Start past
/// Stop, and the one after a trailing delimiter has Stop one past the line.
struct TKvTextField
{
    std::uint32_t Start;
    std::uint32_t Stop;
    TKvTextPlace Place;

    friend bool operator==(const TKvTextField&, const TKvTextField&) = default;
};

/// The values of one line at a time. Nothing is allocated for a line like those before it.
class TKvTextFields
{
public:
    /// `Qualifier` #0: none.
    ///
    /// By default a delimiter counts when the qualifiers up to it are even in number, wherever they
    /// stand, and a value loses one qualifier at each end. With `DoubledQualifiers` only a value that
    /// begins with the qualifier is qualified, up to the next one that is not doubled (RFC 4180); what
    /// stands between that and the delimiter is kept as text of the value.
    TKvTextFields(char Delimiter, char Qualifier, bool DoubledQualifiers = false);

    static constexpr std::size_t MaxLineSize = 0xFFFFFFFE; ///< Of a line, so that positions fit.

    /// Keeps a view of `Line` until the next call. An empty line has no value.
    void Split(std::string_view Line);

    std::size_t Count() const { return FCount; }
    const TKvTextField& operator[](std::size_t Index) const { return Fields[Index]; }
    /// The text of value `Index` from 0, valid until the next Split. By default the last value of a line
    /// that ends in a delimiter still has that delimiter before the empty value that follows it.
    std::string_view Value(std::size_t Index)
    {
        const auto& Field = Fields[Index];
        if (Field.Place != tpInLine)
            return WithoutQualifiers(Fields[Index]);
        return Field.Start < Field.Stop ? Line.substr(Field.Start, Field.Stop - Field.Start)
                                        : std::string_view();
    }

private:
    void SplitByParity();
    void SplitByValues();
    const char* FindQualifier(const char* From) const;
    void AddTrimmed(const char* First, const char* Last);
    const char* AddQualified(const char* Open);
    void Add(const char* First, const char* Last, TKvTextPlace Place);
    std::string_view WithoutQualifiers(TKvTextField& Field);
    void Rewrite(const char* First, const char* Last);
    bool IsQualifier(char Value) const { return Qualifier != '\0' && Value == Qualifier; }
    const char* Begin() const { return Line.data(); }
    const char* End() const { return Line.data() + Line.size(); }

    const char Delimiter;
    const char Qualifier;
    const bool DoubledQualifiers;
    std::string_view Line;
    std::size_t FCount = 0;
    std::vector<TKvTextField> Fields;               // the first FCount; the rest waits for longer lines
    std::string Texts;                              // of rewritten values, with room for all
};

} // namespace kv
