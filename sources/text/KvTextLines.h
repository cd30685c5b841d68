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
    bool WholeSeparator = false;                    ///< Only all of the separator, in its order, ends a line.
};

/// The lines of a text, first to last, once.
class TKvTextLines
{
public:
    /// The rules are copied. The first text is given by GoOnIn.
    explicit TKvTextLines(const TKvTextLineRules& Rules);
    /// Of a text that is all in memory, which must outlive the object and the lines.
    TKvTextLines(std::string_view Text, const TKvTextLineRules& Rules);

    /// Goes on in `Text`, which begins with Rest() and must outlive the lines; `IsLast`: nothing follows it.
    void GoOnIn(std::string_view Text, bool IsLast);

    /// Moves to the next line. False past the last one, and on every later call. What follows the last
    /// line end is a line when it is not empty. False too, with nothing changed, when the line may reach
    /// beyond a text that is not the last.
    bool Next();

    std::string_view Line() const { return FLine; } ///< The current line without its end.
    std::size_t Number() const { return FNumber; }  ///< Of the current line, from 1; 0 before the first.
    /// The same for programs that know no qualifiers: line ends that were hidden count too.
    std::size_t PlainNumber() const { return FPlainNumber; }
    /// The text from the line after the current one on.
    std::string_view Rest() const { return {Pos, static_cast<std::size_t>(End - Pos)}; }
    /// Bytes of the text up to the line after the current one.
    std::size_t Offset() const { return static_cast<std::size_t>(Pos - Begin); }
    /// True when the current line, then the last, ends in a value that no qualifier closes. Only with
    /// DoubledQualifiers.
    bool Unclosed() const { return FUnclosed; }

private:
    const char* FindStop(const char* First) const;
    const char* FindLineEnd();
    const char* FindLineEndOutsideValues();
    const char* FindClosing(const char* Open);
    const char* SkipSeparator(const char* LineEnd) const;
    bool EndsLine(const char* Stop) const;
    bool IsHiddenEnd(const char* Stop) const;
    bool IsQualifier(char Value) const { return HasQualifier && Value == Qualifier; }

    const std::string Separator;
    const bool HasQualifier;
    const char Qualifier;
    const bool QualifierEndsLines;
    const bool DoubledQualifiers;
    const char Delimiter;
    const bool WholeSeparator;
    const char LineBreak;                           // the last character of a separator
    const std::string StopChars;                    // separators and qualifier
    const TKvByteSet Stops;                         // the same, as long as they fit

    const char* Begin = nullptr;
    const char* End = nullptr;
    const char* Pos = nullptr;                      // where the next line begins
    bool IsLast = true;
    std::string_view FLine;
    std::size_t FNumber = 0;
    std::size_t FPlainNumber = 0;
    std::size_t Hidden = 0;                         // line ends in the current line
    bool FUnclosed = false;
};

} // namespace kv
