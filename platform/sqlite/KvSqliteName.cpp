#include "KvSqliteName.h"

#include <algorithm>
#include <utility>

namespace kv {

namespace {

/// The quote that ends a name opened by `Open`, or 0 when that opens none.
char ClosingQuote(char Open)
{
    switch (Open) {
    case '"':
    case '\'':
    case '`': return Open;
    case '[': return ']';
    default:  return 0;
    }
}

std::string TakeQuoted(std::string_view& Text, char Quote)
{
    std::string Part;
    Text.remove_prefix(1);
    while (!Text.empty()) {
        const char C = Text.front();
        Text.remove_prefix(1);
        if (C == Quote) {
            const bool Doubled = Quote != ']' && !Text.empty() && Text.front() == Quote;
            if (!Doubled)
                break;
            Text.remove_prefix(1);
        }
        Part += C;
    }
    return Part;
}

/// Takes the next part of a dotted name from the front of `Text`, and the dot after it.
std::string TakePart(std::string_view& Text)
{
    std::string Part;
    if (const char Quote = Text.empty() ? '\0' : ClosingQuote(Text.front()))
        Part = TakeQuoted(Text, Quote);
    const auto Dot = std::min(Text.find('.'), Text.size());
    Part += Text.substr(0, Dot);
    Text.remove_prefix(std::min(Dot + 1, Text.size()));
    return Part;
}

} // namespace

std::string QuoteName(std::string_view Name)
{
    std::string Result = "\"";
    for (const char C : Name) {
        if (C == '"')
            Result += C;
        Result += C;
    }
    return Result += '"';
}

void AddToList(std::string& List, std::string_view Item, std::string_view Separator)
{
    if (!List.empty())
        List += Separator;
    List += Item;
}

TSQLiteName ParseTableName(std::string_view Text)
{
    auto First = TakePart(Text);
    if (Text.empty())
        return {{}, std::move(First)};
    return {std::move(First), TakePart(Text)};
}

} // namespace kv
