#include "KvWrittenNumber.h"

#include <algorithm>

#include "KvText.h"

namespace kv {

namespace {

// Of a process in UTF-8, and the no-break blank of 8-bit code pages, which is no UTF-8.
constexpr std::string_view Minus = "\xE2\x88\x92";
constexpr std::string_view Blanks[] = {"\xC2\xA0", "\xE2\x80\xAF", "\xE2\x80\x89", "\xA0"};

constexpr bool IsDigit(char Char) { return Char >= '0' && Char <= '9'; }

/// Takes the parts of a number off the front of its text.
class TWrittenNumber
{
public:
    TWrittenNumber(std::string_view Source, char Group, std::string& Target)
        : Text(Source), Thousand(Group), Out(Target)
    {
        Out.clear();
    }

    bool AtEnd() const { return Text.empty(); }
    bool Take(std::string_view Word)
    {
        if (!Text.starts_with(Word))
            return false;
        Text.remove_prefix(Word.size());
        return true;
    }
    bool Take(char Char) { return Take(std::string_view(&Char, 1)); }
    bool TakeMinus() { return Take('-') || Take(Minus); }

    std::size_t TakeDigits()
    {
        const auto Count = std::min(
            static_cast<std::size_t>(std::ranges::find_if_not(Text, IsDigit) - Text.begin()), Text.size());
        Out.append(Text.substr(0, Count));
        Text.remove_prefix(Count);
        return Count;
    }

    /// False when a separator does not group: 12,34,567 as well as 1,234,567, and never 0,500.
    bool TakeInteger()
    {
        constexpr std::size_t Group = 3, ShortGroup = 2;
        const bool BeginsWithZero = Text.starts_with('0');
        auto Count = TakeDigits();
        const auto Separator = SeparatorHere();
        if (Separator.empty())
            return true;
        std::size_t Least = 1;
        bool Groups = !BeginsWithZero;
        for (; Take(Separator); Least = ShortGroup) {
            Groups = Groups && Count >= Least && Count <= Group;
            Count = TakeDigits();
        }
        return Groups && Count == Group;
    }

private:
    std::string_view SeparatorHere() const
    {
        if (Text.empty())
            return {};
        if (Text.front() == Thousand)
            return Text.substr(0, 1);
        const auto* const Blank =
            std::ranges::find_if(Blanks, [this](std::string_view Each) { return Text.starts_with(Each); });
        return Blank != std::end(Blanks) ? *Blank : std::string_view();
    }

    std::string_view Text;
    const char Thousand;
    std::string& Out;
};

std::string_view TrimBlanks(std::string_view Text)
{
    for (Text = Trim(Text);; Text = Trim(Text)) {
        const auto Size = Text.size();
        for (const auto Blank : Blanks) {
            if (Text.starts_with(Blank))
                Text.remove_prefix(Blank.size());
            if (Text.ends_with(Blank))
                Text.remove_suffix(Blank.size());
        }
        if (Text.size() == Size)
            return Text;
    }
}

} // namespace

std::optional<std::string_view> TryPlainNumber(std::string_view Text, char Thousand, char Decimal,
                                               std::string& Storage)
{
    TWrittenNumber In(TrimBlanks(Text), Thousand, Storage);
    bool Negative = In.TakeMinus();
    const bool HasSign = Negative || In.Take('+');
    if (Negative)
        Storage += '-';
    const auto Sign = Storage.size();
    if (!In.TakeInteger())
        return {};
    if (In.Take(Decimal)) {
        Storage += Decimal;
        In.TakeDigits();
    }
    if (Storage.size() == Sign)
        return {};
    if (In.Take('e') || In.Take('E')) {
        Storage += 'E';
        if (In.TakeMinus())
            Storage += '-';
        else
            In.Take('+');
        if (In.TakeDigits() == 0)
            return {};
    }
    if (!HasSign && In.TakeMinus())
        Storage.insert(0, 1, '-');
    if (!In.AtEnd())
        return {};
    return Storage;
}

} // namespace kv
