// KvTextLines - cuts the text of a file into lines.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "KvByteScan.h"

namespace kv {

/// What ends a line, and what hides a line end.
struct TKvTextLineRules
{
    /// Any of its characters ends a line. After that as much of it is skipped as follows in its order.
    std::string_view Separator = "\r\n";
    /// One character; of any other length: none.
    std::string_view Qualifier = {};
    /// False: a line end counts when the qualifiers before it in its line are even in number, wherever
    /// they stand. True: it counts outside values that begin with the qualifier (RFC 4180).
    bool DoubledQualifiers = false;
    char Delimiter = '\0';                          ///< Begins the next value; asked with DoubledQualifiers.
};

/// The lines of a text, first to last, once.
class TKvTextLines
{
public:
    /// Keeps a view of `Text`, which must outlive the object and the lines; the rules are copied.
    TKvTextLines(std::string_view Text, const TKvTextLineRules& Rules);

    /// Moves to the next line. False past the last one, and on every later call. What follows the last
    /// line end is a line when it is not empty.
    bool Next();

    std::string_view Line() const { return FLine; } ///< The current line without its end.
    std::size_t Number() const { return FNumber; }  ///< Of the current line, from 1; 0 before the first.
    /// Bytes of the text up to the line after the current one.
    std::size_t Offset() const { return static_cast<std::size_t>(Pos - Begin); }
    /// True when the current line, then the last, ends in a value that no qualifier closes. Only with
    /// DoubledQualifiers.
    bool Unclosed() const { return FUnclosed; }

private:
    const char* FindStop(const char* First) const;
    const char* FindLineEnd() const;
    const char* FindLineEndOutsideValues();
    const char* SkipSeparator(const char* LineEnd) const;
    bool IsSeparator(char Value) const { return Separator.find(Value) != Separator.npos; }
    bool IsQualifier(char Value) const { return HasQualifier && Value == Qualifier; }

    const std::string Separator;
    const bool HasQualifier;
    const char Qualifier;
    const bool DoubledQualifiers;
    const char Delimiter;
    const std::string StopChars;                    // separators and qualifier
    const TKvByteSet Stops;                         // the same, as long as they fit

    const char* const Begin;
    const char* const End;
    const char* Pos;                                // where the next line begins
    std::string_view FLine;
    std::size_t FNumber = 0;
    bool FUnclosed = false;
};

} // namespace kv
