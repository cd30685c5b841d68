#include "KvTextLines.h"

#include <algorithm>

#include "KvTextQualifier.h"

namespace kv {

namespace {

std::string DistinctChars(std::string_view Separator, std::string_view Qualifier)
{
    std::string Result;
    for (const auto Part : {Separator, Qualifier})
        for (const char Char : Part)
            if (Result.find(Char) == Result.npos)
                Result += Char;
    return Result;
}

std::string_view OneChar(std::string_view Text)
{
    return Text.size() == 1 ? Text : std::string_view();
}

} // namespace

TKvTextLines::TKvTextLines(std::string_view Text, const TKvTextLineRules& Rules)
    : Separator(Rules.Separator),
      HasQualifier(Rules.Qualifier.size() == 1),
      Qualifier(HasQualifier ? Rules.Qualifier[0] : '\0'),
      DoubledQualifiers(Rules.DoubledQualifiers && HasQualifier),
      Delimiter(Rules.Delimiter),
      StopChars(DistinctChars(Rules.Separator, OneChar(Rules.Qualifier))),
      Stops(StopChars.empty() ? std::string_view("\n") : StopChars),
      Begin(Text.data()),
      End(Begin + Text.size()),
      Pos(Begin)
{
}

bool TKvTextLines::Next()
{
    if (Pos == End)
        return false;
    const char* const LineEnd = DoubledQualifiers ? FindLineEndOutsideValues() : FindLineEnd();
    FLine = {Pos, static_cast<std::size_t>(LineEnd - Pos)};
    Pos = SkipSeparator(LineEnd);
    ++FNumber;
    return true;
}

const char* TKvTextLines::FindStop(const char* First) const
{
    if (!StopChars.empty() && StopChars.size() <= TKvByteSet::MaxSize)
        return Stops.FindIn(First, End);
    return std::find_first_of(First, End, StopChars.begin(), StopChars.end());
}

const char* TKvTextLines::FindLineEnd() const
{
    bool Quoted = false;
    for (const char* P = Pos;; ++P) {
        P = Quoted ? FindChar(P, End, Qualifier) : FindStop(P);
        if (P == End)
            return End;
        if (IsQualifier(*P))
            Quoted = !Quoted;
        if (!Quoted && IsSeparator(*P))
            return P;
    }
}

const char* TKvTextLines::FindLineEndOutsideValues()
{
    for (const char* P = Pos;; ++P) {
        P = FindStop(P);
        if (P == End)
            return End;
        // No delimiter outside a qualified value is text, so the character before tells all.
        if (IsQualifier(*P) && (P == Pos || P[-1] == Delimiter)) {
            P = FindClosingQualifier(P, End);
            FUnclosed = P == End;
            if (FUnclosed)
                return End;
        }
        else if (IsSeparator(*P))
            return P;
    }
}

const char* TKvTextLines::SkipSeparator(const char* LineEnd) const
{
    if (LineEnd == End)
        return End;
    // The character that ended the line goes in any case: another one than the first of the separator
    // would match nothing and hold the scan where it is.
    const char* P = LineEnd;
    bool Quoted = false;
    for (const char Expected : Separator) {
        if (P == End || Quoted || *P != Expected)
            break;
        ++P;
        Quoted = P != End && IsQualifier(*P) && !DoubledQualifiers;
    }
    return std::max(P, LineEnd + 1);
}

} // namespace kv
