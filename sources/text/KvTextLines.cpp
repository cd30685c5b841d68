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

/// The characters at which a line may end.
std::string_view FirstOf(const TKvTextLineRules& Rules)
{
    return Rules.WholeSeparator ? Rules.Separator.substr(0, 1) : Rules.Separator;
}

} // namespace

TKvTextLines::TKvTextLines(const TKvTextLineRules& Rules)
    : Separator(Rules.Separator),
      HasQualifier(Rules.Qualifier.size() == 1),
      Qualifier(HasQualifier ? Rules.Qualifier[0] : '\0'),
      QualifierEndsLines(HasQualifier && FirstOf(Rules).find(Qualifier) != std::string_view::npos),
      DoubledQualifiers(Rules.DoubledQualifiers && HasQualifier),
      Delimiter(Rules.Delimiter),
      WholeSeparator(Rules.WholeSeparator),
      LineBreak(Separator.empty() ? '\n' : Separator.back()),
      StopChars(DistinctChars(FirstOf(Rules), OneChar(Rules.Qualifier))),
      Stops(StopChars.empty() ? std::string_view("\n") : StopChars)
{
}

TKvTextLines::TKvTextLines(std::string_view Text, const TKvTextLineRules& Rules) : TKvTextLines(Rules)
{
    GoOnIn(Text, true);
}

void TKvTextLines::GoOnIn(std::string_view Text, bool Last)
{
    Begin = Pos = Text.data();
    End = Begin + Text.size();
    IsLast = Last;
}

bool TKvTextLines::Next()
{
    if (Pos == End)
        return false;
    const auto HiddenBefore = Hidden;
    Hidden = 0;
    FUnclosed = false;
    const char* const LineEnd = DoubledQualifiers ? FindLineEndOutsideValues() : FindLineEnd();
    const char* const Behind = SkipSeparator(LineEnd);
    if (Behind == End && !IsLast) {                 // its separator, too, may go on
        Hidden = HiddenBefore;
        FUnclosed = false;
        return false;
    }
    FLine = {Pos, static_cast<std::size_t>(LineEnd - Pos)};
    Pos = Behind;
    ++FNumber;
    FPlainNumber += 1 + HiddenBefore;
    return true;
}

const char* TKvTextLines::FindStop(const char* First) const
{
    if (!StopChars.empty() && StopChars.size() <= TKvByteSet::MaxSize)
        return Stops.FindIn(First, End);
    return std::find_first_of(First, End, StopChars.begin(), StopChars.end());
}

/// Of a separator or the qualifier.
bool TKvTextLines::EndsLine(const char* Stop) const
{
    if (WholeSeparator)
        return std::string_view(Stop, static_cast<std::size_t>(End - Stop)).starts_with(Separator);
    return QualifierEndsLines || !IsQualifier(*Stop);
}

/// Of a stop inside qualifiers. CR LF is one line end, and so are CR and LF alone.
bool TKvTextLines::IsHiddenEnd(const char* Stop) const
{
    if (WholeSeparator || IsQualifier(*Stop))
        return WholeSeparator && EndsLine(Stop);
    return *Stop == LineBreak || End - Stop < 2 || Stop[1] != LineBreak;
}

const char* TKvTextLines::FindLineEnd()
{
    bool Quoted = false;
    for (const char* P = Pos;; ++P) {
        P = FindStop(P);
        if (P == End)
            return End;
        if (IsQualifier(*P))
            Quoted = !Quoted;
        if (!Quoted && EndsLine(P))
            return P;
        Hidden += IsHiddenEnd(P);
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
            P = FindClosing(P);
            FUnclosed = P == End;
            if (FUnclosed)
                return End;
        }
        else if (EndsLine(P))
            return P;
    }
}

/// As FindClosingQualifier does, and counts the line ends up to there.
const char* TKvTextLines::FindClosing(const char* Open)
{
    for (const char* P = Open + 1;; ++P) {
        P = FindStop(P);
        if (P == End)
            return End;
        if (!IsQualifier(*P))
            Hidden += IsHiddenEnd(P);
        else if (End - P < 2 || P[1] != Qualifier)
            return P;
        else
            ++P;
    }
}

const char* TKvTextLines::SkipSeparator(const char* LineEnd) const
{
    if (LineEnd == End)
        return End;
    if (WholeSeparator)
        return LineEnd + Separator.size();
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
