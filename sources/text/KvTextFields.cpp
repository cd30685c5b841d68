#include "KvTextFields.h"

#include "KvTextQualifier.h"

namespace kv {

TKvTextFields::TKvTextFields(char TheDelimiter, char TheQualifier, bool Doubled)
    : Delimiter(TheDelimiter),
      Qualifier(TheQualifier),
      DoubledQualifiers(Doubled)
{
}

void TKvTextFields::Split(std::string_view TheLine)
{
    Line = TheLine;
    FCount = 0;
    Texts.clear();
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
    const char* Open = FindQualifier(First);        // the next one that is odd in number
    for (;;) {
        const char* Stop = FindChar(First, Last, Delimiter);
        while (Open <= Stop && Open != Last) {
            const char* const Close = FindQualifier(Open + 1);
            // the delimiter is hidden; a closing qualifier may be the next
            if (Close > Stop)
                Stop = FindChar(Close, Last, Delimiter);
            Open = Close == Last ? Last : FindQualifier(Close + 1);
        }
        if (Last - Stop < 2)
            break;
        AddTrimmed(First, Stop);
        First = Stop + 1;
    }
    // with the delimiter that ends the line, hidden or not ...
    AddTrimmed(First, Last);
    if (Last[-1] == Delimiter) {
        Add(Last, Last, tpInLine);                  // ... and the empty value after it
        ++Fields[FCount - 1].Stop;
    }
}

const char* TKvTextFields::FindQualifier(const char* From) const
{
    return Qualifier == '\0' ? End() : FindChar(From, End(), Qualifier);
}

/// The value between two delimiters, which stand before First and at Last.
void TKvTextFields::AddTrimmed(const char* First, const char* Last)
{
    // Positions are those of programs that count from 1 and look at the characters at both bounds
    // whether or not the value has any: an empty one begins with the delimiter after it.
    const bool CutsFirst = IsQualifier(*First) || *First == Delimiter;
    const bool CutsLast = Last != Begin() && IsQualifier(Last[-1]);
    Add(First + CutsFirst, Last - CutsLast, tpInLine);
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
            Add(First, P, tpInLine);
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
        Add(Open, Close, tpQualified);
        return Close;
    }
    const char* const Next = FindChar(Close + 1, End(), Delimiter);
    const bool HoldsQualifiers = FindChar(Open + 1, Close, Qualifier) != Close;
    if (HoldsQualifiers || Next != Close + 1)
        Add(Open, Next, tpQualified);
    else
        Add(Open + 1, Close, tpInLine);
    return Next;
}

void TKvTextFields::Add(const char* First, const char* Last, TKvTextPlace Place)
{
    if (FCount == Fields.size())
        Fields.resize(2 * FCount + 8);
    const auto OffsetOf = [this](const char* Pos) { return static_cast<std::uint32_t>(Pos - Begin()); };
    Fields[FCount++] = {OffsetOf(First), OffsetOf(Last), Place};
}

/// A qualified value that holds doubled qualifiers, or text after the closing one.
std::string_view TKvTextFields::WithoutQualifiers(TKvTextField& Field)
{
    if (Field.Place == tpQualified) {
        Texts.reserve(Line.size());                 // views of what is in it stay good
        const auto Size = Texts.size();
        Rewrite(Begin() + Field.Start + 1, Begin() + Field.Stop);
        Field = {static_cast<std::uint32_t>(Size), static_cast<std::uint32_t>(Texts.size()), tpRewritten};
    }
    return std::string_view(Texts).substr(Field.Start, Field.Stop - Field.Start);
}

/// Appends the value between the opening qualifier and `Last` to the texts.
void TKvTextFields::Rewrite(const char* First, const char* Last)
{
    const char* P = FindChar(First, Last, Qualifier);
    while (Last - P >= 2 && P[1] == Qualifier) {
        Texts.append(First, P + 1);
        First = P + 2;
        P = FindChar(First, Last, Qualifier);
    }
    Texts.append(First, P);
    if (P != Last)
        Texts.append(P + 1, Last);
}

} // namespace kv
