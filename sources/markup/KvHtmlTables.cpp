#include "KvHtmlTables.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "KvException.h"
#include "KvHtmlRows.h"
#include "KvHtmlTags.h"

namespace kv {

namespace {

constexpr std::size_t MaxPasses = 16;               // over the page, by all its tables together
constexpr std::uint32_t PollSteps = 16384;

/// Counts one table of a page after the other.
class TTableCounter
{
public:
    TTableCounter(std::string_view Page, TKvIHTMLExtensions TheRules, const std::function<bool()>& Asked)
        : Rules(TheRules), Flavour(FlavourOf(Page)), Continue(Asked), BytesLeft(Page.size() * MaxPasses)
    {
    }

    /// The table that `Page` begins with.
    TKvHtmlTable Count(std::string_view Page)
    {
        TKvHtmlTable Table;
        if (BytesLeft == 0)
            return Table;
        TKvHtmlRows Reader(Page, Rules, Flavour, 1);
        try {
            CountRows(Reader, Table);
        }
        catch (const Exception& Error) {
            Table = {.Error = Error.Message};
        }
        BytesLeft -= std::min(BytesLeft, static_cast<std::size_t>(Reader.Pos() - Page.data()));
        return Table;
    }

    /// A step further; false once the user has cancelled.
    bool Step()
    {
        if (++Steps % PollSteps == 0 && Continue && !Continue())
            GoesOn = false;
        return GoesOn;
    }

private:
    void CountRows(TKvHtmlRows& Reader, TKvHtmlTable& Table)
    {
        Table.Rows = Table.Columns = 0;
        while (Reader.Next() && Step()) {
            ++Table.Rows;
            Table.Columns = std::max(Table.Columns, static_cast<int>(Reader.Columns()));
        }
    }

    const TKvIHTMLExtensions Rules;
    const TKvHtmlFlavour Flavour;
    const std::function<bool()>& Continue;
    std::size_t BytesLeft;                          // to pass over
    std::uint32_t Steps = 0;
    bool GoesOn = true;
};

} // namespace

std::vector<TKvHtmlTable> FindHtmlTables(std::string_view Page, TKvIHTMLExtensions Extensions,
                                         const std::function<bool()>& Continue)
{
    std::vector<TKvHtmlTable> Tables;
    TTableCounter Counter(Page, Extensions, Continue);
    TKvHtmlTags Tags(Page, Extensions, FlavourOf(Page));
    for (auto Tag = Tags.Next(); Tag != htNone && Counter.Step(); Tag = Tags.Next())
        if (Tag == htTable)
            Tables.push_back(Counter.Count({Tags.Current().data(), Tags.TextLast()}));
    return Tables;
}

} // namespace kv
