// KvTextReference - lines and values cut one character after the other, positions from 1, exactly as
// the rules are told. Slow and plain: what the fast cutters are compared with.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kv::reference {

using TRow = std::vector<std::string>;

/// Start and stop of a value in its line, from 1, both inclusive.
using TBounds = std::pair<std::size_t, std::size_t>;

/// A text with characters from 1; asking for one that it does not have gives none.
class TText
{
public:
    explicit TText(std::string_view Source) : Text(Source) {}
    std::size_t Size() const { return Text.size(); }
    bool Has(std::size_t Position, char Value) const
    {
        return Position >= 1 && Position <= Text.size() && Text[Position - 1] == Value;
    }
    bool HasAny(std::size_t Position, std::string_view Values) const
    {
        return Position >= 1 && Position <= Text.size() && Values.find(Text[Position - 1]) != Values.npos;
    }
    std::string Copy(std::size_t From, std::size_t To) const
    {
        return std::string(Text.substr(From - 1, To - From));
    }

private:
    std::string_view Text;
};

/// Lines where every qualifier switches.
inline TRow Lines(std::string_view Buffer, std::string_view Separator, std::string_view Qualifier)
{
    const TText Text(Buffer);
    const auto IsQualifier = [&](std::size_t Position) {
        return Qualifier.size() == 1 && Text.Has(Position, Qualifier[0]);
    };
    TRow Result;
    for (std::size_t Position = 1; Position <= Text.Size();) {
        const auto Start = Position;
        bool Quoted = IsQualifier(Position);
        while (Position <= Text.Size() && !(Text.HasAny(Position, Separator) && !Quoted)) {
            ++Position;
            if (IsQualifier(Position))
                Quoted = !Quoted;
        }
        Result.push_back(Text.Copy(Start, Position));
        const auto End = Position;
        for (const char Expected : Separator) {
            if (!Text.Has(Position, Expected) || Quoted)
                break;
            ++Position;
            if (IsQualifier(Position))
                Quoted = !Quoted;
        }
        if (Position == End)
            ++Position;
    }
    return Result;
}

/// Values where every qualifier switches. Qualifier #0: none.
inline std::vector<TBounds> Fields(std::string_view Source, char Delimiter, char Qualifier)
{
    const TText Line(Source);
    const auto IsQualifier = [&](std::size_t Position) {
        return Qualifier != '\0' && Line.Has(Position, Qualifier);
    };
    std::vector<TBounds> Result;
    std::size_t FieldStart = 1;
    bool Quoted = false;
    for (std::size_t I = 1; I <= Line.Size(); ++I) {
        if (IsQualifier(I))
            Quoted = !Quoted;
        if (!(Line.Has(I, Delimiter) && !Quoted) && I != Line.Size())
            continue;
        const auto FieldEnd = I < Line.Size() ? I - 1 : I;
        const bool SkipsFirst = IsQualifier(FieldStart) || Line.Has(FieldStart, Delimiter);
        Result.emplace_back(SkipsFirst ? FieldStart + 1 : FieldStart, IsQualifier(FieldEnd) ? FieldEnd - 1
                                                                                            : FieldEnd);
        FieldStart = FieldEnd + 1;
        if (Line.Has(FieldStart, Delimiter))
            ++FieldStart;
    }
    if (Line.Has(Line.Size(), Delimiter))
        Result.emplace_back(Line.Size() + 1, Line.Size() + 1);
    return Result;
}

/// A whole text by RFC 4180: one row a line, an empty line without values.
struct TRecords
{
    std::vector<TRow> Rows;
    std::size_t UnclosedLine = 0;                   // where a value begins that is never closed; 0: none
};

inline TRecords Records(std::string_view Text, std::string_view Separator, char Delimiter, char Qualifier)
{
    enum { ValueStart, Plain, Qualified, Closed } State = ValueStart;
    TRecords Result;
    std::string Value;
    bool AtLineStart = true;
    for (std::size_t I = 0; I < Text.size(); ++I) {
        if (AtLineStart)
            Result.Rows.emplace_back();
        const char Char = Text[I];
        const bool StartsLine = AtLineStart;
        AtLineStart = false;
        if (State == Qualified) {
            if (Char == Qualifier)
                State = Closed;
            else
                Value += Char;
        }
        else if (State == Closed && Char == Qualifier) {
            Value += Char;
            State = Qualified;
        }
        else if (State == ValueStart && Qualifier != '\0' && Char == Qualifier) {
            State = Qualified;
        }
        else if (Separator.find(Char) != Separator.npos) {
            if (!StartsLine)
                Result.Rows.back().push_back(Value);
            for (std::size_t K = 1; Char == Separator[0] && K < Separator.size(); ++K, ++I)
                if (I + 1 == Text.size() || Text[I + 1] != Separator[K])
                    break;
            Value.clear();
            State = ValueStart;
            AtLineStart = true;
        }
        else if (Char == Delimiter) {
            Result.Rows.back().push_back(Value);
            Value.clear();
            State = ValueStart;
        }
        else {
            Value += Char;
            State = Plain;
        }
    }
    if (!AtLineStart)
        Result.Rows.back().push_back(Value);
    if (State == Qualified)
        Result.UnclosedLine = Result.Rows.size();
    return Result;
}

} // namespace kv::reference
