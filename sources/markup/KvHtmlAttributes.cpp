#include "KvHtmlAttributes.h"

#include "KvByteScan.h"
#include "KvHtmlSpace.h"

namespace kv {

namespace {

const TKvLowByteSet NameEnds(' ', "/>=");           // no other characters up to the blank stand in names
const TKvLowByteSet ValueEnds(' ', ">");

std::string_view View(const char* First, const char* Last)
{
    return {First, static_cast<std::size_t>(Last - First)};
}

} // namespace

TKvHtmlAttributes::TKvHtmlAttributes(const char* Begin, const char* TheEnd)
    : FPos(NameEnds.FindIn(Begin, TheEnd)), End(TheEnd)
{
    while (FPos != End && *FPos == '=')             // belongs to the name of the tag
        FPos = NameEnds.FindIn(FPos + 1, End);
}

bool TKvHtmlAttributes::Next()
{
    while (FPos != End && (IsHtmlSpace(*FPos) || *FPos == '/'))
        ++FPos;
    if (FPos == End || *FPos == '>')
        return false;
    const auto* const First = FPos;
    FPos = NameEnds.FindIn(First + 1, End);         // a name may begin with any character
    FName = View(First, FPos);
    FValue = {};
    const auto* At = SkipHtmlSpace(FPos, End);
    if (At != End && *At == '=') {
        FPos = SkipHtmlSpace(At + 1, End);
        ReadValue();
    }
    return true;
}

void TKvHtmlAttributes::ReadValue()
{
    if (FPos == End)
        return;
    if (*FPos == '"' || *FPos == '\'') {
        if (const auto* const Close = FindNear(FPos + 1, End, *FPos); Close != End) {
            FValue = View(FPos + 1, Close);
            FPos = Close + 1;
            return;
        }
    }
    const auto* const First = FPos;
    FPos = ValueEnds.FindIn(First, End);
    FValue = View(First, FPos);
}

} // namespace kv
