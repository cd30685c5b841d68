#include "KvStringList.h"

#include <algorithm>
#include <cassert>
#include <utility>

#include "KvException.h"
#include "KvText.h"

namespace kv {

namespace {

const TVariant NothingAttached;

/// Takes the first line of `Text` with its line end off the front.
std::string_view TakeLine(std::string_view& Text)
{
    const auto Line = Text.substr(0, Text.find_first_of("\r\n"));
    Text.remove_prefix(Line.size());
    Text.remove_prefix(Text.starts_with("\r\n") ? 2 : Text.empty() ? 0 : 1);
    return Line;
}

} // namespace

TStrings::TStrings(std::initializer_list<std::string_view> Init)
    : Lines(Init.begin(), Init.end())
{
}

void TStrings::Assign(const TPersistent& Source)
{
    const auto* const Other = dynamic_cast<const TStrings*>(&Source);
    if (!Other)
        return TPersistent::Assign(Source);
    Lines = Other->Lines;
    Objects = Other->Objects;
    Changed();
}

std::size_t TStrings::Checked(int Index) const
{
    if (Index < 0 || Index >= Count())
        throw Exception(FormatText("List index out of bounds (%d)", {std::to_string(Index)}));
    return static_cast<std::size_t>(Index);
}

void TStrings::Changed()
{
    if (UpdateCount > 0)
        ChangedInUpdate = true;
    else if (OnChange)
        OnChange();
}

void TStrings::EndUpdate()
{
    assert(UpdateCount > 0);
    if (--UpdateCount == 0 && std::exchange(ChangedInUpdate, false))
        Changed();
}

const std::string& TStrings::operator[](int Index) const { return Lines[Checked(Index)]; }

void TStrings::SetLine(int Index, std::string_view Line)
{
    Lines[Checked(Index)] = Line;
    Changed();
}

int TStrings::Add(std::string_view Line, const TVariant& Object)
{
    Lines.emplace_back(Line);
    if (!Object.IsEmpty())
        Attach(Lines.size() - 1, Object);
    Changed();
    return Count() - 1;
}

void TStrings::Insert(int Index, std::string_view Line)
{
    if (Index != Count())
        Checked(Index);
    Lines.emplace(Lines.begin() + Index, Line);
    if (Index < std::ssize(Objects))
        Objects.emplace(Objects.begin() + Index);
    Changed();
}

void TStrings::Delete(int Index)
{
    Checked(Index);
    Lines.erase(Lines.begin() + Index);
    if (Index < std::ssize(Objects))
        Objects.erase(Objects.begin() + Index);
    Changed();
}

void TStrings::Clear()
{
    Lines.clear();
    Objects.clear();
    Changed();
}

int TStrings::IndexOf(std::string_view Line) const
{
    const auto Found = std::ranges::find_if(Lines, [Line](const std::string& Each) {
        return SameText(Each, Line);
    });
    return Found == Lines.end() ? -1 : static_cast<int>(Found - Lines.begin());
}

std::string_view TStrings::NameAt(int Index) const
{
    const std::string_view Line = (*this)[Index];
    const auto Sign = Line.find('=');
    return Sign == Line.npos ? std::string_view() : Line.substr(0, Sign);
}

std::string_view TStrings::ValueAt(int Index) const
{
    const std::string_view Line = (*this)[Index];
    const auto Sign = Line.find('=');
    return Sign == Line.npos ? std::string_view() : Line.substr(Sign + 1);
}

std::string_view TStrings::Value(std::string_view Name) const
{
    const int Index = IndexOfName(Name);
    return Index < 0 ? std::string_view() : ValueAt(Index);
}

int TStrings::IndexOfName(std::string_view Name) const
{
    const auto HasName = [Name](std::string_view Line) {
        return Line.size() > Name.size() && Line[Name.size()] == '=' &&
               SameText(Line.substr(0, Name.size()), Name);
    };
    const auto Found = std::ranges::find_if(Lines, HasName);
    return Found == Lines.end() ? -1 : static_cast<int>(Found - Lines.begin());
}

const TVariant& TStrings::Object(int Index) const
{
    const auto Position = Checked(Index);
    return Position < Objects.size() ? Objects[Position] : NothingAttached;
}

void TStrings::SetObject(int Index, const TVariant& Object)
{
    Attach(Checked(Index), Object);
    Changed();
}

/// Takes a copy: the value may be attached to another line, or text on loan.
void TStrings::Attach(std::size_t Position, TVariant Object)
{
    if (Position >= Objects.size())
        Objects.resize(Position + 1);
    Objects[Position] = std::move(Object);
}

std::string TStrings::Text() const
{
    std::string Result;
    for (const auto& Line : Lines)
        Result.append(Line).append("\r\n");
    return Result;
}

void TStrings::SetText(std::string_view Text)
{
    std::vector<std::string> Fresh;                 // Text may stand in one of the lines
    while (!Text.empty())
        Fresh.emplace_back(TakeLine(Text));
    Lines = std::move(Fresh);
    Objects.clear();
    Changed();
}

bool operator==(const TStrings& A, const TStrings& B) { return A.Lines == B.Lines; }

} // namespace kv
