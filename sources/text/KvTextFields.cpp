#include "KvTextFields.h"

#include "KvTextQualifier.h"

namespace kv {

TKvTextFields::TKvTextFields(char TheDelimiter, char TheQualifier, bool Doubled)
    : Delimiter(TheDelimiter),
      Qualifier(TheQualifier),
      DoubledQualifiers(Doubled),
      Stops(std::string{TheDelimiter, TheQualifier == '\0' ? TheDelimiter : TheQualifier})
{
}

void TKvTextFields::Split(std::string_view TheLine)
{
    Line = TheLine;
    Fields.clear();
    if (Line.empty())
        return;
    if (DoubledQualifiers)
        SplitByValues();
    else
        SplitByParity();
}

void TKvTextFields::SplitByParity()
{
    const char* const Last = End();
    const char* First = Begin();
    bool Quoted = false;
    for (const char* P = First;; ++P) {
        P = Quoted ? FindChar(P, Last, Qualifier) : Stops.FindIn(P, Last);
        if (P == Last)
            break;
        if (IsQualifier(*P))
            Quoted = !Quoted;
        if (*P == Delimiter && !Quoted && P + 1 != Last) {
            AddTrimmed(First, P);
            First = P + 1;
        }
    }
    AddTrimmed(First, Last);                        // with the delimiter that ends the line, quoted or not ...
    if (Last[-1] == Delimiter)
        Fields.push_back({Line.size(), Line.size() + 1, false}); // ... and the empty value after it
}

/// The value between two delimiters, which stand before First and at Last.
void TKvTextFields::AddTrimmed(const char* First, const char* Last)
{
    // Positions are those of programs that count from 1 and look at the characters at both bounds
    // whether or not the value has any: an empty one begins with the delimiter after it.
    const bool CutsFirst = IsQualifier(*First) || *First == Delimiter;
    const bool CutsLast = Last != Begin() && IsQualifier(Last[-1]);
    Add(First + CutsFirst, Last - CutsLast, false);
}

void TKvTextFields::SplitByValues()
{
    const char* const Last = End();
    for (const char* P = Begin();; ++P) {
        if (P != Last && IsQualifier(*P)) {
            P = AddQualified(P);
        }
        else {
            const char* const First = P;
            P = FindChar(P, Last, Delimiter);
            Add(First, P, false);
        }
        if (P == Last)
            return;
    }
}

/// Adds the value that the qualifier at `Open` opens; gives the delimiter after it.
const char* TKvTextFields::AddQualified(const char* Open)
{
    const char* const Close = FindClosingQualifier(Open, End());
    if (Close == End()) {
        Add(Open, Close, true);
        return Close;
    }
    const char* const Next = FindChar(Close + 1, End(), Delimiter);
    const bool HoldsQualifiers = FindChar(Open + 1, Close, Qualifier) != Close;
    if (HoldsQualifiers || Next != Close + 1)
        Add(Open, Next, true);
    else
        Add(Open + 1, Close, false);
    return Next;
}

void TKvTextFields::Add(const char* First, const char* Last, bool Rewritten)
{
    Fields.push_back(
        {static_cast<std::size_t>(First - Begin()), static_cast<std::size_t>(Last - Begin()), Rewritten});
}

std::string_view TKvTextFields::Value(std::size_t Index)
{
    const auto& Field = Fields[Index];
    if (Field.Start >= Field.Stop)
        return {};
    return Field.Rewritten ? WithoutQualifiers(Index) : Line.substr(Field.Start, Field.Stop - Field.Start);
}

/// A qualified value that holds doubled qualifiers, or text after the closing one.
std::string_view TKvTextFields::WithoutQualifiers(std::size_t Index)
{
    if (Texts.size() < Fields.size())               // once a line: short texts move when the list grows
        Texts.resize(Fields.size());
    auto& Text = Texts[Index];
    Text.clear();
    const char* const Last = Begin() + Fields[Index].Stop;
    const char* First = Begin() + Fields[Index].Start + 1;
    const char* P = FindChar(First, Last, Qualifier);
    while (Last - P >= 2 && P[1] == Qualifier) {
        Text.append(First, P + 1);
        First = P + 2;
        P = FindChar(First, Last, Qualifier);
    }
    Text.append(First, P);
    if (P != Last)
        Text.append(P + 1, Last);
    return Text;
}

} // namespace kv
